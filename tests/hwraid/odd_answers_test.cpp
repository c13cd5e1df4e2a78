// SPDX-License-Identifier: Apache-2.0
// Answers between the rules: errors behind lines that are cleaned to nothing, numbers beyond every range.
#include "site.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_container_list.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_raid.h"

namespace
{

class OddAnswer : public SiteTest
{
protected:
	std::string file(std::string_view text)
	{
		const std::filesystem::path path = site_ / "odd";
		write_file(path, text);
		return path;
	}
};

// A full line of blanks is cleaned to nothing, and so is one that begins with a NUL. A tool that failed must
// not pass for one that did as it was told.
TEST_F(OddAnswer, ErrorBehindALineOfNothingIsAnError)
{
	using namespace std::string_literals;
	const std::string error = "Command Error: <The specified container was not found.>\n";
	for (const std::string &before : {std::string(511, ' '), "\0nothing\n"s}) {
		const std::string path = file(before + error);
		EXPECT_EQ(AnalyzeContainerDeleteFile(path.c_str()), -5);
		EXPECT_EQ(AnalyzeContainerSetFailoverFile(path.c_str()), -5);
		EXPECT_EQ(AnalyzeContainerShowFailoverFile(path.c_str()), -5);
		EXPECT_EQ(Analyze_Create_Raid_Created_File(path.c_str(), 0), -5);
		char name[256] = "";
		EXPECT_EQ(AnalyzeContainerDiskNameFile(path.c_str(), name), -300);
	}
}

// Before the table of pieces such a line is nothing; in it, it is the end.
TEST_F(OddAnswer, LineOfNothingEndsTheTableOfPiecesOnly)
{
	const std::string nothing(511, ' ');
	const std::string row = "0:00:0 64.0KB:1.0GB 7 Mirror 0 None RW\n";
	const std::string path = file(nothing + "Executing: disk show partition\n" + nothing + "------\n" +
	                              row + nothing + row);
	aac_partition *head = nullptr;
	EXPECT_EQ(AnalyzePartitionFile(path.c_str(), &head), 0);
	ASSERT_NE(head, nullptr);
	EXPECT_EQ(head->bContainerID, 7);
	EXPECT_EQ(head->next, nullptr);
	Aac_Clear_Disk_Partition_List(head);
}

// What is said of an echo in the middle of a line is none: then an error behind it still counts.
TEST_F(OddAnswer, AnEchoBeginsItsLine)
{
	const std::string path = file("No Executing: controller list\n"
	                              "Command Error: <Another application has opened the controller.>\n");
	aac_controller *head = nullptr;
	EXPECT_EQ(AnalyzeControllerFile(path.c_str(), &head), -200);
	EXPECT_EQ(head, nullptr);
}

struct spare_row {
	const char *address;
	int result;
};

// The address is a sum without a range check; one below 0 would read as a code.
TEST_F(OddAnswer, HotSpareIsASumButNeverACode)
{
	static const spare_row ROWS[] = {
		{"1:-1:0", 65280},       {"0:300:0", 76800},       {"65535:255:255", -300},
		{"65535:255:254", -300}, {"2147483647:0:0", -300}, {"-1:00:0", -300},
		{"0:00:-5", -300},       {"0:00", -300},           {"19:02:3", 9 * 65536 + 2 * 256 + 3},
	};
	for (const spare_row &row : ROWS) {
		const std::string path = file("--------- ----------------------------------\n    0      " +
		                              std::string(row.address) + "\n");
		EXPECT_EQ(AnalyzeContainerShowFailoverFile(path.c_str()), row.result) << row.address;
	}
}

// A container above 23 that is multi-level itself: its members begin with the first slot, whatever its second
// line has put there, and all are counted.
TEST_F(OddAnswer, MemberContainersBeginWithTheFirstSlot)
{
	aac_container *head = nullptr;
	EXPECT_EQ(Deal_With_A_Large_Node("aac0",
	                                 "42   Stripe 15.4GB     16KB   Open\n"
	                                 "/dev/sdb             0:01:2 1GB:1GB\n"
	                                 "58   Mirror 1.0GB            Open    0:04:0 64.0KB:1.0GB\n",
	                                 &head),
	          0);
	head = pContainerHeader;
	EXPECT_EQ(head->nDiskNumber, 2);
	EXPECT_EQ(head->C_ID_L[0], 58);
	EXPECT_EQ(head->C_ID_L[1], -1);
	ASSERT_NE(head->next, nullptr);
	EXPECT_EQ(head->next->nCntnerID, 58);
	Aac_Clear_Container_List(head);
}

TEST_F(OddAnswer, SizesBeyondEveryRange)
{
	const std::string zeros(400, '0');
	const struct {
		std::string size;
		int megabytes;
	} rows[] = {
		{"0." + zeros + "1MB", 0},
		{"1" + zeros + "MB", 2147483647},
		{"1" + zeros + ".5GB", 2147483647},
		{"5.MB", 5},
		{".5GB", 512},
		{".MB", 0},
	};
	for (const auto &row : rows) {
		aac_container container = {};
		nodeGetTotalSize(("0    Mirror " + row.size + "   Open").c_str(), &container);
		EXPECT_EQ(container.TotalSize, row.megabytes) << row.size;
	}
}

TEST_F(OddAnswer, PlacesBeyondEveryRange)
{
	const std::string zeros(59, '0');
	const struct {
		std::string place;
		long long kilobytes;
	} rows[] = {
		{"1" + zeros + "e-50KB", 1000000000},  {"0." + zeros + "1KB", 0},
		{"0.00001e60KB", 9223372036854775807}, {"1e-60KB", 0},
		{"-1e60KB", -9223372036854775807 - 1}, {"+2KB", 2},
	};
	for (const auto &row : rows) {
		const std::string path = file("Executing: disk show partition\n------\n0:00:0 " + row.place +
		                              ":1.0GB 7 Mirror 0 None RW\n");
		aac_partition *head = nullptr;
		EXPECT_EQ(AnalyzePartitionFile(path.c_str(), &head), 0);
		ASSERT_NE(head, nullptr);
		EXPECT_EQ(head->nOffset, row.kilobytes) << row.place;
		EXPECT_EQ(head->nSize, 1048576) << row.place;
		Aac_Clear_Disk_Partition_List(head);
	}
}

// Two signs are no number: nothing behind them is read.
TEST_F(OddAnswer, TwoSignsAreNoNumber)
{
	const std::string path =
		file("Executing: disk show partition\n------\n0:00:0 +-5KB:1.0GB 7 Mirror 0 None RW\n");
	aac_partition *head = nullptr;
	EXPECT_EQ(AnalyzePartitionFile(path.c_str(), &head), 0);
	ASSERT_NE(head, nullptr);
	EXPECT_EQ(head->nOffset, 0);
	EXPECT_EQ(head->nSize, 0);
	EXPECT_EQ(head->bContainerID, 0);
	Aac_Clear_Disk_Partition_List(head);
}

} // namespace
