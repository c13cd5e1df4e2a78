# SPDX-License-Identifier: Apache-2.0
"""The queries of diskscout.so, local and behind RAID controllers, and its diagnostic command line."""

from __future__ import annotations

import ctypes
import os
from typing import Any, Optional, Tuple

from .classic_records import Cdrom, Container, Controller, Disk, Partition, RaidDisk, RaidPartition, RaidSpace
from .errors import QueryError
from .finding import CLASSIC, PathLike, find
from .library import CLASSIC_THREADS, Library
from .lists import RecordList
from .side import Side, characters, file_name, handed_over, number

CMD_GET_DISKS = 122100
CMD_GET_PARTITIONS = 123100
CMD_GET_CDROMS = 124100
CMD_GET_CONTAINERS = 125100
CMD_GET_RAID_DISKS = 126100
CMD_GET_RAID_SPACE = 127100
CMD_GET_RAID_PARTITIONS = 128100
CMD_GET_CONTROLLERS = 129100

_CONFIGURATION_SIZE = 256


class ClassicSide(Side):
    """What the two sides of diskscout.so share: the library, and who says which controller tool is run.

    One thread at a time is inside diskscout.so; others wait here. A thread that asks needs 2 MB of stack:
    ``threading.stack_size``.
    """

    NEEDS: Tuple[str, ...] = ("GetItemInfo", "SetItemInfo", "stcli", "memory_counter_hdd", "g_szConfigFileName")

    def __init__(
        self,
        path: Optional[PathLike] = None,
        *,
        directory: Optional[PathLike] = None,
        configuration: Optional[PathLike] = None,
    ):
        """Loads diskscout.so: the file ``path``, or the one in ``directory``, or the one that is installed.

        configuration: what ``configuration_file`` is to be.
        """
        super().__init__(Library(find(CLASSIC, path, directory), CLASSIC_THREADS, self.NEEDS))
        if configuration is not None:
            self.configuration_file = os.fsdecode(configuration)

    @property
    def configuration_file(self) -> str:
        """The file that says where the controller tool is: /root/hardraid.cfg, unless another is named here.

        It is read once a process, by the first query or operation about RAID that can open it.
        """
        return os.fsdecode(self._library.text("g_szConfigFileName", _CONFIGURATION_SIZE).value)

    @configuration_file.setter
    def configuration_file(self, path: PathLike) -> None:
        name = file_name(path)
        if len(name) >= _CONFIGURATION_SIZE:
            raise ValueError(f"a path of {len(name)} bytes: the library has room for {_CONFIGURATION_SIZE - 1}")
        text = self._library.text("g_szConfigFileName", _CONFIGURATION_SIZE)
        self._library.threads.run(lambda: setattr(text, "value", name))


class Plugin(ClassicSide):
    """The queries of diskscout.so: what an agent of the classic contract sees.

    Each query gives a list that belongs to the caller, to be used by ``with``; a query that fails raises a QueryError,
    whose ``found`` are the records that were found before.
    """

    @property
    def live_records(self) -> int:
        """Local records handed out and not given back yet, of the whole process: memory_counter_hdd.

        Records behind RAID controllers are not counted by the library.
        """
        return self._library.number("memory_counter_hdd")

    def disks(self) -> RecordList[Disk]:
        """The local disks, at most 16."""
        return self._query(Disk, CMD_GET_DISKS, "CMD_GET_DISKS")

    def partitions(self) -> RecordList[Partition]:
        """The partitions of all local disks, with the volumes that are mounted from them; needs root."""
        return self._query(Partition, CMD_GET_PARTITIONS, "CMD_GET_PARTITIONS")

    def cdroms(self) -> RecordList[Cdrom]:
        """The IDE CD-ROM drives, at most 8."""
        return self._query(Cdrom, CMD_GET_CDROMS, "CMD_GET_CDROMS")

    def controllers(self) -> RecordList[Controller]:
        """The RAID controllers; like all that is behind them, it takes a run of the controller tool."""
        return self._query(Controller, CMD_GET_CONTROLLERS, "CMD_GET_CONTROLLERS")

    def containers(self, controller: str) -> RecordList[Container]:
        """The containers of the controller of that name."""
        return self._query(Container, CMD_GET_CONTAINERS, "CMD_GET_CONTAINERS", _named(controller))

    def raid_disks(self, controller: str) -> RecordList[RaidDisk]:
        """The disks behind the controller of that name."""
        return self._query(RaidDisk, CMD_GET_RAID_DISKS, "CMD_GET_RAID_DISKS", _named(controller))

    def raid_space(self, controller: str, address: int) -> RecordList[RaidSpace]:
        """The free areas of the disk at that address."""
        before = number(address).to_bytes(4, "little", signed=True)
        return self._query(RaidSpace, CMD_GET_RAID_SPACE, "CMD_GET_RAID_SPACE", _named(controller, before))

    def raid_partitions(self, controller: str) -> RecordList[RaidPartition]:
        """The pieces of disks that the containers of the controller of that name use."""
        return self._query(RaidPartition, CMD_GET_RAID_PARTITIONS, "CMD_GET_RAID_PARTITIONS", _named(controller))

    def stcli(self, *words: str) -> None:
        """Runs a diagnostic command, which prints on standard error; a QueryError when it fails.

        Made for service programs: some commands change the system, some end the process.
        """
        self._must_be_open()
        texts = [b"stcli", *map(characters, words)]
        if any(b"\0" in text for text in texts):
            raise ValueError("a null in a word")
        array = (ctypes.c_char_p * (len(texts) + 1))(*texts, None)
        run = self._library.function("stcli", [ctypes.c_int, ctypes.c_void_p, ctypes.c_int])
        result: int = self._library.threads.run(lambda: run(len(texts), array, 1))
        if result != 0:
            raise QueryError("stcli", -1)

    @staticmethod
    def _error(operation: str, error: int, found: Tuple[Any, ...]) -> QueryError:
        return QueryError(operation, -1, found=found)


def _named(controller: str, before: bytes = b"") -> Any:
    return ctypes.create_string_buffer(before + handed_over(controller))
