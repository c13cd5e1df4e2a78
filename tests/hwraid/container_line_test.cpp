// SPDX-License-Identifier: Apache-2.0
// The steps of the container list's parser, each on its own: the fields of a line, the lines of a paragraph.
#include "described.h"
#include "site.h"
#include "spoken_names.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_public.h"

#include <limits.h>
#include <memory>
#include <string.h>

namespace
{

// A copy on the heap, not a byte longer: a step beside it is seen by the sanitizers.
std::unique_ptr<char[]> exact(const std::string &text)
{
	auto copy = std::make_unique<char[]>(text.size() + 1);
	memcpy(copy.get(), text.c_str(), text.size() + 1);
	return copy;
}

// No parser of one field may touch another, so all begin as something that no parser writes.
aac_container untouched()
{
	aac_container node;
	memset(&node, 0, sizeof node);
	node.nCntnerID = node.Container_Type = node.TotalSize = node.StripeSize = node.Usage = node.HotSpare =
		4711;
	for (int &member : node.C_ID_L)
		member = AAC_NO_MEMBER;
	snprintf(node.Label, sizeof node.Label, "label");
	return node;
}

TEST(ContainerLine, Number)
{
	const struct {
		const char *line;
		int number;
	} rows[] = {
		{"0    Mirror", 0},
		{" 0    Mirror", 0},
		{"\t 0\tMirror", 0},
		{"0", 0},
		{"00", 0},
		{"5    Mirror", 5},
		{"  \t 5", 5},
		{"007", 7},
		{"12Mirror", 12},
		{"63", 63},
		{"64", 64},
		{"247", 247},
		{"2147483647", INT_MAX},
		{"2147483648", INT_MAX},
		{"4294967296", INT_MAX},
		{"18446744073709551616", INT_MAX},
		{"", -1},
		{"   ", -1},
		{"Mirror", -1},
		{"x5", -1},
		{"/dev/sda", -1},
	};
	for (const auto &row : rows) {
		aac_container node = untouched();
		EXPECT_EQ(nodeGetContainerID(exact(row.line).get(), &node), 0);
		aac_container expected = untouched();
		expected.nCntnerID = row.number;
		EXPECT_EQ(described(&node), described(&expected)) << "\"" << row.line << "\"";
	}
}

TEST(ContainerLine, Type)
{
	const struct {
		const char *line;
		int ordinary;
		int multi_level;
	} rows[] = {
		{"0    Stripe 33.9GB", 0, 3},
		{"0    Mirror 33.9GB", 1, 1},
		{"0    RAID-5 33.9GB", 2, 2},
		{"0    Volume 33.9GB", 4, 4},
		{"0    Reconf 33.9GB", 5, 5},
		{"63\tVolume", 4, 4},
		{"64 Volume", 4, 4},
		{"00 Mirror", 1, 1},
		{"0Mirror", 1, 1},
		{"5Mirrors", 1, 1},
		{" 5 Mirror", 1, 1},
		{" \t5\t Mirror", 1, 1},
		{"4294967296 Mirror", 1, 1},
		// Behind a blank a zero is not passed over.
		{" 0    Mirror", -1, -1},
		{"\t0    Mirror", -1, -1},
		{" 00    Mirror", -1, -1},
		// Without a number the word may stand first.
		{"Mirror", 1, 1},
		{" \tStripe", 0, 3},
		{"5 Strip", -1, -1},
		{"5 stripe", -1, -1},
		{"5 STRIPE", -1, -1},
		{"5 RAID-1", -1, -1},
		{"5 xMirror", -1, -1},
		{"5 7 Mirror", -1, -1},
		{"5 ", -1, -1},
		{"5", -1, -1},
		{"0", -1, -1},
		{" ", -1, -1},
		{"", -1, -1},
	};
	for (const auto &row : rows) {
		aac_container node = untouched();
		EXPECT_EQ(nodeGetContainerType(exact(row.line).get(), &node, 0), 0);
		aac_container expected = untouched();
		expected.Container_Type = row.ordinary;
		EXPECT_EQ(described(&node), described(&expected)) << "\"" << row.line << "\"";
		EXPECT_EQ(nodeGetContainerType(exact(row.line).get(), &node, 1), 0);
		expected.Container_Type = row.multi_level;
		EXPECT_EQ(described(&node), described(&expected)) << "\"" << row.line << "\"";
	}
}

TEST(ContainerLine, Size)
{
	const std::string digits(400, '9');
	const struct {
		std::string line;
		int size;
		bool has_type; // without a type word before the size the type is unknown
	} rows[] = {
		{"0    Mirror 33.9GB   Open", 34713, true},
		{"0    Stripe 512MB", 512, true},
		{"0    RAID-5 10.0GB", 10240, true},
		{"0    Volume 465GB", 476160, true},
		{"0    Reconf 1.9MB", 1, true},
		{"5 Mirror33.9GB", 34713, true},
		{" 5\tMirror\t \t33.9GB", 34713, true},
		{"5 Volume 1.5GBytes", 1536, true},
		{"5 Volume 8.7GB", 8908, true},
		{"5 Volume .5GB", 512, true},
		{"5 Volume 1.GB", 1024, true},
		{"5 Volume 1.2.3GB", 1228, true},
		{"5 Volume 000512MB", 512, true},
		{"5 Volume 0.0001GB", 0, true},
		{"5 Volume 0GB", 0, true},
		// A single-precision number would round these up.
		{"5 Volume 16777217MB", 16777217, true},
		{"5 Volume 999999999.9MB", 999999999, true},
		{"5 Volume 2097151.9GB", 2147483545, true},
		{"5 Volume 2147483647MB", INT_MAX, true},
		{"5 Volume 2147483648MB", INT_MAX, true},
		{"5 Volume 2097152GB", INT_MAX, true},
		{"5 Volume 99999999999999999999GB", INT_MAX, true},
		{"5 Volume " + digits + "MB", INT_MAX, true},
		{"5 Volume " + digits + "GB", INT_MAX, true},
		{"5 Volume 33.9 GB", 0, true},
		{"5 Volume 33.9KB", 0, true},
		{"5 Volume 33.9TB", 0, true},
		{"5 Volume 33.9gb", 0, true},
		{"5 Volume 33.9G", 0, true},
		{"5 Volume 33.9B", 0, true},
		{"5 Volume 33.9", 0, true},
		{"5 Volume 33,9GB", 0, true},
		{"5 Volume -33.9GB", 0, true},
		{"5 Volume GB", 0, true},
		{"5 Volume .GB", 0, true},
		{"5 Volume x33.9GB", 0, true},
		{"5 Volume Open 33.9GB", 0, true},
		{"5 Mirrored 33.9GB", 0, true},
		{"5 Volume", 0, true},
		{"33.9GB", 921, false},
		{"5 33.9GB", 34713, false},
		{"5 Simple 33.9GB", 0, false},
		{"5 mirror 33.9GB", 0, false},
		{" 0    Mirror 33.9GB", 0, false},
		{" 0.5GB", 512, false},
		{"5", 0, false},
		{"", 0, false},
	};
	for (const auto &row : rows) {
		aac_container node = untouched();
		EXPECT_EQ(nodeGetTotalSize(exact(row.line).get(), &node), 0);
		aac_container expected = untouched();
		expected.TotalSize = row.size;
		if (!row.has_type)
			expected.Container_Type = -1;
		EXPECT_EQ(described(&node), described(&expected)) << "\"" << row.line << "\"";
	}
}

TEST(ContainerLine, StripeSize)
{
	const struct {
		const char *line;
		int size;
	} rows[] = {
		{"0    Stripe 67.8GB     64KB   Open    0:04:0 64.0KB:33.9GB", 64},
		{"0    Stripe 67.8GB     32KB   Open    0:04:0 64.0KB:33.9GB", 32},
		{"0    Stripe 67.8GB     16KB   Open    0:04:0 64.0KB:33.9GB", 16},
		{"0    Mirror 67.8GB            Open    0:04:0 64.0KB:33.9GB", 0},
		{"512MB    32KB", 32},
		{"512MB\t64KB", 64},
		{"512MB \t 16KB", 16},
		{"512MB 64KBx", 64},
		{"GB 64KB", 64},
		{"MB 64KB", 64},
		{"B 64KB", 0},
		{" 64KB", 0},
		{"64KB", 0},
		{"", 0},
		{"512MB64KB", 0},
		{"512KB 64KB", 0},
		{"512mb 64KB", 0},
		{"512MB 64kb", 0},
		{"512MB 64K", 0},
		{"512MB 8KB", 0},
		{"512MB 128KB", 0},
		{"512MB 164KB", 0},
		{"512MB x 64KB", 0},
		{"512MBx 64KB", 0},
		{"32KB", 0},
		{"0 Stripe 67.8GB 1 32KB", 0},
		// The words in order: one out of place hides those after it, not those before it.
		{"67.8GB 32KB Open 0:04:0 64KB:33.9GB", 0},
		{"67.8GB 16KB Open 0:04:0 64KB:33.9GB", 0},
		{"67.8GB 16KB Open 0:04:0 32KB:33.9GB", 0},
		{"67.8GB 64KB Open 0:04:0 32KB:33.9GB", 64},
		{"67.8GB 32KB Open 0:04:0 16KB:33.9GB", 32},
		{"x 32KB 67.8GB 64KB", 64},
		// Of one word, the first place.
		{"67.8GB 64KB Open 0:04:0 64KB:33.9GB", 64},
		{"5 64KB 67.8GB 64KB", 0},
	};
	for (const auto &row : rows) {
		aac_container node = untouched();
		EXPECT_EQ(nodeGetStripeSize(exact(row.line).get(), &node), 0);
		aac_container expected = untouched();
		expected.StripeSize = row.size;
		EXPECT_EQ(described(&node), described(&expected)) << "\"" << row.line << "\"";
	}
}

TEST(ContainerLine, Usage)
{
	const struct {
		const char *line;
		int usage;
	} rows[] = {
		{"0    Mirror 33.9GB            FAT     0:00:0 64.0KB:33.9GB", 0},
		{"0    Mirror 33.9GB            MultPart 0:00:0 64.0KB:33.9GB", 1},
		{"0    Mirror 33.9GB            NetWare 0:00:0 64.0KB:33.9GB", 2},
		{"0    Mirror 33.9GB            None    0:00:0 64.0KB:33.9GB", 3},
		{"0    Mirror 33.9GB            NTFS    0:00:0 64.0KB:33.9GB", 4},
		{"0    Mirror 33.9GB            Open    0:00:0 64.0KB:33.9GB", 5},
		{"0    Mirror 33.9GB            UnCfged 0:00:0 64.0KB:33.9GB", 6},
		{"0    Mirror 33.9GB            Unknown 0:00:0 64.0KB:33.9GB", 7},
		{"0    Mirror 33.9GB            UnMap'd 0:00:0 64.0KB:33.9GB", 8},
		{"0    Mirror 33.9GB            Valid   0:00:0 64.0KB:33.9GB", 9},
		{"0    Mirror 33.9GB                    0:00:0 64.0KB:33.9GB", -1},
		{"0    Stripe 33.9GB     64KB   Valid", 9},
		{"512MB Open", 5},
		{"512MB \t Open", 5},
		{"512MB\tOpen", 5},
		{"GB Open", 5},
		{"MB Open", 5},
		{"KB Open", 5},
		{"GB Opened", 5},
		{"B Open", -1},
		{" Open", -1},
		{"Open", -1},
		{"", -1},
		{"GBOpen", -1},
		{"GB xOpen", -1},
		{"TB Open", -1},
		{"gb Open", -1},
		{"GB open", -1},
		{"GB OPEN", -1},
		{"GB Ope", -1},
		{"GB UnMapd", -1},
		{"GB 1 Open", -1},
		{"GBx Open", -1},
		{"GB :Open", -1},
		// Every place of a word, from the left.
		{"Open x Open 33.9GB Open", 5},
		{"xOpen GB Open", 5},
		{"GB Open x Open", 5},
		// The words in order of their numbers, not of their places.
		{"GB Open MB FAT", 0},
		{"GB FAT MB Open", 0},
		{"GB Valid KB Unknown", 7},
		{"FAT GB Open", 5},
		{"GB NTFS FAT", 4},
		{"0    Mirror 33.9GB            0:00:0 64.0KB:33.9GB Valid", 9},
	};
	for (const auto &row : rows) {
		aac_container node = untouched();
		EXPECT_EQ(nodeGetUsage(exact(row.line).get(), &node), 0);
		aac_container expected = untouched();
		expected.Usage = row.usage;
		EXPECT_EQ(described(&node), described(&expected)) << "\"" << row.line << "\"";
	}
}

TEST(ContainerLine, Member)
{
	const struct {
		const char *line;
		const char *address; // null: none
	} rows[] = {
		{"0:02:0", "0:2:0"},
		{"0:02:0 64.0KB:33.9GB", "0:2:0"},
		{"0:02:0\t64.0KB:33.9GB", "0:2:0"},
		{"0:02:0\n", "0:2:0"},
		{"   \t 0:02:0", "0:2:0"},
		{"x0:02:0", "0:2:0"},
		{"1:0a:0", "1:10:0"},
		{"1:0A:0", "1:10:0"},
		{"f:fF:F", "15:255:15"},
		{"A:Bc:d", "10:188:13"},
		{"9:99:9", "9:153:9"},
		{"0:00:0", "0:0:0"},
		{"10:02:0", "0:2:0"},
		{"0:02:0:03:0", "0:3:0"},
		{"0:02:0x 0:03:0", "0:3:0"},
		{"0:02:0 0:03:0", "0:2:0"},
		{"0    Mirror 33.9GB            Open    0:04:0 64.0KB:33.9GB", "0:4:0"},
		{"", nullptr},
		{"0", nullptr},
		{"0:", nullptr},
		{"0:02", nullptr},
		{"0:02:", nullptr},
		{":02:0", nullptr},
		{"0:2:0", nullptr},
		{"0:002:0", nullptr},
		{"0:02:00", nullptr},
		{"0:02:0x", nullptr},
		{"0:02:0,", nullptr},
		{"0:02:0\r", nullptr},
		{"g:02:0", nullptr},
		{"0:g2:0", nullptr},
		{"0:2g:0", nullptr},
		{"0:02:g", nullptr},
		{"0;02;0", nullptr},
		{"64.0KB:33.9GB", nullptr},
		{"x\n0:02:0", nullptr},
	};
	for (const auto &row : rows) {
		aac_container node = untouched();
		EXPECT_EQ(nodeGetCIDL(exact(row.line).get(), &node), 0);
		EXPECT_EQ(members(node), row.address ? row.address : "") << "\"" << row.line << "\"";
		EXPECT_EQ(node.nDiskNumber, row.address ? 1 : 0) << "\"" << row.line << "\"";
	}
}

TEST(ContainerLine, MembersTakeTheFirstFreeSlot)
{
	aac_container node = untouched();
	for (int i = 0; i < 64; i++)
		node.C_ID_L[i] = 1000 + i;
	node.nDiskNumber = 64;
	node.C_ID_L[0] = node.C_ID_L[5] = node.C_ID_L[63] = AAC_NO_MEMBER;
	for (const int slot : {0, 5, 63}) {
		EXPECT_EQ(nodeGetCIDL("2:03:4", &node), 0);
		EXPECT_EQ(node.C_ID_L[slot], 0x020304);
	}
	EXPECT_EQ(node.nDiskNumber, 67);
	for (int i = 0; i < 10; i++)
		EXPECT_EQ(nodeGetCIDL("3:03:3", &node), 0);
	EXPECT_EQ(node.nDiskNumber, 77) << "counted beyond the slots";
	for (int i = 0; i < 64; i++)
		EXPECT_EQ(node.C_ID_L[i], i == 0 || i == 5 || i == 63 ? 0x020304 : 1000 + i);
	EXPECT_EQ(node.nCntnerID, 4711) << "before the slots";
	EXPECT_EQ(node.Container_Type, 4711) << "behind them";
}

TEST(ContainerLine, Label)
{
	const struct {
		const char *line;
		const char *ordinary;
		const char *multi_level;
	} rows[] = {
		{"/dev/sda             data             0:03:0 64.0KB:74.5GB", "data",
	         "data             0:03:0 64.0KB:74.5GB"},
		{"/dev/sdc             big", "", "big"},
		{"/dev/sdc             big  \t ", "", "big"},
		{"/dev/sdc\tbig\t\t0:03:0\t", "big", "big\t\t0:03:0"},
		{"/dev/sda   my  big data  0:03:0", "my  big data", "my  big data  0:03:0"},
		{"data  0:03:0", "data", "data  0:03:0"},
		{"  data  0:03:0", "data", "data  0:03:0"},
		{" \t/dev/sda  data  0:03:0", "data", "data  0:03:0"},
		{"dev/sda data 0:03:0", "dev/sda data", "dev/sda data 0:03:0"},
		{"/ data 0:03:0", "data", "data 0:03:0"},
		{"/a /b 0:03:0", "/b", "/b 0:03:0"},
		{"/dev/sda 0:03:0", "", "0:03:0"},
		{"0:03:0", "", "0:03:0"},
		// The address need not be whole, nor apart, but starts with a decimal digit.
		{"data0:03:0", "data", "data0:03:0"},
		{"data 0:03:", "data", "data 0:03:"},
		{"data 10:03:0", "data 1", "data 10:03:0"},
		{"data 0:fF:0", "data", "data 0:fF:0"},
		{"data a:03:0", "", "data a:03:0"},
		{"data 0:3:0", "", "data 0:3:0"},
		{"data 0:0g:0", "", "data 0:0g:0"},
		{"data 0:03", "", "data 0:03"},
		// The last address on the line.
		{"data 0:03:0 0:04:0", "data 0:03:0", "data 0:03:0 0:04:0"},
		{"0:11:2 zz 0:04:0 64.0KB:74.5GB", "0:11:2 zz", "0:11:2 zz 0:04:0 64.0KB:74.5GB"},
		{"/0:11:2 data 0:04:0", "data", "data 0:04:0"},
		// Up to the end of the line, whatever else stands in it.
		{"/dev/sdc  my\rbig data", "", "my\rbig data"},
		{"my\rdata \t 0:03:0", "my\rdata", "my\rdata \t 0:03:0"},
		{"big\r", "", "big\r"},
		{"data 0:03:0 \nmore 0:04:0", "data", "data 0:03:0"},
		{"/dev/sda", "", ""},
		{"/0:11:2", "", ""},
		{"/", "", ""},
		{"  ", "", ""},
		{"", "", ""},
	};
	for (const auto &row : rows) {
		int header = 77;
		EXPECT_STREQ(GetLabel(exact(row.line).get(), 0, &header), row.ordinary) << row.line;
		EXPECT_EQ(header, 0);
		header = 77;
		EXPECT_STREQ(GetLabel(exact(row.line).get(), 1, &header), row.multi_level) << row.line;
		EXPECT_EQ(header, 0);
		EXPECT_STREQ(g_szLabel, row.multi_level);
	}
}

TEST(ContainerLine, LabelIsReturnedWholeUpToItsBuffer)
{
	for (const size_t length : {31U, 32U, 510U, 511U, 512U, 600U, 5000U}) {
		const std::string label(length, 'x');
		const std::string expected = label.substr(0, 511);
		int header = 77;
		EXPECT_EQ(GetLabel(exact(label).get(), 1, &header), g_szLabel);
		EXPECT_EQ(g_szLabel, expected);
		EXPECT_EQ(GetLabel(exact("/" + label + " " + label + "  0:03:0").get(), 0, &header),
		          g_szLabel);
		EXPECT_EQ(g_szLabel, expected);
	}
}

// ---- lines and paragraphs ----

class ContainerParagraph : public SiteTest
{
protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		pContainerHeader = nullptr;
	}
	void TearDown() override
	{
		release();
		use_names(names_t::FRESH);
		SiteTest::TearDown();
	}
	void release()
	{
		Aac_Clear_Container_List(pContainerHeader);
		pContainerHeader = list_ = nullptr;
	}
	// Queries for hot spares fail at once: there is no name for their script.
	static void without_tool() { use_names(names_t::EMPTY); }

	int line(const std::string &text, int number)
	{
		const auto copy = exact(text);
		aac_container **node = &list_;
		return Deal_With_Single_Line("aac0", copy.get(), copy.get(), &node, &multi_level_, number);
	}

	aac_container *list_ = nullptr; // the last record made
	int multi_level_ = 4711;
};

TEST_F(ContainerParagraph, FirstLineMakesTheRecord)
{
	ASSERT_EQ(line("5    Stripe 33.9GB     32KB   Open    0:00:0 64.0KB:33.9GB \t\r\n", 1), 0);
	ASSERT_NE(list_, nullptr);
	EXPECT_EQ(list_, pContainerHeader);
	EXPECT_EQ(described(list_), "5|1|0:0:0|0|34713|32|5|-1|\n");
	EXPECT_EQ(multi_level_, 0);
	aac_container *const first = list_;

	ASSERT_EQ(line("6    Stripe 33.9GB            Open", 1), 0);
	EXPECT_EQ(multi_level_, 1);
	EXPECT_EQ(pContainerHeader, first);
	EXPECT_EQ(first->next, list_);
	EXPECT_EQ(described(first), "5|1|0:0:0|0|34713|32|5|-1|\n6|0||3|34713|0|5|-1|\n");
	EXPECT_FALSE(tool_ran()) << "a line asks for no hot spare";
}

// Whatever the head of an earlier list is: its records may be gone.
TEST_F(ContainerParagraph, EmptyVariableBeginsANewList)
{
	ASSERT_EQ(line("5    Stripe 512MB", 1), 0);
	aac_container *const earlier = list_;
	list_ = nullptr;
	ASSERT_EQ(line("6    Stripe 512MB", 1), 0);
	EXPECT_EQ(pContainerHeader, list_);
	EXPECT_EQ(described(list_), "6|0||0|512|0|-1|-1|\n");
	EXPECT_EQ(described(earlier), "5|0||0|512|0|-1|-1|\n");
	Aac_Clear_Container_List(earlier);
}

TEST_F(ContainerParagraph, MultiLevelIsWhatEndsInNoUnit)
{
	const struct {
		const char *line;
		int multi_level;
	} rows[] = {
		{"5 Mirror 33.9GB", 0},
		{"5 Mirror 512MB", 0},
		{"5 Mirror 512MB \t", 0},
		{"5 Mirror 512MB\r\n", 0},
		{"5 Mirror 33.9GB Open", 1},
		{"5 Mirror 33.9KB", 1},
		{"5 Mirror 33.9gb", 1},
		{"5 Mirror 33.9GB 0:00:0", 1},
		{"5 Mirror 33.9G", 1},
		{"5 Mirror", 1},
		{"GB", 0},
	};
	for (const auto &row : rows) {
		multi_level_ = 1 - row.multi_level;
		ASSERT_EQ(line(row.line, 1), 0);
		EXPECT_EQ(multi_level_, row.multi_level) << row.line;
	}
}

TEST_F(ContainerParagraph, ShortFirstLineMakesAnEmptyRecord)
{
	for (const char *text : {"5", "", " \r\n"}) {
		release();
		ASSERT_EQ(line(text, 1), 0);
		ASSERT_NE(list_, nullptr);
		EXPECT_TRUE(*text == '5' || list_->nCntnerID == -1) << "no number";
		EXPECT_EQ(list_->nDiskNumber, 0);
		EXPECT_EQ(members(*list_), "");
		EXPECT_EQ(list_->StripeSize, 64);
		EXPECT_EQ(list_->HotSpare, -1);
		EXPECT_STREQ(list_->Label, "");
		EXPECT_EQ(list_->next, nullptr);
	}
}

TEST_F(ContainerParagraph, LaterLines)
{
	const std::string x31(31, 'x');
	const struct {
		const char *first;
		int number;
		std::string line;
		std::string record;
	} rows[] = {
		{"5 Mirror 1GB", 2, "/dev/sda data 0:01:0", "5|1|0:1:0|1|1024|0|-1|-1|data\n"},
		{"5 Mirror 1GB", 2, "/dev/sda data 0:01:0 \t\r\n", "5|1|0:1:0|1|1024|0|-1|-1|data\n"},
		{"5 Mirror 1GB", 2, "0:11:1 0:01:0", "5|1|0:1:0|1|1024|0|-1|-1|0:11:1\n"},
		{"5 Mirror 1GB", 2, x31 + " 0:01:0", "5|1|0:1:0|1|1024|0|-1|-1|" + x31 + "\n"},
		{"5 Mirror 1GB", 2, x31 + "y 0:01:0", "5|1|0:1:0|1|1024|0|-1|-1|" + x31 + "\n"},
		{"5 Mirror 1GB", 2, "x", "5|0||1|1024|0|-1|-1|\n"},
		{"5 Mirror 1GB", 2, "", "5|0||1|1024|0|-1|-1|\n"},
		{"5 Mirror 1GB", 3, "0:01:0", "5|1|0:1:0|1|1024|0|-1|-1|\n"},
		{"5 Mirror 1GB", 9, "/dev/sda data 0:01:0", "5|1|0:1:0|1|1024|0|-1|-1|\n"},
		{"5 Mirror 1GB", 3, "no address", "5|0||1|1024|0|-1|-1|\n"},
		{"5 Mirror 1GB", 3, "0", "5|0||1|1024|0|-1|-1|\n"},
		{"5 Mirror", 2, "/dev/sda data 0:01:0", "5|0||1|0|0|-1|-1|data 0:01:0\n"},
		{"5 Mirror", 2, "y", "5|0||1|0|0|-1|-1|\n"},
		{"23 Mirror 1GB", 2, "data 0:01:0", "23|1|0:1:0|1|1024|0|-1|-1|data\n"},
		{"24 Mirror 1GB", 2, "data 0:01:0", "24|1|0:1:0|1|1024|0|-1|-1|\n"},
		{"24 Mirror", 2, "data 0:01:0", "24|1|0:1:0|1|0|0|-1|-1|\n"},
		{"24 Mirror", 2, "data", "24|0||1|0|0|-1|-1|\n"},
	};
	for (const auto &row : rows) {
		release();
		ASSERT_EQ(line(row.first, 1), 0);
		EXPECT_EQ(line(row.line, row.number), 0);
		EXPECT_EQ(described(list_), row.record) << row.line;
	}
}

TEST_F(ContainerParagraph, StartsWithANumberFromZeroTo63)
{
	without_tool();
	const struct {
		const char *start;
		int number; // -1: rejected
	} rows[] = {
		{"0", 0},
		{"00", 0},
		{"9", 9},
		{"007", 7},
		{"63", 63},
		{" 5", 5},
		{"\t5", 5},
		{"64", -1},
		{"99", -1},
		{"100", -1},
		{"-1", -1},
		{"x", -1},
		{"x5", -1},
		{"/5", -1},
		{"4294967296", -1},
		{"4294967301", -1},
		{"18446744073709551621", -1},
	};
	for (const auto &row : rows) {
		release();
		const std::string text =
			row.start + std::string(" Mirror 1GB Open 0:00:0 64.0KB:1GB\n0:01:0");
		const int result = Deal_With_A_Large_Node("aac0", exact(text).get(), &list_);
		EXPECT_EQ(result, row.number < 0 ? -1 : 0) << row.start;
		ASSERT_EQ(list_ != nullptr, row.number >= 0) << row.start;
		EXPECT_EQ(list_ ? list_->nCntnerID : -1, row.number);
	}
	for (const char *text : {"", " ", "\t\t", "Mirror"})
		EXPECT_EQ(Deal_With_A_Large_Node("aac0", exact(text).get(), &list_), -1) << text;
}

TEST_F(ContainerParagraph, AsksForTheHotSpareOfItsRecord)
{
	answer("--------- ----------------------------------\n    7      1:02:3\n");
	const auto text = exact("7    Mirror 1GB Open 0:00:0 64.0KB:1GB\n/dev/sda data 0:01:0");
	ASSERT_EQ(Deal_With_A_Large_Node("raid 1", text.get(), &list_), 0);
	EXPECT_EQ(described(list_), "7|2|0:0:0,0:1:0|1|1024|0|5|1:2:3|data\n");
	EXPECT_EQ(script(), "open raid 1\ncontainer show failover 7\n" + std::string(43, ' ') + "\n" +
	                            std::string(4, ' ') + "\nexit\n");
}

TEST_F(ContainerParagraph, RejectedOneAsksForNothing)
{
	EXPECT_EQ(Deal_With_A_Large_Node("aac0", "64   Mirror 1GB", &list_), -1);
	EXPECT_EQ(list_, nullptr);
	EXPECT_FALSE(tool_ran());
}

TEST_F(ContainerParagraph, RecordsOfMemberContainersFollowTheirContainer)
{
	without_tool();
	const auto before = exact("9    Mirror 1GB Open 0:00:0 64.0KB:1GB");
	const auto text = exact("2    Stripe 2GB 64KB Open\nbig\n"
	                        "24   Mirror 1GB Open 0:00:0 64.0KB:1GB\n 0:01:0\n"
	                        "63\tMirror 1GB Open 0:02:0 64.0KB:1GB\n 0:03:0");
	ASSERT_EQ(Deal_With_A_Large_Node("aac0", before.get(), &list_), 0);
	ASSERT_EQ(Deal_With_A_Large_Node("aac0", text.get(), &list_), 0);
	EXPECT_EQ(list_->nCntnerID, 63) << "the last one made";
	EXPECT_EQ(described(pContainerHeader), "9|1|0:0:0|1|1024|0|5|-1|\n"
	                                       "2|2|24,63|3|2048|64|5|-1|big\n"
	                                       "24|2|0:0:0,0:1:0|1|1024|0|5|-1|\n"
	                                       "63|2|0:2:0,0:3:0|1|1024|0|5|-1|\n");
}

// What starts a member container's text, and what makes its number a member.
TEST_F(ContainerParagraph, StartOfAMemberContainer)
{
	without_tool();
	const struct {
		const char *start;
		bool member;
		int record; // -1: none
	} rows[] = {
		{"24 Mirror", true, 24},   {"63\tMirror", true, 63},  {"23 Mirror", false, 23},
		{"64 Mirror", false, -1},  {"5 Mirror", false, 5},    {"5\tMirror", false, 5},
		{"0 Mirror", false, 0},    {"240 Mirror", false, -1}, {"024 Mirror", false, 24},
		{" 24 Mirror", false, -1}, {"2x Mirror", false, -1},  {"5:24 Mirror", false, -1},
		{"24: Mirror", false, -1}, {"x4 Mirror", false, -1},  {"24", false, 24},
	};
	for (const auto &row : rows) {
		release();
		const auto text = exact(std::string("2    Stripe 2GB 64KB Open\nbig\n") + row.start + "\n");
		ASSERT_EQ(Deal_With_A_Large_Node("aac0", text.get(), &list_), 0);
		EXPECT_EQ(members(*pContainerHeader), row.member ? std::string(row.start, 2) : "")
			<< row.start;
		EXPECT_EQ(pContainerHeader->nDiskNumber, row.member) << row.start;
		const aac_container *record = pContainerHeader->next;
		EXPECT_EQ(record ? record->nCntnerID : -1, row.record) << row.start;
	}
}

} // namespace
