// SPDX-License-Identifier: Apache-2.0
// What block/mountinfo reads from the tables of mounts and of swap areas.
#include "case_host.h"
#include "mountinfo.h"

namespace
{

std::string quoted(text_t text)
{
	Arena arena;
	return "[" + shown(shown_text(&arena, text)) + "]";
}

std::string told(const Growing<mount_entry_t> &mounts)
{
	std::ostringstream text;
	for (const mount_entry_t &mount : mounts) {
		text << mount.id << ' ' << mount.parent_id << ' ' << mount.major_number << ':'
		     << mount.minor_number;
		for (const text_t field : {mount.root, mount.mount_point, mount.options, mount.type,
		                           mount.source, mount.super_options})
			text << ' ' << quoted(field);
		text << '\n';
	}
	return text.str();
}

std::string told(const Growing<swap_entry_t> &swaps)
{
	std::ostringstream text;
	for (const swap_entry_t &swap : swaps)
		text << quoted(swap.path) << ' ' << quoted(swap.type) << ' ' << swap.total << ' ' << swap.used
		     << ' ' << swap.priority << '\n';
	return text.str();
}

template <class Entry> class TableOf : public CaseHost, public ::testing::WithParamInterface<Case>
{
protected:
	// What is read from such a table.
	std::string read(const std::string &file, const std::string &text,
	                 bool (*reader)(Arena *, Growing<Entry> *))
	{
		put(file, text);
		show();
		Arena arena;
		Growing<Entry> entries(&arena);
		EXPECT_TRUE(reader(&arena, &entries));
		return told(entries);
	}
};

class MountTable : public TableOf<mount_entry_t>
{
protected:
	std::string read(const std::string &text)
	{
		return TableOf::read("proc/self/mountinfo", text, read_mounts);
	}
};

class SwapTable : public TableOf<swap_entry_t>
{
protected:
	std::string read(const std::string &text) { return TableOf::read("proc/swaps", text, read_swaps); }
};

TEST_P(MountTable, Means)
{
	EXPECT_EQ(read(GetParam().text), GetParam().meaning);
}

TEST_P(SwapTable, Means)
{
	EXPECT_EQ(read(GetParam().text), GetParam().meaning);
}

INSTANTIATE_TEST_SUITE_P(Cases, MountTable,
                         ::testing::ValuesIn(read_cases(BLOCK_DIRECTORY "/cases/mountinfo.cases")),
                         case_test_name);
INSTANTIATE_TEST_SUITE_P(Cases, SwapTable,
                         ::testing::ValuesIn(read_cases(BLOCK_DIRECTORY "/cases/swaps.cases")),
                         case_test_name);

TEST_F(MountTable, LinesOf64KiBAndMoreAreWhole)
{
	const std::string lower(size_t{200} << 10, 'd');
	const std::string deep = "/" + std::string(70000, 'p');
	EXPECT_EQ(read("30 1 0:40 / /merged rw - overlay overlay rw,lowerdir=/" + lower + "\n31 30 8:1 / " +
	               deep + " rw - ext4 /dev/sda1 rw\n"),
	          "30 1 0:40 [/] [/merged] [rw] [overlay] [overlay] [rw,lowerdir=/" + lower +
	                  "]\n31 30 8:1 [/] [" + deep + "] [rw] [ext4] [/dev/sda1] [rw]\n");
}

TEST_F(MountTable, HasAnyNumberOfLines)
{
	std::string text;
	for (int i = 0; i < 20000; i++)
		text += std::to_string(i + 2) + " 1 0:5 / /m" + std::to_string(i) + " rw - tmpfs t rw\n";
	put("proc/self/mountinfo", text);
	show();
	Arena arena;
	Growing<mount_entry_t> mounts(&arena);
	ASSERT_TRUE(read_mounts(&arena, &mounts));
	ASSERT_EQ(mounts.size(), 20000U);
	EXPECT_EQ(mounts[19999].mount_point, "/m19999");
	// As calls of the C library take it.
	EXPECT_STREQ(mounts[19999].mount_point.data(), "/m19999");
}

TEST_F(MountTable, NameWithNulIsNone)
{
	std::string line = "30 1 8:1 / /ab rw - ext4 /dev/sda1 rw\n";
	line.insert(line.find('b'), 1, '\0');
	EXPECT_EQ(read(line), "");
}

TEST_F(MountTable, WithoutItErrnoTells)
{
	show();
	Arena arena;
	Growing<mount_entry_t> mounts(&arena);
	Growing<swap_entry_t> swaps(&arena);
	errno = 0;
	EXPECT_FALSE(read_mounts(&arena, &mounts));
	EXPECT_EQ(errno, ENOENT);
	errno = 0;
	EXPECT_FALSE(read_swaps(&arena, &swaps));
	EXPECT_EQ(errno, ENOENT);
}

} // namespace
