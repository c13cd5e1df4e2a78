# SPDX-License-Identifier: Apache-2.0
"""What stands before the first prompt: which controllers the console drives, and that nobody mistakes them."""

import pytest
from screens import BYE, HELLO, MAIN

# Deletes container 0 although it holds data.
DELETE = "3\n2\n1\n0\n0\n0\n"


def test_it_tells_what_it_drives(site):
    said = f"stcli: the console drives {site.simulator}, named by the configuration {site.config}\n"
    assert site.launch(site.command(), "0\n") == (0, "", said + HELLO + MAIN + BYE)


def test_what_it_tells_is_what_it_runs(site):
    """The name has a path in front, twice written, and words behind it that count for nothing."""
    site.record()
    site.config.write_text(
        f"Cli Path:/nowhere\nCli Path:{site.programs}/ \nCli Name: /recorder and more\nFilter Script:/bin/cp\n"
    )
    _, _, transcript = site.launch(site.command(), "2\n1\n0\n0\n")
    assert transcript.startswith(f"stcli: the console drives {site.programs}/recorder, named by ")
    assert site.commands() == ["disk list /full=true"]


@pytest.mark.parametrize("words", [["--config={other}"], ["--config", "{other}"], ["aac1"], [""]])
def test_option_behind_the_word(make_site, words):
    """It is read by nobody, and so the containers behind the other configuration would be deleted."""
    site, other = make_site("one"), make_site("other")
    behind = [word.format(other=other.config) for word in words]
    status, output, transcript = site.launch(site.command(*behind), DELETE)
    assert (status, output) == (2, "")
    assert transcript == f'stcli: hwraid takes no words, "{behind[0]}" stands behind it (options stand before it)\n'
    assert site.changes() == other.changes() == []


def test_option_before_the_word(make_site):
    """The same keys, where they belong."""
    site, other = make_site("one"), make_site("other")
    site.run(DELETE)
    assert site.changes() != []
    assert other.changes() == []


def test_configuration_of_a_captured_host(site, tmp_path):
    """What the captured host names, not what this one has."""
    host = tmp_path / "host"
    (host / "root").mkdir(parents=True)
    (host / "host.txt").write_text("")
    (host / "root" / "hardraid.cfg").write_text("Cli Path:/opt/captured\nCli Name:toolcli\n")
    command = [str(site.program), "--sysroot", str(host), "hwraid"]
    said = "stcli: the console drives /opt/captured/toolcli, named by the configuration /root/hardraid.cfg\n"
    assert site.launch(command, "") == (0, "", said + HELLO + MAIN + BYE)
