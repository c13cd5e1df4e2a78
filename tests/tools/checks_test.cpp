// SPDX-License-Identifier: Apache-2.0
// The checks of doctor: what the page says of them, and what every row has to hold.
#include "examination.h"
#include "finding.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fstream>
#include <gmock/gmock.h>
#include <regex>
#include <set>
#include <sstream>

namespace
{

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

std::string page()
{
	const std::ifstream file(PAGE_OF_DISKSCOUT);
	std::ostringstream text;
	text << file.rdbuf();
	return text.str();
}

// Options stand as what is typed.
std::string quoted(const char *sentence)
{
	static const std::regex OPTION("--[a-z-]+");
	return std::regex_replace(std::string(sentence), OPTION, "`$&`");
}

// Whoever changes a row finds here what the page has to say.
std::string table_of_the_page()
{
	std::string table = "| Check | Question | How it is found out | What to do |\n|---|---|---|---|\n";
	for (const check_t *check : all_checks())
		table += "| `" + std::string(check->word) + "` | " + check->question + " | " +
		         quoted(check->how) + " | " + quoted(check->advice) + " |\n";
	return table;
}

TEST(Checks, StandInThePageAsTheyAre)
{
	EXPECT_THAT(page(), HasSubstr("\n" + table_of_the_page() + "\n"));
}

TEST(Checks, ThatRunTheToolStandBehindAllOthers)
{
	const auto checks = all_checks();
	const auto first =
		std::find_if(checks.begin(), checks.end(), [](const auto *c) { return c->runs_tool; });
	ASSERT_NE(first, checks.end());
	EXPECT_TRUE(std::all_of(first, checks.end(), [](const auto *c) { return c->runs_tool; }));
	EXPECT_THAT(page(), HasSubstr("Those from `" + std::string((*first)->word) + "` on run"));
}

// Somebody may do at once what he reads.
TEST(Checks, AdviseNothingThatTakesADiskOrItsPartitionsAway)
{
	for (const check_t *check : all_checks()) {
		const std::string advice = check->advice;
		if (advice.find("scsiremove") != std::string::npos) {
			EXPECT_THAT(advice, HasSubstr("that nothing uses")) << check->word;
		}
		EXPECT_THAT(advice, Not(HasSubstr("fdisk"))) << check->word;
		EXPECT_THAT(advice, Not(HasSubstr("make one extended partition"))) << check->word;
	}
}

TEST(Checks, HaveWordsOfTheirOwn)
{
	std::set<std::string> words;
	for (const check_t *check : all_checks()) {
		EXPECT_THAT(check->word, MatchesRegex("[a-z][a-z0-9_]*"));
		EXPECT_TRUE(words.insert(check->word).second) << check->word;
	}
	EXPECT_GT(words.size(), 25U);
}

TEST(Checks, AskAndAdviseInWholeSentences)
{
	for (const check_t *check : all_checks()) {
		EXPECT_THAT(check->question, EndsWith("?"));
		EXPECT_THAT(check->how, EndsWith(".")) << check->word;
		EXPECT_STRNE(check->advice, "");
		EXPECT_THAT(check->advice, Not(EndsWith("."))) << check->word;
		EXPECT_FALSE(isupper(static_cast<unsigned char>(*check->advice)) &&
		             islower(static_cast<unsigned char>(check->advice[1])))
			<< check->word;
	}
}

// A list that comes back short is told of nothing that runs the controller tool.
TEST(Checks, ThatRunTheToolConcernTheRaidSideAlone)
{
	for (const check_t *check : all_checks()) {
		EXPECT_TRUE(!check->runs_tool || (check->concerns & ~RAID_FAILED) == 0) << check->word;
	}
}

// What keeps somebody from asking is told to him, whatever was asked.
TEST(Advice, IsOfTheError)
{
	EXPECT_THAT(advice_for(EMFILE, {}), HasSubstr("ulimit -n"));
	EXPECT_THAT(advice_for(ENFILE, {}), HasSubstr("lsof"));
	EXPECT_THAT(advice_for(ENOMEM, {}), HasSubstr("memory"));
	EXPECT_EQ(advice_for(ENOENT, {}), "");
	EXPECT_EQ(advice_for(0, {}), "");
}

TEST(Advice, ToBecomeRootIsNotForRoot)
{
	inherited_t who;
	EXPECT_EQ(advice_for(EACCES, who), "");
	EXPECT_EQ(advice_for(EPERM, who), "");
	who.is_root = true;
	EXPECT_THAT(advice_for(EACCES, who), HasSubstr("container"));
	EXPECT_EQ(advice_for(EPERM, who), advice_for(EACCES, who));
}

} // namespace
