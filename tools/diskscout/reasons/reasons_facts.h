// SPDX-License-Identifier: Apache-2.0
// What the lists of a run tell, as far as the reasons are made from it.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_REASONS_FACTS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_REASONS_FACTS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class enquiry_t;

// One of today's devices.
struct known_device_t {
	std::string name;       // the kernel's
	std::string kind;       // the block plug-in's word
	std::string disk;       // of a partition
	std::int64_t size = -1; // bytes; -1 when it is not known
	bool hidden = false;
	std::string node = {};
	int logical_sector = 0; // bytes; 0 or less when it is not known
	bool is_under_root = false;
};

struct known_disk_t {
	std::string node;
	std::uint64_t size = 0; // bytes; 0 when it is not known
	bool is_of_system = false;
};

struct known_partition_t {
	std::string disk;                  // node
	unsigned index = 0;                // from 0
	std::uint64_t start = 0, size = 0; // bytes
	std::string mount_points;          // as they stand in the record
};

// What the block plug-in knows of the partition table on a device.
struct known_table_t {
	std::string kind;                   // "gpt"; empty: none
	std::optional<std::size_t> entries; // when it was read from the device
};

// Lists that nobody has asked for are empty.
struct facts_t {
	bool knows_devices = true;
	int devices_error = 0; // errno of the query that failed; 0: it told none
	std::vector<known_device_t> devices = {};
	std::vector<known_disk_t> disks = {};
	std::vector<known_partition_t> partitions = {};
	std::vector<std::string> cdroms = {}; // nodes

	// By a device's name; asked for only when a row needs it: that opens devices. Nothing when it could
	// not be asked.
	std::function<std::optional<known_table_t>(const std::string &name)> table_of = {};
	std::function<std::vector<std::string>(const std::string &name)> mount_points_of = {};
};

void take_devices(facts_t *facts, enquiry_t &from);
void take_disks(facts_t *facts, enquiry_t &from);
void take_partitions(facts_t *facts, enquiry_t &from);
void take_cdroms(facts_t *facts, enquiry_t &from);

#endif
