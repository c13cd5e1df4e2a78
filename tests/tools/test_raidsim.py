# SPDX-License-Identifier: Apache-2.0
"""The hardware RAID kinds on the real plug-in, the simulated controller tool and the filter for sites."""

import json

import pytest
from conftest import complaint
from raid_site import RaidSite

DISK = "primary_defects=0 grown_defects=0 bad_status=no"
BIG = f"removable=no vendor=ACME product=EX4 revision=SA1B blocks=8388608 bytes_per_block=512 {DISK}"
# Two disks of 4 GiB carry a mirror and a stripe of two mirrors, a disk of 1 GiB waits for its use.
STATE = f"""\
format version=1
controller name=aac0 type="EXAMPLE 2200S" availability=read/write clustering=No opens=yes channels=1 next_task=101
disk at=0:00:0 type=Disk {BIG} usage=Initialized shared=no rate=320
disk at=0:03:0 type=Disk removable=no vendor="EXAMPLE A" product="FAST DISK" revision=1.02 blocks=2097152 \
bytes_per_block=512 {DISK} usage="Not Initialized" shared=no rate=160
disk at=0:04:0 type=Disk removable=no vendor=ACME product=EX1 revision=1.02 blocks=2097152 \
bytes_per_block=512 {DISK} usage=Initialized shared=no rate=320
disk at=0:06:0 type=Processor removable=no vendor=ACME product=ENCLOSURE revision=0.9 blocks=0 \
bytes_per_block=0 {DISK} usage=Unowned shared=no rate=0
disk at=0:10:0 type=Disk {BIG} usage=Initialized shared=yes rate=320
container number=0 type=Mirror size_kb=1048576 stripe_kb=0 usage=Open device=/dev/sda label=system parent=-1 data=yes
piece at=0:00:0 offset_kb=64 size_kb=1048576 rebuild=no
piece at=0:10:0 offset_kb=64 size_kb=1048576 rebuild=no
spare at=0:04:0
container number=2 type=Stripe size_kb=1048576 stripe_kb=64 usage=Valid device=/dev/sdc label="" parent=-1 data=yes
container number=24 type=Mirror size_kb=524288 stripe_kb=0 usage=Open device="" label="" parent=2 data=no
piece at=0:00:0 offset_kb=1048640 size_kb=524288 rebuild=no
piece at=0:10:0 offset_kb=1048640 size_kb=524288 rebuild=no
container number=25 type=Mirror size_kb=524288 stripe_kb=0 usage=Open device="" label="" parent=2 data=no
piece at=0:00:0 offset_kb=1572928 size_kb=524288 rebuild=no
piece at=0:10:0 offset_kb=1572928 size_kb=524288 rebuild=no
controller name=aac1 type="EXAMPLE 2120S" availability="read only" clustering=Yes opens=yes channels=1 next_task=101
"""


def at(scsi_id):
    return {"position": scsi_id * 256, "channel": 0, "id": scsi_id, "lun": 0}


def controller(number, name, model, availability, clustering):
    return {
        "controller_id": number,
        "adapter_name": name,
        "adapter_type": model,
        "availability": availability[0],
        "availability_word": availability[1],
        "clustering": clustering[0],
        "clustering_word": clustering[1],
    }


def container(number, members, **fields):
    return {
        "raid_id": number,
        "disk_number": len(members),
        "members": members,
        "type": 1,
        "type_word": "RAID 1",
        "total_size": 536870912,
        "stripe_size": 0,
        "usage": 5,
        "usage_word": "open",
        "hot_spare": None,
        "label": None,
        **fields,
    }


def raid_disk(scsi_id, **fields):
    return {
        "address": at(scsi_id),
        "vendor": "ACME",
        "model": "EX4",
        "device_type": 0,
        "device_type_word": "disk",
        "blocks": 8388608,
        "bytes_per_block": 512,
        "usage": 0,
        "usage_word": "initialized",
        "shared": 0,
        "shared_word": "no",
        "rate": 320,
        **fields,
    }


# The tool tells one decimal, cut off. An area that begins at 2.0GB wraps; one of 1.9GB is 1,992,294 KB in
# single precision.
def last_area(scsi_id):
    return {"address": at(scsi_id), "offset": -(2**31), "free_space": 1992294 * 1024}


def piece(scsi_id, number, offset, size, above):
    return {
        "address": at(scsi_id),
        "offset": offset,
        "size": size,
        "raid_id": number,
        "type": 1,
        "type_word": "RAID 1",
        "multilevel_raid_id": above,
        "multilevel_type": 1 if above else 0,
        "multilevel_type_word": "stripe" if above else "none",
        "read_write_attribute": 3,
        "read_write_attribute_word": "read/write",
    }


def pieces_of(scsi_id):
    return [
        piece(scsi_id, 0, 65536, 2**30, 0),
        piece(scsi_id, 24, 2**30, 2**29, 2),
        piece(scsi_id, 25, 3 * 2**29, 2**29, 2),
    ]


STRIPE = {
    "type": 3,
    "type_word": "RAID 10",
    "total_size": 2**30,
    "stripe_size": 65536,
    "usage": 9,
    "usage_word": "valid",
}
BOTH = [at(0), at(10)]
ALL = {
    "format": 1,
    "controller": "aac0",
    "controllers": [
        controller(0, "aac0", "EXAMPLE 2200S", (3, "read/write"), (0, "no")),
        controller(1, "aac1", "EXAMPLE 2120S", (2, "read only"), (1, "yes")),
    ],
    "containers": [
        container(0, BOTH, total_size=2**30, hot_spare=at(4), label="system"),
        container(2, [{"position": n, "container": n} for n in (24, 25)], **STRIPE),
        container(24, BOTH),
        container(25, BOTH),
    ],
    "raid-disks": [
        raid_disk(0),
        raid_disk(
            3,
            vendor="EXAMPLE_A",
            model="FAST_DISK",
            blocks=2097152,
            usage=1,
            usage_word="not initialized",
            rate=160,
        ),
        raid_disk(4, model="EX1", blocks=2097152),
        raid_disk(
            6,
            model="ENCLOSURE",
            device_type=3,
            device_type_word="processor",
            blocks=0,
            bytes_per_block=0,
            usage=5,
            usage_word="unowned",
            rate=0,
        ),
        raid_disk(10, shared=1, shared_word="yes"),
    ],
    # 1,048,512 KB, which the tool calls 1023MB.
    "raid-space": [last_area(0), {"address": at(4), "offset": 65536, "free_space": 1023 * 2**20}, last_area(10)],
    "raid-partitions": pieces_of(0) + pieces_of(10),
    "failed": [],
}
KINDS = [key for key in ALL if key not in ("format", "controller", "failed")]


@pytest.fixture
def site(tool, tmp_path):
    return RaidSite(tool, tmp_path / "site", STATE)


def document_of(result):
    assert (result.returncode, result.stderr) == (0, "")
    return json.loads(result.stdout)


def same(found, wanted):
    """Equal in values, in their types (1 is not true) and in the order of all keys."""
    assert json.dumps(found, indent=1) == json.dumps(wanted, indent=1)


def test_whole_document(site):
    same(document_of(site.list("--json", *KINDS)), ALL)


@pytest.mark.parametrize("fault", ["terminal", "status", "pager=3", "terminal,status,pager=2"])
def test_what_the_tool_paints_does_not_show(site, fault):
    same(document_of(site.list("--json", *KINDS, fault=fault)), ALL)


def test_tables(site):
    result = site.list("containers", "raid-space")
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout == (
        "CONTAINERS ON aac0\n"
        "ID  LABEL   TYPE     USAGE  SIZE MOD 4 GIB    STRIPE  HOT SPARE  MEMBERS  MADE OF\n"
        " 0  system  RAID 1   open          1.0 GiB         -  0:04:0           2  0:00:0, 0:0a:0\n"
        " 2  -       RAID 10  valid         1.0 GiB  64.0 KiB  -                2  container 24, container 25\n"
        "24  -       RAID 1   open        512.0 MiB         -  -                2  0:00:0, 0:0a:0\n"
        "25  -       RAID 1   open        512.0 MiB         -  -                2  0:00:0, 0:0a:0\n"
        "MOD 4 GIB leaves out whole multiples of 4 GiB; raid-partitions shows sizes in full.\n"
        "\n"
        "RAID SPACE ON aac0\n"
        "DISK    OFFSET MOD 4 GIB  FREE MOD 4 GIB\n"
        "0:00:0           2.0 GiB         1.9 GiB\n"
        "0:04:0          64.0 KiB      1023.0 MiB\n"
        "0:0a:0           2.0 GiB         1.9 GiB\n"
        "MOD 4 GIB leaves out whole multiples of 4 GiB; raid-disks and raid-partitions show sizes in full.\n"
    )


def test_named_controller(site):
    wanted = {"format": 1, "controller": "aac1", "raid-disks": [], "raid-space": [], "failed": []}
    same(document_of(site.list("--json", "raid-disks", "raid-space", "--controller", "aac1")), wanted)


def failures(result):
    """The lines that a failed run left, without the program's name."""
    assert result.returncode == 1
    lines = result.stderr.splitlines()
    assert all(line.startswith("diskscout: ") for line in lines)
    return [line[len("diskscout: ") :] for line in lines]


def test_unknown_controller(site):
    result = site.list("containers", "--controller", "aac7")
    assert result.stdout == "CONTAINERS ON aac7\nThe container query failed.\n"
    assert failures(result) == [
        "the container query failed; it found nothing before",
        'there is no controller "aac7", there is aac0, aac1',
    ]


def test_controller_that_another_program_holds(site):
    result = site.list("controllers", "containers", "raid-space", "--json", fault="busy")
    same(
        json.loads(result.stdout),
        {
            "format": 1,
            "controller": "aac0",
            "controllers": ALL["controllers"],
            "containers": [],
            "raid-space": [],
            "failed": ["containers", "raid-space"],
        },
    )
    assert failures(result) == [
        "the container query failed; it found nothing before",
        "the RAID space query failed at the list of disks; it found nothing before",
        "another program holds controller aac0; end the other program that uses the controller, or wait for it",
    ]


def test_host_without_a_controller(site):
    result = site.list("controllers", "containers", fault="missing")
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout == (
        "RAID CONTROLLERS\nNo RAID controller was found.\n\nCONTAINERS\nNo RAID controller was found.\n"
    )


def test_named_controller_on_a_host_without_any(site):
    result = site.list("containers", "--controller", "aac0", fault="missing")
    assert failures(result) == [
        "the container query failed; it found nothing before",
        "no RAID controller was found",
    ]


def test_configuration_that_is_not_there(site):
    result = site.list("controllers", config="none.cfg")
    assert result.stdout == "RAID CONTROLLERS\nThe RAID controller query failed.\n"
    assert failures(result) == [
        "the RAID controller query failed; it found nothing before",
        "the configuration none.cfg cannot be read: No such file or directory (--config names another one);"
        ' where there is a RAID controller, write the lines "Cli Path:", "Cli Name:" and "Filter Script:" into it, or name'
        " the file that has them with --config",
    ]


def test_tool_that_fails(site):
    hint = (
        f"the controller tool {site.directory}/raidsim ends with status 3;"
        ' run the tool by hand with the commands "controller list" and "exit"'
    )
    first = "the RAID controller query failed; it found nothing before"
    assert failures(site.list("controllers", fault="exit=3")) == [first, hint]
    site.config.write_text("Cli Path:/nowhere\n")
    hint = 'there is no line "Cli Name:" in the configuration raid.cfg; add the line with the key and its value'
    assert failures(site.list("controllers")) == [first, hint]


def test_configuration_name_that_is_too_long_is_refused(site):
    result = site.list("controllers", config=256 * "c")
    assert complaint(result, 2) == "the configuration's path has 256 bytes, the plug-in takes 255"


def test_configuration_in_another_directory(site, tmp_path):
    """The tool's files are made where the program is run, not where the configuration lies."""
    elsewhere = tmp_path / "elsewhere.cfg"
    site.config.rename(elsewhere)
    document = document_of(site.list("raid-partitions", "--json", config=elsewhere))
    assert document["raid-partitions"] == ALL["raid-partitions"]
