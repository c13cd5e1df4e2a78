# SPDX-License-Identifier: Apache-2.0
"""Coded values of the RAID records, and what the RAID operations return.

Fields hold a member of these where the number has a name, else the plain number; both compare with numbers.
"""

from __future__ import annotations

from enum import IntEnum


class RaidType(IntEnum):
    """KESTREL_HWRAID_TYPE."""

    UNKNOWN = -1
    RAID0 = 0
    RAID1 = 1
    RAID5 = 2
    RAID10 = 3
    VOLUME = 4
    RECONF = 5


class ContainerUsage(IntEnum):
    """KESTREL_HWRAID_USAGE_TYPE: what a container is used for. OTHER is a word that is not known."""

    OTHER = -1
    FAT = 0
    MULTIPLE_PARTITIONS = 1
    NETWARE = 2
    NONE = 3
    NTFS = 4
    OPEN = 5
    UNCONFIGURED = 6
    UNKNOWN = 7
    UNMAPPED = 8
    VALID = 9


class DeviceType(IntEnum):
    """What a device behind a controller is, as the records tell it: one less than KESTREL_HWRAID_DSK_TYPE says."""

    UNKNOWN = -1
    DISK = 0
    TAPE = 1
    PRINTER = 2
    PROCESSOR = 3
    WRITE_ONCE = 4
    CDROM = 5
    SCANNER = 6
    OPTICAL = 7
    MEDIA_CHANGER = 8
    NETWORK = 9


class DiskUsage(IntEnum):
    """KESTREL_HWRAID_DSK_USAGE."""

    UNKNOWN = -1
    INITIALIZED = 0
    NOT_INITIALIZED = 1
    DETACHED = 2
    DOS = 3
    OFFLINE = 4
    UNOWNED = 5


class Shared(IntEnum):
    """KESTREL_HWRAID_DSK_SHARED_TYPE: with another controller."""

    UNKNOWN = -1
    NO = 0
    YES = 1


class Access(IntEnum):
    """KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_TYPE."""

    UNKNOWN = -1
    NONE = 0
    READ = 1
    WRITE = 2
    READ_WRITE = 3


class MultilevelType(IntEnum):
    """KESTREL_HWRAID_PART_MULTILEVEL_TYPE: how the container above is made of containers."""

    UNKNOWN = -1
    NONE = 0
    STRIPE = 1


class Availability(IntEnum):
    """Of a controller; OTHER is a word that is not known."""

    OTHER = -1
    UNAVAILABLE = 0
    UNKNOWN = 1
    READ_ONLY = 2
    READ_WRITE = 3


class Clustering(IntEnum):
    """Of a controller; OTHER is a word that is not known."""

    OTHER = -1
    NO = 0
    YES = 1


class TaskFunction(IntEnum):
    """What a task does; OTHER is a word that is not known."""

    OTHER = -1
    CREATE = 0
    FAT_FORMAT = 1
    NTFS_FORMAT = 2
    REBUILD = 3
    RECONFIGURE = 4
    SCRUB = 5
    UNKNOWN = 6
    VERIFY = 7
    ZERO = 8
    BUILD_VERIFY = 9


class TaskState(IntEnum):
    """How a task is; OTHER is a word that is not known."""

    OTHER = -1
    BAD = 0
    DONE = 1
    RUNNING = 2
    SUSPENDED = 3
    UNKNOWN = 4


class Result(IntEnum):
    """enum aac_result: what a RAID operation says when it does not succeed, and AAC_OK."""

    AAC_OK = 0
    AAC_RUN_FAILED = -1
    AAC_NO_SUCH_DEVICE = -2
    AAC_BAD_STRIPE_SIZE = -3
    AAC_NO_SUCH_CONTAINER = -5
    AAC_BAD_PARAMETER = -6
    AAC_NO_HOT_SPARE = -10
    AAC_SIZES_DIFFER = -20
    AAC_NO_SPACE = -30
    AAC_BAD_DISK_STATUS = -50
    AAC_DISK_CROWDED = -70
    AAC_NOT_A_HOT_SPARE = -90
    AAC_CONTROLLER_UNUSABLE = -100
    AAC_CONTROLLER_BUSY = -200
    AAC_TOOL_ERROR = -300
