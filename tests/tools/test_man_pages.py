"""The manual pages that the build makes of docs/: without warnings, complete, and found by whatis."""

import re
import shutil
import subprocess

import pytest
from raid_site import SOURCES

# A manual page and the page that it is made of.
PAGES = {"diskscout": "diskscout", "stcli": "stcli", "stcli-hwraid": "console"}


@pytest.fixture(name="directory")
def man_directory(tool):
    return tool.program.parent / "man" / "man8"


def output_of(*command):
    result = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False)
    assert result.stderr == ""
    return result.returncode, result.stdout


def text_of(path):
    """The page as a terminal shows it, without the pairs that make letters bold, and its words parted by a blank."""
    status, text = output_of("mandoc", "-T", "ascii", path)
    assert status == 0
    return re.sub(r"\s+", " ", re.sub(".\b", "", text))


def test_there_is_a_page_of_each(directory):
    assert sorted(path.name for path in directory.iterdir()) == sorted(f"{name}.8" for name in PAGES)


@pytest.mark.parametrize("name", PAGES)
def test_no_warnings(directory, name):
    assert output_of("mandoc", "-T", "lint", "-W", "warning", directory / f"{name}.8") == (0, "")


@pytest.mark.parametrize("name, page", PAGES.items())
def test_sections_and_literal_text_come_through(directory, name, page):
    source = (SOURCES / "docs" / f"{page}.md").read_text(encoding="utf-8")
    manual = (directory / f"{name}.8").read_text(encoding="utf-8")
    sections = re.findall(r"^## (.*)$", source, re.MULTILINE)
    assert re.findall(r"^\.SH (.*)$", manual, re.MULTILINE) == [section.upper() for section in sections]
    parts = re.findall(r"^### (.*)$", source, re.MULTILINE)
    assert re.findall(r"^\.SS (.*)$", manual, re.MULTILINE) == parts
    text = text_of(directory / f"{name}.8")
    prose = re.sub(r"^```.*?^```$", "", source, flags=re.MULTILINE | re.DOTALL)
    literal = [" ".join(part.split()) for part in re.findall(r"`([^`]+)`", prose)]
    assert literal
    # A terminal breaks a line behind a hyphen inside a word, and nowhere in an option.
    assert [part for part in literal if part not in text and "-" not in part[1:].lstrip("-")] == []
    # Signs that can be copied to a shell.
    assert re.search(r"(?<!\\)--", re.sub(r"^\.\\\".*$", "", manual, flags=re.MULTILINE)) is None


def test_what_the_readers_do_not_see_comes_through(directory):
    source = (SOURCES / "docs" / "stcli.md").read_text(encoding="utf-8")
    text = text_of(directory / "stcli.8")
    assert text.count("Not seen:") == source.count("Not seen:") > 10
    assert "Level 10 is told as 1." in text
    assert "knows version 0.90 only" in text


@pytest.mark.parametrize("name, page", PAGES.items())
def test_samples_come_through(directory, name, page):
    source = (SOURCES / "docs" / f"{page}.md").read_text(encoding="utf-8")
    status, text = output_of("mandoc", "-T", "ascii", "-O", "width=200", directory / f"{name}.8")
    assert status == 0
    # Tabs become blanks on the way.
    lines = {" ".join(line.split()) for line in re.sub(".\b", "", text).splitlines()}
    for block in re.findall(r"^```\w*\n(.*?)^```$", source, re.MULTILINE | re.DOTALL):
        assert [line for line in block.splitlines() if " ".join(line.split()) not in lines] == []


def test_whatis_finds_them(directory, tmp_path):
    root = tmp_path / "man"
    shutil.copytree(directory, root / "man8")
    assert output_of("/usr/sbin/makewhatis", root) == (0, "")
    for name in PAGES:
        status, text = output_of("mwhatis", "-M", root, name)
        assert status == 0
        assert [line for line in text.splitlines() if line.startswith(f"{name}(8) - ")]
