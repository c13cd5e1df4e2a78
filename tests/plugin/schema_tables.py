#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""Renews the tables of docs/json.md that tell the fields of every kind:

    build/release/diskscout schema | tests/plugin/schema_tables.py docs/json.md
"""

import json
import pathlib
import re
import sys

WORDS = {"string": "text", "integer": "number", "boolean": "flag", "object": "object"}


def kinds_of(schema):
    """The lists of a document, each with the schema of its records."""
    return {key: node["items"] for key, node in schema["properties"].items()
            if "items" in node and key != "messages"}


def word_of(node):
    types = node["type"] if isinstance(node["type"], list) else [node["type"]]
    (kind,) = [name for name in types if name != "null"]
    word = WORDS[node["items"]["type"]] + "s" if kind == "array" else WORDS[kind]
    return word + (" or null" if "null" in types else "")


def rows_of(record, above=""):
    """Key, type and meaning of each field, also of the objects within it."""
    rows = []
    for key, node in record["properties"].items():
        rows.append([f"`{above}{key}`", word_of(node), node["description"]])
        if "properties" in node:
            rows += rows_of(node, f"{above}{key}.")
        elif "properties" in node.get("items", {}):
            rows += rows_of(node["items"], f"{above}{key}[].")
    return rows


def heading_of(kind):
    return f"| Key of `{kind}` | Type | Means |"


def table_of(kind, record):
    lines = [heading_of(kind), "|---|---|---|", *("| " + " | ".join(row) + " |" for row in rows_of(record))]
    return "\n".join(lines) + "\n"


def renew(page, schema):
    for kind, record in kinds_of(schema).items():
        old = re.escape(heading_of(kind)) + r"\n(\|.*\n)*"
        table = table_of(kind, record)
        page, count = re.subn(old, lambda _, table=table: table, page)
        if count != 1:
            sys.exit(f"the page has no table that begins {heading_of(kind)}")
    return page


if __name__ == "__main__":
    PAGE = pathlib.Path(sys.argv[1])
    PAGE.write_text(renew(PAGE.read_text(encoding="utf-8"), json.load(sys.stdin)), encoding="utf-8")
