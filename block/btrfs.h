// SPDX-License-Identifier: Apache-2.0
// The mounted file systems of btrfs: /sys/fs/btrfs/UUID/devices has a link for each device of one.
//
// Their device numbers are anonymous: nothing in sysfs leads from one to the devices.
#ifndef DISKSCOUT_BLOCK_BTRFS_H
#define DISKSCOUT_BLOCK_BTRFS_H

#include "inventory.h"

struct device_set_t {
	device_t **devices; // in the order of their names
	size_t count;
};

class BtrfsFilesystems
{
public:
	BtrfsFilesystems(Arena *arena, const Inventory &inventory);

	// All devices of the one that has this device; empty for none.
	device_set_t with_device(const device_t *device) const;

private:
	void read_devices(const Inventory &inventory, const Folder &filesystem);

	Arena *arena_;
	Growing<device_set_t> sets_;
};

#endif
