// SPDX-License-Identifier: Apache-2.0
// What the rows of the partition list hide: entries that only protect another table, entries that lie outside
// their disk, texts and lists that are cut; and disks that it cannot hold.
#include "reasons_lists.h"

#include "partition_query.h"
#include "reasons_node.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <set>

static constexpr std::uint8_t PROTECTIVE = 0xee;
static constexpr std::uint64_t SECTOR = 512;

using maybe_reason_t = std::optional<reason_t>;

static std::string name_of_node(const std::string &node)
{
	return node.substr(node.rfind('/') + 1);
}

// As the kernel names it: the record counts from 0.
static std::string name_of(const known_partition_t &p)
{
	return name_of_node(p.disk) + fmt::to_string(std::uint64_t{p.index} + 1);
}

// The entry that keeps others from taking the disk for empty. It begins at sector 1 at the latest: of other
// rows nobody is asked.
static bool is_protective(const known_partition_t &p)
{
	if (p.start > SECTOR)
		return false;
	for (const table_entry_t &entry : read_partition_tables(p.disk).entries) {
		if (entry.index == p.index)
			return entry.type == PROTECTIVE;
	}
	return false;
}

static reason_t protective_reason(const known_partition_t &p, const facts_t &facts)
{
	const auto said = [](const std::string &text) {
		return reason_t{severity_t::NOTE, code_t::PROTECTIVE_ENTRY, text, true};
	};
	const auto table = facts.table_of ? facts.table_of(name_of_node(p.disk)) : std::nullopt;
	if (!table)
		return said("the protective entry of a GUID table, which could not be asked");
	if (table->kind != "gpt")
		return said("the protective entry of a GUID table, which is not there");
	if (!table->entries)
		return said("the protective entry of a GUID table");
	return said(fmt::format("the protective entry of a GUID table, which has {} {}", *table->entries,
	                        *table->entries == 1 ? "partition" : "partitions"));
}

// Bytes; 0 when nobody tells.
static std::uint64_t size_of_disk(const std::string &node, const facts_t &facts)
{
	const std::string name = name_of_node(node);
	for (const known_device_t &device : facts.devices) {
		if (device.name == name)
			return device.size > 0 ? static_cast<std::uint64_t>(device.size) : 0;
	}
	return node_t(node).sectors().value_or(0) * SECTOR;
}

static maybe_reason_t place_reason(const known_partition_t &p, std::uint64_t disk_size)
{
	const auto said = [](const char *text) {
		return reason_t{severity_t::NOTE, code_t::OUTSIDE_DISK, text, true};
	};
	if (disk_size == 0 || p.start + p.size <= disk_size)
		return std::nullopt;
	return said(p.start < disk_size ? "end outside the disk" : "beginning and end outside the disk");
}

// The record has room for 63 characters.
static bool is_cut(const std::string &mount_points)
{
	static const std::string MARK = "...";
	return mount_points.size() == 63 && mount_points.compare(60, MARK.size(), MARK) == 0;
}

static maybe_reason_t text_reason(const known_partition_t &p, const facts_t &facts)
{
	if (!is_cut(p.mount_points))
		return std::nullopt;
	std::string known;
	for (const std::string &point :
	     facts.mount_points_of ? facts.mount_points_of(name_of(p)) : std::vector<std::string>())
		known += (known.empty() ? "" : ", ") + point;
	return reason_t{severity_t::NOTE, code_t::CUT_TEXT,
	                known.empty() ? "mount points cut" : "mount points cut; in full: " + known, true};
}

static void take_rows(const facts_t &facts, reason_lines_t *lines)
{
	std::map<std::string, std::uint64_t> sizes;
	for (const known_partition_t &p : facts.partitions) {
		const auto [size, is_new] = sizes.try_emplace(p.disk);
		if (is_new)
			size->second = size_of_disk(p.disk, facts);
		if (is_protective(p))
			lines->add(name_of(p), protective_reason(p, facts));
		else if (const maybe_reason_t reason = place_reason(p, size->second))
			lines->add(name_of(p), *reason);
		if (const maybe_reason_t reason = text_reason(p, facts))
			lines->add(name_of(p), *reason);
	}
}

static reason_t cut_of_disk(detail_t what, const std::string &text)
{
	reason_t reason = cut(what, text);
	reason.of_node = true;
	return reason;
}

static void take_cut_lists(const facts_t &facts, reason_lines_t *lines)
{
	const reason_t beyond =
		cut_of_disk(detail_t::PARTITIONS,
	                    fmt::format("the list ends at {} partitions of a disk", +LISTED_PARTITIONS));
	const reason_t ring = cut_of_disk(detail_t::RING_OF_TABLES,
	                                  fmt::format("the partition tables lead back to themselves: the "
	                                              "list ends at {} entries, most of which are repeated",
	                                              +LISTED_PARTITIONS));
	for (const known_disk_t &disk : facts.disks) {
		const auto is_of_disk = [&](const known_partition_t &p) { return p.disk == disk.node; };
		const auto rows = std::count_if(facts.partitions.begin(), facts.partitions.end(), is_of_disk);
		if (rows != LISTED_PARTITIONS)
			continue;
		const partition_tables_t tables = read_partition_tables(disk.node);
		if (tables.is_cut)
			lines->add(name_of_node(disk.node), tables.is_ring ? ring : beyond);
	}
}

static std::vector<std::string> nodes_of(const facts_t &facts)
{
	std::vector<std::string> nodes;
	nodes.reserve(facts.partitions.size());
	for (const known_partition_t &p : facts.partitions)
		nodes.push_back("/dev/" + name_of(p));
	return nodes;
}

// Names of devices that have partitions.
static std::set<std::string> partitioned(const facts_t &facts, const block_table_t &table)
{
	std::set<std::string> names;
	for (const known_device_t &device : facts.devices) {
		if (device.kind == "partition")
			names.insert(device.disk);
	}
	if (!facts.knows_devices) {
		for (const block_row_t &row : table.rows) {
			if (row.is_partition)
				names.insert(row.stem);
		}
	}
	return names;
}

// That the list of disks is cut makes the query fail, which is told of by that.
static std::vector<unlisted_t> disks_without_rows(const std::vector<unlisted_t> &unlisted,
                                                  const std::set<std::string> &partitioned)
{
	std::vector<unlisted_t> result;
	for (const unlisted_t &disk : unlisted) {
		if (partitioned.count(disk.name) && disk.reason.code != code_t::LIST_CUT)
			result.push_back(disk);
	}
	return result;
}

static void take_disks_of_others(const facts_t &facts, const std::set<std::string> &partitioned,
                                 messages_t *messages, const kind_t &kind)
{
	const auto is_meant = [&](const known_device_t &d) {
		return is_software_device(d) && partitioned.count(d.name);
	};
	if (std::any_of(facts.devices.begin(), facts.devices.end(), is_meant))
		messages->push_back(
			{SOFTWARE_REASON.severity, &kind, SOFTWARE_REASON.code, SOFTWARE_REASON.text});
}

messages_t partition_reasons(const facts_t &facts, const std::vector<unlisted_t> &unlisted,
                             const kernel_tables_t &tables, const kind_t &kind, bool disks_are_shown)
{
	reason_lines_t lines(kind);
	take_rows(facts, &lines);
	take_cut_lists(facts, &lines);
	take_late_mounts(tables.mounts, nodes_of(facts), &lines);
	const std::set<std::string> names = partitioned(facts, tables.block);
	const std::vector<unlisted_t> disks = disks_without_rows(unlisted, names);
	for (const unlisted_t &disk : disks) {
		if (disks_are_shown)
			lines.add(disk.name, {severity_t::NOTE, code_t::NOT_AMONG_DISKS,
			                      "not among the disks, hence no partitions"});
		else
			lines.add(disk.name, disk.reason);
	}
	messages_t messages = lines.messages();
	if (!disks_are_shown)
		take_disks_of_others(facts, names, &messages, kind);
	return messages;
}
