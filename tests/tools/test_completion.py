# SPDX-License-Identifier: Apache-2.0
"""What can stand in the place of a word that is being typed: every word that the programs know, and no other."""

import re
import subprocess

import pytest

COMMANDS = ["list", "tree", "doctor", "schema"]
OF_DOCTOR = ["--raid", "--pid"]
OF_TREE = ["--bytes", "--controller"]
OF_ALL = ["-h", "--help", "--version"]
OF_BOTH = [*OF_ALL, "--json", "--plugin", "--sysroot", "--config", "--block-plugin", "--format", "--timeout"]
VALUED = ["--plugin", "--sysroot", "--config", "--block-plugin", "--controller", "--format", "-o", "--columns", "--sort", "--timeout", "--pid"]
PLACES = [":words", ":list", ":files", ":directories"]


def asked(program, *words):
    done = subprocess.run([program, *words], capture_output=True, check=False, timeout=60)
    assert (done.returncode, done.stderr) == (0, b"")
    place, *lines = done.stdout.decode().splitlines()
    assert place in PLACES
    assert all(re.fullmatch(r"[^\t]+\t[^\t]*", line) for line in lines)
    return place, [tuple(line.split("\t")) for line in lines]


@pytest.fixture(name="place")
def place_of_diskscout(tool):
    return lambda *words: asked(tool.program, "complete", *words)[0]


@pytest.fixture(name="completed")
def words_of_diskscout(tool):
    return lambda *words: [word for word, _ in asked(tool.program, "complete", *words)[1]]


@pytest.fixture(name="stcli")
def stcli_of_build(tool):
    return tool.program.parent / "stcli"


@pytest.fixture(name="completed_by_stcli")
def words_of_stcli(stcli):
    return lambda *words: [word for word, _ in asked(stcli, "--complete", *words)[1]]


def said(tool, *words, program=None):
    result = tool.run(*words, program=program)
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


# ---- what the tables have ----


def test_commands(tool, completed):
    below = re.search(r"^Subcommands:\n((?:  \S.*\n)+)", said(tool, "--help"), re.MULTILINE).group(1)
    assert re.findall(r"^  (\w+) +(\S.*)$", below, re.MULTILINE) == asked(tool.program, "complete")[1]
    assert completed("") == completed() == COMMANDS
    assert completed("--json", "l") == ["list"]
    assert completed("--raid", "--plugin", "list", "do") == ["doctor"]


def test_kinds(tool, completed, kinds):
    assert len(kinds) == 15
    assert completed("list", "") == kinds
    assert completed("list", "devices", "--json", "raid_s") == ["raid_space"]
    assert completed("--format", "1", "list", "cd") == ["cdroms"]
    whats = [what for _, what in asked(tool.program, "complete", "list", "")[1]]
    assert all(whats) and len(set(whats)) == len(kinds)


def test_kinds_that_fit_the_other_words(completed, kinds):
    today = ["devices", "links", "filesystems", "arrays", "mounts"]
    assert completed("list", "links", "") == [kind for kind in kinds if kind != "links"]
    assert completed("list", "raid-space", "raid_s") == []
    assert completed("list", "/dev/sda", "") == today
    assert completed("list", "--classic", "") == [kind for kind in kinds if kind not in [*today, "tasks", "defects"]]
    assert completed("list", "--format=1", "raid") == ["raid-disks", "raid-space", "raid-partitions"]


def test_options(completed, options):
    assert len(options) > 15
    assert sorted(completed("-")) == sorted(options)
    assert sorted([*completed("list", "-"), *OF_DOCTOR]) == sorted(options)
    assert sorted(completed("doctor", "-")) == sorted([*OF_BOTH, *OF_DOCTOR])
    assert sorted(completed("tree", "-")) == sorted([*OF_BOTH, *OF_TREE])
    assert sorted(completed("schema", "-")) == sorted(OF_ALL)
    assert completed("doctor", "") == completed("tree", "") == completed("schema", "") == []
    assert completed("--js") == ["--json"]
    assert completed("schema", "--js") == []


def test_options_have_the_words_of_the_help(tool):
    for name, what in asked(tool.program, "complete", "--")[1]:
        assert re.search(rf"^  .*{name} .* {re.escape(what)}$", said(tool, "--help"), re.MULTILINE), name


def test_options_that_are_given_are_not_offered_again(completed):
    left = completed("list", "links", "--json", "-o", "upper", "--sort=lower", "--timeout", "--help", "-")
    assert "--help" in left and "--config" in left
    assert not {"--json", "-o", "--columns", "--sort", "--timeout"} & set(left)


def test_options_with_values_are_known_as_such(completed, options):
    assert sorted(VALUED) == sorted(name for name, is_valued in options.items() if is_valued)
    for option in VALUED:
        assert "devices" not in completed("list", "links", option, "dev"), option


def test_columns_of_every_kind(tool, completed, kinds):
    for kind in kinds:
        columns = columns_of(tool, kind)
        for option in ("-o", "--columns", "--sort"):
            assert completed("list", kind, option, "") == columns
        assert completed("list", kind.replace("_", "-"), "-o", "") == columns
        assert all(what for _, what in asked(tool.program, "complete", "list", kind, "-o", "")[1])


# ---- values ----


@pytest.mark.parametrize(
    "words, answer",
    [
        (["list", "links", "-o", "s"], ["state"]),
        (["list", "devices", "-o", "+dm_n"], ["+dm_name"]),
        (["list", "links", "-o", "upper,"], [f"upper,{key}" for key in "lower relation address state access".split()]),
        (["list", "devices", "-o", "+node,dm_name,dm_"], [f"+node,dm_name,dm_{key}" for key in "uuid kind target".split()]),
        (["list", "links", "-o", "upper,u"], []),
        (["list", "links", "-o", "upper,nonsense,"], []),
        (["list", "links", "-o", "UPPER,l"], ["UPPER,lower"]),
        (["list", "devices", "-o", "Mount Points,mou"], []),
        (["list", "devices", "-o", "Mount Points,na"], []),
        (["list", "links", "-o", ","], []),
        (["list", "links", "-o", "+,"], []),
        (["list", "links", "--sort", "upper,"], []),
        (["list", "links", "--sort", "+"], []),
        (["list", "links", "--sort=st"], ["--sort=state"]),
        (["list", "links", "--columns=st"], ["--columns=state"]),
        (["list", "links", "--columns=upper,st"], ["--columns=upper,state"]),
        (["list", "links", "--columns="], [f"--columns={key}" for key in "upper lower relation address state access".split()]),
        (["list", "links", "-ost"], ["-ostate"]),
        (["list", "links", "-o=st"], []),
        (["list", "links", "--json=t"], []),
        (["list", "links", "--nonsense=t"], []),
        (["list", "links", "--sort", "access", "-o", "st"], ["state"]),
        (["list", "devices", "-o", "links", "--sort", "nod"], ["node"]),
        (["list", "/dev/sda", "-o", "dm_n"], ["dm_name"]),
        (["list", "/dev/sda", "links", "-o", "up"], ["upper"]),
        (["list", "links", "links", "-o", "up"], ["upper"]),
        (["list", "links", "devices", "-o", "n"], []),
        (["list", "-o", "n"], []),
        (["-o", "n"], []),
        (["list", "nonsense", "-o", "n"], []),
        (["list", "disks", "--format", "1", "-o", ""], []),
        (["tree", "--format", ""], ["1", "2"]),
        (["list", "--format", ""], ["1", "2"]),
        (["list", "--format=2"], ["--format=2"]),
        (["list", "--controller", ""], []),
        (["doctor", "--pid", ""], []),
        (["doctor", "--sort", ""], []),
        (["schema", "--format", ""], []),
        (["schema", "--format="], []),
    ],
)
def test_values(completed, words, answer):
    assert completed(*words) == answer


def test_what_is_behind_a_plus_is_not_there_already(tool, completed):
    shown = ["name", "kind", "size", "transport", "model", "serial", "mount_points"]
    assert completed("list", "devices", "-o", "+") == [f"+{key}" for key in columns_of(tool, "devices") if key not in shown]
    assert completed("list", "links", "-o", "+up") == []
    assert "twice" in said(tool, "list", "links", "-o", "+upper")


def test_word_between_others(completed):
    assert completed("--at=3", "list", "-o", "up", "links") == ["upper"]
    assert completed("--at=1", "--ra", "doctor") == ["--raid"]
    assert completed("--at=1", "--ra", "list") == []
    assert completed("--at=2", "list", "li", "--json") == ["links"]
    assert completed("--at=1", "do", "list") == []
    assert completed("--at=3", "list", "links", "--", "x") == []
    # Behind the last one.
    assert completed("--at=2", "list") == completed("--at=9", "list") == completed("list", "")
    assert completed("--at=1") == COMMANDS
    # No place: another word, which is none of the program's.
    assert completed("--at=0", "list", "") == completed("--at=2x", "list", "") == completed("--at=", "") == []


@pytest.mark.parametrize("option", ["--plugin", "--block-plugin", "--config"])
def test_files(place, option):
    assert place("list", option, "tw") == place("list", f"{option}=tw") == place(option, "") == ":files"


def test_directories(place):
    assert place("list", "--sysroot", "tw") == place("doctor", "--sysroot=tw") == ":directories"


def test_devices_are_paths(place, completed):
    assert place("list", "./tw") == place("list", "links", "/dev/nul") == ":files"
    # Classic lists have no devices.
    assert place("list", "--classic", "/dev/nul") == place("tree", "/dev/nul") == ":words"
    assert completed("list", "links", "/dev/nul") == []


def test_lists_go_on(place):
    assert place("list", "links", "-o", "up") == place("list", "links", "--columns=up") == ":list"
    assert place("list", "links", "--sort", "up") == ":words"


# ---- nothing ----


@pytest.mark.parametrize(
    "words",
    [
        ["nonsense", ""],
        ["nonsense", "-"],
        ["list", "nonsense", ""],
        ["list", "nonsense", "--js"],
        ["list", "--nonsense", ""],
        ["--nonsense", "li"],
        ["-x", "li"],
        ["list", "links", "--sort", "upper", "-x", "--"],
        ["tree", "links", "--"],
        ["doctor", "--columns", "name", "--"],
        ["schema", "--json", "-"],
        ["complete", ""],
        ["list", "links", "--", ""],
        ["list", "links", "--", "-"],
        ["list", "--", "li"],
        ["--", "li"],
    ],
)
def test_nothing_where_the_other_words_are_refused_or_options_have_ended(completed, words):
    assert completed(*words) == []


LONG = b"x" * 4096
HOSTILE = [b"\n", b"li\nst", b"\t", b"\x1b[31m", b"\x7f", b"\xff\xfe", b"%s%n", b"'", b'"', b"$(reboot)", b"`", b"*", b"-\n", LONG]


@pytest.mark.parametrize("word", [*HOSTILE, b"--config=\n", b"--sort=\n", b"-o\n", b"--" + LONG, b"-o" + LONG, b"--at=" + LONG])
def test_hostile_words_are_not_repeated(tool, word):
    for words in ([word], ["list", word], ["list", word, ""], ["list", "links", "-o", word], ["list", "links", "--sort=upper", word]):
        for program, ask in ((tool.program, "complete"), (tool.program.parent / "stcli", "--complete")):
            _, rows = asked(program, ask, *words)
            assert all(re.fullmatch(r"[-a-z0-9_=,+]+", offered) for offered, _ in rows)


def test_no_plugin_is_asked(tool, tmp_path):
    alone = tmp_path / "diskscout"
    alone.write_bytes(tool.program.read_bytes())
    alone.chmod(0o755)
    words = ["list", "--plugin", "/nonsense", "--sysroot", "/nonsense", "--json", "li"]
    assert asked(alone, "complete", *words) == (":words", [("links", "which device stands on which")])


def test_it_stands_first_and_no_help_shows_it(tool):
    assert tool.run("--json", "complete").returncode == 2
    assert tool.run("list", "complete").returncode == 2
    assert "complete" not in said(tool, "--help")


# ---- stcli ----


def test_commands_of_stcli(tool, stcli, completed_by_stcli):
    parts = re.findall(r"^(\w+): (.*)$", said(tool, "help", program=stcli).replace("stcli: ", ""), re.MULTILINE)
    words = [(word.partition("(")[0], part) for part, line in parts for word in line.split()]
    assert len(words) > 40
    rows = asked(stcli, "--complete")[1]
    assert [word for word, _ in rows[:3]] == ["help", "cliid", "hwraid"]
    assert rows[3:] == words
    assert completed_by_stcli("") == completed_by_stcli() == [word for word, _ in rows]
    assert completed_by_stcli("--timeout", "3", "exe_") == ["exe_cdrom", "exe_disk", "exe_part", "exe_vol"]


def test_options_of_stcli(tool, stcli, completed_by_stcli):
    help_text = said(tool, "--help", program=stcli)
    options = re.findall(r"^  (?:(-h), )?(--\w+)", help_text, re.MULTILINE)
    assert completed_by_stcli("-") == [name for names in options for name in names if name]
    assert completed_by_stcli("--co") == ["--config"]
    # Also given by abbreviations of their names.
    assert completed_by_stcli("--sys", "x", "--ti=3", "--") == ["--plugin", "--config", "--help", "--version"]
    assert "--complete" not in help_text


@pytest.mark.parametrize(
    "words, answer",
    [
        (["--config", ""], (":files", [])),
        (["--plug=x"], (":files", [])),
        (["--sysroot", ""], (":directories", [])),
        (["--timeout", ""], (":words", [])),
        (["mtab", ""], (":words", [("dev", ""), ("mnt", "")])),
        (["mtab", "dev", ""], (":files", [])),
        (["mdspeed", "m"], (":words", [("max", "")])),
        (["mbr", "/dev/sd"], (":files", [])),
        (["mbr", "-"], (":files", [])),
        (["exec", "--", "x"], (":files", [])),
        (["hwraid", ""], (":words", [])),
        (["help", ""], (":words", [])),
        (["nonsense", ""], (":words", [])),
        (["--nonsense", "mb"], (":words", [])),
        (["--nonsense=x"], (":words", [])),
        (["--", "-"], (":words", [])),
        (["--", "mb"], (":words", [("mbr", "cli_1")])),
        (["--at=2", "--timeout", "", "mbr"], (":words", [])),
        (["--at=1", "--ti", "mbr"], (":words", [("--timeout", "give up after this time, 60 if not said; 0: never")])),
    ],
)
def test_words_of_stcli(stcli, words, answer):
    assert asked(stcli, "--complete", *words) == answer


def test_a_library_that_the_line_names_is_not_loaded(tool, stcli, completed_by_stcli):
    assert "leaf_1" in said(tool, "--plugin", tool.fake_plugin, "--help", program=stcli)
    assert completed_by_stcli("--plugin", str(tool.fake_plugin), "one") == []
    assert completed_by_stcli("--plugin", str(tool.fake_plugin), "mbr") == ["mbr"]


def test_stcli_without_a_plugin_knows_its_options(stcli, tmp_path):
    alone = tmp_path / "stcli"
    alone.write_bytes(stcli.read_bytes())
    alone.chmod(0o755)
    assert asked(alone, "--complete", "") == (":words", [])
    assert [word for word, _ in asked(alone, "--complete", "--v")[1]] == ["--version"]


def test_the_word_that_asks_is_none_of_the_commands(tool, stcli):
    """What stcli accepts is as it was."""
    for words in (["one", "--complete"], ["--", "--complete"], ["--", "one", "--complete", "x"]):
        result = tool.run("--plugin", tool.fake_plugin, *words, program=stcli)
        assert (result.returncode, "[--complete]" in result.stderr) == (0, True)
    for words in (["--timeout", "3", "--complete"], ["--complet"], ["--complete="]):
        result = tool.run(*words, program=stcli)
        assert (result.returncode, "no such option" in result.stderr) == (2, True)
