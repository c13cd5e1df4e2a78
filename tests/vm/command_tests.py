# SPDX-License-Identifier: Apache-2.0
"""The commands that look at devices and tables, and those that make directories and nodes and detach devices."""

import re
import unittest

import expect
from command_texts import partition_text, scsi_text, sector_text, size_text, table_text, trimmed
from scenario import Asked, low_32

DISKS = ("hda", "sda", "sdb", "sdc", "sdd")
NODES = ("hda", "hda1", "hda3", "hda4", "hda5", "hda6", "hda7", "hdc", "sda", "sda1", "sdb", "sdc", "sdd", "sde",
         "sde2", "sr0")


class Commands(Asked, unittest.TestCase):
    """IDE and SCSI disks, logical drives, three adapters, units beyond 0, odd sizes and a very large disk."""

    name = "commands"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.nodes = cls.machine.attributes("nodes")
        cls.blocks = cls.machine.attributes("blocks")
        cls.mounts = [expect.Mount(line) for line in cls.machine.lines("mtab")]

    def sectors(self, node):
        return int(self.nodes[node]["size"])

    def image(self, disk):
        return self.machine.image_of(disk, self.blocks[disk]["address"])

    def sector(self, disk, number):
        """A sector of the image; None beyond its end."""
        with open(self.image(disk), "rb") as image:
            image.seek(number * 512)
            return image.read(512) or None

    # ---- devices ----

    def test_geometry(self):
        for node in NODES:
            cylinders, heads, in_track = expect.geometry(self.nodes[node])
            known = heads * in_track > 0
            self.assert_says("hdgeo." + node, f"CHS({cylinders}, {heads}, {in_track}, {512 if known else 0})\n",
                             fails=not known)
        self.assert_says("hdgeo.none", "CHS(0, 0, 0, 0)\n", fails=True)
        # 131072 sectors hold 8 cylinders of 255 * 63 sectors; drives have none
        self.assert_says("hdgeo.hda", "CHS(8, 255, 63, 512)\n")
        self.assertEqual([node for node in NODES if self.nodes[node]["geometry"] == "-"], ["hdc", "sr0"])

    def test_size(self):
        for node in NODES:
            self.assert_says("hdsize." + node, size_text(self.sectors(node)))
        self.assert_says("hdsize.none", "0\n0  \n0 MB\n0 GB\n", fails=True)
        self.assert_says("hdsize.hda1", "20481\n10240 +\n10 MB\n0 GB\n")
        self.assert_says("hdsize.sdc", "2055\n1027 +\n1 MB\n0 GB\n")
        # 3221225472 sectors, less 2^32
        self.assert_says("hdsize.sdb", "-1073741824\n1610612736  \n1572864 MB\n1536 GB\n")

    def test_address(self):
        for node in NODES:
            disk = node if node in self.blocks else expect.stem(node)
            if disk.startswith("hd"):
                continue
            numbers = self.blocks[disk]["address"].replace(":", ", ")
            self.assert_says("idlun." + node, f"IDLUN({numbers})\n")
        self.assert_says("idlun.sde2", "IDLUN(2, 0, 0, 2)\n")
        # an IDE drive takes packets and has this request; an IDE disk has not
        self.assert_says("idlun.hdc", "IDLUN(0, 0, 0, 0)\n")
        self.assert_fails("idlun.hda", "idlun.hda1", "idlun.none")

    def test_serial_number(self):
        for line in self.machine.lines("scsi.start"):
            disk, page = line.split("|")[5], bytes.fromhex(line.split("|")[6])
            self.assertGreater(page[3], 0, disk)
            self.assert_says("scsisn." + disk, f"sn = {trimmed(page[4:4 + page[3]].decode())}\n")
        self.assert_says("scsisn.sda1", self.body("scsisn.sda"))
        self.assert_says("scsisn.sdb", "sn = BLANKS AROUND\n")
        self.assert_says("scsisn.sdc", "sn = CUT HERE\n")
        self.assert_says("scsisn.sdd", "sn = 123456789012345678901234567890123456\n")
        self.assert_fails("scsisn.hda", "scsisn.none")

    # ---- sectors ----

    def test_table_sectors(self):
        for disk in DISKS:
            self.assert_says("mbr." + disk, table_text("/dev/" + disk, 0, self.sector(disk, 0)))
        self.assert_fails("mbr.none")
        self.assertIn("magic = 0x55, 0xaa\n0 active=0x80 type=0x83 start=63(", self.body("mbr.hda"))
        self.assertIn(" size=20481\n1 active=0x00 type=0x00 start=0(0,0,0) end=(0,0,0) size=0\n2 ",
                      self.body("mbr.hda"))

    def test_sectors(self):
        beyond = []
        asked = [name.name.removeprefix("sector.").removesuffix(".err").split(".")
                 for name in self.machine.seen.glob("sector.*.err")]
        for disk, word in asked:
            sector = self.sector(disk, int(word)) if 0 <= int(word) < self.sectors(disk) else None
            if sector is None:
                beyond.append((disk, word))
                self.assert_fails(f"sector.{disk}.{word}", f"parttab.{disk}.{word}")
            else:
                self.assert_says(f"sector.{disk}.{word}", sector_text(sector))
                self.assert_says(f"parttab.{disk}.{word}", table_text("/dev/" + disk, word, sector))
        self.assertEqual(len(asked), 11)
        self.assertEqual(len(beyond), 5, beyond)
        self.assertTrue(self.body("sector.sdc.0").startswith("0x0000    31 0A 32 0A   33 0A 34 0A   35 0A 36 0A"))

    def test_partitions_of_a_disk(self):
        for disk in DISKS:
            image = self.image(disk)
            self.assert_list("part." + disk, 32, [
                partition_text(entry, int(entry["node"].removeprefix(str(image))))
                for entry in expect.partition_table(image)])
        self.assertEqual(len(self.dump("part.hda", 32)[0]), 6)
        self.assertEqual(self.dump("part.hda", 32)[0][3],
                         "index=4 type=83 active=128 (start,size)=(32831,20480)\n")
        self.assert_list("part.none", 32, [], fails=True)

    # ---- tables ----

    def test_volume_space(self):
        self.assertEqual(self.machine.text("space"), self.machine.text("space.after"))
        for line in self.machine.lines("space"):
            path, blocks, unused, unit = line.split()
            pairs = [(int(unused) * int(unit) // 512 >> shift, int(blocks) * int(unit) // 512 >> shift)
                     for shift in (0, 1, 11, 21)]
            self.assert_says("volspace" + path.replace("/", "."), "(free/total)s\n" + "".join(
                f" ({free}/{total}){name}\n" for (free, total), name in zip(pairs, ("", "KB", "MB", "GB"))))
        self.assert_says("volspace.proc", "(free/total)s\n (0/0)\n (0/0)KB\n (0/0)MB\n (0/0)GB\n")
        self.assert_fails("volspace.none")

    def test_mounts(self):
        for name, wanted in (("mtab", lambda mount: True),
                             ("mtab.dev", lambda mount: mount.device.startswith("/dev/")),
                             ("mtab.mnt", lambda mount: mount.point.startswith("/mnt/"))):
            self.assert_list(name, 32, [f"dev={mount.device} mnt={mount.point} fs={mount.type}\n"
                                        for mount in self.mounts if wanted(mount)])
        self.assertIn("dev=scratch mnt=/mnt/with space fs=tmpfs\n", self.dump("mtab.mnt", 32)[0].values())

    def block_text(self, node):
        number = node.removeprefix(expect.stem(node))
        size = low_32(self.sectors(node) // 2 * 2)  # the table counts in KiB
        return f"{expect.stem(node)} {number or 0} ({self.nodes[node]['dev']})\t{size:9d} {' 0' * 11}\n"

    def test_block_devices(self):
        names = [line.split()[3] for line in self.machine.lines("partitions")[2:]]
        self.assert_list("procblk", 32, [self.block_text(node) for node in names
                                         if re.fullmatch("hd[a-t]|sd[a-z]", node)])
        for disk in ("hda", "sda", "sde", "sr0"):
            self.assert_list("procblk." + disk, 32, [self.block_text(node) for node in names
                                                     if node != disk and expect.stem(node) == disk])
        self.assertIn("sdb 0 (8:16)\t-1073741824  0", self.body("procblk"))

    def test_ide_drives(self):
        drives = []
        for name, block in sorted(self.blocks.items()):
            if name.startswith("hd"):
                texts = expect.ide_texts(block)
                drives.append(f"{name} {block['media']} {texts['model']}\n"
                              f"\t\t{texts['serial_number']} {texts['firmware_version']}\n")
        self.assert_list("procide", 8, drives)
        self.assertEqual(drives[0], "hda disk STORAGEVM FIRST\n\t\tVMIDE-A 7 1.04a\n")

    def test_adapters(self):
        self.assert_list("procscsihost", 4, ["0 sym53c8xx\n", "1 sym53c8xx\n"])
        # 0 and 1 as above; 2 has no directory, 4 no place; what stands behind a hole is not shown
        adapters = self.machine.attributes("adapters")
        self.assertEqual([adapters[str(number)]["driver"] for number in (0, 1, 3, 4)],
                         ["sym53c8xx", "sym53c8xx", "scsi_debug", "scsi_debug"])
        self.assertEqual(self.dump("procscsihost.full", 4, fails=True),
                         ({0: "0 sym53c8xx\n", 1: "1 sym53c8xx\n"}, (4, 3)))

    def test_uptime(self):
        seconds = re.fullmatch(r"uptime (\d+)\n", self.body("uptime"))
        before, after = (float(line.split()[0]) for line in self.machine.lines("seconds"))
        self.assertTrue(int(before) <= int(seconds[1]) <= int(after), (before, seconds[0], after))

    def test_reading_changes_nothing(self):
        self.assert_nothing_changed()

    # ---- what is made ----

    def test_directories_and_nodes(self):
        for name in ("mkdir", "mkdir.again", "mkdir.here", "mkdir.slash", "mkdir.open", "mkdev.open", "mkdev.hex",
                     "mkdev.over", "mkdev.decimal", "mkdev.masked", "exec", "exec.silent"):
            self.assert_says(name, "")
        self.assert_fails("mkdir.file", "mkdir.below", "mkdev.short", "mkdev.word", "mkdev.nowhere", "exec.false",
                          "exec.killed")
        made = dict(line.split("|", 1) for line in self.machine.lines("made/list"))
        directory, node = "directory|{}|0|0", "block special file|{}|{}"
        self.assertEqual(made, {
            **{name: directory.format(755) for name in (".", "./a", "./a/b", "./a/b/c", "./d", "./here",
                                                        "./here/below")},
            "./open": directory.format(777), "./open/wide": directory.format(777),
            "./file": "regular file|644|0|0", "./executed": "regular file|644|0|0",
            "./over": node.format(755, "5a|ff"), "./node-open": node.format(777, "8|1"),
            **{name: node.format(755, "8|1") for name in ("./node-hex", "./node-decimal", "./node-masked")}})
        self.assertEqual(self.machine.text("made/reference"), "block special file|644|8|1\n")
        self.assertEqual(self.machine.text("made/texts"), "kept\nkept\n")

    def test_nodes_lead_to_the_disk(self):
        self.assertEqual(len(set(self.machine.lines("made/sums"))), 1)
        self.assert_says("hdsize.made", self.body("hdsize.sda1"))

    # ---- SCSI devices go and come ----

    def scsi(self, state):
        return self.machine.lines("scsi." + state)

    def disk_names(self, state):
        return {line.split()[3] for line in self.machine.lines("partitions." + state)[2:]}

    def test_scsi_devices(self):
        for state in ("start", "removed", "added", "unit-removed", "wrong", "shuffled.1", "shuffled.2",
                      "shuffled.3", "full"):
            items, counts = self.dump("procscsi." + state, 32)
            self.assertEqual(sorted(items.values()), sorted(map(scsi_text, self.scsi(state))), state)
            self.assertEqual(counts, (len(items), len(items)))
        self.assertIn("(2, 0, 0, 0) A(B UNIT ZERO 0.0 Direct-Access\n", self.dump("procscsi.start", 32)[0].values())
        self.assertEqual((len(self.scsi("start")), len(self.scsi("full"))), (6, 8))

    def test_devices_go_and_come_back(self):
        for command in ("scsiremove", "scsiadd", "scsiremove.unit", "scsiadd.unit"):
            self.assert_says(command, "")
        for state, address, disk in (("removed", "1:0:2:0", "sdc"), ("unit-removed", "2:0:0:2", "sde")):
            gone = [line for line in self.scsi("start") if line.startswith(address + "|")]
            self.assertEqual(gone[0].split("|")[5], disk)
            self.assertEqual(self.scsi(state), [line for line in self.scsi("start") if line not in gone])
            self.assertEqual(self.disk_names("start") - self.disk_names(state),
                             {name for name in self.disk_names("start") if name.startswith(disk)})
        self.assertEqual(self.scsi("added"), self.scsi("start"))
        self.assertEqual(self.disk_names("added"), self.disk_names("start"))

    def test_wrong_addresses_do_nothing(self):
        self.assert_says("scsiadd.nothing", "")  # the kernel is content to find nothing
        self.assert_fails("scsiremove.again", "scsiadd.host", "scsiremove.wide", "scsiremove.word", "scsiremove.few")
        self.assertEqual(self.scsi("wrong"), self.scsi("start"))
        self.assertEqual(self.disk_names("wrong"), self.disk_names("start"))

    def test_shuffle_loses_nothing(self):
        def without_disk(state):
            return [line.split("|")[:5] + line.split("|")[6:] for line in self.scsi(state)]

        orders = {tuple(self.dump("procscsi.wrong", 32)[0].values())}
        for round_number in (1, 2, 3):
            state = f"shuffled.{round_number}"
            self.assert_says(f"shuffle.{round_number}", "")
            self.assertEqual(without_disk(state), without_disk("start"))
            self.assertEqual({line.split("|")[5] for line in self.scsi(state)},
                             {line.split("|")[5] for line in self.scsi("start")})
            orders.add(tuple(self.dump("procscsi." + state, 32)[0].values()))
        # the odds that six devices keep their order three times are 1 to 373 million
        self.assertGreater(len(orders), 1)
