// SPDX-License-Identifier: Apache-2.0
// Rows as a table.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_DRAWING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_DRAWING_H

#include "cell.h"
#include "columns.h"
#include "table.h"

#include <functional>
#include <string>
#include <vector>

table_t draw_rows(const columns_t &columns, const std::vector<row_t> &rows, sizes_t sizes);

table_t empty_table(const columns_t &columns);
table_row_t draw_row(const columns_t &columns, const row_t &row, sizes_t sizes);

// The devices as a tree of what stands on what; inverse: what they stand on.
table_t draw_tree(const columns_t &columns, const std::vector<row_t> &devices, enquiry_t &from, bool inverse,
                  sizes_t sizes);

// The table as wide as the terminal allows. Spare columns are left out one by one, which is told below it;
// where that does not help, the rows become blocks of lines with all of them.
using draw_t = std::function<table_t(const columns_t &columns)>;
std::string fitted_table(columns_t columns, const columns_t &spare, const draw_t &draw);

// The line below a table of format 1 that has one, else nothing.
std::string old_note_of(const kind_t &kind);

#endif
