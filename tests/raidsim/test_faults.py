# SPDX-License-Identifier: Apache-2.0
"""What goes wrong on request, and the pager."""

import signal
import time

PAGER = "( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )"
SCRIPT = "open aac0\ncontainer list\n" + " " * 43 + "\n    \nexit\n"


def test_busy(tool):
    text = tool.output("open aac0", fault="busy")
    assert "\nCommand Error: <Another application has opened the requested controller.>\n" in text


def test_missing(tool):
    text = tool.output("controller list", "open aac0", fault="missing")
    assert "\nCommand Error: <The requested controller does not exist.>\n" in text
    assert "aac1" not in text


def test_exit_status(tool):
    result = tool.start(SCRIPT, "exit=3")
    assert result.returncode == 3
    assert result.stdout == tool.start(SCRIPT).stdout


def test_kill(tool):
    whole = tool.start(SCRIPT).stdout
    result = tool.start(SCRIPT, "kill")
    assert result.returncode == -signal.SIGKILL
    assert result.stdout == whole[: len(whole) // 2]


def test_cut(tool):
    whole = tool.start(SCRIPT).stdout
    assert tool.start(SCRIPT, "cut=100").stdout == whole[:100]
    assert tool.start(SCRIPT, "cut=0").stdout == b""
    assert tool.start(SCRIPT, "cut=1000000").stdout == whole


def test_flood(tool):
    text = tool.start(SCRIPT, "flood").stdout
    assert len(text) > 0x100000
    assert text.endswith(tool.start(SCRIPT).stdout.partition(b"\n\nCLI>")[2])


def test_slow(tool):
    begin = time.monotonic()
    assert tool.start(SCRIPT, "slow=300").returncode == 0
    assert time.monotonic() - begin >= 0.3


def test_several_faults(tool):
    result = tool.start(SCRIPT, "cut=10, exit=7")
    assert (result.returncode, result.stdout) == (7, b"EXAMPLE RA")


def test_rows_without_the_leading_blank(tool):
    assert tool.answer("container list", fault="noblank")[3:] == [
        "0    Mirror  2.0GB            Open    0:00:0 64.0KB: 2.0GB",
        "/dev/sda             system           0:01:0 64.0KB: 2.0GB",
    ]
    assert tool.answer("container list", fault="blank") == tool.answer("container list")


def test_pager_stands_before_the_next_line(tool):
    plain = tool.answer("container list")
    paged = tool.answer("container list", fault="pager=2")
    assert paged == [*plain[:2], PAGER + plain[2], plain[3], PAGER + plain[4]]


def test_pager_counts_anew_for_each_command(tool):
    text = tool.output("open aac0", "container list 0", "task list", fault="pager=6")
    assert PAGER not in text


def test_return_key_shows_one_more_line(tool):
    result = tool.start("open aac0\ncontainer list\n\n\n" + " \n" + "exit\n", "pager=2").stdout.decode()
    lines = tool.answer("container list")
    assert PAGER + lines[2] + "\n" + PAGER + lines[3] + "\n" + PAGER + lines[4] + "\n" in result


def test_continue_and_quit(tool):
    plain = tool.answer("container list")
    text = tool.start("open aac0\ncontainer list\nc\nexit\n", "pager=2").stdout.decode()
    assert "\n".join([*plain[:2], PAGER + plain[2], plain[3], plain[4]]) in text
    text = tool.start("open aac0\ncontainer list\nq\nexit\n", "pager=2").stdout.decode()
    assert plain[1] + "\n" + PAGER + "\n\nAAC0>\nExecuting: exit\n" in text


def test_listing_runs_to_its_end_when_nobody_answers(tool):
    text = tool.start("open aac0\ncontainer list", "pager=2").stdout.decode()
    plain = tool.answer("container list")
    assert "\n".join([*plain[:2], PAGER + plain[2], plain[3], plain[4]]) in text


def test_terminal_paints(tool):
    text = tool.start(SCRIPT, "terminal").stdout
    assert text.startswith(b"\033[H\033[2J")
    assert b"\033[24;1HAAC0>\r\nExecuting: container list\r\n" in text
    assert b"\n" not in text.replace(b"\r\n", b"")


def test_status_lines(tool):
    status = "Stat:OK!Task:101,Func:MCR Ctr:0,State:DNE 100.0%"
    plain = tool.answer("container list")
    assert tool.answer("container list", fault="status") == [*plain[:3], status, *plain[3:]]
