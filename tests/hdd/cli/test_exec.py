# SPDX-License-Identifier: Apache-2.0
"""Shell commands: the output is silenced, the result is the exit status."""

import pytest

from conftest import FAILED, HELLO, OK

SILENCED = " >/dev/null 2>&1"
# 128 bytes, less what is appended and the NUL.
LONGEST = 128 - len(SILENCED) - 1


def execute(cli, command, **settings):
    done = cli.run("exec", command, **settings)
    assert done.stderr == HELLO + (FAILED if done.status else OK)
    return done


@pytest.mark.parametrize(
    "command, status",
    (
        ("true", 0),
        ("false", 1),
        ("exit 0;", 0),
        ("exit 3;", 1),
        ("exit 255;", 1),
        ("exit 256;", 0),
        ("kill -9 $$;", 1),
        ("kill -15 $$;", 1),
        ("no-such-command-anywhere", 1),
        ("", 0),
    ),
)
def test_result(cli, command, status):
    assert execute(cli, command).status == status


def test_output_is_silenced(cli):
    assert execute(cli, "(echo out; echo error >&2)").status == 0
    assert execute(cli, "ls /no/such/directory").status == 1


def test_log(cli):
    # The launcher must be preloaded to log: a captured host does that.
    assert execute(cli, "true", host="nothing").log == ["shell true" + SILENCED]


def test_runs_in_place(cli, tmp_path):
    assert execute(cli, "touch made", cwd=tmp_path).status == 0
    assert (tmp_path / "made").exists()


@pytest.mark.parametrize(
    "length, runs", ((LONGEST, True), (LONGEST + 1, False), (127, False), (128, False), (5000, False))
)
def test_longest(cli, tmp_path, length, runs):
    command = "touch made;: " + "x" * (length - 13)
    assert len(command) == length
    done = execute(cli, command, cwd=tmp_path, host="nothing")
    assert done.status == (0 if runs else 1)
    assert (tmp_path / "made").exists() == runs
    assert done.log == (["shell " + command + SILENCED] if runs else [])


def test_reads_no_input(cli):
    # What the command reads is the caller's input; without any it ends.
    assert execute(cli, "cat").status == 0
