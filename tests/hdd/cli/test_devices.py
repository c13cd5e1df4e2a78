# SPDX-License-Identifier: Apache-2.0
"""What is no device, descriptors that are closed, and what a command really writes."""

import os
import threading
import time

import pytest

from conftest import FAILED, HELLO, OK

NO_GEOMETRY = "CHS(0, 0, 0, 0)\n"
NO_SIZE = "0\n0  \n0 MB\n0 GB\n"
EMPTY_DUMP = "*" * 58 + "\nnum=0, num_real=0, lmt=32, parent=00000000, this=<list>\n"

# The words around the device's path, and what is printed when it is none.
ASKING = (
    ("hdgeo {}", NO_GEOMETRY),
    ("hdsize {}", NO_SIZE),
    ("idlun {}", ""),
    ("part {}", EMPTY_DUMP),
    ("mdsb {}", ""),
    ("mdsb clear {}", ""),
    ("exe_part {}", EMPTY_DUMP),
)
# To a file the number of the serial-number request means something else.
READING = (("mbr {}", ""), ("parttab {} 0", ""), ("sector {} 0", ""), ("scsisn {}", ""))
CONTENT = bytes(range(256)) * 4


@pytest.fixture
def odd(tmp_path):
    """A path of each kind that is no device."""
    directory = tmp_path / "odd"
    directory.mkdir()
    (directory / "directory").mkdir()
    (directory / "short").write_bytes(CONTENT[:511])
    (directory / "file").write_bytes(CONTENT)
    (directory / "link-to-nowhere").symlink_to("nowhere")
    (directory / "link-to-itself").symlink_to("link-to-itself")
    os.mkfifo(directory / "pipe")
    return directory


def check_none(cli, path, words, printed):
    # A pipe that nobody writes to would keep the caller waiting.
    # A path of a test's own is the running machine's on any host; a captured one has a mount table.
    done = cli.run(*[word.format(path) for word in words.split()], host="real-kernel", timeout=10)
    assert (done.status, done.body(FAILED)) == (1, printed)
    assert done.log == []


@pytest.mark.parametrize("name", ("directory", "pipe", "missing", "link-to-nowhere", "link-to-itself", "file/x"))
@pytest.mark.parametrize("words, printed", ASKING + READING)
def test_no_device(cli, odd, name, words, printed):
    check_none(cli, odd / name, words, printed)


@pytest.mark.parametrize("words", ("mbr {}", "parttab {} 0", "sector {} 0"))
def test_file_without_a_whole_sector(cli, odd, words):
    check_none(cli, odd / "short", words, "")


@pytest.mark.parametrize("words, printed", ASKING)
def test_file_has_no_requests(cli, odd, words, printed):
    check_none(cli, odd / "file", words, printed)
    assert (odd / "file").read_bytes() == CONTENT


@pytest.mark.parametrize("words, printed", ASKING + READING)
def test_empty_path(cli, words, printed):
    done = cli.run(*[word.format("") for word in words.split()])
    assert (done.status, done.body(FAILED)) == (1, printed)


RAIDTAB = (b"raiddev /dev/md0\n", b"raid-level 1\nnr-raid-disks 2\n", b"device /dev/sda1\nraid-disk 0\n")
RAIDTAB_DUMP = (
    "*" * 58 + "\nnum=1, num_real=1, lmt=16, parent=00000000, this=<list>\n"
    "[*0 1  <list>*] (md0) level=1 original=0 (F without)\n"
    "    member(num=2,num_real=1): /dev/sda1[0]\n    spare (num=0,num_real=0):\n"
)


def test_description_through_a_slow_pipe(cli):
    """As a shell hands over the output of another command, which may take its time."""
    reader, writer = os.pipe()

    def write():
        for piece in RAIDTAB:
            time.sleep(0.1)
            os.write(writer, piece)
        os.close(writer)

    writing = threading.Thread(target=write)
    writing.start()
    done = cli.run("raidtab", f"/dev/fd/{reader}", pass_fds=(reader,), timeout=20)
    writing.join()
    os.close(reader)
    assert (done.status, done.body(OK)) == (0, RAIDTAB_DUMP)


def test_description_in_a_pipe_without_a_writer(cli, odd):
    done = cli.run("raidtab", str(odd / "pipe"), timeout=10)
    assert (done.status, done.body(OK)) == (0, EMPTY_DUMP.replace("lmt=32", "lmt=16"))


def test_sectors_of_a_file(cli, odd):
    """A copy of a disk in a file is read like the disk."""
    done = cli.run("sector", str(odd / "file"), "1")
    assert done.status == 0
    rows = done.body(OK).splitlines()
    assert len(rows) == 32
    assert rows[0] == "0x0000    00 01 02 03   04 05 06 07   08 09 0A 0B   0C 0D 0E 0F"
    assert rows[31] == "0x01f0    F0 F1 F2 F3   F4 F5 F6 F7   F8 F9 FA FB   FC FD FE FF"
    assert cli.run("sector", str(odd / "file"), "2").status == 1


def test_device_behind_a_closed_input(cli):
    """The first descriptor that is opened is then number 0, which is as good as any."""
    for words, body in (
        ("hdsize /dev/sda", "131072\n65536  \n64 MB\n0 GB\n"),
        ("hdgeo /dev/sda", "CHS(1016, 3, 43, 512)\n"),
        ("idlun /dev/sdc", "IDLUN(0, 0, 2, 0)\n"),
        ("scsisn /dev/sda", "sn = VMSCSI-000010\n"),
        ("uptime", "uptime 3\n"),
    ):
        done = cli.run(*words.split(), host="real-kernel", stdin=None, preexec_fn=lambda: os.close(0))
        assert (done.status, done.body(OK)) == (0, body)


# 200 sectors: the superblock would begin at sector (200 & ~127) - 128 = 0; 1000 sectors: (1000 & ~127) - 128 = 768.
@pytest.mark.parametrize("sectors, first", ((128, 0), (200, 0), (1000, 768), (1024, 896)))
def test_what_clear_writes(cli, tmp_path, sectors, first):
    disk = tmp_path / "disk"
    content = bytes(1 + place % 255 for place in range(sectors * 512))
    disk.write_bytes(content)
    done = cli.run("mdsb", "clear", str(disk), env=preloaded(cli))
    assert (done.status, done.stderr) == (0, HELLO + OK)
    start = first * 512
    assert disk.read_bytes() == content[:start] + bytes(4096) + content[start + 4096 :]


@pytest.mark.parametrize("sectors", (0, 1, 7, 8, 127))
def test_clear_finds_no_room(cli, tmp_path, sectors):
    disk = tmp_path / "disk"
    content = bytes(1 + place % 255 for place in range(sectors * 512))
    disk.write_bytes(content)
    done = cli.run("mdsb", "clear", str(disk), env=preloaded(cli))
    assert (done.status, done.stderr) == (1, HELLO + FAILED)
    assert disk.read_bytes() == content


@pytest.mark.parametrize(
    "words", ("mdsb {}", "mdsb {} clear", "mdsb clear {} x", "hdsize {}", "mbr {}", "sector {} 0", "part {}")
)
def test_nothing_else_writes(cli, tmp_path, words):
    disk = tmp_path / "disk"
    content = bytes(1 + place % 255 for place in range(1000 * 512))
    disk.write_bytes(content)
    cli.run(*[word.format(disk) for word in words.split()], env=preloaded(cli))
    assert disk.read_bytes() == content


def test_clear_with_all_streams_closed(cli, tmp_path):
    """A device that is opened as descriptor 2 must not be written to by a message."""

    def close_streams():
        for descriptor in (0, 1, 2):
            os.close(descriptor)

    disk = tmp_path / "disk"
    content = bytes(1 + place % 255 for place in range(1000 * 512))
    disk.write_bytes(content)
    done = cli.run(
        "mdsb", "clear", str(disk), env=preloaded(cli), stdin=None, stdout=None, stderr=None, preexec_fn=close_streams
    )
    after = disk.read_bytes()
    start = 768 * 512
    assert after[:start] == content[:start]
    assert after[start + 4096 :] == content[start + 4096 :]
    assert done.status in (0, 1)


def preloaded(cli):
    return {"LD_PRELOAD": str(cli.file_disk), "ASAN_OPTIONS": "verify_asan_link_order=0"}


def test_clear_that_does_not_reach_the_disk(cli, tmp_path):
    """What the kernel has taken and not written yet is not erased."""
    disk = tmp_path / "disk"
    disk.write_bytes(bytes(1000 * 512))
    done = cli.run("mdsb", "clear", str(disk), env={**preloaded(cli), "LOSES_WRITES": "1"})
    assert (done.status, done.stderr) == (1, HELLO + FAILED)


def test_mkdev_leaves_what_is_there(cli, tmp_path):
    """A number that is none: the path is not touched, not even removed."""
    kept = tmp_path / "kept"
    kept.write_text("kept")
    for number in (("8:11",), ("", "1"), ("x", "1"), ("1", "x")):
        done = cli.run("mkdev", str(kept), *number)
        assert (done.status, done.stderr) == (1, HELLO + FAILED)
        assert kept.read_text() == "kept"


def test_mkdev_over_a_directory(cli, tmp_path):
    (tmp_path / "kept").mkdir()
    done = cli.run("mkdev", str(tmp_path / "kept"), "08:11")
    assert (done.status, done.stderr) == (1, HELLO + FAILED)
    assert (tmp_path / "kept").is_dir()


def test_mtab_costs_one_shell(cli):
    for words in ("mtab", "mtab dev x", "mtab mnt x"):
        assert cli.run(*words.split(), host="real-kernel").whole_log == ["shell cat /etc/mtab"]


@pytest.mark.parametrize("piece", ("1", "100", "511"))
def test_disk_that_moves_pieces(cli, tmp_path, piece):
    """Interrupted transfers are begun again, and short ones go on where they ended."""
    disk = tmp_path / "disk"
    content = bytes(1 + place % 255 for place in range(1000 * 512))
    disk.write_bytes(content)
    slow = {**preloaded(cli), "PIECE": piece}
    done = cli.run("sector", str(disk), "999", env=slow)
    assert (done.status, done.body(OK)) == (0, hex_dump(content[999 * 512 :]))
    done = cli.run("mdsb", "clear", str(disk), env=slow)
    assert (done.status, done.stderr) == (0, HELLO + OK)
    start = 768 * 512
    assert disk.read_bytes() == content[:start] + bytes(4096) + content[start + 4096 :]


def hex_dump(sector):
    rows = ""
    for position in range(0, 512, 16):
        groups = (sector[start : start + 4].hex(" ").upper() for start in range(position, position + 16, 4))
        rows += f"0x{position:04x} " + "".join(f"   {group}" for group in groups) + "\n"
    return rows
