# SPDX-License-Identifier: Apache-2.0
"""The example program of the RAID operations, and the session that README.md shows of it."""

import json
import re
import shlex

import pytest
from raid_site import SOURCES, RaidSite


@pytest.fixture
def site(tool, tmp_path):
    return RaidSite(tool, tmp_path / "site")


def mirror(site, *arguments, config="raid.cfg", **settings):
    program = site.tool.program.parent / "diskscout-mirror"
    return site.run(site.tool.plugin, config, *arguments, program=program, **settings)


def containers(site):
    result = site.list("containers", "--json")
    return json.loads(result.stdout)["containers"]


def test_mirror_is_made(site):
    before = containers(site)
    result = mirror(site, "aac0", "data", "512", "1:02:0", "1:0a:0")
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout == "aac0 makes a mirror of 1:02:0 and 1:0a:0\n"
    *others, made = containers(site)
    assert others == before
    assert (made["raid_id"], made["type_word"], made["label"]) == (3, "RAID 1", "data")
    assert made["total_size"] == 512 * 2**20
    assert [(m["channel"], m["id"], m["lun"]) for m in made["members"]] == [(1, 2, 0), (1, 10, 0)]


@pytest.mark.parametrize(
    "arguments, fault, said",
    [
        (["aac0", "data", "512", "0:02:0", "0:0e:0"], "", "a disk or the space on it was not found"),
        (["aac9", "data", "512", "0:02:0", "0:03:0"], "", "the controller is missing or cannot be opened"),
        (["aac0", "data", "512", "0:02:0", "0:03:0"], "busy", "another program holds the controller"),
        (["aac1", "data", "512", "0:00:0", "0:00:0"], "", "the controller tool refuses"),
        (
            ["aac0", "data", "512", "0:02:0", "0:03:0"],
            "exit=1",
            "the controller tool cannot be run; see the configuration",
        ),
    ],
)
def test_refused_mirror(site, arguments, fault, said):
    result = mirror(site, *arguments, fault=fault)
    assert (result.returncode, result.stdout) == (1, "")
    assert result.stderr == f"mirror: {said}\n"


@pytest.mark.parametrize(
    "arguments, said",
    [
        ([], "PLUGIN CONFIG CONTROLLER LABEL MEGABYTES DISK DISK are needed"),
        (["aac0", "data", "0", "0:02:0", "0:03:0"], "a size or a disk's address cannot be read"),
        (["aac0", "data", "1G", "0:02:0", "0:03:0"], "a size or a disk's address cannot be read"),
        (["aac0", "data", "", "0:02:0", "0:03:0"], "a size or a disk's address cannot be read"),
        (["aac0", "data", "512", "0:02", "0:03:0"], "a size or a disk's address cannot be read"),
        (["aac0", "data", "512", "0:02:0", "0:03:0x"], "a size or a disk's address cannot be read"),
    ],
)
def test_bad_usage(site, arguments, said):
    result = mirror(site, *arguments)
    assert (result.returncode, result.stdout) == (2, "")
    assert result.stderr == f"mirror: {said}\n"


def test_configuration_name_that_is_too_long_is_refused(site):
    result = mirror(site, "aac0", "data", "512", "0:02:0", "0:03:0", config=256 * "c")
    assert (result.returncode, result.stdout) == (2, "")
    assert result.stderr == "mirror: the plug-in or the configuration's name is unfit\n"


def test_session_of_the_readme(site):
    readme = (SOURCES / "README.md").read_text(encoding="utf-8")
    (session,) = re.findall(r"^```\n(\$ diskscout-mirror .*?)^```$", readme, re.MULTILINE | re.DOTALL)
    (site.directory / "diskscout.so").symlink_to(site.tool.plugin)
    shown = ""
    for command in re.findall(r"^\$ (.*)$", session, re.MULTILINE):
        program, *arguments = shlex.split(command)
        result = site.run(*arguments, program=site.tool.program.parent / program)
        assert (result.returncode, result.stderr) == (0, "")
        shown += f"$ {command}\n{result.stdout}"
    assert shown == session
