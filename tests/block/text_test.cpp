// SPDX-License-Identifier: Apache-2.0
// What block/text makes of the texts of hosts.
#include "text.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

struct shown_case_t {
	const char *name;
	std::string raw;
	const char *shown;
};

class ShownText : public ::testing::TestWithParam<shown_case_t>
{
};

TEST_P(ShownText, IsValidAndCanBeHadBack)
{
	Arena arena;
	EXPECT_STREQ(shown_text(&arena, std::string_view(GetParam().raw)), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Bytes, ShownText,
                         ::testing::Values(shown_case_t{"plain", "ACME disk", "ACME disk"},
                                           shown_case_t{"two_bytes",
                                                        "Gr\xc3\xb6\xc3\x9f"
                                                        "e",
                                                        "Gr\xc3\xb6\xc3\x9f"
                                                        "e"},
                                           shown_case_t{"newline", "a\nb", "a\\x0ab"},
                                           shown_case_t{"backslash", "a\\b", "a\\x5cb"},
                                           shown_case_t{"delete", "a\x7f", "a\\x7f"},
                                           shown_case_t{"no_utf8",
                                                        "a\xff"
                                                        "b",
                                                        "a\\xffb"},
                                           shown_case_t{"overlong", "\xc0\xaf", "\\xc0\\xaf"},
                                           shown_case_t{"surrogate", "\xed\xa0\x80", "\\xed\\xa0\\x80"},
                                           shown_case_t{"cut_sequence", "a\xe2\x82", "a\\xe2\\x82"},
                                           shown_case_t{"terminal_control",
                                                        "\xc2\x9b"
                                                        "2J",
                                                        "\\xc2\\x9b2J"},
                                           shown_case_t{"above_unicode", "\xf4\x90\x80\x80",
                                                        "\\xf4\\x90\\x80\\x80"}),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(CompareNames, CountsAsPeopleDo)
{
	EXPECT_LT(compare_names("sda2", "sda10"), 0);
	EXPECT_LT(compare_names("sda", "sda1"), 0);
	EXPECT_LT(compare_names("nvme0n1p9", "nvme0n2"), 0);
	EXPECT_GT(compare_names("sdb", "sda10"), 0);
	EXPECT_EQ(compare_names("loop7", "loop7"), 0);
	EXPECT_NE(compare_names("sda1", "sda01"), 0);
	EXPECT_LT(compare_names("a5", "a99999999999999999999"), 0);
}

} // namespace
