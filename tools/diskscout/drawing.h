// Rows as a table.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_DRAWING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_DRAWING_H

#include "cell.h"
#include "columns.h"
#include "table.h"

#include <string>
#include <vector>

table_t draw_rows(const columns_t &columns, const std::vector<row_t> &rows, sizes_t sizes);

// The devices as a tree of what stands on what; inverse: what they stand on.
table_t draw_tree(const columns_t &columns, const std::vector<row_t> &devices, enquiry_t &from, bool inverse,
                  sizes_t sizes);

// The line below a table of format 1 that has one, else nothing.
std::string old_note_of(const kind_t &kind);

#endif
