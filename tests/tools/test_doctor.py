# SPDX-License-Identifier: Apache-2.0
"""What doctor finds on captured hosts, and what it does with a machine that hangs."""

import json
import os
import re
import resource
import signal
import sys
import time

import pytest
from conftest import SLACK, complaint
from raid_site import SOURCES

sys.path.insert(0, str(SOURCES / "tests" / "block"))
from unfold import hosts_in, unfold  # noqa: E402

TESTS = SOURCES / "tests"
DOCTOR = TESTS / "tools" / "doctor"
PREPARED = hosts_in(DOCTOR)
CAPTURED = [host for room in ("hosts", "block/hosts") for host in hosts_in(TESTS / room)]
ROW = ["check", "question", "verdict", "text", "advice"]
STATUS = {"problem": 1, "warning": 3}


def expected_of(host):
    """The options of the call, and the findings."""
    lines = (host / "expected.txt").read_text(encoding="utf-8").splitlines()
    options = [word for line in lines if line.startswith("asks ") for word in line.split()[1:]]
    return options, [tuple(line.split(" ", 2)) for line in lines if not line.startswith("asks ")]


def captured_findings():
    found = {}
    for line in (DOCTOR / "captured.txt").read_text(encoding="utf-8").splitlines():
        if not line.startswith("#"):
            host, finding = line.split(": ")
            found.setdefault(host, []).append(tuple(finding.split()))
    return found


def findings(document):
    rows = [row for row in document["checks"] if row["verdict"] in STATUS]
    return [(row["verdict"], row["check"], row["text"]) for row in rows]


def status_of(found):
    return min((STATUS[verdict] for verdict, *_ in found), default=0)


def examined(tool, host, *options):
    result = tool.run("doctor", "--json", *options, "--sysroot", host)
    document = json.loads(result.stdout)
    assert result.returncode == document["exit_status"] == status_of(findings(document))
    return document


def with_mounts(host):
    """A mount table out of the kernel's own, where none was captured."""
    table = host / "proc" / "self" / "mountinfo"
    if (host / "etc" / "mtab").exists() or (host / "etc" / "mtab").is_symlink():
        return
    lines = table.read_bytes().splitlines() if table.exists() else []
    rows = [line.split(b" - ")[1].split() + line.split(b" ")[4:5] for line in lines if b" - " in line]
    (host / "etc").mkdir(exist_ok=True)
    (host / "etc" / "mtab").write_bytes(b"".join(b"%s %s %s rw 0 0\n" % (row[1], row[-1], row[0]) for row in rows if len(row) > 3))


def by_root(host):
    table = (host / "host.txt").read_text(encoding="latin-1")
    (host / "host.txt").write_text(table.replace("\topen fails EACCES\n", ""), encoding="latin-1")


def looked_at(host, into):
    """A captured host as somebody would meet it."""
    if "block" not in host.parts:
        return host
    whole = unfold(host, into)
    with_mounts(whole)
    by_root(whole)
    return whole


def name_of(host):
    return str(host.relative_to(TESTS))


@pytest.mark.parametrize("host", PREPARED, ids=lambda host: host.name)
def test_prepared_host(tool, host, tmp_path):
    options, expected = expected_of(host)
    assert len(expected) == (0 if host.name.startswith("well-") else 1)
    document = examined(tool, unfold(host, tmp_path / "host"), *options)
    assert findings(document) == expected
    # the leading line is the only message, with what to do
    texts = [(message["severity"], message["code"], message["text"]) for message in document["messages"]]
    advice = {row["text"]: row["advice"] for row in document["checks"]}
    assert texts == [
        ("error" if verdict == "problem" else "warning", f"{verdict}_found", f"{text}; {advice[text]}")
        for verdict, _, text in expected
    ]


@pytest.mark.parametrize("host", CAPTURED, ids=name_of)
def test_captured_host(tool, host, tmp_path):
    expected = captured_findings().get(name_of(host), [])
    found = findings(examined(tool, looked_at(host, tmp_path / "host")))
    assert list(dict.fromkeys(row[:2] for row in found)) == expected


def test_there_are_enough_of_both():
    sick = [host for host in PREPARED if expected_of(host)[1]]
    well = [host for host in PREPARED if not expected_of(host)[1]]
    assert len(sick) >= 25
    assert len({found[1] for host in sick for found in expected_of(host)[1]}) >= 20
    assert len(well) + len(CAPTURED) - len(captured_findings()) >= 40
    assert set(captured_findings()) <= {name_of(host) for host in CAPTURED}


def test_each_check_of_this_machine_has_a_sick_host(tool, tmp_path):
    """But for those that look at a plug-in that hangs, at PATH, and at failures without a cause."""
    sick = {found[1] for host in PREPARED for found in expected_of(host)[1]}
    checks = [row["check"] for row in examined(tool, unfold(DOCTOR / "well-nvme", tmp_path / "host"))["checks"]]
    of_machine = checks[: checks.index("arrays") + 1]
    assert set(of_machine) - sick == {"answers", "path_cat", "queries"}


def test_rows_of_the_document(tool, tmp_path):
    document = examined(tool, unfold(DOCTOR / "well-sata", tmp_path / "host"))
    assert all(list(row) == ROW for row in document["checks"])
    assert document["messages"] == []
    rows = {row["check"]: row for row in document["checks"]}
    assert rows["places"] == {
        "check": "places",
        "question": "Do the partitions lie within their disks?",
        "verdict": "fine",
        "text": None,
        "advice": None,
    }
    # on a host of today that the classic lists are empty is explained, and fine
    note = rows["scsi_table"]
    assert (note["verdict"], note["text"]) == ("fine", "sda, sdb: this kernel has no /proc/scsi/scsi")
    assert "CONFIG_SCSI_PROC_FS" in note["advice"]


def test_what_runs_the_tool_is_not_asked(tool, tmp_path):
    host = unfold(DOCTOR / "well-nvme", tmp_path / "host")
    for row in examined(tool, host)["checks"]:
        if row["verdict"] == "not asked":
            assert (row["text"], row["advice"]) == ("the controller tool was not run", "diskscout doctor --raid runs it")


# ---- lists that come back short ----

OF_NO_LIST = {"contents", "arrays", "sigchld", "stack"}


@pytest.mark.usefixtures("meets_what_others_met")
@pytest.mark.parametrize("host", PREPARED, ids=lambda host: host.name)
def test_list_that_is_short_shows_the_line_that_doctor_leads_with(tool, host, tmp_path):
    """And no other list does."""
    whole = unfold(host, tmp_path / "host")
    _, expected = expected_of(host)
    leading = [message["text"] for message in examined(tool, whole)["messages"]]
    if any(check in OF_NO_LIST for _, check, _ in expected):
        leading = []
    document = json.loads(tool.run("list", "disks", "partitions", "cdroms", "--json", "--sysroot", whole).stdout)
    lines = [message for message in document["messages"] if message["code"] in ("problem_found", "warning_found")]
    # what nobody can see in a list is told by doctor alone
    unseen = {"root", "sector_size", "extended_entries", "sysfs"}
    if not lines and any(check in unseen for _, check, _ in expected):
        return
    assert [line["text"] for line in lines] == leading
    assert all(line["kind"] is None for line in lines)
    errors = [message for message in document["messages"] if message["severity"] == "error"]
    assert {line["severity"] for line in lines} <= {"error" if errors else "warning"}


def test_list_without_a_failure_says_nothing_of_notes(tool, tmp_path):
    host = unfold(DOCTOR / "well-sata", tmp_path / "host")
    document = json.loads(tool.run("list", "--json", "--sysroot", host).stdout)
    assert {message["severity"] for message in document["messages"]} == {"note"}


def test_first_format_is_told_of_the_raid_side_alone(tool, tmp_path):
    host = unfold(DOCTOR / "disk-does-not-answer", tmp_path / "host")
    result = tool.run("list", "--classic", "--format", "1", "partitions", "--sysroot", host)
    assert result.stderr == "diskscout: the partition query failed; what it found so far is shown\n"


# ---- for people ----


def test_text_of_a_sick_host(tool, tmp_path):
    host = unfold(DOCTOR / "no-scsi-table", tmp_path / "host")
    result = tool.run("doctor", "--sysroot", host)
    assert (result.returncode, result.stderr) == (1, "")
    lines = result.stdout.splitlines()
    assert lines[:2] == [
        "problem: sda: this kernel has no /proc/scsi/scsi.",
        "  take a kernel with CONFIG_SCSI_PROC_FS, or the lists of today: diskscout list devices.",
    ]
    assert re.fullmatch(r"\d+ checks, 1 problem(; .*)?\.", lines[-1])


def test_text_of_a_host_that_is_well(tool, tmp_path):
    result = tool.run("doctor", "--sysroot", unfold(DOCTOR / "well-ide-and-scsi", tmp_path / "host"))
    assert (result.returncode, result.stderr) == (0, "")
    assert re.fullmatch(r"\d+ checks, all fine(; .*)?\.", result.stdout.splitlines()[-1])


def test_problems_stand_before_warnings_and_notes(tool, tmp_path):
    host = unfold(TESTS / "tools" / "hosts" / "beside", tmp_path / "host")
    lines = tool.run("doctor", "--sysroot", host).stdout.splitlines()
    words = [line.split(":")[0] for line in lines[:-1] if not line.startswith("  ")]
    assert words == sorted(words, key=["problem", "warning", "note"].index)
    assert len(words) == (len(lines) - 1) / 2
    assert re.fullmatch(r"\d+ checks, 1 problem, 4 warnings(; .*)?\.", lines[-1])


# ---- who asks ----


def prepared_process(*, stack=None, ignored=None):
    def prepare():
        if stack:
            resource.setrlimit(resource.RLIMIT_STACK, (stack, resource.getrlimit(resource.RLIMIT_STACK)[1]))
        if ignored:
            signal.signal(ignored, signal.SIG_IGN)

    return prepare


@pytest.mark.parametrize(
    "limits, expected",
    [
        ({"stack": 2 << 20}, []),
        ({"stack": (2 << 20) - 4096}, [("problem", "stack")]),
        ({"ignored": signal.SIGCHLD}, [("warning", "sigchld")]),
        ({"ignored": signal.SIGUSR1}, []),
    ],
    ids=lambda value: "-".join(value) if isinstance(value, dict) else None,
)
def test_what_the_program_inherits_itself(tool, tmp_path, limits, expected):
    host = unfold(DOCTOR / "well-nvme", tmp_path / "host")
    result = tool.run("doctor", "--json", "--sysroot", host, preexec_fn=prepared_process(**limits))
    assert [row[:2] for row in findings(json.loads(result.stdout))] == expected


def test_a_process_that_is_not_there(tool, tmp_path):
    document = examined(tool, unfold(DOCTOR / "well-nvme", tmp_path / "host"), "--pid", "77")
    assert findings(document) == [
        ("problem", "stack", "/proc/77/limits cannot be read: No such file or directory"),
        ("problem", "sigchld", "/proc/77/status cannot be read: No such file or directory"),
    ]


def test_a_process_that_is_not_there_now_is_refused(tool):
    with open("/proc/sys/kernel/pid_max", encoding="ascii") as file:
        nobody = int(file.read()) + 1
    assert complaint(tool.run("doctor", "--pid", str(nobody)), 2) == f"--pid: there is no process {nobody}"


def test_an_agent_of_this_machine(tool):
    """This very process, whose limits are known."""
    result = tool.run("doctor", "--json", "--pid", str(os.getpid()))
    rows = {row["check"]: row["verdict"] for row in json.loads(result.stdout)["checks"]}
    assert rows["sigchld"] == "fine"
    soft, _ = resource.getrlimit(resource.RLIMIT_STACK)
    assert rows["stack"] == ("fine" if soft < 0 or soft >= 2 << 20 else "problem")


def test_path_without_what_the_plugin_runs(tool, tmp_path):
    host = unfold(DOCTOR / "well-ide-and-scsi", tmp_path / "host")
    result = tool.run("doctor", "--json", "--sysroot", host, env={"PATH": "/nowhere"})
    text = 'there is no cat in the directories of PATH, which is "/nowhere"'
    assert findings(json.loads(result.stdout)) == [("problem", "path_cat", text)]
    listed = tool.run("list", "partitions", "--sysroot", host, env={"PATH": "/nowhere"})
    assert listed.returncode == 1
    assert listed.stderr.splitlines()[-1] == (
        f"diskscout: {text}; start the program, and the agent, with a PATH that names /bin or /usr/bin"
    )


# ---- advice that fits the error ----


def advice_of(document, check):
    return next(row["advice"] for row in document["checks"] if row["check"] == check)


def test_lists_of_today_are_no_advice_where_there_are_none(tool, tmp_path):
    old = examined(tool, TESTS / "hosts" / "chain-40")
    assert advice_of(old, "partition_limit") == (
        "this kernel tells nobody more: look into its own tables in /proc, which have no limit"
    )
    today = examined(tool, unfold(DOCTOR / "33-partitions", tmp_path / "host"))
    assert advice_of(today, "partition_limit") == "diskscout list devices has no limit"


def test_of_a_captured_host_it_does_not_matter_who_we_are(tool, tmp_path):
    document = examined(tool, unfold(DOCTOR / "no-permission", tmp_path / "host"))
    assert advice_of(document, "permission") == "run it, and the agent, as root"


# ---- options ----


@pytest.mark.parametrize(
    "words, text",
    [
        (["doctor", "--bytes"], "--bytes is for list, tree"),
        (["doctor", "--classic"], "--classic is for list"),
        (["doctor", "-o", "name"], "--columns is for list"),
        (["doctor", "--controller", "aac0"], "--controller is for list, tree"),
        (["doctor", "--format", "1"], "doctor is for format 2"),
        (["list", "--raid"], "--raid is for doctor"),
        (["list", "devices", "--pid", "1"], "--pid is for doctor"),
        (["doctor", "--pid", "0"], "--pid: 0 is no number of a process (see diskscout --help)"),
        (["doctor", "--pid", "1x"], "--pid: 1x is no number of a process (see diskscout --help)"),
        (["schema", "--timeout", "3"], "schema takes no options, such as --timeout"),
        (["doctor", "--timeout", "soon"], "--timeout: soon is none of 0 to 86400 whole seconds"),
    ],
    ids=" ".join,
)
def test_options_of_others_are_refused(tool, words, text):
    assert complaint(tool.run(*words), 2) == text


def test_format_2_may_be_named(tool, tmp_path):
    host = unfold(DOCTOR / "well-nvme", tmp_path / "host")
    result = tool.run("doctor", "--json", "--format", "2", "--sysroot", host)
    assert result.returncode == 0


# ---- what hangs and crashes ----


@pytest.mark.parametrize("case, cause", [("hang", "timed out after "), ("crash", "was ended by signal ")])
def test_a_plugin_that_does_not_come_to_answer(tool, case, cause):
    start = time.monotonic()
    result = tool.made("doctor", "--json", "--timeout", "3", classic=case)
    assert time.monotonic() - start < 3 + SLACK
    assert result.returncode == 1
    texts = [row["text"] for row in json.loads(result.stdout)["checks"] if row["check"] == "answers"]
    assert texts
    assert all(re.match(r"the (disk|partition|CD-ROM) query failed: ", text) and cause in text for text in texts)


def test_a_check_that_hangs_is_a_finding_and_leaves_time_for_the_others(tool, tmp_path):
    """Nobody ever writes into the pipe that stands in the place of the table."""
    host = unfold(DOCTOR / "outside-its-disk", tmp_path / "host")
    for name in ("mdstat", "filesystems"):
        os.mkfifo(host / "proc" / name)
    (host / "sys").rename(host / "kept")
    start = time.monotonic()
    result = tool.run("doctor", "--json", "--timeout", "6", "--sysroot", host)
    assert time.monotonic() - start < 6 + 2
    found = findings(json.loads(result.stdout))
    assert result.returncode == 1
    assert [row[:2] for row in found] == [("warning", "sysfs"), ("problem", "places"), ("warning", "arrays")]
    for _, check, text in (found[0], found[2]):
        assert re.fullmatch(rf"{check} could not be answered: timed out after [0-9.]+ s at {check}", text)
