# SPDX-License-Identifier: Apache-2.0
"""docs/json.md says what `diskscout schema` says, and its programs print what it shows."""

import json
import re
import subprocess

import pytest
from pages import anchors_that_lack, names, pages_that_lack, table
from schema_tables import heading_of, kinds_of, rows_of
from sessions import Reader, blocks, sessions, steady

RENEW = "diskscout schema | tests/plugin/schema_tables.py docs/json.md"


@pytest.fixture(scope="module")
def page(source_dir):
    return (source_dir / "docs/json.md").read_text(encoding="utf-8")


@pytest.fixture(scope="module")
def schema(build_dir):
    done = subprocess.run([str(build_dir / "diskscout"), "schema"], check=True, capture_output=True, timeout=60)
    return json.loads(done.stdout)


@pytest.fixture(scope="module")
def reader(build_dir, source_dir, tmp_path_factory):
    return Reader(build_dir, source_dir, tmp_path_factory.mktemp("reader"))


def test_every_kind_is_told_in_its_order(page, schema):
    assert re.findall(r"^\| Key of `(\w+)` \|", page, re.MULTILINE) == list(kinds_of(schema))


def test_every_field_is_told(page, schema):
    kinds = kinds_of(schema)
    assert len(kinds) == 17
    for kind, record in kinds.items():
        assert table(page, heading_of(kind)) == rows_of(record), RENEW


def test_lists_within_records_are_never_null(schema):
    rows = [row for record in kinds_of(schema).values() for row in rows_of(record)]
    assert {word for _, word, _ in rows if word.startswith(("texts", "objects"))} == {"texts", "objects"}


def test_the_envelope_is_told_in_its_order(page, schema):
    told = [key.strip("`") for key, _ in table(page, "| Key | Means |")]
    keys = [key for key in schema["properties"] if key not in kinds_of(schema)]
    keys[keys.index("messages"):keys.index("messages")] = ["kinds", "tree", "checks"]
    assert told == keys


def test_every_code_is_told(page, schema):
    codes = schema["properties"]["messages"]["items"]["properties"]["code"]["enum"]
    rows = table(page, "| Code | Severity | Means | What to do |")
    assert [names(code) for code, *_ in rows] == [[code] for code in codes]
    severities = set(schema["properties"]["messages"]["items"]["properties"]["severity"]["enum"])
    assert {word for _, severity, *_ in rows for word in re.findall(r"error|warning|note", severity)} == severities


def test_the_program_prints_what_the_page_says(page, reader):
    (program,) = blocks(page, "python")
    (shown,) = [block for block in blocks(page) if not block.startswith("$ ")]
    (reader.place / "mounted.py").write_text(program, encoding="utf-8")
    assert reader.run("python3 mounted.py", "C.UTF-8") == shown


def test_the_program_says_what_went_wrong(page, reader, source_dir):
    """On a host that has none of what it asks for."""
    (program,) = blocks(page, "python")
    asked = program.replace('"--json"', f'"--json", "--sysroot", "{source_dir}/tests/hosts/nothing"')
    (reader.place / "nothing.py").write_text(asked, encoding="utf-8")
    said = reader.run("python3 nothing.py; echo $?", "C.UTF-8").splitlines()
    assert said[-1] == "1"
    assert said[:-1]
    assert all(line.startswith("not all could be told: th") for line in said[:-1])


def test_the_sessions_are_what_happens(page, reader):
    shown = sessions(page)
    assert len(shown) == 2
    assert [steady(reader.session(session)) for session in shown] == [steady(session) for session in shown]


def test_the_pages_that_are_linked_exist(page, source_dir):
    assert pages_that_lack(page, source_dir / "docs") == []


def test_anchors_that_are_linked_are_headings(page):
    assert anchors_that_lack(page) == set()
