// SPDX-License-Identifier: Apache-2.0
// The tool's answer to "disk show defect", as a table: each row is a text, its result and the two counts.
#include "site.h"

#include "hwraid/aacraid/aac_disk.h"

#include <limits.h>

namespace
{

struct defect_row_t {
	const char *what;
	std::string text;
	int result;
	int primary;
	int grown;
};

// For a test's name in a report; of its bytes some are padding.
void PrintTo(const defect_row_t &row, std::ostream *stream)
{
	*stream << row.what;
}

const std::string PAGER = "( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";

const defect_row_t ROWS[] = {
	{"both", "Number of PRIMARY defects on drive: 3\nNumber of GROWN defects on drive: 14\n", 0, 3, 14},
	{"both_between_other_lines",
         "Executing: open \"aac0\"\n\nAAC0>\nExecuting: disk show defect (0,1,0)\n\n"
         "Number of PRIMARY defects on drive: 3\nList of them:\n 1 2 3\n\n----\nCLI>\n"
         "Number of GROWN defects on drive: 0\n\nAAC0>\n",
         0, 3, 0},
	{"primary_alone", "Number of PRIMARY defects on drive: 3\n", 0, 3, -1},
	{"grown_alone", "Number of GROWN defects on drive: 5\n", 0, -1, 5},
	{"grown_ends_the_parse",
         "Number of GROWN defects: 5\nNumber of PRIMARY defects: 3\nNumber of GROWN defects: 6\n"
         "Command Error: <x>\n",
         0, -1, 5},
	{"later_primary_counts", "Number of PRIMARY: 3\nNumber of PRIMARY: 4\n", 0, 4, -1},
	{"none", "nothing of that kind\n\n", 0, -1, -1},
	{"empty", "", 0, -1, -1},

	// numbers
	{"first_colon_of_several", "Number of PRIMARY (list: 7): 3\nNumber of GROWN:1:2\n", 0, 7, 1},
	{"blanks_before_the_number", "Number of PRIMARY: \t  12 defects\nNumber of GROWN:0013\n", 0, 12, 13},
	{"signs", "Number of PRIMARY: -3\nNumber of GROWN: +4\n", 0, -3, 4},
	{"no_digits", "Number of PRIMARY: many\nNumber of GROWN:\n", 0, 0, 0},
	{"no_colon", "Number of PRIMARY defects 3\nNumber of GROWN defects 4\n", 0, 0, 0},
	{"number_ends_at_the_first_other_character", "Number of PRIMARY: 0x10\nNumber of GROWN: 4.9\n", 0, 0,
         4},
	{"too_large", "Number of PRIMARY: 2147483648\nNumber of GROWN: -99999999999999999999999\n", 0,
         INT_MAX, INT_MIN},
	{"largest", "Number of PRIMARY: 2147483647\nNumber of GROWN: -2147483648\n", 0, INT_MAX, INT_MIN},
	{"no_newline_at_end", "Number of PRIMARY: 3\nNumber of GROWN: 14", 0, 3, 14},
	{"carriage_returns", "Number of PRIMARY: 3\r\nNumber of GROWN: 14\r\n", 0, 3, 14},

	// the start of a line
	{"words_within_a_line", "The Number of PRIMARY: 3\nThe Number of GROWN: 14\n", 0, -1, -1},
	{"words_in_another_case", "Number of primary: 3\nNumber of grown: 14\n", 0, -1, -1},
	{"leading_blanks", "  Number of PRIMARY: 3\n \t Number of GROWN: 14\n", 0, 3, 14},
	{"pager", PAGER + "Number of PRIMARY: 3\n" + PAGER + " \tNumber of GROWN: 14\n", 0, 3, 14},
	{"pager_alone", PAGER + "\nNumber of PRIMARY: 3\n" + PAGER, 0, 3, -1},

	// errors
	{"wrong_type", "Command Error: <The requested controller is of the wrong type.>\n", -100, -1, -1},
	{"not_opened", "Command Error: <Adapter must be opened before this command is used.>\n", -100, -1,
         -1},
	{"missing", "Command Error: <The requested controller does not exist.>\n", -100, -1, -1},
	{"busy", "Command Error: <Another application has opened the controller.>\n", -200, -1, -1},
	{"channel", "Command Error: <The specified channel was not found on the controller.>\n", -2, -1, -1},
	{"device", "Command Error: <The specified device was not found.>\n", -2, -1, -1},
	{"bad_status", "Command Error: <The drive detected a bad status.>\n", -50, -1, -1},
	{"parameter", "Parsing Error: <parameter error>\n", -6, -1, -1},
	{"other", "Command Error: <x>\n", -300, -1, -1},
	{"error_anywhere_in_a_line", "AAC0> some Error: parameter error\n", -6, -1, -1},
	{"error_alone", "Error:", -300, -1, -1},
	{"error_without_a_colon", "Command Error\nparameter error\nerror: x\nNumber of GROWN: 1\n", 0, -1, 1},
	{"error_behind_a_count", "Number of PRIMARY: 3\nError: <x>\nNumber of GROWN: 1\n", -300, 3, -1},
	{"a_count_is_no_error", "Number of PRIMARY Error: 3\nNumber of GROWN Error: 4\n", 0, 3, 4},

	// several texts in a line
	{"order_of_controller_texts",
         "Error: parameter error detected a bad status <The specified device was not found "
         "<Another application has opened th <The requested controller does not exist\n",
         -100, -1, -1},
	{"order_of_busy",
         "Error: parameter error detected a bad status <The specified device was not found "
         "<Another application has opened th\n",
         -200, -1, -1},
	{"order_of_device",
         "Error: parameter error detected a bad status <The specified device was not found\n", -2, -1, -1},
	{"order_of_channel",
         "Error: parameter error detected a bad status "
         "<The specified channel was not found on the controller\n",
         -2, -1, -1},
	{"order_of_bad_status", "Error: parameter error detected a bad status\n", -50, -1, -1},
	{"texts_are_whole",
         "Error: <The specified channel was not found> The specified device was not found "
         "Another application has opened th\n",
         -300, -1, -1},

	// odd bytes
	{"nul_ends_the_parse", std::string("Number of PRIMARY: 3\n\0\nNumber of GROWN: 4\n", 42), 0, 3, -1},
	{"nul_in_a_line",
         std::string("Number of PRIMARY: 3\0"
                     "4\nNumber of GROWN: 4\n",
                     42),
         0, 3, 4},
	{"noise", "\xff\xfe\x80\x01\x1b[H\nNumber of PRIMARY\xff:\x01\nNumber of GROWN\xff: 4\xff\n", 0, 0,
         4},
	{"number_behind_the_end_of_a_long_line",
         "Number of PRIMARY:" + std::string(600, ' ') + "3\nNumber of GROWN: 4\n", 0, 0, 4},
	{"count_behind_the_end_of_a_long_line", std::string(511, 'x') + "Number of GROWN: 4\n", 0, -1, 4},
};

class Defects : public SiteTest, public testing::WithParamInterface<defect_row_t>
{
};

TEST_P(Defects, AreRead)
{
	const auto file = site_ / "answer";
	write_file(file, GetParam().text);
	int primary = -1;
	int grown = -1;
	EXPECT_EQ(AnalyzeDiskShowDefectFile(file.c_str(), &primary, &grown), GetParam().result);
	EXPECT_EQ(primary, GetParam().primary);
	EXPECT_EQ(grown, GetParam().grown);
}

INSTANTIATE_TEST_SUITE_P(Answers, Defects, testing::ValuesIn(ROWS),
                         [](const testing::TestParamInfo<defect_row_t> &row) { return row.param.what; });

TEST(DefectFile, ThatIsMissingFails)
{
	int primary = -1;
	int grown = -1;
	EXPECT_EQ(AnalyzeDiskShowDefectFile("/no/such/file", &primary, &grown), -1);
	EXPECT_EQ(primary, -1);
	EXPECT_EQ(grown, -1);
}

} // namespace
