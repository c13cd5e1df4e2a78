# SPDX-License-Identifier: Apache-2.0
"""The whole machine as one picture and one document: each thing once, below what it belongs to."""

import json
import re

import pytest
from documents import errors_of
from raid_site import SOURCES, RaidSite
from test_raid_site import container, disk, site_of

PAGE = SOURCES / "docs" / "diskscout.md"
HOSTS = SOURCES / "tests" / "hosts"
PLAIN = {"env": {"LC_ALL": "C"}}


@pytest.fixture
def sample(tool, tmp_path):
    return RaidSite(tool, tmp_path / "site")


def document_of(site, *arguments, status=0, **settings):
    result = site.run("tree", "--json", "--config", "raid.cfg", *arguments, **settings)
    assert result.returncode == status, result.stderr
    return json.loads(result.stdout)


def picture_of(site, *arguments, status=0, **settings):
    result = site.run("tree", "--config", "raid.cfg", *arguments, env={"LC_ALL": "C"}, **settings)
    assert result.returncode == status, result.stderr
    return result.stdout


def by_id(document):
    rows = {row["id"]: row for row in document["tree"]}
    assert len(rows) == len(document["tree"])
    return rows


def below(rows, parent):
    return [row["id"] for row in rows.values() if row["parent"] == parent]


def check_order(document):
    """Whatever a row is drawn below stands before it, and names lead to rows."""
    seen = set()
    for row in document["tree"]:
        assert row["parent"] is None or row["parent"] in seen
        seen.add(row["id"])
    for row in document["tree"]:
        assert {*row["stands_on"], *row["spare_of"]} <= seen


def hexadecimal(at):
    channel, number, lun = at.split(":")
    return f"{int(channel):x}:{int(number):02x}:{int(lun):x}"


# ---- behind the controllers ----


def test_every_disk_of_the_state_file_is_there_once(sample):
    document = document_of(sample)
    check_order(document)
    controller, expected = None, []
    for line in (sample.directory / "state.txt").read_text().splitlines():
        if name := re.match(r"controller name=(\S+)", line):
            controller = name[1]
        elif at := re.match(r"disk at=(\S+)", line):
            expected.append((controller, hexadecimal(at[1])))
    told = [(row["controller"], row["name"]) for row in document["tree"] if row["kind"] in ("raid_disk", "raid_device")]
    assert sorted(told) == sorted(expected)
    assert len(told) == 12


def test_what_is_below_what(sample):
    rows = by_id(document_of(sample))
    assert below(rows, None) == ["aac0", "aac1", "local"]
    assert below(rows, "aac0") == [
        "aac0/container/0", "aac0/container/1", "aac0/container/2", "aac0/spares", "aac0/unused", "aac0/others",
    ]
    assert below(rows, "aac0/container/0") == ["aac0/disk/0:00:0", "aac0/disk/0:01:0"]
    assert below(rows, "aac0/container/2") == ["aac0/container/24", "aac0/container/25"]
    assert below(rows, "aac0/container/25") == ["aac0/disk/1:00:0", "aac0/disk/1:01:0"]
    assert below(rows, "aac0/spares") == ["aac0/disk/0:04:0"]
    assert below(rows, "aac0/unused") == ["aac0/disk/0:05:0", "aac0/disk/1:02:0"]
    assert below(rows, "aac0/others") == ["aac0/disk/0:06:0"]
    assert rows["aac0/disk/0:06:0"]["type"] == "processor"
    assert below(rows, "aac1") == ["aac1/unused"]


def test_what_is_told_of_them(sample):
    rows = by_id(document_of(sample))
    assert rows["aac0/container/2"]["state"] == "rebuilding"
    assert rows["aac0/container/2"]["done_permille"] == 450
    assert rows["aac0/container/2"]["stands_on"] == ["aac0/container/24", "aac0/container/25"]
    assert rows["aac0/container/0"]["stands_on"] == ["aac0/disk/0:00:0", "aac0/disk/0:01:0"]
    assert (rows["aac0/container/0"]["label"], rows["aac0/container/0"]["node"]) == ("system", "/dev/sda")
    assert rows["aac0/disk/0:04:0"]["spare_of"] == ["aac0/container/0"]
    # 33.9GB and 34.4GB, as the tool tells them.
    (area,) = below(rows, "aac0/disk/0:00:0")
    assert rows[area]["size"] == pytest.approx(34.4 * 2**30, abs=4096)
    assert rows[area]["offset"] == pytest.approx(33.9 * 2**30, abs=4096)
    assert area == f"aac0/free/0:00:0/{rows[area]['offset']}"
    assert rows["aac1"]["state"] == "read only"


def test_picture_of_the_page(sample):
    """As it stands there, but for the machine that looks."""
    shown = re.search(r"^aac0 .*?\n(?=```)", PAGE.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL)[0]
    picture = sample.run("tree", "--config", "raid.cfg", env={"LC_ALL": "C"}).stdout

    def cells(text):
        lines = text.split("\nlocal ")[0].splitlines()
        return [re.split(r"  +", line.strip()) for line in lines if not line.startswith(("STORAGE", "NAME"))]

    assert [[cell for cell in row if cell != "-"] for row in cells(shown)] == [
        [cell for cell in row if cell != "-"] for row in cells(picture)
    ]


def test_failed_disk(tool, tmp_path):
    site = RaidSite(tool, tmp_path / "site", (SOURCES / "tests" / "tools" / "failed-disk.state").read_text())
    rows = by_id(document_of(site))
    assert rows["aac0/container/0"]["state"] == "degraded"
    assert rows["aac0/disk/0:01:0"]["state"] == "offline"
    assert rows["aac0/disk/0:01:0"]["parent"] == "aac0/unused"


def test_disk_of_two_containers(tool, tmp_path):
    lines = [disk("0:00:0"), disk("0:01:0"), disk("0:02:0")]
    lines += container(0, "Mirror", "0:00:0", "0:01:0")
    second = container(1, "Mirror", "0:01:0", "0:02:0")
    second[1] = second[1].replace("offset_kb=64", "offset_kb=2097152")
    site = site_of(tool, tmp_path, *lines, *second)
    document = document_of(site)
    check_order(document)
    rows = by_id(document)
    assert rows["aac0/disk/0:01:0"]["parent"] == "aac0/container/0"
    assert rows["aac0/container/1"]["stands_on"] == ["aac0/disk/0:01:0", "aac0/disk/0:02:0"]
    assert below(rows, "aac0/container/1") == ["aac0/disk/0:02:0"]
    (line,) = [line for line in picture_of(site).splitlines() if "container 1" in line]
    assert line.endswith("0:01:0")


def test_member_that_has_gone(tool, tmp_path):
    site = site_of(tool, tmp_path, disk("0:00:0"), disk("0:01:0"), *container(0, "Mirror", "0:00:0", "0:01:0"))
    site.run("tree", "--config", "raid.cfg")
    site.put_in_front("'disk list'", "ask | grep -v '^0:01:0'; exit")
    rows = by_id(document_of(site))
    assert rows["aac0/disk/0:01:0"]["state"] == "missing"
    assert rows["aac0/disk/0:01:0"]["parent"] == "aac0/container/0"
    assert rows["aac0/container/0"]["state"] == "degraded"


def test_controller_that_cannot_be_opened(sample):
    document = document_of(sample, status=1, fault="busy")
    rows = by_id(document)
    assert "another application holds the controller" in rows["aac0"]["cause"]
    assert "aac1" in rows and "local" in rows
    assert any("another program holds controller aac0" in error["text"] for error in errors_of(document))
    picture = picture_of(sample, status=1, fault="busy")
    assert "another application holds the controller" in picture


def test_one_controller(sample):
    rows = by_id(document_of(sample, "--controller", "aac1"))
    assert below(rows, None) == ["aac1", "local"]


def test_tool_that_fails_leaves_the_local_part(sample):
    document = document_of(sample, status=1, fault="exit=3")
    assert below(by_id(document), None) == ["local"]
    assert any("ends with status 3" in error["text"] for error in errors_of(document))


def test_configuration_that_is_not_there(tool, tmp_path):
    result = tool.run("tree", "--json", "--config", tmp_path / "none.cfg")
    assert result.returncode == 1
    assert "cannot be read" in result.stderr
    assert json.loads(result.stdout)["tree"][0]["id"] == "local"
    # Nobody has named the usual one, and a captured host without it has no controller.
    alone = tool.run("tree", "--json", "--sysroot", HOSTS / "real-kernel")
    assert alone.returncode == 0
    assert [message["code"] for message in json.loads(alone.stdout)["messages"]] == ["no_sysfs"]


def test_tool_that_hangs(sample):
    sample.put_in_front("'disk show space'", "exec sleep 60")
    document = document_of(sample, "--timeout", "1", status=1)
    rows = by_id(document)
    assert "timed out after 1 s at disk show space" in rows["aac0"]["cause"]
    assert below(rows, "aac0/container/0") == ["aac0/disk/0:00:0", "aac0/disk/0:01:0"]
    assert "timed_out" in [message["code"] for message in errors_of(document)]


# ---- what the kernel sees ----


def made(tool, *arguments, status=0, **settings):
    result = tool.made("tree", *arguments, classic="empty", **settings)
    assert result.returncode == status, result.stderr
    return result


def test_devices_stand_on_each_other(tool):
    document = json.loads(made(tool, "--json").stdout)
    check_order(document)
    rows = by_id(document)
    devices = json.loads(tool.made("list", "devices", "--json").stdout)["devices"]
    assert sorted(rows) == sorted(["local", *(device["name"] for device in devices)])
    assert rows["md0"]["stands_on"] == ["sda2", "sdb1"]
    assert (rows["md0"]["parent"], rows["md0"]["type"], rows["md0"]["state"]) == ("sda2", "raid1", "rebuilding")
    assert rows["dm-0"]["parent"] == "md0"
    assert rows["dm-0"]["mount_points"] == ["/", "/home"]
    assert below(rows, "local") == ["nvme0n1", "sda", "sdb", "sr0"]


def test_picture_of_devices(tool):
    lines = made(tool, **PLAIN).stdout.splitlines()
    assert lines[0] == "STORAGE"
    assert lines[1].split("  ")[0] == "NAME"
    names = [found[1] for line in lines[2:] if (found := re.match(r"[-|` ]*(\w[\w-]*(?: \([^)]*\))?)", line))]
    assert [name for name in names if name.startswith("md0")] == ["md0", "md0 (above)"]
    assert "dm-0 (vg-root)" in names


def test_failed_list_of_devices(tool):
    result = made(tool, "--json", status=1, env={"FAKE_BLOCK_FAILS": "222100"})
    document = json.loads(result.stdout)
    assert document["tree"][0]["id"] == "local"
    assert "Permission denied" in document["tree"][0]["cause"]
    assert errors_of(document)


def test_container_below_its_device(tool, tmp_path):
    """The kernel's disk of a captured host, the container that it is, and the members behind that."""
    site = site_of(
        tool, tmp_path, disk("0:00:0"), disk("0:01:0"),
        *container(0, "Mirror", "0:00:0", "0:01:0", device="/dev/sda"), *container(1, "Volume", "0:01:0", device="/dev/sdz"),
    )
    document = document_of(site, "--sysroot", HOSTS / "real-kernel")
    check_order(document)
    rows = by_id(document)
    assert rows["sda"]["stands_on"] == ["aac0/container/0"]
    assert rows["sda1"]["parent"] == "sda"
    assert rows["aac0/container/0"]["parent"] == "aac0"
    picture = picture_of(site, "--sysroot", HOSTS / "real-kernel")
    lines = picture.splitlines()
    (at,) = [number for number, line in enumerate(lines) if re.match(r"\|-sda ", line)]
    assert "container 0 of aac0 (above)" in "".join(lines[at + 1 : at + 4])
    assert "/dev/sdz (not there)" in picture


# ---- the command line ----


@pytest.mark.parametrize(
    ("words", "complaint"),
    [
        (["--raid"], "--raid is for doctor"),
        (["--sort", "size"], "--sort is for list"),
        (["--format", "1"], "tree is for format 2"),
        (["--bytes", "--json"], "--bytes is for tables, the document is always whole"),
    ],
)
def test_options_of_others(tool, words, complaint):
    result = tool.run("tree", *words)
    assert result.returncode == 2
    assert complaint in result.stderr


def test_sizes_in_bytes(tool):
    assert " 68719476736 " in made(tool, "--bytes", **PLAIN).stdout
