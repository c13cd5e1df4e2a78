// SPDX-License-Identifier: Apache-2.0
// A row for programs.
#include "pairs.h"

#include "fields_of_samples.h"

#include <gmock/gmock.h>

namespace
{

std::string text_pair(const std::string &text)
{
	sample_t sample;
	sample.text = text;
	return pairs_line({&TEXT}, {&sample});
}

TEST(Pairs, OneLineARow)
{
	sample_t sample;
	sample.number = 1048576;
	sample.flag = true;
	sample.texts = {{"/", "/home"}};
	EXPECT_EQ(pairs_line({&BYTES, &TEXT, &FLAG, &TEXTS}, {&sample}),
	          "TOTAL_SIZE=\"1048576\" TEXT=\"\" FLAG=\"1\" TEXTS=\"/,/home\"\n");
	EXPECT_EQ(pairs_line({&BYTES}, {&sample}), "TOTAL_SIZE=\"1048576\"\n");
}

TEST(Pairs, WhatAShellWouldTakeIsEscaped)
{
	EXPECT_EQ(text_pair("a\"b\\c$d`e'f g!"), "TEXT=\"a\\x22b\\x5cc\\x24d\\x60e'f g!\"\n");
}

TEST(Pairs, WhatATerminalWouldObeyIsEscaped)
{
	EXPECT_EQ(text_pair(std::string("\0\n\x1b\x7f", 4)), "TEXT=\"\\x00\\x0a\\x1b\\x7f\"\n");
	EXPECT_EQ(text_pair("\xc2\x9b.\xc2\xa0"), "TEXT=\"\\xc2\\x9b.\xc2\xa0\"\n");
}

TEST(Pairs, BytesThatAreNoUtf8CanBeHadBack)
{
	EXPECT_EQ(text_pair("\xff.\xc3\xa4\xe2\x82"), "TEXT=\"\\xff.\xc3\xa4\\xe2\\x82\"\n");
	EXPECT_EQ(text_pair("\xe2\x82$"), "TEXT=\"\\xe2\\x82\\x24\"\n");
}

} // namespace
