# SPDX-License-Identifier: Apache-2.0
"""A host that handles signals, fifty a second: every wait that is under way is interrupted, and goes on."""

import subprocess
import time

import pytest

from conftest import HELLO, MENU, NO_TOOL, OK, find_host

PAUSE = 2.0
COUNTERS = "MEMORY_COUNTER    hdd    : 0\nMEMORY_COUNTER    hwraid : 0\n"
NO_RECORDS = "".join("*" * 60 + f" {kind} (end/0)\n" for kind in ("DISK", "CDROM", "PART"))
TASKS = "\nPlease select:1-get task list, 2 -get container task 0- quit\nCommand>Task>"


@pytest.fixture
def busy(cli):
    return {"LD_PRELOAD": str(cli.busy_host), "ASAN_OPTIONS": "verify_asan_link_order=0"}


def test_pause_between_rounds(cli, busy):
    start = time.monotonic()
    done = cli.run("sttest", "2", host="nothing", env=busy)
    seconds = time.monotonic() - start
    assert (done.status, done.body(OK)) == (0, COUNTERS + (NO_RECORDS + COUNTERS) * 2 + COUNTERS)
    assert seconds >= PAUSE


def test_console_waits_for_its_keys(cli, busy):
    """Also in the middle of a line."""
    with subprocess.Popen(
        [str(cli.launcher), "--sysroot", str(find_host("nothing")), "hwraid"],
        stdin=subprocess.PIPE,
        stderr=subprocess.PIPE,
        env=cli.environment(busy),
        text=True,
    ) as console:
        for keys in ("", "5", "\n", "0\n", "0"):
            console.stdin.write(keys)
            console.stdin.flush()
            time.sleep(0.1)
        _, shown = console.communicate("\n", timeout=20)
    main = MENU + "Command>"
    assert (console.returncode, shown) == (0, NO_TOOL + HELLO + main + TASKS + main + "Bye!\n" + OK)
