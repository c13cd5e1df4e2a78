"""What docs/abi.md says is what the headers declare, and its program does what it shows."""

import os
import re
import subprocess

import pytest
from pages import asserted_layout, declarations, names, pages_that_lack, table, told_layout

# Values, not records: no table tells them.
BASIC_TYPES = {"UINT", "ULONGLONG", "BOOLEAN", "STORAGE_STRING"}


@pytest.fixture(scope="module")
def page(source_dir):
    return (source_dir / "docs/abi.md").read_text(encoding="utf-8")


@pytest.fixture(scope="module")
def layout(source_dir):
    rows = asserted_layout(source_dir / "src/layout.h")
    return {record: layout for record, layout in rows.items() if record not in BASIC_TYPES}


def header(source_dir, name):
    return declarations(source_dir / "src" / name)


def test_every_record_is_told_with_its_offsets(page, layout):
    told = told_layout(page)
    assert len(told) == 14
    assert told == layout


def test_every_field_of_the_headers_has_its_offset_asserted(source_dir, layout):
    fields = {}
    for name in ("define_command.h", "diskscout.h", "diskscout_raid.h"):
        for body, record in re.findall(r"^typedef struct \w+ \{\n(.*?)^\} (\w+)", header(source_dir, name),
                                       re.MULTILINE | re.DOTALL):
            fields[record] = re.findall(r"(\w+)(?:\[\d+\])?;", body)
    assert {record: list(offsets) for record, (_, offsets) in layout.items()} == fields


def test_every_query_is_told(page, source_dir):
    codes = dict(re.findall(r"\b(CMD_\w+) = (\d+)", header(source_dir, "define_command.h")))
    assert len(codes) == 16
    told = {}
    for query, release, *_ in table(page, "| Query | Release | Records |"):
        code, name = re.fullmatch(r"(\d+) `(\w+)`", query).groups()
        told[name] = code
        told[name.replace("GET", "FREE")] = release
    assert told == codes


def test_every_result_code_is_told(page, source_dir):
    (body,) = re.findall(r"^enum aac_result \{(.*?)\};", header(source_dir, "diskscout_raid.h"),
                         re.MULTILINE | re.DOTALL)
    codes = re.findall(r"(AAC_\w+) = (-?\d+)", body)
    assert len(codes) == 15
    assert [(names(name)[0], code) for code, name, _ in table(page, "| Code | Name | Meaning |")] == codes


def test_every_operation_is_told_with_codes_that_exist(page, source_dir):
    declared = header(source_dir, "diskscout_raid.h")
    functions = re.findall(r"\b(Aac_\w+|Analyze\w+)\(", declared)
    assert len(functions) == 33
    rows = table(page, "| Function | Success |")
    parsers = page[page.index("The answers' parsers"):page.index("### Result codes")]
    told = [name for row in rows for cell in (row[0], row[3]) for name in names(cell)] + names(parsers)
    assert set(told) - set(re.findall(r"\baac_\w+", declared)) == set(functions)
    codes = {name for row in rows for cell in row[1:3] for name in names(cell)}
    assert codes <= set(re.findall(r"\bAAC_\w+", declared))


def test_the_program_compiles_and_prints_what_the_page_says(page, build_dir, source_dir, tmp_path):
    (program, shown) = (text for _, text in re.findall(r"^```(\w*)\n(.*?)^```$", page, re.MULTILINE | re.DOTALL))
    (tmp_path / "tasks.c").write_text(program)
    # The library of a sanitizer build takes its runtime from the program.
    sanitize = ["-fsanitize=address,undefined"] if "DISKSCOUT_SANITIZE:BOOL=ON" in (
        build_dir / "CMakeCache.txt").read_text() else []
    subprocess.run(["cc", "-std=c99", "-Wall", "-Wextra", "-Werror", *sanitize, f"-I{source_dir}/src",
                    str(tmp_path / "tasks.c"), "-o", str(tmp_path / "tasks")], check=True)
    (tmp_path / "filter").symlink_to(source_dir / "tools/filter/diskscout-filter")
    (tmp_path / "raidsim").symlink_to(build_dir / "raidsim")
    (tmp_path / "raid.cfg").write_text("Cli Path:.\nCli Name:raidsim\nFilter Script:./filter\n")
    done = subprocess.run([str(tmp_path / "tasks"), str(build_dir / "diskscout.so"), "raid.cfg", "aac0"],
                          check=False, cwd=tmp_path, capture_output=True, text=True,
                          env=dict(os.environ, RAIDSIM_STATE=str(tmp_path / "controllers.txt")))
    assert done.stderr == ""
    assert done.returncode == 0
    assert done.stdout == shown


def test_the_pages_that_are_linked_exist(page, source_dir):
    assert pages_that_lack(page, source_dir / "docs") == []
