# SPDX-License-Identifier: Apache-2.0
"""The JSON document."""

import json

from conftest import CLASSIC

DISKS = [
    {
        "disk_id": 0,
        "device_name": "/dev/hda",
        "description": "Disk Device",
        "interface": "IDE",
        "position": 0,
        "media": "Disk",
        "vendor": None,
        "model": "FAST DISK",
        "serial_number": "S-1",
        "firmware_version": "1.0",
        "size": 268435456,
        "total_cylinders": 11,
        "tracks_per_cylinder": 12,
        "sectors_per_track": 13,
        "total_heads": 14,
        "total_tracks": 15,
        "total_blocks": 16,
        "total_sectors": 17,
        "bytes_per_block": 1024,
        "bytes_per_sector": 512,
        "part_number": 2,
        "used_by_system": True,
        "ex_part_number": 1,
    },
    {
        "disk_id": 1,
        "device_name": "/dev/sdb",
        "description": None,
        "interface": "SCSI",
        "position": 0xFF020304,
        "media": None,
        "vendor": "ACME",
        "model": None,
        "serial_number": None,
        "firmware_version": "B2",
        "size": 0,
        "total_cylinders": 0,
        "tracks_per_cylinder": 0,
        "sectors_per_track": 0,
        "total_heads": 0,
        "total_tracks": 0,
        "total_blocks": 0,
        "total_sectors": 0,
        "bytes_per_block": 0,
        "bytes_per_sector": 0,
        "part_number": 0,
        "used_by_system": False,
        "ex_part_number": 0,
    },
]
PARTITIONS = [
    {
        "disk_device_name": "/dev/hda",
        "part_index": 0,
        "start": 32256,
        "size": 134217728,
        "total_sectors": 4294967295,
        "type": "Primary Partition",
        "file_system": "ext3",
        "mount_point": "/;/boot",
        "label": None,
        "total_space": 104857600,
        "used_space": 0,
        "used_by_system": True,
        "active": True,
        "boot_byte": 128,
    },
    {
        "disk_device_name": "/dev/hda",
        "part_index": 4,
        "start": 64512,
        "size": 1023,
        "total_sectors": 0,
        "type": "Logical Drive",
        "file_system": None,
        "mount_point": None,
        "label": None,
        "total_space": 0,
        "used_space": 0,
        "used_by_system": False,
        "active": False,
        "boot_byte": 0,
    },
]
CDROMS = [
    {
        "cdrom_id": 7,
        "device_name": "/dev/hdc",
        "description": "DVD/CD-ROM Device",
        "interface": "IDE",
        "position": 0x01020304,
        "media": "CDROM",
        "vendor": None,
        "model": "DVD",
        "serial_number": None,
        "firmware_version": "0.9",
        "mount_point": "/media/disc",
        "label": None,
        "total_space": 734003200,
    }
]
ALL = {"format": 1, "disks": DISKS, "partitions": PARTITIONS, "cdroms": CDROMS, "failed": []}


def same(found, wanted):
    """Equal in values, in their types (1 is not true) and in the order of all keys."""
    return json.dumps(found) == json.dumps(wanted)


def test_whole_document(tool):
    assert same(tool.fake_document("plain"), ALL)


def test_layout(tool):
    result = tool.fake("plain", "list", *CLASSIC, "--json")
    assert result.stdout == json.dumps(ALL, indent=2) + "\n"
    assert result.stderr == ""


def test_kinds_that_were_not_asked_for_have_no_key(tool):
    document = tool.fake_document("plain", "cdroms", "disks")
    assert same(document, {"format": 1, "disks": DISKS, "cdroms": CDROMS, "failed": []})
    assert tool.report["queries"] == "2"


def test_empty_lists(tool):
    document = tool.fake_document("empty")
    assert same(document, {"format": 1, "disks": [], "partitions": [], "cdroms": [], "failed": []})


def test_failed_query_keeps_what_it_found(tool):
    assert same(tool.fake_document("partial", status=1), {**ALL, "failed": ["partitions"]})


def test_failed_queries(tool):
    document = tool.fake_document("failing", status=1)
    failed = ["disks", "partitions", "cdroms"]
    assert same(document, {"format": 1, "disks": [], "partitions": [], "cdroms": [], "failed": failed})


def test_hostile_texts_arrive_whole(tool):
    first, second = tool.fake_document("hostile", "disks")["disks"]
    assert first["vendor"] == "V" * 63
    assert first["model"] == "A\tB\x1b[31m\n\x7f"
    # All 64 bytes, and none of the field behind them.
    assert first["serial_number"] == "S" * 64
    assert first["firmware_version"] == "caf\ufffd"
    assert first["size"] == 2**64 - 1
    assert first["part_number"] == 2**32 - 1
    assert second["vendor"] == "größe"
    assert second["serial_number"] == "\ufffd"


def test_raw_boot_byte_of_a_table_that_holds_no_flag(tool):
    partition, other = tool.fake_document("hostile", "partitions")["partitions"]
    assert (partition["active"], partition["boot_byte"]) == (True, 1)
    assert (partition["disk_device_name"], partition["part_index"]) == (None, 0)
    assert (other["disk_device_name"], other["part_index"]) == ("/dev/sda", 2**32 - 1)


def names(document):
    return [disk["device_name"] for disk in document["disks"]]


def test_length_ends_the_list_before_its_links_do(tool):
    assert names(tool.fake_document("links-beyond-length", "disks")) == ["/dev/sda"]


def test_links_end_the_list_before_its_length_does(tool):
    assert names(tool.fake_document("length-beyond-links", "disks")) == ["/dev/sda", "/dev/sdb"]


def test_negative_length_is_an_empty_list(tool):
    assert names(tool.fake_document("negative-length", "disks")) == []
