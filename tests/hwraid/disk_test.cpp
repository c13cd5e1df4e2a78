// SPDX-License-Identifier: Apache-2.0
// The operations on disks, against a stand-in tool: the script that each writes, what it makes of a failed
// run, and what it hands out.
#include "site.h"

#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"

#include <iterator>

namespace
{

constexpr int NOT_SET = 4711;
constexpr int ADDRESS = 0x030a07; // channel 3, ID 10, LUN 7

std::string blanks(size_t count)
{
	return std::string(count, ' ') + "\n";
}

// ---- all operations alike ----

template <typename Record>
int run_list(int (*get)(const char *, Record **), int (*clear)(Record *), const char *controller)
{
	Record *head = nullptr;
	const int result = get(controller, &head);
	EXPECT_EQ(head != nullptr, result > 0);
	EXPECT_EQ(clear(head), 0);
	return result;
}

int run_space(const char *controller, int address)
{
	aac_space *head = nullptr;
	const int result = Aac_Disk_Show_Space(controller, address, &head);
	EXPECT_EQ(head != nullptr, result > 0);
	EXPECT_EQ(Aac_Clear_Disk_Space_List(head), 0);
	return result;
}

int run_defect(const char *controller, int address)
{
	int primary = NOT_SET;
	int grown = NOT_SET;
	const int result = Aac_Disk_Show_Defect(controller, address, &primary, &grown);
	EXPECT_EQ(primary, -1);
	EXPECT_EQ(grown, -1);
	return result;
}

struct operation_t {
	const char *name;
	int (*run)(const char *controller);
	std::string script; // behind the line that opens the controller
};

// For a test's name in a report; of its bytes some are not set.
void PrintTo(const operation_t &operation, std::ostream *stream)
{
	*stream << operation.name;
}

const operation_t OPERATIONS[] = {
	{"list", [](const char *name) { return run_list(Aac_Get_Disk_List, Aac_Clear_Disk_List, name); },
         "disk list /full=true\n" + blanks(42) + blanks(4) + "exit\n"},
	{"initialize", [](const char *name) { return Aac_Disk_Initialize(name, 1, 0, ADDRESS); },
         "disk initialize /always=true /unconditional=false (3,10,7)\n" + blanks(42) + blanks(4) + blanks(2) +
                 blanks(2) + blanks(2) + blanks(2) + "  exit\n" + blanks(8)},
	{"defect", [](const char *name) { return run_defect(name, ADDRESS); },
         "disk show defect (3,10,7)\n" + blanks(44) + blanks(4) + "exit\n" + blanks(8)},
	{"space", [](const char *name) { return run_space(name, ADDRESS); },
         "disk show space (3,10,7)\n" + blanks(44) + blanks(4) + "exit\n" + blanks(8)},
	{"partition",
         [](const char *name) {
		 return run_list(Aac_Disk_Show_Partition, Aac_Clear_Disk_Partition_List, name);
	 },
         "disk show partition\n" + blanks(16) + blanks(4) + blanks(5) + blanks(4) + blanks(7) + blanks(6) +
                 blanks(4) + "exit\n"},
};

class DiskOperation : public SiteTest, public testing::WithParamInterface<operation_t>
{
};

TEST_P(DiskOperation, WritesItsScript)
{
	answer("no answer at all\n");
	EXPECT_EQ(GetParam().run("aac0"), 0);
	EXPECT_EQ(script(), "open aac0\n" + GetParam().script);
}

TEST_P(DiskOperation, TakesTheControllersNameAsItStands)
{
	answer("");
	for (const std::string &name : {std::string("%s %n"), std::string(300, 'n')}) {
		EXPECT_EQ(GetParam().run(name.c_str()), 0);
		EXPECT_EQ(script(), "open " + name + "\n" + GetParam().script);
	}
}

TEST_P(DiskOperation, DoesNotRunAScriptThatDoesNotFit)
{
	answer("");
	EXPECT_EQ(GetParam().run(std::string(9000, 'n').c_str()), -1);
	EXPECT_FALSE(tool_ran());
}

TEST_P(DiskOperation, FailsWithoutAConfiguration)
{
	answer("");
	std::filesystem::remove(site_ / "config");
	EXPECT_EQ(GetParam().run("aac0"), -1);
	EXPECT_FALSE(tool_ran());
}

TEST_P(DiskOperation, FailsWithItsTool)
{
	tool("echo nothing; exit 1\n");
	EXPECT_EQ(GetParam().run("aac0"), -1);
}

TEST_P(DiskOperation, FailsWithItsFilter)
{
	answer("");
	filter("cp \"$1\" \"$2\"; exit 1\n");
	EXPECT_EQ(GetParam().run("aac0"), -1);
	filter("exit 0\n");
	EXPECT_EQ(GetParam().run("aac0"), -1) << "the filter made no file";
}

INSTANTIATE_TEST_SUITE_P(Disks, DiskOperation, testing::ValuesIn(OPERATIONS),
                         [](const testing::TestParamInfo<operation_t> &row) { return row.param.name; });

// ---- each for itself ----

class DiskTest : public SiteTest
{
};

TEST_F(DiskTest, InitializeWritesItsFlagsAsWords)
{
	answer("");
	const struct {
		int always;
		int unconditional;
		const char *command;
	} rows[] = {
		{0, 0, "/always=false /unconditional=false (0,0,0)\n"},
		{1, 0, "/always=true /unconditional=false (0,0,0)\n"},
		{0, 1, "/always=false /unconditional=true (0,0,0)\n"},
		{-1, 2, "/always=true /unconditional=true (0,0,0)\n"},
	};
	for (const auto &row : rows) {
		EXPECT_EQ(Aac_Disk_Initialize("aac0", row.always, row.unconditional, 0), 0);
		EXPECT_NE(script().find(std::string("disk initialize ") + row.command), std::string::npos)
			<< script();
	}
}

TEST_F(DiskTest, AddressesAreWrittenInDecimal)
{
	answer("");
	const struct {
		int address;
		const char *words;
	} rows[] = {{0, " (0,0,0)\n"},
	            {0x010203, " (1,2,3)\n"},
	            {0xffffff, " (255,255,255)\n"},
	            {-1, " (255,255,255)\n"},
	            {0x7f0a0b0c, " (10,11,12)\n"}};
	for (const auto &row : rows) {
		EXPECT_EQ(Aac_Disk_Initialize("aac0", 0, 0, row.address), 0);
		EXPECT_NE(script().find(row.words), std::string::npos) << script();
		EXPECT_EQ(run_defect("aac0", row.address), 0);
		EXPECT_NE(script().find(row.words), std::string::npos) << script();
		EXPECT_EQ(run_space("aac0", row.address), 0);
		EXPECT_NE(script().find(row.words), std::string::npos) << script();
	}
}

TEST_F(DiskTest, ListsTellTheirNumberOfRecords)
{
	answer("Executing: disk list\n----\n"
	       "0:00:0 Disk N ACME EX10 SA1B 1000 512 Offline YES 320\n"
	       "0:01:0 Disk N ACME EX10 SA1B 1000 512 Offline YES 320\n"
	       "0:02:0 Disk N ACME EX10 SA1B 1000 512 Offline YES 320\n");
	aac_disk *disks = nullptr;
	ASSERT_EQ(Aac_Get_Disk_List("aac0", &disks), 3);
	EXPECT_EQ(disks->C_ID_L, 0);
	EXPECT_EQ(disks->next->C_ID_L, 0x0100);
	EXPECT_EQ(disks->next->next->C_ID_L, 0x0200);
	EXPECT_EQ(disks->next->next->next, nullptr);
	EXPECT_EQ(Aac_Clear_Disk_List(disks), 0);

	answer("Executing: disk show partition\n------\n"
	       "0:00:0 1.0KB:2.0KB 7 Mirror 8 None RW\n"
	       "0:01:0 3.0KB:4.0KB 9 Mirror 8 None RW\n");
	aac_partition *partitions = nullptr;
	ASSERT_EQ(Aac_Disk_Show_Partition("aac0", &partitions), 2);
	EXPECT_EQ(partitions->bContainerID, 7);
	EXPECT_EQ(partitions->next->bContainerID, 9);
	EXPECT_EQ(partitions->next->next, nullptr);
	EXPECT_EQ(Aac_Clear_Disk_Partition_List(partitions), 0);
}

TEST_F(DiskTest, SpaceIsThatOfTheDiskAskedFor)
{
	answer("0:00:0 Free 1.0KB:1.0KB\n"
	       "1:10:3 Free 2.0KB:2.0KB\n"
	       "1:10:3 Container 3.0KB:3.0KB\n"
	       "1:10:3 Free 4.0KB:4.0KB\n"
	       "1:11:3 Free 5.0KB:5.0KB\n"
	       "1:10:4 Free 6.0KB:6.0KB\n"
	       "2:10:3 Free 7.0KB:7.0KB\n");
	aac_space *head = nullptr;
	ASSERT_EQ(Aac_Disk_Show_Space("aac0", 0x010a03, &head), 2);
	EXPECT_EQ(head->nOffset, 2);
	EXPECT_EQ(head->next->nOffset, 4);
	EXPECT_EQ(head->next->next, nullptr);
	EXPECT_EQ(Aac_Clear_Disk_Space_List(head), 0);

	EXPECT_EQ(run_space("aac0", 0), 1);
	EXPECT_EQ(run_space("aac0", 0x020a03), 1);
	EXPECT_EQ(run_space("aac0", 0x020a04), 0);
	EXPECT_EQ(run_space("aac0", -1), 0);
}

TEST_F(DiskTest, RecordsBeforeAnErrorStayWithTheCaller)
{
	answer("0:00:0 Free 1.0KB:1.0KB\n"
	       "0:00:0 Free 2.0KB:2.0KB\n"
	       "Command Error: <The specified device was not found.>\n"
	       "0:00:0 Free 3.0KB:3.0KB\n");
	aac_space *spaces = nullptr;
	EXPECT_EQ(Aac_Disk_Show_Space("aac0", 0, &spaces), -2);
	ASSERT_NE(spaces, nullptr);
	ASSERT_NE(spaces->next, nullptr);
	EXPECT_EQ(spaces->next->nOffset, 2);
	EXPECT_EQ(spaces->next->next, nullptr);
	Aac_Clear_Disk_Space_List(spaces);

	answer("Executing: disk show partition\n------\n"
	       "0:00:0 1.0KB:2.0KB 7 Mirror 8 None RW\n"
	       "Command Error: <x>\n");
	aac_partition *partitions = nullptr;
	EXPECT_EQ(Aac_Disk_Show_Partition("aac0", &partitions), -300);
	ASSERT_NE(partitions, nullptr);
	EXPECT_EQ(partitions->next, nullptr);
	Aac_Clear_Disk_Partition_List(partitions);
}

TEST_F(DiskTest, DefectsAreHandedOut)
{
	answer("Number of PRIMARY defects on drive: 3\nNumber of GROWN defects on drive: 14\n");
	int primary = NOT_SET;
	int grown = NOT_SET;
	EXPECT_EQ(Aac_Disk_Show_Defect("aac0", 0, &primary, &grown), 0);
	EXPECT_EQ(primary, 3);
	EXPECT_EQ(grown, 14);

	answer("Number of PRIMARY defects on drive: 3\nCommand Error: <parameter error>\n");
	EXPECT_EQ(Aac_Disk_Show_Defect("aac0", 0, &primary, &grown), -6);
	EXPECT_EQ(primary, 3);
	EXPECT_EQ(grown, -1);
}

struct code_row_t {
	const char *error;
	int list;
	int initialize;
	int defect;
	int space;
	int partition;
};

constexpr code_row_t CODES[] = {
	{"<The requested controller is of the wrong type.>", -100, -300, -100, -100, -100},
	{"<Adapter must be opened before this command is used.>", -100, -300, -100, -100, -100},
	{"<The requested controller does not exist.>", -100, -300, -100, -100, -100},
	{"<Another application has opened the controller.>", -200, -300, -200, -200, -200},
	{"<The specified channel was not found on the controller.>", -300, -2, -2, -2, -2},
	{"<The specified device was not found.>", -300, -2, -2, -2, -2},
	{"<The device detected a bad status.>", -300, -300, -50, -300, -300},
	{"<There is a parameter error.>", -300, -300, -6, -300, -300},
	{"<Anything else.>", -300, -300, -300, -300, -300},
};

TEST_F(DiskTest, CodesOfTheToolsErrors)
{
	for (const auto &row : CODES) {
		SCOPED_TRACE(row.error);
		answer("Executing: open \"aac0\"\n\nAAC0>\nExecuting: disk initialize\nCommand Error: " +
		       std::string(row.error) + "\n\nAAC0>\n");
		const int expected[] = {row.list, row.initialize, row.defect, row.space, row.partition};
		for (size_t i = 0; i < std::size(OPERATIONS); i++)
			EXPECT_EQ(OPERATIONS[i].run("aac0"), expected[i]) << OPERATIONS[i].name;
	}
}

TEST_F(DiskTest, InitializeDoesNotTellThatTheControllerCouldNotBeOpened)
{
	answer("Executing: open \"aac9\"\n"
	       "Command Error: <The requested controller does not exist.>\n\nCLI>\n"
	       "Executing: disk initialize (0,1,0)\n"
	       "Command Error: <Adapter must be opened before this command is used.>\n");
	EXPECT_EQ(Aac_Disk_Initialize("aac9", 0, 0, 0x0100), 0);
}

TEST(DiskLists, EmptyOnesCanBeReleased)
{
	EXPECT_EQ(Aac_Clear_Disk_List(nullptr), 0);
	EXPECT_EQ(Aac_Clear_Disk_Space_List(nullptr), 0);
	EXPECT_EQ(Aac_Clear_Disk_Partition_List(nullptr), 0);
}

} // namespace
