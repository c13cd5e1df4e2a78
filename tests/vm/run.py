#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""diskscout in virtual machines with a real kernel.

usage: run.py --build-dir DIR --source-dir DIR [--keep DIR] [unittest options and test names]

Each test class is one scenario, booted once.  The whole answer is compared with one that is worked out from
other sources (expect.py); what a scenario is there for is also said in figures of its own, so that an error in
that working out cannot hide.  Exit status 77: this host cannot run the machines.
"""

import argparse
import os
import pathlib
import sys
import unittest

import expect
import machine
import scenario
# The machines of the diagnostic command line: unittest looks for them among the names of this module.
from array_tests import Arrays  # noqa: F401
from command_tests import Commands  # noqa: F401
from media_tests import Media  # noqa: F401

SKIPPED = 77


class Scenario(scenario.Booted):
    """What holds in every machine that is asked for its inventory."""

    status = 0

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.answer = cls.machine.document("list.json")
        cls.disks = {disk["device_name"]: disk for disk in cls.answer["disks"]}
        cls.partitions = {part["disk_device_name"] + str(part["part_index"] + 1): part
                          for part in cls.answer["partitions"]}
        cls.cdroms = {drive["device_name"]: drive for drive in cls.answer["cdroms"]}

    def test_answer_is_the_kernels(self):
        expected = expect.document(self.machine)
        for kind in ("disks", "partitions", "cdroms"):
            self.assertEqual(len(self.answer[kind]), len(expected[kind]), kind)
            for got, wanted in zip(self.answer[kind], expected[kind]):
                self.assertEqual(got, wanted)
        self.assertEqual(self.answer, expected)

    def test_exit_status(self):
        self.assertEqual(self.machine.text("list.status"), f"{self.status}\n")
        self.assertEqual(self.machine.text("table.status"), f"{self.status}\n")

    def test_errors_are_told_and_nothing_else(self):
        for name in ("list.err", "table.err"):
            self.assertEqual(len(self.machine.text(name).splitlines()), self.status, self.machine.text(name))

    def test_small_stack_changes_nothing(self):
        # 2097152: the answers that are compared came from a process with this limit
        self.assertEqual(self.machine.text("limit").split()[3:5], ["2097152", "2097152"])
        self.assertEqual(self.answer, self.machine.document("usual.json"))

    def test_table_names_every_device(self):
        table = self.machine.text("table.txt")
        words = table.split()
        for device in [*self.disks, *self.partitions, *self.cdroms]:
            self.assertIn(device, words)
        for heading in ("DISKS", "PARTITIONS", "CD-ROMS"):
            self.assertIn(heading, table)

    def test_nothing_is_left_behind(self):
        self.assert_nothing_changed()

    def fields(self, records, *names):
        """The named fields of each record, by device."""
        return {device: tuple(record[name] for name in names) for device, record in records.items()}


class Standard(Scenario, unittest.TestCase):
    """IDE and SCSI disks, a medium, a mirror; the system runs on hda."""

    name = "standard"

    def test_disks(self):
        self.assertEqual(self.fields(self.disks, "interface", "position", "model", "serial_number", "part_number",
                                     "ex_part_number", "used_by_system"), {
            "/dev/hda": ("IDE", 0, "STORAGEVM IDE DISK 256", "VMIDE-A-0001", 6, 1, True),
            "/dev/hdb": ("IDE", 0, "STORAGEVM BLANK", "VMIDE-B-0002", 0, 0, False),
            "/dev/sda": ("SCSI", 0x0000, "DATA DISK 64", None, 2, 0, False),
            "/dev/sdb": ("SCSI", 0x0100, "MIRROR 32", None, 1, 0, False),
            "/dev/sdc": ("SCSI", 0x0400, "MIRROR 32", None, 1, 0, False)})

    def test_geometry(self):
        # 524288 sectors hold 32 cylinders of 255 * 63 sectors, and a rest that does not count
        hda = self.disks["/dev/hda"]
        self.assertEqual((hda["total_heads"], hda["sectors_per_track"], hda["total_cylinders"]), (255, 63, 32))
        self.assertEqual((hda["size"], hda["total_tracks"]), (263208960, 8160))

    def test_partitions(self):
        self.assertEqual(self.fields(self.partitions, "type", "file_system", "mount_point", "used_by_system",
                                     "boot_byte"), {
            "/dev/hda1": ("Primary Partition", "ext3", "/", True, 128),
            "/dev/hda3": ("Primary Partition", "ext2", "/boot", True, 0),
            "/dev/hda4": ("Extended Partition", None, None, False, 0),
            "/dev/hda5": ("Logical Drive", "ext2", "/home", False, 0),
            "/dev/hda6": ("Logical Drive", "vfat", "/mnt/exchange", False, 0),
            "/dev/hda7": ("Logical Drive", None, None, False, 0),
            "/dev/sda1": ("Primary Partition", "ext4", "/data", False, 128),
            "/dev/sda2": ("Primary Partition", None, None, False, 0),
            # the mirror is mounted, its halves are not
            "/dev/sdb1": ("Primary Partition", None, None, False, 0),
            "/dev/sdc1": ("Primary Partition", None, None, False, 0)})
        self.assertIn("md0 : active raid1", self.machine.text("mdstat"))

    def test_logical_drives_start_where_they_are_on_the_disk(self):
        starts = {device: part["start"] // 512 for device, part in self.partitions.items() if "hda" in device}
        self.assertEqual(starts, {"/dev/hda1": 63, "/dev/hda3": 262080, "/dev/hda4": 294848, "/dev/hda5": 294911,
                                  "/dev/hda6": 360510, "/dev/hda7": 401533})

    def test_space(self):
        # 100000 bytes are 49 clusters of 2 KiB; /mnt/exchange holds nothing else
        self.assertEqual(self.partitions["/dev/hda6"]["used_space"], 49 * 2048)
        self.assertEqual(self.partitions["/dev/hda7"]["total_space"], 0)

    def test_medium(self):
        self.assertEqual(self.fields(self.cdroms, "mount_point", "serial_number"),
                         {"/dev/hdc": ("/mnt/cd", "VMCD-0003")})
        # the medium's one file has 700 KiB
        self.assertGreaterEqual(self.cdroms["/dev/hdc"]["total_space"], 700 * 1024)


class Drives(Scenario, unittest.TestCase):
    """Two CD-ROM drives, one of them empty, one mounted by its alias; only the second disk is the system's."""

    name = "drives"

    def test_alias_and_empty_drive(self):
        self.assertIn("/dev/cdrom /mnt/cd iso9660", self.machine.text("mtab"))
        self.assertEqual(self.fields(self.cdroms, "model", "mount_point"), {
            "/dev/hdc": ("STORAGEVM DVD-ROM", "/mnt/cd"), "/dev/hdd": ("STORAGEVM EMPTY", None)})
        self.assertGreaterEqual(self.cdroms["/dev/hdc"]["total_space"], 700 * 1024)
        self.assertEqual(self.cdroms["/dev/hdd"]["total_space"], 0)

    def test_boot_marks_its_disk_and_what_lies_beneath_does_not(self):
        self.assertEqual(self.fields(self.disks, "used_by_system"),
                         {"/dev/hda": (False,), "/dev/hdb": (True,)})
        self.assertEqual(self.fields(self.partitions, "mount_point", "used_by_system"), {
            "/dev/hda1": ("/boot/efi", False), "/dev/hdb1": ("/boot", True)})

    def test_identity_texts(self):
        self.assertEqual(self.fields(self.disks, "model", "serial_number", "firmware_version"), {
            "/dev/hda": ("STORAGEVM FIRST", "VMIDE-A 7", "1"),
            # as long as IDENTIFY data has room for; the kernel keeps 39 characters of a model
            "/dev/hdb": ("STORAGEVM A MODEL OF FORTY CHARACTERS..", "12345678901234567890", "12345678")})


class Scsi(Scenario, unittest.TestCase):
    """Three adapters, a unit beyond 0, and /boot on an array."""

    name = "scsi"

    def test_addresses(self):
        self.assertEqual(self.fields(self.disks, "position"), {
            "/dev/sda": (0x00000100,), "/dev/sdb": (0x00000600,), "/dev/sdc": (0x01000200,),
            "/dev/sdd": (0x01000300,), "/dev/sde": (0x02000000,), "/dev/sdf": (0x02000002,)})

    def test_identity_texts(self):
        self.assertEqual(self.fields(self.disks, "vendor", "model", "firmware_version", "serial_number"), {
            "/dev/sda": ("ACME", "MIRROR 32", "A011", None),
            "/dev/sdb": ("ACME", "MIRROR 32", "A011", None),
            "/dev/sdc": (None, "LONE BRACKET", "1", None),
            "/dev/sdd": ("EIGHTCHR", "SIXTEEN CHARS...", "FOUR", None),
            "/dev/sde": ("A(B", "UNIT ZERO", "0.0", None),
            "/dev/sdf": ("ACME", "UNIT TWO", "0.2", None)})

    def test_array_marks_no_disk(self):
        self.assertIn("/dev/md0 /boot ext3", self.machine.text("mtab"))
        self.assertEqual([disk for disk in self.disks.values() if disk["used_by_system"]], [])
        self.assertEqual([part for part in self.partitions.values() if part["used_by_system"]], [])

    def test_scsi_drive_is_not_listed(self):
        self.assertIn("CD-ROM", self.machine.text("scsi"))
        self.assertEqual(self.answer["cdroms"], [])


class Full(Scenario, unittest.TestCase):
    """One disk more than the list holds."""

    name = "full"
    status = 1

    def test_sixteen_disks_and_a_failed_query(self):
        self.assertEqual(self.machine.text("scsi").count("Host: "), 17)
        self.assertEqual(len(self.answer["disks"]), 16)
        self.assertEqual(self.answer["partitions"], [])
        self.assertEqual(self.answer["failed"], ["partitions"])

    def test_disks_know_their_partitions(self):
        self.assertEqual({disk["part_number"] for disk in self.answer["disks"]}, {1})


class Chains(Scenario, unittest.TestCase):
    """Extended partitions with 1, 3, 22 and 40 logical drives; mounts that repeat, nest and hide each other."""

    name = "chains"

    def on(self, disk):
        return [part["part_index"] for part in self.partitions.values() if part["disk_device_name"] == disk]

    def test_indices(self):
        self.assertEqual(self.on("/dev/hda"), [1, 4])
        self.assertEqual(self.on("/dev/hdb"), [0, 1, 2, 3, 4, 5, 6])
        self.assertEqual(self.on("/dev/sda"), [0, *range(4, 26)])
        # the first 32 of 41
        self.assertEqual(self.on("/dev/sdb"), [0, *range(4, 35)])

    def test_counts(self):
        # hdb1 has 2 sectors: that is what an extended partition looks like to the disk record
        self.assertEqual(self.fields(self.disks, "part_number", "ex_part_number"), {
            "/dev/hda": (2, 1), "/dev/hdb": (7, 2), "/dev/sda": (23, 1), "/dev/sdb": (32, 1)})

    def test_types(self):
        types = {device: part["type"].split()[0] for device, part in self.partitions.items() if "hd" in device}
        self.assertEqual(types, {
            "/dev/hda2": "Extended", "/dev/hda5": "Logical", "/dev/hdb1": "Primary", "/dev/hdb2": "Dynamic",
            "/dev/hdb3": "Extended", "/dev/hdb4": "Primary", "/dev/hdb5": "Logical", "/dev/hdb6": "Logical",
            "/dev/hdb7": "Logical"})

    def test_mounts(self):
        mounted = {device: (part["mount_point"], part["file_system"], part["total_space"] > 0)
                   for device, part in self.partitions.items() if part["mount_point"]}
        sixty = "/mnt/" + 55 * "0"
        self.assertEqual(mounted, {
            "/dev/hdb4": ("/mnt/a;/mnt/b", "ext2", True),
            "/dev/sda5": ("/srv", None, False),
            "/dev/sda6": ("/srv/local", "ext2", True),
            "/dev/hda5": ("/mnt/hidden", None, False),
            "/dev/sda7": ("/mnt/hidden", "ext2", True),
            "/dev/sda8": ("/mnt/c;/mnt/d", "ext2", True),
            "/dev/sda9": ("/mnt/e", "ext2", True),
            "/dev/sda10": ("/mnt/e2", "ext2", True),
            "/dev/sda11": ("/mnt/with space", "ext2", True),
            "/dev/sda12": (sixty + "abc", "ext2", True),
            "/dev/sda13": (sixty + "...", "ext2", True)})


class Nothing(Scenario, unittest.TestCase):
    """A machine without any disk."""

    name = "nothing"

    def test_empty(self):
        self.assertEqual(self.answer, {"format": 1, "disks": [], "partitions": [], "cdroms": [], "failed": []})

    def test_table_says_so(self):
        for line in ("DISKS", "PARTITIONS", "CD-ROMS"):
            _, _, section = self.machine.text("table.txt").partition(line + "\n")
            self.assertRegex(section.split("\n")[0], r"^No .*\.$")


def find_kernel(source_dir):
    """The kernel image, or None.  A name in the environment that leads nowhere is a mistake, not a lack."""
    named = os.environ.get("DISKSCOUT_VM_KERNEL")
    if named:
        if not os.path.isfile(named):
            sys.exit(f"run.py: DISKSCOUT_VM_KERNEL names {named}, which is no file")
        return pathlib.Path(named).resolve()
    beside = source_dir.parent / "shared" / "vm" / "bzImage"
    return beside if beside.is_file() else None


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build-dir", type=pathlib.Path, required=True)
    parser.add_argument("--source-dir", type=pathlib.Path, required=True)
    parser.add_argument("--keep", type=pathlib.Path, help="keep images and answers in this new directory")
    options, rest = parser.parse_known_args()
    options.build_dir = options.build_dir.resolve()
    options.kernel = find_kernel(options.source_dir.resolve())
    scenario.Booted.options = options
    missing = machine.missing_programs()
    if not options.kernel:
        missing.append("a kernel image (DISKSCOUT_VM_KERNEL names it)")
    if missing:
        print("skipped: no virtual machine can be run here; missing: " + ", ".join(missing))
        return SKIPPED
    unittest.main(argv=[sys.argv[0], "--verbose", *rest])


if __name__ == "__main__":
    sys.exit(main())
