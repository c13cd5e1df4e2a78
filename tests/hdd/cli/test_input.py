# SPDX-License-Identifier: Apache-2.0
"""The command that shows a line of standard input, and ends the process where there is none."""

import os

import pytest

from conftest import HELLO, OK

NO_INPUT = HELLO + "error: |hdd/exe/../sal/src/1/../linux/../0/cli 142|\n"
LONGEST = 1023

LINES = {
    "plain": (b"one line\n", "one line"),
    "no newline": (b"one line", "one line"),
    "first of two": (b"first\nsecond\n", "first"),
    "empty": (b"\n", ""),
    "blanks at the end": (b"a b \t \t\n", "a b"),
    "blanks in front stay": (b" \t a\n", " \t a"),
    "blanks alone": (b" \t \n", ""),
    "comment": (b"text # comment\n", "text"),
    "comment alone": (b"# comment\n", ""),
    "carriage return": (b"text\r\n", "text"),
    "inner carriage return": (b"text\rmore\n", "text"),
    "NUL": (b"text\0more\n", "text"),
    "NUL in front": (b"\0text\n", ""),
    "bytes": (b"\x01\xff\xfe\x80\n", "\x01\xff\xfe\x80"),
    "per cent": (b"%s%n%d\n", "%s%n%d"),
    "longest": (b"l" * LONGEST + b"\n", "l" * LONGEST),
    "one more": (b"l" * LONGEST + b"m\n", "l" * LONGEST),
    "cut in the blanks": (b"l" * 1000 + b" " * 23 + b"m\n", "l" * 1000),
    "10 MB": (b"t" * 10_000_000, "t" * LONGEST),
    "10 MB of NUL": (b"\0" * 10_000_000, ""),
    "10 MB of blanks": (b" " * 10_000_000 + b"x\n", ""),
}


@pytest.mark.parametrize("name", LINES)
def test_line(cli, name):
    text, shown = LINES[name]
    done = cli.run("input", input=text)
    assert (done.status, done.stderr) == (0, HELLO + shown + "\n" + OK)


def test_end_of_input(cli):
    done = cli.run("input", input=b"")
    assert (done.status, done.stderr) == (255, NO_INPUT)


def test_closed_input(cli):
    done = cli.run("input", stdin=None, preexec_fn=lambda: os.close(0))
    assert (done.status, done.stderr) == (255, NO_INPUT)


def test_input_that_cannot_be_read(cli, tmp_path):
    directory = os.open(tmp_path, os.O_RDONLY)
    try:
        done = cli.run("input", stdin=directory)
    finally:
        os.close(directory)
    assert (done.status, done.stderr) == (255, NO_INPUT)
