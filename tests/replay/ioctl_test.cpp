// SPDX-License-Identifier: Apache-2.0
// The requests, answered from the table.

#include "host_dir.h"

#include <fcntl.h>
#include <linux/blkzoned.h>
#include <linux/cdrom.h>
#include <linux/fs.h>
#include <linux/hdreg.h>
#include <scsi/scsi_ioctl.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

static constexpr unsigned long get_idlun = 0x5382;

class ReplayIoctl : public HostDir
{
protected:
	~ReplayIoctl() override
	{
		if (fd >= 0)
			close(fd);
	}

	void open_device(const std::string &lines)
	{
		ASSERT_EQ(show("device /dev/sda\n" + lines), 0);
		fd = open("/dev/sda", O_RDONLY);
		ASSERT_GE(fd, 0);
	}

	int fd = -1;
};

// The buffer of SCSI_IOCTL_SEND_COMMAND, with a guard behind its stated room.
struct command {
	uint32_t in = 0;
	uint32_t out = 8;
	unsigned char data[8];
	unsigned char guard[8];

	command() { memset(data, 0xee, sizeof(data) + sizeof(guard)); }
};

TEST_F(ReplayIoctl, Size)
{
	open_device("BLKGETSIZE 4294967297\n");
	unsigned long sectors = 0;
	EXPECT_EQ(ioctl(fd, BLKGETSIZE, &sectors), 0);
	EXPECT_EQ(sectors, 4294967297ul);
}

TEST_F(ReplayIoctl, Geometry)
{
	open_device("HDIO_GETGEO 255 63 520 2048\n");
	struct hd_geometry geometry = {};
	EXPECT_EQ(ioctl(fd, HDIO_GETGEO, &geometry), 0);
	EXPECT_EQ(geometry.heads, 255);
	EXPECT_EQ(geometry.sectors, 63);
	EXPECT_EQ(geometry.cylinders, 520);
	EXPECT_EQ(geometry.start, 2048ul);
}

TEST_F(ReplayIoctl, GeometryStartsAtZeroUnlessTold)
{
	open_device("HDIO_GETGEO 1 2 3\n");
	struct hd_geometry geometry = {};
	geometry.start = 99;
	EXPECT_EQ(ioctl(fd, HDIO_GETGEO, &geometry), 0);
	EXPECT_EQ(geometry.start, 0ul);
}

TEST_F(ReplayIoctl, Address)
{
	open_device("SCSI_IOCTL_GET_IDLUN 0x01020304 0xc000\n");
	uint32_t words[2] = {};
	EXPECT_EQ(ioctl(fd, get_idlun, words), 0);
	EXPECT_EQ(words[0], 0x01020304u);
	EXPECT_EQ(words[1], 0xc000u);
}

TEST_F(ReplayIoctl, ReplyIsFilledUpWithZeroToItsRoom)
{
	open_device("SCSI_IOCTL_SEND_COMMAND 0080 0002 4142\n");
	command sent;
	EXPECT_EQ(ioctl(fd, SCSI_IOCTL_SEND_COMMAND, &sent), 0);
	EXPECT_EQ(memcmp(sent.data, "\0\x80\0\2AB\0\0", 8), 0);
	EXPECT_EQ(sent.guard[0], 0xee);
	EXPECT_EQ(sent.out, 8u);
}

TEST_F(ReplayIoctl, LongReplyIsCutAtItsRoom)
{
	open_device("SCSI_IOCTL_SEND_COMMAND 01020304 05060708 090a\n");
	command sent;
	EXPECT_EQ(ioctl(fd, SCSI_IOCTL_SEND_COMMAND, &sent), 0);
	EXPECT_EQ(sent.data[7], 8);
	EXPECT_EQ(sent.guard[0], 0xee);
}

TEST_F(ReplayIoctl, StatusIsReturnedAndTouchesOnlyItsSenseData)
{
	open_device("SCSI_IOCTL_SEND_COMMAND = 2 f000\n");
	command sent;
	EXPECT_EQ(ioctl(fd, SCSI_IOCTL_SEND_COMMAND, &sent), 2);
	EXPECT_EQ(sent.data[0], 0xf0);
	EXPECT_EQ(sent.data[1], 0);
	EXPECT_EQ(sent.data[2], 0xee);
}

TEST_F(ReplayIoctl, StatusNeedsNoData)
{
	open_device("SCSI_IOCTL_SEND_COMMAND = 2\n");
	command sent;
	EXPECT_EQ(ioctl(fd, SCSI_IOCTL_SEND_COMMAND, &sent), 2);
	EXPECT_EQ(sent.data[0], 0xee);
}

TEST_F(ReplayIoctl, EachFailsAsTold)
{
	open_device("BLKGETSIZE fails ENXIO\nHDIO_GETGEO fails EINVAL\n"
	            "SCSI_IOCTL_GET_IDLUN fails ENODEV\nSCSI_IOCTL_SEND_COMMAND fails EPERM\n");
	const struct {
		unsigned long request;
		int error;
	} rows[] = {{BLKGETSIZE, ENXIO},
	            {HDIO_GETGEO, EINVAL},
	            {get_idlun, ENODEV},
	            {SCSI_IOCTL_SEND_COMMAND, EPERM}};
	for (const auto &row : rows) {
		command untouched;
		errno = 0;
		EXPECT_EQ(ioctl(fd, row.request, &untouched), -1) << row.request;
		EXPECT_EQ(errno, row.error) << row.request;
		EXPECT_EQ(untouched.data[0], 0xee);
	}
}

TEST_F(ReplayIoctl, UnnamedRequestIsUnknownToTheDriver)
{
	open_device("BLKGETSIZE 8\n");
	for (const unsigned long request :
	     {static_cast<unsigned long>(HDIO_GETGEO), get_idlun,
	      static_cast<unsigned long>(SCSI_IOCTL_SEND_COMMAND), static_cast<unsigned long>(BLKROGET)}) {
		command room;
		errno = 0;
		EXPECT_EQ(ioctl(fd, request, &room), -1) << request;
		EXPECT_EQ(errno, ENOTTY) << request;
	}
}

TEST_F(ReplayIoctl, DuplicateAndLinkReachTheSameDevice)
{
	link("dev/disk", "sda");
	open_device("BLKGETSIZE 8\n");
	const int copy = dup(fd);
	const int linked = open("/dev/disk", O_RDONLY);
	for (const int each : {copy, linked}) {
		unsigned long sectors = 0;
		EXPECT_EQ(ioctl(each, BLKGETSIZE, &sectors), 0);
		EXPECT_EQ(sectors, 8ul);
		close(each);
	}
}

TEST_F(ReplayIoctl, OtherDescriptorsAskTheKernel)
{
	open_device("BLKGETSIZE 8\n");
	int ends[2] = {};
	int waiting = -1;
	ASSERT_EQ(pipe(ends), 0);
	ASSERT_EQ(write(ends[1], "abc", 3), 3);
	EXPECT_EQ(ioctl(ends[0], FIONREAD, &waiting), 0);
	EXPECT_EQ(waiting, 3);
	close(ends[0]);
	close(ends[1]);
}

struct number_case {
	const char *word;
	unsigned long request;
	uint64_t value;
	size_t bytes; // 0: the call returns it
};

class ReplayNumber : public ReplayIoctl, public ::testing::WithParamInterface<number_case>
{
};

static const number_case numbers[] = {
	{"BLKGETSIZE", BLKGETSIZE, 4294967297, 8},
	{"BLKGETSIZE64", BLKGETSIZE64, 2199023256064, 8},
	{"BLKSSZGET", BLKSSZGET, 4096, 4},
	{"BLKPBSZGET", BLKPBSZGET, 16384, 4},
	{"BLKROGET", BLKROGET, 1, 4},
	{"BLKIOMIN", BLKIOMIN, 65536, 4},
	{"BLKIOOPT", BLKIOOPT, 1048576, 4},
	{"BLKALIGNOFF", BLKALIGNOFF, 3584, 4},
	{"BLKGETZONESZ", BLKGETZONESZ, 524288, 4},
	{"CDROM_GET_CAPABILITY", CDROM_GET_CAPABILITY, 0x29ffff, 0},
	{"CDROM_DRIVE_STATUS", CDROM_DRIVE_STATUS, CDS_DISC_OK, 0},
	{"CDROM_LAST_WRITTEN", CDROM_LAST_WRITTEN, 4294967297, 8},
};

TEST_P(ReplayNumber, IsAnsweredInItsOwnSize)
{
	const number_case &row = GetParam();
	open_device(std::string(row.word) + " " + std::to_string(row.value) + "\n");
	uint64_t got[2] = {~uint64_t{0}, ~uint64_t{0}};
	const int result = ioctl(fd, row.request, got);
	EXPECT_EQ(result, row.bytes == 0 ? static_cast<int>(row.value) : 0);
	const uint64_t beyond = row.bytes == 4 ? ~uint64_t{0} << 32 : 0;
	EXPECT_EQ(got[0], row.bytes == 0 ? ~uint64_t{0} : row.value | beyond);
	EXPECT_EQ(got[1], ~uint64_t{0});
}

TEST_P(ReplayNumber, FailsWhenNotToldAndAsTold)
{
	const number_case &row = GetParam();
	uint64_t got = 7;
	open_device("");
	errno = 0;
	EXPECT_EQ(ioctl(fd, row.request, &got), -1);
	EXPECT_EQ(errno, ENOTTY);
	close(fd);
	open_device(std::string(row.word) + " fails ENOMEDIUM\n");
	EXPECT_EQ(ioctl(fd, row.request, &got), -1);
	EXPECT_EQ(errno, ENOMEDIUM);
	EXPECT_EQ(got, 7u);
}

INSTANTIATE_TEST_SUITE_P(Each, ReplayNumber, ::testing::ValuesIn(numbers),
                         [](const auto &each) { return std::string(each.param.word); });

// A kernel that knows the one size knows the other.
TEST_F(ReplayIoctl, EitherSizeFollowsFromTheOther)
{
	const struct {
		const char *lines;
		uint64_t sectors, bytes; // 0: the errno below
		int error;
	} rows[] = {
		{"BLKGETSIZE 3\n", 3, 1536, 0},
		{"BLKGETSIZE64 1536\n", 3, 1536, 0},
		{"BLKGETSIZE64 1535\n", 2, 1535, 0},
		{"BLKGETSIZE 3\nBLKGETSIZE64 512\n", 3, 512, 0},
		{"BLKGETSIZE 18446744073709551615\n", UINT64_MAX, UINT64_MAX, 0},
		{"BLKGETSIZE fails EIO\n", 0, 0, EIO},
		{"BLKGETSIZE64 fails ENXIO\n", 0, 0, ENXIO},
	};
	for (const auto &row : rows) {
		uint64_t sectors = 0;
		uint64_t bytes = 0;
		open_device(row.lines);
		EXPECT_EQ(ioctl(fd, BLKGETSIZE, &sectors), row.error == 0 ? 0 : -1) << row.lines;
		EXPECT_EQ(ioctl(fd, BLKGETSIZE64, &bytes), row.error == 0 ? 0 : -1) << row.lines;
		EXPECT_EQ(sectors, row.sectors) << row.lines;
		EXPECT_EQ(bytes, row.bytes) << row.lines;
		EXPECT_EQ(row.error != 0 ? errno : 0, row.error) << row.lines;
		close(fd);
	}
	fd = -1;
}
