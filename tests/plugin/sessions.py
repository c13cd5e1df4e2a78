"""The sessions that the pages show: commands behind `$`, and what they print."""

import os
import re
import shlex
import subprocess
import sys

# What differs from day to day, and from release to release.
VARYING = ((r'"time": "[^"]*"', '"time": "NOW"'), (r'"version": "[^"]*"', '"version": "ANY"'))
# The host that all commands look at which name none.
WRAPPER = """#!/bin/sh
case " $* " in
*" --sysroot "* | *" --sysroot="* | *" schema "*) exec {program} "$@" ;;
esac
exec {program} "$@" --sysroot {host}
"""


def blocks(page, language=""):
    fenced = re.findall(r"^```(\w*)\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)
    return [text for name, text in fenced if name == language]


def sessions(page, begins="diskscout "):
    """Those whose first command begins like this."""
    return [block for block in blocks(page) + blocks(page, "console") if block.startswith(f"$ {begins}")]


def steady(text):
    for pattern, word in VARYING:
        text = re.sub(pattern, word, text)
    return text


class Reader:
    """Somebody at a shell in the tree of the sources, on the captured notebook."""

    def __init__(self, build_dir, source_dir, place):
        self.place = place / "tree"
        unfolded = place / "hosts"
        subprocess.run([sys.executable, "-B", str(source_dir / "tests/block/unfold.py"),
                        str(source_dir / "tests/block/hosts"), str(unfolded)], check=True)
        run = self.place / "build" / "run"
        run.mkdir(parents=True)
        for name in ("docs", "tests", "tools"):
            (self.place / name).symlink_to(source_dir / name)
        wrapper = run / "diskscout"
        wrapper.write_text(WRAPPER.format(program=shlex.quote(str(build_dir / "diskscout")),
                                          host=shlex.quote(str(unfolded / "notebook"))))
        wrapper.chmod(0o755)
        kept = {name: value for name, value in os.environ.items()
                if not name.startswith(("LC_", "REPLAY_")) and name not in ("LANG", "LANGUAGE", "COLUMNS")}
        self.environment = {**kept, "PATH": f"{run}{os.pathsep}{kept['PATH']}"}

    def run(self, command, locale):
        """What it prints, on either stream."""
        done = subprocess.run(["/bin/sh", "-c", command], cwd=self.place, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False, timeout=60, encoding="utf-8",
                              env={**self.environment, "LC_ALL": locale})
        return done.stdout

    def session(self, shown, locale="C.UTF-8"):
        """The same commands, with what they print here."""
        commands = re.findall(r"^\$ (.*)$", shown, re.MULTILINE)
        return "".join(f"$ {command}\n{self.run(command, locale)}" for command in commands)
