// SPDX-License-Identifier: Apache-2.0
// Text helpers: clearing, trimming, splitting, numbers, and the bounded copy.
#include "host.h"

#include "hdd/sal/src/0/str.h"

#include <limits.h>

using namespace std::string_view_literals;

namespace
{

TEST(Clearing, ZeroesExactlyItsBytes)
{
	char buffer[FNAME_SIZE + 1];
	static const struct {
		void (*clear)(char *);
		size_t size;
	} rows[] = {{b0_fname, 4096}, {b0_line, 1024}, {b0_str, 64}};
	for (const auto &row : rows) {
		memset(buffer, 'x', sizeof buffer);
		row.clear(buffer);
		EXPECT_EQ(std::string(buffer, row.size), std::string(row.size, '\0'));
		EXPECT_EQ(buffer[row.size], 'x') << row.size;
	}
	memset(buffer, 'x', sizeof buffer);
	b0(buffer, 3);
	EXPECT_EQ(std::string(buffer, 4), std::string("\0\0\0x", 4));
	b0(buffer + 3, 0);
	EXPECT_EQ(buffer[3], 'x');
}

TEST(Clearing, ScsiAddress)
{
	idlun_t idlun = {1, 2, 3, 4};
	b0_idlun(&idlun);
	EXPECT_TRUE(is_zero(idlun));
}

struct trim_row_t {
	std::string_view text;
	std::string_view cut;
	std::string_view strip;
	std::string_view trim;
};

class Trim : public ::testing::TestWithParam<trim_row_t>
{
};

TEST_P(Trim, CutStripAndTrim)
{
	EXPECT_EQ(str_cut(GetParam().text), GetParam().cut);
	EXPECT_EQ(str_cut_strip(GetParam().text), GetParam().strip);
	EXPECT_EQ(str_trim(GetParam().text), GetParam().trim);
}

INSTANTIATE_TEST_SUITE_P(
	Texts, Trim,
	::testing::Values(trim_row_t{"", "", "", ""}, trim_row_t{"abc", "abc", "abc", "abc"},
                          trim_row_t{"a\nb", "a", "a", "a"}, trim_row_t{"a\rb", "a", "a", "a"},
                          trim_row_t{"a#b", "a", "a", "a"}, trim_row_t{"a\0b"sv, "a", "a", "a"},
                          trim_row_t{" \ta b\t \n", " \ta b\t ", " \ta b", "a b"},
                          trim_row_t{"a # b", "a ", "a", "a"}, trim_row_t{"# b", "", "", ""},
                          trim_row_t{" \t ", " \t ", "", ""}, trim_row_t{"\n", "", "", ""},
                          trim_row_t{"a\v\f", "a\v\f", "a\v\f", "a\v\f"}, trim_row_t{"\ra", "", "", ""},
                          trim_row_t{"a#\n\r", "a", "a", "a"}));

TEST(NextWord, TakesThemOneByOne)
{
	std::string_view text = "  one\ttwo \n three\r\n";
	std::string_view word;
	for (const char *expected : {"one", "two", "three"}) {
		EXPECT_TRUE(str_next_word(&text, &word));
		EXPECT_EQ(word, expected);
	}
	EXPECT_FALSE(str_next_word(&text, &word));
	EXPECT_FALSE(str_next_word(&text, &word));
}

TEST(NextWord, NoneInBlanks)
{
	for (std::string_view text : {""sv, " "sv, "\t\n\r "sv}) {
		std::string_view word;
		EXPECT_FALSE(str_next_word(&text, &word));
	}
}

struct int_row_t {
	std::string_view text;
	bool result;
	int64_t value;
	std::string_view rest;
};

class NextInt : public ::testing::TestWithParam<int_row_t>
{
};

TEST_P(NextInt, TakesANumber)
{
	std::string_view text = GetParam().text;
	int64_t value = 4711;
	EXPECT_EQ(str_next_int(&text, &value), GetParam().result) << GetParam().text;
	if (!GetParam().result)
		return;
	EXPECT_EQ(value, GetParam().value) << GetParam().text;
	EXPECT_EQ(text, GetParam().rest);
}

INSTANTIATE_TEST_SUITE_P(Numbers, NextInt,
                         ::testing::Values(int_row_t{"12", true, 12, ""},
                                           int_row_t{" \t12 x", true, 12, " x"},
                                           int_row_t{"12x", true, 12, "x"}, int_row_t{"-5 6", true, -5, " 6"},
                                           int_row_t{"+7", true, 7, ""}, int_row_t{"007", true, 7, ""},
                                           int_row_t{"9223372036854775807", true, INT64_MAX, ""},
                                           int_row_t{"-9223372036854775808", true, INT64_MIN, ""},
                                           int_row_t{"9223372036854775808", true, INT64_MAX, ""},
                                           int_row_t{"99999999999999999999999 1", true, INT64_MAX, " 1"},
                                           int_row_t{"-99999999999999999999999", true, INT64_MIN, ""}));

INSTANTIATE_TEST_SUITE_P(NoNumbers, NextInt,
                         ::testing::Values(int_row_t{"", false, 0, ""}, int_row_t{"  ", false, 0, ""},
                                           int_row_t{"x1", false, 0, ""}, int_row_t{"-", false, 0, ""},
                                           int_row_t{"- 1", false, 0, ""}, int_row_t{"+-1", false, 0, ""}));

TEST(NextHex4, TakesAWord)
{
	std::string_view text = " 0040 3fff\tC8 f";
	unsigned value = 0;
	for (const unsigned expected : {0x40U, 0x3fffU, 0xc8U, 0xfU}) {
		EXPECT_TRUE(str_next_hex4(&text, &value));
		EXPECT_EQ(value, expected);
	}
	EXPECT_FALSE(str_next_hex4(&text, &value));
}

TEST(NextHex4, NoneBeforeAnythingElse)
{
	for (std::string_view text : {""sv, "  "sv, "g000"sv, " :1"sv}) {
		unsigned value = 0;
		EXPECT_FALSE(str_next_hex4(&text, &value)) << text;
	}
}

TEST(Digits, ValueOfATextOfDigits)
{
	static const struct {
		std::string_view text;
		int value;
	} rows[] = {
		{"0", 0},
		{"00", 0},
		{"01", 1},
		{"16", 16},
		{"2147483646", INT_MAX - 1},
		{"2147483647", INT_MAX},
		{"2147483648", INT_MAX},
		{"4294967296", INT_MAX},
		{"18446744073709551617", INT_MAX},
		{"99999999999999999999999999", INT_MAX},
		{"000000000000000000000000012", 12},
		{"", -1},
		{"-1", -1},
		{"+1", -1},
		{" 1", -1},
		{"1 ", -1},
		{"1a", -1},
		{"0x1", -1},
		{"99999999999999999999999999x", -1},
	};
	for (const auto &row : rows)
		EXPECT_EQ(str_digits(row.text), row.value) << row.text;
}

TEST(Begins, WithThePrefix)
{
	EXPECT_TRUE(str_begins("/dev/sda", "/dev/"));
	EXPECT_TRUE(str_begins("/dev/", "/dev/"));
	EXPECT_TRUE(str_begins("x", ""));
	EXPECT_FALSE(str_begins("/dev", "/dev/"));
	EXPECT_FALSE(str_begins("a/dev/", "/dev/"));
	EXPECT_FALSE(str_begins("", "x"));
}

TEST(Copy, ZeroesTheRest)
{
	char field[8];
	memset(field, 'x', sizeof field);
	str_copy(field, "abc");
	EXPECT_EQ(text_of(field), "abc");
	str_copy(field, "");
	EXPECT_EQ(text_of(field), "");
}

TEST(Copy, IsBounded)
{
	char field[9] = "xxxxxxxx";
	str_copy(field, 8, "1234567");
	EXPECT_STREQ(field, "1234567");
	str_copy(field, 8, "abcdefgh");
	EXPECT_STREQ(field, "abcdefg");
	field[8] = 'x';
	str_copy(field, 8, "a text that is much too long");
	EXPECT_STREQ(field, "a text ");
	EXPECT_EQ(field[8], 'x');
}

TEST(Refill, ClearsWhatTheOldTextLeaves)
{
	char field[8] = "abcdefg";
	for (const char *text : {"xyz", "", "1234567", "12", "12345"}) {
		str_refill(field, text);
		EXPECT_EQ(text_of(field), text);
	}
}

TEST(Refill, IsBounded)
{
	char field[9] = "abc";
	field[8] = 'x';
	str_refill(field, 8, "a text that is much too long");
	EXPECT_STREQ(field, "a text ");
	EXPECT_EQ(field[8], 'x');
}

TEST(Append, AsMuchAsFits)
{
	char field[9] = {};
	field[8] = 'x';
	str_append(field, 8, "abc");
	EXPECT_STREQ(field, "abc");
	str_append(field, 8, "");
	EXPECT_STREQ(field, "abc");
	str_append(field, 8, "defgh");
	EXPECT_STREQ(field, "abcdefg");
	str_append(field, 8, "i");
	EXPECT_STREQ(field, "abcdefg");
	EXPECT_EQ(field[8], 'x');
	char other[4] = "a";
	str_append(other, "bcd");
	EXPECT_STREQ(other, "abc");
}

} // namespace
