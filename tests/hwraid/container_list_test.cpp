// SPDX-License-Identifier: Apache-2.0
// Container listings: each case of answers/containers.cases is an answer of the tool and what it means: a
// line with the parser's result, then a line a record as in described.h. The stand-in tool knows the hot
// spare 1:N:0 for a container N that is even, and none for others.
//
// Below them, what is too long, too large or too broken for such a file.
#include "../cases.h"
#include "described.h"
#include "site.h"
#include "spoken_names.h"

#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_public.h"

#include <algorithm>
#include <limits.h>
#include <locale.h>
#include <random>
#include <string.h>

namespace fs = std::filesystem;

namespace
{

const std::string HEAD = "Executing: open \"aac0\"\n\nAAC0>\nExecuting: container list\n"
			 "Num          Total  Oth Stripe          Scsi   Partition\n"
			 "Label Type   Size   Ctr Size   Usage   C:ID:L Offset:Size\n"
			 "----- ------ ------ --- ------ ------- ------ -------------\n";
const std::string TAIL = "\n\nAAC0>\n";
const std::string MIRROR = "0    Mirror 33.9GB            Open    0:00:0 64.0KB:33.9GB\n"
			   "/dev/sda             data             0:01:0 64.0KB:33.9GB\n";
const std::string VOLUME = "1    Volume 10.0GB            Valid   1:01:0 64.0KB:10.0GB\n";
const std::string PROMPT = "( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";

// Both without a tool to ask for hot spares.
const std::string MIRROR_RECORD = "0|2|0:0:0,0:1:0|1|34713|0|5|-1|data\n";
const std::string VOLUME_RECORD = "1|1|1:1:0|4|10240|0|9|-1|\n";

class ContainerListTest : public SiteTest
{
protected:
	void TearDown() override
	{
		release();
		use_names(names_t::FRESH);
		SiteTest::TearDown();
	}

	void release()
	{
		EXPECT_EQ(Aac_Clear_Container_List(list_), 0);
		list_ = nullptr;
	}
	// Queries for hot spares fail at once, and cost nothing: there is no name for their script.
	static void without_tool() { use_names(names_t::EMPTY); }
	// Even numbers have a hot spare, odd ones none; all scripts are kept.
	void know_hot_spares();
	std::string scripts() const { return read_file(site_ / "scripts"); }

	int parse_file(const fs::path &path, const char *controller = "aac0")
	{
		return Get_Container_List_From_File(controller, path.c_str(), &list_);
	}
	// The parser's result and the records of a whole output.
	std::string parsed(const std::string &output, const char *controller = "aac0")
	{
		release();
		write_file(site_ / "listing", output);
		const int result = parse_file(site_ / "listing", controller);
		return "result " + std::to_string(result) + "\n" + described(list_);
	}
	// The records of containers, within an otherwise perfect output.
	std::string records(const std::string &containers)
	{
		const std::string text = parsed(HEAD + containers + TAIL);
		EXPECT_EQ(text.substr(0, 9), "result 0\n");
		return text.substr(std::min<size_t>(text.size(), 9));
	}

	aac_container *list_ = nullptr;
};

void ContainerListTest::know_hot_spares()
{
	const std::string script = (site_ / "script").string();
	tool("cat >" + script + "; cat " + script + " >>" + script + "s\n" +
	     "while read -r container show failover number; do [ \"$show\" = show ] && break; done <" +
	     script + "\n" +
	     "echo \"Executing: container show failover $number\"\n"
	     "echo 'Container    Scsi C:ID:L'\n"
	     "echo '--------- ----------------------------------'\n"
	     "if [ $((number % 2)) = 0 ]; then echo \"    $number      1:$number:0\"\n"
	     "else echo \"    $number     --- No Devices Assigned ---\"; fi\n");
}

// ---- listings and what they mean ----

class ContainerListing : public ContainerListTest, public testing::WithParamInterface<Case>
{
};

TEST_P(ContainerListing, MeansWhatIsWrittenBesideIt)
{
	know_hot_spares();
	EXPECT_EQ(parsed(GetParam().text), GetParam().meaning);
	EXPECT_EQ(pContainerHeader, list_);
}

INSTANTIATE_TEST_SUITE_P(Containers, ContainerListing,
                         testing::ValuesIn(read_cases(HWRAID_DIRECTORY "/answers/containers.cases")),
                         case_test_name);

TEST_F(ContainerListTest, ControllersNameDecidesWhereItEnds)
{
	without_tool();
	const struct {
		const char *controller;
		const char *prompt;
		bool ends;
	} rows[] = {
		{"aac0", "AAC0>", true},
		{"AAC0", "aac0>", true},
		{"aac1", "AAC0>", false},
		{"aac", "AAC0>", false},
		{"aac0>", "AAC0>", false},
		{"aac0", "AAC0", false},
		{"my raid", "MY RAID>", true},
		{"0", "0> list", true},
		{"\\\\.\\aac0", "\\\\.\\AAC0>", true},
		{"a[0-9]*", "AAC0>", false},
		{"a[0-9]*", "A[0-9]*>", true},
	};
	for (const auto &row : rows) {
		const std::string text =
			parsed(HEAD + MIRROR + "\n" + row.prompt + "\n\n" + VOLUME, row.controller);
		EXPECT_EQ(text, "result 0\n" + MIRROR_RECORD + (row.ends ? "" : VOLUME_RECORD))
			<< row.controller << " " << row.prompt;
	}
}

// ---- hot spares ----

TEST_F(ContainerListTest, HotSpareOfEachRecordIsAskedForInTurn)
{
	know_hot_spares();
	records(MIRROR +
	        "\n2    Stripe 67.8GB     64KB   Open\n/dev/sdc             big\n"
	        "24    Mirror 33.9GB            Open    0:04:0 64.0KB:33.9GB\n"
	        "64    Mirror 33.9GB            Open    0:04:0 64.0KB:33.9GB\n"
	        "25    Mirror 33.9GB            Open    1:04:0 64.0KB:33.9GB\n"
	        "\nno container\n\n" +
	        VOLUME);
	std::string expected;
	for (const char *number : {"0", "2", "24", "25", "1"})
		expected += std::string("open aac0\ncontainer show failover ") + number + "\n" +
		            std::string(43, ' ') + "\n" + std::string(4, ' ') + "\nexit\n";
	EXPECT_EQ(scripts(), expected);
}

TEST_F(ContainerListTest, NothingIsAskedForWithoutARecord)
{
	EXPECT_EQ(records("64   Mirror\n\nno container\n\n-1   Mirror\n"), "");
	EXPECT_FALSE(tool_ran());
}

TEST_F(ContainerListTest, HotSpareIsTheAnswerIfItIsNoError)
{
	const std::string rule = "--------- ----------------------------------\n";
	const struct {
		std::string answer;
		int hot_spare;
	} rows[] = {
		{rule + "    0      0:02:0\n", 0x000200},
		{rule + "    0      3:15:7\n", 0x030F07},
		{rule + "    0      0:00:0\n", 0},
		{rule, 0},
		{"Executing: container show failover 0\n", 0},
		{rule + "    0     --- No Devices Assigned ---\n", -1},
		{rule + "    0     nothing\n", -1},
		{rule + "    0     C:ID:L\n", -1},
		{"Command Error: <The specified container was not found.>\n", -1},
		{"Command Error: <The requested controller does not exist.>\n", -1},
		{"Command Error: <Something else.>\n", -1},
	};
	for (const auto &row : rows) {
		answer(row.answer);
		records(MIRROR);
		ASSERT_NE(list_, nullptr);
		EXPECT_EQ(list_->HotSpare, row.hot_spare) << row.answer;
	}
	tool("exit 1\n");
	EXPECT_EQ(records(MIRROR), MIRROR_RECORD) << "a failed query fails nothing else";
}

// ---- many members ----

std::string with_members(int count)
{
	std::string text = "0    Volume 10.0GB            Valid   0:00:0 64.0KB:10.0GB\n";
	char row[32];
	for (int i = 1; i < count; i++) {
		snprintf(row, sizeof row, "   0:%02x:0\n", static_cast<unsigned>(i));
		text += row;
	}
	return text;
}

TEST_F(ContainerListTest, MembersBeyondSixtyFourAreOnlyCounted)
{
	without_tool();
	for (const int count : {1, 63, 64, 65, 100}) {
		records(with_members(count));
		ASSERT_NE(list_, nullptr);
		EXPECT_EQ(list_->nDiskNumber, count);
		for (int i = 0; i < 64; i++)
			EXPECT_EQ(list_->C_ID_L[i], i < count ? i << 8 : AAC_NO_MEMBER)
				<< count << " slot " << i;
	}
}

std::string with_containers(int count)
{
	std::string text = "2    Stripe 67.8GB     64KB   Open\n/dev/sdc big\n";
	for (int i = 0; i < count; i++)
		text += std::to_string(24 + i % 40) + " Mirror\n";
	return text;
}

TEST_F(ContainerListTest, MemberContainersBeyondSixtyFourAreOnlyCounted)
{
	without_tool();
	for (const int count : {1, 40, 64, 65, 100}) {
		records(with_containers(count));
		ASSERT_NE(list_, nullptr);
		EXPECT_EQ(list_->nDiskNumber, count);
		for (int i = 0; i < 64; i++)
			EXPECT_EQ(list_->C_ID_L[i], i < count ? 24 + i % 40 : AAC_NO_MEMBER)
				<< count << " slot " << i;
		int found = 0;
		for (const aac_container *record = list_->next; record; record = record->next)
			EXPECT_EQ(record->nCntnerID, 24 + found++ % 40);
		EXPECT_EQ(found, count) << "each has a record of its own";
	}
}

TEST_F(ContainerListTest, EveryNumberCanBeTaken)
{
	without_tool();
	std::string containers;
	std::string expected;
	for (int i = 0; i < 64; i++) {
		containers += std::to_string(i) + "    Mirror 512MB  Open 0:00:0 64.0KB:512MB\n\n";
		expected += std::to_string(i) + "|1|0:0:0|1|512|0|5|-1|\n";
	}
	EXPECT_EQ(records(containers), expected);
}

// ---- long paragraphs and lines ----

// Lines that mean nothing, and at the very end of so many characters a member address.
std::string padded(std::string text, size_t size)
{
	while (text.size() + 200 < size)
		text += std::string(99, 'x') + "\n";
	return text + std::string(size - 6 - text.size(), ' ') + "0:0f:0";
}

TEST_F(ContainerListTest, ParagraphOf2047CharactersIsWhole)
{
	without_tool();
	const std::string longest = padded(MIRROR, 2047);
	EXPECT_EQ(records(longest + "\n\n" + VOLUME),
	          "0|3|0:0:0,0:1:0,0:15:0|1|34713|0|5|-1|data\n" + VOLUME_RECORD);
	EXPECT_EQ(records(VOLUME + "\n" + longest),
	          VOLUME_RECORD + "0|3|0:0:0,0:1:0,0:15:0|1|34713|0|5|-1|data\n");
	EXPECT_EQ(parsed(HEAD + longest), "result 0\n0|3|0:0:0,0:1:0,0:15:0|1|34713|0|5|-1|data\n");
}

TEST_F(ContainerListTest, LongerParagraphIsSkipped)
{
	without_tool();
	for (const size_t size : {2048U, 2049U, 4096U, 65537U, 1000000U}) {
		const std::string longer = padded(MIRROR, size);
		EXPECT_EQ(records(longer + "\n\n" + VOLUME), VOLUME_RECORD) << size;
		EXPECT_EQ(records(VOLUME + "\n" + longer), VOLUME_RECORD) << size;
		EXPECT_EQ(parsed(HEAD + longer), "result 0\n") << size;
	}
}

TEST_F(ContainerListTest, MultiLevelParagraphOf2047CharactersIsWhole)
{
	without_tool();
	std::string longest = "2    Stripe 67.8GB     64KB   Open\n/dev/sdc big\n";
	std::string expected = "2|3|24,25,63|3|69427|64|5|-1|big\n";
	for (const char *number : {"24", "25"}) {
		const std::string first = number + std::string("   Volume 512MB  Open 0:01:0 64.0KB:512MB\n");
		longest += padded(first, 900) + "\n";
		expected += number + std::string("|2|0:1:0,0:15:0|4|512|0|5|-1|\n");
	}
	longest = padded(longest + "63   Mirror 512MB  Open 0:02:0 64.0KB:512MB\n", 2047);
	EXPECT_EQ(records(longest), expected + "63|2|0:2:0,0:15:0|1|512|0|5|-1|\n");
	EXPECT_EQ(records(longest + "x"), "") << "one character more";
}

TEST_F(ContainerListTest, MemberContainersTextOf1023CharactersIsWhole)
{
	without_tool();
	const std::string head = "2    Stripe 67.8GB     64KB   Open\n/dev/sdc big\n";
	const std::string first = "24    Mirror 33.9GB            Open    0:04:0 64.0KB:33.9GB\n";
	EXPECT_EQ(records(head + padded(first, 1023)),
	          "2|1|24|3|69427|64|5|-1|big\n24|2|0:4:0,0:15:0|1|34713|0|5|-1|\n");
}

TEST_F(ContainerListTest, LongerTextOfAMemberContainerHarmsNoOther)
{
	without_tool();
	const std::string head = "2    Stripe 67.8GB     64KB   Open\n/dev/sdc big\n";
	const std::string first = "24    Mirror 33.9GB            Open    0:04:0 64.0KB:33.9GB\n";
	const std::string last = "\n25    Mirror 33.9GB            Open    0:05:0 64.0KB:33.9GB\n";
	for (const size_t size : {1024U, 1025U, 1500U, 1900U}) {
		records(head + padded(first, size) + last);
		ASSERT_NE(list_, nullptr);
		ASSERT_NE(list_->next, nullptr);
		EXPECT_EQ(members(*list_), "24,25") << size;
		const aac_container *final = list_->next;
		while (final->next)
			final = final->next;
		EXPECT_EQ(described(final), "25|1|0:5:0|1|34713|0|5|-1|\n") << size;
	}
}

// A text of so many characters, blanks in the middle.
std::string spread(const std::string &front, const std::string &back, size_t size)
{
	return front + std::string(size - front.size() - back.size(), ' ') + back;
}

TEST_F(ContainerListTest, LinesAreCutAt511Characters)
{
	without_tool();
	const struct {
		const char *what;
		std::string lines;
		const char *record;
	} rows[] = {
		{"first, whole", spread("0    Mirror 512MB  Open", "0:00:0 64.0KB:512MB", 511),
	         "0|1|0:0:0|1|512|0|5|-1|\n"},
		{"first, cut before its last letter: a multi-level container",
	         spread("0    Mirror 512MB  Open", "0:00:0 64.0KB:512MB", 512), "0|0||1|512|0|5|-1|\n"},
		{"label, whole", MIRROR.substr(0, 59) + spread("/dev/sda data", "0:01:0", 511),
	         "0|2|0:0:0,0:1:0|1|34713|0|5|-1|data\n"},
		{"label, cut in its address", MIRROR.substr(0, 59) + spread("/dev/sda data", "0:01:0", 512),
	         "0|1|0:0:0|1|34713|0|5|-1|data\n"},
		{"member, whole", MIRROR + spread("", "0:0f:0", 511),
	         "0|3|0:0:0,0:1:0,0:15:0|1|34713|0|5|-1|data\n"},
		{"member, cut", MIRROR + spread("", "0:0f:0", 512), "0|2|0:0:0,0:1:0|1|34713|0|5|-1|data\n"},
		{"member, cut off, and another line",
	         MIRROR + spread("0:02:0 x", "0:0f:0", 1200) + "\n0:03:0\n",
	         "0|4|0:0:0,0:1:0,0:2:0,0:3:0|1|34713|0|5|-1|data\n"},
	};
	for (const auto &row : rows)
		EXPECT_EQ(records(row.lines), row.record) << row.what;
}

TEST_F(ContainerListTest, LongLabelsAndDeviceWords)
{
	without_tool();
	const std::string ordinary = "0    Mirror 512MB  Open 0:00:0 64.0KB:512MB\n";
	const std::string multi = "2    Stripe 67.8GB     64KB   Open\n";
	const std::string x31(31, 'x');
	const auto x = [](size_t count) { return std::string(count, 'x'); };
	const struct {
		const char *what;
		std::string lines;
		std::string record;
	} rows[] = {
		{"label of 450", ordinary + x(450) + " 0:01:0", "0|2|0:0:0,0:1:0|1|512|0|5|-1|" + x31},
		{"label of 600: its address is beyond the cut", ordinary + x(600) + " 0:01:0",
	         "0|1|0:0:0|1|512|0|5|-1|"},
		{"the same of a multi-level container", multi + x(600), "2|0||3|69427|64|5|-1|" + x31},
		{"of 32", multi + x(32), "2|0||3|69427|64|5|-1|" + x31},
		{"of 31", multi + x31, "2|0||3|69427|64|5|-1|" + x31},
		{"of 30", multi + x(30), "2|0||3|69427|64|5|-1|" + x(30)},
		{"device word of 2", ordinary + "/x data 0:01:0", "0|2|0:0:0,0:1:0|1|512|0|5|-1|data"},
		{"device word of 400", ordinary + "/" + x(399) + " data 0:01:0",
	         "0|2|0:0:0,0:1:0|1|512|0|5|-1|data"},
		{"device word of 600", ordinary + "/" + x(599) + " data 0:01:0", "0|1|0:0:0|1|512|0|5|-1|"},
		{"both long", ordinary + "/" + x(199) + "\t" + x(200) + "\t0:01:0",
	         "0|2|0:0:0,0:1:0|1|512|0|5|-1|" + x31},
	};
	for (const auto &row : rows)
		EXPECT_EQ(records(row.lines), row.record + "\n") << row.what;
}

// ---- outputs ----

TEST_F(ContainerListTest, FileThatIsMissingFails)
{
	EXPECT_EQ(parse_file("/no/such/file"), -1);
	EXPECT_EQ(list_, nullptr);
	EXPECT_EQ(pContainerHeader, nullptr);
}

TEST_F(ContainerListTest, OutputsFromNothingToAMebibyteAreRead)
{
	without_tool();
	const std::string listing = "\n" + HEAD + MIRROR + TAIL;
	const auto output = [&listing](size_t size) {
		return std::string(size - listing.size(), '#') + listing;
	};
	EXPECT_EQ(parsed(""), "result -1\n");
	EXPECT_EQ(parsed("x"), "result -1\n");
	EXPECT_EQ(parsed("\n"), "result -1\n");
	EXPECT_EQ(parsed(output(0x0FFFFF)), "result 0\n" + MIRROR_RECORD);
	EXPECT_EQ(parsed(output(0x100000)), "result 0\n" + MIRROR_RECORD);
	EXPECT_EQ(parsed(output(0x100001)), "result -1\n");
	EXPECT_EQ(parsed(output(0x200000)), "result -1\n");
}

TEST_F(ContainerListTest, OutputEndsAtANul)
{
	without_tool();
	const std::string nul(1, '\0');
	const std::string half = "0|1|0:0:0|1|34713|0|5|-1|\n";
	EXPECT_EQ(parsed(nul + HEAD + MIRROR + TAIL), "result -1\n");
	EXPECT_EQ(parsed(HEAD.substr(0, 40) + nul + HEAD.substr(40) + MIRROR + TAIL), "result -1\n");
	EXPECT_EQ(parsed(HEAD + nul + MIRROR + TAIL), "result -1\n");
	EXPECT_EQ(parsed(HEAD + MIRROR + "\n" + nul + VOLUME + TAIL), "result 0\n" + MIRROR_RECORD);
	EXPECT_EQ(parsed(HEAD + MIRROR.substr(0, 80) + nul + MIRROR.substr(80) + TAIL), "result 0\n" + half);
	EXPECT_EQ(parsed(HEAD + MIRROR + TAIL + nul + "\nCommand Error: <Something>\n"),
	          "result 0\n" + MIRROR_RECORD);
}

// What a prompt leaves behind may be a prompt itself, wherever it was cut in two.
TEST_F(ContainerListTest, PagerPromptWithinAnother)
{
	without_tool();
	for (size_t at = 1; at < PROMPT.size(); at++) {
		// The blanks behind the inner one would go with it, and leave half of the outer one.
		if (PROMPT[at] == ' ')
			continue;
		const std::string nested = PROMPT.substr(0, at) + PROMPT + PROMPT.substr(at);
		EXPECT_EQ(records(nested + MIRROR.substr(0, 90) + nested + nested + MIRROR.substr(90)),
		          MIRROR_RECORD)
			<< at;
	}
}

// A parser that starts again at the top for each paragraph, or for each prompt, would take hours.
TEST_F(ContainerListTest, LargeOutputsTakeNoLongerThanTheirSize)
{
	without_tool();
	const size_t room = 0x100000 - HEAD.size() - MIRROR.size() - TAIL.size() - 200;
	std::string containers;
	while (containers.size() < room)
		containers += "xy\n\n";
	EXPECT_EQ(records(containers + MIRROR), MIRROR_RECORD);

	std::string pager;
	while (pager.size() + PROMPT.size() < room)
		pager += PROMPT;
	EXPECT_EQ(records(pager + MIRROR), MIRROR_RECORD);

	std::string front;
	std::string back;
	while (front.size() + back.size() + PROMPT.size() < room) {
		front += PROMPT.substr(0, 20);
		back += PROMPT.substr(20);
	}
	EXPECT_EQ(records(front + back + MIRROR), MIRROR_RECORD) << "one within the other";
}

// ---- broken outputs ----

void expect_sound(const aac_container *head, const std::string &what)
{
	for (; head; head = head->next) {
		EXPECT_TRUE(head->Container_Type >= -1 && head->Container_Type <= 5) << what;
		EXPECT_TRUE(head->Usage >= -1 && head->Usage <= 9) << what;
		EXPECT_TRUE(head->TotalSize >= 0 && head->nDiskNumber >= 0) << what;
		EXPECT_LT(strnlen(head->Label, sizeof head->Label), sizeof head->Label) << what;
		EXPECT_EQ(head->HotSpare, -1) << what;
	}
}

TEST_F(ContainerListTest, NoiseBehindTheRuleIsNoContainer)
{
	without_tool();
	std::mt19937 random(4711);
	for (int round = 0; round < 50; round++) {
		std::string noise;
		for (int i = 0; i < 3000; i++)
			noise += static_cast<char>(128 + random() % 128);
		for (int i = 0; i < 40; i++)
			noise[random() % noise.size()] = '\n';
		EXPECT_EQ(records("\n" + noise + "\n\n" + MIRROR), MIRROR_RECORD) << round;
		EXPECT_EQ(parsed(noise), "result -1\n") << round;
	}
}

TEST_F(ContainerListTest, DamagedListingsAreSurvived)
{
	without_tool();
	const std::string sound = HEAD + MIRROR + "\n" + VOLUME + "\n" + with_containers(10) +
	                          "                      0:04:0\n\n" + padded(MIRROR, 700) + TAIL;
	std::mt19937 random(42);
	const std::string favourites("\0\n\n\n\t\r 0123456789:./-GMKBx", 26);
	for (int round = 0; round < 1000; round++) {
		std::string text = sound;
		for (auto hits = 1 + random() % 30; hits > 0; hits--) {
			const size_t from = random() % 8 ? HEAD.size() : 0;
			char &hit = text[from + random() % (text.size() - from)];
			hit = random() % 4 ? favourites[random() % favourites.size()]
			                   : static_cast<char>(random());
		}
		const std::string result = parsed(text);
		EXPECT_TRUE(result.compare(0, 9, "result 0\n") == 0 || result.compare(0, 9, "result -1") == 0)
			<< result;
		expect_sound(list_, "round " + std::to_string(round));
	}
}

TEST_F(ContainerListTest, EveryBeginningOfAListingIsSurvived)
{
	without_tool();
	const std::string sound = HEAD + MIRROR + "\n" + with_containers(3) + TAIL;
	for (size_t size = 0; size < sound.size(); size++) {
		const std::string result = parsed(sound.substr(0, size));
		EXPECT_EQ(result.substr(0, result.find('\n')), size > HEAD.size() ? "result 0" : "result -1")
			<< size;
		expect_sound(list_, "the first " + std::to_string(size));
	}
}

TEST_F(ContainerListTest, NothingOfAnEarlierParseIsLeft)
{
	without_tool();
	const std::string failures[] = {
		"", "x", HEAD, "\nCommand Error: <Something>\n" + HEAD + MIRROR + TAIL, PROMPT,
	};
	for (const std::string &failure : failures) {
		EXPECT_EQ(parsed(HEAD + MIRROR + "\n" + VOLUME + TAIL),
		          "result 0\n" + MIRROR_RECORD + VOLUME_RECORD);
		parsed(failure);
		EXPECT_EQ(list_, nullptr) << failure;
		EXPECT_EQ(pContainerHeader, nullptr) << failure;
	}
	EXPECT_EQ(records(MIRROR), MIRROR_RECORD);
	EXPECT_EQ(records(VOLUME), VOLUME_RECORD);
	EXPECT_EQ(records(""), "") << "an empty listing";
	EXPECT_EQ(pContainerHeader, nullptr);
	EXPECT_EQ(parse_file("/no/such/file"), -1);
	EXPECT_EQ(list_, nullptr);
}

// ---- the host's locale ----

// A locale with a decimal comma, made in this directory, for as long as this lives.
class CommaLocale
{
public:
	explicit CommaLocale(const fs::path &directory)
	{
		write_file(directory / "comma.src", "LC_NUMERIC\ndecimal_point \"<U002C>\"\n"
		                                    "thousands_sep \"<U002E>\"\ngrouping 3\n"
		                                    "END LC_NUMERIC\n");
		// It warns of all that is missing.
		const std::string command = "localedef -c -i " + (directory / "comma.src").string() + " " +
		                            (directory / "comma").string() + " >" +
		                            (directory / "log").string() + " 2>&1";
		made_ = system(command.c_str()) != -1;
		setenv("LOCPATH", directory.c_str(), 1);
		chosen_ = setlocale(LC_NUMERIC, "comma") != nullptr;
	}
	~CommaLocale()
	{
		setlocale(LC_NUMERIC, "C");
		unsetenv("LOCPATH");
	}
	CommaLocale(const CommaLocale &) = delete;
	CommaLocale &operator=(const CommaLocale &) = delete;

	bool stands() const { return made_ && chosen_ && strcmp(localeconv()->decimal_point, ",") == 0; }

private:
	bool made_ = false;
	bool chosen_ = false;
};

TEST_F(ContainerListTest, DecimalCommaOfTheHostMakesNoDifference)
{
	without_tool();
	const CommaLocale comma(site_);
	ASSERT_TRUE(comma.stands()) << read_file(site_ / "log");
	EXPECT_EQ(records(MIRROR + "\n" + VOLUME), MIRROR_RECORD + VOLUME_RECORD);
	EXPECT_EQ(records("1    Mirror 33,9GB            Open    0:00:0 64.0KB:33.9GB\n"),
	          "1|1|0:0:0|1|0|0|5|-1|\n");
}

} // namespace
