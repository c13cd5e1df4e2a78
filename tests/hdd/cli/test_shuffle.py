# SPDX-License-Identifier: Apache-2.0
"""Detaching all SCSI devices and attaching them again in another order."""

import re
import time

import pytest

from conftest import FAILED, HELLO, OK

LINE = re.compile(r'write /proc/scsi/scsi "scsi (add|remove)-single-device (\d+ \d+ \d+ \d+)"')


def shuffle(cli, host):
    done = cli.run("scsishuffle", host=host)
    found = [LINE.fullmatch(line).groups() for line in done.log]
    count = len(found) // 2
    assert [verb for verb, _ in found] == ["remove"] * count + ["add"] * count
    return done, [device for _, device in found[:count]], [device for _, device in found[count:]]


@pytest.mark.parametrize(
    "host, devices",
    (
        ("real-kernel", ["0 0 0 0", "0 0 1 0", "0 0 2 0"]),
        ("scsi-hosts", ["0 0 1 0", "1 2 3 4", "3 0 15 7"]),
        ("scsi-32", [f"{number // 16} 0 {number % 16} 0" for number in range(32)]),
    ),
)
def test_all_go_and_all_come_back(cli, host, devices):
    done, gone, back = shuffle(cli, host)
    assert (done.status, done.stderr) == (0, HELLO + OK)
    assert gone == devices
    assert sorted(back) == sorted(devices)


def test_another_order(cli):
    # Thirty-two devices come back in their old order once in 32! times.
    _, gone, back = shuffle(cli, "scsi-32")
    assert gone != back


def test_the_order_changes_with_the_time(cli):
    orders = set()
    for _ in range(2):
        orders.add(tuple(shuffle(cli, "scsi-32")[2]))
        time.sleep(1.1)
    assert len(orders) == 2


@pytest.mark.parametrize(
    "host, devices",
    (
        ("scsi-hosts-bad", ["0 0 1 0", "1 0 3 0"]),
        ("scsi-33", [f"{number // 16} 0 {number % 16} 0" for number in range(32)]),
    ),
)
def test_what_could_be_read_is_shuffled(cli, host, devices):
    done, gone, back = shuffle(cli, host)
    assert (done.status, done.stderr) == (1, HELLO + FAILED)
    assert gone == devices
    assert sorted(back) == sorted(devices)
