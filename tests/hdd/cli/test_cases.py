"""Every file below cases/: the words, the host, and the whole standard error.

    # What the case shows.
    words   mdsb clear /dev/sda1
    host    real-kernel
    status  0
    log     write /dev/sda1 @33488896 4096 bytes
    --
    stcli: Hello world!
    stcli: Ok!

"words" is split as a shell does.  Without a host the command runs on the
running machine.  "log" stands once for each line of the log of changes; the
shell that reads the mount table is not counted.  Behind the line "--" follows
the whole standard error: \\xHH is a byte, and what <list>, <record> and
<following> stand for is told in addresses.py.
"""

import pathlib
import re
import shlex

import pytest

CASES = sorted((pathlib.Path(__file__).resolve().parent / "cases").glob("*/*.case"))
KEYS = {"words", "host", "status", "log"}


class Case:
    def __init__(self, path):
        head, found, text = path.read_text(encoding="ascii").partition("\n--\n")
        assert found, f"{path}: no line --"
        self.fields = {"log": []}
        for line in head.splitlines():
            if not line.startswith("#"):
                self.take(path, line)
        self.words = shlex.split(self.fields["words"])
        self.status = int(self.fields["status"])
        self.stderr = re.sub(r"\\x([0-9a-f]{2})", lambda found: chr(int(found.group(1), 16)), text)

    def take(self, path, line):
        key, value = (line.split(None, 1) + [""])[:2]
        assert key in KEYS, f"{path}: {key}"
        if key == "log":
            self.fields["log"].append(value)
            return
        assert key not in self.fields, f"{path}: {key} is said twice"
        self.fields[key] = value


def test_the_cases_are_found():
    assert len(CASES) > 100


@pytest.mark.parametrize("path", CASES, ids=lambda path: f"{path.parent.name}/{path.stem}")
def test_case(cli, path):
    case = Case(path)
    done = cli.run(*case.words, host=case.fields.get("host"))
    assert done.stderr == case.stderr
    assert done.status == case.status
    assert done.log == case.fields["log"]
