# SPDX-License-Identifier: Apache-2.0
"""The simulator's modules build on one another; no two need each other, by whatever way around."""

import pathlib
import re

SOURCES = pathlib.Path(__file__).resolve().parents[2] / "tools" / "raidsim"


def needs():
    """By module, a header and its source: the modules whose headers it includes."""
    found = {}
    for path in [*SOURCES.glob("*.h"), *SOURCES.glob("*.cpp")]:
        included = re.findall(r'^#include "(\w+)\.h"$', path.read_text(), re.MULTILINE)
        found.setdefault(path.stem, set()).update(set(included) - {path.stem})
    return found


def test_no_module_needs_itself():
    left = needs()
    assert len(left) > 10
    # Those that need nothing of what is left go, until nothing goes any more.
    while free := [module for module, needed in left.items() if not needed & left.keys()]:
        for module in free:
            del left[module]
    assert left == {}


def test_what_a_module_offers_is_in_its_own_header():
    """Else another's header would promise it, and two modules could need each other unseen."""
    sources = {path.stem: path.read_text() for path in SOURCES.glob("*.cpp")}
    del sources["main"]
    assert [name for name, text in sources.items() if re.search(r'^#include "(\w+)', text, re.MULTILINE)[1] != name] == []
