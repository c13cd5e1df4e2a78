"""What README.md shows is what happens: its program compiles, runs and prints what it says."""

import os
import re
import subprocess

import pytest
from pages import pages_that_lack


@pytest.fixture(scope="module")
def readme(source_dir):
    return (source_dir / "README.md").read_text(encoding="utf-8")


def blocks(readme, language=""):
    fenced = re.findall(r"^```(\w*)\n(.*?)^```$", readme, re.MULTILINE | re.DOTALL)
    return [text for name, text in fenced if name == language]


def replayed(build_dir, source_dir, scratch):
    # The loader splits LD_PRELOAD at blanks and colons.
    replay = scratch / "replay.so"
    replay.symlink_to(build_dir / "diskscout-replay.so")
    return dict(os.environ, LC_ALL="C", LD_PRELOAD=str(replay),
                ASAN_OPTIONS="verify_asan_link_order=0",
                REPLAY_SYSROOT=str(source_dir / "tests/hosts/real-kernel"))


def test_the_agent_compiles_and_prints_what_the_page_says(readme, build_dir, source_dir, tmp_path):
    (program,) = blocks(readme, "c")
    (tmp_path / "agent.c").write_text(program)
    # The library of a sanitizer build takes its runtime from the program.
    sanitize = ["-fsanitize=address,undefined"] if "DISKSCOUT_SANITIZE:BOOL=ON" in (
        build_dir / "CMakeCache.txt").read_text() else []
    subprocess.run(["cc", "-std=c99", "-Wall", "-Wextra", "-Werror", *sanitize, f"-I{source_dir}/src",
                    str(tmp_path / "agent.c"), "-o", str(tmp_path / "agent")], check=True)
    done = subprocess.run([str(tmp_path / "agent"), str(build_dir / "diskscout.so")], check=False,
                          env=replayed(build_dir, source_dir, tmp_path), capture_output=True, text=True)
    assert done.stderr == ""
    assert done.returncode == 0
    assert done.stdout in blocks(readme)


def test_the_tool_prints_what_the_page_says(readme, build_dir, source_dir):
    (shown,) = [block for block in blocks(readme) if block.startswith("$ build/run/diskscout list")]
    command, output = shown.split("\n", 1)
    done = subprocess.run([str(build_dir / "diskscout"), *command.split()[2:]], cwd=source_dir, check=True,
                          capture_output=True, text=True)
    assert done.stdout == output


def test_the_pages_that_are_linked_exist(readme, source_dir):
    assert pages_that_lack(readme, source_dir) == []
