// SPDX-License-Identifier: Apache-2.0
#include "btrfs.h"

#include <stdlib.h>

static int by_name(const void *one, const void *other)
{
	const auto *left = *static_cast<device_t *const *>(one);
	const auto *right = *static_cast<device_t *const *>(other);
	return compare_names(left->sysname, right->sysname);
}

// The folder `features` beside them has no devices.
void BtrfsFilesystems::read_devices(const Inventory &inventory, const Folder &filesystem)
{
	Growing<device_t *> devices(arena_);
	Entries entries(filesystem, "devices");
	while (const char *sysname = entries.next()) {
		device_t *device = inventory.by_sysname(std::string_view(sysname));
		device_t **place = device ? devices.add() : nullptr;
		if (place)
			*place = device;
	}
	device_set_t *set = devices.size() > 0 && !entries.failed() ? sets_.add() : nullptr;
	if (!set)
		return;
	qsort(devices.begin(), devices.size(), sizeof(device_t *), by_name);
	*set = {devices.begin(), devices.size()};
}

BtrfsFilesystems::BtrfsFilesystems(Arena *arena, const Inventory &inventory) : arena_(arena), sets_(arena)
{
	const Folder all("/sys/fs/btrfs");
	if (!all.is_open())
		return;
	Entries entries(all, ".");
	while (const char *name = entries.next()) {
		const Folder filesystem(all, name);
		if (filesystem.is_open())
			read_devices(inventory, filesystem);
	}
}

device_set_t BtrfsFilesystems::with_device(const device_t *device) const
{
	for (const device_set_t &set : sets_)
		for (size_t i = 0; i < set.count; i++)
			if (set.devices[i] == device)
				return set;
	return {};
}
