#!/usr/bin/env python3
"""diskscout in virtual machines with the distribution's own kernel.

usage: run.py --build-dir DIR --source-dir DIR [--keep DIR] [--capture] [unittest options and test names]

Each test class is one scenario, booted once.  Exit status 77: this host cannot run the machines.
"""

import argparse
import pathlib
import sys
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(1, str(HERE.parent / "vm"))

import scenario  # noqa: E402
import stock_machine  # noqa: E402

SKIPPED = 77


class Stock(scenario.Booted):
    """What holds in every machine."""

    kind = stock_machine.Machine
    left_out = ()  # roles whose devices lsblk does not list

    def test_peers_answer(self):
        for stage in stock_machine.STAGES:
            self.assertEqual(self.machine.text(f"{stage}/lsblk.status"), "0\n", stage)
            listed = self.machine.listed(stage)
            for role, name in self.machine.names.items():
                # the peer leaves out what has no size, and the paths of a head
                if role not in self.left_out:
                    self.assertIn(name, listed, (stage, role))


class Desktop(Stock, unittest.TestCase):
    """Disks of every transport, partition tables, file systems and mount points of all kinds; root on a SATA disk."""

    name = "desktop"
    left_out = ("unused", "left", "right")


class Arrays(Stock, unittest.TestCase):
    """Software RAID of every level and in every state, on more than 32 disks."""

    name = "arrays"


class Mappings(Stock, unittest.TestCase):
    """Root on LVM on LUKS on a mirror on partitions; multipath, and the device mapper's other uses."""

    name = "mappings"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build-dir", type=pathlib.Path, required=True)
    parser.add_argument("--source-dir", type=pathlib.Path, required=True)
    parser.add_argument("--keep", type=pathlib.Path, help="keep images and answers in this new directory")
    parser.add_argument("--capture", action="store_true", help="bring a captured host back as well")
    options, rest = parser.parse_known_args()
    options.build_dir = options.build_dir.resolve()
    options.kernel = options.source_dir.resolve() / "build" / "stock-kernel"
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
