// SPDX-License-Identifier: Apache-2.0
// Rows as a table.
#include "drawing.h"

#include "diskscout_block.h"
#include "member.h"
#include "terminal.h"
#include "tree.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <unistd.h>

static bool is_number(const field_t &field)
{
	return field.shape == shape_t::NUMBER || field.shape == shape_t::BYTES;
}

table_t empty_table(const columns_t &columns)
{
	table_t table;
	for (const field_t *column : columns)
		table.columns.push_back(
			{column->heading, is_number(*column) ? align_t::RIGHT : align_t::LEFT});
	return table;
}

table_row_t draw_row(const columns_t &columns, const row_t &row, sizes_t sizes)
{
	table_row_t drawn;
	for (const field_t *column : columns)
		drawn.cells.push_back(cell_of(*column, row, sizes));
	return drawn;
}

table_t draw_rows(const columns_t &columns, const std::vector<row_t> &rows, sizes_t sizes)
{
	table_t table = empty_table(columns);
	for (const row_t &row : rows)
		table.rows.push_back(draw_row(columns, row, sizes));
	return table;
}

// ---- the tree ----

struct forest_t {
	std::vector<std::size_t> roots;
	branches_t below;
};

static forest_t forest_of(const std::vector<row_t> &devices, enquiry_t &from, bool inverse)
{
	std::map<std::string_view, std::size_t> places;
	for (std::size_t i = 0; i < devices.size(); i++)
		places.emplace(record_of<block_device>(devices[i]).name, i);
	forest_t forest;
	forest.below.resize(devices.size());
	std::vector<bool> is_below(devices.size());
	for (const block_link *link : from.block_list(CMD_GET_BLOCK_LINKS).records<block_link>()) {
		const auto above = places.find(inverse ? link->upper : link->lower);
		const auto below = places.find(inverse ? link->lower : link->upper);
		if (above == places.end() || below == places.end())
			continue;
		forest.below[above->second].push_back(below->second);
		is_below[below->second] = true;
	}
	for (std::vector<std::size_t> &children : forest.below) {
		std::sort(children.begin(), children.end());
		children.erase(std::unique(children.begin(), children.end()), children.end());
	}
	for (std::size_t i = 0; i < devices.size(); i++) {
		if (!is_below[i])
			forest.roots.push_back(i);
	}
	return forest;
}

table_t draw_tree(const columns_t &columns, const std::vector<row_t> &devices, enquiry_t &from, bool inverse,
                  sizes_t sizes)
{
	const forest_t forest = forest_of(devices, from, inverse);
	const tree_style_t &style = writes_utf8() ? TREE_OF_LINES : TREE_OF_ASCII;
	table_t table = empty_table(columns);
	for (const tree_row_t &place : tree_rows(forest.roots, forest.below, style)) {
		table_row_t row = draw_row(columns, devices[place.node], sizes);
		row.before = place.before;
		row.beside = place.beside;
		// The rest of its row and what is below it stand where it was met first.
		if (place.is_repeated) {
			row.cells.assign(columns.size(), {""});
			row.cells[0] = {cell_of(*columns[0], devices[place.node], sizes)[0] + " (above)"};
		}
		table.rows.push_back(std::move(row));
	}
	return table;
}

// ---- as wide as the terminal ----

static std::string headings_of(const columns_t &columns)
{
	std::string text;
	for (const field_t *column : columns)
		text += fmt::format("{}{}", text.empty() ? "" : ", ", column->heading);
	return text;
}

std::string fitted_table(columns_t columns, const columns_t &spare, const draw_t &draw)
{
	const auto room = terminal_columns(STDOUT_FILENO);
	const table_t whole = draw(columns);
	if (!room || width_of_table(whole) <= *room)
		return format_table(whole, room);
	columns_t left_out;
	for (const field_t *column : spare) {
		const auto found = std::find(columns.begin(), columns.end(), column);
		if (found == columns.end())
			continue;
		columns.erase(found);
		left_out.push_back(column);
		const table_t smaller = draw(columns);
		if (width_of_table(smaller) <= *room)
			return format_table(smaller) +
			       fmt::format("Left out for want of room: {}.\n", headings_of(left_out));
	}
	return format_table(whole, room);
}

std::string old_note_of(const kind_t &kind)
{
	return kind.old_note.empty() ? "" : fmt::format("{}\n", kind.old_note);
}
