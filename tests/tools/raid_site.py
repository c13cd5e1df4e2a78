"""A host with the simulated controller tool: a working directory that holds nothing but what a site provides."""

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
