# SPDX-License-Identifier: Apache-2.0
"""abi/ holds all of the binary interface: what scripts/abi compares with is not less than what agents see."""

import re
import xml.etree.ElementTree as xml

import pytest
from pages import asserted_layout, declarations

HEADERS = ("src/define_command.h", "src/diskscout.h", "src/diskscout_raid.h", "block/diskscout_block.h")


@pytest.fixture(scope="module")
def headers(source_dir):
    return "\n".join(declarations(source_dir / name) for name in HEADERS)


@pytest.fixture(scope="module")
def stored(source_dir):
    return xml.parse(source_dir / "abi/records.abi").getroot()


def named(stored, kind):
    return {element.get("name") for element in stored.iter(kind)}


def test_every_type_of_the_headers_is_stored(headers, stored):
    structs = set(re.findall(r"^typedef struct (\w+) \{", headers, re.MULTILINE))
    assert len(structs) == 22
    assert structs <= named(stored, "class-decl")
    # The first name behind a record; the second one is a pointer to it.
    aliases = set(re.findall(r"^(?:\} |typedef [\w ]+ )(\w+)(?:\[\d+\])?[;,]", headers, re.MULTILINE))
    assert {"STORAGE_DISK_LIST", "UINT", "STORAGE_STRING", "HWRAID_LIST", "block_text"} <= aliases
    assert aliases <= named(stored, "typedef-decl")


def test_every_code_of_the_headers_is_stored_with_its_value(headers, stored):
    codes = set(re.findall(r"\b([A-Z]\w+) = (-?\d+)", headers))
    assert len(codes) > 80
    assert {(element.get("name"), element.get("value")) for element in stored.iter("enumerator")} == codes


@pytest.mark.parametrize("layout", ["src/layout.h", "block/layout.h"])
def test_every_record_is_stored_as_it_is_asserted(source_dir, stored, headers, layout):
    tags = {alias: tag for tag, alias in
            re.findall(r"^typedef struct (\w+) \{.*?^\} (\w+)", headers, re.MULTILINE | re.DOTALL)}
    offsets = {}
    for record in stored.iter("class-decl"):
        fields = {member.find("var-decl").get("name"): int(member.get("layout-offset-in-bits")) // 8
                  for member in record.iter("data-member")}
        offsets[record.get("name")] = (int(record.get("size-in-bits", 0)) // 8, fields)
    told = {name: row for name, row in asserted_layout(source_dir / layout).items() if row[1]}
    assert len(told) >= 8
    assert {name: offsets[tags[name]] for name in told} == told


@pytest.mark.parametrize("library, exported", [("diskscout", "src/diskscout.map"),
                                               ("diskscout-block", "block/diskscout-block.map")])
def test_every_exported_name_is_stored(source_dir, library, exported):
    stored = xml.parse(source_dir / f"abi/{library}.abi").getroot()
    listed = set(re.findall(r"^\t\t(\w+);$", (source_dir / exported).read_text(encoding="utf-8"), re.MULTILINE))
    assert named(stored, "elf-symbol") == listed
