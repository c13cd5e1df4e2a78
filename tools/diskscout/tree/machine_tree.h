// SPDX-License-Identifier: Apache-2.0
// All that the machine consists of, and what is drawn below what.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_MACHINE_TREE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_MACHINE_TREE_H

#include "node.h"
#include "tree.h"

#include <deque>
#include <map>
#include <string>

class machine_tree_t
{
public:
	// Its number, by which it is known from now on. Where another node has its id already, "#2" or a
	// higher number is put behind it.
	std::size_t add(tree_node_t node);
	tree_node_t &at(std::size_t node) { return nodes_[node]; }
	const tree_node_t &at(std::size_t node) const { return nodes_[node]; }
	std::size_t size() const { return nodes_.size(); }

	// Behind what is drawn there already; twice does as much as once.
	void put_below(std::size_t upper, std::size_t lower);
	// The upper one is made of the lower one.
	void stand_on(std::size_t upper, std::size_t lower);

	const std::vector<std::size_t> &below(std::size_t node) const { return below_[node]; }
	// Who is below nobody, in the order in which they were added.
	std::vector<std::size_t> roots() const;
	// From the roots down. A node that is below several is drawn whole where it is met first, which is
	// told as its parent.
	std::vector<tree_row_t> rows(const tree_style_t &style) const;
	void tell_parents();

private:
	std::deque<tree_node_t> nodes_; // records of rows: they stay where they are
	branches_t below_;
	std::vector<bool> is_below_;
	std::map<std::string, unsigned> ids_; // how often each was wanted
};

#endif
