// SPDX-License-Identifier: Apache-2.0
#include "base/text.h"

#include <gtest/gtest.h>
#include <limits.h>

using namespace std::literals;

// The characters of a set, whatever the predicate: all 256 are asked.
static std::string_view members(bool (*is_member)(char), char (&found)[256])
{
	size_t count = 0;
	for (int c = CHAR_MIN; c <= CHAR_MAX; c++)
		if (is_member(static_cast<char>(c)))
			found[count++] = static_cast<char>(c);
	return std::string_view(found, count);
}

TEST(Characters, EachSetAndNoOther)
{
	char found[256];
	EXPECT_EQ(members(is_blank, found), "\t "sv);
	EXPECT_EQ(members(is_white_space, found), "\t\n\v\f\r "sv);
	EXPECT_EQ(members(is_digit, found), "0123456789"sv);
}

TEST(HexDigit, EveryCharacter)
{
	const std::string_view lower = "0123456789abcdef";
	const std::string_view upper = "0123456789ABCDEF";
	for (int c = CHAR_MIN; c <= CHAR_MAX; c++) {
		const char letter = static_cast<char>(c);
		size_t expected = lower.find(letter);
		if (expected == lower.npos)
			expected = upper.find(letter);
		EXPECT_EQ(hex_digit_value(letter), expected == lower.npos ? -1 : static_cast<int>(expected))
			<< c;
	}
}

TEST(Decimal, TakesANumberOffTheText)
{
	static const struct {
		std::string_view text;
		int64_t value;
		int narrow;
		std::string_view rest;
	} rows[] = {
		{"12", 12, 12, ""},
		{"12 x", 12, 12, " x"},
		{"-5:6", -5, -5, ":6"},
		{"+7", 7, 7, ""},
		{"007", 7, 7, ""},
		{"-0", 0, 0, ""},
		{"2147483647", INT_MAX, INT_MAX, ""},
		{"2147483648", 2147483648, INT_MAX, ""},
		{"-2147483648", INT_MIN, INT_MIN, ""},
		{"-2147483649", -2147483649, INT_MIN, ""},
		{"9223372036854775807", INT64_MAX, INT_MAX, ""},
		{"9223372036854775808", INT64_MAX, INT_MAX, ""},
		{"-9223372036854775808", INT64_MIN, INT_MIN, ""},
		{"-9223372036854775809", INT64_MIN, INT_MIN, ""},
		{"18446744073709551617 1", INT64_MAX, INT_MAX, " 1"},
	};
	for (const auto &row : rows) {
		std::string_view text = row.text;
		int64_t value = 4711;
		EXPECT_TRUE(take_decimal(&text, &value)) << row.text;
		EXPECT_EQ(value, row.value) << row.text;
		EXPECT_EQ(text, row.rest) << row.text;
		text = row.text;
		int narrow = 4711;
		EXPECT_TRUE(take_decimal(&text, &narrow)) << row.text;
		EXPECT_EQ(narrow, row.narrow) << row.text;
		EXPECT_EQ(text, row.rest) << row.text;
	}
}

TEST(Decimal, LeavesWhatIsNone)
{
	for (const std::string_view text : {""sv, " 1"sv, "x1"sv, "-"sv, "+"sv, "- 1"sv, "+-1"sv, "--1"sv}) {
		std::string_view rest = text;
		int64_t value = 4711;
		int narrow = 4711;
		EXPECT_FALSE(take_decimal(&rest, &value)) << text;
		EXPECT_FALSE(take_decimal(&rest, &narrow)) << text;
		EXPECT_EQ(rest, text);
		EXPECT_EQ(value, 4711) << text;
		EXPECT_EQ(narrow, 4711) << text;
	}
}
