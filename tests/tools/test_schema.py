# SPDX-License-Identifier: Apache-2.0
"""The schema of the documents: what it allows, and that it keeps what it has promised."""

import copy
import json
import pathlib

import jsonschema
import pytest
from conftest import complaint
from documents import KINDS, OPERATION_KINDS, schema_of, validator_of
from promises import broken, is_of_objects, nodes
from raid_site import RaidSite
from records import INNER, RECORDS, members_of

STORED = pathlib.Path(__file__).resolve().parent / "schema.json"
RENEW = "a key was added: renew the stored copy with\n    diskscout schema > tests/tools/schema.json"
CODES = set(
    "usage plugin_not_loaded captured_host_not_loaded failed query_failed timed_out left_behind no_controller output_failed list_cut"
    " no_sysfs no_classic_name no_scsi_table no_ide_table no_permission not_opened not_in_scsi_table not_in_ide_table"
    " not_in_block_table no_mount_table not_among_disks no_medium protective_entry outside_disk cut_text problem_found warning_found help version".split()
)
WORDS = {"string": ["string"], "boolean": ["boolean"], "integer": ["integer"], "texts": ["array"], "objects": ["array"]}


@pytest.fixture
def schema(tool):
    return schema_of(tool.program)


@pytest.fixture
def stored():
    return json.loads(STORED.read_text(encoding="utf-8"))


def resolved(schema, node):
    """What a node says, also when it says it elsewhere."""
    while "$ref" in node:
        found = schema
        for word in node["$ref"].removeprefix("#/").split("/"):
            found = found[word]
        node = found
    return node


def choices(schema, node):
    """The schemas of which one has to hold."""
    node = resolved(schema, node)
    for word in ("anyOf", "oneOf"):
        if word in node:
            return [choice for one in node[word] for choice in choices(schema, one)]
    return [node]


def types_of(schema, node):
    found = set()
    for choice in choices(schema, node):
        told = choice.get("type", [])
        found |= set(told if isinstance(told, list) else [told])
    return found


def record_of(schema, holder, key):
    """The schema of each record in the list that stands under the key."""
    (array,) = [one for one in choices(schema, holder["properties"][key]) if "items" in one]
    return resolved(schema, array["items"])


def test_it_is_one_of_the_draft_that_it_names(schema):
    assert schema["$schema"] == "https://json-schema.org/draft/2020-12/schema"
    jsonschema.Draft202012Validator.check_schema(schema)


def test_nothing_is_allowed_that_it_does_not_name(schema):
    described = [node for node in nodes(schema) if is_of_objects(node)]
    assert len(described) > len(KINDS)
    for node in described:
        assert node.get("additionalProperties") is False, node
        assert "properties" in node


def test_no_promise_is_broken(schema, stored):
    """Not to be met by renewing the copy: whoever removes or retypes a key raises the number of the format."""
    assert list(broken(stored, schema)) == []


def test_stored_copy_is_the_newest(schema, stored):
    assert schema == stored, RENEW


def forgotten(schema, key):
    record = record_of(schema, schema, "devices")
    record["properties"].pop(key)
    record["required"].remove(key)


def retyped(schema, key):
    record_of(schema, schema, "devices")["properties"][key] = {"type": ["integer", "null"]}


def nullable(schema, key):
    record_of(schema, schema, "devices")["properties"][key]["type"] = ["string", "null"]


def optional(schema, key):
    record_of(schema, schema, "devices")["required"].remove(key)


@pytest.mark.parametrize("change", [forgotten, retyped, nullable, optional])
def test_broken_promises_are_found(schema, change):
    changed = copy.deepcopy(schema)
    change(changed, "name")
    assert list(broken(schema, changed)) != []


def test_new_keys_break_no_promise(schema):
    changed = copy.deepcopy(schema)
    record = record_of(changed, changed, "devices")
    record["properties"]["colour"] = {"type": ["string", "null"]}
    record["required"].append("colour")
    assert list(broken(schema, changed)) == []
    assert changed != schema


def test_every_kind_is_a_list_or_null(schema):
    for kind in KINDS:
        assert types_of(schema, schema["properties"][kind]) == {"array", "null"}
        assert kind not in schema["required"]


def check_members(schema, node, record):
    members = members_of(record)
    assert list(node["properties"]) == list(members)
    assert set(node["required"]) == set(members)
    for name, kind in members.items():
        assert types_of(schema, node["properties"][name]) - {"null"} == set(WORDS[kind]), name


@pytest.mark.parametrize("kind", RECORDS)
def test_records_are_those_of_the_header(schema, kind):
    node = record_of(schema, schema, kind)
    check_members(schema, node, RECORDS[kind])
    for key, record in INNER.items():
        if key in node["properties"]:
            check_members(schema, record_of(schema, node, key), record)


def test_all_that_is_told_is_explained(schema):
    for kind in KINDS:
        for key, node in record_of(schema, schema, kind)["properties"].items():
            assert node.get("description"), (kind, key)


def test_words_of_the_messages(schema):
    message = record_of(schema, schema, "messages")
    assert list(message["properties"]) == ["severity", "kind", "code", "text"]
    assert resolved(schema, message["properties"]["severity"])["enum"] == ["error", "warning", "note"]
    codes = resolved(schema, message["properties"]["code"])["enum"]
    assert len(codes) == len(set(codes))
    assert set(codes) | {"output_failed"} == CODES


def objects_in(value, path=()):
    """The path of every object within a document."""
    if isinstance(value, dict):
        yield path
        for key, inner in value.items():
            yield from objects_in(inner, (*path, key))
    elif isinstance(value, list):
        for number, inner in enumerate(value[:3]):
            yield from objects_in(inner, (*path, number))


def at(document, path):
    for word in path:
        document = document[word]
    return document


@pytest.fixture
def whole(tool, tmp_path):
    """A document with every kind in it; what only operations tell comes from the simulated controller tool."""
    queries = [kind for kind in KINDS if kind not in OPERATION_KINDS]
    made = tool.made_document(*queries, "--controller", "aac0")
    site = RaidSite(tool, tmp_path / "site")
    told = json.loads(site.run("list", "--json", *OPERATION_KINDS, "--config", "raid.cfg").stdout)
    return {**made, **{kind: told[kind] for kind in OPERATION_KINDS}}


def test_no_object_may_have_another_key(tool, whole):
    validator = validator_of(tool.program)
    for path in list(objects_in(whole)):
        at(whole, path)["another"] = None
        assert not validator.is_valid(whole), path
        del at(whole, path)["another"]
    assert validator.is_valid(whole)


def test_no_object_may_lack_a_key(tool, whole):
    validator = validator_of(tool.program)
    for path in list(objects_in(whole)):
        for key in list(at(whole, path)):
            if path == () and key in (*KINDS, "controller"):
                continue
            before = dict(at(whole, path))
            del at(whole, path)[key]
            assert not validator.is_valid(whole), (path, key)
            at(whole, path).update(before)


def test_values_of_another_type_are_refused(tool, whole):
    validator = validator_of(tool.program)
    for kind in KINDS:
        record = whole[kind][0]
        for key, value in list(record.items()):
            for other in (1.5, {"another": 1}, "" if not isinstance(value, str) and value is not None else []):
                record[key] = other
                assert not validator.is_valid({**whole, kind: [record]}), (kind, key, other)
            record[key] = value


def test_it_is_printed_for_nothing_else(tool):
    result = tool.run("schema")
    assert (result.returncode, result.stderr) == (0, "")
    assert result.stdout == json.dumps(json.loads(result.stdout), indent=2, ensure_ascii=False) + "\n"


@pytest.mark.parametrize("words", [["schema", "devices"], ["schema", "--frobnicate"], ["schema", "list"],
                                   ["schema", "--bytes"], ["schema", "--classic"], ["schema", "--inverse"]])
def test_it_takes_no_words(tool, words):
    result = tool.run(*words)
    assert complaint(result, 2)
    assert result.stdout == ""


def test_full_disk(tool):
    with open("/dev/full", "w", encoding="utf-8") as full:
        result = tool.run("schema", stdout=full)
    assert complaint(result, 1) == "the output cannot be written: No space left on device"


def test_it_needs_no_plugin(tool, tmp_path):
    result = tool.run("schema", program=tool.copy_program(tmp_path / "bin"))
    assert (result.returncode, result.stdout) == (0, tool.run("schema").stdout)


def test_first_format_is_none_of_its_business(tool):
    document = tool.fake_document("plain")
    assert not validator_of(tool.program).is_valid(document)
