# SPDX-License-Identifier: Apache-2.0
"""The records of the RAID operations of diskscout.so, in kilobytes and megabytes as the tool counts: diskscout_raid.h.

A kilobyte is 1,024 bytes here, a megabyte 1,024 of these.
"""

from __future__ import annotations

from dataclasses import dataclass
from typing import NamedTuple, Optional, Tuple, Union

from .codes import Access, ContainerUsage, DeviceType, DiskUsage, MultilevelType, RaidType, Shared, TaskFunction
from .codes import TaskState
from .fields import FLOAT, INT, LONGLONG, MEMBERS, OPTIONAL_INT, Record, chars, coded, laid_out, row


class Address(NamedTuple):
    """Where a disk is at its controller. Records and operations hold it as one number."""

    channel: int
    scsi_id: int
    lun: int

    @classmethod
    def of(cls, number: int) -> Address:
        """The parts of an address as the records hold it."""
        return cls(number >> 16, number >> 8 & 0xFF, number & 0xFF)

    @property
    def number(self) -> int:
        """As records and operations hold it."""
        return self.channel << 16 | self.scsi_id << 8 | self.lun

    def __str__(self) -> str:
        """As the controller tool prints it: 1:0a:0."""
        return f"{self.channel:x}:{self.scsi_id:02x}:{self.lun:x}"


class Defects(NamedTuple):
    """Defects of a disk; None: the controller tool does not tell them."""

    primary: Optional[int]
    """those that it left the factory with"""
    grown: Optional[int]
    """those that came later"""


@laid_out("aac_container")
@dataclass(frozen=True)
class ToolContainer(Record):
    """One RAID container, a controller's logical drive."""

    container_id: Optional[int] = row("nCntnerID", OPTIONAL_INT, "number; from 24: a member of another one; or None")
    member_count: int = row("nDiskNumber", INT, "may exceed the 64 that members holds")
    members: Tuple[int, ...] = row("C_ID_L", MEMBERS, "addresses of disks; of a RAID 10 numbers of containers")
    raid_type: Union[RaidType, int] = row("Container_Type", coded(RaidType), "a RaidType")
    total_size_megabytes: int = row("TotalSize", INT, "megabytes, rounded down; 0 when the tool printed none")
    stripe_size_kilobytes: int = row("StripeSize", INT, "kilobytes; 0 when the tool printed none")
    usage: Union[ContainerUsage, int] = row("Usage", coded(ContainerUsage), "a ContainerUsage")
    hot_spare: Optional[int] = row("HotSpare", OPTIONAL_INT, "address of the hot spare; None without one")
    label: str = row("Label", chars(32), "at most 31 characters")


@laid_out("aac_disk")
@dataclass(frozen=True)
class ToolDisk(Record):
    """One disk behind a RAID controller."""

    address: Optional[int] = row("C_ID_L", OPTIONAL_INT, "see Address; None when it is not told")
    vendor: str = row("VendorID", chars(32), "with underscores for blanks")
    model: str = row("ProductID", chars(32), "with underscores for blanks")
    device_type: Union[DeviceType, int] = row("Device_Type", coded(DeviceType), "a DeviceType")
    blocks: int = row("Blocks", LONGLONG, "blocks of bytes_per_block; 2147483647 for all larger numbers")
    bytes_per_block: int = row("BytesPerBlock", INT, "bytes")
    usage: Union[DiskUsage, int] = row("Usage", coded(DiskUsage), "a DiskUsage")
    shared: Union[Shared, int] = row("Shared", coded(Shared), "a Shared")
    rate: int = row("Rate", INT, "transfer rate as the controller tool prints it, MB a second")


@laid_out("aac_space")
@dataclass(frozen=True)
class ToolSpace(Record):
    """One free area of a disk behind a RAID controller."""

    offset_kilobytes: int = row("nOffset", INT, "kilobytes from the disk's beginning")
    free_space_kilobytes: int = row("nFreeSpace", INT, "kilobytes")


@laid_out("aac_partition")
@dataclass(frozen=True)
class ToolPartition(Record):
    """One piece of a disk that a RAID container uses."""

    address: Optional[int] = row("C_ID_L", OPTIONAL_INT, "of the disk, see Address; None when it is not told")
    offset_kilobytes: int = row("nOffset", LONGLONG, "kilobytes from the disk's beginning")
    size_kilobytes: int = row("nSize", LONGLONG, "kilobytes")
    container_id: int = row("bContainerID", INT, "number of the container that it belongs to")
    raid_type: Union[RaidType, int] = row("ContainerType", coded(RaidType), "a RaidType")
    multilevel_container_id: int = row("nMultilevelContainerID", INT, "number of the container above that one")
    multilevel_type: Union[MultilevelType, int] = row(
        "nMultilevelContainerType", coded(MultilevelType), "a MultilevelType; NONE: nothing is above"
    )
    access: Union[Access, int] = row("nReadWriteAttribute", coded(Access), "an Access")


@laid_out("aac_task")
@dataclass(frozen=True)
class Task(Record):
    """One background task of a RAID controller."""

    task_id: Optional[int] = row("TaskId", OPTIONAL_INT, "number; None when the tool printed none")
    function: Union[TaskFunction, int] = row("Function", coded(TaskFunction), "a TaskFunction")
    done: float = row("Done", FLOAT, "from 0 to 1; 1 when the tool printed none")
    container_id: int = row("ContainerID", INT, "number of the container that it works on")
    state: Union[TaskState, int] = row("State", coded(TaskState), "a TaskState")
