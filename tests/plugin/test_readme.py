# SPDX-License-Identifier: Apache-2.0
"""What README.md shows is what happens: its sessions print what it says."""

import re

import pytest
from pages import anchors_that_lack, pages_that_lack
from sessions import Reader, blocks, sessions, steady

# Columns of a terminal that shows the samples unbroken.
WIDEST = 110


@pytest.fixture(scope="module")
def readme(source_dir):
    return (source_dir / "README.md").read_text(encoding="utf-8")


def test_the_sessions_are_what_happens(readme, build_dir, source_dir, tmp_path):
    reader = Reader(build_dir, source_dir, tmp_path)
    shown = sessions(readme, "build/run/diskscout ") + sessions(readme)
    assert len(shown) == 3
    assert [steady(reader.session(session)) for session in shown] == [steady(session) for session in shown]


def test_the_samples_fit_a_terminal(readme):
    lines = [line for block in blocks(readme) for line in block.splitlines()]
    assert lines
    assert [line for line in lines if len(line) > WIDEST] == []


def test_the_first_command_is_what_the_script_shows_first(readme, source_dir):
    script = (source_dir / "scripts/run").read_text(encoding="utf-8")
    first = re.search(r"^show (.*?)(?: \|\|.*)?$", script, re.MULTILINE).group(1)
    assert sessions(readme, "build/")[0].startswith(f"$ {first}\n")


def test_the_pages_that_are_linked_exist(readme, source_dir):
    assert pages_that_lack(readme, source_dir) == []


def test_anchors_that_are_linked_are_headings(readme):
    assert anchors_that_lack(readme) == set()
