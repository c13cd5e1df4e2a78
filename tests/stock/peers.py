# SPDX-License-Identifier: Apache-2.0
"""Where our answer and a peer's differ, and which of these differences we know.

A field that the peer leaves open is no difference: what it should have been is in the scenario's own text.  Each row
is told in docs/block.md under its name, and says in which scenarios it must be met: one that is met nowhere has no
place there.
"""

from typing import Callable, NamedTuple

import answers


class Known(NamedTuple):
    name: str
    scenarios: tuple
    fields: str
    explains: Callable  # of our device, our value and the peer's

    def holds(self, field, device, ours, theirs):
        return field in self.fields.split() and self.explains(device, ours, theirs)


def _lines_of(ours, theirs):
    return {line for point in ours for line in point.split("\n")} == theirs


KNOWN = (
    Known("vendor", ("desktop", "mappings"), "vendor",
          lambda device, ours, theirs: ours is None and (device["transport"], theirs) in (
              ("sata", "ATA"), ("virtio", "0x1af4"))),
    Known("model cut", ("desktop",), "model",
          lambda device, ours, theirs: len(ours) > 16 and theirs == ours[:16].strip()),
    Known("model of an optical drive", ("desktop",), "model",
          lambda device, ours, theirs: device["kind"] == "rom" and ours == "QEMU DVD-ROM"
          and theirs in ("ACME DVD-ROM", "ACME EMPTY")),
    Known("firmware cut", ("desktop",), "firmware",
          lambda device, ours, theirs: device["transport"] == "sata" and len(ours) > 4 and ours.endswith(theirs)),
    Known("serial number with blanks", ("desktop",), "serial",
          lambda device, ours, theirs: " " in ours and theirs == ours.replace(" ", "_")),
    Known("serial number of a bridge", ("desktop",), "serial",
          lambda device, ours, theirs: device["transport"] == "usb" and (ours, theirs) == ("UASDISK1", "BRIDGE7")),
    Known("world-wide name of a partition", ("desktop", "mappings"), "wwn",
          lambda device, ours, theirs: device["kind"] == "partition" and ours is None),
    Known("kind of zram", ("desktop",), "kind", lambda device, ours, theirs: (ours, theirs) == ("zram", "disk")),
    Known("size of an empty drive", ("desktop",), "size",
          lambda device, ours, theirs: device["kind"] == "rom" and (ours, theirs) == (0, 1073741312)),
    Known("entry of a partition that is a mapping", ("mappings",), "part_number part_type part_uuid part_label",
          lambda device, ours, theirs: device["dm_kind"] == "partition" and ours is None),
    Known("mount point of two lines", ("desktop",), "mounts",
          lambda device, ours, theirs: ours != theirs and _lines_of(ours, theirs)),
)
# Devices that lsblk leaves out.
UNLISTED = (
    Known("paths of a head", ("desktop",), "kind", lambda device, ours, theirs: ours == "path"),
    Known("unused loop devices", ("desktop",), "size",
          lambda device, ours, theirs: device["kind"] == "loop" and ours == 0),
)


# Told in the same table, and compared where the arrays are: (array, field), what we tell, and what mdadm does.
NOT_STARTED = "array that is not started"
KNOWN_OF_MDADM = {("md30", "wanted"): (None, 1), ("md30", "uuid"): (None, "c0000000:00004000:80000000:00000030")}


class Comparison:
    """Differences of one scenario, in all its stages: those that nobody explains, and the rows that explained some."""

    def __init__(self):
        self.unexplained = []
        self.met = set()

    def devices(self, where, ours, theirs):
        """Field by field, of the devices that both have."""
        for name in sorted(set(ours) & set(theirs)):
            for field, value in theirs[name].items():
                told = ours[name].get(field)
                if value is not None and value != set() and told != value:
                    self._judge(KNOWN, where, name, field, ours[name], told, value)

    def unlisted(self, where, ours, theirs):
        """The devices that only we have, or only the peer."""
        for name in sorted(set(ours) - set(theirs)):
            rows = [row for row in UNLISTED if row.explains(ours[name], ours[name][row.fields], None)]
            self.met |= {row.name for row in rows}
            if not rows:
                self.unexplained.append((where, name, "only ours"))
        self.unexplained += [(where, name, "only theirs") for name in sorted(set(theirs) - set(ours))]

    def _judge(self, rows, where, name, field, device, told, value):
        rows = [row for row in rows if row.holds(field, device, told, value)]
        self.met |= {row.name for row in rows}
        if not rows:
            self.unexplained.append((where, name, field, told, value))


def compare(machine, stages):
    """Our answers of all stages with those of lsblk in the same stage, and of the peers that were asked once."""
    found = Comparison()
    blkid, sfdisk = answers.blkid(machine), answers.sfdisk(machine)
    for stage in stages:
        ours, lsblk = answers.ours(machine, stage), answers.lsblk(machine, stage)
        found.unlisted(f"{stage} lsblk", ours, lsblk)
        found.devices(f"{stage} lsblk", ours, lsblk)
        if stage.endswith("root"):
            found.devices(f"{stage} blkid", ours, blkid)
            found.devices(f"{stage} sfdisk", ours, sfdisk)
    return found


def all_names():
    return {row.name for row in (*KNOWN, *UNLISTED)} | {NOT_STARTED}


def names_for(scenario):
    """The rows that this scenario has to meet."""
    return {row.name for row in (*KNOWN, *UNLISTED) if scenario in row.scenarios}
