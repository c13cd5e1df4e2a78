# SPDX-License-Identifier: Apache-2.0
"""Whatever hangs below, the answer is there in time, and nothing is left behind it: no process, no file."""

import concurrent.futures
import contextlib
import json
import os
import pathlib
import random
import resource
import signal
import subprocess
import time
import uuid

import pytest
from conftest import SLACK
from documents import errors_of
from raid_site import RaidSite

STATE = (pathlib.Path(__file__).resolve().parent / "failed-disk.state").read_text()
# Answers like the simulated one, but for what is between the braces when the script asks for this.
TOOL = """#!/bin/sh
script=$(cat)
answer() {{ printf '%s\\n' "$script" | "${{0%/*}}/raidsim"; }}
case $script in
*"{command}"*) {behaviour} ;;
*) answer ;;
esac
"""
SLEEP = "sleep 1000"
HANGS = {
    "term": f"trap '' TERM; {SLEEP}",
    "session": f"setsid sh -c 'trap \"\" TERM; {SLEEP} & {SLEEP}' & {SLEEP}",
    "talks": "while :; do echo noise >&2; done",
    "trickle": "while :; do printf x; sleep 0.2; done",
    "stopped": "kill -STOP $$",
}
CUT = {
    "nothing": ":",
    "noise": "head -c 200000 /dev/urandom",
    "megabytes": "yes noise | head -c 10000000",
    "escapes": "printf '\\033[H\\033[2J\\0337\\033[24;1HStat:OK!\\0338'",
    "half a row": "answer | head -c 340",
    "killed": "kill -9 $$",
    "killed in mid-answer": "answer | head -c 300; kill -9 $$",
    "holds the answer": f"{SLEEP} & :",
}
WHOLE = {
    "says much": "yes noise | head -c 10000000 >&2; answer",
    "leaves somebody": f"setsid sh -c '{SLEEP}' & answer",
    "leaves somebody who ignores it": f"setsid sh -c 'trap \"\" TERM; {SLEEP}' & answer",
}


def marked(mark):
    """The processes that have this in their environment."""
    found = {}
    for number in filter(str.isdigit, os.listdir("/proc")):
        process = pathlib.Path("/proc", number)
        with contextlib.suppress(OSError):
            if mark.encode() in (process / "environ").read_bytes():
                found[int(number)] = os.readlink(process / "exe")
    return found


class Watched:
    """Runs whose processes and files are told from all others."""

    def __init__(self, site, room):
        self.site = site
        self.room = room
        room.mkdir()

    def environment(self, **more):
        self.mark = f"DISKSCOUT_TEST_MARK={uuid.uuid4()}"
        name, value = self.mark.split("=")
        return {name: value, "TMPDIR": str(self.room), **more}

    def run(self, *arguments, env=None, **settings):
        result = self.site.run(*arguments, env=self.environment(**(env or {})), **settings)
        assert self.left() == []
        return result

    def start(self, *arguments, program=None, **settings):
        command = [program or self.site.tool.program, *arguments]
        environment = {**os.environ, "RAIDSIM_STATE": str(self.site.directory / "state.txt"), **self.environment()}
        for stream in ("stdout", "stderr"):
            settings.setdefault(stream, subprocess.DEVNULL)
        return subprocess.Popen(command, env=environment, cwd=self.site.directory, **settings)

    def left(self):
        return [*marked(self.mark).values(), *self.room.iterdir()]

    def nothing_is_left(self, within=5):
        end = time.monotonic() + within
        while self.left() and time.monotonic() < end:
            time.sleep(0.01)
        return self.left() == []

    def behave(self, command, behaviour):
        """As if the tool did that when it is asked this."""
        script = self.site.directory / "tool"
        # One that runs cannot be written.
        script.unlink(missing_ok=True)
        script.write_text(TOOL.format(command=command, behaviour=behaviour))
        script.chmod(0o755)
        self.site.config.write_text(self.site.config.read_text().replace("Name:raidsim", "Name:tool"))

    def list(self, *kinds, limit=1, status=None, **settings):
        begin = time.monotonic()
        words = ["list", *kinds, "--json", "--config", "raid.cfg", "--timeout", str(limit)]
        result = self.run(*words, **settings)
        took = time.monotonic() - begin
        assert status is None or result.returncode == status, result.stderr
        return json.loads(result.stdout), took


class Site(RaidSite):
    """Beside what it holds always there is the tool of these tests."""

    def run(self, *arguments, **settings):
        env = {"RAIDSIM_STATE": str(self.directory / "state.txt"), **settings.pop("env", {})}
        result = self.tool.run(*arguments, env=env, cwd=self.directory, **settings)
        left = {path.name for path in self.directory.iterdir() if not path.is_symlink()}
        assert left <= {"raid.cfg", "state.txt", "tool"}
        return result


@pytest.fixture
def watched(tool, tmp_path):
    return Watched(Site(tool, tmp_path / "site", STATE), tmp_path / "room")


def as_root(reason):
    return pytest.mark.skipif(os.geteuid() != 0, reason=f"{reason} takes root")


def error_of(document, kind):
    """Beside it there may be the one that says what is the case with all of them."""
    (error,) = [error for error in errors_of(document) if error["kind"] == kind]
    return error


# ---- the controller tool ----


@pytest.mark.parametrize("behaviour", HANGS)
def test_tool_that_hangs(watched, behaviour):
    watched.behave("container list", HANGS[behaviour])
    document, took = watched.list("controllers", "containers", "raid-disks", status=1)
    assert took < 1 + SLACK
    assert not document["containers"]
    assert [len(document[kind]) for kind in ("controllers", "raid_disks")] == [1, 4]
    error = error_of(document, "containers")
    assert error["code"] == "timed_out"
    assert "timed out after 1 s at container list" in error["text"]


@pytest.mark.parametrize("behaviour", CUT)
def test_tool_whose_answer_is_none(watched, behaviour):
    watched.behave("container list", CUT[behaviour])
    document, took = watched.list("controllers", "containers", "raid-disks", limit=20, status=1)
    assert took < SLACK
    assert not document["containers"]
    assert [len(document[kind]) for kind in ("controllers", "raid_disks")] == [1, 4]
    error = error_of(document, "containers")
    assert error["code"] == "query_failed"
    assert "on aac0: the controller tool or the filter has failed, or the answer was cut; " in error["text"]


@pytest.mark.parametrize("behaviour", WHOLE)
def test_tool_that_leaves_something_beside_its_answer(watched, behaviour):
    watched.behave("container list", WHOLE[behaviour])
    document, took = watched.list("containers", limit=20, status=0)
    assert took < SLACK
    assert len(document["containers"]) == 1


def test_first_question_without_an_answer(watched):
    watched.behave("controller list", SLEEP)
    document, took = watched.list("controllers", "containers", "mounts", status=1)
    assert took < 1 + SLACK
    assert document["controllers"] is None and document["containers"] is None
    assert document["mounts"]
    assert "timed out after 1 s at controller list" in errors_of(document)[0]["text"]


def test_tables_tell_it_too(watched):
    watched.behave("container list", SLEEP)
    result = watched.run("list", "containers", "raid-disks", "--config", "raid.cfg", "--timeout", "1")
    assert result.returncode == 1
    assert "timed out after 1 s at container list" in result.stderr
    assert "0:03:0" in result.stdout


def test_filter_that_hangs(watched):
    (watched.site.directory / "diskscout-filter").unlink()
    script = watched.site.directory / "filter"
    script.write_text(f"#!/bin/sh\n{SLEEP}\n")
    script.chmod(0o755)
    watched.site.config.write_text(watched.site.config.read_text().replace("diskscout-filter", "filter"))
    begin = time.monotonic()
    started = watched.start("list", "controllers", "--config", "raid.cfg", "--timeout", "1", stderr=subprocess.PIPE)
    _, told = started.communicate()
    assert time.monotonic() - begin < 1 + SLACK
    assert b"timed out after 1 s at controller list" in told
    assert watched.left() == []


def test_two_at_once_on_one_controller(watched):
    kinds = ("controllers", "containers", "raid-disks", "raid-space")
    alone, _ = watched.list(*kinds, limit=20, status=0)
    with concurrent.futures.ThreadPoolExecutor() as pool:
        words = ["list", *kinds, "--json", "--config", "raid.cfg"]
        runs = [pool.submit(watched.site.run, *words, env=watched.environment()) for _ in range(4)]
        documents = [json.loads(run.result().stdout) for run in runs]
    for document in documents:
        assert {**document, "time": ""} == {**alone, "time": ""}
    assert list(watched.room.iterdir()) == []


# ---- plug-ins ----


def test_plugin_that_hangs(tool):
    begin = time.monotonic()
    document = tool.made_document("disks", "partitions", "cdroms", "--timeout", "1", classic="hanging", status=1)
    assert time.monotonic() - begin < 1 + SLACK
    assert [document[kind] is None for kind in ("disks", "partitions", "cdroms")] == [False, True, False]
    error, leading = errors_of(document)
    assert (error["kind"], error["code"]) == ("partitions", "timed_out")
    assert (leading["kind"], leading["code"]) == (None, "problem_found")
    assert all("timed out after 1 s at partition list" in text for text in (error["text"], leading["text"]))


def test_plugin_that_crashes(tool):
    document = tool.made_document("disks", "partitions", "cdroms", classic="crashing", status=1)
    assert [document[kind] is None for kind in ("disks", "partitions", "cdroms")] == [False, True, False]
    error, leading = errors_of(document)
    assert (error["kind"], error["code"]) == ("partitions", "query_failed")
    assert (leading["kind"], leading["code"]) == (None, "problem_found")
    assert all("was ended by signal 11" in text for text in (error["text"], leading["text"]))


def test_plugin_that_leaves_a_process(tool):
    begin = time.monotonic()
    mark = f"DISKSCOUT_TEST_MARK={uuid.uuid4()}"
    document = tool.made_document("disks", "cdroms", classic="companion", env=dict([mark.split("=")]))
    assert time.monotonic() - begin < SLACK
    assert len(document["disks"]) == 2
    assert marked(mark) == {}


# ---- the diagnostic command line ----


def test_command_that_hangs(watched, tool):
    begin = time.monotonic()
    program = tool.program.parent / "stcli"
    environment = watched.environment()
    result = tool.run("--timeout", "1", "exec", SLEEP, program=program, env=environment)
    assert time.monotonic() - begin < 1 + SLACK
    assert result.returncode == 1
    assert result.stderr.endswith("stcli: timed out after 1 s at exec\n")
    assert watched.left() == []


# ---- what the kernel waits for ----


@pytest.fixture
def place(tmp_path):
    (tmp_path / "silent").mkdir()
    return tmp_path / "silent"


def in_silent_mount(tool, directories, kind, place, *command, **settings):
    """What the command did where this is a file system that never answers."""
    wrapper = directories[1] / "silent_mount"
    result = tool.run(kind, place, *command, program=wrapper, **settings)
    if result.returncode == 77:
        pytest.skip(f"no file system of ours can be mounted here: {result.stderr.strip()}")
    return result


@as_root("mounting")
@pytest.mark.parametrize(
    "program,words,told",
    [
        ("diskscout", ["list", "devices", "{}/node", "--timeout", "1"], "{}/node: timed out after 1 s at the path\n"),
        ("stcli", ["--timeout", "1", "volspace", "{}"], "timed out after 1 s at volspace\n"),
    ],
)
def test_mount_that_never_answers(watched, tool, directories, place, program, words, told):
    words = [word.format(place) for word in words]
    begin = time.monotonic()
    environment = watched.environment()
    result = in_silent_mount(tool, directories, "left", place, tool.program.parent / program, *words, env=environment)
    assert time.monotonic() - begin < 1 + SLACK
    assert result.returncode != 0
    assert result.stderr.endswith(told.format(place))
    assert watched.left() == []


@as_root("mounting")
def test_mount_that_never_answers_is_listed(watched, tool, directories, place):
    """Nobody asks it who need not."""
    words = ["list", "mounts", "devices", "disks", "--json", "--timeout", "30"]
    begin = time.monotonic()
    result = in_silent_mount(tool, directories, "left", place, tool.program, *words, env=watched.environment())
    assert time.monotonic() - begin < SLACK
    assert result.returncode == 0
    (mount,) = [mount for mount in json.loads(result.stdout)["mounts"] if mount["mount_point"] == str(place)]
    assert mount["available"] is None


@as_root("mounting")
def test_process_that_cannot_be_ended_is_named(watched, tool, directories, place, tmp_path):
    # Who is named is looked at while the file system is still there.
    script = f"""{tool.program.parent}/stcli --timeout 1 volspace {place} 2>{tmp_path}/told
        pid=$(sed -n 's/.*process \\([0-9]*\\) cannot be ended.*/\\1/p' {tmp_path}/told)
        sed 's/.*) //; s/ .*//' /proc/$pid/stat"""
    begin = time.monotonic()
    result = in_silent_mount(tool, directories, "taken", place, "sh", "-c", script, env=watched.environment())
    assert time.monotonic() - begin < 1 + SLACK
    assert "timed out after 1 s at volspace" in (tmp_path / "told").read_text()
    assert result.stdout == "D\n"
    assert watched.nothing_is_left()


# ---- our own end ----

RAID_RUN = ("list", "controllers", "containers", "raid-disks", "--config", "raid.cfg")
LOCAL_RUN = ("list", "disks", "devices", "mounts")
ENDS = (signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGKILL)


def end_at_moments(watched, number, count):
    """Ends so many runs; one that was over before it heard of the signal does not count, and was slower once."""
    moments = random.Random(number)
    watched.behave("container list", "sleep 0.05; answer")
    length = {}
    for run in (RAID_RUN, LOCAL_RUN):
        begin = time.monotonic()
        assert watched.start(*run).wait() == 0
        length[run] = time.monotonic() - begin
    heard = 0
    for _ in range(20 * count):
        run = (RAID_RUN, LOCAL_RUN)[heard % 2]
        started = watched.start(*run)
        time.sleep(length[run] * moments.random())
        started.send_signal(number)
        status = started.wait()
        assert status in (0, -number)
        assert watched.nothing_is_left(), (heard, run, number)
        if status == 0:
            length[run] *= 0.8
        else:
            heard += 1
        if heard == count:
            break
    return heard


def test_end_at_any_moment(tool, tmp_path):
    """100 moments all over a run of either side; each signal has a lane of its own."""
    count = 25
    lanes = [Watched(Site(tool, tmp_path / f"site{n}", STATE), tmp_path / f"room{n}") for n in ENDS]
    with concurrent.futures.ThreadPoolExecutor(len(ENDS)) as pool:
        heard = list(pool.map(end_at_moments, lanes, ENDS, [count] * len(ENDS)))
    assert heard == [count] * len(ENDS)


def wait_until(condition, within=10):
    end = time.monotonic() + within
    while not condition():
        assert time.monotonic() < end
        time.sleep(0.01)


@pytest.mark.parametrize("number", ENDS)
def test_end_while_the_tool_hangs(watched, number):
    begun = watched.room / "begun"
    trap = "trap '' TERM;" if number in (signal.SIGTERM, signal.SIGKILL) else ""
    watched.behave("container list", f"{trap} >{begun}; {SLEEP}")
    started = watched.start(*RAID_RUN)
    wait_until(begun.exists)
    begun.unlink()
    started.send_signal(number)
    assert started.wait() == -number
    assert watched.nothing_is_left(3)


def test_next_run_sweeps_what_a_kill_of_all_leaves(watched):
    begun = watched.room / "begun"
    watched.behave("container list", f">{begun}; {SLEEP}")
    started = watched.start(*RAID_RUN)
    wait_until(begun.exists)
    begun.unlink()
    ours = [pid for pid, program in marked(watched.mark).items() if pathlib.Path(program).name == "diskscout"]
    assert len(ours) == 4
    for pid in ours:
        os.kill(pid, signal.SIGSTOP)
    for pid in ours:
        # Some go with whom they belong to.
        with contextlib.suppress(ProcessLookupError):
            os.kill(pid, signal.SIGKILL)
    started.wait()
    wait_until(lambda: not set(ours) & set(marked(watched.mark)))
    first = watched.mark
    assert marked(first) and list(watched.room.iterdir())
    document, _ = watched.list("controllers", status=0)
    assert len(document["controllers"]) == 1
    assert marked(first) == {}


# ---- what we are given ----


@pytest.mark.parametrize("closed,status", [([0], 0), ([1], 1), ([2], 0), ([0, 1, 2], 1)])
def test_closed_streams(watched, closed, status):
    def close():
        for descriptor in closed:
            os.close(descriptor)

    assert watched.start(*RAID_RUN, preexec_fn=close).wait() == status
    assert watched.left() == []


def mounted(options):
    """Where nothing is shared nothing has to be made private, which a root directory that is no mount refuses."""
    with open("/proc/self/mountinfo", encoding="utf-8", errors="replace") as table:
        alone = [] if " shared:" in table.read() else ["--propagation", "unchanged"]
    return ["unshare", "-m", *alone, "sh", "-c", f'mount -t tmpfs -o {options} none "$TMPDIR" && exec "$0" "$@"']


@as_root("mounting")
@pytest.mark.parametrize(
    "options,cause",
    [
        ("nr_inodes=1", "No space left on device"),
        ("ro", "Read-only file system"),
    ],
)
def test_directory_that_takes_nothing(watched, options, cause):
    program, *words = mounted(options)
    result = watched.run(*words, watched.site.tool.program, *RAID_RUN, program=program)
    assert result.returncode == 1
    assert f"no directory for the controller tool's files can be made in {watched.room}: {cause}" in result.stderr


@as_root("mounting")
def test_full_disk(watched):
    program, *words = mounted("size=4k,nr_inodes=100")
    words[-1] = words[-1].replace("&& exec", '&& head -c 4096 /dev/zero >"$TMPDIR/full" && exec')
    result = watched.run(*words, watched.site.tool.program, *RAID_RUN, "--timeout", "5", program=program)
    assert result.returncode == 1
    assert "the RAID controller query failed" in result.stderr


def test_directory_that_is_not_there(watched):
    environment = {**watched.environment(), "TMPDIR": str(watched.room / "none")}
    result = watched.site.run(*RAID_RUN, env=environment)
    assert result.returncode == 1
    assert f"can be made in {watched.room}/none: No such file or directory" in result.stderr


def limited(kind, number, user=None):
    def limit():
        resource.setrlimit(kind, (number, number))
        if user is not None:
            os.setresuid(user, user, user)

    return limit


@pytest.mark.parametrize("number", [4, 6, 8, 9, 10, 12])
def test_few_descriptors(watched, number, is_sanitized):
    """A named cause, or all of it."""
    if is_sanitized and number < 9:
        pytest.skip("the sanitizer needs descriptors for what is thrown")
    started = watched.start(
        *RAID_RUN, "--timeout", "5", preexec_fn=limited(resource.RLIMIT_NOFILE, number), stderr=subprocess.PIPE
    )
    _, told = started.communicate()
    assert started.returncode == 0 or b"Too many open files" in told or b"query failed" in told
    assert watched.nothing_is_left(1)


@as_root("another user")
@pytest.mark.parametrize("number", [1, 2, 3, 4])
def test_few_processes(watched, number):
    # The limit counts all processes of a user: this one has no others, in tests that run beside this one either.
    user = 1000000 + os.getpid()
    if not os.access(watched.site.tool.program, os.X_OK) or not is_open_to_all(watched.site.tool.program):
        pytest.skip("the program was built where no other user gets to")
    started = watched.start(
        "list",
        "disks",
        "--timeout",
        "5",
        preexec_fn=limited(resource.RLIMIT_NPROC, number, user),
        stderr=subprocess.PIPE,
    )
    _, told = started.communicate()
    assert started.returncode == 0 or b"Resource temporarily unavailable" in told
    assert started.returncode != 0 or number == 4
    assert watched.nothing_is_left(1)


def is_open_to_all(path):
    return all(parent.stat().st_mode & 0o1 for parent in [path, *path.parents])


def test_ends_of_children_that_are_ignored(watched):
    def ignore():
        signal.signal(signal.SIGCHLD, signal.SIG_IGN)

    started = watched.start(*RAID_RUN, "--json", preexec_fn=ignore, stdout=subprocess.PIPE)
    document = json.loads(started.communicate()[0])
    assert started.returncode == 0
    assert len(document["containers"]) == 1
    assert watched.left() == []
