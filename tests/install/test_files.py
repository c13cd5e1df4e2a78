# SPDX-License-Identifier: Apache-2.0
"""Every file that is installed, by the component it belongs to, and nothing beside them."""

import os
import pathlib
import re
import stat
import subprocess
import sys

import pytest
from conftest import SOURCES, install

COMPONENTS = ("development", "plugins", "programs", "python", "simulator")
# Compared as trees: of the captured hosts there are many files.
HOSTS = "share/diskscout/hosts/"


def listed():
    """{component: {path: mode}} of files.txt."""
    rows = {component: {} for component in COMPONENTS}
    for line in (pathlib.Path(__file__).parent / "files.txt").read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            component, mode, path = line.split()
            rows[component][path] = mode
    return rows


def files_below(directory):
    """{path: mode}; a link tells where it leads."""
    found = {}
    for folder, _, names in os.walk(directory):
        for path in (pathlib.Path(folder) / name for name in names):
            mode = os.lstat(path).st_mode
            found[str(path.relative_to(directory))] = (
                f"-> {os.readlink(path)}" if stat.S_ISLNK(mode) else f"{stat.S_IMODE(mode):o}")
    return found


def folders_below(directory):
    return {str(path.relative_to(directory)) for path in directory.rglob("*") if path.is_dir() and not path.is_symlink()}


def without_hosts(files):
    return {path: mode for path, mode in files.items() if not path.startswith(HOSTS)}


@pytest.mark.parametrize("component", COMPONENTS)
def test_a_component_has_the_files_that_are_listed(build_dir, tmp_path, component):
    install(build_dir, "--prefix", str(tmp_path), "--component", component)
    assert without_hosts(files_below(tmp_path)) == listed()[component]


def test_nothing_belongs_to_no_component(installed):
    everything = {path: mode for rows in listed().values() for path, mode in rows.items()}
    assert without_hosts(files_below(installed.prefix)) == everything


def test_below_destdir_lies_the_whole_prefix_and_nothing_elsewhere(build_dir, tmp_path, installed):
    prefix = re.search(r"^CMAKE_INSTALL_PREFIX:\w+=(.*)$", (build_dir / "CMakeCache.txt").read_text(),
                       re.MULTILINE).group(1)
    told = install(build_dir, DESTDIR=str(tmp_path))
    written = re.findall(r"^-- (?:Installing|Up-to-date): (.*)$", told, re.MULTILINE)
    assert written
    assert [path for path in written if not path.startswith(f"{tmp_path}{prefix}/")] == []
    assert files_below(tmp_path / prefix.lstrip("/")) == files_below(installed.prefix)
    # It is not staged there for good.
    assert str(tmp_path) not in (tmp_path / prefix.lstrip("/") / "lib/pkgconfig/diskscout.pc").read_text()


def test_the_root_is_a_prefix(build_dir, tmp_path, installed):
    install(build_dir, "--prefix", "/", DESTDIR=str(tmp_path))
    assert files_below(tmp_path) == files_below(installed.prefix)
    assert "plugindir=/lib/diskscout\n" in (tmp_path / "lib/pkgconfig/diskscout.pc").read_text(encoding="utf-8")


def test_what_was_installed_can_be_taken_away(build_dir, tmp_path):
    install(build_dir, "--prefix", str(tmp_path / "prefix"))
    manifest = (build_dir / "install_manifest.txt").read_text(encoding="utf-8").splitlines()
    for path in manifest:
        pathlib.Path(path).unlink()
    assert files_below(tmp_path) == {}


def test_the_sample_hosts_are_those_of_the_tests(installed, tmp_path):
    subprocess.run([sys.executable, "-B", str(SOURCES / "tests/block/unfold.py"), str(SOURCES / "tests/block/hosts"),
                    str(tmp_path)], check=True)
    sources = {host: tmp_path / host for host in ("notebook", "desktop", "virtio", "arrays")}
    sources["classic"] = SOURCES / "tests/hosts/real-kernel"
    assert {path.name for path in installed.hosts.iterdir()} == set(sources)
    for name, source in sources.items():
        host = installed.hosts / name
        there = files_below(host)
        assert there.items() <= files_below(source).items()
        assert folders_below(host) == folders_below(source)
        assert set(files_below(source)) - set(there) <= {"tree.txt", "expected.json", "names"}
        for path, mode in there.items():
            if not mode.startswith("->"):
                assert (host / path).read_bytes() == (source / path).read_bytes()


def test_no_file_names_the_place_where_it_was_built(installed, build_dir, tmp_path):
    places = [str(place).encode() for place in (SOURCES, build_dir)]
    # What a debugger reads names sources; packages keep that apart.
    for path in (installed.prefix / path for path in without_hosts(files_below(installed.prefix))):
        content = path.read_bytes()
        if content.startswith(b"\x7fELF"):
            stripped = tmp_path / path.name
            subprocess.run(["objcopy", "--strip-debug", str(path), str(stripped)], check=True)
            content = stripped.read_bytes()
        assert [place for place in places if place in content] == [], path
