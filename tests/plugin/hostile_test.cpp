// SPDX-License-Identifier: Apache-2.0
// Hosts whose every table and disk is damaged: cut, spoiled, overwritten, stretched. Whatever the kernel or a
// disk says, each query ends with a documented result and gives back what it took.
#include "plugin.h"

#include "replay/replay.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <string.h>

namespace fs = std::filesystem;

namespace
{

constexpr size_t SECTOR = 512;
constexpr size_t DISK_SECTORS = 64;

using Random = std::mt19937; // the same numbers everywhere, so that a failure can be looked at

size_t below(Random &random, size_t limit)
{
	return limit == 0 ? 0 : random() % limit;
}

std::string noise(Random &random, size_t length)
{
	std::string text(length, '\0');
	for (char &c : text)
		c = static_cast<char>(random());
	return text;
}

std::string read_file(const fs::path &path)
{
	std::stringstream text;
	text << std::ifstream(path, std::ios::binary).rdbuf();
	return text.str();
}

void write_file(const fs::path &path, const std::string &text)
{
	fs::create_directories(path.parent_path());
	std::ofstream(path, std::ios::binary) << text;
}

void cut(std::string *text, Random &random)
{
	text->resize(below(random, text->size() + 1));
}

void spoil_bytes(std::string *text, Random &random)
{
	for (size_t i = 0; i <= text->size() / 50; i++)
		if (!text->empty())
			(*text)[below(random, text->size())] = static_cast<char>(random());
}

void overwrite_with_noise(std::string *text, Random &random)
{
	*text = noise(random, below(random, 20000));
}

void stretch_a_word(std::string *text, Random &random)
{
	const char fill[] = {'9', 'a', ' ', '/', '\0', '#'};
	text->insert(below(random, text->size() + 1), 1 + below(random, 100000),
	             fill[below(random, sizeof fill)]);
}

void repeat_it(std::string *text, Random &)
{
	const std::string once = *text;
	for (int i = 0; i < 40; i++)
		*text += once;
}

void join_the_lines(std::string *text, Random &)
{
	for (char &c : *text)
		c = c == '\n' ? ' ' : c;
}

void lose_it(std::string *text, Random &)
{
	text->clear();
}

void keep_it(std::string *, Random &) {}

constexpr void (*DAMAGES[])(std::string *, Random &) = {
	keep_it, cut, spoil_bytes, overwrite_with_noise, stretch_a_word, repeat_it, join_the_lines, lose_it,
};

// A disk of noise in which every sector bears the signature, so that every link leads on.
std::string noisy_disk(Random &random)
{
	std::string disk = noise(random, DISK_SECTORS * SECTOR);
	for (size_t sector = 0; sector < DISK_SECTORS; sector++) {
		char *table = &disk[sector * SECTOR];
		table[510] = 0x55;
		table[511] = static_cast<char>(0xaa);
		for (size_t slot = 0; slot < 4; slot++) {
			char *entry = table + 446 + 16 * slot;
			const bool links = below(random, 2) != 0;
			entry[4] = links ? 0x05 : static_cast<char>(below(random, 3) * 0x83);
			const auto start =
				static_cast<uint32_t>(links ? below(random, DISK_SECTORS) : random());
			memcpy(entry + 8, &start, sizeof start);
		}
	}
	return disk;
}

class Hostile : public testing::TestWithParam<unsigned>
{
protected:
	void SetUp() override
	{
		std::string name = fs::temp_directory_path() / "diskscout-hostile-XXXXXX";
		directory_ = mkdtemp(name.data());
		Random random(GetParam());
		build(random);
		replay_set_child_library(REPLAY_LIBRARY);
		ASSERT_EQ(replay_use(directory_.c_str()), 0);
	}

	void TearDown() override
	{
		replay_use(nullptr);
		fs::remove_all(directory_);
	}

	void build(Random &random)
	{
		const fs::path sound = HOSTS_DIRECTORY "/sixteen-disks";
		for (const auto &entry : fs::recursive_directory_iterator(sound)) {
			const fs::path to = directory_ / entry.path().lexically_relative(sound);
			fs::create_directories(to.parent_path());
			if (entry.is_symlink())
				fs::copy_symlink(entry.path(), to);
			else if (entry.is_regular_file() && entry.path().extension() != ".json" &&
			         entry.path().filename() != "host.txt")
				copy_damaged(entry.path(), to, random);
		}
		std::string table;
		for (const char *disk : {"hda", "hdb", "hdd", "sda", "sdb", "sdc"}) {
			write_file(directory_ / disk, noisy_disk(random));
			table += std::string("device /dev/") + disk + "\n\tBLKGETSIZE " +
			         std::to_string(DISK_SECTORS) +
			         "\n\tHDIO_GETGEO 4 4 4\n\tSCSI_IOCTL_GET_IDLUN 0x0000000" +
			         std::to_string(below(random, 3)) + "\n\timage " + disk + "\n";
		}
		write_file(directory_ / "host.txt", table);
	}

	static void copy_damaged(const fs::path &from, const fs::path &to, Random &random)
	{
		std::string text = read_file(from);
		// Half of the files stay whole, so that queries get beyond the first.
		if (below(random, 2) == 0)
			DAMAGES[below(random, std::size(DAMAGES))](&text, random);
		write_file(to, text);
	}

private:
	fs::path directory_;
};

TEST_P(Hostile, EveryQueryEndsAndGivesBackWhatItTook)
{
	for (const UINT code : {122100U, 123100U, 124100U}) {
		void *head = nullptr;
		int count = -1;
		testing::internal::CaptureStderr();
		const int result = plugin().query(code, &head, &count);
		EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
		EXPECT_TRUE(result == 0 || (result == -1 && code == 123100U));
		EXPECT_GE(count, 0);
		EXPECT_EQ(*plugin().live_local, count);
		EXPECT_EQ(plugin().free_list(code + 1, &head), 0);
		EXPECT_EQ(*plugin().live_local, 0);
	}
}

INSTANTIATE_TEST_SUITE_P(Seeds, Hostile, testing::Range(0U, 40U));

} // namespace
