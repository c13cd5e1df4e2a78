# SPDX-License-Identifier: Apache-2.0
"""What every document of the program holds, whatever was asked for and however it went."""

import datetime
import functools
import json
import os
import pathlib
import re
import subprocess

import jsonschema

BLOCK_KINDS = ["devices", "links", "filesystems", "arrays", "mounts"]
HOST_KINDS = ["disks", "partitions", "cdroms"]
CONTROLLER_KINDS = ["containers", "raid_disks", "raid_space", "raid_partitions"]
# Told by the plug-in's RAID operations alone.
OPERATION_KINDS = ["tasks", "defects"]
CLASSIC_KINDS = [*HOST_KINDS, "controllers", *CONTROLLER_KINDS]
KINDS = [*BLOCK_KINDS, *CLASSIC_KINDS, *OPERATION_KINDS]
HEAD = ["format", "generator", "host", "time"]
TAIL = ["messages", "exit_status"]
OUTPUT_FAILED = "diskscout: the output cannot be written: "
# Of a long list the first records and the last one are validated: it takes longer than the run.
ENOUGH = 200


@functools.lru_cache
def schema_of(program):
    """As the program prints it, which is the only place where it can be had."""
    done = subprocess.run([str(program), "schema"], capture_output=True, timeout=60, check=False, encoding="utf-8")
    assert (done.returncode, done.stderr) == (0, "")
    return json.loads(done.stdout)


@functools.lru_cache
def validator_of(program):
    return jsonschema.Draft202012Validator(schema_of(program))


def is_document(command):
    """Whether this command line promises one."""
    words = " ".join(command[1:])
    is_ours = pathlib.Path(command[0]).name == "diskscout"
    return is_ours and "--json" in command and not re.search(r"--format[ =]1\b", words)


def without_twins(pairs):
    names = [name for name, _ in pairs]
    assert len(names) == len(set(names)), f"a key stands twice: {names}"
    return dict(pairs)


def parsed(text):
    """The one document that the text is, laid out as promised."""
    document = json.loads(text, object_pairs_hook=without_twins)
    assert text == json.dumps(document, indent=2, ensure_ascii=False) + "\n"
    return document


def shortened(document):
    """With the beginnings of long lists and their last records."""
    return {
        key: value[:ENOUGH] + value[-1:] if isinstance(value, list) and len(value) > ENOUGH else value
        for key, value in document.items()
    }


def errors_of(document):
    return [message for message in document["messages"] if message["severity"] == "error"]


def shown(text):
    """As a terminal is told it."""
    return "".join(character if character.isprintable() and character != "\ufffd" else "?" for character in text)


def check_envelope(document):
    keys = list(document)
    kinds = [key for key in keys if key in KINDS]
    controller = ["controller"] if "controller" in keys else []
    whole = [key for key in ("tree", "checks") if key in keys]
    assert keys == [*HEAD, *controller, *sorted(kinds, key=KINDS.index), *whole, *TAIL]
    assert len(whole) + bool(kinds) <= 1
    assert not {*CONTROLLER_KINDS, *OPERATION_KINDS} & set(kinds) or controller
    assert document["format"] == 2
    assert list(document["generator"]) == ["name", "version"]
    assert list(document["host"]) == ["name", "kernel"]
    for message in document["messages"]:
        assert list(message) == ["severity", "kind", "code", "text"]
        assert message["code"] != "output_failed"


def check_time(text):
    assert re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", text)
    told = datetime.datetime.strptime(text, "%Y-%m-%dT%H:%M:%S%z")
    assert abs((datetime.datetime.now(datetime.timezone.utc) - told).total_seconds()) < 120


def check_host(host, command):
    if not any(word.startswith("--sysroot") for word in command):
        assert host == {"name": os.uname().nodename, "kernel": os.uname().release}


def check_errors(document, result):
    texts = [shown(message["text"]) for message in errors_of(document)]
    assert bool(texts) == (document["exit_status"] in (1, 2))
    said = [line for line in (result.stderr or "").splitlines() if line.startswith("diskscout: ")]
    if said and said[-1].startswith(OUTPUT_FAILED):
        # What befell the document's own last byte cannot stand in it.
        assert result.returncode == 1
        said.pop()
    else:
        assert result.returncode == document["exit_status"]
    if result.stderr is not None:
        assert said == [f"diskscout: {text}" for text in texts]


def check_document(program, result):
    document = parsed(result.stdout)
    first = next(validator_of(program).iter_errors(shortened(document)), None)
    assert first is None, f"{list(first.absolute_path)}: {first.message}"
    check_envelope(document)
    check_time(document["time"])
    check_host(document["host"], result.args)
    check_errors(document, result)
