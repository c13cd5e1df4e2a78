// A table of text, as wide as its cells need.
#include "table.h"

#include "text.h"

#include <algorithm>

static const std::size_t GAP = 2;

static std::vector<std::size_t> widths_of(const cells_t &headings, const std::vector<cells_t> &rows)
{
	std::vector<std::size_t> widths;
	for (std::size_t column = 0; column < headings.size(); column++) {
		std::size_t width = width_of(headings[column]);
		for (const cells_t &row : rows)
			width = std::max(width, width_of(row[column]));
		widths.push_back(width);
	}
	return widths;
}

static std::string format_line(const cells_t &row, const std::vector<align_t> &alignment,
                               const std::vector<std::size_t> &widths)
{
	std::string line;
	// Blanks are put down only when text follows them.
	std::size_t owed = 0;
	for (std::size_t column = 0; column < row.size(); column++) {
		const std::size_t padding = widths[column] - width_of(row[column]);
		if (alignment[column] == align_t::RIGHT)
			owed += padding;
		if (!row[column].empty()) {
			line.append(owed, ' ') += row[column];
			owed = 0;
		}
		if (alignment[column] == align_t::LEFT)
			owed += padding;
		owed += GAP;
	}
	return line + "\n";
}

std::string format_table(const cells_t &headings, const std::vector<align_t> &alignment,
                         const std::vector<cells_t> &rows)
{
	const std::vector<std::size_t> widths = widths_of(headings, rows);
	std::string table = format_line(headings, alignment, widths);
	for (const cells_t &row : rows)
		table += format_line(row, alignment, widths);
	return table;
}
