# SPDX-License-Identifier: Apache-2.0
"""The RAID operations of diskscout.so: what the controller vendor's tool can be made to do."""

from __future__ import annotations

import ctypes
from typing import Any, Callable, Dict, List, Optional, Sequence, Tuple, Type

from .classic import ClassicSide
from .classic_records import Controller
from .codes import Result
from .errors import RaidError
from .fields import R, Record
from .finding import PathLike
from .lists import RecordList
from .raid_records import Address, Defects, Task, ToolContainer, ToolDisk, ToolPartition, ToolSpace
from .side import file_name, handed_over, number

_INT = ctypes.c_int
_NAME = ctypes.c_char_p
_HEAD = ctypes.POINTER(ctypes.c_void_p)
_COUNT = ctypes.POINTER(ctypes.c_int)

# The arguments that have names in the header; those behind them are ints, and the last of them is _NO_MORE.
OPERATIONS: Dict[str, List[Any]] = {
    "Aac_Get_Controller_List": [_HEAD],
    "Aac_Get_Controller_Name": [_NAME, _INT],
    "Aac_Clear_Controller_List": [ctypes.c_void_p],
    "Aac_Get_Container_List": [_NAME, _HEAD],
    "Aac_Clear_Container_List": [ctypes.c_void_p],
    "Aac_Container_Delete": [_NAME, _INT, _INT],
    "Aac_Container_Set_Failover": [_NAME, _INT, _INT],
    "Aac_Container_Remove_Failover": [_NAME, _INT, _INT],
    "Aac_Container_Show_Failover": [_NAME, _INT],
    "Aac_Get_Container_Corresponding_Disk_Name": [_NAME, _INT, _NAME],
    "Aac_Create_Raid0": [_NAME, _NAME, _INT, _INT, _INT, _INT],
    "Aac_Create_Raid1": [_NAME, _NAME, _INT, _INT, _INT, _INT],
    "Aac_Create_Raid5": [_NAME, _NAME, _INT, _INT, _INT, _INT, _INT, _INT],
    "Aac_Create_Raid10": [_NAME, _NAME, _INT, _INT, _INT],
    "Aac_Get_Disk_List": [_NAME, _HEAD],
    "Aac_Clear_Disk_List": [ctypes.c_void_p],
    "Aac_Disk_Show_Space": [_NAME, _INT, _HEAD],
    "Aac_Clear_Disk_Space_List": [ctypes.c_void_p],
    "Aac_Disk_Show_Partition": [_NAME, _HEAD],
    "Aac_Clear_Disk_Partition_List": [ctypes.c_void_p],
    "Aac_Disk_Initialize": [_NAME, _INT, _INT, _INT],
    "Aac_Disk_Show_Defect": [_NAME, _INT, _COUNT, _COUNT],
    "Aac_Get_Task_List": [_NAME, _HEAD],
    "Aac_Get_Container_Task": [_NAME, _INT],
    "Aac_Clear_Task_List": [ctypes.c_void_p],
    "AnalyzeControllerFile": [_NAME, _HEAD],
    "Analyze_Create_Raid_Created_File": [_NAME, _INT],
    "AnalyzeDiskFile": [_NAME, _HEAD],
    "AnalyzeDiskInitializeFile": [_NAME],
    "AnalyzeDiskShowDefectFile": [_NAME, _COUNT, _COUNT],
    "AnalyzeDiskShowSpaceFile": [_NAME, _INT, _INT, _INT, _HEAD],
    "AnalyzePartitionFile": [_NAME, _HEAD],
    "AnalyzeTaskFile": [_NAME, _HEAD],
}

_RESULTS: Dict[str, Any] = {"Aac_Get_Container_Task": ctypes.c_void_p}

_CLEARS: Dict[Type[Record], str] = {
    Controller: "Aac_Clear_Controller_List",
    ToolContainer: "Aac_Clear_Container_List",
    ToolDisk: "Aac_Clear_Disk_List",
    ToolSpace: "Aac_Clear_Disk_Space_List",
    ToolPartition: "Aac_Clear_Disk_Partition_List",
    Task: "Aac_Clear_Task_List",
}

# The buffers that the library writes a name into.
_CONTROLLER_NAME_SIZE = 32
_DEVICE_NAME_SIZE = 256

_NO_MORE = -1
_NOT_GIVEN = -1


class Raid(ClassicSide):
    """The RAID operations of diskscout.so, each a run of the controller tool, which may take minutes.

    An operation that does not succeed raises a RaidError with the library's code. Deleting and initialising destroy
    what they are told to: nothing is asked back. The controller tool judges every number; a text with a control
    character is refused here by a ValueError, as it would be a command of its own. Disks are named by their address as
    one number: ``Address(channel, scsi_id, lun).number``.
    """

    NEEDS: Tuple[str, ...] = (*ClassicSide.NEEDS, *OPERATIONS)

    # ---- controllers ----

    def controllers(self) -> RecordList[Controller]:
        """All RAID controllers."""
        return self._list(Controller, "Aac_Get_Controller_List")

    def controller_name(self, position: int) -> str:
        """The name of the controller at that position of the list, from 0."""
        name = ctypes.create_string_buffer(_CONTROLLER_NAME_SIZE)
        self._do("Aac_Get_Controller_Name", name, number(position))
        return name.value.decode("utf-8", "surrogateescape")

    # ---- containers ----

    def containers(self, controller: str) -> RecordList[ToolContainer]:
        """The containers of a controller; members that are containers stand behind the one that is made of them."""
        return self._list(ToolContainer, "Aac_Get_Container_List", handed_over(controller))

    def delete_container(self, controller: str, container_id: int, *, with_data: bool = False) -> None:
        """Deletes a container, with_data also one that holds data."""
        self._do("Aac_Container_Delete", handed_over(controller), int(with_data), number(container_id))

    def set_hot_spare(self, controller: str, container_id: int, address: int) -> None:
        """Makes the disk at that address a hot spare of the container."""
        self._do("Aac_Container_Set_Failover", handed_over(controller), number(container_id), number(address))

    def remove_hot_spare(self, controller: str, container_id: int, address: int) -> None:
        """Makes the disk at that address no hot spare of the container any more."""
        self._do("Aac_Container_Remove_Failover", handed_over(controller), number(container_id), number(address))

    def hot_spare(self, controller: str, container_id: int) -> int:
        """The address of the container's hot spare; without one a RaidError of AAC_NO_HOT_SPARE."""
        return self._do("Aac_Container_Show_Failover", handed_over(controller), number(container_id))

    def container_device_name(self, controller: str, container_id: int) -> str:
        """The operating system's name of the container, such as /dev/sda."""
        name = ctypes.create_string_buffer(_DEVICE_NAME_SIZE)
        self._do("Aac_Get_Container_Corresponding_Disk_Name", handed_over(controller), number(container_id), name)
        return name.value.decode("utf-8", "surrogateescape")

    # ---- new containers; their numbers are not told ----

    def create_raid0(
        self,
        controller: str,
        disks: Sequence[int],
        *,
        label: str = "",
        stripe_size_kilobytes: Optional[int] = None,
        size_megabytes: Optional[int] = None,
    ) -> None:
        """Makes a stripe of two or more disks, of that size on each; what is None the tool chooses.

        The second disk is sought on the channel of the first.
        """
        first, second, *others = _enough(disks, 2)
        self._do("Aac_Create_Raid0", handed_over(controller), handed_over(label), _given(stripe_size_kilobytes),
                 first, _given(size_megabytes), second, *others, _NO_MORE)  # fmt: skip

    def create_raid1(
        self,
        controller: str,
        disks: Sequence[int],
        *,
        label: str = "",
        quick_init: bool = False,
        size_megabytes: Optional[int] = None,
    ) -> None:
        """Makes a mirror of two disks, of that size on each; what is None the tool chooses."""
        first, second = _enough(disks, 2, 2)
        self._do("Aac_Create_Raid1", handed_over(controller), handed_over(label), int(quick_init),
                 first, _given(size_megabytes), second)  # fmt: skip

    def create_raid5(
        self,
        controller: str,
        disks: Sequence[int],
        *,
        label: str = "",
        quick_init: bool = False,
        stripe_size_kilobytes: Optional[int] = None,
        size_megabytes: Optional[int] = None,
    ) -> None:
        """Makes a RAID 5 of three or more disks, of that size on each; what is None the tool chooses."""
        first, second, third, *others = _enough(disks, 3)
        self._do("Aac_Create_Raid5", handed_over(controller), handed_over(label), int(quick_init),
                 _given(stripe_size_kilobytes), first, _given(size_megabytes), second, third, *others,
                 _NO_MORE)  # fmt: skip

    def create_raid10(
        self,
        controller: str,
        mirrors: Sequence[int],
        *,
        label: str = "",
        stripe_size_kilobytes: Optional[int] = None,
    ) -> None:
        """Makes a stripe of two or more mirrors, which are named by their numbers."""
        first, second, *others = _enough(mirrors, 2)
        self._do("Aac_Create_Raid10", handed_over(controller), handed_over(label), _given(stripe_size_kilobytes),
                 first, second, *others, _NO_MORE)  # fmt: skip

    # ---- disks ----

    def disks(self, controller: str) -> RecordList[ToolDisk]:
        """The disks behind a controller."""
        return self._list(ToolDisk, "Aac_Get_Disk_List", handed_over(controller))

    def disk_space(self, controller: str, address: int) -> RecordList[ToolSpace]:
        """The free areas of the disk at that address."""
        return self._list(ToolSpace, "Aac_Disk_Show_Space", handed_over(controller), number(address))

    def partitions(self, controller: str) -> RecordList[ToolPartition]:
        """The pieces of disks that containers use, of all disks."""
        return self._list(ToolPartition, "Aac_Disk_Show_Partition", handed_over(controller))

    def initialize_disk(
        self, controller: str, address: int, *, with_data: bool = False, in_use: bool = False
    ) -> None:
        """Initialises the disk at that address, although a container on it holds data, or is in use.

        A controller that cannot be opened is no error: look at the disks afterwards.
        """
        self._do("Aac_Disk_Initialize", handed_over(controller), int(with_data), int(in_use), number(address))

    def defects(self, controller: str, address: int) -> Defects:
        """How many defects the disk at that address has."""
        return self._defects("Aac_Disk_Show_Defect", handed_over(controller), number(address))

    # ---- tasks ----

    def tasks(self, controller: str) -> RecordList[Task]:
        """What the controller is busy with."""
        return self._list(Task, "Aac_Get_Task_List", handed_over(controller))

    def container_tasks(self, controller: str, container_id: int) -> RecordList[Task]:
        """The first task of that container and all tasks behind it; empty also when they cannot be listed."""
        name = handed_over(controller)

        def ask(function: Callable[..., int], head: ctypes.c_void_p) -> int:
            head.value = function(name, number(container_id))
            return 0

        return self._made(Task, "Aac_Get_Container_Task", ask)

    # ---- answers of the tool, in files as the filter has written them ----

    def parse_controllers(self, file: PathLike) -> RecordList[Controller]:
        """The answer to "controller list"."""
        return self._list(Controller, "AnalyzeControllerFile", file_name(file))

    def parse_disks(self, file: PathLike) -> RecordList[ToolDisk]:
        """The answer to "disk list"."""
        return self._list(ToolDisk, "AnalyzeDiskFile", file_name(file))

    def parse_space(self, file: PathLike, address: int) -> RecordList[ToolSpace]:
        """The answer to "disk show space", as far as it is about the disk at that address."""
        return self._list(ToolSpace, "AnalyzeDiskShowSpaceFile", file_name(file), *Address.of(number(address)))

    def parse_partitions(self, file: PathLike) -> RecordList[ToolPartition]:
        """The answer to "disk show partition"."""
        return self._list(ToolPartition, "AnalyzePartitionFile", file_name(file))

    def parse_tasks(self, file: PathLike) -> RecordList[Task]:
        """The answer to "task list"."""
        return self._list(Task, "AnalyzeTaskFile", file_name(file))

    def parse_defects(self, file: PathLike) -> Defects:
        """The answer to "disk show defect"."""
        return self._defects("AnalyzeDiskShowDefectFile", file_name(file))

    def parse_created(self, file: PathLike) -> None:
        """The answer to a creation: a RaidError when it tells a failure."""
        self._do("Analyze_Create_Raid_Created_File", file_name(file), 0)

    def parse_initialized(self, file: PathLike) -> None:
        """The answer to "disk initialize": a RaidError when it tells a failure."""
        self._do("AnalyzeDiskInitializeFile", file_name(file))

    # ---- how all of them are called ----

    def _function(self, name: str) -> Callable[..., int]:
        return self._library.function(name, OPERATIONS[name], _RESULTS.get(name, ctypes.c_int))

    def _do(self, name: str, *arguments: Any) -> int:
        self._must_be_open()
        function = self._function(name)
        result: int = self._library.threads.run(lambda: function(*arguments))
        if result < 0:
            raise self._error(name, result, ())
        return result

    def _defects(self, name: str, *arguments: Any) -> Defects:
        primary, grown = ctypes.c_int(_NOT_GIVEN), ctypes.c_int(_NOT_GIVEN)
        self._do(name, *arguments, ctypes.byref(primary), ctypes.byref(grown))
        return Defects(*(None if count.value < 0 else count.value for count in (primary, grown)))

    def _list(self, record: Type[R], name: str, *arguments: Any) -> RecordList[R]:
        def ask(function: Callable[..., int], head: ctypes.c_void_p) -> int:
            result: int = function(*arguments, ctypes.byref(head))
            return result

        return self._made(record, name, ask)

    def _made(
        self, record: Type[R], name: str, ask: Callable[[Callable[..., int], ctypes.c_void_p], int]
    ) -> RecordList[R]:
        self._must_be_open()
        function, clear = self._function(name), self._function(_CLEARS[record])
        threads, head, result = self._library.threads, ctypes.c_void_p(), 0
        try:
            result = threads.run(lambda: ask(function, head))
        finally:
            # Whatever comes in between, and after a failure, too: what was made is owned from here on.
            found = RecordList(record, threads, clear, head.value, None)
        if result < 0:
            raise self._failure(name, result, found)
        return self._kept(found)

    @staticmethod
    def _error(operation: str, error: int, found: Tuple[Any, ...]) -> RaidError:
        names = {result.value: result.name for result in Result}
        return RaidError(operation, error, names.get(error, ""), found=found)


def _given(size: Optional[int]) -> int:
    return _NOT_GIVEN if size is None else number(size)


def _enough(members: Sequence[int], least: int, most: Optional[int] = None) -> Tuple[int, ...]:
    """Members of a new container; one below 0 would end them, and those behind it would be left out."""
    if len(members) < least or (most is not None and len(members) > most):
        raise ValueError(f"{len(members)} members, where {'just' if most else 'at least'} {least} are needed")
    numbers = tuple(map(number, members))
    if any(member < 0 for member in numbers):
        raise ValueError("a member below 0")
    return numbers
