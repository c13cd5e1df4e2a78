#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""fold.py HOST...: writes what a captured host holds of /sys, /dev and udev's database in short.

The folders sys, dev and run of each HOST become its tree.txt, as unfold.py reads it, and are removed; one of before
must not be there.
"""

import pathlib
import shutil
import sys

from unfold import unfold

FOLDED = ("dev", "run", "sys")
RECORDS = "run/udev/data"


def escaped(content, also=b""):
    """Bytes as a word or a text of tree.txt."""
    def one(byte):
        if byte == 0x0a:
            return "\\n"
        if byte == 0x5c:
            return "\\\\"
        return chr(byte) if 0x20 <= byte < 0x7f and byte not in also else f"\\x{byte:02x}"
    return "".join(map(one, content))


def name_of(path):
    return escaped(bytes(path), also=b' $#"')


def text_of(content):
    """One line and a newline, with the blanks at its ends kept; None for what is no such text."""
    line = content[:-1]
    if not content.endswith(b"\n") or b"\0" in content:
        return None
    text = escaped(line)
    text = text[:-1] + "\\x20" if text.endswith(" ") else text
    return "\\x20" + text[1:] if text.startswith(" ") else text


def item(path):
    name = name_of(path.name.encode("utf-8", "surrogateescape"))
    if path.is_symlink():
        return f"{name} -> " + escaped(str(path.readlink()).encode("utf-8", "surrogateescape"))
    if path.is_dir():
        return None if any(path.iterdir()) else f"{name}/"
    content = path.read_bytes()
    text = text_of(content)
    return f"{name} bytes {content.hex()}" if text is None else f"{name} = {text}"


def fold_records(folder):
    for record in sorted(folder.iterdir()):
        yield f"udev {record.name}"
        for line in record.read_bytes().removesuffix(b"\n").split(b"\n"):
            yield "\t" + escaped(line)


def fold_folder(top, folder):
    relative = str(folder.relative_to(top))
    if relative == RECORDS:
        yield from fold_records(folder)
        return
    entries = sorted(folder.iterdir())
    items = [found for found in map(item, entries) if found is not None]
    if items:
        yield name_of(("/" + relative).encode("utf-8", "surrogateescape"))
        yield from ("\t" + found for found in items)
    for entry in entries:
        if entry.is_dir() and not entry.is_symlink():
            yield from fold_folder(top, entry)


def contents(top):
    """What lies where, to compare."""
    return {str(path.relative_to(top)): str(path.readlink()) if path.is_symlink()
            else path.is_dir() or path.read_bytes()
            for path in pathlib.Path(top).rglob("*") if path.name != "tree.txt"}


def fold(host):
    host = pathlib.Path(host)
    if (host / "tree.txt").exists():
        raise ValueError(f"{host} has a tree.txt")
    before = contents(host)
    lines = [line for name in FOLDED if (host / name).is_dir() for line in fold_folder(host, host / name)]
    short = host.with_name(host.name + ".folding")
    shutil.copytree(host, short, symlinks=True, ignore=lambda at, names: FOLDED if pathlib.Path(at) == host else ())
    (short / "tree.txt").write_text("\n".join(lines) + "\n", encoding="utf-8")
    whole = unfold(short, host.with_name(host.name + ".unfolded"))
    same = contents(whole) == before
    shutil.rmtree(whole)
    if not same:
        shutil.rmtree(short)
        raise ValueError(f"{host} holds what cannot be told in short")
    shutil.rmtree(host)
    short.rename(host)


if __name__ == "__main__":
    for captured in sys.argv[1:]:
        fold(captured)
