# SPDX-License-Identifier: Apache-2.0
"""The records of diskscout-block.so: diskscout_block.h. What is absent there is None here, a list ().

Texts are UTF-8 without control characters: what a host says otherwise stands as ``\\x`` and two digits a byte.
"""

from __future__ import annotations

from dataclasses import dataclass
from typing import Optional, Tuple

from .fields import FLAG, INT, NAME, OPTIONAL_INT, OPTIONAL_LONGLONG, SIZE, TEXT, Record, inner, laid_out, row

_RECORD_SIZE = "bytes that the library's own record has: fields behind its end are absent"


@laid_out("block_text", next_at=1)
@dataclass(frozen=True)
class BlockText(Record):
    """One of several texts; records hold the texts alone."""

    record_size: int = row("record_size", SIZE, _RECORD_SIZE)
    text: str = row("text", NAME, "the text")


TEXTS = inner(BlockText, lambda one: one.text)


@laid_out("block_device", next_at=1)
@dataclass(frozen=True)
class BlockDevice(Record):
    """One block device of today's hosts."""

    record_size: int = row("record_size", SIZE, _RECORD_SIZE)
    name: str = row("name", NAME, "the kernel's, such as nvme0n1p2 or dm-0")
    node: Optional[str] = row("node", TEXT, "device node; None for a hidden device")
    major: Optional[int] = row("major", OPTIONAL_INT, "of the device number; None for a hidden device")
    minor: Optional[int] = row("minor", OPTIONAL_INT, "of the device number; None for a hidden device")
    kind: str = row("kind", NAME, '"disk", "partition", "rom", "md", "dm", "loop", "path" or another word')
    disk: Optional[str] = row("disk", TEXT, "of a partition: name of the device that it is part of")
    partition_number: Optional[int] = row("partition_number", OPTIONAL_INT, "of a partition: from 1 on")
    size_bytes: Optional[int] = row("size", OPTIONAL_LONGLONG, "bytes; 0 without a medium")
    logical_sector_bytes: Optional[int] = row("logical_sector", OPTIONAL_INT, "bytes of the smallest unit it takes")
    physical_sector_bytes: Optional[int] = row("physical_sector", OPTIONAL_INT, "bytes of the unit it writes at once")
    rotational: Optional[bool] = row("rotational", FLAG, "the kernel takes it for one with moving parts")
    removable: Optional[bool] = row("removable", FLAG, "the medium can be taken out")
    hidden: Optional[bool] = row("hidden", FLAG, "it has no node and is a path of another device")
    read_only: Optional[bool] = row("read_only", FLAG, "it cannot be written")
    transport: Optional[str] = row("transport", TEXT, '"nvme", "sata", "sas", "usb", "virtio", "scsi" or another word')
    vendor: Optional[str] = row("vendor", TEXT, "of SCSI devices")
    model: Optional[str] = row("model", TEXT, "as the device names itself")
    model_source: Optional[str] = row("model_source", TEXT, '"kernel", "vpd", "udev", "short" (cut) or "not asked"')
    serial: Optional[str] = row("serial", TEXT, "serial number")
    serial_source: Optional[str] = row("serial_source", TEXT, "as model_source")
    firmware: Optional[str] = row("firmware", TEXT, "revision")
    firmware_source: Optional[str] = row("firmware_source", TEXT, "as model_source")
    wwn: Optional[str] = row("wwn", TEXT, "world-wide name of the unit")
    eui64: Optional[str] = row("eui64", TEXT, "16, 24 or 32 hexadecimal digits")
    nguid: Optional[str] = row("nguid", TEXT, "of NVMe: 32 hexadecimal digits")
    uuid: Optional[str] = row("uuid", TEXT, "of NVMe: that of the namespace")
    scsi_host: Optional[int] = row("scsi_host", OPTIONAL_INT, "of the SCSI address, which is absent as a whole")
    scsi_channel: Optional[int] = row("scsi_channel", OPTIONAL_INT, "of the SCSI address")
    scsi_target: Optional[int] = row("scsi_target", OPTIONAL_INT, "of the SCSI address")
    scsi_lun: Optional[int] = row("scsi_lun", OPTIONAL_LONGLONG, "of the SCSI address")
    links: Tuple[str, ...] = row("links", TEXTS, "other paths in /dev that lead to it")
    controller_pci: Optional[str] = row("controller_pci", TEXT, "PCI address of its controller")
    numa_node: Optional[int] = row("numa_node", OPTIONAL_INT, "of its controller")
    state: Optional[str] = row("state", TEXT, 'the kernel\'s word, such as "running" or "live"')
    dm_name: Optional[str] = row("dm_name", TEXT, "name of a mapping")
    dm_uuid: Optional[str] = row("dm_uuid", TEXT, "of a mapping")
    dm_kind: Optional[str] = row("dm_kind", TEXT, 'of a mapping: "lvm", "crypt", "multipath", ..., "unknown"')
    dm_target: Optional[str] = row("dm_target", TEXT, "of a mapping: targets of its table; None without permission")
    backing_file: Optional[str] = row("backing_file", TEXT, "of a loop device: the file behind it")
    under_root: Optional[bool] = row("under_root", FLAG, "the file system mounted at / stands on it")
    under_boot: Optional[bool] = row("under_boot", FLAG, "that of /boot")
    under_swap: Optional[bool] = row("under_swap", FLAG, "a swap area in use")


@laid_out("block_link", next_at=1)
@dataclass(frozen=True)
class BlockLink(Record):
    """That one block device stands on another."""

    record_size: int = row("record_size", SIZE, _RECORD_SIZE)
    upper: str = row("upper", NAME, "name of the device that stands on the other")
    lower: str = row("lower", NAME, "name of the one that carries it")
    relation: str = row("relation", NAME, '"partition", "slave" or "path" (lower is one way to upper)')
    address: Optional[str] = row("address", TEXT, "of a path: where it leads through")
    state: Optional[str] = row("state", TEXT, "of a path: the kernel's word")
    access: Optional[str] = row("access", TEXT, 'of a path of an NVMe namespace: "optimized" or another word')


@laid_out("block_partition", next_at=1)
@dataclass(frozen=True)
class BlockPartition(Record):
    """One entry of a partition table."""

    record_size: int = row("record_size", SIZE, _RECORD_SIZE)
    name: Optional[str] = row("name", TEXT, "of the kernel's device for it")
    number: Optional[int] = row("number", OPTIONAL_INT, "from 1 on, as in the device's name")
    start_bytes: Optional[int] = row("start", OPTIONAL_LONGLONG, "bytes from the disk's beginning")
    size_bytes: Optional[int] = row("size", OPTIONAL_LONGLONG, "bytes")
    type: Optional[str] = row("type", TEXT, '"0x83", a GUID, or a word of the table\'s own')
    uuid: Optional[str] = row("uuid", TEXT, "of the entry")
    label: Optional[str] = row("label", TEXT, "name in a GUID partition table")
    flags: Optional[int] = row("flags", OPTIONAL_LONGLONG, "boot byte (128: bootable), or a GUID entry's attributes")


@laid_out("block_content", next_at=1)
@dataclass(frozen=True)
class BlockContent(Record):
    """What is on one block device."""

    record_size: int = row("record_size", SIZE, _RECORD_SIZE)
    name: str = row("name", NAME, "of the device")
    source: Optional[str] = row("source", TEXT, '"device" (it was read), "udev", "kernel"; None: nobody knows')
    error: Optional[int] = row("error", OPTIONAL_INT, "errno of what kept the device from being read")
    ambiguous: Optional[bool] = row("ambiguous", FLAG, "signatures of several kinds, none of which is taken")
    table: Optional[str] = row("table", TEXT, 'kind of partition table: "gpt", "dos", "PMBR" or another word')
    table_id: Optional[str] = row("table_id", TEXT, "its identifier: a GUID, or 0x and 8 digits")
    partitions: Tuple[BlockPartition, ...] = row("partitions", inner(BlockPartition), "in the table's order")
    usage: Optional[str] = row("usage", TEXT, '"filesystem", "raid", "crypto" or "other"')
    type: Optional[str] = row("type", TEXT, '"ext4", "linux_raid_member", "swap" or another word')
    label: Optional[str] = row("label", TEXT, "of the file system, the array or the pool")
    uuid: Optional[str] = row("uuid", TEXT, "of the file system, the array or the pool")
    uuid_sub: Optional[str] = row("uuid_sub", TEXT, "of this member, where uuid is that of the whole")
    version: Optional[str] = row("version", TEXT, "of the format")


@laid_out("block_mount", next_at=1)
@dataclass(frozen=True)
class BlockMount(Record):
    """One mount point, or one swap area in use."""

    record_size: int = row("record_size", SIZE, _RECORD_SIZE)
    kind: str = row("kind", NAME, '"mount" or "swap"')
    id: Optional[int] = row("id", OPTIONAL_INT, "the kernel's number of the mount; None for swap")
    parent_id: Optional[int] = row("parent_id", OPTIONAL_INT, "of the mount that it is in; None for swap")
    major: Optional[int] = row("major", OPTIONAL_INT, "of the file system's device number; None for swap")
    minor: Optional[int] = row("minor", OPTIONAL_INT, "of the file system's device number; None for swap")
    devices: Tuple[str, ...] = row("devices", TEXTS, "names of the block devices that it lies on")
    source: Optional[str] = row("source", TEXT, "a node, a remote name, a word; of swap its path")
    type: Optional[str] = row("type", TEXT, 'of the file system; of swap "partition" or "file"')
    root: Optional[str] = row("root", TEXT, "what of the file system is mounted; None for swap")
    mount_point: Optional[str] = row("mount_point", TEXT, "None for swap")
    options: Optional[str] = row("options", TEXT, "of the mount; None for swap")
    super_options: Optional[str] = row("super_options", TEXT, "of the file system; None for swap")
    shadowed: Optional[bool] = row("shadowed", FLAG, "another mount hides it; None for swap")
    total_bytes: Optional[int] = row("total", OPTIONAL_LONGLONG, "bytes; None where nobody is asked")
    used_bytes: Optional[int] = row("used", OPTIONAL_LONGLONG, "bytes; None where nobody is asked")
    available_bytes: Optional[int] = row("available", OPTIONAL_LONGLONG, "bytes, for an ordinary user; None for swap")
    priority: Optional[int] = row("priority", INT, "of a swap area, -32768 to 32767; None for a mount point")

    def __post_init__(self) -> None:
        # -1 is a priority like any other: that there is none only the kind can tell.
        if self.kind != "swap":
            object.__setattr__(self, "priority", None)


@laid_out("block_member", next_at=1)
@dataclass(frozen=True)
class BlockMember(Record):
    """One member of a software RAID array."""

    record_size: int = row("record_size", SIZE, _RECORD_SIZE)
    name: str = row("name", NAME, "of the device")
    role: Optional[str] = row("role", TEXT, '"active", "spare", "faulty", "journal" or "replacement"')
    slot: Optional[int] = row("slot", OPTIONAL_INT, "place in the array from 0 on; None for one that has none")
    state: Optional[str] = row("state", TEXT, 'the kernel\'s words, such as "in_sync,write_mostly"')
    errors: Optional[int] = row("errors", OPTIONAL_LONGLONG, "read errors that were put right")


@laid_out("block_array", next_at=1)
@dataclass(frozen=True)
class BlockArray(Record):
    """One software RAID array."""

    record_size: int = row("record_size", SIZE, _RECORD_SIZE)
    name: str = row("name", NAME, "of the device")
    uuid: Optional[str] = row("uuid", TEXT, "8:8:8:8 hexadecimal digits")
    metadata: Optional[str] = row("metadata", TEXT, '"0.90", "1.2", "external:...", "none"')
    level: Optional[str] = row("level", TEXT, '"raid1", "linear" or another word')
    state: Optional[str] = row("state", TEXT, 'the kernel\'s word: "clean", "active", "readonly", "inactive"')
    wanted: Optional[int] = row("wanted", OPTIONAL_INT, "members that it is made for")
    active: Optional[int] = row("active", OPTIONAL_INT, "members that are in step and at work")
    failed: Optional[int] = row("failed", OPTIONAL_INT, "faulty members that are still in it")
    spare: Optional[int] = row("spare", OPTIONAL_INT, "members that wait, or are being rebuilt")
    degraded: Optional[int] = row("degraded", OPTIONAL_INT, "members that it lacks; None without redundancy")
    size_bytes: Optional[int] = row("size", OPTIONAL_LONGLONG, "bytes")
    chunk_size_bytes: Optional[int] = row("chunk_size", OPTIONAL_INT, "bytes; None for levels that have none")
    layout: Optional[int] = row("layout", OPTIONAL_INT, "the level's own number")
    sync_action: Optional[str] = row("sync_action", TEXT, '"idle", "resync", "recover", "check", "repair" or another')
    sync_done_sectors: Optional[int] = row("sync_done", OPTIONAL_LONGLONG, "sectors of 512 bytes; None at rest")
    sync_total_sectors: Optional[int] = row("sync_total", OPTIONAL_LONGLONG, "sectors of 512 bytes; None at rest")
    sync_speed_kib: Optional[int] = row("sync_speed", OPTIONAL_INT, "KiB a second; None at rest")
    mismatches_sectors: Optional[int] = row("mismatches", OPTIONAL_LONGLONG, "sectors that the last check found")
    bitmap: Optional[str] = row("bitmap", TEXT, '"none", "file", or where the internal one lies')
    consistency: Optional[str] = row("consistency", TEXT, '"bitmap", "journal", "ppl", "resync", "none"')
    members: Tuple[BlockMember, ...] = row("members", inner(BlockMember), "slots first, in their order")
