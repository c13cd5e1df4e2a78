# SPDX-License-Identifier: Apache-2.0
"""Captured hosts."""

import json
import os
import resource
import stat

import pytest
from conftest import CLASSIC, complaint

HOST = """\
device /dev/sda
	BLKGETSIZE 65536
	HDIO_GETGEO 2 32 1024
	SCSI_IOCTL_GET_IDLUN 0x00000001
	SCSI_IOCTL_SEND_COMMAND fails EINVAL
	table 0
		entry 80 83 64 1024
device /dev/sda1
	BLKGETSIZE 1024
	HDIO_GETGEO 2 32 1024 64
	SCSI_IOCTL_GET_IDLUN 0x00000001
	SCSI_IOCTL_SEND_COMMAND fails EINVAL
mount /data 1024 500 400
"""
SCSI = """\
Attached devices:
Host: scsi0 Channel: 00 Id: 01 Lun: 00
  Vendor: ACME     Model: TINY DISK        Rev: 1.02
  Type:   Direct-Access                    ANSI  SCSI revision: 02
"""
PARTITIONS = """\
major minor  #blocks  name

   8        0      32768 sda
   8        1        512 sda1
"""


@pytest.fixture
def host(tmp_path):
    directory = tmp_path / "host"
    (directory / "proc" / "scsi").mkdir(parents=True)
    (directory / "etc").mkdir()
    (directory / "host.txt").write_text(HOST)
    (directory / "proc" / "scsi" / "scsi").write_text(SCSI)
    (directory / "proc" / "partitions").write_text(PARTITIONS)
    (directory / "etc" / "mtab").write_text("/dev/sda1 /data ext3 rw 0 0\n")
    return directory


def test_captured_host_as_tables(tool, host):
    result = tool.run("list", *CLASSIC, "--sysroot", host)
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout == (
        "DISKS\n"
        "DEVICE    BUS   ADDRESS      SIZE  VENDOR  MODEL      SERIAL  FIRMWARE  PARTITIONS  EXTENDED  SYSTEM\n"
        "/dev/sda  SCSI  0:0:1:0  32.0 MiB  ACME    TINY DISK  -       1.02               1         0\n"
        "\n"
        "PARTITIONS\n"
        "DEVICE     TYPE               BOOT  FIRST SECTOR       SIZE  FILE SYSTEM  MOUNT POINTS      TOTAL"
        "       USED  SYSTEM\n"
        "/dev/sda1  Primary Partition  yes             64  512.0 KiB  ext3         /data         500.0 KiB"
        "  100.0 KiB\n"
        "\n"
        "CD-ROMS\n"
        "No CD-ROM drive was found.\n"
    )


def test_options_reach_the_second_start(tool, host):
    result = tool.run("--sysroot", host, "list", *CLASSIC, "cdroms", "--json", "disks")
    assert (result.returncode, result.stderr) == (0, "")
    document = json.loads(result.stdout)
    assert list(document) == ["format", "disks", "cdroms", "failed"]
    assert [disk["model"] for disk in document["disks"]] == ["TINY DISK"]


def test_controller_and_configuration_reach_the_second_start(tool, host):
    arguments = ["containers", "--controller", "-aac 0", "--config", "-raid.cfg"]
    result = tool.fake("plain", "list", *CLASSIC, "--sysroot", host, *arguments)
    assert result.returncode == 1
    assert result.stdout.startswith("CONTAINERS ON -aac 0\n")
    assert tool.report["configuration"] == "-raid.cfg"
    assert tool.report["query0"] == "125100 -aac 0"


def test_status_of_the_second_start_is_ours(tool, host):
    # The extended partition begins where the disk can no longer be read.
    chained = HOST.replace("entry 80 83 64 1024", "entry 00 05 100 1024")
    (host / "host.txt").write_text(chained.replace("\ttable 0", "\tends 100\n\ttable 0"))
    result = tool.run("list", *CLASSIC, "partitions", "--sysroot", host)
    assert complaint(result, 1) == "the partition query failed; it found nothing before"


def test_environment_of_the_second_start(tool, host, tmp_path):
    half_plugin = tmp_path / "half_plugin.so"
    half_plugin.symlink_to(tool.half_plugin)
    program = tool.complete_copy(tmp_path / "bin")
    env = {
        "LD_PRELOAD": str(half_plugin),
        "REPLAY_SYSROOT": str(tmp_path / "stale"),
        # A sanitized program does not start behind the caller's own preload otherwise.
        "ASAN_OPTIONS": "verify_asan_link_order=0",
    }
    result = tool.fake("plain", "list", *CLASSIC, "--sysroot", "host", program=program, env=env, cwd=tmp_path)
    assert (result.returncode, result.stderr) == (0, "")
    assert tool.report["LD_PRELOAD"] == f"{program.parent}/diskscout-replay.so:{half_plugin}"
    assert tool.report["REPLAY_SYSROOT"] == str(host)


def test_without_sysroot_the_environment_stays(tool, tmp_path):
    tool.fake("plain", "list", *CLASSIC, env={"REPLAY_SYSROOT": "stale"}, cwd=tmp_path)
    assert tool.report["LD_PRELOAD"] == ""
    assert tool.report["REPLAY_SYSROOT"] == "stale"


def test_directory_without_a_table(tool, tmp_path):
    message = complaint(tool.run("list", *CLASSIC, "--sysroot", tmp_path), 2)
    assert message == f"{tmp_path} is no captured host: it has no host.txt"


def test_malformed_table_names_its_line(tool, host):
    (host / "host.txt").write_text("device /dev/sda\n\tfrobnicate 1\n")
    result = tool.run("list", *CLASSIC, "--sysroot", host)
    assert (result.returncode, result.stdout) == (2, "")
    assert f"{host}/host.txt:2: " in result.stderr


def test_missing_replay_library(tool, host, tmp_path):
    program = tool.copy_program(tmp_path / "bin")
    result = tool.run("list", *CLASSIC, "--sysroot", host, "--plugin", tool.plugin, program=program)
    assert "diskscout-replay.so" in complaint(result, 2)


def test_replay_library_that_cannot_be_loaded(tool, host, tmp_path):
    # The running host must not be shown in place of the captured one.
    program = tool.copy_program(tmp_path / "bin")
    (tmp_path / "bin" / "diskscout-replay.so").write_text("no library\n")
    result = tool.run("list", *CLASSIC, "--sysroot", host, "--plugin", tool.plugin, program=program)
    assert (result.returncode, result.stdout) == (2, "")
    assert result.stderr.endswith(
        "diskscout: the replay library was not loaded, so the captured host cannot be shown\n"
    )


def mounted_on(result):
    """The file system of the first partition is known to the child that reads the mount table, and to nobody else."""
    assert (result.returncode, result.stderr) == (0, "")
    return json.loads(result.stdout)["partitions"][0]["mount_point"]


@pytest.mark.parametrize("name", ["my programs", "my:programs", "plain"])
def test_wherever_the_programs_lie(tool, host, tmp_path, name):
    """The loader has no way to quote a blank, and the children need the library too."""
    program = tool.complete_copy(tmp_path / name)
    result = tool.run("list", *CLASSIC, "partitions", "--json", "--sysroot", host, program=program)
    assert mounted_on(result) == "/data"


def test_no_descriptor_is_high_enough(tool, host, tmp_path):
    program = tool.complete_copy(tmp_path / "my programs")

    def few():
        resource.setrlimit(resource.RLIMIT_NOFILE, (30, 30))

    result = tool.run("list", *CLASSIC, "partitions", "--json", "--sysroot", host, program=program, preexec_fn=few)
    assert mounted_on(result) == "/data"


def test_library_that_cannot_be_opened(tool, host, tmp_path):
    program = tool.copy_program(tmp_path / "my programs")
    library = program.parent / "diskscout-replay.so"
    os.mknod(library, stat.S_IFSOCK | 0o644)
    result = tool.run("list", *CLASSIC, "--sysroot", host, "--plugin", tool.plugin, program=program)
    assert complaint(result, 2) == f"{library} cannot be opened: No such device or address"


# Everything that takes part lies below a folder that the host stands in for: the program, its libraries, the
# host, the working directory. None of them is captured.
@pytest.mark.parametrize("sysroot", ["host", "{top}/host", "../{name}/host"])
def test_all_below_a_covered_folder(tool, host, tmp_path, sysroot):
    program = tool.complete_copy(tmp_path / "bin")
    (host / "host.txt").write_text(HOST + f"covers {tmp_path}/\ncovers /proc\ncovers /dev\ncovers /etc/mtab\n")
    named = sysroot.format(top=tmp_path, name=tmp_path.name)
    for first in (program, "bin/diskscout"):
        words = ["list", *CLASSIC, "partitions", "--json", "--sysroot", named]
        result = tool.run(*words, program=first, cwd=tmp_path, env={"PWD": str(tmp_path)})
        assert mounted_on(result) == "/data"
    # Reached through the kernel's and the loader's own calls, and by no other: the host shows nothing of it.
    assert not (host / str(tmp_path)[1:]).exists()


def test_what_is_covered_and_not_captured_is_not_there(tool, host, tmp_path):
    table = tmp_path / "raidtab"
    table.write_text("raiddev /dev/md7\n\traid-level 1\n\tnr-raid-disks 1\n\tdevice /dev/sda1\n\traid-disk 0\n")

    def asked(lines):
        (host / "host.txt").write_text(HOST + lines)
        return tool.run("--sysroot", host, "raidtab", table, program=tool.program.parent / "stcli")

    covered = f"covers /dev\ncovers {table}\n"
    seen, hidden = asked(""), asked(covered)
    assert seen.returncode == 0
    assert "level=1 " in seen.stderr
    assert hidden.returncode == 1
    assert "level=1 " not in hidden.stderr
    captured = host / str(table)[1:]
    captured.parent.mkdir(parents=True)
    captured.write_text(table.read_text().replace("level 1", "level 5"))
    assert "level=5 " in asked(covered).stderr
