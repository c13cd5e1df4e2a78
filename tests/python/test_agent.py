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


def test_words_that_make_no_sense(agent):
    done = agent("--plugin-directory")
    assert (done.stdout, done.returncode) == ("", 2)
    assert done.stderr.startswith("usage: agent.py ")


def test_it_can_be_started_and_is_short(source_dir):
    sample = source_dir / "samples/agent.py"
    assert os.access(sample, os.X_OK)
    text = sample.read_text(encoding="utf-8")
    assert re.match("#!/usr/bin/python3\n", text)
    assert len(lines(text)) < 110
    assert pathlib.Path(sample).name in text
