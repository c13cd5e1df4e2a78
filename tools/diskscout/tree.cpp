// Devices in the order of a tree.
#include "tree.h"

const tree_style_t TREE_OF_LINES = {"├─", "└─", "│ ", "  "};
const tree_style_t TREE_OF_ASCII = {"|-", "`-", "| ", "  "};

static const std::size_t DEEPEST_DRAWN = 32;

struct place_t {
	std::size_t node;
	std::size_t depth;
	bool is_last;
	std::string around; // drawn before it and what is below it
};

// A stack of its own: a ring of devices or a thousand of them on top of each other must not end the program's.
class tree_walk_t
{
public:
	tree_walk_t(const branches_t &below, const tree_style_t &style)
	    : below_(below), style_(style), is_met_(below.size())
	{
	}

	void from(std::size_t root)
	{
		std::vector<place_t> open = {{root, 0, true, ""}};
		while (!open.empty()) {
			const place_t at = std::move(open.back());
			open.pop_back();
			visit(at, open);
		}
	}
	bool is_met(std::size_t node) const { return is_met_[node]; }
	std::vector<tree_row_t> rows;

private:
	void visit(const place_t &at, std::vector<place_t> &open)
	{
		const bool is_drawn = at.depth > 0 && at.depth <= DEEPEST_DRAWN;
		const std::string around = at.around + (is_drawn ? (at.is_last ? style_.gap : style_.pass) : "");
		const std::vector<std::size_t> &children = below_[at.node];
		const bool is_repeated = is_met_[at.node] && !children.empty();
		const bool goes_on = !children.empty() && !is_met_[at.node];
		rows.push_back({at.node, at.around + (is_drawn ? (at.is_last ? style_.last : style_.branch) : ""),
		                around + (goes_on ? style_.pass : style_.gap), is_repeated});
		is_met_[at.node] = true;
		if (!goes_on)
			return;
		// The first is taken from the stack first.
		for (std::size_t i = children.size(); i > 0; i--)
			open.push_back({children[i - 1], at.depth + 1, i == children.size(), around});
	}

	const branches_t &below_;
	const tree_style_t &style_;
	std::vector<bool> is_met_;
};

std::vector<tree_row_t> tree_rows(const std::vector<std::size_t> &roots, const branches_t &below, const tree_style_t &style)
{
	tree_walk_t walk(below, style);
	for (const std::size_t root : roots)
		walk.from(root);
	return std::move(walk.rows);
}
