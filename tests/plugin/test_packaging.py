# SPDX-License-Identifier: Apache-2.0
"""docs/packaging.md names what a build needs and what is installed."""

import re

import pytest
from pages import names, table


@pytest.fixture(scope="module")
def page(source_dir):
    return (source_dir / "docs/packaging.md").read_text(encoding="utf-8")


def test_every_option_is_told(page, source_dir):
    files = [source_dir / "CMakeLists.txt", source_dir / "tools/completion/CMakeLists.txt",
             *sorted((source_dir / "cmake").glob("*.cmake"))]
    text = "\n".join(file.read_text(encoding="utf-8") for file in files)
    options = set(re.findall(r"^ *option\((\w+)", text, re.MULTILINE))
    options |= set(re.findall(r"^ *set\((DISKSCOUT_\w+) [^)]*\bCACHE\b", text, re.MULTILINE))
    assert len(options) > 8
    assert {name for row in table(page, "| Option | Unless said | What |") for name in names(row[0])} == options


def test_what_a_build_needs_is_what_is_installed_for_it(page, source_dir):
    setup = (source_dir / "scripts/setup").read_text(encoding="utf-8")
    needed = re.search(r'^packages_run="(.*?)"', setup, re.MULTILINE | re.DOTALL)[1].split()
    told = {name for row in table(page, "| Package | For |") for name in names(row[0])}
    assert told == {*needed, "python3"}


def test_every_installed_file_is_in_a_place_that_is_told(page, source_dir):
    components = {names(row[0])[0]: names(row[2]) for row in table(page, "| Component | Debian package |")}
    rows = [line.split() for line in (source_dir / "tests/install/files.txt").read_text(encoding="utf-8").splitlines()
            if line and not line.startswith("#")]
    assert {component for component, *_ in rows} == set(components)
    lost = [(component, path) for component, _, path in rows
            if not any(path == place or place.endswith("/") and path.startswith(place) for place in components[component])]
    assert lost == []
