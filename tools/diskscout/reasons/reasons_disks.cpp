// SPDX-License-Identifier: Apache-2.0
// What keeps a disk out of the list of disks. The checks stand in the order in which the classic code comes
// to them.
#include "reasons_lists.h"

#include "partition_query.h"
#include "reasons_node.h"
#include "unused.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <set>

static constexpr std::size_t TABLE_ROWS = 32; // of /proc/partitions and of /proc/scsi/scsi

using maybe_reason_t = std::optional<reason_t>;

static reason_t note(code_t code, const std::string &text)
{
	return {severity_t::NOTE, code, text};
}

reason_t cut(detail_t what, const std::string &text)
{
	return {severity_t::ERROR, code_t::LIST_CUT, text, false, what};
}

reason_t of_other_type(code_t code, const std::string &type, const std::string &path, const char *wanted)
{
	return {severity_t::NOTE, code, fmt::format("\"{}\" in {}, not \"{}\"", type, path, wanted), false,
	        detail_t::OF_OTHER_TYPE};
}

reason_t unread_table(code_t code, const std::string &path, int error)
{
	if (error == ENOENT)
		return note(code, fmt::format("this kernel has no {}", path));
	return {severity_t::WARNING, is_denied(error) ? code_t::NO_PERMISSION : code,
	        fmt::format("{} cannot be read: {}", path, strerror(error))};
}

static maybe_reason_t block_table_reason(const known_device_t &disk, const block_table_t &table)
{
	static const std::string PATH = "/proc/partitions";
	const auto row = std::find(table.disks.begin(), table.disks.end(), disk.name);
	if (row == table.disks.end()) {
		if (table.error)
			return unread_table(code_t::NOT_IN_BLOCK_TABLE, PATH, table.error);
		// The kernel leaves such disks out.
		if (disk.size == 0)
			return note(code_t::NO_MEDIUM, "no medium");
		return note(code_t::NOT_IN_BLOCK_TABLE, "not in " + PATH);
	}
	if (row - table.disks.begin() >= static_cast<std::ptrdiff_t>(TABLE_ROWS))
		return cut(detail_t::TABLE_ROWS, fmt::format("behind the {}nd disk of {}", TABLE_ROWS, PATH));
	return std::nullopt;
}

static reason_t unopened(int error)
{
	const bool denied = is_denied(error);
	return {denied ? severity_t::WARNING : severity_t::NOTE,
	        denied ? code_t::NO_PERMISSION : code_t::NOT_OPENED,
	        fmt::format("cannot be opened: {}", strerror(error)), true};
}

static maybe_reason_t scsi_reason(const std::string &name, const scsi_table_t &table)
{
	static const std::string PATH = "/proc/scsi/scsi";
	const node_t node("/dev/" + name);
	if (node.error() == ENOMEDIUM)
		return note(code_t::NO_MEDIUM, "no medium");
	if (node.error())
		return unopened(node.error());
	const std::optional<std::uint32_t> address = node.scsi_address();
	if (!address)
		return note(code_t::NOT_IN_SCSI_TABLE, fmt::format("no SCSI address: {}", strerror(errno)));
	const auto row = std::find_if(table.rows.begin(), table.rows.end(),
	                              [&](const scsi_row_t &r) { return r.address == *address; });
	if (row == table.rows.end())
		return note(code_t::NOT_IN_SCSI_TABLE, "not in " + PATH);
	if (row - table.rows.begin() >= static_cast<std::ptrdiff_t>(TABLE_ROWS))
		return cut(detail_t::TABLE_ROWS,
		           fmt::format("behind the {}nd device of {}", TABLE_ROWS, PATH));
	if (row->type != "Direct-Access")
		return of_other_type(code_t::NOT_IN_SCSI_TABLE, row->type, PATH, "Direct-Access");
	return std::nullopt;
}

// What of the checks only needs the name.
static maybe_reason_t name_reason(const std::string &name, const kernel_tables_t &tables)
{
	switch (classic_name_of(name)) {
	case classic_name_t::IDE:
		if (tables.ide.error)
			return unread_table(code_t::NO_IDE_TABLE, "/proc/ide", tables.ide.error);
		return std::nullopt;
	case classic_name_t::SCSI:
		if (tables.scsi.error)
			return unread_table(code_t::NO_SCSI_TABLE, "/proc/scsi/scsi", tables.scsi.error);
		return std::nullopt;
	default:
		return note(code_t::NO_CLASSIC_NAME, "no classic name (hda to hdt, sda to sddx)");
	}
}

static maybe_reason_t disk_reason(const known_device_t &disk, const kernel_tables_t &tables)
{
	if (maybe_reason_t reason = name_reason(disk.name, tables))
		return reason;
	if (maybe_reason_t reason = block_table_reason(disk, tables.block))
		return reason;
	if (classic_name_of(disk.name) == classic_name_t::IDE)
		return ide_reason(disk.name, "disk", tables.ide);
	return scsi_reason(disk.name, tables.scsi);
}

bool is_software_device(const known_device_t &device)
{
	return device.kind == "md" || device.kind == "dm" || (device.kind == "loop" && device.size > 0);
}

bool is_optical(const known_device_t &device, const ide_table_t &table)
{
	const ide_drive_t *const drive = table.drive(device.name);
	return device.kind == "rom" || (drive && drive->media == "cdrom");
}

// What lsblk calls a disk, and what the kernel's table may hold as one.
static bool is_disk(const known_device_t &device, const ide_table_t &table)
{
	static const std::set<std::string> OTHERS = {"partition", "path", "md", "dm", "loop", "ram"};
	return !device.hidden && !is_unused(device.kind, device.size) && OTHERS.count(device.kind) == 0 &&
	       !is_optical(device, table);
}

static std::vector<known_device_t> devices_of_table(const block_table_t &table)
{
	std::vector<known_device_t> devices;
	std::set<std::string> known;
	for (const std::string &name : table.disks) {
		if (classic_name_of(name) != classic_name_t::NONE && known.insert(name).second)
			devices.push_back({name, "disk", {}});
	}
	return devices;
}

static std::set<std::string> listed_nodes(const facts_t &facts)
{
	std::set<std::string> nodes;
	for (const known_disk_t &disk : facts.disks)
		nodes.insert(disk.node);
	return nodes;
}

// Of a disk that nothing keeps out of the list but the list itself.
static reason_t list_reason(const facts_t &facts, const std::string &name)
{
	if (facts.disks.size() >= LISTED_DISKS)
		return cut(detail_t::DISKS, fmt::format("the list ends at {} disks", +LISTED_DISKS));
	const bool is_ide = classic_name_of(name) == classic_name_t::IDE;
	return note(is_ide ? code_t::NOT_IN_IDE_TABLE : code_t::NOT_IN_SCSI_TABLE, "no cause was found");
}

std::vector<unlisted_t> unlisted_disks(const facts_t &facts, const kernel_tables_t &tables)
{
	std::vector<unlisted_t> unlisted;
	const std::set<std::string> listed = listed_nodes(facts);
	for (const known_device_t &device :
	     facts.knows_devices ? facts.devices : devices_of_table(tables.block)) {
		if (!is_disk(device, tables.ide) || listed.count("/dev/" + device.name))
			continue;
		const maybe_reason_t reason = disk_reason(device, tables);
		unlisted.push_back({device.name, reason ? *reason : list_reason(facts, device.name)});
	}
	return unlisted;
}

std::string disk_beyond_list(const facts_t &facts, const kernel_tables_t &tables)
{
	if (facts.disks.size() < LISTED_DISKS)
		return "";
	const std::set<std::string> listed = listed_nodes(facts);
	for (const known_device_t &device : devices_of_table(tables.block)) {
		if (!listed.count("/dev/" + device.name) && !disk_reason(device, tables))
			return device.name;
	}
	return "";
}

const reason_t SOFTWARE_REASON = {severity_t::NOTE, code_t::NO_CLASSIC_NAME,
                                  "arrays, mappings and loop devices have no classic name"};

// A listed disk whose size is not known, because its node told nothing.
static maybe_reason_t row_reason(const known_disk_t &disk)
{
	const int error = disk.size ? 0 : node_t(disk.node).error();
	return error ? maybe_reason_t(unopened(error)) : std::nullopt;
}

static message_t said(const kind_t &kind, const reason_t &reason)
{
	return {reason.severity, &kind, reason.code, reason.text};
}

messages_t disk_reasons(const facts_t &facts, const std::vector<unlisted_t> &unlisted,
                        const kernel_tables_t &tables, const kind_t &kind)
{
	reason_lines_t lines(kind);
	for (const known_disk_t &disk : facts.disks) {
		if (const maybe_reason_t reason = row_reason(disk))
			lines.add(disk.node.substr(disk.node.rfind('/') + 1), *reason);
	}
	for (const unlisted_t &disk : unlisted)
		lines.add(disk.name, disk.reason);
	messages_t messages = lines.messages();
	if (std::any_of(facts.devices.begin(), facts.devices.end(), is_software_device))
		messages.push_back(said(kind, SOFTWARE_REASON));
	// Then there is nothing whose names could be told.
	if (!facts.knows_devices && tables.block.error)
		messages.push_back(said(kind, unread_table(code_t::NOT_IN_BLOCK_TABLE, "/proc/partitions",
		                                           tables.block.error)));
	take_unread_mounts(tables.mounts, !facts.disks.empty(), "no system disk is known", kind, &messages);
	return messages;
}
