// The kinds of things that the plug-in lists. One row of a table a kind: the words for it, what it is about,
// and how it is asked for. A new kind is a file kind_<word>.cpp and its line in kinds.cpp; nothing else knows
// kinds.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_KINDS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_KINDS_H

#include "enquiry.h"
#include "table.h"
#include "text.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

// Keys stay in the order that they are written in.
using ordered_json_t = nlohmann::ordered_json;

// What the plug-in answered, made fit for both ways to show it.
struct answer_t {
	bool failed = false;
	std::string table; // empty: there is no record
	ordered_json_t json = ordered_json_t::array();
	std::string where = {}; // of a failure, as words behind "the query failed"; may be empty
};

// Whose things they are. Those of the host are shown when no kind is named.
enum class scope_t {
	HOST,
	RAID,      // all RAID controllers: the plug-in needs the controller tool's configuration
	CONTROLLER // one RAID controller, which must be named in the query, too
};

struct kind_t {
	std::string_view word;    // on the command line and in JSON: "disks"
	std::string_view heading; // over its table: "DISKS"
	std::string_view name;    // in messages, "the ... query"
	std::string_view none;    // what is said in place of an empty table
	scope_t of;
	// A kind of one controller is asked for only when the enquiry has one.
	answer_t (*ask)(enquiry_t &from);
	std::string_view note = {}; // under its table, for what its headings cannot say
};

extern const kind_t DISKS_KIND;
extern const kind_t PARTITIONS_KIND;
extern const kind_t CDROMS_KIND;
extern const kind_t CONTROLLERS_KIND;
extern const kind_t CONTAINERS_KIND;
extern const kind_t RAID_DISKS_KIND;
extern const kind_t RAID_SPACE_KIND;
extern const kind_t RAID_PARTITIONS_KIND;

// All kinds, in the order that they are shown in.
const std::vector<const kind_t *> &all_kinds();

// A table column over records of one kind.
template <typename Record> struct column_t {
	const char *heading;
	align_t alignment;
	std::string (*cell)(const Record &record);
};

template <typename Record, std::size_t Size>
std::string table_of(const std::vector<Record> &records, const column_t<Record> (&columns)[Size])
{
	if (records.empty())
		return "";
	cells_t headings;
	std::vector<align_t> alignment;
	for (const column_t<Record> &column : columns) {
		headings.emplace_back(column.heading);
		alignment.push_back(column.alignment);
	}
	std::vector<cells_t> rows;
	for (const Record &record : records) {
		cells_t &row = rows.emplace_back();
		for (const column_t<Record> &column : columns)
			row.push_back(column.cell(record));
	}
	return format_table(headings, alignment, rows);
}

template <typename Record>
ordered_json_t array_of(const std::vector<Record> &records, ordered_json_t (*object)(const Record &record))
{
	ordered_json_t array = ordered_json_t::array();
	for (const Record &record : records)
		array.push_back(object(record));
	return array;
}

template <typename Record, std::size_t Size>
answer_t answer_of(const item_list_t &list, const column_t<Record> (&columns)[Size],
                   ordered_json_t (*object)(const Record &record))
{
	const std::vector<Record> records = list.records<Record>();
	return {list.failed(), table_of(records, columns), array_of(records, object)};
}

// A field as JSON: null when it is empty.
template <std::size_t Size> ordered_json_t json_text(const char (&field)[Size])
{
	return field[0] ? ordered_json_t(text_of(field)) : ordered_json_t(nullptr);
}

#endif
