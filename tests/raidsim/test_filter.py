"""The filter script."""

import subprocess

import pytest
from conftest import FILTER

PAGER = "( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )"
SCRIPT = [
    "controller list",
    "open aac0",
    "container list",
    "disk list /full=true",
    "disk show space",
    "disk show partition",
    "task list",
]


@pytest.mark.parametrize("paint", ["terminal", "status", "terminal,status", "noblank", "terminal,status,noblank"])
def test_painted_output_becomes_plain(tool, filtered, paint):
    tool.state.unlink()
    # The script's refused line keeps the tasks where they are.
    plain = tool.output("bad", *SCRIPT)
    painted = tool.output("bad", *SCRIPT, fault=paint)
    assert painted != plain
    assert filtered(painted) == filtered(plain)


def test_pager_prompts_stay(tool, filtered):
    tool.state.unlink()
    # Blanks for the prompts, or they would eat the next command.
    script = [line for command in ("bad", *SCRIPT) for line in (command, " " * 43)]
    plain = filtered(tool.output(*script))
    for paint in ("pager=3", "pager=3,terminal,status", "pager=1,status", "pager=4,noblank"):
        paged = filtered(tool.output(*script, fault=paint))
        assert PAGER in paged
        assert paged.replace(PAGER, "") == plain


def test_containers_begin_in_column_1(tool, filtered):
    tool.state.unlink()
    text = filtered(tool.output("open aac0", "container list"))
    assert (
        "----- ------ ------ --- ------ ------- ------ -------------\n"
        "0    Mirror 33.8GB            Open    0:00:0 64.0KB:33.8GB\n"
        "/dev/sda             system           0:01:0 64.0KB:33.8GB\n"
        "\n"
        "1    Volume 10.0GB            Valid   1:0a:0 64.0KB:10.0GB\n"
        "/dev/sdb\n"
        "\n"
        "2    Stripe 40.0GB     64KB   Open\n"
        "/dev/sdc             big\n"
        "24    Mirror 20.0GB            Open    0:02:0 64.0KB:20.0GB\n"
        "                                       0:03:0 64.0KB:20.0GB\n"
        "25    Mirror 20.0GB            Open    1:00:0 64.0KB:20.0GB\n"
        "                                       1:01:0 64.0KB:20.0GB\n"
        "\n\nAAC0>\n"
    ) in text


def test_words_of_vendor_and_product_are_joined(tool, filtered):
    rows = filtered(tool.output("open aac0", "disk list /full=true")).splitlines()
    row = next(line for line in rows if line.startswith("0:04:0"))
    assert row == (
        "0:04:0   Disk            N                EXAMPLE_A FAST_DISK         1.02   20971520 512        "
        " Initialized      NO     320 "
    )
    # Other columns keep their blanks.
    assert any("Not Initialized" in line for line in rows)


def test_vendor_and_product_that_fill_their_columns(tool, filtered):
    tool.replace('vendor="EXAMPLE A" product="FAST DISK"', 'vendor="EX AMPLE" product="A LONG NAME 1234"')
    rows = filtered(tool.output("open aac0", "disk list /full=true")).splitlines()
    row = next(line for line in rows if line.startswith("0:04:0"))
    assert row.split()[3:6] == ["EX_AMPLE", "A_LONG_NAME_1234", "1.02"]


def test_other_tables_keep_their_blanks(filtered):
    text = (
        "CLI>\nExecuting: task list\nTaskId\n------\n 101 x\n\nAAC0>\n"
        "Executing: disk list\nC:ID:L  Usage\n------  -----\n0:00:0   Not Initialized\n"
    )
    assert filtered(text) == text


def test_lines_before_the_rule_keep_their_blanks(filtered):
    text = "Executing: container list\n Num\n----- ---\n 0    Mirror\n"
    assert filtered(text) == "Executing: container list\n Num\n----- ---\n0    Mirror\n"


def test_table_ends_with_the_prompt(filtered):
    text = "Executing: container list\n-----\n 0    Mirror\nAAC0> something\n 0    kept\n"
    assert filtered(text) == "Executing: container list\n-----\n0    Mirror\nAAC0> something\n 0    kept\n"


def test_status_behind_a_prompt(filtered):
    assert filtered("AAC0>Stat:OK!Task:101,Func:MCR Ctr:0,State:DNE 100.0%\r\nExecuting: exit\r\n") == (
        "AAC0>\nExecuting: exit\n"
    )


@pytest.mark.parametrize("arguments", [[], ["one"], ["one", "two", "three"]])
def test_wrong_number_of_arguments(arguments):
    assert subprocess.run([FILTER, *arguments], capture_output=True, check=False).returncode == 2


def test_raw_output_that_is_not_there(tmp_path):
    target = tmp_path / "filtered"
    target.write_text("old\n")
    result = subprocess.run([FILTER, tmp_path / "none", target], capture_output=True, check=False)
    assert result.returncode != 0
    assert target.read_text() == "old\n"
    assert list(tmp_path.iterdir()) == [target]


def test_target_that_cannot_be_written(tmp_path):
    (tmp_path / "raw").write_text("x\n")
    for target in (tmp_path / "none" / "filtered", tmp_path):
        result = subprocess.run([FILTER, tmp_path / "raw", target], capture_output=True, check=False)
        assert result.returncode != 0
        assert [entry.name for entry in tmp_path.iterdir()] == ["raw"]


def test_bare_names_are_taken_from_the_working_directory(tmp_path):
    (tmp_path / "a=b").write_text("x\r\n")
    subprocess.run([FILTER, "a=b", "filtered"], check=True, cwd=tmp_path)
    assert (tmp_path / "filtered").read_text() == "x\n"
    assert sorted(entry.name for entry in tmp_path.iterdir()) == ["a=b", "filtered"]


def test_empty_output(filtered):
    assert filtered("") == ""
