// SPDX-License-Identifier: Apache-2.0
// The exported records: their layout, and how the inventory is written into them.
#include "host.h"

#include "hdd/hdd.h"

#include <stddef.h>

namespace
{

struct offset_row_t {
	const char *field;
	size_t offset;
	size_t expected;
};

#define FIELD(record, field, expected)                                                                       \
	{                                                                                                    \
#field, offsetof(record, field), expected                                                    \
	}

template <size_t rows> void expect_offsets(const offset_row_t (&table)[rows])
{
	for (const offset_row_t &row : table)
		EXPECT_EQ(row.offset, row.expected) << row.field;
}

TEST(RecordLayout, Disk)
{
	using disk_t = tagStorageDiskList;
	static const offset_row_t rows[] = {
		FIELD(disk_t, nDiskID, 0),
		FIELD(disk_t, szDeviceName, 4),
		FIELD(disk_t, szDescription, 68),
		FIELD(disk_t, szInterface, 132),
		FIELD(disk_t, nPosition, 196),
		FIELD(disk_t, szMedia, 200),
		FIELD(disk_t, szVendor, 264),
		FIELD(disk_t, szModel, 328),
		FIELD(disk_t, szSerialNumber, 392),
		FIELD(disk_t, szFirmwareVersion, 456),
		FIELD(disk_t, nSize, 520),
		FIELD(disk_t, nTotalCylinders, 528),
		FIELD(disk_t, nTracksPerCylinder, 532),
		FIELD(disk_t, nSectorsPerTrack, 536),
		FIELD(disk_t, nTotalHeads, 540),
		FIELD(disk_t, nTotalTracks, 544),
		FIELD(disk_t, nTotalBlocks, 548),
		FIELD(disk_t, nTotalSectors, 552),
		FIELD(disk_t, nBytesPerBlock, 556),
		FIELD(disk_t, nBytesPerSector, 560),
		FIELD(disk_t, nPartNumber, 564),
		FIELD(disk_t, bUsedBySystem, 568),
		FIELD(disk_t, nExPartNumber, 572),
		FIELD(disk_t, next, 576),
	};
	expect_offsets(rows);
	EXPECT_EQ(sizeof(disk_t), 584U);
	EXPECT_EQ(sizeof(STORAGE_DISK_LIST), 584U);
	EXPECT_EQ(sizeof(STORAGE_STRING), 64U);
	EXPECT_EQ(sizeof(BOOLEAN), 1U);
}

TEST(RecordLayout, Cdrom)
{
	using cdrom_t = tagStorageCdromList;
	static const offset_row_t rows[] = {
		FIELD(cdrom_t, nCdromID, 0),         FIELD(cdrom_t, szDeviceName, 4),
		FIELD(cdrom_t, szDiscription, 68),   FIELD(cdrom_t, szInterface, 132),
		FIELD(cdrom_t, nPosition, 196),      FIELD(cdrom_t, szMedia, 200),
		FIELD(cdrom_t, szVendor, 264),       FIELD(cdrom_t, szModel, 328),
		FIELD(cdrom_t, szSerialNumber, 392), FIELD(cdrom_t, szFirmwareVersion, 456),
		FIELD(cdrom_t, szMountPoint, 520),   FIELD(cdrom_t, szLabel, 584),
		FIELD(cdrom_t, nTotalSpace, 648),    FIELD(cdrom_t, next, 656),
	};
	expect_offsets(rows);
	EXPECT_EQ(sizeof(cdrom_t), 664U);
	EXPECT_EQ(sizeof(STORAGE_CDROM_LIST), 664U);
}

TEST(RecordLayout, Partition)
{
	using part_record_t = tagStoragePartList;
	static const offset_row_t rows[] = {
		FIELD(part_record_t, szDiskDeviceName, 0), FIELD(part_record_t, nPartIndex, 64),
		FIELD(part_record_t, nStart, 72),          FIELD(part_record_t, nSize, 80),
		FIELD(part_record_t, nTotalSectors, 88),   FIELD(part_record_t, szType, 92),
		FIELD(part_record_t, szFileSystem, 156),   FIELD(part_record_t, szMountPoint, 220),
		FIELD(part_record_t, szLabel, 284),        FIELD(part_record_t, nTotalSpace, 352),
		FIELD(part_record_t, nUsedSpace, 360),     FIELD(part_record_t, bUsedBySystem, 368),
		FIELD(part_record_t, bActive, 369),        FIELD(part_record_t, next, 376),
	};
	expect_offsets(rows);
	EXPECT_EQ(sizeof(part_record_t), 384U);
	EXPECT_EQ(sizeof(STORAGE_PART_LIST), 384U);
}

// One inventory entry and the record that is made of it.
template <class Entry, class Record, int (*convert)(const Entry *, Record **), int (*clear)(void **)>
class Conversion : public ::testing::Test
{
protected:
	void SetUp() override { counter_ = memory_counter_hdd; }
	void TearDown() override
	{
		void *head = record;
		EXPECT_EQ(clear(&head), 0);
		EXPECT_EQ(memory_counter_hdd, counter_);
	}
	const Record &converted()
	{
		EXPECT_EQ(convert(entry.get(), &record), 0);
		EXPECT_EQ(memory_counter_hdd, counter_ + 1);
		return *record;
	}
	std::unique_ptr<Entry> entry = std::make_unique<Entry>();
	Record *record = nullptr;

private:
	int counter_ = 0;
};

using ToDisk = Conversion<exe_disk_t, tagStorageDiskList, exe2stdisk, stdisk_clear>;
using ToCdrom = Conversion<exe_cdrom_t, tagStorageCdromList, exe2stcdrom, stcdrom_clear>;
using ToPart = Conversion<exe_part_t, tagStoragePartList, exe2stpart, stpart_clear>;

TEST_F(ToDisk, TextsAndNumbers)
{
	entry->index = 7;
	strcpy(entry->devpath, "/dev/sdh");
	entry->devid.bus = 's';
	strcpy(entry->devid.vendor, "VENDOR");
	strcpy(entry->devid.model, "MODEL");
	strcpy(entry->devid.sn, "SERIAL");
	strcpy(entry->devid.rev, "REV");
	entry->idlun = {1, 2, 3, 4};
	entry->hdgeo = {33, 255, 63, 512};
	entry->partnum = 5;
	entry->partnum_extended = 2;
	entry->sys = 1;
	const tagStorageDiskList &disk = converted();
	EXPECT_EQ(disk.nDiskID, 7U);
	EXPECT_EQ(text_of(disk.szDeviceName), "/dev/sdh");
	EXPECT_EQ(text_of(disk.szDescription), "Disk Device");
	EXPECT_EQ(text_of(disk.szInterface), "SCSI");
	EXPECT_EQ(disk.nPosition, 0x01020304U);
	EXPECT_EQ(text_of(disk.szMedia), "Disk");
	EXPECT_EQ(text_of(disk.szVendor), "VENDOR");
	EXPECT_EQ(text_of(disk.szModel), "MODEL");
	EXPECT_EQ(text_of(disk.szSerialNumber), "SERIAL");
	EXPECT_EQ(text_of(disk.szFirmwareVersion), "REV");
	EXPECT_EQ(disk.nSize, 271434240U); // 33 * 255 * 63 * 512
	EXPECT_EQ(disk.nTotalCylinders, 33U);
	EXPECT_EQ(disk.nTracksPerCylinder, 255U);
	EXPECT_EQ(disk.nSectorsPerTrack, 63U);
	EXPECT_EQ(disk.nTotalHeads, 255U);
	EXPECT_EQ(disk.nTotalTracks, 8415U);
	EXPECT_EQ(disk.nTotalBlocks, 265072U); // 265072.5
	EXPECT_EQ(disk.nTotalSectors, 530145U);
	EXPECT_EQ(disk.nBytesPerBlock, 1024U);
	EXPECT_EQ(disk.nBytesPerSector, 512U);
	EXPECT_EQ(disk.nPartNumber, 5U);
	EXPECT_EQ(disk.nExPartNumber, 2U);
	EXPECT_EQ(disk.bUsedBySystem, 1);
	EXPECT_EQ(disk.next, nullptr);
}

TEST_F(ToDisk, WithoutGeometry)
{
	const tagStorageDiskList &disk = converted();
	EXPECT_EQ(disk.nSize, 0U);
	EXPECT_EQ(disk.nTotalBlocks, 0U);
	EXPECT_EQ(disk.nTotalSectors, 0U);
	EXPECT_EQ(disk.nBytesPerBlock, 1024U);
	EXPECT_EQ(disk.nBytesPerSector, 512U);
	EXPECT_EQ(disk.bUsedBySystem, 0);
}

TEST_F(ToDisk, LargeSizesKeepTheLow32BitsOfTheirCounts)
{
	// 2^33 cylinders of 1 * 4 sectors of 1024 bytes are 2^45 bytes; one cylinder more are 4096.
	entry->hdgeo = {(1UL << 33) + 1, 1, 4, 1024};
	const tagStorageDiskList &disk = converted();
	EXPECT_EQ(disk.nSize, (1UL << 45) + 4096);
	EXPECT_EQ(disk.nTotalCylinders, 1U);
	EXPECT_EQ(disk.nTotalTracks, 1U);
	EXPECT_EQ(disk.nTotalSectors, 8U);
	EXPECT_EQ(disk.nTotalBlocks, 4U);
	EXPECT_EQ(disk.nBytesPerSector, 512U);
}

TEST_F(ToDisk, Interfaces)
{
	static const struct {
		char bus;
		const char *name;
	} rows[] = {{'i', "IDE"},  {'c', "IDE"},     {'s', "SCSI"},  {'u', "USB"},    {'f', "FIBRE"},
	            {'r', "RAID"}, {'x', "UNKNOWN"}, {0, "UNKNOWN"}, {'I', "UNKNOWN"}};
	for (const auto &row : rows) {
		entry->devid.bus = row.bus;
		EXPECT_EQ(text_of(converted().szInterface), row.name) << row.bus;
	}
}

TEST_F(ToDisk, VendorOfOneParenthesisIsNone)
{
	for (const char *vendor : {"(", "((", "(x", " (", "x", ""}) {
		strcpy(entry->devid.vendor, vendor);
		EXPECT_EQ(text_of(converted().szVendor), strcmp(vendor, "(") == 0 ? "" : vendor);
	}
}

TEST_F(ToDisk, PositionWithTheHighestHost)
{
	entry->idlun = {255, 0, 0, 255};
	EXPECT_EQ(converted().nPosition, 0xff0000ffU);
}

TEST_F(ToDisk, TextsAreBounded)
{
	strcpy(entry->devpath, ("/dev/" + std::string(100, 'x')).c_str());
	memset(entry->devid.model, 'M', 63);
	EXPECT_EQ(text_of(converted().szDeviceName), "/dev/" + std::string(58, 'x'));
	EXPECT_EQ(text_of(record->szModel), std::string(63, 'M'));
	EXPECT_EQ(text_of(record->szSerialNumber), "");
}

TEST_F(ToDisk, FlagIsTheLowByte)
{
	entry->sys = 0x101;
	EXPECT_EQ(converted().bUsedBySystem, 1);
	entry->sys = 0x100;
	EXPECT_EQ(converted().bUsedBySystem, 0);
}

TEST_F(ToDisk, ExistingRecordIsOverwrittenInPlace)
{
	strcpy(entry->devpath, "/dev/a-very-long-name");
	strcpy(entry->devid.sn, "SERIAL");
	converted();
	tagStorageDiskList *const first = record;
	exe_disk_t other = {};
	other.index = 1;
	EXPECT_EQ(exe2stdisk(&other, &record->next), 0);
	tagStorageDiskList *const second = record->next;
	ASSERT_NE(second, nullptr);
	const int counter = memory_counter_hdd;
	strcpy(entry->devpath, "/dev/b");
	entry->devid.sn[0] = 0;
	EXPECT_EQ(exe2stdisk(entry.get(), &record), 0);
	EXPECT_EQ(record, first);
	EXPECT_EQ(record->next, second);
	EXPECT_EQ(text_of(record->szDeviceName), "/dev/b");
	EXPECT_EQ(text_of(record->szSerialNumber), "");
	EXPECT_EQ(memory_counter_hdd, counter);
}

TEST_F(ToCdrom, TextsAndNumbers)
{
	entry->index = 3;
	strcpy(entry->devpath, "/dev/hdc");
	entry->devid.bus = 'i';
	strcpy(entry->devid.vendor, "(");
	strcpy(entry->devid.model, "MODEL");
	strcpy(entry->devid.sn, "SERIAL");
	strcpy(entry->devid.rev, "REV");
	entry->idlun = {4, 3, 2, 1};
	strcpy(entry->mntpath, "/cdrom");
	strcpy(entry->volid.volname, "LABEL");
	entry->volspace = {1UL << 33, 5};
	const tagStorageCdromList &cdrom = converted();
	EXPECT_EQ(cdrom.nCdromID, 3U);
	EXPECT_EQ(text_of(cdrom.szDeviceName), "/dev/hdc");
	EXPECT_EQ(text_of(cdrom.szDiscription), "DVD/CD-ROM Device");
	EXPECT_EQ(text_of(cdrom.szInterface), "IDE");
	EXPECT_EQ(cdrom.nPosition, 0x04030201U);
	EXPECT_EQ(text_of(cdrom.szMedia), "CDROM");
	EXPECT_EQ(text_of(cdrom.szVendor), "(");
	EXPECT_EQ(text_of(cdrom.szModel), "MODEL");
	EXPECT_EQ(text_of(cdrom.szSerialNumber), "SERIAL");
	EXPECT_EQ(text_of(cdrom.szFirmwareVersion), "REV");
	EXPECT_EQ(text_of(cdrom.szMountPoint), "/cdrom");
	EXPECT_EQ(text_of(cdrom.szLabel), "LABEL");
	EXPECT_EQ(cdrom.nTotalSpace, 1UL << 42);
	EXPECT_EQ(cdrom.next, nullptr);
}

TEST_F(ToCdrom, Interfaces)
{
	static const struct {
		char bus;
		const char *name;
	} rows[] = {{'i', "IDE"},     {'c', "IDE"},     {'s', "SCSI"}, {'u', "USB"},
	            {'f', "UNKNOWN"}, {'r', "UNKNOWN"}, {0, "UNKNOWN"}};
	for (const auto &row : rows) {
		entry->devid.bus = row.bus;
		EXPECT_EQ(text_of(converted().szInterface), row.name) << row.bus;
	}
}

TEST_F(ToCdrom, TextsAreBounded)
{
	strcpy(entry->mntpath, ("/" + std::string(100, 'm')).c_str());
	EXPECT_EQ(text_of(converted().szMountPoint), "/" + std::string(62, 'm'));
	EXPECT_EQ(text_of(record->szDeviceName), "");
	EXPECT_EQ(record->nTotalSpace, 0U);
}

TEST_F(ToPart, TextsAndNumbers)
{
	strcpy(entry->disk, "/dev/hda");
	strcpy(entry->devpath, "/dev/hda6");
	entry->part_index = 5;
	entry->type = 0x83;
	entry->boot = 0x80;
	entry->start = (1UL << 32) + 63;
	entry->size = (1UL << 32) + 100;
	strcpy(entry->volid.fsname, "ext3");
	strcpy(entry->volid.volname, "LABEL");
	strcpy(entry->mntpath, "/;/mnt");
	entry->volspace = {1UL << 33, 1000};
	entry->sys = 1;
	const tagStoragePartList &part = converted();
	EXPECT_EQ(text_of(part.szDiskDeviceName), "/dev/hda");
	EXPECT_EQ(part.nPartIndex, 5U);
	EXPECT_EQ(part.nStart, ((1UL << 32) + 63) * 512);
	EXPECT_EQ(part.nSize, ((1UL << 32) + 100) * 512);
	EXPECT_EQ(part.nTotalSectors, 100U);
	EXPECT_EQ(text_of(part.szType), "Logical Drive");
	EXPECT_EQ(text_of(part.szFileSystem), "ext3");
	EXPECT_EQ(text_of(part.szMountPoint), "/;/mnt");
	EXPECT_EQ(text_of(part.szLabel), "LABEL");
	EXPECT_EQ(part.nTotalSpace, 1UL << 42);
	EXPECT_EQ(part.nUsedSpace, ((1UL << 33) - 1000) * 512);
	EXPECT_EQ(part.bUsedBySystem, 1);
	EXPECT_EQ(static_cast<unsigned char>(part.bActive), 0x80);
	EXPECT_EQ(part.next, nullptr);
}

TEST_F(ToPart, Unmounted)
{
	const tagStoragePartList &part = converted();
	EXPECT_EQ(text_of(part.szFileSystem), "");
	EXPECT_EQ(text_of(part.szMountPoint), "");
	EXPECT_EQ(text_of(part.szLabel), "");
	EXPECT_EQ(part.nTotalSpace, 0U);
	EXPECT_EQ(part.nUsedSpace, 0U);
	EXPECT_EQ(part.bUsedBySystem, 0);
	EXPECT_EQ(part.bActive, 0);
}

TEST_F(ToPart, Types)
{
	static const char *const extended = "Extended Partition";
	static const struct {
		uint8_t type;
		int part_index;
		const char *name;
	} rows[] = {
		{0x05, 1, extended},
		{0x0f, 0, extended},
		{0x85, 6, extended},
		{0x42, 1, "Dynamic Volume"},
		{0x42, 6, "Dynamic Volume"},
		{0x83, 0, "Primary Partition"},
		{0x83, 3, "Primary Partition"},
		{0x83, 4, "Logical Drive"},
		{0x83, 34, "Logical Drive"},
		{0x06, 3, "Primary Partition"},
		{0x0e, 4, "Logical Drive"},
		{0xc5, 2, "Primary Partition"},
	};
	for (const auto &row : rows) {
		entry->type = row.type;
		entry->part_index = row.part_index;
		EXPECT_EQ(text_of(converted().szType), row.name) << int(row.type) << " at " << row.part_index;
	}
}

TEST_F(ToPart, MountPoints)
{
	const std::string letters = "/" + std::string(59, 'a') + "bcdefghijklmnop";
	for (const size_t length : {0U, 1U, 60U, 62U, 63U, 64U, 65U, 75U}) {
		const std::string path = letters.substr(0, length);
		strcpy(entry->mntpath, path.c_str());
		EXPECT_EQ(text_of(converted().szMountPoint),
		          length <= 63 ? path : letters.substr(0, 60) + "...")
			<< length;
	}
	memset(entry->mntpath, 'z', sizeof entry->mntpath - 1);
	EXPECT_EQ(text_of(converted().szMountPoint), std::string(60, 'z') + "...");
}

TEST_F(ToPart, FlagsAreTheLowBytes)
{
	entry->boot = 0x17f;
	entry->sys = 0x301;
	EXPECT_EQ(converted().bActive, 0x7f);
	EXPECT_EQ(record->bUsedBySystem, 1);
}

} // namespace
