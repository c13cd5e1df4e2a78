// SPDX-License-Identifier: Apache-2.0
// Why the partition query failed. It stops at the first disk whose tables it cannot read, and tells nothing
// of those behind it.
#include "partition_query.h"

#include "reasons_lists.h"
#include "reasons_node.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <set>

namespace
{

// Where the walk through a disk's tables stands: the first sector, then from one extended partition to the
// next.
struct walk_t {
	std::uint64_t table = 0;
	std::uint64_t base = 0; // sector of the first extended partition
	std::set<std::uint64_t> passed =
		{}; // tables since the last entry: coming back to one would never end
	unsigned next_index = 4;
};

} // namespace

static constexpr std::size_t ENTRIES = 446;
static constexpr std::size_t ENTRY_SIZE = 16;

static std::uint32_t number_at(const unsigned char *bytes)
{
	return bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8 |
	       static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

// The two bytes are taken either way round.
static bool has_signature(const unsigned char (&sector)[512])
{
	return sector[510] + sector[511] == 0x55 + 0xaa && (sector[510] == 0x55 || sector[510] == 0xaa);
}

static bool is_extended(std::uint8_t type)
{
	return type == 0x05 || type == 0x0f || type == 0x85;
}

// The start of the last extended entry, which leads on, or nothing.
static std::optional<std::uint32_t> take_table(const unsigned char (&sector)[512], walk_t *walk,
                                               partition_tables_t *tables)
{
	std::optional<std::uint32_t> link;
	for (unsigned slot = 0; slot < 4; slot++) {
		const unsigned char *const entry = sector + ENTRIES + slot * ENTRY_SIZE;
		const std::uint8_t type = entry[4];
		if (type == 0 || number_at(entry + 12) == 0)
			continue;
		if (is_extended(type)) {
			tables->lost_links += link ? 1U : 0U;
			link = number_at(entry + 8);
			if (walk->table != 0)
				continue;
		}
		walk->passed.clear();
		if (tables->entries.size() == LISTED_PARTITIONS) {
			tables->is_cut = true;
			return std::nullopt;
		}
		tables->entries.push_back({walk->table == 0 ? slot : walk->next_index++, type});
	}
	return link;
}

static std::string sector_failure(const std::string &node, std::uint64_t sector)
{
	return fmt::format("sector {} of {}: {}", sector, node,
	                   errno ? strerror(errno) : "it cannot be read");
}

partition_tables_t read_partition_tables(const std::string &node)
{
	partition_tables_t tables;
	const node_t device(node);
	if (device.error()) {
		tables.is_opened = false;
		tables.failure = fmt::format("{}: {}", node, strerror(device.error()));
		return tables;
	}
	const std::optional<std::uint64_t> sectors = device.sectors();
	if (!sectors) {
		tables.failure = fmt::format("the size of {}: {}", node, strerror(errno));
		return tables;
	}
	walk_t walk;
	std::set<std::uint64_t> read;
	while (walk.table < *sectors && walk.passed.insert(walk.table).second) {
		tables.is_ring |= !read.insert(walk.table).second;
		unsigned char sector[512];
		if (!device.read_sector(walk.table, sector)) {
			tables.failure = sector_failure(node, walk.table);
			return tables;
		}
		const auto link = has_signature(sector) ? take_table(sector, &walk, &tables) : std::nullopt;
		if (!link)
			break;
		walk.table = walk.base + *link;
		walk.base = walk.base ? walk.base : *link;
	}
	return tables;
}

// The first disk that may have stopped the query: behind the last one that has rows.
static std::size_t first_without_rows(const facts_t &facts)
{
	std::size_t first = 0;
	for (std::size_t i = 0; i < facts.disks.size(); i++) {
		const std::string &node = facts.disks[i].node;
		const auto is_of_disk = [&](const known_partition_t &p) { return p.disk == node; };
		if (std::any_of(facts.partitions.begin(), facts.partitions.end(), is_of_disk))
			first = i + 1;
	}
	return first;
}

static std::string mount_table_failure()
{
	const node_t table("/etc/mtab");
	return table.error() ? fmt::format("/etc/mtab: {}", strerror(table.error())) : "";
}

static std::string known_failure(const facts_t &facts, const kernel_tables_t &tables)
{
	const std::string beyond = disk_beyond_list(facts, tables);
	if (!beyond.empty())
		return fmt::format("at /dev/{}: the list of disks ends at {}", beyond, +LISTED_DISKS);
	std::string failure = mount_table_failure();
	for (std::size_t i = first_without_rows(facts); failure.empty() && i < facts.disks.size(); i++)
		failure = read_partition_tables(facts.disks[i].node).failure;
	return failure.empty() ? "" : "at " + failure;
}

static std::string or_none(const std::string &failure)
{
	return failure.empty() ? "no cause was found" : failure;
}

std::string partition_failure(const facts_t &facts, const kernel_tables_t &tables)
{
	return or_none(known_failure(facts, tables));
}

std::string known_partition_failure(enquiry_t &from)
{
	facts_t facts;
	take_disks(&facts, from);
	take_partitions(&facts, from);
	return known_failure(facts, read_kernel_tables());
}

std::string partition_failure(enquiry_t &from)
{
	return or_none(known_partition_failure(from));
}
