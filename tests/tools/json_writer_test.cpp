// SPDX-License-Identifier: Apache-2.0
// A document's bytes.
#include "json_writer.h"

#include <gmock/gmock.h>

namespace
{

const std::string REPLACED = "\xef\xbf\xbd";

std::string quoted(std::string_view text)
{
	std::string document;
	json_writer_t(document).text(text);
	return document;
}

TEST(JsonWriter, ValuesAlone)
{
	std::string document;
	json_writer_t(document).absent();
	json_writer_t(document).flag(true);
	json_writer_t(document).flag(false);
	json_writer_t(document).number(INT64_MIN);
	json_writer_t(document).large(UINT64_MAX);
	json_writer_t(document).number(0);
	EXPECT_EQ(document, "nulltruefalse-9223372036854775808184467440737095516150");
}

TEST(JsonWriter, WhatIsEmptyIsOneWord)
{
	std::string document;
	json_writer_t to(document);
	to.begin_object();
	to.key("none");
	to.begin_list();
	to.end_list();
	to.key("nothing");
	to.begin_object();
	to.end_object();
	to.key("last");
	to.number(-1);
	to.end_object();
	EXPECT_EQ(document, "{\n  \"none\": [],\n  \"nothing\": {},\n  \"last\": -1\n}");

	std::string list;
	json_writer_t(list).begin_list();
	json_writer_t(list).end_list();
	EXPECT_EQ(list, "[]");
}

TEST(JsonWriter, DepthHasNoEnd)
{
	std::string document;
	json_writer_t to(document);
	for (int i = 0; i < 10; i++)
		to.begin_list();
	to.number(1);
	to.number(2);
	for (int i = 0; i < 10; i++)
		to.end_list();
	const std::string inmost = "\n" + std::string(20, ' ');
	EXPECT_NE(document.find(inmost + "1," + inmost + "2\n" + std::string(18, ' ') + "]\n"),
	          std::string::npos)
		<< document;
}

TEST(JsonWriter, EachDepthIsTwoBlanks)
{
	std::string document;
	json_writer_t to(document);
	to.begin_list();
	to.begin_object();
	to.key("a");
	to.begin_list();
	to.text("x");
	to.absent();
	to.begin_list();
	to.flag(true);
	to.end_list();
	to.end_list();
	to.key("b");
	to.large(7);
	to.end_object();
	to.begin_object();
	to.end_object();
	to.begin_list();
	to.end_list();
	to.end_list();
	EXPECT_EQ(document, R"([
  {
    "a": [
      "x",
      null,
      [
        true
      ]
    ],
    "b": 7
  },
  {},
  []
])");
}

TEST(JsonWriter, ControlCharactersAndQuotesAreEscaped)
{
	EXPECT_EQ(quoted(""), R"("")");
	EXPECT_EQ(quoted("a\"b\\c/d"), R"("a\"b\\c/d")");
	EXPECT_EQ(quoted("\b\f\n\r\t"), R"("\b\f\n\r\t")");
	EXPECT_EQ(quoted(std::string_view("\0\1\x0b\x1b\x1f", 5)), R"("\u0000\u0001\u000b\u001b\u001f")");
	EXPECT_EQ(quoted(" \x7f"), "\" \x7f\"");
}

TEST(JsonWriter, CharactersStandAsTheyAre)
{
	EXPECT_EQ(quoted("\xc2\x80\xc3\xa4\xe2\x80\xa8\xf0\x9f\x92\xbe"),
	          "\"\xc2\x80\xc3\xa4\xe2\x80\xa8\xf0\x9f\x92\xbe\"");
}

TEST(JsonWriter, BadUtf8IsReplacedOnceForEachBeginning)
{
	EXPECT_EQ(quoted("a\xff"
	                 "b"),
	          "\"a" + REPLACED + "b\"");
	EXPECT_EQ(quoted("\x80\xbf"), "\"" + REPLACED + REPLACED + "\"");
	// Two bytes of the three of a character; the third is read again.
	EXPECT_EQ(quoted("\xe2\x82z"), "\"" + REPLACED + "z\"");
	EXPECT_EQ(quoted("\xe2\x82\""), "\"" + REPLACED + "\\\"\"");
	EXPECT_EQ(quoted("\xe2\x82\xe2\x82\xac"), "\"" + REPLACED + "\xe2\x82\xac\"");
	EXPECT_EQ(quoted("\xf0\x9f\x92\xff"), "\"" + REPLACED + REPLACED + "\"");
	// E0 opens nothing before 80, nor does ED before A0: each byte is by itself.
	EXPECT_EQ(quoted("\xe0\x80\x80"), "\"" + REPLACED + REPLACED + REPLACED + "\"");
	EXPECT_EQ(quoted("\xed\xa0\x80"), "\"" + REPLACED + REPLACED + REPLACED + "\"");
	EXPECT_EQ(quoted("\xf4\x90\x80\x80"), "\"" + REPLACED + REPLACED + REPLACED + REPLACED + "\"");
	EXPECT_EQ(quoted("\xc0\xaf"), "\"" + REPLACED + REPLACED + "\"");
}

TEST(JsonWriter, ACutEndIsReplacedOnce)
{
	EXPECT_EQ(quoted("a\xc3"), "\"a" + REPLACED + "\"");
	EXPECT_EQ(quoted("\xe2\x82"), "\"" + REPLACED + "\"");
	EXPECT_EQ(quoted("\xf0\x9f\x92"), "\"" + REPLACED + "\"");
}

} // namespace
