# SPDX-License-Identifier: Apache-2.0
"""The tool's whole answer about each captured host.

A directory beside this file that holds a host.txt is a host.  Its expected.json
is what "diskscout list --classic --format 1 --json" says of it, expected.exit
the exit status (0 without that file), expected.stderr the text on standard
error of a run that succeeds (nothing without that file).  A run that fails has to say why.
"""

import itertools
import json
import os
import pathlib
import subprocess

import pytest

HERE = pathlib.Path(__file__).resolve().parent
HOSTS = sorted(found.parent for found in HERE.glob("*/host.txt"))
HEADINGS = {"disks": "DISKS", "partitions": "PARTITIONS", "cdroms": "CD-ROMS"}
KINDS = tuple(HEADINGS)
MAX_DISKS = 16
CHANGES = ("write ", "mknod ", "unlink ")


def text_of(path, default):
    return path.read_text(encoding="utf-8") if path.exists() else default


def as_text(document):
    # As text, because to Python true equals 1.
    return json.dumps(document, indent=2, sort_keys=True)


class Host:
    def __init__(self, directory):
        self.directory = directory
        self.answer = json.loads((directory / "expected.json").read_text(encoding="utf-8"))
        self.status = int(text_of(directory / "expected.exit", "0"))
        self.complaint = text_of(directory / "expected.stderr", "")

    def shells_of(self, kind):
        """The mount table is read through a shell, except for the disks.  An
        overflowing disk list ends the partition query before that."""
        if kind == "disks":
            return 0
        overflow = kind in self.answer["failed"] and len(self.answer["disks"]) == MAX_DISKS
        return 0 if overflow else 1


@pytest.fixture(params=HOSTS, ids=lambda directory: directory.name)
def host(request):
    return Host(request.param)


@pytest.fixture
def run(host, request, tmp_path):
    tool = pathlib.Path(request.config.getoption("--build-dir")).resolve() / "diskscout"
    log = tmp_path / "replay.log"
    environment = {name: value for name, value in os.environ.items() if not name.startswith("REPLAY_")}
    # The complaint of a child such as cat is compared as text.
    environment.update(REPLAY_LOG=str(log), LC_ALL="C")

    def run_tool(*words):
        log.write_text("")
        command = [str(tool), "list", "--classic", "--format", "1", *words, "--sysroot", str(host.directory)]
        done = subprocess.run(command, env=environment, capture_output=True, timeout=60, check=False)
        done.log = log.read_text(encoding="utf-8").splitlines()
        return done

    return run_tool


def check_ending(host, done):
    complaint = done.stderr.decode("utf-8", "replace")
    assert done.returncode == host.status, complaint
    if host.status == 0:
        assert complaint == host.complaint
    else:
        for kind in host.answer["failed"]:
            assert kind.rstrip("s") in complaint


def test_the_hosts_are_found():
    assert "real-kernel" in [directory.name for directory in HOSTS]


def test_answer(host, run):
    done = run("--json")
    check_ending(host, done)
    assert as_text(json.loads(done.stdout)) == as_text(host.answer)
    assert [line for line in done.log if line.startswith(CHANGES)] == []


@pytest.mark.parametrize("kind", KINDS)
def test_kind_alone(host, run, kind):
    done = run(kind, "--json")
    failed = [name for name in host.answer["failed"] if name == kind]
    assert done.returncode == (1 if failed else 0), done.stderr
    assert as_text(json.loads(done.stdout)) == as_text(
        {"format": 1, kind: host.answer[kind], "failed": failed})
    # Nothing but the shells: no write, no node made, nothing removed.
    assert done.log == ["shell cat /etc/mtab"] * host.shells_of(kind)


def node_of(kind, record):
    """As the table names it: the kernel counts partitions from 1, the record from 0."""
    if kind == "partitions":
        return f"{record['disk_device_name']}{record['part_index'] + 1}"
    return record["device_name"]


def rows_of(table, heading):
    """The first column below a heading, up to the blank line; a sentence in the table's place has none."""
    lines = table.splitlines()
    body = list(itertools.takewhile(bool, lines[lines.index(heading) + 1 :]))
    return [line.split()[0] for line in body[1:]] if body[0].startswith("DEVICE ") else []


def test_table(host, run):
    """A row for each record, in their order, and no other."""
    done = run()
    check_ending(host, done)
    for kind, heading in HEADINGS.items():
        nodes = [node_of(kind, record) for record in host.answer[kind]]
        assert rows_of(done.stdout.decode("utf-8"), heading) == nodes
