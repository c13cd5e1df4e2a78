# SPDX-License-Identifier: Apache-2.0
"""The exported function itself, called as no launcher would."""

import os

import pytest

from conftest import FAILED, HELLO, INVALID, MENU, NO_TOOL, OK

CONSOLE = HELLO + MENU + "Command>Bye!\n" + OK

INT_MIN, INT_MAX = -(2**31), 2**31 - 1


def call(cli, argc, start, *words, **settings):
    return cli.start([str(cli.call_stcli), str(cli.plugin), str(argc), str(start), *words], **settings)


@pytest.mark.parametrize("start", (2, 3, 1000000, INT_MAX, -1, -2, INT_MIN, INT_MIN + 1))
def test_start_is_no_word(cli, start):
    done = call(cli, 2, start, "stcli", "help")
    assert (done.status, done.stderr) == (1, HELLO + INVALID)


@pytest.mark.parametrize("argc", (0, -1, INT_MIN))
@pytest.mark.parametrize("start", (0, 1, -1, INT_MIN, INT_MAX))
def test_no_words(cli, argc, start):
    for words in ((), ("stcli", "help")):
        done = call(cli, argc, start, *words)
        assert (done.status, done.stderr) == (1, HELLO + INVALID)


@pytest.mark.parametrize(
    "argc, start, words",
    (
        (2, 1, ("stcli", "NULL")),
        (1, 0, ("NULL",)),
        (3, 1, ("stcli", "fnode", "NULL")),
        (3, 1, ("stcli", "NULL", "fnode")),
        (4, 1, ("stcli", "help", "cliid", "NULL")),
    ),
)
def test_null_among_the_words(cli, argc, start, words):
    done = call(cli, argc, start, *words)
    assert (done.status, done.stderr) == (1, HELLO + INVALID)


def test_start_anywhere(cli):
    for argc, start, words in (
        (2, 0, ("fnode", "/dev/sda1")),
        (3, 1, ("stcli", "fnode", "/dev/sda1")),
        (5, 3, ("a", "b", "c", "fnode", "/dev/sda1")),
        # What stands in front is not looked at, and the words end where argc says.
        (3, 1, ("NULL", "fnode", "/dev/sda1")),
        (3, 1, ("stcli", "fnode", "/dev/sda1", "more", "NULL")),
    ):
        done = call(cli, argc, start, *words)
        assert (done.status, done.stderr) == (0, HELLO + "sda1\n" + OK)


def test_words_are_counted_from_the_start(cli):
    done = call(cli, 3, 0, "fnode", "/dev/sda1", "/dev/sda2")
    assert (done.status, done.stderr) == (1, HELLO + FAILED)
    done = call(cli, 3, 2, "fnode", "/dev/sda1", "fnode")
    assert (done.status, done.stderr) == (1, HELLO + FAILED)


@pytest.mark.parametrize("start", (0, 1, 2, 100, -1, INT_MIN, INT_MAX))
def test_console_whatever_the_start(cli, start):
    done = call(cli, 2, start, "stcli", "hwraid")
    assert (done.status, done.stderr) == (0, CONSOLE)


@pytest.mark.parametrize(
    "words", (("hwraid", "hwraid"), ("help", "hwraid"), ("stcli", "hwraid", "help"), ("NULL", "hwraid"))
)
def test_console_by_the_second_word(cli, words):
    done = call(cli, len(words), 0, *words)
    assert (done.status, done.stderr) == (0, CONSOLE)


@pytest.mark.parametrize("start", (0, 1))
def test_console_needs_two_words(cli, start):
    for words in (("hwraid",), ("stcli", "hwraid")):
        done = call(cli, 1, start, *words)
        assert (done.status, done.stderr) == (1, HELLO + INVALID)


@pytest.mark.parametrize("word", ("HWRAID", "Hwraid", "hwraidx", "hwrai", "hwraid ", " hwraid", "", "xhwraid"))
def test_nearly_the_console(cli, word):
    done = call(cli, 2, 1, "stcli", word)
    assert (done.status, done.stderr) == (1, HELLO + INVALID)


def test_console_word_later(cli):
    done = call(cli, 3, 1, "stcli", "x", "hwraid")
    assert (done.status, done.stderr) == (1, HELLO + INVALID)


def test_console_through_the_launcher(cli):
    done = cli.run("hwraid", host="nothing", input=b"0\n")
    assert (done.status, done.stderr) == (0, NO_TOOL + CONSOLE)


def test_console_again_after_an_end_of_input(cli):
    """At a terminal the end of input ends one console; the next one reads on."""
    keyboard, terminal = os.openpty()
    try:
        # Ctrl-D, and what is typed for the second console.
        os.write(keyboard, b"\x040\n")
        done = call(cli, 2, 1, "stcli", "hwraid", env={"CALLS": "2"}, stdin=terminal)
    finally:
        os.close(terminal)
        os.close(keyboard)
    assert (done.status, done.stderr) == (0, CONSOLE * 2)


def test_commands_know_nothing_of_each_other(cli):
    """No call leaves anything for the next one."""
    for words, status, shown in (
        (("fnode", "/dev/sda1"), 0, "sda1\n" + OK),
        (("fnode",), 1, FAILED),
        (("cliid",), 0, "cli_0\ncli_linux\ncli_1\nclifunc_exe\nclifunc_hdd\n" + OK),
        (("x",), 1, INVALID),
    ):
        done = call(cli, len(words), 0, *words, env={"CALLS": "3"})
        assert (done.status, done.stderr) == (status, (HELLO + shown) * 3)
