# SPDX-License-Identifier: Apache-2.0
"""The RAID side, by queries and by operations, against the simulated controller tool."""

import gc
import os
import subprocess

import pytest

import diskscout
from diskscout import Address, Result

DISK_0, DISK_1, DISK_2, DISK_3, DISK_4, DISK_5, ENCLOSURE = (Address(0, at, 0).number for at in range(7))


def refused(result, call, *arguments, **options):
    with pytest.raises(diskscout.RaidError) as failure:
        call(*arguments, **options)
    assert (failure.value.code, failure.value.name) == (result.value, result.name)
    assert result.name in str(failure.value)


@pytest.fixture
def queries(build_dir, raid, at_the_site):
    with diskscout.Plugin(directory=build_dir) as plugin:
        yield plugin


# ---- queries ----

CONTROLLERS = [
    {"controller_id": 0, "adapter_name": "aac0", "adapter_type": "EXAMPLE 2200S",
     "availability": diskscout.Availability.READ_WRITE, "clustering": diskscout.Clustering.NO},
    {"controller_id": 1, "adapter_name": "aac1", "adapter_type": "EXAMPLE 2120S",
     "availability": diskscout.Availability.READ_ONLY, "clustering": diskscout.Clustering.YES},
]


def test_controllers(queries, raid):
    for controllers in (queries.controllers(), raid.controllers()):
        with controllers:
            assert [vars(one) for one in controllers[:2]] == CONTROLLERS
            assert [one.adapter_name for one in controllers] == ["aac0", "aac1", "aac2", "aac3"]


def test_containers_of_a_query(queries):
    with queries.containers("aac0") as containers:
        assert [vars(one) for one in containers] == [
            {"raid_id": 0, "member_count": 2, "members": (DISK_0, DISK_1), "raid_type": diskscout.RaidType.RAID1,
             "total_size_low32": 2 * 1024**3, "stripe_size_bytes": 0, "usage": diskscout.ContainerUsage.OPEN,
             "hot_spare": DISK_4, "label": "system"}]


def test_disks_of_a_query(queries):
    with queries.raid_disks("aac0") as disks:
        assert [disk.address for disk in disks] == [DISK_0, DISK_1, DISK_2, DISK_3, DISK_4, DISK_5, ENCLOSURE]
        assert vars(disks[5]) == {
            "address": 5 << 8, "vendor": "EXAMPLE_A", "model": "EX10", "device_type": diskscout.DeviceType.DISK,
            "blocks": 20971520, "bytes_per_block": 512, "usage": diskscout.DiskUsage.NOT_INITIALIZED,
            "shared": diskscout.Shared.NO, "rate": 320}
        assert (disks[6].device_type, disks[6].usage, disks[6].shared, disks[6].blocks) == (
            diskscout.DeviceType.PROCESSOR, diskscout.DiskUsage.UNOWNED, diskscout.Shared.YES, 0)


def test_space_and_partitions_of_a_query(queries):
    with queries.raid_space("aac0", DISK_0) as space, queries.raid_partitions("aac0") as partitions:
        # The tool prints "2.0GB: 7.9GB"; of the second number 32 bits hold what is beyond 4 GiB.
        assert [vars(area) for area in space] == [
            {"offset_low32": 2 * 1024**3, "free_space_low32": int(7.9 * 1024 * 1024) * 1024 - 4 * 1024**3}]
        assert [vars(piece) for piece in partitions] == [
            {"address": address, "offset_bytes": 65536, "size_bytes": 2 * 1024**3, "raid_id": 0,
             "raid_type": diskscout.RaidType.RAID1, "multilevel_raid_id": 0,
             "multilevel_type": diskscout.MultilevelType.NONE, "access": diskscout.Access.READ_WRITE}
            for address in (DISK_0, DISK_1)]


def test_a_query_that_fails_has_no_list(queries):
    for call in (lambda: queries.containers("aac3"), lambda: queries.raid_disks("aac9"),
                 lambda: queries.raid_space("aac0", Address(0, 9, 0).number)):
        with pytest.raises(diskscout.QueryError, match=r"^CMD_GET_\w+ failed: -1$") as failure:
            call()
        assert failure.value.found == ()


def test_a_name_that_would_be_a_command_is_refused(queries, raid):
    before = (raid.path, os.path.getmtime("state.txt"))
    for name in ("aac0\ncontainer delete 0", "aac0\0", "aac0\x7f"):
        for call in (queries.containers, raid.containers, lambda name: raid.delete_container(name, 0),
                     lambda name: raid.create_raid1("aac0", (DISK_2, DISK_3), label=name)):
            with pytest.raises(ValueError, match="a control character"):
                call(name)
    assert (raid.path, os.path.getmtime("state.txt")) == before


def test_a_number_of_more_bits_is_refused(queries, raid):
    for number in (2**31, -(2**31) - 1, 2**32):
        for call in (raid.hot_spare, raid.delete_container, raid.container_tasks, raid.disk_space, queries.raid_space):
            with pytest.raises(ValueError, match="32 bits"):
                call("aac0", number)


# ---- operations that look ----

def test_the_name_of_a_controller(raid):
    assert [raid.controller_name(position) for position in range(2)] == ["aac0", "aac1"]
    refused(Result.AAC_RUN_FAILED, raid.controller_name, 4)


def test_containers(raid):
    with raid.containers("aac0") as containers:
        assert [vars(one) for one in containers] == [
            {"container_id": 0, "member_count": 2, "members": (DISK_0, DISK_1), "raid_type": diskscout.RaidType.RAID1,
             "total_size_megabytes": 2048, "stripe_size_kilobytes": 0, "usage": diskscout.ContainerUsage.OPEN,
             "hot_spare": DISK_4, "label": "system"}]
    assert raid.container_device_name("aac0", 0) == "/dev/sda"


def test_disks(raid):
    with raid.disks("aac0") as disks:
        assert len(disks) == 7
        assert vars(disks[0]) == {
            "address": 0, "vendor": "EXAMPLE_A", "model": "EX10", "device_type": diskscout.DeviceType.DISK,
            "blocks": 20971520, "bytes_per_block": 512, "usage": diskscout.DiskUsage.INITIALIZED,
            "shared": diskscout.Shared.NO, "rate": 320}
    assert raid.defects("aac0", DISK_0) == diskscout.Defects(primary=3, grown=1)
    refused(Result.AAC_BAD_DISK_STATUS, raid.defects, "aac0", DISK_5)


def test_space_and_partitions(raid):
    with raid.disk_space("aac0", DISK_2) as space, raid.partitions("aac0") as pieces:
        # The tool prints "64.0KB: 9.9GB".
        assert [vars(area) for area in space] == [
            {"offset_kilobytes": 64, "free_space_kilobytes": int(9.9 * 1024 * 1024)}]
        assert [(one.address, one.offset_kilobytes, one.size_kilobytes) for one in pieces] == [
            (DISK_0, 64, 2097152), (DISK_1, 64, 2097152)]
        assert (pieces[0].container_id, pieces[0].raid_type, pieces[0].multilevel_type, pieces[0].access) == (
            0, diskscout.RaidType.RAID1, diskscout.MultilevelType.NONE, diskscout.Access.READ_WRITE)


def test_tasks(raid):
    with raid.tasks("aac0") as tasks:
        assert [vars(task) for task in tasks] == [
            {"task_id": 101, "function": diskscout.TaskFunction.REBUILD, "done": pytest.approx(0.45),
             "container_id": 0, "state": diskscout.TaskState.RUNNING},
            {"task_id": 102, "function": diskscout.TaskFunction.SCRUB, "done": 1.0,
             "container_id": 7, "state": diskscout.TaskState.SUSPENDED}]
    with raid.container_tasks("aac0", 7) as tasks:
        assert [task.task_id for task in tasks] == [102]
    with raid.container_tasks("aac0", 9) as tasks:
        assert list(tasks) == []


def test_a_controller_that_cannot_be_used(raid):
    refused(Result.AAC_CONTROLLER_BUSY, raid.tasks, "aac2")
    refused(Result.AAC_CONTROLLER_UNUSABLE, raid.containers, "aac3")
    refused(Result.AAC_NO_SUCH_DEVICE, raid.disk_space, "aac0", Address(0, 9, 0).number)
    refused(Result.AAC_NO_SUCH_CONTAINER, raid.hot_spare, "aac0", 9)


def test_a_tool_that_fails(raid, monkeypatch):
    monkeypatch.setenv("RAIDSIM_FAULT", "exit=3")
    refused(Result.AAC_RUN_FAILED, raid.controllers)
    monkeypatch.setenv("RAIDSIM_FAULT", "cut=200")
    refused(Result.AAC_RUN_FAILED, raid.disks, "aac0")


# ---- operations that change ----

def containers_of(raid):
    with raid.containers("aac0") as containers:
        return {one.container_id: (one.raid_type, one.members, one.stripe_size_kilobytes, one.label)
                for one in containers}


def test_new_containers(raid):
    types = diskscout.RaidType
    raid.create_raid0("aac0", (DISK_2, DISK_3, DISK_4), label="fast", stripe_size_kilobytes=32, size_megabytes=100)
    raid.create_raid5("aac0", [DISK_1, DISK_2, DISK_3, DISK_4], label="safe", quick_init=True, size_megabytes=100)
    raid.create_raid1("aac0", (DISK_2, DISK_3), size_megabytes=200)
    raid.create_raid1("aac0", (DISK_0, DISK_4), label="other half", size_megabytes=200)
    assert containers_of(raid) == {
        0: (types.RAID1, (DISK_0, DISK_1), 0, "system"),
        1: (types.RAID0, (DISK_2, DISK_3, DISK_4), 32, "fast"),
        2: (types.RAID5, (DISK_1, DISK_2, DISK_3, DISK_4), 64, "safe"),
        3: (types.RAID1, (DISK_2, DISK_3), 0, ""),
        4: (types.RAID1, (DISK_0, DISK_4), 0, "other half")}
    raid.create_raid10("aac0", (3, 4), label="whole", stripe_size_kilobytes=16)
    made = containers_of(raid)
    # The mirrors have moved to numbers from 24 on, and their own number is free again.
    assert made[3] == (types.RAID10, (24, 25), 16, "whole")
    assert made[24][:2] == (types.RAID1, (DISK_2, DISK_3))


def test_creations_that_are_refused(raid):
    before = containers_of(raid)
    refused(Result.AAC_BAD_STRIPE_SIZE, raid.create_raid0, "aac0", (DISK_2, DISK_3), stripe_size_kilobytes=17)
    refused(Result.AAC_NO_SUCH_CONTAINER, raid.create_raid10, "aac0", (0, 9))
    refused(Result.AAC_NO_SPACE, raid.create_raid1, "aac0", (DISK_2, DISK_3), size_megabytes=20000)
    for call, members in ((raid.create_raid0, (DISK_2,)), (raid.create_raid1, (DISK_1, DISK_2, DISK_3)),
                          (raid.create_raid5, (DISK_2, DISK_3)), (raid.create_raid10, ()),
                          (raid.create_raid0, (DISK_2, -1, DISK_3)), (raid.create_raid5, (0, 1, 2, 2**31))):
        with pytest.raises(ValueError, match="members|member|32 bits"):
            call("aac0", members)
    assert containers_of(raid) == before


def test_hot_spares(raid):
    assert raid.hot_spare("aac0", 0) == DISK_4
    raid.remove_hot_spare("aac0", 0, DISK_4)
    refused(Result.AAC_NO_HOT_SPARE, raid.hot_spare, "aac0", 0)
    refused(Result.AAC_NOT_A_HOT_SPARE, raid.remove_hot_spare, "aac0", 0, DISK_4)
    raid.set_hot_spare("aac0", 0, DISK_3)
    assert raid.hot_spare("aac0", 0) == DISK_3


def test_deleting_and_initialising(raid):
    refused(Result.AAC_TOOL_ERROR, raid.delete_container, "aac0", 0)
    raid.delete_container("aac0", 0, with_data=True)
    assert containers_of(raid) == {}
    refused(Result.AAC_NO_SUCH_CONTAINER, raid.delete_container, "aac0", 0, with_data=True)
    raid.initialize_disk("aac0", DISK_5)
    with raid.disks("aac0") as disks:
        assert disks[5].usage is diskscout.DiskUsage.INITIALIZED


def test_initialising_what_is_in_use(raid):
    refused(Result.AAC_TOOL_ERROR, raid.initialize_disk, "aac0", DISK_0)
    refused(Result.AAC_TOOL_ERROR, raid.initialize_disk, "aac0", DISK_0, with_data=True)
    raid.initialize_disk("aac0", DISK_0, with_data=True, in_use=True)


# ---- answers in files ----

@pytest.fixture
def answer(at_the_site, tmp_path):
    """The answer to a command, as the filter has written it."""

    def ask(*commands):
        raw, filtered = tmp_path / "raw", tmp_path / "filtered"
        script = "".join(f"{command}\n" for command in ("open aac0", *commands, " " * 43, "exit"))
        raw.write_bytes(subprocess.run(["./raidsim"], input=script.encode(), capture_output=True, check=True,
                                       env={**os.environ, "TERM": "linux"}).stdout)
        subprocess.run(["./filter", str(raw), str(filtered)], check=True)
        return filtered

    return ask


def test_answers_in_files(raid, answer):
    with raid.parse_controllers(answer("controller list")) as controllers:
        assert [vars(one) for one in controllers[:2]] == CONTROLLERS
    with raid.parse_disks(answer("disk list /full=true")) as disks, raid.disks("aac0") as told:
        assert list(disks) == list(told)
    with raid.parse_space(answer("disk show space"), DISK_2) as space, raid.disk_space("aac0", DISK_2) as told:
        assert list(space) == list(told) != []
    with raid.parse_partitions(answer("disk show partition")) as pieces:
        assert [one.address for one in pieces] == [DISK_0, DISK_1]
    with raid.parse_tasks(answer("task list")) as tasks:
        assert [task.task_id for task in tasks] == [101, 102]
    assert raid.parse_defects(answer("disk show defect (0,0,0)")) == (3, 1)


def test_answers_to_changes_in_files(raid, answer, tmp_path):
    raid.parse_created(answer("container create new_mirror ((0,2,0),100M) (0,3,0)"))
    refused(Result.AAC_BAD_STRIPE_SIZE, raid.parse_created,
            answer("container create strip /stripe_size=17K (0,2,0) (0,3,0)"))
    raid.parse_initialized(answer("disk initialize (0,5,0)"))
    refused(Result.AAC_NO_SUCH_DEVICE, raid.parse_initialized, answer("disk initialize (0,9,0)"))
    refused(Result.AAC_RUN_FAILED, raid.parse_tasks, tmp_path / "no such file")
    with pytest.raises(ValueError, match="a null"):
        raid.parse_tasks("a\0b")


# ---- the site ----

def test_the_configuration_file(build_dir, raid, raid_site):
    with diskscout.Plugin(directory=build_dir) as plugin:
        # One library, one name.
        assert plugin.configuration_file == raid.configuration_file == str(raid_site / "raid.cfg")
        with pytest.raises(ValueError, match="a path of 256 bytes: the library has room for 255"):
            plugin.configuration_file = "/" * 256
        with pytest.raises(ValueError, match="a null"):
            plugin.configuration_file = "a\0b"
        assert raid.configuration_file == str(raid_site / "raid.cfg")


def test_where_it_is_without_a_word(interpreter, build_dir):
    done = interpreter("-c", "import sys, diskscout\nprint(diskscout.Raid(directory=sys.argv[1]).configuration_file)",
                       build_dir)
    assert (done.stdout, done.returncode) == ("/root/hardraid.cfg\n", 0)


def test_lists_that_are_forgotten_and_closed(raid):
    with pytest.warns(ResourceWarning, match="a list of aac_task was not closed"):
        raid.tasks("aac0")
        gc.collect()
    with raid:
        tasks = raid.tasks("aac0")
    with pytest.raises(diskscout.ClosedError):
        len(tasks)
    for call in (raid.controllers, lambda: raid.hot_spare("aac0", 0), lambda: raid.controller_name(0)):
        with pytest.raises(diskscout.ClosedError):
            call()


def test_an_address_is_written_as_the_tool_writes_it():
    address = Address.of(0x010A00)
    assert address == (1, 10, 0) and address.number == 0x010A00
    assert str(address) == "1:0a:0"
