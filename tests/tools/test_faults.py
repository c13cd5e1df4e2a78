# SPDX-License-Identifier: Apache-2.0
"""Whatever fails below, there is one document, and it says so: every fault of the controller tool, failing calls."""

import json
import pathlib

import pytest
from conftest import CLASSIC
from documents import CLASSIC_KINDS, CONTROLLER_KINDS, HOST_KINDS, KINDS, errors_of
from raid_site import RaidSite

HOSTS = pathlib.Path(__file__).resolve().parents[1] / "hosts"
RAID_KINDS = ["controllers", *CONTROLLER_KINDS]
HARMLESS = ["", "terminal", "status", "pager=3", "slow=1"]
FAULTS = ["busy", "missing", "exit=3", "kill", "cut=0", "cut=100", "cut=700", "flood", "blank", "noblank"]


@pytest.fixture
def site(tool, tmp_path):
    return RaidSite(tool, tmp_path / "site")


def document_of(site, fault):
    result = site.run("list", "--json", *RAID_KINDS, "--config", "raid.cfg", fault=fault)
    assert result.returncode in (0, 1)
    return json.loads(result.stdout)


@pytest.mark.parametrize("fault", HARMLESS)
def test_controller_tool(site, fault):
    document = document_of(site, fault)
    assert document["messages"] == []
    assert document["controller"] == "aac0"
    assert [len(document[kind]) > 0 for kind in RAID_KINDS] == 5 * [True]


@pytest.mark.parametrize("fault", FAULTS)
def test_controller_tool_that_fails(site, fault):
    document = document_of(site, fault)
    assert [key for key in document if key in KINDS] == RAID_KINDS
    # What could not be asked is no empty list.
    failed = {message["kind"] for message in errors_of(document)}
    assert all(document[kind] is not None or kind in failed for kind in RAID_KINDS)


def test_same_things_as_in_the_first_format(site):
    old = json.loads(site.list("--json", *(kind.replace("_", "-") for kind in RAID_KINDS)).stdout)
    new = document_of(site, "")
    assert new["controllers"] == old["controllers"]
    first = {kind: [record for record in new[kind] if record["controller"] == "aac0"] for kind in RAID_KINDS[1:]}
    for kind in RAID_KINDS[1:]:
        assert len(first[kind]) == len(old[kind.replace("_", "-")])
    assert first["raid_partitions"] == [{"controller": "aac0", **piece} for piece in old["raid-partitions"]]


def numbers():
    number = 1
    while number < 4000:
        yield number
        number += 1 + number // 6


@pytest.mark.parametrize("form", ["{}", "{}+"])
def test_failing_calls(tool, form):
    """Of the plug-ins, and of the program itself."""
    for number in numbers():
        env = {"REPLAY_FAIL": form.format(number)}
        result = tool.run("list", "--json", "--sysroot", HOSTS / "real-kernel", env=env)
        assert result.returncode in (0, 1, 2), number
        document = json.loads(result.stdout)
        for kind in HOST_KINDS:
            failed = [message for message in errors_of(document) if message["kind"] == kind]
            assert document.get(kind, []) is not None or failed, number


def test_list_that_is_cut(tool):
    """Sixteen are all that it holds; seventeen are a list that ends too early, and that is no success."""
    whole = tool.run("list", "--json", "--sysroot", HOSTS / "sixteen-disks")
    assert whole.returncode == 0
    assert len(json.loads(whole.stdout)["disks"]) == 16
    cut = tool.run("list", "disks", "--json", "--sysroot", HOSTS / "scsi-seventeen")
    assert cut.returncode == 1
    document = json.loads(cut.stdout)
    assert len(document["disks"]) == 16
    told = [(message["kind"], message["code"]) for message in errors_of(document)]
    assert told == [("disks", "list_cut"), (None, "problem_found")]
    table = tool.run("list", "disks", "--sysroot", HOSTS / "scsi-seventeen")
    assert table.returncode == 1
    assert any("ends at 16" in line for line in table.stdout.splitlines())
    # The first format never knew.
    old = tool.run("list", *CLASSIC, "disks", "--sysroot", HOSTS / "scsi-seventeen")
    assert (old.returncode, old.stderr) == (0, "")


def test_partition_query_names_its_cause(tool):
    result = tool.run("list", "partitions", "--json", "--sysroot", HOSTS / "short-disk")
    errors = errors_of(json.loads(result.stdout))
    assert [error["code"] for error in errors] == ["query_failed", "problem_found"]
    assert all("sector 100 of /dev/hdb" in error["text"] for error in errors)
    old = tool.run("list", *CLASSIC, "partitions", "--sysroot", HOSTS / "short-disk")
    assert old.stderr == "diskscout: the partition query failed; what it found so far is shown\n"


def test_host_without_sysfs(tool):
    """Asked by name today's devices are a failure; without a name the classic ones are the answer, and it is noted."""
    asked = tool.run("list", "devices", "--json", "--sysroot", HOSTS / "real-kernel")
    assert asked.returncode == 1
    assert json.loads(asked.stdout)["devices"] is None
    usual = json.loads(tool.run("list", "--json", "--sysroot", HOSTS / "real-kernel").stdout)
    assert (usual["devices"], usual["exit_status"]) == (None, 0)
    assert "no_sysfs" in [message["code"] for message in usual["messages"]]
    assert len(usual["disks"]) == 5


def test_classic_documents_have_no_reasons(tool):
    for host in ("scsi-seventeen", "missing-node", "no-scsi-table", "chain-beyond-end"):
        result = tool.run("list", "--classic", "--json", "--sysroot", HOSTS / host)
        messages = json.loads(result.stdout)["messages"]
        assert {message["severity"] for message in messages} <= {"error"}
        assert all(message["code"] == "query_failed" for message in messages)
        assert [key for key in json.loads(result.stdout) if key in CLASSIC_KINDS] == HOST_KINDS
