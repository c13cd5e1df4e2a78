// SPDX-License-Identifier: Apache-2.0
// The mounted volumes: one for every entry of the mount table.
#include "host.h"

#include "hdd/exe/linux.h"
#include "replay/replay.h"

namespace
{

class VollistTest : public HostTest
{
protected:
	int get(filter_func_t filter = nullptr, const void *arg = nullptr)
	{
		host.show();
		list = soiled<exe_vollist_t>();
		return get_exe_vollist(list.get(), filter, arg);
	}
	std::unique_ptr<exe_vollist_t> list;
};

TEST_F(VollistTest, EveryEntryIsAVolume)
{
	host.file("/etc/mtab",
	          "/dev/hda1 / ext3 rw 0 0\nproc /proc proc rw 0 0\n/dev/hda3 /boot ext2 rw 0 0\n");
	host.table("mount / 4096 1000 500 400\nmount /proc 4096 0 0\nmount /boot 1024 15225 15188\n");
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 3, 3, 32);
	static const struct {
		const char *devpath;
		const char *mntpath;
		const char *fsname;
		size32_t total;
		size32_t free;
		int sys;
	} rows[] = {
		{"/dev/hda1", "/", "ext3", 8000, 4000, 1},
		{"proc", "/proc", "proc", 0, 0, 0},
		{"/dev/hda3", "/boot", "ext2", 30450, 30376, 1},
	};
	for (int i = 0; i < 3; i++) {
		const exe_vol_t &volume = list->item[i];
		EXPECT_EQ(text_of(volume.devpath), rows[i].devpath);
		EXPECT_EQ(text_of(volume.mntpath), rows[i].mntpath);
		EXPECT_EQ(text_of(volume.volid.fsname), rows[i].fsname);
		EXPECT_EQ(text_of(volume.volid.volname), "");
		EXPECT_EQ(volume.volspace.total, rows[i].total);
		EXPECT_EQ(volume.volspace.free, rows[i].free);
		EXPECT_EQ(volume.sys, rows[i].sys);
	}
}

TEST_F(VollistTest, OnlyRootAndBootThemselvesAreTheSystems)
{
	static const struct {
		const char *mntpath;
		int sys;
	} rows[] = {{"/boot", 1},  {"/", 1},  {"/boot/efi", 0}, {"/boot/", 0},
	            {"/bootx", 0}, {"//", 0}, {"none", 0}};
	for (const auto &row : rows) {
		host.file("/etc/mtab", printed("/dev/hda1 %s vfat rw 0 0\n", row.mntpath));
		EXPECT_EQ(get(), 0);
		EXPECT_EQ(list->item[0].sys, row.sys) << row.mntpath;
	}
}

TEST_F(VollistTest, LargeVolumesHave64BitSpace)
{
	// 2^32 blocks of 4096 are 2^35 units of 512.
	host.file("/etc/mtab", "/dev/hda1 /big xfs rw 0 0\n")
		.table("mount /big 4096 4294967296 4294967295\n");
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(list->item[0].volspace.total, 34359738368U);
	EXPECT_EQ(list->item[0].volspace.free, 34359738360U);
}

TEST_F(VollistTest, SpaceThatCannotBeAskedIsZero)
{
	host.file("/etc/mtab", "/dev/hda1 /stale nfs rw 0 0\n/dev/hda2 /gone nfs rw 0 0\n");
	host.table("mount /stale fails ESTALE\n");
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 2, 2, 32);
	EXPECT_TRUE(is_zero(list->item[0].volspace));
	EXPECT_TRUE(is_zero(list->item[1].volspace));
	EXPECT_EQ(text_of(list->item[0].volid.fsname), "nfs");
}

TEST_F(VollistTest, FortyEntriesGive32Volumes)
{
	std::string mtab;
	for (int i = 0; i < 40; i++)
		mtab += printed("/dev/x%d /mnt/%d ext3 rw 0 0\n", i, i);
	host.file("/etc/mtab", mtab);
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 32, 32, 32);
	EXPECT_EQ(text_of(list->item[31].mntpath), "/mnt/31");
}

TEST_F(VollistTest, DroppedVolumesWereReadAllTheSame)
{
	std::string mtab;
	for (int i = 0; i < 40; i++)
		mtab += printed("/dev/x%d /mnt/%d ext3 rw 0 0\n", i, i);
	host.file("/etc/mtab", mtab);
	const filter_func_t behind = [](const void *item, const void *arg) -> int {
		return strcmp(static_cast<const exe_vol_t *>(item)->mntpath,
		              static_cast<const char *>(arg)) == 0;
	};
	// The table of mounts is full after 32, whatever the filter says.
	EXPECT_EQ(get(behind, "/mnt/32"), 0);
	expect_shape(*list, 0, 0, 32);
	EXPECT_EQ(get(behind, "/mnt/31"), 0);
	expect_shape(*list, 1, 1, 32);
}

TEST_F(VollistTest, FilterSeesTheFinishedVolume)
{
	host.file("/etc/mtab", "/dev/hda1 / ext3 rw 0 0\n").table("mount / 1024 10 5\n");
	const filter_func_t check = [](const void *item, const void *arg) {
		const auto *volume = static_cast<const exe_vol_t *>(item);
		EXPECT_STREQ(volume->devpath, "/dev/hda1");
		EXPECT_STREQ(volume->mntpath, "/");
		EXPECT_STREQ(volume->volid.fsname, "ext3");
		EXPECT_EQ(volume->volspace.total, 20U);
		EXPECT_EQ(volume->volspace.free, 10U);
		EXPECT_EQ(volume->sys, 1);
		return arg ? -1 : 0;
	};
	EXPECT_EQ(get(check, "x"), 0);
	expect_shape(*list, 1, 1, 32);
	EXPECT_EQ(get(check), 0);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(VollistTest, PipeThatCannotBeOpened)
{
	host.file("/etc/mtab", "/dev/hda1 / ext3 rw 0 0\n").show();
	list = soiled<exe_vollist_t>();
	replay_fail_call(1, 0);
	EXPECT_EQ(get_exe_vollist(list.get(), nullptr, nullptr), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(VollistTest, ReadsThroughOneShell)
{
	host.file("/etc/mtab", "/dev/hda1 / ext3 rw 0 0\n");
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(host.log(), ::testing::ElementsAre("shell cat /etc/mtab"));
}

TEST_F(VollistTest, MissingTable)
{
	EXPECT_EQ(get(), -1);
	expect_shape(*list, 0, 0, 32);
}

// The command is still writing when it is heard no more, and ends by a signal.
TEST_F(VollistTest, ListThatIsFullBeforeTheEndIsNoFailure)
{
	std::string mtab;
	for (int i = 0; i < 400; i++)
		mtab += printed("/dev/x%d /mnt/%d ext3 %s 0 0\n", i, i, repeat("o", 2000).c_str());
	host.file("/etc/mtab", mtab);
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 32, 32, 32);
}

} // namespace
