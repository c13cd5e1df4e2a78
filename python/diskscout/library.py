# SPDX-License-Identifier: Apache-2.0
"""A loaded plug-in, and who may be inside it.

Into diskscout.so one thread at a time may go, so there is one lock for it in the process, however often it is loaded.
diskscout-block.so takes any number of threads.
"""

from __future__ import annotations

import collections
import ctypes
import os
import threading
import weakref
from typing import Any, Callable, Deque, Iterable, List, Optional, TypeVar

from .errors import LibraryError

Answer = TypeVar("Answer")


class Request(ctypes.Structure):
    """IPMICOMMAND, the request of a query: of its members the libraries read the command and its argument."""

    _fields_ = [
        ("nMode", ctypes.c_uint),
        ("lIp", ctypes.c_ulonglong),
        ("sUserName", ctypes.c_char * 16),
        ("sPassword", ctypes.c_char * 16),
        ("nCommand", ctypes.c_uint),
        ("nIndex", ctypes.c_uint),
        ("nPara1", ctypes.c_uint),
        ("nPara2", ctypes.c_uint),
        ("nPara3", ctypes.c_uint),
        ("nDataLen", ctypes.c_uint),
        ("szData", ctypes.c_void_p),
    ]


class Lock:
    """A re-entrant lock, which a child that is forked finds free: there is no thread in it that could let it go."""

    _all: weakref.WeakSet[Lock] = weakref.WeakSet()

    def __init__(self) -> None:
        self._lock = threading.RLock()
        Lock._all.add(self)

    def acquire(self, blocking: bool = True) -> bool:
        return self._lock.acquire(blocking)

    def release(self) -> None:
        self._lock.release()

    def __enter__(self) -> None:
        self._lock.acquire()

    def __exit__(self, *_: object) -> None:
        self._lock.release()

    @classmethod
    def renew(cls) -> None:
        for one in cls._all:
            # The thread that forked may hold it itself, and will let it go.
            if one.acquire(blocking=False):
                one.release()
            else:
                one._lock = threading.RLock()


os.register_at_fork(after_in_child=Lock.renew)


class AnyThread:
    """Everybody may go in at once."""

    def run(self, call: Callable[[], Answer]) -> Answer:
        """Goes in now."""
        return call()

    def soon(self, call: Callable[[], object]) -> None:
        """Goes in now or a little later, and never waits."""
        call()


class OneThread(AnyThread):
    """One thread at a time.

    The garbage collector gives back lists that were forgotten, in any thread and between any two lines: it must not
    wait for a query of another thread, which may take minutes. What it finds is given back by whoever comes out next.
    """

    def __init__(self) -> None:
        # Re-entrant because the collector may come between taking the lock and going in.
        self._inside = Lock()
        self._left_over: Deque[Callable[[], object]] = collections.deque()

    def run(self, call: Callable[[], Answer]) -> Answer:
        try:
            with self._inside:
                return call()
        finally:
            self._clean()

    def soon(self, call: Callable[[], object]) -> None:
        self._left_over.append(call)
        self._clean()

    def _clean(self) -> None:
        # Looked at again after each time out: what came while the lock was held was left to its holder.
        while self._left_over and self._inside.acquire(blocking=False):
            try:
                self._left_over.popleft()()
            except IndexError:
                pass  # another thread was quicker
            finally:
                self._inside.release()


CLASSIC_THREADS = OneThread()
BLOCK_THREADS = AnyThread()


class Library:
    """One plug-in, loaded; it stays so until the process ends."""

    def __init__(self, path: str, threads: AnyThread, needs: Iterable[str]):
        try:
            self._loaded = ctypes.CDLL(path, use_errno=True)
        except OSError as error:
            raise LibraryError(f"{path} cannot be loaded: {error}") from error
        lacks: List[str] = [name for name in needs if not hasattr(self._loaded, name)]
        if lacks:
            raise LibraryError(f"{path} is another library, or too old: it lacks {', '.join(lacks)}")
        self.path = path
        self.threads = threads
        item = [ctypes.POINTER(Request), ctypes.POINTER(ctypes.c_void_p)]
        self._get = self.function("GetItemInfo", [*item, ctypes.POINTER(ctypes.c_int)])
        self._set = self.function("SetItemInfo", item)

    def function(self, name: str, arguments: List[Any], result: Any = ctypes.c_int) -> Callable[..., int]:
        """A function of the plug-in, to be called within ``threads.run``."""
        function: Any = getattr(self._loaded, name)
        function.argtypes = arguments
        function.restype = result
        return function  # type: ignore[no-any-return]

    def number(self, name: str) -> int:
        """An ``int`` that the plug-in exports, as it is now."""
        return ctypes.c_int.in_dll(self._loaded, name).value

    def text(self, name: str, size: int) -> Any:
        """An array of characters that the plug-in exports."""
        return (ctypes.c_char * size).in_dll(self._loaded, name)

    def get(self, code: int, argument: Any, head: ctypes.c_void_p, count: ctypes.c_int) -> Optional[int]:
        """GetItemInfo: nothing, or the errno of its failure."""
        request = Request(nCommand=code, szData=ctypes.cast(argument, ctypes.c_void_p) if argument else None)

        def call() -> Optional[int]:
            ctypes.set_errno(0)
            failed: bool = self._get(ctypes.byref(request), ctypes.byref(head), ctypes.byref(count)) != 0
            return ctypes.get_errno() if failed else None

        return self.threads.run(call)

    def give_back(self, code: int, head: int) -> None:
        """SetItemInfo, with the release code of the list; to be called within ``threads``."""
        pointer = ctypes.c_void_p(head)
        self._set(ctypes.byref(Request(nCommand=code)), ctypes.byref(pointer))
