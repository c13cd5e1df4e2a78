# SPDX-License-Identifier: Apache-2.0
"""A wrong number of words: the command is known, nothing is done, and that is all that is said.

The words would do something if their number were right.
"""

import pytest

from conftest import FAILED, HELLO, INVALID

# Each row: too many words or too few, whatever the missing and the additional ones are.
WRONG = (
    "fnode",
    "fnode /dev/sda1 /dev/sda2",
    "froot",
    "froot /dev/sda1 x",
    "ftail",
    "ftail /dev/sda1 x",
    "input x",
    "rand",
    "rand 1",
    "rand 1 5",
    "rand 1 5 3 3",
    "hdgeo",
    "hdgeo /dev/hda /dev/hda",
    "hdsize",
    "hdsize /dev/hda /dev/hda",
    "idlun",
    "idlun /dev/sda /dev/sda",
    "mbr",
    "mbr /dev/hda 0",
    "parttab",
    "parttab /dev/hda",
    "parttab /dev/hda 0 0",
    "sector",
    "sector /dev/hda",
    "sector /dev/hda 0 0",
    "part",
    "part /dev/hda /dev/hda",
    "volspace",
    "volspace / /",
    "xxid 1",
    "exec",
    "exec true true",
    "mdsb",
    "mdsb clear /dev/sdb1 /dev/sdb1",
    "mdsb clear clear /dev/sdb1",
    "mdspeed 100 200 300",
    "mdspeed default default default",
    "mdstat x",
    "mkdev",
    "mkdev /dev/x",
    "mkdev /dev/x 8 17 0",
    "mtab dev",
    "mtab mnt",
    "mtab dev x x",
    "mtab x",
    "procblk hda hda",
    "procide x",
    "procscsi x",
    "procscsihost x",
    "raidtab",
    "raidtab /root/raidtab /root/raidtab",
    "scsiadd",
    "scsiadd 0 0 9",
    "scsiadd 0 0 9 0 0",
    "scsiremove",
    "scsiremove 0 0 1",
    "scsiremove 0 0 1 0 0",
    "scsishuffle x",
    "scsisn",
    "scsisn /dev/sda /dev/sda",
    "uptime x",
    "exe_cdrom x",
    "exe_disk x",
    "exe_part",
    "exe_part /dev/hda /dev/hda",
    "exe_vol x",
    "stdisk x",
    "stcdrom x",
    "stpart x",
    "sttest",
    "sttest 0 0",
)

# Every command there is, each named by a help line; "xml" and "xmlnew" are named there only.
COMMANDS = {row.split()[0] for row in WRONG} | {"mkdir"}


@pytest.mark.parametrize("row", WRONG)
def test_wrong_count(cli, row):
    done = cli.run(*row.split(), host="real-kernel", input=b"a line\n")
    assert (done.status, done.stderr) == (1, HELLO + FAILED)
    assert done.whole_log == []


def test_no_command_is_forgotten(cli):
    lines = cli.run("help", host="real-kernel").stderr.splitlines()[1:-1]
    named = {word.split("(")[0] for line in lines for word in line.split(": ")[1].split()}
    assert named - {"xml", "xmlnew"} == COMMANDS


@pytest.mark.parametrize("count", (0, 2))
def test_mkdir_makes_nothing(cli, tmp_path, count):
    done = cli.run("mkdir", *[str(tmp_path / f"made{number}") for number in range(count)])
    assert (done.status, done.stderr) == (1, HELLO + FAILED)
    assert list(tmp_path.glob("made*")) == []


@pytest.mark.parametrize("command", sorted(COMMANDS | {"help", "cliid"}))
@pytest.mark.parametrize("change", (str.upper, str.capitalize, "{}x".format, "x{}".format, "{} ".format))
def test_nearly_a_command(cli, command, change):
    done = cli.run(change(command), host="real-kernel")
    assert (done.status, done.stderr) == (1, HELLO + INVALID)
    assert done.whole_log == []


# What each command makes of a path beyond every limit: it prints that much and fails.
EMPTY_DUMP = "*" * 58 + "\nnum=0, num_real=0, lmt=%d, parent=00000000, this=<list>\n"
LONG = {
    "hdgeo": "CHS(0, 0, 0, 0)\n",
    "hdsize": "0\n0  \n0 MB\n0 GB\n",
    "idlun": "",
    "mbr": "",
    "part": EMPTY_DUMP % 32,
    "volspace": "",
    "mdsb": "",
    "raidtab": EMPTY_DUMP % 16,
    "scsisn": "",
}


@pytest.mark.parametrize("command", LONG)
def test_path_of_5000_characters(cli, command):
    for path in ("/" + "d" * 4999, "/dev/" * 1000, "/dev/hda/" + "." * 4991):
        done = cli.run(command, path, host="real-kernel")
        assert (done.status, done.body(FAILED)) == (1, LONG[command])


@pytest.mark.parametrize(
    "row",
    (
        ("parttab", "{}", "0"),
        ("sector", "{}", "0"),
        ("mdsb", "clear", "{}"),
        ("mkdir", "{}"),
    ),
    ids=lambda row: " ".join(row[:2]),
)
def test_long_path_among_words(cli, tmp_path, row):
    path = str(tmp_path) + "/d" * 2500
    done = cli.run(*[word.format(path) for word in row], host="real-kernel")
    assert (done.status, done.body(FAILED)) == (1, "")
    assert done.log == []


def test_exe_part_of_a_long_path(cli):
    done = cli.run("exe_part", "/" + "d" * 4999, host="real-kernel")
    assert done.status == 1
    assert done.body(FAILED) == "*" * 58 + "\nnum=0, num_real=0, lmt=32, parent=00000000, this=<list>\n"


def test_procblk_of_a_long_path(cli):
    done = cli.run("procblk", "/" * 5000 + "hda", host="real-kernel")
    assert done.status == 0
    assert done.stderr.count("] hda ") == 6


def test_names_of_long_paths(cli):
    path = "/" + "d" * 4990 + "/sda12"
    assert cli.run("fnode", path).stderr.splitlines()[1] == "sda12"
    assert cli.run("froot", path).stderr.splitlines()[1] == "sda"
    assert cli.run("ftail", path).stderr.splitlines()[1] == "12"


def test_long_name(cli):
    name = "n" * 5000 + "7"
    assert cli.run("ftail", name).stderr.splitlines()[1] == "7"
    assert cli.run("fnode", name).stderr.splitlines()[1] == name
    assert cli.run("froot", name).stderr.splitlines()[1] == name[:-1]


def test_long_unknown_word(cli):
    done = cli.run("x" * 100000)
    assert (done.status, done.stderr) == (1, HELLO + INVALID)


def test_thousands_of_words(cli):
    done = cli.run("fnode", *["x"] * 20000)
    assert (done.status, done.stderr) == (1, HELLO + FAILED)
