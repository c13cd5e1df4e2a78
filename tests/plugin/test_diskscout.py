# SPDX-License-Identifier: Apache-2.0
"""docs/diskscout.md says what the program does: its options, the columns of its tables, its samples."""

import re
import subprocess

import pytest
from pages import names, pages_that_lack
from sessions import Reader, sessions, steady


@pytest.fixture(scope="module")
def page(source_dir):
    return (source_dir / "docs/diskscout.md").read_text(encoding="utf-8")


@pytest.fixture(scope="module")
def reader(build_dir, source_dir, tmp_path_factory):
    return Reader(build_dir, source_dir, tmp_path_factory.mktemp("reader"))


def said(build_dir, *words):
    done = subprocess.run([str(build_dir / "diskscout"), *words], check=False, capture_output=True, text=True, timeout=60)
    return done.stdout + done.stderr


def told_columns(page):
    """Those that a table has by itself, of every kind."""
    rows = re.findall(r"^- `(\w+)`: [^`]*? Columns: ([^.]*)\.$", page, re.MULTILINE | re.DOTALL)
    return {kind: names(columns) for kind, columns in rows}


def test_the_sessions_are_what_happens(page, reader):
    shown = sessions(page)
    assert len(shown) == 7
    # A manual page has no lines to draw a tree with.
    assert [steady(reader.session(session, "C")) for session in shown] == [steady(session) for session in shown]


def test_every_kind_is_told(page, build_dir):
    known = re.search(r"what to show, of (.*?);", said(build_dir, "list", "--help")).group(1).split(", ")
    assert list(told_columns(page)) == known


def test_columns_are_those_of_the_tables(page, build_dir):
    """One that a table has already cannot be named behind a "+"; the unknown one behind it keeps the plug-ins out."""
    for kind, columns in told_columns(page).items():
        known = re.search(r"known are (.*)$", said(build_dir, "list", kind, "--sort", "?")).group(1).split(", ")
        own = [column for column in known if "named twice" in said(build_dir, "list", kind, "-o", f"+{column},?")]
        assert own == sorted(columns, key=known.index), kind


def test_every_option_is_told(page, build_dir):
    listed = page[page.index("## Options"):page.index("## Output")]
    told = set(re.findall(r"(?<![\w-])(--?[a-z][a-z-]*)", " ".join(re.findall(r"^- (.*?): ", listed, re.MULTILINE))))
    known = set(re.findall(r"(?<![\w-])(--?[a-z][a-z-]*)",
                           " ".join(re.findall(r"^  (-\S+)", said(build_dir, "--help"), re.MULTILINE))))
    assert len(known) > 15
    assert told == known


def test_the_pages_that_are_linked_exist(page, source_dir):
    assert pages_that_lack(page, source_dir / "docs") == []
