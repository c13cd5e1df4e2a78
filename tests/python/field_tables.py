#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""field_tables.py [PAGE]: the tables of docs/python.md, out of the package; with a page it renews those that are there."""

import dataclasses
import pathlib
import re
import sys
import typing

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "python"))

import diskscout  # noqa: E402

RECORDS = (
    diskscout.Disk, diskscout.Partition, diskscout.Cdrom, diskscout.Controller, diskscout.Container,
    diskscout.RaidDisk, diskscout.RaidSpace, diskscout.RaidPartition, diskscout.ToolContainer, diskscout.ToolDisk,
    diskscout.ToolSpace, diskscout.ToolPartition, diskscout.Task, diskscout.BlockDevice, diskscout.BlockLink,
    diskscout.BlockContent, diskscout.BlockPartition, diskscout.BlockMount, diskscout.BlockArray, diskscout.BlockMember,
)
WORDS = {int: "number", str: "text", bool: "flag", float: "number"}


def type_words(annotation):
    if typing.get_origin(annotation) is tuple:
        one = typing.get_args(annotation)[0]
        return f"tuple of {f'{WORDS[one]}s' if one in WORDS else f'`{one.__name__}`'}"
    if type(None) in typing.get_args(annotation):
        (one,) = set(typing.get_args(annotation)) - {type(None)}
        return f"{WORDS[one]} or None"
    if int in typing.get_args(annotation):
        return "number"  # with a name, mostly
    return WORDS[annotation]


def table(record):
    annotations = typing.get_type_hints(record)
    lines = [f"| Field of `{record.__name__}` | Type | Means |", "|---|---|---|"]
    lines += [f"| `{field.name}` | {type_words(annotations[field.name])} | {field.metadata['row'].says} |"
              for field in dataclasses.fields(record)]
    return "\n".join(lines)


def renewed(page):
    for record in RECORDS:
        page, found = re.subn(rf"^\| Field of `{record.__name__}` .*\n(?:\|.*\n)*", lambda _, of=record: table(of) + "\n",
                              page, flags=re.MULTILINE)
        if found != 1:
            raise SystemExit(f"the page has {found} tables of {record.__name__}")
    return page


if __name__ == "__main__":
    if len(sys.argv) > 1:
        target = pathlib.Path(sys.argv[1])
        target.write_text(renewed(target.read_text(encoding="utf-8")), encoding="utf-8")
    else:
        print("\n\n".join(map(table, RECORDS)))
