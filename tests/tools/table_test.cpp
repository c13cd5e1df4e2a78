// SPDX-License-Identifier: Apache-2.0
// The lines of a table.
#include "table.h"

#include <gmock/gmock.h>

namespace
{

const std::vector<column_t> COLUMNS = {
	{"DEVICE", align_t::LEFT}, {"SIZE", align_t::RIGHT}, {"MODEL", align_t::LEFT}};

TEST(Table, ColumnsAreAsWideAsTheirCells)
{
	const table_t table = {COLUMNS, {{{{"sda"}, {"1.0 GiB"}, {"A"}}}, {{{"nvme0n1"}, {"8 B"}, {"BCD"}}}}};
	EXPECT_EQ(format_table(table), "DEVICE      SIZE  MODEL\n"
	                               "sda      1.0 GiB  A\n"
	                               "nvme0n1      8 B  BCD\n");
}

TEST(Table, NoLineEndsInBlanks)
{
	const table_t table = {COLUMNS,
	                       {{{{"sda"}, {"1"}, {""}}}, {{{"sdb"}, {""}, {""}}}, {{{""}, {""}, {"X"}}}}};
	EXPECT_EQ(format_table(table), "DEVICE  SIZE  MODEL\n"
	                               "sda        1\n"
	                               "sdb\n"
	                               "              X\n");
}

TEST(Table, CharactersAreCountedNotBytes)
{
	const table_t table = {COLUMNS,
	                       {{{{"\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4"}, {"1"}, {"X"}}}}};
	EXPECT_EQ(format_table(table), "DEVICE  SIZE  MODEL\n"
	                               "\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4\xc3\xa4     1  X\n");
}

TEST(Table, WithoutRowsOrHeadings)
{
	EXPECT_EQ(format_table({COLUMNS, {}}), "DEVICE  SIZE  MODEL\n");
	EXPECT_EQ(format_table({COLUMNS, {}, false}), "");
	// The headings' width is not kept for them.
	EXPECT_EQ(format_table({COLUMNS, {{{{"sda"}, {"1"}, {"A"}}}, {{{"sdb"}, {"23"}, {"B"}}}}, false}),
	          "sda   1  A\n"
	          "sdb  23  B\n");
}

TEST(Table, CellsOfSeveralLines)
{
	const table_t table = {COLUMNS,
	                       {{{{"sda"}, {"1", "22"}, {"A", "B", "C"}}}, {{{"sdb"}, {"3"}, {"D"}}}}};
	EXPECT_EQ(format_table(table), "DEVICE  SIZE  MODEL\n"
	                               "sda        1  A\n"
	                               "          22  B\n"
	                               "              C\n"
	                               "sdb        3  D\n");
}

TEST(Table, TheTreePassesFurtherLines)
{
	const table_t table = {
		{{"NAME", align_t::LEFT}, {"MOUNT POINTS", align_t::LEFT}},
		{{{{"sda"}, {"-"}}, "", "│ "},
	         {{{"sda1"}, {"/", "/home"}}, "├─", "│   "},
	         {{{"sda2"}, {"/a", "/b"}}, "└─", "    "}},
	};
	EXPECT_EQ(format_table(table), "NAME    MOUNT POINTS\n"
	                               "sda     -\n"
	                               "├─sda1  /\n"
	                               "│       /home\n"
	                               "└─sda2  /a\n"
	                               "        /b\n");
}

TEST(Table, TheFirstColumnMayHaveFurtherLines)
{
	const table_t table = {{{"NAME", align_t::LEFT}},
	                       {{{{"a", "b"}}, "|-", "| "}, {{{"c", ""}}, "`-", "  "}}};
	EXPECT_EQ(format_table(table), "NAME\n"
	                               "|-a\n"
	                               "| b\n"
	                               "`-c\n"
	                               "\n");
}

TEST(NarrowTable, IsABlockARow)
{
	const table_t table = {COLUMNS,
	                       {{{{"sda"}, {"1"}, {"A", "B"}}, "|-", "| "}, {{{"sdb"}, {""}, {"-"}}}}};
	// The widest line is that of the headings, 19.
	EXPECT_EQ(format_table(table, 18), "DEVICE: sda\n"
	                                   "SIZE: 1\n"
	                                   "MODEL: A\n"
	                                   "MODEL: B\n"
	                                   "\n"
	                                   "DEVICE: sdb\n"
	                                   "MODEL: -\n");
}

TEST(NarrowTable, OnlyWhereALineIsTooWide)
{
	const table_t table = {COLUMNS, {{{{"sda"}, {"1"}, {"A"}}}}};
	const std::string whole = "DEVICE  SIZE  MODEL\nsda        1  A\n";
	EXPECT_EQ(format_table(table, 19), whole);
	EXPECT_EQ(format_table(table, std::nullopt), whole);
	EXPECT_EQ(format_table({COLUMNS, {}}, 1), "DEVICE  SIZE  MODEL\n");
}

TEST(NarrowTable, NotWithoutHeadings)
{
	const table_t table = {COLUMNS, {{{{"sda"}, {"1"}, {"A"}}}}, false};
	EXPECT_EQ(format_table(table, 5), "sda  1  A\n");
}

} // namespace
