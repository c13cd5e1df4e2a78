# SPDX-License-Identifier: Apache-2.0
"""The machines' own texts, held against hosts that were captured in them: tests/block/hosts/NAME with its `names`.

What is on the devices is not captured: udev's database knows of it, as an ordinary user is told.  A capture may leave
devices of its machine out.
"""

import json
import os
import pathlib
import subprocess
import sys

import pytest

HERE = pathlib.Path(__file__).resolve().parent
BLOCK = HERE.parent / "block"
sys.path[1:1] = [str(BLOCK), str(HERE.parent / "tools")]

import answers  # noqa: E402
import documents  # noqa: E402
import expected  # noqa: E402
from unfold import unfold  # noqa: E402

STAGE = "udev-user"
# What the machine's text does not say, because it is so in some of its stages only.
THEN = {"mappings": {"frozen": {"state": "suspended"}}}
HOSTS = sorted(names.parent for names in (BLOCK / "hosts").glob("*/names"))


class Captured:
    """What the modules beside this one ask of a machine."""

    def __init__(self, host, build, into):
        self.scenario = HERE / "scenarios" / host.name
        self.names = dict(line.split() for line in (host / "names").read_text(encoding="utf-8").splitlines())
        self.seen = into
        self.root = unfold(host, into / "host")
        (into / STAGE).mkdir()
        environment = dict(os.environ, LD_PRELOAD=str(into / "replay.so"), ASAN_OPTIONS="verify_asan_link_order=0",
                           REPLAY_SYSROOT=str(self.root))
        # The loader splits LD_PRELOAD at blanks and colons.
        (into / "replay.so").symlink_to(build / "diskscout-replay.so")
        with open(into / STAGE / "block.out", "wb") as document:
            subprocess.run([str(build / "block-json"), str(build / "diskscout-block.so")], env=environment,
                           stdout=document, check=True, timeout=60)


class Text(expected.Expected):
    """Roles that were not captured are devices of no such name."""

    def name(self, role):
        try:
            return super().name(role)
        except KeyError:
            return f"({role})"

    def names(self, roles):
        return [self._names[role] for role in roles if role in self._names]


@pytest.fixture(scope="module", params=HOSTS, ids=lambda host: host.name)
def captured(request, pytestconfig, tmp_path_factory):
    build = pathlib.Path(pytestconfig.getoption("--build-dir")).resolve()
    return Captured(request.param, build, tmp_path_factory.mktemp(request.param.name))


def those_of(ours, names):
    return {name for name in names if name in ours}


def test_every_captured_device_has_a_text(captured):
    assert set(answers.ours(captured, STAGE)) <= set(Text(captured).devices(STAGE))


def test_every_name_was_captured(captured):
    assert set(captured.names.values()) <= set(answers.ours(captured, STAGE))


def test_devices_are_as_the_machine_made_them(captured):
    ours, text = answers.ours(captured, STAGE), Text(captured)
    then = {text.name(role): fields for role, fields in THEN.get(captured.scenario.name, {}).items()}
    for name, device in text.devices(STAGE).items():
        if name not in ours:
            continue
        for field in ("parents", "paths"):
            device[field] = those_of(ours, device[field])
        device |= then.get(name, {})
        assert {field: ours[name].get(field) for field in device} == device, name


def test_arrays_are_as_the_machine_made_them(captured):
    arrays = Text(captured).arrays()
    ours = answers.our_arrays(captured, STAGE)
    assert set(ours) <= set(arrays)
    for name, array in ours.items():
        wanted = arrays[name]
        assert array["state"] in wanted.pop("state"), name
        assert {field: array[field] for field in wanted} == wanted, name


def test_listing_tells_the_same(captured, pytestconfig):
    program = pathlib.Path(pytestconfig.getoption("--build-dir")).resolve() / "diskscout"
    # Without it nothing is known of partitions. It was not captured: the other side reads the kernel's own.
    (captured.root / "etc").mkdir()
    (captured.root / "etc" / "mtab").touch()
    command = [str(program), "list", "--json", "--sysroot", str(captured.root)]
    result = subprocess.run(command, env=dict(os.environ, ASAN_OPTIONS="verify_asan_link_order=0"),
                            capture_output=True, check=True, timeout=60, encoding="utf-8")
    documents.check_document(program, result)
    told = json.loads(result.stdout)
    ours = json.loads((captured.seen / STAGE / "block.out").read_bytes())
    for kind in ("devices", "links", "mounts"):
        assert told[kind] == ours[kind], kind
    # who may ask the device mapper was not captured
    said = Text(captured).said(STAGE, documents.HOST_KINDS)
    assert told["messages"] == [message for message, _ in said]
    assert (told["disks"], told["partitions"], told["cdroms"]) == ([], [], [])
