// SPDX-License-Identifier: Apache-2.0
// All that the machine consists of, and what is drawn below what.
#include "machine_tree.h"

#include "text.h"

#include <algorithm>
#include <fmt/format.h>

std::size_t machine_tree_t::add(tree_node_t node)
{
	const std::string wanted = printable(node.id);
	node.id = wanted;
	unsigned &last = ids_.emplace(wanted, 0).first->second;
	while (last++ > 0 && !ids_.emplace(node.id = fmt::format("{}#{}", wanted, last), 1).second)
		continue;
	nodes_.push_back(std::move(node));
	below_.emplace_back();
	is_below_.push_back(false);
	return nodes_.size() - 1;
}

void machine_tree_t::put_below(std::size_t upper, std::size_t lower)
{
	std::vector<std::size_t> &there = below_[upper];
	if (std::find(there.begin(), there.end(), lower) != there.end())
		return;
	there.push_back(lower);
	is_below_[lower] = true;
}

void machine_tree_t::stand_on(std::size_t upper, std::size_t lower)
{
	std::vector<std::string> &there = nodes_[upper].stands_on;
	const std::string &id = nodes_[lower].id;
	if (std::find(there.begin(), there.end(), id) == there.end())
		there.push_back(id);
}

std::vector<std::size_t> machine_tree_t::roots() const
{
	std::vector<std::size_t> roots;
	for (std::size_t node = 0; node < nodes_.size(); node++) {
		if (!is_below_[node])
			roots.push_back(node);
	}
	return roots;
}

std::vector<tree_row_t> machine_tree_t::rows(const tree_style_t &style) const
{
	return tree_rows(roots(), below_, style);
}

void machine_tree_t::tell_parents()
{
	for (const tree_row_t &row : rows(TREE_OF_ASCII)) {
		if (!row.is_repeated && row.parent)
			nodes_[row.node].parent = nodes_[*row.parent].id;
	}
}
