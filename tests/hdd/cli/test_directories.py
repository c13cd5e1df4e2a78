# SPDX-License-Identifier: Apache-2.0
"""Making directories, on the real file system."""

import os
import stat

import pytest

from conftest import FAILED, HELLO, OK


@pytest.fixture
def place(tmp_path):
    directory = tmp_path / "place"
    directory.mkdir()
    return directory


def make(cli, path, **settings):
    done = cli.run("mkdir", str(path), **settings)
    assert done.stderr == HELLO + (FAILED if done.status else OK)
    assert done.log == []
    return done.status


def modes_of(place):
    return {
        str(path.relative_to(place)): stat.S_IMODE(path.stat().st_mode)
        for path in sorted(place.rglob("*"))
        if path.is_dir()
    }


def test_one(cli, place):
    assert make(cli, place / "a", umask=0) == 0
    assert modes_of(place) == {"a": 0o777}


def test_all_above(cli, place):
    assert make(cli, place / "a/b/c", umask=0) == 0
    assert modes_of(place) == {"a": 0o777, "a/b": 0o777, "a/b/c": 0o777}


def test_mask_applies(cli, place):
    assert make(cli, place / "a/b", umask=0o027) == 0
    assert modes_of(place) == {"a": 0o750, "a/b": 0o750}


def test_what_is_there_stays(cli, place):
    (place / "a").mkdir(mode=0o700)
    (place / "a/kept").write_text("kept")
    assert make(cli, place / "a/b", umask=0) == 0
    assert make(cli, place / "a/b", umask=0) == 0
    assert modes_of(place) == {"a": 0o700, "a/b": 0o777}
    assert (place / "a/kept").read_text() == "kept"


@pytest.mark.parametrize("path", ("a/b", "a/b/", "a//b", "./a/./b", "a/../a/b", ".//a///b//"))
def test_relative(cli, place, path):
    assert make(cli, path, cwd=place) == 0
    assert list(modes_of(place)) == ["a", "a/b"]


@pytest.mark.parametrize("path", ("/", ".", "..", "//"))
def test_there_already(cli, place, path):
    assert make(cli, path, cwd=place) == 0
    assert modes_of(place) == {}


@pytest.mark.parametrize("path", ("file", "file/b", "file/b/c", "d/file/b"))
def test_a_file_is_in_the_way(cli, place, path):
    (place / "d").mkdir()
    for file in ("file", "d/file"):
        (place / file).write_text("kept")
    assert make(cli, place / path) == 1
    assert list(modes_of(place)) == ["d"]
    assert (place / "file").read_text() == "kept"


def test_through_a_link(cli, place):
    (place / "real").mkdir()
    (place / "link").symlink_to("real")
    assert make(cli, place / "link/b") == 0
    assert (place / "real/b").is_dir()
    assert make(cli, place / "link") == 0


@pytest.mark.parametrize("path", ("link", "link/b"))
def test_link_to_nowhere(cli, place, path):
    (place / "link").symlink_to("nowhere")
    assert make(cli, place / path) == 1
    assert modes_of(place) == {}


def test_empty_path(cli, place):
    assert make(cli, "", cwd=place) == 1
    assert modes_of(place) == {}


def test_name_too_long(cli, place):
    assert make(cli, place / ("n" * 255)) == 0
    assert make(cli, place / ("n" * 256)) == 1
    assert list(modes_of(place)) == ["n" * 255]


def test_longest_path(cli, place):
    # The kernel takes 4095 characters.
    path = str(place) + ("/" + "d" * 199) * 25
    assert make(cli, path[:4096]) == 1
    assert make(cli, path) == 1
    longest = path[:4094] + "e"
    assert make(cli, longest) == 0
    assert os.path.isdir(longest)


def test_odd_names(cli, place):
    assert make(cli, place / "%s%n" / "a b" / "-x" / "\\") == 0
    assert (place / "%s%n" / "a b" / "-x" / "\\").is_dir()


def test_pipe_is_in_the_way(cli, place):
    os.mkfifo(place / "pipe")
    assert make(cli, place / "pipe") == 1
    assert make(cli, place / "pipe/b") == 1
