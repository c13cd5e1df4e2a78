# SPDX-License-Identifier: Apache-2.0
"""What the pages of docs/ hold, and what the headers that they tell of do."""

import re


def names(cell):
    return re.findall(r"`([^`]+)`", cell)


def table(page, heading):
    """The rows of the table with that heading, cell by cell."""
    lines = iter(page[page.index(heading):].splitlines()[2:])
    rows = []
    for line in lines:
        if not line.startswith("|"):
            break
        rows.append([cell.strip() for cell in line.strip("|").split("|")])
    return rows


def pages_that_lack(page, docs):
    """Links to files that are not there; a page that links to none is not ours."""
    links = re.findall(r"\]\(([^)#]+)", page)
    assert links
    return [link for link in links if not (docs / link).exists()]


def anchors_that_lack(page):
    """Links to headings of the same page that it does not have."""
    headings = re.findall(r"^##+ (.*)$", page, re.MULTILINE)
    anchors = {re.sub(r"[^\w -]", "", heading).lower().replace(" ", "-") for heading in headings}
    return set(re.findall(r"\]\(#([^)]+)\)", page)) - anchors


def declarations(header):
    """The header without its comments."""
    return re.sub(r"/\*.*?\*/", "", header.read_text(encoding="utf-8"), flags=re.DOTALL)


def asserted_layout(rows):
    """What a file of asserted sizes and offsets says: {record: (size, {field: offset})}."""
    text = rows.read_text(encoding="utf-8")
    return {record: (int(size), {field: int(offset) for field, offset in
                                 re.findall(rf"^AT\({record}, (\w+), (\d+)\);", text, re.MULTILINE)})
            for record, size in re.findall(r"^SIZE\((\w+), (\d+)\);", text, re.MULTILINE)}


def record_tables(page):
    """Records with their sizes and the rows of their tables: fields, offsets, content."""
    tables = re.findall(r"^\| (`(\w+)`: [^|]*?, (\d+) bytes \| Offset \| Content \|)$", page, re.MULTILINE)
    return [(record, int(size), table(page, heading)) for heading, record, size in tables]


def told_layout(page):
    """What the page says of all records: {record: (size, {field: offset})}."""
    return {record: (size, {name: int(offset) for fields, offsets, _ in rows
                            for name, offset in zip(names(fields), offsets.split(","), strict=True)})
            for record, size, rows in record_tables(page)}


def synopsis(page):
    """What the page declares, and what it includes for that."""
    block = re.search(r"^## Synopsis\n\n```c\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)[1]
    return set(re.findall(r"^#include <(\S+)>$", block, re.MULTILINE)), declared(block)


def declared(text):
    """Functions and data, each on a line."""
    found = re.findall(r"^(?:extern )?\w[\w \*]*?\w+(?:\(.*?\)|\[\d+\])?;", text, re.MULTILINE | re.DOTALL)
    return {re.sub(r"\s+", " ", line).replace("( ", "(") for line in found if not line.startswith("typedef")}


def exported(header):
    """What a header declares between the marks of what is exported."""
    text = declarations(header)
    return declared(text[text.index("#pragma GCC visibility push(default)"):text.index("#pragma GCC visibility pop")])
