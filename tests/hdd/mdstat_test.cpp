// SPDX-License-Identifier: Apache-2.0
// The parser of one software-RAID array: how its line begins, the filter, and where lines end.
#include "mdstat_parser.h"

#include <limits.h>

namespace
{

TEST_F(MdstatParser, FieldsOfAnArray)
{
	EXPECT_EQ(parse("md1 : active raid5 sdc1[2] sdb1[1](F) sda1[0]\n",
	                "      1024 blocks level 5, 64k chunk, algorithm 2 [3/2] [U_U]\n",
	                "      [==>..................]  recovery = 12.3% (63/512) finish=0.1min "
	                "speed=63K/sec\n"),
	          0);
	EXPECT_EQ(dev->tag, 1);
	EXPECT_EQ(dev->index, 0);
	EXPECT_EQ(dev->parent, nullptr);
	EXPECT_EQ(dev->mdminor, 1);
	EXPECT_EQ(dev->active, 1);
	EXPECT_EQ(dev->mdlevel, '5');
	EXPECT_EQ(dev->nr_original, 3);
	EXPECT_EQ(dev->nr_normal, 2);
	EXPECT_EQ(dev->nr_faulty, 1);
	EXPECT_EQ(text_of(dev->status), "U_U");
	EXPECT_EQ(dev->resync_type, 2);
	EXPECT_EQ(dev->resync_progress, 123);
	EXPECT_EQ(dev->size, 2048U);
	EXPECT_TRUE(is_zero(dev->uuid));
}

TEST_F(MdstatParser, FieldsOfItsMembers)
{
	ASSERT_EQ(parse("md1 : active raid5 sdc1[3] sdb1[1](F)\n", SIZE_LINE, NO_PROGRESS), 0);
	const mdstat_subdevlist_t &members = dev->subdevlist;
	EXPECT_EQ(members.num, 4);
	EXPECT_EQ(members.num_real, 2);
	EXPECT_EQ(members.lmt, 8);
	EXPECT_EQ(members.parent, nullptr);
	EXPECT_EQ(members.nr_faulty, 1);
	EXPECT_EQ(members.item[1].tag, 1);
	EXPECT_EQ(members.item[1].index, 1);
	EXPECT_EQ(members.item[1].parent, &members);
	EXPECT_EQ(text_of(members.item[1].name), "sdb1");
	EXPECT_EQ(members.item[1].faulty, 1);
	EXPECT_EQ(text_of(members.item[3].name), "sdc1");
	EXPECT_EQ(members.item[3].faulty, 0);
	EXPECT_TRUE(is_zero(members.item[0]));
	EXPECT_TRUE(is_zero(members.item[2]));
}

TEST_F(MdstatParser, WholeArrays)
{
	EXPECT_EQ(parsed(ARRAY_LINE), "0|active|1|2|2|0|UU|none|0|24448|2|2|0:sdb1 1:sdc1");
	EXPECT_EQ(parsed("md1 : active raid5 sdc1[2] sdb1[1] sda1[0]\n", "1024 blocks [3/3] [UUU]\n", ""),
	          "1|active|5|3|3|0|UUU|none|0|2048|3|3|0:sda1 1:sdb1 2:sdc1");
	EXPECT_EQ(parsed("md2 : inactive sdd1[0] sde1[1]\n", "      5288 blocks\n"),
	          "2|inactive||0|0|0||none|0|10576|2|2|0:sdd1 1:sde1");
}

struct number_row_t {
	const char *array;
	int mdminor;
};

TEST_F(MdstatParser, Numbers)
{
	static const number_row_t rows[] = {
		{"md7", 7},
		{"md127", 127},
		{"md007", 7},
		{"md5p1", 5},
		{"md_d0", 0},
		{"md", 0},
		{"md2147483647", INT_MAX},
		{"md2147483648", INT_MAX},
		{"md4294967297", INT_MAX},
		{"md18446744073709551617", INT_MAX},
	};
	for (const number_row_t &row : rows) {
		EXPECT_EQ(parse(std::string(row.array) + " : active raid1 sda1[0]\n", SIZE_LINE, ""), 0)
			<< row.array;
		EXPECT_EQ(dev->mdminor, row.mdminor) << row.array;
	}
}

struct start_row_t {
	const char *array;
	int active;
	char level;
	const char *members;
};

TEST_F(MdstatParser, StatesAndLevels)
{
	static const start_row_t rows[] = {
		{"md0 : active linear sda1[0]\n", 1, 'l', "1|1|0:sda1"},
		{"md0 : active raid0 sda1[0]\n", 1, '0', "1|1|0:sda1"},
		{"md0 : active raid1 sda1[0]\n", 1, '1', "1|1|0:sda1"},
		{"md0 : active raid5 sda1[0]\n", 1, '5', "1|1|0:sda1"},
		// A level's word may go on.
		{"md0 : active raid10 sda1[0]\n", 1, '1', "1|1|0:sda1"},
		{"md0 : active raid50 sda1[0]\n", 1, '5', "1|1|0:sda1"},
		{"md0 : active linearly sda1[0]\n", 1, 'l', "1|1|0:sda1"},
		{"md0 : actively raid1 sda1[0]\n", 1, '1', "1|1|0:sda1"},
		{"md0 : active raid1\n", 1, '1', "0|0|"},
		{"md0 : active raid1", 1, '1', "0|0|"},
		{"md0:active raid1 sda1[0]\n", 1, '1', "1|1|0:sda1"},
		{"md0     :     active     raid1     sda1[0]     \n", 1, '1', "1|1|0:sda1"},
		{"md0 : inactive linear sda1[0]\n", 0, 'l', "1|1|0:sda1"},
		{"md0 : inactive raid0 sda1[0]\n", 0, '0', "1|1|0:sda1"},
		{"md0 : inactive raid1 sda1[0]\n", 0, '1', "1|1|0:sda1"},
		{"md0 : inactive raid5 sda1[0]\n", 0, '5', "1|1|0:sda1"},
		// Without a level the word behind the state is the first member.
		{"md0 : inactive sda1[0] sdb1[1]\n", 0, 0, "2|2|0:sda1 1:sdb1"},
		{"md0 : inactively sda1[0]\n", 0, 0, "1|1|0:sda1"},
		{"md0 : inactive\n", 0, 0, "0|0|"},
		{"md0 : inactive", 0, 0, "0|0|"},
	};
	for (const start_row_t &row : rows) {
		EXPECT_EQ(parse(row.array, SIZE_LINE, NO_PROGRESS), 0) << row.array;
		EXPECT_EQ(dev->active, row.active) << row.array;
		EXPECT_EQ(dev->mdlevel, row.level) << row.array;
		EXPECT_EQ(members_of(dev->subdevlist), row.members) << row.array;
	}
}

TEST_F(MdstatParser, LinesThatAreNoArray)
{
	static const char *const rows[] = {
		"",
		"\n",
		"md",
		"md0",
		"md0 active raid1 sda1[0]\n",
		// The only colon is that of a member's number.
		"md0 active raid1 [dev 08:11][0]\n",
		"md0 :\n",
		"md0 : \n",
		"md0 : : active raid1 sda1[0]\n",
		"md0 : broken raid1 sda1[0]\n",
		"md0 : Active raid1 sda1[0]\n",
		"md0 : raid1 active sda1[0]\n",
		"md0 : activ raid1 sda1[0]\n",
		"md0 : inactivated sda1[0]\n",
		"md0 : active\n",
		"md0 : active",
		"md0 : activeraid1 sda1[0]\n",
		"md0 : active sda1[0] sdb1[1]\n",
		"md0 : active raid sda1[0]\n",
		"md0 : active RAID1 sda1[0]\n",
		"md0 : active raid4 sda1[0] sdb1[1] sdc1[2]\n",
		"md0 : active raid6 sda1[0] sdb1[1] sdc1[2] sdd1[3]\n",
		// The word is taken for a part of the first member's name.
		"md0 : inactive raid6 sda1[0]\n",
		"md0 : active multipath sda1[0] sdb1[1]\n",
		"md0 : active faulty sda1[0]\n",
		"md0 : active (read-only) raid1 sda1[0]\n",
		"md0 : active (auto-read-only) raid1 sda1[0]\n",
	};
	for (const char *array : rows)
		EXPECT_EQ(parsed(array), "-1") << array;
}

// Takes down what the filter is shown.
struct seen_t {
	std::string candidate;
	int answer;
};

int look(const void *item, const void *arg)
{
	auto *seen = const_cast<seen_t *>(static_cast<const seen_t *>(arg));
	seen->candidate += described(*static_cast<const mdstat_dev_t *>(item)) + "\n";
	return seen->answer;
}

TEST_F(MdstatParser, FilterSeesTheWholeArray)
{
	const std::string whole = "0|active|1|2|2|1|UU|resync|50|24448|2|2|0:sdb1(F) 1:sdc1";
	for (const int answer : {1, 2, -1, 0}) {
		seen_t seen = {"", answer};
		EXPECT_EQ(parse("md0 : active raid1 sdc1[1] sdb1[0](F)\n", SIZE_LINE, "resync = 5.0%\n", look,
		                &seen),
		          0);
		EXPECT_EQ(seen.candidate, whole + "\n");
		if (answer == 0) {
			EXPECT_TRUE(is_zero(*dev));
			continue;
		}
		expect_wired(*dev);
		EXPECT_EQ(described(*dev), whole) << answer;
	}
}

TEST_F(MdstatParser, FilterIsNotAskedAboutMalformedLines)
{
	static const char *const arrays[][3] = {
		{"md0 : active raid6 sda1[0]\n", SIZE_LINE, NO_PROGRESS},
		{"md0 : active raid1 sda1[8]\n", SIZE_LINE, NO_PROGRESS},
		{"md0 : active raid1 dm-0[0]\n", SIZE_LINE, NO_PROGRESS},
		{ARRAY_LINE, "\n", NO_PROGRESS},
		{ARRAY_LINE, SIZE_LINE, "resync\n"},
	};
	for (const auto &lines : arrays) {
		for (const int answer : {0, 1}) {
			filter_calls_t calls = {answer, 0};
			EXPECT_EQ(parse(lines[0], lines[1], lines[2], counting_filter, &calls), -1)
				<< lines[0] << lines[1] << lines[2];
			EXPECT_TRUE(is_zero(*dev));
			EXPECT_EQ(calls.calls, 0);
		}
	}
}

// Lines that a caller has filled by hand: old bytes behind the text, or no end of text at all.
TEST_F(MdstatParser, NothingBehindTheTextCounts)
{
	using namespace std::string_literals;
	EXPECT_EQ(parsed("md0 : active raid1 sda1[0]\0 sdb1[1]\n"s, "8 blocks\0 [2/2] [UU]\n"s,
	                 "\0resync = 5%\n"s),
	          "0|active|1|0|0|0||none|0|16|1|1|0:sda1");
	EXPECT_EQ(parsed("md0 : active raid1 sda1[0](F\0)\n"s, "8 blocks [2/1] [U\0_]\n"s,
	                 "recovery = 5\0.5%"s),
	          "0|active|1|2|1|0||recovery|50|16|1|1|0:sda1");
	EXPECT_EQ(parsed("md0\0 : active raid1 sda1[0]\n"s), "-1");
	EXPECT_EQ(parsed(ARRAY_LINE, "\0008 blocks\n"s), "-1");
	EXPECT_EQ(parsed(ARRAY_LINE, SIZE_LINE, "resync\0 = 5%\n"s), "-1");
}

TEST_F(MdstatParser, LinesWithoutAnEndAreReadToTheirLimit)
{
	const auto endless = [](const std::string &text, char rest) {
		return text + std::string(LINE_SIZE - text.size(), rest);
	};
	EXPECT_EQ(parsed(endless("md0 : active raid1 sda1[0] ", 'x'), endless("8 blocks [2/1", ' '),
	                 endless("resync = 5.", ' ')),
	          "0|active|1|2|1|0||resync|50|16|1|1|0:sda1");
	EXPECT_EQ(parsed(endless("md0 : active raid1 ", ' '), endless("8 blocks ", 'b'), endless("", 'y')),
	          "0|active|1|0|0|0||none|0|16|0|0|");
	EXPECT_EQ(parsed(endless("md", '1')), "-1");
	EXPECT_EQ(parsed(endless("md0 :", ' ')), "-1");
	EXPECT_EQ(parsed(ARRAY_LINE, endless("", ' ')), "-1");
	EXPECT_EQ(parsed(ARRAY_LINE, SIZE_LINE, std::string(LINE_SIZE - 6, '.') + "resync"), "-1");
	EXPECT_EQ(parsed(ARRAY_LINE, SIZE_LINE, std::string(LINE_SIZE - 8, '.') + "resync=5"),
	          "0|active|1|2|2|0|UU|resync|50|24448|2|2|0:sdb1 1:sdc1");
}

// A name as long as a line allows; the parts before its last separator do not count.
TEST_F(MdstatParser, LongNames)
{
	EXPECT_EQ(parsed("md0 : active raid1 /" + repeat("x", 900) + "/sda1[0] sdb1[1]\n"),
	          "0|active|1|2|2|0|UU|none|0|24448|2|2|0:sda1 1:sdb1");
	EXPECT_EQ(parsed("md0 : active raid1 " + repeat("x", 900) + "[0] sdb1[1]\n"), "-1");
}

} // namespace
