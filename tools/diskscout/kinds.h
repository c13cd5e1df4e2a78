/*
 * The kinds of things that the plug-in lists. One row of a table a kind: the words for it, its query, and how
 * an answer is shown. A new kind is a file kind_<word>.cpp and its line in kinds.cpp; nothing else knows
 * kinds.
 */
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_KINDS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_KINDS_H

#include "plugin.h"
#include "table.h"
#include "text.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

/* Keys stay in the order that they are written in. */
using ordered_json = nlohmann::ordered_json;

struct kind {
	std::string_view word;    /* on the command line and in JSON: "disks" */
	std::string_view heading; /* over its table: "DISKS" */
	std::string_view name;    /* in messages, "the ... query" */
	std::string_view none;    /* what is said in place of an empty table */
	UINT query;
	std::string (*table)(const item_list &list);
	ordered_json (*json)(const item_list &list);
};

extern const kind disks_kind;
extern const kind partitions_kind;
extern const kind cdroms_kind;

/* All kinds, in the order that they are shown in. */
const std::vector<const kind *> &all_kinds();

/* A table column over records of one kind. */
template <typename Record> struct column {
	const char *heading;
	align alignment;
	std::string (*cell)(const Record &record);
};

template <typename Record, std::size_t Size>
std::string table_of(const item_list &list, const column<Record> (&columns)[Size])
{
	cells headings;
	std::vector<align> alignment;
	for (const column<Record> &column : columns) {
		headings.emplace_back(column.heading);
		alignment.push_back(column.alignment);
	}
	std::vector<cells> rows;
	list.each<Record>([&](const Record &record) {
		cells &row = rows.emplace_back();
		for (const column<Record> &column : columns)
			row.push_back(column.cell(record));
	});
	return format_table(headings, alignment, rows);
}

template <typename Record>
ordered_json array_of(const item_list &list, ordered_json (*object)(const Record &record))
{
	ordered_json array = ordered_json::array();
	list.each<Record>([&](const Record &record) { array.push_back(object(record)); });
	return array;
}

/* A field as JSON: null when it is empty. */
template <std::size_t Size> ordered_json json_text(const char (&field)[Size])
{
	return field[0] ? ordered_json(text_of(field)) : ordered_json(nullptr);
}

#endif
