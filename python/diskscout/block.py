# SPDX-License-Identifier: Apache-2.0
"""The queries of diskscout-block.so: the block devices of today's hosts."""

from __future__ import annotations

import errno
import os
from typing import Any, Optional, Tuple

from .block_records import BlockArray, BlockContent, BlockDevice, BlockLink, BlockMount
from .errors import BlockError
from .finding import BLOCK, PathLike, find
from .library import BLOCK_THREADS, Library
from .lists import RecordList
from .side import Side

CMD_GET_BLOCK_DEVICES = 222100
CMD_GET_BLOCK_LINKS = 223100
CMD_GET_BLOCK_CONTENTS = 224100
CMD_GET_BLOCK_MOUNTS = 225100
CMD_GET_BLOCK_ARRAYS = 226100


class BlockPlugin(Side):
    """The queries of diskscout-block.so, which any number of threads may ask at once.

    Each query gives a list that belongs to the caller, to be used by ``with``; a query that fails raises a BlockError
    with errno's code and name.
    """

    NEEDS = ("GetItemInfo", "SetItemInfo", "memory_counter_block")

    def __init__(self, path: Optional[PathLike] = None, *, directory: Optional[PathLike] = None):
        """Loads diskscout-block.so: the file ``path``, or the one in ``directory``, or the one that is installed."""
        super().__init__(Library(find(BLOCK, path, directory), BLOCK_THREADS, self.NEEDS))

    @property
    def live_records(self) -> int:
        """Records handed out and not given back yet, of the whole process: memory_counter_block."""
        return self._library.number("memory_counter_block")

    def devices(self) -> RecordList[BlockDevice]:
        """Every block device, by name; none of them is opened or asked."""
        return self._query(BlockDevice, CMD_GET_BLOCK_DEVICES, "CMD_GET_BLOCK_DEVICES")

    def links(self) -> RecordList[BlockLink]:
        """Which device stands on which."""
        return self._query(BlockLink, CMD_GET_BLOCK_LINKS, "CMD_GET_BLOCK_LINKS")

    def contents(self) -> RecordList[BlockContent]:
        """Partition tables, file systems and members on each device, which is read for it."""
        return self._query(BlockContent, CMD_GET_BLOCK_CONTENTS, "CMD_GET_BLOCK_CONTENTS")

    def mounts(self) -> RecordList[BlockMount]:
        """Mount points in the kernel's order, then swap areas."""
        return self._query(BlockMount, CMD_GET_BLOCK_MOUNTS, "CMD_GET_BLOCK_MOUNTS")

    def arrays(self) -> RecordList[BlockArray]:
        """Software RAID arrays."""
        return self._query(BlockArray, CMD_GET_BLOCK_ARRAYS, "CMD_GET_BLOCK_ARRAYS")

    @staticmethod
    def _error(operation: str, error: int, found: Tuple[Any, ...]) -> BlockError:
        return BlockError(operation, error, errno.errorcode.get(error, ""), os.strerror(error), found)
