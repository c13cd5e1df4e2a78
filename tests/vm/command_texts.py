# SPDX-License-Identifier: Apache-2.0
"""What the diagnostic commands print, put together from what is known of a device in other ways."""

import re
import struct

from scenario import low_32

SCSI_TYPES = {"0": "Direct-Access", "5": "CD-ROM"}


def trimmed(text):
    return re.split(r"[\n\0\r#]", text, maxsplit=1)[0].strip(" \t")


def size_text(sectors):
    return (f"{low_32(sectors)}\n{low_32(sectors // 2)} {'+' if sectors % 2 else ' '}\n"
            f"{low_32(sectors >> 11)} MB\n{low_32(sectors >> 21)} GB\n")


def table_text(device, number, sector):
    lines = [f"partition table of {device}, sector {number}\n",
             "magic = 0x{:02x}, 0x{:02x}\n".format(*sector[510:])]
    for slot in range(4):
        entry = sector[446 + 16 * slot:][:16]
        active, head, in_track, cylinder, kind, end_head, end_in_track, end_cylinder, start, size = \
            struct.unpack("<8B2I", entry)
        lines.append(f"{slot} active=0x{active:02X} type=0x{kind:02X} start={start}({cylinder},{head},{in_track})"
                     f" end=({end_cylinder},{end_head},{end_in_track}) size={size}\n")
    return "".join(lines)


def sector_text(sector):
    rows = []
    for position in range(0, 512, 16):
        groups = [sector[position + group:][:4] for group in range(0, 16, 4)]
        rows.append(f"0x{position:04x} " + "".join("  " + "".join(f" {byte:02X}" for byte in group)
                                                   for group in groups) + "\n")
    return "".join(rows)


def partition_text(entry, number):
    return (f"index={number - 1} type={int(entry['type'], 16):02x} active={128 if entry.get('bootable') else 0}"
            f" (start,size)=({entry['start']},{entry['size']})\n")


def scsi_text(line):
    address, vendor, model, revision, kind, *_ = line.split("|")
    numbers = ", ".join(address.split(":"))
    return f"({numbers}) {trimmed(vendor)} {trimmed(model)} {trimmed(revision)} {SCSI_TYPES[kind]}\n"
