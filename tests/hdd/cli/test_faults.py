# SPDX-License-Identifier: Apache-2.0
"""Every outside call of every command fails once, and once all of them from there on."""

import re

import pytest

from conftest import find_host

# The words and the host; {} is a directory to work in.
COMMANDS = (
    ("help", "real-kernel"),
    ("fnode /dev/sda1", "real-kernel"),
    ("froot /dev/sda1", "real-kernel"),
    ("ftail /dev/sda1", "real-kernel"),
    ("input", "real-kernel"),
    ("rand 1 5 3", "real-kernel"),
    ("hdgeo /dev/hda", "real-kernel"),
    ("hdsize /dev/hda", "real-kernel"),
    ("idlun /dev/sda", "real-kernel"),
    ("mbr /dev/hda", "real-kernel"),
    ("parttab /dev/hda 360509", "real-kernel"),
    ("sector /dev/hda 1", "real-kernel"),
    ("part /dev/hda", "real-kernel"),
    ("volspace /", "real-kernel"),
    ("xxid", "real-kernel"),
    ("exec true", "real-kernel"),
    ("mdsb /dev/sda1", "superblocks"),
    ("mdsb clear /dev/sda1", "superblocks"),
    ("mdspeed", "arrays"),
    ("mdspeed default", "arrays"),
    ("mdspeed max", "arrays"),
    ("mdspeed 5 7", "arrays"),
    ("mdstat", "arrays"),
    ("mkdev /dev/x 08:11", "real-kernel"),
    ("mkdev /dev/x 8 17", "real-kernel"),
    ("mkdir {}/a/b", "real-kernel"),
    ("mtab", "real-kernel"),
    ("mtab dev x", "real-kernel"),
    ("mtab mnt x", "real-kernel"),
    ("procblk", "real-kernel"),
    ("procblk hda", "real-kernel"),
    ("procide", "real-kernel"),
    ("procscsi", "real-kernel"),
    ("procscsihost", "real-kernel"),
    ("raidtab /root/raidtab", "arrays"),
    ("scsiadd 0 0 1 0", "real-kernel"),
    ("scsiremove 0 0 1 0", "real-kernel"),
    ("scsishuffle", "real-kernel"),
    ("scsisn /dev/sda", "real-kernel"),
    ("uptime", "real-kernel"),
    ("exe_cdrom", "ide-four-drives"),
    ("exe_disk", "real-kernel"),
    ("exe_part /dev/hda", "real-kernel"),
    ("exe_vol", "real-kernel"),
    ("stdisk", "real-kernel"),
    ("stcdrom", "ide-four-drives"),
    ("stpart", "real-kernel"),
    ("sttest 1", "ide-four-drives"),
)
# "input" reads a stream in a way that is not counted.
NO_CALLS = {"help", "fnode", "froot", "ftail", "input", "rand", "xxid"}


@pytest.mark.parametrize("words, host", COMMANDS)
def test_walk(cli, tmp_path, words, host):
    command = words.split()[0]
    # A query that fails leaves the lists of its round to the process that ends.
    env = {"ASAN_OPTIONS": "detect_leaks=0"} if command == "sttest" else None
    walked = cli.start(
        [str(cli.fault_walk), str(find_host(host)), *[word.format(tmp_path) for word in words.split()]],
        env=env,
        silent=False,
        input=b"a line\n",
        stderr=None,
        timeout=300,
    )
    assert walked.status == 0, walked.stdout
    calls = int(re.fullmatch(r"calls (\d+)\n", walked.stdout).group(1))
    assert calls > 0 or command in NO_CALLS


@pytest.mark.parametrize("failing", ("1", "1+", "2+"))
def test_through_the_launcher(cli, failing):
    """As a user would try it."""
    for words in ("stdisk", "mdsb clear /dev/sdb1", "scsishuffle"):
        done = cli.run(*words.split(), host="real-kernel", env={"REPLAY_FAIL": failing})
        assert done.status in (0, 1)
