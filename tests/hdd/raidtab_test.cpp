// SPDX-License-Identifier: Apache-2.0
// Software-RAID description files in the classic raidtab syntax.
#include "host.h"

#include "hdd/sal/src/linux/raidtab.h"

namespace
{

class RaidtabTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		list = soiled<raidtab_devlist_t>();
	}
	int read(const std::string &text, filter_func_t filter = nullptr, void *arg = nullptr)
	{
		list = soiled<raidtab_devlist_t>();
		host.file("/raidtab", text);
		return read_raidtab_devlist(host.path("/raidtab").c_str(), list.get(), filter, arg);
	}
	const raidtab_dev_t &array() const { return list->item[0]; }
	std::unique_ptr<raidtab_devlist_t> list;
};

const char *const EXAMPLE = "# two arrays\n"
			    "raiddev /dev/md0\n"
			    "\traid-level\t5\n"
			    "\tnr-raid-disks\t4\n"
			    "\tnr-spare-disks\t1\n"
			    "\tchunk-size\t32\n"
			    "\tdevice\t/dev/sda1\n"
			    "\traid-disk\t0\n"
			    "\tdevice /dev/sdb1\n"
			    "\traid-disk 1   # the second\n"
			    "\tdevice /dev/sdc1\n"
			    "\tfailed-disk 3\n"
			    "\tdevice /dev/sdd1\n"
			    "\tspare-disk 0\n"
			    "\n"
			    "raiddev /dev/md/md7\n"
			    "raid-level linear\n";

TEST_F(RaidtabTest, ReadsArraysAndDisks)
{
	EXPECT_EQ(read(EXAMPLE), 0);
	EXPECT_EQ(list->num, 2);
	EXPECT_EQ(list->num_real, 2);
	EXPECT_EQ(list->lmt, 16);
	EXPECT_EQ(list->parent, nullptr);
	EXPECT_EQ(list->with_faulty, 0);
	for (int i = 0; i < 2; i++) {
		EXPECT_EQ(list->item[i].tag, 1);
		EXPECT_EQ(list->item[i].index, i);
		EXPECT_EQ(list->item[i].parent, list.get());
		EXPECT_EQ(list->item[i].nr_original, 0);
		EXPECT_EQ(list->item[i].with_faulty, 0);
	}
	EXPECT_EQ(list->item[2].tag, 0);
	EXPECT_EQ(array().mdminor, 0);
	EXPECT_EQ(array().mdlevel, '5');
	EXPECT_EQ(list->item[1].mdminor, 7);
	EXPECT_EQ(list->item[1].mdlevel, 'l');
}

TEST_F(RaidtabTest, MembersSitInTheirSlots)
{
	ASSERT_EQ(read(EXAMPLE), 0);
	const raidtab_subdevlist_t &member = array().subdevlist_member;
	EXPECT_EQ(member.num, 4);
	EXPECT_EQ(member.num_real, 3);
	EXPECT_EQ(member.lmt, 8);
	static const struct {
		const char *name;
		int tag;
		int faulty;
	} slots[8] = {{"/dev/sda1", 1, 0}, {"/dev/sdb1", 1, 0}, {"", 0, 0}, {"/dev/sdc1", 1, 1}};
	for (int slot = 0; slot < 8; slot++) {
		EXPECT_EQ(text_of(member.item[slot].name), slots[slot].name ? slots[slot].name : "") << slot;
		EXPECT_EQ(member.item[slot].tag, slots[slot].tag) << slot;
		EXPECT_EQ(member.item[slot].faulty, slots[slot].faulty) << slot;
	}
}

TEST_F(RaidtabTest, SparesHaveTheirOwnSlots)
{
	ASSERT_EQ(read(EXAMPLE), 0);
	const raidtab_subdevlist_t &spare = array().subdevlist_spare;
	EXPECT_EQ(spare.num, 1);
	EXPECT_EQ(spare.num_real, 1);
	EXPECT_EQ(spare.lmt, 8);
	EXPECT_EQ(spare.item[0].tag, 1);
	EXPECT_EQ(spare.item[0].faulty, 0);
	EXPECT_EQ(text_of(spare.item[0].name), "/dev/sdd1");
	EXPECT_EQ(spare.item[1].tag, 0);
}

TEST_F(RaidtabTest, DeclaredCountMayDifferFromTheDisks)
{
	EXPECT_EQ(read("raiddev /dev/md0\nnr-raid-disks 4\ndevice a\nraid-disk 0\ndevice b\nraid-disk 1\n"
	               "device c\nraid-disk 2\n"),
	          0);
	EXPECT_EQ(array().subdevlist_member.num, 4);
	EXPECT_EQ(array().subdevlist_member.num_real, 3);
	EXPECT_EQ(read("raiddev /dev/md0\ndevice a\nraid-disk 7\n"), 0);
	EXPECT_EQ(array().subdevlist_member.num, 0);
	EXPECT_EQ(array().subdevlist_member.num_real, 1);
	EXPECT_EQ(array().subdevlist_member.item[7].tag, 1);
}

TEST_F(RaidtabTest, PendingPathIsUsedUpByItsDisk)
{
	for (const char *keyword : {"raid-disk", "failed-disk", "spare-disk"}) {
		EXPECT_EQ(read(printed("raiddev /dev/md0\ndevice /dev/sda1\n%s 0\n%s 1\n", keyword, keyword)),
		          0);
		const auto &disks = keyword[0] == 's' ? array().subdevlist_spare : array().subdevlist_member;
		EXPECT_EQ(text_of(disks.item[0].name), "/dev/sda1") << keyword;
		EXPECT_EQ(text_of(disks.item[1].name), "") << keyword;
		EXPECT_EQ(disks.item[1].tag, 1) << keyword;
		EXPECT_EQ(disks.num_real, 2) << keyword;
	}
}

TEST_F(RaidtabTest, LastDeviceLineCounts)
{
	EXPECT_EQ(read("raiddev /dev/md0\ndevice /dev/sda1\ndevice /dev/sdb1\nraid-disk 0\n"), 0);
	EXPECT_EQ(text_of(array().subdevlist_member.item[0].name), "/dev/sdb1");
}

TEST_F(RaidtabTest, MemberAndSpareSlotsAreApart)
{
	EXPECT_EQ(read("raiddev /dev/md0\ndevice a\nraid-disk 2\ndevice b\nspare-disk 2\nraiddev /dev/md1\n"
	               "device c\nraid-disk 2\n"),
	          0);
	EXPECT_STREQ(array().subdevlist_member.item[2].name, "a");
	EXPECT_STREQ(array().subdevlist_spare.item[2].name, "b");
	EXPECT_STREQ(list->item[1].subdevlist_member.item[2].name, "c");
}

TEST_F(RaidtabTest, LinesBeforeTheFirstArrayAreIgnored)
{
	EXPECT_EQ(read("raid-level 5\nnr-raid-disks 3\nnr-spare-disks 2\ndevice /dev/sdz\nraid-disk 0\n"
	               "failed-disk 0\nspare-disk 9\nraiddev /dev/md1\nraid-disk 1\n"),
	          0);
	EXPECT_EQ(list->num, 1);
	EXPECT_EQ(array().mdlevel, 0);
	EXPECT_EQ(array().subdevlist_member.num, 0);
	EXPECT_EQ(array().subdevlist_member.num_real, 1);
	EXPECT_EQ(text_of(array().subdevlist_member.item[1].name), "");
}

struct level_row_t {
	const char *value;
	char level;
};

TEST_F(RaidtabTest, Levels)
{
	static const level_row_t rows[] = {{"0", '0'},        {"1", '1'},  {"5", '5'},  {"linear", 'l'},
	                                   {"linearly", 'l'}, {"10", '1'}, {"50", '5'}, {"4", 0},
	                                   {"lin", 0},        {"-1", 0},   {"6", 0},    {"multipath", 0}};
	for (const level_row_t &row : rows) {
		EXPECT_EQ(read(printed("raiddev /dev/md0\nraid-level %s\n", row.value)), 0);
		EXPECT_EQ(array().mdlevel, row.level) << row.value;
	}
	EXPECT_EQ(read("raiddev /dev/md0\nraid-level 5\nraid-level 4\n"), 0);
	EXPECT_EQ(array().mdlevel, '5');
}

TEST_F(RaidtabTest, ArrayNumbers)
{
	static const struct {
		const char *value;
		int number;
	} rows[] = {{"/dev/md0", 0}, {"/dev/md15", 15},  {"md3", 3},       {"/dev/md/4", 4},
	            {"/dev/md", -1}, {"/dev/md5/x", -1}, {"/dev/md007", 7}};
	for (const auto &row : rows) {
		EXPECT_EQ(read(printed("raiddev %s\n", row.value)), 0);
		EXPECT_EQ(array().mdminor, row.number) << row.value;
	}
}

TEST_F(RaidtabTest, LinesAreTrimmedAndKeywordsArePrefixes)
{
	EXPECT_EQ(read(" \t raiddev \t /dev/md2 \t \r\n#raiddev /dev/md3\nraiddevice /dev/md4\nother "
	               "1\nRAIDDEV x\n"),
	          0);
	EXPECT_EQ(list->num, 2);
	EXPECT_EQ(array().mdminor, 2);
	EXPECT_EQ(read("raiddev /dev/md2 # /dev/md3\nnr-raid-disks 3#4\nnr-spare-disks 2 5\n"), 0);
	EXPECT_EQ(array().mdminor, 2);
	EXPECT_EQ(array().subdevlist_member.num, 3);
	EXPECT_EQ(array().subdevlist_spare.num, 2);
}

TEST_F(RaidtabTest, ValuesThatAreNoNumbersChangeNothing)
{
	EXPECT_EQ(read("raiddev /dev/md0\nnr-raid-disks 3\nnr-raid-disks x\nnr-raid-disks\nnr-spare-disks 2\n"
	               "nr-spare-disks x\nraid-disk x\nfailed-disk x\nspare-disk\n"),
	          0);
	EXPECT_EQ(array().subdevlist_member.num, 3);
	EXPECT_EQ(array().subdevlist_member.num_real, 0);
	EXPECT_EQ(array().subdevlist_spare.num, 2);
	EXPECT_EQ(array().subdevlist_spare.num_real, 0);
}

// A count is what the file says, whatever the list holds.
TEST_F(RaidtabTest, CountsAreTakenAsDeclared)
{
	static const struct {
		const char *value;
		int count;
	} rows[] = {{"0", 0},  {"-1", -1},  {"+3", 3},
	            {"9", 9},  {"007", 7},  {"-2147483648", INT_MIN},
	            {"3x", 3}, {"-5#", -5}, {"2147483647", INT_MAX},
	            {"-0", 0}, {"1 2", 1},  {"2147483648", INT_MAX},
	            {"1-", 1}, {"-1-", -1}, {"-99999999999999999999", INT_MIN}};
	for (const auto &row : rows) {
		EXPECT_EQ(read(printed("raiddev /dev/md0\nnr-raid-disks %s\nnr-spare-disks %s\n", row.value,
		                       row.value)),
		          0);
		EXPECT_EQ(array().subdevlist_member.num, row.count) << row.value;
		EXPECT_EQ(array().subdevlist_spare.num, row.count) << row.value;
	}
}

std::string arrays(int count)
{
	std::string text;
	for (int i = 0; i < count; i++)
		text += printed("raiddev /dev/md%d\n", i);
	return text;
}

TEST_F(RaidtabTest, SixteenArraysAreTheMost)
{
	EXPECT_EQ(read(arrays(16)), 0);
	EXPECT_EQ(list->num, 16);
	EXPECT_EQ(read(arrays(17) + "raid-level 5\n"), -1);
	EXPECT_EQ(list->num, 16);
	EXPECT_EQ(list->num_real, 16);
	EXPECT_EQ(list->lmt, 16);
	EXPECT_EQ(list->item[15].mdminor, 15);
	EXPECT_EQ(list->item[15].mdlevel, 0);
}

// Free array slots are clear but for the capacities of their lists.
void expect_empty(const raidtab_devlist_t &read)
{
	const auto copy = std::make_unique<raidtab_devlist_t>(read);
	raidtab_devlist_t &list = *copy;
	EXPECT_EQ(list.num, 0);
	EXPECT_EQ(list.num_real, 0);
	EXPECT_EQ(list.lmt, 16);
	EXPECT_EQ(list.parent, nullptr);
	EXPECT_EQ(list.with_faulty, 0);
	for (raidtab_dev_t &slot : list.item) {
		slot.subdevlist_member.lmt = 0;
		slot.subdevlist_spare.lmt = 0;
		EXPECT_TRUE(is_zero(slot));
	}
}

TEST_F(RaidtabTest, MissingAndEmptyFiles)
{
	EXPECT_EQ(read_raidtab_devlist(host.path("/none").c_str(), list.get(), nullptr, nullptr), -1);
	expect_empty(*list);
	EXPECT_EQ(read(""), 0);
	expect_empty(*list);
}

TEST_F(RaidtabTest, DirectoryIsNoTable)
{
	EXPECT_EQ(read_raidtab_devlist("/tmp", list.get(), nullptr, nullptr), -1);
	expect_empty(*list);
}

TEST_F(RaidtabTest, FilterIsNotUsed)
{
	filter_calls_t calls = {0, 0};
	EXPECT_EQ(read(arrays(2), counting_filter, &calls), 0);
	EXPECT_EQ(calls.calls, 0);
	EXPECT_EQ(list->num_real, 2);
}

struct fatal_row_t {
	const char *lines;
	int line;
};

class RaidtabFatal : public RaidtabTest, public ::testing::WithParamInterface<fatal_row_t>
{
};

TEST_P(RaidtabFatal, SlotEndsTheProcess)
{
	EXPECT_EXIT(read(std::string("raiddev /dev/md0\n") + GetParam().lines),
	            ::testing::ExitedWithCode(255),
	            ::testing::StrEq(
			    printed("error: |hdd/exe/../sal/src/1/../linux/raidtab %d|\n", GetParam().line)));
}

INSTANTIATE_TEST_SUITE_P(
	Slots, RaidtabFatal,
	::testing::Values(fatal_row_t{"raid-disk 8\n", 128}, fatal_row_t{"raid-disk 2147483647\n", 128},
                          fatal_row_t{"raid-disk -1\n", 128}, fatal_row_t{"raid-disk 4294967296\n", 128},
                          fatal_row_t{"raid-disk 0\nraid-disk 0\n", 131},
                          fatal_row_t{"failed-disk 0\nraid-disk 0\n", 131},
                          fatal_row_t{"failed-disk 8\n", 144}, fatal_row_t{"failed-disk -1\n", 144},
                          fatal_row_t{"raid-disk 7\nfailed-disk 7\n", 147},
                          fatal_row_t{"spare-disk 8\n", 160}, fatal_row_t{"spare-disk -1\n", 160},
                          fatal_row_t{"spare-disk 3\nspare-disk 3\n", 163}));

TEST_F(RaidtabTest, Display)
{
	ASSERT_EQ(read(EXAMPLE), 0);
	list->item[1].with_faulty = 1;
	list->item[1].nr_original = 3;
	const unsigned self = low32(list.get());
	const std::string expected =
		dump_head(*list) + printed("[*0 1  %08x*] (md0) level=5 original=0 (F without)\n", self) +
		"    member(num=4,num_real=3): /dev/sda1[0] /dev/sdb1[1] /dev/sdc1[3](F)\n"
		"    spare (num=1,num_real=1): /dev/sdd1[0]\n" +
		printed("[*1 1  %08x*] (md7) level=l original=3 (F with)\n", self) +
		"    member(num=0,num_real=0):\n"
		"    spare (num=0,num_real=0):\n";
	EXPECT_EQ(stderr_of([&] { display_raidtab_devlist(list.get()); }), expected);
}

TEST_F(RaidtabTest, DisplaySkipsFreeSlotsAndShowsFaultySpares)
{
	ASSERT_EQ(read("raiddev /dev/md0\nraiddev /dev/md1\nraid-level 0\nraid-disk 5\nspare-disk 2\n"), 0);
	list->item[0].tag = 0;
	list->item[1].subdevlist_spare.item[2].faulty = 1;
	EXPECT_EQ(stderr_of([&] { display_raidtab_devlist(list.get()); }),
	          dump_head(*list) +
	                  printed("[*1 1  %08x*] (md1) level=0 original=0 (F without)\n", low32(list.get())) +
	                  "    member(num=0,num_real=1): [5]\n    spare (num=0,num_real=1): [2](F)\n");
}

} // namespace
