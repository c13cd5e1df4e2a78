// SPDX-License-Identifier: Apache-2.0
// The kernel's block-device table, /proc/partitions.
#include "host.h"

#include "hdd/sal/src/linux/procblk.h"

namespace
{

class ProcblkTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		list = soiled<procblk_devlist_t>();
	}
	int parse(filter_func_t filter = nullptr, void *arg = nullptr)
	{
		return parse_procblk_devlist(list.get(), filter, arg);
	}
	// The names with their part numbers, in slot order.
	std::vector<std::string> names() const
	{
		std::vector<std::string> names;
		for (const procblk_dev_t &item : list->item)
			if (item.tag)
				names.push_back(text_of(item.name) + "+" + number(item.part));
		return names;
	}
	std::unique_ptr<procblk_devlist_t> list;
};

TEST_F(ProcblkTest, ReadsOneItemPerLine)
{
	host.partitions(
		"   8        0   10485760 sda\n   8        1      10240 sda1\n  22        0 388 hdc\n");
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 3, 3, 32);
	EXPECT_THAT(names(), ::testing::ElementsAre("sda+0", "sda+1", "hdc+0"));
	EXPECT_EQ(list->item[1].mami, 0x801U);
	EXPECT_EQ(list->item[1].size, 20480U);
	EXPECT_EQ(list->item[2].mami, 0x1600U);
	EXPECT_EQ(list->item[2].size, 776U);
	for (const unsigned counter : list->item[1].io)
		EXPECT_EQ(counter, 0U);
}

struct line_row_t {
	const char *line;
	const char *name;
	int part;
	mami_t mami;
	size32_t size;
};

class Line : public ProcblkTest, public ::testing::WithParamInterface<line_row_t>
{
};

TEST_P(Line, OfTheTable)
{
	host.partitions(std::string(GetParam().line) + "\n");
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 1, 1, 32);
	EXPECT_EQ(text_of(list->item[0].name), GetParam().name);
	EXPECT_EQ(list->item[0].part, GetParam().part);
	EXPECT_EQ(list->item[0].mami, GetParam().mami);
	EXPECT_EQ(list->item[0].size, GetParam().size);
}

INSTANTIATE_TEST_SUITE_P(Names, Line,
                         ::testing::Values(line_row_t{"8 1 10240 sda1", "sda", 1, 0x801, 20480},
                                           line_row_t{"9 0 1 md0", "md", 0, 0x900, 2},
                                           line_row_t{"9 1 1 md1", "md", 1, 0x901, 2},
                                           line_row_t{"104 1 5 cciss/c0d0p1", "c0d0p", 1, 0x6801, 10},
                                           line_row_t{"104 0 5 cciss/c0d0", "c0d", 0, 0x6800, 10},
                                           line_row_t{"8 1 1 sda007", "sda", 7, 0x801, 2},
                                           line_row_t{"8 1 1 12", "", 12, 0x801, 2},
                                           line_row_t{"7 0 1 loop10", "loop", 10, 0x700, 2}));

INSTANTIATE_TEST_SUITE_P(Numbers, Line,
                         ::testing::Values(line_row_t{"259 256 1 sda", "sda", 0, 0x0300, 2},
                                           line_row_t{"8 511 1 sda", "sda", 0, 0x08ff, 2},
                                           line_row_t{"256 0 1 sda", "sda", 0, 0, 2},
                                           line_row_t{"8 0 0 sda", "sda", 0, 0x800, 0},
                                           line_row_t{"8 0 2147483648 sda", "sda", 0, 0x800, 4294967296},
                                           line_row_t{"8 0 4294967295 sda", "sda", 0, 0x800, 8589934590},
                                           line_row_t{"8 0 4294967297 sda", "sda", 0, 0x800, 2}));

INSTANTIATE_TEST_SUITE_P(Blanks, Line,
                         ::testing::Values(line_row_t{"8\t1\t10240\tsda1", "sda", 1, 0x801, 20480},
                                           line_row_t{"\t 8 1 10240 sda1  ", "sda", 1, 0x801, 20480},
                                           line_row_t{"8 1 10240 sda1 5 6 7 8 9 10 11 12 13 14 15", "sda", 1,
                                                      0x801, 20480}));

TEST_F(ProcblkTest, NameIsCutAt63Characters)
{
	host.partitions("8 0 1 " + std::string(70, 'n') + "\n8 0 1 " + std::string(62, 'n') + "12\n");
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 2, 2, 32);
	EXPECT_EQ(text_of(list->item[0].name), std::string(63, 'n'));
	EXPECT_EQ(text_of(list->item[1].name), std::string(62, 'n'));
	EXPECT_EQ(list->item[1].part, 1);
}

TEST_F(ProcblkTest, FirstTwoLinesAreSkippedWhateverTheyHold)
{
	host.file("/proc/partitions", "8 0 1 sda\n8 1 1 sda1\n8 2 1 sda2\n");
	EXPECT_EQ(parse(), 0);
	EXPECT_THAT(names(), ::testing::ElementsAre("sda+2"));
}

TEST_F(ProcblkTest, TablesWithoutDevices)
{
	for (const char *text : {"", "major minor\n", "major minor  #blocks  name\n\n"}) {
		list = soiled<procblk_devlist_t>();
		host.file("/proc/partitions", text);
		EXPECT_EQ(parse(), 0) << text;
		expect_shape(*list, 0, 0, 32);
	}
}

TEST_F(ProcblkTest, MissingTable)
{
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(ProcblkTest, BadLinesAreSkippedAndTold)
{
	for (const char *line :
	     {"8 1 1", "", "x 1 1 sda1", "8 x 1 sda1", "8 1 x sda1", "   ", "8,1,1,sda1"}) {
		list = soiled<procblk_devlist_t>();
		host.partitions("8 0 1 sda\n" + std::string(line) + "\n8 2 1 sda2\n");
		EXPECT_EQ(parse(), -1) << line;
		expect_shape(*list, 2, 2, 32);
		EXPECT_THAT(names(), ::testing::ElementsAre("sda+0", "sda+2")) << line;
	}
}

TEST_F(ProcblkTest, LastLineNeedsNoNewline)
{
	host.partitions("8 0 1 sda\n8 1 1 sda1");
	EXPECT_EQ(parse(), 0);
	EXPECT_THAT(names(), ::testing::ElementsAre("sda+0", "sda+1"));
}

TEST_F(ProcblkTest, LongLineIsReadInPieces)
{
	// The first 1,023 characters are one line, the four behind them another that is none.
	host.partitions("8 0 1 sda" + std::string(1014, ' ') + "more\n8 1 1 sda1\n");
	EXPECT_EQ(parse(), -1);
	EXPECT_THAT(names(), ::testing::ElementsAre("sda+0", "sda+1"));
}

std::string disks(int count)
{
	std::string lines;
	for (int i = 1; i <= count; i++)
		lines += printed("8 %d %d sda%d\n", i, i, i);
	return lines;
}

TEST_F(ProcblkTest, FullListHolds32)
{
	host.partitions(disks(32));
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 32, 32, 32);
}

TEST_F(ProcblkTest, MoreThan32KeepTheFirstAndReadOn)
{
	host.partitions(disks(40));
	filter_calls_t calls = {1, 0};
	EXPECT_EQ(parse(counting_filter, &calls), -1);
	EXPECT_EQ(calls.calls, 40);
	expect_shape(*list, 32, 32, 32);
	EXPECT_EQ(list->item[0].part, 1);
	EXPECT_EQ(list->item[31].part, 32);
}

TEST_F(ProcblkTest, DroppedItemsTakeNoRoom)
{
	host.partitions(disks(40));
	const filter_func_t above_8 = [](const void *item, const void *) {
		return static_cast<const procblk_dev_t *>(item)->part > 8 ? 1 : 0;
	};
	EXPECT_EQ(parse(above_8), 0);
	expect_shape(*list, 32, 32, 32);
	EXPECT_EQ(list->item[0].part, 9);
}

TEST_F(ProcblkTest, FilterSeesTheFinishedCandidateAndTheArgument)
{
	host.partitions("8 17 5 xx/sdb1\n");
	int marker = 0;
	static const void *seen_arg;
	const filter_func_t check = [](const void *item, const void *arg) {
		const auto *dev = static_cast<const procblk_dev_t *>(item);
		EXPECT_STREQ(dev->name, "sdb");
		EXPECT_EQ(dev->part, 1);
		EXPECT_EQ(dev->mami, 0x811U);
		EXPECT_EQ(dev->size, 10U);
		seen_arg = arg;
		return -1;
	};
	EXPECT_EQ(parse(check, &marker), 0);
	EXPECT_EQ(seen_arg, &marker);
	expect_shape(*list, 1, 1, 32);
}

TEST_F(ProcblkTest, DroppingAllIsNoError)
{
	host.partitions(disks(40));
	filter_calls_t calls = {0, 0};
	EXPECT_EQ(parse(counting_filter, &calls), 0);
	EXPECT_EQ(calls.calls, 40);
	expect_shape(*list, 0, 0, 32);
}

// What the table gives, and its result.
int pull(std::vector<std::string> *seen)
{
	ProcblkTable table;
	procblk_dev_t dev = {};
	while (table.next(&dev))
		seen->push_back(printed("%s+%d %x %lu", dev.name, dev.part, dev.mami, dev.size));
	EXPECT_FALSE(table.next(&dev));
	return table.result();
}

TEST_F(ProcblkTest, TableGivesEveryDevice)
{
	std::string lines;
	for (int i = 100; i < 200; i++)
		lines += printed("8 1 %d sda%d\n", i, i);
	host.partitions(lines);
	std::vector<std::string> seen;
	EXPECT_EQ(pull(&seen), 0);
	ASSERT_EQ(seen.size(), 100U);
	EXPECT_EQ(seen[0], "sda+100 801 200");
	EXPECT_EQ(seen[99], "sda+199 801 398");
}

TEST_F(ProcblkTest, TableGoesOnBehindABadLine)
{
	host.partitions("8 1 1 sda1\nnone\n8 2 1 sda2\n");
	std::vector<std::string> seen;
	EXPECT_EQ(pull(&seen), -1);
	EXPECT_THAT(seen, ::testing::ElementsAre("sda+1 801 2", "sda+2 802 2"));
}

TEST_F(ProcblkTest, NoTable)
{
	std::vector<std::string> seen;
	EXPECT_EQ(pull(&seen), -1);
	EXPECT_THAT(seen, ::testing::IsEmpty());
}

struct disk_row_t {
	const char *name;
	int part;
	bool kept;
};

procblk_dev_t item_of(const char *name, int part)
{
	procblk_dev_t item = {};
	strcpy(item.name, name);
	item.part = part;
	return item;
}

TEST(ProcblkIsDisk, DecidesByStrippedNameAndPart)
{
	static const disk_row_t rows[] = {
		{"hda", 0, true},
		{"hda", 1, false},
		{"hda", 16, false},
		{"hda", 17, false},
		{"hdc", 0, true},
		{"hdt", 0, true},
		{"hdt", 1, false},
		{"hdu", 0, false},
		{"hd", 0, false},
		{"hdA", 0, false},
		{"sda", 0, true},
		{"sda", 1, false},
		{"sda", 15, false},
		{"sda", 16, false},
		{"sdz", 0, true},
		{"sd{", 0, false},
		{"sd`", 0, false},
		{"sdaa", 0, true},
		{"sdaa", 1, false},
		{"hdaa", 0, true},
		{"sddx", 0, true},
		{"sddx", 3, false},
		{"sddy", 0, false},
		{"sddz", 0, false},
		{"sdea", 0, false},
		{"sdaaa", 0, false},
		{"xxaz", 0, true},
		{"loop", 0, false},
		{"ram", 0, false},
		{"md", 0, false},
		{"md", 1, false},
		{"c0d", 0, false},
		{"sr", 0, false},
		{"fd", 0, false},
		{"", 0, false},
		{"dm-", 0, false},
		// No reader leaves a number in a name; a caller's own item may hold one.
		{"hda1", 0, true},
		{"hda16", 0, true},
		{"hda16", 1, false},
		{"hda17", 0, false},
		{"hda0", 0, false},
		{"hda4294967297", 0, false},
		{"sda15", 0, true},
		{"sda15", 1, false},
		{"sda16", 0, false},
		{"sda0", 0, false},
		{"hdaa15", 0, true},
		{"hdaa16", 0, false},
		{"/dev/sda", 0, true},
		{"/dev/hda17", 0, false},
		{"md0", 0, false},
	};
	for (const disk_row_t &row : rows) {
		const procblk_dev_t item = item_of(row.name, row.part);
		EXPECT_EQ(filter_procblk_is_disk(&item, nullptr) != 0, row.kept)
			<< row.name << " " << row.part;
		EXPECT_EQ(filter_procblk_is_disk(&item, "other") != 0, row.kept) << row.name;
	}
}

TEST_F(ProcblkTest, WholeDisksOfATable)
{
	host.partitions("3 0 9 hda\n3 1 9 hda1\n8 0 9 sda\n8 1 9 sda1\n9 0 9 md0\n9 1 9 md1\n7 0 9 loop0\n"
	                "22 0 9 hdc\n65 160 9 sdaa\n71 240 9 sddx\n3 0 9 hdu\n8 0 9 sda16\n3 17 9 hda17\n");
	EXPECT_EQ(parse(filter_procblk_is_disk), 0);
	EXPECT_THAT(names(), ::testing::ElementsAre("hda+0", "sda+0", "hdc+0", "sdaa+0", "sddx+0"));
}

TEST(ProcblkIsPart, OfTheNamedDisk)
{
	static const struct {
		const char *name;
		int part;
		const char *disk;
		bool kept;
	} rows[] = {
		{"sda", 1, "sda", true},
		{"sda", 1, "/dev/sda", true},
		{"sda", 16, "/dev/sda3", true},
		{"sda", 0, "sda", false},
		{"sdb", 1, "sda", false},
		{"sda", 1, "/dev/sdaa", false},
		{"sdaa", 1, "/dev/sda", false},
		{"c0d", 1, "c0d0", true},
		{"c0d0p", 1, "/dev/cciss/c0d0", false},
		{"", 1, "12", true},
		{"md", 1, "/dev/md0", true},
		{"sda", 1, "", false},
	};
	for (const auto &row : rows) {
		const procblk_dev_t item = item_of(row.name, row.part);
		EXPECT_EQ(filter_procblk_is_part(&item, row.disk) != 0, row.kept)
			<< row.name << row.part << " of " << row.disk;
	}
}

TEST_F(ProcblkTest, PartitionsOfADisk)
{
	host.partitions("8 0 9 sda\n8 1 9 sda1\n8 2 1 sda2\n8 16 9 sdb\n8 17 9 sdb1\n");
	char disk[] = "/dev/sda";
	EXPECT_EQ(parse(filter_procblk_is_part, disk), 0);
	EXPECT_THAT(names(), ::testing::ElementsAre("sda+1", "sda+2"));
}

TEST_F(ProcblkTest, DisplaySkipsFreeSlots)
{
	host.partitions("8 0 10485760 sda\n8 1 10240 sda1\n8 17 2147483647 sdb1\n");
	ASSERT_EQ(parse(), 0);
	list->item[0].tag = 0;
	list->parent = &host;
	for (unsigned i = 0; i < 11; i++)
		list->item[2].io[i] = i + 1;
	const std::string expected =
		dump_head(*list) +
		printed("[*1 1  %08x*] sda 1 (8:1)\t    20480  0 0 0 0 0 0 0 0 0 0 0\n", low32(list.get())) +
		printed("[*2 1  %08x*] sdb 1 (8:17)\t       -2  1 2 3 4 5 6 7 8 9 10 11\n",
	                low32(list.get()));
	EXPECT_EQ(stderr_of([&] { display_procblk_devlist(list.get()); }), expected);
}

} // namespace
