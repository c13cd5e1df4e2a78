# SPDX-License-Identifier: Apache-2.0
"""Runs the simulated controller tool on hand-made controllers, as a server's agent runs the real one."""

import os
import pathlib
import subprocess

import pytest

FILTER = pathlib.Path(__file__).resolve().parents[2] / "tools" / "filter" / "diskscout-filter"

# Round sizes, so that every answer can be worked out: disks of 10 GB (20971520 blocks of 512 bytes).
CONTROLLERS = """\
format version=1
controller name=aac0 type="EXAMPLE 2200S" availability=read/write clustering=No opens=yes channels=2 next_task=101
{disks}
disk at=0:06:0 type=Processor removable=no vendor=ACME product=ENCLOSURE revision=0.9 blocks=0 bytes_per_block=0 \
usage=Unowned shared=no rate=0 primary_defects=0 grown_defects=0 bad_status=no
container number=0 type=Mirror size_kb=2097152 stripe_kb=0 usage=Open device=/dev/sda label=system parent=-1 data=yes
piece at=0:00:0 offset_kb=64 size_kb=2097152 rebuild=no
piece at=0:01:0 offset_kb=64 size_kb=2097152 rebuild=no
controller name=aac1 type="EXAMPLE 2120S" availability="read only" clustering=Yes opens=yes channels=1 next_task=101
controller name=aac2 type="EXAMPLE 2120S" availability=read/write clustering=No opens=busy channels=1 next_task=101
controller name=aac3 type="EXAMPLE 2120S" availability=read/write clustering=No opens=wrong-type channels=1 \
next_task=101
"""


def disk_line(at, vendor="ACME", product="EX10", usage="Initialized", bad_status="no"):
    return (
        f'disk at={at} type=Disk removable=no vendor="{vendor}" product="{product}" revision=1.02'
        f' blocks=20971520 bytes_per_block=512 usage="{usage}" shared=no rate=320'
        f" primary_defects=3 grown_defects=1 bad_status={bad_status}"
    )


DISKS = [
    disk_line("0:00:0"),
    disk_line("0:01:0"),
    disk_line("0:02:0"),
    disk_line("0:03:0"),
    disk_line("0:04:0", vendor="EXAMPLE A", product="FAST DISK"),
    disk_line("0:05:0", usage="Not Initialized", bad_status="yes"),
    disk_line("1:10:0"),
]


class Tool:
    def __init__(self, build_dir, scratch):
        self.program = build_dir / "raidsim"
        self.scratch = scratch
        self.state = scratch / "state.txt"
        self.state.write_text(CONTROLLERS.format(disks="\n".join(DISKS)))

    def start(self, script, fault="", **environment):
        settings = {**os.environ, "TERM": "linux", "RAIDSIM_STATE": str(self.state), "RAIDSIM_FAULT": fault}
        settings.update(environment)
        return subprocess.run(
            [str(self.program)], input=script.encode(), capture_output=True, env=settings, timeout=60, check=False
        )

    def output(self, *commands, fault=""):
        """The output of a script in the shape that agents write."""
        script = "".join(command + "\n" for command in commands) + " " * 43 + "\n    \nexit\n"
        result = self.start(script, fault)
        assert (result.returncode, result.stderr) == (0, b"")
        return result.stdout.decode("ascii")

    def answer(self, command, fault="", controller="aac0"):
        """The lines between the last command's echo and the prompt, without the blank ones around them."""
        text = self.output(f"open {controller}", command, fault=fault)
        parts = text.split(f"\n{controller.upper()}>\n")
        assert parts[-1] == "Executing: exit\n"
        echo, _, answer = parts[-2].partition("\n")
        assert echo.startswith("Executing: ")
        return answer.strip("\n").split("\n")

    def refused(self, command, controller="aac0"):
        """The one line of a refusal, which must leave the state as it was."""
        before = self.state.read_bytes()
        lines = self.answer(command, controller=controller)
        assert self.state.read_bytes() == before
        assert list(self.scratch.iterdir()) == [self.state]
        assert len(lines) == 1
        return lines[0]

    def replace(self, old, new):
        text = self.state.read_text()
        assert old in text
        self.state.write_text(text.replace(old, new))


def pytest_addoption(parser):
    parser.addoption("--build-dir", required=True, help="where raidsim was built")


@pytest.fixture
def tool(request, tmp_path):
    build_dir = pathlib.Path(request.config.getoption("--build-dir")).resolve()
    scratch = tmp_path / "tool"
    scratch.mkdir()
    return Tool(build_dir, scratch)


@pytest.fixture
def filtered(tmp_path):
    """Text as the filter script leaves it; the echo that makes a whole answer of it is added and taken away."""
    end = "Executing: exit\n"

    def run(text):
        raw, target = tmp_path / "raw", tmp_path / "filtered"
        added = "" if text.replace("\r", "").endswith(end) else end
        raw.write_bytes((text + added).encode("ascii"))
        subprocess.run([str(FILTER), str(raw), str(target)], check=True, timeout=60)
        result = target.read_text()
        assert result.endswith(end)
        return result[: len(result) - len(added)]

    return run
