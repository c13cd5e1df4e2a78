# SPDX-License-Identifier: Apache-2.0
"""What all programs share that show captured hosts: whose names they know, and what they are refused."""

import os
import shutil

import pytest

NO_DIRECTORY = "/nowhere/at/all"


class Asker:
    """The program of these tests, with the replay library beside it."""

    def __init__(self, tool, directory):
        directory.mkdir()
        self.tool = tool
        self.program = directory / "host_asker"
        shutil.copy2(tool.fake_plugin.parent / "host_asker", self.program)
        (directory / "diskscout-replay.so").symlink_to(tool.replay)

    def run(self, *words, **settings):
        return self.tool.run(*words, program=self.program, **settings)

    def names(self, *words, **settings):
        result = self.run(*words, **settings)
        assert (result.returncode, result.stderr) == (0, "")
        return result.stdout.splitlines()

    def refusal(self, *words, **settings):
        """The kind of the refusal, and its sentence."""
        result = self.run(*words, **settings)
        assert (result.returncode, result.stdout) == (2, "")
        lines = result.stderr.splitlines()
        assert lines[-1].startswith("host_asker: ")
        return lines[-1].split(": ", 2)[1:]


@pytest.fixture
def asker(tool, tmp_path):
    return Asker(tool, tmp_path / "asker")


@pytest.fixture
def host(tmp_path):
    directory = tmp_path / "host"
    directory.mkdir()
    (directory / "host.txt").write_text("")
    return directory


def test_names_of_the_running_host(asker):
    assert asker.names("running") == [os.uname().nodename, os.uname().release]


@pytest.mark.parametrize(
    "table, names",
    [
        ("uname nodename web1\nuname release 6.1.0-18-amd64\n", ["web1", "6.1.0-18-amd64"]),
        ("uname nodename web1\n", ["web1", "unknown"]),
        ("uname release 2.4.37\nuname version \\0431\n", ["unknown", "2.4.37"]),
        ("", ["unknown", "unknown"]),
    ],
)
@pytest.mark.parametrize("how", ["thrown", "told"])
def test_names_of_a_captured_host(asker, host, how, table, names):
    (host / "host.txt").write_text(table)
    assert asker.names(how, host) == names


def test_names_of_a_captured_host_that_is_not_shown(asker):
    """Before the second start, and where there is none: the running host's are not taken for them."""
    assert asker.names("captured") == ["unknown", "unknown"]


@pytest.mark.parametrize(
    "table, fault",
    [
        ("device /dev/sda\n\tfrobnicate 1\n", ":2: "),
        ("device /dev/sda\n\tBLKGETSIZE 1\n\tsector 9 00\n", ":3: "),
        ("uname release\n", ":1: uname takes a field and its text"),
    ],
)
def test_fault_of_the_table(asker, host, table, fault):
    (host / "host.txt").write_text(table)
    kind, sentence = asker.refusal("thrown", host)
    assert kind == "captured host"
    assert sentence.startswith(f"{host}/host.txt{fault}")
    # The library's own word, and it alone, for a program that does not ask: whatever its caller's environment says.
    told = asker.run("told", host, env={"REPLAY_FAULT": "keep"})
    assert (told.returncode, told.stdout, told.stderr) == (2, "", f"{sentence}\n")


def test_fault_of_the_environment(asker, host):
    sentence = "REPLAY_FAIL=x: not N or N+"
    assert asker.refusal("thrown", host, env={"REPLAY_FAIL": "x"}) == ["captured host", sentence]
    told = asker.run("told", host, env={"REPLAY_FAIL": "x"})
    assert (told.returncode, told.stdout, told.stderr) == (2, "", f"{sentence}\n")


def test_host_that_cannot_be_shown(asker, host, tmp_path):
    kind = "captured host"
    for how in ("thrown", "told"):
        words = f"{NO_DIRECTORY} is no captured host: it has no host.txt"
        assert asker.refusal(how, NO_DIRECTORY) == [kind, words]
    assert asker.refusal("replayed")[0] == kind
    library = asker.program.parent / "diskscout-replay.so"
    library.unlink()
    assert asker.refusal("thrown", host) == [
        kind,
        f"diskscout-replay.so is neither {library} nor {tmp_path}/lib/diskscout/diskscout-replay.so"
        " (Debian: package diskscout-sim)",
    ]
    library.write_text("no library\n")
    assert asker.refusal("thrown", host) == [
        kind,
        "the replay library was not loaded, so the captured host cannot be shown",
    ]


def test_plugin_that_cannot_be_used(asker, tool, tmp_path):
    plain = tmp_path / "plain.so"
    plain.write_text("no library\n")
    for words in (
        ("companion", "diskscout-block.so"),
        ("library", NO_DIRECTORY, "GetItemInfo"),
        ("library", plain, "GetItemInfo"),
        ("library", "", "GetItemInfo"),
        ("library", tool.fake_plugin, "nothing_of_this_name"),
        ("configuration", tool.half_plugin, "raid.cfg"),
    ):
        assert asker.refusal(*words)[0] == "plug-in", words
    assert asker.run("library", tool.fake_plugin, "GetItemInfo").returncode == 0
    # The caller's fault and not the plug-in's.
    assert asker.refusal("configuration", tool.fake_plugin, "x" * 256)[0] == "usage"


def test_working_directory_that_is_gone(asker, tmp_path):
    gone = tmp_path / "gone"

    def leave():
        gone.mkdir()
        os.chdir(gone)
        gone.rmdir()

    assert asker.refusal("library", "plain.so", "GetItemInfo", preexec_fn=leave)[0] == "plug-in"
    assert asker.refusal("thrown", "host", preexec_fn=leave)[0] == "captured host"
