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

import diskscout


class Agent:
    """Prints lists, and remembers whether one of them failed."""

    def __init__(self):
        self.status = 0

    def failed(self, error):
        print(f"agent.py: {error}", file=sys.stderr)
        self.status = 1

    def show(self, query, line):
        """A line for each record. The list goes back to the library when the `with` ends, whatever happens in it."""
        try:
            with query() as records:
                for record in records:
                    print(line(record))
        except diskscout.CallError as error:
            for record in error.found:
                print(line(record))
            self.failed(error)

    def classic(self, plugin):
        self.show(plugin.disks, lambda disk: f"disk {disk.device_name}: {disk.model}, {disk.size_bytes} bytes"
                                             f"{', system disk' if disk.used_by_system else ''}")
        self.show(plugin.partitions, lambda part: f"partition {part.partition_index} of {part.disk_device_name}: "
                                                  f"{part.type}, {part.size_bytes} bytes, {part.mount_point or '-'}")
        self.show(plugin.cdroms, lambda drive: f"drive {drive.device_name}: {drive.model}")

    def raid(self, raid):
        try:
            with raid.controllers() as controllers:
                names = [controller.adapter_name for controller in controllers]
        except diskscout.RaidError as error:
            self.failed(error)
            return
        for name in names:
            print(f"controller {name}")
            self.show(lambda: raid.containers(name), self.container)
            self.show(lambda: raid.tasks(name), lambda task: f"  task {task.task_id} on container {task.container_id}: "
                                                             f"{100 * task.done:.0f} % done")

    @staticmethod
    def container(one):
        kind = getattr(one.raid_type, "name", one.raid_type)
        return f"  container {one.container_id}: {kind}, {one.total_size_megabytes} MB, {one.label or '-'}"

    def today(self, plugin):
        self.show(plugin.devices, lambda device: f"device {device.name}: {device.kind}, {device.size_bytes} bytes, "
                                                 f"serial number {device.serial or '-'}")
        self.show(plugin.mounts, lambda mount: f"mount {mount.mount_point or 'swap'}: {mount.type} on "
                                               f"{', '.join(mount.devices) or mount.source}")

    def run(self, directory, configuration):
        # One plug-in that is missing does not hide what the other one tells.
        try:
            with diskscout.Plugin(directory=directory, configuration=configuration) as plugin:
                self.classic(plugin)
                configured = os.path.exists(plugin.configuration_file)
            if configured:
                with diskscout.Raid(directory=directory) as raid:
                    self.raid(raid)
        except diskscout.LibraryError as error:
            self.failed(error)
        try:
            with diskscout.BlockPlugin(directory=directory) as plugin:
                self.today(plugin)
        except diskscout.LibraryError as error:
            self.failed(error)
        return self.status


def main():
    words = argparse.ArgumentParser(description="tells the storage of this host")
    words.add_argument("--plugins", metavar="DIRECTORY", help="where the plug-ins are, if not where they are installed")
    words.add_argument("--config", metavar="FILE", help="says where the RAID controllers' tool is")
    asked = words.parse_args()
    return Agent().run(asked.plugins, asked.config)


if __name__ == "__main__":
    sys.exit(main())
