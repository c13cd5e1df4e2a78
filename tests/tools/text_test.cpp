// SPDX-License-Identifier: Apache-2.0
// What a reader is shown of texts and numbers.
#include "text.h"

#include <gmock/gmock.h>

namespace
{

TEST(Printable, KeepsCharactersOfEachLength)
{
	EXPECT_EQ(printable("a~"), "a~");
	EXPECT_EQ(printable("\xc3\xa4\xe2\x82\xac\xf0\x9f\x92\xbe."),
	          "\xc3\xa4\xe2\x82\xac\xf0\x9f\x92\xbe.");
	EXPECT_EQ(printable("\xed\x9f\xbf\xee\x80\x80\xf4\x8f\xbf\xbf"),
	          "\xed\x9f\xbf\xee\x80\x80\xf4\x8f\xbf\xbf");
	EXPECT_EQ(printable(""), "");
}

TEST(Printable, ControlCharactersAreOneMarkEach)
{
	EXPECT_EQ(printable(std::string_view("\0a\n\x1b[1m\x7f", 8)), "?a??[1m?");
	EXPECT_EQ(printable("\xc2\x85\xc2\x9b"), "??");
	EXPECT_EQ(printable("\xc2\xa0"), "\xc2\xa0");
}

TEST(Printable, EachWrongByteIsAMark)
{
	EXPECT_EQ(printable("a\x80z"), "a?z");
	EXPECT_EQ(printable("\xc3"), "?");
	EXPECT_EQ(printable("\xc3z"), "?z");
	EXPECT_EQ(printable("\xe2\x82z"), "??z");
	EXPECT_EQ(printable("\xe2\x82\xe2\x82\xac"), "??\xe2\x82\xac");
	EXPECT_EQ(printable("\xf0\x9f\x92"), "???");
}

TEST(Printable, WhatOnlyLooksLikeUtf8IsWrong)
{
	EXPECT_EQ(printable("\xc0\xaf"), "??");
	EXPECT_EQ(printable("\xe0\x80\x80"), "???");
	EXPECT_EQ(printable("\xed\xa0\x80"), "???");
	EXPECT_EQ(printable("\xf0\x80\x80\x80"), "????");
	EXPECT_EQ(printable("\xf4\x90\x80\x80"), "????");
}

TEST(Text, WidthIsOneACharacter)
{
	EXPECT_EQ(width_of(""), 0U);
	EXPECT_EQ(width_of("sda"), 3U);
	EXPECT_EQ(width_of("\xe2\x94\x9c\xe2\x94\x80sda\xc3\xa4"), 6U);
}

TEST(Text, FieldsNeedNoEnd)
{
	const char full[3] = {'a', 'b', 'c'};
	EXPECT_EQ(text_of(full), "abc");
	EXPECT_EQ(text_of("ab\0c"), "ab");
	EXPECT_EQ(shown(""), "-");
	EXPECT_EQ(shown("a\tb"), "a?b");
	EXPECT_EQ(mark(true), "yes");
	EXPECT_EQ(mark(false), "");
}

TEST(Text, SizesAreRoundedHalfUp)
{
	EXPECT_EQ(human_size(0), "0 B");
	EXPECT_EQ(human_size(1023), "1023 B");
	EXPECT_EQ(human_size(1024), "1.0 KiB");
	EXPECT_EQ(human_size(1024 + 51), "1.0 KiB");
	EXPECT_EQ(human_size(1024 + 52), "1.1 KiB");
	EXPECT_EQ(human_size(268435456), "256.0 MiB");
	EXPECT_EQ(human_size(1048575), "1.0 MiB");
	EXPECT_EQ(human_size(UINT64_MAX), "16.0 EiB");
	EXPECT_EQ(human_size_if_known(0), "-");
	EXPECT_EQ(human_size_if_known(1), "1 B");
}

} // namespace
