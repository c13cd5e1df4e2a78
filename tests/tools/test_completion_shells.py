# SPDX-License-Identifier: Apache-2.0
"""What the shells offer at their prompts when the scripts of tools/completion ask the programs."""

import re
import subprocess

import pexpect
import pytest
from raid_site import SOURCES

COMPLETIONS = SOURCES / "tools" / "completion"
SHELLS = SOURCES / "tests" / "tools" / "shells"

LINK_COLUMNS = "upper lower relation address state access".split()
# Lines, a "|" for a cursor that is not at the end, and what is offered.
LINES = {
    "diskscout ": ["list", "tree", "doctor", "schema"],
    "diskscout li": ["list"],
    "diskscout  list   raid_s": ["raid_space"],
    "diskscout list links raid_s": ["raid_space"],
    "diskscout list 'mou": ["mounts"],
    "diskscout --js": ["--json"],
    "diskscout schema -": ["-h", "--help", "--version"],
    "diskscout doctor --p": ["--plugin", "--pid"],
    "diskscout doctor --raid --ra": [],
    "diskscout doctor ": [],
    "diskscout list links -o upper,": [f"upper,{key}" for key in LINK_COLUMNS[1:]],
    "diskscout list links -o upper,a": ["upper,address", "upper,access"],
    "diskscout list links -o 'upper,sta": ["upper,state"],
    "diskscout list links -o upper\\,sta": ["upper,state"],
    "diskscout list 'links' -o \"upper\",sta": ["upper,state"],
    "diskscout list links -ost": ["-ostate"],
    "diskscout list devices -o +dm_n": ["+dm_name"],
    "diskscout list links --columns=upper,st": ["--columns=upper,state"],
    "diskscout list links --columns=": [f"--columns={key}" for key in LINK_COLUMNS],
    "diskscout list links --sort=st": ["--sort=state"],
    "diskscout list links --sort st": ["state"],
    "diskscout list --sort=kind devices --co": ["--config", "--controller", "--columns"],
    "diskscout list --format ": ["1", "2"],
    "diskscout list --format=": ["--format=1", "--format=2"],
    "diskscout list --config tw": ["two words", "two.cfg"],
    "diskscout list --config=tw": ["--config=two words", "--config=two.cfg"],
    "diskscout list --config 'two w": ["two words"],
    "diskscout list --config two\\ w": ["two words"],
    "diskscout list --config ~/two.": ["~/two.cfg"],
    "diskscout list --config nonsense": [],
    "diskscout list --sysroot tw": ["two words"],
    "diskscout list --sysroot=tw": ["--sysroot=two words"],
    "diskscout list --sysroot two.": [],
    "diskscout list ./tw": ["./two words", "./two.cfg"],
    "diskscout list ./a\\:b links /dev/nul": ["/dev/null"],
    "diskscout list ./a\\:b links mou": ["mounts"],
    "diskscout list ./a:b links mou": ["mounts"],
    "diskscout list -- li": [],
    "diskscout list -- -": [],
    "diskscout list nonsense li": [],
    "diskscout nonsense ": [],
    "diskscout list $(touch evil) li": [],
    "diskscout list ';touch evil' li": [],
    "diskscout list -o up| links": ["upper"],
    "diskscout list d| links": ["devices", "disks", "defects"],
    "diskscout | --json": ["list", "tree", "doctor", "schema"],
    "diskscout |  list": [],
    "./here/diskscout sch": ["schema"],
    "~/here/diskscout sch": ["schema"],
    "stcli exe_d": ["exe_disk"],
    "stcli -- exe_d": ["exe_disk"],
    "stcli --co": ["--config"],
    "stcli mtab ": ["dev", "mnt"],
    "stcli mbr tw": ["two words", "two.cfg"],
    "stcli --sysroot=tw": ["--sysroot=two words"],
    "stcli hwraid ": [],
    "stcli -- -": [],
}


class Prompt:
    """A shell that knows the scripts, in a directory with some files."""

    def __init__(self, directory, programs):
        self.directory = directory
        self.lines = directory / "lines"
        self.answers = directory / "answers"
        self.answers.touch()
        (directory / "two words").mkdir()
        (directory / "two.cfg").touch()
        (directory / "here").symlink_to(programs)
        self.env = {
            "PATH": f"{programs}:/usr/bin:/bin",
            "HOME": str(directory),
            "TERM": "xterm",
            "LC_ALL": "C.UTF-8",
            "COMPLETIONS": str(COMPLETIONS),
            "LINES_ASKED": str(self.lines),
            "ANSWERS": str(self.answers),
        }

    def at_terminal(self, *command):
        return pexpect.spawn(
            command[0],
            [*command[1:]],
            cwd=str(self.directory),
            env=self.env,
            encoding="utf-8",
            timeout=60,
            dimensions=(24, 200),
            echo=False,
        )

    def bash(self, lines):
        shell = self.at_terminal("bash", "--norc", "--noprofile", "-i")
        shell.sendline(f"source '{SHELLS / 'ask.bash'}'")
        shell.expect("asked> ")
        keys = ""
        for line in lines:
            before, _, behind = line.partition("|")
            # Ctrl-B goes back by a letter, Ctrl-E to the end, Ctrl-U deletes what is before.
            keys += before + behind + "\x02" * len(behind) + "\t" + "\x05\x15"
        shell.sendline(keys + "exit")
        shell.expect(pexpect.EOF)

    def zsh(self, lines):
        self.lines.write_text("".join(f"{line}\n" for line in lines))
        shell = self.at_terminal("zsh", "-f", "-i")
        shell.sendline(f"source '{SHELLS / 'ask.zsh'}'")
        shell.expect("asked> ")
        shell.send("\x18")
        shell.expect(pexpect.EOF)

    def fish(self, lines):
        self.lines.write_text("".join(f"{line}\n" for line in lines))
        done = subprocess.run(
            ["fish", "--no-config", str(SHELLS / "ask.fish")],
            cwd=self.directory,
            env=self.env,
            capture_output=True,
            text=True,
            check=False,
            timeout=60,
        )
        assert (done.returncode, done.stderr) == (0, "")

    def offered(self, shell, lines):
        getattr(self, shell)(lines)
        answers = self.answers.read_text().split("--\n")
        assert answers.pop() == ""
        assert not (self.directory / "evil").exists()
        # Shells mark directories by a slash, and quote blanks.
        return [sorted(word.rstrip("/").replace("\\ ", " ") for word in answer.splitlines()) for answer in answers]


def of_bash(line, words):
    """bash has "--sort=" for a word of its own."""
    is_divided = re.search(r"=\S*$", line)
    return [word.partition("=")[2] for word in words] if is_divided else words


@pytest.fixture(name="prompt")
def prompt_in_place(tool, tmp_path):
    directory = tmp_path / "place"
    directory.mkdir()
    return Prompt(directory, tool.program.parent)


@pytest.mark.parametrize("shell", ["bash", "zsh", "fish"])
def test_what_a_shell_offers(prompt, shell):
    # fish says nothing of words behind the cursor.
    lines = [line for line in LINES if shell != "fish" or "|" not in line]
    wanted = [of_bash(line, LINES[line]) if shell == "bash" else LINES[line] for line in lines]
    offered = prompt.offered(shell, lines)
    assert dict(zip(lines, offered, strict=True)) == dict(zip(lines, map(sorted, wanted), strict=True))


def test_it_is_the_programs(prompt):
    done = subprocess.run(
        ["bash", "--norc", "--noprofile", "-uc", 'source "$COMPLETIONS/diskscout.bash" && complete -p diskscout stcli'],
        env=prompt.env,
        capture_output=True,
        text=True,
        check=False,
        timeout=60,
    )
    registered = "complete -F _diskscout diskscout\ncomplete -F _diskscout stcli\n"
    assert (done.returncode, done.stdout, done.stderr) == (0, registered, "")


@pytest.mark.parametrize("name", ["diskscout.bash", "_diskscout", "diskscout.fish"])
def test_no_script_knows_a_word(name):
    words = re.findall(r"[a-z_]+", re.sub(r"#.*", "", (COMPLETIONS / name).read_text()))
    assert not {"tree", "doctor", "devices", "json", "sysroot", "exe_disk", "hwraid"} & set(words)
