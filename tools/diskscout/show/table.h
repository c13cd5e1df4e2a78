// SPDX-License-Identifier: Apache-2.0
// A table of text, as wide as its cells need.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_TABLE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_TABLE_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// Numbers go to the right, so that their digits stand below each other.
enum class align_t { LEFT, RIGHT };

struct column_t {
	std::string heading;
	align_t align;
};

// A printable text each.
using lines_t = std::vector<std::string>;

struct table_row_t {
	std::vector<lines_t> cells; // one a column
	std::string before = {};    // in front of the first column: the lines of a tree
	std::string beside = {};    // the same for further lines of the row
};

struct table_t {
	std::vector<column_t> columns;
	std::vector<table_row_t> rows;
	bool has_headings = true;
};

// Columns of a terminal that its longest line takes.
std::size_t width_of_table(const table_t &table);

// The lines of a table, each ended with a newline. Two blanks part the columns, no column is ever cut, no
// line ends in blanks that are not a cell's own. Where the table is wider than what is there for it, each row
// becomes a block of lines "HEADING: value" instead, a blank line between two of them, without the lines of a
// tree and without empty values; but not without headings, when values are known by where they stand.
std::string format_table(const table_t &table, std::optional<std::size_t> most_columns = std::nullopt);

#endif
