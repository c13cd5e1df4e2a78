# SPDX-License-Identifier: Apache-2.0
"""The command line, the exit status and the streams."""

import pytest
from conftest import CLASSIC, complaint

OF_CONTROLLER = "containers, raid-disks, raid-space, raid-partitions"
ALL_KINDS = f"disks, partitions, cdroms, controllers, {OF_CONTROLLER}"
KNOWN = f"known are {ALL_KINDS}"


@pytest.mark.parametrize(
    "arguments, named",
    [
        ([], "subcommand is required"),
        (["frobnicate"], "subcommand is required"),
        (["--json"], "subcommand is required"),
        (["list", "tapes"], f'unknown kind "tapes", {KNOWN}'),
        (["list", "disks", "tapes"], f'unknown kind "tapes", {KNOWN}'),
        (["list", "Disks"], f'unknown kind "Disks", {KNOWN}'),
        (["list", ""], f'unknown kind "", {KNOWN}'),
        (["list", "a\nb\x1b"], f'unknown kind "a?b?", {KNOWN}'),
        (["list", "--frobnicate"], "--frobnicate"),
        (["--frobnicate", "list"], "--frobnicate"),
        (["list", "--plugin"], "--plugin"),
        (["list", "--sysroot"], "--sysroot"),
        (["list", "--plugin", ""], "--plugin"),
        (["list", "--plugin="], "--plugin"),
        (["list", "--sysroot", ""], "--sysroot"),
        (["list", "--json=maybe"], "--json"),
        (["schema", "3"], "3"),
        (["list", "raid"], f'unknown kind "raid", {KNOWN}'),
        (["list", "containers", "--controller"], "--controller"),
        (["list", "containers", "--controller", ""], "--controller"),
        (["list", "--controller", "aac0"], f"--controller is for {OF_CONTROLLER}"),
        (["list", "controllers", "--controller", "aac0"], f"--controller is for {OF_CONTROLLER}"),
        (["list", "containers", "--config"], "--config"),
        (["list", "containers", "--config="], "--config"),
        (["list", "--config", "raid.cfg"], f"--config is for controllers, {OF_CONTROLLER}"),
        (["list", "disks", "--config", "raid.cfg"], f"--config is for controllers, {OF_CONTROLLER}"),
    ],
)
def test_bad_usage_is_one_line_and_status_2(tool, arguments, named):
    result = tool.run(*CLASSIC, *arguments)
    assert named in complaint(result, 2)
    assert result.stdout == ""


def test_version(tool):
    result = tool.run("--version")
    assert (result.returncode, result.stderr) == (0, "")
    name, version = result.stdout.split()
    assert name == "diskscout"
    assert all(part.isdigit() for part in version.split("."))
    assert len(version.split(".")) == 3


def test_help_of_list_says_where_its_options_are(tool):
    """They are the program's, and stand before or behind the word."""
    assert "options of diskscout --help" in tool.run("list", "--help").stdout


@pytest.mark.parametrize("arguments", [["--help"], ["list", "--help"]])
def test_help_tells_the_kinds_or_the_options(tool, arguments):
    result = tool.run(*arguments)
    assert (result.returncode, result.stderr) == (0, "")
    options = ["--json", "--plugin", "--sysroot", "--controller", "--config", "list"]
    wanted = ALL_KINDS.replace("-", "_").split(", ") if "list" in arguments else options
    for word in wanted:
        assert word in result.stdout
    assert "--replayed" not in result.stdout


def test_options_stand_before_or_after_the_subcommand(tool):
    behind = tool.fake("plain", "list", *CLASSIC, "disks", "--json")
    before = tool.fake("plain", "--json", *CLASSIC, "list", "disks")
    between = tool.fake("plain", "list", "--json", *CLASSIC, "disks")
    assert behind.returncode == 0
    assert behind.stdout.startswith("{")
    assert before.stdout == between.stdout == behind.stdout


@pytest.mark.parametrize("arguments", [["list"], ["list", "--json"]])
def test_full_output_is_status_1(tool, arguments):
    with open("/dev/full", "w", encoding="utf-8") as full:
        result = tool.fake("plain", *arguments, *CLASSIC, stdout=full)
    assert complaint(result, 1) == "the output cannot be written: No space left on device"


@pytest.mark.parametrize("argument", ["--help", "--version"])
def test_answers_that_cannot_be_written_are_status_1(tool, argument):
    with open("/dev/full", "w", encoding="utf-8") as full:
        result = tool.run(argument, stdout=full)
    assert complaint(result, 1) == "the output cannot be written: No space left on device"


def closed(tool, redirections, *arguments):
    """A run by a shell that closes descriptors first."""
    script = f'exec "$0" "$@" {redirections}'
    return tool.fake("plain", "-c", script, tool.program, *arguments, program="/bin/sh")


def test_closed_output_is_status_1(tool):
    assert complaint(closed(tool, ">&-", "list", *CLASSIC), 1) == "the output cannot be written: Bad file descriptor"


def test_plugin_never_gets_the_number_of_a_standard_stream(tool):
    result = closed(tool, "<&- >&- 2>&-", "list", *CLASSIC)
    assert result.returncode == 1
    assert int(tool.report["lowest_descriptor"]) > 2
