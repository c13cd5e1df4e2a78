# SPDX-License-Identifier: Apache-2.0
"""The tables of today's devices: tree, columns, order, pairs, and devices named on the command line."""

import errno
import os
import re

import pytest
from conftest import complaint
from documents import CLASSIC_KINDS, HOST_KINDS, KINDS
from records import RECORDS, members_of

UTF8 = {"LC_ALL": "C.UTF-8"}
DRAWN = "├└│─ |`\\+-"
# Depth and name: partitions on disks, an array on two partitions, mappings on the array.
TREE = [
    (0, "nvme0n1"),
    (1, "nvme0n1p1"),
    (0, "sda"),
    (1, "sda1"),
    (1, "sda2"),
    (2, "md0"),
    (3, "dm-0"),
    (3, "dm-1"),
    (1, "sda10"),
    (0, "sdb"),
    (1, "sdb1"),
    (2, "md0"),
    (0, "sr0"),
]
NAMES = "dm-0 dm-1 md0 nvme0n1 nvme0n1p1 sda sda1 sda2 sda10 sdb sdb1 sr0".split()
POINTS = ["/", "/proc", "/boot", "/home", "/data", "[SWAP]"]
HOST = "".join(
    f"device /dev/{name}\n\tnumber {number}\n"
    for name, number in [
        ("sda", "8:0"),
        ("sda2", "8:2"),
        ("sdb", "8:16"),
        ("sdz", "8:400"),
        ("md0", "9:0"),
        ("dm-0", "253:0"),
        ("sr0", "11:0"),
    ]
)


def rows(tool, kind, columns, *words, **settings):
    """Lines of the table without its headings."""
    return tool.made_text(kind, "-o", columns, "--no-headings", *words, **settings).splitlines()


def outline(lines):
    """Depth and name of each row, by where the names begin."""
    places = [len(line) - len(line.lstrip(DRAWN)) for line in lines]
    depths = {place: depth for depth, place in enumerate(sorted(set(places)))}
    return [(depths[place], line[place:].split()[0]) for place, line in zip(places, lines)]


@pytest.mark.parametrize("env", [{}, UTF8], ids=["ascii", "lines"])
def test_tree(tool, env):
    lines = rows(tool, "devices", "name", env=env)
    assert outline(lines) == TREE
    # The second time the array is marked, and nothing stands below it again.
    first, second = [line.lstrip(DRAWN) for line in lines if "md0" in line]
    assert first == "md0"
    assert second.startswith("md0") and len(second) > len("md0")


@pytest.mark.parametrize(
    "env, lines",
    [
        ({}, False),
        ({"LC_ALL": "C"}, False),
        ({"LC_ALL": "C.UTF-8"}, True),
        ({"LC_CTYPE": "C.UTF-8"}, True),
        ({"LANG": "C.UTF-8"}, True),
        ({"LC_ALL": "", "LC_CTYPE": "", "LANG": "C.UTF-8"}, True),
        ({"LC_ALL": "C", "LANG": "C.UTF-8"}, False),
        ({"LC_CTYPE": "C", "LANG": "C.UTF-8"}, False),
        ({"LC_ALL": "C.UTF-8", "LC_CTYPE": "C", "LANG": "C"}, True),
    ],
    ids=str,
)
def test_locale_draws_the_tree(tool, env, lines):
    text = tool.made_text("devices", env={**env, "TERM": "dumb"})
    strange = {character for character in text if not character.isascii()}
    assert bool(strange) == lines
    assert strange <= set("├└│─")


def test_tree_of_the_tops(tool):
    lines = rows(tool, "devices", "name", "--inverse")
    found = outline(lines)
    tops = [name for depth, name in found if depth == 0]
    assert sorted(tops) == ["dm-0", "dm-1", "nvme0n1p1", "sda1", "sda10", "sr0"]
    at = found.index((0, "dm-0"))
    assert found[at : at + 6] == [(0, "dm-0"), (1, "md0"), (2, "sda2"), (3, "sda"), (2, "sdb1"), (3, "sdb")]
    assert {name for _, name in found} == set(NAMES)


def test_mount_points_stand_below_each_other(tool):
    lines = rows(tool, "devices", "name,mount_points,size")
    # The swap area stands where a mount point would.
    assert any("[SWAP]" in line and "dm-1" in line for line in lines)
    at = next(number for number, line in enumerate(lines) if line.endswith(" /home"))
    assert lines[at].index("/home") == lines[at - 1].index("/ ")
    assert lines[at].lstrip(DRAWN) == "/home"


def test_rows_of_shorter_records(tool):
    """Of the mappings neither the administrators' names nor their purposes are there."""
    assert outline(rows(tool, "devices", "name", block="shorter")) == TREE
    assert rows(tool, "devices", "name,kind", "--sort", "name", block="shorter")[:2] == [
        "dm-0       dm",
        "dm-1       dm",
    ]


@pytest.mark.parametrize(
    "words, links, mounts",
    [
        ((), True, True),
        (("devices",), True, True),
        (("devices", "-o", "name"), True, False),
        (("devices", "-o", "name", "--sort", "size"), False, False),
        (("devices", "-o", "name", "--sort", "MOUNT_POINTS"), False, True),
        (("devices", "--pairs"), False, True),
        (("links", "mounts"), True, True),
        (("arrays",), False, False),
    ],
    ids=str,
)
def test_lists_that_are_drawn_with_others(tool, words, links, mounts):
    """A list that the table needs and that fails is told as if it had been asked for."""
    for code, name, is_needed in [("223100", "link", links), ("225100", "mount", mounts)]:
        for error in (errno.ENOENT, errno.EIO):
            env = {"FAKE_BLOCK_FAILS": code, "FAKE_BLOCK_ERRNO": str(error)}
            result = tool.made("list", *words, env=env)
            lines = [f"diskscout: the {name} query failed: {os.strerror(error)}; it found nothing before"]
            assert (result.returncode, result.stderr.splitlines()) == ((1, lines) if is_needed else (0, []))


@pytest.mark.parametrize("kinds", [(), ("devices",), ("mounts",), ("filesystems", "links")], ids=str)
@pytest.mark.parametrize("code, name", [("222100", "devices"), ("223100", "links")])
def test_lists_that_tell_what_a_device_is(tool, kinds, code, name):
    """Nobody can say that there is no such device."""
    env = {"FAKE_BLOCK_FAILS": code, "FAKE_BLOCK_ERRNO": str(errno.EIO)}
    result = tool.made("list", "/dev/sda", *kinds, env=env)
    assert result.returncode == 1
    lines = result.stderr.splitlines()
    assert len(lines) == max(1, len(kinds))
    assert all(f"query failed at the list of {name}: Input/output error;" in line for line in lines)
    document = tool.made_document("/dev/sda", *kinds, env=env, status=1)
    assert [document[kind] for kind in kinds or ("devices",)] == [None] * len(lines)


def test_without_a_kind(tool):
    text = tool.made_text()
    sections = [line for line in text.splitlines() if line in ("DEVICES", "DISKS", "PARTITIONS", "CD-ROMS")]
    assert sections == ["DEVICES", "DISKS", "PARTITIONS", "CD-ROMS"]
    assert text.splitlines()[0] == "DEVICES"
    # Why the classic codes do not show it.
    assert [line for line in text.splitlines() if "nvme0n1" in line and "classic name" in line]


def test_empty_classic_lists_are_left_out(tool):
    lines = tool.made_text(classic="empty").splitlines()
    assert lines[0] == "DEVICES"
    assert not {"DISKS", "PARTITIONS", "CD-ROMS"} & set(lines)


def test_failed_classic_lists_are_shown(tool):
    result = tool.made("list", classic="failing")
    assert result.returncode == 1
    assert {"DEVICES", "DISKS", "PARTITIONS", "CD-ROMS"} <= set(result.stdout.splitlines())


def test_classic_shows_nothing_else(tool):
    text = tool.made_text("--classic")
    assert text.splitlines()[0] == "DISKS"
    assert "nvme" not in text and "DEVICES" not in text
    assert tool.block_report == {}
    empty = tool.made_text("--classic", classic="empty").splitlines()
    assert [line for line in empty if line.isupper()] == ["DISKS", "PARTITIONS", "CD-ROMS"]


@pytest.mark.parametrize("kind", [*RECORDS, *HOST_KINDS])
def test_every_field_is_a_column(tool, kind):
    record = tool.made_document(kind)[kind][0]
    text = tool.made_text(kind, "--columns", ",".join(key.upper() for key in record))
    assert len(text.splitlines()) > 2


def test_column_of_tables_alone(tool):
    assert "mount_points" not in members_of("block_device")
    assert "/boot" in " ".join(rows(tool, "devices", "mount_points"))


def headings(text):
    return re.split(r"  +", text.splitlines()[1].strip())


def test_columns_by_their_headings(tool):
    """What a person reads above them, where no column has that for its name."""
    by_names = tool.made_text("mounts", "-o", "mount_point,total,used")
    assert tool.made_text("mounts", "-o", "Mount Point,SIZE,used") == by_names
    assert tool.made_text("mounts", "--sort", "size") == tool.made_text("mounts", "--sort", "total")
    refused = tool.made("list", "mounts", "-o", "total,size")
    assert (refused.returncode, refused.stderr) == (2, 'diskscout: column "total" is named twice\n')


def test_further_columns(tool):
    usual = headings(tool.made_text("devices"))
    more = headings(tool.made_text("devices", "-o", "+nguid,eui64"))
    assert more[: len(usual)] == usual
    assert len(more) == len(usual) + 2
    assert headings(tool.made_text("devices", "-o", "eui64,nguid")) == more[:-3:-1]


def test_no_headings(tool):
    assert rows(tool, "mounts", "mount_point") == POINTS
    assert tool.made_text("mounts", "-o", "mount_point").splitlines()[0] == "MOUNTS"


def test_bytes(tool):
    assert rows(tool, "mounts", "total") == ["10.0 GiB", "       -", "10.0 GiB", "10.0 GiB", "10.0 GiB", " 2.0 GiB"]
    plain = rows(tool, "mounts", "total", "--bytes")
    assert [line.strip() for line in plain] == ["10737418240", "-", *3 * ["10737418240"], "2147483648"]


@pytest.mark.parametrize(
    "column, names",
    [
        ("name", NAMES),
        ("size", "sr0 sda10 sda1 dm-1 dm-0 md0 sda2 sdb1 sdb sda nvme0n1p1 nvme0n1".split()),
        # One tells its model; the others follow in the order that they had.
        ("model", ["sda", *[name for name in NAMES if name != "sda"]]),
        ("partition_number", "nvme0n1p1 sda1 sdb1 sda2 sda10 dm-0 dm-1 md0 nvme0n1 sda sdb sr0".split()),
    ],
)
def test_sorted_devices_are_a_flat_list(tool, column, names):
    lines = rows(tool, "devices", "name", "--sort", column, env=UTF8)
    assert [line.split()[0] for line in lines] == names
    assert not any(line[0] in DRAWN for line in lines)


def test_sort_by_a_column_that_is_not_shown(tool):
    assert rows(tool, "mounts", "mount_point", "--sort", "id") == POINTS
    by_name = ["/", "/boot", "/data", "/home", "/proc", "[SWAP]"]
    assert rows(tool, "mounts", "mount_point", "--sort", "mount_point") == by_name


def test_classic_kinds_have_columns_too(tool):
    # Alone: what this machine lacks beside them is not what is looked at.
    assert rows(tool, "disks", "DEVICE_NAME,model", "--sort", "device_name", "--classic") == ["/dev/hda  FAST DISK", "/dev/sdb  -"]
    assert rows(tool, "disks", "device_name,size", "--classic", "--bytes")[0] == "/dev/hda  268435456"


def test_pairs(tool):
    lines = tool.made_text("devices", "--pairs", "-o", "name,size,serial,wwn").splitlines()
    assert set(lines) == {
        'NAME="dm-0" SIZE="21474836480" SERIAL="" WWN=""',
        'NAME="dm-1" SIZE="2147483648" SERIAL="" WWN=""',
        'NAME="md0" SIZE="34359738368" SERIAL="" WWN=""',
        'NAME="nvme0n1" SIZE="512110190592" SERIAL="" WWN=""',
        'NAME="nvme0n1p1" SIZE="512000000000" SERIAL="" WWN=""',
        'NAME="sda" SIZE="68719476736" SERIAL="EX-1" WWN="0x5000c500a1b2c3d4"',
        'NAME="sda1" SIZE="536870912" SERIAL="" WWN=""',
        'NAME="sda2" SIZE="34359738368" SERIAL="" WWN=""',
        'NAME="sda10" SIZE="1048576" SERIAL="" WWN=""',
        'NAME="sdb" SIZE="35433480192" SERIAL="" WWN=""',
        'NAME="sdb1" SIZE="34359738368" SERIAL="" WWN=""',
        'NAME="sr0" SIZE="0" SERIAL="" WWN=""',
    }


def test_size_of_which_only_the_least_is_known(tool):
    """In figures it would look like the true one."""
    one = ("--controller", "aac0")
    cells = [line.strip() for line in rows(tool, "raid_disks", "size", *one)]
    assert cells == ["1.0 GiB", "at least 1.0 TiB"]
    assert [line.strip() for line in rows(tool, "raid_disks", "size", "--bytes", *one)] == ["1073741824", "-"]
    pairs = tool.made_text("raid_disks", "-o", "size", "--pairs", *one).splitlines()
    assert pairs == ['SIZE="1073741824"', 'SIZE=""']


def test_pairs_of_what_a_shell_would_take_for_its_own(tool):
    lines = tool.made_text("devices", "--pairs", "-o", "name,serial,model", block="hostile").splitlines()
    assert lines[0] == (
        r'NAME="sd\x1b]0;x\x07a\x0asdb" SERIAL="\x22\x24(id)\x5c\x60id\x60'
        "'" r'" MODEL="\x1b[31m\x07\x7f\xc2\x9b5n\x0aDISKS\x0d\x09end"'
    )
    assert [line.split(" ", 1)[0] for line in lines[1:]] == [f'NAME="{1000 * "n"}"', 'NAME=""']


@pytest.mark.parametrize("kind", [*RECORDS, *CLASSIC_KINDS])
def test_pairs_of_every_kind(tool, kind):
    alone = ["--classic"] if kind in CLASSIC_KINDS else []
    lines = tool.made_text(kind, "--pairs", *alone).splitlines()
    assert lines
    forms = {tuple(re.findall(r'([A-Z0-9_]+)="[^"]*"(?: |$)', line)) for line in lines}
    assert len(forms) == 1
    for line in lines:
        assert re.fullmatch(r'[A-Z0-9_]+="[^"]*"( [A-Z0-9_]+="[^"]*")*', line)


def steering(text):
    return sorted({character for character in text if not character.isprintable() and character != "\n"})


@pytest.mark.parametrize("env", [{}, UTF8], ids=["ascii", "lines"])
def test_hostile_names_steer_nothing(tool, env):
    for words in ([], ["devices"], ["mounts"], ["links"], ["devices", "--inverse"], list(RECORDS)):
        text = tool.made_text(*words, block="hostile", classic="hostile", env=env)
        assert steering(text) == []
        # No line of a device can be taken for a heading.
        assert text.splitlines().count("DISKS") == (1 if words == [] else 0)
    every = ",".join(members_of("block_device"))
    assert steering(tool.made_text("devices", "-o", every, block="hostile", env=env)) == []
    assert len(rows(tool, "devices", "model", "--sort", "size", block="hostile", env=env)) == 3


def test_ten_thousand_devices(tool):
    lines = rows(tool, "devices", "name", block="many")
    assert lines == [f"nbd{number}" for number in range(10000)]
    assert rows(tool, "devices", "name", "--sort", "size", block="many") == lines[::-1]


@pytest.mark.parametrize("block, names", [("deep", 200), ("ring", 3)])
def test_trees_without_an_end(tool, block, names):
    for words in ([], ["--inverse"]):
        lines = rows(tool, "devices", "name", *words, block=block, env=UTF8)
        found = [line.lstrip(DRAWN).split()[0] for line in lines]
        assert set(found) == {f"dm-{number}" for number in range(names)}
        assert len(found) <= 2 * names
        assert max(map(len, lines)) < 200


@pytest.fixture
def host(tmp_path):
    directory = tmp_path / "host"
    (directory / "dev" / "mapper").mkdir(parents=True)
    (directory / "host.txt").write_text(HOST)
    (directory / "dev" / "mapper" / "vg-root").symlink_to("../dm-0")
    return directory


@pytest.mark.parametrize(
    "words, names",
    [
        (["/dev/sda"], "sda sda1 sda2 md0 dm-0 dm-1 sda10"),
        (["devices", "/dev/sda"], "sda sda1 sda2 md0 dm-0 dm-1 sda10"),
        (["/dev/md0"], "md0 dm-0 dm-1"),
        (["/dev/mapper/vg-root"], "dm-0"),
        (["/dev/mapper/vg-root", "--inverse"], "dm-0 md0 sda2 sda sdb1 sdb"),
        (["/dev/sda", "--inverse"], "sda"),
        (["/dev/sr0", "/dev/sda2"], "sda2 md0 dm-0 dm-1 sr0"),
        (["/dev/sda2", "/dev/md0", "/dev/sda2"], "sda2 md0 dm-0 dm-1"),
    ],
)
def test_devices_that_are_named(tool, host, words, names):
    document = tool.made_document(*words, "--sysroot", host)
    assert [key for key in document if key in KINDS] == ["devices"]
    assert sorted(device["name"] for device in document["devices"]) == sorted(names.split())
    lines = tool.made_text("devices", *[word for word in words if word != "devices"], "-o", "name", "--no-headings",
                           "--sysroot", host).splitlines()
    found = [line.lstrip(DRAWN).split()[0] for line in lines]
    assert list(dict.fromkeys(found)) == names.split() or set(found) == set(names.split())


def test_other_kinds_of_a_named_device(tool, host):
    document = tool.made_document("filesystems", "mounts", "arrays", "/dev/sda", "--sysroot", host)
    assert [content["name"] for content in document["filesystems"]] == "dm-0 dm-1 md0 sda sda1 sda2".split()
    points = [mount["mount_point"] for mount in document["mounts"]]
    assert {"/", "/boot", "/home"} <= set(points)
    assert not {"/data", "/proc"} & set(points)
    assert [array["name"] for array in document["arrays"]] == ["md0"]
    document = tool.made_document("filesystems", "mounts", "arrays", "/dev/sr0", "--sysroot", host)
    assert (document["mounts"], document["arrays"]) == ([], [])


@pytest.mark.parametrize("words", [["/dev/sdz"], ["/dev/nothing"], ["/dev/mapper"]])
def test_what_the_captured_host_does_not_have(tool, host, words):
    assert words[0] in complaint(tool.made("list", *words, "--sysroot", host), 2)
    document = tool.made_document(*words, "--sysroot", host, status=2)
    assert [message["code"] for message in document["messages"]] == ["usage"]


def test_running_host_is_not_asked_for_a_captured_one(tool, host):
    assert "/dev/null" in complaint(tool.made("list", "/dev/null", "--sysroot", host), 2)


def test_boot_byte(tool):
    lines = tool.made_text("partitions", "--classic", classic="hostile").splitlines()
    assert "0x01" in lines[2].split()
    assert "yes" not in lines[2] + lines[3]
    first, second = tool.made_text("partitions", "--classic").splitlines()[2:4]
    assert "yes" in first.split() and "0x" not in first
    assert "yes" not in second and "0x" not in second


def test_failed_query_names_its_cause(tool):
    env = {"FAKE_BLOCK_FAILS": "222100", "FAKE_BLOCK_ERRNO": "13"}
    result = tool.made("list", "devices", env=env)
    assert "Permission denied" in complaint(result, 1)
    assert result.stdout.splitlines()[0] == "DEVICES"
