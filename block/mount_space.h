// SPDX-License-Identifier: Apache-2.0
// How full file systems are, as far as the kernel can tell it alone: a server or a program that does not
// answer must not stop who asks.
//
// A file system is asked when all of this holds:
//   - it lies on block devices of this host, and no program ("fuse") and no other host (cluster file systems)
//     has a say in it;
//   - none of these devices, nor what they stand on, is a mapping that is suspended;
//   - its mount point leads to it, and every mount on the way there, from the process's root on, is one of
//     which the same is true, or lives in memory. Never through autofs: passing would mount.
// What the process stands in need be no such: a container's overlay would not hold up the walk either.
//
// Mount points count from the process's root. One whose root is a plain directory does not see the mount that
// it stands in: what is mounted there, and all below, is not asked.
#ifndef DISKSCOUT_BLOCK_MOUNT_SPACE_H
#define DISKSCOUT_BLOCK_MOUNT_SPACE_H

#include "mount_devices.h"

// In bytes; BLOCK_ABSENT for what is not asked, does not answer or is too large.
struct mount_space_t {
	long long total;
	long long used;
	long long available; // for an ordinary user
};

// Notes that a mapping is suspended; for Inventory::scan.
void note_suspended(void *context, const Folder &folder, device_t *device);

// For each mount, by its number in the table: each file system is asked once, all its mounts have its
// figures. The inventory has been scanned with note_suspended. Null without memory.
mount_space_t *mount_space(const Inventory &inventory, const Growing<mount_entry_t> &mounts,
                           const MountTree &tree, const device_set_t *of_mounts);

#endif
