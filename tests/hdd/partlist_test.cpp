// SPDX-License-Identifier: Apache-2.0
// The partitions of a disk, joined to the volumes that are mounted from them.
#include "host.h"

#include "hdd/exe/linux.h"
#include "hdd/sal/src/0/list.h"
#include "replay/replay.h"

namespace
{

class PartlistTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		vols = std::make_unique<exe_vollist_t>();
		list_clear(vols.get());
	}
	void disk(const std::string &tables, const std::string &size = "100000")
	{
		host.table("device /dev/hda\n\tBLKGETSIZE " + size + "\n" + tables);
		host.show();
	}
	int get(filter_func_t filter = nullptr, void *arg = nullptr)
	{
		list = soiled<exe_partlist_t>();
		return get_exe_partlist_on_disk("/dev/hda", list.get(), filter, arg, vols.get());
	}
	exe_vol_t &mounted(const char *devpath, const char *mntpath, size32_t total = 0)
	{
		exe_vol_t volume = {};
		strcpy(volume.devpath, devpath);
		strcpy(volume.mntpath, mntpath);
		strcpy(volume.volid.fsname, ("fs" + number(vols->num)).c_str());
		volume.volspace = {total, total / 2};
		EXPECT_EQ(list_add(vols.get(), LIST_FIRST_FREE, volume), 0);
		return vols->item[vols->num - 1];
	}
	const exe_part_t &first() const { return list->item[0]; }
	std::unique_ptr<exe_vollist_t> vols;
	std::unique_ptr<exe_partlist_t> list;
};

const char *const ONE = "table 0\nentry 80 83 63 1000\n";

TEST_F(PartlistTest, ExtendedPartitionAndLogicalDrives)
{
	disk("table 0\nentry 80 83 63 937\nentry 00 05 1000 9000\n"
	     "table 1000\nentry 00 83 63 900\nentry 00 05 2000 1000\ntable 3000\nentry 00 82 10 990\n");
	mounted("/dev/hda5", "/home", 40);
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 4, 4, 32);
	static const struct {
		int part_index;
		uint8_t type;
		int boot;
		size32_t start;
		size32_t size;
		const char *devpath;
		const char *mntpath;
	} rows[] = {
		{0, 0x83, 0x80, 63, 937, "/dev/hda1", ""},
		{1, 0x05, 0, 1000, 9000, "/dev/hda2", ""},
		{4, 0x83, 0, 1063, 900, "/dev/hda5", "/home"},
		{5, 0x82, 0, 3010, 990, "/dev/hda6", ""},
	};
	for (int i = 0; i < 4; i++) {
		const exe_part_t &part = list->item[i];
		EXPECT_EQ(part.part_index, rows[i].part_index);
		EXPECT_EQ(part.type, rows[i].type);
		EXPECT_EQ(part.boot, rows[i].boot);
		EXPECT_EQ(part.start, rows[i].start);
		EXPECT_EQ(part.size, rows[i].size);
		EXPECT_EQ(text_of(part.devpath), rows[i].devpath);
		EXPECT_EQ(text_of(part.disk), "/dev/hda");
		EXPECT_EQ(text_of(part.mntpath), rows[i].mntpath);
		EXPECT_EQ(part.sys, 0);
	}
	EXPECT_EQ(list->item[2].volspace.total, 40U);
	EXPECT_TRUE(is_zero(list->item[0].volid));
	EXPECT_TRUE(is_zero(list->item[0].volspace));
}

TEST_F(PartlistTest, PrimaryPartitionInSlot2)
{
	disk("table 0\nentry -\nentry -\nentry 80 83 63 1000\n");
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 1, 1, 32);
	EXPECT_EQ(first().part_index, 2);
	EXPECT_EQ(first().boot, 0x80);
	EXPECT_EQ(text_of(first().devpath), "/dev/hda3");
}

TEST_F(PartlistTest, BlankDisk)
{
	disk("");
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(PartlistTest, DiskThatCannotBeOpenedSizedOrRead)
{
	EXPECT_EQ(get(), -1);
	expect_shape(*list, 0, 0, 32);
	disk("", "fails ENXIO");
	EXPECT_EQ(get(), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(PartlistTest, ShortReadLeavesNothing)
{
	disk("ends 900\ntable 0\nentry 80 83 63 100\nentry 00 05 1000 100\n");
	mounted("/dev/hda1", "/");
	EXPECT_EQ(get(), -1);
	expect_shape(*list, 0, 0, 32);
}

TEST_F(PartlistTest, VolumeIsCopied)
{
	disk(ONE);
	mounted("/dev/hda10", "/ten", 10);
	exe_vol_t &volume = mounted("/dev/hda1", "/data", 40);
	strcpy(volume.volid.volname, "LABEL");
	mounted("/dev/hda", "/disk", 20);
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(first().mntpath), "/data");
	EXPECT_EQ(text_of(first().volid.fsname), "fs1");
	EXPECT_EQ(text_of(first().volid.volname), "LABEL");
	EXPECT_EQ(first().volspace.total, 40U);
	EXPECT_EQ(first().volspace.free, 20U);
	EXPECT_EQ(first().sys, 0);
}

TEST_F(PartlistTest, SecondMountIsJoinedAndGivesTheSpace)
{
	disk(ONE);
	mounted("/dev/hda1", "/mnt/a", 10);
	mounted("/dev/hdb1", "/mnt/x", 20);
	mounted("/dev/hda1", "/mnt/b", 30);
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(first().mntpath), "/mnt/a;/mnt/b");
	EXPECT_EQ(first().volspace.total, 30U);
	EXPECT_EQ(text_of(first().volid.fsname), "fs2");
}

TEST_F(PartlistTest, AnySystemVolumeMakesASystemPartition)
{
	disk(ONE);
	mounted("/dev/hda1", "/").sys = 1;
	mounted("/dev/hda1", "/mnt");
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(first().sys, 1);
}

TEST_F(PartlistTest, SystemVolumeElsewhereDoesNot)
{
	disk(ONE);
	mounted("/dev/hda2", "/").sys = 1;
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(first().sys, 0);
}

struct mount_t {
	const char *devpath;
	const char *mntpath;
};

struct choice_row_t {
	std::vector<mount_t> mounts; // the n-th, counted from 1, has the total n
	size32_t chosen;             // 0: none
	const char *joined;
};

class Choice : public PartlistTest, public ::testing::WithParamInterface<choice_row_t>
{
};

TEST_P(Choice, OfTheVolume)
{
	disk(ONE);
	size32_t total = 0;
	for (const mount_t &mount : GetParam().mounts)
		mounted(mount.devpath, mount.mntpath, ++total);
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(first().volspace.total, GetParam().chosen);
	EXPECT_EQ(text_of(first().mntpath), GetParam().joined);
	EXPECT_EQ(text_of(first().volid.fsname),
	          GetParam().chosen ? "fs" + number(static_cast<long>(GetParam().chosen) - 1) : "");
}

INSTANTIATE_TEST_SUITE_P(
	Mounts, Choice,
	::testing::Values(
		// Hidden by a later mount on the same point.
		choice_row_t{{{"/dev/hda1", "/a"}, {"/dev/hdb1", "/a"}}, 0, "/a"},
		choice_row_t{{{"/dev/hdb1", "/a"}, {"/dev/hda1", "/a"}}, 2, "/a"},
		choice_row_t{{{"/dev/hda1", "/a"}, {"/dev/hda1", "/a"}}, 2, "/a;/a"},
		// A later mount beneath it.
		choice_row_t{{{"/dev/hda1", "/usr"}, {"/dev/hdb1", "/usr/local"}}, 0, "/usr"},
		choice_row_t{{{"/dev/hdb1", "/usr/local"}, {"/dev/hda1", "/usr"}}, 2, "/usr"},
		choice_row_t{{{"/dev/hda1", "/usr"}, {"/dev/hdb1", "/usrx"}}, 1, "/usr"},
		choice_row_t{{{"/dev/hda1", "/usr"}, {"/dev/hdb1", "/us"}}, 1, "/usr"},
		choice_row_t{{{"/dev/hda1", "/usr"}, {"proc", "/x/usr/y"}}, 1, "/usr"},
		// The earlier volume stays chosen when the later one is hidden.
		choice_row_t{{{"/dev/hda1", "/a"}, {"/dev/hda1", "/b"}, {"none", "/b/c"}}, 1, "/a;/b"},
		// "/" followed by "/" begins no mount point.
		choice_row_t{{{"/dev/hda1", "/"}, {"proc", "/proc"}, {"/dev/hdb1", "/boot"}}, 1, "/"},
		choice_row_t{{{"/dev/hdb1", "/a"}}, 0, ""}));

TEST_F(PartlistTest, DeadVolumesDoNotJoinButHide)
{
	disk(ONE);
	mounted("/dev/hda1", "/a", 1);
	mounted("/dev/hda1", "/b", 2).tag = 0;
	mounted("/dev/hdb1", "/c", 3);
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(first().mntpath), "/a");
	EXPECT_EQ(first().volspace.total, 1U);
	strcpy(vols->item[30].mntpath, "/a");
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(first().mntpath), "/a");
	EXPECT_EQ(first().volspace.total, 0U);
}

TEST_F(PartlistTest, VolumeWithoutMountPointIsHiddenByTheFreeSlots)
{
	disk(ONE);
	mounted("/dev/hda1", "", 1);
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(first().mntpath), "");
	EXPECT_EQ(first().volspace.total, 0U);
}

TEST_F(PartlistTest, JoinedMountPointsAreCutAt4095)
{
	disk(ONE);
	const std::string a = "/" + std::string(2999, 'a');
	const std::string b = "/" + std::string(2999, 'b');
	mounted("/dev/hda1", a.c_str(), 1);
	mounted("/dev/hda1", b.c_str(), 2);
	mounted("/dev/hda1", "/c", 3);
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(first().mntpath), (a + ";" + b).substr(0, 4095));
	EXPECT_EQ(first().volspace.total, 3U);
}

TEST_F(PartlistTest, BuildsItsOwnVolumesWithoutAList)
{
	disk(ONE);
	host.file("/etc/mtab", "/dev/hda1 / ext3 rw 0 0\n").table("mount / 1024 10 5\n");
	host.show();
	list = soiled<exe_partlist_t>();
	EXPECT_EQ(get_exe_partlist_on_disk("/dev/hda", list.get(), nullptr, nullptr, nullptr), 0);
	expect_shape(*list, 1, 1, 32);
	EXPECT_EQ(text_of(first().mntpath), "/");
	EXPECT_EQ(text_of(first().volid.fsname), "ext3");
	EXPECT_EQ(first().volspace.total, 20U);
	EXPECT_EQ(first().volspace.free, 10U);
	EXPECT_EQ(first().sys, 1);
}

TEST_F(PartlistTest, OwnVolumesThatCannotBeListed)
{
	disk(ONE);
	host.file("/etc/mtab", "");
	int without_shell = 0;
	for (long nth = 1; nth <= 8; nth++) {
		list = soiled<exe_partlist_t>();
		replay_fail_call(nth, 0);
		const int result =
			get_exe_partlist_on_disk("/dev/hda", list.get(), nullptr, nullptr, nullptr);
		replay_fail_call(0, 0);
		if (replay_shells() > 0)
			continue;
		// Whether it is the shell that failed or a call before it: nothing may come of it.
		without_shell++;
		EXPECT_EQ(result, -1) << nth;
		expect_shape(*list, 0, 0, 32);
	}
	EXPECT_GE(without_shell, 1);
}

TEST_F(PartlistTest, FilterSeesTheFinishedPartition)
{
	disk("table 0\nentry 80 83 63 1000\nentry 00 82 2000 100\n");
	mounted("/dev/hda1", "/", 40).sys = 1;
	int marker = 1;
	const filter_func_t check = [](const void *item, const void *arg) {
		const auto *part = static_cast<const exe_part_t *>(item);
		EXPECT_EQ(*static_cast<const int *>(arg), 1);
		if (part->part_index != 0)
			return 1;
		EXPECT_STREQ(part->devpath, "/dev/hda1");
		EXPECT_STREQ(part->mntpath, "/");
		EXPECT_STREQ(part->volid.fsname, "fs0");
		EXPECT_EQ(part->volspace.total, 40U);
		EXPECT_EQ(part->sys, 1);
		return 0;
	};
	EXPECT_EQ(get(check, &marker), 0);
	expect_shape(*list, 1, 1, 32);
	EXPECT_EQ(text_of(first().devpath), "/dev/hda2");
}

TEST_F(PartlistTest, MoreThan32AreCut)
{
	std::string tables = "table 0\nentry 00 05 100 9999\n";
	for (int i = 0; i < 40; i++)
		tables +=
			printed("table %d\nentry 00 83 1 5\nentry 00 05 %d 10\n", 100 + 10 * i, 10 * (i + 1));
	disk(tables);
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 32, 32, 32);
	EXPECT_EQ(text_of(list->item[31].devpath), "/dev/hda35");
}

class PartsTest : public PartlistTest
{
protected:
	int pull(const char *disk)
	{
		const auto join = soiled<part_join_t>();
		begin_part_join(join.get(), *vols);
		ExeParts parts(disk, join.get());
		exe_part_t part = {};
		while (parts.next(&part))
			seen.push_back(printed("%s %s %lu %d", part.devpath, part.mntpath,
			                       part.volspace.total, part.sys));
		EXPECT_FALSE(parts.next(&part));
		return parts.result();
	}
	std::vector<std::string> seen;
};

TEST_F(PartsTest, GivesEveryPartition)
{
	disk("table 0\nentry 80 83 63 9\nentry 00 82 2000 9\nentry 00 83 3000 9\n");
	mounted("/dev/hda1", "/", 8).sys = 1;
	mounted("/dev/hda3", "/long/path", 6);
	EXPECT_EQ(pull("/dev/hda"), 0);
	EXPECT_THAT(seen,
	            ::testing::ElementsAre("/dev/hda1 / 8 1", "/dev/hda2  0 0", "/dev/hda3 /long/path 6 0"));
}

// Nothing of a disk's last partition shows in those of the next disk.
TEST_F(PartsTest, OneRecordServesAllDisks)
{
	host.table("device /dev/long-name\n\tBLKGETSIZE 100\ntable 0\nentry 80 83 1 9\n");
	disk("table 0\nentry 00 82 2000 9\n");
	mounted("/dev/long-name1", "/", 8).sys = 1;
	const auto join = soiled<part_join_t>();
	begin_part_join(join.get(), *vols);
	exe_part_t part = {};
	ExeParts first("/dev/long-name", join.get());
	ASSERT_TRUE(first.next(&part));
	EXPECT_EQ(text_of(part.mntpath), "/");
	ExeParts second("/dev/hda", join.get());
	ASSERT_TRUE(second.next(&part));

	exe_part_t expected = {};
	expected.type = 0x82;
	expected.start = 2000;
	expected.size = 9;
	strcpy(expected.disk, "/dev/hda");
	strcpy(expected.devpath, "/dev/hda1");
	EXPECT_EQ(memcmp(&part, &expected, sizeof expected), 0);
}

TEST_F(PartsTest, ABadDiskHasNone)
{
	disk("ends 900\ntable 0\nentry 80 83 63 100\nentry 00 05 1000 100\n");
	EXPECT_EQ(pull("/dev/hda"), -1);
	EXPECT_EQ(pull("/dev/none"), -1);
	EXPECT_THAT(seen, ::testing::IsEmpty());
}

// A volume list in which the slots do not say their numbers: the first two entries share a mount point, the
// third is the partition's own.
TEST_F(PartlistTest, AVolumesSlotIsWhereItStands)
{
	disk(ONE);
	mounted("proc", "/proc");
	mounted("sys", "/proc");
	mounted("/dev/hda1", "/mnt", 40);
	for (exe_vol_t &volume : vols->item)
		volume.index = -4711;
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(first().mntpath), "/mnt");
	EXPECT_EQ(text_of(first().volid.fsname), "fs2");
}

} // namespace
