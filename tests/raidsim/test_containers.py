# SPDX-License-Identifier: Apache-2.0
"""Commands about containers."""

import pytest

HEADINGS = [
    "Num          Total  Oth Stripe          Scsi   Partition",
    "Label Type   Size   Ctr Size   Usage   C:ID:L Offset:Size",
    "----- ------ ------ --- ------ ------- ------ -------------",
]
SYSTEM = [
    " 0    Mirror  2.0GB            Open    0:00:0 64.0KB: 2.0GB",
    " /dev/sda             system           0:01:0 64.0KB: 2.0GB",
]
NOT_FOUND = "Command Error: <The specified container was not found.>"
NO_CHANNEL = "Command Error: <The specified channel was not found on the controller.>"
NO_DEVICE = "Command Error: <The specified device was not found.>"
NO_ROOM = (
    "Command Error: <The operation specified could not be done because it would result in a disk drive"
    " having more than the maximum allowed number of container partitions.>"
)


def test_list(tool):
    assert tool.answer("container list") == [*HEADINGS, *SYSTEM]
    assert tool.answer("container list 0") == [*HEADINGS, *SYSTEM]


def test_list_ends_with_two_blank_lines(tool):
    assert f"{SYSTEM[1]}\n\n\nAAC0>\n" in tool.output("open aac0", "container list")


def test_list_of_one_unknown_container(tool):
    assert tool.refused("container list 5") == "Command Error: <Container not found.>"


def test_strip(tool):
    # The second container's pieces follow the first's: 64 KB and 1024 MB are 1.0 GB, cut.
    command = 'container create strip /stripe_size=32K /label="my data" ((0,2,0),1024M) (0,3,0) (1,10,0) '
    assert tool.answer(command) == ["Container 1 created"]
    assert tool.answer("container create strip ((0,2,0),512M) (0,3,0)") == ["Container 2 created"]
    assert tool.answer("container list") == [
        *HEADINGS,
        *SYSTEM,
        "",
        " 1    Stripe  3.0GB     32KB   None    0:02:0 64.0KB: 1.0GB",
        " /dev/sdb             my data          0:03:0 64.0KB: 1.0GB",
        "                                       1:0a:0 64.0KB: 1.0GB",
        "",
        " 2    Stripe  1.0GB     64KB   None    0:02:0  1.0GB: 512MB",
        " /dev/sdc                              0:03:0  1.0GB: 512MB",
    ]


def test_echo_of_a_creation(tool):
    text = tool.output(
        "open aac0", 'container create NEW_MIRROR /label="data" /quick_init=true ((0,2,0),1024M) (0,3,0) '
    )
    assert (
        '\nExecuting: container create new_mirror /label="data" /quick_init=TRUE ((0,2,0),1024M) (0,3,0)\n' in text
    )


def test_mirror_is_checked_in_the_background(tool):
    assert tool.answer("container create new_mirror ((0,2,0),1024M) (0,3,0) ") == ["Container 1 created"]
    # The run that created it lets its task do the first fifth.
    assert tool.answer("task list")[2:] == ["  101   Bld/Vfy  20.0%      1      RUN   00000000  00000000"]


def test_a_blank_follows_the_longest_task_name(tool):
    line = "task id=101 function=Reconfig done=1000 step=0 container=0 state=SUS"
    tool.replace("controller name=aac1", line + "\ncontroller name=aac1")
    assert tool.answer("task list")[2:] == ["  101   Reconfig 100.0%      0      SUS   00000000  00000000"]


def test_quick_mirror_has_no_task(tool):
    tool.answer("container create new_mirror /quick_init=true ((0,2,0),1024M) (0,3,0) ")
    assert tool.answer("task list")[2:] == []


def test_raid5_with_disks_that_no_blank_parts(tool):
    command = "container create raid5 /stripe_size=16K ((0,2,0),1024M) (0,3,0) (0,4,0)(1,10,0) "
    assert tool.answer(command) == ["Container 1 created"]
    assert tool.answer("container list 1")[3:] == [
        " 1    RAID-5  3.0GB     16KB   None    0:02:0 64.0KB: 1.0GB",
        " /dev/sdb                              0:03:0 64.0KB: 1.0GB",
        "                                       0:04:0 64.0KB: 1.0GB",
        "                                       1:0a:0 64.0KB: 1.0GB",
    ]


def test_without_a_size_the_fullest_disk_decides(tool):
    # Disk 0:00:0 has 10485760 - 64 - 2097152 = 8388544 KB left: 8191 whole megabytes, 7.9 GB.
    assert tool.answer("container create strip ((0,0,0)) (0,2,0) ") == ["Container 1 created"]
    assert tool.answer("container list 1")[3] == (
        " 1    Stripe 15.9GB     64KB   None    0:00:0  2.0GB: 7.9GB"
    )
    assert "offset_kb=2097216 size_kb=8387584 rebuild=no" in tool.state.read_text()


def test_multi_level(tool):
    tool.answer("container create new_mirror /quick_init=true ((0,2,0),1024M) (0,3,0) ")
    tool.answer("container create new_mirror ((0,4,0),1024M) (1,10,0) ")
    assert tool.answer('container create mstrip /stripe_size=16K /label="big" 1 2 ') == ["Container 1 created"]
    assert tool.answer("container list 1")[3:] == [
        " 1    Stripe  2.0GB     16KB   None",
        " /dev/sdb             big",
        "24    Mirror  1.0GB            None    0:02:0 64.0KB: 1.0GB",
        "                                       0:03:0 64.0KB: 1.0GB",
        "25    Mirror  1.0GB            None    0:04:0 64.0KB: 1.0GB",
        "                                       1:0a:0 64.0KB: 1.0GB",
    ]
    # The second mirror's task has come along.
    assert tool.answer("task list")[2].split()[3] == "25"
    assert tool.refused("container create mstrip 1 0 ").startswith("Command Error: <The specified container")
    assert tool.answer("container delete /always=false 1") == [""]
    assert tool.answer("container list") == [*HEADINGS, *SYSTEM]
    assert tool.answer("task list")[2:] == []


def test_multi_level_member_cannot_be_deleted_alone(tool):
    tool.answer("container create new_mirror /quick_init=true ((0,2,0),2048M) (0,3,0) ")
    tool.answer("container create mstrip 0 1 ")
    assert tool.refused("container delete /always=true 24") == (
        "Command Error: <The specified container is a member of another container.>"
    )


@pytest.mark.parametrize(
    "command, error",
    [
        ("strip /stripe_size=128K (0,2,0) (0,3,0)", "The specified chunk or stripe size is invalid."),
        ("strip (0,2,0) (0,3,0) (0,2,0)", "A device is specified more than once."),
        ("strip ((0,2,0)) (2,3,0)", "The specified channel was not found on the controller."),
        ("strip ((0,2,0)) (1,3,0)", "The specified device was not found."),
        ("strip ((0,2,0)) (0,5,0)", "The specified disk is not initialized."),
        ("strip ((0,2,0)) (0,6,0)", "The specified device is not a disk."),
        # 10 GB less the first 64 KB is one megabyte less.
        ("strip ((0,2,0),10240M) (0,3,0)", "10737418240 bytes cannot be found on device 0:02:0."),
        ("new_mirror ((0,2,0),9000M) (0,1,0)", "9437184000 bytes cannot be found on device 0:01:0."),
        ("mstrip 0 7", "The specified container was not found."),
        ("mstrip 0 0", "A container is specified more than once."),
    ],
)
def test_creation_that_is_refused(tool, command, error):
    assert tool.refused(f"container create {command}") == f"Command Error: <{error}>"


def test_number_of_disks(tool):
    assert tool.refused("container create raid5 ((0,2,0)) (0,3,0)") == "Parsing Error: <A parameter is missing>"
    assert tool.refused("container create new_mirror ((0,2,0)) (0,3,0) (0,4,0)") == (
        "Parsing Error: <Unexpected parameter (0,4,0)>"
    )


def test_stripe_of_mirrors_of_different_sizes(tool):
    tool.answer("container create new_mirror /quick_init=true ((0,2,0),1024M) (0,3,0) ")
    assert tool.refused("container create mstrip 0 1") == (
        "Command Error: <The specified container sizes must be the same for stripe sets.>"
    )


def test_fifth_piece_of_a_disk(tool):
    for number in range(1, 5):
        assert tool.answer("container create strip ((0,2,0),64M) (0,3,0)") == [f"Container {number} created"]
    assert tool.refused("container create strip ((0,2,0),64M) (0,4,0)") == NO_ROOM


def test_delete_asks_about_data(tool):
    assert tool.refused("container delete /always=false 0") == (
        "Command Error: <The specified container is in use.>"
    )
    assert tool.refused("container delete 0") == "Command Error: <The specified container is in use.>"
    assert tool.refused("container delete /always=true 9") == NOT_FOUND
    assert tool.answer("container delete /always=true 0") == [""]
    assert tool.answer("container list") == HEADINGS


def test_freed_space_is_used_again(tool):
    tool.answer("container delete /always=true 0")
    tool.answer("container create strip ((0,0,0),64M) (0,1,0)")
    assert tool.answer("disk show space (0,0,0)")[2:] == [
        "  0:00:0     Container 64.0KB:64.0MB",
        "  0:00:0     Free      64.0MB: 9.9GB",
    ]


def test_failover(tool):
    headings = ["Container    Scsi C:ID:L", "--------- ----------------------------------"]
    assert tool.answer("container show failover 0") == [*headings, "    0     --- No Devices Assigned ---"]
    assert tool.answer("container set failover 0 (0,2,0) (1,10,0)") == [""]
    assert tool.answer("container show failover 0") == [*headings, "    0      0:02:0 1:10:0"]
    assert tool.answer("container remove failover 0 (0,2,0)") == [""]
    assert tool.answer("container show failover 0") == [*headings, "    0      1:10:0"]


@pytest.mark.parametrize(
    "command, error",
    [
        ("show failover 4", NOT_FOUND),
        ("set failover 4 (0,2,0)", NOT_FOUND),
        ("set failover 0 (2,0,0)", NO_CHANNEL),
        ("set failover 0 (0,9,0)", NO_DEVICE),
        ("set failover 0 (0,2,0) (0,9,0)", NO_DEVICE),
        ("set failover 0 (0,1,0)", "Command Error: <The specified device is a member of the container.>"),
        ("set failover 0 (0,5,0)", "Command Error: <The specified disk is not initialized.>"),
        ("remove failover 4 (0,2,0)", NOT_FOUND),
        ("remove failover 0 (2,0,0)", NO_CHANNEL),
        ("remove failover 0 (0,9,0)", NO_DEVICE),
        (
            "remove failover 0 (0,2,0)",
            "Command Error: <At least one of devices you specified is not a fialover disk.>",
        ),
    ],
)
def test_failover_that_is_refused(tool, command, error):
    assert tool.refused(f"container {command}") == error


def test_failover_of_a_stripe(tool):
    tool.answer("container create strip ((0,2,0),64M) (0,3,0)")
    assert tool.refused("container set failover 1 (0,4,0)") == (
        "Command Error: <The specified container has no redundancy.>"
    )
