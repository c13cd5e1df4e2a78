# SPDX-License-Identifier: Apache-2.0
"""Which files are loaded, and what is said when there are none."""

import os
import pathlib
import shutil
import sysconfig

import pytest

import diskscout

PROGRAM = """\
import sys
import diskscout
print(diskscout.Plugin().path)
print(diskscout.BlockPlugin().path)
"""
TRIPLET = sysconfig.get_config_var("MULTIARCH")
PLUGINS = ("diskscout.so", "diskscout-block.so")


@pytest.fixture
def prefix(tmp_path, source_dir):
    """Something that the package was copied into, as it is installed."""
    place = tmp_path / "prefix with blank"
    shutil.copytree(source_dir / "python/diskscout", place / "lib/python3/dist-packages/diskscout",
                    ignore=shutil.ignore_patterns("__pycache__"))
    return place


def put_plugins(build_dir, directory):
    directory.mkdir(parents=True)
    for name in PLUGINS:
        (directory / name).symlink_to(build_dir / name)
    return [str(directory / name) for name in PLUGINS]


def found(interpreter, prefix):
    return interpreter("-c", PROGRAM, PYTHONPATH=str(prefix / "lib/python3/dist-packages"))


@pytest.mark.parametrize("libraries", [f"lib/{TRIPLET}", "lib", "lib64"])
def test_installed_plugins_are_found_from_where_the_package_is(interpreter, prefix, build_dir, libraries):
    files = put_plugins(build_dir, prefix / libraries / "diskscout")
    done = found(interpreter, prefix)
    assert (done.stdout.splitlines(), done.stderr, done.returncode) == (files, "", 0)


def test_those_of_the_interpreters_architecture_come_first(interpreter, prefix, build_dir):
    assert TRIPLET
    put_plugins(build_dir, prefix / "lib64/diskscout")
    put_plugins(build_dir, prefix / "lib/diskscout")
    files = put_plugins(build_dir, prefix / "lib" / TRIPLET / "diskscout")
    assert found(interpreter, prefix).stdout.splitlines() == files


def test_a_link_to_the_package_finds_them_too(interpreter, prefix, build_dir, tmp_path):
    files = put_plugins(build_dir, prefix / "lib/diskscout")
    (tmp_path / "lib/site").mkdir(parents=True)
    (tmp_path / "lib/site/diskscout").symlink_to(prefix / "lib/python3/dist-packages/diskscout")
    done = interpreter("-c", PROGRAM, PYTHONPATH=str(tmp_path / "lib/site"))
    assert done.stdout.splitlines() == files


def test_no_other_place_is_looked_at(interpreter, prefix, build_dir, tmp_path):
    """Neither the working directory nor what the environment says."""
    put_plugins(build_dir, tmp_path / "diskscout")
    put_plugins(build_dir, tmp_path / "lib/diskscout")
    done = interpreter("-c", PROGRAM, PYTHONPATH=str(prefix / "lib/python3/dist-packages"),
                       LD_LIBRARY_PATH=str(tmp_path / "diskscout"))
    assert done.returncode == 1
    places = [prefix / directory / "diskscout/diskscout.so" for directory in (f"lib/{TRIPLET}", "lib", "lib64")]
    assert done.stderr.splitlines()[-1] == (
        f"diskscout.errors.LibraryError: diskscout.so is not there: {', '.join(map(str, places))}")


def test_a_tree_of_sources_has_no_installed_plugins(tmp_path, interpreter, source_dir):
    place = tmp_path / "tree"
    shutil.copytree(source_dir / "python/diskscout", place / "diskscout")
    done = interpreter("-c", PROGRAM, PYTHONPATH=str(place))
    if "lib" in place.parts or "lib64" in place.parts:
        pytest.fail("the tests' own directory lies below a directory of libraries")
    assert done.stderr.splitlines()[-1] == ("diskscout.errors.LibraryError: diskscout.so: this package is not "
                                            "installed: say in which directory the plug-ins are")


def test_a_path_or_a_directory_is_taken_as_it_is(build_dir, monkeypatch):
    assert diskscout.Plugin(directory=build_dir).path == str(build_dir / "diskscout.so")
    assert diskscout.Plugin(str(build_dir / "diskscout.so")).path == str(build_dir / "diskscout.so")
    # A relative one is a file and never a name that the loader looks for.
    monkeypatch.chdir(build_dir)
    assert diskscout.Plugin("diskscout.so").path == str(build_dir / "diskscout.so")
    assert diskscout.BlockPlugin(directory="").path == str(build_dir / "diskscout-block.so")
    with pytest.raises(ValueError, match="not both"):
        diskscout.Plugin("diskscout.so", directory=build_dir)


def test_a_plugin_that_is_not_there(tmp_path):
    for side, name in ((diskscout.Plugin, "diskscout.so"), (diskscout.Raid, "diskscout.so"),
                       (diskscout.BlockPlugin, "diskscout-block.so")):
        with pytest.raises(diskscout.LibraryError) as failure:
            side(directory=tmp_path)
        assert str(failure.value) == f"{name} is not there: {tmp_path / name}"


def test_a_file_that_is_no_library(tmp_path):
    (tmp_path / "diskscout.so").write_text("no library")
    with pytest.raises(diskscout.LibraryError, match="diskscout.so cannot be loaded: .*(too short|invalid ELF header)"):
        diskscout.Plugin(directory=tmp_path)


def test_the_other_plugin_is_refused(build_dir):
    """Both have functions of the same names: the codes of one would be errors of the other."""
    with pytest.raises(diskscout.LibraryError, match="another library, or too old: it lacks stcli, memory_counter_hdd"):
        diskscout.Plugin(build_dir / "diskscout-block.so")
    with pytest.raises(diskscout.LibraryError, match="it lacks memory_counter_block"):
        diskscout.BlockPlugin(build_dir / "diskscout.so")


def test_both_plugins_in_one_process_keep_to_themselves(classic, block, show, build_dir):
    show(build_dir / "tests/block/hosts/notebook")
    before = classic.live_records, block.live_records
    with classic.disks() as disks, block.devices() as devices:
        assert (len(disks), len(devices)) == (0, 9)
        assert (classic.live_records, block.live_records) == (before[0], before[1] + 9)


def test_the_package_is_files_that_need_no_building(source_dir):
    package = source_dir / "python/diskscout"
    files = {path.name for path in package.iterdir() if path.name != "__pycache__"}
    assert {pathlib.Path(name).suffix for name in files} == {".py", ".typed"}
    assert "py.typed" in files
    assert os.path.getsize(package / "py.typed") == 0
