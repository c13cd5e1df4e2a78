# SPDX-License-Identifier: Apache-2.0
"""Every case below cases/: the words, the host, and the whole standard error.

    # What the cases show, above each or above those that show the same.
    case    clear-partition  mdsb clear /dev/sda1
    host    real-kernel
    status  0
    log     write /dev/sda1 @33488896 4096 bytes
    --
    stcli: Hello world!
    stcli: Ok!
    ====

A file holds the cases of one command or of a few, in sections that a line
"====" parts.  A section says once what its cases have in common: the host,
the status, the log and the text.  A case is a name, which the file holds
once, and the words, split as a shell does.  Without a host the command runs
on the running machine.  "log" stands once for each line of the log of
changes; the shell that reads the mount table is not counted.  Behind the line
"--" follows the whole standard error: \\xHH is a byte, and what <list>,
<record> and <following> stand for is told in addresses.py.
"""

import pathlib
import re
import shlex

import pytest

CASES = pathlib.Path(__file__).resolve().parent / "cases"
KEYS = {"host", "status"}


class Section:
    def __init__(self, text):
        head, found, text = text.partition("\n--\n")
        assert found, f"no line -- behind {head}"
        self.cases = []
        self.fields = {}
        self.log = []
        for line in head.splitlines():
            if not line.startswith("#"):
                self.take(line)
        self.status = int(self.fields["status"])
        self.stderr = re.sub(r"\\x([0-9a-f]{2})", lambda found: chr(int(found.group(1), 16)), text)

    def take(self, line):
        key, value = (line.split(None, 1) + [""])[:2]
        if key == "case":
            name, words = value.split(None, 1)
            self.cases.append((name, shlex.split(words)))
        elif key == "log":
            self.log.append(value)
        else:
            assert key in KEYS, f"a line that says nothing: {line}"
            assert key not in self.fields, f"{key} is said twice"
            self.fields[key] = value


def cases_of(path):
    """The file's rows for a test: words and section, with a name."""
    names = set()
    for text in re.split(r"^====\n", path.read_text(encoding="ascii"), flags=re.MULTILINE):
        section = Section(text)
        for name, words in section.cases:
            assert name not in names, f"{path.stem}: two cases {name}"
            names.add(name)
            yield pytest.param(words, section, id=f"{path.stem}/{name}")


def all_cases():
    return [case for path in sorted(CASES.glob("*.cases")) for case in cases_of(path)]


def test_the_cases_are_found():
    assert len(all_cases()) > 300


@pytest.mark.parametrize("words, section", all_cases())
def test_case(cli, words, section):
    done = cli.run(*words, host=section.fields.get("host"))
    assert done.stderr == section.stderr
    assert done.status == section.status
    assert done.log == section.log
