# SPDX-License-Identifier: Apache-2.0
"""What reaches the tool: a stand-in takes every script down."""

import pytest
from screens import (
    ALWAYS,
    ANOTHER,
    ANOTHER_OF_RAID_0,
    CHANNEL,
    CONTAINER,
    CONTAINER_ID,
    CONTROLLER,
    DISK,
    DISK_ID,
    INDEX,
    LABEL,
    LUN,
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


@pytest.fixture
def recorded(site):
    site.record()
    return site


def typed(*answers):
    return "".join(f"{answer}\n" for answer in answers)


def created(site, *answers):
    """The one command that the answers in the RAID menu lead to."""
    transcript = site.run(typed(RAID, *answers, 0, 0))
    (command,) = site.commands()
    return command, transcript


SETTINGS = ["label", *(0, 2, 0), 50]
NO_LABEL = ["", *(0, 2, 0), 0]
QUICKLY = ["label", 1, *(0, 2, 0)]


@pytest.mark.parametrize(
    "answers, command",
    [
        (SETTINGS + [1, 0, 3, 0, 0], 'strip /label="label" ((0,2,0),50M) (0,3,0) '),
        # The second disk is written with the first one's channel, the third with its own.
        (SETTINGS + [1, 1, 3, 4, 1, 5, 99, 9, 0], 'strip /label="label" ((0,2,0),50M) (0,3,4) (5,99,9) '),
        (["", 9, 99, 9, 99, 1, 0, 0, 0, 0], "strip ((9,99,9),99M) (9,0,0) "),
        (NO_LABEL + [1, 0, 3, 0, 0], "strip ((0,2,0)) (0,3,0) "),
        # -1 stands where a second disk should.
        (NO_LABEL + [0], "strip ((0,2,0)) (0,255,255) "),
    ],
)
def test_raid_0(recorded, answers, command):
    found, transcript = created(recorded, 1, *answers)
    assert found == f"container create {command}"
    assert "tripesize" not in transcript
    assert "create raid0 return:0\n" in transcript


@pytest.mark.parametrize(
    "answers, command",
    [
        (QUICKLY + [1, 3, 4], 'new_mirror /label="label" /quick_init=true ((0,2,0)) (1,3,4) '),
        (["", "", 9, 99, 9, 8, 98, 8], "new_mirror ((9,99,9)) (8,98,8) "),
    ],
)
def test_raid_1(recorded, answers, command):
    found, transcript = created(recorded, 2, *answers)
    assert found == f"container create {command}"
    assert SPACE not in transcript
    assert "create raid1 return:0\n" in transcript


@pytest.mark.parametrize(
    "answers, command",
    [
        (
            QUICKLY + [1, 0, 3, 0, 1, 0, 4, 0, 0],
            'raid5 /label="label" /quick_init=true ((0,2,0)) (0,3,0) (0,4,0)',
        ),
        (
            QUICKLY + [1, 1, 3, 0, 1, 0, 4, 1, 1, 0, 5, 0, 1, 9, 99, 9, 0],
            'raid5 /label="label" /quick_init=true ((0,2,0)) (1,3,0) (0,4,1)(0,5,0) (9,99,9) ',
        ),
        (["", 0, 0, 2, 0, 1, 0, 3, 0, 0], "raid5 ((0,2,0)) (0,3,0) (255,255,255)"),
        (["", 0, 0, 2, 0, 0], "raid5 ((0,2,0)) (255,255,255) (255,255,255)"),
    ],
)
def test_raid_5(recorded, answers, command):
    found, transcript = created(recorded, 4, *answers)
    assert found == f"container create {command}"
    assert "tripesize" not in transcript
    assert SPACE not in transcript
    assert "create raid5 return:0\n" in transcript


@pytest.mark.parametrize("more", [0, 1, 3])
def test_raid_10_names_no_container(recorded, more):
    """Stripe size and container numbers are asked for between 0 and -1: no prompt, always -1."""
    found, transcript = created(recorded, 3, "ten", *[1] * more, 0)
    assert found == 'container create mstrip /label="ten" -1 -1 '
    asked = numbers(*[(ANOTHER, 1)] * (more + 1))
    assert transcript == visit(RAID, LABEL + asked + "create raid10 return:0\n")


@pytest.mark.parametrize("answer", ["", "0", "2", "yes", "true", "11", "1x", "01", " 1"])
@pytest.mark.parametrize("choice, disks", [(2, [0, 3, 0]), (4, [0])])
def test_only_1_initialises_quickly(recorded, choice, disks, answer):
    assert "quick_init" not in created(recorded, choice, "", answer, 0, 2, 0, *disks)[0]


@pytest.mark.parametrize(
    "label, option",
    [
        ("sixteen_letters_", '/label="sixteen_letters_" '),
        ("seventeen_letters", '/label="seventeen_letter" '),
        ("two words", '/label="two words" '),
        (" ", '/label=" " '),
        ("clear", '/label="clear" '),
        ("0", '/label="0" '),
        ("", ""),
    ],
)
def test_labels(recorded, label, option):
    assert created(recorded, 3, label, 0)[0] == f"container create mstrip {option}-1 -1 "
    assert recorded.times_cleared() == 0


DISKS = [(number // 10 % 10, number % 100, number % 7) for number in range(64)]


def written(disks):
    return "".join("({},{},{}) ".format(*disk) for disk in disks)


def more_disks(count):
    return [answer for disk in DISKS[1:count] for answer in (1, *disk)]


def test_disks_that_raid_0_collects(recorded):
    """64 disks; then there is no question, and what is typed next is a choice in the menu."""
    answers = ["", *DISKS[0], 7, *more_disks(64)]
    found, transcript = created(recorded, 1, *answers)
    # The second disk stands on the first one's channel anyway.
    assert found == f"container create strip ((0,0,0),7M) {written(DISKS[1:])}"
    assert transcript.count(ANOTHER_OF_RAID_0) == 63
    assert transcript.count("Please input Disk64 Lun(") == 1


def test_disks_that_raid_5_collects(recorded):
    answers = ["", 0, *DISKS[0], *more_disks(64)]
    found, transcript = created(recorded, 4, *answers)
    disks = written(DISKS[1:3]).rstrip() + written(DISKS[3:])
    assert found == f"container create raid5 ((0,0,0)) {disks}"
    assert transcript.count(ANOTHER) == 63
    assert transcript.count("Please input Disk64 Lun(") == 1


def test_containers_that_raid_10_collects(recorded):
    found, transcript = created(recorded, 3, "", *[1] * 63)
    assert found == "container create mstrip -1 -1 "
    assert transcript.count(ANOTHER) == 63


def test_question_after_63_disks(recorded):
    found, transcript = created(recorded, 1, "", *DISKS[0], 7, *more_disks(63), 0)
    assert found == f"container create strip ((0,0,0),7M) {written(DISKS[1:63])}"
    assert transcript.count(ANOTHER_OF_RAID_0) == 63


ADDRESS = [(CHANNEL, 9), (DISK_ID, 99), (LUN, 9)]


def raid_address(number):
    return list(zip(raid_disk(number), (9, 99, 9)))


# For every choice that asks for numbers: the lines before, each prompt with its largest number, and the command
# that the largest numbers make.
ASKING = [
    (CONTROLLER, 2, [], [(INDEX, 9)], None),
    (DISK, 2, [], ADDRESS, "disk show defect (9,99,9)"),
    (DISK, 3, [], ADDRESS, "disk show space (9,99,9)"),
    (CONTAINER, 2, [], [(ALWAYS, 1), (CONTAINER_ID, 99)], "container delete /always=true 99"),
    (CONTAINER, 3, [], [*ADDRESS, (CONTAINER_ID, 99)], "container set failover 99 (9,99,9)"),
    (CONTAINER, 4, [], [(CONTAINER_ID, 99)], "container show failover 99"),
    (CONTAINER, 5, [], [(CONTAINER_ID, 99)], "container list 99"),
    (
        RAID,
        1,
        [(LABEL, "")],
        [*raid_address(1), (SPACE, 99), (ANOTHER_OF_RAID_0, 1), *raid_address(2)],
        "container create strip ((9,99,9),99M) (9,99,9) ",
    ),
    (
        RAID,
        2,
        [(LABEL, ""), (QUICK, "")],
        [*raid_address(1), *raid_address(2)],
        "container create new_mirror ((9,99,9)) (9,99,9) ",
    ),
    (
        RAID,
        4,
        [(LABEL, ""), (QUICK, "")],
        [*raid_address(1), (ANOTHER, 1), *raid_address(2)],
        "container create raid5 ((9,99,9)) (9,99,9) (255,255,255)",
    ),
    (TASK, 2, [], [(TASK_CONTAINER, 99)], "task list "),
    (MANAGEMENT, 3, [], ADDRESS, "disk show space (9,99,9)"),
]


@pytest.mark.parametrize("sub_menu, choice, lines, prompts, command", ASKING)
def test_limits_of_every_number(recorded, sub_menu, choice, lines, prompts, command):
    """One more than the largest number and one less than 0 are refused, the largest is taken."""
    tries = [(prompt, largest + 1, -1, largest) for prompt, largest in prompts]
    answers = [answer for line in lines for answer in line[1:]] + [answer for one in tries for answer in one[1:]]
    # One 0 more than most need: RAID 0 and 5 ask for another disk.
    transcript = recorded.run(typed(sub_menu, choice, *answers, 0, 0, 0))
    asked = "".join(line[0] for line in lines) + numbers(*tries)
    assert SUB_MENUS[sub_menu][0] + asked in transcript
    if command:
        assert recorded.commands() == [command]


@pytest.mark.parametrize("sub_menu, choice, lines, prompts, command", ASKING)
def test_smallest_of_every_number(recorded, sub_menu, choice, lines, prompts, command):
    """0 is taken everywhere."""
    answers = [answer for line in lines for answer in line[1:]] + [0] * len(prompts)
    transcript = recorded.run(typed(sub_menu, choice, *answers, 0, 0, 0))
    assert "Repeat" not in transcript


# Choices that ask nothing.
PLAIN = [
    (DISK, 1, ["disk list /full=true"]),
    (DISK, 4, ["disk show partition"]),
    (CONTAINER, 1, ["container list"]),
    (TASK, 1, ["task list "]),
    (MANAGEMENT, 2, ["disk list /full=true"]),
    (MANAGEMENT, 4, ["disk show partition"]),
    (MANAGEMENT, 5, ["container list"]),
    *[(MANAGEMENT, choice, []) for choice in "6789a"],
]


@pytest.mark.parametrize("sub_menu, choice, commands", PLAIN)
def test_choices_that_ask_nothing(recorded, sub_menu, choice, commands):
    recorded.scripts.touch()
    recorded.run(typed(sub_menu, choice, 0, 0))
    assert recorded.commands() == commands


@pytest.mark.parametrize("sub_menu", [CONTROLLER, MANAGEMENT])
def test_controllers_are_listed_without_one_being_opened(recorded, sub_menu):
    recorded.run(typed(sub_menu, 1, 0, 0))
    assert recorded.scripts.read_text().startswith("controller list\n")
