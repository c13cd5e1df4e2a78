# SPDX-License-Identifier: Apache-2.0
"""The JSON document of the hardware RAID kinds: every field, and the words beside the numbers."""

import json

import pytest

NAME = {"format": 1, "controller": "aac0"}
FIRST = {"position": 0, "channel": 0, "id": 0, "lun": 0}
SECOND = {"position": 0x010A02, "channel": 1, "id": 10, "lun": 2}
CONTROLLERS = [
    {
        "controller_id": 0,
        "adapter_name": "aac0",
        "adapter_type": "EXAMPLE 2200S",
        "availability": 3,
        "availability_word": "read/write",
        "clustering": 1,
        "clustering_word": "yes",
    },
    {
        "controller_id": 1,
        "adapter_name": "aac1",
        "adapter_type": None,
        "availability": -1,
        "availability_word": "other",
        "clustering": 0,
        "clustering_word": "no",
    },
]
CONTAINERS = [
    {
        "raid_id": 0,
        "disk_number": 2,
        "members": [FIRST, SECOND],
        "type": 1,
        "type_word": "RAID 1",
        "total_size": 1073741824,
        "stripe_size": 0,
        "usage": 5,
        "usage_word": "open",
        "hot_spare": {"position": 0x0400, "channel": 0, "id": 4, "lun": 0},
        "label": "system",
    },
    {
        "raid_id": 2,
        "disk_number": 2,
        "members": [{"position": 24, "container": 24}, {"position": 63, "container": 63}],
        "type": 3,
        "type_word": "RAID 10",
        "total_size": -1073741824,
        "stripe_size": 65536,
        "usage": 7,
        "usage_word": "unknown",
        "hot_spare": None,
        "label": None,
    },
    {
        "raid_id": 24,
        "disk_number": 0,
        "members": [],
        "type": -1,
        "type_word": "unknown",
        "total_size": 0,
        "stripe_size": 0,
        "usage": -1,
        "usage_word": "unknown",
        "hot_spare": None,
        "label": None,
    },
]
RAID_DISKS = [
    {
        "address": FIRST,
        "vendor": "ACME",
        "model": "EX1",
        "device_type": 0,
        "device_type_word": "disk",
        "blocks": 2097152,
        "bytes_per_block": 512,
        "usage": 0,
        "usage_word": "initialized",
        "shared": 1,
        "shared_word": "yes",
        "rate": 320,
    },
    {
        "address": SECOND,
        "vendor": None,
        "model": None,
        "device_type": 2,
        "device_type_word": "printer",
        "blocks": 2147483647,
        "bytes_per_block": 512,
        "usage": 1,
        "usage_word": "not initialized",
        "shared": -1,
        "shared_word": "unknown",
        "rate": 0,
    },
]
RAID_SPACE = [
    {"address": SECOND, "offset": 65536, "free_space": 1073741824},
    {"address": SECOND, "offset": -1073741824, "free_space": 0},
]
RAID_PARTITIONS = [
    {
        "address": SECOND,
        "offset": 65536,
        "size": 3221225472,
        "raid_id": 0,
        "type": 4,
        "type_word": "volume",
        "multilevel_raid_id": 0,
        "multilevel_type": 0,
        "multilevel_type_word": "none",
        "read_write_attribute": 3,
        "read_write_attribute_word": "read/write",
    },
    {
        "address": FIRST,
        "offset": 0,
        "size": 0,
        "raid_id": 24,
        "type": 1,
        "type_word": "RAID 1",
        "multilevel_raid_id": 2,
        "multilevel_type": 1,
        "multilevel_type_word": "stripe",
        "read_write_attribute": 1,
        "read_write_attribute_word": "read",
    },
]
ALL = {
    **NAME,
    "controllers": CONTROLLERS,
    "containers": CONTAINERS,
    "raid-disks": RAID_DISKS,
    "raid-space": RAID_SPACE,
    "raid-partitions": RAID_PARTITIONS,
    "failed": [],
}


def same(found, wanted):
    """Equal in values, in their types (1 is not true) and in the order of all keys."""
    return json.dumps(found) == json.dumps(wanted)


def test_whole_document(tool):
    kinds = [key for key in ALL if key not in ("format", "controller", "failed")]
    assert same(tool.fake_document("plain", *kinds), ALL)


@pytest.mark.parametrize("kind", ["containers", "raid-disks", "raid-space", "raid-partitions"])
def test_one_kind(tool, kind):
    assert same(tool.fake_document("plain", kind), {**NAME, kind: ALL[kind], "failed": []})


def test_controllers_are_about_no_single_one(tool):
    document = tool.fake_document("plain", "controllers")
    assert same(document, {"format": 1, "controllers": CONTROLLERS, "failed": []})


def test_host_without_a_controller(tool):
    document = tool.fake_document("empty", "containers", "raid-space")
    assert same(
        document, {"format": 1, "controller": None, "containers": [], "raid-space": [], "failed": []}
    )


def test_failed_queries(tool):
    document = tool.fake_document("failing", "controllers", "containers", "raid-disks", status=1)
    failed = ["controllers", "containers", "raid-disks"]
    assert same(
        document,
        {
            "format": 1,
            "controller": None,
            "controllers": [],
            "containers": [],
            "raid-disks": [],
            "failed": failed,
        },
    )


def test_unknown_controller(tool):
    document = tool.fake_document("plain", "containers", "--controller", "aac7", status=1)
    assert same(
        document, {"format": 1, "controller": "aac7", "containers": [], "failed": ["containers"]}
    )


def test_failed_query_keeps_what_it_found(tool):
    document = tool.fake_document("partial", "raid-disks", "raid-space", status=1)
    assert same(
        document,
        {
            **NAME,
            "raid-disks": RAID_DISKS,
            "raid-space": RAID_SPACE,
            "failed": ["raid-disks", "raid-space"],
        },
    )


def test_values_without_a_name_have_no_word(tool):
    document = tool.fake_document("hostile", "controllers", "containers", "raid-disks", "raid-partitions")
    (controller,) = document["controllers"]
    (container,) = document["containers"]
    (disk,) = document["raid-disks"]
    (partition,) = document["raid-partitions"]
    # All 32 bytes of a field without an end, and none of the number behind it.
    assert controller["adapter_type"] == 32 * "T"
    found = [
        (record[field], record[f"{field}_word"])
        for record, field in [
            (controller, "availability"),
            (controller, "clustering"),
            (container, "type"),
            (container, "usage"),
            (disk, "device_type"),
            (disk, "usage"),
            (disk, "shared"),
            (partition, "type"),
            (partition, "multilevel_type"),
            (partition, "read_write_attribute"),
        ]
    ]
    assert found == [(number, None) for number in (4, 63, 9, 10, 10, 6, 2, -2, 7, 4)]


def test_numbers_out_of_the_ordinary(tool):
    document = tool.fake_document("hostile", "containers", "raid-disks", "raid-partitions")
    (container,) = document["containers"]
    (disk,) = document["raid-disks"]
    (partition,) = document["raid-partitions"]
    assert container["disk_number"] == 70
    assert len(container["members"]) == 64
    assert container["members"][63] == {"position": 0x0F0F, "channel": 0, "id": 15, "lun": 15}
    assert (container["raid_id"], container["total_size"]) == (-1, -(2**63))
    assert container["hot_spare"] == {"position": -2, "channel": -1, "id": 255, "lun": 254}
    assert disk["vendor"] == 64 * "V"
    assert (disk["blocks"], disk["bytes_per_block"], disk["rate"]) == (-1, -512, -1)
    assert (partition["address"], partition["offset"], partition["size"]) == (None, -1024, -(2**63))
