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


@pytest.fixture(scope="module")
def unfolded(tmp_path_factory):
    into = tmp_path_factory.mktemp("hosts")
    return {host.name: unfold(host, into / host.name) for host in HOSTS}


@pytest.fixture(params=HOSTS, ids=lambda directory: directory.name)
def host(request):
    return request.param


def ask(build, directory, query, **environment):
    build = pathlib.Path(build).resolve()
    ours = {name: value for name, value in os.environ.items() if not name.startswith("REPLAY_")}
    ours.update(LD_PRELOAD=str(build / "diskscout-replay.so"), REPLAY_SYSROOT=str(directory), LC_ALL="C", **environment)
    return subprocess.run([str(build / "block-json"), str(build / "diskscout-block.so"), query],
                          env=ours, capture_output=True, timeout=60, check=False)


def test_the_hosts_are_found():
    assert "ata-disks" in [host.name for host in HOSTS]


@pytest.mark.parametrize("query", QUERIES)
def test_answer(host, unfolded, request, tmp_path, query):
    expected = host / "expected.json"
    answers = json.loads(expected.read_text(encoding="utf-8")) if expected.exists() else {}
    if query not in answers:
        return
    log = tmp_path / "log"
    done = ask(request.config.getoption("--build-dir"), unfolded[host.name], query, REPLAY_LOG=str(log))
    told = json.loads(done.stdout.decode("utf-8"))[query]
    assert as_text(present(told)) == as_text(wanted(answers, query))
    assert done.returncode == (1 if answers[query] is None else 0)
    if answers[query] is None:
        assert answers["error"] in done.stderr.decode()
    else:
        assert done.stderr == b""
    # Nothing was written, made or started.
    assert not log.exists() or log.read_text(encoding="utf-8") == ""
