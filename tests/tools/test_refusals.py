# SPDX-License-Identifier: Apache-2.0
"""Command lines that make no sense: a sentence and status 2, and with --json a document of the same."""

import json
import os

import pytest
from conftest import complaint
from documents import shown

# The words, and what the sentence must hold.
REFUSED = [
    (["lsit"], 'did you mean "list"?'),
    (["schmea"], 'did you mean "schema"?'),
    (["list", "devcies"], 'did you mean "devices"?'),
    (["list", "filesystem"], 'did you mean "filesystems"?'),
    (["list", "partitons"], 'did you mean "partitions"?'),
    (["list", "raid_disk"], 'did you mean "raid_disks"?'),
    (["list", "--colums", "name"], 'did you mean "--columns"?'),
    (["list", "--classc"], 'did you mean "--classic"?'),
    (["list", "--jsno"], 'did you mean "--json"?'),
    (["list", "tapes"], "tapes"),
    (["list", "Devices"], "Devices"),
    (["list", ""], '""'),
    (["list", "a\nb\x1b[31m\xc2\x9b"], "a?b?"),
    (["list", "--frobnicate"], "--frobnicate"),
    (["--frobnicate", "list"], "--frobnicate"),
    (["list", "-x"], "-x"),
    (["list", "--plugin", ""], "--plugin"),
    (["list", "--block-plugin", ""], "--block-plugin"),
    (["list", "--sysroot", ""], "--sysroot"),
    (["list", "--format", "3"], "3"),
    (["list", "--format", "0"], "0"),
    (["list", "--format", "two"], "two"),
    (["list", "--format", ""], "--format"),
    (["list", "--format", "-1"], "--format"),
    (["list", "--controller", "aac0"], "--controller"),
    (["list", "devices", "--controller", "aac0"], "--controller"),
    (["list", "controllers", "--controller", "aac0"], "--controller"),
    (["list", "containers", "--controller", ""], "--controller"),
    (["list", "--config", "raid.cfg"], "--config"),
    (["list", "mounts", "--config", "raid.cfg"], "--config"),
    (["list", "--classic", "devices"], "--classic"),
    (["list", "--classic", "mounts", "disks"], "--classic"),
    (["list", "--classic", "--block-plugin", "x.so"], "--block-plugin"),
    (["list", "--classic", "disks", "--block-plugin", "x.so"], "--block-plugin"),
    (["list", "mounts", "--inverse"], "--inverse"),
    (["list", "devices", "--plugin", "x.so"], "--plugin"),
    (["list", "disks", "--inverse"], "--inverse"),
    (["list", "sda"], "/dev/sda"),
    (["list", "nvme0n1p2"], "/dev/nvme0n1p2"),
    (["list", "devices", "sda"], "/dev/sda"),
    (["list", "/nowhere/at/all"], "/nowhere/at/all"),
    (["list", "/dev/null"], "/dev/null"),
    (["list", "/"], "/"),
    (["list", "/etc/passwd"], "/etc/passwd"),
    (["list", "devices", "./nothing"], "./nothing"),
    (["list", "/dev/\x1b[31mx\n"], "/dev/?[31mx?"),
    (["list", "disks", "/dev/sda"], "device"),
    (["list", "--classic", "/dev/sda"], "--classic"),
]
# Of tables alone: with --json they are refused for another reason.
OF_TABLES = [
    (["list", "devices", "-o", "nmae"], 'did you mean "name"?'),
    (["list", "devices", "-o", "+modle"], 'did you mean "model"?'),
    (["list", "devices", "--sort", "szie"], 'did you mean "size"?'),
    (["list", "-o", "name"], "--columns"),
    (["list", "-o", "name", "devices", "mounts"], "--columns"),
    (["list", "--columns", "name"], "--columns"),
    (["list", "--sort", "name"], "--sort"),
    (["list", "devices", "mounts", "--sort", "name"], "--sort"),
    (["list", "--pairs"], "--pairs"),
    (["list", "devices", "disks", "--pairs"], "--pairs"),
    (["list", "--no-headings"], "--no-headings"),
    (["list", "devices", "links", "--no-headings"], "--no-headings"),
    (["list", "devices", "-o", "name,name"], "name"),
    (["list", "devices", "-o", "name,size,NAME"], "name"),
    (["list", "devices", "-o", "+size,size"], "size"),
    (["list", "devices", "-o", ""], "--columns"),
    (["list", "devices", "-o", "+"], ""),
    (["list", "devices", "-o", ","], ""),
    (["list", "devices", "-o", "name,"], ""),
    (["list", "devices", "-o", ",name"], ""),
    (["list", "devices", "-o", "name,,size"], ""),
    (["list", "devices", "-o", "total_cylinders"], "total_cylinders"),
    (["list", "devices", "-o", "a\x1b[31m"], "a?[31m"),
    (["list", "devices", "--sort", ""], "--sort"),
    (["list", "devices", "--sort", "name,size"], "name,size"),
    (["list", "devices", "--sort", "colour"], "colour"),
    (["list", "devices", "--sort", "name", "--inverse"], "--inverse"),
    (["list", "devices", "--pairs", "--bytes"], "--pairs"),
    (["list", "devices", "--pairs", "--no-headings"], "--pairs"),
    (["list", "devices", "-o", "name", "-o", "size"], "--columns"),
    (["list", "devices", "-o", "name", "--columns", "name"], "--columns"),
    (["list", "devices", "--sort", "name", "--sort", "size"], "--sort"),
]
IDLE_IN_DOCUMENTS = [
    ["-o", "name"],
    ["--columns", "+name"],
    ["--bytes"],
    ["--pairs"],
    ["--no-headings"],
    ["--sort", "name"],
]


def checked(result):
    """A sentence, which nothing in it can turn into two or let steer a terminal."""
    sentence = complaint(result, 2)
    assert sentence
    assert all(character.isprintable() for character in sentence)
    return sentence


@pytest.mark.parametrize("words, named", [*REFUSED, *OF_TABLES], ids=str)
def test_sentence(tool, words, named):
    result = tool.made(*words)
    assert named in checked(result)
    assert result.stdout == ""
    # Who makes no sense asks nobody; but which devices there are is not for the words to say.
    assert tool.report.get("queries", "0") == "0"
    assert "/" in words[-1] or tool.block_report.get("queries", "0") == "0"


def only_message(result):
    document = json.loads(result.stdout)
    (message,) = document["messages"]
    return message


@pytest.mark.parametrize("words, named", REFUSED, ids=str)
def test_document(tool, words, named):
    result = tool.made(*words, "--json")
    sentence = checked(result)
    assert named in sentence
    message = only_message(result)
    assert [message[key] for key in ("severity", "kind", "code")] == ["error", None, "usage"]
    assert shown(message["text"]) == sentence


@pytest.mark.parametrize("words", IDLE_IN_DOCUMENTS, ids=str)
def test_what_changes_nothing_of_a_document(tool, words):
    result = tool.made("list", "devices", "--json", *words)
    sentence = checked(result)
    assert words[0] in sentence or "--columns" in sentence
    assert only_message(result)["code"] == "usage"


@pytest.mark.parametrize("words", [[], ["list"]])
@pytest.mark.parametrize("place", ["before", "behind"])
def test_document_wherever_it_is_asked_for(tool, words, place):
    wrong = [*words, "--frobnicate"]
    result = tool.made(*(["--json", *wrong] if place == "before" else [*wrong, "--json"]))
    assert only_message(result)["code"] == "usage"


def test_nothing_to_do(tool):
    assert checked(tool.made())
    assert only_message(tool.made("--json"))["code"] == "usage"


@pytest.mark.parametrize("option", ["-o", "--columns", "--sort", "--plugin", "--block-plugin", "--sysroot", "--format"])
def test_option_that_lacks_its_value(tool, option):
    assert option.lstrip("-") in checked(tool.made("list", "devices", option))
    assert only_message(tool.made("list", "devices", "--json", option))["code"] == "usage"


def test_columns_take_one_value(tool):
    """So that what follows is an operand."""
    result = tool.made("list", "-o", "name", "devices")
    assert (result.returncode, result.stderr) == (0, "")
    assert checked(tool.made("list", "devices", "-o", "name", "size"))


def test_flags_take_no_value(tool):
    for option in ("--json", "--classic", "--bytes", "--pairs", "--no-headings", "--inverse"):
        assert option in checked(tool.made("list", "devices", f"{option}=maybe"))


def test_far_words_get_no_suggestion(tool):
    for words in (["frobnicate"], ["list", "tapeworms"], ["list", "--frobnicate"], ["list", "devices", "-o", "colour"]):
        assert "did you mean" not in checked(tool.made(*words))


def test_block_kinds_of_the_first_format(tool):
    for words in (["devices"], ["mounts", "disks"], ["/dev/sda"], ["--block-plugin", "x.so"]):
        result = tool.made("list", "--format", "1", *words)
        assert checked(result)
        again = tool.made("list", "--json", "--format", "1", *words)
        # No document in the first format.
        assert (again.returncode, again.stdout, again.stderr) == (2, "", result.stderr)


def test_operand_that_is_no_device(tool, tmp_path):
    (tmp_path / "file").write_text("")
    (tmp_path / "loop").symlink_to("loop")
    (tmp_path / "dangling").symlink_to("nothing")
    os.mkfifo(tmp_path / "pipe")
    for name in ("file", "loop", "dangling", "pipe", ".", "file/x"):
        result = tool.made("list", "--json", tmp_path / name)
        checked(result)
        assert only_message(result)["code"] == "usage"


def test_flag_with_a_value(tool):
    for word in ("--json=true", "--json=1", "--json=on", "--json=maybe"):
        assert only_message(tool.made("list", "tapes", word))["code"] == "usage"
    for word in ("--json=false", "--json=0", "--json=no"):
        result = tool.made("list", "tapes", word)
        assert (result.returncode, result.stdout) == (2, "")


def test_very_long_words(tool):
    for words in (["list", 5000 * "x"], ["list", "devices", "-o", 5000 * "x,"], ["list", "/" + 5000 * "x"]):
        checked(tool.made(*words))
        assert only_message(tool.made(*words[:1], "--json", *words[-1:]))["code"] == "usage"


def test_help_and_version_are_documents_too(tool):
    version = tool.made("--version").stdout
    assert version.startswith("diskscout ")
    for words, code in ((["--version"], "version"), (["--help"], "help"), (["list", "--help"], "help")):
        text = tool.made(*words).stdout
        for command in ([*words, "--json"], ["--json", *words]):
            result = tool.made(*command)
            assert (result.returncode, result.stderr) == (0, "")
            message = only_message(result)
            assert (message["severity"], message["kind"], message["code"]) == ("note", None, code)
            assert text.strip().startswith(message["text"].strip().split("\n")[0])
            generator = json.loads(result.stdout)["generator"]
            assert f"{generator['name']} {generator['version']}\n" == version


def test_help_tells_kinds_and_options(tool):
    text = tool.made("list", "--help").stdout
    for word in ("devices", "links", "filesystems", "arrays", "mounts", "disks", "raid_disks"):
        assert word in text
    both = text + tool.made("--help").stdout
    for option in ("--classic", "--format", "--columns", "--bytes", "--no-headings", "--pairs", "--sort", "--inverse",
                   "--block-plugin", "schema"):
        assert option in both


def test_refusal_that_cannot_be_written(tool):
    with open("/dev/full", "w", encoding="utf-8") as full:
        result = tool.made("list", "--json", "tapes", stdout=full)
    assert result.returncode in (1, 2)
    assert "diskscout: " in result.stderr
