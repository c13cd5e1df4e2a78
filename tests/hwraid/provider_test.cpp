// SPDX-License-Identifier: Apache-2.0
// The hardware item provider, asked through the boundary as an agent asks it: what each record carries, what
// a failure leaves, and who frees what. The leak check of the sanitizers sees to the latter.
#include "site.h"

#include "diskscout.h"
#include "hwraid/aacraid/hsa_20_need.h"

#include <string.h>

namespace
{

constexpr int NOT_SET = 4711;

class ProviderTest : public SiteTest
{
protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		// A container list is followed by a question for the hot spare of each container.
		tool("cat >" + at("script") + "\ngrep -q 'show failover' " + at("script") + " && exec cat " +
		     at("spare") + "\ncp " + at("script") + " " + at("first") + "\nexec cat " + at("answer") +
		     "\n");
		spare("    0     --- No Devices Assigned ---");
	}
	void TearDown() override
	{
		EXPECT_EQ(memory_counter_hwraid, 0);
		SiteTest::TearDown();
	}

	std::string at(const char *name) const { return (site_ / name).string(); }
	void spare(const std::string &line)
	{
		write_file(site_ / "spare", "Executing: container show failover 0\n"
		                            "Container    Scsi C:ID:L\n"
		                            "--------- ----------------------------------\n" +
		                                    line + "\n\nAAC0>\n");
	}
	// The script of the query, not of the questions that followed it.
	std::string query_script() const { return read_file(site_ / "first"); }

	int query(UINT code, const std::string &data)
	{
		// On the heap, so that reading beyond the argument shows.
		std::vector<char> copy(data.begin(), data.end());
		copy.push_back('\0');
		return query_raw(code, copy.data());
	}
	int query_raw(UINT code, char *data)
	{
		IPMICOMMAND cmd = {};
		cmd.nCommand = code;
		cmd.szData = data;
		count = NOT_SET;
		return GetItemInfo(&cmd, &head, &count);
	}
	int release(UINT code)
	{
		IPMICOMMAND cmd = {};
		cmd.nCommand = code;
		return SetItemInfo(&cmd, &head);
	}
	void expect_failure_left_nothing()
	{
		EXPECT_EQ(count, 0);
		EXPECT_EQ(head, nullptr);
	}
	template <typename Record> const Record *at_index(int index) const
	{
		auto *record = static_cast<const Record *>(head);
		while (record && index-- > 0)
			record = record->next;
		return record;
	}

	void *head = nullptr;
	int count = NOT_SET;
};

std::string space_request(int address, const std::string &name)
{
	return std::string(reinterpret_cast<const char *>(&address), sizeof address) + name;
}

// ---- all queries that name a controller ----

struct query_t {
	const char *name;
	UINT code;
	const char *command;
	std::string answer;  // of three records
	std::string smaller; // of one record
	std::string none;    // of no record
	size_t next_offset;
};

// For a test's name in a report; of its bytes some are not set.
void PrintTo(const query_t &query, std::ostream *stream)
{
	*stream << query.name;
}

const std::string CONTAINERS = "Executing: open \"aac0\"\n\nAAC0>\nExecuting: container list\n"
			       "Num          Total  Oth Stripe          Scsi   Partition\n"
			       "Label Type   Size   Ctr Size   Usage   C:ID:L Offset:Size\n"
			       "----- ------ ------ --- ------ ------- ------ -------------\n";
const std::string CONTAINERS_END = "\n\nAAC0>\nExecuting: exit\n";
const std::string DISKS = "Executing: disk list /full=TRUE\n------\n";
const std::string PARTITIONS = "Executing: disk show partition\n------\n";

std::string container(int number, const std::string &size)
{
	return std::to_string(number) + "    Mirror " + size +
	       "            Open    0:00:0 64.0KB:1.0GB\n /dev/sda             data      0:01:0 "
	       "64.0KB:1.0GB\n\n";
}

std::string labelled_container(const std::string &label)
{
	return "0    Mirror 1000MB            Open    0:00:0 64.0KB:1.0GB\n"
	       "/dev/sda                                                " +
	       label + "  0:01:0 64.0KB:1.0GB\n";
}

std::string containers(const std::string &rows)
{
	return CONTAINERS + rows + CONTAINERS_END;
}

std::string disk(const std::string &address)
{
	return address + " Disk N ACME EX10 SA1B 1000 512 Initialized NO 320\n";
}

const std::string SPACE = "  0:01:0     Free      64.0KB:2.0KB\n";
const std::string PARTITION = "0:01:0 64.0KB:2.0KB 7 Mirror 8 None RW\n";

const query_t QUERIES[] = {
	{"containers", CMD_GET_CONTAINERS, "container list\n",
         containers(container(0, "10MB") + container(1, "20MB") + container(2, "30MB")),
         containers(container(3, "40MB")), CONTAINERS + "\n\nAAC0>\n", offsetof(tagHwRaid, next)},
	{"disks", CMD_GET_RAID_DISKS, "disk list /full=true\n",
         DISKS + disk("0:00:0") + disk("0:01:0") + disk("0:02:0"), DISKS + disk("0:03:0"), DISKS,
         offsetof(__tag_Hard_Raid_Disk, next)},
	{"space", CMD_GET_RAID_SPACE, "disk show space (0,1,0)\n", SPACE + SPACE + SPACE, SPACE, "",
         offsetof(__tag_Hard_Raid_Space, next)},
	{"partitions", CMD_GET_RAID_PARTITIONS, "disk show partition\n",
         PARTITIONS + PARTITION + PARTITION + PARTITION, PARTITIONS + PARTITION, PARTITIONS,
         offsetof(tag_HwRaid_Partition, next)},
};

class Query : public ProviderTest, public testing::WithParamInterface<query_t>
{
protected:
	std::string request(const std::string &name) const
	{
		return GetParam().code == CMD_GET_RAID_SPACE ? space_request(0x0100, name) : name;
	}
	int ask(const std::string &name = "aac0") { return query(GetParam().code, request(name)); }
	int free_list() { return release(GetParam().code + 1); }
	int length() const
	{
		int records = 0;
		for (const void *record = head; record; records++)
			memcpy(&record, static_cast<const char *>(record) + GetParam().next_offset,
			       sizeof record);
		return records;
	}
};

TEST_P(Query, HandsOutItsRecords)
{
	answer(GetParam().answer);
	ASSERT_EQ(ask(), 0);
	EXPECT_EQ(count, 3);
	EXPECT_EQ(length(), 3);
	EXPECT_EQ(memory_counter_hwraid, 0);
	EXPECT_EQ(free_list(), 0);
	EXPECT_EQ(head, nullptr);
	EXPECT_EQ(free_list(), 0) << "an empty list";
	EXPECT_EQ(head, nullptr);
}

TEST_P(Query, OpensTheControllerNamed)
{
	answer(GetParam().answer);
	for (const std::string name : {"aac0", "aac1", "a b~", "x"}) {
		ASSERT_EQ(ask(name), 0);
		const std::string begin = "open " + name + "\n" + GetParam().command;
		EXPECT_EQ(query_script().substr(0, begin.size()), begin);
	}
	EXPECT_EQ(free_list(), 0);
}

TEST_P(Query, ReleasesTheListPassedIn)
{
	answer(GetParam().answer);
	ASSERT_EQ(ask(), 0);
	answer(GetParam().smaller);
	ASSERT_EQ(ask(), 0);
	EXPECT_EQ(count, 1);
	EXPECT_EQ(length(), 1);
	answer(GetParam().answer);
	ASSERT_EQ(ask(), 0);
	EXPECT_EQ(count, 3);
	EXPECT_EQ(length(), 3);
	EXPECT_EQ(free_list(), 0);
}

TEST_P(Query, ThatFailsLeavesNothing)
{
	answer(GetParam().answer);
	ASSERT_EQ(ask(), 0);
	tool("exit 1\n");
	EXPECT_EQ(ask(), -1);
	expect_failure_left_nothing();
	EXPECT_EQ(ask(), -1) << "without a list passed in";
	expect_failure_left_nothing();
}

TEST_P(Query, DoesNotTellTheOperationsOwnCode)
{
	for (const char *error :
	     {"<Another application has opened the controller.>",
	      "<The requested controller does not exist.>", "<The specified device was not found.>", "<x>"}) {
		answer("Executing: open \"aac0\"\nCommand Error: " + std::string(error) + "\n");
		EXPECT_EQ(ask(), -1) << error;
		expect_failure_left_nothing();
	}
}

TEST_P(Query, WithoutAConfigurationFails)
{
	std::filesystem::remove(site_ / "config");
	EXPECT_EQ(ask(), -1);
	expect_failure_left_nothing();
	EXPECT_FALSE(tool_ran());
}

// A newline would smuggle a command into the tool.
TEST_P(Query, RefusesNamesBeforeAnythingIsWritten)
{
	std::vector<std::string> names = {"", "aac0\ncontainer delete 0", "aac0\n", "\raac0"};
	for (char c = 1; c < ' '; c++)
		names.push_back(std::string("aac") + c + "0");
	names.push_back("aac0\x7f");
	for (const std::string &name : names) {
		SCOPED_TRACE(testing::PrintToString(name));
		EXPECT_EQ(ask(name), -1);
		expect_failure_left_nothing();
	}
	EXPECT_EQ(query_raw(GetParam().code, nullptr), -1);
	expect_failure_left_nothing();
	EXPECT_FALSE(tool_ran());
}

TEST_P(Query, ThatIsRefusedHasReleasedTheListPassedIn)
{
	answer(GetParam().answer);
	ASSERT_EQ(ask(), 0);
	EXPECT_EQ(ask("aac0\n"), -1);
	expect_failure_left_nothing();
	ASSERT_EQ(ask(), 0);
	EXPECT_EQ(ask(""), -1);
	expect_failure_left_nothing();
	ASSERT_EQ(ask(), 0);
	EXPECT_EQ(query_raw(GetParam().code, nullptr), -1);
	expect_failure_left_nothing();
}

TEST_P(Query, RecordsAreAllocatedOneByOne)
{
	answer(GetParam().answer);
	ASSERT_EQ(ask(), 0);
	// Each is writable to its last byte and stands apart from the others.
	std::vector<char *> records;
	for (void *record = head; record;) {
		records.push_back(static_cast<char *>(record));
		memcpy(&record, static_cast<char *>(record) + GetParam().next_offset, sizeof record);
	}
	ASSERT_EQ(records.size(), 3U);
	for (char *record : records)
		memset(record, 0x5a, GetParam().next_offset);
	for (char *record : records)
		EXPECT_EQ(record[GetParam().next_offset - 1], 0x5a);
	EXPECT_EQ(free_list(), 0);
}

INSTANTIATE_TEST_SUITE_P(Codes, Query, testing::ValuesIn(QUERIES),
                         [](const testing::TestParamInfo<query_t> &row) { return row.param.name; });

// ---- no records ----

TEST_F(ProviderTest, NoRecordsAreNoFailure)
{
	for (const query_t &row : QUERIES) {
		SCOPED_TRACE(row.name);
		answer(row.none);
		const std::string name = "aac0";
		const bool space = row.code == CMD_GET_RAID_SPACE;
		ASSERT_EQ(query(row.code, space ? space_request(0x0100, name) : name), 0);
		EXPECT_EQ(count, 0);
		EXPECT_EQ(head, nullptr);
	}
}

TEST_F(ProviderTest, NoContainersAtAllAreAFailure)
{
	answer(CONTAINERS);
	EXPECT_EQ(query(CMD_GET_CONTAINERS, "aac0"), -1);
	expect_failure_left_nothing();
}

// ---- failures behind records ----

TEST_F(ProviderTest, RecordsBeforeAnErrorAreFreed)
{
	answer(SPACE + SPACE + "Command Error: <x>\n");
	EXPECT_EQ(query(CMD_GET_RAID_SPACE, space_request(0x0100, "aac0")), -1);
	expect_failure_left_nothing();

	answer(PARTITIONS + PARTITION + PARTITION + "Command Error: <The specified device was not found.>\n");
	EXPECT_EQ(query(CMD_GET_RAID_PARTITIONS, "aac0"), -1);
	expect_failure_left_nothing();
}

// Behind its echo the disk list knows no errors: the line is a row that says nothing.
TEST_F(ProviderTest, AnErrorAmongDisksIsARow)
{
	answer(DISKS + disk("0:01:0") + "Command Error: <Another application has opened the controller.>\n" +
	       disk("0:02:0"));
	ASSERT_EQ(query(CMD_GET_RAID_DISKS, "aac0"), 0);
	EXPECT_EQ(count, 3);
	const auto *row = at_index<HWRAID_DISK_LIST>(1);
	EXPECT_EQ(row->nPosition, 0);
	EXPECT_EQ(row->DeviceType, -1);
	EXPECT_STREQ(row->szVendor, "");
	EXPECT_EQ(row->nBlocks, 0);
	EXPECT_EQ(at_index<HWRAID_DISK_LIST>(2)->nPosition, 0x0200);
	EXPECT_EQ(release(CMD_FREE_RAID_DISKS), 0);
}

// ---- containers, field by field ----

TEST_F(ProviderTest, ContainerIsCopied)
{
	spare("    5      0:02:0");
	answer(containers("5    RAID-5 1000MB     32KB   NTFS    0:00:0 64.0KB:500MB\n"
	                  "/dev/sda             system   1:0a:3 64.0KB:500MB\n"
	                  "                              0:02:0 64.0KB:500MB\n"));
	ASSERT_EQ(query(CMD_GET_CONTAINERS, "aac0"), 0);
	ASSERT_EQ(count, 1);
	const auto *raid = at_index<HWRAID_LIST>(0);
	EXPECT_EQ(raid->nRaidID, 5);
	EXPECT_EQ(raid->nDiskNumber, 3);
	EXPECT_EQ(raid->nPosition[0], 0);
	EXPECT_EQ(raid->nPosition[1], 0x010a03);
	EXPECT_EQ(raid->nPosition[2], 0x0200);
	for (int i = 3; i < 64; i++)
		EXPECT_EQ(raid->nPosition[i], -1) << i;
	EXPECT_EQ(raid->RaidType, KESTREL_HWRAID_TYPE_RAID5);
	EXPECT_EQ(raid->nTotalSize, 1048576000);
	EXPECT_EQ(raid->nStripeSize, 32768);
	EXPECT_EQ(raid->Usage, KESTREL_HWRAID_USAGE_TYPE_NTFS);
	EXPECT_EQ(raid->nHotSpare, 512);
	EXPECT_STREQ(raid->szLabel, "system");
	EXPECT_EQ(raid->next, nullptr);
	EXPECT_EQ(release(CMD_FREE_CONTAINERS), 0);
}

TEST_F(ProviderTest, ContainerOfUnknownsIsCopied)
{
	answer(containers("63   Tunnel 512MB  Odd   x:00:0 64.0KB:500MB\n"));
	ASSERT_EQ(query(CMD_GET_CONTAINERS, "aac0"), 0);
	ASSERT_EQ(count, 1);
	const auto *raid = at_index<HWRAID_LIST>(0);
	EXPECT_EQ(raid->nRaidID, 63);
	EXPECT_EQ(raid->nDiskNumber, 0);
	for (const int position : raid->nPosition)
		EXPECT_EQ(position, -1);
	EXPECT_EQ(raid->RaidType, KESTREL_HWRAID_TYPE_UNKNOWN);
	EXPECT_EQ(raid->nTotalSize, 0);
	EXPECT_EQ(raid->nStripeSize, 0);
	EXPECT_EQ(raid->Usage, KESTREL_HWRAID_USAGE_TYPE_UNKNOW);
	EXPECT_EQ(raid->nHotSpare, -1);
	EXPECT_STREQ(raid->szLabel, "");
	EXPECT_EQ(release(CMD_FREE_CONTAINERS), 0);
}

TEST_F(ProviderTest, ContainerOfContainersIsCopiedBeforeItsMembers)
{
	answer(containers("2    Stripe 2000MB     64KB   Valid\n"
	                  "/dev/sdc             big\n"
	                  "24   Mirror 1000MB            Valid   0:04:0 64.0KB:1.0GB\n"
	                  "                                      0:05:0 64.0KB:1.0GB\n"
	                  "25   Mirror 1000MB            Valid   1:04:0 64.0KB:1.0GB\n"
	                  "                                      1:05:0 64.0KB:1.0GB\n"));
	ASSERT_EQ(query(CMD_GET_CONTAINERS, "aac0"), 0);
	ASSERT_EQ(count, 3);
	const auto *parent = at_index<HWRAID_LIST>(0);
	EXPECT_EQ(parent->nRaidID, 2);
	EXPECT_EQ(parent->RaidType, KESTREL_HWRAID_TYPE_RAID10);
	EXPECT_EQ(parent->nDiskNumber, 2);
	EXPECT_EQ(parent->nPosition[0], 24);
	EXPECT_EQ(parent->nPosition[1], 25);
	EXPECT_EQ(parent->nPosition[2], -1);
	EXPECT_EQ(parent->nStripeSize, 65536);
	EXPECT_STREQ(parent->szLabel, "big");
	EXPECT_EQ(at_index<HWRAID_LIST>(1)->nRaidID, 24);
	EXPECT_EQ(at_index<HWRAID_LIST>(1)->nPosition[1], 0x0500);
	EXPECT_EQ(at_index<HWRAID_LIST>(2)->nRaidID, 25);
	EXPECT_EQ(at_index<HWRAID_LIST>(2)->nPosition[0], 0x010400);
	EXPECT_EQ(release(CMD_FREE_CONTAINERS), 0);
}

// A product of 32 bits, widened afterwards.
TEST_F(ProviderTest, ContainerSizesWrap)
{
	const struct {
		const char *size;
		long long bytes;
	} rows[] = {
		{"1MB", 1048576},        {"1024MB", 1073741824}, {"2047MB", 2146435072},
		{"2048MB", -2147483648}, {"2.0GB", -2147483648}, {"3072MB", -1073741824},
		{"4095MB", -1048576},    {"4096MB", 0},          {"4.0GB", 0},
		{"4097MB", 1048576},     {"6.0GB", -2147483648}, {"8191MB", -1048576},
		{"33.9GB", 2039480320}, // 34,713 MB are 8 * 4,096 and 1,945
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.size);
		answer(containers(container(0, row.size)));
		ASSERT_EQ(query(CMD_GET_CONTAINERS, "aac0"), 0);
		ASSERT_EQ(count, 1);
		EXPECT_EQ(at_index<HWRAID_LIST>(0)->nTotalSize, row.bytes);
	}
	EXPECT_EQ(release(CMD_FREE_CONTAINERS), 0);
}

TEST_F(ProviderTest, ContainerLabelsAreCutToEightCharacters)
{
	const struct {
		const char *label;
		const char *copied;
	} rows[] = {{"a", "a"},
	            {"1234567", "1234567"},
	            {"12345678", "12345678"},
	            {"123456789", "12345678"},
	            {"a label of many words", "a label "},
	            {"1234567890123456789012345678901234567890", "12345678"}};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.label);
		answer(containers(labelled_container(row.label)));
		ASSERT_EQ(query(CMD_GET_CONTAINERS, "aac0"), 0);
		ASSERT_EQ(count, 1);
		EXPECT_STREQ(at_index<HWRAID_LIST>(0)->szLabel, row.copied);
	}
	EXPECT_EQ(release(CMD_FREE_CONTAINERS), 0);
}

// ---- disks, field by field ----

TEST_F(ProviderTest, DiskIsCopied)
{
	answer(DISKS + "1:10:3 CDROM Y EXAMPLE CD-2000 1.02 123456 2048 Offline YES 160\n");
	ASSERT_EQ(query(CMD_GET_RAID_DISKS, "aac0"), 0);
	ASSERT_EQ(count, 1);
	const auto *copied = at_index<HWRAID_DISK_LIST>(0);
	EXPECT_EQ(copied->nPosition, 0x010a03);
	EXPECT_STREQ(copied->szVendor, "EXAMPLE");
	EXPECT_STREQ(copied->szModel, "CD-2000");
	EXPECT_EQ(copied->DeviceType, 5);
	EXPECT_EQ(copied->nBlocks, 123456);
	EXPECT_EQ(copied->nBytesPerBlock, 2048);
	EXPECT_EQ(copied->Usage, KESTREL_HWRAID_DSK_USAGE_OFFLINE);
	EXPECT_EQ(copied->Shared, KESTREL_HWRAID_DSK_SHARED_TYPE_YES_SHARED);
	EXPECT_EQ(copied->nRate, 160);
	EXPECT_EQ(copied->next, nullptr);
	EXPECT_EQ(release(CMD_FREE_RAID_DISKS), 0);
}

TEST_F(ProviderTest, DiskTextsOfThirtyOneCharactersArriveWhole)
{
	const std::string vendor(31, 'v');
	const std::string product(31, 'p');
	answer(DISKS + "0:00:0 Disk N " + vendor + " " + product + " 1 2 512 Offline NO 3\n" +
	       "0:01:0 Disk N " + vendor + "vvvvv " + product + "ppppp 1 2 512 Offline NO 3\n");
	ASSERT_EQ(query(CMD_GET_RAID_DISKS, "aac0"), 0);
	ASSERT_EQ(count, 2);
	for (const int index : {0, 1}) {
		EXPECT_EQ(at_index<HWRAID_DISK_LIST>(index)->szVendor, vendor);
		EXPECT_EQ(at_index<HWRAID_DISK_LIST>(index)->szModel, product);
		EXPECT_EQ(at_index<HWRAID_DISK_LIST>(index)->nBlocks, 2);
	}
	EXPECT_EQ(release(CMD_FREE_RAID_DISKS), 0);
}

// One less than the exported enumeration says.
TEST_F(ProviderTest, DiskTypesAreOffByOne)
{
	const struct {
		const char *word;
		KESTREL_HWRAID_DSK_TYPE named;
	} rows[] = {{"Disk", KESTREL_HWRAID_DSK_TYPE_DISK},
	            {"Sequential", KESTREL_HWRAID_DSK_TYPE_SEQ},
	            {"Printer", KESTREL_HWRAID_DSK_TYPE_PRT},
	            {"Processor", KESTREL_HWRAID_DSK_TYPE_PROCESSOR},
	            {"Write once", KESTREL_HWRAID_DSK_TYPE_WRITEONCE},
	            {"CDROM", KESTREL_HWRAID_DSK_TYPE_CDROM},
	            {"Scanner", KESTREL_HWRAID_DSK_TYPE_SCANNER},
	            {"Optical", KESTREL_HWRAID_DSK_TYPE_OPTICAL},
	            {"Media changer", KESTREL_HWRAID_DSK_TYPE_MCHANGER},
	            {"Network", KESTREL_HWRAID_DSK_TYPE_NETWORK},
	            {"Enclosure", KESTREL_HWRAID_DSK_TYPE_UNKNOWN}};
	std::string text = DISKS;
	for (const auto &row : rows)
		text += std::string("0:00:0 ") + row.word + " N ACME EX10 1 2 512 Offline NO 3\n";
	answer(text);
	ASSERT_EQ(query(CMD_GET_RAID_DISKS, "aac0"), 0);
	ASSERT_EQ(count, 11);
	const auto *copied = at_index<HWRAID_DISK_LIST>(0);
	for (const auto &row : rows) {
		EXPECT_EQ(copied->DeviceType, row.named - 1) << row.word;
		copied = copied->next;
	}
	EXPECT_EQ(release(CMD_FREE_RAID_DISKS), 0);
}

TEST_F(ProviderTest, DiskOfUnknownsIsCopied)
{
	answer(DISKS + "0:00:0 Disk N ACME EX10 1 99999999999 512 Spare maybe 3\n");
	ASSERT_EQ(query(CMD_GET_RAID_DISKS, "aac0"), 0);
	ASSERT_EQ(count, 1);
	const auto *copied = at_index<HWRAID_DISK_LIST>(0);
	EXPECT_EQ(copied->Usage, KESTREL_HWRAID_DSK_USAGE_UNKNOWN);
	EXPECT_EQ(copied->Shared, KESTREL_HWRAID_DSK_SHARED_TYPE_UNKNOWN);
	EXPECT_EQ(copied->nBlocks, 2147483647);
	EXPECT_EQ(release(CMD_FREE_RAID_DISKS), 0);
}

// ---- free areas ----

// The size as an offset and as a size.
std::string two_spaces(const std::string &size)
{
	return "0:01:0 Free " + size + ":512.0KB\n0:01:0 Free 512.0KB:" + size + "\n";
}

// A product of 32 bits, widened afterwards.
TEST_F(ProviderTest, SpaceWraps)
{
	const struct {
		const char *size;
		long long bytes;
	} rows[] = {
		{"0.0KB", 0},
		{"64.0KB", 65536},
		{"-1.0KB", -1024},
		{"2097151KB", 2147482624},
		{"2097152KB", -2147483648},
		{"2.0GB", -2147483648},
		{"3145728KB", -1073741824},
		{"3.0GB", -1073741824},
		{"4194303KB", -1024},
		{"4.0GB", 0},
		{"4194305KB", 1024},
		{"4096.0GB", -1024},    // 2,147,483,647 KB at most
		{"33.8GB", 1932734464}, // 35,441,868 KB are 8 * 4,194,304 and 1,887,436
	};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.size);
		answer(two_spaces(row.size));
		ASSERT_EQ(query(CMD_GET_RAID_SPACE, space_request(0x0100, "aac0")), 0);
		ASSERT_EQ(count, 2);
		const auto *first = at_index<HWRAID_SPACE_LIST>(0);
		EXPECT_EQ(first->nOffset, row.bytes);
		EXPECT_EQ(first->nFreeSpace, 524288);
		EXPECT_EQ(first->next->nOffset, 524288);
		EXPECT_EQ(first->next->nFreeSpace, row.bytes);
		EXPECT_EQ(first->next->next, nullptr);
	}
	EXPECT_EQ(release(CMD_FREE_RAID_SPACE), 0);
}

TEST_F(ProviderTest, SpaceIsThatOfTheDiskInTheRequest)
{
	answer("0:01:0 Free 1.0KB:1.0KB\n1:10:3 Free 2.0KB:2.0KB\n2:10:3 Free 3.0KB:3.0KB\n");
	const struct {
		const char *command;
		int address;
		int count;
		long long offset;
	} rows[] = {{"(0,1,0)", 0x0100, 1, 1024},
	            // Of these bytes some are control characters, but they are no part of the name.
	            {"(1,10,3)", 0x010a03, 1, 2048},
	            {"(2,10,3)", 0x020a03, 1, 3072},
	            {"(3,10,3)", 0x030a03, 0, 0},
	            {"(255,255,255)", -1, 0, 0}};
	for (const auto &row : rows) {
		SCOPED_TRACE(row.command);
		ASSERT_EQ(query(CMD_GET_RAID_SPACE, space_request(row.address, "aac7")), 0);
		EXPECT_EQ(query_script().substr(0, 10 + 16 + strlen(row.command)),
		          std::string("open aac7\ndisk show space ") + row.command);
		EXPECT_EQ(count, row.count);
		EXPECT_EQ(count != 0 ? at_index<HWRAID_SPACE_LIST>(0)->nOffset : 0, row.offset);
	}
	EXPECT_EQ(release(CMD_FREE_RAID_SPACE), 0);
}

TEST_F(ProviderTest, SpaceRequestMayStandAtAnyAddress)
{
	answer("1:10:3 Free 2.0KB:2.0KB\n");
	for (size_t shift = 0; shift < 4; shift++) {
		std::string data = std::string(shift, 'x') + space_request(0x010a03, "aac0");
		ASSERT_EQ(query_raw(CMD_GET_RAID_SPACE, data.data() + shift), 0);
		EXPECT_EQ(count, 1);
	}
	EXPECT_EQ(release(CMD_FREE_RAID_SPACE), 0);
}

// ---- partitions ----

TEST_F(ProviderTest, PartitionIsCopied)
{
	answer(PARTITIONS + "1:10:3 64.0KB:1.5MB 24 RAID-5 2 Stripe RO\n"
	                    "0:00:0 1.0KB:2.0KB 7 RAID-10 8 Mirror --\n");
	ASSERT_EQ(query(CMD_GET_RAID_PARTITIONS, "aac0"), 0);
	ASSERT_EQ(count, 2);
	const auto *copied = at_index<HWRAID_PARTITION_LIST>(0);
	EXPECT_EQ(copied->nPosition, 0x010a03);
	EXPECT_EQ(copied->nOffset, 65536);
	EXPECT_EQ(copied->nSize, 1572864);
	EXPECT_EQ(copied->bRaidID, 24);
	EXPECT_EQ(copied->RaidType, KESTREL_HWRAID_TYPE_RAID5);
	EXPECT_EQ(copied->nMultilevelRaidID, 2);
	EXPECT_EQ(copied->MultilevelType, KESTREL_HWRAID_PART_MULTILEVEL_TYPE_STRIPE);
	EXPECT_EQ(copied->ReadWriteAttribute, KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_READ);
	copied = copied->next;
	EXPECT_EQ(copied->nPosition, 0);
	EXPECT_EQ(copied->bRaidID, 7);
	EXPECT_EQ(copied->RaidType, KESTREL_HWRAID_TYPE_UNKNOWN);
	EXPECT_EQ(copied->nMultilevelRaidID, 8);
	EXPECT_EQ(copied->MultilevelType, KESTREL_HWRAID_PART_MULTILEVEL_TYPE_UNKNOWN);
	EXPECT_EQ(copied->ReadWriteAttribute, KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_NOT_READ_OR_WRITE);
	EXPECT_EQ(copied->next, nullptr);
	EXPECT_EQ(release(CMD_FREE_RAID_PARTITIONS), 0);
}

TEST_F(ProviderTest, PartitionsDoNotWrap)
{
	answer(PARTITIONS + "0:00:0 3145728KB:2.0GB 7 Mirror 8 None RW\n"
	                    "0:00:0 4.0GB:4096.0GB 7 Mirror 8 None RW\n"
	                    "0:00:0 -1.0KB:-3.0GB 7 Mirror 8 None RW\n");
	ASSERT_EQ(query(CMD_GET_RAID_PARTITIONS, "aac0"), 0);
	ASSERT_EQ(count, 3);
	EXPECT_EQ(at_index<HWRAID_PARTITION_LIST>(0)->nOffset, 3221225472);
	EXPECT_EQ(at_index<HWRAID_PARTITION_LIST>(0)->nSize, 2147483648);
	EXPECT_EQ(at_index<HWRAID_PARTITION_LIST>(1)->nOffset, 4294967296);
	EXPECT_EQ(at_index<HWRAID_PARTITION_LIST>(1)->nSize, 4398046511104);
	EXPECT_EQ(at_index<HWRAID_PARTITION_LIST>(2)->nOffset, -1024);
	EXPECT_EQ(at_index<HWRAID_PARTITION_LIST>(2)->nSize, -3221225472);
	EXPECT_EQ(release(CMD_FREE_RAID_PARTITIONS), 0);
}

// Beyond 64 bits the tool's numbers mean nothing; what counts is that nothing overflows undefined.
TEST_F(ProviderTest, PartitionsBeyondAllSizesAreCopied)
{
	answer(PARTITIONS +
	       "0:00:0 999999999999999999999999GB:-999999999999999999999999GB 7 Mirror 8 None RW\n" +
	       PARTITION);
	ASSERT_EQ(query(CMD_GET_RAID_PARTITIONS, "aac0"), 0);
	EXPECT_EQ(count, 2);
	EXPECT_EQ(at_index<HWRAID_PARTITION_LIST>(1)->nSize, 2048);
	EXPECT_EQ(release(CMD_FREE_RAID_PARTITIONS), 0);
}

// ---- codes ----

TEST_F(ProviderTest, ControllersNeedNoArgument)
{
	answer("Executing: controller list\n----\naac0  EXAMPLE  read/write  No\n");
	ASSERT_EQ(query_raw(CMD_GET_CONTROLLERS, nullptr), 0);
	EXPECT_EQ(count, 1);
	ASSERT_EQ(query(CMD_GET_CONTROLLERS, "\n"), 0);
	EXPECT_EQ(count, 1);
	EXPECT_STREQ(at_index<aac_controller>(0)->Adapter_Name, "aac0");
	tool("exit 1\n");
	EXPECT_EQ(query_raw(CMD_GET_CONTROLLERS, nullptr), -1);
	expect_failure_left_nothing();
}

TEST_F(ProviderTest, CodesThatAreNoneTouchNothing)
{
	char untouched;
	for (const UINT code : {0U, 125099U, 125102U, 125200U, 126102U, 127099U, 128102U, 129099U, 129102U,
	                        130100U, 4294967295U}) {
		SCOPED_TRACE(code);
		head = &untouched;
		EXPECT_EQ(query(code, "aac0"), -1);
		EXPECT_EQ(head, &untouched);
		EXPECT_EQ(count, NOT_SET);
		EXPECT_EQ(release(code), -1);
		EXPECT_EQ(head, &untouched);
	}
	EXPECT_FALSE(tool_ran());
}

// At the boundary a query does not release, nor the other way round.
TEST_F(ProviderTest, QueriesAndReleasesHaveDoorsOfTheirOwn)
{
	char untouched;
	for (const UINT code : {125100U, 126100U, 127100U, 128100U, 129100U}) {
		SCOPED_TRACE(code);
		head = &untouched;
		EXPECT_EQ(query(code + 1, "aac0"), -1);
		EXPECT_EQ(head, &untouched);
		EXPECT_EQ(count, NOT_SET);
		EXPECT_EQ(release(code), -1);
		EXPECT_EQ(head, &untouched);
	}
	EXPECT_FALSE(tool_ran());
}

TEST_F(ProviderTest, ProviderItselfKnowsAllCodes)
{
	IPMICOMMAND cmd = {};
	char untouched;
	for (const UINT code : {0U, 122100U, 122101U, 125102U, 129102U}) {
		cmd.nCommand = code;
		head = &untouched;
		count = NOT_SET;
		EXPECT_EQ(HWRAID__GetItemInfo(&cmd, &head, &count), 0);
		EXPECT_EQ(head, &untouched);
		EXPECT_EQ(count, 0);
	}
	head = nullptr;
	for (const UINT code : {125101U, 126101U, 127101U, 128101U, 129101U}) {
		cmd.nCommand = code;
		count = NOT_SET;
		EXPECT_EQ(HWRAID__GetItemInfo(&cmd, &head, &count), 0);
		EXPECT_EQ(head, nullptr);
	}
	EXPECT_FALSE(tool_ran());
}

TEST_F(ProviderTest, ProviderReleasesWhatTheBoundaryHandedOut)
{
	answer(DISKS + disk("0:01:0") + disk("0:02:0"));
	ASSERT_EQ(query(CMD_GET_RAID_DISKS, "aac0"), 0);
	IPMICOMMAND cmd = {};
	cmd.nCommand = CMD_FREE_RAID_DISKS;
	EXPECT_EQ(HWRAID__GetItemInfo(&cmd, &head, &count), 0);
	EXPECT_EQ(head, nullptr);
}

} // namespace
