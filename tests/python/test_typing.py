# SPDX-License-Identifier: Apache-2.0
"""The package's types hold, where somebody is there to check them, and its own words of the language are old enough."""

import ast
import re
import shutil
import subprocess

import pytest

import diskscout

CHECKER = shutil.which("mypy")
USER = """\
import diskscout

with diskscout.BlockPlugin(directory="x") as plugin, plugin.devices() as devices:
    reveal_type(devices)
    for device in devices:
        reveal_type(device.size_bytes)
        reveal_type(device.links)
    reveal_type(devices[1:2])
with diskscout.Raid("x") as raid, raid.tasks("aac0") as tasks:
    reveal_type(tasks[0].done)
    reveal_type(raid.defects("aac0", 0).grown)
"""
REVEALED = (r"RecordList\[.*BlockDevice\]", r"int.*None", r"tuple\[.*str, \.\.\.\]", r"list\[.*BlockDevice\]", r"float",
            r"int.*None")


@pytest.mark.skipif(CHECKER is None, reason="mypy is not installed")
def test_types_are_strict(source_dir, tmp_path):
    (tmp_path / "user.py").write_text(USER)
    done = subprocess.run([CHECKER, "--strict", "--python-version", "3.9", "--cache-dir", str(tmp_path / "cache"),
                           str(source_dir / "python/diskscout"), str(source_dir / "samples/agent.py"),
                           str(tmp_path / "user.py")], check=False, capture_output=True, text=True,
                          cwd=source_dir / "python")
    assert "error" not in done.stdout, done.stdout
    told = [line.split('"')[1] for line in done.stdout.splitlines() if "Revealed type" in line]
    assert len(told) == len(REVEALED)
    # Checkers spell the same type in different ways.
    assert [one for one, wanted in zip(told, REVEALED) if not re.search(wanted, one, re.IGNORECASE)] == []


def test_python_39_reads_it(source_dir):
    files = sorted((source_dir / "python/diskscout").glob("*.py"))
    assert len(files) >= 10
    for file in [*files, source_dir / "samples/agent.py"]:
        ast.parse(file.read_text(encoding="utf-8"), str(file), feature_version=(3, 9))


def test_what_is_offered_is_there_and_documented():
    for name in diskscout.__all__:
        assert getattr(diskscout, name).__doc__, name
