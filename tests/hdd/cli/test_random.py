# SPDX-License-Identifier: Apache-2.0
"""Random numbers and identifiers."""

import ctypes
import re
import time

import pytest

from conftest import FAILED, OK

INT_MIN, INT_MAX = -(2**31), 2**31 - 1


def numbers_of(cli, *words):
    done = cli.run("rand", *[str(word) for word in words])
    assert done.status == 0
    return [int(line) for line in done.body(OK).splitlines()]


def drawn(seed, low, high, count):
    """What the C library's own generator gives for this seed."""
    library = ctypes.CDLL(None)
    library.srand(seed)
    return [low + int(library.rand() * 2.0**-31 * (high - low + 1)) for _ in range(count)]


@pytest.mark.parametrize(
    "words",
    ((1, 5, 3), (5, 1, 3), (-10, -3, 50), (-3, -10, 50), (-5, 5, 100), (7, 7, 4), ("+1", "+2", "+9")),
)
def test_count_and_range(cli, words):
    bounds = sorted(int(word) for word in words[:2])
    found = numbers_of(cli, *words)
    assert len(found) == int(words[2])
    assert min(found) >= bounds[0] and max(found) <= bounds[1]


@pytest.mark.parametrize("bounds", ((1, 5), (5, 1), (-2, 1), (-5, -3)))
def test_every_value_is_reached(cli, bounds):
    # With five values the chance that one of them is missing is 5 * 0.8^1000, about 10^-96.
    assert set(numbers_of(cli, *bounds, 1000)) == set(range(min(bounds), max(bounds) + 1))


@pytest.mark.parametrize("bounds", ((1, 6), (-100, 100), (0, INT_MAX), (INT_MIN, INT_MAX)))
def test_drawn_as_told(cli, bounds):
    first = int(time.time())
    found = numbers_of(cli, *bounds, 50)
    assert found in [drawn(seed, *bounds, 50) for seed in range(first, int(time.time()) + 1)]


def test_widest_range(cli):
    found = numbers_of(cli, INT_MIN, INT_MAX, 200)
    assert len(found) == 200
    assert INT_MIN <= min(found) < 0 < max(found) <= INT_MAX


def test_beyond_an_int_is_the_nearest(cli):
    assert numbers_of(cli, 2**31, 10**30, 2) == [INT_MAX, INT_MAX]
    assert numbers_of(cli, -(2**31) - 1, -(10**30), 2) == [INT_MIN, INT_MIN]


@pytest.mark.parametrize("count", ("0", "-1", "-99999999999999999999"))
def test_no_numbers(cli, count):
    assert numbers_of(cli, 1, 5, count) == []


@pytest.mark.parametrize("place", (0, 1, 2))
@pytest.mark.parametrize(
    "word",
    ("x", "", "1x", "0x1", "1.5", " 1", "\t1", "\n1", "\v1", "\f1", "\r1", "1 ", "-", "+", "--1", "1e3"),
)
def test_no_number(cli, place, word):
    words = ["1", "5", "3"]
    words[place] = word
    done = cli.run("rand", *words)
    assert (done.status, done.body(FAILED)) == (1, "")


def test_many(cli):
    assert len(numbers_of(cli, 1, 5, 100000)) == 100000


def test_identifier(cli):
    found = []
    for _ in range(2):
        done = cli.run("xxid")
        assert done.status == 0
        found.append(done.body(OK))
    for text in found:
        assert re.fullmatch(r"[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\n", text)
    assert found[0] != found[1]
