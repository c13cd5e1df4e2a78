# SPDX-License-Identifier: Apache-2.0
"""The answer that diskscout must give in a machine, worked out without it.

The sources are others than diskscout's own wherever there are any: sysfs for the identity texts and the SCSI
addresses (diskscout reads /proc/ide, /proc/scsi and asks the device), sfdisk on the image for the partition
table, stat -f for the space of a mount.
"""

import json
import re
import subprocess

from machine import SEARCH_PATH

DISK_LIMIT = 16  # disks in a list
PARTITION_LIMIT = 32  # partitions of one disk in a list
MOUNT_LIMIT = 32  # entries of the mount table that are looked at
TEXT_LIMIT = 63  # characters of a text in a record
SERIAL_LENGTH, FIRMWARE_LENGTH = 20, 8  # of IDENTIFY data
EXTENDED_TYPES = ("5", "f", "85")
SECTOR = 512


def text(value):
    """A text of the kernel as a record holds it: cut at "#", without outer blanks; null when empty."""
    return value.split("#")[0].strip(" \t")[:TEXT_LIMIT] or None


def stem(path):
    return path.rsplit("/", 1)[-1].rstrip("0123456789")


class Mount:
    def __init__(self, line):
        fields = [re.sub(r"\\([0-7]{3})", lambda code: chr(int(code[1], 8)), field) for field in line.split(" ")]
        self.device, self.point, self.type = fields[:3]

    def covers(self, earlier):
        """Whether this later mount hides an earlier one, or lies beneath it."""
        return self.point == earlier.point or self.point.startswith(earlier.point + "/")


class Kernel:
    """What the machine's kernel says, as the collector brought it back."""

    def __init__(self, machine):
        self.blocks = machine.attributes("blocks")
        self.ide = machine.attributes("ide")
        self.cdrom_link = machine.text("cdrom").strip().rsplit("/", 1)[-1]
        self.mounts = [Mount(line) for line in machine.text("mtab").splitlines()]
        self.sizes = {}  # device: blocks of 1 KiB, in the kernel's order
        for line in machine.text("partitions").splitlines()[2:]:
            _, _, blocks, name = line.split()
            self.sizes[name] = int(blocks)
        self.space = {}  # mount point: (bytes, bytes in use)
        for line in machine.text("before/space").splitlines():
            total, free, unit, point = line.split(" ", 3)
            self.space[point] = int(total) * int(unit), (int(total) - int(free)) * int(unit)

    def disk_names(self):
        """The whole disks, in the order of /proc/partitions; sysfs has no directory for a partition there."""
        for name in self.sizes:
            if name in self.blocks and re.fullmatch("hd[a-t]|sd[a-z]", name):
                if self.blocks[name].get("media", "disk") == "disk":
                    yield name

    def partitions_of(self, disk):
        return [name for name in self.sizes if name != disk and stem(name) == disk]


def position(address):
    host, channel, target, unit = (int(number) for number in address.split(":"))
    return host << 24 | channel << 16 | target << 8 | unit


def geometry(block):
    """Cylinders, heads, sectors; zeros when the kernel has none."""
    if block["geometry"] == "-":
        return 0, 0, 0
    heads, sectors = (int(number) for number in block["geometry"].split())
    if heads * sectors == 0:
        return 0, 0, 0
    return int(block["size"]) // (heads * sectors), heads, sectors


def ide_texts(block):
    # A text that fills its field has no end in sysfs, which runs on into what lies behind it.
    return {"model": text(block["model"]), "serial_number": text(block["serial"][:SERIAL_LENGTH]),
            "firmware_version": text(block["firmware"][:FIRMWARE_LENGTH])}


def identity(block):
    """Interface, address and texts of a disk, which differ by bus."""
    if "media" in block:
        return {"interface": "IDE", "position": 0, "vendor": None, **ide_texts(block)}
    vendor = text(block["vendor"])
    return {"interface": "SCSI", "position": position(block["address"]),
            # Some adapters give a lone bracket where they know no vendor.
            "vendor": None if vendor == "(" else vendor, "model": text(block["model"]),
            "serial_number": None, "firmware_version": text(block["rev"])}


def disks(kernel):
    system = {stem(mount.device) for mount in first_mounts(kernel, "/", "/boot")}
    records = []
    for name in list(kernel.disk_names())[:DISK_LIMIT]:
        cylinders, heads, sectors = geometry(kernel.blocks[name])
        size = cylinders * heads * sectors * SECTOR
        parts = kernel.partitions_of(name)[:PARTITION_LIMIT]
        records.append(identity(kernel.blocks[name]) | {
            "disk_id": len(records), "device_name": "/dev/" + name, "description": "Disk Device", "media": "Disk",
            "size": size, "total_cylinders": cylinders, "tracks_per_cylinder": heads, "total_heads": heads,
            "sectors_per_track": sectors, "total_tracks": cylinders * heads, "total_blocks": size // 1024,
            "total_sectors": size // SECTOR, "bytes_per_block": 1024, "bytes_per_sector": SECTOR,
            "part_number": len(parts), "used_by_system": name in system,
            # The kernel lists an extended partition with one block, whatever its size.
            "ex_part_number": sum(kernel.sizes[part] == 1 for part in parts)})
    return records


def first_mounts(kernel, *points):
    """For each mount point the first mount of a device node there."""
    for point in points:
        found = [mount for mount in kernel.mounts if mount.point == point and mount.device.startswith("/dev/")]
        yield from found[:1]


def partition_table(image):
    """The entries of the image's table, as sfdisk reads it; a disk without a table has none."""
    run = subprocess.run(["sfdisk", "--json", image], capture_output=True, text=True,
                         env={"PATH": SEARCH_PATH, "LC_ALL": "C"})
    if run.returncode != 0:
        assert "does not contain a recognized partition table" in run.stderr, run.stderr
        return []
    return json.loads(run.stdout)["partitiontable"]["partitions"]


def partition_kind(entry, index):
    if entry["type"] in EXTENDED_TYPES:
        return "Extended Partition"
    if entry["type"] == "42":
        return "Dynamic Volume"
    return "Primary Partition" if index <= 3 else "Logical Drive"


def volume(kernel, device):
    """What the mounts of a device add to its partition record."""
    table = kernel.mounts[:MOUNT_LIMIT]
    mounted = [(number, mount) for number, mount in enumerate(table) if mount.device == device]
    points = ";".join(mount.point for _, mount in mounted)
    # A volume that a later mount hides, or has mounts beneath it, shows no type and no space of its own.
    shown = [mount for number, mount in mounted if not any(later.covers(mount) for later in table[number + 1:])]
    total, used = kernel.space[shown[-1].point] if shown else (0, 0)
    return {"mount_point": (points if len(points) <= TEXT_LIMIT else points[:60] + "...") or None,
            "file_system": shown[-1].type if shown else None, "total_space": total, "used_space": used,
            "used_by_system": any(mount.point in ("/", "/boot") for _, mount in mounted)}


def partitions_of(kernel, name, image):
    records = []
    for entry in partition_table(image)[:PARTITION_LIMIT]:
        number = int(entry["node"].removeprefix(str(image)))
        records.append(volume(kernel, f"/dev/{name}{number}") | {
            "disk_device_name": "/dev/" + name, "part_index": number - 1, "start": entry["start"] * SECTOR,
            "size": entry["size"] * SECTOR, "total_sectors": entry["size"],
            "type": partition_kind(entry, number - 1), "label": None,
            "active": bool(entry.get("bootable")), "boot_byte": 0x80 if entry.get("bootable") else 0})
    return records


def cdroms(kernel):
    """Only IDE drives are CD-ROM drives to an agent."""
    records = []
    for name in sorted(kernel.ide):
        if kernel.ide[name]["media"] != "cdrom":
            continue
        devices = ["/dev/" + name] + (["/dev/cdrom"] if kernel.cdrom_link == name else [])
        mounted = [mount for device in devices for mount in kernel.mounts if mount.device == device][:1]
        records.append({
            "cdrom_id": len(records), "device_name": "/dev/" + name, "description": "DVD/CD-ROM Device",
            "interface": "IDE", "position": 0, "media": "CDROM", "vendor": None, **ide_texts(kernel.blocks[name]),
            "mount_point": mounted[0].point if mounted else None, "label": None,
            "total_space": kernel.space[mounted[0].point][0] if mounted else 0})
    return records


def document(machine):
    """The whole answer, as diskscout list --classic --format 1 --json prints it."""
    kernel = Kernel(machine)
    full = len(list(kernel.disk_names())) > DISK_LIMIT
    parts = []
    for name in [] if full else kernel.disk_names():
        parts += partitions_of(kernel, name, machine.image_of(name, kernel.blocks[name]["address"]))
    return {"format": 1, "disks": disks(kernel), "partitions": parts, "cdroms": cdroms(kernel),
            # Which partitions belong to the disks that found no room cannot be told.
            "failed": ["partitions"] if full else []}
