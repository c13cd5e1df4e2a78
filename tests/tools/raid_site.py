# SPDX-License-Identifier: Apache-2.0
"""A host with the simulated controller tool: a working directory that holds nothing but what a site provides."""

import json
import pathlib

from conftest import CLASSIC

SOURCES = pathlib.Path(__file__).resolve().parents[2]
FILTER = SOURCES / "tools" / "filter" / "diskscout-filter"


def configuration(directory, programs):
    """Its names become words of a shell command: links in the directory, wherever the programs lie."""
    (directory / "raidsim").symlink_to(programs / "raidsim")
    (directory / FILTER.name).symlink_to(FILTER)
    return f"Cli Path:{directory}\nCli Name:raidsim\nFilter Script:{directory / FILTER.name}\n"


class RaidSite:
    """Without a state the simulated tool makes its own sample at the first run."""

    def __init__(self, tool, directory, state=None):
        self.tool = tool
        self.directory = directory
        directory.mkdir()
        self.config = directory / "raid.cfg"
        self.config.write_text(configuration(directory, tool.program.parent))
        if state is not None:
            (directory / "state.txt").write_text(state)

    def run(self, *arguments, fault="", **settings):
        env = {"RAIDSIM_STATE": str(self.directory / "state.txt"), "RAIDSIM_FAULT": fault, **settings.pop("env", {})}
        result = self.tool.run(*arguments, env=env, cwd=self.directory, **settings)
        # Script, raw and filtered output are gone, whatever happened.
        left = {path.name for path in self.directory.iterdir() if not path.is_symlink()}
        assert left <= {"raid.cfg", "state.txt"}
        return result

    def list(self, *arguments, config="raid.cfg", **settings):
        return self.run("list", *CLASSIC, *arguments, "--config", config, **settings)

    def document(self, *arguments, status=0, **settings):
        """As it is told to programs of today."""
        result = self.run("list", "--json", *arguments, "--config", "raid.cfg", **settings)
        assert result.returncode == status, result.stderr
        return json.loads(result.stdout)

    def put_in_front(self, command, what):
        """Where a script has this command, a pattern of the shell, the simulated tool is not asked before this is done."""
        link = self.directory / "raidsim"
        wrapper = self.directory.parent / "wrapped-tool"
        wrapper.write_text(
            f"""#!/bin/sh
script=$(cat)
ask() {{ printf '%s\\n' "$script" | {link.resolve()}; }}
case $script in
*{command}*) {what} ;;
esac
ask
"""
        )
        wrapper.chmod(0o755)
        link.unlink()
        link.symlink_to(wrapper)
