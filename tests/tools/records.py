# SPDX-License-Identifier: Apache-2.0
"""What the block plug-in's header says of its records: their members in order, and what each is."""

import pathlib
import re

HEADER = pathlib.Path(__file__).resolve().parents[2] / "block" / "diskscout_block.h"
RECORDS = {
    "devices": "block_device",
    "links": "block_link",
    "filesystems": "block_content",
    "arrays": "block_array",
    "mounts": "block_mount",
}
# The lists within a record, and what each holds.
INNER = {"partitions": "block_partition", "members": "block_member"}
DECLARATION = re.compile(r"(const char|block_\w+|long long|int)\s*([^;]*);\s*(?:/\*(.*?)\*/)?", re.DOTALL)


def kind_of(form, comment):
    if form == "const char":
        return "string"
    if form == "block_text":
        return "texts"
    if form.startswith("block_"):
        return "objects"
    return "boolean" if re.match(r"\s*flag\b", comment or "") else "integer"


def members_of(record):
    """Name and kind of each member: string, boolean, integer, texts or objects."""
    body = re.search(rf"typedef struct {record} {{(.*?)\n}} {record};", HEADER.read_text(encoding="utf-8"), re.DOTALL)
    found = {}
    for form, names, comment in DECLARATION.findall(body[1]):
        for name in names.replace("*", " ").split(","):
            # A comment may stand between a type and its name.
            word = name.split()[-1]
            if word != "next":
                found[word] = kind_of(form, comment)
    return found


def blank(record):
    """A record of which nothing is known."""
    return {name: [] if kind in ("texts", "objects") else None for name, kind in members_of(record).items()}


def filled(record, **known):
    """A record of which nothing else is known; in the order of the header."""
    empty = blank(record)
    assert set(known) <= set(empty)
    return {**empty, **known}
