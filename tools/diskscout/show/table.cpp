// SPDX-License-Identifier: Apache-2.0
// A table of text, as wide as its cells need.
#include "table.h"

#include "text.h"

#include <algorithm>

static const std::size_t GAP = 2;

using cells_t = std::vector<std::string>;

static std::string without_blanks_behind(const std::string &text)
{
	return text.substr(0, text.find_last_not_of(' ') + 1);
}

static std::size_t height_of(const table_row_t &row)
{
	std::size_t height = 1;
	for (const lines_t &cell : row.cells)
		height = std::max(height, cell.size());
	return height;
}

// One line of a row; cells that have no more are blank there.
static cells_t line_of(const table_row_t &row, std::size_t line)
{
	cells_t cells;
	for (const lines_t &cell : row.cells)
		cells.push_back(line < cell.size() ? cell[line] : "");
	const std::string &front = line == 0 ? row.before : row.beside;
	cells[0] = cells[0].empty() ? without_blanks_behind(front) : front + cells[0];
	return cells;
}

// The lines are made anew for each use: to hold them all would double a table of many rows.
template <typename Visitor> static void for_each_line(const table_t &table, const Visitor &visit)
{
	if (table.has_headings) {
		cells_t headings;
		for (const column_t &column : table.columns)
			headings.push_back(column.heading);
		visit(headings);
	}
	for (const table_row_t &row : table.rows) {
		const std::size_t height = height_of(row);
		for (std::size_t line = 0; line < height; line++)
			visit(line_of(row, line));
	}
}

static std::vector<std::size_t> widths_of(const table_t &table)
{
	std::vector<std::size_t> widths(table.columns.size());
	for_each_line(table, [&](const cells_t &line) {
		for (std::size_t column = 0; column < line.size(); column++)
			widths[column] = std::max(widths[column], width_of(line[column]));
	});
	return widths;
}

static std::string format_line(const cells_t &line, const std::vector<column_t> &columns,
                               const std::vector<std::size_t> &widths)
{
	std::string text;
	// Blanks are put down only when text follows them.
	std::size_t owed = 0;
	for (std::size_t column = 0; column < line.size(); column++) {
		const std::size_t padding = widths[column] - width_of(line[column]);
		if (columns[column].align == align_t::RIGHT)
			owed += padding;
		if (!line[column].empty()) {
			text.append(owed, ' ') += line[column];
			owed = 0;
		}
		if (columns[column].align == align_t::LEFT)
			owed += padding;
		owed += GAP;
	}
	return text;
}

static std::string format_blocks(const table_t &table)
{
	std::string text;
	for (const table_row_t &row : table.rows) {
		text += text.empty() ? "" : "\n";
		for (std::size_t column = 0; column < table.columns.size(); column++) {
			for (const std::string &line : row.cells[column]) {
				if (!line.empty())
					text += table.columns[column].heading + ": " + line + "\n";
			}
		}
	}
	return text;
}

// Every line of the table, ready to be printed.
template <typename Visitor> static void for_each_text(const table_t &table, const Visitor &visit)
{
	const std::vector<std::size_t> widths = widths_of(table);
	for_each_line(table, [&](const cells_t &cells) { visit(format_line(cells, table.columns, widths)); });
}

std::size_t width_of_table(const table_t &table)
{
	std::size_t widest = 0;
	for_each_text(table, [&](const std::string &line) { widest = std::max(widest, width_of(line)); });
	return widest;
}

std::string format_table(const table_t &table, std::optional<std::size_t> most_columns)
{
	if (most_columns && table.has_headings && !table.rows.empty() &&
	    width_of_table(table) > *most_columns)
		return format_blocks(table);
	std::string text;
	for_each_text(table, [&](const std::string &line) { text += line + "\n"; });
	return text;
}
