# SPDX-License-Identifier: Apache-2.0
"""The tables for people, compared as whole texts."""

import pytest
from conftest import CLASSIC, complaint

DISKS = """\
DISKS
DEVICE    BUS   ADDRESS         SIZE  VENDOR  MODEL      SERIAL  FIRMWARE  PARTITIONS  EXTENDED  SYSTEM
/dev/hda  IDE   -          256.0 MiB  -       FAST DISK  S-1     1.0                2         1  yes
/dev/sdb  SCSI  255:2:3:4          -  ACME    -          -       B2                 0         0
"""
PARTITIONS = """\
PARTITIONS
DEVICE     TYPE               BOOT  FIRST SECTOR       SIZE  FILE SYSTEM  MOUNT POINTS      TOTAL  USED  SYSTEM
/dev/hda1  Primary Partition  yes             63  128.0 MiB  ext3         /;/boot       100.0 MiB   0 B  yes
/dev/hda5  Logical Drive                     126     1023 B  -            -                     -     -
"""
CDROMS = """\
CD-ROMS
DEVICE    BUS  MODEL  SERIAL  FIRMWARE  MOUNT POINT       SIZE
/dev/hdc  IDE  DVD    -       0.9       /media/disc  700.0 MiB
"""


@pytest.mark.parametrize(
    "kinds, sections",
    [
        ([], [DISKS, PARTITIONS, CDROMS]),
        (["disks"], [DISKS]),
        (["partitions"], [PARTITIONS]),
        (["cdroms"], [CDROMS]),
        (["cdroms", "disks", "cdroms"], [DISKS, CDROMS]),
    ],
)
def test_sections(tool, kinds, sections):
    assert tool.fake_table("plain", *kinds) == "\n".join(sections)
    assert tool.report["queries"] == str(len(sections))


def test_empty_host_is_told_in_sentences(tool):
    assert tool.fake_table("empty") == (
        "DISKS\n"
        "No disk with an IDE or SCSI name, such as hda or sda, was found.\n"
        "\n"
        "PARTITIONS\n"
        "No partition was found on the disks of this host.\n"
        "\n"
        "CD-ROMS\n"
        "No CD-ROM drive was found.\n"
    )


def test_failed_query_keeps_what_it_found(tool):
    result = tool.fake("partial", "list", *CLASSIC)
    assert complaint(result, 1) == "the partition query failed; what it found so far is shown"
    assert result.stdout == "\n".join([DISKS, PARTITIONS, CDROMS])


def test_failed_queries_are_not_empty_answers(tool):
    result = tool.fake("failing", "list", *CLASSIC)
    assert result.returncode == 1
    assert result.stdout == (
        "DISKS\nThe disk query failed.\n\n"
        "PARTITIONS\nThe partition query failed.\n\n"
        "CD-ROMS\nThe CD-ROM query failed.\n"
    )
    assert result.stderr == (
        "diskscout: the disk query failed; it found nothing before\n"
        "diskscout: the partition query failed; it found nothing before\n"
        "diskscout: the CD-ROM query failed; it found nothing before\n"
    )


def test_hostile_texts_neither_steer_the_terminal_nor_shift_a_column(tool):
    lines = tool.fake_table("hostile", "disks").splitlines()
    assert lines == [
        "DISKS",
        "DEVICE    BUS   ADDRESS      SIZE  VENDOR" + 59 * " " + "MODEL       SERIAL" + 60 * " "
        + "FIRMWARE  PARTITIONS  EXTENDED  SYSTEM",
        "/dev/sda  SCSI  0:0:0:0  16.0 EiB  " + 63 * "V" + "  A?B?[31m??  " + 64 * "S"
        + "  caf?      4294967295         0",
        "/dev/sdb  SCSI  0:0:0:0         -  größe" + 60 * " " + "?31m        ??" + 64 * " "
        + "€ 1                0         0",
    ]


def test_bytes_that_are_no_text_do_not_take_their_neighbours_along(tool):
    assert tool.fake_table("hostile", "partitions").splitlines() == [
        "PARTITIONS",
        "DEVICE              TYPE   BOOT  FIRST SECTOR  SIZE  FILE SYSTEM  MOUNT POINTS  TOTAL      USED  SYSTEM",
        "-                   ?(???  yes              0     -  -            /??/𐍈           1 B  16.0 EiB",
        "/dev/sda4294967296  -                       0     -  -            -                 -         -",
    ]


def test_negative_length_is_an_empty_list(tool):
    assert tool.fake_table("negative-length", "disks") == (
        "DISKS\nNo disk with an IDE or SCSI name, such as hda or sda, was found.\n"
    )


@pytest.mark.parametrize(
    "size, shown",
    [
        (0, "-"),
        (1, "1 B"),
        (1023, "1023 B"),
        (1024, "1.0 KiB"),
        (1075, "1.0 KiB"),
        (1076, "1.1 KiB"),
        (1280, "1.3 KiB"),
        (1536, "1.5 KiB"),
        (1023 * 1024, "1023.0 KiB"),
        (2**20 - 52, "1023.9 KiB"),
        (2**20 - 51, "1.0 MiB"),
        (2**20 - 1, "1.0 MiB"),
        (2**20, "1.0 MiB"),
        (256 * 2**20, "256.0 MiB"),
        (2**30, "1.0 GiB"),
        (2**40 - 1, "1.0 TiB"),
        (2**40, "1.0 TiB"),
        (2**50, "1.0 PiB"),
        (2**60 - 1, "1.0 EiB"),
        (2**60, "1.0 EiB"),
        (2**63, "8.0 EiB"),
        (2**64 - 1, "16.0 EiB"),
    ],
)
def test_sizes(tool, size, shown):
    result = tool.fake("sizes", "list", *CLASSIC, "disks", env={"FAKE_PLUGIN_SIZES": str(size)})
    _, headings, row = result.stdout.splitlines()
    # Numbers end where their heading does.
    end = headings.index("SIZE") + len("SIZE")
    cell = row[:end].split("  ")[-1].strip()
    assert cell == shown


def test_sizes_stand_below_each_other(tool):
    result = tool.fake("sizes", "list", *CLASSIC, "disks", env={"FAKE_PLUGIN_SIZES": "1 1048576 18446744073709551615"})
    assert [line[:36] for line in result.stdout.splitlines()[1:]] == [
        "DEVICE    BUS  ADDRESS      SIZE  VE",
        "/dev/sda  -    0:0:0:0       1 B  - ",
        "/dev/sda  -    0:0:0:0   1.0 MiB  - ",
        "/dev/sda  -    0:0:0:0  16.0 EiB  - ",
    ]
