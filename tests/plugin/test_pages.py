# SPDX-License-Identifier: Apache-2.0
"""The pages together: each is in the index, each link leads somewhere, each command that one shows is run by a test."""

import re

import pytest
from sessions import Visitor, blocks, install, steady

# Pages whose commands are all run here, by somebody who has installed it; before them what the text around them says.
VISITED = {
    "docs/abi.md": "",
    "docs/agents.md": "",
    "docs/block.md": "cp /usr/share/doc/diskscout-dev/examples/disks.c .\n"
                     "export REPLAY_SYSROOT=/usr/share/diskscout/hosts/desktop\n"
                     "export LD_PRELOAD=$(pkg-config --variable=plugindir diskscout)/diskscout-replay.so\n",
    "docs/fleet.md": "",
    "docs/service.md": "",
    "docs/raid.md": "cp /usr/share/doc/diskscout-dev/examples/tasks.c .\n"
                    "printf '%s\\n' 'Cli Path:/usr/bin' 'Cli Name:raidsim'"
                    " 'Filter Script:/usr/libexec/diskscout/diskscout-filter' >raid.cfg\n"
                    "export RAIDSIM_STATE=$PWD/controllers.txt\n",
}
# What other tests run: a page, how its commands begin, and the test.
RUN_ELSEWHERE = (
    ("README.md", r"(build/run/)?diskscout ", "tests/plugin/test_readme.py::test_the_sessions_are_what_happens"),
    ("README.md", r"diskscout-mirror ", "tests/tools/test_mirror.py::test_session_of_the_readme"),
    ("docs/diskscout.md", r"diskscout ", "tests/plugin/test_diskscout.py::test_the_sessions_are_what_happens"),
    ("docs/json.md", r"diskscout ", "tests/plugin/test_json.py::test_the_sessions_are_what_happens"),
    ("docs/python.md", r"PYTHONPATH=python samples/agent\.py ", "tests/python/test_page.py::test_the_session_is_what_happens"),
    ("docs/stcli.md", r"stcli |echo .* \| stcli input", "tests/tools/test_stcli_docs.py::test_samples_are_what_is_printed"),
    ("docs/console.md", r"stcli ", "tests/tools/test_stcli_docs.py::test_console_session"),
    ("docs/raidsim.md", r"export RAIDSIM_STATE=|raidsim ", "tests/raidsim/test_docs.py::test_session_by_hand"),
)
# What no test runs, and why.
NOT_RUN = {
    "apt-get install ./*.deb": "it changes the machine; scripts/package does it in a bare one",
    "apt-get install ./build/packages/*.deb": "it changes the machine; scripts/package does it in a bare one",
    "cmake -S . -B build -G Ninja -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_INSTALL_LIBDIR=lib64 -DDISKSCOUT_TESTS=OFF \\":
        "scripts/package does it",
    "cd build && cpack -G RPM": "scripts/package does it",
    "cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DDISKSCOUT_TESTS=OFF -DDISKSCOUT_MAN=ON":
        "a whole build",
    "cmake --build build": "a whole build",
    'DESTDIR="$PWD/root" cmake --install build': "tests/install does it, of the build that is tested",
    "scripts/package": "it needs bare systems, and takes minutes",
    "./scripts/run": "it is a whole build",
    "./scripts/test": "it is this run",
    "cmake --preset release && cmake --build --preset release --target inventory_bench": "a build for measuring",
    "build/release/inventory_bench --benchmark_repetitions=9 \\": "it measures; bench-inventory runs it briefly",
    "cmake --build --preset release --target parsing_bench": "a build for measuring",
    "build/release/parsing_bench --benchmark_repetitions=9 \\": "it measures; bench-parsing runs it briefly",
    "cmake --build --preset release --target diskscout_tool block-json": "a build for measuring",
    "bench/against-lsblk": "it makes devices, as root",
    "bench/against-lsblk --check": "it makes devices, as root",
    "bench/against-lsblk --devices 50 --pairs 5": "it makes devices, as root",
}


@pytest.fixture(scope="module")
def pages(source_dir):
    found = [*sorted(source_dir.glob("*.md")), *sorted((source_dir / "docs").glob("*.md"))]
    return {str(page.relative_to(source_dir)): page.read_text(encoding="utf-8") for page in found}


@pytest.fixture(scope="module")
def root(build_dir, tmp_path_factory):
    return install(build_dir, tmp_path_factory.mktemp("root"))


def without_fences(page):
    return re.sub(r"^```.*?^```$", "", page, flags=re.MULTILINE | re.DOTALL)


def shown(page):
    """What a page shows of a shell: [(command, what it prints, or None where the page does not say)]."""
    found = []
    for block in blocks(page) + blocks(page, "console"):
        if block.startswith("$ "):
            for first, more, printed in re.findall(r"^\$ (.*)\n((?:> .*\n)*)((?:(?!\$ ).*\n)*)", block, re.MULTILINE):
                command = "\n".join([first, *re.findall(r"^> (.*)$", more, re.MULTILINE)])
                found.append((page.index(f"$ {first}\n"), command, printed))
    for match in re.finditer(r"^    (\S.*?)(?: {2,}# .*)?$", without_fences(page), re.MULTILINE):
        found.append((page.index(f"    {match[1]}"), match[1], None))
    return [(command, printed) for _, command, printed in sorted(found)]


def agree(told, printed):
    """Whether a sample is what was printed; a line of three dots stands for any lines."""
    head, dots, tail = told.partition("...\n")
    return printed.startswith(head) and printed.endswith(tail) and len(printed) > len(told) if dots else told == printed


@pytest.mark.parametrize("name", VISITED)
def test_the_sessions_are_what_happens(name, pages, root, tmp_path):
    visitor = Visitor(root, tmp_path)
    run = [(command, told) for command, told in shown(pages[name]) if command not in NOT_RUN]
    assert run, "then this page needs no visitor"
    printed = visitor.page([command for command, _ in run], VISITED[name])
    assert [command for command, _ in printed] == [command for command, _ in run]
    differ = [text for (command, told), (_, text) in zip(run, printed, strict=True)
              if not agree(steady(told or ""), steady(text))]
    assert differ == []


def test_the_agent_of_cmake_is_built(pages, root, tmp_path):
    visitor = Visitor(root, tmp_path)
    (recipe,) = blocks(pages["docs/agents.md"], "cmake")
    (visitor.place / "CMakeLists.txt").write_text(recipe)
    printed = visitor.run(visitor.here("cp /usr/share/doc/diskscout-dev/examples/disks.c . && cmake -S . -B b -G Ninja >log &&"
                                       " cmake --build b >>log && ls b/agent || cat log"))
    assert printed == "b/agent\n"


def test_every_command_is_run_by_a_test(pages):
    unproven, used = [], set()
    for name, page in pages.items():
        for command, _ in shown(page):
            rows = [row for row in RUN_ELSEWHERE if row[0] == name and re.match(row[1], command)]
            used.update(row[2] + name for row in rows)
            if command in NOT_RUN:
                used.add(command)
            elif not rows and name not in VISITED:
                unproven.append((name, command))
    assert unproven == []
    assert used == set(NOT_RUN) | {test + name for name, _, test in RUN_ELSEWHERE}, "what nothing shows"


def test_the_tests_that_run_them_are_there(source_dir):
    for _, _, test in RUN_ELSEWHERE:
        file, function = test.split("::")
        assert f"def {function}(" in (source_dir / file).read_text(encoding="utf-8")


def test_a_script_that_a_page_shows_is_run(pages, source_dir):
    """The one there is: it captures a machine."""
    assert [name for name, page in pages.items() if blocks(page, "sh")] == ["docs/replay.md"]
    assert "REPLAY_DOCUMENT" in (source_dir / "tests/replay/programs_test.cpp").read_text(encoding="utf-8")


def test_programs_are_samples(pages, source_dir):
    """Or, in Python, run by the test of their page."""
    samples = [sample.read_text(encoding="utf-8") for sample in (source_dir / "samples").iterdir()]
    programs = [program for page in pages.values() for program in blocks(page, "c") if "int main(" in program]
    assert len(programs) > 1
    assert [program for program in programs if not any(program in sample for sample in samples)] == []


@pytest.mark.parametrize("name", ["docs/block.md", "docs/classic.md", "docs/raid.md"])
def test_a_synopsis_fits_a_terminal(name, pages):
    """80 columns, of which a manual page leaves seven free before the text."""
    synopsis = blocks(pages[name], "c")[0]
    assert "#include" in synopsis
    assert [line for line in synopsis.splitlines() if len(line) > 73] == []


def test_every_page_is_in_the_index(pages):
    index = set(re.findall(r"\]\(([\w.-]+\.md)\)", pages["docs/README.md"]))
    assert index == {name.removeprefix("docs/") for name in pages if name.startswith("docs/")} - {"README.md"}
    assert "docs/README.md" in pages["README.md"]


def anchors(page):
    headings = re.findall(r"^#+ (.*)$", without_fences(page), re.MULTILINE)
    return {re.sub(r"[^\w -]", "", heading).lower().replace(" ", "-") for heading in headings}


def lead_nowhere(pages, folder):
    """The links of pages, which lie below the folder, to what is not there: [(page, link)]."""
    lost = []
    for name, page in pages.items():
        for link in re.findall(r"\]\(([^)]+)\)", without_fences(page)):
            path, _, anchor = link.partition("#")
            if "://" in path:
                continue
            target = (folder / name).parent / path if path else folder / name
            if not target.exists() or anchor and anchor not in anchors(target.read_text(encoding="utf-8")):
                lost.append((name, link))
    return lost


def test_every_link_leads_somewhere(pages, source_dir):
    assert lead_nowhere(pages, source_dir) == []


def test_every_link_of_an_installed_page_leads_somewhere(root):
    folder = root / "usr/share/doc/diskscout"
    installed = {page.name: page.read_text(encoding="utf-8") for page in folder.glob("*.md")}
    assert len(installed) > 10
    assert lead_nowhere(installed, folder) == []
