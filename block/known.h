// SPDX-License-Identifier: Apache-2.0
// What is known of the contents of a device without reading it: by udev's database, which keeps what was
// found when the device appeared, and by the kernel, which keeps its partitions.
#ifndef DISKSCOUT_BLOCK_KNOWN_H
#define DISKSCOUT_BLOCK_KNOWN_H

#include "inventory.h"
#include "udev.h"

class KnownContents
{
public:
	KnownContents(Arena *arena, const Inventory *inventory) : arena_(arena), inventory_(inventory) {}

	// All that is known, and by whom: "udev", "kernel", or null.
	void tell(const device_t &device, block_content *content) const;

	// Where the partition begins, in bytes; BLOCK_ABSENT.
	long long start_of(const device_t &partition) const;

private:
	void tell_file_system(const device_t &device, const UdevRecord &udev, block_content *content) const;
	bool tell_partitions(const device_t &device, block_content *content) const;
	bool tell_partition(const device_t &partition, block_partition *to) const;
	void tell_kernels(const device_t &partition, block_partition *to) const;
	UdevRecord record_of(const device_t &device) const
	{
		return {arena_, udev_, device.record.major, device.record.minor};
	}

	Arena *arena_;
	const Inventory *inventory_;
	UdevDatabase udev_;
};

#endif
