# SPDX-License-Identifier: Apache-2.0
"""The manual pages that the build makes of docs/: without warnings, complete, and found by whatis."""

import re
import shutil
import subprocess

import pytest
from raid_site import SOURCES

# A manual page and the page that it is made of.
PAGES = {"diskscout.8": "diskscout", "stcli.8": "stcli", "stcli-hwraid.8": "console", "raidsim.8": "raidsim",
         "diskscout-limit.8": "diskscout-limit", "hardraid.cfg.5": "hardraid.cfg",
         "diskscout.3": "classic", "diskscout_raid.3": "raid", "diskscout_block.3": "block"}
# Manual pages of others that ours name.
FOREIGN = {"lsblk.8", "timeout.1"}
# A terminal's; what a manual page shows of programs may be wider.
WIDTH = 80


@pytest.fixture(name="directory")
def man_directory(tool):
    return tool.program.parent / "man"


def path_of(directory, name):
    return directory / f"man{name[-1]}" / name


def source_of(page):
    return (SOURCES / "docs" / f"{page}.md").read_text(encoding="utf-8")


def without_samples(page):
    return re.sub(r"^(?:```.*?^```|    .*?)$", "", page, flags=re.MULTILINE | re.DOTALL)


def samples_of(page):
    fenced = re.findall(r"^```\w*\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)
    return [line for block in fenced for line in block.splitlines()] + re.findall(r"^    (\S.*)$", page, re.MULTILINE)


def output_of(*command):
    result = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False)
    assert result.stderr == ""
    return result.returncode, result.stdout


def text_of(path):
    """The page as a terminal shows it, without the pairs that make letters bold, and its words parted by a blank."""
    status, text = output_of("mandoc", "-T", "ascii", path)
    assert status == 0
    return re.sub(r"\s+", " ", re.sub(".\b", "", text))


def words(roff):
    """What stands in the source of a page, without fonts and escapes."""
    plain = re.sub(r"\\f[BIR]|\\&", "", roff)
    for escape, sign in ((r"\-", "-"), (r"\(dq", '"'), (r"\(aq", "'"), (r"\(ti", "~"), (r"\(ha", "^"), (r"\(rs", "\\"),
                         (r"\(cq", "'"), (r"\(ga", "`"), (r"\e", "\\")):
        plain = plain.replace(escape, sign)
    return " ".join(plain.split())


def test_there_is_a_page_of_each(directory):
    there = {str(path.relative_to(directory)) for path in directory.rglob("*") if path.is_file()}
    assert there == {f"man{name[-1]}/{name}" for name in PAGES}


@pytest.mark.parametrize("name", PAGES)
def test_no_warnings(directory, name):
    assert output_of("mandoc", "-T", "lint", "-W", "warning", path_of(directory, name)) == (0, "")
    assert output_of("groff", "-ww", "-t", "-k", "-man", f"-rLL={WIDTH - 2}n", "-T", "utf8", "-z",
                     path_of(directory, name)) == (0, "")


@pytest.mark.parametrize("name, page", PAGES.items())
def test_sections_and_literal_text_come_through(directory, name, page):
    source = source_of(page)
    manual = path_of(directory, name).read_text(encoding="utf-8")
    sections = re.findall(r"^## (.*)$", without_samples(source), re.MULTILINE)
    assert re.findall(r"^\.SH (.*)$", manual, re.MULTILINE) == [section.upper() for section in sections]
    parts = re.findall(r"^### (.*)$", source, re.MULTILINE)
    assert re.findall(r"^\.SS (.*)$", manual, re.MULTILINE) == [part.replace("`", "") for part in parts]
    text = text_of(path_of(directory, name))
    prose = re.sub(r"^\|.*$", "", without_samples(source), flags=re.MULTILINE)
    literal = [" ".join(part.split()) for part in re.findall(r"`([^`]+)`", prose)]
    assert literal
    # A terminal breaks a line behind a hyphen inside a word, and nowhere in an option.
    assert [part for part in literal if part not in text and "-" not in part[1:].lstrip("-")] == []
    # Signs that can be copied to a shell.
    assert re.search(r"(?<!\\)--", re.sub(r"^\.\\\".*$", "", manual, flags=re.MULTILINE)) is None


@pytest.mark.parametrize("name, page", PAGES.items())
def test_it_is_put_together_as_its_section_wants(name, page):
    sections = re.findall(r"^## (.*)$", without_samples(source_of(page)), re.MULTILINE)
    begins = ["Name", "Description"] if name.endswith(".5") else ["Name", "Synopsis", "Description"]
    assert sections[:len(begins)] == begins
    assert sections[-1] == "See also"


@pytest.mark.parametrize("name, page", PAGES.items())
def test_it_leads_to_pages_that_there_are(name, page):
    source = source_of(page)
    told = {f"{other}.{section}" for other, section in re.findall(r"\*\*([\w.-]+)\*\*\((\d)\)", source)}
    assert told - set(PAGES) <= FOREIGN
    assert told - {name}, "a reader who has come to the end knows no way on"


@pytest.mark.parametrize("name, page", PAGES.items())
def test_a_link_to_a_manual_page_names_it(name, page):
    """Of a link a manual page keeps the text alone."""
    source = source_of(page)
    linked = set(re.findall(r"\]\(([\w.-]+)\.md[)#]", source)) - {page}
    expected = {other for other, its_page in PAGES.items() if its_page in linked}
    told = {f"{other}.{section}" for other, section in re.findall(r"([\w.-]+)(?:\*\*)?\((\d)\)", source)}
    assert expected - told == set()


@pytest.mark.parametrize("name, page", PAGES.items())
def test_every_cell_of_a_table_comes_through(directory, name, page):
    # The first heading says no more than that it is first.
    page_without_it = re.sub(r"^\|[^|]*(\|.*\|\n\|-)", r"| - \1", without_samples(source_of(page)), flags=re.MULTILINE)
    rows = re.findall(r"^\| (.*) \|$", page_without_it, re.MULTILINE)
    manual = words(path_of(directory, name).read_text(encoding="utf-8"))
    cells = [re.sub(r"`|\*\*|\[([^]]*)\]\([^)]*\)", r"\1", cell.strip()) for row in rows for cell in row.split("|")]
    assert [cell for cell in cells if set(cell) - {"-"} and " ".join(cell.split()) not in manual] == []


@pytest.mark.parametrize("name, page", PAGES.items())
def test_all_but_samples_fits_a_terminal(directory, name, page):
    status, text = output_of("groff", "-t", "-k", "-man", f"-rLL={WIDTH - 2}n", "-T", "utf8", "-P-c", "-P-b", "-P-u",
                             path_of(directory, name))
    assert status == 0
    # No word is parted: somebody may copy it.
    assert re.findall(r"\S+\u2010$", text, re.MULTILINE) == []
    shown = {" ".join(line.split()) for line in samples_of(source_of(page))}
    wide = [line for line in text.splitlines() if len(line) > WIDTH and " ".join(line.split()) not in shown]
    assert wide == []


def test_what_the_readers_do_not_see_comes_through(directory):
    text = text_of(path_of(directory, "stcli.8"))
    assert text.count("Not seen:") == source_of("stcli").count("Not seen:") > 10
    assert "Level 10 is told as 1." in text
    assert "knows version 0.90 only" in text


@pytest.mark.parametrize("name, page", PAGES.items())
def test_samples_come_through(directory, name, page):
    status, text = output_of("mandoc", "-T", "ascii", "-O", "width=200", path_of(directory, name))
    assert status == 0
    # Tabs become blanks on the way.
    lines = {" ".join(line.split()) for line in re.sub(".\b", "", text).splitlines()}
    assert [line for line in samples_of(source_of(page)) if " ".join(line.split()) not in lines] == []


def test_whatis_finds_them(directory, tmp_path):
    root = tmp_path / "man"
    shutil.copytree(directory, root)
    assert output_of("/usr/sbin/makewhatis", root) == (0, "")
    for name in PAGES:
        title, section = name.rsplit(".", 1)
        status, text = output_of("mwhatis", "-M", root, title)
        assert status == 0
        assert [line for line in text.splitlines() if re.match(rf"{re.escape(title)}(, .*)?\({section}\) - ", line)]
