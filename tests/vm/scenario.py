# SPDX-License-Identifier: Apache-2.0
"""What the test classes share: a machine that is booted once for all tests of a class, and stcli's answers there."""

import pathlib
import re
import tempfile

import machine

GREETING = "stcli: Hello world!\n"
ENDINGS = {False: "stcli: Ok!\n", True: "stcli error: operation failed.\n"}
HEAD = re.compile(r"\*{58}\nnum=(\d+), num_real=(\d+), lmt=(\d+), parent=([0-9a-f]{8}), this=([0-9a-f]{8})\n")
ITEM = re.compile(r"^\[\*(\d+) 1  ([0-9a-f]{8})\*\] ", re.MULTILINE)


class Booted:
    """One boot of the scenario that the class names."""

    maxDiff = None
    name = None
    options = None  # of the command line
    kind = machine.Machine

    @classmethod
    def setUpClass(cls):
        if cls.options.keep:
            work = cls.options.keep / cls.name
            work.mkdir(parents=True)
        else:
            directory = tempfile.TemporaryDirectory(prefix="diskscout-vm.")
            cls.addClassCleanup(directory.cleanup)
            work = pathlib.Path(directory.name)
        cls.machine = cls.kind(cls.name, cls.options.build_dir, cls.options.kernel, work)

    def assert_nothing_changed(self):
        for name in ("files", "nodes", "node-times", "mounts", "written"):
            self.assertEqual(self.machine.text("before/" + name), self.machine.text("after/" + name), name)
        for before, after in zip(*(self.machine.lines(f"{when}/space") for when in ("before", "after")),
                                 strict=True):
            if not before.endswith(" /run"):  # where the collector writes
                self.assertEqual(before, after)


class Asked(Booted):
    """A machine in which the diagnostic command line was asked."""

    def body(self, name, fails=False):
        """What a command printed between the greeting and the closing message."""
        told = self.machine.text(name + ".err")
        self.assertEqual((self.machine.text(name + ".status"), self.machine.text(name + ".out")),
                         (f"{int(fails)}\n", ""), f"{name}: {told}")
        self.assertTrue(told.startswith(GREETING) and told.endswith(ENDINGS[fails]), f"{name}: {told}")
        return told[len(GREETING):-len(ENDINGS[fails])]

    def assert_says(self, name, text, fails=False):
        self.assertEqual(self.body(name, fails), text, name)

    def assert_fails(self, *names):
        """A failure that prints nothing of its own."""
        for name in names:
            self.assert_says(name, "", fails=True)

    def dump(self, name, limit, fails=False):
        """The items of a printed list, {slot: text}, and the list's own two counts."""
        body = self.body(name, fails)
        head = HEAD.match(body)
        self.assertTrue(head, f"{name}: {body}")
        self.assertEqual((head[3], head[4]), (str(limit), "00000000"), name)
        rest, *pieces = ITEM.split(body[head.end():])
        self.assertEqual(rest, "", name)
        self.assertEqual(set(pieces[1::3]) - {head[5]}, set(), f"{name}: an item belongs to another list")
        return dict(zip(map(int, pieces[0::3]), pieces[2::3])), (int(head[1]), int(head[2]))

    def assert_list(self, name, limit, items, fails=False):
        """A list without holes, of these items in this order."""
        found, counts = self.dump(name, limit, fails)
        self.assertEqual(list(found.items()), list(enumerate(items)), name)
        self.assertEqual(counts, (len(items), len(items)), name)


def low_32(number):
    """What is left of a wide number in a conversion for an int."""
    number &= 0xffffffff
    return number - (1 << 32) if number & 0x80000000 else number
