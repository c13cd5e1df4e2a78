# SPDX-License-Identifier: Apache-2.0
"""What diskscout-block.so tells of each captured host: hosts/NAME/expected.json, see hosts/README.md."""

import json
import os
import pathlib
import subprocess

import pytest
from unfold import hosts_in, unfold

HERE = pathlib.Path(__file__).resolve().parent
HOSTS = hosts_in(HERE / "hosts")
QUERIES = ("devices", "links", "contents", "mounts", "arrays")
RELATION = ("upper", "lower", "relation", "address", "state", "access")


def present(record):
    """Without what is absent; lists within it alike."""
    if isinstance(record, dict):
        return {key: present(value) for key, value in record.items() if value is not None and value != []}
    if isinstance(record, list):
        return [present(one) for one in record]
    return record


def wanted_device(defaults, device):
    return present({"node": "/dev/" + device["name"], **defaults, **device})


def wanted(expected, query):
    records = expected[query]
    if records is None:
        return None
    if query == "devices":
        return [wanted_device(expected.get("defaults", {}), device) for device in records]
    if query == "links":
        return [present(dict(zip(RELATION, link))) for link in records]
    return present(records)


def as_text(records):
    # As text, because to Python true equals 1.
    if records is None:
        return "failed"
    return "\n".join(json.dumps(record, sort_keys=True) for record in records)


def answers_of(host):
    expected = host / "expected.json"
    return json.loads(expected.read_text(encoding="utf-8")) if expected.exists() else {}


EXPECTED = [(host, query) for host in HOSTS for query in QUERIES if query in answers_of(host)]
OTHERS = [(host, query) for host in HOSTS for query in QUERIES if query not in answers_of(host)]


def name_of(case):
    return case.name if isinstance(case, pathlib.Path) else case


@pytest.fixture(scope="module")
def unfolded(tmp_path_factory):
    into = tmp_path_factory.mktemp("hosts")
    return {host.name: unfold(host, into / host.name) for host in HOSTS}


@pytest.fixture
def ask(unfolded, request, tmp_path):
    """What block-json says of a host; nothing may be written, made or started for it."""
    build = pathlib.Path(request.config.getoption("--build-dir")).resolve()
    log = tmp_path / "log"
    environment = {name: value for name, value in os.environ.items() if not name.startswith("REPLAY_")}
    environment.update(LD_PRELOAD=str(build / "diskscout-replay.so"), REPLAY_LOG=str(log), LC_ALL="C",
                       ASAN_OPTIONS="verify_asan_link_order=0")

    def run(host, query):
        done = subprocess.run([str(build / "block-json"), str(build / "diskscout-block.so"), query],
                              env={**environment, "REPLAY_SYSROOT": str(unfolded[host.name])},
                              capture_output=True, timeout=60, check=False)
        assert not log.exists() or log.read_text(encoding="utf-8") == ""
        return json.loads(done.stdout.decode("utf-8"))[query], done.returncode, done.stderr.decode("utf-8")

    return run


def test_the_hosts_are_found():
    assert {"ata-disks", "desktop"} <= {host.name for host in HOSTS}


@pytest.mark.parametrize("host, query", EXPECTED, ids=name_of)
def test_answer(ask, host, query):
    answers = answers_of(host)
    told, status, complaint = ask(host, query)
    assert as_text(present(told)) == as_text(wanted(answers, query))
    if answers[query] is None:
        assert status == 1
        assert answers["error"] in complaint
    else:
        assert (status, complaint) == (0, "")


@pytest.mark.parametrize("host, query", OTHERS, ids=name_of)
def test_what_is_not_expected_ends_all_the_same(ask, host, query):
    """An answer, or a failure and its reason."""
    told, status, complaint = ask(host, query)
    assert (told is None) == (status == 1) == (complaint != "")
