# SPDX-License-Identifier: Apache-2.0
"""What is checked of every document can fail: each promise broken once."""

import copy
import json
import subprocess

import pytest
from documents import check_document, is_document


@pytest.fixture
def good(tool):
    """A run that failed in part, so that all of a document is in use."""
    result = tool.made("list", "--json", "devices", "containers", "--controller", "aac7")
    assert result.returncode == 1
    return result


def changed(result, **settings):
    """The same run with other outcomes; a document is written as the program would."""
    values = {"args": result.args, "returncode": result.returncode, "stdout": result.stdout, "stderr": result.stderr}
    document = settings.pop("document", None)
    if document is not None:
        settings["stdout"] = json.dumps(document, indent=2, ensure_ascii=False) + "\n"
    return subprocess.CompletedProcess(**{**values, **settings})


def drop(*path):
    def change(document):
        for word in path[:-1]:
            document = document[word]
        del document[path[-1]]

    return change


def put(value, *path):
    def change(document):
        for word in path[:-1]:
            document = document[word]
        document[path[-1]] = value

    return change


def move_to_end(key):
    def change(document):
        document[key] = document.pop(key)

    return change


@pytest.mark.parametrize(
    "change",
    [
        drop("format"),
        drop("generator"),
        drop("host"),
        drop("time"),
        drop("controller"),
        drop("messages"),
        drop("exit_status"),
        drop("devices", 0, "serial"),
        put(None, "devices", 0, "another"),
        put(1, "format"),
        put("12", "devices", 0, "size"),
        put(1, "devices", 0, "hidden"),
        put("2026-11-22 12:34:56", "time"),
        put("2001-01-01T00:00:00Z", "time"),
        put("elsewhere", "host", "name"),
        put(None, "host", "kernel"),
        put([], "messages"),
        put("another", "messages", 0, "code"),
        put("another", "messages", 0, "text"),
        put("warning", "messages", 0, "severity"),
        put(0, "exit_status"),
        put(2, "exit_status"),
        move_to_end("devices"),
        move_to_end("format"),
    ],
)
def test_broken_document(tool, good, change):
    document = json.loads(good.stdout)
    check_document(tool.program, changed(good, document=copy.deepcopy(document)))
    change(document)
    with pytest.raises(AssertionError):
        check_document(tool.program, changed(good, document=document))


@pytest.mark.parametrize(
    "spoilt",
    [
        lambda text: text + text,
        lambda text: text + "\n",
        lambda text: text[:-1],
        lambda text: "diskscout\n" + text,
        lambda text: json.dumps(json.loads(text)) + "\n",
        lambda text: text.replace('  "format": 2,\n', '  "format": 2,\n  "format": 2,\n'),
        lambda text: text.replace("}", "", 1),
        lambda text: "",
    ],
)
def test_text_that_is_no_document(tool, good, spoilt):
    with pytest.raises((AssertionError, ValueError)):
        check_document(tool.program, changed(good, stdout=spoilt(good.stdout)))


@pytest.mark.parametrize("outcome", [{"returncode": 0}, {"returncode": 2}, {"stderr": ""}, {"returncode": -11}])
def test_run_that_does_not_fit(tool, good, outcome):
    with pytest.raises(AssertionError):
        check_document(tool.program, changed(good, **outcome))


def test_which_runs_promise_one():
    for words, promised in (
        (["list", "--json"], True),
        (["--json", "list", "--format", "2"], True),
        (["--json", "--frobnicate"], True),
        (["list"], False),
        (["list", "--json", "--format", "1"], False),
        (["--format=1", "list", "--json"], False),
    ):
        assert is_document(["/somewhere/diskscout", *words]) == promised
    assert not is_document(["/somewhere/stcli", "--json"])
