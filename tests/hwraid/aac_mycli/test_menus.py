# SPDX-License-Identifier: Apache-2.0
"""The main menu and the ways around in the sub-menus."""

import pytest
from screens import BYE, HELLO, MAIN, MANAGEMENT, SUB_MENUS, TASK, UNKNOWN, visit

every_sub_menu = pytest.mark.parametrize("sub_menu", SUB_MENUS)


def test_nothing_but_quit(site):
    assert site.run("0\n") == HELLO + MAIN + BYE


def test_no_input_at_all(site):
    assert site.run("") == HELLO + MAIN + BYE


def test_only_the_first_character_counts(site):
    task = SUB_MENUS[TASK][0]
    assert site.run("5, please\n0x\n0 bye\n") == HELLO + MAIN + task + MAIN + BYE


@pytest.mark.parametrize("line", ["", "7", "x", " 1", "-1", "clea", "Clear", " clear", "unclear", "\t"])
def test_unknown_at_the_main_prompt(site, line):
    assert site.run(f"{line}\n0\n") == HELLO + MAIN + UNKNOWN + BYE


@pytest.mark.parametrize("line", ["clear", "clear all", "clearance"])
def test_clear_at_the_main_prompt(site, line):
    assert site.run(f"{line}\n0\n") == HELLO + MAIN + MAIN + BYE
    assert site.times_cleared() == 1


@every_sub_menu
@pytest.mark.parametrize("line", ["", "0", "0 and more"])
def test_way_back(site, sub_menu, line):
    assert site.run(f"{sub_menu}\n{line}\n0\n") == visit(sub_menu)


@every_sub_menu
@pytest.mark.parametrize("line", ["clear", "clear it"])
def test_clear_in_a_sub_menu(site, sub_menu, line):
    assert site.run(f"{sub_menu}\n{line}\n0\n0\n") == visit(sub_menu, "")
    assert site.times_cleared() == 1


@every_sub_menu
def test_unknown_in_a_sub_menu(site, sub_menu):
    lines = ["c", "x", "A", " 1", "-1", "clea", " clear", "unclear"]
    assert site.run("\n".join([sub_menu, *lines, "0", "0\n"])) == visit(
        sub_menu, *[SUB_MENUS[sub_menu][1]] * len(lines)
    )
    assert site.times_cleared() == 0


def test_main_menu_again_after_each_sub_menu(site):
    transcript = site.run("".join(f"{sub_menu}\n0\n" for sub_menu in SUB_MENUS) + "0\n")
    assert transcript == HELLO + MAIN + "".join(menu + MAIN for menu, unknown in SUB_MENUS.values()) + BYE


def test_clear_that_does_not_exist(site):
    """What the shell says about it may stand between the prompts; the console goes on."""
    (site.programs / "clear").write_text("#!/bin/sh\necho no such screen >&2\nexit 127\n")
    menu = SUB_MENUS[MANAGEMENT][0]
    assert site.run("6\nclear\n0\nclear\n0\n") == (
        HELLO + MAIN + menu + "no such screen\n" + menu + MAIN + "no such screen\n" + MAIN + BYE
    )
