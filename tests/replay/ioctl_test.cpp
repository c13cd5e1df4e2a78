// The four requests, answered from the table.

#include "host_dir.h"

#include <fcntl.h>
#include <linux/hdreg.h>
#include <scsi/scsi_ioctl.h>
#include <sys/ioctl.h>
#include <sys/mount.h>

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
