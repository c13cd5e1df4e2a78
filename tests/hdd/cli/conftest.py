# SPDX-License-Identifier: Apache-2.0
"""Runs the diagnostic command line as service staff do, through the built launcher."""

import os
import pathlib
import subprocess

import pytest

from addresses import settle_addresses

HERE = pathlib.Path(__file__).resolve().parent
HOSTS = (HERE / "hosts", HERE.parent.parent / "hosts")
STEERING = ("LD_PRELOAD", "REPLAY_SYSROOT", "REPLAY_LOG", "REPLAY_FAIL")

HELLO = "stcli: Hello world!\n"
OK = "stcli: Ok!\n"
FAILED = "stcli error: operation failed.\n"
INVALID = "stcli error: invalid cli command.\n"
MENU = (
    "1 - Controller  2 - Disk  3 - Container  4 - Raid  5 - task  "
    "6 Server Management Interface -- GetIntemInfo 0 - Quit\n"
)
# The launcher looks for the configuration of the controller tool; a captured host of this room has none.
NO_TOOL = (
    "stcli: the console has no controller tool: the configuration /root/hardraid.cfg cannot be read: "
    "No such file or directory\n"
)

# The mount table is read through cat, which has its own words for a table that is not there.
COMPLAINT_OF_CAT = "cat: /etc/mtab: No such file or directory\n"
MOUNT_TABLE_SHELL = "shell cat /etc/mtab"


def pytest_addoption(parser):
    parser.addoption("--build-dir", required=True, help="where stcli, the plug-in and the replay library stand")
    parser.addoption("--helpers", required=True, help="where the helpers of these tests were built")


def loadable(library, scratch):
    """The same library by a name that the loader can read: it splits LD_PRELOAD at blanks and colons."""
    name = scratch / library.name
    name.symlink_to(library)
    return name


def find_host(name):
    for directory in HOSTS:
        if (directory / name / "host.txt").exists():
            return directory / name
    raise LookupError(f"no captured host {name}")


class Done:
    """What a run left: status, the two streams as text with one character a byte, the log's lines."""

    def __init__(self, finished, log):
        self.status = finished.returncode
        self.stdout = (finished.stdout or b"").decode("latin-1")
        self.raw = (finished.stderr or b"").decode("latin-1")
        self.stderr = settle_addresses(self.raw.replace(COMPLAINT_OF_CAT, ""))
        self.whole_log = log
        self.log = [line for line in log if line != MOUNT_TABLE_SHELL]

    def body(self, closing):
        """What the command itself printed, between the greeting and the closing message."""
        assert self.stderr.startswith(HELLO), self.stderr
        assert self.stderr.endswith(closing), self.stderr
        return self.stderr[len(HELLO) : len(self.stderr) - len(closing)]


class Programs:
    def __init__(self, build_dir, helpers, scratch):
        self.launcher = build_dir / "stcli"
        self.plugin = build_dir / "diskscout.so"
        self.replay = build_dir / "diskscout-replay.so"
        self.call_stcli = helpers / "call_stcli"
        self.fault_walk = helpers / "fault_walk"
        self.file_disk = loadable(helpers / "file_disk.so", scratch)
        self.busy_host = loadable(helpers / "busy_host.so", scratch)
        self.no_pause = loadable(helpers / "no_pause.so", scratch)
        self.scratch = scratch
        self.log = scratch / "replay.log"

    def environment(self, changes):
        environment = {name: value for name, value in os.environ.items() if name not in STEERING}
        environment.update(LC_ALL="C", REPLAY_LOG=str(self.log), **(changes or {}))
        return environment

    def start(self, command, env=None, timeout=60, silent=True, **settings):
        """Any program; the log is that of this run alone."""
        self.log.write_text("", encoding="ascii")
        if not {"stdin", "input"} & settings.keys():
            settings["stdin"] = subprocess.DEVNULL
        settings.setdefault("stdout", subprocess.PIPE)
        settings.setdefault("stderr", subprocess.PIPE)
        finished = subprocess.run(
            [os.fsencode(word) for word in command],
            env=self.environment(env),
            timeout=timeout,
            check=False,
            **settings,
        )
        log = self.log.read_text(encoding="ascii") if self.log.exists() else ""
        done = Done(finished, log.splitlines())
        assert done.stdout == "" or not silent, "everything is said on standard error"
        return done

    def run(self, *words, host=None, **settings):
        """One command; without a host, on the running machine."""
        place = ["--sysroot", str(find_host(host))] if host else []
        return self.start([str(self.launcher), *place, "--", *words], **settings)


@pytest.fixture
def cli(request, tmp_path):
    build_dir = pathlib.Path(request.config.getoption("--build-dir")).resolve()
    helpers = pathlib.Path(request.config.getoption("--helpers")).resolve()
    scratch = tmp_path / "scratch"
    scratch.mkdir()
    return Programs(build_dir, helpers, scratch)
