// SPDX-License-Identifier: Apache-2.0
// What the tool says about disks, free areas, pieces of disks and tasks: each case of answers/disks.cases,
// answers/spaces.cases and so on is an answer of the tool and what it means: a line with the parser's result,
// then a line a record with every field, separated by '|'. Addresses are hexadecimal: two digits each for
// channel, ID and LUN. The free areas asked for are those of the disk 0:01:0.
#include "../cases.h"
#include "site.h"

#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_task.h"

#include <algorithm>
#include <locale.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

namespace fs = std::filesystem;

namespace
{

std::string formatted(const char *format, ...) __attribute__((format(printf, 1, 2)));

std::string formatted(const char *format, ...)
{
	char text[512];
	va_list arguments;
	va_start(arguments, format);
	vsnprintf(text, sizeof text, format, arguments);
	va_end(arguments);
	return text;
}

unsigned hexadecimal(int address)
{
	return static_cast<unsigned>(address);
}

std::string line(const aac_disk &disk)
{
	return formatted("%06x|%s|%s|%d|%lld|%d|%d|%d|%d\n", hexadecimal(disk.C_ID_L), disk.VendorID,
	                 disk.ProductID, disk.Device_Type, disk.Blocks, disk.BytesPerBlock, disk.Usage,
	                 disk.Shared, disk.Rate);
}

std::string line(const aac_space &space)
{
	return formatted("%d|%d\n", space.nOffset, space.nFreeSpace);
}

std::string line(const aac_partition &partition)
{
	return formatted("%06x|%lld|%lld|%d|%d|%d|%d|%d\n", hexadecimal(partition.C_ID_L), partition.nOffset,
	                 partition.nSize, partition.bContainerID, partition.ContainerType,
	                 partition.nMultilevelContainerID, partition.nMultilevelContainerType,
	                 partition.nReadWriteAttribute);
}

std::string line(const aac_task &task)
{
	// The fraction comes from a decimal comma or point, but is printed with a point.
	std::string done = formatted("%g", static_cast<double>(task.Done));
	std::replace(done.begin(), done.end(), ',', '.');
	return formatted("%d|%d|%s|%d|%d\n", task.TaskId, task.Function, done.c_str(), task.ContainerID,
	                 task.State);
}

// Parses the file and releases the list.
template <typename Record>
std::string described(const std::string &file, int (*parse)(const char *, Record **), int (*clear)(Record *))
{
	Record *head = nullptr;
	std::string text = "result " + std::to_string(parse(file.c_str(), &head)) + "\n";
	for (const Record *record = head; record; record = record->next)
		text += line(*record);
	EXPECT_EQ(clear(head), 0);
	return text;
}

int parse_spaces(const char *file, aac_space **head)
{
	return AnalyzeDiskShowSpaceFile(file, 0, 1, 0, head);
}

struct kind_t {
	const char *name;
	std::string (*describe)(const std::string &file);
};

const kind_t KINDS[] = {
	{"disks",
         [](const std::string &file) { return described(file, AnalyzeDiskFile, Aac_Clear_Disk_List); }},
	{"spaces",
         [](const std::string &file) { return described(file, parse_spaces, Aac_Clear_Disk_Space_List); }},
	{"partitions",
         [](const std::string &file) {
		 return described(file, AnalyzePartitionFile, Aac_Clear_Disk_Partition_List);
	 }},
	{"tasks",
         [](const std::string &file) { return described(file, AnalyzeTaskFile, Aac_Clear_Task_List); }},
};

struct answer_t {
	const kind_t *kind;
	Case row;
};

// For a test's name in a report; of its bytes some are not set.
void PrintTo(const answer_t &answer, std::ostream *stream)
{
	*stream << answer.kind->name << ' ' << answer.row.name;
}

std::vector<answer_t> answers()
{
	std::vector<answer_t> found;
	for (const kind_t &kind : KINDS)
		for (const Case &row :
		     read_cases(std::string(HWRAID_DIRECTORY "/answers/") + kind.name + ".cases"))
			found.push_back({&kind, row});
	return found;
}

class Answer : public SiteTest, public testing::WithParamInterface<answer_t>
{
};

TEST_P(Answer, MeansWhatIsWrittenBesideIt)
{
	write_file(site_ / "answer", GetParam().row.text);
	EXPECT_EQ(GetParam().kind->describe((site_ / "answer").string()), GetParam().row.meaning);
}

INSTANTIATE_TEST_SUITE_P(Files, Answer, testing::ValuesIn(answers()),
                         [](const testing::TestParamInfo<answer_t> &row) {
				 return as_test_name(std::string(row.param.kind->name) + "_" +
	                                             row.param.row.name);
			 });

// ---- locale ----

// A locale of our own, so that none has to be installed.
constexpr char COMMA_LOCALE[] =
	"LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping 3;3\nEND LC_NUMERIC\n";

class DecimalComma : public SiteTest
{
protected:
	void SetUp() override
	{
		SiteTest::SetUp();
		write_file(site_ / "source", COMMA_LOCALE);
		// The categories that the source lacks are warnings, and status 1.
		const std::string command = "localedef -c -i " + (site_ / "source").string() + " " +
		                            (site_ / "comma").string() + " >/dev/null 2>&1";
		const int status = system(command.c_str());
		ASSERT_TRUE(fs::exists(site_ / "comma" / "LC_NUMERIC")) << "localedef: " << status;
		setenv("LOCPATH", site_.c_str(), 1);
		ASSERT_NE(setlocale(LC_NUMERIC, "comma"), nullptr);
		ASSERT_STREQ(localeconv()->decimal_point, ",");
	}
	void TearDown() override
	{
		setlocale(LC_NUMERIC, "C");
		unsetenv("LOCPATH");
		SiteTest::TearDown();
	}

	std::string read_in(const char *locale, const answer_t &answer)
	{
		setlocale(LC_NUMERIC, locale);
		return answer.kind->describe((site_ / "answer").string());
	}
};

TEST_F(DecimalComma, ChangesNoNumber)
{
	for (const answer_t &answer : answers()) {
		write_file(site_ / "answer", answer.row.text);
		EXPECT_EQ(read_in("comma", answer), read_in("C", answer)) << answer.row.name;
	}
}

// Neither does a comma become one.
TEST_F(DecimalComma, IsNotReadAsOne)
{
	write_file(site_ / "answer", "0:01:0 Free 1,5GB:2,0GB\n");
	EXPECT_EQ(KINDS[1].describe((site_ / "answer").string()), "result 0\n1|-1\n");
	write_file(site_ / "answer", "Executing: task list\n----\n3 Rebuild 45,5% 2 RUN\n");
	EXPECT_EQ(KINDS[3].describe((site_ / "answer").string()), "result 0\n3|3|0.45|0|-1\n");
}

// ---- files ----

TEST(AnswerFile, ThatIsMissingFails)
{
	for (const kind_t &kind : KINDS)
		EXPECT_EQ(kind.describe("/no/such/file"), "result -1\n") << kind.name;
}

// ---- long lines ----

// A row of each kind, followed by blanks up to the length, newline included.
struct long_row_t {
	const char *head; // what stands before the rows
	const char *row;
	const char *record;
	const char *rest_record; // what the rest of a cut line, "0:01:0", reads as in this table
};

const long_row_t LONG_ROWS[] = {
	{"Executing: disk list\n----\n", "0:01:0 Disk N ACME EX10 SA1B 1000 512 Offline YES 320",
         "000100|ACME|EX10|0|1000|512|4|1|320\n", "000100|||-1|0|0|-1|-1|0\n"},
	{"", "0:01:0 Free 1.5GB:2.0GB", "1572864|2097152\n", ""},
	{"Executing: disk show partition\n------\n", "0:01:0 1.5GB:2.0GB 7 Mirror 8 None RW",
         "000100|1572864|2097152|7|1|8|0|3\n", "000100|0|0|0|-1|0|-1|0\n"},
	{"Executing: task list\n----\n", "3 Rebuild 45% 2 RUN", "3|3|0.45|2|2\n", "0|-1|1|0|-1\n"},
};

std::string padded(std::string text, size_t length)
{
	text.resize(length, ' ');
	return text;
}

class LongLine : public SiteTest, public testing::WithParamInterface<size_t>
{
protected:
	const kind_t &kind() { return KINDS[GetParam()]; }
	const long_row_t &row() { return LONG_ROWS[GetParam()]; }
	// What the text reads as within the table, a row behind it.
	std::string read(const std::string &text)
	{
		write_file(site_ / "answer", row().head + text + row().row + "\n");
		return kind().describe((site_ / "answer").string());
	}
};

TEST_P(LongLine, OfFiveHundredAndElevenCharactersIsWhole)
{
	EXPECT_EQ(read(padded(row().row, 510) + "\n"),
	          std::string("result 0\n") + row().record + row().record);
}

// Only the newline is left for the next line: where a table ends at a blank line, it ends here.
TEST_P(LongLine, OfFiveHundredAndTwelveCharactersLeavesItsNewline)
{
	const bool ends = std::string(kind().name) == "disks" || std::string(kind().name) == "tasks";
	EXPECT_EQ(read(padded(row().row, 511) + "\n"),
	          std::string("result 0\n") + row().record + (ends ? "" : row().record));
}

TEST_P(LongLine, GoesOnAsTheNextLine)
{
	EXPECT_EQ(read(padded(row().row, 511) + row().row + "\n"),
	          std::string("result 0\n") + row().record + row().record + row().record);
	EXPECT_EQ(read(padded(row().row, 511) + "0:01:0\n"),
	          std::string("result 0\n") + row().record + row().rest_record + row().record);
	// Its blanks go like those of every line.
	EXPECT_EQ(read(padded(row().row, 600) + row().row + "\n"),
	          std::string("result 0\n") + row().record + row().record + row().record);
}

// A piece of a line that is all blanks is cleaned to nothing, and that ends every table.
TEST_P(LongLine, EndsTheTableWithAPieceOfBlanks)
{
	EXPECT_EQ(read(padded(row().row, 511 + 511) + "\n"), std::string("result 0\n") + row().record);
	EXPECT_EQ(read(padded(row().row, 511 + 511) + row().row + "\n"),
	          std::string("result 0\n") + row().record);
}

TEST_P(LongLine, WithAnErrorBehindTheLimitIsOne)
{
	// Before the table, where all four look for errors.
	write_file(site_ / "answer", std::string(511, 'x') + "Command Error: <x>\n");
	EXPECT_EQ(kind().describe((site_ / "answer").string()), "result -300\n");
	write_file(site_ / "answer", std::string(510, 'x') + "Command Error: <x>\n");
	EXPECT_EQ(kind().describe((site_ / "answer").string()), "result 0\n");
}

TEST_P(LongLine, WithAnErrorTextBehindTheLimitIsAnotherError)
{
	const std::string text = "<Another application has opened th";
	const size_t room = 511 - text.size();
	write_file(site_ / "answer", padded("Command Error: ", room) + text + "e controller.>\n");
	EXPECT_EQ(kind().describe((site_ / "answer").string()), "result -200\n");
	write_file(site_ / "answer", padded("Command Error: ", room + 1) + text + "e controller.>\n");
	EXPECT_EQ(kind().describe((site_ / "answer").string()), "result -300\n");
}

INSTANTIATE_TEST_SUITE_P(Tables, LongLine, testing::Range<size_t>(0, 4),
                         [](const testing::TestParamInfo<size_t> &row) {
				 return std::string(KINDS[row.param].name);
			 });

} // namespace
