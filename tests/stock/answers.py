# SPDX-License-Identifier: Apache-2.0
"""The answers of a stage in one form: {device name: {field: value}}, ours and each peer's.

A field that an answer leaves open is None.  Texts are the bytes that stand behind them (as str, with surrogates where
they are no UTF-8), sizes and starts are bytes, identifiers are in small letters.
"""

import json
import os
import re

SECTOR = 512
DM_KINDS = {"part": "partition", "mpath": "multipath", "dm": "unknown"}
SWAP = "[SWAP]"


def decoded(data):
    return data.decode(errors="surrogateescape")


def plain(text):
    """What stands behind a text of ours."""
    if text is None:
        return None
    return decoded(re.sub(rb"\\x([0-9a-f]{2})", lambda code: bytes([int(code[1], 16)]), text.encode()))


def lower(text):
    return text and text.lower()


def trimmed(text):
    """The peers hand on the blanks that fill a fixed field."""
    return text and (text.strip() or None)


def table_id(kind, text):
    """blkid and lsblk leave out the 0x of a DOS table's."""
    return "0x" + text if kind == "dos" and text else lower(text)


# --- ours

def ours(machine, stage):
    """The answer of block-json; the kinds that it leaves out are told of no device."""
    document = json.loads((machine.seen / stage / "block.out").read_bytes())
    devices = {device["name"]: _device(device) for device in document["devices"]}
    for link in document["links"]:
        hidden = devices[link["lower"]]["kind"] == "path"
        devices[link["upper"]]["paths" if hidden else "parents"].add(link["lower"])
    for content in document.get("contents") or ():
        _add_content(devices, content)
    for mount in document.get("mounts") or ():
        for name in mount["devices"] or ():
            devices[name]["mounts"].add(SWAP if mount["kind"] == "swap" else plain(mount["mount_point"]))
    return devices


def _device(told):
    address = [told["scsi_host"], told["scsi_channel"], told["scsi_target"], told["scsi_lun"]]
    number = [told["major"], told["minor"]]
    device = {field: plain(told[field]) for field in (
        "kind", "transport", "vendor", "model", "serial", "firmware", "wwn", "state", "dm_name", "dm_uuid", "dm_kind",
        "backing_file")}
    device |= {field: told[field] for field in (
        "size", "logical_sector", "physical_sector", "rotational", "removable", "read_only", "controller_pci")}
    device |= {
        "number": None if None in number else "{}:{}".format(*number),
        "address": None if None in address else "{}:{}:{}:{}".format(*address),
        "part_number": told["partition_number"],
        "under": {place for place in ("root", "boot", "swap") if told["under_" + place]},
        "parents": set(), "paths": set(), "mounts": set()}
    return device


def _add_content(devices, content):
    device = devices[content["name"]]
    device |= {field: plain(content[field]) for field in ("table", "type", "label", "version", "source")}
    device |= {field: lower(plain(content[field])) for field in ("table_id", "uuid", "uuid_sub")}
    for part in content["partitions"] or ():
        entry = {"part_start": part["start"], "part_size": part["size"], "part_type": lower(part["type"]),
                 "part_uuid": lower(part["uuid"]), "part_label": plain(part["label"]), "part_flags": part["flags"]}
        devices.get(part["name"] or _mapped(devices, content["name"], part["number"]), {}).update(entry)


def _mapped(devices, disk, number):
    """The mapping that is this partition of the device: its UUID says so."""
    for name, device in devices.items():
        if disk in device["parents"] and (device["dm_uuid"] or "").startswith(f"part{number}-"):
            return name
    return None


def our_targets(machine, stage):
    """{device: the kinds of its mappings} of the device mapper's devices; None for those that are not told"""
    document = json.loads((machine.seen / stage / "block.out").read_bytes())
    return {device["name"]: device["dm_target"] and set(device["dm_target"].split(","))
            for device in document["devices"] if device["kind"] == "dm"}


def targets_of_the_mapper(machine):
    return {file.stem.removeprefix("table-"): {line.split()[2] for line in decoded(file.read_bytes()).splitlines()}
            for file in (machine.seen / "facts").glob("table-*.out")}


# --- lsblk

def lsblk(machine, stage):
    # It hands on the bytes of a mount point as they are.
    document = json.loads(decoded((machine.seen / stage / "lsblk.out").read_bytes()))
    devices = {}

    def walk(items, parent):
        for item in items:
            device = devices.setdefault(item["kname"], _lsblk_device(item))
            if parent:
                device["parents"].add(parent)
            walk(item.get("children", ()), item["kname"])

    walk(document["blockdevices"], None)
    return devices


def _lsblk_device(item):
    kind, dm_kind = item["type"], None
    if item["kname"].startswith("dm-"):
        kind, dm_kind = "dm", DM_KINDS.get(kind, kind)
    elif kind == "part":
        kind = "partition"
    elif re.fullmatch(r"raid\d+|linear|md", kind):
        kind = "md"
    # that of a partition is its disk's
    table = None if "partition" in (kind, dm_kind) else item["pttype"]
    return {
        "number": item["maj:min"], "kind": kind, "dm_kind": dm_kind, "size": item["size"],
        "dm_name": item["name"] if dm_kind else None,
        "logical_sector": item["log-sec"], "physical_sector": item["phy-sec"], "rotational": item["rota"],
        "removable": item["rm"], "read_only": item["ro"], "transport": item["tran"], "vendor": trimmed(item["vendor"]),
        "model": trimmed(item["model"]), "serial": trimmed(item["serial"]), "firmware": trimmed(item["rev"]),
        "wwn": item["wwn"], "address": item["hctl"], "state": item["state"],
        "table": table, "table_id": table and table_id(table, item["ptuuid"]),
        "type": item["fstype"], "label": item["label"], "uuid": lower(item["uuid"]), "version": item["fsver"],
        "part_start": item["start"] and item["start"] * SECTOR, "part_type": lower(item["parttype"]),
        "part_uuid": lower(item["partuuid"]), "part_label": item["partlabel"],
        "part_flags": item["partflags"] and int(item["partflags"], 16),
        "parents": set(), "mounts": set(item["mountpoints"]) - {None}}


# --- blkid, sfdisk: of the devices themselves

def blkid(machine):
    devices = {}
    for file in (machine.seen / "facts").glob("blkid-*.out"):
        told = dict(_unescaped(line).split("=", 1) for line in file.read_bytes().splitlines() if b"=" in line)
        device = {"table": told.get("PTTYPE"), "table_id": table_id(told.get("PTTYPE"), told.get("PTUUID")),
                  "type": told.get("TYPE"), "label": told.get("LABEL"), "uuid": lower(told.get("UUID")),
                  "version": told.get("VERSION"), "uuid_sub": lower(told.get("UUID_SUB"))}
        if "PART_ENTRY_NUMBER" in told:
            device |= {"part_number": int(told["PART_ENTRY_NUMBER"]),
                       "part_start": int(told["PART_ENTRY_OFFSET"]) * SECTOR,
                       "part_size": int(told["PART_ENTRY_SIZE"]) * SECTOR, "part_type": told["PART_ENTRY_TYPE"],
                       "part_uuid": told.get("PART_ENTRY_UUID"), "part_label": told.get("PART_ENTRY_NAME"),
                       "part_flags": int(told.get("PART_ENTRY_FLAGS", "0"), 16)}
        devices[file.stem.removeprefix("blkid-")] = device
    return devices


def _unescaped(line):
    """A backslash before what a shell would take, and M-C for the byte of C with its highest bit."""
    line = re.sub(rb"M-(\^?)(.)", lambda code: bytes([128 | code[2][0] ^ (64 if code[1] else 0)]), line)
    return decoded(re.sub(rb"\\(.)", rb"\1", line))


def sfdisk(machine):
    devices = {}
    for file in (machine.seen / "facts").glob("sfdisk-*.out"):
        table = json.loads(file.read_bytes())["partitiontable"]
        devices[file.stem.removeprefix("sfdisk-")] = {"table": table["label"], "table_id": lower(table["id"])}
        for part in table.get("partitions", ()):
            kind = part["type"].lower()
            devices[part["node"].removeprefix("/dev/")] = {
                "part_start": part["start"] * table["sectorsize"], "part_size": part["size"] * table["sectorsize"],
                "part_type": kind if "-" in kind else "0x" + kind, "part_uuid": lower(part.get("uuid")),
                "part_label": part.get("name")}
    return devices


# --- paths, links, mounts and arrays

def our_paths(machine, stage):
    """{(device, path): (address, state)}"""
    document = json.loads((machine.seen / stage / "block.out").read_bytes())
    return {(link["upper"], link["lower"]): (link["address"], link["state"])
            for link in document["links"] if link["relation"] == "path"}


def our_links(machine, stage):
    """{device: links that lead to it}, of those that have any"""
    document = json.loads((machine.seen / stage / "block.out").read_bytes())
    return {device["name"]: {plain(link) for link in device["links"]} for device in document["devices"]
            if device["links"]}


def links_of_the_machine(machine, devices):
    """The same of the links below /dev; what leads to no block device is left out."""
    links = {}
    for line in decoded(machine.binary("facts/links")).splitlines():
        link, target = (text.strip("'") for text in line.split(" -> "))
        folder, name = os.path.split(os.path.normpath(os.path.join(os.path.dirname(link), target)))
        # /dev/block has a link for each number: no name of a device's own
        if folder == "/dev" and name in devices and not link.startswith("/dev/block/"):
            links.setdefault(name, set()).add(link)
    return links



def our_mounts(machine, stage):
    """{id: {field: value}} of all mounts; swap areas have no id."""
    document = json.loads((machine.seen / stage / "block.out").read_bytes())
    return {mount["id"]: {
        "parent": mount["parent_id"], "target": plain(mount["mount_point"]), "source": plain(mount["source"]),
        "type": mount["type"], "number": "{}:{}".format(mount["major"], mount["minor"]), "root": plain(mount["root"]),
        "options": _words(plain(mount["options"]), plain(mount["super_options"])),
        "total": mount["total"], "used": mount["used"], "available": mount["available"], "shadowed": mount["shadowed"]} for mount in document.get("mounts") or () if mount["kind"] == "mount"}


def our_swaps(machine, stage):
    """(path, partition or file, bytes, priority) of each area in use."""
    document = json.loads((machine.seen / stage / "block.out").read_bytes())
    return [(plain(mount["source"]), mount["type"], mount["total"], mount["priority"])
            for mount in document.get("mounts") or () if mount["kind"] == "swap"]


def swaps_of_the_kernel(machine):
    rows = [line.split() for line in machine.lines("facts/swaps")[1:]]
    return [(row[0], row[1], int(row[2]) * 1024, int(row[4])) for row in rows]


def findmnt(machine):
    document = json.loads(decoded((machine.seen / "facts" / "findmnt.out").read_bytes()))
    mounts = {}

    def walk(items):
        for item in items:
            root = item["fsroot"]
            mounts[item["id"]] = {
                "parent": item["parent"], "target": item["target"],
                # it writes what of the file system is mounted behind its device
                "source": item["source"].removesuffix(f"[{root}]"), "type": item["fstype"], "number": item["maj:min"],
                "root": root, "options": _words(item["options"]), "total": item["size"], "used": item["used"],
                "available": item["avail"]}
            walk(item.get("children", ()))

    walk(document["filesystems"])
    return mounts


def _words(*texts):
    return {word for text in texts for word in (text or "").split(",")} - {""}


def our_arrays(machine, stage):
    document = json.loads((machine.seen / stage / "block.out").read_bytes())
    return {array["name"]: array | {
        "members": {member["name"]: [member["slot"], member["role"]] for member in array["members"]}}
        for array in document.get("arrays") or ()}


def mdadm(machine):
    arrays = {}
    for file in (machine.seen / "facts").glob("mdadm-*.out"):
        told = dict(line.split("=", 1) for line in decoded(file.read_bytes()).splitlines())
        members = {}
        for key, value in told.items():
            if key.startswith("MD_DEVICE_") and key.endswith("_DEV"):
                role = told[key.removesuffix("_DEV") + "_ROLE"]
                members[value.removeprefix("/dev/")] = int(role) if role.isdigit() else None
        arrays[file.stem.removeprefix("mdadm-")] = {
            "level": told.get("MD_LEVEL"), "wanted": int(told["MD_DEVICES"]), "metadata": told["MD_METADATA"],
            "uuid": told["MD_UUID"], "members": members}
    return arrays
