// SPDX-License-Identifier: Apache-2.0
// The dump of the exported records, field by field.
#include "host.h"

#include "diskscout.h"
#include "display.h"

namespace
{

const std::string STARS(60, '*');

std::string banner(const char *kind, int position, int length)
{
	return STARS + printed(" %s (%d/%d)\n", kind, position, length);
}

std::string end_banner(const char *kind, int length)
{
	return STARS + printed(" %s (end/%d)\n", kind, length);
}

// Several records of one kind, linked in their order.
template <class Record> class Records
{
public:
	explicit Records(size_t count) : records_(std::make_unique<Record[]>(count)), count_(count)
	{
		for (size_t i = 0; i + 1 < count; i++)
			records_[i].next = &records_[i + 1];
	}
	Record &operator[](size_t i) { return records_[i]; }
	const void *head() const { return count_ ? records_.get() : nullptr; }

private:
	std::unique_ptr<Record[]> records_;
	size_t count_;
};

std::string disks(const void *head, int count)
{
	return stderr_of([&] { display_stdisk(head, count); });
}

std::string cdroms(const void *head, int count)
{
	return stderr_of([&] { display_stcdrom(head, count); });
}

std::string parts(const void *head, int count)
{
	return stderr_of([&] { display_stpart(head, count); });
}

// The line of the field with this name in a dump; empty when there is none.
std::string line_of(const std::string &dump, const std::string &name)
{
	for (const std::string &line : lines_of(dump))
		if (line.compare(0, name.size() + 1, name + " ") == 0)
			return line;
	return "";
}

TEST(Display, EveryFieldOfADisk)
{
	Records<STORAGE_DISK_LIST> list(2);
	STORAGE_DISK_LIST &disk = list[0];
	disk.nDiskID = 7;
	strcpy(disk.szDeviceName, "/dev/sdh");
	strcpy(disk.szDescription, "Disk Device");
	strcpy(disk.szInterface, "SCSI");
	disk.nPosition = 0x01020304;
	strcpy(disk.szMedia, "Disk");
	strcpy(disk.szVendor, "ACME");
	strcpy(disk.szModel, "EXAMPLE DISK");
	strcpy(disk.szSerialNumber, "SN 12%d");
	strcpy(disk.szFirmwareVersion, "1.02");
	disk.nSize = 36ULL << 30;
	disk.nTotalCylinders = 4425;
	disk.nTracksPerCylinder = 255;
	disk.nSectorsPerTrack = 63;
	disk.nTotalHeads = 254;
	disk.nTotalTracks = 1128375;
	disk.nTotalBlocks = 35543812;
	disk.nTotalSectors = 71087625;
	disk.nBytesPerBlock = 1024;
	disk.nBytesPerSector = 512;
	disk.nPartNumber = 5;
	disk.bUsedBySystem = 1;
	disk.nExPartNumber = 2;
	const std::string expected = printed("this               = 0x%08x\n", low32(&disk)) +
	                             "nDiskID            = 7\n"
	                             "szDeviceName       = /dev/sdh\n"
	                             "szDescription      = Disk Device\n"
	                             "szInterface        = SCSI\n"
	                             "nPosition          = 01020304\n"
	                             "szMedia            = Disk\n"
	                             "szVendor           = ACME\n"
	                             "szModel            = EXAMPLE DISK\n"
	                             "szSerialNumber     = SN 12%d\n"
	                             "szFirmwareVersion  = 1.02\n"
	                             "nSize              = 36864MB\n"
	                             "nTotalCylinders    = 4425\n"
	                             "nTracksPerCylinder = 255\n"
	                             "nSectorsPerTrack   = 63\n"
	                             "nTotalHeads        = 254\n"
	                             "nTotalTracks       = 1128375\n"
	                             "nTotalBlocks       = 35543812\n"
	                             "nTotalSectors      = 71087625\n"
	                             "nBytesPerBlock     = 1024\n"
	                             "nBytesPerSector    = 512\n"
	                             "nPartNumber        = 5\n"
	                             "bUsedBySystem      = 1\n"
	                             "nExPartNumber      = 2\n" +
	                             printed("next               = 0x%08x\n", low32(&list[1]));
	EXPECT_EQ(disks(list.head(), 1), banner("DISK", 0, 2) + expected + end_banner("DISK", 2));
}

TEST(Display, EveryFieldOfACdrom)
{
	Records<STORAGE_CDROM_LIST> list(2);
	STORAGE_CDROM_LIST &cdrom = list[0];
	cdrom.nCdromID = 3;
	strcpy(cdrom.szDeviceName, "/dev/hdc");
	strcpy(cdrom.szDiscription, "DVD/CD-ROM Device");
	strcpy(cdrom.szInterface, "IDE");
	cdrom.nPosition = 0xa0000b0c;
	strcpy(cdrom.szMedia, "CDROM");
	strcpy(cdrom.szVendor, "VENDOR");
	strcpy(cdrom.szModel, "MODEL");
	strcpy(cdrom.szSerialNumber, "SERIAL");
	strcpy(cdrom.szFirmwareVersion, "REV");
	strcpy(cdrom.szMountPoint, "/cdrom");
	strcpy(cdrom.szLabel, "LABEL");
	cdrom.nTotalSpace = (650ULL << 20) + 12345;
	const std::string expected = printed("this               = 0x%08x\n", low32(&cdrom)) +
	                             "nCdromID           = 3\n"
	                             "szDeviceName       = /dev/hdc\n"
	                             "szDiscription      = DVD/CD-ROM Device\n"
	                             "szInterface        = IDE\n"
	                             "nPosition          = a0000b0c\n"
	                             "szMedia            = CDROM\n"
	                             "szVendor           = VENDOR\n"
	                             "szModel            = MODEL\n"
	                             "szSerialNumber     = SERIAL\n"
	                             "szFirmwareVersion  = REV\n"
	                             "szMountPoint       = /cdrom\n"
	                             "szLabel            = LABEL\n"
	                             "nTotalSpace        = 650MB\n" +
	                             printed("next               = 0x%08x\n", low32(&list[1]));
	EXPECT_EQ(cdroms(list.head(), 1), banner("CDROM", 0, 2) + expected + end_banner("CDROM", 2));
}

TEST(Display, EveryFieldOfAPartition)
{
	Records<STORAGE_PART_LIST> list(2);
	STORAGE_PART_LIST &part = list[0];
	strcpy(part.szDiskDeviceName, "/dev/hda");
	part.nPartIndex = 5;
	part.nStart = 5ULL << 30;
	part.nSize = 6ULL << 30;
	part.nTotalSectors = 12582912;
	strcpy(part.szType, "Logical Drive");
	strcpy(part.szFileSystem, "ext3");
	strcpy(part.szMountPoint, "/;/mnt");
	strcpy(part.szLabel, "LABEL");
	part.nTotalSpace = 7ULL << 30;
	part.nUsedSpace = 1ULL << 30;
	part.bUsedBySystem = 1;
	part.bActive = static_cast<char>(0x80);
	const std::string expected = printed("this               = 0x%08x\n", low32(&part)) +
	                             "szDiskDeviceName   = /dev/hda\n"
	                             "nPartIndex         = 5\n"
	                             "nStart             = 5120MB\n"
	                             "nSize              = 6144MB\n"
	                             "nTotalSectors      = 12582912\n"
	                             "szType             = Logical Drive\n"
	                             "szFileSystem       = ext3\n"
	                             "szMountPoint       = /;/mnt\n"
	                             "szLabel            = LABEL\n"
	                             "nTotalSpace        = 7168MB\n"
	                             "nUsedSpace         = 1024MB\n"
	                             "bUsedBySystem      = 1\n"
	                             "bActive            = -128\n" +
	                             printed("next               = 0x%08x\n", low32(&list[1]));
	EXPECT_EQ(parts(list.head(), 1), banner("PART", 0, 2) + expected + end_banner("PART", 2));
}

TEST(Display, EmptyRecords)
{
	Records<STORAGE_DISK_LIST> disk(1);
	const std::string dump = disks(disk.head(), 1);
	EXPECT_EQ(line_of(dump, "nPosition"), "nPosition          = 00000000");
	EXPECT_EQ(line_of(dump, "szVendor"), "szVendor           = ");
	EXPECT_EQ(line_of(dump, "nSize"), "nSize              = 0MB");
	EXPECT_EQ(line_of(dump, "bUsedBySystem"), "bUsedBySystem      = 0");
	EXPECT_EQ(line_of(dump, "next"), "next               = 0x00000000");
	// A banner, 25 lines, a banner.
	EXPECT_EQ(lines_of(dump).size(), 27U);
	Records<STORAGE_CDROM_LIST> cdrom(1);
	EXPECT_EQ(lines_of(cdroms(cdrom.head(), 1)).size(), 17U);
	Records<STORAGE_PART_LIST> part(1);
	EXPECT_EQ(lines_of(parts(part.head(), 1)).size(), 17U);
}

struct megabytes_row_t {
	unsigned long long bytes;
	const char *text;
};

// A count of megabytes that no int holds shows its low 32 bits.
TEST(Display, SizesAreInMegabytes)
{
	static const megabytes_row_t rows[] = {
		{0, "0MB"},
		{(1ULL << 20) - 1, "0MB"},
		{1ULL << 20, "1MB"},
		{(2ULL << 20) - 1, "1MB"},
		{10ULL << 20, "10MB"},
		{(1ULL << 31) - 1, "2047MB"},
		{1ULL << 31, "2048MB"},
		{(1ULL << 32) - 1, "4095MB"},
		{1ULL << 32, "4096MB"},
		{5ULL << 30, "5120MB"},
		{3ULL << 40, "3145728MB"},
		{(1ULL << 51) - 1, "2147483647MB"},
		{1ULL << 51, "-2147483648MB"},
		{(1ULL << 52) + (7ULL << 20), "7MB"},
		{~0ULL, "-1MB"},
	};
	Records<STORAGE_DISK_LIST> disk(1);
	Records<STORAGE_CDROM_LIST> cdrom(1);
	Records<STORAGE_PART_LIST> part(1);
	for (const megabytes_row_t &row : rows) {
		disk[0].nSize = cdrom[0].nTotalSpace = row.bytes;
		part[0].nStart = part[0].nSize = part[0].nTotalSpace = part[0].nUsedSpace = row.bytes;
		EXPECT_EQ(line_of(disks(disk.head(), 1), "nSize"),
		          std::string("nSize              = ") + row.text);
		EXPECT_EQ(line_of(cdroms(cdrom.head(), 1), "nTotalSpace"),
		          std::string("nTotalSpace        = ") + row.text);
		const std::string dump = parts(part.head(), 1);
		EXPECT_EQ(line_of(dump, "nStart"), std::string("nStart             = ") + row.text);
		EXPECT_EQ(line_of(dump, "nSize"), std::string("nSize              = ") + row.text);
		EXPECT_EQ(line_of(dump, "nTotalSpace"), std::string("nTotalSpace        = ") + row.text);
		EXPECT_EQ(line_of(dump, "nUsedSpace"), std::string("nUsedSpace         = ") + row.text);
	}
}

TEST(Display, CountsAreSigned)
{
	Records<STORAGE_DISK_LIST> disk(1);
	disk[0].nDiskID = 0xffffffffU;
	disk[0].nTotalSectors = 0x80000000U;
	disk[0].nPosition = 0xffffffffU;
	const std::string dump = disks(disk.head(), 1);
	EXPECT_EQ(line_of(dump, "nDiskID"), "nDiskID            = -1");
	EXPECT_EQ(line_of(dump, "nTotalSectors"), "nTotalSectors      = -2147483648");
	EXPECT_EQ(line_of(dump, "nPosition"), "nPosition          = ffffffff");
}

TEST(Display, FlagsAreTheCharactersThatTheyAre)
{
	Records<STORAGE_PART_LIST> part(1);
	static const struct {
		int value;
		const char *text;
	} rows[] = {{0, "0"}, {1, "1"}, {0x7f, "127"}, {0x80, "-128"}, {0xff, "-1"}};
	for (const auto &row : rows) {
		part[0].bActive = part[0].bUsedBySystem = static_cast<char>(row.value);
		const std::string dump = parts(part.head(), 1);
		EXPECT_EQ(line_of(dump, "bActive"), std::string("bActive            = ") + row.text);
		EXPECT_EQ(line_of(dump, "bUsedBySystem"), std::string("bUsedBySystem      = ") + row.text);
	}
}

TEST(Display, LongestText)
{
	Records<STORAGE_PART_LIST> part(1);
	memset(part[0].szMountPoint, 'm', sizeof part[0].szMountPoint - 1);
	EXPECT_EQ(line_of(parts(part.head(), 1), "szMountPoint"),
	          "szMountPoint       = " + std::string(63, 'm'));
}

// The banners of a dump, without their stars.
std::vector<std::string> banners(const std::string &dump)
{
	std::vector<std::string> found;
	for (const std::string &line : lines_of(dump))
		if (line.compare(0, STARS.size() + 1, STARS + " ") == 0)
			found.push_back(line.substr(STARS.size() + 1));
	return found;
}

TEST(Display, CountBoundsTheRecords)
{
	using ::testing::ElementsAre;
	Records<STORAGE_DISK_LIST> list(3);
	for (unsigned i = 0; i < 3; i++)
		list[i].nDiskID = 10 + i;
	EXPECT_THAT(banners(disks(list.head(), 0)), ElementsAre("DISK (end/3)"));
	EXPECT_THAT(banners(disks(list.head(), 1)), ElementsAre("DISK (0/3)", "DISK (end/3)"));
	EXPECT_THAT(banners(disks(list.head(), 2)), ElementsAre("DISK (0/3)", "DISK (1/3)", "DISK (end/3)"));
	const auto all = ElementsAre("DISK (0/3)", "DISK (1/3)", "DISK (2/3)", "DISK (end/3)");
	for (const int count : {3, 4, 1000, -1, -2, -2147483647 - 1})
		EXPECT_THAT(banners(disks(list.head(), count)), all) << count;
}

TEST(Display, CountOfTheOtherKinds)
{
	using ::testing::ElementsAre;
	Records<STORAGE_CDROM_LIST> cdrom(2);
	EXPECT_THAT(banners(cdroms(cdrom.head(), 0)), ElementsAre("CDROM (end/2)"));
	EXPECT_THAT(banners(cdroms(cdrom.head(), 1)), ElementsAre("CDROM (0/2)", "CDROM (end/2)"));
	EXPECT_THAT(banners(cdroms(cdrom.head(), -1)),
	            ElementsAre("CDROM (0/2)", "CDROM (1/2)", "CDROM (end/2)"));
	Records<STORAGE_PART_LIST> part(2);
	EXPECT_THAT(banners(parts(part.head(), 0)), ElementsAre("PART (end/2)"));
	EXPECT_THAT(banners(parts(part.head(), 1)), ElementsAre("PART (0/2)", "PART (end/2)"));
	EXPECT_THAT(banners(parts(part.head(), 9)), ElementsAre("PART (0/2)", "PART (1/2)", "PART (end/2)"));
}

TEST(Display, RecordsComeInTheirOrder)
{
	Records<STORAGE_DISK_LIST> list(3);
	std::vector<std::string> expected;
	for (unsigned i = 0; i < 3; i++) {
		list[i].nDiskID = 12 - i;
		expected.push_back(printed("this               = 0x%08x", low32(&list[i])));
		expected.push_back(printed("nDiskID            = %d", 12 - static_cast<int>(i)));
		expected.push_back(printed("next               = 0x%08x", i < 2 ? low32(&list[i + 1]) : 0));
	}
	std::vector<std::string> found;
	for (const std::string &line : lines_of(disks(list.head(), -1)))
		for (const char *name : {"this ", "nDiskID ", "next "})
			if (line.compare(0, strlen(name), name) == 0)
				found.push_back(line);
	EXPECT_EQ(found, expected);
}

TEST(Display, EmptyLists)
{
	for (const int count : {0, 1, -1, 5}) {
		EXPECT_EQ(disks(nullptr, count), end_banner("DISK", 0)) << count;
		EXPECT_EQ(cdroms(nullptr, count), end_banner("CDROM", 0)) << count;
		EXPECT_EQ(parts(nullptr, count), end_banner("PART", 0)) << count;
	}
}

} // namespace
