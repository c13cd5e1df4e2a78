# SPDX-License-Identifier: Apache-2.0
"""Programs, plug-ins and sample hosts, installed: they find each other there."""

import pytest
from conftest import install


@pytest.mark.parametrize("host", ["classic", "desktop", "arrays", "notebook", "virtio"])
def test_diskscout_shows_what_it_shows_where_it_was_built(installed, build_dir, host):
    words = ("list", "--sysroot", installed.hosts / host)
    shown = installed.run("diskscout", *words)
    assert shown.returncode in (0, 1)
    assert shown.stdout.count("\n") > 5
    there = installed.run(build_dir / "diskscout", *words)
    assert (shown.returncode, shown.stdout, shown.stderr) == (there.returncode, there.stdout, there.stderr)


def test_stcli_finds_the_plugin_and_a_host(installed):
    shown = installed.run("stcli", "--sysroot", installed.hosts / "classic", "part", "/dev/hda")
    assert shown.returncode == 0
    assert "num=6, num_real=6" in shown.stderr


def test_a_site_of_the_simulator_and_the_filter(installed, tmp_path):
    """As the pages tell a service engineer to try it."""
    (tmp_path / "raid.cfg").write_text(f"Cli Path:{installed.prefix}/bin\nCli Name:raidsim\n"
                                       f"Filter Script:{installed.prefix}/libexec/diskscout/diskscout-filter\n")
    state = str(tmp_path / "controllers.txt")
    shown = installed.output("diskscout", "list", "containers", "--config", tmp_path / "raid.cfg", "-o",
                             "raid_id,type_word", cwd=tmp_path, RAIDSIM_STATE=state)
    assert shown == ("CONTAINERS\nID  TYPE\n 0  RAID 1\n 1  volume\n 2  RAID 10\n24  RAID 1\n25  RAID 1\n")


def test_the_limit_stands_before_a_tool(installed, tmp_path):
    shown = installed.run(installed.prefix / "libexec/diskscout/diskscout-limit", "--version")
    assert (shown.returncode, shown.stderr) == (0, "")


def test_without_the_simulator_a_captured_host_says_what_is_missing(installed, build_dir, tmp_path):
    for component in ("plugins", "programs"):
        install(build_dir, "--prefix", str(tmp_path), "--component", component)
    shown = installed.run(tmp_path / "bin/diskscout", "list", "--sysroot", installed.hosts / "classic")
    assert shown.returncode == 2
    assert "diskscout-sim" in shown.stderr
