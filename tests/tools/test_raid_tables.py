# SPDX-License-Identifier: Apache-2.0
"""The tables of the hardware RAID kinds, their options, and what is said when a query fails."""

import pytest
from conftest import CLASSIC, complaint

RAID_KINDS = ["controllers", "containers", "raid-disks", "raid-space", "raid-partitions"]
CONTROLLERS = """\
RAID CONTROLLERS
ID  NAME  TYPE           AVAILABILITY  CLUSTERING
 0  aac0  EXAMPLE 2200S  read/write    yes
 1  aac1  -              other         no
"""
CONTAINERS = """\
CONTAINERS ON aac0
ID  LABEL   TYPE     USAGE    SIZE MOD 4 GIB    STRIPE  HOT SPARE  MEMBERS  MADE OF
 0  system  RAID 1   open            1.0 GiB         -  0:04:0           2  0:00:0, 1:0a:2
 2  -       RAID 10  unknown         3.0 GiB  64.0 KiB  -                2  container 24, container 63
24  -       unknown  unknown             0 B         -  -                0  -
MOD 4 GIB leaves out whole multiples of 4 GiB; raid-partitions shows sizes in full.
"""
RAID_DISKS = """\
RAID DISKS ON aac0
ADDRESS  TYPE                 SIZE  VENDOR  MODEL  USAGE            SHARED   RATE
0:00:0   disk              1.0 GiB  ACME    EX1    initialized      yes       320
1:0a:2   printer  at least 1.0 TiB  -       -      not initialized  unknown     0
"""
RAID_SPACE = """\
RAID SPACE ON aac0
DISK    OFFSET MOD 4 GIB  FREE MOD 4 GIB
1:0a:2          64.0 KiB         1.0 GiB
1:0a:2           3.0 GiB             0 B
MOD 4 GIB leaves out whole multiples of 4 GiB; raid-disks and raid-partitions show sizes in full.
"""
RAID_PARTITIONS = """\
RAID PARTITIONS ON aac0
DISK      OFFSET     SIZE  CONTAINER  TYPE    PART OF   ACCESS
1:0a:2  64.0 KiB  3.0 GiB          0  volume  -         read/write
0:00:0       0 B      0 B         24  RAID 1  stripe 2  read
"""


def asked(tool):
    """What the made plug-in was asked, in order: codes and arguments."""
    queries = range(int(tool.report["queries"]))
    return [tuple(tool.report[f"query{i}"].split(" ")) for i in queries]


@pytest.mark.parametrize(
    "kinds, sections",
    [
        (RAID_KINDS, [CONTROLLERS, CONTAINERS, RAID_DISKS, RAID_SPACE, RAID_PARTITIONS]),
        (["controllers"], [CONTROLLERS]),
        (["containers"], [CONTAINERS]),
        (["raid-disks"], [RAID_DISKS]),
        (["raid-space"], [RAID_SPACE]),
        (["raid-partitions"], [RAID_PARTITIONS]),
        (["raid-partitions", "containers"], [CONTAINERS, RAID_PARTITIONS]),
    ],
)
def test_sections(tool, kinds, sections):
    assert tool.fake_table("plain", *kinds) == "\n".join(sections)


def test_lists_that_several_kinds_need_are_asked_for_once(tool):
    tool.fake_table("plain", *RAID_KINDS)
    assert asked(tool) == [
        ("129100", "none"),
        ("125100", "aac0"),
        ("126100", "aac0"),
        ("127100", "[0]aac0"),
        ("127100", "[10a02]aac0"),
        ("128100", "aac0"),
    ]


def test_named_controller_is_asked_without_a_look_at_the_list(tool):
    assert tool.fake_table("plain", "containers", "--controller", "aac0") == CONTAINERS
    assert asked(tool) == [("125100", "aac0")]


def test_default_kinds_ask_no_controller(tool):
    tool.fake_table("plain")
    assert [code for code, _ in asked(tool)] == ["122100", "123100", "124100"]


def test_host_without_a_controller_is_told_in_a_sentence(tool):
    headings = ["RAID CONTROLLERS", "CONTAINERS", "RAID DISKS", "RAID SPACE", "RAID PARTITIONS"]
    sections = [f"{heading}\nNo RAID controller was found.\n" for heading in headings]
    assert tool.fake_table("empty", *RAID_KINDS) == "\n".join(sections)
    assert asked(tool) == [("129100", "none")]


def test_controller_without_anything_is_told_in_sentences(tool):
    assert tool.fake_table("bare", *RAID_KINDS[1:]) == (
        "CONTAINERS ON aac0\nThe controller has no container.\n\n"
        "RAID DISKS ON aac0\nThe controller has no disk.\n\n"
        "RAID SPACE ON aac0\nThe disks of the controller have no free area.\n\n"
        "RAID PARTITIONS ON aac0\nNo container uses the disks of the controller.\n"
    )


def test_values_without_a_name_are_shown_as_numbers(tool):
    members = ", ".join(63 * ["0:0f:0"] + ["0:0f:f"])
    assert tool.fake_table("hostile", *RAID_KINDS) == (
        "RAID CONTROLLERS\n"
        "ID  NAME  TYPE                              AVAILABILITY  CLUSTERING\n"
        f"-5  aac0  {32 * 'T'}  4             63\n"
        "\n"
        "CONTAINERS ON aac0\n"
        "ID  LABEL    TYPE  USAGE  SIZE MOD 4 GIB     STRIPE  HOT SPARE  MEMBERS  MADE OF\n"
        f"-1  a?[2J?b  9     10                0 B  -64.0 KiB  -1:ff:fe        70  {members}\n"
        "MOD 4 GIB leaves out whole multiples of 4 GiB; raid-partitions shows sizes in full.\n"
        "\n"
        "RAID DISKS ON aac0\n"
        f"ADDRESS     TYPE  SIZE  VENDOR{58 * ' '}  MODEL  USAGE  SHARED  RATE\n"
        f"7fff:ff:ff  10       -  {64 * 'V'}  caf?   6      2         -1\n"
        "\n"
        "RAID SPACE ON aac0\n"
        "The disks of the controller have no free area.\n"
        "\n"
        "RAID PARTITIONS ON aac0\n"
        "DISK    OFFSET      SIZE  CONTAINER  TYPE  PART OF  ACCESS\n"
        "-     -1.0 KiB  -8.0 EiB         -1  -2    7 -3     4\n"
    )


def test_disk_that_cannot_be_asked_does_not_hide_the_others(tool):
    result = tool.fake("partial", "list", *CLASSIC, "raid-space")
    assert (result.returncode, result.stdout) == (1, RAID_SPACE)
    assert result.stderr.splitlines()[0] == (
        "diskscout: the RAID space query failed at the list of disks, 0:00:0; what it found so far is shown"
    )


def failure_of(result, name):
    """The hint of a run whose one query failed without any record."""
    assert result.returncode == 1
    first, hint = result.stderr.splitlines()
    assert first == f"diskscout: the {name} query failed; it found nothing before"
    assert hint.startswith("diskscout: ")
    return hint[len("diskscout: ") :]


WRITE_IT = (
    'where there is a RAID controller, write the lines "Cli Path:", "Cli Name:" and "Filter Script:" into it, or name the'
    " file that has them with --config"
)


def lacks_the_path(config):
    """What stands in the way where an empty configuration is named."""
    return f'there is no line "Cli Path:" in the configuration {config}; add the line with the key and its value'


def test_configuration_that_cannot_be_read(tool):
    result = tool.fake("failing", "list", *CLASSIC, "controllers")
    assert result.stdout == "RAID CONTROLLERS\nThe RAID controller query failed.\n"
    assert failure_of(result, "RAID controller") == (
        f"the configuration /nowhere/hardraid.cfg cannot be read: No such file or directory"
        f" (--config names another one); {WRITE_IT}"
    )


@pytest.fixture
def config(tmp_path):
    path = tmp_path / "raid.cfg"
    path.write_text("")
    return path


def test_named_configuration_reaches_the_plugin(tool, config):
    tool.fake_table("plain", "controllers", "--config", str(config))
    assert tool.report["configuration"] == str(config)


def test_without_a_named_configuration_the_plugin_keeps_its_own(tool):
    tool.fake_table("plain", "controllers")
    assert tool.report["configuration"] == "/nowhere/hardraid.cfg"


def test_list_of_controllers_that_fails_fails_all_that_need_one(tool, config):
    result = tool.fake("failing", "list", *CLASSIC, "containers", "raid-space", "--config", str(config))
    assert result.returncode == 1
    assert result.stdout == (
        "CONTAINERS\nThe container query failed.\n\nRAID SPACE\nThe RAID space query failed.\n"
    )
    assert result.stderr == (
        "diskscout: the container query failed at the list of controllers; it found nothing before\n"
        "diskscout: the RAID space query failed at the list of controllers; it found nothing before\n"
        f"diskscout: {lacks_the_path(config)}\n"
    )
    assert asked(tool) == [("129100", "none")]


@pytest.mark.parametrize(
    "case, name, hint",
    [
        ("plain", "aac7", 'there is no controller "aac7", there is aac0, aac1'),
        ("plain", "a\x1b[m", 'there is no controller "a?[m", there is aac0, aac1'),
        ("empty", "aac7", "no RAID controller was found"),
        ("plain", "aac1", None),
    ],
)
def test_controller_that_cannot_be_asked(tool, config, case, name, hint):
    result = tool.fake(case, "list", *CLASSIC, "containers", "--controller", name, "--config", str(config))
    heading = f"CONTAINERS ON {name}".replace("\x1b", "?")
    assert result.stdout == f"{heading}\nThe container query failed.\n"
    assert failure_of(result, "container") == (hint or lacks_the_path(config))


def test_failures_of_the_host_get_no_hint(tool):
    result = tool.fake("failing", "list", *CLASSIC, "disks")
    assert complaint(result, 1) == "the disk query failed; it found nothing before"


def test_longest_configuration_name(tool):
    name = "/" + 254 * "c"
    tool.fake_table("plain", "controllers", "--config", name)
    assert tool.report["configuration"] == name


def test_configuration_name_that_is_too_long_is_refused(tool):
    result = tool.run("list", *CLASSIC, "controllers", "--config", "/" + 255 * "c", "--plugin", tool.fake_plugin)
    assert complaint(result, 2) == "the configuration's path has 256 bytes, the plug-in takes 255"
    assert result.stdout == ""


def test_plugin_that_cannot_be_told_a_configuration(tool):
    result = tool.run("list", *CLASSIC, "controllers", "--config", "/raid.cfg", "--plugin", tool.old_plugin)
    message = complaint(result, 2)
    assert message.startswith("the plug-in cannot be used: ")
    assert "g_szConfigFileName" in message


def test_plugin_that_does_not_tell_its_configuration(tool):
    result = tool.run("list", *CLASSIC, "controllers", "--plugin", tool.old_plugin)
    assert complaint(result, 1) == "the RAID controller query failed; it found nothing before"
