# SPDX-License-Identifier: Apache-2.0
"""A host with the console and the simulated controllers, and a working directory in which nothing may be left."""

import difflib
import os
import pathlib
import subprocess

SOURCES = pathlib.Path(__file__).resolve().parents[3]
FILTER = SOURCES / "tools" / "filter" / "diskscout-filter"
PAINTED = "terminal,status"
# Quicker than the filter for sites; the simulated tool must then write what needs no filter.
COPY = pathlib.Path("/bin/cp")
PLAIN = "noblank"

CLEAR = """\
#!/bin/sh
echo cleared >>"$CONSOLE_CLEARED"
"""
# Takes every script down and answers nothing, which no operation but a list takes for an error.
RECORDER = """\
#!/bin/sh
exec cat >>"$CONSOLE_SCRIPTS"
"""


def processes_of(session):
    """The processes of a session, zombies included."""
    found = []
    for entry in pathlib.Path("/proc").iterdir():
        if not entry.name.isdigit():
            continue
        try:
            fields = (entry / "stat").read_text().rpartition(")")[2].split()
        except (FileNotFoundError, ProcessLookupError):
            continue
        if int(fields[3]) == session:
            found.append(int(entry.name))
    return found


class Site:
    def __init__(self, build_dir, root, state):
        self.program = build_dir / "stcli"
        self.work = root / "work"
        self.work.mkdir()
        self.programs = root / "programs"
        self.programs.mkdir()
        # The names become words of a shell command: links, wherever the tree lies.
        self.simulator = self.add_link(build_dir / "raidsim")
        self.config = root / "raid.cfg"
        self.state = root / "state.txt"
        self.cleared = root / "cleared"
        self.scripts = root / "scripts"
        self.state.write_text(state)
        self.start = self.facts()
        self.add_program("clear", CLEAR)
        self.configure(self.simulator, self.add_link(FILTER))

    def add_program(self, name, text):
        path = self.programs / name
        path.write_text(text)
        path.chmod(0o755)
        return path

    def add_link(self, program):
        link = self.programs / program.name
        link.symlink_to(program)
        return link

    def configure(self, tool, filter_program):
        self.config.write_text(f"Cli Path:{tool.parent}\nCli Name:{tool.name}\nFilter Script:{filter_program}\n")

    def make_quick(self):
        """For many runs: no filter, and so no blank where it would have made an underscore."""
        self.configure(self.simulator, COPY)
        text = self.state.read_text().replace('"EXAMPLE A"', "EXAMPLE_A").replace('"FAST DISK"', "FAST_DISK")
        self.state.write_text(text)
        self.start = self.facts()

    def record(self):
        """From now on the tool is one that takes the scripts down."""
        self.configure(self.add_program("recorder", RECORDER), COPY)

    def commands(self):
        """The command of every script that was taken down; each opens the console's controller first."""
        before, *scripts = self.scripts.read_text().split("open aac0\n")
        assert before == ""
        return [script.split("\n")[0] for script in scripts]

    def environment(self, fault):
        """Nothing but the given settings steers the console and the tool."""
        kept = {name: value for name, value in os.environ.items() if not name.startswith(("RAIDSIM_", "REPLAY_"))}
        return {
            **kept,
            # Not the caller's: a folder in it that may not be looked into changes what the shell says.
            "PATH": f"{self.programs}:/usr/local/bin:/usr/bin:/bin",
            "RAIDSIM_STATE": str(self.state),
            "RAIDSIM_FAULT": fault,
            "CONSOLE_CLEARED": str(self.cleared),
            "CONSOLE_SCRIPTS": str(self.scripts),
        }

    def command(self, *behind):
        return [str(self.program), "--config", str(self.config), "hwraid", *behind]

    def run(self, keys, fault="", redirection=""):
        """What the console prints for these keys, fed through a pipe; it must leave nothing behind.

        A shell's redirection puts something else in the pipe's place.
        """
        status, output, transcript = self.launch(self.command(), keys, fault, redirection)
        assert (status, output) == (0, "")
        entry, _, rest = transcript.partition("\n")
        self.check_entry(entry)
        return rest

    def check_entry(self, line):
        """Before the console begins, the launcher tells what it drives, or why it drives nothing."""
        assert line.startswith("stcli: the console ")
        assert f" the configuration {self.config}" in line

    def launch(self, command, keys, fault="", redirection=""):
        """Exit status, output and transcript of this command; it must leave nothing behind."""
        data = keys if isinstance(keys, bytes) else keys.encode()
        with subprocess.Popen(
            ["sh", "-c", f'exec "$@" {redirection}', "sh", *command],
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            cwd=self.work,
            env=self.environment(fault),
            start_new_session=True,
        ) as console:
            try:
                output, transcript = console.communicate(data, timeout=60)
            finally:
                console.kill()
        assert processes_of(console.pid) == []
        self.check_work()
        return console.returncode, output.decode("ascii"), transcript.decode("ascii")

    def check_work(self):
        assert list(self.work.iterdir()) == []

    def times_cleared(self):
        return len(self.cleared.read_text().splitlines()) if self.cleared.exists() else 0

    def facts(self):
        """The records of the controllers, in order."""
        lines = self.state.read_text().splitlines()
        return [line for line in lines if line and not line.startswith("#")]

    def changes(self):
        """The records that are gone since the start, and those that are new."""
        difference = difflib.unified_diff(self.start, self.facts(), n=0, lineterm="")
        return [line for line in difference if not line.startswith(("---", "+++", "@@"))]
