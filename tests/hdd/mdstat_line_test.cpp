// SPDX-License-Identifier: Apache-2.0
// The line with the size of a software-RAID array, and the one with its progress.
#include "mdstat_parser.h"

namespace
{

struct size_row_t {
	const char *line;
	const char *expected; // built for, in service, status, sectors
};

class MdstatSize : public MdstatParser
{
protected:
	std::string sized(const std::string &array, const std::string &line)
	{
		if (parse(array, line, NO_PROGRESS) != 0) {
			EXPECT_TRUE(is_zero(*dev)) << line;
			return "refused";
		}
		return number(dev->nr_original) + "|" + number(dev->nr_normal) + "|" + text_of(dev->status) +
		       "|" + number(static_cast<long>(dev->size));
	}
};

TEST_F(MdstatSize, Lines)
{
	static const size_row_t rows[] = {
		{"      12224 blocks [2/2] [UU]\n", "2|2|UU|24448"},
		{"12224 blocks [2/2] [UU]", "2|2|UU|24448"},
		{"      12224 blocks super 1.2 [2/1] [_U]\n", "2|1|_U|24448"},
		{"      12224 blocks level 5, 64k chunk, algorithm 2 [3/2] [U_U]\n", "3|2|U_U|24448"},
		{"      12224 blocks super external:/md127/0 [4/3] [UU_U]\n", "4|3|UU_U|24448"},
		{"      12224 blocks [10/9] [UUUUUUUUU_]\n", "10|9|UUUUUUUUU_|24448"},
		{"      12224 blocks [2/1][U_]\n", "2|1|U_|24448"},
		{"      12224 blocks [2/1] [U_] [more]\n", "2|1|U_|24448"},
		{"      12224 blocks [2/1] []\n", "2|1||24448"},
		{"      12224 blocks [2/1]\n", "2|1||24448"},
		{"      12224 blocks [2/1] [U_\n", "2|1||24448"},
		{"      12224 blocks [2/1] U_]\n", "2|1||24448"},
		{"      12224 blocks [2147483648/18446744073709551616] [U]\n",
	         "2147483647|2147483647|U|24448"},
		{"      12224 blocks\n", "0|0||24448"},
		{"12224", "0|0||24448"},
		{"12224k", "0|0||24448"},
		{"0 blocks [2/2] [UU]\n", "2|2|UU|0"},
		{"      1 blocks [2/2] [UU]\n", "2|2|UU|2"},
		// Beyond 32 bits, before and after they are doubled.
		{"      2147483648 blocks [2/2] [UU]\n", "2|2|UU|4294967296"},
		{"      4294967297 blocks [2/2] [UU]\n", "2|2|UU|8589934594"},
		{"", "refused"},
		{"\n", "refused"},
		{"      \n", "refused"},
		{"blocks\n", "refused"},
		{"      x12224 blocks [2/2] [UU]\n", "refused"},
		{"      -12224 blocks [2/2] [UU]\n", "refused"},
		{"      +12224 blocks [2/2] [UU]\n", "refused"},
		{"      [2/2] [UU]\n", "refused"},
		{"\r\n", "refused"},
	};
	for (const size_row_t &row : rows)
		EXPECT_EQ(sized(ARRAY_LINE, row.line), row.expected) << row.line;
}

// Their kernel lines tell no counts.
TEST_F(MdstatSize, ArraysWithoutRedundancyCountTheirMembers)
{
	static const struct {
		const char *array;
		const char *line;
		const char *expected;
	} rows[] = {
		{"md0 : active raid0 sda1[0] sdb1[1]\n", "  8 blocks 64k chunks\n", "2|2||16"},
		{"md0 : active linear sda1[0] sdb1[1] sdc1[2]\n", "  8 blocks 32k rounding\n", "3|3||16"},
		{"md0 : active raid0 sda1[0] sdb1[5]\n", "  8 blocks 64k chunks\n", "2|2||16"},
		{"md0 : inactive raid0 sda1[0]\n", "  8 blocks\n", "1|1||16"},
		{"md0 : active raid0\n", "  8 blocks\n", "0|0||16"},
		{"md0 : active raid0 sda1[0] sdb1[1]\n", "  8 blocks [4/3] [UUU_]\n", "4|3|UUU_|16"},
		// A bracket without a number counts as 0; what is not there changes nothing.
		{"md0 : active raid0 sda1[0] sdb1[1]\n", "  8 blocks [x/y]\n", "0|0||16"},
		{"md0 : active raid0 sda1[0] sdb1[1]\n", "  8 blocks [3]\n", "3|2||16"},
		{"md0 : active raid1 sda1[0] sdb1[1]\n", "  8 blocks\n", "0|0||16"},
		{"md0 : active raid5 sda1[0] sdb1[1]\n", "  8 blocks\n", "0|0||16"},
		{"md0 : inactive sda1[0] sdb1[1]\n", "  8 blocks\n", "0|0||16"},
	};
	for (const auto &row : rows)
		EXPECT_EQ(sized(row.array, row.line), row.expected) << row.array;
}

TEST_F(MdstatSize, StatusIsBounded)
{
	const std::string letters = repeat("U", 60) + "_abcdefg";
	for (const size_t length : {62U, 63U, 64U, 68U}) {
		const std::string status = letters.substr(0, length);
		EXPECT_EQ(sized(ARRAY_LINE, "8 blocks [2/1] [" + status + "]\n"),
		          "2|1|" + status.substr(0, 63) + "|16");
	}
	EXPECT_EQ(sized(ARRAY_LINE, "8 blocks [2/1] [" + repeat("U", 900) + "]\n"),
	          "2|1|" + repeat("U", 63) + "|16");
}

struct progress_row_t {
	const char *line;
	const char *expected;
};

class MdstatProgress : public MdstatParser
{
protected:
	std::string progress(const std::string &line)
	{
		if (parse(ARRAY_LINE, SIZE_LINE, line) != 0) {
			EXPECT_TRUE(is_zero(*dev)) << line;
			return "refused";
		}
		static const char *const types[] = {"none", "resync", "recovery"};
		const bool known = dev->resync_type >= 0 && dev->resync_type <= 2;
		return std::string(known ? types[dev->resync_type] : "?") + " " +
		       number(dev->resync_progress);
	}
};

TEST_F(MdstatProgress, Lines)
{
	static const progress_row_t rows[] = {
		{"", "none 0"},
		{"\n", "none 0"},
		{"      \n", "none 0"},
		{"      bitmap: 0/1 pages [0KB], 65536KB chunk\n", "none 0"},
		{"      [=>...]  check =  6.4% (1362112/20971392) finish=3.3min speed=97293K/sec\n",
	         "none 0"},
		{"      [=>...]  reshape = 48.4% (1024/2048) finish=1.8min speed=9898K/sec\n", "none 0"},
		{"      [==>..]  resync = 12.3% (1510/12224) finish=0.1min speed=1510K/sec\n", "resync 123"},
		{"      [=>...]  resync =  9.9% (1210/12224) finish=0.1min speed=1210K/sec\n", "resync 99"},
		{"      [===>.]  recovery = 45.6% (5574/12224) finish=0.1min speed=557K/sec\n",
	         "recovery 456"},
		{"      [>....]  recovery =  0.4% (49/12224) finish=0.1min speed=49K/sec\n", "recovery 4"},
		{"recovery = 45.6%", "recovery 456"},
		{"        resync=DELAYED\n", "resync 0"},
		{"        resync=PENDING\n", "resync 0"},
		{"        recovery=DELAYED\n", "recovery 0"},
		{"resync=\n", "resync 0"},
		{"resync =", "resync 0"},
		{"recovery=5.5%", "recovery 55"},
		{"recovery   =   5.5%", "recovery 55"},
		{"recovery =5.5%", "recovery 55"},
		{"recovery = 100.0%", "recovery 1000"},
		{"recovery = 0.0%", "recovery 0"},
		{"recovery = 7%", "recovery 70"},
		{"recovery = 7", "recovery 70"},
		{"recovery = 7.%", "recovery 70"},
		{"recovery = 7.x%", "recovery 70"},
		{"recovery = 7,5%", "recovery 70"},
		// One digit counts, so that the number stays one of tenths.
		{"recovery = 12.34%", "recovery 123"},
		{"recovery = 12.09%", "recovery 120"},
		{"recovery = 12.999999999999%", "recovery 129"},
		{"recovery = 007.5%", "recovery 75"},
		{"recovery = 214748364.7%", "recovery 2147483647"},
		{"recovery = 214748364.8%", "recovery 2147483647"},
		{"recovery = 214748365%", "recovery 2147483647"},
		{"recovery = 2147483648.5%", "recovery 2147483647"},
		{"recovery = 18446744073709551617.5%", "recovery 2147483647"},
	};
	for (const progress_row_t &row : rows)
		EXPECT_EQ(progress(row.line), row.expected) << row.line;
}

// A line that speaks of both is not taken for either.
TEST_F(MdstatProgress, BothWordsAreNone)
{
	for (const char *line : {"recovery = 5.0% resync=DELAYED\n", "resync=PENDING recovery = 5.0%\n",
	                         "resync recovery\n", "recoveryresync\n"})
		EXPECT_EQ(progress(line), "none 0") << line;
}

TEST_F(MdstatProgress, NothingButBlanksBeforeTheEqualsSign)
{
	for (const char *line :
	     {"resync\n", "resync", "recovery", "recovery 45.6%\n", "recovery: 45.6%\n",
	      "resyncing = 45.6%\n", "resync (delayed) = 5%\n", "recovery . = 45.6%\n", "= recovery\n"})
		EXPECT_EQ(progress(line), "refused") << line;
}

} // namespace
