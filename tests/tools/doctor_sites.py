# SPDX-License-Identifier: Apache-2.0
"""Sites of the controller tool, put together from sites/ in a directory of their own."""

import shutil
import subprocess

from raid_site import FILTER, SOURCES

SITES = SOURCES / "tests" / "tools" / "sites"
COMMON = SITES / "common"
NAMES = sorted(path.name for path in SITES.iterdir() if path.is_dir() and path != COMMON)


class DoctorSite:
    """As tests/tools/doctor_site.h makes them."""

    def __init__(self, name, directory, programs):
        self.root = directory
        self.source = SITES / name
        for made in (directory, directory / "bin", directory / "tmp"):
            made.mkdir()
        for program in ("tool", "filter"):
            shutil.copy(self.own(program), directory / "bin" / program)
        shutil.copy(COMMON / "tool", directory / "bin" / "original")
        shutil.copy(programs / "raidsim", directory / "bin")
        shutil.copy(FILTER, directory / "bin")
        self.config = directory / "raid.cfg"
        self.config.write_text(self.here(self.own("raid.cfg").read_text()))
        for path in (directory, directory / "tmp", *directory.glob("bin/*"), directory / "bin"):
            path.chmod(0o700)
        self.config.chmod(0o600)
        if (self.source / "prepare").exists():
            subprocess.run(["sh", "-eu", self.source / "prepare"], cwd=directory, check=True)

    def own(self, name):
        own = self.source / name
        return own if own.exists() else COMMON / name

    def here(self, text):
        return text.replace("@SITE@", str(self.root)).replace("@FILTER@", str(self.root / "bin" / FILTER.name))

    def environment(self):
        wanted = {"TMPDIR": str(self.root / "tmp"), "RAIDSIM_STATE": str(self.root / "state.txt")}
        own = self.source / "environment"
        lines = self.here(own.read_text()).splitlines() if own.exists() else []
        return {**wanted, **dict(line.split("=", 1) for line in lines)}

    def expected(self):
        """(verdict, check, text) of each finding."""
        lines = self.here((self.source / "expected").read_text()).splitlines()
        return [(*line.split(": ", 1)[0].split(" "), line.split(": ", 1)[1]) for line in lines]

    def nothing_is_left(self):
        return not list((self.root / "tmp").iterdir())


def one_for_each_check():
    """The first site of each check, and those that are well."""
    first = {}
    for name in NAMES:
        lines = (SITES / name / "expected").read_text().splitlines()
        first.setdefault(lines[0].split(":")[0] if lines else name, name)
    return sorted(first.values())
