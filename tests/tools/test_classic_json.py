# SPDX-License-Identifier: Apache-2.0
"""The documents of format 2 about the classic kinds: what is absent is null, what may wrap stands beside the truth."""

import json

import pytest
from documents import CLASSIC_KINDS, CONTROLLER_KINDS, HOST_KINDS, errors_of
from test_json import CDROMS, DISKS, PARTITIONS
from test_raid_json import CONTAINERS, CONTROLLERS, RAID_DISKS, RAID_PARTITIONS, RAID_SPACE

# Who tells no geometry tells none of these.
COUNTS = ["total_cylinders", "tracks_per_cylinder", "sectors_per_track", "total_heads", "total_tracks"]
SUMS = ["total_blocks", "total_blocks_low32", "total_sectors", "total_sectors_low32"]


def without(record, *keys):
    return {key: value for key, value in record.items() if key not in keys}


IDE_DISK = {
    **without(DISKS[0]),
    "position": None,
    "total_blocks_low32": 16,
    "total_blocks": 256 * 1024,
    "total_sectors_low32": 17,
    "total_sectors": 256 * 2048,
}
SCSI_DISK = {**DISKS[1], "size": None, **{name: None for name in (*COUNTS, *SUMS)}}
CHANGED = ("total_sectors", "mount_point", "active")
PARTITION = {
    "device_name": "/dev/hda1",
    **without(PARTITIONS[0], *CHANGED),
    "total_sectors_low32": 4294967295,
    "total_sectors": 262144,
    "mount_points": ["/", "/boot"],
    "bootable": True,
}
LOGICAL_DRIVE = {
    "device_name": "/dev/hda5",
    **without(PARTITIONS[1], *CHANGED),
    "total_sectors_low32": 0,
    "total_sectors": 1,
    "mount_points": [],
    "total_space": None,
    "used_space": None,
    "bootable": False,
}
CDROM = {**CDROMS[0], "position": None}


def sorted_text(record):
    # As text, because to Python true equals 1.
    return json.dumps(record, sort_keys=True, indent=1)


def same(found, wanted):
    assert [sorted_text(one) for one in found] == [sorted_text(one) for one in wanted]


def test_disks(tool):
    disks = tool.made_document("--classic", "disks")["disks"]
    # Whether a record that lacks all has blocks of no bytes is not for us to say.
    assert disks[1]["bytes_per_block"] in (0, None)
    assert disks[1]["bytes_per_sector"] in (0, None)
    disks[1].update(bytes_per_block=0, bytes_per_sector=0)
    same(disks, [IDE_DISK, SCSI_DISK])


def test_partitions(tool):
    partitions = tool.made_document("--classic", "partitions")["partitions"]
    same(partitions, [PARTITION, LOGICAL_DRIVE])
    assert next(iter(partitions[0])) == "device_name"


def test_cdroms(tool):
    same(tool.made_document("--classic", "cdroms")["cdroms"], [CDROM])


def test_same_rows_with_the_block_side(tool):
    assert tool.made_document()["partitions"] == tool.made_document("--classic")["partitions"]


@pytest.mark.parametrize("size", [1, 512, 4398046511104 + 1024, 2**64 - 1])
def test_sizes_beyond_32_bits(tool, size):
    env = {"FAKE_PLUGIN_SIZES": str(size)}
    (disk,) = tool.made_document("--classic", "disks", classic="sizes", env=env)["disks"]
    assert (disk["size"], disk["total_blocks"], disk["total_sectors"]) == (size, size // 1024, size // 512)


def test_hostile_partitions(tool):
    first, second = tool.made_document("--classic", "partitions", classic="hostile")["partitions"]
    assert (first["device_name"], first["disk_device_name"], first["part_index"]) == (None, None, 0)
    assert (first["size"], first["total_sectors"]) == (None, None)
    assert first["mount_points"] == ["/\ufffd/\U00010348"]
    assert (first["total_space"], first["used_space"]) == (1, 2**64 - 1)
    # No flag, though it is not 0.
    assert (first["boot_byte"], first["bootable"]) == (1, False)
    assert second["device_name"] == "/dev/sda4294967296"
    assert second["mount_points"] == []


def test_hostile_disks(tool):
    first, second = tool.made_document("--classic", "disks", classic="hostile")["disks"]
    assert first["model"] == "A\tB\x1b[31m\n\x7f"
    assert first["serial_number"] == "S" * 64
    assert first["firmware_version"] == "caf\ufffd"
    assert first["part_number"] == 2**32 - 1
    assert first["position"] == 0
    assert second["serial_number"] == "\ufffd"


def check_low(record, name, wanted):
    """Of a number of which the lower half is known: no more is told than that, unless somebody knows all of it."""
    assert record[f"{name}_low32"] % 2**32 == wanted
    assert record[name] is None or record[name] % 2**32 == wanted


def of_aac0(record):
    return {"controller": "aac0", **record}


# What only the operations tell, of a plug-in that has none.
NOT_ASKED = {"rebuilt_permille": None, "device": None}


@pytest.fixture
def raid(tool):
    return tool.made_document(*CLASSIC_KINDS[3:], "--controller", "aac0")


def test_raid_keys(raid):
    assert [key for key in raid if key in CLASSIC_KINDS] == CLASSIC_KINDS[3:]
    assert raid["controller"] == "aac0"
    same(raid["controllers"], CONTROLLERS)
    same(raid["raid_partitions"], [of_aac0(piece) for piece in RAID_PARTITIONS])


def whole_member(member):
    """A member is a disk or a container; what it does not have is absent."""
    return {**{key: None for key in ("container", "channel", "id", "lun")}, **member}


def test_containers(raid):
    low = [1073741824, 3221225472, 0]
    for container, wanted, size in zip(raid["containers"], CONTAINERS, low, strict=True):
        check_low(container, "total_size", size)
        found = without(container, "total_size", "total_size_low32")
        members = [whole_member(member) for member in wanted["members"]]
        stripe = wanted["stripe_size"] or None
        known = {**without(wanted, "total_size"), "members": members, "stripe_size": stripe}
        same([without(found, "state")], [{**of_aac0(known), **NOT_ASKED}])


@pytest.mark.parametrize("kind", ["tasks", "defects"])
def test_plugin_without_operations(tool, kind):
    document = tool.made_document(kind, "--controller", "aac0", status=1)
    assert document[kind] is None
    name = {"tasks": "RAID task", "defects": "RAID defect"}[kind]
    assert errors_of(document)[0]["text"] == (
        f"the {name} query failed on aac0: the plug-in has no operation for it; it found nothing before"
    )


def test_state_that_the_disks_tell_without_the_tasks(tool):
    """The second member of the mirror is a printer."""
    states = [container["state"] for container in tool.made_document("containers", "--controller", "aac0")["containers"]]
    assert states == ["degraded", "unknown", "unknown"]


def test_raid_disks(raid):
    small, large = raid["raid_disks"]
    assert (small["blocks"], large["blocks"]) == (2097152, None)
    assert small["blocks_least"] in (None, 2097152)
    assert large["blocks_least"] == 2147483647
    same([without(one, "blocks", "blocks_least") for one in (small, large)],
         [of_aac0(without(one, "blocks")) for one in RAID_DISKS])


def test_raid_space(raid):
    low = [(65536, 1073741824), (3221225472, 0)]
    for area, wanted, (offset, free) in zip(raid["raid_space"], RAID_SPACE, low, strict=True):
        check_low(area, "offset", offset)
        check_low(area, "free_space", free)
        assert (area["controller"], area["address"]) == ("aac0", wanted["address"])


@pytest.mark.parametrize("kind", CONTROLLER_KINDS)
def test_old_words_of_the_kinds(tool, kind):
    new = tool.made_document(kind, "--controller", "aac0")
    old = tool.made_document(kind.replace("_", "-"), "--controller", "aac0")
    assert kind in new
    assert old[kind] == new[kind]


def test_controllers_are_about_no_single_one(tool):
    assert "controller" not in tool.made_document("controllers")


def test_host_without_a_controller(tool):
    document = tool.made_document("containers", "raid-space", classic="empty")
    assert (document["controller"], document["containers"], document["raid_space"]) == (None, [], [])


def test_unknown_controller(tool, tmp_path):
    (tmp_path / "raid.cfg").write_text("")
    words = ["containers", "--controller", "aac7", "--config", tmp_path / "raid.cfg"]
    document = tool.made_document(*words, status=1)
    assert (document["controller"], document["containers"]) == ("aac7", None)
    first, *hints = errors_of(document)
    assert (first["kind"], first["code"]) == ("containers", "query_failed")
    assert any('there is no controller "aac7"' in hint["text"] for hint in [first, *hints])


def test_failed_list_of_controllers(tool):
    document = tool.made_document("controllers", "containers", "raid_disks", classic="failing", status=1)
    assert [document[kind] for kind in ("controllers", "containers", "raid_disks")] == [None, None, None]
    assert document["controller"] is None
    assert {message["kind"] for message in errors_of(document)} >= {"controllers", "containers", "raid_disks"}


def test_failed_query_keeps_what_it_found(tool):
    document = tool.made_document("--classic", classic="partial", status=1)
    same(document["partitions"], [PARTITION, LOGICAL_DRIVE])
    assert [(message["kind"], message["code"]) for message in errors_of(document)] == [("partitions", "query_failed")]


def test_failed_raid_query_keeps_what_it_found(tool):
    document = tool.made_document("raid_disks", "raid_space", classic="partial", status=1)
    assert (len(document["raid_disks"]), len(document["raid_space"])) == (2, 2)
    failed = [message["kind"] for message in errors_of(document) if message["kind"]]
    assert failed == ["raid_disks", "raid_space"]


def test_failed_queries(tool):
    document = tool.made_document("--classic", classic="failing", status=1)
    assert [document[kind] for kind in HOST_KINDS] == [None, None, None]
    failed = [(message["kind"], message["code"]) for message in errors_of(document)]
    assert failed == [(kind, "query_failed") for kind in HOST_KINDS]


def test_empty_lists(tool):
    document = tool.made_document("--classic", classic="empty")
    assert [document[kind] for kind in HOST_KINDS] == [[], [], []]


def test_values_without_a_name_have_no_word(tool):
    document = tool.made_document("controllers", "containers", "raid_disks", "raid_partitions", classic="hostile")
    (controller,) = document["controllers"]
    (container,) = document["containers"]
    (disk,) = document["raid_disks"]
    (piece,) = document["raid_partitions"]
    assert (controller["availability"], controller["availability_word"]) == (4, None)
    assert container["label"] == "a\x1b[2J\nb"
    assert container["total_size_low32"] % 2**32 == 0
    assert (disk["bytes_per_block"], disk["vendor"]) == (-512, 64 * "V")
    assert piece["address"] is None


# The first format knows neither the kinds of today nor a word of the second one.
def test_first_format_is_classic_without_saying_so(tool):
    one = tool.made("list", "--json", "--format", "1")
    other = tool.made("list", "--json", "--format", "1", "--classic")
    assert (one.returncode, one.stdout) == (0, other.stdout)
    assert list(json.loads(one.stdout)) == ["format", *HOST_KINDS, "failed"]
    assert tool.block_report == {}


def test_second_format_may_be_named(tool):
    assert tool.made_document("--format", "2", "disks")["disks"] == tool.made_document("disks")["disks"]


def test_first_format_writes_the_old_words(tool):
    result = tool.made("list", "--json", "--format=1", "raid-disks")
    assert list(json.loads(result.stdout)) == ["format", "controller", "raid-disks", "failed"]
