"""docs/hacking.md names what is there, and every oddity that the code keeps."""

import re

import pytest

ROOTS = ("bench", "cmake", "docs", "fuzz", "replay", "scripts", "src", "tests", "tools")


@pytest.fixture(scope="module")
def page(source_dir):
    return (source_dir / "docs/hacking.md").read_text(encoding="utf-8")


def paths(text):
    """What stands in backquotes and begins with a folder of the tree; NAME stands for any name."""
    named = re.findall(rf"`((?:{'|'.join(ROOTS)})/[^`\s]*)`", text)
    return [path for path in named if "NAME" not in path]


def test_what_the_page_names_exists(page, source_dir):
    assert len(paths(page)) > 40
    assert [path for path in paths(page) if not (source_dir / path).exists()] == []
    links = re.findall(r"\]\(([^)#]+)", page)
    assert links
    assert [link for link in links if not (source_dir / "docs" / link).exists()] == []


def test_anchors_that_are_linked_are_headings(page):
    headings = re.findall(r"^## (.*)$", page, re.MULTILINE)
    anchors = {re.sub(r"[^\w -]", "", heading).lower().replace(" ", "-") for heading in headings}
    assert set(re.findall(r"\]\(#([^)]+)\)", page)) <= anchors


def test_every_kept_oddity_is_listed(page, source_dir):
    listed = set(paths(page[page.index("## Kept oddities"):]))
    marked = {str(file.relative_to(source_dir)) for file in (source_dir / "src").rglob("*")
              if file.suffix in (".h", ".cpp") and "compat:" in file.read_text(encoding="utf-8")}
    assert marked
    assert marked == listed



def test_what_is_kept_is_marked_in_one_way(source_dir):
    """With its consequence: that somebody meant it is no reason."""
    sources = [file for file in (source_dir / "src").rglob("*") if file.suffix in (".h", ".cpp")]
    assert sources
    assert [str(file) for file in sources if "deliberate" in file.read_text(encoding="utf-8").lower()] == []
