# SPDX-License-Identifier: Apache-2.0
"""Runs the built program as a user does, on hand-made plug-ins or on the real one."""

import json
import os
import pathlib
import shutil
import subprocess

import pytest
from documents import check_document, is_document

# What the program said before it knew the devices of today.
CLASSIC = ("--classic", "--format", "1")
# What would show through from whoever runs the tests.
STEERING = ("LD_PRELOAD", "LANG", "LANGUAGE", "COLUMNS", "LINES", "TERM")

# What a busy machine may need beside a limit (s); without the limit it would be far more.
SLACK = 8

# Where what tests meet is counted, copies of the program tell what they have met when this is wished. It takes them
# long: these tests meet nearly everything.
COUNTED = {"test_block_json", "test_plugin", "test_prepared_host", "test_raid_json", "test_raid_site", "test_reasons", "test_tree"}


def pytest_addoption(parser):
    parser.addoption("--build-dir", required=True, help="where diskscout and diskscout.so were built")
    parser.addoption("--modules", help="where the plug-ins of these tests were built")


def is_built(request, what):
    cache = pathlib.Path(request.config.getoption("--build-dir")) / "CMakeCache.txt"
    return f"DISKSCOUT_{what}:BOOL=ON" in cache.read_text()


@pytest.fixture(scope="session")
def is_sanitized(request):
    return is_built(request, "SANITIZE")


@pytest.fixture
def meets_what_others_met(request):
    """Where what is met is counted, it has to be met once."""
    if is_built(request, "COVERAGE"):
        pytest.skip("others met the same")


@pytest.fixture(autouse=True)
def counted(request, monkeypatch):
    if COUNTED & {request.module.__name__, request.function.__name__}:
        monkeypatch.setenv("DISKSCOUT_COUNTS_COPIES", "1")


class Tool:
    """The program, with an environment of which nothing but the given variables steers it."""

    def __init__(self, build_dir, modules, made_program, scratch):
        self.program = build_dir / "diskscout"
        self.made_program = made_program
        self.plugin = build_dir / "diskscout.so"
        self.block_plugin = build_dir / "diskscout-block.so"
        self.replay = build_dir / "diskscout-replay.so"
        self.fake_plugin = modules / "fake_plugin.so"
        self.fake_block_plugin = modules / "fake_block_plugin.so"
        self.half_plugin = modules / "half_plugin.so"
        self.old_plugin = modules / "old_plugin.so"
        self.scratch = scratch
        self.report = {}
        self.block_report = {}

    def run(self, *arguments, program=None, env=None, **settings):
        environment = {
            name: value
            for name, value in os.environ.items()
            if not name.startswith(("REPLAY_", "FAKE_", "RAIDSIM_", "LC_")) and name not in STEERING
        }
        environment.update(env or {})
        settings.setdefault("stdout", subprocess.PIPE)
        settings.setdefault("stderr", subprocess.PIPE)
        command = [str(argument) for argument in (program or self.program, *arguments)]
        result = subprocess.run(
            command,
            env=environment,
            timeout=60,
            check=False,
            encoding="utf-8",
            **settings,
        )
        if result.stdout is not None and is_document(command):
            check_document(self.program, result)
        return result

    def made(self, *arguments, classic="plain", block="plain", env=None, **settings):
        """One run of the program beside which the made plug-ins lie; neither has to be asked."""
        reports = [self.scratch / name for name in ("report", "block-report")]
        for path in reports:
            path.unlink(missing_ok=True)
        environment = {
            "FAKE_PLUGIN_CASE": classic,
            "FAKE_PLUGIN_REPORT": str(reports[0]),
            "FAKE_BLOCK_CASE": block,
            "FAKE_BLOCK_REPORT": str(reports[1]),
            **(env or {}),
        }
        result = self.run(*arguments, program=self.made_program, env=environment, **settings)
        self.report, self.block_report = (self.read_lines(path) for path in reports)
        for report in (self.report, self.block_report):
            assert report.get("live", "0") == report.get("wrong", "0") == "0"
        return result

    def made_document(self, *arguments, status=0, **settings):
        result = self.made("list", "--json", *arguments, **settings)
        assert result.returncode == status, result.stderr
        return json.loads(result.stdout)

    def made_text(self, *arguments, **settings):
        result = self.made("list", *arguments, **settings)
        assert (result.returncode, result.stderr) == (0, "")
        return result.stdout

    @staticmethod
    def read_lines(path):
        """What a made plug-in saw; nothing when it was not loaded."""
        return dict(line.split(" ", 1) for line in path.read_text().splitlines()) if path.exists() else {}

    def read_report(self, path):
        """What the made plug-in saw; every list must have come back, with its own code."""
        self.report = self.read_lines(path)
        assert self.report["queries"] != "0"
        assert self.report["releases"] == self.report["queries"]
        assert self.report["live"] == "0"
        assert self.report["wrong"] == "0"

    def fake(self, case, *arguments, env=None, **settings):
        """One run on the made plug-in, which must be asked."""
        path = self.scratch / "report"
        path.unlink(missing_ok=True)
        environment = {"FAKE_PLUGIN_CASE": case, "FAKE_PLUGIN_REPORT": str(path), **(env or {})}
        result = self.run(*arguments, "--plugin", self.fake_plugin, env=environment, **settings)
        self.read_report(path)
        return result

    def fake_document(self, case, *arguments, status=0):
        result = self.fake(case, "list", *CLASSIC, "--json", *arguments)
        assert result.returncode == status
        return json.loads(result.stdout)

    def fake_table(self, case, *arguments):
        result = self.fake(case, "list", *CLASSIC, *arguments)
        assert (result.returncode, result.stderr) == (0, "")
        return result.stdout

    def copy_program(self, directory):
        """The program alone in a directory of its own, without the libraries that come with it."""
        directory.mkdir(parents=True)
        return pathlib.Path(shutil.copy2(self.program, directory))

    def complete_copy(self, directory):
        """The program with the libraries that come with it, elsewhere."""
        program = self.copy_program(directory)
        for library in (self.plugin, self.block_plugin, self.replay):
            shutil.copy2(library, directory)
        return program


@pytest.fixture(scope="session")
def directories(request):
    """Where the program was built, and the plug-ins of these tests."""
    build_dir = pathlib.Path(request.config.getoption("--build-dir")).resolve()
    return build_dir, pathlib.Path(request.config.getoption("--modules") or build_dir / "tests" / "tools").resolve()


@pytest.fixture(scope="session")
def made_program(directories, tmp_path_factory):
    """A copy of the program that the made plug-ins lie beside: it takes them for those that come with it."""
    build_dir, modules = directories
    directory = tmp_path_factory.mktemp("made")
    for name in ("diskscout", "diskscout-replay.so"):
        shutil.copy2(build_dir / name, directory)
    for name, made in (("diskscout.so", "fake_plugin.so"), ("diskscout-block.so", "fake_block_plugin.so")):
        (directory / name).symlink_to(modules / made)
    return directory / "diskscout"


@pytest.fixture
def tool(directories, made_program, tmp_path):
    scratch = tmp_path / "tool"
    scratch.mkdir()
    return Tool(*directories, made_program, scratch)


def complaint(result, status):
    """The one line that a run of this status left on standard error, without the program's name."""
    assert result.returncode == status
    assert result.stderr.startswith("diskscout: ")
    assert result.stderr.endswith("\n")
    assert result.stderr.count("\n") == 1
    return result.stderr[len("diskscout: ") : -1]
