// SPDX-License-Identifier: Apache-2.0
#include "mount_devices.h"

#include <stdlib.h>

struct numbered_t {
	int major_number, minor_number;
	size_t mount;
};

static bool is_same_number(const numbered_t &one, const numbered_t &other)
{
	return one.major_number == other.major_number && one.minor_number == other.minor_number;
}

static int by_number(const void *one, const void *other)
{
	const auto *left = static_cast<const numbered_t *>(one);
	const auto *right = static_cast<const numbered_t *>(other);
	if (left->major_number != right->major_number)
		return left->major_number < right->major_number ? -1 : 1;
	if (left->minor_number != right->minor_number)
		return left->minor_number < right->minor_number ? -1 : 1;
	return left->mount < right->mount ? -1 : 1;
}

size_t *first_mounts(Arena *arena, const Growing<mount_entry_t> &mounts)
{
	const size_t count = mounts.size();
	auto *firsts = arena->make_array<size_t>(count + 1);
	auto *numbered = arena->make_array<numbered_t>(count + 1);
	if (!firsts || !numbered)
		return nullptr;
	for (size_t i = 0; i < count; i++)
		numbered[i] = {mounts[i].major_number, mounts[i].minor_number, i};
	qsort(numbered, count, sizeof *numbered, by_number);
	for (size_t i = 0, first = 0; i < count; i++) {
		if (!is_same_number(numbered[i], numbered[first]))
			first = i;
		firsts[numbered[i].mount] = numbered[first].mount;
	}
	return firsts;
}

static bool is_btrfs(const mount_entry_t &mount)
{
	return mount.major_number == 0 && mount.type == "btrfs";
}

// The source is any name that one of the devices had when it was mounted: the first mount whose source still
// is one tells for all of the file system.
static void find_btrfs(Arena *arena, const Inventory &inventory, const Growing<mount_entry_t> &mounts,
                       const size_t *firsts, device_set_t *sets)
{
	const BtrfsFilesystems filesystems(arena, inventory);
	// The source that was tried last, by the first mount: most mounts of one have the same.
	auto *tried = arena->make_array<text_t>(mounts.size());
	for (size_t i = 0; tried && i < mounts.size(); i++) {
		const text_t source = mounts[i].source;
		const size_t first = firsts[i];
		if (!is_btrfs(mounts[i]) || sets[first].count > 0 || tried[first] == source)
			continue;
		tried[first] = source;
		const device_t *device = inventory.by_node(source);
		if (device)
			sets[first] = filesystems.with_device(device);
	}
	for (size_t i = 0; i < mounts.size(); i++)
		if (is_btrfs(mounts[i]))
			sets[i] = sets[firsts[i]];
}

static device_set_t set_of(Arena *arena, device_t *device)
{
	auto *devices = device ? arena->make<device_t *>() : nullptr;
	if (!devices)
		return {};
	*devices = device;
	return {devices, 1};
}

device_set_t *mount_devices(Arena *arena, const Inventory &inventory, const Growing<mount_entry_t> &mounts)
{
	const size_t *firsts = first_mounts(arena, mounts);
	auto *sets = arena->make_array<device_set_t>(mounts.size() + 1);
	bool any_btrfs = false;

	if (!firsts || !sets)
		return nullptr;
	for (size_t i = 0; i < mounts.size(); i++) {
		any_btrfs = any_btrfs || is_btrfs(mounts[i]);
		if (firsts[i] == i && mounts[i].major_number != 0)
			sets[i] = set_of(arena,
			                 inventory.by_number(mounts[i].major_number, mounts[i].minor_number));
		else if (firsts[i] < i && mounts[i].major_number != 0)
			sets[i] = sets[firsts[i]];
	}
	if (any_btrfs)
		find_btrfs(arena, inventory, mounts, firsts, sets);
	return arena->is_exhausted() ? nullptr : sets;
}

device_set_t *swap_devices(Arena *arena, const Inventory &inventory, const MountTree &tree,
                           const device_set_t *of_mounts, const Growing<swap_entry_t> &swaps)
{
	auto *sets = arena->make_array<device_set_t>(swaps.size() + 1);
	for (size_t i = 0; sets && i < swaps.size(); i++) {
		const size_t holder =
			swaps[i].type == "file" ? tree.holder_of(swaps[i].path) : MountTree::NONE;
		if (holder != MountTree::NONE)
			sets[i] = of_mounts[holder];
		else if (swaps[i].type != "file")
			sets[i] = set_of(arena, inventory.by_node(swaps[i].path));
	}
	return arena->is_exhausted() ? nullptr : sets;
}
