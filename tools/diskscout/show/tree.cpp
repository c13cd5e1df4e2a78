// SPDX-License-Identifier: Apache-2.0
// Devices in the order of a tree.
#include "tree.h"

#include <utility>

const tree_style_t TREE_OF_LINES = {"├─", "└─", "│ ", "  "};
const tree_style_t TREE_OF_ASCII = {"|-", "`-", "| ", "  "};

static const std::size_t DEEPEST_DRAWN = 32;

namespace
{

// A node of which some branches are still to be drawn.
struct open_t {
	std::size_t node;
	std::size_t next;   // the branch
	std::string around; // drawn before what is below it
};

// A stack of its own: a thousand devices on top of each other must not end the program's.
class tree_walk_t
{
public:
	tree_walk_t(const branches_t &below, const tree_style_t &style)
	    : below_(below), style_(style), is_met_(below.size())
	{
	}

	void from(std::size_t root)
	{
		add(root, "", "");
		while (!open_.empty()) {
			open_t &at = open_.back();
			if (at.next == below_[at.node].size())
				open_.pop_back();
			else
				add_next(at);
		}
	}
	bool is_met(std::size_t node) const { return is_met_[node]; }

	std::vector<tree_row_t> rows;

private:
	void add_next(open_t &at)
	{
		const std::size_t node = below_[at.node][at.next++];
		const bool is_last = at.next == below_[at.node].size();
		if (open_.size() > DEEPEST_DRAWN)
			add(node, at.around, at.around);
		else
			add(node, at.around + (is_last ? style_.last : style_.branch),
			    at.around + (is_last ? style_.gap : style_.pass));
	}

	void add(std::size_t node, std::string before, std::string around)
	{
		const bool is_repeated = is_met_[node];
		const bool goes_on = !is_repeated && !below_[node].empty();
		const bool is_drawn = goes_on && open_.size() < DEEPEST_DRAWN;
		rows.push_back({node, std::move(before), around + (is_drawn ? style_.pass : style_.gap),
		                is_repeated, parent_of_next()});
		is_met_[node] = true;
		if (goes_on)
			open_.push_back({node, 0, std::move(around)});
	}

	std::optional<std::size_t> parent_of_next() const
	{
		if (open_.empty())
			return std::nullopt;
		return open_.back().node;
	}

	const branches_t &below_;
	const tree_style_t &style_;
	std::vector<bool> is_met_;
	std::vector<open_t> open_; // from the root down
};

} // namespace

std::vector<tree_row_t> tree_rows(const std::vector<std::size_t> &roots, const branches_t &below,
                                  const tree_style_t &style)
{
	tree_walk_t walk(below, style);
	for (const std::size_t root : roots)
		walk.from(root);
	for (std::size_t node = 0; node < below.size(); node++) {
		if (!walk.is_met(node))
			walk.from(node);
	}
	return std::move(walk.rows);
}
