// SPDX-License-Identifier: Apache-2.0
// Which word somebody meant.
#include "closest_word.h"

#include <gmock/gmock.h>

namespace
{

TEST(EditDistance, CountsEditsOfEachKind)
{
	EXPECT_EQ(edit_distance("", ""), 0U);
	EXPECT_EQ(edit_distance("list", "list"), 0U);
	EXPECT_EQ(edit_distance("", "list"), 4U);
	EXPECT_EQ(edit_distance("list", ""), 4U);
	EXPECT_EQ(edit_distance("lit", "list"), 1U);   // left out
	EXPECT_EQ(edit_distance("liist", "list"), 1U); // put in
	EXPECT_EQ(edit_distance("lust", "list"), 1U);  // exchanged for another
	EXPECT_EQ(edit_distance("lsit", "list"), 1U);  // exchanged with the next one
	EXPECT_EQ(edit_distance("ilts", "list"), 2U);  // twice
	EXPECT_EQ(edit_distance("kitten", "sitting"), 3U);
}

const std::vector<std::string_view> WORDS = {"list",   "schema",     "devices", "links",
                                             "mounts", "partitions", "disks",   "raid_disks"};

TEST(Suggestion, IsTheClosestWord)
{
	EXPECT_EQ(suggestion("lsit", WORDS), "; did you mean \"list\"?");
	EXPECT_EQ(suggestion("dsks", WORDS), "; did you mean \"disks\"?");
	EXPECT_EQ(suggestion("partions", WORDS), "; did you mean \"partitions\"?");
	EXPECT_EQ(suggestion("raiddisk", WORDS), "; did you mean \"raid_disks\"?");
}

TEST(Suggestion, CaseIsNoMistake)
{
	EXPECT_EQ(suggestion("LIST", WORDS), "; did you mean \"list\"?");
	EXPECT_EQ(suggestion("SIZE", {"size"}), "; did you mean \"size\"?");
}

TEST(Suggestion, TheFirstOfEqualsWins)
{
	EXPECT_EQ(suggestion("lisks", WORDS), "; did you mean \"links\"?");
	EXPECT_EQ(suggestion("lisks", {"disks", "links"}), "; did you mean \"disks\"?");
}

TEST(Suggestion, ShortWordsMustBeNear)
{
	// One letter is near to every word of two, and says nothing.
	EXPECT_EQ(suggestion("x", WORDS), "");
	EXPECT_EQ(suggestion("x", {"xy", "y"}), "");
	EXPECT_EQ(suggestion("", {"a", "ab"}), "");
	EXPECT_EQ(suggestion("ab", {"xy"}), "");
	EXPECT_EQ(suggestion("ba", {"ab"}), "; did you mean \"ab\"?");
	EXPECT_EQ(suggestion("sda", WORDS), "");
	EXPECT_EQ(suggestion("lits", {"list"}), "; did you mean \"list\"?");
	EXPECT_EQ(suggestion("abcd", {"list"}), "");
	EXPECT_EQ(suggestion("lxyt", {"list"}), "");
}

TEST(Suggestion, FarWordsAreNone)
{
	EXPECT_EQ(suggestion("frobnicate", WORDS), "");
	EXPECT_EQ(suggestion("list", {}), "");
	// Three edits away, however long.
	EXPECT_EQ(suggestion("partxxxions", WORDS), "");
	EXPECT_EQ(suggestion(std::string(100000, 'a'), {std::string_view("a")}), "");
}

TEST(Suggestion, LongWordsAreNotCompared)
{
	const std::string word(64, 'a');
	EXPECT_EQ(suggestion(word.substr(1) + "b", {word}), "; did you mean \"" + word + "\"?");
	EXPECT_EQ(suggestion(word + "b", {word}), "");
}

} // namespace
