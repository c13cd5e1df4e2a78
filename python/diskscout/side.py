# SPDX-License-Identifier: Apache-2.0
"""What the sides of the plug-ins have in common: lists that end with them, and words that are fit to be handed over."""

from __future__ import annotations

import ctypes
import os
import weakref
from typing import Any, Callable, List, Optional, Tuple, Type, TypeVar

from .errors import CallError, ClosedError
from .fields import R
from .finding import PathLike
from .library import Library, Lock
from .lists import RecordList

S = TypeVar("S", bound="Side")


def characters(text: str) -> bytes:
    """The bytes of a text; a TypeError when it is none."""
    if not isinstance(text, str):
        raise TypeError(f"{text!r} is no text")
    return text.encode("utf-8", "surrogateescape")


def handed_over(text: str) -> bytes:
    """A text for the library; a ValueError when it has a control character, which would be a command of its own."""
    raw = characters(text)
    if any(byte < 0x20 or byte == 0x7F for byte in raw):
        raise ValueError(f"a control character in {text!r}")
    return raw


def file_name(path: PathLike) -> bytes:
    """A path for the library."""
    raw = os.fsencode(path)
    if b"\0" in raw:
        raise ValueError(f"a null in {path!r}")
    return raw


def number(value: int) -> int:
    """A number that an int of the library can hold: ctypes would cut it without a word."""
    if not isinstance(value, int):
        raise TypeError(f"{value!r} is no number")
    if not -(2**31) <= value < 2**31:
        raise ValueError(f"{value} is no number of 32 bits")
    return value


class Side:
    """One side of a plug-in: closing it closes the lists that it gave and that are open still.

    The library itself stays loaded until the process ends.
    """

    def __init__(self, library: Library) -> None:
        self._library = library
        self._lists: weakref.WeakSet[RecordList[Any]] = weakref.WeakSet()
        self._lists_lock = Lock()
        self._closed = False

    @property
    def path(self) -> str:
        """The file of the plug-in."""
        return self._library.path

    @property
    def closed(self) -> bool:
        """Whether it can no longer be asked."""
        return self._closed

    def close(self) -> None:
        """Closes every list that is open still; nothing happens when that was done before."""
        with self._lists_lock:
            self._closed = True
            left: List[RecordList[Any]] = list(self._lists)
        for one in left:
            one.close()

    def __enter__(self: S) -> S:
        self._must_be_open()
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def _must_be_open(self) -> None:
        if self._closed:
            raise ClosedError(f"{self.path} is closed")

    def _kept(self, one: RecordList[R]) -> RecordList[R]:
        with self._lists_lock:
            if not self._closed:
                self._lists.add(one)
                return one
        one.close()
        raise ClosedError(f"{self.path} is closed")

    def _query(self, record: Type[R], code: int, operation: str, argument: Any = None) -> RecordList[R]:
        """GetItemInfo; the list goes back with the code above the query's."""
        self._must_be_open()
        library, head, count = self._library, ctypes.c_void_p(), ctypes.c_int()
        error: Optional[int] = None
        try:
            error = library.get(code, argument, head, count)
        finally:
            # Whatever comes in between, such as an interrupt: what was made is owned from here on.
            found = RecordList(record, library.threads, _release(library, code + 1), head.value, count.value)
        if error is not None:
            raise self._failure(operation, error, found)
        return self._kept(found)

    def _failure(self, operation: str, error: int, found: RecordList[R]) -> CallError:
        with found:
            return self._error(operation, error, tuple(found))

    @staticmethod
    def _error(operation: str, error: int, found: Tuple[Any, ...]) -> CallError:
        raise NotImplementedError


def _release(library: Library, code: int) -> Callable[[int], object]:
    return lambda head: library.give_back(code, head)

