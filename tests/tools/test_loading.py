# SPDX-License-Identifier: Apache-2.0
"""Both plug-ins and the captured host, when one of them cannot be had: a document that says so, and status 2."""

import json
import shutil

import pytest
from conftest import complaint
from documents import errors_of


def refused(result, code):
    """The sentence of the one error, which standard error tells as well."""
    assert result.returncode == 2
    (error,) = errors_of(json.loads(result.stdout))
    assert error["code"] == code
    return error["text"]


def both(tool, *words, code, **settings):
    """The sentence of a run with a document and of one without."""
    sentence = complaint(tool.run(*words, **settings), 2)
    assert refused(tool.run(*words, "--json", **settings), code) == sentence
    return sentence


@pytest.fixture
def unusable(tool, tmp_path):
    text = tmp_path / "text.so"
    text.write_text("no library\n")
    return {"none": tmp_path / "none.so", "text": text, "folder": tmp_path, "half": tool.half_plugin}


@pytest.mark.parametrize("which", ["none", "text", "folder", "half"])
@pytest.mark.parametrize("words", [["--classic", "--plugin"], ["--plugin"], ["devices", "--block-plugin"]], ids=str)
def test_plugin(tool, unusable, words, which):
    sentence = both(tool, "list", *words, unusable[which], code="plugin_not_loaded")
    if which == "half":
        assert "SetItemInfo" in sentence
    else:
        assert str(unusable[which]) in sentence


@pytest.mark.parametrize(
    "words",
    [["tapes"], ["--wrong"], ["/nowhere/at/all"], ["--plugin", "/none.so"], ["--block-plugin", "/none.so"], ["--help"]],
    ids=str,
)
def test_document_of_nothing_on_a_captured_host(tool, tmp_path, words):
    """It never tells the names of the running one."""
    (tmp_path / "host.txt").write_text("")
    (tmp_path / "sys").mkdir()
    for sysroot in (["--sysroot", tmp_path], [f"--sysroot={tmp_path}"], ["--sysroot", tmp_path / "none"]):
        result = tool.run("list", *words, *sysroot, "--json")
        assert json.loads(result.stdout)["host"] == {"name": None, "kernel": None}


@pytest.mark.parametrize("kept", [100, 1000, 4096, 20000])
@pytest.mark.parametrize(
    "name, words, code",
    [
        ("diskscout.so", ["disks", "--classic"], "plugin_not_loaded"),
        ("diskscout-block.so", ["devices"], "plugin_not_loaded"),
        ("diskscout-replay.so", ["disks"], "captured_host_not_loaded"),
    ],
)
def test_library_without_its_end(tool, tmp_path, name, words, code, kept):
    """The loader would map it, and touch what is not there."""
    program = tool.complete_copy(tmp_path / "bin")
    library = tmp_path / "bin" / name
    library.write_bytes(library.read_bytes()[:kept])
    if name == "diskscout-replay.so":
        (tmp_path / "host.txt").write_text("")
        words = [*words, "--sysroot", tmp_path]
    result = tool.run("list", *words, "--json", program=program)
    assert refused(result, code)
    assert tool.run("list", *words, program=program).returncode == 2


def test_program_without_any_plugin(tool, tmp_path):
    program = tool.copy_program(tmp_path / "bin")
    for kind, name in (("disks", "diskscout.so"), ("devices", "diskscout-block.so")):
        sentence = both(tool, "list", kind, *(["--classic"] if kind == "disks" else []), code="plugin_not_loaded",
                        program=program)
        assert str(tmp_path / "bin" / name) in sentence
        assert str(tmp_path / "lib" / "diskscout" / name) in sentence


def test_installed_block_plugin_is_found(tool, tmp_path):
    program = tool.copy_program(tmp_path / "bin")
    installed = tmp_path / "lib" / "diskscout"
    installed.mkdir(parents=True)
    shutil.copy2(tool.fake_block_plugin, installed / "diskscout-block.so")
    result = tool.run("list", "devices", "--json", program=program)
    assert (result.returncode, result.stderr) == (0, "")
    assert len(json.loads(result.stdout)["devices"]) == 12


def test_block_plugin_by_a_bare_name(tool, tmp_path):
    shutil.copy2(tool.fake_block_plugin, tmp_path / "bare.so")
    result = tool.run("list", "devices", "--block-plugin", "bare.so", cwd=tmp_path)
    assert (result.returncode, result.stderr) == (0, "")
    assert "nvme0n1" in result.stdout


def test_classic_plugin_is_no_block_plugin(tool):
    """It has the same functions, but no list of these codes: no answer is not an empty one."""
    result = tool.run("list", "devices", "--json", "--block-plugin", tool.old_plugin)
    assert result.returncode in (1, 2)
    assert json.loads(result.stdout).get("devices") is None


@pytest.fixture
def host(tmp_path):
    directory = tmp_path / "host"
    directory.mkdir()
    (directory / "host.txt").write_text("uname nodename cellar\nuname release 6.6.6-test\n")
    return directory


def test_captured_host_names_itself(tool, host):
    document = tool.made_document("--sysroot", host)
    assert document["host"] == {"name": "cellar", "kernel": "6.6.6-test"}


def test_directory_without_a_table(tool, tmp_path):
    sentence = both(tool, "list", "--sysroot", tmp_path, code="captured_host_not_loaded")
    assert sentence == f"{tmp_path} is no captured host: it has no host.txt"
    both(tool, "list", "--sysroot", tmp_path / "none", code="captured_host_not_loaded")


@pytest.mark.parametrize("words", [[], ["devices"], ["--classic"]], ids=str)
def test_malformed_table(tool, host, words):
    (host / "host.txt").write_text("device /dev/sda\n\tfrobnicate 1\n")
    result = tool.run("list", *words, "--json", "--sysroot", host)
    refused(result, "captured_host_not_loaded")
    assert f"{host}/host.txt:2: " in result.stderr
    result = tool.run("list", *words, "--sysroot", host)
    assert (result.returncode, result.stdout) == (2, "")
    assert f"{host}/host.txt:2: " in result.stderr


def test_missing_replay_library(tool, host, tmp_path):
    program = tool.copy_program(tmp_path / "bin")
    words = ["list", "--classic", "--sysroot", host, "--plugin", tool.plugin]
    assert "diskscout-replay.so" in both(tool, *words, code="captured_host_not_loaded", program=program)


def test_replay_library_that_cannot_be_loaded(tool, host, tmp_path):
    program = tool.copy_program(tmp_path / "bin")
    (tmp_path / "bin" / "diskscout-replay.so").write_text("no library\n")
    words = ["list", "--classic", "--sysroot", host, "--plugin", tool.plugin, "--json"]
    refused(tool.run(*words, program=program), "captured_host_not_loaded")


def test_options_reach_the_second_start(tool, host):
    (host / "host.txt").write_text("device /dev/sda\n\tnumber 8:0\n")
    words = ["-o", "name,size", "--bytes", "--no-headings", "--sort", "size", "/dev/sda", "devices"]
    lines = tool.made_text(*words, "--sysroot", host).splitlines()
    assert [line.split() for line in lines][0] == ["sda10", "1048576"]
    assert len(lines) == 7
    pairs = tool.made_text("--pairs", "--columns=name", "devices", "--inverse", "/dev/sda", "--sysroot", host)
    assert pairs == 'NAME="sda"\n'
    more = tool.made_text("devices", "-o", "+nguid", "--sysroot", host).splitlines()
    assert "NGUID" in more[1]


def test_both_plugins_reach_the_second_start(tool, host):
    words = ["--plugin", tool.fake_plugin, "--block-plugin", tool.fake_block_plugin, "--sysroot", host]
    result = tool.run("list", "--json", *words)
    document = json.loads(result.stdout)
    assert (len(document["devices"]), len(document["disks"])) == (12, 2)
