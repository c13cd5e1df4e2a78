// SPDX-License-Identifier: Apache-2.0
// The text helpers of the parsers, and the disk address.
#include "hwraid/aacraid/aac_public.h"

#include <gtest/gtest.h>
#include <string.h>
#include <string>

namespace
{

// Works on a copy with room for growth.
struct Text {
	char buffer[4096];
	explicit Text(const char *text) { snprintf(buffer, sizeof buffer, "%s", text); }
};

TEST(DiskAddress, IsPackedByAdding)
{
	EXPECT_EQ(GetC_ID_L(1, 2, 3), 66051);
	EXPECT_EQ(GetC_ID_L(0, 256, 0), GetC_ID_L(1, 0, 0));
	EXPECT_EQ(GetC_ID_L(0, 0, 256), GetC_ID_L(0, 1, 0));
	EXPECT_EQ(GetChannelFromC_ID_L(66051), 1);
	EXPECT_EQ(GetIDFromC_ID_L(66051), 2);
	EXPECT_EQ(GetLunFromC_ID_L(66051), 3);
	EXPECT_EQ(GetChannelFromC_ID_L(-1), 255);
}

TEST(TextHelpers, Including)
{
	EXPECT_EQ(Including(nullptr, "a"), 0);
	EXPECT_EQ(Including(nullptr, nullptr), 0);
	EXPECT_EQ(Including("a", nullptr), 1);
	EXPECT_EQ(Including("abc", "ab"), 1);
	EXPECT_EQ(Including("abc", ""), 1);
	EXPECT_EQ(Including("ab", "abc"), 0);
	EXPECT_EQ(Including("Abc", "ab"), 0);
}

TEST(TextHelpers, CharacterClasses)
{
	EXPECT_EQ(IS_IN('b', "abc"), 1);
	EXPECT_EQ(IS_IN('d', "abc"), 0);
	EXPECT_EQ(IS_IN('a', ""), 0);
	EXPECT_EQ(IS_IN('\0', "abc"), 0);
	for (int c = 0; c < 128; c++) {
		EXPECT_EQ(Is_0_9(static_cast<char>(c)), c >= '0' && c <= '9') << c;
		EXPECT_EQ(Is_a_f(static_cast<char>(c)), c >= 'a' && c <= 'f') << c;
		EXPECT_EQ(Is_A_F(static_cast<char>(c)), c >= 'A' && c <= 'F') << c;
	}
}

struct change_row_t {
	const char *text;
	int result;
	const char *expected;
};

// For reports; of the bytes of a row some are not set.
void PrintTo(const change_row_t &row, std::ostream *stream)
{
	*stream << row.text;
}

class TailSpace : public testing::TestWithParam<change_row_t>
{
};

TEST_P(TailSpace, IsDeleted)
{
	Text text(GetParam().text);
	EXPECT_EQ(DeleteTailSpaceAndReturn(text.buffer), 0);
	EXPECT_STREQ(text.buffer, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Texts, TailSpace,
                         testing::Values(change_row_t{"", 0, ""}, change_row_t{"abc", 0, "abc"},
                                         change_row_t{"abc \t\r\n", 0, "abc"}, change_row_t{" \n\n", 0, ""},
                                         change_row_t{"abc\n \n", 0, "abc\n"},
                                         change_row_t{" a b \n", 0, " a b"}));

TEST(TextHelpers, NullHasNoTail)
{
	EXPECT_EQ(DeleteTailSpaceAndReturn(nullptr), -1);
}

TEST(TextHelpers, ReplaceSubString)
{
	const struct {
		const char *text;
		const char *from;
		const char *to;
		const char *expected;
	} rows[] = {
		{"a%b%", "%", "", "ab"},
		{"Not Initialized", "Not ", "Not_", "Not_Initialized"},
		{"aaa", "a", "aa", "aaaaaa"},
		{"aaaa", "aa", "b", "bb"},
		{"abc", "", "x", "abc"},
		{"abc", nullptr, "x", "abc"},
		{"abab", "ab", "abab", "abababab"},
		{"", "a", "b", ""},
	};
	for (const auto &row : rows) {
		Text text(row.text);
		EXPECT_EQ(ReplaceSubString(text.buffer, row.from, row.to), text.buffer);
		EXPECT_STREQ(text.buffer, row.expected) << row.text;
	}
}

TEST(TextHelpers, CutOffHeaderString)
{
	const struct {
		const char *text;
		const char *symbols;
		int loop;
		const char *expected;
	} rows[] = {
		{"HEAD \t x", " \t", 1, "x"}, {"HEAD  x", " ", 0, " x"}, {"  x", " ", 1, "x"},
		{"x HEAD", " ", 1, "x HEAD"}, {"HEAD", " ", 1, ""},      {"HEADHEADx", " ", 1, "HEADx"},
		{"  x", "", 1, "  x"},        {"", " ", 1, ""},
	};
	for (const auto &row : rows) {
		Text text(row.text);
		EXPECT_EQ(CutOffHeaderString(text.buffer, "HEAD", row.symbols, row.loop), 0);
		EXPECT_STREQ(text.buffer, row.expected) << row.text;
	}
}

TEST(TextHelpers, CurrentLineHasOnlyIncludeSymbols)
{
	EXPECT_EQ(CurrentLineHasOnlyIncludeSymbols(" - -", " -"), 1);
	EXPECT_EQ(CurrentLineHasOnlyIncludeSymbols(" - -\n", " -"), 0);
	EXPECT_EQ(CurrentLineHasOnlyIncludeSymbols("", " -"), 1);
	EXPECT_EQ(CurrentLineHasOnlyIncludeSymbols("", ""), 1);
	EXPECT_EQ(CurrentLineHasOnlyIncludeSymbols("a", ""), 0);
	EXPECT_EQ(CurrentLineHasOnlyIncludeSymbols("", nullptr), 0);
}

class HeaderSymbols : public testing::TestWithParam<change_row_t>
{
};

TEST_P(HeaderSymbols, AreDeleted)
{
	Text text(GetParam().text);
	EXPECT_EQ(DeleteHeaderSymbols(text.buffer, " -"), GetParam().result);
	EXPECT_STREQ(text.buffer, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Texts, HeaderSymbols,
                         testing::Values(change_row_t{"- -x-", 0, "x-"}, change_row_t{"x", -1, "x"},
                                         change_row_t{"", -1, ""}, change_row_t{"---", 0, ""}));

TEST(TextHelpers, NoSymbolsDeleteNothing)
{
	Text text("x");
	EXPECT_EQ(DeleteHeaderSymbols(text.buffer, ""), -1);
}

struct piece_row_t {
	const char *text;
	int nth;
	char separator;
	int times;
	const char *expected; // null: a null pointer
};

void PrintTo(const piece_row_t &row, std::ostream *stream)
{
	*stream << (row.text ? row.text : "null");
}

class Piece : public testing::TestWithParam<piece_row_t>
{
};

TEST_P(Piece, OfAText)
{
	const piece_row_t &row = GetParam();
	EXPECT_STREQ(TheNthSubString(row.text, row.nth, row.separator, row.times), row.expected)
		<< row.text << " " << row.nth;
}

const char *const PARAGRAPHS = "a\n\nb\n\n\ncd";

INSTANTIATE_TEST_SUITE_P(
	Texts, Piece,
	testing::Values(
		piece_row_t{PARAGRAPHS, 1, '\n', 2, "a"}, piece_row_t{PARAGRAPHS, 2, '\n', 2, "b\n"},
		piece_row_t{PARAGRAPHS, 3, '\n', 2, "cd"}, piece_row_t{PARAGRAPHS, 4, '\n', 2, ""},
		piece_row_t{PARAGRAPHS, 5, '\n', 2, ""}, piece_row_t{"a\nb", 1, '\n', 2, "a\nb"},
		piece_row_t{"\n\na", 1, '\n', 2, ""}, piece_row_t{"\na\n\nb", 1, '\n', 2, "\na"},
		piece_row_t{"a\n\n", 2, '\n', 2, ""}, piece_row_t{"a\n\nb", 2, '\n', 2, "b"},
		// A delimiter that begins in a piece's first two characters is not seen: so, too, above.
		piece_row_t{"a\n\nb\n\nc", 2, '\n', 2, "b\n\nc"},
		piece_row_t{"a\n\nbb\n\nc", 2, '\n', 2, "bb"},
		piece_row_t{"one  two three   4", 2, ' ', 2, "two three"},
		piece_row_t{"one  two three   4", 3, ' ', 2, "4"}, piece_row_t{"a b c", 2, ' ', 1, "b"},
		piece_row_t{"", 1, ' ', 1, ""}, piece_row_t{nullptr, 1, ' ', 1, ""},
		piece_row_t{"a", 0, ' ', 1, nullptr}, piece_row_t{"a", -1, ' ', 1, nullptr},
		piece_row_t{"a", 1, ' ', 0, nullptr}, piece_row_t{"a", 1, '\0', 1, nullptr}));

TEST(TextHelpers, LongPieceIsCutToTheBuffer)
{
	const std::string text(2000, 'x');
	EXPECT_EQ(TheNthSubString(text.c_str(), 1, ' ', 1), std::string(1023, 'x'));
}

TEST(TextHelpers, TheEmptyOneIsEmpty)
{
	char text[] = "x";
	EXPECT_EQ(GetTheNthSubStringInString(text), 0);
}

struct error_row_t {
	std::string text;
	int code;
};

void PrintTo(const error_row_t &row, std::ostream *stream)
{
	*stream << row.text;
}

class CommonError : public testing::TestWithParam<error_row_t>
{
};

TEST_P(CommonError, IsFoundInAWholeOutput)
{
	EXPECT_EQ(CheckIfExistErrors(GetParam().text.c_str()), GetParam().code) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
	Outputs, CommonError,
	testing::Values(
		error_row_t{"", 0}, error_row_t{"fine\n", 0}, error_row_t{"Command Error: <else>\n", 0},
		error_row_t{"x\nCommand Error: <else>\n", -300}, error_row_t{"x Command Error: <else>\n", 0},
		error_row_t{"Command Error: <Another application has opened the controller>\n", -200},
		error_row_t{"x\nCommand Error: <Another application has opened the controller>\n", -200},
		error_row_t{"x Command Error: <Another application has opened the controller>\n", -200},
		error_row_t{"\nCommand Error: <The requested controller is of the wrong type>", -100},
		error_row_t{"\nCommand Error: <Adapter must be opened before this command is used>", -100},
		error_row_t{"\nCommand Error: <The requested controller does not exist>", -100},
		error_row_t{"\nCommand Error <The requested controller does not exist>", -300},
		error_row_t{"Command Error: <else>\nCommand Error: <Another application has opened th", 0}));

TEST(ControllerWords, AreKnownByTheirBeginning)
{
	aac_controller controller = {};
	const struct {
		const char *word;
		int code;
		const char *back;
	} availability[] = {{"Unavailability", 0, "Unavailability"},
	                    {"Unknown", 1, "Unknown"},
	                    {"read only", 2, "read only"},
	                    {"read/write", 3, "read/write"},
	                    {"read/write!", 3, "read/write"},
	                    {"Read/Write", -1, "I dont know"},
	                    {"", -1, "I dont know"},
	                    {nullptr, -1, "I dont know"}};
	for (const auto &row : availability) {
		EXPECT_EQ(Controller_SetControllerAvailability(&controller, row.word), row.code);
		EXPECT_EQ(controller.Availability, row.code);
		EXPECT_STREQ(Controller_GetControllerAavailability(&controller), row.back);
	}
	EXPECT_EQ(Controller_SetControllerClustering(&controller, "No\n"), 0);
	EXPECT_STREQ(Controller_GetControllerClustering(&controller), "No");
	EXPECT_EQ(Controller_SetControllerClustering(&controller, "Yes"), 1);
	EXPECT_STREQ(Controller_GetControllerClustering(&controller), "Yes");
	EXPECT_EQ(Controller_SetControllerClustering(&controller, "yes"), -1);
	controller.Availability = 64;
	EXPECT_STREQ(Controller_GetControllerAavailability(&controller), "overflow");
	controller.Clustering = 64;
	EXPECT_STREQ(Controller_GetControllerClustering(&controller), "overflow");
}

TEST(ControllerTexts, KeepThirtyOneCharacters)
{
	aac_controller controller;
	memset(&controller, 'x', sizeof controller);
	const std::string text(40, 'n');
	EXPECT_EQ(Controller_SetControllerName(&controller, text.c_str()), controller.Adapter_Name);
	EXPECT_EQ(Controller_GetControllerName(&controller), std::string(31, 'n'));
	EXPECT_EQ(Controller_SetControllerType(&controller, "short"), controller.Adapter_Type);
	EXPECT_STREQ(Controller_GetControllerType(&controller), "short");
	EXPECT_EQ(Controller_SetControllerID(&controller, 7), 7);
	EXPECT_EQ(Controller_GetControllerID(&controller), 7);
}

} // namespace
