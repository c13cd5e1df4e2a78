# SPDX-License-Identifier: Apache-2.0
"""The printed records against what is told of every captured host.

expected.json beside each host of ../../hosts tells every field of every record.
"""

import json
import pathlib

import pytest

from conftest import OK

HERE = pathlib.Path(__file__).resolve().parent
HOSTS = sorted(found.parent for found in (HERE.parent.parent / "hosts").glob("*/host.txt"))
COUNTERS = "MEMORY_COUNTER    hdd    : 0\nMEMORY_COUNTER    hwraid : 0\n"


def text(name):
    return lambda record: record[name] or ""


def number(name):
    # A 32-bit count without a sign, printed with one.
    return lambda record: str((record[name] + 2**31) % 2**32 - 2**31)


def switch(name):
    return lambda record: str(int(record[name]))


def megabytes(name):
    return lambda record: f"{((record[name] >> 20) + 2**31) % 2**32 - 2**31}MB"


def position(record):
    return f"{record['position']:08x}"


def boot_byte(record):
    return str((record["boot_byte"] + 128) % 256 - 128)


# The fields behind the address, in the order of the record: name, and how to print what is told.
DISK = (
    ("nDiskID", number("disk_id")),
    ("szDeviceName", text("device_name")),
    ("szDescription", text("description")),
    ("szInterface", text("interface")),
    ("nPosition", position),
    ("szMedia", text("media")),
    ("szVendor", text("vendor")),
    ("szModel", text("model")),
    ("szSerialNumber", text("serial_number")),
    ("szFirmwareVersion", text("firmware_version")),
    ("nSize", megabytes("size")),
    ("nTotalCylinders", number("total_cylinders")),
    ("nTracksPerCylinder", number("tracks_per_cylinder")),
    ("nSectorsPerTrack", number("sectors_per_track")),
    ("nTotalHeads", number("total_heads")),
    ("nTotalTracks", number("total_tracks")),
    ("nTotalBlocks", number("total_blocks")),
    ("nTotalSectors", number("total_sectors")),
    ("nBytesPerBlock", number("bytes_per_block")),
    ("nBytesPerSector", number("bytes_per_sector")),
    ("nPartNumber", number("part_number")),
    ("bUsedBySystem", switch("used_by_system")),
    ("nExPartNumber", number("ex_part_number")),
)
CDROM = (
    ("nCdromID", number("cdrom_id")),
    ("szDeviceName", text("device_name")),
    ("szDiscription", text("description")),
    ("szInterface", text("interface")),
    ("nPosition", position),
    ("szMedia", text("media")),
    ("szVendor", text("vendor")),
    ("szModel", text("model")),
    ("szSerialNumber", text("serial_number")),
    ("szFirmwareVersion", text("firmware_version")),
    ("szMountPoint", text("mount_point")),
    ("szLabel", text("label")),
    ("nTotalSpace", megabytes("total_space")),
)
PART = (
    ("szDiskDeviceName", text("disk_device_name")),
    ("nPartIndex", number("part_index")),
    ("nStart", megabytes("start")),
    ("nSize", megabytes("size")),
    ("nTotalSectors", number("total_sectors")),
    ("szType", text("type")),
    ("szFileSystem", text("file_system")),
    ("szMountPoint", text("mount_point")),
    ("szLabel", text("label")),
    ("nTotalSpace", megabytes("total_space")),
    ("nUsedSpace", megabytes("used_space")),
    ("bUsedBySystem", switch("used_by_system")),
    ("bActive", boot_byte),
)
KINDS = {
    "stdisk": ("disks", "DISK", DISK),
    "stcdrom": ("cdroms", "CDROM", CDROM),
    "stpart": ("partitions", "PART", PART),
}


def banner(kind, place, count):
    return "*" * 60 + f" {kind} ({place}/{count})\n"


def field(name, value):
    return f"{name:<19}= {value}\n"


def listing(kind, fields, records):
    shown = ""
    for place, record in enumerate(records):
        last = place + 1 == len(records)
        shown += banner(kind, place, len(records)) + field("this", "0x<record>")
        shown += "".join(field(name, value(record)) for name, value in fields)
        shown += field("next", "0x00000000" if last else "0x<following>")
    return shown + banner(kind, "end", len(records))


def as_told(printed):
    """A byte that is no UTF-8 is told as one replacement character."""
    return printed.encode("latin-1").decode("utf-8", "replace")


@pytest.mark.parametrize("command", KINDS)
@pytest.mark.parametrize("directory", HOSTS, ids=lambda directory: directory.name)
def test_records(cli, command, directory):
    key, kind, fields = KINDS[command]
    records = json.loads((directory / "expected.json").read_text(encoding="utf-8"))[key]
    done = cli.run(command, host=directory.name)
    # Whatever the query returned, what it left is shown and released.
    assert done.status == 0
    assert as_told(done.body(OK)) == COUNTERS + listing(kind, fields, records) + COUNTERS
