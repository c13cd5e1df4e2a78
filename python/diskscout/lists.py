# SPDX-License-Identifier: Apache-2.0
"""A list of the library's records, owned by whoever asked for it."""

from __future__ import annotations

import warnings
import weakref
from typing import Callable, Generic, List, Optional, Sequence, Type, Union, overload

from .errors import ClosedError
from .fields import R, addresses, copy_of
from .library import AnyThread, Lock

GiveBack = Callable[[int], object]


def _forgotten(threads: AnyThread, give_back: GiveBack, head: int, what: str) -> None:
    threads.soon(lambda: give_back(head))
    warnings.warn(f"a list of {what} was not closed", ResourceWarning, stacklevel=2)


def _nothing() -> None:
    pass


class RecordList(Sequence[R], Generic[R]):
    """What the library answered: a sequence of records, to be closed by leaving its ``with``.

    The memory belongs to the library. It goes back there once: at the end of the ``with``, by ``close()``, with the
    plug-in's own close, or, with a ResourceWarning, when nobody holds the list any more. Whatever asks the list for
    records or their number afterwards gets a ClosedError. Records are copies, made when they are asked for: those
    that were taken out of the list stay what they are. Any thread may use a list.
    """

    def __init__(
        self, record: Type[R], threads: AnyThread, give_back: GiveBack, head: Optional[int], count: Optional[int]
    ):
        self._record = record
        self._places: List[int] = []
        # Re-entrant, and readers are counted: a signal handler or the garbage collector may close the list in the
        # middle of a copy, in the same thread. Then the reader gives it back when it is done.
        self._lock = Lock()
        self._readers = 0
        self._closed = False
        self._owned = weakref.finalize(self, _forgotten, threads, give_back, head, record.C_NAME) if head else None
        if self._owned is not None:
            # At the process's end its memory goes as a whole, and other threads may still be inside the library.
            self._owned.atexit = False
        self._places.extend(addresses(record, head, count))

    @property
    def closed(self) -> bool:
        """Whether the records have gone back to the library."""
        return self._closed

    def close(self) -> None:
        """Gives the records back to the library; nothing happens when that was done before."""
        with self._lock:
            self._closed = True
            give_back = self._unowned()
        give_back()

    def _unowned(self) -> Callable[[], object]:
        """Gives the records back, for the first who asks while nobody reads; to be called without the lock.

        The library may be busy for minutes, and whoever is inside it may want this list's lock.
        """
        owned = self._owned.detach() if self._owned is not None and self._readers == 0 else None
        if owned is None:
            return _nothing
        threads: AnyThread
        give_back: GiveBack
        _, _, (threads, give_back, head, _), _ = owned
        return lambda: threads.run(lambda: give_back(head))

    def _copy(self, place: int) -> R:
        give_back: Callable[[], object] = _nothing
        try:
            with self._lock:
                self._must_be_open()
                self._readers += 1
                try:
                    return copy_of(self._record, self._places[place])
                finally:
                    self._readers -= 1
                    if self._closed:
                        give_back = self._unowned()
        finally:
            give_back()

    def _must_be_open(self) -> None:
        if self._closed:
            raise ClosedError(f"this list of {self._record.C_NAME} is closed")

    def __len__(self) -> int:
        self._must_be_open()
        return len(self._places)

    @overload
    def __getitem__(self, place: int) -> R: ...

    @overload
    def __getitem__(self, place: slice) -> List[R]: ...

    def __getitem__(self, place: Union[int, slice]) -> Union[R, List[R]]:
        if isinstance(place, slice):
            return [self._copy(one) for one in range(*place.indices(len(self)))]
        return self._copy(place)

    def __enter__(self) -> RecordList[R]:
        self._must_be_open()
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        return f"<list of {self._record.C_NAME}, {'closed' if self._closed else f'{len(self._places)} records'}>"
