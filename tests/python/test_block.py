# SPDX-License-Identifier: Apache-2.0
"""Every field of every record of today's hosts, on all captured ones."""

import dataclasses
import errno
import json
import pathlib
import re

import pytest

import diskscout

HERE = pathlib.Path(__file__).resolve().parent
HOSTS = sorted(found.parent for found in (HERE.parent / "block/hosts").glob("*/expected.json"))
QUERIES = ("devices", "links", "contents", "mounts", "arrays")
RELATION = ("upper", "lower", "relation", "address", "state", "access")
SIZES = {diskscout.BlockDevice: 304, diskscout.BlockLink: 64, diskscout.BlockContent: 112, diskscout.BlockMount: 136,
         diskscout.BlockArray: 160, diskscout.BlockMember: 56, diskscout.BlockPartition: 80}


def plain(value):
    """What is there of a record, by the names that the expected answers have: theirs are without units."""
    if dataclasses.is_dataclass(value):
        assert value.record_size == SIZES[type(value)]
        told = {re.sub(r"_(bytes|sectors|kib)$", "", name): plain(one) for name, one in vars(value).items()}
        return present({name: one for name, one in told.items() if name != "record_size"})
    return [plain(one) for one in value] if isinstance(value, tuple) else value


def present(record):
    """Without what is absent; lists within it alike."""
    if isinstance(record, dict):
        return {key: present(value) for key, value in record.items() if value is not None and value != []}
    return [present(one) for one in record] if isinstance(record, list) else record


def expected_records(answers, query):
    records = answers[query]
    if query == "devices":
        return [present({"node": "/dev/" + one["name"], **answers.get("defaults", {}), **one}) for one in records]
    if query == "links":
        return [present(dict(zip(RELATION, link))) for link in records]
    return present(records)


def as_text(records):
    # As text, because to Python true equals 1.
    return "\n".join(json.dumps(record, sort_keys=True) for record in records)


def answers_of(host):
    return json.loads((host / "expected.json").read_text(encoding="utf-8"))


@pytest.mark.parametrize("host", HOSTS, ids=lambda host: host.name)
def test_every_field(block, show, build_dir, host):
    answers = answers_of(host)
    show(build_dir / "tests/block/hosts" / host.name)
    for query in QUERIES:
        if query not in answers:
            continue
        if answers[query] is None:
            with pytest.raises(diskscout.BlockError) as failure:
                getattr(block, query)()
            assert (failure.value.code, failure.value.name) == (errno.ENOENT, "ENOENT")
            assert failure.value.found == ()
            assert answers["error"] in str(failure.value)
            continue
        with getattr(block, query)() as records:
            assert as_text([plain(record) for record in records]) == as_text(expected_records(answers, query))


# What these hosts' files say of one record each. Sectors have 512 bytes, blocks of the mounts are in host.txt.
LINUX = "0fc63daf-8483-4772-8e79-3d69d8477de4"
WORKED_OUT = {
    ("notebook", "contents", "sda1"): {
        "source": "udev", "error": errno.EACCES, "usage": "filesystem", "type": "exfat", "label": "PHOTOS",
        "uuid": "6F2A-91C3", "version": "1.0"},
    ("notebook", "contents", "sda"): {
        "source": "udev", "error": errno.EACCES, "table": "dos", "table_id": "0x1f2e3d4c",
        "partitions": [{"name": "sda1", "number": 1, "start": 2048 * 512, "size": 60123136 * 512}]},
    ("desktop", "contents", "vda"): {
        "source": "udev", "error": errno.EACCES, "usage": "filesystem", "type": "btrfs", "label": "pool",
        "uuid": "50000000-0000-4000-8000-000000000020", "uuid_sub": "7aea0fcf-0258-4d49-b1a1-88a6cb494848"},
    ("desktop", "contents", "vdb"): {
        "source": "udev", "error": errno.EACCES, "table": "gpt", "table_id": "50000000-0000-4000-8000-000000000002",
        "partitions": [{"name": "vdb1", "number": 1, "start": 2048 * 512, "size": 262144 * 512, "flags": 0,
                        "type": LINUX, "uuid": "50000000-0000-4000-8000-000000000012", "label": "pool"}]},
    ("notebook", "mounts", "/"): {
        "kind": "mount", "id": 25, "parent_id": 1, "major": 253, "minor": 1, "devices": ["dm-1"],
        "source": "/dev/mapper/vg-root", "type": "ext4", "root": "/", "mount_point": "/", "options": "rw,relatime",
        "super_options": "rw,errors=remount-ro", "shadowed": False, "total": 113000000 * 4096,
        "used": (113000000 - 61000000) * 4096, "available": 55000000 * 4096},
    ("md", "mounts", "/boot"): {
        "kind": "mount", "id": 26, "parent_id": 25, "major": 0, "minor": 33, "devices": ["sdc", "sdd"],
        "source": "/dev/sdc", "type": "btrfs", "root": "/@boot", "mount_point": "/boot", "options": "rw",
        "super_options": "rw,subvol=/@boot", "shadowed": False},
    ("notebook", "mounts", None): {
        "kind": "swap", "devices": ["dm-2"], "source": "/dev/dm-2", "type": "partition", "total": 16777212 * 1024,
        "used": 0, "priority": -2},
    ("arrays", "arrays", "md127"): {
        "uuid": "c0000000:00004000:80000000:00000027", "metadata": "1.2", "level": "raid1", "state": "clean",
        "wanted": 2, "active": 2, "failed": 0, "spare": 0, "degraded": 0, "size": 63488 * 512, "layout": 0,
        "sync_action": "idle", "mismatches": 0, "bitmap": "+8", "consistency": "bitmap",
        "members": [{"name": "sdv", "role": "active", "slot": 0, "state": "in_sync", "errors": 0},
                    {"name": "sdw", "role": "active", "slot": 1, "state": "in_sync,write_mostly", "errors": 0}]},
    ("arrays", "arrays", "md5"): {
        "uuid": "c0000000:00004000:80000000:00000005", "metadata": "1.2", "level": "raid5", "state": "clean",
        "wanted": 3, "active": 2, "failed": 1, "spare": 1, "degraded": 1, "size": 126976 * 512, "chunk_size": 65536,
        "layout": 2, "sync_action": "recover", "sync_done": 0, "sync_total": 63488, "mismatches": 0, "bitmap": "none",
        "consistency": "resync",
        "members": [{"name": "sdi", "role": "spare", "slot": 0, "state": "spare", "errors": 0},
                    {"name": "sdg", "role": "active", "slot": 1, "state": "in_sync", "errors": 0},
                    {"name": "sdh", "role": "active", "slot": 2, "state": "in_sync", "errors": 0},
                    {"name": "sdf", "role": "faulty", "state": "faulty", "errors": 0}]},
}


@pytest.mark.parametrize("host, query, name", WORKED_OUT, ids=str)
def test_fields_of_what_is_on_devices_and_where_it_is(block, show, build_dir, host, query, name):
    show(build_dir / "tests/block/hosts" / host)
    expected = WORKED_OUT[host, query, name]
    if query != "mounts":
        expected = {"name": name, **expected}
    with getattr(block, query)() as records:
        (told,) = [plain(one) for one in records if getattr(one, "mount_point" if query == "mounts" else "name") == name]
    assert as_text([told]) == as_text([expected])


# What only a running kernel tells: the made plug-in does.
MADE_ALONE = {"devices": {"dm_target"}, "contents": {"ambiguous"}, "arrays": {"sync_speed"}}


def test_every_field_is_met_on_some_host():
    """What no host has would not be looked at above."""
    seen = {query: set() for query in (*QUERIES, "members", "partitions")}
    known = [(query, record) for host in HOSTS for query in QUERIES if answers_of(host).get(query)
             for record in expected_records(answers_of(host), query)]
    known += [(query, {"name": name, **record}) for (_, query, name), record in WORKED_OUT.items()]
    for query, record in known:
        seen[query] |= set(record)
        for inner in ("members", "partitions"):
            for one in record.get(inner, []):
                seen[inner] |= set(one)
    told = {"devices": diskscout.BlockDevice, "links": diskscout.BlockLink, "contents": diskscout.BlockContent,
            "mounts": diskscout.BlockMount, "arrays": diskscout.BlockArray, "members": diskscout.BlockMember,
            "partitions": diskscout.BlockPartition}
    for query, record in told.items():
        names = {re.sub(r"_(bytes|sectors|kib)$", "", field.name) for field in dataclasses.fields(record)}
        assert names - {"record_size"} - seen[query] == MADE_ALONE.get(query, set()), query


def test_what_is_absent_is_none_and_a_flag_is_a_truth_value(block, show, build_dir):
    show(build_dir / "tests/block/hosts/notebook")
    with block.devices() as devices, block.mounts() as mounts:
        by_name = {device.name: device for device in devices}
        assert by_name["nvme0n1"].partition_number is None
        assert by_name["nvme0n1"].dm_name is None
        assert by_name["nvme0n1"].rotational is False
        assert by_name["nvme0n1"].under_root is True
        assert [mount.priority for mount in mounts if mount.kind == "mount"] == [None] * (len(mounts) - 1)
        assert isinstance(mounts[-1].priority, int)
