# SPDX-License-Identifier: Apache-2.0
"""Controllers that refuse, tools that fail or are not there: the console says so and goes on."""

import pathlib

import pytest
from console_site import COPY, PAINTED, PLAIN
from screens import (
    ALWAYS,
    ANOTHER,
    ANOTHER_OF_RAID_0,
    BYE,
    CHANNEL,
    CONTAINER,
    CONTAINER_ID,
    CONTROLLER,
    DISK,
    DISK_ID,
    HELLO,
    INDEX,
    LABEL,
    LUN,
    MAIN,
    MANAGEMENT,
    QUICK,
    RAID,
    SPACE,
    SUB_MENUS,
    TASK,
    TASK_CONTAINER,
    numbers,
    raid_disk,
    visit,
)

NONE = "Return a less zero value:{}\n"
ADDRESS = [(CHANNEL, 0), (DISK_ID, 1), (LUN, 0)]


def first_disk():
    return [*zip(raid_disk(1), (0, 2, 0))]


def second_disk():
    return [*zip(raid_disk(2), (0, 3, 0))]


# Every choice that runs the tool: sub-menu, choice, lines, numbers, and the answer to a failure's code.
LISTS = [(CONTROLLER, 1, [], [], NONE), (MANAGEMENT, 1, [], [], NONE)]
CHOICES = [
    (DISK, 1, [], [], NONE),
    (DISK, 2, [], ADDRESS, "disk show defect return :{}, primary = -1 grown = -1\n"),
    (DISK, 3, [], ADDRESS, "disk show space return :{}\n"),
    (DISK, 4, [], [], "show disk partition return :{}\n"),
    (CONTAINER, 1, [], [], NONE),
    (CONTAINER, 2, [], [(ALWAYS, 1), (CONTAINER_ID, 0)], "container delete return:{}\n"),
    (CONTAINER, 3, [], [*ADDRESS, (CONTAINER_ID, 0)], "container set failover return:{}\n"),
    (CONTAINER, 4, [], [(CONTAINER_ID, 3)], "container show failover return:{}\n"),
    (CONTAINER, 5, [], [(CONTAINER_ID, 0)], "get corresponding disk name return:{}\n"),
    (
        RAID,
        1,
        [(LABEL, "a")],
        [*first_disk(), (SPACE, 9), (ANOTHER_OF_RAID_0, 1), *second_disk(), (ANOTHER_OF_RAID_0, 0)],
        "create raid0 return:{}\n",
    ),
    (RAID, 2, [(LABEL, "a"), (QUICK, "1")], [*first_disk(), *second_disk()], "create raid1 return:{}\n"),
    (RAID, 3, [(LABEL, "a")], [(ANOTHER, 0)], "create raid10 return:{}\n"),
    (
        RAID,
        4,
        [(LABEL, "a"), (QUICK, "1")],
        [*first_disk(), (ANOTHER, 1), *second_disk(), (ANOTHER, 0)],
        "create raid5 return:{}\n",
    ),
    (TASK, 1, [], [], NONE),
    # No task and no answer look the same.
    (TASK, 2, [], [(TASK_CONTAINER, 0)], "get container task return:-1\n"),
]
# Behind the boundary every failure is the same.
QUERIES = [
    (MANAGEMENT, 2, [], [], NONE),
    (MANAGEMENT, 3, [], ADDRESS, NONE),
    (MANAGEMENT, 4, [], [], NONE),
    (MANAGEMENT, 5, [], [], NONE),
]


def keys_of(choice):
    sub_menu, number, lines, prompts, _ = choice
    answers = [number, *(answer for _, answer in lines), *(answer for _, answer in prompts)]
    return "".join(f"{answer}\n" for answer in (sub_menu, *answers, 0))


def shown(choice, code):
    sub_menu, _, lines, prompts, text = choice
    menu = SUB_MENUS[sub_menu][0]
    asked = "".join(prompt for prompt, _ in lines) + numbers(*prompts)
    return menu + asked + text.format(code) + menu + MAIN


def check(site, codes, fault="", said_by_shell=""):
    """All of these, one after the other in one console, each with its code."""
    keys = "".join(keys_of(choice) for choice, code in codes)
    wanted = "".join(shown(choice, code) for choice, code in codes)
    transcript = site.run(keys + "0\n", fault)
    if said_by_shell:
        assert said_by_shell in transcript
        transcript = transcript.replace(said_by_shell, "")
    assert transcript == HELLO + MAIN + wanted + BYE


def with_codes(choices, queries, lists=None):
    """The choices with one code, the queries with another, the lists of controllers with a third."""
    codes = [(choice, choices) for choice in CHOICES] + [(query, queries) for query in QUERIES]
    return codes + [(one, lists) for one in LISTS if lists is not None]


def controller_name(site, fault=""):
    """Whatever the cause, there is no name."""
    wanted = visit(CONTROLLER, INDEX + "\nget controller name return :-1, name = \n")
    assert site.run("1\n2\n0\n0\n0\n", fault) == wanted


@pytest.mark.parametrize("fault, code", [("busy", -200), ("missing", -100)])
def test_controller_that_refuses(site, fault, code):
    check(site, with_codes(code, -1), f"{PAINTED},{fault}")
    assert site.changes() == []


def test_no_controller(site):
    assert site.run("1\n1\n0\n0\n", "missing") == visit(CONTROLLER, NONE.format(0))
    assert site.run("6\n1\n0\n0\n", "missing") == visit(MANAGEMENT, "get controller return:0, number = 0\n")
    controller_name(site, "missing")


EMPTY = """\
format version=1
controller name=aac0 type="EXAMPLE 2200S" availability=read/write clustering=No opens=yes channels=2 next_task=107
"""


def test_controller_without_anything(site):
    """No records, and no rules around them."""
    site.state.write_text(EMPTY)
    for sub_menu in (DISK, CONTAINER, TASK):
        assert site.run(f"{sub_menu}\n1\n0\n0\n") == visit(sub_menu, NONE.format(0))
    assert site.run("2\n4\n0\n0\n") == visit(DISK, "show disk partition return :0\n")
    assert site.run("6\n2\n4\n5\n0\n0\n") == visit(
        MANAGEMENT,
        "get disk return:0, number = 0\n",
        "get partition return:0, number = 0\n",
        "get raid return:0, number = 0\n",
    )


@pytest.mark.parametrize("fault", ["exit=1", "exit=255"])
def test_tool_that_fails(site, fault):
    check(site, with_codes(-1, -1, -1), fault)
    controller_name(site, fault)


def test_tool_that_is_killed(site):
    check(site, with_codes(-1, -1, -1), "kill", "Killed\n")


def no_configuration(site):
    site.config.unlink()


def empty_configuration(site):
    site.config.write_text("")


def no_tool(site):
    site.configure(site.simulator.with_name("nowhere"), COPY)


def no_filter(site):
    site.config.write_text("\n".join(site.config.read_text().splitlines()[:2]) + "\n")


def failing_filter(site):
    site.configure(site.simulator, pathlib.Path("/bin/false"))


def silent_filter(site):
    site.configure(site.simulator, pathlib.Path("/bin/true"))


BROKEN = [no_configuration, empty_configuration, failing_filter, silent_filter]


@pytest.mark.parametrize("broken", BROKEN)
def test_broken_site(site, broken):
    broken(site)
    check(site, with_codes(-1, -1, -1))
    controller_name(site)


def test_filter_that_is_not_named(site):
    """The tool is asked; then the shell takes the raw output's name for a command, and says so."""
    no_filter(site)
    transcript = site.run("2\n1\n0\n0\n")
    menu = SUB_MENUS[DISK][0]
    assert transcript.startswith(HELLO + MAIN + menu + "sh: ")
    assert transcript.endswith("not found\n" + NONE.format(-1) + menu + MAIN + BYE)


def test_tool_that_is_not_there(site):
    """The shell says so, too."""
    no_tool(site)
    transcript = site.run("2\n1\n0\n0\n")
    menu = SUB_MENUS[DISK][0]
    assert transcript.startswith(HELLO + MAIN + menu + "sh: ")
    assert transcript.endswith("not found\n" + NONE.format(-1) + menu + MAIN + BYE)


def test_configuration_that_comes_later(site):
    """Looked for again at each operation: the console need not be started anew."""
    hidden = site.config.with_suffix(".away")
    site.config.rename(hidden)
    # Clearing the screen brings the file here.
    site.add_program("clear", f'#!/bin/sh\nmv "{hidden}" "{site.config}"\n')
    menu = SUB_MENUS[TASK][0]
    transcript = site.run("5\n1\nclear\n1\n0\n0\n", PAINTED)
    assert transcript.startswith(HELLO + MAIN + menu + NONE.format(-1) + menu + menu + "TaskId  : 105\n")


def test_tool_that_paints_and_takes_its_time(site):
    """Nothing of the way there shows."""
    plain = site.run("3\n1\n0\n0\n")
    assert site.run("3\n1\n0\n0\n", "terminal,status,pager=3,slow=5") == plain
    assert "ContainerID: 25\n" in plain


LATE = """\
#!/bin/sh
"{}"
echo 'Command Error: <The requested controller does not exist.>'
"""


@pytest.mark.parametrize(
    "sub_menu, choice, asked, failure",
    [
        (CONTAINER, 1, [], NONE),
        (DISK, 3, ADDRESS, "disk show space return :{}\n"),
        (DISK, 4, [], "show disk partition return :{}\n"),
    ],
)
def test_controller_that_goes_away_behind_its_answer(site, sub_menu, choice, asked, failure):
    """The records that came before the error are not shown."""
    site.configure(site.add_program("late", LATE.format(site.simulator)), COPY)
    keys = "".join(f"{answer}\n" for answer in (sub_menu, choice, *(answer for _, answer in asked), 0, 0))
    assert site.run(keys, PLAIN) == visit(sub_menu, numbers(*asked) + failure.format(-100))
