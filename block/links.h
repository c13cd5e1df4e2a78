// SPDX-License-Identifier: Apache-2.0
// Which device stands on which.
#ifndef DISKSCOUT_BLOCK_LINKS_H
#define DISKSCOUT_BLOCK_LINKS_H

#include "inventory.h"

struct stand_t {
	device_t *upper; // stands on `lower`
	device_t *lower;
	const char *relation; // as diskscout_block.h names it
};

// Reads the folder `slaves` of a device that is made of others; for Inventory::scan, before find_stands().
void read_slaves(Arena *arena, const Folder &folder, device_t *device);

// All pairs, by upper and lower. Nothing is read for it. False without memory.
bool find_stands(const Inventory &devices, Growing<stand_t> *stands);

#endif
