// SPDX-License-Identifier: Apache-2.0
// The sorted listing of a directory.
#include "host.h"

#include "hdd/sal/src/0/dir.h"

namespace
{

class DirTest : public HostTest
{
};

std::vector<std::string> names_of(const Listing &listing)
{
	std::vector<std::string> names;
	for (int i = 0; i < listing.count(); i++)
		names.push_back(listing.name(i));
	return names;
}

TEST_F(DirTest, ListsInAlphabeticalOrder)
{
	for (const char *name : {"hdc", "ide0", "hda", "hdb"})
		host.directory(std::string("/proc/ide/") + name);
	const Listing listing("/proc/ide");
	EXPECT_TRUE(listing.is_read());
	EXPECT_THAT(names_of(listing), ::testing::ElementsAre(".", "..", "hda", "hdb", "hdc", "ide0"));
}

TEST_F(DirTest, ListsOnlyWhatIsSelected)
{
	for (const char *name : {"hdc", "ide0", "hda"})
		host.directory(std::string("/proc/ide/") + name);
	const Listing listing("/proc/ide",
	                      [](const dirent *entry) { return entry->d_name[0] == 'h' ? 1 : 0; });
	EXPECT_TRUE(listing.is_read());
	EXPECT_THAT(names_of(listing), ::testing::ElementsAre("hda", "hdc"));
}

TEST_F(DirTest, NothingSelectedIsStillRead)
{
	host.directory("/proc/ide");
	const Listing listing("/proc/ide", [](const dirent *) { return 0; });
	EXPECT_TRUE(listing.is_read());
	EXPECT_EQ(listing.count(), 0);
}

TEST_F(DirTest, MissingDirectoryIsNotRead)
{
	const Listing listing("/proc/ide");
	EXPECT_FALSE(listing.is_read());
	EXPECT_EQ(listing.count(), 0);
}

TEST_F(DirTest, FileIsNotRead)
{
	host.file("/proc/ide", "");
	const Listing listing("/proc/ide");
	EXPECT_FALSE(listing.is_read());
	EXPECT_EQ(listing.count(), 0);
}

} // namespace
