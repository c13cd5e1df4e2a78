// SPDX-License-Identifier: Apache-2.0
// Why the partition query failed, of which the plug-in tells no more than that it did; and what it read.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_PARTITION_QUERY_H
#define DISKSCOUT_TOOLS_DISKSCOUT_PARTITION_QUERY_H

#include "reasons_facts.h"
#include "reasons_tables.h"

#include <cstdint>
#include <string>
#include <vector>

class enquiry_t;

enum : std::size_t { LISTED_DISKS = 16, LISTED_PARTITIONS = 32 /* of one disk */ };

struct table_entry_t {
	unsigned index; // 0 to 3; from 4 on in extended partitions
	std::uint8_t type;
};

// The entries of a disk's tables, read as the query reads them.
struct partition_tables_t {
	std::vector<table_entry_t> entries = {};
	bool is_cut = false;     // there are more than the query lists
	bool is_ring = false;    // the tables lead back to one of them
	unsigned lost_links = 0; // extended entries that are not followed: a table's last one leads on
	bool is_opened = true;
	std::string failure = {}; // such as "/dev/sda: Permission denied"; empty: none
};

partition_tables_t read_partition_tables(const std::string &node);

// Words behind "the partition query failed": "at /dev/sda: Permission denied".
std::string partition_failure(const facts_t &facts, const kernel_tables_t &tables);
std::string partition_failure(enquiry_t &from);
// The same; empty when no cause was found.
std::string known_partition_failure(enquiry_t &from);

#endif
