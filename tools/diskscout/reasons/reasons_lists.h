// SPDX-License-Identifier: Apache-2.0
// What each of the classic lists leaves out, and why.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_REASONS_LISTS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_REASONS_LISTS_H

#include "reasons_facts.h"
#include "reasons_lines.h"
#include "reasons_tables.h"

#include <string>
#include <vector>

// A device that is not in the list of disks.
struct unlisted_t {
	std::string name;
	reason_t reason;
};

// Each of today's disks, or where these are not known each of the kernel's table that has a classic name.
std::vector<unlisted_t> unlisted_disks(const facts_t &facts, const kernel_tables_t &tables);

// The first disk of the kernel's table for which the full list has no room; empty: none.
std::string disk_beyond_list(const facts_t &facts, const kernel_tables_t &tables);

bool is_software_device(const known_device_t &device); // array, mapping, loop device in use

messages_t disk_reasons(const facts_t &facts, const std::vector<unlisted_t> &unlisted,
                        const kernel_tables_t &tables, const kind_t &kind);
messages_t cdrom_reasons(const facts_t &facts, const kernel_tables_t &tables, const kind_t &kind);

// What the rows of a list cannot tell when that table cannot be read.
void take_unread_mounts(const mount_table_t &table, bool has_rows, const char *unknown, const kind_t &kind,
                        messages_t *messages);

// Those of these nodes, which are in the list, that are mounted where it does not look.
void take_late_mounts(const mount_table_t &table, const std::vector<std::string> &nodes,
                      reason_lines_t *lines);

// Where the disks themselves are shown, their reasons are not told again.
messages_t partition_reasons(const facts_t &facts, const std::vector<unlisted_t> &unlisted,
                             const kernel_tables_t &tables, const kind_t &kind, bool disks_are_shown);

extern const reason_t SOFTWARE_REASON; // of arrays, mappings and loop devices, which are not named one by one

// The drive in /proc/ide that has this name and whose media is that word; else why not.
std::optional<reason_t> ide_reason(const std::string &name, const std::string &media,
                                   const ide_table_t &table);
// Of what a full list has no room for: the list is known to be cut.
reason_t cut(detail_t what, const std::string &text);
// Of what the kernel's table takes for something else.
reason_t of_other_type(code_t code, const std::string &type, const std::string &path, const char *wanted);
reason_t unread_table(code_t code, const std::string &path, int error);
// An optical drive by today's word or the kernel's.
bool is_optical(const known_device_t &device, const ide_table_t &table);

#endif
