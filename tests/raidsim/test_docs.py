# SPDX-License-Identifier: Apache-2.0
"""The session that the documentation shows is a real one."""

import pathlib

DOCUMENT = pathlib.Path(__file__).resolve().parents[2] / "docs" / "raidsim.md"


def test_session_by_hand(tool):
    block = DOCUMENT.read_text().partition("```console\n")[2].partition("```")[0]
    typed, _, shown = block.partition("<<'END'\n")[2].partition("> END\n")
    script = "".join(line.removeprefix("> ") + "\n" for line in typed.splitlines())
    assert "container create" in script
    tool.state.unlink()
    assert tool.start(script).stdout.decode() == shown
