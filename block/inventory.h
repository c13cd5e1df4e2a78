// All block devices that the kernel knows: what every list is made from.
#ifndef DISKSCOUT_BLOCK_INVENTORY_H
#define DISKSCOUT_BLOCK_INVENTORY_H

#include "arena.h"
#include "diskscout_block.h"
#include "sysfs.h"
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

// Whether it is of this kind.
bool is_kind(const device_t &device, text_t kind);

// Absent in every number and text; its size is set.
void clear_device(block_device *record);

#endif
