# SPDX-License-Identifier: Apache-2.0
"""A machine with the distribution's kernel: what of the distribution's programs it is given, and its answers.

A scenario is a directory below scenarios/:
  disks.sh    makes the disk images, in the functions of tests/vm/disk-lib.sh
  vm.conf     attaches them and names the kernel's modules: options of tests/vm/run-vm, one per line
  guest.sh    runs in the machine in the functions of stock-lib.sh: `prepare` makes devices and, where the root is to
              be on one of them, mounts it on /newroot; `mounts` runs in that root
"""

import pathlib
import shutil

import machine

HERE = pathlib.Path(__file__).resolve().parent
PROGRAMS = ("blkid", "btrfs", "cryptsetup", "dmsetup", "findmnt", "losetup", "lsblk", "lvm", "mdadm", "mke2fs",
            "mkswap", "setpriv", "sfdisk", "udevadm")
HOST_PROGRAMS = ("depmod", "fdisk", "mkfs.btrfs", "mkfs.xfs", "modprobe")
UDEV_HELPERS = ("ata_id", "cdrom_id", "scsi_id")
# Those of the packages that setup names: what else is installed here must not change an answer.
UDEV_RULES = ("01-md-raid-creating", "50-udev-default", "55-dm", "56-lvm", "60-block", "60-cdrom_id",
              "60-persistent-storage", "60-persistent-storage-dm", "63-md-raid-arrays", "64-btrfs", "95-dm-notify")
UDEV = pathlib.Path("/usr/lib/udev")
STAGES = ("udev-root", "udev-user", "bare-root", "bare-user")
OURS = ("block-json", "diskscout", "diskscout-block.so", "diskscout.so", "stcli")
OUR_QUERY = ("block", "./block-json ./diskscout-block.so")
CLASSIC_QUERY = ("classic", "./diskscout list --classic --format 1 --json")
# {answer: the kinds that are keys of it}
DOCUMENTS = {"list-json": ("devices", "links", "mounts", "disks", "partitions", "cdroms"),
             "named-json": ("devices", "filesystems", "arrays", "mounts")}
LIST_QUERY = ("list-json", "./diskscout list --json")
NAMED_QUERY = ("named-json", f"./diskscout list {' '.join(DOCUMENTS['named-json'])} --json")
TABLE_QUERIES = (("list", "./diskscout list"), ("names", "./diskscout list devices -o name --no-headings"))
EVERYWHERE = (("lsblk", "lsblk -J -b -O"), CLASSIC_QUERY, OUR_QUERY, LIST_QUERY, NAMED_QUERY)
# What each stage asks: a name for the answer, and the words as they stand in the machine. Beside a device that never
# answers the peers are not asked. A table shows what a document tells: two of them will do.
QUERIES = {
    "udev-root": EVERYWHERE + TABLE_QUERIES,
    "udev-user": EVERYWHERE,
    "hung-root": (OUR_QUERY, NAMED_QUERY),
    "hung-user": (OUR_QUERY, LIST_QUERY),
    "bare-root": EVERYWHERE,
    "bare-user": EVERYWHERE + TABLE_QUERIES,
}


def found(program):
    return shutil.which(program, path=machine.SEARCH_PATH)


def missing_programs():
    """What a run needs and this host lacks."""
    return machine.missing_programs() + [name for name in (*PROGRAMS, *HOST_PROGRAMS) if not found(name)]


class Machine(machine.Machine):
    """One boot of one scenario."""

    home = HERE
    capture = False  # whether the captured host is wanted as well

    def _fill(self, build_dir):
        for program in OURS:
            shutil.copy(build_dir / program, self.payload)
        (self.payload / "bin").mkdir()
        for program in PROGRAMS:
            shutil.copy(found(program), self.payload / "bin" / program)
        rules = self.payload / "udev" / "rules.d"
        rules.mkdir(parents=True)
        for name in UDEV_RULES:
            shutil.copy(UDEV / "rules.d" / f"{name}.rules", rules)
        for name in UDEV_HELPERS:
            shutil.copy(UDEV / name, rules.parent)
        (self.payload / "etc").mkdir()
        shutil.copy("/etc/mke2fs.conf", self.payload / "etc")
        shutil.copy(HERE / "guest-collect", self.payload / "collect")
        shutil.copy(HERE / "stock-lib.sh", self.payload)
        shutil.copy(self.scenario / "guest.sh", self.payload)
        if self.capture:
            shutil.copy(HERE / "capture-host", self.payload)
        (self.payload / "queries").mkdir()
        for stage, queries in QUERIES.items():
            (self.payload / "queries" / stage).write_text("".join(f"{name} {words}\n" for name, words in queries))

    def _options(self, kernel):
        return ["--memory", "768", "--kernel-tree", kernel]

    def answered(self, *names):
        """[(stage, name)] of those that were asked for."""
        return [(stage, name) for stage, queries in QUERIES.items() if (self.seen / stage).is_dir()
                for name, _ in queries if name in names]

    @property
    def names(self):
        """{role: the kernel's name}"""
        return dict(line.split() for line in self.lines("names"))
