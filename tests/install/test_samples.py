# SPDX-License-Identifier: Apache-2.0
"""The samples, built outside of any tree against what is installed, as an agent's developer begins."""

import re
import shutil
import sys

import pytest
from conftest import SOURCES, install


@pytest.fixture(scope="module")
def samples(installed, tmp_path_factory):
    """A copy of what is installed: there one may write."""
    folder = tmp_path_factory.mktemp("samples") / "examples"
    shutil.copytree(installed.prefix / "share/doc/diskscout/examples", folder)
    return folder


@pytest.fixture(scope="module")
def by_make(installed, samples):
    installed.output("make", "-C", samples, "-j2", "CFLAGS=-Werror", "CXXFLAGS=-Werror",
                     PKG_CONFIG_PATH=f"{installed.prefix}/lib/pkgconfig")
    return samples


@pytest.fixture(scope="module")
def by_cmake(installed, samples, tmp_path_factory):
    built = tmp_path_factory.mktemp("cmake")
    installed.output("cmake", "-S", samples, "-B", built, f"-DCMAKE_PREFIX_PATH={installed.prefix}")
    installed.output("cmake", "--build", built, "-j2")
    return built


@pytest.fixture(params=["by_make", "by_cmake"])
def programs(request):
    return request.getfixturevalue(request.param)


def shown_in(page, language=""):
    blocks = re.findall(r"^```(\w*)\n(.*?)^```$", (SOURCES / page).read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)
    return [text for name, text in blocks if name == language]


def test_pkg_config_tells_flags_version_and_the_plugins_place(installed):
    def asked(*words):
        return installed.output("pkg-config", *words, "diskscout",
                                PKG_CONFIG_PATH=f"{installed.prefix}/lib/pkgconfig").strip()

    assert asked("--cflags") == f"-I{installed.prefix}/include/diskscout"
    assert asked("--libs") == ""
    assert asked("--modversion") == "1.0.0"
    assert asked("--variable=plugindir") == str(installed.plugins)


def test_a_prefix_with_a_blank(build_dir, tmp_path, installed):
    prefix = tmp_path / "a prefix"
    install(build_dir, "--prefix", str(prefix), "--component", "development")
    shutil.copytree(prefix / "share/doc/diskscout/examples", tmp_path / "samples")
    installed.output("make", "-C", tmp_path / "samples", "disks", "lists", PKG_CONFIG_PATH=f"{prefix}/lib/pkgconfig")
    assert (tmp_path / "samples/lists").exists()


def test_without_the_headers_make_says_where_to_look(installed, samples, tmp_path):
    shutil.copytree(samples, tmp_path / "samples", ignore=shutil.ignore_patterns("disks"))
    told = installed.run("make", "-C", tmp_path / "samples", "disks", PKG_CONFIG_PATH="", PKG_CONFIG_LIBDIR=str(tmp_path))
    assert told.returncode != 0
    assert "PKG_CONFIG_PATH" in told.stderr


def test_a_library_that_is_another_one_is_told(installed, by_make):
    for sample, arguments in (("classic", []), ("disks", []), ("tasks", ["raid.cfg", "aac0"])):
        told = installed.run(by_make / sample, installed.plugins / "diskscout-replay.so", *arguments)
        assert (told.returncode, told.stdout) == (1, "")
        assert "undefined symbol" in told.stderr


def test_find_package_tells_the_plugins_and_refuses_another_major_version(installed, tmp_path):
    project = ("cmake_minimum_required(VERSION 3.16)\nproject(asks NONE)\nfind_package(diskscout {} REQUIRED)\n"
               'message("${{diskscout_VERSION}} ${{diskscout_PLUGIN}} ${{diskscout_BLOCK_PLUGIN}}")\n')

    def asked(version):
        (tmp_path / "CMakeLists.txt").write_text(project.format(version))
        return installed.run("cmake", "-S", tmp_path, "-B", tmp_path / f"build{version}",
                             f"-DCMAKE_PREFIX_PATH={installed.prefix}")

    found = asked("1.0")
    assert found.returncode == 0
    assert found.stderr == f"1.0.0 {installed.plugins}/diskscout.so {installed.plugins}/diskscout-block.so\n"
    assert asked("2.0").returncode != 0
    assert asked("0.1").returncode != 0


def test_the_classic_sample(installed, programs):
    shown = installed.output(programs / "classic", installed.plugins / "diskscout.so", host="classic")
    assert shown in shown_in("docs/classic.md")


def test_the_block_sample(installed, programs):
    shown = installed.output(programs / "disks", installed.plugins / "diskscout-block.so", host="desktop")
    (session,) = shown_in("docs/block.md", "console")
    assert session.endswith(f'diskscout-block.so"\n{shown}')


def test_the_owning_lists(installed, programs):
    shown = installed.output(programs / "lists", host="notebook")
    assert "disk nvme0n1: 512110190592 bytes, model ACME SSD 512\n" in shown
    assert "nvme0n1p1 at /boot/efi\n" in shown
    assert shown.endswith("0 and 0 records are not given back\n")


def test_owning_lists_give_back_what_a_failed_query_made(installed, programs):
    """The classic host has no /sys: the second side fails when the first one's lists are gone."""
    shown = installed.run(programs / "lists", host="classic")
    assert shown.returncode == 1
    assert "classic disk /dev/hda: 263208960 bytes\n" in shown.stdout
    assert shown.stderr == "lists: query 222100: No such file or directory\n"


def test_the_raid_samples(installed, programs, tmp_path):
    (tmp_path / "raid.cfg").write_text(f"Cli Path:{installed.prefix}/bin\nCli Name:raidsim\n"
                                       f"Filter Script:{installed.prefix}/libexec/diskscout/diskscout-filter\n")
    site = {"cwd": tmp_path, "RAIDSIM_STATE": str(tmp_path / "controllers.txt")}
    plugin = installed.plugins / "diskscout.so"
    assert installed.output(programs / "tasks", plugin, "raid.cfg", "aac0", **site) == "container 25: 45 % done\n"
    shown = installed.output(programs / "mirror", plugin, "raid.cfg", "aac0", "data", "512", "0:02:0", "0:03:0", **site)
    assert shown == "aac0 makes a mirror of 0:02:0 and 0:03:0\n"


@pytest.mark.parametrize("sample, page", [("classic.c", "docs/classic.md"), ("tasks.c", "docs/raid.md")])
def test_a_page_shows_the_sample(sample, page):
    text = (SOURCES / "samples" / sample).read_text(encoding="utf-8")
    assert text[text.index("#include"):] in shown_in(page, "c")


@pytest.mark.parametrize("host, status, shown", [
    # A kernel without /sys: today's side cannot be asked there.
    ("classic", 1, "disk /dev/hda: STORAGEVM IDE DISK 256, 263208960 bytes, system disk\n"),
    ("notebook", 0, "device nvme0n1: disk, 512110190592 bytes"),
])
def test_the_python_sample_finds_package_and_plugins(installed, samples, host, status, shown):
    ran = installed.run(sys.executable, samples / "agent.py", host=host,
                        PYTHONPATH=f"{installed.prefix}/lib/python3/dist-packages")
    assert shown in ran.stdout
    assert ran.returncode == status
    assert (ran.stderr != "") == (status == 1)
