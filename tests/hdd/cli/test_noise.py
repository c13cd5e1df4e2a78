# SPDX-License-Identifier: Apache-2.0
"""Tables that no kernel writes: nothing crashes, nothing waits, nothing is changed.

What exactly is left out of each table is told by the cases; here it is the
ending alone that counts.
"""

import random
import re
import time

import pytest

from conftest import FAILED, HELLO, OK


# The command and the table it reads.
TABLES = {
    "mdstat": "proc/mdstat",
    "mdspeed": "proc/sys/dev/raid/speed_limit_min",
    "mtab": "etc/mtab",
    "mtab dev x": "etc/mtab",
    "procblk": "proc/partitions",
    "procblk sda": "proc/partitions",
    "procscsi": "proc/scsi/scsi",
    "scsishuffle": "proc/scsi/scsi",
    "raidtab /root/raidtab": "root/raidtab",
    "uptime": "proc/uptime",
    "exe_disk": "proc/partitions",
    "exe_vol": "etc/mtab",
    "exe_cdrom": "etc/mtab",
    "stpart": "proc/partitions",
}

BEGINNINGS = {
    "mdstat": b"md1 : active raid1 sda1[0]\n      1024 blocks [1/1] [U]\n\n",
    "procscsi": b"Host: scsi0 Channel: 00 Id: 00 Lun: 00\n",
    "scsishuffle": b"Host: scsi0 Channel: 00 Id: 00 Lun: 00\n",
    "raidtab /root/raidtab": b"raiddev /dev/md0\ndevice /dev/sda1\nraid-disk 0\n",
}


def bytes_of(seed, count):
    return random.Random(seed).randbytes(count)


def words_of(seed, words, count):
    """Lines of words that the tables know, in no order."""
    source = random.Random(seed)
    return b"".join(source.choice(words) + source.choice((b" ", b" ", b"\n")) for _ in range(count))


KNOWN = tuple(
    (
        b"md0 md1 md99999999999999999999 md : active inactive raid1 raid5 linear sda1[0] sdb1[1](F) sdc1[9] "
        b"sdd1[-1] sde1[99999999999999999999] [dev 08:11][2] [dev [dev] ] [ 1024 blocks [2/1] [_U] [/] "
        b"[99999999999/1] "
        b"resync = 12.3% recovery = 101% resync=DELAYED recovery =  = % # Host: scsi0 Channel: 00 Id: 01 Lun: "
        b"scsi99999999999 Vendor: Model: Rev: Type: Direct-Access raiddev /dev/md0 raid-disk 0 1 2 failed-disk "
        b"spare-disk device nr-raid-disks 99999999999 raid-level linear 8 17 1024 sda1 -1 99999999999999999999"
    ).split()
)
NOISE = {
    "nothing": b"",
    "one NUL": b"\0",
    "no newline": b"x",
    "newlines": b"\n" * 100000,
    "NULs": b"\0" * 100000,
    "bytes": bytes_of(1, 100000),
    "lines of bytes": b"\n".join(bytes_of(number, number) for number in range(500)),
    "one long line": b"m" * 2_000_000,
    "a long line of a table": b"md0 : active raid1" + b" sda1[0]" * 100000,
    "a long number": b"9" * 100000,
    "known words": words_of(2, KNOWN, 20000),
    "other known words": words_of(3, KNOWN, 20000),
}


BAD_SLOT = re.compile(re.escape(HELLO) + r"error: \|hdd/exe/\.\./sal/src/1/\.\./linux/raidtab \d{3}\|\n")


@pytest.fixture
def make_host(tmp_path):
    directory = tmp_path / "host"

    def make(table, content):
        for other in ("proc/sys/dev/raid/speed_limit_max", table):
            (directory / other).parent.mkdir(parents=True, exist_ok=True)
            (directory / other).write_bytes(b"1\n")
        covered = ("/proc", "/dev", "/etc/mtab", "/root/raidtab")
        (directory / "host.txt").write_text("".join(f"covers {path}\n" for path in covered))
        (directory / table).write_bytes(content)
        return directory

    return make


def run_on(cli, directory, words):
    start = time.monotonic()
    done = cli.start([str(cli.launcher), "--sysroot", str(directory), "--", *words.split()])
    assert time.monotonic() - start < 20
    return done


@pytest.mark.parametrize("noise", NOISE)
@pytest.mark.parametrize("words", TABLES)
def test_noise(cli, make_host, words, noise):
    for beginning in (b"", BEGINNINGS.get(words, b"")):
        done = run_on(cli, make_host(TABLES[words], beginning + NOISE[noise]), words)
        assert done.stderr.startswith(HELLO)
        if words.startswith("raidtab") and done.status == 255:
            assert BAD_SLOT.fullmatch(done.stderr)
            continue
        assert done.stderr.endswith({0: OK, 1: FAILED}[done.status])
        assert words == "scsishuffle" or done.log == []


# Lines of arrays of which some bracket is missing.  What is kept is what was read up to there.
@pytest.mark.parametrize(
    "line",
    (
        "md1 : active raid1 sda1",
        "md1 : active raid1 sda1 sdb1",
        "md1 : active raid1 sda1[",
        "md1 : active raid1 sda1[0",
        "md1 : active raid1 [",
        "md1 : active raid1 [dev",
        "md1 : active raid1 [dev 08:11",
        "md1 : active raid1 [dev 08:11]",
        "md1 : active raid1 [dev 08:11][",
        "md1 : active raid1 sda1]0[",
        "md1 : active raid1 sda1(F)",
        "md1 : active",
        "md1 :",
        "md",
    ),
)
@pytest.mark.parametrize(
    "size", ("1024 blocks [1/1] [U]", "  1024 blocks [1/1", "  1024 blocks [", "  1024 blocks [1] [", "1024", "")
)
def test_missing_brackets(cli, make_host, line, size):
    good = "md2 : active raid1 sdb1[0]\n      8 blocks [1/1] [U]\n\n"
    done = run_on(cli, make_host("proc/mdstat", f"{line}\n{size}\n\n{good}".encode()), "mdstat")
    assert done.status in (0, 1)
    # The array behind it is read in any case.
    assert "] md2: active   1         16 [1/1](F0) U 0.0%0\n    subdev(num=1,num_real=1): sdb1[0]\n" in done.stderr


def test_a_device_of_noise(cli, make_host):
    """Every sector of a disk is noise, and the disk is asked for everything."""
    directory = make_host("proc/uptime", b"1\n")
    (directory / "noise").write_bytes(bytes_of(4, 1024 * 1024))
    (directory / "host.txt").write_text("device /dev/sda\n\tBLKGETSIZE 2048\n\timage noise\n")
    for words in ("mbr /dev/sda", "sector /dev/sda 2047", "parttab /dev/sda 1024", "part /dev/sda", "mdsb /dev/sda"):
        done = run_on(cli, directory, words)
        assert (done.status, done.log) == (0, [])
        assert done.stderr.endswith(OK)
