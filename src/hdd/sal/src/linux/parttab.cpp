// SPDX-License-Identifier: Apache-2.0
// A disk's partition tables: one in its first sector, the master boot record, and from there a chain.
//
//   sector 0        entry 0  partition            -> index 0
//                   entry 1  extended, start E    -> index 1, and the chain begins at sector E
//   sector E        entry 0  partition at E + s   -> index 4
//                   entry 1  link, start n        -> the next table is at sector E + n
//   sector E + n    ...                           -> index 5, ...
//
// Starts of partitions count from their own table, links from E. The chain ends where a table has no link,
// where there is no signature, or beyond the end of the disk.
#include "hdd/sal/src/linux/parttab.h"

#include "hdd/sal/src/0/fd.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/linux/devio.h"

#include <endian.h>

constexpr int FIRST_LOGICAL = 4;

bool is_extended_type(uint8_t type)
{
	return type == 0x05 || type == 0x0f || type == 0x85;
}

static bool has_signature(const parttab_t &table)
{
	// compat: some tools write the two bytes in the wrong order; such disks are in use.
	return (table.magic[0] == 0x55 && table.magic[1] == 0xaa) ||
	       (table.magic[0] == 0xaa && table.magic[1] == 0x55);
}

static int next_logical_index(const partlist_t &list)
{
	int next = FIRST_LOGICAL;
	for (const part_t &part : live_items(list))
		if (part.part_index >= next)
			next = part.part_index + 1;
	return next;
}

// Where the walk stands.
// compat: a chain that returns to a table from which nothing has been recorded since would never end, and
// ends there; a chain with entries goes round until the list is full. One such table is remembered; a newer
// one takes its place after 1, 2, 4, ... further tables, so that a circle of any length is found.
constexpr uint64_t NO_TABLE = UINT64_MAX;

struct chain_t {
	uint64_t table;    // sector of the current table
	uint64_t base;     // sector of the first extended table; 0 while the master boot record is read
	uint64_t seen;     // the table remembered, or NO_TABLE
	uint64_t patience; // how many tables may pass before another one is remembered
	uint64_t passed;
};

static void note_table(chain_t *chain, bool recorded)
{
	if (recorded) {
		chain->seen = NO_TABLE;
		chain->patience = 1;
		chain->passed = 0;
	} else if (++chain->passed == chain->patience) {
		chain->seen = chain->table;
		chain->patience *= 2;
		chain->passed = 0;
	}
}

enum table_result { TABLE_LINKS_ON, TABLE_IS_LAST, LIST_IS_FULL };

// Records the partitions of the current table; *link is the start of its last extended entry.
static table_result take_table(const parttab_t &table, const chain_t &chain, partlist_t *list, uint32_t *link)
{
	const bool in_mbr = chain.table == 0;
	table_result result = TABLE_IS_LAST;
	for (int slot = 0; slot < 4; slot++) {
		const parttab_item_t &entry = table.item[slot];
		if (entry.type == 0 || entry.size_sector == 0)
			continue;
		if (is_extended_type(entry.type)) {
			*link = le32toh(entry.start_sector);
			result = TABLE_LINKS_ON;
			if (!in_mbr)
				continue; // the extended partition itself is what the master boot record says
		}
		part_t part = {};
		part.part_index = in_mbr ? slot : next_logical_index(*list);
		part.type = entry.type;
		part.active = entry.active;
		part.start = chain.table + le32toh(entry.start_sector);
		part.size = le32toh(entry.size_sector);
		if (list_add(list, LIST_FIRST_FREE, part) != 0)
			return LIST_IS_FULL;
	}
	return result;
}

static int walk_chain(int fd, uint64_t disk_size, partlist_t *list)
{
	chain_t chain = {0, 0, NO_TABLE, 1, 0};
	while (chain.table < disk_size && chain.table != chain.seen) {
		parttab_t table;
		if (fdseeks(fd, chain.table) != 0 || fdread_buf(fd, &table, sizeof table) != 0)
			return -1;
		uint32_t link = 0;
		const int before = list->num_real;
		if (!has_signature(table) || take_table(table, chain, list, &link) != TABLE_LINKS_ON)
			break;
		note_table(&chain, list->num_real > before);
		if (chain.base == 0) {
			chain.base = link;
			chain.table = link;
		} else {
			chain.table = chain.base + link;
		}
	}
	return 0;
}

int read_disk_partlist(const char *disk, partlist_t *list)
{
	list_clear(list);
	const Descriptor device(disk);
	unsigned long size = 0;
	if (!device.is_open() || get_device_size(device.fd(), &size) != 0)
		return -1;
	if (walk_chain(device.fd(), size, list) != 0) {
		list_clear(list);
		return -1;
	}
	return 0;
}
