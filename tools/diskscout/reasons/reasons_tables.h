// SPDX-License-Identifier: Apache-2.0
// The kernel's tables that the classic lists are made from, read for what keeps a device out of these lists.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_REASONS_TABLES_H
#define DISKSCOUT_TOOLS_DISKSCOUT_REASONS_TABLES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// hda to hdt; sda to sdz and sdaa to sddx.
enum class classic_name_t { NONE, IDE, SCSI };
classic_name_t classic_name_of(std::string_view name);

// /proc/partitions. As in the next two, the error is the errno of what kept it from being read, or 0.
struct block_row_t {
	std::string stem;  // the name without its number
	bool is_partition; // it has one
};

struct block_table_t {
	int error = 0;
	std::vector<block_row_t> rows = {};
	// What the classic code takes for disks, in the table's order, which are more than those that have a
	// classic name. It looks at the first 32.
	std::vector<std::string> disks = {};
};

// /proc/scsi/scsi.
struct scsi_row_t {
	std::uint32_t address; // as the node's driver tells it
	std::string type;
};

struct scsi_table_t {
	int error = 0;
	std::vector<scsi_row_t> rows = {};
};

// /proc/ide.
struct ide_drive_t {
	std::string name;
	std::string media;
	std::string unread = {}; // the file that could not be used; empty: none
	int error = 0;           // why; 0: it holds something else
};

struct ide_table_t {
	int error = 0;
	std::vector<ide_drive_t> drives = {}; // by name

	const ide_drive_t *drive(std::string_view name) const; // or null
};

// /etc/mtab: the devices of its lines, whatever is mounted.
struct mount_table_t {
	int error = 0;
	std::vector<std::string> sources = {};
	std::string root = {}; // the device that is mounted at / last; empty: none
};

struct kernel_tables_t {
	block_table_t block;
	scsi_table_t scsi;
	ide_table_t ide;
	mount_table_t mounts = {};
};

kernel_tables_t read_kernel_tables();

#endif
