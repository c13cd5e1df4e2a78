# SPDX-License-Identifier: Apache-2.0
"""What goes wrong, as exceptions.

``DiskscoutError`` is above all of them. What the library refuses is a ``CallError`` of its side; what this package
itself refuses is a ``LibraryError``, a ``ClosedError`` or Python's own ``ValueError`` or ``TypeError``.
"""

from __future__ import annotations

from typing import Any, Tuple


class DiskscoutError(Exception):
    """Above everything that this package raises on its own account."""


class LibraryError(DiskscoutError):
    """A plug-in that is not there, cannot be loaded, or is another one; the text says where it was looked for."""


class ClosedError(DiskscoutError, ValueError):
    """A list, or a plug-in, that was closed already is used."""


class CallError(DiskscoutError):
    """The library answers that it failed.

    operation: what was asked, by the name that the library's headers have for it.
    code: what the library says, as a number.
    name: the name of that number; empty where the library has none.
    found: copies of the records that the library had found before it failed. All that it had allocated is back.
    """

    def __init__(self, operation: str, code: int, name: str = "", reason: str = "", found: Tuple[Any, ...] = ()):
        self.operation = operation
        self.code = code
        self.name = name
        self.reason = reason
        self.found = found
        super().__init__(operation, code, name, reason, found)

    def __str__(self) -> str:
        said = f"{self.name} ({self.code})" if self.name else str(self.code)
        return f"{self.operation} failed: {said}{': ' if self.reason else ''}{self.reason}"


class QueryError(CallError):
    """A query or a command of diskscout.so: ``code`` is -1, for which the library has neither cause nor name."""


class RaidError(CallError):
    """A RAID operation of diskscout.so: ``code`` and ``name`` are those of ``diskscout.Result``."""


class BlockError(CallError):
    """A query of diskscout-block.so: ``code`` and ``name`` are those of errno."""
