# SPDX-License-Identifier: Apache-2.0
"""The storage of a Linux host, told by diskscout's two plug-ins.

    import diskscout

    with diskscout.BlockPlugin() as plugin, plugin.devices() as devices:
        for device in devices:
            print(device.name, device.size_bytes)

``Plugin`` asks diskscout.so, ``Raid`` runs its RAID operations, ``BlockPlugin`` asks diskscout-block.so. Each list
belongs to who asked for it and goes back to the library at the end of its ``with``; records are copies and stay.
Every record says its fields and units in its docstring.
"""

from .block import BlockPlugin
from .block_records import (
    BlockArray,
    BlockContent,
    BlockDevice,
    BlockLink,
    BlockMember,
    BlockMount,
    BlockPartition,
)
from .classic import Plugin
from .classic_records import Cdrom, Container, Controller, Disk, Partition, RaidDisk, RaidPartition, RaidSpace
from .codes import (
    Access,
    Availability,
    Clustering,
    ContainerUsage,
    DeviceType,
    DiskUsage,
    MultilevelType,
    RaidType,
    Result,
    Shared,
    TaskFunction,
    TaskState,
)
from .errors import BlockError, CallError, ClosedError, DiskscoutError, LibraryError, QueryError, RaidError
from .finding import installed_directories
from .lists import RecordList
from .raid import Raid
from .raid_records import Address, Defects, Task, ToolContainer, ToolDisk, ToolPartition, ToolSpace

__all__ = [
    "Access",
    "Address",
    "Availability",
    "BlockArray",
    "BlockContent",
    "BlockDevice",
    "BlockError",
    "BlockLink",
    "BlockMember",
    "BlockMount",
    "BlockPartition",
    "BlockPlugin",
    "CallError",
    "Cdrom",
    "ClosedError",
    "Clustering",
    "Container",
    "ContainerUsage",
    "Controller",
    "Defects",
    "DeviceType",
    "Disk",
    "DiskUsage",
    "DiskscoutError",
    "LibraryError",
    "MultilevelType",
    "Partition",
    "Plugin",
    "QueryError",
    "Raid",
    "RaidDisk",
    "RaidError",
    "RaidPartition",
    "RaidSpace",
    "RaidType",
    "RecordList",
    "Result",
    "Shared",
    "Task",
    "TaskFunction",
    "TaskState",
    "ToolContainer",
    "ToolDisk",
    "ToolPartition",
    "ToolSpace",
    "installed_directories",
]
