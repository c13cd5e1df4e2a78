// SPDX-License-Identifier: Apache-2.0
// The partition chain, against the same walk done in the simplest way.
#include "outside.h"
#include "promises.h"
#include "targets.h"

#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/linux/parttab.h"

#include <endian.h>
#include <memory>
#include <set>
#include <vector>

namespace
{

constexpr uint64_t DISK_SECTORS = 64;
constexpr size_t TABLE_AT = 446;
constexpr size_t TABLE_SIZE = 66;

std::string disk_of(const std::string &tables)
{
	std::string disk(DISK_SECTORS * 512, '\0');
	for (size_t sector = 0; sector < DISK_SECTORS && sector * TABLE_SIZE < tables.size(); sector++) {
		const std::string table = tables.substr(sector * TABLE_SIZE, TABLE_SIZE);
		disk.replace(sector * 512 + TABLE_AT, table.size(), table);
	}
	return disk;
}

parttab_t table_at(const std::string &disk, uint64_t sector)
{
	parttab_t table;
	memcpy(&table, disk.data() + sector * 512, sizeof table);
	return table;
}

bool is_table(const parttab_t &table)
{
	const unsigned magic = table.magic[0] * 256U + table.magic[1];
	return magic == 0x55aa || magic == 0xaa55;
}

part_t part_of(const parttab_item_t &entry, uint64_t sector, int index)
{
	part_t part = {};
	part.part_index = index;
	part.type = entry.type;
	part.active = entry.active;
	part.start = sector + le32toh(entry.start_sector);
	part.size = le32toh(entry.size_sector);
	return part;
}

// It remembers every table since the last entry, so that it ends where no further entry can come.
std::vector<part_t> partitions_of(const std::string &disk)
{
	std::vector<part_t> parts;
	std::set<uint64_t> seen;
	uint64_t base = 0;
	int logical = 4;
	for (uint64_t sector = 0; sector < DISK_SECTORS && seen.insert(sector).second;) {
		const parttab_t table = table_at(disk, sector);
		if (!is_table(table))
			break;
		bool linked = false;
		uint64_t link = 0;
		for (int slot = 0; slot < 4; slot++) {
			const parttab_item_t &entry = table.item[slot];
			if (entry.type == 0 || le32toh(entry.size_sector) == 0)
				continue;
			const bool extended = entry.type == 0x05 || entry.type == 0x0f || entry.type == 0x85;
			if (extended) {
				linked = true;
				link = le32toh(entry.start_sector);
			}
			if (extended && sector != 0)
				continue;
			if (parts.size() == 32)
				return parts;
			parts.push_back(part_of(entry, sector, sector == 0 ? slot : logical++));
			seen.clear(); // the next round over it may record again
		}
		if (!linked)
			break;
		sector = base + link;
		base = base == 0 ? link : base;
	}
	return parts;
}

bool is_same(const part_t &left, const part_t &right)
{
	return left.part_index == right.part_index && left.type == right.type &&
	       left.active == right.active && left.start == right.start && left.size == right.size;
}

} // namespace

std::string check_chain(const char *path)
{
	static const Host host("chain", "device /dev/hda\n\tBLKGETSIZE 64\n\timage disk\n");
	const std::string disk = disk_of(content_of(path));
	host.file("disk", disk);
	const Visit visit(host);
	const auto list = std::make_unique<partlist_t>();
	const int result = read_disk_partlist("/dev/hda", list.get());
	const std::vector<part_t> expected = partitions_of(disk);
	if (result != 0)
		return "result " + std::to_string(result);
	if (list->num != static_cast<int>(expected.size()) || list->num_real != list->num)
		return "count";
	for (size_t i = 0; i < expected.size(); i++)
		if (!is_same(list->item[i], expected[i]))
			return "partition " + std::to_string(i);
	return "";
}
