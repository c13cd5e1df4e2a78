// SPDX-License-Identifier: Apache-2.0
// The operations on containers against a stand-in tool: what they tell it, and what its answers mean.
#include "site.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_public.h"

#include <limits.h>
#include <string.h>

namespace
{

const std::string PROMPT = "( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";
const std::string RULE = "--------- ----------------------------------\n";
const std::string DISK = "Executing: container list 0\nNum          Total\nLabel Type   Size\n----- ------\n";

struct operation_t {
	const char *name;
	int (*run)(const char *controller, int container, int disk);
	const char *command; // # is the container's number
	int done;            // of an answer that says nothing
};

int list(const char *controller, int, int)
{
	aac_container *head = nullptr;
	const int result = Aac_Get_Container_List(controller, &head);
	Aac_Clear_Container_List(head);
	return result;
}

int disk_name(const char *controller, int container, int)
{
	char name[256];
	return Aac_Get_Container_Corresponding_Disk_Name(controller, container, name);
}

int delete_container(const char *controller, int container, int)
{
	return Aac_Container_Delete(controller, 0, container);
}

int delete_always(const char *controller, int container, int)
{
	return Aac_Container_Delete(controller, 1, container);
}

int show_failover(const char *controller, int container, int)
{
	return Aac_Container_Show_Failover(controller, container);
}

const operation_t LIST = {"list", list, "container list", -1};
const operation_t DISK_NAME = {"disk name", disk_name, "container list #", -300};
const operation_t DELETE = {"delete", delete_container, "container delete /always=false #", 0};
const operation_t DELETE_ALWAYS = {"delete always", delete_always, "container delete /always=true #", 0};
const operation_t SET = {"set failover", Aac_Container_Set_Failover, "container set failover # (1,2,3)", 0};
const operation_t SHOW = {"show failover", show_failover, "container show failover #", 0};
const operation_t REMOVE = {"remove failover", Aac_Container_Remove_Failover,
                            "container remove failover # (1,2,3)", 0};
const operation_t ALL[] = {LIST, DISK_NAME, DELETE, DELETE_ALWAYS, SET, SHOW, REMOVE};
const int DISK_123 = 0x010203;

std::string script_of(const std::string &controller, const std::string &command)
{
	return "open " + controller + "\n" + command +
	       "\n                                           \n    \nexit\n";
}

std::string command_of(const operation_t &operation, int container)
{
	std::string command = operation.command;
	const size_t number = command.find('#');
	if (number != std::string::npos)
		command.replace(number, 1, std::to_string(container));
	return command;
}

class ContainerTest : public SiteTest
{
protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		answer("");
	}
	int answered(const operation_t &operation, const std::string &text)
	{
		answer(text);
		return operation.run("aac0", 7, DISK_123);
	}
};

// ---- scripts ----

TEST_F(ContainerTest, ScriptIsWhatTheToolIsToDo)
{
	for (const auto &operation : ALL) {
		for (const int container : {0, 7, 63, -1, INT_MAX, INT_MIN}) {
			EXPECT_EQ(operation.run("aac0", container, DISK_123), operation.done);
			EXPECT_EQ(script(), script_of("aac0", command_of(operation, container)))
				<< operation.name;
		}
	}
}

TEST_F(ContainerTest, AnythingButZeroDeletesAlways)
{
	const struct {
		int flag;
		const char *word;
	} rows[] = {{0, "false"}, {1, "true"}, {2, "true"}, {-1, "true"}, {INT_MIN, "true"}, {256, "true"}};
	for (const auto &row : rows) {
		EXPECT_EQ(Aac_Container_Delete("aac0", row.flag, 5), 0);
		EXPECT_EQ(script(),
		          script_of("aac0", std::string("container delete /always=") + row.word + " 5"));
	}
}

TEST_F(ContainerTest, DisksAreWrittenInDecimal)
{
	const struct {
		int disk;
		const char *text;
	} rows[] = {
		{0, "(0,0,0)"},           {0x000200, "(0,2,0)"},
		{0x0A0B0C, "(10,11,12)"}, {0xFFFFFF, "(255,255,255)"},
		{0x7F010203, "(1,2,3)"},  {-1, "(255,255,255)"},
	};
	for (const auto &row : rows) {
		EXPECT_EQ(Aac_Container_Set_Failover("aac1", 5, row.disk), 0);
		EXPECT_EQ(script(), script_of("aac1", std::string("container set failover 5 ") + row.text));
		EXPECT_EQ(Aac_Container_Remove_Failover("aac1", 5, row.disk), 0);
		EXPECT_EQ(script(),
		          script_of("aac1", std::string("container remove failover 5 ") + row.text));
	}
}

TEST_F(ContainerTest, ControllersNameIsNotLookedAt)
{
	for (const std::string name :
	     {"", "\\\\.\\aac0", "two words", "%s%n", "$(touch ran) `x` ; 'x' \"y\""}) {
		for (const auto &operation : ALL) {
			operation.run(name.c_str(), 7, DISK_123);
			EXPECT_EQ(script(), script_of(name, command_of(operation, 7))) << operation.name;
		}
	}
}

TEST_F(ContainerTest, ScriptThatDoesNotFitIsNotRun)
{
	const std::string name(9000, 'x');
	for (const auto &operation : ALL)
		EXPECT_EQ(operation.run(name.c_str(), 7, DISK_123), -1) << operation.name;
	EXPECT_FALSE(tool_ran());
}

// ---- runs that fail ----

class BrokenContainerRun : public ContainerTest
{
protected:
	void expect_failures(const char *what)
	{
		for (const auto &operation : ALL)
			EXPECT_EQ(operation.run("aac0", 7, DISK_123), -1) << operation.name << ": " << what;
	}
};

TEST_F(BrokenContainerRun, Programs)
{
	answer(RULE + "7 0:02:0\n");
	filter("cat \"$1\" >\"$2\"; exit 1\n");
	expect_failures("the filter fails");
	filter("exit 0\n");
	expect_failures("the filter makes no file");
	tool("exit 1\n");
	expect_failures("the tool fails");
	std::filesystem::remove(site_ / "tool");
	expect_failures("there is no tool");
	std::filesystem::remove(site_ / "filter");
	expect_failures("there is no filter");
}

TEST_F(BrokenContainerRun, WithoutAConfiguration)
{
	std::filesystem::remove(site_ / "config");
	expect_failures("no configuration");
	EXPECT_FALSE(tool_ran());
}

TEST_F(BrokenContainerRun, WithoutAWorkingDirectory)
{
	std::filesystem::remove(directory_);
	expect_failures("no working directory");
	EXPECT_FALSE(tool_ran());
	std::filesystem::create_directory(directory_);
}

TEST(ContainerFile, ThatIsMissingFails)
{
	char name[256] = "x";
	EXPECT_EQ(AnalyzeContainerDeleteFile("/no/such/file"), -1);
	EXPECT_EQ(AnalyzeContainerSetFailoverFile("/no/such/file"), -1);
	EXPECT_EQ(AnalyzeContainerShowFailoverFile("/no/such/file"), -1);
	EXPECT_EQ(AnalyzeContainerDiskNameFile("/no/such/file", name), -1);
}

// ---- the tool's errors ----

struct error_row_t {
	const char *text;
	int list;
	int remove; // delete
	int set;    // and remove failover
	int show;
	int name;
};

// What the tool says behind "Command Error: ".
const error_row_t ERRORS[] = {
	{"<The requested controller is of the wrong type.>", -100, -100, -100, -100, -100},
	{"<Adapter must be opened before this command is used.>", -100, -100, -100, -100, -100},
	{"<The requested controller does not exist.>", -100, -100, -100, -100, -100},
	{"<Another application has opened the controller.>", -200, -200, -200, -200, -200},
	{"<Another application has opened this container.>", -200, -200, -200, -200, -200},
	{"<The specified container was not found.>", -300, -5, -5, -5, -300},
	{"<Container not found.>", -300, -300, -300, -300, -5},
	{"<The specified channel was not found.>", -300, -300, -2, -2, -300},
	{"<The specified device was not found.>", -300, -300, -2, -2, -300},
	{"<At least one of devices you specified is not a fialover disk.>", -300, -300, -90, -300, -300},
	{"<At least one of devices you specified is not a failover disk.>", -300, -300, -300, -300, -300},
	{"<the requested controller does not exist.>", -300, -300, -300, -300, -300},
	{"The requested controller does not exist.", -300, -300, -300, -300, -300},
	{"<Another application has opened.>", -300, -300, -300, -300, -300},
	{"<Something else.>", -300, -300, -300, -300, -300},
	{"", -300, -300, -300, -300, -300},
};

class ContainerErrors : public ContainerTest
{
protected:
	void expect_codes(const std::string &text, const error_row_t &row)
	{
		EXPECT_EQ(answered(LIST, text), row.list) << text;
		EXPECT_EQ(answered(DELETE, text), row.remove) << text;
		EXPECT_EQ(answered(SET, text), row.set) << text;
		EXPECT_EQ(answered(REMOVE, text), row.set) << text;
		EXPECT_EQ(answered(SHOW, text), row.show) << text;
		EXPECT_EQ(answered(DISK_NAME, text), row.name) << text;
	}
};

TEST_F(ContainerErrors, AreCodes)
{
	for (const auto &row : ERRORS)
		expect_codes(std::string("banner\n\nCommand Error: ") + row.text + "\n", row);
}

TEST_F(ContainerErrors, StandBehindThePagerAsWell)
{
	for (const auto &row : ERRORS)
		expect_codes("banner\n" + PROMPT + " \t Command Error: " + row.text, row);
}

// The list wants them behind "Command Error: ", the other operations anywhere in the line.
TEST_F(ContainerErrors, StandAnywhereInTheLine)
{
	for (auto row : ERRORS) {
		row.list = -300;
		expect_codes(std::string("\nCommand Error: again: ") + row.text + "\n", row);
	}
}

TEST_F(ContainerErrors, EarlierRowsGoFirst)
{
	const struct {
		const char *line;
		int remove;
		int set;
		int show;
		int name;
	} rows[] = {
		{"<Another application has opened th <The requested controller does not exist", -100, -100,
	         -100, -100},
		{"<The specified container was not found <Another application has opened th", -200, -200,
	         -200, -200},
		{"<The specified device was not found <The specified container was not found", -5, -5, -5,
	         -300},
		{"<At least one of devices you specified is not a fialover disk <The specified channel was "
	         "not found",
	         -300, -2, -2, -300},
		{"Container not found <Another application has opened th", -200, -200, -200, -200},
	};
	for (const auto &row : rows) {
		const std::string text = std::string("Command Error: x") + row.line + "\n";
		EXPECT_EQ(answered(DELETE, text), row.remove) << row.line;
		EXPECT_EQ(answered(SET, text), row.set) << row.line;
		EXPECT_EQ(answered(SHOW, text), row.show) << row.line;
		EXPECT_EQ(answered(DISK_NAME, text), row.name) << row.line;
	}
}

TEST_F(ContainerErrors, OnlyTheFirstLineCounts)
{
	const std::string second = "Command Error: <The specified container was not found.>\n";
	EXPECT_EQ(answered(DELETE, "Command Error: <Something>\n" + second), -300);
	EXPECT_EQ(answered(SET, "Command Error: <The specified device was not found>\n" + second), -2);
	EXPECT_EQ(answered(SHOW, "Command Error: <The specified device was not found>\n" + second), -2);
	EXPECT_EQ(answered(DISK_NAME, "Command Error: <Something>\nContainer not found\n"), -300);
	EXPECT_EQ(answered(DISK_NAME, "Container not found\nCommand Error: <Something>\n"), -5);
}

struct no_error_row_t {
	const char *what;
	std::string text;
	int code; // of deleting, setting and removing
};

TEST_F(ContainerErrors, BeginTheirLine)
{
	const no_error_row_t rows[] = {
		{"nothing", "", 0},
		{"other words", "Executing: container delete 7\n\nAAC0>\n", 0},
		{"within a line", "x Command Error: <The specified container was not found.>\n", 0},
		{"without its words", "<The specified container was not found.>\n", 0},
		{"in other letters", "command error: <The specified container was not found.>\n", 0},
		{"of parsing", "Parsing Error: <The specified container was not found.>\n", 0},
		{"indented", "x\n \t Command Error: <The specified container was not found.>\n", -5},
		{"behind an empty line", "\n\n  \nCommand Error: <The specified container was not found.>\n",
	         -5},
		{"without a line's end", "Command Error: <The specified container was not found", -5},
		{"with a carriage return", "x\r\nCommand Error: <The specified container was not found.>\r\n",
	         -5},
		{"cut off", "Command Erro", 0},
		// A line goes on as the next one after 511 characters.
		{"at character 512",
	         std::string(511, 'x') + "Command Error: <The specified container was not found.>\n", -5},
		{"at character 511",
	         std::string(510, 'x') + "Command Error: <The specified container was not found.>\n", 0},
		{"across the cut",
	         "Command Error: " + std::string(480, 'x') + "<The specified container was not found", -300},
		{"just before the cut",
	         "Command Error: " + std::string(458, 'x') + "<The specified container was not found", -5},
		{"behind the pager, and the pager behind", PROMPT + "Command Error: <Something>" + PROMPT,
	         -300},
		{"cut by the pager",
	         "Command " + PROMPT + "Error: <The specified container was not found.>\n", 0},
	};
	for (const auto &row : rows)
		for (const auto &operation : {DELETE, SET, REMOVE})
			EXPECT_EQ(answered(operation, row.text), row.code)
				<< operation.name << ": " << row.what;
}

// ---- list ----

TEST_F(ContainerTest, ListCountsItsRecords)
{
	answer("Executing: open aac0\nExecuting: container list\nNum\n-----\n"
	       "2    Stripe 67.8GB     64KB   Open\n/dev/sdc             big\n"
	       "24    Mirror 33.9GB            Open    0:04:0 64.0KB:33.9GB\n"
	       "25    Mirror 33.9GB            Open    1:04:0 64.0KB:33.9GB\n\n"
	       "3    Volume 10.0GB            Valid   1:01:0 64.0KB:10.0GB\n\n\nAAC0>\n");
	aac_container *head = nullptr;
	ASSERT_EQ(Aac_Get_Container_List("aac0", &head), 4);
	const aac_container *record = head;
	for (const int number : {2, 24, 25, 3}) {
		ASSERT_NE(record, nullptr);
		EXPECT_EQ(record->nCntnerID, number);
		// The stand-in's only answer holds no table of hot spares.
		EXPECT_EQ(record->HotSpare, 0);
		record = record->next;
	}
	EXPECT_EQ(record, nullptr);
	EXPECT_EQ(Aac_Clear_Container_List(head), 0);
}

TEST_F(ContainerTest, ListWithoutContainers)
{
	const std::string head = "Executing: open aac0\nExecuting: container list\nNum\n-----\n";
	aac_container *records = nullptr;
	answer(head + "\n\nAAC0>\n");
	EXPECT_EQ(Aac_Get_Container_List("aac0", &records), 0);
	EXPECT_EQ(records, nullptr);
	answer(head);
	EXPECT_EQ(Aac_Get_Container_List("aac0", &records), -1) << "nothing at all behind the rule";
	EXPECT_EQ(records, nullptr);
	EXPECT_EQ(script(), script_of("aac0", "container list"));
}

TEST_F(ContainerTest, ListOfAnEarlierCallIsNotHandedOutAgain)
{
	const std::string sound = "\nExecuting: container list\n-----\n5    Volume 1.0GB\n\n\nAAC0>\n";
	const auto expect_records = [this](const char *controller, int count) {
		aac_container *records = nullptr;
		EXPECT_EQ(Aac_Get_Container_List(controller, &records), count) << read_file(site_ / "answer");
		EXPECT_EQ(records != nullptr, count > 0) << read_file(site_ / "answer");
		if (count > 0)
			Aac_Clear_Container_List(records);
	};
	const struct {
		const char *failure;
		int result;
	} rows[] = {{"", -1}, {"x", -1}, {"\nCommand Error: <Something>\n", -300}};
	for (const auto &row : rows) {
		answer(sound);
		expect_records("aac0", 1);
		answer(row.failure);
		expect_records("aac0", row.result);
	}
	answer(sound);
	expect_records("aac0", 1);
	expect_records(std::string(9000, 'x').c_str(), -1);
	expect_records("aac0", 1);
	tool("exit 1\n");
	expect_records("aac0", -1);
	tool("cat " + (site_ / "answer").string() + "\n");
	expect_records("aac0", 1);
	std::filesystem::remove(site_ / "filter");
	expect_records("aac0", -1);
}

TEST(ContainerList, OfNothingIsReleased)
{
	EXPECT_EQ(Aac_Clear_Container_List(nullptr), 0);
}

// ---- show failover ----

struct failover_row_t {
	std::string answer;
	int disk;
};

class ShowFailover : public ContainerTest
{
};

TEST_F(ShowFailover, IsTheLineUnderTheRule)
{
	const failover_row_t rows[] = {
		{"    0      0:02:0\n", 0x000200},
		{"    0      0:02:0", 0x000200},
		{"\t0\t0:02:0\n", 0x000200},
		{"0:02:0\n", 0x000200},
		{"    0:02:0\n", 0x000200},
		{"    0      1:2:3 \t\n", 0x010203},
		{"    0      0:00:0\n", 0},
		{"    0      8:15:7\n", 0x080F07},
		{"    0      0:08:0\n", 0x000800},
		{"    0      0:09:0\n", 0x000900},
		{"    0      0:010:011\n", 0x000A0B},
		{"    0      255:255:255\n", 0xFFFFFF},
		{"    0      0:02:0 1:03:0\n", 0x000200},
		{"    0      0:02:0,\n", 0x000200},
		{PROMPT + "    0      0:02:0\n", 0x000200},
		{"    0      0:02:0\n    0      0:03:0\n", 0x000200},
		{"    0      x0:02:0\n", -300},
		{"    0      (0:02:0)\n", -300},
		// The way back from the colon stops at a 9.
		{"    0      9:01:0\n", 0x090100},
		{"    0      19:01:0\n", 0x090100},
		{"    0      191:01:0\n", 0x5B0100},
		{"    0      180:01:0\n", 0xB40100},
		{"9:01:0\n", 0x090100},
		{"19:01:0\n", 0x090100},
	};
	for (const auto &row : rows)
		EXPECT_EQ(answered(SHOW, "Executing: container show failover 0\n" + RULE + row.answer),
		          row.disk)
			<< row.answer;
}

TEST_F(ShowFailover, AnswersThatAreNoDisk)
{
	const failover_row_t rows[] = {
		{"    0     --- No Devices Assigned ---\n", -10},
		{"--- No Devices Assigned ---", -10},
		{"    0     -- No Devices Assigned --\n", -5},
		{"    0     --- no devices assigned ---\n", -5},
		{"    0     nothing\n", -5},
		{"\n", -5},
		{"\n    0      0:02:0\n", -5},
		{"AAC0>\n", -5},
		{"    0 --- No Devices Assigned --- :\n", -300},
		{"    0     C:ID:L\n", -300},
		{":\n", -300},
		{":02:0\n", -300},
		{"    0      0:\n", -300},
		{"    0      0:02\n", -300},
		{"    0      0:02:\n", -300},
		{"    0      0:02:x\n", -300},
		{"    0      0:x:0\n", -300},
		{"    0      0:0a:0\n", -300},
		{"Command Error: <The specified container was not found.>\n", -300},
	};
	for (const auto &row : rows)
		EXPECT_EQ(answered(SHOW, RULE + row.answer), row.disk) << row.answer;
}

TEST_F(ShowFailover, WithoutTheTableIsDiskZero)
{
	const failover_row_t rows[] = {
		{"", 0},
		{"Executing: container show failover 0\n\nAAC0>\n", 0},
		{"    0      0:02:0\n", 0},
		{RULE, 0},
		{RULE.substr(0, RULE.size() - 1), 0},
		{"heading\n" + RULE, 0},
		{RULE.substr(1) + "    0      0:02:0\n", 0},
		{RULE.substr(0, RULE.size() - 2) + "\n    0      0:02:0\n", 0},
		{"---------  ----------------------------------\n    0      0:02:0\n", 0},
		// The rule need not be alone.
		{"--" + RULE.substr(0, RULE.size() - 1) + "---- x\n    0      0:02:0\n", 0x000200},
		{PROMPT + RULE + "    0      0:02:0\n", 0x000200},
		{"   " + RULE + "    0      0:02:0\n", 0x000200},
		// But within the first 511 characters of a line, or the next.
		{std::string(466, 'x') + RULE + "    0      0:02:0\n", 0x000200},
		{std::string(467, 'x') + RULE + "    0      0:02:0\n", -5}, // its line's end is the answer
		{std::string(468, 'x') + RULE + "    0      0:02:0\n", 0},
		{std::string(511, 'x') + RULE + "    0      0:02:0\n", 0x000200},
	};
	for (const auto &row : rows)
		EXPECT_EQ(answered(SHOW, row.answer), row.disk) << row.answer;
}

TEST_F(ShowFailover, ErrorsAreLookedForAboveTheRule)
{
	const std::string error = "Command Error: <The specified container was not found.>\n";
	EXPECT_EQ(answered(SHOW, error + RULE + "    0      0:02:0\n"), -5);
	EXPECT_EQ(answered(SHOW, "x " + error + RULE + "    0      0:02:0\n"), 0x000200);
	EXPECT_EQ(answered(SHOW, RULE + "    0      0:02:0\n" + error), 0x000200);
}

// ---- device names ----

struct name_row_t {
	std::string answer;
	int result;
	std::string name;
};

class ContainerDiskName : public ContainerTest
{
protected:
	void expect_name(const name_row_t &row)
	{
		char name[257];
		memset(name, 'x', sizeof name);
		answer(row.answer);
		EXPECT_EQ(Aac_Get_Container_Corresponding_Disk_Name("aac0", 0, name), row.result)
			<< row.answer;
		ASSERT_LT(strnlen(name, 256), 256U);
		EXPECT_EQ(name, row.name) << row.answer;
		EXPECT_EQ(name[256], 'x') << "behind the buffer";
	}
};

TEST_F(ContainerDiskName, IsTheFirstWordOfTheDevicesLine)
{
	const std::string row0 = "0    Mirror 74.5GB            Open    0:02:0 64.0KB:74.5GB\n";
	const name_row_t rows[] = {
		{DISK + row0 + "/dev/sda             data             0:03:0 64.0KB:74.5GB\n", 0, "/dev/sda"},
		{DISK + " " + row0 + " /dev/sda             data\n", 0, "/dev/sda"},
		{DISK + row0 + "\t /dev/sda\tdata\n", 0, "/dev/sda"},
		{DISK + row0 + PROMPT + "  /dev/sda data\n", 0, "/dev/sda"},
		{DISK + row0 + "/dev/sda ", 0, "/dev/sda"},
		{DISK + row0 + "/dev/sda", 0, "/dev/sda"},
		{DISK + row0 + "/dev/sda\n", 0, "/dev/sda\n"},
		{DISK + row0 + "/dev/sda\r\n", 0, "/dev/sda\r\n"},
		{DISK + row0 + "/dev/sda data\n/dev/sdb data\n", 0, "/dev/sda"},
		{DISK + row0 + "\nx\n\n/dev/sda data\n", 0, "/dev/sda"},
		{DISK + "/ data\n", 0, "/"},
		{"Label Type\n/dev/sda data\n", 0, "/dev/sda"},
		{PROMPT + " Label Type   Size\n/dev/sda data\n", 0, "/dev/sda"},
		{"  Label Type   Size\n/dev/sda data\n", 0, "/dev/sda"},
	};
	for (const auto &row : rows)
		expect_name(row);
}

TEST_F(ContainerDiskName, LongNames)
{
	const auto word = [](size_t length) { return "/" + std::string(length - 1, 'd'); };
	for (const size_t length : {254U, 255U}) {
		expect_name({DISK + word(length) + " data\n", 0, word(length)});
		expect_name({DISK + word(length), 0, word(length)});
	}
	for (const size_t length : {256U, 257U, 400U, 511U, 600U, 5000U}) {
		expect_name({DISK + word(length) + " data\n", 0, word(255)});
		expect_name({DISK + word(length) + "\n", 0, word(255)});
	}
	expect_name({DISK + word(254) + "\n", 0, word(254) + "\n"});
	expect_name({DISK + word(255) + "\n", 0, word(255)});
}

TEST_F(ContainerDiskName, IsMissing)
{
	const std::string device = "/dev/sda             data             0:03:0 64.0KB:74.5GB\n";
	const name_row_t rows[] = {
		{"", -300, ""},
		{"\n\n", -300, ""},
		{device, -300, ""},
		{DISK, -300, ""},
		{DISK + "0    Mirror\ndata\n", -300, ""},
		{DISK + "0    Mirror\ndata /dev/sda\n", -300, ""},
		{device + DISK, -300, ""},
		{"Label  Type\n" + device, -300, ""},
		{"label type\n" + device, -300, ""},
		{"x Label Type\n" + device, -300, ""},
	};
	for (const auto &row : rows)
		expect_name(row);
}

TEST_F(ContainerDiskName, ErrorsAreLookedForAboveTheHeading)
{
	const name_row_t rows[] = {
		{"Container not found\n" + DISK + "/dev/sda x\n", -5, ""},
		{"x Container not found x", -5, ""},
		{"Command Error: <Container not found>\n", -5, ""},
		{"x Command Error\n" + DISK + "/dev/sda x\n", -300, ""},
		{"x <The requested controller does not exist\n" + DISK + "/dev/sda x\n", -100, ""},
		{"x <The requested controller is of the wrong type", -100, ""},
		{"x <Adapter must be opened before this command is used", -100, ""},
		{"x <Another application has opened the\n", -200, ""},
		{"Container not found <Another application has opened the\n", -200, ""},
		{"container not found\n" + DISK + "/dev/sda x\n", 0, "/dev/sda"},
		{DISK + "Container not found\nCommand Error\n/dev/sda x\n", 0, "/dev/sda"},
		{DISK + "x <The requested controller does not exist\n", -300, ""},
	};
	for (const auto &row : rows)
		expect_name(row);
}

TEST_F(ContainerDiskName, NeedsABuffer)
{
	answer(DISK + "/dev/sda data\n");
	EXPECT_EQ(Aac_Get_Container_Corresponding_Disk_Name("aac0", 0, nullptr), -1);
}

} // namespace
