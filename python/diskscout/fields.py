# SPDX-License-Identifier: Apache-2.0
"""How the members of a C record become the fields of a Python one.

A record is a frozen dataclass whose rows name the C member, its shape and its meaning with its unit. The same rows
make the ctypes structure, the copy and the docstring: none of them can say something else.
"""

from __future__ import annotations

import ctypes
import dataclasses
from enum import IntEnum
from typing import Any, Callable, ClassVar, Dict, Iterator, NamedTuple, Optional, Tuple, Type, TypeVar, cast

ABSENT = -1  # BLOCK_ABSENT, AAC_NO_MEMBER: what stands where there is no number


class Shape(NamedTuple):
    """A type of C, how its value is taken, and what stands for a field that an older library does not have."""

    c_type: Any
    take: Callable[[Any], Any]
    absent: Any = None


class Row(NamedTuple):
    """One member."""

    member: str
    shape: Shape
    says: str


def row(member: str, shape: Shape, says: str) -> Any:
    """A field of a record."""
    return dataclasses.field(metadata={"row": Row(member, shape, says)})


def decoded(raw: bytes) -> str:
    """A text as it came: what is no UTF-8 comes back from ``text.encode("utf-8", "surrogateescape")``."""
    return raw.decode("utf-8", "surrogateescape")


class Record:
    """One record of a list: a copy, which stays what it is after the list has gone back to the library."""

    C_NAME: ClassVar[str]
    C_TYPE: ClassVar[Type[ctypes.Structure]]
    ROWS: ClassVar[Tuple[Tuple[Row, int], ...]]
    SIZED: ClassVar[bool]


R = TypeVar("R", bound=Record)

RECORDS: Dict[str, Type[Record]] = {}
"""Every record by the name that its C type has."""


def laid_out(c_name: str, next_at: Optional[int] = None) -> Callable[[Type[R]], Type[R]]:
    """Makes a dataclass the record of that C type, whose ``next`` is its last member or the one at that place."""

    def lay_out(record: Type[R]) -> Type[R]:
        fields = dataclasses.fields(cast(Any, record))
        rows = [field.metadata["row"] for field in fields]
        members = [(row.member, row.shape.c_type) for row in rows]
        members.insert(len(members) if next_at is None else next_at, ("next", ctypes.c_void_p))
        record.C_NAME = c_name
        record.C_TYPE = type(c_name, (ctypes.Structure,), {"_fields_": members})
        ends = [getattr(record.C_TYPE, row.member) for row in rows]
        record.ROWS = tuple((row, end.offset + end.size) for row, end in zip(rows, ends))
        record.SIZED = rows[0].member == "record_size"
        told = "".join(f"    {field.name}: {row.says}\n" for field, row in zip(fields, rows))
        record.__doc__ = f"{record.__doc__}\n\n{c_name}; its fields:\n\n{told}"
        RECORDS[c_name] = record
        return record

    return lay_out


def copy_of(record: Type[R], address: int) -> R:
    """The record at that address of the library's memory."""
    there: Any = record.C_TYPE.from_address(address)
    # A library that is older than this package has shorter records; what is behind their end is not theirs.
    size = there.record_size if record.SIZED else ctypes.sizeof(there)
    return record(
        *[row.shape.take(getattr(there, row.member)) if end <= size else row.shape.absent for row, end in record.ROWS]
    )


def addresses(record: Type[Record], head: Optional[int], count: Optional[int] = None) -> Iterator[int]:
    """Where the records of a linked list are: all of them, or the first ones."""
    while head and count != 0:
        yield head
        there: Any = record.C_TYPE.from_address(head)
        head = there.next
        count = None if count is None else count - 1


# ---- shapes of the classic records ----

UINT = Shape(ctypes.c_uint, int)
ULONGLONG = Shape(ctypes.c_ulonglong, int)
INT = Shape(ctypes.c_int, int)
LONGLONG = Shape(ctypes.c_longlong, int)
FLOAT = Shape(ctypes.c_float, float)
BOOLEAN = Shape(ctypes.c_char, lambda value: value != b"\0")
BYTE = Shape(ctypes.c_char, ord)
LOW32 = Shape(ctypes.c_longlong, lambda value: value & 0xFFFFFFFF)


def chars(size: int) -> Shape:
    """A text in an array of its own: up to the terminator, or all of it without one."""
    return Shape(ctypes.c_char * size, decoded)


STRING = chars(64)


def coded(words: Type[IntEnum]) -> Shape:
    """A number that has a name, mostly: a library may hold one that has none here."""

    def take(value: int) -> int:
        try:
            return words(value)
        except ValueError:
            return value

    return Shape(ctypes.c_int, take)


def _number_or_none(value: int) -> Optional[int]:
    return None if value == ABSENT else value


OPTIONAL_INT = Shape(ctypes.c_int, _number_or_none)
MEMBERS = Shape(ctypes.c_int * 64, lambda slots: tuple(slot for slot in slots if slot != ABSENT))


# ---- shapes of the records of today's hosts ----

SIZE = Shape(ctypes.c_size_t, int)
OPTIONAL_LONGLONG = Shape(ctypes.c_longlong, _number_or_none)
FLAG = Shape(ctypes.c_int, lambda value: None if value == ABSENT else value != 0)
# A name is never absent; a null that should not be there is an empty one rather than a crash.
NAME = Shape(ctypes.c_char_p, lambda raw: decoded(raw or b""), "")
TEXT = Shape(ctypes.c_char_p, lambda raw: None if raw is None else decoded(raw))


def inner(record: Type[R], value: Callable[[R], Any] = lambda one: one) -> Shape:
    """A list within a record: a tuple, empty where the library has none."""
    return Shape(
        ctypes.c_void_p,
        lambda head: tuple(value(copy_of(record, address)) for address in addresses(record, head)),
        (),
    )
