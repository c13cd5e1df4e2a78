// SPDX-License-Identifier: Apache-2.0
// One block device while a query works on it.
#ifndef DISKSCOUT_BLOCK_DEVICE_H
#define DISKSCOUT_BLOCK_DEVICE_H

#include "diskscout_block.h"
#include "text.h"

// A device that another one is made of.
struct slave_t {
	slave_t *next;
	const char *sysname;
};

// One device. What the query at hand has not asked for is absent in its record.
struct device_t {
	block_device record;
	const char *sysname; // its folder's name in /sys/class/block: a slash of the name is "!" there
	text_t path;         // where it is in sysfs, below /sys: "devices/pci0000:00/.../block/sda"
	device_t *whole;     // of a partition: the device that it is part of, or null
	device_t *partition; // of a whole device: the first of its partitions by name, or null
	device_t *next;      // of a partition: the next one
	unsigned uses;       // bits of uses.cpp
	bool partial;        // something is absent that every device of its kind has
	slave_t *slaves;     // when the query has asked for them: see links.h
	int error;           // errno of what could not be asked, and without which the list would be wrong
};

// Whether it is of this kind.
bool is_kind(const device_t &device, text_t kind);

// Absent in every number and text; its size is set.
void clear_device(block_device *record);

#endif
