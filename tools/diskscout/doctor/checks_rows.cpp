// SPDX-License-Identifier: Apache-2.0
// What misleads in rows that are there.
#include "checks_machine.h"

#include "finding.h"
#include "machine.h"
#include "partition_query.h"
#include "reasons_node.h"

#include <algorithm>
#include <fmt/format.h>

findings_t look_at_guid_tables(const patient_t &at)
{
	return told(machine_of(at.from), code_t::PROTECTIVE_ENTRY, verdict_t::WARNING);
}

findings_t look_at_places(const patient_t &at)
{
	return told(machine_of(at.from), code_t::OUTSIDE_DISK, verdict_t::PROBLEM);
}

findings_t look_at_short_texts(const patient_t &at)
{
	return told(machine_of(at.from), code_t::CUT_TEXT, verdict_t::WARNING);
}

// Where the kernel does not tell it, the device does.
static int sector_of(const known_disk_t &disk, const facts_t &facts)
{
	for (const known_device_t &device : facts.devices) {
		if (device.node == disk.node)
			return device.logical_sector;
	}
	return node_t(disk.node).sector_size().value_or(0);
}

// An entry that only protects a GUID table says nothing of places.
static bool has_places(const known_disk_t &disk)
{
	static constexpr std::uint8_t PROTECTIVE = 0xee;
	const auto entries = read_partition_tables(disk.node).entries;
	return std::any_of(entries.begin(), entries.end(),
	                   [](const table_entry_t &entry) { return entry.type != PROTECTIVE; });
}

findings_t look_at_sectors(const patient_t &at)
{
	static constexpr int CLASSIC = 512;
	facts_t facts;
	take_devices(&facts, at.from);
	take_disks(&facts, at.from);
	findings_t findings;
	for (const known_disk_t &disk : facts.disks) {
		const int size = sector_of(disk, facts);
		if (size > CLASSIC && has_places(disk)) {
			append(findings,
			       about({disk.node},
			             fmt::format("has sectors of {} bytes, its partitions are told as if "
			                         "they had {}",
			                         size, CLASSIC),
			             verdict_t::PROBLEM));
		}
	}
	return findings;
}

findings_t look_at_extended_entries(const patient_t &at)
{
	facts_t facts;
	take_disks(&facts, at.from);
	std::vector<std::string> nodes;
	for (const known_disk_t &disk : facts.disks) {
		if (read_partition_tables(disk.node).lost_links > 0)
			nodes.push_back(disk.node);
	}
	return about(nodes, "has several extended entries in one table, of which the last one is followed",
	             verdict_t::PROBLEM);
}

// What / lies on, where that is no disk; empty: it is one, or nobody tells.
static std::string device_under_root(const machine_t &machine)
{
	const auto begins = [](const std::string &text, std::string_view with) {
		return text.compare(0, with.size(), with) == 0;
	};
	for (const known_device_t &device : machine.facts.devices) {
		if (device.is_under_root && (device.kind == "md" || device.kind == "dm"))
			return device.node;
	}
	const std::string &root = machine.tables.mounts.root;
	for (const std::string_view prefix : {"/dev/md", "/dev/mapper/", "/dev/dm-"}) {
		if (!machine.facts.knows_devices && begins(root, prefix))
			return root;
	}
	return "";
}

findings_t look_at_root(const patient_t &at)
{
	const machine_t machine = machine_of(at.from);
	const auto &disks = machine.facts.disks;
	const bool is_marked = std::any_of(disks.begin(), disks.end(),
	                                   [](const known_disk_t &disk) { return disk.is_of_system; });
	const std::string device = device_under_root(machine);
	if (disks.empty() || is_marked || device.empty())
		return {};
	return {{verdict_t::WARNING,
	         fmt::format("/ lies on {}, and no disk is marked as the system's", device)}};
}
