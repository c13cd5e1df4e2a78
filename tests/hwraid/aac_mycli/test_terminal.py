# SPDX-License-Identifier: Apache-2.0
"""Somebody at a terminal: mistypes, corrects, reads the screen, finds what is broken and puts a spare disk in."""

import re

from screens import BYE, CHANNEL, CONTAINER_ID, DISK_ID, LUN, MAIN, REPEAT, SUB_MENUS
from terminal import Terminal

DISK_MENU = SUB_MENUS["2"][0]
CONTAINER_MENU = SUB_MENUS["3"][0]
TASK_MENU = SUB_MENUS["5"][0]


def records(screen, first):
    """The records of a list by their first line's number or address, each as its lines' names and values."""
    found = {}
    for part in screen.split(first)[1:]:
        key, *lines = part.splitlines()
        pairs = [line.partition(":") for line in lines]
        found[key.strip()] = {name.strip(): value.strip() for name, _, value in pairs}
    return found


def ask_address(terminal, address):
    for prompt, number in zip((CHANNEL, DISK_ID, LUN), address):
        terminal.answers(prompt, str(number))
        terminal.sees("\n")


def break_disk(site):
    """Disk 0:01:0 is offline, has grown many defects and does not answer; mirror 0 has lost its half."""
    text = site.state.read_text()
    sound = "usage=Initialized shared=no rate=320 primary_defects=12 grown_defects=1 bad_status=no"
    broken = "usage=Offline shared=no rate=320 primary_defects=12 grown_defects=731 bad_status=yes"
    half = "piece at=0:01:0 offset_kb=64 size_kb=1048576 rebuild="
    assert text.count(sound) == text.count(half + "no") == 1
    site.state.write_text(text.replace(sound, broken).replace(half + "no", half + "yes"))
    site.start = site.facts()


def test_failed_disk_is_found_and_gets_a_spare(site):
    break_disk(site)
    with Terminal(site) as terminal:
        # Which disk is it?
        terminal.answers(MAIN, "2")
        terminal.answers(DISK_MENU, "1")
        disks = records(terminal.reads_until(DISK_MENU), "C_ID_L      :")
        assert len(disks) == 9
        offline = [address for address, disk in disks.items() if disk["Usage"] == "4 (Offline)"]
        assert offline == ["(0 1 0)"]
        # It does not tell its defects any more, its neighbour does.
        failed = [int(number) for number in re.findall(r"\d+", offline[0])]
        terminal.types("2")
        ask_address(terminal, failed)
        terminal.sees("disk show defect return :-50, primary = -1 grown = -1\n")
        terminal.answers(DISK_MENU, "2")
        ask_address(terminal, (0, 0, 0))
        terminal.sees("disk show defect return :0, primary = 3 grown = 0\n")
        terminal.answers(DISK_MENU, "0")

        # Which containers are in danger? Those without a spare.
        terminal.answers(MAIN, "3")
        terminal.answers(CONTAINER_MENU, "1")
        screen = terminal.reads_until(CONTAINER_MENU)
        member = "Channel: %d ID:%d Lun:%d" % tuple(failed)
        parts = [part for part in screen.split("-" * 30) if member in part and "HotSpare    :none" in part]
        danger = [re.search(r"ContainerID: (\d+)", part).group(1) for part in parts]
        assert danger == ["0", "24", "25"]

        # A disk that is initialised and large enough; the channel is mistyped, once refused, once corrected.
        terminal.types("3")
        terminal.answers(CHANNEL, "12")
        terminal.sees("\n")
        terminal.waits(REPEAT)
        terminal.corrects("9", "0")
        terminal.sees("\n")
        terminal.answers(DISK_ID, "3")
        terminal.sees("\n")
        terminal.answers(LUN, "0")
        terminal.sees("\n")
        terminal.answers(CONTAINER_ID, danger[0])
        terminal.sees("\ncontainer set failover return:0\n")
        terminal.answers(CONTAINER_MENU, "4")
        terminal.answers(CONTAINER_ID, "0")
        terminal.sees("\nHotSpare    :(0 3 0)\ncontainer show failover return:768\n")
        terminal.answers(CONTAINER_MENU, "clear")
        terminal.answers(CONTAINER_MENU, "")

        # What is the controller doing about it?
        terminal.answers(MAIN, "5")
        terminal.answers(TASK_MENU, "1")
        tasks = records(terminal.reads_until(TASK_MENU), "TaskId  : ")
        assert {number: task["Function"] for number, task in tasks.items()} == {"105": "5", "106": "3"}
        terminal.types("0")
        terminal.answers(MAIN, "0")
        terminal.ends(BYE)
    assert site.changes() == ["+spare at=0:03:0"]
    assert site.times_cleared() == 1


def test_line_that_is_taken_back(site):
    """The terminal erases a whole line before the console sees any of it."""
    with Terminal(site) as terminal:
        terminal.waits(MAIN)
        for key in "32":
            terminal.console.send(key)
            terminal.sees(key)
        # Ctrl-U
        terminal.takes_back("\x15", 2)
        terminal.types("0")
        terminal.ends(BYE)


def test_screen_is_cleared(site):
    """The real command, on a terminal that can do it; the menus come again."""
    site.add_program("clear", "#!/bin/sh\nprintf '\\033[H\\033[2J'\n")
    with Terminal(site) as terminal:
        terminal.answers(MAIN, "clear")
        terminal.sees("\x1b[H\x1b[2J")
        terminal.answers(MAIN, "5")
        terminal.answers(TASK_MENU, "clear")
        terminal.sees("\x1b[H\x1b[2J")
        terminal.answers(TASK_MENU, "0")
        terminal.answers(MAIN, "0")
        terminal.ends(BYE)


def test_keys_that_come_before_the_prompt(site):
    """Typed ahead, all at once: nothing gets lost while the tool runs."""
    with Terminal(site) as terminal:
        terminal.waits(MAIN)
        terminal.console.send("3\r4\r3\r0\r0\r")
        screen = terminal.reads_until(BYE)
        assert "HotSpare    :(1 10 0)\n" in screen
