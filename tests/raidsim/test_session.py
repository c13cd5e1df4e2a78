# SPDX-License-Identifier: Apache-2.0
"""The frame of a run: banner, prompts, echoes, refusals of controllers, the state file."""

import pytest


def test_whole_session(tool):
    assert tool.output("open aac0", "task list ") == (
        "EXAMPLE RAID controller command line interface\n"
        "Simulated controllers\n"
        "\n"
        "CLI>\n"
        'Executing: open "aac0"\n'
        "\n"
        "AAC0>\n"
        "Executing: task list\n"
        "TaskId Function  Done%  Container State Specific1 Specific2\n"
        "------ -------- ------- --------- ----- --------- ---------\n"
        "\n"
        "AAC0>\n"
        "Executing: exit\n"
    )


def test_script_may_end_without_exit(tool):
    result = tool.start("open aac0\n   \n")
    assert result.returncode == 0
    assert result.stdout.endswith(b'Executing: open "aac0"\n\nAAC0>\n')


def test_controller_list_needs_no_open_controller(tool):
    text = tool.output("controller list")
    assert text.endswith(
        "CLI>\n"
        "Executing: controller list\n"
        "Adapter Name  Adapter Type           Availability  Clustering\n"
        "------------  ---------------------  ------------  ----------\n"
        "aac0          EXAMPLE 2200S          read/write    No\n"
        "aac1          EXAMPLE 2120S          read only     Yes\n"
        "aac2          EXAMPLE 2120S          read/write    No\n"
        "aac3          EXAMPLE 2120S          read/write    No\n"
        "\n"
        "CLI>\n"
        "Executing: exit\n"
    )


@pytest.mark.parametrize(
    "name, error",
    [
        ("aac9", "The requested controller does not exist."),
        ("aac2", "Another application has opened the requested controller."),
        ("aac3", "The requested controller is of the wrong type."),
    ],
)
def test_controller_that_does_not_open(tool, name, error):
    before = tool.state.read_bytes()
    text = tool.output(f"open {name}", "container list")
    assert text.endswith(
        f'CLI>\nExecuting: open "{name}"\nCommand Error: <{error}>\n\n'
        "CLI>\nExecuting: container list\n"
        "Command Error: <Adapter must be opened before this command is used.>\n\n"
        "CLI>\nExecuting: exit\n"
    )
    assert tool.state.read_bytes() == before


def test_words_in_any_case_and_switches_made_uniform(tool):
    text = tool.output("OPEN aac0", "Disk LIST /Full=true", "CONTAINER delete  /ALWAYS=False 9")
    assert 'Executing: open "aac0"\n' in text
    assert "AAC0>\nExecuting: disk list /full=TRUE\n" in text
    assert "AAC0>\nExecuting: container delete /always=FALSE 9\n" in text


@pytest.mark.parametrize(
    "line, error",
    [
        ("bad words here", "Unknown command bad"),
        ("disk list /size=3", "Unknown switch /size"),
        ("disk list /full=maybe", "Switch /full is neither true nor false"),
        ("container show failover", "A parameter is missing"),
        ("container show failover x", "Invalid number x"),
        ("container list 1 2", "Unexpected parameter 2"),
        ("disk show space (0,1)", "Invalid device (0,1)"),
        ("disk show space (0,1,-2)", "Invalid device (0,1,-2)"),
        ("container create strip ((0,2,0),-5M) (0,3,0)", "Invalid device ((0,2,0),-5M)"),
        ("container create strip ((0,2,0),0M) (0,3,0)", "Invalid device ((0,2,0),0M)"),
        ("container create strip ((0,2,0),64M) ((0,3,0),64M)", "Unexpected size in ((0,3,0),64M)"),
        ('container create strip /label="12345678901234567" (0,2,0) (0,3,0)', "Label is too long"),
        ('container create strip /label="x (0,2,0) (0,3,0)', "A parameter is missing"),
        ('container create strip /label="a"b" (0,2,0) (0,3,0)', "A parameter is missing"),
        ('container create strip /label=a""b (0,2,0) (0,3,0)', 'Unexpected quotation mark in a""b'),
    ],
)
def test_line_that_is_not_understood(tool, line, error):
    assert tool.refused(line) == f"Parsing Error: <{error}>"


def test_controller_for_reading_only_takes_no_change(tool):
    assert tool.refused("container delete 0", "aac1") == (
        "Command Error: <The controller is open for reading only.>"
    )


def test_new_state_file_is_the_sample(tool):
    tool.state.unlink()
    assert "\n 0    Mirror 33.8GB            Open    0:00:0 64.0KB:33.8GB\n" in tool.output(
        "open aac0", "container list"
    )
    assert tool.state.read_text().startswith("# State of the simulated controllers")
    assert list(tool.scratch.iterdir()) == [tool.state]


def test_tasks_go_on_from_run_to_run(tool):
    # 45 % and 25 % a run: three more runs until it has gone.
    tool.state.unlink()
    rows = [tool.answer("task list")[2:] for _ in range(5)]
    assert rows == [
        ["  106   Rebuild  45.0%     25      RUN   00000000  00000000"],
        ["  106   Rebuild  70.0%     25      RUN   00000000  00000000"],
        ["  106   Rebuild  95.0%     25      RUN   00000000  00000000"],
        ["  106   Rebuild 100.0%     25      DNE   00000000  00000000"],
        [],
    ]


def test_rebuild_ends_with_its_task(tool):
    tool.state.unlink()
    assert tool.answer("disk show space (1,1,0)")[2].split()[1] == "Rebuild"
    tool.output("open aac0")
    tool.output("open aac0")
    assert tool.answer("disk show space (1,1,0)")[2].split()[1] == "Container"


@pytest.mark.parametrize(
    "old, new, message",
    [
        ("opens=busy", "", 'line 15: "opens" is missing'),
        ("opens=busy", "opens=busy opens=yes", 'line 15: "opens" stands twice'),
        ("opens=busy", "opens=busy colour=red", 'line 15: "colour" is not known here'),
        ("opens=busy", 'opens="busy', "line 15: a quotation mark is missing"),
        ("at=1:10:0", "at=1:10", "line 9: at=1 10 is no address"),
        ("data=yes", "data=1", "line 11: data=1 is neither yes nor no"),
        ("stripe_kb=0", "stripe_kb=x", "line 11: stripe_kb=x is no number in range"),
        ("version=1", "version=2", "line 1: the format's version is not 1"),
        ("controller name=aac3", "cabinet name=aac3", 'line 16: "cabinet" is no kind of record'),
    ],
)
def test_damaged_state_file(tool, old, new, message):
    tool.replace(old, new)
    before = tool.state.read_bytes()
    result = tool.start("exit\n")
    assert (result.returncode, result.stdout) == (2, b"")
    assert result.stderr.decode() == f"raidsim: {tool.state}: {message}\n"
    assert tool.state.read_bytes() == before


def test_environment_that_is_not_complete(tool):
    assert tool.start("exit\n", RAIDSIM_STATE="").stderr == b"raidsim: RAIDSIM_STATE names no file\n"
    assert tool.start("exit\n", TERM="").stderr == b"raidsim: TERM is not set\n"
    result = tool.start("exit\n", "exit=0")
    assert (result.returncode, result.stderr) == (2, b'raidsim: RAIDSIM_FAULT: "exit=0" is not known\n')


def test_state_that_cannot_be_written(tool):
    missing = tool.scratch / "none" / "state.txt"
    result = tool.start("exit\n", RAIDSIM_STATE=str(missing))
    assert (result.returncode, result.stdout) == (2, b"")
    assert result.stderr.startswith(b"raidsim: ")
