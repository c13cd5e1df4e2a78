#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""unfold.py HOSTS INTO [NAME]...: captured hosts below HOSTS as directories below INTO that replay can show.

Every one, or those that are named.

A host is a directory with a host.txt.  What lies in it is taken as it is; tree.txt, where there is one, tells
more files in short, because a sysfs has hundreds of one word each:

    let port /sys/devices/pci0000:00/0000:00:17.0/ata1
    $port/link1/ata_link/link1            a folder; what follows indented lies in it
        sata_spd = 6.0 Gbps               a file of that text and a newline
        cid bytes 00ff "text"             a file of these bytes
        vpd_pg80 page 80 "SERIAL"         a page of vital product data: its code and what it holds
        vpd_pg89 ata MODEL|SERIAL|REV     the page with what an ATA disk identifies itself as
        slaves/                           an empty folder
        device -> ../../../0:0:0:0        a link
        ro -                              not there after all
    block $port/host0/target0:0:0/0:0:0:0/block/sda 8:0 2048 disk PARTN=1
        size = 4096

A text may hold \\n, \\\\ and \\xHH; so may what is named.  `block` is the folder of a device with its number
("-" for none), its sectors and its type: uevent (with the lines behind the type), dev, size, ro, hidden,
removable, the three attributes of its queue, and the class's link to it.  `udev bNUMBER` is a file of udev's
database, its lines follow indented; what it names as a link below /dev leads to the device, unless the tree has
another one there.
"""

import pathlib
import re
import shutil
import sys

DISK = {
    "removable": "0",
    "hidden": "0",
    "queue/rotational": "0",
    "queue/logical_block_size": "512",
    "queue/physical_block_size": "512",
}


def unescaped(text):
    plain = text.encode("utf-8", "surrogateescape")
    return re.sub(rb"\\(?:x([0-9a-f]{2})|(n)|(\\))",
                  lambda found: bytes([int(found.group(1), 16)]) if found.group(1)
                  else b"\n" if found.group(2) else b"\\", plain)


def as_bytes(words):
    """Hexadecimal digits and "texts"."""
    return b"".join(unescaped(text) if text else bytes.fromhex(digits)
                    for text, digits in re.findall(r'"([^"]*)"|([0-9a-f ]+)', words))


def page(code, content):
    return bytes.fromhex("00" + code) + len(content).to_bytes(2, "big") + content


def ata_information(model, serial, revision):
    """Texts of IDENTIFY data are words of two characters, the second one first."""
    def swapped(text, size):
        plain = text.encode("utf-8", "surrogateescape").ljust(size)
        return bytes(plain[at ^ 1] for at in range(size))

    identify = bytearray(512)
    identify[20:40] = swapped(serial, 20)
    identify[46:54] = swapped(revision, 8)
    identify[54:94] = swapped(model, 40)
    return bytes(4) + b"linux   libata          0001" + bytes(24) + bytes(identify)


class Tree:
    def __init__(self, top):
        self.top = pathlib.Path(top)
        self.names = {}
        self.folder = None
        self.record = None
        self.nodes = {}

    def path(self, name):
        whole = re.sub(r"^\$(\w+)", lambda found: self.names[found.group(1)], name)
        relative = (whole if whole.startswith("/") else f"{self.folder}/{whole}").lstrip("/")
        return self.top / pathlib.Path(unescaped(relative).decode("utf-8", "surrogateescape"))

    def put(self, name, content):
        path = self.path(name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)

    def enter(self, name):
        self.record = None
        self.folder = None
        self.folder = "/" + str(self.path(name).relative_to(self.top))
        self.path(".").mkdir(parents=True, exist_ok=True)

    def block(self, words):
        path, number, sectors, kind, *more = words
        self.enter(path)
        name = self.folder.rsplit("/", 1)[1]
        self.nodes[number] = name.replace("!", "/")
        if not any(word.startswith("DEVNAME=") for word in more):
            more = ["DEVNAME=" + name.replace("!", "/")] + more
        lines = [f"DEVTYPE={kind}", *more]
        if number != "-":
            major, minor = number.split(":")
            lines = [f"MAJOR={major}", f"MINOR={minor}", *lines]
            self.put("dev", number.encode() + b"\n")
        self.put("uevent", b"".join(unescaped(line) + b"\n" for line in lines))
        self.put("size", sectors.encode() + b"\n")
        self.put("ro", b"0\n")
        if kind == "disk":
            for attribute, value in DISK.items():
                self.put(attribute, value.encode() + b"\n")
        self.symlink(f"/sys/class/block/{name}", "../../" + self.folder.removeprefix("/sys/"))

    def symlink(self, name, target):
        path = self.path(name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.symlink_to(unescaped(target).decode("utf-8", "surrogateescape"))

    def inside(self, line):
        if self.record is not None:
            with open(self.record, "ab") as record:
                record.write(unescaped(line) + b"\n")
        elif found := re.fullmatch(r"(\S+) = ?(.*)", line):
            self.put(found.group(1), unescaped(found.group(2)) + b"\n")
        elif found := re.fullmatch(r"(\S+) bytes (.*)", line):
            self.put(found.group(1), as_bytes(found.group(2)))
        elif found := re.fullmatch(r"(\S+) page (..) (.*)", line):
            self.put(found.group(1), page(found.group(2), as_bytes(found.group(3))))
        elif found := re.fullmatch(r"(\S+) ata (.*)\|(.*)\|(.*)", line):
            self.put(found.group(1), page("89", ata_information(*found.groups()[1:])))
        elif found := re.fullmatch(r"(\S+) -> (.*)", line):
            self.symlink(*found.groups())
        elif found := re.fullmatch(r"(\S+) -", line):
            gone = self.path(found.group(1))
            shutil.rmtree(gone) if gone.is_dir() else gone.unlink()
        elif line.endswith("/"):
            self.path(line).mkdir(parents=True)
        else:
            raise ValueError(line)

    def outside(self, line):
        words = line.split(" ")
        if words[0] == "let":
            self.names[words[1]] = str(self.path(words[2])).removeprefix(str(self.top))
        elif words[0] == "block":
            self.block(words[1:])
        elif words[0] == "udev":
            self.put(f"/run/udev/data/{words[1]}", b"")
            self.record = self.path(f"/run/udev/data/{words[1]}")
        else:
            self.enter(line)

    def read(self, text):
        for number, line in enumerate(text.split("\n"), 1):
            if not line.strip() or line.startswith("#"):
                continue
            try:
                if line.startswith("\t"):
                    self.inside(line.lstrip("\t"))
                else:
                    self.outside(line)
            except Exception as error:
                raise ValueError(f"line {number}: {line}") from error

    def make_links(self):
        for record in sorted(self.top.glob("run/udev/data/b*")):
            for name in re.findall(rb"^S:([\x21-\x7e]+)$", record.read_bytes(), flags=re.MULTILINE):
                link = self.top / "dev" / name.decode()
                node = self.nodes.get(record.name[1:])
                if node and b".." not in name and not link.is_symlink():
                    link.parent.mkdir(parents=True, exist_ok=True)
                    link.symlink_to("../" * name.count(b"/") + node)


def hosts_in(directory):
    return sorted(found.parent for found in pathlib.Path(directory).glob("*/host.txt"))


def unfold(host, into):
    host, into = pathlib.Path(host), pathlib.Path(into)
    shutil.rmtree(into, ignore_errors=True)
    shutil.copytree(host, into, symlinks=True)
    tree = host / "tree.txt"
    if tree.exists():
        unfolded = Tree(into)
        unfolded.read(tree.read_text(encoding="utf-8"))
        unfolded.make_links()
    return into


if __name__ == "__main__":
    wanted = sys.argv[3:]
    for captured in hosts_in(sys.argv[1]):
        if wanted and captured.name not in wanted:
            continue
        unfold(captured, pathlib.Path(sys.argv[2]) / captured.name)
