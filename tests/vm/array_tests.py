# SPDX-License-Identifier: Apache-2.0
"""Software RAID: arrays in every state, their members' superblocks, the speed limits.

What mdstat must print is worked out from sysfs and from the arrays' own answers; only the order of the arrays and
the progress, which sysfs counts in another way, come from the kernel's table itself.
"""

import re
import struct
import unittest
import uuid

import expect
from command_texts import size_text
from scenario import Asked

LEVELS = {"linear": "l", "raid0": "0", "raid1": "1", "raid5": "5",
          "raid10": "1"}  # known by how the word begins
PLACES = 8  # members in a list
MAGIC = 0xa92b4efc
SUPERBLOCK = 4096
PROGRESS = re.compile(r"(resync|recovery)\s*=\s*(?:(\d+)\.(\d)%|DELAYED|PENDING)")
# "sde1" in the machine: where it starts, and how many of its sectors lie before its superblock
SCRATCH_START, SCRATCH_SUPERBLOCK = 2048, 3065 // 128 * 128 - 128


class Superblock:
    """The block's words, at the places that format 0.90 gives them."""

    def __init__(self, block):
        self.words = struct.unpack("<1024I", block)
        self.signed = struct.unpack("<1024i", block)
        self.identity = uuid.UUID(bytes=b"".join(block[4 * word:4 * word + 4] for word in (5, 13, 14, 15)))

    def member(self, first):
        number, major, minor, role, state = self.signed[first:first + 5]
        return f"number={number} raid_disk={role} {major:02X}:{minor:02X} ({major},{minor}) state={state}\n"

    def text(self):
        word = self.signed
        lines = [f"md{word[11]}: md_magic={self.words[0]:08X} csum={self.words[38]:08X}"
                 f" version={word[1]}.{word[2]}.{word[3]} valid={int(self.words[0] == MAGIC)}\n",
                 f"  level={word[7]} size={word[8]} chunk_size={word[65]} events=(hi-{word[40]},lo-{word[39]})\n",
                 "  disks: nr={} raid={} active={} working={} failed={} spare={}\n".format(*word[9:11], *word[34:38]),
                 f"  uuid: {self.identity}\n"]
        lines += [f"disk{number:2d}: " + self.member(128 + 32 * number) for number in range(27)]
        return "".join(lines) + "this: " + self.member(992)


class Array:
    """An array in a state of the machine, as sysfs and the array itself describe it."""

    def __init__(self, machine, state, name):
        self.facts = machine.attributes(state + "/arrays")[name]
        self.name = name
        self.members = {}  # role number: (name, slot, KiB, flags)
        rows = [line.split() for line in machine.lines(state + "/members")]
        names = {row[2]: row for row in rows if row[0] == name}
        for _, number, device, *_ in (line.split() for line in machine.lines(state + "/numbers")
                                      if line.split()[0] == name):
            self.members[int(number)] = names[device]
        if not self.started:  # such an array gives no numbers
            for row in names.values():
                self.members[Superblock(machine.binary("super/" + row[1])).words[992]] = row
        assert len(self.members) == len(names), (name, self.members, names)

    @property
    def started(self):
        return self.facts["array_state"] != "inactive"

    def listed(self):
        """Whether the list has words for it."""
        return (self.facts["array_state"] != "readonly" and self.facts["level"] in (*LEVELS, "")
                and max(self.members) < PLACES
                and all(re.fullmatch(r"hd[a-t]\d+|sd[a-z]\d+", row[1]) for row in self.members.values()))

    def status(self):
        """A letter for each place of an array that can lose members."""
        serving = {row[3] for row in self.members.values() if "in_sync" in row[5].split(",")}
        return "".join("U" if str(slot) in serving else "_" for slot in range(int(self.facts["raid_disks"])))

    def text(self, progress):
        faulty = [number for number, row in self.members.items() if "faulty" in row[5].split(",")]
        level, size, places, serving, status = "\0", 0, 0, 0, ""
        if not self.started:
            size = sum(int(row[4]) for row in self.members.values()) * 2
        elif self.facts["level"] in ("linear", "raid0"):
            places = serving = len(self.members)
        else:
            places = int(self.facts["raid_disks"])
            serving = places - int(self.facts["degraded"])
            status = self.status()
        if self.started:
            level, size = LEVELS[self.facts["level"]], int(self.facts["size"])
        kind, tenths = progress
        members = "".join(f" {row[1]}[{number}]{'(F)' if number in faulty else ''}"
                          for number, row in sorted(self.members.items()))
        return (f"{self.name}: {'active  ' if self.started else 'inactive'} {level} {size:10d} [{places}/{serving}]"
                f"(F{len(faulty)}) {status} {tenths // 10}.{tenths % 10}%{kind}\n"
                f"    subdev(num={max(self.members) + 1},num_real={len(self.members)}):{members}\n")


def progress_of(table):
    """{array: (type, tenths of a per cent)} of the kernel's table, in its order."""
    found = {}
    for paragraph in re.split(r"^(?=md)", table, flags=re.MULTILINE)[1:]:
        match = PROGRESS.search(paragraph)
        kind = 0 if not match else 1 if match[1] == "resync" else 2
        found[paragraph.split()[0]] = kind, int((match and match[2] or "0") + (match and match[3] or "0"))
    return found


class Arrays(Asked, unittest.TestCase):
    """Arrays of all levels: whole, without a member, with a failed one, resynchronised, waiting, not started."""

    name = "arrays"

    # ---- the table ----

    def assert_table(self, state, fails=False):
        progress = progress_of(self.machine.text(state + "/mdstat"))
        arrays = [Array(self.machine, state, name) for name in progress]
        self.assert_list("mdstat." + state, 16,
                         [array.text(progress[array.name]) for array in arrays if array.listed()], fails)

    def line(self, state, array):
        """What an array's item begins with, less the size."""
        for item in self.dump("mdstat." + state, 16)[0].values():
            if item.startswith(array + ":"):
                return re.sub(r" +\d+ \[", " [", item.split("\n")[0], count=1)
        return None

    def test_no_array(self):
        self.assert_list("mdstat.none", 16, [])

    def test_tables(self):
        for state in ("halted", "pending", "repaired"):
            # nothing moved while it was asked
            self.assertEqual(*(re.sub("finish=.*", "", self.machine.text(f"{state}/{name}"))
                               for name in ("mdstat", "mdstat.after")))
            self.assert_table(state)

    def test_states(self):
        for state, array, line in (
                ("halted", "md0", "md0: active   1 [2/2](F0) UU 0.0%0"),
                ("halted", "md1", "md1: active   5 [3/3](F0) UUU 0.0%0"),
                ("halted", "md2", "md2: active   0 [2/2](F0)  0.0%0"),
                ("halted", "md3", "md3: active   l [2/2](F0)  0.0%0"),
                ("halted", "md4", "md4: active   1 [2/1](F0) _U 0.0%0"),
                ("halted", "md5", "md5: active   5 [3/2](F1) U_U 0.0%0"),
                # 5120 of 12160 sectors and 7168 of as many, which the kernel counts in lots of 1024: 5 and 7 of 12
                ("halted", "md6", "md6: active   1 [2/2](F0) UU 41.6%1"),
                ("halted", "md7", "md7: active   1 [2/1](F0) U_ 58.3%2"),
                ("halted", "md8", "md8: inactive \0 [0/0](F0)  0.0%0"),
                ("halted", "md9", "md9: active   1 [2/2](F0) UU 0.0%0"),
                ("halted", "md127", "md127: active   1 [2/2](F0) UU 0.0%1"),  # waits for its turn
                ("pending", "md6", "md6: active   1 [2/2](F0) UU 0.0%1"),
                ("pending", "md127", "md127: active   1 [2/2](F0) UU 0.0%0"),
                ("repaired", "md4", "md4: active   1 [2/2](F0) UU 0.0%0"),
                ("repaired", "md5", "md5: active   5 [3/3](F0) UUU 0.0%0"),
                ("repaired", "md8", "md8: active   1 [2/2](F0) UU 0.0%0")):
            self.assertEqual(self.line(state, array), line, state)

    def test_members(self):
        body = self.body("mdstat.halted")
        for members in ("(num=2,num_real=2): hda1[0] sda1[1]\n",
                        "(num=2,num_real=1): sda5[1]\n",  # md4 misses the first
                        "(num=4,num_real=3): sda6[0] sdc6[2] sdb6[3](F)\n",  # a failed member keeps no place
                        "(num=3,num_real=2): sdc9[0] sdd9[2]\n",  # nor has one that is being made
                        "(num=3,num_real=3): sdc8[0] sdd8[1] sdd7[2]\n",  # a spare looks like any other
                        "(num=2,num_real=2): sda7[0] sdb7[1]\n"):
            self.assertIn("    subdev" + members, body)

    def test_progress_moves_slowly(self):
        before, after = (progress_of(self.machine.text(f"slow/{name}")) for name in ("mdstat", "mdstat.after"))
        told = dict(re.findall(r"^.*\] (md\d+): .* (\d+\.\d)%[12]$", self.body("mdstat.slow"), re.MULTILINE))
        for array, kind in (("md6", 1), ("md7", 2)):
            self.assertEqual((before[array][0], after[array][0]), (kind, kind))
            tenths = int(told[array].replace(".", ""))
            self.assertTrue(before[array][1] <= tenths <= after[array][1], (array, before, tenths, after))
        # at 25 KiB a second it was still under way when the limit was raised, and then went on to where it halts
        reached = [int(number) for number in self.machine.text("reached").split()]
        self.assertTrue(reached[0] < 5120 and reached[1] < 7168, reached)

    def test_arrays_without_words_are_left_out(self):
        self.assert_table("unusual", fails=True)
        left = set(progress_of(self.machine.text("unusual/mdstat"))) - {
            item.split(":")[0] for item in self.dump("mdstat.unusual", 16, fails=True)[0].values()}
        # read-only, level 6, a loop device, a ninth place
        self.assertEqual(left, {"md9", "md20", "md22", "md23"})

    # ---- speed limits ----

    def test_speed_limits(self):
        limits = {name: (int(low), int(high)) for name, low, high in
                  (line.split() for line in self.machine.lines("limits"))}
        start = limits["mdspeed.start"]
        self.assert_says("mdspeed.start", "mdspeed: ({}, {})\n".format(*start))
        self.assertEqual(limits, {
            "mdspeed.start": start, "mdspeed.default": (100, 10000), "mdspeed.max": (100, 100000),
            "mdspeed.both": (250, 4000), "mdspeed.crossed": (250, 4000), "mdspeed.upper": (250, 7000),
            "mdspeed.lower": (300, 7000), "mdspeed.one": (300, 7000), "mdspeed.word": (300, 7000),
            "mdspeed.wide": (200, 2147483647), "mdspeed.slow": (1, 25), "mdspeed.fast": (100, 100000)})
        self.assertNotIn(start, [(100, 10000), (100, 100000)])
        wrong = {"mdspeed.crossed", "mdspeed.one", "mdspeed.word"}
        self.assert_fails(*wrong)
        for name in set(limits) - wrong - {"mdspeed.start"}:
            self.assert_says(name, "")

    # ---- superblocks ----

    def test_superblocks(self):
        self.assertEqual(self.machine.text("super/changed"), "")
        blocks = [path for path in self.machine.seen.glob("super/*") if path.name != "changed"]
        self.assertGreater(len(blocks), 20)
        for path in blocks:
            self.assert_says("mdsb." + path.name, Superblock(path.read_bytes()).text())
        self.assertEqual(self.body("mdsb.sdb1"), Superblock(bytes(SUPERBLOCK)).text())
        self.assertIn("md0: md_magic=00000000 csum=00000000 version=0.0.0 valid=0\n", self.body("mdsb.sdb1"))
        self.assert_fails("mdsb.none", "mdsb.small")  # too small for one

    def test_superblocks_are_the_arrays(self):
        rows = [line.split() for line in self.machine.lines("halted/members")]
        for array, level, chunk in (("md0", 1, 0), ("md1", 5, 65536), ("md2", 0, 32768), ("md3", -1, 32768)):
            facts = self.machine.attributes("halted/arrays")[array]
            self.assertEqual((facts["metadata_version"], facts["chunk_size"]), ("0.90", str(chunk)))
            bodies = [self.body("mdsb." + row[1]) for row in rows if row[0] == array]
            self.assertEqual(len(bodies), int(facts["raid_disks"]))
            self.assertEqual(len({re.search("uuid: .*", body)[0] for body in bodies}), 1)
            for body in bodies:
                self.assertRegex(body, rf"^{array}: md_magic=A92B4EFC csum=[0-9A-F]{{8}} version=0\.90\.\d+ valid=1\n"
                                 rf"  level={level} size=\d+ chunk_size={chunk} ")
        self.assertIn("disk 0: number=0 raid_disk=0 03:01 (3,1) state=6\n"
                      "disk 1: number=1 raid_disk=1 08:01 (8,1) state=6\n", self.body("mdsb.hda1"))
        self.assertTrue(self.body("mdsb.hda1").endswith("this: number=0 raid_disk=0 03:01 (3,1) state=6\n"))
        # the first place is empty: its state is "removed", and with some kernels "faulty" too
        self.assertRegex(self.body("mdsb.sda5"), r"\ndisk 0: number=0 raid_disk=0 00:00 \(0,0\) state=[89]\n")

    def test_superblock_is_erased_and_nothing_else(self):
        before, after = (self.machine.binary("scratch." + when) for when in ("before", "after"))
        start = (SCRATCH_START + SCRATCH_SUPERBLOCK) * 512
        self.assertEqual(struct.unpack_from("<I", before, start)[0], MAGIC)
        self.assertEqual(len(after), len(before))
        self.assertTrue(after == before[:start] + bytes(SUPERBLOCK) + before[start + SUPERBLOCK:])
        self.assertNotIn(0, before[start - SUPERBLOCK:start] + before[start + SUPERBLOCK:start + 2 * SUPERBLOCK])
        self.assert_says("mdsb.clear", "")
        self.assert_says("mdsb.sde1", Superblock(before[start:start + SUPERBLOCK]).text())
        self.assert_says("mdsb.cleared", Superblock(bytes(SUPERBLOCK)).text())

    def test_what_cannot_be_erased(self):
        self.assert_fails("mdsb.clear.small", "mdsb.clear.none", "mdsb.clear.few")
        self.assertEqual(self.machine.text("scratch.changed"), "")

    # ---- arrays as devices ----

    def test_arrays_are_no_disks(self):
        disks = [item.split()[0] for item in self.dump("procblk", 32)[0].values()]
        self.assertEqual(sorted(disks), ["hda", "sda", "sdb", "sdc", "sdd", "sde"])
        # but md1 and its like look like partitions of "md"
        names = [line.split()[3] for line in self.machine.lines("partitions")[2:]]
        self.assertEqual([item.split("\t")[0] for item in self.dump("procblk.md0", 32)[0].values()],
                         [f"md {name[2:]} (9:{name[2:]})" for name in names
                          if expect.stem(name) == "md" and name != "md0"])

    def test_geometry_and_size(self):
        for name, size, heads, in_track in (line.split() for line in self.machine.lines("geometry")):
            cylinders = int(size) // (int(heads) * int(in_track))
            self.assert_says("hdgeo." + name, f"CHS({cylinders}, {heads}, {in_track}, 512)\n")
            self.assert_says("hdsize." + name, size_text(int(size)))
