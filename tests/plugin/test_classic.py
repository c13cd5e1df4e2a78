# SPDX-License-Identifier: Apache-2.0
"""What docs/classic.md says is what the headers declare."""

import os
import re
import subprocess

import pytest
from pages import asserted_layout, declarations, exported, synopsis, table, told_layout
from sessions import blocks

# Values, not records: no table tells them.
BASIC_TYPES = {"UINT", "ULONGLONG", "BOOLEAN", "STORAGE_STRING"}
HEADERS = ("define_command.h", "diskscout.h")


@pytest.fixture(scope="module")
def page(source_dir):
    return (source_dir / "docs/classic.md").read_text(encoding="utf-8")


def records(source_dir, *headers):
    """{record: [field]} of the headers."""
    fields = {}
    for name in headers:
        for body, record in re.findall(r"^typedef struct \w+ \{\n(.*?)^\} (\w+)", declarations(source_dir / "src" / name),
                                       re.MULTILINE | re.DOTALL):
            fields[record] = re.findall(r"(\w+)(?:\[\d+\])?;", body)
    return fields


def layout(source_dir):
    rows = asserted_layout(source_dir / "src/layout.h")
    return {record: layout for record, layout in rows.items() if record not in BASIC_TYPES}


def test_every_record_is_told_with_its_offsets(page, source_dir):
    told = told_layout(page)
    assert len(told) == 9
    assert told == {record: layout(source_dir)[record] for record in records(source_dir, *HEADERS)}


def test_every_field_of_the_headers_has_its_offset_asserted(source_dir):
    asserted = {record: list(offsets) for record, (_, offsets) in layout(source_dir).items()}
    assert asserted == records(source_dir, *HEADERS, "diskscout_raid.h")


def test_every_query_is_told(page, source_dir):
    codes = dict(re.findall(r"\b(CMD_\w+) = (\d+)", declarations(source_dir / "src/define_command.h")))
    assert len(codes) == 16
    told = {}
    for query, release, *_ in table(page, "| Query | Release | Records |"):
        code, name = re.fullmatch(r"(\d+) `(\w+)`", query).groups()
        told[name] = code
        told[name.replace("GET", "FREE")] = release
    assert told == codes


def test_the_synopsis_is_what_the_header_declares(page, source_dir):
    assert synopsis(page) == ({"diskscout.h"}, exported(source_dir / "src/diskscout.h"))
    assert len(exported(source_dir / "src/diskscout.h")) == 6


def replayed(build_dir, source_dir, scratch):
    # The loader splits LD_PRELOAD at blanks and colons.
    replay = scratch / "replay.so"
    replay.symlink_to(build_dir / "diskscout-replay.so")
    return dict(os.environ, LC_ALL="C", LD_PRELOAD=str(replay),
                ASAN_OPTIONS="verify_asan_link_order=0",
                REPLAY_SYSROOT=str(source_dir / "tests/hosts/real-kernel"))


def test_the_agent_compiles_and_prints_what_the_page_says(page, build_dir, source_dir, tmp_path):
    _, program = blocks(page, "c")
    (tmp_path / "classic.c").write_text(program)
    # The library of a sanitizer build takes its runtime from the program.
    sanitize = ["-fsanitize=address,undefined"] if "DISKSCOUT_SANITIZE:BOOL=ON" in (
        build_dir / "CMakeCache.txt").read_text() else []
    subprocess.run(["cc", "-std=c99", "-Wall", "-Wextra", "-Werror", *sanitize, f"-I{source_dir}/src",
                    str(tmp_path / "classic.c"), "-o", str(tmp_path / "classic")], check=True)
    done = subprocess.run([str(tmp_path / "classic"), str(build_dir / "diskscout.so")], check=False,
                          env=replayed(build_dir, source_dir, tmp_path), capture_output=True, text=True)
    assert done.stderr == ""
    assert done.returncode == 0
    assert done.stdout in blocks(page)
