#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""diskscout in virtual machines with the distribution's own kernel.

usage: run.py --build-dir DIR --source-dir DIR [--keep DIR] [--capture] [unittest options and test names]

Each test class is one scenario, booted once.  What the library for today's hosts tells of its devices is compared with
what the scenario itself says of them (expected.py) and with the answers of its peers in the same boot (peers.py), as
root and as an ordinary user, with udevd and without; so is what the program lists of them (listing_tests.py).  Exit
status 77: this host cannot run the machines.
"""

import argparse
import errno
import json
import pathlib
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(1, str(HERE.parent / "vm"))

import answers  # noqa: E402
import expected  # noqa: E402
import listing_tests  # noqa: E402
import peers  # noqa: E402
import scenario  # noqa: E402
import stock_machine  # noqa: E402

SKIPPED = 77


class Stock(listing_tests.Listing, scenario.Booted):
    """What holds in every machine."""

    kind = stock_machine.Machine

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.text = expected.Expected(cls.machine)

    def in_each_stage(self, check):
        for stage in stock_machine.STAGES:
            with self.subTest(stage):
                check(stage)

    def test_every_device_is_told(self):
        self.in_each_stage(lambda stage: self.assertEqual(
            sorted(answers.ours(self.machine, stage)), sorted(self.text.devices(stage))))

    def test_devices_are_as_the_scenario_made_them(self):
        def check(stage):
            ours = answers.ours(self.machine, stage)
            for name, device in self.text.devices(stage).items():
                self.assertEqual({field: ours[name].get(field) for field in device}, device, name)
        self.in_each_stage(check)

    def test_arrays_are_as_the_scenario_made_them(self):
        def check(stage):
            ours, arrays = answers.our_arrays(self.machine, stage), self.text.arrays()
            self.assertEqual(sorted(ours), sorted(arrays))
            for name, array in arrays.items():
                self.assertIn(ours[name]["state"], array.pop("state"), name)
                self.assertEqual({field: ours[name][field] for field in array}, array, name)
        self.in_each_stage(check)

    def test_classic_records_stay_empty(self):
        """This kernel has none of the tables that they are made from."""
        for stage in stock_machine.STAGES:
            self.assertEqual(self.machine.text(f"{stage}/classic.status"), "0\n")
            self.assertEqual(json.loads(self.machine.binary(f"{stage}/classic.out")),
                             {"format": 1, "disks": [], "partitions": [], "cdroms": [], "failed": []})

    def test_peers_know_nothing_else(self):
        found = peers.compare(self.machine, stock_machine.STAGES)
        self.assertEqual(found.unexplained, [])
        self.assertEqual(found.met, peers.names_for(self.name))

    def test_mounts_are_those_of_findmnt(self):
        def check(stage):
            ours, theirs = answers.our_mounts(self.machine, stage), answers.findmnt(self.machine)
            shut = {point for _, points in self.text.said(stage, ["mounts"]) for point in points}
            self.assertEqual(sorted(ours), sorted(theirs))
            for number, mount in theirs.items():
                if not self.tells_space(ours[number]) or mount["target"] in shut:
                    mount |= {"total": None, "used": None, "available": None}
                elif mount["type"] == "btrfs":  # it writes in its own time
                    del mount["used"], mount["available"]
                self.assertEqual({field: ours[number][field] for field in mount}, mount, mount["target"])
        self.in_each_stage(check)

    @staticmethod
    def tells_space(mount):
        """Nobody is asked for the space of what lies on no device, or cannot be reached by its path."""
        on_device = mount["type"] == "btrfs" or not mount["number"].startswith("0:")
        return on_device and not mount["shadowed"]

    def test_swap_areas_are_those_of_the_kernel(self):
        self.in_each_stage(lambda stage: self.assertEqual(
            answers.our_swaps(self.machine, stage), answers.swaps_of_the_kernel(self.machine)))

    def test_links_are_those_that_lead_to_a_device(self):
        for stage in ("udev-root", "udev-user"):
            with self.subTest(stage):
                devices = answers.ours(self.machine, stage)
                self.assertEqual(answers.our_links(self.machine, stage),
                                 answers.links_of_the_machine(self.machine, devices))
        # they are read from udev's database
        self.assertEqual(answers.our_links(self.machine, "bare-root"), {})

    def test_arrays_are_those_of_mdadm(self):
        def check(stage):
            ours, theirs = answers.our_arrays(self.machine, stage), answers.mdadm(self.machine)
            self.assertEqual(sorted(ours), sorted(theirs))
            for name, array in theirs.items():
                slots = {member: slot for member, (slot, _) in ours[name]["members"].items()}
                told = ours[name] | {"members": slots}
                for field, value in array.items():
                    if value is not None:
                        known = peers.KNOWN_OF_MDADM.get((name, field), (value, value))
                        self.assertEqual((told[field], value), known, (name, field))
        self.in_each_stage(check)


class Desktop(Stock, unittest.TestCase):
    """Disks of every transport, partition tables, file systems and mount points of all kinds; root on a SATA disk."""

    name = "desktop"

    def test_documents_tell_the_known_differences(self):
        text = (self.options.source_dir / "docs" / "block.md").read_text(encoding="utf-8")
        _, _, text = text.partition("## Where we differ\n")
        rows = {line.split("|")[1].strip() for line in text.partition("\n## ")[0].splitlines() if line.startswith("| ")}
        self.assertEqual(rows - {"Difference"}, peers.all_names())

    def test_a_head_has_two_paths(self):
        def check(stage):
            head, left, right = (self.text.name(role) for role in ("shared", "left", "right"))
            self.assertEqual(answers.our_paths(self.machine, stage), {
                (head, left): ("0000:00:07.0", "live"), (head, right): ("0000:00:08.0", "live")})
        self.in_each_stage(check)

    def test_what_another_mount_hides(self):
        def check(stage):
            hidden = [(mount["target"], mount["type"]) for mount in answers.our_mounts(self.machine, stage).values()
                      if mount["shadowed"]]
            self.assertEqual(hidden, [("/mnt/hidden", "vfat")])
        self.in_each_stage(check)


class Arrays(Stock, unittest.TestCase):
    """Software RAID of every level and in every state, on more than 32 disks."""

    name = "arrays"


class Mappings(Stock, unittest.TestCase):
    """Root on LVM on LUKS on a mirror on partitions; multipath, and the device mapper's other uses."""

    name = "mappings"

    def test_a_multipath_device_has_two_paths(self):
        def check(stage):
            head, *paths = (self.text.name(role) for role in ("mpatha", "path1", "path2"))
            address = {name: device["address"] for name, device in answers.lsblk(self.machine, stage).items()}
            self.assertEqual(answers.our_paths(self.machine, stage),
                             {(head, path): (address[path], "running") for path in paths})
        self.in_each_stage(check)

    def test_targets_are_those_of_the_mapper(self):
        targets = answers.targets_of_the_mapper(self.machine)
        self.assertEqual(targets[self.text.name("joined")], {"linear", "striped"})
        for stage in stock_machine.STAGES:
            told = targets if stage.endswith("root") else dict.fromkeys(targets)
            self.assertEqual(answers.our_targets(self.machine, stage), told, stage)

    def test_a_device_that_hangs_stops_nobody(self):
        for stage in ("hung-root", "hung-user"):
            with self.subTest(stage):
                devices = self.text.devices(stage.replace("hung", "udev"))
                devices[self.text.name("frozen")]["state"] = "suspended"
                ours = answers.ours(self.machine, stage)
                self.assertEqual(sorted(ours), sorted(devices))
                for name, device in devices.items():
                    self.assertEqual({field: ours[name].get(field) for field in device}, device, name)
        contents = listing_tests.document(self.machine, "hung-root", "named-json")["filesystems"]
        self.assertEqual({content["name"]: content["error"] for content in contents if content["error"] is not None},
                         {self.text.name("frozen"): errno.EBUSY})

    def test_who_cannot_be_ended_is_left_behind_and_named(self):
        *_, timed_out, named = self.machine.lines("hung-root/left.err")
        self.assertEqual(self.machine.text("hung-root/left.status"), "1\n")
        self.assertEqual(timed_out, "stcli: timed out after 1 s at part")
        self.assertRegex(named, "^stcli: process [0-9]+ cannot be ended: ")
        self.assertEqual(self.machine.text("hung-root/left.state"), "D\n")
        began, ended = map(float, self.machine.lines("hung-root/left.times"))
        # an emulated processor takes its time to start a program
        self.assertLess(ended - began, 1 + 3 + 1)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build-dir", type=pathlib.Path, required=True)
    parser.add_argument("--source-dir", type=pathlib.Path, required=True)
    parser.add_argument("--keep", type=pathlib.Path, help="keep images and answers in this new directory")
    parser.add_argument("--capture", action="store_true", help="bring a captured host back as well")
    options, rest = parser.parse_known_args()
    options.build_dir = options.build_dir.resolve()
    options.source_dir = options.source_dir.resolve()
    options.kernel = options.source_dir / "build" / "stock-kernel"
    scenario.Booted.options = options
    stock_machine.Machine.capture = options.capture
    missing = stock_machine.missing_programs()
    if not options.kernel.is_dir():
        missing.append("the distribution's kernel (scripts/setup test fetches it, on amd64)")
    if missing:
        print("skipped: no virtual machine can be run here; missing: " + ", ".join(missing))
        return SKIPPED
    unittest.main(argv=[sys.argv[0], "--verbose", *rest])


if __name__ == "__main__":
    sys.exit(main())
