# SPDX-License-Identifier: Apache-2.0
"""What the package believes of the library's memory is what the compiler makes of the headers."""

import ctypes
import re
import subprocess
import typing
from enum import IntEnum

import pytest

import diskscout
from diskscout import block, classic, codes, fields, library, raid

# Rows that are in src/layout.h and block/layout.h: each field of each record is asserted there, which other tests see to.
PROGRAM = """
#include "diskscout_raid.h"
#include "diskscout_block.h"
#include <stddef.h>
#include <stdio.h>
#define KIND(value) _Generic((value), char: "char", char *: "chars", const char *: "text", int: "int", \\
	unsigned int: "unsigned", long long: "long long", unsigned long long: "unsigned long long", \\
	unsigned long: "size", float: "float", int *: "ints", default: "pointer")
#define SIZE(record, size) printf("%s %zu\\n", #record, sizeof(record))
#define AT(record, field, offset) printf("%s %s %zu %zu %s\\n", #record, #field, offsetof(record, field), \\
	sizeof(((record *)0)->field), KIND(((record *)0)->field))
int main(void)
{
#include "src/layout.h"
#include "block/layout.h"
	return 0;
}
"""
VALUES = {"UINT", "ULONGLONG", "BOOLEAN", "STORAGE_STRING"}

KINDS = {
    ctypes.c_char: "char", ctypes.c_int: "int", ctypes.c_uint: "unsigned", ctypes.c_longlong: "long long",
    ctypes.c_ulonglong: "unsigned long long", ctypes.c_size_t: "size", ctypes.c_float: "float",
    ctypes.c_char_p: "text", ctypes.c_void_p: "pointer",
}


def kind_of(c_type, member):
    # On this machine a long is as long as a long long: to ctypes they are one type, to a compiler two.
    if c_type is ctypes.c_size_t and member == "record_size":
        return "size"
    if issubclass(c_type, ctypes.Array):
        return "chars" if c_type._type_ is ctypes.c_char else "ints"
    return KINDS[c_type].replace("size", "unsigned long long") if member != "szData" else "chars"


@pytest.fixture(scope="module")
def compiled(source_dir, tmp_path_factory):
    """{record: (size, {member: (offset, size, kind)})}, as the compiler has it."""
    place = tmp_path_factory.mktemp("layout")
    (place / "layout.c").write_text(PROGRAM)
    subprocess.run(["cc", "-std=c11", "-Wall", "-Wextra", "-Werror", f"-I{source_dir}", f"-I{source_dir}/src",
                    f"-I{source_dir}/block", str(place / "layout.c"), "-o", str(place / "layout")], check=True)
    told = subprocess.run([str(place / "layout")], check=True, capture_output=True, text=True).stdout
    records = {}
    for record, size, *more in (line.split(" ", 4) for line in told.splitlines()):
        if more:
            offset, length, kind = more
            records[record][1][size] = (int(offset), int(length), kind)
        else:
            records[record] = (int(size), {})
    return {record: layout for record, layout in records.items() if record not in VALUES}


def believed(c_type):
    members = {name: getattr(c_type, name) for name, _ in c_type._fields_}
    kinds = dict(c_type._fields_)
    return ctypes.sizeof(c_type), {name: (member.offset, member.size, kind_of(kinds[name], name))
                                   for name, member in members.items()}


def test_every_member_of_every_record_is_where_the_compiler_puts_it(compiled):
    assert len(compiled) == 22
    ours = {name: believed(record.C_TYPE) for name, record in fields.RECORDS.items()}
    assert {**ours, "IPMICOMMAND": believed(library.Request)} == compiled


def test_every_record_that_a_list_can_hold_is_to_be_had_from_the_package():
    inner = {"block_text"}  # records hold its texts alone
    for name, record in fields.RECORDS.items():
        assert name in inner or getattr(diskscout, record.__name__) is record


def test_every_field_says_what_it_is():
    for record in fields.RECORDS.values():
        for row, _ in record.ROWS:
            assert row.says
        for name in record.__dataclass_fields__:
            assert f"    {name}: " in record.__doc__


def test_a_field_that_counts_says_its_unit():
    units = {"bytes": "bytes", "sectors": "sectors", "kib": "KiB", "kilobytes": "kilobytes", "megabytes": "megabytes",
             "low32": "bytes"}
    seen = set()
    for record in fields.RECORDS.values():
        for name, field in record.__dataclass_fields__.items():
            unit = units.get(name.rsplit("_", 1)[-1])
            if unit:
                seen.add(unit)
                assert unit in field.metadata["row"].says, f"{record.__name__}.{name}"
    assert seen == set(units.values())


def header(source_dir, name):
    text = (source_dir / name).read_text(encoding="utf-8")
    return re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)


def test_every_query_has_its_code(source_dir):
    declared = {name: int(code) for file in ("src/define_command.h", "block/diskscout_block.h") for name, code in
                re.findall(r"\b(CMD_GET_\w+) = (\d+)", header(source_dir, file))}
    assert len(declared) == 13
    ours = {name: code for module in (classic, block) for name, code in vars(module).items()
            if name.startswith("CMD_")}
    assert ours == declared
    # Of each query the code behind it is its release.
    freed = [int(code) for file in ("src/define_command.h", "block/diskscout_block.h")
             for code in re.findall(r"\bCMD_FREE_\w+ = (\d+)", header(source_dir, file))]
    assert sorted(freed) == sorted(code + 1 for code in ours.values())


ENUMERATIONS = {
    "KESTREL_HWRAID_TYPE_": (codes.RaidType, 0), "KESTREL_HWRAID_USAGE_TYPE_": (codes.ContainerUsage, 0),
    # Records hold one less than these names say.
    "KESTREL_HWRAID_DSK_TYPE_": (codes.DeviceType, 1), "KESTREL_HWRAID_DSK_USAGE_": (codes.DiskUsage, 0),
    "KESTREL_HWRAID_DSK_SHARED_TYPE_": (codes.Shared, 0),
    "KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_": (codes.Access, 0),
    "KESTREL_HWRAID_PART_MULTILEVEL_TYPE_": (codes.MultilevelType, 0),
}


def test_every_coded_value_has_a_name(source_dir):
    constants = {name: int(value) for name, value in
                 re.findall(r"\b(KESTREL_\w+) = (-?\d+)", header(source_dir, "src/diskscout.h"))}
    for prefix, (words, less) in ENUMERATIONS.items():
        declared = {value - less for name, value in constants.items() if name.startswith(prefix)}
        assert declared and {word.value for word in words} == declared, prefix
    assert all(name.startswith(tuple(ENUMERATIONS)) for name in constants)


def test_a_field_of_coded_values_has_their_type_or_a_number():
    coded = {}
    for record in fields.RECORDS.values():
        types = typing.get_type_hints(record)
        for name, field in record.__dataclass_fields__.items():
            shape = field.metadata["row"].shape
            # All of their enumerations have a name for 1.
            if shape.c_type is ctypes.c_int and isinstance(shape.take(1), IntEnum):
                coded[record.__name__, name] = (types[name], typing.Union[type(shape.take(1)), int])
    assert len(coded) == 20
    assert [place for place, (declared, wanted) in coded.items() if declared != wanted] == []


def test_every_result_has_its_name(source_dir):
    (body,) = re.findall(r"^enum aac_result \{(.*?)\};", header(source_dir, "src/diskscout_raid.h"),
                         re.MULTILINE | re.DOTALL)
    declared = {name: int(code) for name, code in re.findall(r"(AAC_\w+) = (-?\d+)", body)}
    assert {result.name: result.value for result in diskscout.Result} == declared


ARGUMENTS = {"const char *": ctypes.c_char_p, "char *": ctypes.c_char_p, "int ": ctypes.c_int,
             "int *": ctypes.POINTER(ctypes.c_int)}


def c_type_of(argument):
    written = re.fullmatch(r"(.*?[ *]+)\w+", argument).group(1)
    if written in ARGUMENTS:
        return ARGUMENTS[written]
    assert re.fullmatch(r"aac_\w+ \*{1,2}", written), argument
    return ctypes.POINTER(ctypes.c_void_p) if written.endswith("**") else ctypes.c_void_p


def test_every_operation_is_called_with_what_it_takes(source_dir):
    declared = {}
    for name, arguments in re.findall(r"\b(Aac_\w+|Analyze\w+)\((.*?)\);", header(source_dir, "src/diskscout_raid.h"),
                                      re.DOTALL):
        split = [argument.strip() for argument in arguments.split(",")]
        declared[name] = [c_type_of(argument) for argument in split if argument != "..."]
    assert len(declared) == 33
    assert raid.OPERATIONS == declared
