// SPDX-License-Identifier: Apache-2.0
// The block devices that file systems and swap areas lie on.
#ifndef DISKSCOUT_BLOCK_MOUNT_DEVICES_H
#define DISKSCOUT_BLOCK_MOUNT_DEVICES_H

#include "btrfs.h"
#include "mount_tree.h"
#include "mountinfo.h"

// For each mount, by its number in the table, the devices that its file system lies on: one, or with btrfs
// several; none for what lies on no block device, or on one that the inventory does not have. No device is
// opened or asked. Null without memory.
device_set_t *mount_devices(Arena *arena, const Inventory &inventory, const Growing<mount_entry_t> &mounts);

// The same for each swap area: of a file, those of the file system that it lies in.
device_set_t *swap_devices(Arena *arena, const Inventory &inventory, const MountTree &tree,
                           const device_set_t *of_mounts, const Growing<swap_entry_t> &swaps);

// Mounts of one file system: for each mount the number of the first one with its device number. Null without
// memory.
size_t *first_mounts(Arena *arena, const Growing<mount_entry_t> &mounts);

#endif
