#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""agent.py [--plugins DIRECTORY] [--config FILE]: tells the storage of this host; a program to start from.

The classic disks, partitions and drives, RAID controllers where a site has their tool, today's block devices, and where
they are mounted. What cannot be asked is said on standard error, and the rest goes on. Exit status: 0; 1 when something
could not be asked; 2 for words that make no sense.
"""

import argparse
import os
import sys
from typing import Any, Callable, Optional, TextIO

import diskscout


def say(text: str, stream: TextIO) -> None:
    """A line on that stream. Devices and hosts choose texts: what could move a terminal, or is none of the stream's
    characters, is shown as \\xHH, byte by byte."""
    def shown(character: str) -> str:
        # What is no UTF-8 is not printable either: the package has it as lone surrogates.
        if character.isprintable() and character.encode(stream.encoding, "ignore"):
            return character
        return "".join(f"\\x{byte:02x}" for byte in character.encode("utf-8", "surrogateescape"))

    print("".join(map(shown, text)), file=stream)


class Agent:
    """Prints lists, and remembers whether one of them failed."""

    def __init__(self) -> None:
        self.status = 0

    def failed(self, error: Exception) -> None:
        say(f"agent.py: {error}", sys.stderr)
        self.status = 1

    def show(self, query: Callable[[], diskscout.RecordList[Any]], line: Callable[[Any], str]) -> None:
        """A line for each record. The list goes back to the library when the `with` ends, whatever happens in it."""
        try:
            with query() as records:
                for record in records:
                    say(line(record), sys.stdout)
        except diskscout.CallError as error:
            for record in error.found:
                say(line(record), sys.stdout)
            self.failed(error)
        except ValueError as error:  # a controller's name that is not fit to be handed over
            self.failed(error)

    def classic(self, plugin: diskscout.Plugin) -> None:
        self.show(plugin.disks, lambda disk: f"disk {disk.device_name}: {disk.model}, {disk.size_bytes} bytes"
                                             f"{', system disk' if disk.used_by_system else ''}")
        self.show(plugin.partitions, lambda part: f"partition {part.partition_index} of {part.disk_device_name}: "
                                                  f"{part.type}, {part.size_bytes} bytes, {part.mount_point or '-'}")
        self.show(plugin.cdroms, lambda drive: f"drive {drive.device_name}: {drive.model}")

    def raid(self, raid: diskscout.Raid) -> None:
        try:
            with raid.controllers() as controllers:
                names = [controller.adapter_name for controller in controllers]
        except diskscout.RaidError as error:
            self.failed(error)
            return
        for name in names:
            say(f"controller {name}", sys.stdout)
            self.show(lambda: raid.containers(name), self.container)
            self.show(lambda: raid.tasks(name), lambda task: f"  task {task.task_id} on container {task.container_id}: "
                                                             f"{100 * task.done:.0f} % done")

    @staticmethod
    def container(one: diskscout.ToolContainer) -> str:
        kind = one.raid_type.name if isinstance(one.raid_type, diskscout.RaidType) else one.raid_type
        return f"  container {one.container_id}: {kind}, {one.total_size_megabytes} MB, {one.label or '-'}"

    def today(self, plugin: diskscout.BlockPlugin) -> None:
        self.show(plugin.devices, lambda device: f"device {device.name}: {device.kind}, {device.size_bytes} bytes, "
                                                 f"serial number {device.serial or '-'}")
        self.show(plugin.mounts, lambda mount: f"mount {mount.mount_point or 'swap'}: {mount.type} on "
                                               f"{', '.join(mount.devices) or mount.source}")

    def run(self, directory: Optional[str], configuration: Optional[str]) -> int:
        # One plug-in that is missing does not hide what the other one tells.
        try:
            with diskscout.Plugin(directory=directory, configuration=configuration) as plugin:
                self.classic(plugin)
                configured = os.path.exists(plugin.configuration_file)
            if configured:
                # A run of the tool has its files in the working directory, which others must not write, nor these.
                os.umask(0o077)
                with diskscout.Raid(directory=directory, configuration=configuration) as raid:
                    self.raid(raid)
        except diskscout.LibraryError as error:
            self.failed(error)
        try:
            with diskscout.BlockPlugin(directory=directory) as today:
                self.today(today)
        except diskscout.LibraryError as error:
            self.failed(error)
        return self.status


def main() -> int:
    words = argparse.ArgumentParser(description="tells the storage of this host")
    words.add_argument("--plugins", metavar="DIRECTORY", help="where the plug-ins are, if not where they are installed")
    words.add_argument("--config", metavar="FILE", help="says where the RAID controllers' tool is")
    asked = words.parse_args()
    try:
        return Agent().run(asked.plugins, asked.config)
    except ValueError as error:  # a name that no library takes
        say(f"agent.py: {error}", sys.stderr)
        return 2


if __name__ == "__main__":
    sys.exit(main())
