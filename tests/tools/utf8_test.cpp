// SPDX-License-Identifier: Apache-2.0
// Where characters begin and end.
#include "utf8.h"

#include <gmock/gmock.h>

namespace
{

using ::testing::Pair;

std::pair<std::size_t, bool> front_of(std::string_view text)
{
	const utf8_front_t front = utf8_front(text);
	return {front.length, front.is_character};
}

TEST(Utf8, FirstAndLastCharacterOfEachLength)
{
	EXPECT_THAT(front_of(std::string_view("\0", 1)), Pair(1, true));
	EXPECT_THAT(front_of("\x7f"), Pair(1, true));
	EXPECT_THAT(front_of("\xc2\x80"), Pair(2, true));
	EXPECT_THAT(front_of("\xdf\xbf"), Pair(2, true));
	EXPECT_THAT(front_of("\xe0\xa0\x80"), Pair(3, true));
	EXPECT_THAT(front_of("\xef\xbf\xbf"), Pair(3, true));
	EXPECT_THAT(front_of("\xf0\x90\x80\x80"), Pair(4, true));
	EXPECT_THAT(front_of("\xf4\x8f\xbf\xbf"), Pair(4, true));
}

TEST(Utf8, OnlyTheFrontIsLookedAt)
{
	EXPECT_THAT(front_of("a\xff"), Pair(1, true));
	EXPECT_THAT(front_of("\xc3\xa4\xc3"), Pair(2, true));
}

TEST(Utf8, SurrogatesHaveNeighbours)
{
	EXPECT_THAT(front_of("\xed\x9f\xbf"), Pair(3, true));
	EXPECT_THAT(front_of("\xed\xa0\x80"), Pair(1, false));
	EXPECT_THAT(front_of("\xed\xbf\xbf"), Pair(1, false));
	EXPECT_THAT(front_of("\xee\x80\x80"), Pair(3, true));
}

TEST(Utf8, OverlongFormsAndWhatIsBeyondAreNone)
{
	EXPECT_THAT(front_of("\xc0\x80"), Pair(1, false));
	EXPECT_THAT(front_of("\xc1\xbf"), Pair(1, false));
	EXPECT_THAT(front_of("\xe0\x80\x80"), Pair(1, false));
	EXPECT_THAT(front_of("\xe0\x9f\xbf"), Pair(1, false));
	EXPECT_THAT(front_of("\xf0\x80\x80\x80"), Pair(1, false));
	EXPECT_THAT(front_of("\xf0\x8f\xbf\xbf"), Pair(1, false));
	EXPECT_THAT(front_of("\xf4\x90\x80\x80"), Pair(1, false));
	EXPECT_THAT(front_of("\xf5\x80\x80\x80"), Pair(1, false));
	EXPECT_THAT(front_of("\xff"), Pair(1, false));
}

TEST(Utf8, TheLongestBeginningIsTold)
{
	EXPECT_THAT(front_of("\x80"), Pair(1, false));
	EXPECT_THAT(front_of("\xc3"), Pair(1, false));
	EXPECT_THAT(front_of("\xc3(("), Pair(1, false));
	EXPECT_THAT(front_of("\xe2\x82"), Pair(2, false));
	EXPECT_THAT(front_of("\xe2\x82\xe2\x82\xac"), Pair(2, false));
	EXPECT_THAT(front_of("\xf0\x9f\x92"), Pair(3, false));
	EXPECT_THAT(front_of("\xf0\x9f\x92x"), Pair(3, false));
}

TEST(Utf8, ControlCharactersAreOfBothSets)
{
	EXPECT_TRUE(is_control(std::string_view("\0", 1)));
	EXPECT_TRUE(is_control("\x1f"));
	EXPECT_FALSE(is_control(" "));
	EXPECT_FALSE(is_control("~"));
	EXPECT_TRUE(is_control("\x7f"));
	EXPECT_TRUE(is_control("\xc2\x80"));
	EXPECT_TRUE(is_control("\xc2\x9f"));
	EXPECT_FALSE(is_control("\xc2\xa0"));
	EXPECT_FALSE(is_control("\xc3\x80"));
}

TEST(Utf8, WhatTurnsALineRoundIsAControlCharacter)
{
	// U+061B, U+061C, U+061D.
	EXPECT_FALSE(is_control("\xd8\x9b"));
	EXPECT_TRUE(is_control("\xd8\x9c"));
	EXPECT_FALSE(is_control("\xd8\x9d"));
	// U+200D to U+2010.
	EXPECT_FALSE(is_control("\xe2\x80\x8d"));
	EXPECT_TRUE(is_control("\xe2\x80\x8e"));
	EXPECT_TRUE(is_control("\xe2\x80\x8f"));
	EXPECT_FALSE(is_control("\xe2\x80\x90"));
	// U+2027, U+2028, U+202E, U+202F.
	EXPECT_FALSE(is_control("\xe2\x80\xa7"));
	EXPECT_TRUE(is_control("\xe2\x80\xa8"));
	EXPECT_TRUE(is_control("\xe2\x80\xae"));
	EXPECT_FALSE(is_control("\xe2\x80\xaf"));
	// U+2065, U+2066, U+2069, U+206A.
	EXPECT_FALSE(is_control("\xe2\x81\xa5"));
	EXPECT_TRUE(is_control("\xe2\x81\xa6"));
	EXPECT_TRUE(is_control("\xe2\x81\xa9"));
	EXPECT_FALSE(is_control("\xe2\x81\xaa"));
}

} // namespace
