// SPDX-License-Identifier: Apache-2.0
// The tool's answer to "disk initialize", as a table: each row is a text and its result. The parser counts
// lines: from the echo of "open" on, and again from the echo of the command on.
#include "site.h"

#include "hwraid/aacraid/aac_disk.h"

namespace
{

const std::string OPEN = "Executing: open \"aac0\"\n";
const std::string INIT = "Executing: disk initialize /always=FALSE (0,1,0)\n";
const std::string ERROR = "Command Error: <x>\n";
const std::string CHANNEL = "Command Error: <The specified channel was not found on the controller.>\n";
const std::string DEVICE = "Command Error: <The specified device was not found.>\n";
const std::string PAGER = "( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";

std::string lines(int count)
{
	std::string text;
	for (int i = 0; i < count; i++)
		text += "x\n";
	return text;
}

struct initialize_row_t {
	const char *what;
	std::string text;
	int result;
};

// For a test's name in a report; of its bytes some are not set.
void PrintTo(const initialize_row_t &row, std::ostream *stream)
{
	*stream << row.what;
}

const initialize_row_t ROWS[] = {
	{"success", OPEN + "\nAAC0>\n" + INIT + "\nAAC0>\nExecuting: exit\n", 0},
	{"success_with_words", OPEN + "\nAAC0>\n" + INIT + "Disk initialized\n", 0},
	{"empty", "", 0},
	{"newlines_alone", "\n\n\n", 0},
	{"no_echo", "banner\n" + ERROR + DEVICE, 0},

	// the echo of open
	{"open_fails", OPEN + ERROR + INIT + DEVICE, 0},
	{"open_fails_within_the_line", OPEN + "AAC0> " + ERROR + INIT + DEVICE, 0},
	{"open_fails_behind_blank_lines", OPEN + "\n  \n\t\n" + ERROR + INIT + DEVICE, 0},
	{"error_before_open_is_not_looked_at", ERROR + OPEN + "AAC0>\n" + INIT + DEVICE, -2},
	{"error_two_lines_behind_open_is_not_looked_at", OPEN + "AAC0>\n" + ERROR + INIT + DEVICE, -2},
	{"echo_right_behind_open", OPEN + INIT + DEVICE, -2},
	{"echo_with_an_error_right_behind_open", OPEN + "Executing: disk init Command Error\n" + DEVICE, 0},
	{"second_open_is_a_line", OPEN + OPEN + ERROR + INIT + DEVICE, -2},
	{"open_within_a_line", "AAC0> " + OPEN + ERROR + INIT + DEVICE, -2},

	// the echo of the command
	{"no_open", INIT + ERROR, -300},
	{"no_open_but_lines", "banner\nCLI>\n" + INIT + CHANNEL, -2},
	{"open_behind_the_command_is_a_line", INIT + OPEN + ERROR, 0},
	{"echo_in_other_words", OPEN + "AAC0>\nExecuting: disk initx\n" + ERROR, -300},
	{"echo_within_a_line", OPEN + "AAC0>\nAAC0> " + INIT + ERROR, 0},
	{"second_echo_is_a_line", OPEN + "AAC0>\n" + INIT + INIT + ERROR, 0},

	// the line behind it
	{"channel", OPEN + "AAC0>\n" + INIT + CHANNEL, -2},
	{"device", OPEN + "AAC0>\n" + INIT + DEVICE, -2},
	{"other", OPEN + "AAC0>\n" + INIT + ERROR, -300},
	{"busy",
         OPEN + "AAC0>\n" + INIT + "Command Error: <Another application has opened the controller.>\n", -300},
	{"not_opened",
         OPEN + "AAC0>\n" + INIT + "Command Error: <Adapter must be opened before this command is used.>\n",
         -300},
	{"words_that_are_not_whole",
         OPEN + "AAC0>\n" + INIT + "Command Error: <The specified channel was not found>\n", -300},
	{"within_a_line", OPEN + "AAC0>\n" + INIT + "AAC0> " + DEVICE, -2},
	{"behind_blank_lines", OPEN + "\nAAC0>\n\n" + INIT + "\n \t\n\n" + DEVICE, -2},
	{"device_without_an_error", OPEN + "AAC0>\n" + INIT + "<The specified device was not found\n" + ERROR,
         0},
	{"one_line_too_late", OPEN + "AAC0>\n" + INIT + "x\n" + DEVICE, 0},
	{"error_of_another_kind", OPEN + "AAC0>\n" + INIT + "Parsing Error: <x>\n" + DEVICE, 0},
	{"ends_behind_the_echo", OPEN + "AAC0>\n" + INIT, 0},
	{"no_newline_at_end", OPEN + "AAC0>\n" + INIT + "Command Error", -300},

	// cleaning
	{"leading_blanks", "  " + OPEN + "\t" + "AAC0>\n \t" + INIT + "   " + DEVICE, -2},
	{"pager",
         PAGER + " " + OPEN + PAGER + "AAC0>\n" + PAGER + "\t" + INIT + PAGER + "\n" + PAGER + DEVICE, -2},
	{"carriage_returns", "Executing: open\r\nAAC0>\r\nExecuting: disk init\r\nCommand Error\r\n", -300},
	// A blank line that ends in a carriage return is one that counts.
	{"carriage_return_alone_counts", OPEN + "AAC0>\n" + INIT + "\r\n" + DEVICE, 0},
	{"nul_ends_the_parse", OPEN + "AAC0>\n" + std::string("\0\n", 2) + INIT + DEVICE, 0},
	{"nul_in_a_line", OPEN + "AAC0>\n" + INIT + std::string("x\0", 2) + DEVICE, 0},
	{"noise", "\x01\xff\x80\n" + OPEN + "\xff\xfe\n" + INIT + "\x1b[H" + DEVICE, -2},

	// long lines
	{"error_that_a_long_line_hides", OPEN + "AAC0>\n" + INIT + std::string(511, 'x') + ERROR, 0},
	{"error_within_a_long_line", OPEN + "AAC0>\n" + INIT + std::string(498, 'x') + ERROR, -300},
	{"error_cut_by_a_long_line", OPEN + "AAC0>\n" + INIT + std::string(499, 'x') + ERROR, 0},

	// Ten thousand lines count like the echo that did not come.
	{"many_lines_before_open", lines(9999) + OPEN + "AAC0>\n" + INIT + DEVICE, -2},
	{"too_many_lines_before_open", lines(10000) + ERROR + INIT + DEVICE, 0},
	{"one_line_less_before_open", lines(9999) + ERROR + INIT + DEVICE, -2},
	{"many_lines_behind_open", OPEN + lines(9998) + INIT + DEVICE, -2},
	{"too_many_lines_behind_open", OPEN + lines(10000) + DEVICE, -2},
	{"one_line_more_behind_open", OPEN + lines(10001) + DEVICE, 0},
};

class Initialize : public SiteTest, public testing::WithParamInterface<initialize_row_t>
{
};

TEST_P(Initialize, IsRead)
{
	const auto file = site_ / "answer";
	write_file(file, GetParam().text);
	EXPECT_EQ(AnalyzeDiskInitializeFile(file.c_str()), GetParam().result);
}

INSTANTIATE_TEST_SUITE_P(Answers, Initialize, testing::ValuesIn(ROWS),
                         [](const testing::TestParamInfo<initialize_row_t> &row) { return row.param.what; });

TEST(InitializeFile, ThatIsMissingFails)
{
	EXPECT_EQ(AnalyzeDiskInitializeFile("/no/such/file"), -1);
}

} // namespace
