// SPDX-License-Identifier: Apache-2.0
// Devices in the order of a tree: what stands on what.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_TREE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_TREE_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// Who is drawn below whom, by their numbers.
using branches_t = std::vector<std::vector<std::size_t>>;

// Lines for a terminal that knows them, or what comes near.
struct tree_style_t {
	const char *branch; // before one that is not the last
	const char *last;
	const char *pass; // beside what is below one that is not the last
	const char *gap;
};
extern const tree_style_t TREE_OF_LINES;
extern const tree_style_t TREE_OF_ASCII;

struct tree_row_t {
	std::size_t node;
	std::string before;                // drawn before its name
	std::string beside;                // before further lines of the same row
	bool is_repeated;                  // it stands above already, with all that is below it
	std::optional<std::size_t> parent; // the one that it is drawn below; none: it is a root
};

// The roots with all that they lead to. A node is drawn whole where it is met first and is a row without
// anything below it from then on, so that there are no more rows than roots, nodes and branches together.
// What no root leads to is part of a ring or below one: the first of those is a root, too, until none is
// left. Lines are drawn down to 32 levels; what is deeper stands below each other.
std::vector<tree_row_t> tree_rows(const std::vector<std::size_t> &roots, const branches_t &below,
                                  const tree_style_t &style);

#endif
