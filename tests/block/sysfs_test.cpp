// SPDX-License-Identifier: Apache-2.0
// Attributes: one file, one read; and what may stand in a file's place.
#include "host.h"
#include "sysfs.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

namespace
{

using namespace std::string_literals;

class Attributes : public BlockHost
{
protected:
	Arena arena;

	Attributes()
	{
		put("sys/x/empty", "");
		show();
	}

	std::string text(const char *name)
	{
		const Folder folder("/sys/x");
		return shown(read_text(&arena, folder, name));
	}
	int64_t count(const std::string &content, int64_t most = INT64_MAX)
	{
		put("sys/x/n", content);
		const Folder folder("/sys/x");
		return read_count(folder, "n", most);
	}
	int flag(const std::string &content)
	{
		put("sys/x/n", content);
		const Folder folder("/sys/x");
		return read_flag(folder, "n");
	}
};

TEST_F(Attributes, AreTrimmedTexts)
{
	put("sys/x/a", "  ACME disk \n");
	put("sys/x/b", "\n\n");
	put("sys/x/c", "two\nlines\n");
	EXPECT_EQ(text("a"), "ACME disk");
	EXPECT_EQ(text("b"), "(absent)");
	EXPECT_EQ(text("c"), "two\\x0alines");
	EXPECT_EQ(text("empty"), "(absent)");
	EXPECT_EQ(text("nothing"), "(absent)");
}

TEST_F(Attributes, OfUpTo4096BytesAreWhole)
{
	put("sys/x/most", std::string(4096, 'x'));
	put("sys/x/more", std::string(4097, 'x'));
	EXPECT_EQ(text("most"), std::string(4096, 'x'));
	EXPECT_EQ(text("more"), "(absent)");
	attribute_t attribute;
	const Folder folder("/sys/x");
	EXPECT_FALSE(read_attribute(folder, "more", &attribute));
	EXPECT_EQ(errno, EFBIG);
}

TEST_F(Attributes, AreNoFoldersRingsOrPipes)
{
	put("sys/x/folder/file", "1\n");
	link("sys/x/ring", "ring");
	link("sys/x/one", "other");
	link("sys/x/other", "one");
	link("sys/x/nowhere", "gone");
	link("sys/x/to", "folder/file");
	ASSERT_EQ(mkfifo((host() / "sys/x/pipe").c_str(), 0600), 0);
	for (const char *name : {"folder", "ring", "one", "nowhere", "pipe", "empty/below"})
		EXPECT_EQ(text(name), "(absent)") << name;
	EXPECT_EQ(text("to"), "1");
}

TEST_F(Attributes, AreNumbersFromZeroOn)
{
	EXPECT_EQ(count("0\n"), 0);
	EXPECT_EQ(count(" 42 \n"), 42);
	EXPECT_EQ(count("007\n"), 7);
	EXPECT_EQ(count("9223372036854775807\n"), INT64_MAX);
	EXPECT_EQ(count("9223372036854775808\n"), BLOCK_ABSENT);
	EXPECT_EQ(count("99999999999999999999999\n"), BLOCK_ABSENT);
	EXPECT_EQ(count("512\n", 511), BLOCK_ABSENT);
	EXPECT_EQ(count("512\n", 512), 512);
	for (const char *none : {"-1\n", "+1\n", "0x10\n", "1 2\n", "1k\n", "", "\n", "none\n"})
		EXPECT_EQ(count(none), BLOCK_ABSENT) << none;
}

TEST_F(Attributes, AreFlags)
{
	EXPECT_EQ(flag("0\n"), 0);
	EXPECT_EQ(flag("1\n"), 1);
	EXPECT_EQ(flag("2\n"), 1);
	EXPECT_EQ(flag("yes\n"), BLOCK_ABSENT);
	EXPECT_EQ(flag("-1\n"), BLOCK_ABSENT);
}

TEST_F(Attributes, OfOneThatIsNotThereTheFolderIsMarked)
{
	attribute_t attribute;
	const Folder folder("/sys/x");
	ASSERT_TRUE(folder.is_open());
	EXPECT_TRUE(read_attribute(folder, "empty", &attribute));
	EXPECT_FALSE(folder.missed());
	EXPECT_FALSE(read_attribute(folder, "nothing", &attribute));
	EXPECT_EQ(errno, ENOENT);
	EXPECT_TRUE(folder.missed());
	EXPECT_TRUE(folder.has("empty"));
	EXPECT_FALSE(folder.has("nothing"));
}

// What had the name before is gone for good, though another folder has it now.
TEST_F(Attributes, BelongToTheFolderThatWasOpened)
{
	put("sys/y/name", "first\n");
	const Folder folder("/sys/y");
	std::filesystem::remove_all(host() / "sys/y");
	put("sys/y/name", "second\n");
	EXPECT_EQ(shown(read_text(&arena, folder, "name")), "(absent)");
	EXPECT_FALSE(folder.has("name"));
}

TEST_F(Attributes, OfAFolderThatIsNotThereAreAbsent)
{
	const Folder none("/sys/none");
	const Folder file("/sys/x/empty");
	const Folder below(none, "x");
	attribute_t attribute;
	for (const Folder *folder : {&none, &file, &below}) {
		EXPECT_FALSE(folder->is_open());
		EXPECT_FALSE(folder->has("empty"));
		EXPECT_FALSE(read_attribute(*folder, "empty", &attribute));
		EXPECT_EQ(read_count(*folder, "empty"), BLOCK_ABSENT);
		EXPECT_EQ(read_link(&arena, *folder, "empty"), nullptr);
		const Entries entries(*folder, ".");
		EXPECT_FALSE(entries.is_open());
	}
}

TEST_F(Attributes, LinksAreToldAsTheyStand)
{
	link("sys/x/link", "../../devices/a b");
	const Folder folder("/sys/x");
	EXPECT_EQ(shown(read_link(&arena, folder, "link")), "../../devices/a b");
	EXPECT_EQ(read_link(&arena, folder, "empty"), nullptr);
	EXPECT_EQ(read_link(&arena, folder, "nothing"), nullptr);
}

TEST_F(Attributes, FilesOfAnyLengthUpToALimit)
{
	const std::string large(100000, 'x');
	put("sys/x/large", large);
	const Folder folder("/sys/x");
	size_t length = 0;
	const char *text = read_file(&arena, folder, "large", large.size(), &length);
	ASSERT_NE(text, nullptr);
	EXPECT_EQ(std::string(text, length), large);
	EXPECT_EQ(text[length], '\0');
	EXPECT_EQ(read_file(&arena, folder, "large", large.size() - 1, &length), nullptr);
	EXPECT_EQ(errno, EFBIG);
	EXPECT_EQ(read_file(&arena, "/sys/x/nothing", 10, &length), nullptr);
	EXPECT_EQ(errno, ENOENT);
	EXPECT_STREQ(read_file(&arena, folder, "empty", 10, &length), "");
	EXPECT_EQ(length, 0U);
}

TEST_F(Attributes, EntriesOfAFolderAreItsNames)
{
	put("sys/z/b", "");
	put("sys/z/..c", "");
	put("sys/z/a b\n/x", "");
	const Folder folder("/sys");
	Entries entries(folder, "z");
	ASSERT_TRUE(entries.is_open());
	std::vector<std::string> names;
	while (const char *name = entries.next())
		names.emplace_back(name);
	std::sort(names.begin(), names.end());
	EXPECT_EQ(names, (std::vector<std::string>{"..c", "a b\n", "b"}));
	EXPECT_FALSE(entries.failed());
	Entries none(folder, "nothing");
	EXPECT_EQ(none.next(), nullptr);
	EXPECT_TRUE(none.failed());
	EXPECT_EQ(errno, ENOENT);
}

} // namespace
