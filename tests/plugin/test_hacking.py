# SPDX-License-Identifier: Apache-2.0
"""docs/hacking.md names what is there, and every oddity that the code keeps."""

import collections
import re

import pytest
from pages import anchors_that_lack, pages_that_lack

ROOTS = ("bench", "block", "cmake", "docs", "fuzz", "replay", "scripts", "src", "tests", "tools")


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
    assert pages_that_lack(page, source_dir / "docs") == []


def test_anchors_that_are_linked_are_headings(page):
    assert anchors_that_lack(page) == set()


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


# ---- the floors ----

LOCAL = "src/hdd/sal/src"
# Each room and what it may include beside itself; of two that fit a file the longer one is meant.
BELOW = {
    "src/base": set(),
    f"{LOCAL}/0": {"src/base"},
    f"{LOCAL}/linux": {"src/base", f"{LOCAL}/0"},
    "src/hdd/exe": {f"{LOCAL}/0", f"{LOCAL}/linux"},
    "src/display": {"classic", f"{LOCAL}/0"},
    "src/hdd": {"classic", "src/base", f"{LOCAL}/0", f"{LOCAL}/linux", "src/hdd/exe", "src/display"},
    "src/hwraid/aacraid": {"classic", "src/base"},
    "src/hwraid/aac_mycli": {"classic", "src/hwraid/aacraid"},
    "src": {"classic", "request", "src/hdd", "src/hwraid/aacraid", "src/hwraid/aac_mycli"},
    "block": {"request", "today"},
    "replay": set(),
    "samples": {"classic", "request", "today"},
    "tools/common": {"classic", "request", "today"},
    "tools/diskscout/show": {"tools/common"},
    "tools/diskscout/kinds": {"classic", "request", "today", "tools/common", "tools/diskscout/show"},
    "tools/diskscout/reasons": {"classic", "today", "tools/common", "tools/diskscout/show", "tools/diskscout/kinds"},
    "tools/diskscout/doctor": {"classic", "today", "tools/common", "tools/diskscout/show", "tools/diskscout/kinds",
                               "tools/diskscout/reasons"},
    "tools/diskscout": {"today", "tools/common", "tools/diskscout/show", "tools/diskscout/kinds", "tools/diskscout/reasons",
                        "tools/diskscout/doctor"},
    "tools/stcli": {"classic", "request", "tools/common"},
    "tools/filter": {"tools/common"},
    "tools/raidsim": set(),
    # What is exported stands in the rooms that export it, and is no part of them.
    "src/define_command.h": set(),
    "src/diskscout.h": {"request"},
    "src/diskscout_raid.h": {"request", "classic"},
    "block/diskscout_block.h": {"request"},
}
EXPORTED = {"src/define_command.h": "request", "src/diskscout.h": "classic", "src/diskscout_raid.h": "classic",
            "block/diskscout_block.h": "today"}
# Where the build looks for headers, behind the folder of the file that includes.
INCLUDE_FOLDERS = {"block": ("block", "src"), "tools": ("tools/diskscout", *(f"tools/diskscout/{room}" for room in ("doctor", "kinds", "reasons", "show", "tree")),
                           "tools/common", "block", "src"), "src": ("src",), "replay": (".",), "samples": ("block", "src")}


def room_of(path):
    fitting = [room for room in BELOW if path == room or path.startswith((room + "/", room + "."))]
    return max(fitting, key=len)


def included(source_dir, room):
    """(file, header) for every file of ours that a file below the room includes."""
    for file in sorted((source_dir / room).rglob("*")):
        if file.suffix not in (".c", ".cpp", ".h"):
            continue
        folders = [file.parent, *(source_dir / folder for folder in INCLUDE_FOLDERS[room])]
        for name in re.findall(r'^#include "([^"]+)"', file.read_text(encoding="utf-8"), re.MULTILINE):
            found = next((folder / name for folder in folders if (folder / name).exists()), None)
            assert found, f"{file} includes {name}: whose is that?"
            yield tuple(str(path.resolve().relative_to(source_dir)) for path in (file, found))


@pytest.mark.parametrize("top", INCLUDE_FOLDERS)
def test_a_room_includes_only_what_is_below_it(source_dir, top):
    seen = list(included(source_dir, top))
    assert seen
    upward = []
    for file, header in seen:
        room, other = room_of(file), EXPORTED.get(header) or room_of(header)
        if other != room and EXPORTED.get(file) != other and other not in BELOW[room]:
            upward.append((file, header))
    assert upward == []


def test_no_two_modules_of_block_include_each_other(source_dir):
    """Also not by way of others. A header and its source are one module."""
    below = collections.defaultdict(set)
    for file, header in included(source_dir, "block"):
        below[re.sub(r"\.\w+$", "", file)].add(re.sub(r"\.\w+$", "", header))

    def reached(module, path=()):
        assert module not in path, " > ".join((*path, module))
        for other in below[module] - {module}:
            reached(other, (*path, module))

    for module in list(below):
        reached(module)
