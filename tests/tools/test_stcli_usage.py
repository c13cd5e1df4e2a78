# SPDX-License-Identifier: Apache-2.0
"""The launcher of the plug-in's commands: options, words, streams, exit status."""

import os
import re
import shutil
import subprocess

import pytest

COMMANDS = """
Commands, behind the name of the part that knows them:
leaf_1: one two
leaf_2: stcli: three
and hwraid: the RAID console
"""
OPTIONS = ["--plugin PATH", "--sysroot DIR", "--config FILE", "-h, --help", "--version"]


class Launcher:
    """stcli on the made plug-in, whose report is kept."""

    def __init__(self, tool):
        self.tool = tool
        self.program = tool.program.parent / "stcli"
        self.path = tool.scratch / "report"

    def run(self, *arguments, **settings):
        return self.tool.run(*arguments, program=settings.pop("program", self.program), **settings)

    def fake(self, *arguments, env=None, **settings):
        env = {"FAKE_PLUGIN_REPORT": str(self.path), **(env or {})}
        return self.run("--plugin", self.tool.fake_plugin, *arguments, env=env, **settings)

    def report(self):
        return dict(line.split(" ", 1) for line in self.path.read_text().splitlines())


@pytest.fixture
def launcher(tool):
    return Launcher(tool)


@pytest.fixture
def host(tmp_path):
    (tmp_path / "host").mkdir()
    (tmp_path / "host" / "host.txt").write_text("")
    return tmp_path / "host"


def refused(result):
    """What a refused call is told; nothing was run."""
    assert (result.returncode, result.stdout) == (2, "")
    assert result.stderr.startswith("stcli: ")
    assert result.stderr.endswith("\n")
    assert result.stderr.count("\n") == 1
    return result.stderr[len("stcli: ") : -1]


def call(*words):
    """What the made plug-in prints for these words."""
    lines = [f"argc {len(words) + 1} ZERO 1", "[stcli]", *(f"[{word}]" for word in words), "null"]
    return "".join(f"{line}\n" for line in lines)


@pytest.mark.parametrize(
    "words",
    [
        ["stdisk"],
        ["exe_part", "/dev/hda"],
        ["rand", "-5", "5", "3"],
        ["-"],
        ["a", "-"],
        ["--", "--x", "-5"],
        ["a", "--x", "-x", "--x=y", "---", "--=", "-=", "-5=", "--plu gin=x", "--x--plugin"],
        ["a", "plugin", "help", "--helpless", "--pluginx", "--plugin-path", "--he-lp", "--he lp", "--HELP", "-H"],
        ["a", "--he\nlp", "x--help", " --help", "-5", "-0x5", "--5", "/dev/--help"],
        ["--", "a", "--plugin", "/none"],
        ["--", "a", "--plugin=/none", "--help", "--version", "-h"],
        ["--", "a", "--sysroot", "/none", "--config", "/none", "--replayed", "--timeout", "5"],
        ["a", "--", "b"],
        ["a", "--", "--plugin", "/none", "-h"],
        ["--", "--"],
        ["--", "-5"],
        ["--", "--help"],
        ["", ""],
        ["a b", "\t", "ä€\U00010348", "new\nline", "\x7f\x1b"],
        ["x" * 5000, "y" * 5000],
        [str(number) for number in range(1000)],
    ],
)
@pytest.mark.parametrize("captured", [False, True])
def test_words_reach_the_plugin(launcher, host, words, captured):
    options = ["--sysroot", host] if captured else []
    result = launcher.fake(*options, *words)
    assert (result.returncode, result.stdout) == (0, "")
    # One mark ends the options and is no word.
    assert result.stderr == call(*(words[1:] if words[0] == "--" else words))


def test_words_that_are_no_text(launcher, tmp_path):
    word = b"\xff\xfe\x80"
    with open(tmp_path / "error", "w+b") as error:
        result = launcher.fake(os.fsdecode(word), stderr=error)
        assert result.returncode == 0
        error.seek(0)
        assert error.read() == b"argc 2 ZERO 1\n[stcli]\n[" + word + b"]\nnull\n"


@pytest.mark.parametrize("returned, status", [(0, 0), (-1, 1), (1, 1), (256, 1), (-2147483648, 1)])
def test_exit_status_tells_what_the_plugin_returned(launcher, host, returned, status):
    env = {"FAKE_PLUGIN_STATUS": str(returned)}
    assert launcher.fake("stdisk", env=env).returncode == status
    assert launcher.fake("--sysroot", host, "stdisk", env=env).returncode == status


@pytest.mark.parametrize(
    "arguments, named",
    [
        (["--frobnicate"], "--frobnicate: there is no such option (see stcli --help)"),
        (["--frobnicate", "stdisk"], "--frobnicate: there is no such option (see stcli --help)"),
        (["-x", "stdisk"], "-x: there is no such option (see stcli --help)"),
        (["-5"], "-5: there is no such option (see stcli --help)"),
        (["-xyz"], "-xyz: there is no such option (see stcli --help)"),
        (["-hx"], "-hx: there is no such option (see stcli --help)"),
        (["--help=yes"], "--help=yes: there is no such option (see stcli --help)"),
        (["--a\nb\x1b", "stdisk"], "--a?b?: there is no such option (see stcli --help)"),
        (["--plugin"], "--plugin: a value is missing (see stcli --help)"),
        (["--config", "/a", "--sysroot"], "--sysroot: a value is missing (see stcli --help)"),
        (["--config"], "--config: a value is missing (see stcli --help)"),
        (["--plugin", "", "stdisk"], "--plugin: the value must not be empty"),
        (["--plugin=", "stdisk"], "--plugin=: the value must not be empty"),
        (["--sysroot=", "stdisk"], "--sysroot=: the value must not be empty"),
        (["--config", "", "stdisk"], "--config: the value must not be empty"),
        (["--plugin=/a", "--plugin=/b", "stdisk"], "--plugin=/b: the option is given twice"),
        (["--config", "/a", "--config", "/a", "stdisk"], "--config: the option is given twice"),
        (["--sysroot", "/a", "--sysroot", "/a", "stdisk"], "--sysroot: the option is given twice"),
        (["--sysroot", "/", "stdisk"], "/ is no captured host: it has no host.txt"),
    ],
)
def test_bad_usage_is_one_line_and_status_2(launcher, arguments, named):
    assert refused(launcher.run(*arguments)) == named


@pytest.mark.parametrize(
    "arguments, named",
    [
        (["--frob", "--", "stdisk"], "--frob: there is no such option (see stcli --help)"),
        (["--help", "--frob"], "--frob: there is no such option (see stcli --help)"),
        (["---", "stdisk"], "---: there is no such option (see stcli --help)"),
        (["--help=no"], "--help=no: there is no such option (see stcli --help)"),
        (["--help=maybe"], "--help=maybe: there is no such option (see stcli --help)"),
        (["--version="], "--version=: there is no such option (see stcli --help)"),
        (["-h=x"], "-h=x: there is no such option (see stcli --help)"),
        (["-hhx"], "-hhx: there is no such option (see stcli --help)"),
        (["--plugin="], "--plugin=: the value must not be empty"),
        (["--plugin=", "--config", "/a"], "--plugin=: the value must not be empty"),
        (["--plugin=/a", "--plugin", "/a", "stdisk"], "--plugin: the option is given twice"),
        (["--config", "/a=", "--config=/a=", "stdisk"], "--config=/a=: the option is given twice"),
    ],
)
def test_bad_usage_is_quoted_as_it_was_written(launcher, arguments, named):
    assert refused(launcher.run(*arguments)) == named


@pytest.mark.parametrize("length", [3, 5, 8])
def test_options_can_be_cut_short(launcher, host, length):
    options = [f"{'--config'[:length]}=/raid.cfg", "--sysroot"[:length], host]
    result = launcher.fake(*options, "stdisk")
    assert (result.returncode, result.stderr) == (0, call("stdisk"))
    report = launcher.report()
    assert (report["configuration"], report["REPLAY_SYSROOT"]) == ("/raid.cfg", str(host))


@pytest.mark.parametrize("value", ["-raid.cfg", "--plugin", "--", "a=b", "=", "[a,b]", "a b"])
def test_values_may_look_like_anything(launcher, value):
    for options in (["--config", value], [f"--config={value}"]):
        assert launcher.fake(*options, "stdisk").returncode == 0
        assert launcher.report()["configuration"] == value


@pytest.mark.parametrize(
    "options",
    [
        ["--plugin", "{plugin}", "--config", "{config}", "--sysroot", "{host}"],
        ["--sysroot={host}", "--config={config}", "--plugin={plugin}"],
        ["--config", "{config}", "--sysroot={host}", "--plugin", "{plugin}", "--"],
    ],
)
def test_options_stand_in_any_order(launcher, host, options):
    values = {"plugin": launcher.tool.fake_plugin, "config": "-raid.cfg", "host": host}
    arguments = [option.format(**values) for option in options]
    result = launcher.run(*arguments, "stdisk", env={"FAKE_PLUGIN_REPORT": str(launcher.path)})
    assert (result.returncode, result.stderr) == (0, call("stdisk"))
    report = launcher.report()
    assert report["configuration"] == "-raid.cfg"
    assert report["REPLAY_SYSROOT"] == str(host)
    # A path that the loader cannot read is named by a descriptor.
    plain = not re.search("[ :]", str(launcher.tool.replay))
    assert report["LD_PRELOAD"] == (str(launcher.tool.replay) if plain else "/proc/self/fd/100")


def test_without_options_nothing_is_set(launcher):
    assert launcher.fake("stdisk").returncode == 0
    report = launcher.report()
    assert report["configuration"] == "/nowhere/hardraid.cfg"
    assert report["REPLAY_SYSROOT"] == report["LD_PRELOAD"] == ""


def test_configuration_with_a_path_that_is_too_long(launcher):
    assert launcher.fake("--config", "x" * 255, "stdisk").returncode == 0
    assert launcher.report()["configuration"] == "x" * 255
    message = refused(launcher.fake("--config", "x" * 256, "stdisk"))
    assert message == "the configuration's path has 256 bytes, the plug-in takes 255"


def test_configuration_of_a_plugin_that_has_none(launcher):
    message = refused(launcher.run("--plugin", launcher.tool.old_plugin, "--config", "/raid.cfg", "hwraid"))
    assert message.startswith("the plug-in cannot be used: ")
    assert "g_szConfigFileName" in message


def test_plugin_without_commands(launcher):
    message = refused(launcher.run("--plugin", launcher.tool.half_plugin, "stdisk"))
    assert message.startswith("the plug-in cannot be used: ")
    assert "stcli" in message


@pytest.mark.parametrize("name", ["none.so", "text.so", "."])
def test_plugin_that_cannot_be_loaded(launcher, tmp_path, name):
    (tmp_path / "text.so").write_text("no library\n")
    message = refused(launcher.run("--plugin", name, "stdisk", cwd=tmp_path))
    assert message.startswith("the plug-in cannot be loaded: ")
    assert str(tmp_path) in message


def test_program_without_any_plugin_names_both_places(launcher, tmp_path):
    (tmp_path / "bin").mkdir()
    program = shutil.copy2(launcher.program, tmp_path / "bin")
    message = refused(launcher.run("stdisk", program=program))
    assert str(tmp_path / "bin" / "diskscout.so") in message
    assert str(tmp_path / "lib" / "diskscout" / "diskscout.so") in message


@pytest.mark.parametrize("place", ["bin", "lib/diskscout"])
def test_plugin_that_comes_with_the_program(launcher, tmp_path, place):
    (tmp_path / "bin").mkdir()
    program = shutil.copy2(launcher.program, tmp_path / "bin")
    (tmp_path / place).mkdir(parents=True, exist_ok=True)
    shutil.copy2(launcher.tool.fake_plugin, tmp_path / place / "diskscout.so")
    result = launcher.run("stdisk", program=program)
    assert (result.returncode, result.stderr) == (0, call("stdisk"))


def test_replay_library_that_cannot_be_loaded(launcher, host, tmp_path):
    # A command must not run on this host in place of the captured one.
    (tmp_path / "bin").mkdir()
    program = shutil.copy2(launcher.program, tmp_path / "bin")
    (tmp_path / "bin" / "diskscout-replay.so").write_text("no library\n")
    result = launcher.fake("--sysroot", host, "stdisk", program=program)
    assert (result.returncode, result.stdout) == (2, "")
    assert result.stderr.endswith(
        "stcli: the replay library was not loaded, so the captured host cannot be shown\n"
    )


def test_version(launcher):
    result = launcher.run("--version")
    assert (result.returncode, result.stderr) == (0, "")
    version = launcher.tool.run("--version").stdout
    assert result.stdout == version.replace("diskscout", "stcli")


@pytest.mark.parametrize("arguments", [["--help"], ["-h"], ["--hel"], ["--help", "stdisk"], ["--help", "--"]])
def test_help_is_the_usage_and_the_commands(launcher, arguments):
    result = launcher.fake(*arguments)
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout.startswith("Usage: stcli [OPTION]... WORD...\n")
    assert result.stdout.endswith("2 for bad usage.\n" + COMMANDS)
    assert "\n\n\n" not in result.stdout
    for option in OPTIONS:
        assert option in result.stdout
    assert "--replayed" not in result.stdout


@pytest.mark.parametrize("arguments", [[], ["--"], ["--sysroot", "/none"]])
def test_without_words_the_same_is_a_complaint(launcher, arguments):
    result = launcher.fake(*arguments)
    assert (result.returncode, result.stdout) == (2, "")
    assert result.stderr == launcher.fake("--help").stdout


@pytest.mark.parametrize("arguments", [["--help"], []])
def test_usage_is_told_without_a_plugin_that_tells_its_commands(launcher, arguments):
    result = launcher.run("--plugin", launcher.tool.old_plugin, *arguments)
    told = (result.stdout, result.stderr) if arguments else ("", result.stderr)
    assert result.returncode == 2
    assert (told[0] or told[1]).startswith("Usage: stcli ")
    assert told[1].endswith("stcli: the plug-in cannot be used: it does not tell its commands\n")
    assert "leaf_1" not in told[0] + told[1]


@pytest.mark.parametrize("argument", ["--help", "--version"])
def test_answers_that_cannot_be_written_are_status_1(launcher, argument):
    with open("/dev/full", "w", encoding="utf-8") as full:
        result = launcher.fake(argument, stdout=full)
    assert result.returncode == 1
    assert result.stderr == "stcli: the output cannot be written: No space left on device\n"


def test_standard_input_is_the_command_s(launcher):
    read_end, write_end = os.pipe()
    os.write(write_end, b"first line\nsecond line\n")
    os.close(write_end)
    with os.fdopen(read_end, "rb", buffering=0) as lines:
        result = launcher.fake("read", stdin=lines)
        assert (result.returncode, result.stderr) == (0, "first line\n")
        assert lines.read() == b"second line\n"


def closed(launcher, redirections, *arguments):
    """A run by a shell that closes descriptors first."""
    script = f'exec "$0" "$@" {redirections}'
    options = ["--plugin", launcher.tool.fake_plugin]
    env = {"FAKE_PLUGIN_REPORT": str(launcher.path)}
    return launcher.run("-c", script, launcher.program, *options, *arguments, program="/bin/sh", env=env)


def test_closed_standard_input_is_at_its_end(launcher):
    result = closed(launcher, "<&-", "read")
    assert (result.returncode, result.stderr) == (0, "\n")


@pytest.mark.parametrize("redirections", ["<&-", ">&-", "2>&-", "<&- 2>&-", "<&- >&- 2>&-"])
def test_plugin_never_gets_the_number_of_a_standard_stream(launcher, host, redirections):
    for options in ([], ["--sysroot", host]):
        result = closed(launcher, redirections, *options, "stdisk")
        assert result.returncode == 0
        assert int(launcher.report()["lowest_descriptor"]) > 2
        assert result.stderr == ("" if "2>&-" in redirections else call("stdisk"))


def test_without_words_and_streams_it_is_still_bad_usage(launcher):
    assert closed(launcher, "<&- >&- 2>&-").returncode == 2


def test_help_with_closed_error_comes_on_standard_output(launcher):
    result = closed(launcher, "2>&-", "--help")
    assert result.returncode == 0
    assert result.stdout.endswith(COMMANDS)


TOOL = "Cli Path:/opt/tool\nCli Name:toolcli\n"


@pytest.mark.parametrize(
    "text, named",
    [
        (TOOL, "/opt/tool/toolcli"),
        ("Cli Path:/opt/tool/\nCli Name: //toolcli of ours\r\n", "/opt/tool/toolcli"),
        ("Cli Path: /opt/my tool \t\r\nCli Name:toolcli", " /opt/my tool/toolcli"),
        (TOOL + "Cli Name:other\nCli Path:/opt/b\n", "/opt/b/other"),
        (TOOL + "Cli Name: \n cli Path:/x\ncli name:y\n# Cli Name:z\nCli Path:", "/opt/tool/toolcli"),
        (TOOL + "#" * 255 + "Cli Name:behind\n", "/opt/tool/behind"),
    ],
)
@pytest.mark.parametrize("captured", [False, True])
def test_console_says_what_it_drives(launcher, host, tmp_path, text, named, captured):
    config = tmp_path / "raid.cfg"
    config.write_text(text)
    options = ["--sysroot", host] if captured else []
    result = launcher.fake("--config", config, *options, "hwraid")
    said = f"stcli: the console drives {named}, named by the configuration {config}\n"
    assert (result.returncode, result.stdout, result.stderr) == (0, "", said + call("hwraid"))


@pytest.mark.parametrize("text", ["", "Cli Path:/opt/tool\n", "Cli Name:toolcli\n", TOOL + "Cli Path: \n"])
def test_console_says_that_no_tool_is_named(launcher, tmp_path, text):
    config = tmp_path / "raid.cfg"
    config.write_text(text)
    result = launcher.fake("--config", config, "hwraid")
    said = f"stcli: the console has no controller tool: the configuration {config} names none\n"
    assert (result.returncode, result.stderr) == (0, said + call("hwraid"))


def test_console_says_that_its_configuration_is_missing(launcher):
    result = launcher.fake("hwraid")
    said = (
        "stcli: the console has no controller tool: the configuration /nowhere/hardraid.cfg cannot be read: "
        "No such file or directory\n"
    )
    assert (result.returncode, result.stderr) == (0, said + call("hwraid"))


def test_console_of_a_plugin_that_does_not_tell(launcher):
    result = launcher.run("--plugin", launcher.tool.old_plugin, "hwraid")
    assert result.stderr.startswith(
        "stcli: the plug-in does not tell which controller tool the console drives\n"
    )


def test_other_commands_drive_nothing(launcher):
    assert launcher.fake("hwraids").stderr == call("hwraids")


@pytest.mark.parametrize(
    "option",
    [
        "--plugin",
        "--plugin=/none",
        "--plugin=",
        "--plug",
        "--p=x",
        "--sysroot",
        "--sys=/none",
        "--config",
        "--config=a=b",
        "--c",
        "--timeout",
        "--timeout=5",
        "--t",
        "--help",
        "--help=yes",
        "--he",
        "-h",
        "--version",
        "--v",
    ],
)
@pytest.mark.parametrize("options", [[], ["--config", "/a"], ["--sysroot", "/none"]])
def test_options_behind_the_command_are_refused(launcher, options, option):
    for words in (["stdisk", option], ["rand", "-5", "5", option], ["exec", "a", option, "--", "b"]):
        message = refused(launcher.fake(*options, *words))
        assert message == f"{option}: options stand before the command (behind -- it would be a word)"
        assert not launcher.path.exists()


def test_first_option_behind_the_command_is_named(launcher):
    message = refused(launcher.fake("stdisk", "--frob", "--sysroot", "/none", "--config", "/none"))
    assert message.startswith("--sysroot: options stand before the command")


@pytest.mark.parametrize("option", ["--help", "--version"])
def test_what_is_asked_before_the_command_is_answered(launcher, option):
    assert launcher.fake(option, "stdisk", "--config", "/none").returncode == 0


@pytest.mark.parametrize("words", [["--config", "/b"], ["--config=/b"], ["help"], [""], ["--"]])
@pytest.mark.parametrize("options", [[], ["--config", "/a"], ["--sysroot", "/none"], ["--"]])
def test_words_behind_the_console_are_refused(launcher, options, words):
    message = refused(launcher.fake(*options, "hwraid", *words))
    assert message == f'hwraid takes no words, "{words[0]}" stands behind it (options stand before it)'
    assert not launcher.path.exists()
