# SPDX-License-Identifier: Apache-2.0
"""What a scenario says of its own devices: scenarios/NAME/expected.json, by role and by hand.

A role is a name of the machine's list of names; "sys.3" is the third partition of "sys".  What an entry leaves out is
absent, false or empty, but: sectors have 512 bytes, disks rotate, and a partition has the place of its disk.

  like               an entry that says the rest; one that has blanks in its name is no device
  sectors            of a partition: start and size, in sectors of 512 bytes
  {"udev": VALUE}    what only udev's database knows
  {"read": VALUE}    what only the device itself tells
  "$QEMU"            QEMU's version, as a controller tells it
  unknown_to_udev    udev's rules leave the device out: its contents are told to who may read it

Under SAID stands what a listing of all kinds has to say beside its lists, message by message: a text behind the names
of these devices ("of") or mount points ("at"), a note to everybody unless it says otherwise ("to": "user").
"""

import json
import re
import subprocess

from answers import SECTOR

TEXTS = ("transport", "vendor", "model", "serial", "firmware", "wwn", "state", "dm_kind", "backing_file",
         "controller_pci")
CONTENT = ("table", "table_id", "type", "label", "uuid", "version")
ENTRY = ("part_start", "part_size", "part_type", "part_uuid", "part_label", "part_flags")
SETS = ("parents", "paths", "mounts", "under")
OF_THE_DISK = ("transport", "controller_pci", "logical_sector", "physical_sector", "rotational", "removable",
               "read_only")
SAID = "what is said beside the lists"
NAMES_SHOWN = 8  # of a message that is about more
FIELDS = ("kind", "size", "logical_sector", "physical_sector", "rotational", "removable", "read_only", "part_number",
          *TEXTS, *CONTENT, *ENTRY, *SETS)


def _by_numbers(name):
    """The order of devices: numbers in names by their value."""
    return [int(piece) if piece.isdigit() else piece for piece in re.split(r"(\d+)", name)]


def _sentence(names, text):
    if not names:
        return text
    more = f" and {len(names) - NAMES_SHOWN} more" if len(names) > NAMES_SHOWN else ""
    return f"{', '.join(names[:NAMES_SHOWN])}{more}: {text}"


def _qemu_version():
    told = subprocess.run(["qemu-system-x86_64", "--version"], capture_output=True, text=True, check=True).stdout
    return re.search(r"version (\S+)", told)[1].split("+")[0][:8]


class Expected:
    """The text of a scenario, in the kernel's names of one boot."""

    def __init__(self, machine):
        said = json.loads((machine.scenario / "expected.json").read_text(encoding="utf-8"))
        self._said = {role: said.get(entry.get("like"), {}) | entry for role, entry in said.items() if " " not in role}
        self._messages = said.get(SAID, [])
        self._names = machine.names
        self._qemu = _qemu_version()

    def name(self, role):
        if role in self._names:
            return self._names[role]
        disk, _, number = role.rpartition(".")
        return self._names[disk] + ("p" if self._names[disk][-1].isdigit() else "") + number

    def names(self, roles):
        return [self.name(role) for role in roles]

    def devices(self, stage):
        """{device name: {field: value}} in this stage, of all fields of FIELDS."""
        sources = {"udev": stage.startswith("udev"), "read": stage.endswith("root")}
        devices = {}
        for role, said in self._said.items():
            device = self._device(role, sources)
            if not sources["read"] and (not sources["udev"] or said.get("unknown_to_udev")):
                device |= dict.fromkeys(CONTENT) | self._known_to_the_kernel(device)
            devices[self.name(role)] = device
        return devices

    @staticmethod
    def _known_to_the_kernel(device):
        """Of a partition: where it is, and of the characters of its name seven bits."""
        entry = dict.fromkeys(ENTRY)
        if device["kind"] == "partition":
            label = device["part_label"]
            entry |= {"part_start": device["part_start"], "part_size": device["size"],
                      "part_label": label and "".join(chr(ord(character) & 0x7f) for character in label)}
        return entry

    def arrays(self):
        """{array name: {field: value}}; of the state one of several words, for writing changes it."""
        arrays = {}
        for role, said in self._said.items():
            if "array" in said:
                array = dict.fromkeys(("degraded", "sync_action", "sync_total", "chunk_size"))
                array |= {"active": 0, "failed": 0, "spare": 0, "bitmap": "none", "consistency": None}
                array |= said["array"] | {"size": said["size"]}
                array["members"] = {self.name(member): place for member, place in array["members"].items()}
                arrays[self.name(role)] = array
        return arrays

    def said(self, stage, kinds):
        """[(the message, the names of all devices that it is about)] of a listing of these kinds."""
        messages = []
        for entry in self._messages:
            if entry["kind"] not in kinds or not stage.endswith(entry.get("to", "")):
                continue
            names = entry.get("at") or sorted(self.names(entry.get("of", ())), key=_by_numbers)
            messages.append(({"severity": entry.get("severity", "note"), "kind": entry["kind"], "code": entry["code"],
                              "text": _sentence(names, entry["text"])}, names))
        return messages

    def _device(self, role, sources):
        said = dict(self._said[role])
        device = dict.fromkeys(FIELDS) | {"size": 0, "logical_sector": SECTOR, "physical_sector": SECTOR,
                                          "rotational": True, "removable": False, "read_only": False}
        if "sectors" in said:
            disk, _, number = role.rpartition(".")
            device |= {field: value for field, value in self._device(disk, sources).items() if field in OF_THE_DISK}
            start, size = (count * SECTOR for count in said["sectors"])
            device |= {"kind": "partition", "part_number": int(number), "size": size, "part_start": start,
                       "part_size": size, "part_flags": 0}
            said.setdefault("parents", [disk])
        device |= {field: self._value(value, sources) for field, value in said.items() if field in FIELDS}
        device |= {field: set(said.get(field, ())) for field in SETS}
        for field in ("parents", "paths"):
            device[field] = {self.name(other) for other in device[field]}
        return device

    def _value(self, value, sources):
        if isinstance(value, dict):
            (source, value), = value.items()
            return value if sources[source] else None
        return self._qemu if value == "$QEMU" else value
