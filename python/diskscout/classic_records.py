# SPDX-License-Identifier: Apache-2.0
"""The records of the queries of diskscout.so, local and behind RAID controllers: diskscout.h."""

from __future__ import annotations

from dataclasses import dataclass
from typing import Optional, Tuple, Union

from .codes import (
    Access,
    Availability,
    Clustering,
    ContainerUsage,
    DeviceType,
    DiskUsage,
    MultilevelType,
    RaidType,
    Shared,
)
from .fields import (
    BOOLEAN,
    BYTE,
    INT,
    LONGLONG,
    LOW32,
    MEMBERS,
    OPTIONAL_INT,
    STRING,
    UINT,
    ULONGLONG,
    Record,
    chars,
    coded,
    laid_out,
    row,
)


@laid_out("STORAGE_DISK_LIST")
@dataclass(frozen=True)
class Disk(Record):
    """One local disk. Without a geometry the kernel's size is not told either."""

    disk_id: int = row("nDiskID", UINT, "position in the list, from 0")
    device_name: str = row("szDeviceName", STRING, "device node, such as /dev/sda")
    description: str = row("szDescription", STRING, '"Disk Device"')
    interface: str = row("szInterface", STRING, '"IDE", "SCSI", "USB", "FIBRE", "RAID" or "UNKNOWN"')
    position: int = row("nPosition", UINT, "host << 24, channel << 16, ID << 8 and LUN; 0 for an IDE disk")
    media: str = row("szMedia", STRING, '"Disk"')
    vendor: str = row("szVendor", STRING, "as the device tells it; empty for IDE disks")
    model: str = row("szModel", STRING, "as the device tells it")
    serial_number: str = row("szSerialNumber", STRING, "empty for SCSI disks")
    firmware_version: str = row("szFirmwareVersion", STRING, "revision")
    size_bytes: int = row("nSize", ULONGLONG, "bytes, of whole cylinders; 0 when unknown")
    total_cylinders: int = row("nTotalCylinders", UINT, "cylinders; 0, like all of the geometry, when unknown")
    tracks_per_cylinder: int = row("nTracksPerCylinder", UINT, "tracks of a cylinder, which is heads")
    sectors_per_track: int = row("nSectorsPerTrack", UINT, "sectors of a track")
    total_heads: int = row("nTotalHeads", UINT, "heads")
    total_tracks: int = row("nTotalTracks", UINT, "cylinders x heads")
    total_blocks: int = row("nTotalBlocks", UINT, "blocks of bytes_per_block, low 32 bits")
    total_sectors: int = row("nTotalSectors", UINT, "sectors of bytes_per_sector, low 32 bits")
    bytes_per_block: int = row("nBytesPerBlock", UINT, "bytes; 1024")
    bytes_per_sector: int = row("nBytesPerSector", UINT, "bytes; 512")
    partition_count: int = row("nPartNumber", UINT, "partitions in the kernel's table, extended ones included")
    used_by_system: bool = row("bUsedBySystem", BOOLEAN, "it holds the file system of / or /boot")
    extended_partition_count: int = row("nExPartNumber", UINT, "extended partitions among them")


@laid_out("STORAGE_CDROM_LIST")
@dataclass(frozen=True)
class Cdrom(Record):
    """One CD-ROM drive."""

    cdrom_id: int = row("nCdromID", UINT, "position in the list, from 0")
    device_name: str = row("szDeviceName", STRING, "device node, such as /dev/hdc")
    description: str = row("szDiscription", STRING, '"DVD/CD-ROM Device"')
    interface: str = row("szInterface", STRING, '"IDE", "SCSI", "USB" or "UNKNOWN"')
    position: int = row("nPosition", UINT, "host << 24, channel << 16, ID << 8 and LUN; 0 for an IDE drive")
    media: str = row("szMedia", STRING, '"CDROM"')
    vendor: str = row("szVendor", STRING, "empty: IDE drives tell none")
    model: str = row("szModel", STRING, "as the drive tells it")
    serial_number: str = row("szSerialNumber", STRING, "as the drive tells it")
    firmware_version: str = row("szFirmwareVersion", STRING, "revision")
    mount_point: str = row("szMountPoint", STRING, "of the medium; empty when it is not mounted")
    label: str = row("szLabel", STRING, "always empty: no label is read")
    total_space_bytes: int = row("nTotalSpace", ULONGLONG, "bytes of the mounted file system; 0 when not mounted")


@laid_out("STORAGE_PART_LIST")
@dataclass(frozen=True)
class Partition(Record):
    """One partition of a disk, with the volume that is mounted from it."""

    disk_device_name: str = row("szDiskDeviceName", STRING, "device node of its disk")
    partition_index: int = row("nPartIndex", UINT, "0 to 3: slot of the master boot record; from 4: logical drive")
    start_bytes: int = row("nStart", ULONGLONG, "bytes from the disk's beginning")
    size_bytes: int = row("nSize", ULONGLONG, "bytes")
    total_sectors: int = row("nTotalSectors", UINT, "sectors of 512 bytes, low 32 bits")
    type: str = row("szType", STRING, '"Primary Partition", "Extended Partition", "Logical Drive", "Dynamic Volume"')
    file_system: str = row("szFileSystem", STRING, "of the mounted volume, such as ext3; empty when not mounted")
    mount_point: str = row("szMountPoint", STRING, 'all of them, joined by ";"; over 63 bytes: 60 and "..."')
    label: str = row("szLabel", STRING, "always empty: no label is read")
    total_space_bytes: int = row("nTotalSpace", ULONGLONG, "bytes of the mounted file system; 0 when not mounted")
    used_space_bytes: int = row("nUsedSpace", ULONGLONG, "bytes of it that are not free")
    used_by_system: bool = row("bUsedBySystem", BOOLEAN, "mounted at / or /boot")
    boot_byte: int = row("bActive", BYTE, "of the table's entry: 128 when bootable")


@laid_out("aac_controller")
@dataclass(frozen=True)
class Controller(Record):
    """One RAID controller."""

    controller_id: int = row("ControllerID", INT, "position in the list, from 0")
    adapter_name: str = row("Adapter_Name", chars(32), "by which it is opened, such as aac0")
    adapter_type: str = row("Adapter_Type", chars(32), "model")
    availability: Union[Availability, int] = row("Availability", coded(Availability), "an Availability")
    clustering: Union[Clustering, int] = row("Clustering", coded(Clustering), "a Clustering")


@laid_out("HWRAID_LIST")
@dataclass(frozen=True)
class Container(Record):
    """One RAID container, a controller's logical drive; ToolContainer knows its size in full."""

    raid_id: int = row("nRaidID", INT, "number of the container; from 24: a member of another one")
    member_count: int = row("nDiskNumber", INT, "may exceed the 64 that members holds")
    members: Tuple[int, ...] = row("nPosition", MEMBERS, "addresses of disks; of a RAID 10 numbers of containers")
    raid_type: Union[RaidType, int] = row("RaidType", coded(RaidType), "a RaidType")
    total_size_low32: int = row("nTotalSize", LOW32, "bytes, without whole multiples of 4 GiB")
    stripe_size_bytes: int = row("nStripeSize", LONGLONG, "bytes; 0 when there is none")
    usage: Union[ContainerUsage, int] = row("Usage", coded(ContainerUsage), "a ContainerUsage")
    hot_spare: Optional[int] = row("nHotSpare", OPTIONAL_INT, "address of the hot spare; None without one")
    label: str = row("szLabel", STRING, "its first 8 characters")


@laid_out("HWRAID_DISK_LIST")
@dataclass(frozen=True)
class RaidDisk(Record):
    """One disk behind a RAID controller."""

    address: Optional[int] = row("nPosition", OPTIONAL_INT, "see Address; None when it is not told")
    vendor: str = row("szVendor", STRING, "with underscores for blanks")
    model: str = row("szModel", STRING, "with underscores for blanks")
    device_type: Union[DeviceType, int] = row("DeviceType", coded(DeviceType), "a DeviceType")
    blocks: int = row("nBlocks", LONGLONG, "blocks of bytes_per_block; 2147483647 for all larger numbers")
    bytes_per_block: int = row("nBytesPerBlock", INT, "bytes")
    usage: Union[DiskUsage, int] = row("Usage", coded(DiskUsage), "a DiskUsage")
    shared: Union[Shared, int] = row("Shared", coded(Shared), "a Shared")
    rate: int = row("nRate", INT, "transfer rate as the controller tool prints it, MB a second")


@laid_out("HWRAID_SPACE_LIST")
@dataclass(frozen=True)
class RaidSpace(Record):
    """One free area of a disk behind a RAID controller; ToolSpace knows it in full."""

    offset_low32: int = row("nOffset", LOW32, "bytes from the disk's beginning, without whole multiples of 4 GiB")
    free_space_low32: int = row("nFreeSpace", LOW32, "bytes, without whole multiples of 4 GiB")


@laid_out("HWRAID_PARTITION_LIST")
@dataclass(frozen=True)
class RaidPartition(Record):
    """One piece of a disk that a RAID container uses."""

    address: Optional[int] = row("nPosition", OPTIONAL_INT, "of the disk, see Address; None when it is not told")
    offset_bytes: int = row("nOffset", LONGLONG, "bytes from the disk's beginning")
    size_bytes: int = row("nSize", LONGLONG, "bytes")
    raid_id: int = row("bRaidID", INT, "number of the container that it belongs to")
    raid_type: Union[RaidType, int] = row("RaidType", coded(RaidType), "a RaidType")
    multilevel_raid_id: int = row("nMultilevelRaidID", INT, "number of the container above that one")
    multilevel_type: Union[MultilevelType, int] = row(
        "MultilevelType", coded(MultilevelType), "a MultilevelType; NONE: nothing is above"
    )
    access: Union[Access, int] = row("ReadWriteAttribute", coded(Access), "an Access")
