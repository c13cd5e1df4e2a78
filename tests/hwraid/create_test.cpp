// SPDX-License-Identifier: Apache-2.0
// The creation of containers against a stand-in tool: the command that the arguments make, byte for byte, and
// what the tool's answers mean.
#include "site.h"

#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_raid.h"

#include <limits.h>
#include <utility>

namespace
{

const std::string PROMPT = "( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";

// What stands behind the command, by level; the blanks answer the pager.
const std::string END0 = "\n                                          \n     \nexit\n         \n";
const std::string END1 = "\n                        \n    \nexit\n        \n";
const std::string END5 = "\n                                \n    \nexit\n        \n";
const std::string END10 = "\n                                         \n    \nexit\n        \n";

int disk(int channel, int id, int lun)
{
	return channel << 16 | id << 8 | lun;
}

class CreateTest : public SiteTest
{
protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		answer("");
	}
	// The command of the last run, between the opening of the controller and the end of its level.
	std::string command(const std::string &end, const std::string &controller = "aac0") const
	{
		const std::string text = script();
		const std::string begin = "open " + controller + "\n";
		EXPECT_EQ(text.substr(0, begin.size()), begin);
		if (text.size() < begin.size() + end.size())
			return text;
		EXPECT_EQ(text.substr(text.size() - end.size()), end);
		return text.substr(begin.size(), text.size() - begin.size() - end.size());
	}
};

TEST(CreateScript, EndsInCountedBlanks)
{
	const auto end = [](size_t first, size_t second, size_t last) {
		return "\n" + std::string(first, ' ') + "\n" + std::string(second, ' ') + "\nexit\n" +
		       std::string(last, ' ') + "\n";
	};
	EXPECT_EQ(END0, end(42, 5, 9));
	EXPECT_EQ(END1, end(24, 4, 8));
	EXPECT_EQ(END5, end(32, 4, 8));
	EXPECT_EQ(END10, end(41, 4, 8));
}

// ---- whole scripts ----

TEST_F(CreateTest, Raid0)
{
	EXPECT_EQ(Aac_Create_Raid0("aac0", "data", 64, disk(1, 2, 0), 1024, disk(3, 4, 5), disk(6, 7, 8), -1),
	          0);
	EXPECT_EQ(script(), "open aac0\ncontainer create strip /stripe_size=64K /label=\"data\" "
	                    "((1,2,0),1024M) (1,4,5) (6,7,8) " +
	                            END0);
	EXPECT_EQ(Aac_Create_Raid0("aac0", nullptr, 0, disk(1, 2, 0), 0, disk(3, 4, 0), -1), 0);
	EXPECT_EQ(script(), "open aac0\ncontainer create strip ((1,2,0)) (1,4,0) " + END0);
}

TEST_F(CreateTest, Raid1)
{
	EXPECT_EQ(Aac_Create_Raid1("aac0", "data", 1, disk(0, 0, 0), 1024, disk(0, 1, 0)), 0);
	EXPECT_EQ(script(), "open aac0\ncontainer create new_mirror /label=\"data\" /quick_init=true "
	                    "((0,0,0),1024M) (0,1,0) " +
	                            END1);
	EXPECT_EQ(Aac_Create_Raid1("aac0", nullptr, 0, disk(1, 2, 3), 0, disk(4, 5, 6)), 0);
	EXPECT_EQ(script(), "open aac0\ncontainer create new_mirror ((1,2,3)) (4,5,6) " + END1);
}

TEST_F(CreateTest, Raid5)
{
	EXPECT_EQ(Aac_Create_Raid5("aac0", "data", 1, 32, disk(0, 0, 0), 1024, disk(0, 1, 0), disk(0, 2, 0),
	                           disk(0, 3, 0), disk(1, 4, 2), -1),
	          0);
	EXPECT_EQ(script(),
	          "open aac0\ncontainer create raid5 /stripe_size=32K /label=\"data\" /quick_init=true "
	          "((0,0,0),1024M) (0,1,0) (0,2,0)(0,3,0) (1,4,2) " +
	                  END5);
	EXPECT_EQ(Aac_Create_Raid5("aac0", nullptr, 0, 0, disk(1, 2, 3), 0, disk(4, 5, 6), disk(7, 8, 9), -1),
	          0);
	EXPECT_EQ(script(), "open aac0\ncontainer create raid5 ((1,2,3)) (4,5,6) (7,8,9)" + END5);
}

TEST_F(CreateTest, Raid10)
{
	EXPECT_EQ(Aac_Create_Raid10("aac0", "data", 16, 1, 2, 30, 63, -1), 0);
	EXPECT_EQ(script(),
	          "open aac0\ncontainer create mstrip /stripe_size=16K /label=\"data\" 1 2 30 63 " + END10);
	EXPECT_EQ(Aac_Create_Raid10("aac0", nullptr, 0, 0, 1, -1), 0);
	EXPECT_EQ(script(), "open aac0\ncontainer create mstrip 0 1 " + END10);
}

// ---- one argument at a time ----

// 0 and -1 leave it to the tool; everything else is the tool's to judge.
struct number_row_t {
	int value;
	const char *text; // null: left out
};

const number_row_t NUMBERS[] = {
	{0, nullptr},
	{-1, nullptr},
	{-2, "-2"},
	{1, "1"},
	{16, "16"},
	{64, "64"},
	{65, "65"},
	{1024, "1024"},
	{INT_MAX, "2147483647"},
	{INT_MIN, "-2147483648"},
};

std::string piece(const char *front, const char *text, const char *back)
{
	return text ? std::string(front) + text + back : "";
}

TEST_F(CreateTest, Sizes)
{
	for (const auto &row : NUMBERS) {
		const std::string size = piece(",", row.text, "M");
		EXPECT_EQ(Aac_Create_Raid0("aac0", "", 0, 0, row.value, 0, -1), 0);
		EXPECT_EQ(command(END0), "container create strip ((0,0,0)" + size + ") (0,0,0) ");
		EXPECT_EQ(Aac_Create_Raid1("aac0", "", 0, 0, row.value, 0), 0);
		EXPECT_EQ(command(END1), "container create new_mirror ((0,0,0)" + size + ") (0,0,0) ");
		EXPECT_EQ(Aac_Create_Raid5("aac0", "", 0, 0, 0, row.value, 0, 0, -1), 0);
		EXPECT_EQ(command(END5), "container create raid5 ((0,0,0)" + size + ") (0,0,0) (0,0,0)");
	}
}

TEST_F(CreateTest, StripeSizes)
{
	for (const auto &row : NUMBERS) {
		const std::string stripe = piece("/stripe_size=", row.text, "K ");
		EXPECT_EQ(Aac_Create_Raid0("aac0", "", row.value, 0, 0, 0, -1), 0);
		EXPECT_EQ(command(END0), "container create strip " + stripe + "((0,0,0)) (0,0,0) ");
		EXPECT_EQ(Aac_Create_Raid5("aac0", "", 0, row.value, 0, 0, 0, 0, -1), 0);
		EXPECT_EQ(command(END5), "container create raid5 " + stripe + "((0,0,0)) (0,0,0) (0,0,0)");
		EXPECT_EQ(Aac_Create_Raid10("aac0", "", row.value, 3, 4, -1), 0);
		EXPECT_EQ(command(END10), "container create mstrip " + stripe + "3 4 ");
	}
}

TEST_F(CreateTest, QuickInitialisation)
{
	for (const int flag : {0, 1, -1, 2, 256, INT_MIN}) {
		const std::string quick = flag ? "/quick_init=true " : "";
		EXPECT_EQ(Aac_Create_Raid1("aac0", "", flag, 0, 0, 0), 0);
		EXPECT_EQ(command(END1), "container create new_mirror " + quick + "((0,0,0)) (0,0,0) ");
		EXPECT_EQ(Aac_Create_Raid5("aac0", "", flag, 0, 0, 0, 0, 0, -1), 0);
		EXPECT_EQ(command(END5), "container create raid5 " + quick + "((0,0,0)) (0,0,0) (0,0,0)");
	}
}

TEST_F(CreateTest, Labels)
{
	const std::string sixteen = "0123456789abcdef";
	const struct {
		const char *what;
		std::string label;
		std::string written;
	} rows[] = {
		{"none", "", ""},
		{"of 1", "x", "x"},
		{"of 15", sixteen.substr(1), sixteen.substr(1)},
		{"of 16", sixteen, sixteen},
		{"of 17", sixteen + "g", sixteen},
		{"of 20", sixteen + "ghij", sixteen},
		{"of 255", sixteen + std::string(239, 'x'), sixteen},
		{"of 256", sixteen + std::string(240, 'x'), sixteen},
		{"of 300", sixteen + std::string(284, 'x'), sixteen},
		{"of 100,000", sixteen + std::string(99984, 'x'), sixteen},
		{"of a blank", " ", " "},
		{"with blanks", " my data ", " my data "},
		{"with signs of the tool and of printf", "a\"b /x=%s%n%d", "a\"b /x=%s%n%d"},
		{"with signs of the shell", "$(touch ran)`x`;", "$(touch ran)`x`;"},
	};
	for (const auto &row : rows) {
		const std::string label = row.written.empty() ? "" : "/label=\"" + row.written + "\" ";
		EXPECT_EQ(Aac_Create_Raid0("aac0", row.label.c_str(), 0, 0, 0, 0, -1), 0);
		EXPECT_EQ(command(END0), "container create strip " + label + "((0,0,0)) (0,0,0) ")
			<< row.what;
		EXPECT_EQ(Aac_Create_Raid1("aac0", row.label.c_str(), 0, 0, 0, 0), 0);
		EXPECT_EQ(command(END1), "container create new_mirror " + label + "((0,0,0)) (0,0,0) ")
			<< row.what;
		EXPECT_EQ(Aac_Create_Raid5("aac0", row.label.c_str(), 0, 0, 0, 0, 0, 0, -1), 0);
		EXPECT_EQ(command(END5), "container create raid5 " + label + "((0,0,0)) (0,0,0) (0,0,0)")
			<< row.what;
		EXPECT_EQ(Aac_Create_Raid10("aac0", row.label.c_str(), 0, 3, 4, -1), 0);
		EXPECT_EQ(command(END10), "container create mstrip " + label + "3 4 ") << row.what;
	}
}

// Of a stripe set's second disk the first one's channel is written; everywhere else the disk's own.
TEST_F(CreateTest, Disks)
{
	const int a = disk(255, 254, 253);
	const int b = disk(10, 11, 12);
	const int c = disk(0, 0, 1);
	EXPECT_EQ(Aac_Create_Raid0("aac0", "", 0, a, 0, b, c, b, -1), 0);
	EXPECT_EQ(command(END0), "container create strip ((255,254,253)) (255,11,12) (0,0,1) (10,11,12) ");
	EXPECT_EQ(Aac_Create_Raid1("aac0", "", 0, a, 0, b), 0);
	EXPECT_EQ(command(END1), "container create new_mirror ((255,254,253)) (10,11,12) ");
	EXPECT_EQ(Aac_Create_Raid5("aac0", "", 0, 0, a, 0, b, c, b, a, -1), 0);
	EXPECT_EQ(command(END5),
	          "container create raid5 ((255,254,253)) (10,11,12) (0,0,1)(10,11,12) (255,254,253) ");
}

// -1 ends a variable list, and only there.
TEST_F(CreateTest, NumbersThatAreNoDiskOrContainer)
{
	EXPECT_EQ(Aac_Create_Raid0("aac0", "", 0, -1, 0, -1, -2, 0, -1), 0);
	EXPECT_EQ(command(END0),
	          "container create strip ((255,255,255)) (255,255,255) (255,255,254) (0,0,0) ");
	EXPECT_EQ(Aac_Create_Raid1("aac0", "", 0, -1, 0, -1), 0);
	EXPECT_EQ(command(END1), "container create new_mirror ((255,255,255)) (255,255,255) ");
	EXPECT_EQ(Aac_Create_Raid5("aac0", "", 0, 0, -1, 0, -1, -1, 0x7F000001, -1), 0);
	EXPECT_EQ(command(END5),
	          "container create raid5 ((255,255,255)) (255,255,255) (255,255,255)(0,0,1) ");
	EXPECT_EQ(Aac_Create_Raid10("aac0", "", 0, -1, -1, -2, 0, INT_MAX, INT_MIN, -1), 0);
	EXPECT_EQ(command(END10), "container create mstrip -1 -1 -2 0 2147483647 -2147483648 ");
}

// Calls with so many further disks: channel 1, the ID counting from 0.
template <size_t... I> int raid0_of(std::index_sequence<I...>)
{
	return Aac_Create_Raid0("aac0", "", 0, 0, 0, 0, disk(1, static_cast<int>(I), 0)..., -1);
}
template <size_t... I> int raid5_of(std::index_sequence<I...>)
{
	return Aac_Create_Raid5("aac0", "", 0, 0, 0, 0, 0, 0, disk(1, static_cast<int>(I), 0)..., -1);
}
template <size_t... I> int raid10_of(std::index_sequence<I...>)
{
	return Aac_Create_Raid10("aac0", "", 0, 0, 0, static_cast<int>(I)..., -1);
}

std::string disks_of(int count)
{
	std::string text;
	for (int i = 0; i < count; i++)
		text += "(1," + std::to_string(i) + ",0) ";
	return text;
}

TEST_F(CreateTest, LongLists)
{
	EXPECT_EQ(raid0_of(std::make_index_sequence<1>()), 0);
	EXPECT_EQ(command(END0), "container create strip ((0,0,0)) (0,0,0) " + disks_of(1));
	EXPECT_EQ(raid0_of(std::make_index_sequence<62>()), 0);
	EXPECT_EQ(command(END0), "container create strip ((0,0,0)) (0,0,0) " + disks_of(62));
	EXPECT_EQ(raid0_of(std::make_index_sequence<64>()), 0);
	EXPECT_EQ(command(END0), "container create strip ((0,0,0)) (0,0,0) " + disks_of(64));
	EXPECT_EQ(raid5_of(std::make_index_sequence<1>()), 0);
	EXPECT_EQ(command(END5), "container create raid5 ((0,0,0)) (0,0,0) (0,0,0)" + disks_of(1));
	EXPECT_EQ(raid5_of(std::make_index_sequence<64>()), 0);
	EXPECT_EQ(command(END5), "container create raid5 ((0,0,0)) (0,0,0) (0,0,0)" + disks_of(64));
	EXPECT_EQ(raid10_of(std::make_index_sequence<64>()), 0);
	std::string numbers;
	for (int i = 0; i < 64; i++)
		numbers += std::to_string(i) + " ";
	EXPECT_EQ(command(END10), "container create mstrip 0 0 " + numbers);
}

// 8 KB hold the largest set that a controller can have, many times over.
TEST_F(CreateTest, ScriptThatDoesNotFitIsNotRun)
{
	EXPECT_EQ(raid0_of(std::make_index_sequence<1000>()), -1);
	EXPECT_EQ(raid5_of(std::make_index_sequence<1000>()), -1);
	EXPECT_EQ(raid10_of(std::make_index_sequence<3000>()), -1);
	const std::string controller(9000, 'x');
	EXPECT_EQ(Aac_Create_Raid0(controller.c_str(), "", 0, 0, 0, 0, -1), -1);
	EXPECT_EQ(Aac_Create_Raid1(controller.c_str(), "", 0, 0, 0, 0), -1);
	EXPECT_EQ(Aac_Create_Raid5(controller.c_str(), "", 0, 0, 0, 0, 0, 0, -1), -1);
	EXPECT_EQ(Aac_Create_Raid10(controller.c_str(), "", 0, 0, 0, -1), -1);
	EXPECT_FALSE(tool_ran());
}

// ---- the four levels alike ----

int raid0(const char *controller)
{
	return Aac_Create_Raid0(controller, "", 0, 0, 0, 0, -1);
}
int raid1(const char *controller)
{
	return Aac_Create_Raid1(controller, "", 0, 0, 0, 0);
}
int raid5(const char *controller)
{
	return Aac_Create_Raid5(controller, "", 0, 0, 0, 0, 0, 0, -1);
}
int raid10(const char *controller)
{
	return Aac_Create_Raid10(controller, "", 0, 3, 4, -1);
}

struct level_t {
	const char *name;
	int (*create)(const char *controller);
	std::string command;
};

const level_t LEVELS[] = {
	{"RAID 0", raid0, "container create strip ((0,0,0)) (0,0,0) " + END0},
	{"RAID 1", raid1, "container create new_mirror ((0,0,0)) (0,0,0) " + END1},
	{"RAID 5", raid5, "container create raid5 ((0,0,0)) (0,0,0) (0,0,0)" + END5},
	{"RAID 10", raid10, "container create mstrip 3 4 " + END10},
};

TEST_F(CreateTest, ControllersNameIsNotLookedAt)
{
	for (const std::string name : {"aac1", "", "\\\\.\\aac0", "two words", "%s%n", "$(touch ran)"}) {
		for (const auto &level : LEVELS) {
			EXPECT_EQ(level.create(name.c_str()), 0);
			EXPECT_EQ(script(), "open " + name + "\n" + level.command) << level.name;
		}
	}
}

TEST_F(CreateTest, RunsThatFail)
{
	const auto expect_failures = [](const char *what) {
		for (const auto &level : LEVELS)
			EXPECT_EQ(level.create("aac0"), -1) << level.name << ": " << what;
	};
	filter("cat \"$1\" >\"$2\"; exit 1\n");
	expect_failures("the filter fails");
	filter("exit 0\n");
	expect_failures("the filter makes no file");
	tool("exit 1\n");
	expect_failures("the tool fails");
	std::filesystem::remove(site_ / "tool");
	expect_failures("there is no tool");
}

TEST_F(CreateTest, WithoutAConfigurationOrADirectoryNothingRuns)
{
	std::filesystem::remove(site_ / "config");
	for (const auto &level : LEVELS)
		EXPECT_EQ(level.create("aac0"), -1) << level.name;
	configure("Cli Path:/\nCli Name:true\nFilter Script:true\n");
	std::filesystem::remove(directory_);
	for (const auto &level : LEVELS)
		EXPECT_EQ(level.create("aac0"), -1) << level.name;
	EXPECT_FALSE(tool_ran());
	std::filesystem::create_directory(directory_);
}

// ---- answers ----

struct answer_row_t {
	std::string text;
	int code;
};

class CreateAnswer : public CreateTest
{
protected:
	int meaning(const std::string &text)
	{
		answer(text);
		const int code = Analyze_Create_Raid_Created_File((site_ / "answer").c_str(), 0);
		EXPECT_EQ(Analyze_Create_Raid_Created_File((site_ / "answer").c_str(), 10), code);
		return code;
	}
};

const std::string TOO_MANY =
	"<The operation specified could not be done because it would result in "
	"a disk drive having more than the maximum allowed number of container partitions.>";

// In the order in which they are tried: the first that stands in the line decides.
const answer_row_t ERRORS[] = {
	{"<The requested controller is of the wrong type", -100},
	{"<Adapter must be opened before this command is used", -100},
	{"<The requested controller does not exist", -100},
	{"<Another application has opened th", -200},
	{"<The specified chunk or stripe size is invalid", -3},
	{"bytes cannot be found on device", -30},
	{"<The specified channel was not found on the controller", -30},
	{"<The specified device was not found", -30},
	{"<The specified container was not found", -5},
	{"<The specified container sizes must be the same for stripe sets", -20},
	{TOO_MANY, -70},
	{"<Something else.>", -300},
};

TEST_F(CreateAnswer, ErrorsAreCodesOfEveryLevel)
{
	for (const auto &row : ERRORS) {
		answer("banner\n\nExecuting: container create\nCommand Error: " + row.text + "\n\nAAC0>\n");
		for (const auto &level : LEVELS)
			EXPECT_EQ(level.create("aac0"), row.code) << level.name << ": " << row.text;
	}
}

TEST_F(CreateAnswer, EarlierErrorsGoFirst)
{
	for (size_t first = 0; first < std::size(ERRORS); first++) {
		for (size_t second = first; second < std::size(ERRORS); second++) {
			const auto &row = ERRORS[first];
			const auto &other = ERRORS[second];
			EXPECT_EQ(meaning("Command Error: " + other.text + " " + row.text + "\n"), row.code)
				<< other.text;
			EXPECT_EQ(meaning("Command Error: " + row.text + " " + other.text + "\n"), row.code)
				<< other.text;
		}
	}
}

TEST_F(CreateAnswer, AlmostTheWords)
{
	const answer_row_t rows[] = {
		{"<The specified channel was not found.>", -300},
		{"<the specified device was not found.>", -300},
		{"The specified device was not found.", -300},
		{"<The specified container sizes must be the same.>", -300},
		{"<The specified chunk or stripe sizes", -300},
		{"1024 bytes cannot be found on the device", -300},
		{"<1048576 bytes cannot be found on device (0,1,0).>", -30},
		{"<Another application has opened.>", -300},
		{"", -300},
		// All three pieces of the last, the blank behind the first included, in any order.
		{"<The operation specified could not be done because it would "
	         "a disk drive having more than the maximum allowed container partition",
	         -70},
		{"container partition a disk drive having more than the maximum allowed "
	         "<The operation specified could not be done because it would ",
	         -70},
		{"<The operation specified could not be done because it would have "
	         "a disk drive having more than the maximum allowed",
	         -300},
		{"<The operation specified could not be done because it would have container partition",
	         -300},
		{"a disk drive having more than the maximum allowed container partition", -300},
		{"<The operation specified could not be done because it wouldn't "
	         "a disk drive having more than the maximum allowed container partition",
	         -300},
	};
	for (const auto &row : rows)
		EXPECT_EQ(meaning("Command Error: " + row.text + "\n"), row.code) << row.text;
}

TEST_F(CreateAnswer, SuccessIsTheAbsenceOfErrors)
{
	for (const char *text : {
		     "",
		     "\n",
		     "Executing: container create mstrip 3 4\nContainer 2 created\n\nAAC0>\n",
		     "<The specified device was not found>\n",
		     "Command  Error: x\n",
		     "command error: x\nparsing error: x\n",
		     "Parsing Error x\n",
		     "Command\nError\n",
		     "Command Erro",
	     })
		EXPECT_EQ(meaning(text), 0) << text;
}

TEST_F(CreateAnswer, ErrorsStandAnywhereInTheirLine)
{
	const std::string error = "Command Error: <The specified container was not found.>";
	const answer_row_t rows[] = {
		{error, -5},
		{"x " + error, -5},
		{"AAC0> " + error + "\n", -5},
		{" \t" + error + "\n", -5},
		{"<The specified container was not found.> Command Error\n", -5},
		{PROMPT + "  " + error + "\n", -5},
		{"x\n" + PROMPT + error + "\n", -5},
		{"x " + PROMPT + error + "\n", -5},
		{"\n\n \n" + error + "\n", -5},
		{error + "\r\n", -5},
		// A line goes on as the next one after 511 characters.
		{std::string(458, 'x') + error, -5},
		{std::string(459, 'x') + error, -300},
		{std::string(498, 'x') + error, -300},
		{std::string(499, 'x') + error, 0},
		{std::string(511, 'x') + error, -5},
	};
	for (const auto &row : rows)
		EXPECT_EQ(meaning(row.text), row.code) << row.text;
}

TEST_F(CreateAnswer, OnlyTheFirstErrorCounts)
{
	EXPECT_EQ(
		meaning("Command Error: <Something>\nCommand Error: <The specified device was not found>\n"),
		-300);
	EXPECT_EQ(
		meaning("Command Error: <The specified device was not found>\nCommand Error: <Something>\n"),
		-30);
}

TEST_F(CreateAnswer, ParsingErrors)
{
	const answer_row_t rows[] = {
		{"Parsing Error: <unknown option>\n", -300},
		{"Parsing Error:", -300},
		{"x Parsing Error: x\n", -300},
		{PROMPT + " Parsing Error: x\n", -300},
		{"Parsing Error: x\nCommand Error: <The specified device was not found>\n", -300},
		{"Parsing Error: Command Error: <The specified device was not found>\n", -300},
		{"Command Error: <The specified device was not found> Parsing Error:\n", -300},
		// Reading has stopped by then.
		{"Command Error: <The specified device was not found>\nParsing Error: x\n", -30},
	};
	for (const auto &row : rows)
		EXPECT_EQ(meaning(row.text), row.code) << row.text;
	answer("Executing: container create\nParsing Error: <unknown option>\n");
	for (const auto &level : LEVELS)
		EXPECT_EQ(level.create("aac0"), -300) << level.name;
}

TEST(CreateAnswerFile, ThatIsMissingFails)
{
	EXPECT_EQ(Analyze_Create_Raid_Created_File("/no/such/file", 0), -1);
}

} // namespace
