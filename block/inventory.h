// SPDX-License-Identifier: Apache-2.0
// All block devices that the kernel knows: what every list is made from.
#ifndef DISKSCOUT_BLOCK_INVENTORY_H
#define DISKSCOUT_BLOCK_INVENTORY_H

#include "device.h"
#include "sysfs.h"

class Inventory
{
public:
	explicit Inventory(Arena *arena) : arena_(arena), class_("/sys/class/block"), devices_(arena) {}

	// Reads more of a device while its folder is open.
	using fill_t = void (*)(void *context, const Folder &folder, device_t *device);

	// Finds names, numbers, kinds and sizes of all devices, and what `fill` adds. False, with errno set,
	// when /sys/class/block or what makes a device one cannot be read, or memory is short.
	bool scan(fill_t fill = nullptr, void *context = nullptr);

	// The folder of all devices, for who reads of one more later.
	const Folder &class_folder() const { return class_; }

	Arena *arena() const { return arena_; }
	size_t size() const { return devices_.size(); }
	// In the order of their names.
	device_t *const *begin() const { return devices_.begin(); }
	device_t *const *end() const { return devices_.end(); }

	// Null when there is none.
	device_t *by_number(int major_number, int minor_number) const;
	device_t *by_sysname(text_t sysname) const;
	// By the node's path: "/dev/sda1", also by a link of it that the host has ("/dev/mapper/vg-root").
	device_t *by_node(text_t path) const;

private:
	device_t *read_device(const char *sysname, fill_t fill, void *context, int *error);
	void drop_partial();
	bool put_in_order();
	void find_wholes();
	void drop_orphans();

	Arena *arena_;
	Folder class_;
	Growing<device_t *> devices_;    // by name
	device_t **by_number_ = nullptr; // by number
};

#endif
