# SPDX-License-Identifier: Apache-2.0
import os
import pathlib
import shutil
import subprocess

import pytest

SOURCES = pathlib.Path(__file__).resolve().parents[2]


def pytest_addoption(parser):
    parser.addoption("--build-dir", required=True, type=pathlib.Path)


@pytest.fixture(scope="session")
def build_dir(request):
    return request.config.getoption("--build-dir").resolve()


class Installed:
    """A tree that cmake --install has made, and nothing of the build or the sources."""

    def __init__(self, prefix):
        self.prefix = prefix
        self.plugins = prefix / "lib/diskscout"
        self.hosts = prefix / "share/diskscout/hosts"

    def run(self, *command, host=None, cwd=None, **settings):
        environment = {"PATH": f"{self.prefix}/bin:{os.environ['PATH']}", "LC_ALL": "C", "TERM": "linux",
                       "HOME": "/nonexistent", "PYTHONDONTWRITEBYTECODE": "1", **settings}
        if host:
            environment.update(LD_PRELOAD=str(self.plugins / "diskscout-replay.so"),
                               REPLAY_SYSROOT=str(self.hosts / host))
        return subprocess.run([str(word) for word in command], check=False, cwd=cwd, env=environment,
                              capture_output=True, text=True, timeout=120)

    def output(self, *command, **settings):
        done = self.run(*command, **settings)
        assert (done.returncode, done.stderr) == (0, "")
        return done.stdout


def install(build_dir, *words, **settings):
    done = subprocess.run(["cmake", "--install", str(build_dir), *words], check=True, capture_output=True, text=True,
                          env={**os.environ, **settings})
    assert done.stderr == ""
    return done.stdout


@pytest.fixture(scope="session")
def installed(build_dir, tmp_path_factory):
    """Moved after it was made: only what a build is told of it names its place."""
    made = tmp_path_factory.mktemp("made") / "prefix"
    install(build_dir, "--prefix", str(made))
    moved = tmp_path_factory.mktemp("installed") / "tree"
    shutil.move(made, moved)
    # What names its place is made anew by installing there.
    install(build_dir, "--prefix", str(moved), "--component", "development")
    return Installed(moved)
