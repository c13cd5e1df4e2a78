# SPDX-License-Identifier: Apache-2.0
"""The pages about stcli show what happens: every command has its section, every sample is true."""

import pathlib
import re
import shlex
import subprocess

import pexpect
import pytest
from raid_site import SOURCES, configuration

DOCS = SOURCES / "docs"
HERE = pathlib.Path(__file__).resolve().parent
HELLO = "stcli: Hello world!"
OK = "stcli: Ok!"
# The machine with arrays, for the commands about them; the other samples are of the other one.
ARRAYS = HERE / "mirrors"
ABOUT_ARRAYS = {"mdstat", "mdsb", "mdspeed", "raidtab"}
MACHINE = SOURCES / "tests" / "hosts" / "real-kernel"


def page(name):
    return (DOCS / f"{name}.md").read_text(encoding="utf-8")


def shown(name):
    """The blocks of a page that show a console, as lists of lines."""
    found = re.findall(r"^```console\n(.*?)^```$", page(name), re.MULTILINE | re.DOTALL)
    return [block.splitlines() for block in found]


def samples(name):
    """The commands that a page shows, and what it shows of their output."""
    found = []
    for line in (line for block in shown(name) for line in block):
        if line.startswith("$ "):
            found.append((line[2:], []))
        else:
            found[-1][1].append(line)
    return found


def comparable(lines):
    """The lines, with the addresses replaced by what they have in common, and without blanks at their ends."""
    names = {"00000000": "null"}

    def name(match):
        return match[1] + names.setdefault(match[2], f"address {len(names)}")

    place = r"(\bthis=|^(?:this|next) += 0x|^\[\*\d+ \d+ +)([0-9a-f]{8})"
    return [re.sub(place, name, line).rstrip() for line in lines]


def agree(told, printed):
    """Whether a sample is what was printed; a line of three dots stands for any lines."""
    told, printed = comparable(told), comparable(printed)
    if "..." not in told:
        return told == printed
    cut = told.index("...")
    head, tail = told[:cut], told[cut + 1 :]
    return len(printed) > len(told) and printed[:cut] == head and printed[len(printed) - len(tail) :] == tail


@pytest.fixture
def run(tool, tmp_path):
    """Runs a shell command in which stcli looks at the machine that its sample is of."""
    programs = tmp_path / "programs"
    programs.mkdir()

    def run_sample(command):
        word = re.search(r"\bstcli (\S+)", command)[1]
        host = ARRAYS if word in ABOUT_ARRAYS else MACHINE
        program = programs / "stcli"
        words = [str(tool.program.parent / "stcli"), "--sysroot", str(host)]
        program.write_text(f'#!/bin/sh\nexec {shlex.join(words)} "$@"\n')
        program.chmod(0o755)
        return tool.run(
            "-c",
            f"PATH={shlex.quote(str(programs))}:$PATH\n{command}",
            program="/bin/sh",
            cwd=ARRAYS / "etc" if word == "raidtab" else tmp_path,
            stdin=subprocess.DEVNULL,
        )

    return run_sample


def printed_by(result):
    """What a command printed, without the lines around it that the page leaves out."""
    lines = result.stderr.splitlines()
    assert result.stdout == ""
    assert lines[0] == HELLO
    failed = lines[-1].startswith("stcli error: ")
    assert result.returncode == (1 if failed else 0)
    assert failed or lines[-1] == OK
    return lines[1:] if failed else lines[1:-1]


SAMPLES = samples("stcli")
RANDOM = {"xxid", "rand"}


def word_of(sample):
    return re.search(r"\bstcli (\S+)", sample[0])[1]


@pytest.mark.parametrize(
    "command, told",
    [sample for sample in SAMPLES if word_of(sample) not in RANDOM],
    ids=[sample[0] for sample in SAMPLES if word_of(sample) not in RANDOM],
)
def test_samples_are_what_is_printed(run, command, told):
    printed = printed_by(run(command))
    assert agree(told, printed), "\n".join([command, *printed])


def only_sample(word):
    (sample,) = [sample for sample in SAMPLES if word_of(sample) == word]
    return sample


def test_sample_of_an_identifier(run):
    command, told = only_sample("xxid")
    for lines in (told, printed_by(run(command))):
        assert [re.sub("[0-9a-f]", "x", line) for line in lines] == ["xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx"]


def test_sample_of_random_numbers(run):
    command, told = only_sample("rand")
    low, high, count = (int(word) for word in command.split()[2:])
    for lines in (told, printed_by(run(command))):
        assert len(lines) == count
        assert all(low <= int(line) <= high for line in lines)


def commands(tool):
    """The command words of the plug-in's help, without what may follow them."""
    lines = tool.run("help", program=tool.program.parent / "stcli").stderr.splitlines()
    assert lines[0] == HELLO and lines[-1] == OK
    return [re.sub(r"\(.*", "", word) for line in lines[1:-1] for word in line.split(": ")[1].split()]


def test_every_command_has_its_section_and_a_sample(tool):
    headings = re.findall(r"^### (.*)$", page("stcli"), re.MULTILINE)
    described = {name.split()[0] for heading in headings for name in heading.split(", ")}
    listed = set(commands(tool))
    # They are listed, and there are none.
    gone = {"xml", "xmlnew"}
    assert gone < listed
    assert described == (listed - gone) | {"help", "cliid"}
    assert {word_of(sample) for sample in SAMPLES} == described | {"xml"}


def test_every_part_of_the_plugin_is_named(tool):
    parts = tool.run("cliid", program=tool.program.parent / "stcli").stderr.splitlines()[1:-1]
    assert len(parts) == 5
    assert [part for part in parts if f"`{part}`" not in page("stcli")] == []


@pytest.mark.parametrize("program", ["stcli", "diskscout"])
def test_every_option_is_described(tool, program):
    usage = tool.run("--help", program=tool.program.parent / program).stdout
    options = re.findall(r"^  .*?(--[a-z]+)", usage, re.MULTILINE)
    assert "--plugin" in options
    section = re.search(r"^## Options\n(.*?)^## ", page(program), re.MULTILINE | re.DOTALL)[1]
    described = re.findall(r"^- .*?(--[a-z]+)", section, re.MULTILINE)
    assert sorted(described) == sorted(options)


PROMPT = re.compile(
    r"^(Command>(?:[A-Za-z]+>)?|Quick init:\(0/1\):|Please input (?:label:.*?\.\.\.\)|.*?:))(.*)$"
)


def test_console_session(tool, tmp_path):
    """Types what stands behind the prompts of the page; what appears must be the page."""
    told = [line for block in shown("console") for line in block]
    command, told = told[0], told[1:]
    typed = [PROMPT.match(line).groups() for line in told if PROMPT.match(line)]
    assert command.startswith("$ stcli ")
    assert len(typed) > 20

    (tmp_path / "raid.cfg").write_text(configuration(tmp_path, tool.program.parent))
    state = tmp_path / "state.txt"
    state.write_text((HERE / "failed-disk.state").read_text())
    console = pexpect.spawn(
        str(tool.program.parent / "stcli"),
        command.split()[2:],
        cwd=str(tmp_path),
        env={"PATH": "/usr/bin:/bin", "TERM": "vt100", "RAIDSIM_STATE": str(state)},
        encoding="utf-8",
        timeout=30,
        dimensions=(24, 200),
    )
    screen = ""
    for prompt, answer in typed:
        console.expect_exact(prompt)
        screen += console.before + console.after
        console.sendline(answer)
    console.expect(pexpect.EOF)
    console.close()
    screen += console.before
    assert console.exitstatus == 0
    # The page has the programs where they are installed; here links name them.
    assert agree(told, screen.replace(str(tmp_path), "/usr/bin").splitlines()), screen


def test_sections_that_a_manual_page_needs():
    for name in ("stcli", "console", "diskscout"):
        sections = re.findall(r"^## (.*)$", page(name), re.MULTILINE)
        assert sections[:3] == ["Name", "Synopsis", "Description"]
        ending = sections[sections.index("Exit status") :]
        assert [section for section in ending if section != "Environment"] == ["Exit status", "Files", "See also"]


def test_the_pages_that_are_linked_exist():
    for name in ("stcli", "console", "diskscout"):
        links = re.findall(r"\]\(([a-z]+[^)#]*)\)", page(name))
        assert len(links) >= 2
        assert [link for link in links if not (DOCS / link).exists()] == []
