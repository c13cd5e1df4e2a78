# SPDX-License-Identifier: Apache-2.0
"""What docs/block.md says is what the header declares, and the agent that it names does what it shows."""

import os
import pathlib
import re
import subprocess
import sys

import pytest
from pages import (
    anchors_that_lack, asserted_layout, declarations, exported, names, pages_that_lack, record_tables, synopsis, table,
    told_layout)
from sessions import blocks

RECORDS = 8


@pytest.fixture(scope="module")
def page(source_dir):
    return (source_dir / "docs/block.md").read_text(encoding="utf-8")


@pytest.fixture(scope="module")
def header(source_dir):
    return declarations(source_dir / "block/diskscout_block.h")


@pytest.fixture(scope="module")
def layout(source_dir):
    return asserted_layout(source_dir / "block/layout.h")


def words(cell):
    return re.findall(r'"([^"]+)"', cell)


def first_words(page, heading):
    return {word for row in table(page, heading) for word in words(row[0])}


# ---- the header ----


def test_every_field_of_the_header_has_its_offset_asserted(header, layout):
    fields = {}
    for body, record in re.findall(r"^typedef struct \w+ \{\n(.*?)^\} (\w+);", header, re.MULTILINE | re.DOTALL):
        fields[record] = [name for names in re.findall(r"[\s*]((?:\w+, )*\w+);", body) for name in names.split(", ")]
    assert len(fields) == RECORDS
    assert {record: list(offsets) for record, (_, offsets) in layout.items()} == fields


def test_every_record_is_told_with_its_offsets(page, layout):
    told = told_layout(page)
    assert len(told) == RECORDS
    assert told == layout


def test_every_record_tells_its_size(page):
    told = {record: rows[0][2].split(";")[0] for record, _, rows in record_tables(page)}
    assert told == {record: str(size) for record, (size, _) in told_layout(page).items()}


def test_every_query_is_told(page, header):
    codes = dict(re.findall(r"\b(CMD_\w+) = (\d+)", header))
    assert len(codes) == 10
    told = {}
    for query, release, _ in table(page, "| Query | Release | Records |"):
        code, name = re.fullmatch(r"(\d+) `(\w+)`", query).groups()
        told[name] = code
        told[name.replace("GET", "FREE")] = release
    assert told == codes


def test_the_synopsis_is_what_the_header_declares(page, source_dir):
    assert synopsis(page) == ({"diskscout_block.h"}, exported(source_dir / "block/diskscout_block.h"))
    assert len(exported(source_dir / "block/diskscout_block.h")) == 3


# ---- the library's own words ----


def told_by(source_dir, source, declaration, column):
    """The words in one column of a table in a source."""
    text = (source_dir / "block" / source).read_text(encoding="utf-8")
    body = text[text.index(declaration):].split("};", 1)[0]
    return {words(cells[column])[0] for cells in (row.split(",") for row in re.findall(r"\{(.*?)\}", body, re.DOTALL))
            if len(cells) > column and words(cells[column])}


def test_every_kind_is_told(page, source_dir):
    known = told_by(source_dir, "uevent.cpp", "} KINDS[] = {", 1)
    assert len(known) > 6
    assert first_words(page, "| Kind | Means |") == known | {"partition", "path"}


def test_every_transport_is_told(page, source_dir):
    known = told_by(source_dir, "devpath.cpp", "} TRANSPORTS[] = {", 2)
    assert len(known) > 8
    assert first_words(page, "| Transport | Means |") == known | {"ata", "scsi"}


def test_every_kind_of_mapping_is_told(page, source_dir):
    known = told_by(source_dir, "mapper.cpp", "} KINDS[] = {", 1)
    assert len(known) == 3
    assert first_words(page, "| Kind of mapping | Means |") == known | {"partition", "unknown"}


def test_every_source_of_an_identity_is_told(page, source_dir):
    text = (source_dir / "block/identity.cpp").read_text(encoding="utf-8")
    known = set(re.findall(r'\btell\(facts\..*?"(\w+)"\);', text, re.DOTALL))
    assert len(known) == 4
    assert first_words(page, "| Source | Means |") == known | {"not asked"}


def test_the_pages_that_are_linked_exist(page, source_dir):
    assert pages_that_lack(page, source_dir / "docs") == []


def test_anchors_that_are_linked_are_headings(page):
    assert anchors_that_lack(page) == set()


# ---- the agent ----


@pytest.fixture(scope="module")
def agent(build_dir, source_dir, tmp_path_factory):
    """samples/disks.c as the page says that it is compiled."""
    folder = tmp_path_factory.mktemp("agent")
    # The library of a sanitizer build takes its runtime from the program.
    sanitize = ["-fsanitize=address,undefined"] if "DISKSCOUT_SANITIZE:BOOL=ON" in (
        build_dir / "CMakeCache.txt").read_text() else []
    subprocess.run(["cc", "-std=c99", "-Wall", "-Wextra", "-Werror", *sanitize, f"-I{source_dir}/block",
                    f"-I{source_dir}/src", str(source_dir / "samples/disks.c"), "-o", str(folder / "disks")],
                   check=True)

    def run(host=None):
        environment = dict(os.environ, LC_ALL="C")
        if host:
            # The loader splits LD_PRELOAD at blanks and colons.
            replay = folder / "replay.so"
            if not replay.exists():
                replay.symlink_to(build_dir / "diskscout-replay.so")
            environment.update(LD_PRELOAD=str(replay), ASAN_OPTIONS="verify_asan_link_order=0",
                               REPLAY_SYSROOT=str(host))
        first, second = (subprocess.run([str(program), str(build_dir / "diskscout-block.so")], env=environment,
                                        check=False, capture_output=True, text=True, timeout=60)
                         for program in (folder / "disks", build_dir / "diskscout-disks"))
        # What the build makes of it is no other program.
        assert (first.returncode, first.stdout, first.stderr) == (second.returncode, second.stdout, second.stderr)
        return second

    return run


def test_the_agent_has_forty_lines_at_most(source_dir):
    assert len((source_dir / "samples/disks.c").read_text(encoding="utf-8").splitlines()) <= 40


def captured(source_dir, name, into):
    """A captured host that is stored in short, as replay can show it."""
    subprocess.run([sys.executable, "-B", str(source_dir / "tests/block/unfold.py"), str(source_dir / "tests/block/hosts"),
                    str(into)], check=True)
    return into / name


def test_the_agent_prints_what_the_page_says(page, agent, source_dir, tmp_path):
    (session,) = blocks(page, "console")
    shown = re.sub(r"^\$ .*\n", "", session, flags=re.MULTILINE)
    done = agent(captured(source_dir, "desktop", tmp_path))
    assert done.stderr == ""
    assert done.returncode == 0
    assert done.stdout == shown


def test_without_the_library_the_agent_says_why(build_dir, tmp_path):
    done = subprocess.run([str(build_dir / "diskscout-disks"), str(tmp_path / "nothing.so")], check=False,
                          capture_output=True, text=True, timeout=60)
    assert done.returncode == 1
    assert "nothing.so" in done.stderr
    assert done.stdout == ""


def test_on_a_host_without_sysfs_the_agent_says_why(agent, source_dir):
    done = agent(source_dir / "tests/hosts/nothing")
    assert done.stdout == ""
    assert done.stderr == "the devices cannot be listed: No such file or directory\n"
    assert done.returncode == 1


def test_the_agent_prints_the_disks_of_this_machine(agent):
    """Compared with what the kernel lists: whole devices by the names of disks."""
    sysfs = pathlib.Path("/sys/block")
    if not sysfs.exists():
        pytest.skip("there is no sysfs here")
    done = agent()
    assert done.stderr == ""
    assert done.returncode == 0
    told = dict(re.findall(r"^/dev/(\S+): (\d+) bytes, model .*, serial number .*, \S+$", done.stdout, re.MULTILINE))
    assert len(told) == len(done.stdout.splitlines())
    there = {path.name: str(512 * int((path / "size").read_text())) for path in sysfs.iterdir()
             if re.fullmatch(r"(sd|vd|hd|xvd)[a-z]+|nvme\d+n\d+|mmcblk\d+", path.name)}
    assert told == there
