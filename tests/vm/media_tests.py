# SPDX-License-Identifier: Apache-2.0
"""Drives without a medium, and a removable disk that loses its own: nothing that nobody measured is told of them."""

import unittest

from command_texts import size_text
from scenario import Asked

EMPTY = ("hdc", "sr0", "sdb")


class Media(Asked, unittest.TestCase):
    """An empty IDE drive, an empty SCSI drive, two SCSI disks, one of them removable."""

    name = "media"

    def inventory(self, name):
        self.assertEqual((self.machine.text(name + ".status"), self.machine.text(name + ".err")), ("0\n", ""))
        document = self.machine.document(name + ".json")
        # the kernel looks at disks side by side, so that their order is not ours to say
        return (sorted(disk["device_name"] for disk in document["disks"]),
                sorted(part["disk_device_name"] for part in document["partitions"]))

    def test_disks_with_their_media(self):
        self.assertEqual(self.inventory("full"), (["/dev/sda", "/dev/sdb"],) * 2)
        self.assert_says("hdsize.full", size_text(8 * 2048))

    def test_disk_without_its_medium_leaves_the_list(self):
        # the table still names it: that it is empty shows when it is opened
        self.assertIn("sdb\n", self.machine.text("partitions"))
        self.assertEqual(self.inventory("empty"), (["/dev/sda"],) * 2)

    def test_nothing_is_measured(self):
        for node in EMPTY:
            self.assert_says("hdsize." + node, "0\n0  \n0 MB\n0 GB\n", fails=True)
            self.assert_says("hdgeo." + node, "CHS(0, 0, 0, 0)\n", fails=True)

    def test_nothing_is_asked(self):
        self.assert_fails(*(f"{command}.{node}" for node in EMPTY for command in ("idlun", "scsisn", "mbr")))
        for node in EMPTY:
            self.assert_list("part." + node, 32, [], fails=True)
