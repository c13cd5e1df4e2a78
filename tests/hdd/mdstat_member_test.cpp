// SPDX-License-Identifier: Apache-2.0
// The members on the line of a software-RAID array: their names, roles and marks.
#include "mdstat_parser.h"

namespace
{

const std::string START = "md0 : active raid1 ";

struct member_row_t {
	const char *words; // behind the level
	const char *expected;
	int nr_faulty;
};

class MdstatMembers : public MdstatParser
{
protected:
	template <size_t count> void expect(const member_row_t (&rows)[count])
	{
		for (const member_row_t &row : rows) {
			EXPECT_EQ(parse(START + row.words, SIZE_LINE, NO_PROGRESS), 0) << row.words;
			expect_wired(*dev);
			EXPECT_EQ(members_of(dev->subdevlist), row.expected) << row.words;
			EXPECT_EQ(dev->nr_faulty, row.nr_faulty) << row.words;
		}
	}
	template <size_t count> void expect_refused(const char *const (&rows)[count])
	{
		for (const char *words : rows)
			EXPECT_EQ(parsed(START + words), "-1") << words;
	}
};

TEST_F(MdstatMembers, SitInTheSlotsOfTheirRoles)
{
	static const member_row_t rows[] = {
		{"sdb1[0] sdc1[1]\n", "2|2|0:sdb1 1:sdc1", 0},
		{"sdc1[1] sdb1[0]\n", "2|2|0:sdb1 1:sdc1", 0},
		{"sdc1[7]\n", "8|1|7:sdc1", 0},
		{"sdb1[5] sdc1[2]\n", "6|2|2:sdc1 5:sdb1", 0},
		{"sdb1[007]\n", "8|1|7:sdb1", 0},
		{"sdh1[7] sdg1[6] sdf1[5] sde1[4] sdd1[3] sdc1[2] sdb1[1] sda1[0]\n",
	         "8|8|0:sda1 1:sdb1 2:sdc1 3:sdd1 4:sde1 5:sdf1 6:sdg1 7:sdh1", 0},
		{"sdb1[0]   sdc1[1]  \n", "2|2|0:sdb1 1:sdc1", 0},
		{"sdb1[0] sdc1[1]", "2|2|0:sdb1 1:sdc1", 0},
	};
	expect(rows);
}

TEST_F(MdstatMembers, Failed)
{
	static const member_row_t rows[] = {
		{"sdb1[0] sdc1[1](F)\n", "2|2|0:sdb1 1:sdc1(F)", 1},
		{"sdb1[0](F) sdc1[1](F)\n", "2|2|0:sdb1(F) 1:sdc1(F)", 2},
		{"sdb1[0](F)", "1|1|0:sdb1(F)", 1},
		// Spare, replacement, written mostly, journal: none of them says failed.
		{"sdb1[0](S) sdc1[1](R) sdd1[2](W) sde1[3](J)\n", "4|4|0:sdb1 1:sdc1 2:sdd1 3:sde1", 0},
		{"sdb1[0](W)(F) sdc1[1]\n", "2|2|0:sdb1(F) 1:sdc1", 1},
		{"sdb1[0](F)(S)\n", "1|1|0:sdb1", 0},
		{"sdb1[0](f) sdc1[1]F sdd1[2] (F)\n", "3|3|0:sdb1 1:sdc1 2:sdd1", 0},
	};
	expect(rows);
}

TEST_F(MdstatMembers, NamesAreCanonical)
{
	static const member_row_t rows[] = {
		{"hda5[0] hdt16[1] sda[2] sddx15[3] md1[4]\n", "5|5|0:hda5 1:hdt16 2:sda 3:sddx15 4:md1", 0},
		{"/dev/sdb1[0] scsi/host0/sdc1[1]\n", "2|2|0:sdb1 1:sdc1", 0},
		{"08:11[0] 0B:00[1] 03:41[2]\n", "3|3|0:sdb1 1:0B:00 2:hdb1", 0},
		{"sdb01[0]\n", "1|1|0:sdb1", 0},
		// The first two of four letters do not count.
		{"xvdb[0]\n", "1|1|0:sddb", 0},
	};
	expect(rows);
}

TEST_F(MdstatMembers, WithoutANameHaveANumber)
{
	static const member_row_t rows[] = {
		{"[dev 08:11][0]\n", "1|1|0:sdb1", 0},
		{"[dev 08:11][0](F) [dev 08:21][1]\n", "2|2|0:sdb1(F) 1:sdc1", 1},
		{"sda1[2] [dev 0b:00][0] sdb1[1]\n", "3|3|0:0B:00 1:sdb1 2:sda1", 0},
		{"[dev fd:03][3]", "4|1|3:FD:03", 0},
	};
	expect(rows);
	static const char *const refused[] = {
		"[dev 8:11][0]\n",
		"[dev ][0]\n",
		"[dev 08:11][8]\n",
	};
	expect_refused(refused);
}

// Where a word has no role the list ends; what came before it counts.
// A word without a bracket belongs to the name that it stands before: no member is lost in silence.
TEST_F(MdstatMembers, WordsWithoutABracketSpoilTheNameBehindThem)
{
	static const char *const rows[] = {
		"sda1 sdb1[1]\n",
		"sda1[0] sdb1 sdc1[2]\n",
		"sda1[0] 12224 blocks [2/2] [UU]\n",
	};
	expect_refused(rows);
}

TEST_F(MdstatMembers, EndAtAWordThatIsNone)
{
	static const member_row_t rows[] = {
		{"sda1[0] nonsense\n", "1|1|0:sda1", 0},
		{"sda1[0] sdb1[ sdc1[2]\n", "1|1|0:sda1", 0},
		{"sda1[0] sdb1[x] sdc1[2]\n", "1|1|0:sda1", 0},
		{"sda1[0] sdb1[-1] sdc1[2]\n", "1|1|0:sda1", 0},
		{"sda1[0] sdb1[+1]\n", "1|1|0:sda1", 0},
		{"sda1[0] sdb1[]\n", "1|1|0:sda1", 0},
		{"sda1[0] sdb1[", "1|1|0:sda1", 0},
		{"sda1[0] [dev 08:11\n", "1|1|0:sda1", 0},
		{"sda1[0] [dev 08:11", "1|1|0:sda1", 0},
		{"sda1[0] [dev 08:11]\n", "1|1|0:sda1", 0},
		{"sda1[0] [dev 08:11]", "1|1|0:sda1", 0},
		{"sda1[0] [dev 08:11][\n", "1|1|0:sda1", 0},
		{"sda1[0] [dev 08:11][x]\n", "1|1|0:sda1", 0},
		{"sda1[0] [dev\n", "1|1|0:sda1", 0},
		{"sda1[0] [dev", "1|1|0:sda1", 0},
		{"sda1[0] [d", "1|1|0:sda1", 0},
		{"sda1[0] [\n", "1|1|0:sda1", 0},
		{"sda1[0] [", "1|1|0:sda1", 0},
	};
	expect(rows);
}

TEST_F(MdstatMembers, LineEndsAtAReturnOrAHash)
{
	static const member_row_t rows[] = {
		{"sdb1[0] sdc1[1]\r\n", "2|2|0:sdb1 1:sdc1", 0},
		{"sdb1[0] sdc1[1](F)\r\n", "2|2|0:sdb1 1:sdc1(F)", 1},
		{"sdb1[0] \r sdc1[1]\n", "1|1|0:sdb1", 0},
		{"sdb1[0] # sdc1[1]\n", "1|1|0:sdb1", 0},
		{"sdb1[0] #sdc1[1]\n", "1|1|0:sdb1", 0},
		{"# sdb1[0]\n", "0|0|", 0},
		{"sdb1[0]\n sdc1[1]\n", "1|1|0:sdb1", 0},
	};
	expect(rows);
}

TEST_F(MdstatMembers, ThatCannotBeNamedRefuseTheArray)
{
	static const char *const rows[] = {
		"dm-0[0]\n",
		"sda1[0] dm-15[1]\n",
		"dm-15[1] sda1[0]\n",
		"loop0[0]\n",
		"cciss/c0d0p1[0]\n",
		"nvme0n1p1[0]\n",
		"vda1[0]\n",
		"hda17[0]\n",
		"hda0[0]\n",
		"sda16[0]\n",
		"md256[0]\n",
		"md[0]\n",
		"/[0]\n",
		"sda1(F)[0]\n",
		"dm-0[0](F)\n",
		// The name is looked at before the role.
		"dm-0[x]\n",
	};
	expect_refused(rows);
}

TEST_F(MdstatMembers, WithoutASlotRefuseTheArray)
{
	static const char *const rows[] = {
		"sda1[8]\n",          "sda1[9]\n",
		"sda1[0] sdb1[8]\n",  "sda1[10]\n",
		"sda1[4294967296]\n", "sda1[18446744073709551616]\n",
		"sda1[8](S)\n",       "sda1[8](F)\n",
		"sda1[1] sdb1[1]\n",  "sda1[0] sdb1[1] sdc1[0]\n",
		"sda1[0] sda1[0]\n",
	};
	expect_refused(rows);
}

TEST_F(MdstatMembers, TheSameDeviceMayHaveTwoRoles)
{
	static const member_row_t rows[] = {{"sda1[0] sda1[1]\n", "2|2|0:sda1 1:sda1", 0}};
	expect(rows);
}

} // namespace
