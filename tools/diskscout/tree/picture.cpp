// SPDX-License-Identifier: Apache-2.0
// A machine, drawn.
#include "picture.h"

#include "columns.h"
#include "drawing.h"
#include "terminal.h"
#include "text.h"

#include <algorithm>
#include <fmt/format.h>

// The rest of its row and what is below it stand where it was met first. A device's container is named
// with its controller.
static std::string repeated(const machine_tree_t &machine, const tree_row_t &place, const field_t &name)
{
	const tree_node_t &node = machine.at(place.node);
	if (node.controller && place.parent && machine.at(*place.parent).controller != node.controller)
		return printable(fmt::format("{} of {} (above)", node.name, *node.controller));
	return cell_of(name, {&node}, sizes_t::IN_UNITS).front() + " (above)";
}

static table_t drawn(const machine_tree_t &machine, const columns_t &columns, sizes_t sizes)
{
	table_t table = empty_table(columns);
	for (const tree_row_t &place : machine.rows(writes_utf8() ? TREE_OF_LINES : TREE_OF_ASCII)) {
		table_row_t row = draw_row(columns, {&machine.at(place.node)}, sizes);
		row.before = place.before;
		row.beside = place.beside;
		if (place.is_repeated) {
			row.cells.assign(columns.size(), {""});
			row.cells[0] = {repeated(machine, place, *columns[0])};
		}
		table.rows.push_back(std::move(row));
	}
	return table;
}

static bool is_empty(const table_t &table, std::size_t column)
{
	return std::all_of(table.rows.begin(), table.rows.end(), [&](const table_row_t &row) {
		const lines_t &lines = row.cells[column];
		return lines.size() == 1 && (lines[0].empty() || lines[0] == "-");
	});
}

static columns_t filled_columns(const machine_tree_t &machine, sizes_t sizes)
{
	const columns_t all = columns_of(TREE_KIND, "");
	const table_t table = drawn(machine, all, sizes);
	columns_t filled;
	for (std::size_t i = 0; i < all.size(); i++) {
		if (!is_empty(table, i))
			filled.push_back(all[i]);
	}
	return filled;
}

std::string picture_of(const machine_tree_t &machine, sizes_t sizes)
{
	return fitted_table(filled_columns(machine, sizes), spare_columns_of(TREE_KIND),
	                    [&](const columns_t &columns) { return drawn(machine, columns, sizes); });
}
