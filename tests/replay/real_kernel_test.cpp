// SPDX-License-Identifier: Apache-2.0
// The host captured from a real Linux 5.10: what its kernel answered is what is
// shown.

#include "host_dir.h"

#include <fcntl.h>
#include <linux/hdreg.h>
#include <scsi/scsi_ioctl.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/statfs.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

class ReplayRealKernel : public HostDir
{
protected:
	void SetUp() override { ASSERT_EQ(replay_use(REPLAY_REAL_KERNEL), 0); }

	static std::string first_line(const char *path)
	{
		char line[256] = "";
		FILE *stream = fopen(path, "r");
		if (stream == nullptr)
			return "absent";
		const bool got = fgets(line, sizeof(line), stream) != nullptr;
		fclose(stream);
		return got ? line : "";
	}

	static uint32_t word_at(int fd, off_t offset)
	{
		unsigned char bytes[4] = {};
		uint32_t word = 0;
		EXPECT_EQ(pread(fd, bytes, 4, offset), 4);
		for (unsigned i = 4; i-- > 0;)
			word = word << 8 | bytes[i];
		return word;
	}
};

TEST_F(ReplayRealKernel, EveryListedPartitionHasADeviceOfItsSize)
{
	char line[256];
	int seen = 0;
	FILE *stream = fopen("/proc/partitions", "r");
	ASSERT_NE(stream, nullptr);
	while (fgets(line, sizeof(line), stream) != nullptr) {
		unsigned long kilobytes = 0;
		char name[64];
		if (sscanf(line, "%*d %*d %lu %63s", &kilobytes, name) != 2)
			continue;
		const int fd = open((std::string("/dev/") + name).c_str(), O_RDONLY);
		unsigned long sectors = 0;
		EXPECT_EQ(ioctl(fd, BLKGETSIZE, &sectors), 0) << name;
		// The table rounds an odd sector down.
		EXPECT_EQ(sectors / 2, kilobytes) << name;
		close(fd);
		++seen;
	}
	fclose(stream);
	EXPECT_EQ(seen, 20);
}

TEST_F(ReplayRealKernel, PartitionChainOfTheFirstDisk)
{
	const int fd = open("/dev/hda", O_RDONLY);
	ASSERT_GE(fd, 0);
	EXPECT_EQ(word_at(fd, 446) & 0xff, 0x80u);
	EXPECT_EQ(word_at(fd, 446 + 12), 262017u);
	EXPECT_EQ(word_at(fd, 446 + 48 + 4) & 0xff, 0x05u);
	EXPECT_EQ(word_at(fd, 446 + 48 + 8), 294848u);
	EXPECT_EQ(word_at(fd, off_t{294848} * 512 + 446 + 16 + 8), 65661u);
	EXPECT_EQ(word_at(fd, off_t{294848 + 65661} * 512 + 446 + 8), 1u);
	EXPECT_EQ(word_at(fd, off_t{294848 + 106684} * 512 + 508) >> 16, 0xaa55u);
	close(fd);
}

TEST_F(ReplayRealKernel, IdeDiskRefusesScsiRequests)
{
	uint32_t words[2] = {};
	const int fd = open("/dev/hda", O_RDONLY);
	EXPECT_EQ(ioctl(fd, 0x5382, words), -1);
	EXPECT_EQ(errno, EINVAL);
	close(fd);
}

TEST_F(ReplayRealKernel, ScsiDiskTellsItsSerialNumber)
{
	struct {
		uint32_t in, out;
		unsigned char data[480];
	} sent = {0, 480, {0x12, 1, 0x80, 0, 0xfc, 0}};
	uint32_t words[2] = {};
	struct hd_geometry geometry = {};
	const int fd = open("/dev/sdb", O_RDONLY);
	EXPECT_EQ(ioctl(fd, SCSI_IOCTL_SEND_COMMAND, &sent), 0);
	EXPECT_EQ(sent.data[3], 13);
	EXPECT_STREQ(reinterpret_cast<const char *>(sent.data + 4), "VMSCSI-000011");
	EXPECT_EQ(ioctl(fd, 0x5382, words), 0);
	EXPECT_EQ(words[0], 1u);
	EXPECT_EQ(ioctl(fd, HDIO_GETGEO, &geometry), 0);
	EXPECT_EQ(geometry.cylinders, 1024);
	close(fd);
}

TEST_F(ReplayRealKernel, DriveWithoutAMediumAnswersWithItsStatus)
{
	struct {
		uint32_t in, out;
		unsigned char data[480];
	} sent = {0, 480, {0x12, 1, 0x80, 0, 0xfc, 0}};
	const int fd = open("/dev/cdrom", O_RDONLY);
	EXPECT_EQ(ioctl(fd, SCSI_IOCTL_SEND_COMMAND, &sent), 2);
	EXPECT_EQ(sent.data[0], 0xf0);
	close(fd);
}

TEST_F(ReplayRealKernel, FilesLinksAndSpace)
{
	char target[16] = "";
	struct statfs space = {};
	EXPECT_EQ(readlink("/proc/ide/hdc", target, sizeof(target)), 8);
	EXPECT_STREQ(target, "ide1/hdc");
	EXPECT_EQ(first_line("/proc/ide/hda/media"), "disk\n");
	EXPECT_EQ(first_line("/proc/ide/hda/model"), "STORAGEVM IDE DISK 256\n");
	EXPECT_EQ(first_line("/proc/ide/hdc/media"), "cdrom\n");
	EXPECT_EQ(first_line("/proc/uptime"), "3.37 1.39\n");
	EXPECT_EQ(first_line("/proc/scsi/sym53c8xx/0").substr(0, 4), "Chip");
	EXPECT_EQ(statfs("/data", &space), 0);
	EXPECT_EQ(space.f_blocks, 25844u);
	EXPECT_EQ(space.f_bavail, 25153u);
}
