// SPDX-License-Identifier: Apache-2.0
// Records of udev's database: as udev writes them, and as nobody does.
#include "host.h"
#include "udev.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace std::string_literals;

class UdevRecords : public BlockHost
{
protected:
	Arena arena;

	UdevRecord record(const std::string &text)
	{
		udev("8:1", text);
		show();
		return read();
	}
	UdevRecord read() { return {&arena, UdevDatabase(), 8, 1}; }

	std::string value(const std::string &text, const char *key)
	{
		return std::string(record(text).value(key));
	}
	std::string decoded(const std::string &text)
	{
		return shown(record("E:KEY=" + text + "\n").decoded(&arena, "KEY"));
	}
	std::string links(const std::string &text)
	{
		const UdevRecord read = record(text);
		std::string all;
		text_t rest = read.links();
		for (text_t link = UdevRecord::next_link(&rest); !link.empty();
		     link = UdevRecord::next_link(&rest))
			all += "<" + std::string(link) + ">";
		return all;
	}
};

TEST_F(UdevRecords, ValuesAreWhatStandsBehindTheFirstEqualsSign)
{
	const std::string text =
		"S:disk/by-id/a\nI:12\nE:ID_MODEL=ACME\nE:ID_PATH=a=b=c\nE:EMPTY=\nG:systemd\n";
	EXPECT_EQ(value(text, "ID_MODEL"), "ACME");
	EXPECT_EQ(value(text, "ID_PATH"), "a=b=c");
	EXPECT_EQ(value(text, "EMPTY"), "");
	EXPECT_EQ(value(text, "ID_MODE"), "");
	EXPECT_EQ(value(text, "ID_MODEL_ENC"), "");
	EXPECT_EQ(value(text, ""), "");
}

TEST_F(UdevRecords, OfOtherLinesNothingIsAValue)
{
	EXPECT_EQ(value("I:KEY=1\nS:KEY=2\n E:KEY=3\nE: KEY=4\ne:KEY=5\nE:KEY\nKEY=6\n", "KEY"), "");
}

TEST_F(UdevRecords, TheFirstOfTwoCounts)
{
	EXPECT_EQ(value("E:KEY=one\nE:KEY=two\n", "KEY"), "one");
}

TEST_F(UdevRecords, AKeyAloneIsNoValue)
{
	EXPECT_EQ(value("E:KEY\nE:KEY=1\n", "KEY"), "1");
}

TEST_F(UdevRecords, TheLastLineNeedsNoNewline)
{
	EXPECT_EQ(value("E:A=1\nE:KEY=last", "KEY"), "last");
	EXPECT_EQ(links("S:one\nS:two"), "<one><two>");
}

TEST_F(UdevRecords, TheFirstKeyThatHasAValueIsTaken)
{
	const UdevRecord read = record("E:C=3\nE:B=2\nE:A=\n");
	const text_t keys[] = {"A", "B", "C"};
	EXPECT_EQ(std::string(read.first_value(keys, 3)), "2");
	EXPECT_EQ(std::string(read.first_value(keys, 1)), "");
}

TEST_F(UdevRecords, EscapesAreUndoneOnce)
{
	EXPECT_EQ(decoded("two\\x20words\\x20\\x20"), "two words");
	EXPECT_EQ(decoded("Gr\xc3\xb6\\xc3\\x9f"), "Gr\xc3\xb6\xc3\x9f");
	// A backslash of the text itself is escaped by udev, and then by us.
	EXPECT_EQ(decoded("a\\x5cx20b"), "a\\x5cx20b");
	EXPECT_EQ(decoded("\\x1b[2J\\xff\\x00end"), "\\x1b[2J\\xff\\x00end");
}

TEST_F(UdevRecords, WhatIsNoEscapeStays)
{
	EXPECT_EQ(decoded("\\x2"), "\\x5cx2");
	EXPECT_EQ(decoded("\\x2g"), "\\x5cx2g");
	EXPECT_EQ(decoded("\\"), "\\x5c");
	EXPECT_EQ(decoded("\\x"), "\\x5cx");
	EXPECT_EQ(decoded("\\X20"), "\\x5cX20");
	EXPECT_EQ(decoded("\\x-1"), "\\x5cx-1");
	EXPECT_EQ(decoded("\\x20\\x20"), "(absent)");
}

TEST_F(UdevRecords, LinksComeInTheirOrder)
{
	EXPECT_EQ(links("S:disk/by-id/a\nE:X=S:no\nS:\nS:mapper/two words\ns:no\n"),
	          "<disk/by-id/a><mapper/two words>");
	EXPECT_EQ(links("E:X=1\n"), "");
}

TEST_F(UdevRecords, OfNoiseNothingIsRead)
{
	EXPECT_EQ(value("\0\xff\n=\n:\nE\nE:\nE:=\n\n\n"s, "KEY"), "");
	EXPECT_EQ(links("\0\xff\n=\n:\nS\nS:\n\n\n"s), "");
	EXPECT_EQ(value("E:K\0EY=1\nE:KEY=a\0b\n"s, "KEY"), "a\0b"s);
}

TEST_F(UdevRecords, AHugeOneIsNoneAndALargeOneIsWhole)
{
	std::string text;
	while (text.size() < 200 * 1024)
		text += "E:FILLER_" + std::to_string(text.size()) + "=" + std::string(100, 'x') + "\n";
	text += "E:KEY=behind all\n";
	EXPECT_EQ(value(text, "KEY"), "behind all");
	EXPECT_FALSE(record(text + std::string(16 << 20, '\n')).is_there());
}

TEST_F(UdevRecords, ThereIsNoneWithoutTheFileTheNumberOrUdev)
{
	EXPECT_TRUE(record("E:A=1\n").is_there());
	const UdevDatabase database;
	EXPECT_FALSE(UdevRecord(&arena, database, 8, 2).is_there());
	EXPECT_FALSE(UdevRecord(&arena, database, BLOCK_ABSENT, BLOCK_ABSENT).is_there());
	std::filesystem::remove_all(host() / "run");
	EXPECT_FALSE(read().is_there());
}

TEST_F(UdevRecords, AnEmptyFileOrAFolderIsNone)
{
	EXPECT_FALSE(record("").is_there());
	std::filesystem::remove(host() / "run/udev/data/b8:1");
	std::filesystem::create_directory(host() / "run/udev/data/b8:1");
	EXPECT_FALSE(read().is_there());
}

} // namespace
