# SPDX-License-Identifier: Apache-2.0
"""The documents about the devices of today."""

import errno
import json
import os
import re

import pytest
from documents import errors_of
from raid_site import SOURCES
from records import INNER, RECORDS, filled, members_of

MIB = 2**20
GIB = 2**30


def device(name, kind, major, minor, **known):
    plain = {
        "node": f"/dev/{name}",
        "logical_sector": 512,
        "physical_sector": 512,
        "rotational": False,
        "removable": False,
        "hidden": False,
        "read_only": False,
        "under_root": False,
        "under_boot": False,
        "under_swap": False,
        "size": 0,
    }
    return filled("block_device", name=name, kind=kind, major=major, minor=minor, **{**plain, **known})


def partition(name, disk, number, minor, size, **known):
    major = known.pop("major", 8)
    return device(name, "partition", major, minor, disk=disk, partition_number=number, size=size, **known)


MAPPED = {"state": "running", "dm_uuid": "LVM-0123456789", "dm_kind": "lvm", "dm_target": "linear"}
DEVICES = [
    device("dm-0", "dm", 253, 0, size=20 * GIB, dm_name="vg-root", **MAPPED),
    device("dm-1", "dm", 253, 1, size=2 * GIB, dm_name="vg-swap", **MAPPED),
    device("md0", "md", 9, 0, size=32 * GIB),
    device(
        "nvme0n1", "disk", 259, 0, size=512110190592, rotational=None, transport="nvme", serial_source="not asked"
    ),
    partition("nvme0n1p1", "nvme0n1", 1, 1, 512000000000, major=259),
    device(
        "sda",
        "disk",
        8,
        0,
        size=64 * GIB,
        physical_sector=4096,
        rotational=True,
        transport="sata",
        model="EXAMPLE DISK",
        model_source="vpd",
        serial="EX-1",
        serial_source="udev",
        firmware="1.0",
        firmware_source="kernel",
        wwn="0x5000c500a1b2c3d4",
        scsi_host=2,
        scsi_channel=0,
        scsi_target=0,
        scsi_lun=1,
        links=["/dev/disk/by-id/ata-EXAMPLE_DISK_EX-1", "/dev/disk/by-path/pci-0000:00:1f.2-ata-1"],
        controller_pci="0000:00:1f.2",
        numa_node=1,
        state="running",
        under_root=True,
        under_boot=True,
        under_swap=True,
    ),
    partition("sda1", "sda", 1, 1, 512 * MIB),
    partition("sda2", "sda", 2, 2, 32 * GIB),
    partition("sda10", "sda", 10, 10, MIB),
    device("sdb", "disk", 8, 16, size=33 * GIB),
    partition("sdb1", "sdb", 1, 17, 32 * GIB),
    device("sr0", "rom", 11, 0, removable=True, read_only=None),
]
STANDS_ON = [
    ("dm-0", "md0", "slave"),
    ("dm-1", "md0", "slave"),
    ("md0", "sda2", "slave"),
    ("md0", "sdb1", "slave"),
    ("nvme0n1p1", "nvme0n1", "partition"),
    ("sda1", "sda", "partition"),
    ("sda2", "sda", "partition"),
    ("sda10", "sda", "partition"),
    ("sdb1", "sdb", "partition"),
]
LINKS = [filled("block_link", upper=upper, lower=lower, relation=relation) for upper, lower, relation in STANDS_ON]
UUID = "6b1f3c8e-1f2a-4c55-9a51-0d5d4fb0c2aa"


def content(name, **known):
    return filled("block_content", name=name, **{"source": "device", "ambiguous": False, **known})


FILESYSTEMS = [
    content("dm-0", usage="filesystem", type="ext4", label="root", uuid=UUID),
    content("dm-1", usage="other", type="swap", uuid=UUID),
    content("md0", usage="raid", type="LVM2_member", uuid=UUID, version="LVM2 001"),
    content(
        "nvme0n1",
        table="gpt",
        table_id="99999999-2222-3333-4444-555555555555",
        partitions=[
            filled(
                "block_partition",
                name="nvme0n1p1",
                number=1,
                start=MIB,
                size=512000000000,
                type="0fc63daf-8483-4772-8e79-3d69d8477de4",
                uuid="11111111-2222-3333-4444-555555555555",
                label="data",
                flags=-(2**63),
            )
        ],
    ),
    content(
        "nvme0n1p1",
        source="udev",
        error=errno.EACCES,
        ambiguous=None,
        usage="filesystem",
        type="xfs",
        label="data",
        uuid=UUID,
    ),
    content(
        "sda",
        table="dos",
        table_id="0x0a1b2c3d",
        partitions=[
            filled(
                "block_partition",
                name="sda1",
                number=1,
                start=MIB,
                size=512 * MIB,
                type="0x83",
                uuid="0a1b2c3d-01",
                flags=128,
            ),
            filled("block_partition", number=2, start=537919488, size=0, type="0x5", flags=0),
        ],
    ),
    content("sda1", usage="filesystem", type="ext2", uuid=UUID),
    content(
        "sda2",
        usage="raid",
        type="linux_raid_member",
        label="host:0",
        uuid=UUID,
        uuid_sub="7c1f3c8e-1f2a-4c55-9a51-0d5d4fb0c2bb",
    ),
]
ARRAYS = [
    filled(
        "block_array",
        name="md0",
        uuid="01234567:89abcdef:01234567:89abcdef",
        metadata="1.2",
        level="raid1",
        state="active",
        wanted=2,
        active=1,
        failed=0,
        spare=1,
        degraded=1,
        size=32 * GIB,
        sync_action="recover",
        sync_done=1000,
        sync_total=67108864,
        sync_speed=150000,
        mismatches=0,
        bitmap="+8",
        consistency="bitmap",
        members=[
            filled("block_member", name="sda2", role="active", slot=0, state="in_sync", errors=3),
            filled("block_member", name="sdb1", role="spare", state="spare"),
        ],
    )
]


def mount(number, mount_point, source, **known):
    plain = {
        "kind": "mount",
        "parent_id": 1,
        "major": 0,
        "minor": 22,
        "root": "/",
        "options": "rw,relatime",
        "super_options": "rw",
        "shadowed": False,
    }
    return filled("block_mount", id=number, mount_point=mount_point, source=source, **{**plain, **known})


def of_device(name, major, minor, form, **known):
    space = {"total": 10 * GIB, "used": 4 * GIB, "available": 5 * GIB}
    return {"devices": [name], "major": major, "minor": minor, "type": form, **space, **known}


ROOT = "/dev/mapper/vg-root"
MOUNTS = [
    mount(25, "/", ROOT, **of_device("dm-0", 253, 0, "ext4")),
    mount(26, "/proc", "proc", type="proc"),
    mount(27, "/boot", "/dev/sda1", **of_device("sda1", 8, 1, "ext2")),
    mount(28, "/home", ROOT, **of_device("dm-0", 253, 0, "ext4", root="/@home")),
    mount(29, "/data", "/dev/nvme0n1p1", **of_device("nvme0n1p1", 259, 1, "xfs", shadowed=True)),
    # The number that stands for absent elsewhere is a priority here.
    filled(
        "block_mount",
        kind="swap",
        devices=["dm-1"],
        source="/dev/dm-1",
        type="partition",
        total=2 * GIB,
        used=0,
        priority=-1,
    ),
]
BLOCK = {"devices": DEVICES, "links": LINKS, "filesystems": FILESYSTEMS, "arrays": ARRAYS, "mounts": MOUNTS}
CODES = {"devices": 222100, "links": 223100, "filesystems": 224100, "mounts": 225100, "arrays": 226100}
BY_DEFAULT = ["devices", "links", "mounts", "disks", "partitions", "cdroms"]


def same(found, wanted):
    """Equal in values, in their types (1 is not true) and in the order of all keys."""
    assert [json.dumps(one) for one in found] == [json.dumps(one) for one in wanted]


def told(document, kind):
    """Of a device of which nothing is known there may be a row or none."""
    return [record for record in document[kind] if kind != "filesystems" or record["name"] != "sr0"]


def kinds_in(document):
    return [key for key in document if key in (*BLOCK, *BY_DEFAULT)]


@pytest.mark.parametrize("block", ["plain", "longer"])
def test_whole_documents(tool, block):
    document = tool.made_document(*BLOCK, block=block)
    assert kinds_in(document) == list(BLOCK)
    for kind, wanted in BLOCK.items():
        same(told(document, kind), wanted)
    assert errors_of(document) == []


def test_what_a_shorter_record_does_not_hold_is_absent(tool):
    document = tool.made_document("devices", "links", block="shorter")
    names = list(DEVICES[0])
    cut = {name: None for name in names[names.index("controller_pci") :]}
    same(document["devices"], [{**record, **cut} for record in DEVICES])
    same(document["links"], LINKS)


@pytest.mark.parametrize("kind", BLOCK)
def test_one_kind(tool, kind):
    document = tool.made_document(kind)
    assert kinds_in(document) == [kind]
    same(told(document, kind), BLOCK[kind])
    assert "controller" not in document


def test_program_orders_the_kinds(tool):
    assert kinds_in(tool.made_document("mounts", "devices", "links", "mounts")) == ["devices", "links", "mounts"]


def test_without_a_kind(tool):
    document = tool.made_document()
    assert kinds_in(document) == BY_DEFAULT
    for kind in ("devices", "links", "mounts"):
        same(document[kind], BLOCK[kind])
    assert [disk["device_name"] for disk in document["disks"]] == ["/dev/hda", "/dev/sdb"]


def test_nothing_there(tool):
    document = tool.made_document(*BLOCK, block="empty")
    assert {kind: document[kind] for kind in BLOCK} == {kind: [] for kind in BLOCK}


def test_paths(tool):
    document = tool.made_document("devices", "links", block="paths")
    path, disk = document["devices"]
    assert (path["name"], path["hidden"]) == ("nvme0c0n1", True)
    assert (path["node"], path["major"], path["minor"]) == (None, None, None)
    assert (disk["name"], disk["hidden"]) == ("nvme0n1", False)
    (link,) = document["links"]
    assert list(link.values()) == ["nvme0n1", "nvme0c0n1", "path", "0000:01:00.0", "live", "optimized"]


@pytest.mark.parametrize("error", [errno.EACCES, errno.ENOENT, errno.ENOMEM])
def test_failed_queries(tool, error):
    env = {"FAKE_BLOCK_FAILS": " ".join(map(str, CODES.values())), "FAKE_BLOCK_ERRNO": str(error)}
    document = tool.made_document(*BLOCK, env=env, status=1)
    assert {kind: document[kind] for kind in BLOCK} == {kind: None for kind in BLOCK}
    failed = [message for message in errors_of(document) if message["code"] == "query_failed"]
    assert sorted(message["kind"] for message in failed) == sorted(BLOCK)
    assert all(os.strerror(error) in message["text"] for message in failed)


@pytest.mark.parametrize("kind", BLOCK)
def test_failed_query_leaves_the_others(tool, kind):
    env = {"FAKE_BLOCK_FAILS": str(CODES[kind]), "FAKE_BLOCK_ERRNO": str(errno.EACCES)}
    document = tool.made_document(*BLOCK, env=env, status=1)
    assert document[kind] is None
    for other in BLOCK:
        if other != kind:
            same(told(document, other), BLOCK[other])
    assert [message["kind"] for message in errors_of(document)] == [kind]


@pytest.mark.parametrize("kind", ["links", "mounts"])
def test_unasked_list_that_alone_has_no_file(tool, kind):
    """Only a host that tells no devices at all is one of another time."""
    env = {"FAKE_BLOCK_FAILS": str(CODES[kind]), "FAKE_BLOCK_ERRNO": str(errno.ENOENT)}
    document = tool.made_document(env=env, status=1)
    assert document[kind] is None
    assert [message["kind"] for message in errors_of(document)] == [kind]


def test_failed_block_side_leaves_the_classic_one(tool):
    env = {"FAKE_BLOCK_FAILS": " ".join(map(str, CODES.values()))}
    document = tool.made_document(env=env, status=1)
    assert [document[kind] for kind in ("devices", "links", "mounts")] == [None, None, None]
    assert [len(document[kind]) for kind in ("disks", "partitions", "cdroms")] == [2, 2, 1]


def test_hostile_texts_arrive_whole(tool):
    document = tool.made_document("devices", "links", "mounts", block="hostile")
    first, second, third = document["devices"]
    assert first["name"] == "sd\x1b]0;x\x07a\nsdb"
    assert first["size"] == 2**63 - 1
    assert first["model"] == "\x1b[31m\x07\x7f\x9b5n\nDISKS\r\tend"
    assert first["serial"] == "\"$(id)\\`id`'"
    assert first["vendor"] == "\ufffd\ufffd(café"
    assert second["name"] == 1000 * "n"
    assert second["size"] == -2
    assert (third["name"], third["node"]) == ("", None)
    assert [mounted["mount_point"] for mounted in document["mounts"]][1] == "/mnt/second"
    assert [link["upper"] for link in document["links"]] == ["gone", ""]


def test_ten_thousand_devices(tool):
    document = tool.made_document("devices", block="many")
    assert [record["name"] for record in document["devices"]] == [f"nbd{number}" for number in range(10000)]


def test_lists_go_back(tool):
    tool.made_document(*BLOCK)
    codes = [word for name, word in tool.block_report.items() if name.startswith("query") and name != "queries"]
    assert sorted(set(codes)) == sorted(codes) == sorted(map(str, CODES.values()))
    assert tool.block_report["releases"] == tool.block_report["queries"]
    assert tool.report.get("queries", "0") == "0"


def test_classic_lists_ask_no_block_plugin(tool):
    document = tool.made_document("--classic")
    assert kinds_in(document) == ["disks", "partitions", "cdroms"]
    assert document["messages"] == []
    assert tool.block_report == {}


def test_device_without_a_classic_name_is_told(tool):
    document = tool.made_document()
    reasons = [message for message in document["messages"] if message["code"] == "no_classic_name"]
    assert any("nvme0n1" in message["text"] for message in reasons)
    assert {message["severity"] for message in reasons} <= {"note", "warning"}


def test_everything_that_a_record_points_to_goes_from_process_to_process():
    """A member that the table of pointers forgets would be an address of a process that is gone."""
    source = (SOURCES / "tools" / "diskscout" / "kinds" / "packed_list.cpp").read_text(encoding="utf-8")
    rows = set(re.findall(r"\b(?:TEXT|LIST)\((block_\w+), (\w+)", source))
    pointers = {("block_text", "text")}
    for record in (*RECORDS.values(), *INNER.values()):
        pointers |= {
            (record, name) for name, kind in members_of(record).items() if kind in ("string", "texts", "objects")
        }
    assert rows == pointers
