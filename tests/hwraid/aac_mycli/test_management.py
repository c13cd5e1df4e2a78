# SPDX-License-Identifier: Apache-2.0
"""The management menu keeps one list a kind between choices."""

import pytest
from console_site import COPY, PLAIN
from screens import BYE, CHANNEL, DISK_ID, HELLO, LUN, MAIN, MANAGEMENT, SUB_MENUS, numbers

MENU, UNKNOWN = SUB_MENUS[MANAGEMENT]
# Query, the answers it asks for, release, name and count on the site's controllers.
KINDS = [
    ("1", "", "6", "controller", 3),
    ("2", "", "7", "disk", 9),
    ("3", "1\n0\n0\n", "8", "space", 2),
    ("4", "", "9", "partition", 10),
    ("5", "", "a", "raid", 6),
]
every_kind = pytest.mark.parametrize("query, answers, release, name, count", KINDS)


def results(transcript):
    """The last line of each choice, up to the menu that follows."""
    start, *screens, end = transcript.split(MENU)
    assert start == HELLO + MAIN
    return [screen.rstrip("\n").rpartition("\n")[2] for screen in screens], end


def got(name, count):
    return f"get {name} return:0, number = {count}"


def cleared(name):
    return f"clear {name} return:0"


@every_kind
def test_query_twice_then_clear_twice(site, query, answers, release, name, count):
    keys = "6\n" + f"{query}\n{answers}" * 2 + f"{release}\n" * 2 + "0\n0\n"
    lines, end = results(site.run(keys))
    assert lines == [got(name, count)] * 2 + [cleared(name)] * 2
    assert end == MAIN + BYE


@every_kind
def test_clear_without_a_list(site, query, answers, release, name, count):
    site.record()
    site.scripts.touch()
    assert site.run(f"6\n{release}\n0\n0\n") == HELLO + MAIN + MENU + cleared(name) + "\n" + MENU + MAIN + BYE
    assert site.commands() == []


@every_kind
def test_list_outlives_the_menu(site, query, answers, release, name, count):
    transcript = site.run(f"6\n{query}\n{answers}0\n6\n{release}\n0\n0\n")
    assert transcript.endswith(
        got(name, count) + "\n" + MENU + MAIN + MENU + cleared(name) + "\n" + MENU + MAIN + BYE
    )


@every_kind
def test_failure_leaves_no_list(site, query, answers, release, name, count):
    """The tool goes away behind the list; what was kept is released by the query that fails."""
    gone = site.add_program("clear", f'#!/bin/sh\nrm "{site.programs}/tool"\n')
    assert gone.exists()
    (site.programs / "tool").symlink_to(site.simulator)
    site.configure(site.programs / "tool", COPY)
    keys = f"6\n{query}\n{answers}clear\n{query}\n{answers}{release}\n0\n0\n"
    lines, end = results(site.run(keys, PLAIN))
    assert lines[0] == got(name, count)
    assert lines[2:] == ["Return a less zero value:-1", cleared(name)]
    assert end == MAIN + BYE


def test_lists_of_all_kinds_at_once(site):
    """Quitting with all of them kept leaves nothing behind, either."""
    lines, end = results(site.run("6\n" + "".join(query + "\n" + answers for query, answers, *_ in KINDS)))
    assert lines == [got(name, count) for *_, name, count in KINDS]
    assert end == BYE


def test_clear_of_one_kind_keeps_the_others(site):
    keys = "6\n1\n2\n6\n6\n7\n7\n0\n0\n"
    lines, end = results(site.run(keys))
    assert lines == [got("controller", 3), got("disk", 9)] + [cleared("controller")] * 2 + [cleared("disk")] * 2
    assert end == MAIN + BYE


@pytest.mark.parametrize("choice", ["A", "b", "c", "-1", " 1", "x", "clea", "get"])
def test_unknown_choice(site, choice):
    assert site.run(f"6\n{choice}\n0\n0\n") == HELLO + MAIN + MENU + UNKNOWN + MENU + MAIN + BYE


def test_disk_of_the_free_space(site):
    """Address and controller travel in one piece of data."""
    site.record()
    transcript = site.run("6\n3\n1\n10\n2\n0\n0\n")
    assert MENU + numbers((CHANNEL, 1), (DISK_ID, 10), (LUN, 2)) + "get space return:0, number = 0\n" in transcript
    assert site.commands() == ["disk show space (1,10,2)"]
