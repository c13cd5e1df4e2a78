# SPDX-License-Identifier: Apache-2.0
"""The repeated queries: pauses, counters, and the same records round after round."""

import os
import re
import shutil
import subprocess

import pytest

from conftest import FAILED, HELLO, OK, find_host

COUNTER = re.compile(r"^MEMORY_COUNTER    (hdd   |hwraid) : (-?\d+)$", re.MULTILINE)
BANNER = re.compile(r"^\*{60} ([A-Z]+) \(", re.MULTILINE)
ADDRESS = re.compile(r"^this               = (0x[0-9a-f]{8})$", re.MULTILINE)

# The captured machine has 5 disks, a CD-ROM drive and 12 partitions.
RECORDS = 18
PAUSE = "2.000000000"


def counters(text):
    found = COUNTER.findall(text)
    assert [name.strip() for name, _ in found] == ["hdd", "hwraid"] * (len(found) // 2)
    assert {value for name, value in found if name == "hwraid"} == {"0"}
    return [int(value) for name, value in found if name != "hwraid"]


def run_without_waiting(cli, *words, **settings):
    """A run, and the pauses that it would have made."""
    log = cli.scratch / "pauses"
    log.write_text("")
    env = {"LD_PRELOAD": str(cli.no_pause), "NO_PAUSE_LOG": str(log)}
    env["ASAN_OPTIONS"] = "verify_asan_link_order=0:detect_leaks=" + settings.pop("detect_leaks", "1")
    return cli.run(*words, env=env, **settings), log.read_text().split()


def test_one_round_has_no_pause(cli):
    done, pauses = run_without_waiting(cli, "sttest", "1", host="real-kernel")
    assert (done.status, pauses) == (0, [])
    assert counters(done.body(OK)) == [0, RECORDS, 0]


def test_two_rounds(cli):
    done, pauses = run_without_waiting(cli, "sttest", "2", host="real-kernel")
    assert (done.status, pauses) == (0, [PAUSE])
    body = done.body(OK)
    # The second round refills the records of the first.
    assert counters(body) == [0, RECORDS, RECORDS, 0]
    assert BANNER.findall(body) == (["DISK"] * 6 + ["CDROM"] * 2 + ["PART"] * 13) * 2
    addresses = ADDRESS.findall(done.raw)
    assert len(addresses) == 2 * RECORDS
    assert addresses[:RECORDS] == addresses[RECORDS:]
    # Round by round the same text, each behind its counters.
    first, second = re.fullmatch(
        r"MEMORY[^\n]*\nMEMORY[^\n]*\n(.*?MEMORY[^\n]*\nMEMORY[^\n]*\n)(.*?MEMORY[^\n]*\nMEMORY[^\n]*\n)"
        r"MEMORY[^\n]*\nMEMORY[^\n]*\n",
        body,
        re.DOTALL,
    ).groups()
    assert first == second


def test_many_rounds(cli):
    """A pause stands between two rounds, none behind the last."""
    done, pauses = run_without_waiting(cli, "sttest", "5", host="real-kernel")
    assert (done.status, pauses) == (0, [PAUSE] * 4)
    assert counters(done.body(OK)) == [0, *[RECORDS] * 5, 0]


# A disk that cannot be read fails the partition query, a disk list that overflows and a missing mount table as well.
@pytest.mark.parametrize("host", ("short-disk", "scsi-seventeen", "no-mounts"))
@pytest.mark.parametrize("rounds", ("1", "2", "1000000"))
def test_failing_query_ends_it_at_once(cli, host, rounds):
    # The lists of that round stay with the process that ends.
    done, pauses = run_without_waiting(cli, "sttest", rounds, host=host, detect_leaks="0")
    assert (done.status, pauses) == (1, [])
    assert done.stderr == (
        HELLO + "MEMORY_COUNTER    hdd    : 0\nMEMORY_COUNTER    hwraid : 0\n" + FAILED
    )


BLOCK_TABLE = "proc/partitions"
LAST_DISK = re.compile(r".* sdc\d*\n")
# The machine with its last disk, and without that disk and the two partitions on it.
ALL = {"DISK": 5, "CDROM": 1, "PART": 12}
FEWER = {"DISK": 4, "CDROM": 1, "PART": 10}


def two_rounds(cli, directory, table_of_the_second):
    """The block-device table is another one from the second round on."""
    waiting = directory / "waiting"
    waiting.write_text(table_of_the_second)
    with subprocess.Popen(
        [str(cli.launcher), "--sysroot", str(directory), "sttest", "2"],
        stdin=subprocess.DEVNULL,
        stderr=subprocess.PIPE,
        env=cli.environment(None),
        text=True,
    ) as process:
        shown = ""
        # The first round ends with its counters; before it stand those of the start.
        while shown.count("MEMORY_COUNTER    hwraid") < 2:
            line = process.stderr.readline()
            assert line, shown
            shown += line
        os.replace(waiting, directory / BLOCK_TABLE)
        shown += process.stderr.read()
        assert process.wait(timeout=20) == 0
    return shown


def banners(shown, linked):
    """All banners of a round: so many records of each kind shown, and so many linked."""
    return [
        f"{kind} ({place}/{linked[kind]})" for kind, count in shown.items() for place in (*range(count), "end")
    ]


@pytest.fixture
def tables(tmp_path):
    """A copy of the captured machine, its block-device table, and that table without the last disk."""
    directory = tmp_path / "machine"
    shutil.copytree(find_host("real-kernel"), directory, symlinks=True)
    full = (directory / BLOCK_TABLE).read_text()
    reduced = LAST_DISK.sub("", full)
    assert full.count("\n") == reduced.count("\n") + 3
    return directory, full, reduced


ANY_BANNER = re.compile(r"^\*{60} (.*)$", re.MULTILINE)


def test_disk_that_goes_away(cli, tables):
    """Its records stay linked behind the count, are not shown, and go with the final release."""
    directory, _, reduced = tables
    shown = two_rounds(cli, directory, reduced)
    assert shown.endswith(OK)
    assert counters(shown) == [0, RECORDS, RECORDS, 0]
    assert ANY_BANNER.findall(shown) == banners(ALL, ALL) + banners(FEWER, ALL)


def test_disk_that_comes(cli, tables):
    """The counter grows by its records; those of the first round are used again."""
    directory, full, reduced = tables
    (directory / BLOCK_TABLE).write_text(reduced)
    shown = two_rounds(cli, directory, full)
    assert shown.endswith(OK)
    fewer = sum(FEWER.values())
    assert counters(shown) == [0, fewer, RECORDS, 0]
    assert ANY_BANNER.findall(shown) == banners(FEWER, FEWER) + banners(ALL, ALL)
    addresses = ADDRESS.findall(shown)
    first, second = addresses[:fewer], addresses[fewer:]
    # Behind the fourth disk and behind the tenth partition stand the new ones.
    assert first == second[:4] + second[5:16]
