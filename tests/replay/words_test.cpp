// SPDX-License-Identifier: Apache-2.0
// The words of a table line, one by one.

#include "replay/words.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

using namespace replay;

TEST(ReplayWords, NumberTakesDecimalAndHexadecimal)
{
	uint64_t value = 1;
	EXPECT_TRUE(read_number("0", UINT64_MAX, &value));
	EXPECT_EQ(value, 0u);
	EXPECT_TRUE(read_number("0x1F", UINT64_MAX, &value));
	EXPECT_EQ(value, 31u);
	EXPECT_TRUE(read_number("18446744073709551615", UINT64_MAX, &value));
	EXPECT_EQ(value, UINT64_MAX);
	EXPECT_TRUE(read_number("0xffffffffffffffff", UINT64_MAX, &value));
	EXPECT_EQ(value, UINT64_MAX);
}

TEST(ReplayWords, NumberRefusesAllElse)
{
	for (const char *word : {"", "0x", "-1", "+1", "1 ", "1k", "0x1g", "1.0", "ff",
	                         "18446744073709551616", "0x10000000000000000", "99999999999999999999999"}) {
		uint64_t value = 7;
		EXPECT_FALSE(read_number(word, UINT64_MAX, &value)) << word;
		EXPECT_EQ(value, 7u) << word;
	}
}

TEST(ReplayWords, NumberStopsAtItsLimit)
{
	uint64_t value = 0;
	EXPECT_TRUE(read_number("255", 255, &value));
	EXPECT_FALSE(read_number("256", 255, &value));
	EXPECT_EQ(value, 255u);
}

TEST(ReplayWords, HexByteHasOneOrTwoDigits)
{
	unsigned char value = 0;
	EXPECT_TRUE(read_hex_byte("80", &value));
	EXPECT_EQ(value, 0x80);
	EXPECT_TRUE(read_hex_byte("f", &value));
	EXPECT_EQ(value, 0x0f);
	for (const char *word : {"", "100", "0x5", "g", "-"})
		EXPECT_FALSE(read_hex_byte(word, &value)) << word;
}

TEST(ReplayWords, HexTakesBlanksBetweenPairsOnly)
{
	unsigned char bytes[4] = {};
	unsigned used = 0;
	char line[] = "0102 \t fE";
	EXPECT_TRUE(read_hex(line, bytes, sizeof(bytes), &used));
	EXPECT_EQ(used, 3u);
	EXPECT_EQ(bytes[0], 1);
	EXPECT_EQ(bytes[1], 2);
	EXPECT_EQ(bytes[2], 0xfe);
}

TEST(ReplayWords, HexRefusesOddStrayAndTooMany)
{
	for (const char *text : {"010", "0 1", "0g", "0x01", "01 02 03"}) {
		unsigned char bytes[2] = {};
		unsigned used = 0;
		std::string line = text;
		EXPECT_FALSE(read_hex(line.data(), bytes, sizeof(bytes), &used)) << text;
	}
}

TEST(ReplayWords, ErrnoNames)
{
	EXPECT_EQ(errno_by_name("ENXIO"), ENXIO);
	EXPECT_EQ(errno_by_name("ENOMEDIUM"), ENOMEDIUM);
	EXPECT_EQ(errno_by_name("ESTALE"), ESTALE);
	EXPECT_EQ(errno_by_name("ENX"), 0);
	EXPECT_EQ(errno_by_name("enxio"), 0);
	EXPECT_EQ(errno_by_name(""), 0);
}

TEST(ReplayWords, CommentBeginsAtAWord)
{
	char whole[] = "# all";
	char tail[] = "open fails EIO # why";
	char inside[] = "mount /a#b 1 2 3";
	cut_comment(whole);
	cut_comment(tail);
	cut_comment(inside);
	EXPECT_STREQ(whole, "");
	EXPECT_STREQ(tail, "open fails EIO ");
	EXPECT_STREQ(inside, "mount /a#b 1 2 3");
}

TEST(ReplayWords, EscapesOfTheMountTable)
{
	char good[] = "/a\\040b\\134c";
	EXPECT_TRUE(unescape(good));
	EXPECT_STREQ(good, "/a b\\c");
	for (const char *text : {"\\", "\\04", "\\048", "\\400", "\\000", "\\n"}) {
		std::string broken = text;
		EXPECT_FALSE(unescape(broken.data())) << text;
	}
}
