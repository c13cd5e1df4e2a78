// SPDX-License-Identifier: Apache-2.0
// What keeps a drive of /proc/ide out of the lists, and an optical drive out of that of the CD-ROM drives.
#include "reasons_lists.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>

static constexpr std::ptrdiff_t DRIVES_READ = 8;

using maybe_reason_t = std::optional<reason_t>;

static reason_t note(const std::string &text)
{
	return {severity_t::NOTE, code_t::NOT_IN_IDE_TABLE, text};
}

static reason_t unread_drive(const ide_drive_t &drive)
{
	if (drive.error)
		return unread_table(code_t::NOT_IN_IDE_TABLE, drive.unread, drive.error);
	return note(drive.unread + " cannot be used");
}

// A drive that cannot be read takes no place among those that are.
static bool is_behind_the_last(const ide_drive_t &drive, const ide_table_t &table)
{
	const auto is_before = [&](const ide_drive_t &d) { return d.unread.empty() && d.name < drive.name; };
	return std::count_if(table.drives.begin(), table.drives.end(), is_before) >= DRIVES_READ;
}

maybe_reason_t ide_reason(const std::string &name, const std::string &media, const ide_table_t &table)
{
	const ide_drive_t *const drive = table.drive(name);
	if (!drive)
		return note("not in /proc/ide");
	if (!drive->unread.empty())
		return unread_drive(*drive);
	if (drive->media != media)
		return of_other_type(code_t::NOT_IN_IDE_TABLE, drive->media, "/proc/ide", media.c_str());
	if (is_behind_the_last(*drive, table))
		return cut(detail_t::DRIVES, fmt::format("behind the {}th drive of /proc/ide", DRIVES_READ));
	return std::nullopt;
}

static reason_t cdrom_reason(const std::string &name, const ide_table_t &table)
{
	if (classic_name_of(name) != classic_name_t::IDE)
		return {severity_t::NOTE, code_t::NO_CLASSIC_NAME,
		        "no classic name for an optical drive (hda to hdt)"};
	if (table.error)
		return unread_table(code_t::NO_IDE_TABLE, "/proc/ide", table.error);
	return ide_reason(name, "cdrom", table).value_or(note("no cause was found"));
}

static std::vector<known_device_t> devices_of_table(const ide_table_t &table)
{
	std::vector<known_device_t> devices;
	for (const ide_drive_t &drive : table.drives)
		devices.push_back({drive.name, "disk", {}});
	return devices;
}

messages_t cdrom_reasons(const facts_t &facts, const kernel_tables_t &tables, const kind_t &kind)
{
	reason_lines_t lines(kind);
	for (const known_device_t &device :
	     facts.knows_devices ? facts.devices : devices_of_table(tables.ide)) {
		const auto listed =
			std::find(facts.cdroms.begin(), facts.cdroms.end(), "/dev/" + device.name);
		if (is_optical(device, tables.ide) && listed == facts.cdroms.end())
			lines.add(device.name, cdrom_reason(device.name, tables.ide));
	}
	take_late_mounts(tables.mounts, facts.cdroms, &lines);
	messages_t messages = lines.messages();
	take_unread_mounts(tables.mounts, !facts.cdroms.empty(), "no mount point is known", kind, &messages);
	return messages;
}
