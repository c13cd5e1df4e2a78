// A table of text, as wide as its cells need.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_TABLE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_TABLE_H

#include <string>
#include <vector>

// Numbers go to the right, so that their digits stand below each other.
enum class align_t { LEFT, RIGHT };

using cells_t = std::vector<std::string>;

// The lines of a table, each ended with a newline. Every row, the headings too, has one printable cell a
// column. Two blanks part the columns, no column is ever cut, no line ends in blanks.
std::string format_table(const cells_t &headings, const std::vector<align_t> &alignment,
                         const std::vector<cells_t> &rows);

#endif
