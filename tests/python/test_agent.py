# SPDX-License-Identifier: Apache-2.0
"""The sample that agents start from: what it prints, what it says on standard error, and how it ends."""

import os
import pathlib
import re

import pytest

CLASSIC_LINES = """\
disk /dev/hda: STORAGEVM IDE DISK 256, 263208960 bytes, system disk
disk /dev/hdb: STORAGEVM BLANK, 16450560 bytes
disk /dev/sda: DATA DISK 64, 67104768 bytes
disk /dev/sdb: MIRROR 32, 33554432 bytes
disk /dev/sdc: MIRROR 32, 33554432 bytes
partition 0 of /dev/hda: Primary Partition, 134152704 bytes, /
"""
RAID_LINES = """\
controller aac0
  container 0: RAID1, 2048 MB, system
  task 101 on container 0: 45 % done
  task 102 on container 7: 100 % done
controller aac1
controller aac2
controller aac3
"""
TODAYS_LINES = """\
device dm-0: dm, 510481399808 bytes, serial number -
device nvme0n1: disk, 512110190592 bytes, serial number S5P2NX0T204817
device sda: disk, 30784094208 bytes, serial number 07AB12CD34
mount /: ext4 on dm-1
mount /proc: proc on proc
mount swap: partition on dm-2
"""


@pytest.fixture
def agent(interpreter, source_dir):
    def run(*words, **settings):
        # Without a terminal argparse takes the width from here.
        return interpreter(source_dir / "samples/agent.py", *words, COLUMNS="100", **settings)

    return run


@pytest.fixture
def nothing(source_dir):
    """A host without anything of its own."""
    return source_dir / "tests/hosts/nothing"


def lines(text):
    return text.splitlines()


def test_a_classic_host(agent, build_dir, source_dir):
    done = agent("--plugins", build_dir, host=source_dir / "tests/hosts/real-kernel")
    assert done.stdout.startswith(CLASSIC_LINES)
    assert [line for line in lines(done.stdout) if line.startswith("drive")] == ["drive /dev/hdc: STORAGEVM DVD-ROM"]
    # It has neither /sys nor a table of mounts.
    assert lines(done.stderr) == [f"agent.py: CMD_GET_BLOCK_{kind} failed: ENOENT (2): No such file or directory"
                                  for kind in ("DEVICES", "MOUNTS")]
    assert done.returncode == 1


def test_a_host_of_today(agent, build_dir):
    done = agent("--plugins", build_dir, host=build_dir / "tests/block/hosts/notebook")
    assert set(lines(TODAYS_LINES)) <= set(lines(done.stdout))
    assert len(lines(done.stdout)) == 9 + 6
    assert (done.stderr, done.returncode) == ("", 0)


def test_a_host_with_raid_controllers(agent, build_dir, nothing, at_the_site, tmp_path):
    # The interpreter's own working directory: what the configuration names has to be found from there.
    (tmp_path / "raidsim").symlink_to(at_the_site / "raidsim")
    (tmp_path / "filter").symlink_to(at_the_site / "filter")
    done = agent("--plugins", build_dir, "--config", at_the_site / "raid.cfg", host=nothing)
    begins = done.stdout.index("controller aac0")
    assert done.stdout[begins:].startswith(RAID_LINES)
    assert "agent.py: Aac_Get_Container_List failed: AAC_CONTROLLER_BUSY (-200)\n" in done.stderr
    assert "agent.py: Aac_Get_Container_List failed: AAC_CONTROLLER_UNUSABLE (-100)\n" in done.stderr
    assert done.returncode == 1


def test_a_tool_that_fails(agent, build_dir, nothing, at_the_site):
    done = agent("--plugins", build_dir, "--config", at_the_site / "raid.cfg", host=nothing)
    assert "controller" not in done.stdout
    assert "agent.py: Aac_Get_Controller_List failed: AAC_RUN_FAILED (-1)\n" in done.stderr
    assert done.returncode == 1


def test_what_was_found_before_a_failure_is_shown(agent, build_dir, source_dir):
    done = agent("--plugins", build_dir, host=source_dir / "tests/hosts/missing-node")
    assert len([line for line in lines(done.stdout) if line.startswith("partition ")]) == 1
    assert "agent.py: CMD_GET_PARTITIONS failed: -1\n" in done.stderr


def test_one_plugin_alone(agent, build_dir, tmp_path):
    (tmp_path / "plugins").mkdir()
    (tmp_path / "plugins/diskscout-block.so").symlink_to(build_dir / "diskscout-block.so")
    done = agent("--plugins", tmp_path / "plugins", host=build_dir / "tests/block/hosts/notebook")
    assert len(lines(done.stdout)) == 9 + 6
    assert done.stderr == f"agent.py: diskscout.so is not there: {tmp_path / 'plugins/diskscout.so'}\n"
    assert done.returncode == 1


STREAMS = {"strict UTF-8": {"PYTHONIOENCODING": "utf-8:strict"},
           "ASCII": {"LC_ALL": "C", "PYTHONUTF8": "0", "PYTHONCOERCECLOCALE": "0"},
           "strict ASCII": {"PYTHONIOENCODING": "ascii:strict"}}


@pytest.mark.parametrize("settings", STREAMS.values(), ids=STREAMS)
def test_texts_that_a_device_chose_are_escaped(agent, build_dir, source_dir, settings):
    done = agent("--plugins", build_dir, host=source_dir / "tests/hosts/hostile", **settings)
    assert f"disk /dev/hda: ABCD\\xff{'x' * 58}, 20643840 bytes, system disk\n" in done.stdout
    done = agent("--plugins", build_dir, host=source_dir / "tests/hosts/shadowed-mounts", **settings)
    assert "partition 9 of /dev/hda: Logical Drive, 512000 bytes, /mnt/my disk\\x09x\n" in done.stdout
    assert "Traceback" not in done.stderr


@pytest.mark.parametrize("encoding, told", [("utf-8", r"\x1b[2Ja\xff\xc2\x9b\xe2\x80\xae\x7fé b"),
                                            ("ascii", r"\x1b[2Ja\xff\xc2\x9b\xe2\x80\xae\x7f\xc3\xa9 b")])
def test_what_is_escaped(interpreter, source_dir, encoding, told):
    program = ("import sys\nsys.path.insert(0, sys.argv[1])\nimport agent\n"
               r"agent.say('\x1b[2Ja\udcff\x9b\u202e\x7f\xe9 b', sys.stdout)")
    done = interpreter("-c", program, source_dir / "samples", PYTHONIOENCODING=f"{encoding}:strict")
    assert (done.stdout, done.stderr, done.returncode) == (f"{told}\n", "", 0)


def test_errors_are_escaped(agent, tmp_path):
    done = agent("--plugins", tmp_path / "\x1b[2J")
    assert lines(done.stderr)[0] == f"agent.py: diskscout.so is not there: {tmp_path}/\\x1b[2J/diskscout.so"
    assert done.returncode == 1


def test_a_configuration_that_no_library_takes(agent, build_dir, nothing):
    done = agent("--plugins", build_dir, "--config", "/" * 300, host=nothing)
    assert done.stderr == "agent.py: a path of 300 bytes: the library has room for 255\n"
    assert (done.stdout, done.returncode) == ("", 2)


ONE_CONTROLLER = """\
Executing: controller list
Adapter Name  Adapter Type           Availability  Clustering
------------  ---------------------  ------------  ----------
a\x1bb           EXAMPLE 2200S          read/write    No
"""


def test_a_controller_whose_name_is_a_command(agent, build_dir, tmp_path):
    """What the tool is said to have answered is no name that goes back to it, and the rest is told."""
    (tmp_path / "answer").write_text(ONE_CONTROLLER)
    (tmp_path / "filter").write_text('#!/bin/sh\ncat answer >"$2"\n')
    (tmp_path / "filter").chmod(0o755)
    (tmp_path / "raid.cfg").write_text("Cli Path:/bin\nCli Name:cat\nFilter Script:./filter\n")
    done = agent("--plugins", build_dir, "--config", tmp_path / "raid.cfg", host=build_dir / "tests/block/hosts/notebook")
    assert lines(done.stdout)[0] == "controller a\\x1bb"
    assert lines(done.stderr) == ["agent.py: a control character in 'a\\x1bb'"] * 2
    assert set(lines(TODAYS_LINES)) <= set(lines(done.stdout))
    assert done.returncode == 1


def test_files_of_a_run_are_the_users_alone(agent, build_dir, nothing, at_the_site, tmp_path):
    (tmp_path / "raidsim").symlink_to(at_the_site / "raidsim")
    (tmp_path / "filter").write_text(f'#!/bin/sh\numask >>umasks\nexec {at_the_site}/filter "$@"\n')
    (tmp_path / "filter").chmod(0o755)
    agent("--plugins", build_dir, "--config", at_the_site / "raid.cfg", host=nothing)
    assert set(lines((tmp_path / "umasks").read_text())) == {"0077"}


def test_words_that_make_no_sense(agent):
    done = agent("--plugin-directory")
    assert (done.stdout, done.returncode) == ("", 2)
    assert done.stderr.startswith("usage: agent.py ")


def test_it_can_be_started_and_is_short(source_dir):
    sample = source_dir / "samples/agent.py"
    assert os.access(sample, os.X_OK)
    text = sample.read_text(encoding="utf-8")
    assert re.match("#!/usr/bin/python3\n", text)
    assert len(lines(text)) < 120
    assert pathlib.Path(sample).name in text
