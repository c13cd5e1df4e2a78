# SPDX-License-Identifier: Apache-2.0
"""What is told of all RAID controllers of the simulated tool: rows of each, true sizes, states, and why rows are missing."""

import os
import pathlib
import pty
import re
import subprocess
import time

import pytest
from documents import CONTROLLER_KINDS, OPERATION_KINDS, errors_of
from raid_site import SOURCES, RaidSite

RAID_KINDS = [*CONTROLLER_KINDS, *OPERATION_KINDS]
HERE = pathlib.Path(__file__).resolve().parent
# Kilobytes of the units in which the tool prints sizes.
UNITS = (("GB", 1024**2), ("MB", 1024), ("KB", 1))


@pytest.fixture
def sample(tool, tmp_path):
    return RaidSite(tool, tmp_path / "site")


def site_of(tool, tmp_path, *lines, more=""):
    head = (
        "format version=1\ncontroller name=aac0 type=EXAMPLE availability=read/write clustering=No opens=yes"
        " channels=2 next_task=101\n"
    )
    return RaidSite(tool, tmp_path / "site", head + "\n".join(lines) + "\n" + more)


def disk(at, usage="Initialized", blocks=143374805):
    return (
        f'disk at={at} type=Disk removable=no vendor=ACME product=EX1 revision=SA1B blocks={blocks} bytes_per_block=512'
        f' usage="{usage}" shared=no rate=320 primary_defects=0 grown_defects=0 bad_status=no'
    )


def container(number, kind, *members, size=1048576, parent=-1, device="", label=""):
    lines = [
        f'container number={number} type={kind} size_kb={size} stripe_kb=0 usage=Open device="{device}" label="{label}"'
        f" parent={parent} data=no"
    ]
    return lines + [f"piece at={at} offset_kb=64 size_kb={size} rebuild=no" for at in members]


def told(document, kind, key):
    return [record[key] for record in document[kind]]


# ---- all controllers ----


def test_every_row_names_its_controller(sample):
    document = sample.document(*RAID_KINDS)
    assert document["controller"] == "aac0"
    for kind in RAID_KINDS:
        assert all(list(record)[0] == "controller" for record in document[kind])
    assert told(document, "raid_disks", "controller") == 11 * ["aac0"] + ["aac1"]
    assert set(told(document, "containers", "controller")) == {"aac0"}
    assert document["raid_space"][-1]["controller"] == document["defects"][-1]["controller"] == "aac1"


def test_one_controller_alone(sample):
    document = sample.document(*RAID_KINDS, "--controller", "aac1")
    assert document["controller"] == "aac1"
    assert [len(document[kind]) for kind in RAID_KINDS] == [0, 1, 1, 0, 0, 1]
    assert set(told(document, "raid_disks", "controller")) == {"aac1"}


def test_tables_have_a_column_of_controllers(sample):
    text = sample.run("list", "raid_disks", "tasks", "--config", "raid.cfg").stdout
    lines = text.splitlines()
    assert lines[0] == "RAID DISKS"
    assert lines[1].startswith("CONTROLLER  ADDRESS  TYPE ")
    assert lines[-4:-2] == ["", "RAID TASKS"]
    # Each of the two lists of disks was a run, in which the rebuild went on.
    assert lines[-2:] == [
        "CONTROLLER   ID  FUNCTION    DONE  CONTAINER  STATE",
        "aac0        106  rebuild   95.0 %         25  running",
    ]


def test_sentences_where_there_is_nothing(tool, tmp_path):
    text = site_of(tool, tmp_path).run("list", *RAID_KINDS, "--config", "raid.cfg").stdout
    assert text == (
        "CONTAINERS\nNo RAID controller has a container.\n\nRAID DISKS\nNo RAID controller has a disk.\n\n"
        "RAID SPACE\nNo disk of a RAID controller has a free area.\n\n"
        "RAID PARTITIONS\nNo container uses a disk of a RAID controller.\n\n"
        "RAID TASKS\nNo RAID controller has a task.\n\nRAID DEFECTS\nNo RAID controller has a disk.\n"
    )


def test_controller_that_is_held_does_not_hide_the_others(tool, tmp_path):
    state = (HERE / "failed-disk.state").read_text(encoding="utf-8")
    other = "controller name=aac1 type=EXAMPLE availability=read/write clustering=No opens=busy channels=1 next_task=101\n"
    site = RaidSite(tool, tmp_path / "site", state + other)
    document = site.document(*RAID_KINDS, status=1)
    assert [len(document[kind]) for kind in ("containers", "raid_disks", "defects")] == [1, 4, 4]
    texts = [message["text"] for message in errors_of(document) if message["kind"]]
    held = "another application holds the controller; what it found so far is shown"
    assert texts[0] == f"the container query failed on aac1: {held}"
    assert texts[1] == f"the RAID disk query failed on aac1: {held}"
    assert texts[2] == f"the RAID space query failed on aac1 at the list of disks: {held}"
    assert len(texts) == len(RAID_KINDS)
    # No task was found before.
    assert texts[4] == "the RAID task query failed on aac1: another application holds the controller; it found nothing before"


def test_every_controller_that_fails_is_named(sample):
    document = sample.document("raid_disks", fault="busy", status=1)
    assert document["raid_disks"] is None
    first = "another application holds the controller"
    assert errors_of(document)[0]["text"] == (
        f"the RAID disk query failed on aac0: {first}, on aac1: {first}; it found nothing before"
    )


def test_controller_that_is_not_there(sample):
    document = sample.document("containers", "--controller", "aac7", status=1)
    assert errors_of(document)[0]["text"] == (
        "the container query failed on aac7: the controller is not there or cannot be opened; it found nothing before"
    )


NOISE = "printf 'CLI>\\nExecuting: controller list\\n'; yes noise | head -n 300000; echo 'Executing: exit'; exit"


@pytest.mark.parametrize(
    "noise, why",
    [
        ("", "the controller tool {}/raidsim lists no controller; look with lspci whether "),
        (NOISE, 'the answer to "controller list" has '),
    ],
    ids=["none", "noise"],
)
def test_list_without_a_controller_leads_with_what_doctor_says(sample, noise, why):
    if noise:
        sample.put_in_front("controller", noise)
    document = sample.document("controllers", "containers", fault="missing")
    note, warning = document["messages"]
    assert (note["kind"], note["code"]) == ("containers", "no_controller")
    assert (warning["severity"], warning["kind"], warning["code"]) == ("warning", None, "problem_found")
    assert warning["text"].startswith(why.format(sample.directory))
    classic = sample.document("containers", "--classic", fault="missing")
    assert [message["code"] for message in classic["messages"]] == ["no_controller"]


def test_name_with_a_line_end_never_becomes_a_command(sample):
    log = sample.directory.parent / "log"
    sample.put_in_front("open", f"echo asked >>{log}")
    name = "aac0\ncontainer delete /always=true 0"
    document = sample.document("containers", "tasks", "--controller", name, status=1)
    assert (document["containers"], document["tasks"]) == (None, None)
    assert "the controller is not there or cannot be opened" in errors_of(document)[0]["text"]
    assert not log.exists()


@pytest.mark.parametrize("words", [["--classic"], ["--format", "1"]])
@pytest.mark.parametrize("kind", OPERATION_KINDS)
def test_what_no_classic_code_tells(tool, words, kind):
    result = tool.run("list", kind, *words)
    assert (result.returncode, result.stdout) == (2, "")
    assert kind in result.stderr
    if words == ["--classic"]:
        assert "--classic is for disks, partitions, cdroms, controllers, containers" in result.stderr


def test_classic_rows_are_those_of_the_first_controller(sample):
    document = sample.document("--classic", *CONTROLLER_KINDS)
    assert set(told(document, "raid_disks", "controller")) == {"aac0"}
    assert set(told(document, "containers", "state")) == {"unknown"}
    assert set(told(document, "containers", "total_size")) == {None}
    assert set(told(document, "raid_space", "free_space")) == {None}


# ---- true sizes ----


def fields_of(line):
    word, *pairs = re.findall(r'(?:[^\s"]|"[^"]*")+', line)
    return word, {key: value.strip('"') for key, value in (pair.split("=", 1) for pair in pairs)}


def state_of(site):
    """The state file's records, each piece with its container and all with their controller."""
    records = {"disk": [], "container": [], "piece": []}
    controller = number = None
    for line in (site.directory / "state.txt").read_text(encoding="utf-8").splitlines():
        if not line or line[0] == "#":
            continue
        word, fields = fields_of(line)
        controller = fields["name"] if word == "controller" else controller
        number = int(fields["number"]) if word == "container" else number
        if word in records:
            records[word].append({**fields, "controller": controller, "of": number})
    return records


def position(at):
    channel, scsi_id, lun = (int(part) for part in at.split(":"))
    return channel * 65536 + scsi_id * 256 + lun


def least(kilobytes):
    """What is left of a number of kilobytes when the tool has printed it: three digits, the rest cut off."""
    unit = next(size for _, size in UNITS if kilobytes >= size)
    step = unit if kilobytes >= 100 * unit else unit / 10
    return step, int(kilobytes / step) * step


def check_size(told_bytes, kilobytes):
    """Not more than the rounding of the tool away from the true size."""
    step, printed = least(kilobytes)
    assert printed - 1024 <= told_bytes / 1024 <= kilobytes, (told_bytes, kilobytes)
    assert kilobytes - told_bytes / 1024 < step + 1024


def free_areas(records, one):
    """Behind the first 64 kilobytes, between the pieces."""
    pieces = [
        (int(piece["offset_kb"]), int(piece["size_kb"]))
        for piece in records["piece"]
        if (piece["controller"], piece["at"]) == (one["controller"], one["at"])
    ]
    start = 64
    for offset, size in sorted(pieces):
        if offset > start:
            yield start, offset - start
        start = max(start, offset + size)
    if int(one["blocks"]) // 2 > start:
        yield start, int(one["blocks"]) // 2 - start


def test_sizes_of_the_sample_are_those_of_the_state_file(sample):
    document = sample.document(*CONTROLLER_KINDS)
    records = state_of(sample)
    sizes = {int(one["number"]): int(one["size_kb"]) for one in records["container"]}
    assert set(told(document, "containers", "raid_id")) == set(sizes)
    for one in document["containers"]:
        check_size(one["total_size"], sizes[one["raid_id"]])
    areas = {
        (one["controller"], position(one["at"]), start): size
        for one in records["disk"]
        if one["usage"] == "Initialized"
        for start, size in free_areas(records, one)
    }
    assert len(document["raid_space"]) == len(areas)
    for found, (key, size) in zip(document["raid_space"], sorted(areas.items())):
        assert (found["controller"], found["address"]["position"]) == key[:2]
        check_size(found["offset"], key[2])
        check_size(found["free_space"], size)
    pieces = {(position(one["at"]), one["of"]): int(one["size_kb"]) for one in records["piece"]}
    assert len(document["raid_partitions"]) == len(pieces)
    for one in document["raid_partitions"]:
        check_size(one["size"], pieces[one["address"]["position"], one["raid_id"]])
    for one, wanted in zip(document["raid_disks"], records["disk"]):
        assert one["blocks"] == int(wanted["blocks"])
    check_sums(document, sizes, areas)


def check_sums(document, sizes, areas):
    """The same of all together: each size is at most its own step too small."""
    for found, wanted in (
        (sum(told(document, "containers", "total_size")), list(sizes.values())),
        (sum(told(document, "raid_space", "free_space")), list(areas.values())),
    ):
        total = sum(wanted)
        assert total - sum(least(size)[0] + 1024 for size in wanted) < found / 1024 <= total


def numbers_in(value):
    if isinstance(value, dict):
        for inner in value.values():
            yield from numbers_in(inner)
    elif isinstance(value, list):
        for inner in value:
            yield from numbers_in(inner)
    elif isinstance(value, int) and not isinstance(value, bool):
        yield value


GIB = 1024**3
# Kilobytes, the bytes that the tool prints, and these in 32 bits.
LARGE = [
    (3 * 1024**2, 3 * GIB, 3 * GIB),
    (5 * 1024**2, 5 * GIB, GIB),
    (2 * 1024**3, 2048 * GIB, 0),
]


@pytest.mark.parametrize("kilobytes, size, low", LARGE)
def test_large_containers(tool, tmp_path, kilobytes, size, low):
    blocks = 2 * kilobytes + 2 * (64 + 7 * 1024**2)
    lines = container(0, "Mirror", "0:00:0", "0:01:0", size=kilobytes, label="sixteen-letters!")
    site = site_of(tool, tmp_path, disk("0:00:0", blocks=blocks), disk("0:01:0", blocks=blocks), *lines)
    document = site.document(*CONTROLLER_KINDS)
    (found,) = document["containers"]
    assert (found["total_size"], found["total_size_low32"]) == (size, low)
    assert (found["label"], found["state"]) == ("sixteen-letters!", "optimal")
    for area in document["raid_space"]:
        # Beyond 2 TiB the operation has no room for it.
        assert area["offset"] == (size if size < 2048 * GIB else None)
        assert (area["free_space"], area["free_space_low32"]) == (7 * GIB, 3 * GIB)
    assert told(document, "raid_partitions", "size") == [size, size]
    for kind in CONTROLLER_KINDS:
        assert min(numbers_in([without_codes(record) for record in document[kind]])) >= 0


def without_codes(record):
    return {key: value for key, value in record.items() if f"{key}_word" not in record}


def test_disk_that_is_larger_than_an_operation_tells(tool, tmp_path):
    site = site_of(tool, tmp_path, disk("0:00:0", blocks=8 * 1024**3))
    document = site.document("raid_space", "raid_disks")
    assert [(area["offset"], area["free_space"]) for area in document["raid_space"]] == [(65536, None)]
    assert [(one["blocks"], one["blocks_least"]) for one in document["raid_disks"]] == [(None, 2**31 - 1)]


# ---- states ----


def states(document):
    return dict(zip(told(document, "containers", "raid_id"), told(document, "containers", "state")))


def test_states_and_devices_of_the_sample(sample):
    document = sample.document("containers")
    assert states(document) == {0: "optimal", 1: "optimal", 2: "rebuilding", 24: "optimal", 25: "rebuilding"}
    assert told(document, "containers", "rebuilt_permille") == [None, None, 450, None, 450]
    assert told(document, "containers", "device") == ["/dev/sda", "/dev/sdb", "/dev/sdc", None, None]


def test_sample_of_the_page(sample):
    page = (SOURCES / "docs" / "diskscout.md").read_text(encoding="utf-8")
    columns = re.search(r"sample of .*\]\(raidsim.md\), with `-o (\S+)`", page).group(1)
    shown = sample.run("list", "containers", "-o", columns, "--config", "raid.cfg").stdout
    assert f"```\n{shown.removeprefix('CONTAINERS' + chr(10))}```\n" in page


def test_failed_disk(tool, tmp_path):
    state = (HERE / "failed-disk.state").read_text(encoding="utf-8")
    site = RaidSite(tool, tmp_path / "site", state)
    assert states(site.document("containers")) == {0: "degraded"}
    assert "  degraded  /dev/sda  " in site.run("list", "containers", "--config", "raid.cfg").stdout


FOUR = ["0:00:0", "0:01:0", "0:02:0", "0:03:0"]


@pytest.mark.parametrize(
    "kind, members, bad, state",
    [
        ("Mirror", 2, {}, "optimal"),
        ("Mirror", 2, {0: "Offline"}, "degraded"),
        ("Mirror", 2, {0: "Detached"}, "degraded"),
        ("Mirror", 2, {1: "Not Initialized"}, "degraded"),
        ("Mirror", 2, {0: "Offline", 1: "Offline"}, "failed"),
        ("Mirror", 2, {0: "Hmm"}, "unknown"),
        ("Mirror", 2, {1: None}, "degraded"),
        ("Mirror", 2, {0: None, 1: None}, "failed"),
        ("RAID-5", 4, {}, "optimal"),
        ("RAID-5", 4, {2: "Offline"}, "degraded"),
        ("RAID-5", 4, {2: None}, "degraded"),
        ("RAID-5", 4, {2: "Offline", 0: None}, "failed"),
        ("Stripe", 3, {}, "optimal"),
        ("Stripe", 3, {1: "Offline"}, "failed"),
        ("Stripe", 3, {1: "Hmm"}, "unknown"),
        ("Volume", 1, {}, "optimal"),
        ("Volume", 1, {0: None}, "failed"),
        ("Reconf", 2, {}, "unknown"),
        ("Hmm", 2, {}, "unknown"),
    ],
)
def test_state_by_the_disks(tool, tmp_path, kind, members, bad, state):
    """A usage of None: the disk is missing."""
    usages = [bad.get(number, "Initialized") for number in range(4)]
    disks = [disk(at, usage) for at, usage in zip(FOUR, usages) if usage is not None]
    site = site_of(tool, tmp_path, *disks, *container(0, kind, *FOUR[:members]))
    document = site.document("containers")
    assert states(document) == {0: state}
    assert document["containers"][0]["rebuilt_permille"] is None


def mirrors(usages):
    lines = [disk(at, usage) for at, usage in zip(FOUR, usages)]
    lines += container(2, "Stripe", device="/dev/sdc") + container(24, "Mirror", *FOUR[:2], parent=2)
    return lines + container(25, "Mirror", *FOUR[2:], parent=2)


@pytest.mark.parametrize(
    "lost, found",
    [
        ((), ["optimal", "optimal", "optimal"]),
        ((1,), ["degraded", "degraded", "optimal"]),
        ((1, 3), ["degraded", "degraded", "degraded"]),
        ((2, 3), ["failed", "optimal", "failed"]),
    ],
)
def test_state_of_a_stripe_of_mirrors(tool, tmp_path, lost, found):
    site = site_of(tool, tmp_path, *mirrors(["Offline" if n in lost else "Initialized" for n in range(4)]))
    assert list(states(site.document("containers")).values()) == found


@pytest.mark.parametrize("size, state", [(2 * 1048576, "unknown"), (1048576 + 51000, "optimal")])
def test_stripe_of_which_a_mirror_is_not_listed_any_more(tool, tmp_path, size, state):
    """Two mirrors of 1 GB made 2 GB; what printing rounds off makes no difference."""
    lines = container(2, "Stripe", size=size, device="/dev/sdc") + container(24, "Mirror", *FOUR[:2], parent=2)
    site = site_of(tool, tmp_path, *(disk(at) for at in FOUR), *lines)
    assert states(site.document("containers")) == {2: state, 24: "optimal"}


@pytest.mark.parametrize("state, wanted", [("RUN", "rebuilding"), ("SUS", "degraded"), ("BAD", "degraded"), ("UNK", "unknown")])
def test_state_by_the_task(tool, tmp_path, state, wanted):
    lines = container(0, "Mirror", *FOUR[:2])
    task = f"task id=101 function=Rebuild done=123 step=0 container=0 state={state}"
    site = site_of(tool, tmp_path, *(disk(at) for at in FOUR), *lines, task)
    (found,) = site.document("containers")["containers"]
    assert (found["state"], found["rebuilt_permille"]) == (wanted, 123 if state == "RUN" else None)


# ---- what cannot be asked ----


def mirror_site(tool, tmp_path, *usages):
    lines = [disk(at, usage) for at, usage in zip(FOUR, usages)]
    return site_of(tool, tmp_path, *lines, *container(0, "Mirror", *FOUR[:2], device="/dev/sda"))


@pytest.mark.parametrize("usage, state", [("Initialized", "unknown"), ("Offline", "degraded")])
def test_task_list_that_hangs(tool, tmp_path, usage, state):
    """The containers are told all the same, never as optimal."""
    site = mirror_site(tool, tmp_path, "Initialized", usage)
    site.put_in_front('"task list"', "sleep 600")
    document = site.document("containers", "tasks", "--timeout", "3", status=1)
    assert (states(document), document["tasks"]) == ({0: state}, None)
    found = [(message["kind"], message["code"], message["text"]) for message in errors_of(document)[:2]]
    hangs = "timed out after 3 s at task list"
    assert found == [
        (
            "containers",
            "timed_out",
            f"the container query failed on aac0 at the list of tasks: {hangs}; what it found so far is shown",
        ),
        ("tasks", "timed_out", f"the RAID task query failed on aac0: {hangs}; it found nothing before"),
    ]


@pytest.mark.parametrize("command, kind", [('"disk list"', "disks"), ('"task list"', "tasks")])
@pytest.mark.parametrize("what", ["exit 3", "ask | head -c 150; exit 0", "exit 0"])
def test_answer_that_is_none(tool, tmp_path, command, kind, what):
    site = mirror_site(tool, tmp_path, "Initialized", "Initialized")
    site.put_in_front(command, what)
    document = site.document("containers", status=1)
    assert states(document) == {0: "unknown"}
    cause = "the controller tool or the filter has failed, or the answer was cut"
    assert f" on aac0 at the list of {kind}: {cause}; " in errors_of(document)[0]["text"]


def test_every_cut_answer(tool, tmp_path):
    """Wherever all answers break off, a container that is shown as optimal has been seen whole."""
    site = mirror_site(tool, tmp_path, "Initialized", "Offline")
    for length in range(60, 900, 60):
        result = site.run("list", "--json", "containers", "--config", "raid.cfg", fault=f"cut={length}")
        assert '"optimal"' not in result.stdout, length
        assert '"degraded"' in result.stdout or result.returncode == 1, length


def test_device_that_cannot_be_asked_for_in_time(tool, tmp_path):
    site = mirror_site(tool, tmp_path, "Initialized", "Initialized")
    site.put_in_front('"container list "[0-9]', "sleep 600")
    document = site.document("containers", "--timeout", "3", status=1)
    assert [(one["raid_id"], one["device"], one["state"]) for one in document["containers"]] == [(0, None, "optimal")]
    assert errors_of(document)[0]["text"] == (
        "the container query failed on aac0: timed out after 3 s at container list; what it found so far is shown"
    )


@pytest.mark.parametrize("answer", ["exit 3", "ask | head -c 420; exit"])
def test_device_that_is_not_answered_is_no_missing_one(tool, tmp_path, answer):
    site = mirror_site(tool, tmp_path, "Initialized", "Initialized")
    site.put_in_front('"container list "[0-9]', answer)
    document = site.document("containers", status=1)
    assert [(one["raid_id"], one["device"], one["state"]) for one in document["containers"]] == [(0, None, "optimal")]
    assert errors_of(document)[0]["text"].startswith("the container query failed on aac0: ")


def test_defects(sample):
    document = sample.document("defects", "--controller", "aac0")
    found = {one["address"]["position"]: (one["primary"], one["grown"], one["result"]) for one in document["defects"]}
    assert found[0x0000] == (3, 0, 0)
    assert found[0x0100] == (12, 1, 0)
    # The controller says that this one fails; an enclosure has no defects.
    assert found[0x010A00] == (None, None, -50)
    assert 0x0600 not in found
    assert document["defects"][-1]["result_word"] == "the disk is failing or does not answer"


@pytest.mark.parametrize("kind, command", [("defects", "disk show defect"), ("raid_space", "disk show space")])
def test_disk_that_hangs_keeps_nobody_waiting_for_each_of_the_others(tool, tmp_path, kind, command):
    site = mirror_site(tool, tmp_path, *4 * ["Initialized"])
    site.put_in_front(f'"{command} (0,1,0)"', "sleep 600")
    before = time.monotonic()
    document = site.document(kind, "--timeout", "3", status=1)
    assert time.monotonic() - before < 9
    (first, *_) = errors_of(document)
    assert first["code"] == "timed_out"
    assert f" on aac0 for disk 0:01:0, 0:02:0, 0:03:0: timed out after 3 s at {command}; " in first["text"]
    assert told(document, kind, "address")[0] == {"position": 0, "channel": 0, "id": 0, "lun": 0}
    if kind == "defects":
        assert [(one["primary"], one["result"]) for one in document["defects"]] == [(0, 0), *3 * [(None, -1)]]
        assert document["defects"][1]["result_word"] == "it could not be asked"


# ---- progress ----


def on_a_terminal(site, *words):
    """What a terminal that standard error is has been told."""
    controlling, terminal = pty.openpty()
    env = {**os.environ, "RAIDSIM_STATE": str(site.directory / "state.txt")}
    with subprocess.Popen([str(site.tool.program), "list", *words, "--config", "raid.cfg"], cwd=site.directory,
                          env=env, stdout=subprocess.PIPE, stderr=terminal) as program:
        os.close(terminal)
        output = program.stdout.read().decode()
    text = b""
    try:
        while piece := os.read(controlling, 65536):
            text += piece
    except OSError:
        pass
    os.close(controlling)
    return program.returncode, output, text.decode()


@pytest.mark.parametrize("kind, what, count", [("raid_space", "free areas", 11), ("defects", "defects", 10)])
def test_progress_on_a_terminal(sample, kind, what, count):
    status, output, text = on_a_terminal(sample, kind, "--controller", "aac0")
    assert status == 0
    assert output == sample.run("list", kind, "--config", "raid.cfg", "--controller", "aac0").stdout
    lines = text.split("\r")
    assert [line.rstrip() for line in lines if line.strip()] == [
        f"{what}: {number} of {count}, {at}" for number, at in enumerate(addresses(output, kind, sample), 1)
    ]
    # One line, over and over; nothing of it is left.
    assert "\n" not in text
    assert lines[-1] == "" and lines[-2].strip() == ""
    assert len(lines[-2]) >= len(lines[-3].rstrip())


def addresses(output, kind, site):
    if kind == "defects":
        return [line.split()[1] for line in output.splitlines()[2:]]
    disks = site.run("list", "raid_disks", "--config", "raid.cfg", "--controller", "aac0").stdout
    return [line.split()[1] for line in disks.splitlines()[2:]]


def test_no_progress_where_there_is_one_disk_or_no_terminal(sample):
    assert on_a_terminal(sample, "raid_space", "defects", "--controller", "aac1")[2] == ""
    assert on_a_terminal(sample, "containers", "raid_disks")[2] == ""
    assert sample.run("list", "raid_space", "defects", "--config", "raid.cfg").stderr == ""
