// SPDX-License-Identifier: Apache-2.0
#include "uses.h"

#include "links.h"
#include "mount_devices.h"

#include <errno.h>

enum { ROOT, BOOT, SWAP, USES };

// File systems that can lie on devices which nothing tells: that of the lower layers, of a pool, of a
// program.
static bool hides_its_devices(text_t type)
{
	static constexpr text_t TYPES[] = {"overlay", "btrfs", "bcachefs", "zfs", "fuse"};
	for (const text_t hiding : TYPES)
		if (begins_with(type, hiding))
			return true;
	return false;
}

// For each use whether it is known at all, and by bit in `uses` of a device that it stands there.
struct uses_t {
	bool known[USES];
};

static void mark(const device_set_t &devices, int use)
{
	for (size_t i = 0; i < devices.count; i++)
		devices.devices[i]->uses |= 1U << use;
}

static void mark_mounts(const MountTree &tree, const Growing<mount_entry_t> &mounts, const device_set_t *sets,
                        uses_t *uses)
{
	static constexpr struct {
		text_t mount_point;
		int use;
	} POINTS[] = {{"/", ROOT}, {"/boot", BOOT}};

	uses->known[ROOT] = uses->known[BOOT] = true;
	for (size_t i = 0; i < mounts.size(); i++) {
		for (const auto &point : POINTS) {
			if (mounts[i].mount_point != point.mount_point || !tree.is_visible(i))
				continue;
			mark(sets[i], point.use);
			if (sets[i].count == 0 && hides_its_devices(mounts[i].type))
				uses->known[point.use] = false;
		}
	}
}

// What a device is used for, all devices are that it stands on.
static void hand_down(const Growing<stand_t> &stands)
{
	for (bool changed = true; changed;) {
		changed = false;
		for (const stand_t &stand : stands) {
			changed = changed || (stand.upper->uses & ~stand.lower->uses) != 0;
			stand.lower->uses |= stand.upper->uses;
		}
	}
}

static void put_flags(const Inventory &devices, const uses_t &uses)
{
	for (device_t *device : devices) {
		int *const flags[] = {&device->record.under_root, &device->record.under_boot,
		                      &device->record.under_swap};
		for (int use = 0; use < USES; use++)
			if (uses.known[use])
				*flags[use] = static_cast<int>(device->uses >> use & 1);
	}
}

void find_uses(Arena *arena, const Inventory &devices)
{
	Growing<mount_entry_t> mounts(arena);
	Growing<swap_entry_t> swaps(arena);
	Growing<stand_t> stands(arena);
	MountTree tree(arena);
	uses_t uses = {};

	if (!read_mounts(arena, &mounts))
		return;
	const device_set_t *of_mounts = tree.build(mounts) ? mount_devices(arena, devices, mounts) : nullptr;
	if (!of_mounts || !find_stands(devices, &stands))
		return;
	mark_mounts(tree, mounts, of_mounts, &uses);
	// A kernel that cannot swap has no such table.
	uses.known[SWAP] = read_swaps(arena, &swaps) || errno == ENOENT;
	const device_set_t *of_swaps = swap_devices(arena, devices, tree, of_mounts, swaps);
	for (size_t i = 0; of_swaps && i < swaps.size(); i++)
		mark(of_swaps[i], SWAP);
	hand_down(stands);
	put_flags(devices, uses);
}
