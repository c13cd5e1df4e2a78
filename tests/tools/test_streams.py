# SPDX-License-Identifier: Apache-2.0
"""Where the output goes: terminals of every width, pipes that are closed, disks that are full, no stream at all."""

import fcntl
import os
import pty
import resource
import signal
import struct
import subprocess
import tempfile
import termios

import pytest

MOUNTS = ["list", "mounts", "-o", "mount_point,source,type,options,root"]
UTF8 = {"LC_ALL": "C.UTF-8"}


def on_terminal(tool, columns, *words, env=None, **settings):
    """What a terminal of that width is sent, as text with plain line ends."""
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("4H", 24, columns, 0, 0))
    attributes = termios.tcgetattr(theirs)
    attributes[1] &= ~termios.OPOST
    termios.tcsetattr(theirs, termios.TCSANOW, attributes)
    with tempfile.TemporaryFile() as log:
        with subprocess.Popen(["cat"], stdin=ours, stdout=log, stderr=subprocess.DEVNULL):
            os.close(ours)
            result = tool.made(*words, env=env, stdout=theirs, **settings)
            os.close(theirs)
        log.seek(0)
        return result, log.read().decode("utf-8")


def width_of(text):
    return max(map(len, text.splitlines()[1:]))


@pytest.mark.parametrize("env", [{}, UTF8, {"TERM": "dumb"}, {"TERM": "xterm-256color", **UTF8}], ids=str)
def test_narrow_form_begins_where_the_table_no_longer_fits(tool, env):
    table = tool.made(*MOUNTS, env=env).stdout
    width = width_of(table)
    for columns, same in ((width, True), (width + 1, True), (0, True), (width - 1, False), (20, False), (1, False)):
        result, text = on_terminal(tool, columns, *MOUNTS, env=env)
        assert (result.returncode, result.stderr) == (0, "")
        assert (text == table) == same, columns
        assert "\x1b" not in text


def test_narrow_form(tool):
    headings = tool.made(*MOUNTS).stdout.splitlines()[1].split("  ")
    headings = [heading.strip() for heading in headings if heading.strip()]
    _, text = on_terminal(tool, 20, *MOUNTS)
    blocks = text.strip("\n").split("\n\n")
    lines = [line for block in blocks for line in block.splitlines() if ": " in line]
    assert [line.split(": ")[0] for line in lines[: len(headings)]] == headings
    assert lines[0] == f"{headings[0]}: /"
    assert f"{headings[1]}: /dev/mapper/vg-root" in lines
    assert len([line for line in lines if line.startswith(f"{headings[0]}: ")]) == 6


SPARED = [
    ("name,kind,size,transport,model,mount_points", "SERIAL"),
    ("name,kind,size,model,mount_points", "SERIAL, BUS"),
    ("name,kind,size,mount_points", "SERIAL, BUS, MODEL"),
]


def test_a_narrow_terminal_has_fewer_columns_of_the_tree(tool):
    before = tool.made("list", "devices", env=UTF8).stdout
    for columns, left_out in SPARED:
        table = tool.made("list", "devices", "-o", columns, env=UTF8).stdout
        assert width_of(table) < width_of(before)
        told = f"{table}Left out for want of room: {left_out}.\n"
        for room in (width_of(before) - 1, width_of(table)):
            assert on_terminal(tool, room, "list", "devices", env=UTF8)[1] == told
        before = table
    # Where that does not help nothing is left out.
    _, blocks = on_terminal(tool, width_of(before) - 1, "list", "devices", env=UTF8)
    assert "SERIAL: " in blocks and "Left out" not in blocks


def test_columns_that_are_named_are_not_left_out(tool):
    columns = ["-o", "name,serial,model,links"]
    width = width_of(tool.made("list", "devices", *columns).stdout)
    _, blocks = on_terminal(tool, width - 1, "list", "devices", *columns)
    assert "SERIAL: " in blocks and "MODEL: " in blocks and "Left out" not in blocks


def test_tree_in_a_narrow_terminal(tool):
    for words in (["list"], ["list", "devices"], ["list", "devices", "--inverse"]):
        for block in ("plain", "hostile", "deep"):
            result, text = on_terminal(tool, 20, *words, block=block, env=UTF8)
            assert (result.returncode, result.stderr) == (0, "")
            assert "\x1b" not in text and "\r" not in text


def test_documents_and_pairs_know_no_terminal(tool):
    for words in (["list", "devices", "--pairs"], ["schema"]):
        result, text = on_terminal(tool, 20, *words)
        assert (result.returncode, text) == (0, tool.made(*words).stdout)
    _, text = on_terminal(tool, 20, "list", "devices", "--json")
    assert text.startswith('{\n  "format": 2,\n')


def test_only_the_outputs_own_terminal_counts(tool):
    table = tool.made(*MOUNTS).stdout
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("4H", 24, 20, 0, 0))
    assert tool.made(*MOUNTS, stdin=theirs, stderr=theirs).stdout == table
    # Nor does one that is nowhere, or a variable's word for it.
    assert tool.made(*MOUNTS, stdin=subprocess.DEVNULL, start_new_session=True).stdout == table
    assert tool.made(*MOUNTS, env={"COLUMNS": "20"}).stdout == table
    os.close(ours)
    os.close(theirs)


@pytest.mark.parametrize("words", [["list"], ["list", "--json"], ["list", "devices", "--pairs"], ["schema"]])
def test_full_disk(tool, words):
    with open("/dev/full", "w", encoding="utf-8") as full:
        result = tool.made(*words, stdout=full)
    assert result.returncode == 1
    assert result.stderr.splitlines()[-1] == "diskscout: the output cannot be written: No space left on device"


@pytest.mark.parametrize("words", [["list", "--json"], ["list"], ["--version", "--json"], ["--version"]])
def test_disk_that_is_full_after_some_bytes(tool, tmp_path, words):
    whole = tool.made(*words).stdout.encode()
    path = tmp_path / "output"

    def limited(size):
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))

    # At every byte of a small document; else close together at the beginning and the end.
    size = len(whole)
    places = range(size) if size < 500 else [*range(4), *range(4, size, size // 12), size - 2, size - 1]
    for place in places:
        with open(path, "wb") as output:
            # The report of the made plug-ins is a file as well.
            result = tool.made(*words, env={"FAKE_PLUGIN_REPORT": "", "FAKE_BLOCK_REPORT": ""}, stdout=output,
                               preexec_fn=lambda: limited(place))
        assert result.returncode == 1, place
        assert "the output cannot be written: File too large" in result.stderr
        # But for the time, which goes on.
        assert len(path.read_bytes()) <= place


def closed_after(tool, count, *words, ignored=False, **settings):
    """A run whose reader goes away after so many bytes; the pipe holds a page more."""
    reader, writer = os.pipe()
    fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, 4096)
    script = ["head", "-c", str(count)] if count else ["true"]
    with subprocess.Popen(script, stdin=reader, stdout=subprocess.DEVNULL) as head:
        os.close(reader)
        if count == 0:
            head.wait(timeout=60)
        result = tool.made(*words, stdout=writer, restore_signals=not ignored, **settings)
        os.close(writer)
    return result


@pytest.mark.parametrize("ignored", [False, True], ids=["usual", "ignored"])
@pytest.mark.parametrize("words", [["list", "devices", "--json"], ["list", "devices"]], ids=["document", "table"])
def test_closed_pipe(tool, words, ignored):
    """With the signal's usual effect the program ends by it; where it is ignored it says what happened."""
    for count in (0, 1, 2, 3, 100, 4095, 4096, 4097, 8192, 20000, 65536, 65537, 100000):
        result = closed_after(tool, count, *words, ignored=ignored, block="many")
        if ignored:
            assert result.returncode == 1
            assert result.stderr.splitlines()[-1] == "diskscout: the output cannot be written: Broken pipe"
        else:
            assert result.returncode in (1, -signal.SIGPIPE)


def test_closed_pipe_of_a_small_document(tool):
    for words in (["list", "--json"], ["list", "--json", "tapes"], ["--version", "--json"], ["list"], ["schema"]):
        result = closed_after(tool, 0, *words, ignored=True)
        assert result.returncode in (1, 2)
        assert "the output cannot be written: Broken pipe" in result.stderr or result.returncode == 2


def test_no_streams_at_all(tool):
    for redirections in (">&-", "<&- >&-", "<&- >&- 2>&-", "2>&-"):
        for words in (["list"], ["list", "--json"]):
            script = f'exec "$0" "$@" {redirections}'
            result = tool.run("-c", script, tool.made_program, *words, program="/bin/sh")
            assert result.returncode == (0 if redirections == "2>&-" else 1)


def test_plugins_never_get_the_number_of_a_standard_stream(tool):
    path = tool.scratch / "report"
    env = {"FAKE_PLUGIN_REPORT": str(path)}
    tool.run("-c", 'exec "$0" "$@" <&- >&- 2>&-', tool.made_program, "list", program="/bin/sh", env=env)
    assert int(tool.read_lines(path)["lowest_descriptor"]) > 2
