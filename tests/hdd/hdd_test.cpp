// SPDX-License-Identifier: Apache-2.0
// The local item provider: whole queries, refilled lists, and releases.
#include "host.h"

#include "hdd/hdd.h"
#include "replay/replay.h"

#include <pthread.h>

namespace
{

class HddTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		host.file("/etc/mtab", "");
		counter_ = memory_counter_hdd;
	}
	void TearDown() override
	{
		EXPECT_EQ(memory_counter_hdd, counter_);
		HostTest::TearDown();
	}
	int records() const { return memory_counter_hdd - counter_; }
	// IDE disks hda, hdb, ... of this many.
	void ide_disks(int count)
	{
		std::string lines;
		for (int i = 0; i < count; i++) {
			const std::string name = std::string("hd") + static_cast<char>('a' + i);
			lines += "3 0 9 " + name + "\n";
			host.remove("/proc/ide/" + name).ide_drive(name, "disk", "DISK " + number(i));
		}
		host.partitions(lines).show();
	}
	void tables(const std::string &name, const std::string &tables)
	{
		host.table("device /dev/" + name + "\nBLKGETSIZE 100000\n" + tables);
		host.show();
	}
	void *result = nullptr;
	int length = -1;

private:
	int counter_ = 0;
};

template <class Record> std::vector<Record *> chain_of(void *head)
{
	std::vector<Record *> records;
	for (auto *record = static_cast<Record *>(head); record; record = record->next)
		records.push_back(record);
	return records;
}

using disk_record_t = tagStorageDiskList;
using part_record_t = tagStoragePartList;
using cdrom_record_t = tagStorageCdromList;

TEST_F(HddTest, DisksInListOrder)
{
	ide_disks(3);
	EXPECT_EQ(stdisk_all(&result, &length), 0);
	EXPECT_EQ(length, 3);
	EXPECT_EQ(records(), 3);
	const auto disks = chain_of<disk_record_t>(result);
	ASSERT_EQ(disks.size(), 3U);
	for (unsigned i = 0; i < 3; i++) {
		EXPECT_EQ(disks[i]->nDiskID, i);
		EXPECT_EQ(text_of(disks[i]->szModel), printed("DISK %u", i));
	}
	EXPECT_EQ(stdisk_clear(&result), 0);
	EXPECT_EQ(result, nullptr);
	EXPECT_EQ(records(), 0);
}

TEST_F(HddTest, EmptyHostLeavesTheResultAlone)
{
	int (*const queries[])(void **, int *) = {stdisk_all, stcdrom_all, stpart_all};
	for (const auto query : queries) {
		length = 5;
		EXPECT_EQ(query(&result, &length), 0);
		EXPECT_EQ(length, 0);
		EXPECT_EQ(result, nullptr);
	}
}

TEST_F(HddTest, EmptyHostKeepsAnOldList)
{
	ide_disks(2);
	ASSERT_EQ(stdisk_all(&result, &length), 0);
	void *const head = result;
	host.remove("/proc/partitions");
	EXPECT_EQ(stdisk_all(&result, &length), 0);
	EXPECT_EQ(length, 0);
	EXPECT_EQ(result, head);
	EXPECT_EQ(chain_of<disk_record_t>(result).size(), 2U);
	stdisk_clear(&result);
}

TEST_F(HddTest, OldListIsRefilledInPlace)
{
	ide_disks(5);
	ASSERT_EQ(stdisk_all(&result, &length), 0);
	ASSERT_EQ(length, 5);
	const auto before = chain_of<disk_record_t>(result);
	host.partitions("3 0 9 hdd\n22 0 9 hdc\n").show();
	EXPECT_EQ(stdisk_all(&result, &length), 0);
	EXPECT_EQ(length, 2);
	EXPECT_EQ(records(), 5);
	EXPECT_EQ(chain_of<disk_record_t>(result), before);
	static const char *const names[] = {"/dev/hdd", "/dev/hdc", "/dev/hdc", "/dev/hdd", "/dev/hde"};
	static const unsigned ids[] = {0, 1, 2, 3, 4};
	for (size_t i = 0; i < 5; i++) {
		EXPECT_EQ(text_of(before[i]->szDeviceName), names[i]);
		EXPECT_EQ(before[i]->nDiskID, ids[i]);
	}
	stdisk_clear(&result);
}

TEST_F(HddTest, OldListGrows)
{
	ide_disks(1);
	ASSERT_EQ(stdisk_all(&result, &length), 0);
	void *const head = result;
	ide_disks(4);
	EXPECT_EQ(stdisk_all(&result, &length), 0);
	EXPECT_EQ(length, 4);
	EXPECT_EQ(result, head);
	EXPECT_EQ(chain_of<disk_record_t>(result).size(), 4U);
	EXPECT_EQ(records(), 4);
	stdisk_clear(&result);
}

// Eighteen SCSI disks: two more than the disk list holds.
void many_disks(Host &host)
{
	std::string lines;
	std::string scsi = SCSI_HEADING;
	for (int i = 0; i < 18; i++) {
		lines += printed("8 0 9 sd%c\n", 'a' + i);
		scsi += scsi_block(i);
		host.table(printed("device /dev/sd%c\nSCSI_IOCTL_GET_IDLUN %d\nBLKGETSIZE 100\n"
		                   "table 0\nentry 00 83 1 1\n",
		                   'a' + i, i));
	}
	host.partitions(lines).file("/proc/scsi/scsi", scsi).show();
}

TEST_F(HddTest, TooManyDisksAreCut)
{
	many_disks(host);
	EXPECT_EQ(stdisk_all(&result, &length), 0);
	EXPECT_EQ(length, 16);
	EXPECT_EQ(chain_of<disk_record_t>(result).size(), 16U);
	stdisk_clear(&result);
}

TEST_F(HddTest, TooManyDisksFailThePartitionsBeforeAnythingIsWritten)
{
	many_disks(host);
	EXPECT_EQ(stpart_all(&result, &length), -1);
	EXPECT_EQ(length, 0);
	EXPECT_EQ(result, nullptr);
	EXPECT_EQ(records(), 0);
}

TEST_F(HddTest, Cdroms)
{
	host.ide_drive("hda", "disk").ide_drive("hdc", "cdrom", "DVD").ide_drive("hdd", "cdrom");
	host.file("/etc/mtab", "/dev/hdc /cdrom iso9660 ro 0 0\n").table("mount /cdrom 2048 194 0\n").show();
	EXPECT_EQ(stcdrom_all(&result, &length), 0);
	EXPECT_EQ(length, 2);
	EXPECT_EQ(records(), 2);
	const auto cdroms = chain_of<cdrom_record_t>(result);
	ASSERT_EQ(cdroms.size(), 2U);
	EXPECT_EQ(cdroms[0]->nCdromID, 0U);
	EXPECT_EQ(text_of(cdroms[0]->szDeviceName), "/dev/hdc");
	EXPECT_EQ(text_of(cdroms[0]->szMountPoint), "/cdrom");
	EXPECT_EQ(text_of(cdroms[0]->szLabel), "");
	EXPECT_EQ(cdroms[0]->nTotalSpace, 397312U);
	EXPECT_EQ(cdroms[1]->nCdromID, 1U);
	EXPECT_EQ(text_of(cdroms[1]->szMountPoint), "");
	EXPECT_EQ(cdroms[1]->nTotalSpace, 0U);
	EXPECT_EQ(stcdrom_clear(&result), 0);
	EXPECT_EQ(result, nullptr);
}

TEST_F(HddTest, PartitionsOfAllDisks)
{
	ide_disks(3);
	tables("hda", "table 0\nentry 80 83 63 937\nentry 00 05 1000 9000\ntable 1000\nentry 00 83 63 900\n");
	tables("hdb", "");
	tables("hdc", "table 0\nentry 00 42 63 937\n");
	host.file("/etc/mtab", "/dev/hda1 / ext3 rw 0 0\n").table("mount / 1024 10 4\n").show();
	EXPECT_EQ(stpart_all(&result, &length), 0);
	EXPECT_EQ(length, 4);
	static const struct {
		const char *disk;
		unsigned index;
		const char *type;
		const char *mntpath;
	} rows[] = {
		{"/dev/hda", 0, "Primary Partition", "/"},
		{"/dev/hda", 1, "Extended Partition", ""},
		{"/dev/hda", 4, "Logical Drive", ""},
		{"/dev/hdc", 0, "Dynamic Volume", ""},
	};
	const auto parts = chain_of<part_record_t>(result);
	ASSERT_EQ(parts.size(), 4U);
	for (size_t i = 0; i < 4; i++) {
		EXPECT_EQ(text_of(parts[i]->szDiskDeviceName), rows[i].disk);
		EXPECT_EQ(parts[i]->nPartIndex, rows[i].index);
		EXPECT_EQ(text_of(parts[i]->szType), rows[i].type);
		EXPECT_EQ(text_of(parts[i]->szMountPoint), rows[i].mntpath);
	}
	EXPECT_EQ(parts[0]->nTotalSpace, 10240U);
	EXPECT_EQ(parts[0]->nUsedSpace, 6144U);
	EXPECT_EQ(parts[0]->bUsedBySystem, 1);
	EXPECT_EQ(static_cast<unsigned char>(parts[0]->bActive), 0x80);
	EXPECT_EQ(text_of(parts[0]->szFileSystem), "ext3");
	EXPECT_EQ(records(), 4);
	stpart_clear(&result);
}

TEST_F(HddTest, BadDiskLeavesTheRecordsMadeBefore)
{
	ide_disks(3);
	tables("hda", "table 0\nentry 00 83 63 9\nentry 00 83 100 9\n");
	tables("hdb", "ends 500\ntable 0\nentry 00 83 63 9\nentry 00 05 1000 9\n");
	tables("hdc", "table 0\nentry 00 83 63 9\n");
	EXPECT_EQ(stpart_all(&result, &length), -1);
	EXPECT_EQ(length, 2);
	EXPECT_EQ(records(), 2);
	EXPECT_EQ(chain_of<part_record_t>(result).size(), 2U);
	EXPECT_EQ(stpart_clear(&result), 0);
	EXPECT_EQ(result, nullptr);
}

TEST_F(HddTest, DiskWithoutANodeFailsThePartitions)
{
	ide_disks(1);
	EXPECT_EQ(stpart_all(&result, &length), -1);
	EXPECT_EQ(length, 0);
	EXPECT_EQ(result, nullptr);
}

// Two calls: the shell that cannot be started, and what it says that cannot be read.
TEST_F(HddTest, VolumesThatCannotBeListedFailThePartitions)
{
	// Without disks every other failing call would go unnoticed.
	int failures = 0;
	bool shell_failed = false;
	for (long nth = 1; nth <= 12; nth++) {
		replay_fail_call(nth, 0);
		const int answer = stpart_all(&result, &length);
		replay_fail_call(0, 0);
		EXPECT_EQ(answer, replay_shells() == 0 || shell_failed ? -1 : 0) << nth;
		shell_failed = replay_shells() == 0;
		failures += answer == -1;
		EXPECT_EQ(length, 0);
		EXPECT_EQ(result, nullptr);
	}
	EXPECT_EQ(failures, 2);
}

TEST_F(HddTest, OnlyThePartitionsNeedAMountTable)
{
	ide_disks(1);
	host.ide_drive("hdc", "cdrom");
	tables("hda", "table 0\nentry 00 83 63 9\n");
	host.remove("/etc/mtab");
	EXPECT_EQ(stdisk_all(&result, &length), 0);
	EXPECT_EQ(length, 1);
	stdisk_clear(&result);
	EXPECT_EQ(stcdrom_all(&result, &length), 0);
	EXPECT_EQ(length, 1);
	stcdrom_clear(&result);
	EXPECT_EQ(stpart_all(&result, &length), -1);
	EXPECT_EQ(length, 0);
	EXPECT_EQ(result, nullptr);
}

TEST_F(HddTest, ReleaseOfNothing)
{
	int (*const releases[])(void **) = {stdisk_clear, stcdrom_clear, stpart_clear};
	for (const auto release : releases) {
		EXPECT_EQ(release(&result), 0);
		EXPECT_EQ(result, nullptr);
		EXPECT_EQ(records(), 0);
	}
}

TEST_F(HddTest, QueriesByTheirCodes)
{
	ide_disks(2);
	host.ide_drive("hdc", "cdrom");
	tables("hda", "table 0\nentry 00 83 63 9\n");
	tables("hdb", "table 0\nentry 00 83 63 9\nentry 00 83 100 9\n");
	static const struct {
		UINT code;
		int length;
	} rows[] = {{122100, 2}, {123100, 3}, {124100, 1}};
	for (const auto &row : rows) {
		IPMICOMMAND cmd = {};
		cmd.nCommand = row.code;
		EXPECT_EQ(GetItemInfo_hdd(&cmd, &result, &length), 0);
		EXPECT_EQ(length, row.length) << row.code;
		EXPECT_EQ(records(), row.length);
		cmd.nCommand++;
		EXPECT_EQ(SetItemInfo_hdd(&cmd, &result), 0);
		EXPECT_EQ(result, nullptr);
		EXPECT_EQ(records(), 0);
	}
}

TEST_F(HddTest, OtherCodesAreRefused)
{
	ide_disks(1);
	ASSERT_EQ(stdisk_all(&result, &length), 0);
	void *const head = result;
	for (const UINT code :
	     {0U, 122099U, 122102U, 123102U, 124102U, 125100U, 129100U, 122100U + 65536U, ~0U}) {
		IPMICOMMAND cmd = {};
		cmd.nCommand = code;
		EXPECT_EQ(GetItemInfo_hdd(&cmd, &result, &length), -1) << code;
		EXPECT_EQ(SetItemInfo_hdd(&cmd, &result), -1) << code;
	}
	for (const UINT code : {122100U, 123100U, 124100U}) {
		IPMICOMMAND cmd = {};
		cmd.nCommand = code;
		EXPECT_EQ(SetItemInfo_hdd(&cmd, &result), -1) << code;
		cmd.nCommand = code + 1;
		EXPECT_EQ(GetItemInfo_hdd(&cmd, &result, &length), -1) << code;
	}
	EXPECT_EQ(result, head);
	EXPECT_EQ(records(), 1);
	stdisk_clear(&result);
}

// Runs every query and release in a thread that has 2 MB of stack, as the documents ask for.
void *query_all(void *)
{
	int (*const queries[])(void **, int *) = {stdisk_all, stcdrom_all, stpart_all};
	int (*const releases[])(void **) = {stdisk_clear, stcdrom_clear, stpart_clear};
	for (int i = 0; i < 3; i++) {
		void *result = nullptr;
		int length = 0;
		EXPECT_EQ(queries[i](&result, &length), 0);
		EXPECT_EQ(length, 1);
		releases[i](&result);
	}
	return nullptr;
}

TEST_F(HddTest, TwoMegabytesOfStackAreEnough)
{
	ide_disks(1);
	host.ide_drive("hdc", "cdrom");
	tables("hda", "table 0\nentry 00 83 63 9\n");
#ifdef __SANITIZE_ADDRESS__
	const size_t stack = 8 << 20; // room for the guards around every local
#else
	const size_t stack = 2 << 20;
#endif
	pthread_attr_t attributes;
	pthread_t thread;
	ASSERT_EQ(pthread_attr_init(&attributes), 0);
	ASSERT_EQ(pthread_attr_setstacksize(&attributes, stack), 0);
	ASSERT_EQ(pthread_create(&thread, &attributes, query_all, nullptr), 0);
	EXPECT_EQ(pthread_join(thread, nullptr), 0);
	pthread_attr_destroy(&attributes);
}

} // namespace
