"""What README.md shows is what happens: its program compiles, runs and prints what it says."""

import os
import re
import subprocess

import pytest
from pages import anchors_that_lack, pages_that_lack
from sessions import Reader, blocks, sessions, steady

# Columns of a terminal that shows the samples unbroken.
WIDEST = 110


@pytest.fixture(scope="module")
def readme(source_dir):
    return (source_dir / "README.md").read_text(encoding="utf-8")


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


def test_the_sessions_are_what_happens(readme, build_dir, source_dir, tmp_path):
    reader = Reader(build_dir, source_dir, tmp_path)
    shown = sessions(readme, "build/run/diskscout ") + sessions(readme)
    assert len(shown) == 3
    assert [steady(reader.session(session)) for session in shown] == [steady(session) for session in shown]


def test_the_samples_fit_a_terminal(readme):
    lines = [line for block in blocks(readme) for line in block.splitlines()]
    assert lines
    assert [line for line in lines if len(line) > WIDEST] == []


def test_the_first_command_is_what_the_script_shows_first(readme, source_dir):
    script = (source_dir / "scripts/run").read_text(encoding="utf-8")
    first = re.search(r"^show (.*?)(?: \|\|.*)?$", script, re.MULTILINE).group(1)
    assert sessions(readme, "build/")[0].startswith(f"$ {first}\n")


def test_the_pages_that_are_linked_exist(readme, source_dir):
    assert pages_that_lack(readme, source_dir) == []


def test_anchors_that_are_linked_are_headings(readme):
    assert anchors_that_lack(readme) == set()
