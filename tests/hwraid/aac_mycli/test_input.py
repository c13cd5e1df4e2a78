# SPDX-License-Identifier: Apache-2.0
"""Lines that nobody would type: far too long, not text, no numbers, numbers beyond every limit."""

import os
import subprocess

import pytest
from screens import (
    ALWAYS,
    BYE,
    CONTAINER_ID,
    CONTROLLER,
    HELLO,
    INDEX,
    LABEL,
    LUN,
    MAIN,
    QUICK,
    REPEAT,
    SPACE,
    SUB_MENUS,
    TASK,
    TASK_CONTAINER,
    UNKNOWN,
    numbers,
    raid_disk,
    visit,
)

# Around the rooms that a number's line (127 characters) and a main prompt's line (255) have.
LENGTHS = [126, 127, 128, 129, 254, 255, 256, 257, 5000]
VAST = 10_000_000
every_sub_menu = pytest.mark.parametrize("sub_menu", SUB_MENUS)


def name_of(index):
    return f"get controller name return :0, name = aac{index}\n"


def test_long_lines_at_the_main_prompt(site):
    """The rest of a line is no line of its own, whatever it says."""
    unknown = "".join("x" * (length - 1) + "0\n" for length in LENGTHS)
    known = "".join("5" + "0" * (length - 1) + "\n0\n" for length in LENGTHS)
    task = SUB_MENUS[TASK][0] + MAIN
    assert site.run(unknown + known + "0\n") == HELLO + MAIN + UNKNOWN * len(LENGTHS) + task * len(LENGTHS) + BYE


@every_sub_menu
def test_long_lines_in_a_sub_menu(site, sub_menu):
    unknown = "".join("x" * (length - 1) + "0\n" for length in LENGTHS)
    known = SUB_MENUS[sub_menu][1]
    assert site.run(f"{sub_menu}\n{unknown}0\n0\n") == visit(sub_menu, *[known] * len(LENGTHS))


def test_number_in_a_long_line(site):
    """127 characters are read: a 1 behind them does not count any more."""
    keys = "1\n" + "".join("2\n" + "0" * (length - 1) + "1\n" for length in LENGTHS) + "0\n0\n"
    results = [INDEX + "\n" + name_of(1 if length <= 127 else 0) for length in LENGTHS]
    assert site.run(keys) == visit(CONTROLLER, *results)


def test_long_line_that_is_refused(site):
    keys = "1\n2\n" + "".join("9" * length + "\n" for length in LENGTHS) + "1\n0\n0\n"
    result = INDEX + "\n" + (REPEAT + "\n") * len(LENGTHS) + name_of(1)
    assert site.run(keys) == visit(CONTROLLER, result)


def test_long_labels(site):
    """RAID 10 asks for a label and one more thing; the tool gets 16 characters."""
    site.record()
    lengths = [15, 16, 17, *LENGTHS]
    site.run("4\n" + "".join(f"3\n{('a1' * length)[:length]}\n0\n" for length in lengths) + "0\n0\n")
    labels = ["a1a1a1a1a1a1a1a", *["a1a1a1a1a1a1a1a1"] * (len(lengths) - 1)]
    assert site.commands() == [f'container create mstrip /label="{label}" -1 -1 ' for label in labels]


def test_vast_lines(site):
    site.record()
    vast = "1" * VAST + "\n"
    # An unknown command, then choice 1 of the RAID menu's RAID 10 with a label; a number that is refused.
    keys = "x" + vast + "4\nx" + vast + "3\n" + "label" + vast + vast + "0\n0\n0\n"
    transcript = site.run(keys)
    menu, unknown = SUB_MENUS["4"]
    start = HELLO + MAIN + UNKNOWN + menu + unknown + menu + LABEL
    assert transcript.startswith(start)
    assert transcript.endswith(menu + MAIN + BYE)
    assert transcript.count(REPEAT) == 1
    assert site.commands() == ['container create mstrip /label="label11111111111" -1 -1 ']


def test_vast_line_without_an_end(site):
    """A line that Enter has not ended has not been given."""
    assert site.run("5" * VAST) == HELLO + MAIN + BYE


def test_null_bytes(site):
    """A NUL byte ends the text of its line."""
    task = SUB_MENUS[TASK][0]
    keys = b"\0\n" + b"\0" * 5000 + b"5\n" + b"5\0garbage\n" + b"\0" b"1\n" + b"0\0\n"
    assert site.run(keys) == HELLO + MAIN + UNKNOWN * 2 + task + MAIN + BYE


def test_null_bytes_in_answers(site):
    site.record()
    site.run(b"4\n3\nab\0cd\n0\n0\n" + b"3\n2\n1\0x\n3\0007\n0\n0\n")
    assert site.commands() == ['container create mstrip /label="ab" -1 -1 ', "container delete /always=true 3"]


def test_lines_of_a_serial_line(site):
    """They end with CR and LF."""
    site.record()
    site.run(b"4\r\n3\r\nlabel\r\n0\r\n\r\n3\r\n2\r\n0\r\n7\r\n0\r\n0\r\n")
    create = 'container create mstrip /label="label" -1 -1 '
    assert site.commands() == [create, "container delete /always=false 7"]


def test_bytes_beyond_ascii(site):
    assert site.run(b"\xff\n\xe2\x82\xac\n\x1b[A\n0\n") == HELLO + MAIN + UNKNOWN * 3 + BYE


@pytest.mark.parametrize(
    "answer, number",
    [
        ("", 0),
        ("zero", 0),
        ("clear", 0),
        ("x1", 0),
        ("-0", 0),
        ("0x1", 0),
        ("1", 1),
        ("  1", 1),
        ("\t1 ", 1),
        ("+1", 1),
        ("001", 1),
        ("1x", 1),
        ("1.9", 1),
        ("1 2", 1),
        ("1\r", 1),
    ],
)
def test_what_counts_as_a_number(site, answer, number):
    assert site.run(f"1\n2\n{answer}\n0\n0\n") == visit(CONTROLLER, INDEX + "\n" + name_of(number))
    assert site.times_cleared() == 0


def test_numbers_beyond_the_limits(site):
    """Also those that a 32-bit or a 64-bit integer would turn into 1."""
    refused = ["10", "-1", "2147483647", "2147483648", "-2147483648", "4294967297", "-4294967295"]
    refused += ["9223372036854775807", "18446744073709551617", "-18446744073709551615", "9" * 60, "-" + "9" * 60]
    keys = "1\n2\n" + "\n".join(refused) + "\n1\n0\n0\n"
    assert site.run(keys) == visit(CONTROLLER, numbers((INDEX, *refused, 1)) + name_of(1))


@pytest.mark.parametrize("redirection", ["</dev/null", "</", "<&-"])
def test_input_that_cannot_be_read(site, redirection):
    assert site.run("", redirection=redirection) == HELLO + MAIN + BYE


def screen_until(console, prompt):
    """Everything up to the prompt that the console waits at."""
    screen = b""
    while not screen.endswith(prompt.encode()):
        piece = os.read(console.stderr.fileno(), 4096)
        assert piece, screen
        screen += piece
    return screen


@pytest.mark.parametrize(
    "keys, prompt",
    [
        ("", "Command>"),
        ("1\n2\n", INDEX),
        ("2\n3\n0\n1\n", LUN),
        ("3\n", "Command>Container>"),
        ("3\n2\n", ALWAYS),
        ("3\n2\n1\n", CONTAINER_ID),
        ("4\n3\n", LABEL),
        ("4\n2\na\n", QUICK),
        ("4\n1\na\n0\n2\n0\n", SPACE),
        ("4\n2\na\n1\n0\n2\n0\n0\n3\n", raid_disk(2)[2]),
        ("5\n2\n", TASK_CONTAINER),
        ("6\n3\n0\n1\n", LUN),
    ],
)
def test_terminal_that_goes_away(site, keys, prompt):
    """Reading fails then, which is no end of a file: nothing that was being asked for is done."""
    site.record()
    keyboard, terminal = os.openpty()
    with subprocess.Popen(
        site.command(),
        stdin=terminal,
        stderr=subprocess.PIPE,
        cwd=site.work,
        env=site.environment(""),
        start_new_session=True,
    ) as console:
        os.close(terminal)
        os.write(keyboard, keys.encode())
        screen_until(console, prompt)
        os.close(keyboard)
        _, rest = console.communicate(timeout=20)
    assert (console.returncode, rest.decode()) == (0, BYE)
    assert not site.scripts.exists()
