// SPDX-License-Identifier: Apache-2.0
// The kernel's tables that the classic lists are made from:
//
//   /proc/partitions     8        0     262144 sda
//   /proc/scsi/scsi      three lines a device: "Host: scsi0 Channel: 00 Id: 01 Lun: 00" and two more
//   /proc/ide/hda/       files identify, media, model
#include "reasons_tables.h"

#include "kernel_lines.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <dirent.h>
#include <memory>
#include <mntent.h>

static constexpr std::string_view DIGITS = "0123456789";

static std::string_view without_number(std::string_view name)
{
	return name.substr(0, name.find_last_not_of(DIGITS) + 1);
}

static bool is_ide_stem(std::string_view stem)
{
	return stem.size() == 3 && stem >= "hda" && stem <= "hdt";
}

// Of four letters only the last two are looked at, as the classic code does.
static bool is_scsi_stem(std::string_view stem)
{
	if (stem.size() == 3)
		return stem >= "sda" && stem <= "sdz";
	return stem.size() == 4 && stem[2] >= 'a' && stem[2] <= 'd' && stem[3] >= 'a' &&
	       stem[3] <= (stem[2] == 'd' ? 'x' : 'z');
}

// Of a drive's folder: the stem may have a number of 1 to 16.
static bool is_drive_name(std::string_view name)
{
	const std::string_view stem = without_number(name);
	const std::string_view digits = name.substr(stem.size());
	int number = 1;
	std::from_chars(digits.data(), digits.data() + digits.size(), number);
	return is_ide_stem(stem) && digits.size() < 3 && number >= 1 && number <= 16;
}

classic_name_t classic_name_of(std::string_view name)
{
	if (is_ide_stem(name))
		return classic_name_t::IDE;
	return name.substr(0, 2) == "sd" && is_scsi_stem(name) ? classic_name_t::SCSI : classic_name_t::NONE;
}

static void take_block_row(block_table_t *table, const std::string &line)
{
	char word[64];
	if (sscanf(line.c_str(), "%*d %*d %*d %63s", word) != 1)
		return;
	std::string_view name = word;
	name.remove_prefix(name.rfind('/') + 1);
	const std::string stem(without_number(name));
	// Number 0 is none.
	const bool is_partition = name.find_first_not_of('0', stem.size()) != name.npos;
	table->rows.push_back({stem, is_partition});
	if (!is_partition && (is_ide_stem(stem) || is_scsi_stem(stem)))
		table->disks.push_back(stem);
}

static block_table_t read_block_table()
{
	block_table_t table;
	lines_t lines("/proc/partitions");
	std::string line;
	lines.next(&line); // headings
	lines.next(&line); // the blank line below them
	while (lines.next(&line))
		take_block_row(&table, line);
	table.error = lines.error();
	return table;
}

// The driver's word has eight bits for each number.
static std::uint32_t packed(unsigned host, unsigned channel, unsigned id, unsigned lun)
{
	return (host & 0xff) << 24 | (channel & 0xff) << 16 | (lun & 0xff) << 8 | (id & 0xff);
}

// Up to the line's end or "#", without blanks at both ends.
static std::string trimmed(std::string_view text)
{
	text = text.substr(0, text.find_first_of(std::string_view("\n\r#\0", 4)));
	const std::size_t first = text.find_first_not_of(" \t");
	if (first == text.npos)
		return {};
	return std::string(text.substr(first, text.find_last_not_of(" \t") - first + 1));
}

static scsi_table_t read_scsi_table()
{
	static constexpr std::string_view TYPE = "  Type:   ";
	static constexpr std::size_t TYPE_LENGTH = 32;
	scsi_table_t table;
	lines_t lines("/proc/scsi/scsi");
	std::string line;
	while (lines.next(&line)) {
		unsigned host, channel, id, lun;
		if (sscanf(line.c_str(), "Host: scsi%u Channel: %u Id: %u Lun: %u", &host, &channel, &id,
		           &lun) != 4)
			continue;
		const bool has_type =
			lines.next(&line) && lines.next(&line) && line.compare(0, TYPE.size(), TYPE) == 0;
		if (has_type)
			table.rows.push_back(
				{packed(host, channel, id, lun),
			         trimmed(std::string_view(line).substr(TYPE.size(), TYPE_LENGTH))});
	}
	table.error = lines.error();
	return table;
}

// Eight words a line, in 32 lines at most.
static bool is_identify_data(lines_t *lines)
{
	std::string line;
	for (int rows = 0; lines->next(&line);) {
		unsigned words[8];
		const std::string text = trimmed(line);
		if (text.empty())
			continue;
		if (sscanf(text.c_str(), "%4x %4x %4x %4x %4x %4x %4x %4x", words, words + 1, words + 2,
		           words + 3, words + 4, words + 5, words + 6, words + 7) != 8 ||
		    ++rows > 32)
			return false;
	}
	return lines->error() == 0;
}

static bool is_first_line(lines_t *lines, std::string *text)
{
	std::string line;
	if (!lines->next(&line))
		return false;
	*text = trimmed(line);
	return true;
}

static ide_drive_t read_drive(const std::string &name)
{
	ide_drive_t drive = {name, {}};
	std::string model;
	for (const std::string_view file : {"identify", "media", "model"}) {
		const std::string path = "/proc/ide/" + name + "/" + std::string(file);
		lines_t lines(path);
		std::string *const text = file == "media" ? &drive.media : &model;
		if (file == "identify" ? is_identify_data(&lines) : is_first_line(&lines, text))
			continue;
		drive.unread = path;
		drive.error = lines.error();
	}
	return drive;
}

static ide_table_t read_ide_table()
{
	ide_table_t table;
	const std::unique_ptr<DIR, int (*)(DIR *)> folder(opendir("/proc/ide"), closedir);
	if (!folder) {
		table.error = errno;
		return table;
	}
	std::vector<std::string> names;
	while (const dirent *entry = readdir(folder.get())) {
		if (is_drive_name(entry->d_name))
			names.emplace_back(entry->d_name);
	}
	std::sort(names.begin(), names.end());
	for (const std::string &name : names)
		table.drives.push_back(read_drive(name));
	return table;
}

const ide_drive_t *ide_table_t::drive(std::string_view name) const
{
	for (const ide_drive_t &d : drives) {
		if (d.name == name)
			return &d;
	}
	return nullptr;
}

static mount_table_t read_mount_table()
{
	mount_table_t table;
	FILE *const file = setmntent("/etc/mtab", "re");
	if (!file) {
		table.error = errno;
		return table;
	}
	while (const mntent *const line = getmntent(file)) {
		table.sources.emplace_back(line->mnt_fsname);
		if (line->mnt_dir == std::string_view("/"))
			table.root = line->mnt_fsname;
	}
	endmntent(file);
	return table;
}

kernel_tables_t read_kernel_tables()
{
	return {read_block_table(), read_scsi_table(), read_ide_table(), read_mount_table()};
}
