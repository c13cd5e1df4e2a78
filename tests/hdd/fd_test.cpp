// SPDX-License-Identifier: Apache-2.0
// Descriptors of devices: opening, and reading whole sectors.
#include "host.h"

#include "hdd/sal/src/0/fd.h"
#include "replay/replay.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// Three sectors, filled with 'A', 'B' and 'C'; the last one ends after 100 bytes.
class FdTest : public HostTest
{
protected:
	void SetUp() override
	{
		host.file("/dev/disk", repeat("A", 512) + repeat("B", 512) + repeat("C", 100));
		HostTest::SetUp();
	}
};

TEST_F(FdTest, OpensReadOnlyAndNotForChildren)
{
	const int fd = fdopen_ro("/dev/disk");
	ASSERT_GE(fd, 0);
	EXPECT_EQ(fcntl(fd, F_GETFL) & O_ACCMODE, O_RDONLY);
	EXPECT_EQ(fcntl(fd, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
	close(fd);
}

TEST_F(FdTest, MissingFileGivesANegativeDescriptor)
{
	EXPECT_LT(fdopen_ro("/dev/none"), 0);
}

TEST_F(FdTest, SeeksToTheSectorFromTheStart)
{
	const Descriptor disk("/dev/disk");
	ASSERT_TRUE(disk.is_open());
	for (const unsigned long sector : {2UL, 1UL, 0UL, 9000UL, 0x100000000UL}) {
		EXPECT_EQ(fdseeks(disk.fd(), sector), 0) << sector;
		EXPECT_EQ(lseek(disk.fd(), 0, SEEK_CUR), static_cast<off_t>(sector * 512));
	}
}

TEST_F(FdTest, SeekFailsWhereThePositionCannotBe)
{
	const Descriptor disk("/dev/disk");
	ASSERT_TRUE(disk.is_open());
	// 2^63 and 2^64 bytes: the one is no file position, the other would come out as 0.
	EXPECT_EQ(fdseeks(disk.fd(), 1UL << 54), -1);
	EXPECT_EQ(fdseeks(disk.fd(), 1UL << 55), -1);
	EXPECT_EQ(fdseeks(disk.fd(), ULONG_MAX), -1);
	EXPECT_EQ(fdseeks(-1, 0), -1);
}

TEST_F(FdTest, SeekFailsOnAPipe)
{
	int ends[2];
	ASSERT_EQ(pipe(ends), 0);
	EXPECT_EQ(fdseeks(ends[0], 0), -1);
	close(ends[0]);
	close(ends[1]);
}

TEST_F(FdTest, ReadsFromThePosition)
{
	const Descriptor disk("/dev/disk");
	ASSERT_EQ(fdseeks(disk.fd(), 1), 0);
	char sector[512];
	EXPECT_EQ(fdread_buf(disk.fd(), sector, sizeof sector), 0);
	EXPECT_EQ(std::string(sector, sizeof sector), repeat("B", 512));
}

TEST_F(FdTest, ShortReadFailsAndLeavesTheRestZero)
{
	const Descriptor disk("/dev/disk");
	ASSERT_EQ(fdseeks(disk.fd(), 2), 0);
	char sector[512];
	memset(sector, 'x', sizeof sector);
	EXPECT_EQ(fdread_buf(disk.fd(), sector, sizeof sector), -1);
	EXPECT_EQ(std::string(sector + 100, 412), std::string(412, '\0'));
}

TEST_F(FdTest, ReadAtTheEndFailsAndZeroes)
{
	const Descriptor disk("/dev/disk");
	ASSERT_EQ(fdseeks(disk.fd(), 3), 0);
	char bytes[3] = {'x', 'x', 'x'};
	EXPECT_EQ(fdread_buf(disk.fd(), bytes, 2), -1);
	EXPECT_EQ(std::string(bytes, 3), std::string("\0\0x", 3));
}

TEST_F(FdTest, ReadWithoutADescriptorFailsAndZeroes)
{
	char bytes[2] = {'x', 'x'};
	EXPECT_EQ(fdread_buf(-1, bytes, 2), -1);
	EXPECT_EQ(std::string(bytes, 2), std::string(2, '\0'));
}

bool waits(const Descriptor &descriptor)
{
	EXPECT_TRUE(descriptor.is_open());
	return (fcntl(descriptor.fd(), F_GETFL) & O_NONBLOCK) == 0;
}

// A drive without a medium can be opened only without waiting for one.
TEST_F(FdTest, OnlyABlockDeviceIsOpenedPlainly)
{
	host.table("device /dev/block\n\tBLKGETSIZE 8\n").link("/dev/to-block", "block");
	host.show();
	for (const char *path : {"/dev/block", "/dev/to-block"}) {
		EXPECT_TRUE(waits(Descriptor(path))) << path;
		EXPECT_TRUE(waits(Descriptor(fdopen_rw(path)))) << path;
	}
	for (const char *path : {"/dev/disk", "/dev/null"}) {
		EXPECT_FALSE(waits(Descriptor(path))) << path;
		EXPECT_FALSE(waits(Descriptor(fdopen_rw(path)))) << path;
	}
}

// Nothing is opened before it is known what it is.
TEST_F(FdTest, WhatCannotBeAskedIsNotOpened)
{
	host.table("device /dev/block\n\tBLKGETSIZE 8\n");
	host.show();
	replay_fail_call(1, 0);
	EXPECT_LT(fdopen_ro("/dev/block"), 0);
	EXPECT_EQ(replay_calls(), 1);
}

// A path below /tmp is the running machine's own.
TEST_F(FdTest, OpeningAPipeWithoutAWriterDoesNotWait)
{
	const std::string pipe = host.path("/pipe");
	ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
	const Descriptor end(pipe.c_str());
	ASSERT_TRUE(end.is_open());
	char byte = 'x';
	EXPECT_EQ(fdread_buf(end.fd(), &byte, 1), -1);
	EXPECT_EQ(byte, '\0');
}

TEST_F(FdTest, WritesWholeBuffersWhereItStands)
{
	host.table("device /dev/block\n\tBLKGETSIZE 8\n");
	host.show();
	const Descriptor disk(fdopen_rw("/dev/block"));
	ASSERT_TRUE(disk.is_open());
	EXPECT_NE(fcntl(disk.fd(), F_GETFD) & FD_CLOEXEC, 0);
	ASSERT_EQ(fdseeks(disk.fd(), 1), 0);
	const char bytes[600] = {};
	EXPECT_EQ(fdwrite_buf(disk.fd(), bytes, sizeof bytes), 0);
	EXPECT_THAT(host.log(), ::testing::ElementsAre("write /dev/block @512 600 bytes"));
}

TEST_F(FdTest, WritingFailsWithoutAWritableDescriptor)
{
	const Descriptor disk("/dev/disk");
	EXPECT_EQ(fdwrite_buf(disk.fd(), "x", 1), -1);
	EXPECT_EQ(fdwrite_buf(-1, "x", 1), -1);
	EXPECT_EQ(fdopen_rw("/dev/none"), -1);
}

TEST_F(FdTest, DescriptorClosesAtTheEndOfItsScope)
{
	int fd;
	{
		const Descriptor disk("/dev/disk");
		fd = disk.fd();
		EXPECT_NE(fcntl(fd, F_GETFD), -1);
	}
	EXPECT_EQ(fcntl(fd, F_GETFD), -1);
	EXPECT_FALSE(Descriptor("/dev/none").is_open());
}

} // namespace
