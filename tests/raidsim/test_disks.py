# SPDX-License-Identifier: Apache-2.0
"""Commands about disks."""

import pytest

NO_CHANNEL = "Command Error: <The specified channel was not found on the controller.>"
NO_DEVICE = "Command Error: <The specified device was not found.>"


def test_full_list(tool):
    lines = tool.answer("disk list /full=true")
    assert lines[:4] == [
        "C:ID:L  Device Type     Removable media  Vendor-ID Product-ID        Rev   Blocks    Bytes/Block"
        " Usage            Shared Rate",
        "------  --------------  ---------------  --------- ----------------  ----- --------- -----------"
        " ---------------- ------ ----",
        "0:00:0   Disk            N                ACME      EX10              1.02   20971520 512        "
        " Initialized      NO     320 ",
        "0:01:0   Disk            N                ACME      EX10              1.02   20971520 512        "
        " Initialized      NO     320 ",
    ]
    assert [line.split()[0] for line in lines[2:]] == [
        "0:00:0",
        "0:01:0",
        "0:02:0",
        "0:03:0",
        "0:04:0",
        "0:05:0",
        "1:10:0",
        "0:06:0",
    ]
    assert lines[7].split()[8:10] == ["Not", "Initialized"]


def test_short_list(tool):
    assert tool.answer("disk list")[:3] == [
        "C:ID:L  Device Type     Blocks    Bytes/Block Usage            Shared Rate",
        "------  --------------  --------- ----------- ---------------- ------ ----",
        "0:00:0   Disk             20971520 512         Initialized      NO     320 ",
    ]


def test_initialize(tool):
    assert tool.answer("disk initialize /always=false /unconditional=false (0,5,0)") == [""]
    assert tool.answer("disk list /full=true")[7].split()[8] == "Initialized"
    # 10 GB less the controller's own 64 KB, cut to a tenth.
    assert tool.answer("disk show space (0,5,0)")[2:] == ["  0:05:0     Free      64.0KB: 9.9GB"]


def test_initialize_of_a_used_disk(tool):
    in_use = "Command Error: <The specified disk has a container that is in use.>"
    holds_data = "Command Error: <The specified disk has a container that holds data.>"
    assert tool.refused("disk initialize /always=false /unconditional=true (0,1,0)") == holds_data
    assert tool.refused("disk initialize /always=true /unconditional=false (0,1,0)") == in_use
    assert tool.answer("disk initialize /always=true /unconditional=true (0,1,0)") == [""]
    assert len(tool.answer("container list")) == 3
    assert len(tool.answer("disk show partition")) == 3


def test_initialize_takes_a_spare_away(tool):
    tool.answer("container set failover 0 (0,2,0)")
    tool.answer("disk initialize (0,2,0)")
    assert tool.answer("container show failover 0")[2] == "    0     --- No Devices Assigned ---"


def test_defects(tool):
    assert tool.answer("disk show defect (0,1,0)") == [
        "Number of PRIMARY defects on drive: 3",
        "Number of GROWN defects on drive: 1",
    ]


@pytest.mark.parametrize(
    "disk, error",
    [
        ("(0,5,0)", "Command Error: <The controller has detected a bad status of the device.>"),
        ("(0,6,0)", "Command Error: <The device has answered with a parameter error.>"),
        ("(2,0,0)", NO_CHANNEL),
        ("(0,0,1)", NO_DEVICE),
    ],
)
def test_defects_that_are_not_told(tool, disk, error):
    assert tool.refused(f"disk show defect {disk}") == error


@pytest.mark.parametrize("command", ["initialize", "show space"])
def test_disk_that_is_not_there(tool, command):
    assert tool.refused(f"disk {command} (2,0,0)") == NO_CHANNEL
    assert tool.refused(f"disk {command} (1,0,0)") == NO_DEVICE


def test_initialize_of_a_processor(tool):
    assert tool.refused("disk initialize (0,6,0)") == "Command Error: <The specified device is not a disk.>"


def test_space_of_one_disk(tool):
    text = tool.output("open aac0", "disk show space (0,1,0)")
    assert (
        "\nExecuting: disk show space (0,1,0)\n"
        "\n"
        "Scsi C:ID:L Usage      Size\n"
        "----------- ---------- -------------\n"
        "  0:01:0     Container 64.0KB: 2.0GB\n"
        "  0:01:0     Free       2.0GB: 7.9GB\n"
        "\nAAC0>\n"
    ) in text


def test_space_between_two_pieces(tool):
    for _ in range(3):
        tool.answer("container create strip ((0,2,0),64M) (0,3,0)")
    tool.answer("container delete 2")
    # 64 KB and 64 MB, then 64 MB each: offsets in megabytes are cut.
    assert tool.answer("disk show space (0,2,0)")[2:] == [
        "  0:02:0     Container 64.0KB:64.0MB",
        "  0:02:0     Free      64.0MB:64.0MB",
        "  0:02:0     Container  128MB:64.0MB",
        "  0:02:0     Free       192MB: 9.8GB",
    ]


def test_space_of_all_disks(tool):
    rows = tool.answer("disk show space")[2:]
    # Nothing of the disk that is not initialised, nor of the processor.
    assert [tuple(row.split()[:2]) for row in rows] == [
        ("0:00:0", "Container"),
        ("0:00:0", "Free"),
        ("0:01:0", "Container"),
        ("0:01:0", "Free"),
        ("0:02:0", "Free"),
        ("0:03:0", "Free"),
        ("0:04:0", "Free"),
        ("1:10:0", "Free"),
    ]


def test_partitions(tool):
    tool.answer("container create new_mirror /quick_init=true ((0,2,0),2048M) (1,10,0) ")
    tool.answer("container create mstrip 0 1 ")
    tool.answer("container create strip ((0,3,0),64M) (0,4,0)")
    rows = [row.split() for row in tool.answer("disk show partition")[3:]]
    assert rows == [
        ["0:00:0", "64.0KB:", "2.0GB", "24", "Mirror", "0", "Stripe", "RW"],
        ["0:01:0", "64.0KB:", "2.0GB", "24", "Mirror", "0", "Stripe", "RW"],
        ["0:02:0", "64.0KB:", "2.0GB", "25", "Mirror", "0", "Stripe", "RW"],
        ["0:03:0", "64.0KB:64.0MB", "1", "Stripe", "0", "None", "RW"],
        ["0:04:0", "64.0KB:64.0MB", "1", "Stripe", "0", "None", "RW"],
        ["1:10:0", "64.0KB:", "2.0GB", "25", "Mirror", "0", "Stripe", "RW"],
    ]
