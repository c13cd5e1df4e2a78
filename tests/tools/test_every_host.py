# SPDX-License-Identifier: Apache-2.0
"""Every captured host of the tests, with everything that can be asked without a controller."""

import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

import pytest
from documents import BLOCK_KINDS, HOST_KINDS

TESTS = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(TESTS / "block"))
from unfold import hosts_in, unfold  # noqa: E402

HOSTS = [host for room in ("", "block", "tools") for host in hosts_in(TESTS / room / "hosts")]


def uname_of(host):
    """What the host says of itself, as far as it does."""
    lines = (host / "host.txt").read_text(encoding="utf-8", errors="replace").splitlines()
    words = [line.split() for line in lines if line.startswith("uname ")]
    return {field: text for _, field, text in words}


def test_the_hosts_are_found():
    assert {"real-kernel", "no-files", "desktop", "hostile", "no-sys"} <= {host.name for host in HOSTS}


@pytest.mark.parametrize("host", HOSTS, ids=lambda host: f"{host.parent.parent.name}-{host.name}")
def test_every_kind(tool, host, tmp_path):
    whole = unfold(host, tmp_path / "host") if (host / "tree.txt").exists() else host
    told = uname_of(host)
    for words in ([], [*BLOCK_KINDS, *HOST_KINDS], ["--classic"]):
        result = tool.run("list", "--json", *words, "--sysroot", whole)
        assert result.returncode in (0, 1), result.stderr
        document = json.loads(result.stdout)
        # What it does not tell is not known: the running machine is another one.
        assert document["host"] == {"name": told.get("nodename"), "kernel": told.get("release")}
        denied = [message["text"] for message in document["messages"] if message["code"] == "no_permission"]
        assert all("ermi" in text for text in denied), denied
    table = tool.run("list", "--sysroot", whole)
    assert table.returncode in (0, 1), table.stderr
    assert table.stdout
    assert all(character.isprintable() for character in table.stdout.replace("\n", ""))


def test_this_machine(tool):
    """Whatever it has: as tables, as a document, and each as often as the other."""
    result = tool.run("list", "--json")
    assert result.returncode in (0, 1)
    table = tool.run("list")
    assert (table.returncode, table.stderr) == (result.returncode, result.stderr)
    assert "\x1b" not in table.stdout


def test_devices_of_this_machine_by_their_nodes(tool):
    """Those that have one: in a bare root there may be none."""
    devices = json.loads(tool.run("list", "devices", "--json").stdout)["devices"] or []
    for device in [device for device in devices if device["node"] and os.path.exists(device["node"])][:3]:
        alone = tool.run("list", device["node"], "--json")
        assert alone.returncode == 0
        assert device["name"] in [one["name"] for one in json.loads(alone.stdout)["devices"]]


@pytest.fixture
def everybody(tool):
    """The program where an ordinary user can reach it."""
    directory = pathlib.Path(tempfile.mkdtemp())
    directory.chmod(0o755)
    yield tool.complete_copy(directory / "bin")
    shutil.rmtree(directory)


def test_ordinary_user(tool, everybody):
    """Sees every device that root sees; of what is kept from him something is said."""
    as_user = {} if os.geteuid() else {"user": 65534, "group": 65534, "extra_groups": []}
    result = tool.run("list", "--json", program=everybody, cwd="/", **as_user)
    assert result.returncode in (0, 1)
    document = json.loads(result.stdout)
    ours = json.loads(tool.run("list", "--json").stdout)
    names = [[device["name"] for device in one["devices"] or []] for one in (document, ours)]
    assert names[0] == names[1]
    poorer = [kind for kind in HOST_KINDS if len(document[kind] or []) < len(ours[kind] or [])]
    assert not poorer or document["messages"]
    for words in ([], ["devices"], ["filesystems"], ["mounts"]):
        table = tool.run("list", *words, program=everybody, cwd="/", **as_user)
        assert table.returncode in (0, 1)
        assert table.stdout


def test_machine_is_the_one_that_the_system_names(tool):
    document = json.loads(tool.run("list", "mounts", "--json").stdout)
    names = subprocess.run(["uname", "-nr"], capture_output=True, check=True, encoding="utf-8").stdout.split()
    assert list(document["host"].values()) == names
