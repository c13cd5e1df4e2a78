"""The repeated queries: pauses, counters, and the same records round after round."""

import re
import time

import pytest

from conftest import FAILED, HELLO, OK

COUNTER = re.compile(r"^MEMORY_COUNTER    (hdd   |hwraid) : (-?\d+)$", re.MULTILINE)
BANNER = re.compile(r"^\*{60} ([A-Z]+) \(", re.MULTILINE)
ADDRESS = re.compile(r"^this               = (0x[0-9a-f]{8})$", re.MULTILINE)

# The captured machine has 5 disks, a CD-ROM drive and 12 partitions.
RECORDS = 18
PAUSE = 2.0


def counters(text):
    found = COUNTER.findall(text)
    assert [name.strip() for name, _ in found] == ["hdd", "hwraid"] * (len(found) // 2)
    assert {value for name, value in found if name == "hwraid"} == {"0"}
    return [int(value) for name, value in found if name != "hwraid"]


def timed(cli, *words, **settings):
    start = time.monotonic()
    done = cli.run(*words, **settings)
    return done, time.monotonic() - start


def test_one_round_has_no_pause(cli):
    done, seconds = timed(cli, "sttest", "1", host="real-kernel")
    assert done.status == 0
    assert seconds < PAUSE
    assert counters(done.body(OK)) == [0, RECORDS, 0]


def test_two_rounds(cli):
    done, seconds = timed(cli, "sttest", "2", host="real-kernel")
    assert done.status == 0
    assert PAUSE <= seconds < 2 * PAUSE
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


# A disk that cannot be read fails the partition query, a disk list that overflows as well.
@pytest.mark.parametrize("host", ("short-disk", "scsi-seventeen"))
@pytest.mark.parametrize("rounds", ("1", "2", "1000000"))
def test_failing_query_ends_it_at_once(cli, host, rounds):
    # The lists of that round stay with the process that ends.
    done, seconds = timed(cli, "sttest", rounds, host=host, env={"ASAN_OPTIONS": "detect_leaks=0"})
    assert seconds < PAUSE
    assert done.status == 1
    assert done.stderr == (
        HELLO + "MEMORY_COUNTER    hdd    : 0\nMEMORY_COUNTER    hwraid : 0\n" + FAILED
    )
