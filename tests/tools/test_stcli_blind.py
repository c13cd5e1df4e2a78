# SPDX-License-Identifier: Apache-2.0
"""What each reader of stcli does not see is told on its page, and is so."""

import re
import shutil

import pytest
from raid_site import SOURCES

PAGE = (SOURCES / "docs" / "stcli.md").read_text(encoding="utf-8")
MACHINE = SOURCES / "tests" / "hosts" / "real-kernel"


def section(word):
    """The text about a command, each run of blanks and line ends as one blank."""
    text = re.search(rf"^### {word}\b.*?(?=^##)", PAGE, re.MULTILINE | re.DOTALL)[0]
    return " ".join(text.split())


class Host:
    """A made host, or the captured machine with changes."""

    def __init__(self, tool, directory):
        self.tool = tool
        self.directory = directory
        directory.mkdir()
        (directory / "host.txt").write_text("")

    def take_machine(self):
        shutil.copytree(MACHINE, self.directory, dirs_exist_ok=True, symlinks=True)

    def file(self, name):
        path = self.directory / name
        path.parent.mkdir(parents=True, exist_ok=True)
        return path

    def run(self, *words, fails=False):
        """The lines that a command prints, without those around them."""
        program = self.tool.program.parent / "stcli"
        result = self.tool.run("--sysroot", self.directory, *words, program=program)
        *lines, last = result.stderr.splitlines()[1:]
        assert (result.returncode, last.startswith("stcli error: ")) == (int(fails), fails)
        return lines


@pytest.fixture
def host(tool, tmp_path):
    return Host(tool, tmp_path / "host")


READERS = ["exe_disk", "exe_part", "exe_vol", "exe_cdrom", "stdisk", "stcdrom", "stpart", "mbr", "part", "procblk"]
READERS += ["procide", "procscsi", "mtab", "mdstat", "mdsb", "raidtab"]


@pytest.mark.parametrize("word", READERS)
def test_every_reader_tells_what_it_does_not_see(word):
    assert "Not seen:" in section(word)


# ---- arrays ----


def arrays(host, *paragraphs, fails=False):
    """For each array that is shown: its name, its level, and the two lines."""
    text = "".join(f"{paragraph}\n      \n" for paragraph in paragraphs)
    host.file("proc/mdstat").write_text(f"Personalities : [raid1]\n{text}unused devices: <none>\n")
    lines = host.run("mdstat", fails=fails)[2:]
    heads = [re.search(r"\] (md\d+): (active|inactive) +(\S+) (.*)", line) for line in lines[::2]]
    return [(*head.groups(), members.partition(": ")[2]) for head, members in zip(heads, lines[1::2])]


def array(name="md0", state="active raid1", members="sdb1[0] sdc1[1]", more=""):
    return f"{name} : {state} {members}\n      12224 blocks [2/2] [UU]{more}"


WHOLE = ("md0", "active", "1", "     24448 [2/2](F0) UU 0.0%0", "sdb1[0] sdc1[1]")


def test_an_array_that_is_seen(host):
    assert arrays(host, array()) == [WHOLE]


def test_level_10_is_told_as_1(host):
    assert arrays(host, array(state="active raid10")) == [WHOLE]
    assert "Level 10 is told as 1." in section("mdstat")


@pytest.mark.parametrize("level", ["raid4", "raid6", "multipath", "faulty"])
def test_levels_that_are_refused(host, level):
    assert arrays(host, array("md1", f"active {level}"), array(), fails=True) == [WHOLE]
    told = "Levels 4 and 6, and others, are refused: the array is left out, and the command fails."
    assert told in section("mdstat")


@pytest.mark.parametrize("mark", ["(read-only)", "(auto-read-only)"])
def test_arrays_that_are_read_only_are_refused(host, mark):
    assert arrays(host, array("md1", f"active {mark} raid1"), array(), fails=True) == [WHOLE]
    assert "An array that is read-only, by itself (`auto-read-only`)" in section("mdstat")


def test_an_array_that_is_not_running_has_no_level(host):
    (found,) = arrays(host, array(state="inactive", members="sdb1[0](S)"))
    assert found[:3] == ("md0", "inactive", "\0")
    assert "One that is not running has no level." in section("mdstat")


@pytest.mark.parametrize("members", ["nvme0n1p1[0] sdc1[1]", "vda1[0] sdc1[1]", "sdb1[0] sdc1[8]"])
def test_members_that_cannot_be_named(host, members):
    assert arrays(host, array("md1", members=members), array(), fails=True) == [WHOLE]
    assert "a member that has no name here, such as `nvme0n1p1`, or a place beyond 7" in section("mdstat")


def test_spares_look_like_members(host):
    marked = "sdb1[0] sdc1[1] sdd1[2](S) sde1[3](W) sdf1[4](R) sdg1[5](F)"
    (found,) = arrays(host, array(members=marked))
    assert found[-1] == "sdb1[0] sdc1[1] sdd1[2] sde1[3] sdf1[4] sdg1[5](F)"
    assert "Spares look like members" in section("mdstat")
    assert "only `(F)` is shown, neither `(S)`, nor `(W)`, nor `(R)`." in section("mdstat")


@pytest.mark.parametrize(
    ("line", "shown"),
    [
        ("[=>......]  check =  5.0% (611/12224) finish=0.1min speed=1056K/sec", "0.0%0"),
        ("[=>......]  reshape =  5.0% (611/12224) finish=0.1min speed=1056K/sec", "0.0%0"),
        ("resync=DELAYED", "0.0%1"),
        ("resync=PENDING", "0.0%1"),
        ("[=>......]  resync =  5.0% (611/12224) finish=0.1min speed=1056K/sec", "5.0%1"),
    ],
)
def test_what_is_in_progress(host, line, shown):
    (found,) = arrays(host, array(more=f"\n      {line}"))
    assert found[3].endswith(f" UU {shown}")
    assert "A check or a reshape in progress shows as nothing" in section("mdstat")
    assert "a resync that waits (`DELAYED`, `PENDING`) as one of 0.0 %." in section("mdstat")


def test_an_array_with_a_name_is_told_as_md0(host):
    assert arrays(host, array("md_home")) == [WHOLE]
    assert "such as `md_home`, is told as md0." in section("mdstat")


SIZE = 24576
MAGIC = "fc4e2ba9"
# Where each version keeps its superblock.
PLACES = {"0.90": SIZE - 128, "1.0": SIZE - 16, "1.1": 0, "1.2": 8}


@pytest.mark.parametrize("version", PLACES)
def test_superblocks_of_version_0_90_only(host, version):
    major = "00000000" if version == "0.90" else "01000000"
    host.file("host.txt").write_text(
        f"device /dev/sdb1\n\tBLKGETSIZE {SIZE}\n\tsector {PLACES[version]} {MAGIC} {major}\n"
    )
    first, *rest = host.run("mdsb", "/dev/sdb1")
    if version == "0.90":
        assert first == "md0: md_magic=A92B4EFC csum=00000000 version=0.0.0 valid=1"
    else:
        assert first == "md0: md_magic=00000000 csum=00000000 version=0.0.0 valid=0"
    told = "superblocks of version 1.0, 1.1 and 1.2, which lie elsewhere: `mdsb` knows version 0.90 only"
    assert told in section("mdsb")


@pytest.mark.parametrize(
    ("level", "shown"), [("1", "1"), ("5", "5"), ("linear", "l"), ("10", "1"), ("4", "\0"), ("6", "\0")]
)
def test_levels_of_a_raidtab(host, tmp_path, level, shown):
    (tmp_path / "raidtab").write_text(f"raiddev /dev/md0\n\traid-level {level}\n\tchunk-size 64\n")
    head = host.run("raidtab", tmp_path / "raidtab")[2]
    assert head.partition(" (md0) ")[2] == f"level={shown} original=0 (F without)"
    assert "level 10, which is told as 1; levels 4 and 6, for which no level is shown; chunk sizes" in section(
        "raidtab"
    )


# ---- disks, drives, partitions ----


def names(lines):
    """The words behind the bookkeeping of each item."""
    return [line.split("*] ")[1].split()[0] for line in lines if line.startswith("[*")]


DISKS = ["/dev/hda", "/dev/hdb", "/dev/sda", "/dev/sdb", "/dev/sdc"]
OTHERS = "".join(
    f" {major:7} {minor:10} {131072:10} {name}\n"
    for major, minor, name in [(259, 0, "nvme0n1"), (253, 0, "vda"), (9, 0, "md0"), (254, 0, "dm-0"), (11, 0, "sr0")]
)


def test_disks_with_other_names(host):
    host.take_machine()
    with host.file("proc/partitions").open("a") as table:
        table.write(OTHERS)
    with host.file("host.txt").open("a") as devices:
        for name in ("nvme0n1", "vda", "dm-0", "sr0"):
            devices.write(f"device /dev/{name}\n\tBLKGETSIZE 262144\n\tHDIO_GETGEO 255 63 16\n")
    assert names(host.run("exe_disk")) == DISKS
    shown = [line.split(" = ")[1] for line in host.run("stdisk") if line.startswith("szDeviceName ")]
    assert shown == DISKS
    assert names(host.run("procblk")) == ["hda", "hdb", "hdc", "sda", "sdb", "sdc"]
    assert "such as `nvme0n1`, `vda`, `md0` and `dm-0`" in section("exe_disk")
    assert "devices whose names are none of those of `exe_disk`" in section("procblk")
    assert "what `exe_disk` does not see." in section("stdisk")


def test_disks_without_a_row_of_their_own(host):
    host.take_machine()
    host.file("proc/ide/hdb").unlink()
    lines = host.file("proc/scsi/scsi").read_text().splitlines(keepends=True)
    host.file("proc/scsi/scsi").write_text("".join(lines[:-3]))
    result = host.tool.run("--sysroot", host.directory, "exe_disk", program=host.tool.program.parent / "stcli")
    assert names(result.stderr.splitlines()) == ["/dev/hda", "/dev/sda", "/dev/sdb"]
    assert "disks that have no row in `/proc/scsi/scsi` or no folder in `/proc/ide`." in section("exe_disk")


SCSI_DRIVE = (
    "Host: scsi0 Channel: 00 Id: 05 Lun: 00\n"
    "  Vendor: ACME     Model: DVD-ROM          Rev: 1.0 \n"
    "  Type:   CD-ROM                           ANSI  SCSI revision: 05\n"
)


def test_drives_that_are_not_ide(host):
    host.take_machine()
    with host.file("proc/scsi/scsi").open("a") as table:
        table.write(SCSI_DRIVE)
    assert "CD-ROM" in host.run("procscsi")[-1]
    assert names(host.run("exe_cdrom")) == ["/dev/hdc"]
    assert "szDeviceName       = /dev/hdc" in host.run("stcdrom")
    assert not any("sr0" in line or "scd0" in line for line in host.run("stcdrom"))
    assert "drives that are not IDE, such as `sr0`." in section("exe_cdrom")
    assert "what `exe_cdrom` does not see." in section("stcdrom")


def test_guid_tables_show_their_protective_entry(host):
    host.take_machine()
    text = host.file("host.txt").read_text()
    start = text.index("device /dev/sda\n")
    end = text.index("device ", start + 1)
    devices = (
        "device /dev/sda\n\tBLKGETSIZE 131072\n\tHDIO_GETGEO 3 43 1016\n\tSCSI_IOCTL_GET_IDLUN 0x00000000\n"
        "\ttable 0\n\t\tentry 00 ee 1 131071\n"
        "\tsector 1 45464920 50415254 00000100 5c000000\n"
    )
    host.file("host.txt").write_text(text[:start] + devices + text[end:])
    (found,) = host.run("part", "/dev/sda")[2:]
    assert found.endswith("] index=0 type=ee active=0 (start,size)=(1,131071)")
    (found,) = host.run("exe_part", "/dev/sda")[2:]
    assert "part0 type=ee" in found
    table = host.run("mbr", "/dev/sda")[2:]
    assert [re.search("type=(0x..)", line)[1] for line in table] == ["0xEE", "0x00", "0x00", "0x00"]
    told = "a GUID partition table, of which the protective entry is shown"
    assert [word for word in ("exe_part", "mbr", "part") if told not in section(word)] == []
    assert "what `exe_disk` and `exe_part` do not see." in section("stpart")


# ---- tables that are longer than a list ----


def test_mounts_behind_the_first_32(host):
    mounts = [f"/dev/sda{number} /m{number} ext3 rw 0 0\n" for number in range(1, 34)]
    host.file("etc/mtab").write_text("".join(mounts))
    for word in ("mtab", "exe_vol"):
        lines = host.tool.run(
            "--sysroot", host.directory, word, program=host.tool.program.parent / "stcli"
        ).stderr.splitlines()
        found = [re.search(r"(/m\d+)", line)[1] for line in lines if line.startswith("[*")]
        assert found == [f"/m{number}" for number in range(1, 33)]
    assert host.run("mtab", fails=True)
    assert "of more than 32 lines those behind the first 32, where the command fails." in section("mtab")
    assert "of more than 32 mounts those behind the first 32" in section("exe_vol")


def test_numbers_of_more_than_8_bits(host):
    host.file("proc/partitions").write_text(
        "major minor  #blocks  name\n\n   8      272     131072 sda\n 264        0     131072 sdb\n"
    )
    found = [line.split("*] ")[1].split("\t")[0] for line in host.run("procblk")[2:]]
    assert found == ["sda 0 (8:16)", "sdb 0 (8:0)"]
    assert "so that the minor number 272 shows as 16." in section("procblk")
    table = SCSI_DRIVE.replace("scsi0", "scsi256")
    host.file("proc/scsi/scsi").write_text(f"Attached devices:\n{table}")
    assert "] (0, 0, 5, 0) ACME DVD-ROM 1.0 CD-ROM" in host.run("procscsi")[-1]
    assert "so that host 256 shows as 0" in section("procscsi")


def test_more_devices_than_a_list_takes(host):
    rows = [SCSI_DRIVE.replace("Id: 05", f"Id: {number:02}") for number in range(33)]
    host.file("proc/scsi/scsi").write_text("Attached devices:\n" + "".join(rows))
    assert len(host.run("procscsi", fails=True)) == 2 + 32
    assert "more than 32 devices, where the command fails." in section("procscsi")


def test_more_drives_than_a_list_takes(host):
    host.take_machine()
    for letter in "defghi":
        shutil.copytree(MACHINE / "proc" / "ide" / "hda", host.file(f"proc/ide/hd{letter}"))
    lines = host.run("procide", fails=True)
    assert len([line for line in lines if line.startswith("[*")]) == 8
    assert "more than 8 drives, where the command fails" in section("procide")
