# SPDX-License-Identifier: Apache-2.0
"""What docs/python.md shows is what happens, and its tables are the package's."""

import inspect
import os
import re
import subprocess

import pytest
from field_tables import RECORDS, renewed

import diskscout
from diskscout import fields

SIDES = (diskscout.Plugin, diskscout.Raid, diskscout.BlockPlugin)


@pytest.fixture(scope="module")
def page(source_dir):
    return (source_dir / "docs/python.md").read_text(encoding="utf-8")


def blocks(page, language):
    return [text for name, text in re.findall(r"^```(\w*)\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)
            if name == language]


def test_the_tables_tell_every_field_of_every_record(page):
    assert set(RECORDS) == set(fields.RECORDS.values()) - {fields.RECORDS["block_text"]}
    assert renewed(page) == page, "tests/python/field_tables.py docs/python.md renews them"


def test_every_list_is_told_with_its_records(page):
    rows = page[page.index("| List | Records | Tells |"):page.index("`Raid` also changes things")]
    told = {}
    for calls, record in re.findall(r"^\| (.*?) \| `(\w+)` \|", rows, re.MULTILINE):
        told.update({call: record for call in re.findall(r"`(\w+\.\w+)\(", calls)})
    lists = {}
    for side in SIDES:
        for name, method in inspect.getmembers(side, inspect.isfunction):
            kind = re.fullmatch(r"RecordList\[(\w+)\]", str(inspect.signature(method).return_annotation))
            if kind and not name.startswith(("_", "parse_")):
                lists[f"{side.__name__}.{name}"] = kind.group(1)
    assert len(lists) == 20
    assert told == lists


def test_every_method_is_told(page):
    for side in SIDES:
        for name in vars(side):
            if not name.startswith("_") and name not in ("NEEDS", "live_records"):
                assert re.search(rf"`(\w+\.)?{name}\b", page), f"{side.__name__}.{name}"


def test_every_exception_is_told(page):
    errors = {name for name, value in vars(diskscout).items()
              if inspect.isclass(value) and issubclass(value, Exception)}
    assert errors == set(re.findall(r"`(\w+Error)`", page)) - {"ValueError", "TypeError"}


def test_the_example_prints_what_the_page_says(page, interpreter, build_dir, source_dir, tmp_path):
    (program,) = blocks(page, "python")
    (shown,) = blocks(page, "")
    # As it is installed: the page's reader says no directory.
    (tmp_path / "lib/diskscout").mkdir(parents=True)
    (tmp_path / "lib/diskscout/diskscout-block.so").symlink_to(build_dir / "diskscout-block.so")
    package = tmp_path / "lib/python3/dist-packages/diskscout"
    package.mkdir(parents=True)
    for file in (source_dir / "python/diskscout").glob("*.py"):
        (package / file.name).write_bytes(file.read_bytes())
    done = interpreter("-c", program, host=build_dir / "tests/block/hosts/notebook", PYTHONPATH=str(package.parent))
    assert (done.stdout, done.stderr, done.returncode) == (shown, "", 0)


def test_the_session_is_what_happens(page, build_dir, source_dir, tmp_path, preloaded):
    (shown,) = blocks(page, "console")
    (command,) = re.findall(r"^\$ (.*)$", shown, re.MULTILINE)
    for room in ("samples", "python"):
        (tmp_path / room).symlink_to(source_dir / room)
    (tmp_path / "build").mkdir()
    (tmp_path / "build/release").symlink_to(build_dir)
    environment = {**os.environ, "LD_PRELOAD": preloaded, "PYTHONDONTWRITEBYTECODE": "1",
                   "REPLAY_SYSROOT": str(source_dir / "tests/hosts/real-kernel")}
    done = subprocess.run(["/bin/sh", "-c", command], cwd=tmp_path, env=environment, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, timeout=60, check=False)
    told = shown.splitlines()[1:]
    # Standard output is written when the program ends.
    assert sorted(done.stdout.splitlines()) == sorted(told)
    assert done.returncode == 1


def test_the_pages_that_are_linked_exist(page, source_dir):
    links = re.findall(r"\]\(([^)#]+)", page)
    assert links and [link for link in links if not (source_dir / "docs" / link).exists()] == []


def test_anchors_that_are_linked_are_headings(page):
    headings = re.findall(r"^##+ (.*)$", page, re.MULTILINE)
    anchors = {re.sub(r"[^\w -]", "", heading).lower().replace(" ", "-") for heading in headings}
    assert set(re.findall(r"\]\(#([^)]+)\)", page)) <= anchors
