# SPDX-License-Identifier: Apache-2.0
"""The sessions that the pages show: commands behind `$`, and what they print."""

import os
import re
import shlex
import shutil
import subprocess
import sys

# What differs from day to day, and from release to release.
VARYING = ((r'"time": "[^"]*"', '"time": "NOW"'), (r'"version": "[^"]*"', '"version": "ANY"'))
# The host that all commands look at which name none.
WRAPPER = """#!/bin/sh
case " $* " in
*" --sysroot "* | *" --sysroot="* | *" schema "* | " complete "*) exec {program} "$@" ;;
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
        command = command.replace("/usr/share/diskscout/hosts/classic", "tests/hosts/real-kernel")
        done = subprocess.run(["/bin/sh", "-c", command], cwd=self.place, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False, timeout=60, encoding="utf-8",
                              env={**self.environment, "LC_ALL": locale})
        return done.stdout

    def session(self, shown, locale="C.UTF-8"):
        """The same commands, with what they print here."""
        commands = re.findall(r"^\$ (.*)$", shown, re.MULTILINE)
        return "".join(f"$ {command}\n{self.run(command, locale)}" for command in commands)


# ---- what is installed ----

# Where packages put it, and where it is installed here.
EXAMPLES = ("/usr/share/doc/diskscout-dev/examples", "/usr/share/doc/diskscout/examples")


def install(build_dir, root):
    subprocess.run(["cmake", "--install", str(build_dir), "--prefix", str(root / "usr")], check=True,
                   stdout=subprocess.DEVNULL)
    return root


class Visitor:
    """Somebody at a shell of a machine on which all of it is installed, in a directory of their own."""

    def __init__(self, root, place):
        self.root = root
        self.place = place / "home"
        self.place.mkdir(parents=True)
        own = place / "programs"
        own.mkdir()
        for name in ("cc", "c++"):
            (own / name).write_text(f'#!/bin/sh\nexec {shutil.which(name)} -Wall -Wextra -Werror "$@"\n')
            (own / name).chmod(0o755)
        kept = {name: value for name, value in os.environ.items()
                if not name.startswith(("LC_", "REPLAY_", "RAIDSIM_", "PYTHON"))
                and name not in ("LANG", "LANGUAGE", "COLUMNS", "LD_PRELOAD")}
        (pc,) = (self.root / "usr").rglob("diskscout.pc")
        self.environment = {
            **kept, "PATH": f"{own}:{self.root}/usr/bin:{kept['PATH']}", "LC_ALL": "C.UTF-8", "TERM": "linux",
            "PKG_CONFIG_PATH": str(pc.parent), "CMAKE_PREFIX_PATH": str(self.root / "usr"),
            "PYTHONPATH": str(self.root / "usr/lib/python3/dist-packages"), "PYTHONDONTWRITEBYTECODE": "1"}

    def here(self, command):
        """The command with the paths of this installation."""
        return re.sub(r"(?<![\w.])/usr/(?=(?:share|lib|libexec)/|bin')", f"{self.root}/usr/", command.replace(*EXAMPLES))

    def run(self, script):
        done = subprocess.run(["/bin/sh", "-c", script], cwd=self.place, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              check=False, timeout=60, encoding="utf-8", env=self.environment)
        return done.stdout.replace(str(self.root), "")

    def page(self, shown, before=""):
        """All commands of a page, in one shell and in their order, and what each of them prints: [(command, text)]."""
        mark = "next command"
        script = "".join(f"{self.here(command)}\necho '{mark}'\n" for command in shown)
        *printed, rest = self.run(self.here(before) + script).split(f"{mark}\n")
        assert rest == ""
        return list(zip(shown, printed, strict=True))
