# SPDX-License-Identifier: Apache-2.0
"""What `diskscout list` shows in a machine: as documents that a program reads, and as tables for people."""

import collections
import json
import pathlib
import re
import subprocess
import sys

import answers
import stock_machine

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(1, str(HERE.parent / "tools"))

import documents  # noqa: E402

# What changes from one answer to the next without anybody's doing; a btrfs writes in its own time.
MOVING = {"arrays": {"state", "sync_done", "sync_speed", "mismatches"}, "mounts": {"used", "available"}}
OURS = {"filesystems": "contents"}  # as block-json calls them
CLASSIC = {"disk": "disks", "rom": "cdroms"}
TREE = re.compile(r"^[ |`-]*")
ABOVE = " (above)"


def document(machine, stage, name):
    return documents.parsed((machine.seen / stage / f"{name}.out").read_text(encoding="utf-8"))


def first_cells(lines, width=None):
    """The first column of a tree: (name, whether it is drawn in whole here)"""
    for line in lines:
        cell = TREE.sub("", line[:width]).rstrip()
        if cell:  # else a further mount point
            yield cell.split(" ")[0], not cell.endswith(ABOVE)


def tree_of(text):
    """The section DEVICES of a listing without its heading."""
    heading, columns, *lines = text.split("\n\n")[0].splitlines()
    assert heading == "DEVICES"
    return first_cells([line for line in lines if not line.startswith("Unused ")], columns.index("KIND"))


def is_told(value):
    return value is not None and value != []


def poorer(row, other):
    """The fields of a row that the other one lacks."""
    return {field for field, value in row.items() if is_told(value) and not is_told(other[field])}


class Listing:
    """Tests of all machines."""

    def in_each(self, names, check, stages=stock_machine.QUERIES):
        for stage, name in self.machine.answered(*names):
            if stage in stages:
                with self.subTest(f"{stage} {name}"):
                    check(stage, name)

    def in_each_document(self, check, stages=stock_machine.QUERIES):
        self.in_each(stock_machine.DOCUMENTS, check, stages)

    def in_each_table(self, name, check):
        def check_text(stage, name):
            self.assertEqual(self.machine.text(f"{stage}/{name}.status"), "0\n")
            self.assertEqual(self.machine.text(f"{stage}/{name}.err"), "")
            check(stage, (self.machine.seen / stage / f"{name}.out").read_text(encoding="utf-8"))
        self.in_each([name], check_text)

    def test_documents_are_valid(self):
        program = self.options.build_dir / "diskscout"
        release, = (path.name for path in (self.options.kernel / "lib" / "modules").iterdir())

        def check(stage, name):
            status, error, text = (self.machine.text(f"{stage}/{name}.{kind}") for kind in ("status", "err", "out"))
            told = document(self.machine, stage, name)
            self.assertEqual([error.message for error in documents.validator_of(program).iter_errors(told)], [])
            documents.check_envelope(told)
            documents.check_errors(told, subprocess.CompletedProcess([name], int(status), text, error))
            self.assertEqual((status, error), ("0\n", ""))
            self.assertEqual(told["host"], {"name": "storagevm", "kernel": release})
            kinds = stock_machine.DOCUMENTS[name]
            self.assertEqual(tuple(key for key in told if key in documents.KINDS), kinds)
        self.in_each_document(check)

    def test_documents_tell_what_the_library_tells(self):
        """Which is held against the scenario's text and the peers."""
        def check(stage, name):
            told = document(self.machine, stage, name)
            ours = json.loads((self.machine.seen / stage / "block.out").read_bytes())
            for kind in set(stock_machine.DOCUMENTS[name]) & set(documents.BLOCK_KINDS):
                still = [[{field: value for field, value in row.items() if field not in MOVING.get(kind, ())}
                          for row in rows] for rows in (told[kind], ours[OURS.get(kind, kind)])]
                self.assertEqual(*still, kind)
        self.in_each_document(check)

    def test_every_device_of_lsblk_is_listed(self):
        def listed(stage, names):
            self.assertEqual(set(answers.lsblk(self.machine, stage)) - set(names), set())

        def drawn(stage, cells):
            cells = list(cells)
            times = collections.Counter(name for name, is_whole in cells if is_whole)
            self.assertEqual({name for name, count in times.items() if count > 1}, set())
            self.assertEqual({name for name, _ in cells} - set(times), set())
            self.assertEqual(set(times) - set(self.text.devices(stage)), set())
            listed(stage, times)
        self.in_each_document(lambda stage, name: listed(
            stage, [device["name"] for device in document(self.machine, stage, name)["devices"]]), stock_machine.STAGES)
        self.in_each_table("list", lambda stage, text: drawn(stage, tree_of(text)))
        self.in_each_table("names", lambda stage, text: drawn(stage, first_cells(text.splitlines())))

    def test_of_each_disk_it_is_told_why_a_classic_list_lacks_it(self):
        for stage in stock_machine.STAGES:
            with self.subTest(stage):
                told = document(self.machine, stage, "list-json")
                known = {kind: collections.Counter(row["device_name"].removeprefix("/dev/") for row in told[kind])
                         for kind in CLASSIC.values()}
                for message, names in self.text.said(stage, CLASSIC.values()):
                    self.assertIn(message, told["messages"])
                    known[message["kind"]].update(names)
                for name, device in answers.lsblk(self.machine, stage).items():
                    if device["kind"] in CLASSIC:
                        self.assertEqual(known[CLASSIC[device["kind"]]][name], 1, name)

    def test_nothing_else_is_said(self):
        def check(stage, name):
            kinds = stock_machine.DOCUMENTS[name]
            said = [message for message, _ in self.text.said(stage, kinds)]
            self.assertEqual(document(self.machine, stage, name)["messages"], said)
        self.in_each_document(check)

    def test_people_are_told_the_same(self):
        def check(stage, text):
            # their table has no column that lacks anything
            said = [message["text"] + "." for message, _ in self.text.said(stage, documents.HOST_KINDS)]
            self.assertEqual(text.split("\n\n", 1)[1].splitlines(), said)
        self.in_each_table("list", check)

    def test_who_is_told_less_is_told_so(self):
        def check(stage, name):
            root = document(self.machine, stage.replace("user", "root"), name)
            user = document(self.machine, stage, name)
            said = [(message["kind"], one) for message, names in self.text.said(stage, documents.KINDS)
                    for one in names if message["code"] == "no_permission" and message in user["messages"]]
            for kind in stock_machine.DOCUMENTS[name]:
                self.assertEqual(len(root[kind]), len(user[kind]), kind)
                for row, other in zip(root[kind], user[kind]):
                    less = poorer(row, other) - MOVING.get(kind, set())
                    if less and other.get("error") is None:
                        self.assertIn((kind, row.get("name", row.get("mount_point"))), said, less)
        self.in_each_document(check, ("udev-user", "bare-user"))
