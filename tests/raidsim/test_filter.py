# SPDX-License-Identifier: Apache-2.0
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
    (tmp_path / "a=b").write_text("Executing: exit\r\n")
    subprocess.run([FILTER, "a=b", "filtered"], check=True, cwd=tmp_path)
    assert (tmp_path / "filtered").read_text() == "Executing: exit\n"
    assert sorted(entry.name for entry in tmp_path.iterdir()) == ["a=b", "filtered"]


# ---- what was cut ----


def refusal(directory, raw):
    """What the filter says of an output that it does not take; an older filtered file must stay as it is."""
    (directory / "raw").write_bytes(raw)
    target = directory / "filtered"
    target.write_text("old\n")
    result = subprocess.run([FILTER, "raw", "filtered"], capture_output=True, check=False, cwd=directory)
    assert (result.returncode, result.stdout) == (1, b"")
    assert target.read_text() == "old\n"
    assert sorted(entry.name for entry in directory.iterdir()) == ["filtered", "raw"]
    return result.stderr.decode("ascii")


CUT = 'diskscout-filter: the output of the tool was cut: the echo of "exit" is missing\n'
FOREIGN = (
    "diskscout-filter: the tool echoes no command: the output does not come from a controller tool, or was cut\n"
)


@pytest.mark.parametrize(
    ("raw", "why"),
    [
        (b"", "diskscout-filter: the tool has printed nothing\n"),
        (b"\n", FOREIGN),
        (b"sh: toolcli: not found\n", FOREIGN),
        (bytes(range(256)) * 100, FOREIGN),
        (b"Executing: task list\n", CUT),
        (b"Executing: task list\n\nAAC0>\n", CUT),
        (b"Executing: task list\n\nAAC0>\nExecuting: exi\n", CUT),
        (b"Executing: task list\n\nAAC0>\nExecuting: exit", CUT),
        (b"Executing: task list\n\nAAC0>\nExecuting: exit\0", CUT),
        (b"Executing: task list\n\nAAC0>\nexit\n", CUT),
        (b"Executing: task list\n\nAAC0> Executing: exit\n", CUT),
        (b"Executing: task list\n\nAAC0>\nExecuting: exit soon\n", CUT),
        (b"Executing: task list\n\nAAC0>\nNot Executing: exit\n", CUT),
    ],
)
def test_output_without_the_echo_of_exit(tmp_path, raw, why):
    assert refusal(tmp_path, raw) == why


@pytest.mark.parametrize("echo", ["exit", "EXIT", "Exit", "exit    ", "exit\t", "\033[0mexit\033[K"])
def test_echoes_of_exit(tmp_path, echo):
    for behind in ("\n", "\r\n", "\n\033[0m", "\nbye"):
        (tmp_path / "raw").write_text(f"AAC0>\nExecuting: {echo}{behind}")
        subprocess.run([FILTER, "raw", "filtered"], check=True, cwd=tmp_path)


def statuses(directory, pieces):
    """The filter's status for each: one shell for all of them."""
    for number, piece in enumerate(pieces):
        (directory / f"{number}.raw").write_bytes(piece)
    loop = 'i=0; while [ -e $i.raw ]; do "$0" $i.raw $i.filtered 2>/dev/null; echo $?; i=$((i + 1)); done'
    result = subprocess.run(["sh", "-c", loop, FILTER], capture_output=True, check=True, cwd=directory)
    return [int(status) for status in result.stdout.split()]


SAMPLES = {
    "controllers": ["controller list"],
    "containers": ["open aac0", "container list"],
    "disks": ["open aac0", "disk list /full=true"],
    "space": ["open aac0", "disk show space (0,0,0)"],
    "partitions": ["open aac0", "disk show partition"],
    "tasks": ["open aac0", "task list"],
    "defects": ["open aac0", "disk show defect (0,0,0)"],
    "failover": ["open aac0", "container show failover 0"],
    "error": ["open aac2", "task list"],
}


@pytest.mark.parametrize("name", SAMPLES)
def test_no_prefix_of_an_answer_is_an_answer(tool, tmp_path, name):
    plain = tool.output(*SAMPLES[name]).encode()
    painted = tool.output(*SAMPLES[name], fault="terminal,status").encode()
    prefixes = [plain[:end] for end in range(len(plain))]
    # Where a line ends, and in the echo of exit, every way of painting counts.
    last = len(painted) - 60
    prefixes += [painted[:end] for end in range(len(painted)) if end > last or painted[end - 1 : end] in b"\r\n"]
    assert statuses(tmp_path, [*prefixes, plain, painted]) == [1] * len(prefixes) + [0, 0]


# ---- columns without a value ----


def disk_rows(tool, filtered, **settings):
    """The words of each row behind the disk's address, as the plug-in reads them."""
    rows = filtered(tool.output("open aac0", "disk list /full=true", **settings)).splitlines()
    return {row.split()[0].rpartition(")")[2]: row.split()[1:] for row in rows if "Disk  " in row}


@pytest.mark.parametrize(
    ("vendor", "product", "words"),
    [
        ("", "EX10", ["-", "EX10"]),
        ("ACME", "", ["ACME", "-"]),
        ("", "", ["-", "-"]),
        ("", "A LONG NAME 1234", ["-", "A_LONG_NAME_1234"]),
        ("-", "EX10", ["-", "EX10"]),
    ],
)
def test_a_column_without_a_value_stays_one(tool, filtered, vendor, product, words):
    tool.replace('vendor="EXAMPLE A" product="FAST DISK"', f'vendor="{vendor}" product="{product}"')
    row = disk_rows(tool, filtered)["0:04:0"]
    assert row == ["Disk", "N", *words, "1.02", "20971520", "512", "Initialized", "NO", "320"]
    # The columns stand where they stood.
    painted = tool.output("open aac0", "disk list /full=true")
    heading = next(line for line in painted.splitlines() if line.startswith("C:ID:L"))
    text = next(line for line in filtered(painted).splitlines() if line.startswith("0:04:0"))
    assert text[heading.index("Vendor-ID") + 1 :].split()[0] == words[0]
    assert text[heading.index("Product-ID") + 1 :].split()[0] == words[1]


def test_rows_behind_a_prompt_keep_their_columns(tool, filtered):
    tool.replace('vendor="EXAMPLE A" product="FAST DISK"', 'vendor="" product="FAST DISK"')
    raw = tool.output("open aac0", "disk list /full=true")
    for prompt in (PAGER, PAGER + "   "):
        rows = filtered(raw.replace("0:04:0 ", prompt + "0:04:0 ")).splitlines()
        row = next(line for line in rows if line.startswith(PAGER))
        assert row.removeprefix(PAGER).split()[3:6] == ["-", "FAST_DISK", "1.02"]


HEADINGS = ["C:ID:L", "Device Type", "Removable media", "Vendor-ID", "Product-ID", "Rev", "Blocks", "Bytes/Block"]
HEADINGS += ["Usage", "Shared", "Rate"]
DASHES = [6, 14, 15, 9, 16, 5, 9, 11, 16, 6, 4]
# From one column to the next; the values stand one column right of their headings.
WIDTHS = [8, 16, 17, 10, 18, 6, 10, 12, 17, 7, 4]
DISKS = "".join(
    "".join(cell.ljust(width) for cell, width in zip(line, WIDTHS)).rstrip() + "\n"
    for line in (["Executing: disk list /full=TRUE"], HEADINGS, ["-" * count for count in DASHES])
)


@pytest.mark.parametrize(
    ("values", "words"),
    [
        (
            ["0:00:0", "Disk", "N", "", "EX10", "1.02", "20971520", "512", "Not Initialized", "NO", "320"],
            "0:00:0 Disk N - EX10 1.02 20971520 512 Not Initialized NO 320",
        ),
        (
            ["0:00:0", "Disk", "", "ACME", "EX10", "", "20971520", "512", "", "", "320"],
            "0:00:0 Disk - ACME EX10 - 20971520 512 - - 320",
        ),
        (
            ["0:06:0", "Processor", "N", "", "", "0.9", "", "", "Unowned", "NO", "0"],
            "0:06:0 Processor N - - 0.9 0 0 Unowned NO 0",
        ),
        # Half a row is no row of fillers.
        (["0:00:0", "Disk", "N", ""], "0:00:0 Disk N"),
        (["0:00:0", "Disk", "N", "ACME"], "0:00:0 Disk N ACME"),
        (["0:00:0"], "0:00:0"),
    ],
)
def test_rows_with_gaps(filtered, values, words):
    first, *others = (value.ljust(width) for value, width in zip(values, WIDTHS))
    row = " ".join([first, "".join(others)])
    text = filtered(f"{DISKS}{row}\n\nAAC0>\n").splitlines()
    assert text[3].split() == words.split()
    assert text[4:] == ["", "AAC0>"]


# ---- lines of others ----

LOG_LINES = [
    "[12345.678901] aacraid: Host adapter reset request. SCSI hang ?",
    "[    5.1] anything at all",
    "<4>AAC:ID(0:02:0) Timeout detected on cmd[0x28]",
    "<6>[  12.345678] sd 0:0:1:0: [sdb] Unhandled sense code",
    "AAC:ID(0:02:0) [DC_Ioctl] DiskSpinControl: Drive spindown failure",
    "AAC: Host adapter reset request",
    "AAC0: adapter kernel panic 0x1c",
    "aacraid:battery failed",
    "aacraid0: kernel 5.2-0[15611]",
    "Jun  4 09:12:33 server kernel: aacraid: SCSI bus appears hung",
    "Nov 22 23:59:59 server smartd[811]: Device: /dev/sda, failed",
    "2026-11-22T15:45:32.123456+00:00 server kernel: scsi0: reset",
    "2026-11-22 15:45:32 server kernel: scsi0: reset",
    "kernel: aacraid: Host adapter abort request",
    "server-daemon[4711]: array is degraded",
    "sd 0:0:1:0: rejecting I/O to offline device",
    "scsi 0:0:1:0: Direct-Access     ACME",
    "Buffer I/O error on device sdb, logical block 0",
    "end_request: I/O error, dev sdb, sector 0",
    "EXT3-fs error (device sdb1): ext3_find_entry: reading directory",
    "EXT4-fs (sdb1): mounted filesystem",
]


TABLES = [command for command in SCRIPT if not command.startswith("open")]


def table_of(output):
    """The lines of the last answer, and between which of them its rows stand."""
    lines = output.splitlines(keepends=True)
    rule = next(at for at, text in enumerate(lines) if text.startswith("------") or text.startswith("----- "))
    end = next(at for at, text in enumerate(lines) if at > rule and text.startswith("AAC0>"))
    return lines, range(rule + 1, end + 1)


@pytest.mark.parametrize("command", TABLES)
def test_lines_of_drivers_and_logs_go(tool, filtered, command):
    tool.state.unlink()
    plain = tool.output("open aac0", command)
    before = filtered(plain)
    lines, between = table_of(plain)
    for log in LOG_LINES:
        mixed = [(log + "\n" if at in between else "") + text for at, text in enumerate(lines)]
        assert filtered("".join(mixed)) == before, log


@pytest.mark.parametrize("command", TABLES)
def test_one_line_of_a_driver_goes_wherever_it_stands(tool, filtered, command):
    plain = tool.output("open aac0", command)
    before = filtered(plain)
    lines, between = table_of(plain)
    for at in between:
        assert filtered("".join([*lines[:at], LOG_LINES[0] + "\r\n", *lines[at:]])) == before, at


def test_a_prompt_before_a_log_line_belongs_to_the_next_line(filtered):
    text = f"Executing: task list\n------\n{PAGER}AAC: reset\n  106   Rebuild  45.0%     25      RUN\n"
    assert filtered(text) == text.replace("AAC: reset\n", "")


def test_what_the_tool_says_itself_stays(filtered):
    lines = (
        "Executing: container list\n"
        "Num          Total\n"
        "Label Type   Size\n"
        "----- ------ ------\n"
        "0    Mirror 33.8GB            Open    0:00:0 64.0KB:33.8GB\n"
        "/dev/sda             kernel: no      0:01:0 64.0KB:33.8GB\n"
        "                     [12.5] AAC: no  0:02:0 64.0KB:33.8GB\n"
        "Command Error: <The specified container was not found.>\n"
        "Parsing Error: <what>\n"
        "Error: parameter error\n"
        "AAC0: Command Error: <what>\n"
        "AAC0>\n"
        "AAC: out of any table\n"
        "Executing: disk show defect (0,0,0)\n"
        "Number of PRIMARY defects on drive: 3\n"
        "Error: detected a bad status\n"
        "AAC0> AAC: typed\n"
    )
    assert filtered(lines) == lines


# ---- words of tasks ----

FUNCTIONS = {
    "Create": ["create", "CREATE", "Creating", "Creation", "Crt", "Create"],
    "FATfmt": ["FATFMT", "FAT fmt", "FAT-Format", "fatfmt", "Format FAT"],
    "NTFSfmt": ["NTFSFmt", "NTFS fmt", "ntfs format", "format NTFS"],
    "Rebuild": ["REBUILD", "rebuild", "Rebuilding", "Re-build", "Rebld", "Rbld"],
    "Reconfig": ["RECONFIG", "Reconfigure", "Reconfiguring", "Reconfiguration", "Re-Config", "Reconf", "Recfg"],
    "Scrub": ["SCRUB", "scrub", "Scrubbing"],
    "Unknown": ["UNKNOWN", "unknown", "Unk", "Unkn"],
    "Verify": ["VERIFY", "verify", "Vfy", "Vrfy", "Verifying", "Verify/Fix", "Verify w/ fix"],
    "Zero": ["ZERO", "zero", "Zeroing"],
    "Bld/Vfy": [
        *["BLD/VFY", "Build/Verify", "Build / Verify", "Build/Vfy", "Bld/Verify"],
        *["Bld Vfy", "Bld/Ver", "Build", "Bld"],
    ],
}
STATES = {
    "RUN": ["Run", "run", "Running"],
    "DNE": ["Dne", "DONE", "Done", "Finished", "Completed", "Complete"],
    "SUS": ["Sus", "Susp", "Suspend", "Suspended", "SUSPENDED", "Paused"],
    "BAD": ["Bad", "Failed", "FAIL"],
    "UNK": ["Unk", "Unkn", "Unknown"],
}
TASKS = (
    "Executing: task list\n"
    "TaskId Function  Done%  Container State Specific1 Specific2\n"
    "------ -------- ------- --------- ----- --------- ---------\n"
)


def task_words(filtered, row):
    text = filtered(f"{TASKS}{row}\n\nAAC0>\n")
    assert text.startswith(TASKS)
    return text[len(TASKS) :].partition("\n")[0].split()


@pytest.mark.parametrize(
    ("word", "spelling"), [(word, spelling) for word, spellings in FUNCTIONS.items() for spelling in spellings]
)
def test_spellings_of_functions(filtered, word, spelling):
    rest = ["45.0%", "1", "RUN", "00000000", "00000000"]
    row = f"  106   {spelling}  45.0%      1      RUN   00000000  00000000"
    assert task_words(filtered, row) == ["106", word, *rest]


@pytest.mark.parametrize(
    ("word", "spelling"), [(word, spelling) for word, spellings in STATES.items() for spelling in spellings]
)
def test_spellings_of_states(filtered, word, spelling):
    row = f"  106   Bld/Vfy   0.0%      1      {spelling}   00000000  00000000"
    assert task_words(filtered, row) == ["106", "Bld/Vfy", "0.0%", "1", word, "00000000", "00000000"]


@pytest.mark.parametrize(
    ("row", "words"),
    [
        # Nobody knows them; the values behind them are read all the same.
        ("  106   Polish  45.0%      1      RUN", "106 Polish 45.0% 1 RUN"),
        ("  106   Polish twice  45.0%      1      NEW", "106 Polish_twice 45.0% 1 NEW"),
        ("  106   Build/Verify  45 %      1      Running", "106 Bld/Vfy 45 % 1 RUN"),
        ("  106   Build/Verify  45      1      Running", "106 Bld/Vfy 45 1 RUN"),
        # Half a row.
        ("  106   Build/Verify", "106 Build/Verify"),
        ("  106   Build/Verify  45.0%", "106 Bld/Vfy 45.0%"),
        ("  106", "106"),
    ],
)
def test_other_words_of_tasks(filtered, row, words):
    assert task_words(filtered, row) == words.split()


def test_tasks_that_are_spelled_as_they_are_read_stay(filtered):
    text = (
        TASKS + "  106   Bld/Vfy   0.0%      1      RUN   00000000  00000000\n"
        "  107   Rebuild  45.0%     25      SUS   00000000  00000000\n\nAAC0>\n"
    )
    assert filtered(text) == text
