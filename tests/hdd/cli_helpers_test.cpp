// SPDX-License-Identifier: Apache-2.0
// What the leaves of the diagnostic command line share: numbers from words, and the dump of a list.
#include "host.h"

#include "hdd/sal/src/0/cli.h"

#include <algorithm>
#include <limits.h>

namespace
{

struct number_word_t {
	const char *word;
	int64_t value;
};

TEST(WordToNumber, WholeDecimalWords)
{
	static const number_word_t rows[] = {
		{"0", 0},
		{"7", 7},
		{"+7", 7},
		{"-7", -7},
		{"-0", 0},
		{"007", 7},
		{"2147483647", INT_MAX},
		{"-2147483648", INT_MIN},
		{"2147483648", 2147483648},
		{"-2147483649", -2147483649},
		{"4294967297", 4294967297},
		{"9223372036854775807", INT64_MAX},
		{"9223372036854775808", INT64_MAX},
		{"-9223372036854775808", INT64_MIN},
		{"-9223372036854775809", INT64_MIN},
		{"18446744073709551617", INT64_MAX},
		{"99999999999999999999999999999999", INT64_MAX},
		{"-99999999999999999999999999999999", INT64_MIN},
		{"00000000000000000000000000000000000012", 12},
	};
	for (const number_word_t &row : rows) {
		int64_t wide = 1;
		EXPECT_EQ(word_to_int64(row.word, &wide), 0) << row.word;
		EXPECT_EQ(wide, row.value) << row.word;
		int narrow = 1;
		EXPECT_EQ(word_to_int(row.word, &narrow), 0) << row.word;
		EXPECT_EQ(narrow, std::min<int64_t>(std::max<int64_t>(row.value, INT_MIN), INT_MAX))
			<< row.word;
	}
}

TEST(WordToNumber, AnythingElseIsNone)
{
	for (const char *word :
	     {"",   "-",  "+", "--1", "++1", "+-1", "-+1",  " 1",  "1 ", "\t1", "1\n", "- 1",
	      "1x", "x1", "x", "1.5", "1,5", "1e3", "0x10", "10h", "1-", "1+1", "inf", "\xd9\xa1"}) {
		int64_t wide = 42;
		EXPECT_EQ(word_to_int64(word, &wide), -1) << word;
		EXPECT_EQ(wide, 42) << word;
		int narrow = 42;
		EXPECT_EQ(word_to_int(word, &narrow), -1) << word;
		EXPECT_EQ(narrow, 42) << word;
	}
}

TEST(Low32, OfAnyWidth)
{
	EXPECT_EQ(low_32(0), 0);
	EXPECT_EQ(low_32(-1), -1);
	EXPECT_EQ(low_32(0x80000000U), INT_MIN);
	EXPECT_EQ(low_32(0xffffffffU), -1);
	EXPECT_EQ(low_32((1UL << 32) + 7), 7);
	EXPECT_EQ(low_32(0x1234567880000001L), INT_MIN + 1);
	EXPECT_EQ(low_32(-(1L << 32) - 1), -1);
}

struct few_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	clinode_t item[2];
};

std::vector<std::string> steps;
int parse_result;
const few_t *parsed_list;

int parse_few(few_t *list, filter_func_t filter, void *arg)
{
	steps.push_back("parse " + number(*static_cast<int *>(arg)));
	EXPECT_EQ(filter, counting_filter);
	list_clear(list);
	parsed_list = list;
	return parse_result;
}

void display_few(const few_t *list)
{
	steps.push_back("display " + number(list->lmt));
	EXPECT_EQ(list, parsed_list);
}

TEST(ShowList, DumpsWhateverWasBuilt)
{
	int arg = 5;
	static const struct {
		int parsed;
		int result;
	} rows[] = {{0, 0}, {-1, -1}, {-2, -1}, {3, -1}};
	for (const auto &row : rows) {
		steps.clear();
		parse_result = row.parsed;
		EXPECT_EQ(show_list(parse_few, counting_filter, &arg, display_few), row.result);
		EXPECT_THAT(steps, ::testing::ElementsAre("parse 5", "display 2"));
	}
}

} // namespace
