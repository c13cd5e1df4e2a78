# SPDX-License-Identifier: Apache-2.0
"""Why the classic lists lack what a host has, told by the program on captured hosts."""

import json
import sys

import pytest
from raid_site import SOURCES

sys.path.insert(0, str(SOURCES / "tests" / "block"))
from unfold import unfold  # noqa: E402

HOSTS = SOURCES / "tests" / "hosts"
TODAY = SOURCES / "tests" / "block" / "hosts"
NO_SYSFS = ("note", None, "no_sysfs", "this host has no /sys: what the lists leave out could not all be asked")
CLASSIC = ("disks", "partitions", "cdroms")
DOCTORS = ("problem_found", "warning_found")


@pytest.fixture(name="beside")
def beside_host(tmp_path):
    return unfold(SOURCES / "tests" / "tools" / "hosts" / "beside", tmp_path / "beside")


def told(tool, host, *kinds, status=0):
    """The messages of a document, without those that only say that a query failed, and without doctor's line."""
    result = tool.run("list", *kinds, "--json", "--sysroot", host)
    assert result.returncode == status, result.stderr
    document = json.loads(result.stdout)
    assert document["exit_status"] == status
    errors = [message["text"] for message in document["messages"] if message["severity"] == "error"]
    own = [line for line in result.stderr.splitlines() if line.startswith("diskscout: ")]
    assert own == [f"diskscout: {text}" for text in errors]
    rows = [tuple(message[key] for key in ("severity", "kind", "code", "text")) for message in document["messages"]]
    assert len([row for row in rows if row[2] in DOCTORS]) <= 1
    return [row for row in rows if row[2] not in ("query_failed", *DOCTORS)]


DISKS_BESIDE = [
    ("note", "disks", "no_classic_name", "nvme0n1: no classic name (hda to hdt, sda to sddx)"),
    ("note", "disks", "no_medium", "sdc: no medium"),
    ("note", "disks", "not_in_scsi_table", "sdd: not in /proc/scsi/scsi"),
    ("note", "disks", "no_classic_name", "arrays, mappings and loop devices have no classic name"),
]
ROWS_BESIDE = [
    (
        "note",
        "partitions",
        "protective_entry",
        "/dev/sda1: the protective entry of a GUID table, which has 3 partitions",
    ),
    (
        "note",
        "partitions",
        "cut_text",
        "/dev/sdb1: mount points cut; in full: "
        "/srv/one/with/a/name/that/is/long, /srv/two/with/a/name/that/is/long",
    ),
    ("note", "partitions", "outside_disk", "/dev/sdb2: end outside the disk"),
]
CDROMS_BESIDE = [("note", "cdroms", "no_classic_name", "sr0: no classic name for an optical drive (hda to hdt)")]


def test_todays_devices_beside_the_old_tables(tool, beside):
    of_others = ("note", "partitions", "not_among_disks", "nvme0n1: not among the disks, hence no partitions")
    expected = DISKS_BESIDE + ROWS_BESIDE + [of_others] + CDROMS_BESIDE
    assert told(tool, beside) == expected
    assert told(tool, beside, *CLASSIC) == expected


def test_each_kind_has_its_own(tool, beside):
    assert told(tool, beside, "disks") == DISKS_BESIDE
    named = ("note", "partitions", "no_classic_name", "nvme0n1: no classic name (hda to hdt, sda to sddx)")
    assert told(tool, beside, "partitions") == ROWS_BESIDE + [named]
    assert told(tool, beside, "cdroms") == CDROMS_BESIDE
    for kind in ("devices", "mounts", "links"):
        assert told(tool, beside, kind) == []


def test_classic_lists_alone_have_none(tool, beside):
    assert told(tool, beside, "--classic") == []


ELSEWHERE = "diskscout list devices shows them; an agent asks diskscout-block.so for them"


def test_lines_below_the_tables(tool, beside):
    result = tool.run("list", "disks", "--sysroot", beside)
    assert (result.returncode, result.stderr) == (0, "")
    lines = result.stdout.splitlines()
    assert lines[-6:-2] == [f"{text}." for _, _, _, text in DISKS_BESIDE]
    assert lines[-2:] == ["", f"nvme0n1: no classic name (hda to hdt, sda to sddx); {ELSEWHERE}."]


@pytest.mark.parametrize(
    "host, status, expected",
    [
        ("real-kernel", 0, []),
        ("no-scsi-table", 0, [("note", "disks", "no_scsi_table", "sda: this kernel has no /proc/scsi/scsi")]),
        ("no-ide-table", 0, [("note", "disks", "no_ide_table", "hda, hdc: this kernel has no /proc/ide")]),
        ("no-block-table", 0, [("note", "disks", "not_in_block_table", "this kernel has no /proc/partitions")]),
        ("ide-four-drives", 0, [
            ("note", "disks", "not_in_ide_table", "hdd: this kernel has no /proc/ide/hdd/media"),
        ]),
        ("thirty-three-lines", 1, [
            ("error", "disks", "list_cut", "sdb: behind the 32nd disk of /proc/partitions"),
        ]),
        ("sixteen-disks", 0, []),
        ("forty-mounts", 1, [
            ("error", "partitions", "list_cut", "/dev/hda1: mounted behind the 32nd line of /etc/mtab"),
            ("error", "cdroms", "list_cut", "/dev/hdc: mounted behind the 32nd line of /etc/mtab"),
        ]),
        ("scsi-seventeen", 1, [
            ("note", "disks", "not_in_scsi_table", 'sdq: "CD-ROM" in /proc/scsi/scsi, not "Direct-Access"'),
            ("note", "disks", "not_opened", "/dev/sdr: cannot be opened: No such file or directory"),
            ("note", "disks", "not_in_scsi_table", "sds: no SCSI address: No such device or address"),
            ("note", "disks", "not_in_scsi_table", "sdt: not in /proc/scsi/scsi"),
            ("error", "disks", "list_cut", "sdn: the list ends at 16 disks"),
        ]),
        ("chain-3", 0, []),
        ("chain-40", 1, [
            ("error", "partitions", "list_cut", "/dev/hda: the list ends at 32 partitions of a disk"),
        ]),
        ("chain-beyond-end", 0, [
            ("note", "partitions", "outside_disk", "/dev/hdb5, /dev/hdc2: beginning and end outside the disk"),
        ]),
        ("shadowed-mounts", 0, [("note", "partitions", "cut_text", "/dev/hda9, /dev/hda14: mount points cut")]),
        ("missing-node", 1, [
            ("note", "disks", "not_opened",
             "/dev/hdb, /dev/sda: cannot be opened: No such file or directory"),
        ]),
    ],
)
def test_hosts_without_sysfs(tool, host, status, expected):
    assert told(tool, HOSTS / host, *CLASSIC, status=status) == [NO_SYSFS, *expected]


def test_devices_that_were_asked_for_by_name_tell_that_themselves(tool):
    result = tool.run("list", "devices", "disks", "--json", "--sysroot", HOSTS / "real-kernel")
    assert result.returncode == 1
    codes = [message["code"] for message in json.loads(result.stdout)["messages"]]
    assert codes == ["query_failed", "warning_found"]


@pytest.mark.parametrize(
    "host, cause",
    [
        ("scsi-seventeen", "at /dev/sdn: the list of disks ends at 16"),
        ("no-files", "at /etc/mtab: No such file or directory"),
        ("missing-node", "at /dev/hdb: No such file or directory"),
        ("device-vanishes", "at /dev/hda: No such device or address"),
        ("no-size", "at the size of /dev/hda: Input/output error"),
        ("short-disk", "at sector 100 of /dev/hdb: it cannot be read"),
    ],
)
def test_causes_of_a_failed_partition_query(tool, host, cause):
    result = tool.run("list", "partitions", "--sysroot", HOSTS / host)
    assert result.returncode == 1
    own = [line for line in result.stderr.splitlines() if line.startswith("diskscout: the partition query")]
    assert len(own) == 1
    assert cause in own[0]


def test_what_lsblk_would_show_is_listed_or_named(tool, tmp_path):
    """On every captured host of today: each disk and each optical drive, by more than a number."""
    for host in sorted(TODAY.glob("*/host.txt")):
        at = unfold(host.parent, tmp_path / host.parent.name)
        result = tool.run("list", "devices", "disks", "cdroms", "--json", "--sysroot", at)
        document = json.loads(result.stdout)
        for kind, row in (("disk", "disks"), ("rom", "cdroms")):
            wanted = [device["name"] for device in document["devices"] or [] if device["kind"] == kind]
            listed = {entry["device_name"].removeprefix("/dev/") for entry in document[row]}
            texts = [message["text"] for message in document["messages"] if message["kind"] == row]
            named = {name.removeprefix("/dev/") for text in texts for name in text.split(": ")[0].split(" and ")[0].split(", ")}
            more = sum(int(text.split(" and ")[1].split(" more: ")[0]) for text in texts if " more: " in text)
            missing = [name for name in wanted if name not in listed | named]
            assert len(missing) <= more, (host.parent.name, missing)


def test_an_ordinary_user_is_told_what_was_not_permitted(tool, tmp_path):
    host = unfold(SOURCES / "tests" / "tools" / "hosts" / "beside", tmp_path / "shut")
    table = (host / "host.txt").read_text()
    table = table.replace("\tnumber 8:16\n", "\tnumber 8:16\n\topen fails EACCES\n")
    table = table.replace("\tnumber 3:0\n", "\tnumber 3:0\n\topen fails EACCES\n")
    (host / "host.txt").write_text(table)
    shut = ("warning", "disks", "no_permission", "/dev/hda, /dev/sdb: cannot be opened: Permission denied")
    assert shut in told(tool, host, "disks")
    result = tool.run("list", "partitions", "--sysroot", host)
    assert result.returncode == 1
    assert "at /dev/hda: Permission denied" in result.stderr


def test_an_ordinary_user_is_told_which_values_root_alone_gets(tool, tmp_path):
    host = unfold(TODAY / "mapper", tmp_path / "mapper")
    assert told(tool, host, "devices") == []
    with open(host / "host.txt", "a", encoding="utf-8") as table:
        table.write("device /dev/mapper/control\n\topen fails EACCES\n")
    text = "targets are not told, /dev/mapper/control cannot be opened: Permission denied"
    for device, names in (
        ([], "dm-0, dm-1, dm-2, dm-3, dm-4, dm-10"),
        (["/dev/dm-0"], "dm-0, dm-1, dm-2"),
    ):
        assert told(tool, host, "devices", *device) == [("warning", "devices", "no_permission", f"{names}: {text}")]
    # a column that nobody sees lacks nothing
    for columns, lacks in (("name", False), ("+dm_target", True)):
        result = tool.run("list", "devices", "-o", columns, "--sysroot", host)
        assert (result.returncode, text in result.stdout) == (0, lacks)


def test_what_could_not_be_read_is_told_where_no_column_tells_it(tool, tmp_path):
    host = unfold(TODAY / "notebook", tmp_path)
    everything = "dm-0, dm-1, dm-2, nvme0n1, nvme0n1p1, nvme0n1p2, nvme0n1p3"
    shown = ["list", "filesystems", "/dev/nvme0n1", "--sysroot", host, "-o"]
    assert tool.run(*shown, "name,type").stdout.endswith(f"\n{everything}: not read: Permission denied.\n")
    for column in ("reason", "error"):
        assert "not read" not in tool.run(*shown, f"name,type,{column}").stdout


def shut_mounts(host, *points, error="EACCES"):
    """Nobody tells their space any more."""
    lines = (host / "host.txt").read_text(encoding="latin-1").splitlines()
    for number, line in enumerate(lines):
        if line.startswith("mount ") and line.split()[1] in points:
            lines[number] = f"mount {line.split()[1]} fails {error}"
    (host / "host.txt").write_text("\n".join(lines) + "\n", encoding="latin-1")


def test_space_that_root_alone_is_told(tool, tmp_path):
    host = unfold(TODAY / "desktop", tmp_path / "desktop")
    assert told(tool, host, "mounts") == []
    shut_mounts(host, "/private/srv", "/boot", "/boot/efi", "/mnt/back\\134slash")
    text = "space is not told: Permission denied"
    names = "/boot, /boot/efi, /private/srv, /mnt/back\\x5cslash"
    assert told(tool, host, "mounts") == [("warning", "mounts", "no_permission", f"{names}: {text}")]
    # the way to this one leads over another that is not shown
    assert told(tool, host, "mounts", "/dev/sda1") == [("warning", "mounts", "no_permission", f"/boot/efi: {text}")]
    for columns, lacks in (("mount_point", False), ("total", True)):
        result = tool.run("list", "mounts", "-o", columns, "--sysroot", host)
        assert (result.returncode, text in result.stdout) == (0, lacks)


def test_space_that_nobody_is_told_was_not_withheld(tool, tmp_path):
    host = unfold(TODAY / "desktop", tmp_path / "desktop")
    shut_mounts(host, "/private/srv", error="EIO")
    # the way there may wait for somebody
    shut_mounts(host, "/boot", error="ENOENT")
    shut_mounts(host, "/boot/efi")
    assert told(tool, host, "mounts") == []


def test_beside_a_suspended_mapping_nobody_is_asked_for_space(tool, tmp_path):
    host = unfold(TODAY / "mappings", tmp_path / "mappings")
    shut_mounts(host, "/boot")
    assert told(tool, host, "mounts") == []
