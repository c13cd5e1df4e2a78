# SPDX-License-Identifier: Apache-2.0
"""A scenario's virtual machine: makes its disks, boots it once, and gives access to what it brought back.

A scenario is a directory below scenarios/:
  disks.sh    makes the disk images, in the functions of disk-lib.sh
  vm.conf     attaches them: run-vm options, one per line
  mounts.sh   runs in the machine, before anything is asked
  collect.sh  what is asked there; without it, guest-collect asks for the inventory
"""

import json
import pathlib
import shutil
import subprocess

HERE = pathlib.Path(__file__).resolve().parent
PROGRAMS = ("bash", "qemu-system-x86_64", "busybox", "sfdisk", "mke2fs", "mkfs.vfat")
ISO_PROGRAMS = ("xorriso", "genisoimage")
SEARCH_PATH = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin"
TIME_LIMIT = 300  # seconds, of a run that takes 4 to 10 on an idle machine without KVM
PROGRAM_FILES = ("diskscout", "stcli", "diskscout.so", "vm-eject", "vm-geometry", "vm-md")


def missing_programs():
    """What a run needs and this host lacks."""
    missing = [name for name in PROGRAMS if not shutil.which(name, path=SEARCH_PATH)]
    if not any(shutil.which(name, path=SEARCH_PATH) for name in ISO_PROGRAMS):
        missing.append("xorriso")
    return missing


def image_options(conf):
    """The drives of a vm.conf: option name, image file, and the keys behind it."""
    for line in conf.read_text().splitlines():
        option, _, value = line.partition(" ")
        if option.startswith(("disk-", "cdrom-")):
            image, *keys = value.split(",")
            yield option, image, dict(key.split("=", 1) for key in keys)


class Machine:
    """One boot of one scenario."""

    home = HERE  # where the scenarios are

    def __init__(self, name, build_dir, kernel, work):
        self.name = name
        self.scenario = self.home / "scenarios" / name
        self.disks = work / "disks"
        self.payload = work / "payload"
        self.seen = self.payload / "out"
        self._make(build_dir)
        self._boot(kernel, work)

    def _make(self, build_dir):
        subprocess.run([HERE / "make-disks", self.scenario, self.disks], check=True, timeout=TIME_LIMIT)
        self.payload.mkdir()
        self._fill(build_dir)

    def _fill(self, build_dir):
        """Puts into the payload what the machine needs beside its disks."""
        for program in PROGRAM_FILES:
            shutil.copy(build_dir / program, self.payload)
        own = self.scenario / "collect.sh"
        shutil.copy(own if own.exists() else HERE / "guest-collect", self.payload / "collect")
        shutil.copy(HERE / "guest-lib.sh", self.payload)
        shutil.copy(self.scenario / "mounts.sh", self.payload)

    def _options(self, kernel):
        """What run-vm is told beside the disks."""
        # Instrumented programs are large, and the payload lies in the machine's memory twice for a while.
        size = sum(file.stat().st_size for file in self.payload.rglob("*") if file.is_file()) >> 20
        return ["--memory", str(max(256, 4 * size + 192))]

    def _boot(self, kernel, work):
        command = [HERE / "run-vm", "--config", self.disks / "vm.conf", "--payload", self.payload]
        command += self._options(kernel)
        command += ["--timeout", str(TIME_LIMIT), "--console", work / "console", "--", "sh", "collect"]
        environment = {"PATH": SEARCH_PATH, "DISKSCOUT_VM_KERNEL": str(kernel), "TMPDIR": str(work)}
        run = subprocess.run(command, env=environment, capture_output=True, text=True, errors="replace",
                             timeout=2 * TIME_LIMIT)
        if run.returncode != 0:
            raise RuntimeError(f"{self.name}: run-vm ended with {run.returncode}\n{run.stdout}{run.stderr}")

    def text(self, name):
        # The kernel's texts are bytes; no scenario goes beyond what Latin-1 gives back unchanged.
        return (self.seen / name).read_text(encoding="latin-1")

    def lines(self, name):
        return self.text(name).splitlines()

    def binary(self, name):
        return (self.seen / name).read_bytes()

    def document(self, name):
        try:
            return json.loads((self.seen / name).read_bytes())
        except ValueError as error:
            told = f"exit status {self.text('list.status').strip()}, {self.text('list.err')!r}"
            raise RuntimeError(f"{self.name}: {name} is no JSON ({error}); {told}") from error

    def attributes(self, name):
        """{device: {attribute: value}} from a file of DEVICE<tab>ATTRIBUTE<tab>VALUE."""
        devices = {}
        for line in self.text(name).split("\n")[:-1]:
            device, attribute, value = line.split("\t", 2)
            devices.setdefault(device, {})[attribute] = value
        return devices

    def image_of(self, device, address):
        """The image behind a disk of the kernel, found by its IDE slot or its SCSI address; or None."""
        hosts = sorted({int(keys.get("host", 0)) for option, _, keys in image_options(self.disks / "vm.conf")
                        if option.endswith("-scsi")})
        for option, image, keys in image_options(self.disks / "vm.conf"):
            if option == "disk-ide" and keys["slot"] == device:
                return self.disks / image
            if option == "disk-scsi":
                host = hosts.index(int(keys.get("host", 0)))
                if address == f"{host}:0:{keys['id']}:{keys.get('lun', 0)}":
                    return self.disks / image
        return None
