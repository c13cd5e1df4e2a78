# SPDX-License-Identifier: Apache-2.0
"""What docs/raid.md says is what the header declares, and its program does what it shows."""

import os
import re

import pytest
from pages import asserted_layout, declarations, exported, names, synopsis, table, told_layout
from sessions import blocks


@pytest.fixture(scope="module")
def page(source_dir):
    return (source_dir / "docs/raid.md").read_text(encoding="utf-8")


@pytest.fixture(scope="module")
def header(source_dir):
    return declarations(source_dir / "src/diskscout_raid.h")


def test_every_record_is_told_with_its_offsets(page, header, source_dir):
    told = told_layout(page)
    assert len(told) == 5
    layout = asserted_layout(source_dir / "src/layout.h")
    assert told == {record: layout[record] for record in re.findall(r"^\} (\w+);$", header, re.MULTILINE)}


def test_every_result_code_is_told(page, header):
    (body,) = re.findall(r"^enum aac_result \{(.*?)\};", header, re.MULTILINE | re.DOTALL)
    codes = re.findall(r"(AAC_\w+) = (-?\d+)", body)
    assert len(codes) == 15
    assert [(names(name)[0], code) for code, name, _ in table(page, "| Code | Name | Meaning |")] == codes


def test_every_operation_is_told_with_codes_that_exist(page, header):
    functions = re.findall(r"\b(Aac_\w+|Analyze\w+)\(", header)
    assert len(functions) == 33
    rows = table(page, "| Function | Success |")
    parsers = page[page.index("The answers' parsers"):page.index("## Result codes")]
    told = [name for row in rows for cell in (row[0], row[3]) for name in names(cell)] + names(parsers)
    assert set(told) - set(re.findall(r"\baac_\w+", header)) == set(functions)
    codes = {name for row in rows for cell in row[1:3] for name in names(cell)}
    assert codes <= set(re.findall(r"\bAAC_\w+", header))


def test_the_synopsis_is_what_the_header_declares(page, source_dir):
    assert synopsis(page) == ({"diskscout_raid.h"}, exported(source_dir / "src/diskscout_raid.h"))
    assert len(exported(source_dir / "src/diskscout_raid.h")) == 33
