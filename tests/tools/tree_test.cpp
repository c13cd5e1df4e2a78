// SPDX-License-Identifier: Apache-2.0
// What stands on what.
#include "tree.h"

#include "text.h"

#include <gmock/gmock.h>

namespace
{

using ::testing::ElementsAre;

// A line a row: its number, and a mark when it stands above already.
std::vector<std::string> drawn(const std::vector<tree_row_t> &rows)
{
	std::vector<std::string> lines;
	for (const tree_row_t &row : rows)
		lines.push_back(row.before + std::to_string(row.node) + (row.is_repeated ? " again" : ""));
	return lines;
}

std::vector<std::string> drawn(const std::vector<std::size_t> &roots, const branches_t &below)
{
	return drawn(tree_rows(roots, below, TREE_OF_ASCII));
}

TEST(Tree, OfNothing)
{
	EXPECT_THAT(drawn({}, {}), ElementsAre());
}

TEST(Tree, LinesLeadToWhatIsBelow)
{
	// Two disks; the first has two partitions, on the first of which two mappings stand, and on each
	// partition one.
	const branches_t below = {{2, 3}, {}, {4, 5}, {6}, {}, {}, {}};
	EXPECT_THAT(drawn({0, 1}, below), ElementsAre("0", "|-2", "| |-4", "| `-5", "`-3", "  `-6", "1"));
	EXPECT_THAT(drawn(tree_rows({0, 1}, below, TREE_OF_LINES)),
	            ElementsAre("0", "├─2", "│ ├─4", "│ └─5", "└─3", "  └─6", "1"));
}

TEST(Tree, FurtherLinesOfARowPassOn)
{
	std::vector<std::string> beside;
	for (const tree_row_t &row : tree_rows({0}, {{1, 2}, {3}, {}, {}}, TREE_OF_ASCII))
		beside.push_back(row.beside);
	// Of 0, 1, 3 and 2.
	EXPECT_THAT(beside, ElementsAre("| ", "| | ", "|     ", "    "));
}

TEST(Tree, OneOfSeveralParentsHasItWhole)
{
	// A mirror of two disks, and a volume on it.
	EXPECT_THAT(drawn({0, 1}, {{2}, {2}, {3}, {}}), ElementsAre("0", "`-2", "  `-3", "1", "`-2 again"));
	// Nothing is below this one, and it is the same device all the same.
	EXPECT_THAT(drawn({0, 1}, {{2}, {2}, {}}), ElementsAre("0", "`-2", "1", "`-2 again"));
	EXPECT_THAT(drawn({0}, {{1, 1}, {}}), ElementsAre("0", "|-1", "`-1 again"));
}

TEST(Tree, WhatIsRepeatedHasNothingBesideIt)
{
	const std::vector<tree_row_t> rows = tree_rows({0, 1}, {{2}, {2}, {3}, {}}, TREE_OF_ASCII);
	EXPECT_EQ(rows[1].beside, "  | ");
	EXPECT_EQ(rows[4].beside, "    ");
}

TEST(Tree, RingsEnd)
{
	EXPECT_THAT(drawn({}, {{1}, {2}, {0}}), ElementsAre("0", "`-1", "  `-2", "    `-0 again"));
	EXPECT_THAT(drawn({}, {{0}}), ElementsAre("0", "`-0 again"));
	// A root leads into this one.
	EXPECT_THAT(drawn({2}, {{1}, {0}, {1}}), ElementsAre("2", "`-1", "  `-0", "    `-1 again"));
}

TEST(Tree, WhatNoRootLeadsToIsARoot)
{
	EXPECT_THAT(drawn({2}, {{1}, {0}, {3}, {}}), ElementsAre("2", "`-3", "0", "`-1", "  `-0 again"));
	EXPECT_THAT(drawn({}, {{}, {}}), ElementsAre("0", "1"));
}

TEST(Tree, DepthIsDrawnDownTo32)
{
	branches_t below(10000);
	for (std::size_t i = 0; i + 1 < below.size(); i++)
		below[i] = {i + 1};
	const std::vector<tree_row_t> rows = tree_rows({0}, below, TREE_OF_ASCII);
	ASSERT_EQ(rows.size(), below.size());
	EXPECT_EQ(rows[32].before, std::string(62, ' ') + "`-");
	EXPECT_EQ(rows[31].beside, std::string(62, ' ') + "| ");
	EXPECT_EQ(rows[32].beside, std::string(66, ' '));
	EXPECT_EQ(rows[33].before, std::string(64, ' '));
	EXPECT_EQ(rows[33].beside, std::string(66, ' '));
	EXPECT_EQ(rows.back().node, 9999U);
	EXPECT_EQ(rows.back().before, std::string(64, ' '));
}

TEST(Tree, SiblingsBelowTheDeepestAreNotDrawn)
{
	branches_t below(36);
	for (std::size_t i = 0; i < 32; i++)
		below[i] = {i + 1};
	below[32] = {33, 34};
	below[33] = {35};
	const std::vector<tree_row_t> rows = tree_rows({0}, below, TREE_OF_ASCII);
	ASSERT_EQ(rows.size(), 36U);
	for (std::size_t i = 33; i < 36; i++)
		EXPECT_EQ(rows[i].before, std::string(64, ' '));
}

TEST(Tree, NoMoreRowsThanNodesAndBranches)
{
	// Ten floors of 100, each on all of the floor below it: one way down is one of 100 to the power of
	// ten.
	branches_t below(1000);
	std::vector<std::size_t> roots;
	for (std::size_t i = 0; i < 100; i++)
		roots.push_back(i);
	for (std::size_t i = 0; i < 900; i++) {
		for (std::size_t j = 0; j < 100; j++)
			below[i].push_back((i / 100 + 1) * 100 + j);
	}
	EXPECT_EQ(tree_rows(roots, below, TREE_OF_ASCII).size(), 100U + 900U * 100U);
}

} // namespace
