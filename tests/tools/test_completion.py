"""What bash completes of the command line: every word that the program knows, and no other."""

import re
import subprocess

import pytest
from raid_site import SOURCES

COMPLETION = SOURCES / "tools" / "diskscout" / "diskscout.bash"
COMMANDS = ["list", "tree", "doctor", "schema"]
OF_DOCTOR = ["--raid", "--pid"]
OF_TREE = ["--bytes", "--controller"]
OF_BOTH = ["-h", "--help", "--version", "--json", "--plugin", "--sysroot", "--config", "--block-plugin", "--format", "--timeout"]
VALUED = ["--plugin", "--sysroot", "--config", "--block-plugin", "--controller", "--format", "-o", "--columns", "--sort", "--timeout", "--pid"]
# As bash asks: the words of the line, of which the last one is being typed.
ASK = """
source "$1" || exit 1
shift
COMP_WORDS=("$@")
COMP_CWORD=${WORD:-$((${#COMP_WORDS[@]} - 1))}
_diskscout
[[ ${#COMPREPLY[@]} = 0 ]] || printf '%s\\n' "${COMPREPLY[@]}"
"""


def completed(*words, word="", directory=None):
    """What can stand in the place of the last word, or of that with this number."""
    done = subprocess.run(
        ["bash", "--norc", "--noprofile", "-u", "-c", ASK, "bash", str(COMPLETION), "diskscout", *words],
        capture_output=True,
        encoding="utf-8",
        check=False,
        timeout=60,
        cwd=directory,
        env={"PATH": "/usr/bin:/bin", "WORD": word},
    )
    assert (done.returncode, done.stderr) == (0, "")
    return done.stdout.splitlines()


def said(tool, *words):
    result = tool.run(*words)
    return result.stdout + result.stderr


@pytest.fixture(name="kinds")
def kinds_of_help(tool):
    return re.search(r"what to show, of (.*?);", said(tool, "list", "--help")).group(1).split(", ")


@pytest.fixture(name="options")
def options_of_help(tool):
    rows = re.findall(r"^  (-\S+)(?: ([A-Z1]\S*))?  ", said(tool, "--help"), re.MULTILINE)
    return {name: bool(value) for names, value in rows for name in names.split(",")}


def columns_of(tool, kind):
    refusal = said(tool, "list", kind, "--sort", "?")
    return re.search(r"known are (.*)$", refusal).group(1).split(", ")


def test_commands(tool):
    below = re.search(r"^Subcommands:\n((?:  \S.*\n)+)", said(tool, "--help"), re.MULTILINE).group(1)
    assert re.findall(r"^  (\w+)", below, re.MULTILINE) == COMMANDS
    assert completed("") == COMMANDS
    assert completed("--json", "l") == ["list"]


def test_kinds(kinds):
    assert len(kinds) == 15
    assert completed("list", "") == kinds
    assert completed("list", "devices", "--json", "raid_s") == ["raid_space"]
    assert completed("--format", "1", "list", "cd") == ["cdroms"]


def test_options(options):
    assert len(options) > 15
    assert sorted([*completed("list", "-"), *OF_DOCTOR]) == sorted(options)
    assert sorted(completed("doctor", "-")) == sorted([*OF_BOTH, *OF_DOCTOR])
    assert sorted(completed("tree", "-")) == sorted([*OF_BOTH, *OF_TREE])
    assert completed("doctor", "") == completed("tree", "") == []
    assert completed("--js") == ["--json"]
    assert completed("schema", "--js") == []


def test_options_with_values_are_known_as_such(options):
    assert sorted(VALUED) == sorted(name for name, is_valued in options.items() if is_valued)
    for option in VALUED:
        assert "devices" not in completed("list", "links", option, "dev"), option


def test_columns_of_every_kind(tool, kinds):
    for kind in kinds:
        columns = columns_of(tool, kind)
        for option in ("-o", "--columns", "--sort"):
            assert completed("list", kind, option, "") == columns
        assert completed("list", kind.replace("_", "-"), "-o", "") == columns


@pytest.mark.parametrize(
    "words, answer",
    [
        (["list", "links", "-o", "s"], ["state"]),
        (["list", "links", "-o", "+up"], ["+upper"]),
        (["list", "links", "-o", "upper,"], [f"upper,{key}" for key in "lower relation address state access".split()]),
        (["list", "links", "-o", "+upper,lower,a"], ["+upper,lower,address", "+upper,lower,access"]),
        (["list", "links", "-o", "upper,u"], []),
        (["list", "links", "--sort", "upper,"], []),
        (["list", "links", "--sort", "=", "st"], ["state"]),
        (["list", "links", "--columns", "=", "st"], ["state"]),
        (["list", "links", "--columns", "="], "upper lower relation address state access".split()),
        (["list", "links", "--sort", "access", "-o", "st"], ["state"]),
        (["list", "devices", "-o", "links", "--sort", "nod"], ["node"]),
        (["list", "/dev/sda", "-o", "dm_n"], ["dm_name"]),
        (["list", "/dev/sda", "links", "-o", "up"], ["upper"]),
        (["list", "links", "links", "-o", "up"], ["upper"]),
        (["list", "links", "devices", "-o", "n"], []),
        (["list", "-o", "n"], []),
        (["list", "nonsense", "-o", "n"], []),
        (["list", "--format", ""], ["1", "2"]),
        (["list", "--controller", ""], []),
    ],
)
def test_values(words, answer):
    assert completed(*words) == answer


def test_column_before_its_kind():
    assert completed("list", "-o", "up", "links", word="3") == ["upper"]


@pytest.fixture(name="place")
def place_with_files(tmp_path):
    (tmp_path / "two words").mkdir()
    (tmp_path / "two.cfg").touch()
    return tmp_path


@pytest.mark.parametrize("option", ["--plugin", "--block-plugin", "--config"])
def test_files(place, option):
    assert sorted(completed("list", option, "tw", directory=place)) == ["two words", "two.cfg"]
    assert sorted(completed("list", option, "=", "tw", directory=place)) == ["two words", "two.cfg"]


def test_directories(place):
    assert completed("list", "--sysroot", "tw", directory=place) == ["two words"]


def test_devices_are_paths(place):
    assert sorted(completed("list", "./tw", directory=place)) == ["./two words", "./two.cfg"]
    assert completed("list", "links", "/dev/nul") == ["/dev/null"]


def test_it_is_the_programs():
    done = subprocess.run(
        ["bash", "--norc", "--noprofile", "-c", f"source '{COMPLETION}' && complete -p diskscout"],
        capture_output=True,
        text=True,
        check=False,
        timeout=60,
    )
    assert (done.returncode, done.stdout, done.stderr) == (0, "complete -F _diskscout diskscout\n", "")
