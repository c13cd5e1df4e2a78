// SPDX-License-Identifier: Apache-2.0
// The kinds of things that are listed. One row of a table a kind: the words for it, whose things they are,
// what is told of each, and how they are asked for. A new kind is a file kind_<word>.cpp and its line in
// kinds.cpp; nothing else knows kinds.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_KINDS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_KINDS_H

#include "enquiry.h"
#include "field.h"
#include "selection.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

// What a plug-in answered.
struct answer_t {
	bool failed = false;
	bool timed_out = false;
	int error = 0;                // errno of the failure; 0: the plug-in does not tell
	std::string where = {};       // of a failure, as words behind "the query failed"; may be empty
	std::vector<row_t> rows = {}; // what it found, also before it failed
	std::shared_ptr<const void> records =
		{}; // that the rows are about, unless a list of the enquiry holds them
};

// Who tells of them, and how many of them there are.
enum class side_t {
	BLOCK,     // the block plug-in
	HOST,      // the classic plug-in, from the kernel's tables
	RAID,      // all RAID controllers: the plug-in needs the controller tool's configuration
	CONTROLLER // each RAID controller, which must be named in the query, too
};

// What is listed when no kind is named.
enum : unsigned {
	IN_TABLES = 1,
	IN_DOCUMENT = 2,
	WHEN_ANY = 4 /* its table only when it has rows or failed */
};

struct kind_t {
	std::string_view word;     // on the command line and in the document: "raid_disks"
	std::string_view old_word; // the same, as format 1 writes it; empty: format 1 does not know it
	std::string_view heading;  // over its table: "DISKS"
	std::string_view name;     // in messages, "the ... query"
	std::string_view what;     // that it lists, for whoever chooses among kinds
	std::string_view none;     // what is said in place of an empty table
	side_t side;
	unsigned unasked; // of IN_TABLES ...
	fields_t fields;
	const char *columns;     // shown without being asked for: keys, with commas between
	const char *old_columns; // those of format 1; null: the same, or format 1 does not know it
	// A kind of controllers is asked for only when there is one.
	answer_t (*ask)(enquiry_t &from);
	std::string_view old_note = {}; // under its table of format 1, for what its headings cannot say
	// Whether it is about one of these devices; null: a device means nothing to it.
	bool (*concerns)(const row_t &row, const names_t &devices) = nullptr;
	// Of its columns those that can be done without where there is no room for all, the first one first;
	// empty: none.
	std::string_view spare_columns = {};
	std::string_view old_none = {}; // of format 1, as none; empty: the same
};

extern const kind_t DEVICES_KIND;
extern const kind_t LINKS_KIND;
extern const kind_t FILESYSTEMS_KIND;
extern const kind_t ARRAYS_KIND;
extern const kind_t MOUNTS_KIND;
extern const kind_t DISKS_KIND;
extern const kind_t PARTITIONS_KIND;
extern const kind_t CDROMS_KIND;
extern const kind_t CONTROLLERS_KIND;
extern const kind_t CONTAINERS_KIND;
extern const kind_t RAID_DISKS_KIND;
extern const kind_t RAID_SPACE_KIND;
extern const kind_t RAID_PARTITIONS_KIND;
extern const kind_t TASKS_KIND;
extern const kind_t DEFECTS_KIND;

using kinds_t = std::vector<const kind_t *>;

// All kinds, in the order that they are shown in.
const kinds_t &all_kinds();

// The rows of a list that the enquiry holds.
template <typename Record> answer_t answer_of(const item_list_t &list, enquiry_t &from)
{
	answer_t answer = {list.failed(), list.timed_out(), list.error()};
	answer.where = list.failure().empty() ? "" : ": " + list.failure();
	for (const Record *record : list.records<Record>())
		answer.rows.push_back({record, &from});
	return answer;
}

// How most kinds ask: for the list of one query, of whoever tells it.
template <typename Record, UINT Query> answer_t ask_for(enquiry_t &from)
{
	return answer_of<Record>(from.list(Query), from);
}

template <typename Record, UINT Query> answer_t ask_for_block(enquiry_t &from)
{
	return answer_of<Record>(from.block_list(Query), from);
}

#endif
