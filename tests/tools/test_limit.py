# SPDX-License-Identifier: Apache-2.0
"""The wrapper that a site names as its tool: limits of time, one question at a time, nothing left behind."""

import contextlib
import fcntl
import os
import random
import signal
import subprocess
import time
import uuid

import pytest
from raid_site import SOURCES, RaidSite

# How long all of a run may take to end once it has to: a second's grace for TERM, and a busy machine.
PATIENCE = 15


def environment_of(pid):
    try:
        with open(f"/proc/{pid}/environ", "rb") as file:
            return file.read()
    except OSError:
        return b""


def is_running(pid):
    try:
        with open(f"/proc/{pid}/stat", encoding="ascii", errors="replace") as file:
            return file.read().rpartition(")")[2].split()[0] not in "ZX"
    except OSError:
        return False


def children_of(pid):
    try:
        with open(f"/proc/{pid}/task/{pid}/children", encoding="ascii") as file:
            return [int(word) for word in file.read().split()]
    except OSError:
        return []


def wait_until(condition):
    end = time.monotonic() + PATIENCE
    while not condition():
        assert time.monotonic() < end
        time.sleep(0.01)


class Limited:
    """A directory with a link to the program, a tool, and the file that names it."""

    def __init__(self, program, directory):
        self.directory = directory
        directory.mkdir()
        self.link = directory / "limited"
        self.link.symlink_to(program)
        self.tool = directory / "tool"
        self.config = directory / "diskscout-limit.cfg"
        self.mark = f"LIMITED={uuid.uuid4()}"

    def settings(self, **values):
        return {
            # What other runs have left in the usual place is no matter of ours.
            "env": {**os.environ, "LIMITED": self.mark.partition("=")[2], "TMPDIR": str(self.directory)},
            "cwd": self.directory,
            "stdin": subprocess.DEVNULL,
            "stdout": subprocess.PIPE,
            "stderr": subprocess.PIPE,
            **values,
        }

    def write(self, body, *lines):
        """The tool, and the file with these lines beside its name."""
        self.tool.write_text(f"#!/bin/sh\n{body}\n")
        self.tool.chmod(0o755)
        self.config.write_text("".join(f"{line}\n" for line in ("Tool:tool", *lines)))

    def start(self, *arguments, **settings):
        return subprocess.Popen([self.link, *arguments], **self.settings(**settings))

    def run(self, *arguments, **settings):
        """Status, output and complaint, without the program's name; nobody is left when it has ended."""
        if isinstance(settings.get("input"), bytes):
            settings["stdin"] = None
        with contextlib.ExitStack() as stack:
            data = settings.pop("input", None)
            if data is not None:
                settings["stdin"] = subprocess.PIPE
            process = stack.enter_context(self.start(*arguments, **settings))
            output, complaint = process.communicate(data, timeout=PATIENCE + 60)
        assert self.left() == []
        return process.returncode, output, complaint.decode().removeprefix("diskscout-limit: ").rstrip("\n")

    def left(self):
        """Who still has the environment that the runs were given."""
        mark = self.mark.encode()
        pids = [int(name) for name in os.listdir("/proc") if name.isdigit()]
        return [pid for pid in pids if mark in environment_of(pid).split(b"\0") and is_running(pid)]

    def parts(self, process):
        """The started process, its keeper, and the one that waits for the tool, as far as they are there."""
        keepers = children_of(process.pid)
        return [process.pid, *keepers, *(pid for keeper in keepers for pid in children_of(keeper))]


@pytest.fixture
def limited(tool, tmp_path):
    site = Limited(tool.program.parent / "diskscout-limit", tmp_path / "site")
    yield site
    for pid in site.left():
        os.kill(pid, signal.SIGKILL)


# ---- a tool that comes to its end ----


def test_script_and_output_are_handed_through(limited):
    limited.write("cat; echo complaint >&2")
    script = bytes(range(256)) * 40000
    assert limited.run(input=script) == (0, script, "complaint")
    assert limited.run(input=b"") == (0, b"", "complaint")


@pytest.mark.parametrize("status", [0, 1, 2, 123, 124, 125, 126, 127, 255])
def test_the_tool_s_status_is_handed_on(limited, status):
    limited.write(f"exit {status}")
    assert limited.run() == (status, b"", "")


def test_arguments_belong_to_the_tool(limited):
    limited.write('printf "[%s]" "$@"', "Limit:0")
    for before in ([], ["--"], ["--limit", "5"], ["--limit=5", "--"]):
        words = ["--limit", "-x", "--", "", "a b", "--help"]
        assert limited.run(*before, "./tool", *words) == (0, b"[--limit][-x][--][][a b][--help]", "")


def test_a_tool_of_the_command_line_is_looked_for_like_a_command(limited):
    assert limited.run("sh", "-c", "exit 3") == (3, b"", "")


@pytest.mark.parametrize("limit", ["0", "86400"])
def test_limits_that_are_not_reached(limited, limit):
    limited.write("sleep 0.2; echo fine", f"Limit:{limit}")
    assert limited.run() == (0, b"fine\n", "")


def test_a_tool_that_is_killed(limited):
    limited.write("echo half; kill -9 $$")
    assert limited.run() == (137, b"half\n", f"{limited.tool} was ended by signal 9 (Killed)")


def test_tools_that_cannot_be_started(limited):
    limited.write("exit 0")
    limited.tool.unlink()
    told = f"{limited.tool} cannot be started: "
    assert limited.run() == (127, b"", told + "No such file or directory")
    limited.tool.write_text("#!/bin/sh\n")
    assert limited.run() == (126, b"", told + "Permission denied")
    limited.tool.unlink()
    limited.tool.mkdir()
    assert limited.run() == (126, b"", told + "Permission denied")
    assert limited.run("./none") == (127, b"", "./none cannot be started: No such file or directory")


@pytest.mark.parametrize("redirections", ["<&-", ">&-", "<&- >&- 2>&-"])
def test_closed_streams(limited, redirections):
    limited.write(f"echo ran >{limited.directory}/ran")
    command = ["-c", f'exec "$0" {redirections}', str(limited.link)]
    result = subprocess.run(["sh", *command], check=False, timeout=PATIENCE, **limited.settings())
    assert (result.returncode, result.stdout, result.stderr) == (0, b"", b"")
    assert (limited.directory / "ran").read_text() == "ran\n"


def test_a_host_that_ignores_signals_of_children(limited):
    limited.write("exit 3")
    ignore = lambda: signal.signal(signal.SIGCHLD, signal.SIG_IGN)  # noqa: E731
    assert limited.run(preexec_fn=ignore)[0] == 3


# ---- a tool that does not ----

ENDLESS = "while :; do sleep 1; done"
DEAF = f"trap '' TERM INT HUP; {ENDLESS}"
HANGING = {
    "sleeps": "exec sleep 1000",
    "waits for more": "exec cat /dev/zero >/dev/null",
    "ignores TERM": DEAF,
    "has children": "sleep 1000 & sleep 1000 | sleep 1000",
    "has a session of its own": f'setsid sh -c "{DEAF}" & {DEAF}',
    "has gone to the background": f"(setsid sh -c \"{DEAF}\" &) ; {ENDLESS}",
    "has children of children": f"(sh -c '(setsid sh -c \"{DEAF}\" &); exec sleep 1000' &); {DEAF}",
    "is stopped": "kill -STOP $$",
    "says a byte a second": "while :; do printf x; sleep 1; done",
    "noise": "head -c 10000000 /dev/urandom; sleep 1000",
}


@pytest.mark.parametrize("body", HANGING.values(), ids=HANGING)
def test_a_tool_that_hangs_is_ended_with_all_that_it_has_started(limited, body):
    limited.write(body, "Limit:1")
    begin = time.monotonic()
    with open(limited.directory / "raw", "wb") as raw:
        status, _, complaint = limited.run(stdout=raw)
    assert (status, complaint) == (124, f"{limited.tool} timed out after 1 s")
    assert 1 <= time.monotonic() - begin < PATIENCE


def test_what_was_said_before_the_limit_stays(limited):
    limited.write(f"echo first; {ENDLESS}", "Limit:1")
    assert limited.run()[:2] == (124, b"first\n")


@pytest.mark.parametrize("body", ["sleep 1000 &", f"setsid sh -c \"{DEAF}\" &", "(setsid sleep 1000 &)"])
def test_a_child_that_holds_the_pipe_does_not_hold_us(limited, body):
    limited.write(f"echo whole\n{body}\nexit 4")
    begin = time.monotonic()
    # The pipe's end is read to its end: nobody has it any more.
    assert limited.run() == (4, b"whole\n", "")
    assert time.monotonic() - begin < PATIENCE


def test_term_comes_first(limited):
    limited.write(f"trap 'echo told; exit' TERM; {ENDLESS.replace('1', '0.1')}", "Limit:1")
    assert limited.run()[:2] == (124, b"told\n")


# ---- settings ----


@pytest.mark.parametrize(
    "text",
    [
        "Tool:tool",
        "Tool: \ttool \t\r\n",
        "Tool:./tool\n\n# Tool:none\n  \n",
        "Tool:none\nLimit:1\nTool:{directory}/tool\nLimit:60\n",
    ],
)
def test_the_file_stands_beside_the_name(limited, tmp_path, text):
    limited.write("echo ran")
    limited.config.write_text(text.format(directory=limited.directory))
    assert limited.run(cwd="/") == (0, b"ran\n", "")
    # By PATH, by a relative path, and through a link of another directory.
    for word, path in (("limited", limited.directory), ("./limited", "")):
        command = ["sh", "-c", f"PATH={path}:$PATH; {word}"]
        assert subprocess.check_output(command, cwd=limited.directory) == b"ran\n"
    (tmp_path / "other").symlink_to(limited.directory)
    assert subprocess.check_output([tmp_path / "other" / "limited"]) == b"ran\n"


def test_the_file_that_the_page_shows(limited):
    page = (SOURCES / "docs" / "diskscout-limit.md").read_text(encoding="utf-8")
    (shown,) = [block for block in page.split("```") if block.startswith("\nTool:")]
    keys = [line.partition(":")[0] for line in shown.split("\n") if line]
    assert [key for key in keys if f"| `{key}:` |" not in page] == []
    limited.write("echo ran")
    limited.config.write_text(shown.replace("/usr/local/tool/toolcli", "tool").replace("/run/lock/toolcli", "lock"))
    assert limited.run() == (0, b"ran\n", "")
    assert (limited.directory / "lock").exists()


@pytest.mark.parametrize(
    ("text", "why"),
    [
        ("", "{config} names no tool"),
        ("Limit:5\n", "{config} names no tool"),
        ("Tool:\n", "{config}, line 1: the value is missing"),
        ("Tool:tool\nLimit: \n", "{config}, line 2: the value is missing"),
        ("Tool:tool\n\nlimit:5\n", "{config}, line 3: limit:5: there is no such key"),
        (" Tool:tool\n", "{config}, line 1: Tool:tool: there is no such key"),
        ("Tool:tool\nLimit:5 s\n", "{config}, Limit: 5 s is none of 0 to 86400 whole seconds"),
        ("Tool:tool\nLimit:-1\n", "{config}, Limit: -1 is none of 0 to 86400 whole seconds"),
        ("Tool:tool\nLock Limit:86401\n", "{config}, Lock Limit: 86401 is none of 0 to 86400 whole seconds"),
        ("Tool:limited\n", "{directory}/limited is this program itself"),
    ],
)
def test_files_that_make_no_sense(limited, text, why):
    limited.write("echo ran")
    limited.config.write_text(text)
    told = why.format(config=limited.config, directory=limited.directory)
    assert limited.run() == (125, b"", told)


def test_files_that_cannot_be_read(limited):
    told = f"no tool is named, and {limited.config} "
    assert limited.run() == (125, b"", told + "cannot be read: No such file or directory")
    limited.config.mkdir()
    assert limited.run() == (125, b"", told + "is no file")
    limited.config.rmdir()
    os.mkfifo(limited.config)
    assert limited.run() == (125, b"", told + "is no file")


@pytest.mark.parametrize(
    ("arguments", "why"),
    [
        (["--frob", "./tool"], "--frob: there is no such option (see --help)"),
        (["--limit", "5"], "no tool is named (see --help)"),
        (["--limit"], "--limit: "),
        (["--limit", "x", "./tool"], "--limit: x is none of 0 to 86400 whole seconds"),
        (["--lock-limit=1.5", "./tool"], "--lock-limit: 1.5 is none of 0 to 86400 whole seconds"),
        (["--limit", "1", "--limit", "2", "./tool"], "--limit: "),
        (["--lock", "", "./tool"], "--lock: the value must not be empty"),
        ([""], " cannot be started: No such file or directory"),
    ],
)
def test_command_lines_that_make_no_sense(limited, arguments, why):
    limited.write("echo ran")
    status, output, complaint = limited.run(*arguments)
    assert (status, output) == (127 if arguments == [""] else 125, b"")
    assert complaint.startswith(why)
    assert "\n" not in complaint


def test_help_and_version(limited):
    status, text, complaint = limited.run("--help")
    assert (status, complaint) == (0, "")
    for word in ("--limit SECONDS", "--lock FILE", "--lock-limit SECONDS", "TOOL", "diskscout-limit.cfg", "124"):
        assert word.encode() in text
    assert limited.run("--version")[1].startswith(b"diskscout-limit ")


# ---- one question at a time ----

QUESTION = 'echo begin >>log; sleep 0.1; echo end >>log'


def test_questions_wait_for_each_other(limited):
    limited.write(QUESTION, "Lock:lock")
    runs = [limited.start() for _ in range(8)]
    assert [(run.wait(PATIENCE), run.communicate()) for run in runs] == [(0, (b"", b""))] * 8
    assert (limited.directory / "log").read_text() == "begin\nend\n" * 8
    assert (limited.directory / "lock").stat().st_mode & 0o777 == 0o600


def test_without_a_lock_they_do_not(limited):
    limited.write("echo begin >>log; while [ $(wc -l <log) -lt 2 ]; do sleep 0.01; done")
    runs = [limited.start() for _ in range(2)]
    assert [(run.wait(PATIENCE), run.communicate()) for run in runs] == [(0, (b"", b""))] * 2


@contextlib.contextmanager
def held(path):
    with open(path, "w", encoding="ascii") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        yield


@pytest.mark.parametrize("by_option", [False, True])
def test_a_question_that_waits_too_long_is_not_asked(limited, by_option):
    limited.write("echo ran >ran", "Lock:lock", "Lock Limit:1")
    words = ["--lock", "lock", "--lock-limit", "1", "./tool"] if by_option else []
    name = "lock" if by_option else limited.directory / "lock"
    with held(limited.directory / "lock"):
        begin = time.monotonic()
        told = f"another question holds the lock {name} for longer than 1 s: the tool was not asked"
        assert limited.run(*words) == (125, b"", told)
        assert 1 <= time.monotonic() - begin < PATIENCE
    assert not (limited.directory / "ran").exists()
    assert limited.run(*words) == (0, b"", "")
    assert (limited.directory / "ran").exists()


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGKILL])
def test_a_question_that_waits_can_be_ended(limited, number):
    limited.write("echo ran >ran", "Lock:lock", "Lock Limit:0")
    with held(limited.directory / "lock"):
        waiting = limited.start()
        time.sleep(0.2)
        waiting.send_signal(number)
        assert waiting.wait(PATIENCE) == -number
        waiting.communicate()
    assert limited.left() == []
    assert not (limited.directory / "ran").exists()


def is_free(lock):
    with open(lock, "ab") as file:
        try:
            fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            return False
    return True


@pytest.mark.parametrize("body", ["exit 0", "exit 1", "kill -9 $$", DEAF, "setsid sleep 1000 &"])
def test_the_lock_is_free_when_a_question_has_ended(limited, body):
    limited.write(body, "Lock:lock", "Limit:1")
    limited.run()
    assert is_free(limited.directory / "lock")


@pytest.mark.parametrize("which", [0, 1, 2])
def test_the_lock_is_held_until_the_tool_is_gone(limited, which):
    """Whoever of ours is killed: a question that waits is not asked beside what is left of the one before."""
    deaf = f"trap '' TERM; echo $$ >pid; {ENDLESS.replace('1', '0.1')}"
    limited.write(f"[ ! -e pid ] || {{ kill -0 $(cat pid) 2>/dev/null && echo alive || echo gone; exit; }}\n{deaf}")
    limited.config.write_text("Tool:tool\nLock:lock\n")
    first = limited.start()
    wait_until((limited.directory / "pid").exists)
    wait_until(lambda: (limited.directory / "pid").read_text().strip())
    second = limited.start()
    time.sleep(0.1)
    os.kill(limited.parts(first)[which], signal.SIGKILL)
    assert second.communicate(timeout=PATIENCE) == (b"gone\n", b"")
    assert first.wait(PATIENCE) != 0
    first.communicate()
    wait_until(lambda: limited.left() == [])
    assert is_free(limited.directory / "lock")


@pytest.mark.parametrize("kind", ["no directory", "directory", "link", "dangling link"])
def test_locks_that_cannot_be_held(limited, kind):
    limited.write("echo ran", "Lock:place/lock")
    lock = limited.directory / "place" / "lock"
    if kind != "no directory":
        lock.parent.mkdir()
    if kind == "directory":
        lock.mkdir()
    elif "link" in kind:
        lock.symlink_to("target")
        if kind == "link":
            (lock.parent / "target").write_text("")
    status, output, complaint = limited.run()
    assert (status, output) == (125, b"")
    assert complaint.startswith(f"the lock {lock} cannot be held: ")
    assert not (lock.parent / "target").exists() or kind == "link"


# ---- somebody ends us ----

CROWD = f'(setsid sh -c "{ENDLESS}" &); sleep 1000 & {ENDLESS}'
DEAF_CROWD = f'(setsid sh -c "{DEAF}" &); {DEAF}'


@pytest.mark.parametrize("body", [CROWD, DEAF_CROWD], ids=["crowd", "deaf"])
@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGKILL])
def test_ending_us_leaves_nobody(limited, body, number):
    limited.write(f"{body.replace('; sleep', '; echo up; sleep', 1) if body == CROWD else 'echo up; ' + body}")
    process = limited.start()
    assert process.stdout.readline() == b"up\n"
    process.send_signal(number)
    assert process.wait(PATIENCE) == -number
    if number != signal.SIGKILL:
        assert limited.left() == []
    # All that could hold the pipe is gone.
    assert process.communicate(timeout=PATIENCE) == (b"", b"")
    wait_until(lambda: limited.left() == [])


MOMENTS = 100
AT_ONCE = 10


@pytest.mark.parametrize("batch", range(MOMENTS // AT_ONCE))
def test_a_kill_at_a_random_moment_leaves_nobody(limited, batch):
    """Any of our processes, at any moment, by any of these signals."""
    chance = random.Random(batch)
    limited.write(DEAF_CROWD if batch == 0 else CROWD)
    runs = [limited.start() for _ in range(AT_ONCE)]
    moments = sorted((chance.random() ** 2 * 0.3, run) for run in runs)
    begin = time.monotonic()
    for moment, run in moments:
        time.sleep(max(0, begin + moment - time.monotonic()))
        number = chance.choice([signal.SIGKILL, signal.SIGKILL, signal.SIGTERM, signal.SIGINT, signal.SIGHUP])
        with contextlib.suppress(ProcessLookupError):
            os.kill(chance.choice(limited.parts(run)[:3]), number)
    for run in runs:
        assert run.wait(PATIENCE) != 0
        run.communicate(timeout=PATIENCE)
    wait_until(lambda: limited.left() == [])


def kill_all_at_once(limited, process):
    parts = limited.parts(process)
    assert len(parts) == 3
    # Stopped first: nobody shall see another one end.
    for number in (signal.SIGSTOP, signal.SIGKILL):
        for pid in parts:
            os.kill(pid, number)
    process.wait(PATIENCE)


def test_all_of_ours_killed_at_once_take_the_tool_along(limited):
    limited.write("echo up; exec sleep 1000", "Lock:lock")
    process = limited.start()
    assert process.stdout.readline() == b"up\n"
    kill_all_at_once(limited, process)
    process.communicate(timeout=PATIENCE)
    wait_until(lambda: limited.left() == [])
    wait_until(lambda: is_free(limited.directory / "lock"))


def test_the_next_run_ends_what_all_of_ours_have_left(limited):
    """Before it asks; and nobody who is under another lock."""
    limited.write(f"[ ! -e asked ] || {{ echo again; exit; }}\n: >asked\n{DEAF_CROWD}", "Lock:lock")
    other = limited.start("--lock", "other", "sh", "-c", "echo up; exec sleep 1000")
    assert other.stdout.readline() == b"up\n"
    others = limited.left()
    process = limited.start(stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    wait_until(lambda: len(limited.left()) - len(others) >= 3 + 2)
    kill_all_at_once(limited, process)
    # The tool itself is gone, and what it has put into the background is not.
    wait_until(lambda: limited.left() != others)
    assert set(limited.left()) > set(others)
    again = limited.start()
    assert again.communicate(timeout=PATIENCE) == (b"again\n", b"")
    assert (again.returncode, limited.left()) == (0, others)
    other.terminate()
    other.communicate(timeout=PATIENCE)


# ---- on a site ----


def wrapped(tool, tmp_path, limit):
    """A site whose tool is the wrapper, which starts the simulated one."""
    site = RaidSite(tool, tmp_path / "site")
    wrapper = tmp_path / "wrapper"
    wrapper.mkdir()
    (wrapper / "diskscout-limit").symlink_to(tool.program.parent / "diskscout-limit")
    (wrapper / "diskscout-limit.cfg").write_text(
        f"Tool:{tool.program.parent / 'raidsim'}\nLimit:{limit}\nLock:lock\n"
    )
    text = site.config.read_text().replace(f"Cli Path:{site.directory}\n", f"Cli Path:{wrapper}\n")
    site.config.write_text(text.replace("Cli Name:raidsim", "Cli Name:diskscout-limit"))
    return site


def test_a_site_s_lists_come_through(tool, tmp_path):
    plain = RaidSite(tool, tmp_path / "plain").list("controllers", "containers", "raid-disks")
    site = wrapped(tool, tmp_path, 60)
    limited = site.list("controllers", "containers", "raid-disks")
    assert (limited.returncode, limited.stderr) == (0, "")
    assert limited.stdout == plain.stdout != ""


def test_a_site_s_tool_that_hangs_fails_the_list(tool, tmp_path):
    site = wrapped(tool, tmp_path, 1)
    begin = time.monotonic()
    result = site.list("controllers", fault="slow=60000")
    assert result.returncode == 1
    assert time.monotonic() - begin < PATIENCE
    assert "diskscout-limit: " in result.stderr
    assert " timed out after 1 s" in result.stderr
