// SPDX-License-Identifier: Apache-2.0
// The partition tables of a disk, read straight from its sectors.
#include "host.h"

#include "hdd/sal/src/linux/parttab.h"
#include "replay/replay.h"

namespace
{

class ParttabTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		list = soiled<partlist_t>();
	}
	int read(const std::string &size, const std::string &tables)
	{
		host.table("device /dev/sda\n\tBLKGETSIZE " + size + "\n" + tables);
		host.show();
		return read_disk_partlist("/dev/sda", list.get());
	}
	// One line per partition: index, type, boot byte, start and size.
	std::vector<std::string> found() const
	{
		std::vector<std::string> rows;
		for (const part_t &part : list->item) {
			if (part.tag == 0)
				continue;
			rows.push_back(printed("%d %02x %02x %lu %lu", part.part_index, part.type,
			                       static_cast<unsigned>(part.active), part.start, part.size));
		}
		return rows;
	}
	std::unique_ptr<partlist_t> list;
};

using ::testing::ElementsAre;

TEST(ExtendedType, IsOneOfThree)
{
	for (int type = 0; type < 256; type++)
		EXPECT_EQ(is_extended_type(static_cast<uint8_t>(type)),
		          type == 5 || type == 15 || type == 0x85)
			<< type;
}

TEST_F(ParttabTest, PrimaryPartitions)
{
	EXPECT_EQ(read("100000", "table 0\nentry 80 83 63 1000\nentry 00 07 2000 3000\nentry 00 82 5000 1\n"
	                         "entry 7f 42 4294967295 4294967295\n"),
	          0);
	expect_shape(*list, 4, 4, 32);
	EXPECT_THAT(found(), ElementsAre("0 83 80 63 1000", "1 07 00 2000 3000", "2 82 00 5000 1",
	                                 "3 42 7f 4294967295 4294967295"));
}

TEST_F(ParttabTest, IndexIsTheSlot)
{
	EXPECT_EQ(read("100000", "table 0\nentry -\nentry -\nentry 00 83 63 1000\n"), 0);
	EXPECT_THAT(found(), ElementsAre("2 83 00 63 1000"));
	expect_shape(*list, 1, 1, 32);
}

TEST_F(ParttabTest, EntriesWithoutTypeOrSizeAreSkipped)
{
	EXPECT_EQ(read("100000",
	               "table 0\nentry 80 00 63 1000\nentry 80 83 63 0\nentry 80 05 63 0\nentry 80 83 0 1\n"),
	          0);
	EXPECT_THAT(found(), ElementsAre("3 83 80 0 1"));
}

TEST_F(ParttabTest, LogicalDrives)
{
	EXPECT_EQ(read("100000", "table 0\nentry 80 83 63 937\nentry 00 05 1000 9000\n"
	                         "table 1000\nentry 00 83 63 937\nentry 00 05 1000 1000\n"
	                         "table 2000\nentry 80 82 10 990\n"),
	          0);
	// The second link counts from the first extended sector: 1000 + 1000.
	EXPECT_THAT(found(), ElementsAre("0 83 80 63 937", "1 05 00 1000 9000", "4 83 00 1063 937",
	                                 "5 82 80 2010 990"));
}

TEST_F(ParttabTest, LinksCountFromTheFirstExtendedSector)
{
	EXPECT_EQ(read("100000", "table 0\nentry 00 0f 1000 9000\n"
	                         "table 1000\nentry 00 83 1 9\nentry 00 05 100 100\n"
	                         "table 1100\nentry 00 83 1 9\nentry 00 85 200 100\n"
	                         "table 1200\nentry 00 83 1 9\n"),
	          0);
	EXPECT_THAT(found(),
	            ElementsAre("0 0f 00 1000 9000", "4 83 00 1001 9", "5 83 00 1101 9", "6 83 00 1201 9"));
}

TEST_F(ParttabTest, OneExtendedRecordMayHoldSeveralDrives)
{
	EXPECT_EQ(
		read("100000",
	             "table 0\nentry 00 85 1000 9000\n"
	             "table 1000\nentry 00 05 500 100\nentry 00 83 1 9\nentry 00 06 10 9\nentry 00 07 20 9\n"
	             "table 1500\nentry 00 83 1 9\n"),
		0);
	EXPECT_THAT(found(), ElementsAre("0 85 00 1000 9000", "4 83 00 1001 9", "5 06 00 1010 9",
	                                 "6 07 00 1020 9", "7 83 00 1501 9"));
}

TEST_F(ParttabTest, LastLinkWins)
{
	EXPECT_EQ(read("100000", "table 0\nentry 00 05 1000 100\nentry 00 0f 2000 100\n"
	                         "table 1000\nentry 00 83 1 1\n"
	                         "table 2000\nentry 00 05 100 1\nentry 00 05 200 1\n"
	                         "table 2100\nentry 00 83 2 2\n"
	                         "table 2200\nentry 00 83 3 3\n"),
	          0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 1000 100", "1 0f 00 2000 100", "4 83 00 2203 3"));
}

TEST_F(ParttabTest, EmptyExtendedEntryIsNoLink)
{
	EXPECT_EQ(read("100000", "table 0\nentry 00 05 1000 100\nentry 00 05 2000 0\n"
	                         "table 1000\nentry 00 83 1 1\ntable 2000\nentry 00 83 2 2\n"),
	          0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 1000 100", "4 83 00 1001 1"));
}

struct signature_row_t {
	const char *word;
	size_t found;
};

class Signature : public ParttabTest, public ::testing::WithParamInterface<signature_row_t>
{
};

TEST_P(Signature, OfTheSector)
{
	EXPECT_EQ(read("100000", std::string("table 0 ") + GetParam().word + "\nentry 80 83 63 1000\n"), 0);
	EXPECT_EQ(found().size(), GetParam().found) << GetParam().word;
}

INSTANTIATE_TEST_SUITE_P(Words, Signature,
                         ::testing::Values(signature_row_t{"55aa", 1}, signature_row_t{"aa55", 1},
                                           signature_row_t{"none", 0}, signature_row_t{"0000", 0},
                                           signature_row_t{"5555", 0}, signature_row_t{"aaaa", 0},
                                           signature_row_t{"55ab", 0}, signature_row_t{"54aa", 0},
                                           signature_row_t{"aa54", 0}, signature_row_t{"ab55", 0}));

TEST_F(ParttabTest, ChainEndsAtASectorWithoutSignature)
{
	EXPECT_EQ(read("100000", "table 0\nentry 00 05 1000 100\ntable 1000 none\nentry 00 83 1 1\n"), 0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 1000 100"));
	EXPECT_EQ(list->lmt, 32);
}

TEST_F(ParttabTest, SwappedSignatureInTheChain)
{
	EXPECT_EQ(read("100000", "table 0 aa55\nentry 00 05 1000 100\ntable 1000 aa55\nentry 00 83 1 1\n"),
	          0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 1000 100", "4 83 00 1001 1"));
}

TEST_F(ParttabTest, BlankDisk)
{
	EXPECT_EQ(read("100000", ""), 0);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(ParttabTest, DiskOfNoSectorsIsNotRead)
{
	EXPECT_EQ(read("0", ""), 0);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(ParttabTest, ChainEndsAtTheEndOfTheDisk)
{
	const std::string tables = "table 0\nentry 00 05 1000 100\n";
	EXPECT_EQ(read("1000", tables), 0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 1000 100"));
}

TEST_F(ParttabTest, LastSectorOfTheDiskIsRead)
{
	EXPECT_EQ(read("1001", "table 0\nentry 00 05 1000 100\ntable 1000\nentry 00 83 1 1\n"), 0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 1000 100", "4 83 00 1001 1"));
}

TEST_F(ParttabTest, SectorNumbersHave64Bits)
{
	// 4294967290 + 4294967290 = 8589934580.
	EXPECT_EQ(read("8589934592", "table 0\nentry 00 05 4294967290 9\n"
	                             "table 4294967290\nentry 00 05 4294967290 9\n"
	                             "table 8589934580\nentry 00 83 4294967295 7\n"),
	          0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 4294967290 9", "4 83 00 12884901875 7"));
}

TEST_F(ParttabTest, MissingDisk)
{
	host.show();
	EXPECT_EQ(read_disk_partlist("/dev/sda", list.get()), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(ParttabTest, DiskThatCannotBeOpenedOrSized)
{
	EXPECT_EQ(read("100\n\topen fails ENOMEDIUM", "table 0\nentry 00 83 1 1\n"), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(ParttabTest, DiskThatCannotBeSized)
{
	EXPECT_EQ(read("fails ENXIO", ""), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(ParttabTest, ShortReadFailsAndEmptiesTheList)
{
	EXPECT_EQ(read("100000\n\tends 500", "table 0\nentry 00 83 1 1\nentry 00 05 1000 100\n"), -1);
	expect_shape(*list, 0, 0, 32);
	list = soiled<partlist_t>();
	host.table("device /dev/sdb\nBLKGETSIZE 100\nends 0\n");
	host.show();
	EXPECT_EQ(read_disk_partlist("/dev/sdb", list.get()), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(ParttabTest, EveryFailedCallBeforeTheEndEmptiesTheList)
{
	ASSERT_EQ(read("100000",
	               "table 0\nentry 00 83 1 1\nentry 00 05 1000 100\ntable 1000\nentry 00 83 1 1\n"),
	          0);
	ASSERT_THAT(found(), ::testing::SizeIs(3));
	// Open, size, and for two sectors seek and read.
	for (long nth = 1; nth <= 6; nth++) {
		list = soiled<partlist_t>();
		replay_fail_call(nth, 0);
		EXPECT_EQ(read_disk_partlist("/dev/sda", list.get()), -1) << nth;
		expect_shape(*list, 0, 0, 32);
	}
	replay_fail_call(0, 0);
}

// A chain of extended records, each with one logical drive.
std::string chain(int drives)
{
	std::string tables = "table 0\nentry 00 05 100 9999\n";
	for (int i = 0; i < drives; i++) {
		tables += printed("table %d\nentry 00 83 1 5\n", 100 + 10 * i);
		if (i + 1 < drives)
			tables += printed("entry 00 05 %d 10\n", 10 * (i + 1));
	}
	return tables;
}

TEST_F(ParttabTest, ListHolds32)
{
	EXPECT_EQ(read("100000", chain(31)), 0);
	expect_shape(*list, 32, 32, 32);
	EXPECT_EQ(list->item[31].part_index, 34);
}

TEST_F(ParttabTest, MoreThan32AreCut)
{
	EXPECT_EQ(read("100000", chain(40)), 0);
	expect_shape(*list, 32, 32, 32);
	EXPECT_EQ(found().back(), "34 83 00 401 5");
}

TEST_F(ParttabTest, NothingIsReadOnceTheListIsFull)
{
	// The 33rd partition is met at sector 410; the link behind it would lead to a short read.
	EXPECT_EQ(read("100000\n\tends 415", chain(32) + "entry 00 05 320 10\n"), 0);
	expect_shape(*list, 32, 32, 32);
}

TEST_F(ParttabTest, LoopWithEntriesFillsTheList)
{
	EXPECT_EQ(
		read("100000", "table 0\nentry 00 05 100 99\ntable 100\nentry 00 83 1 5\nentry 00 05 0 99\n"),
		0);
	expect_shape(*list, 32, 32, 32);
	for (int i = 1; i < 32; i++) {
		EXPECT_EQ(list->item[i].part_index, 3 + i);
		EXPECT_EQ(list->item[i].start, 101U);
	}
}

TEST_F(ParttabTest, LoopThroughTheFirstSectorFillsTheList)
{
	EXPECT_EQ(read("100000", "table 0\nentry 00 83 1 5\nentry 00 05 0 99\n"), 0);
	expect_shape(*list, 32, 32, 32);
	EXPECT_EQ(found().back(), "1 05 00 0 99");
}

TEST_F(ParttabTest, LoopWithoutEntriesEnds)
{
	EXPECT_EQ(read("100000", "table 0\nentry 00 05 100 99\ntable 100\nentry 00 05 0 99\n"), 0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 100 99"));
}

TEST_F(ParttabTest, LongLoopWithoutEntriesEnds)
{
	EXPECT_EQ(read("100000", "table 0\nentry 00 05 100 99\ntable 100\nentry 00 05 10 99\n"
	                         "table 110\nentry 00 05 20 99\ntable 120\nentry 00 05 10 99\n"),
	          0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 100 99"));
}

TEST_F(ParttabTest, LoopWithAnEntrySomewhereFillsTheList)
{
	EXPECT_EQ(read("100000", "table 0\nentry 00 05 100 99\ntable 100\nentry 00 05 10 99\n"
	                         "table 110\nentry 00 83 1 5\nentry 00 05 0 99\n"),
	          0);
	expect_shape(*list, 32, 32, 32);
}

TEST_F(ParttabTest, LoopBehindAnEntryEnds)
{
	EXPECT_EQ(read("100000",
	               "table 0\nentry 00 05 100 99\ntable 100\nentry 00 83 1 5\nentry 00 05 10 99\n"
	               "table 110\nentry 00 05 20 99\ntable 120\nentry 00 05 10 99\n"),
	          0);
	EXPECT_THAT(found(), ElementsAre("0 05 00 100 99", "4 83 00 101 5"));
}

} // namespace
