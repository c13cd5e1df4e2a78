// SPDX-License-Identifier: Apache-2.0
// What is mounted and swapped to; see diskscout_block.h.
#include "mount_devices.h"
#include "mount_space.h"
#include "mount_tree.h"
#include "queries.h"
#include "record.h"

#include <errno.h>

// What the host's tables say.
struct tables_t {
	explicit tables_t(Arena *arena) : inventory(arena), mounts(arena), swaps(arena), tree(arena) {}

	Inventory inventory;
	Growing<mount_entry_t> mounts;
	Growing<swap_entry_t> swaps;
	MountTree tree;
};

// A host without sysfs has mounts all the same, and a kernel without swap has no table of swap areas.
static bool read_tables(Arena *arena, tables_t *to)
{
	return read_mounts(arena, &to->mounts) && (read_swaps(arena, &to->swaps) || errno == ENOENT) &&
	       (to->inventory.scan(note_suspended) || errno == ENOENT) && to->tree.build(to->mounts);
}

static block_text *names_of(Arena *arena, const device_set_t &set)
{
	Chain<block_text> names(arena);
	for (size_t i = 0; i < set.count; i++) {
		block_text *name = names.add();
		if (name)
			name->text = set.devices[i]->record.name;
	}
	return names.first();
}

static void fill_mount(Arena *arena, const mount_entry_t &mount, block_mount *record)
{
	record->kind = "mount";
	record->id = mount.id;
	record->parent_id = mount.parent_id;
	record->major = mount.major_number;
	record->minor = mount.minor_number;
	record->source = shown_text(arena, mount.source);
	record->type = shown_text(arena, mount.type);
	record->root = shown_text(arena, mount.root);
	record->mount_point = shown_text(arena, mount.mount_point);
	record->options = shown_text(arena, mount.options);
	record->super_options = shown_text(arena, mount.super_options);
	record->priority = BLOCK_ABSENT;
}

static void fill_swap(Arena *arena, const swap_entry_t &swap, block_mount *record)
{
	record->kind = "swap";
	record->id = record->parent_id = BLOCK_ABSENT;
	record->major = record->minor = BLOCK_ABSENT;
	record->source = shown_text(arena, swap.path);
	record->type = shown_text(arena, swap.type);
	record->shadowed = BLOCK_ABSENT;
	record->total = swap.total;
	record->used = swap.used;
	record->available = BLOCK_ABSENT;
	record->priority = swap.priority;
}

static bool add_mounts(Arena *arena, const tables_t &tables, const device_set_t *sets,
                       Chain<block_mount> *list)
{
	const mount_space_t *spaces = mount_space(tables.inventory, tables.mounts, tables.tree, sets);
	for (size_t i = 0; spaces && i < tables.mounts.size(); i++) {
		block_mount *record = list->add();
		if (!record)
			return false;
		fill_mount(arena, tables.mounts[i], record);
		record->devices = names_of(arena, sets[i]);
		record->shadowed = tables.tree.is_visible(i) ? 0 : 1;
		record->total = spaces[i].total;
		record->used = spaces[i].used;
		record->available = spaces[i].available;
	}
	return spaces != nullptr;
}

static bool add_swaps(Arena *arena, const tables_t &tables, const device_set_t *of_mounts,
                      Chain<block_mount> *list)
{
	const device_set_t *sets =
		swap_devices(arena, tables.inventory, tables.tree, of_mounts, tables.swaps);
	for (size_t i = 0; sets && i < tables.swaps.size(); i++) {
		block_mount *record = list->add();
		if (!record)
			return false;
		fill_swap(arena, tables.swaps[i], record);
		record->devices = names_of(arena, sets[i]);
	}
	return sets != nullptr;
}

int list_mounts(void **result, int *length)
{
	Arena arena;
	tables_t tables(&arena);
	Chain<block_mount> list(&arena);

	if (!read_tables(&arena, &tables))
		return -1;
	const device_set_t *sets = mount_devices(&arena, tables.inventory, tables.mounts);
	if (!sets || !add_mounts(&arena, tables, sets, &list) || !add_swaps(&arena, tables, sets, &list) ||
	    arena.is_exhausted()) {
		errno = ENOMEM;
		return -1;
	}
	return hand_out(MOUNT_LAYOUT, list.first(), result, length);
}
