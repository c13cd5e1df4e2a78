// SPDX-License-Identifier: Apache-2.0
// An open device: its content, and how it can be opened.

#include "host_dir.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <vector>

class ReplayDevice : public HostDir
{
protected:
	static std::string read_at(int fd, off_t offset, size_t count)
	{
		std::string text(count, '?');
		EXPECT_EQ(lseek(fd, offset, SEEK_SET), offset);
		const ssize_t got = read(fd, text.data(), count);
		text.resize(got > 0 ? static_cast<size_t>(got) : 0);
		return text;
	}

	// One read of the device at a sector.
	static std::string sector(const char *path, off_t number)
	{
		const int fd = open(path, O_RDONLY);
		EXPECT_GE(fd, 0) << path;
		const std::string text = read_at(fd, number * 512, 512);
		close(fd);
		return text;
	}
};

TEST_F(ReplayDevice, IsZeroWhereNothingIsNamed)
{
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 8\nsector 3 4142\n"), 0);
	EXPECT_EQ(sector("/dev/hda", 2), std::string(512, '\0'));
	EXPECT_EQ(sector("/dev/hda", 3), "AB" + std::string(510, '\0'));
	EXPECT_EQ(sector("/dev/hda", 4), std::string(512, '\0'));
}

TEST_F(ReplayDevice, EndsWithItsSize)
{
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 8\n"), 0);
	const int fd = open("/dev/hda", O_RDONLY);
	ASSERT_GE(fd, 0);
	EXPECT_EQ(lseek(fd, 0, SEEK_END), 8 * 512);
	EXPECT_EQ(read_at(fd, 7 * 512 + 500, 512).size(), 12u);
	EXPECT_EQ(read_at(fd, 8 * 512, 512).size(), 0u);
	close(fd);
}

TEST_F(ReplayDevice, EndsEarlierWhenToldSo)
{
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 200\nends 100\n"), 0);
	EXPECT_EQ(sector("/dev/hda", 99).size(), 512u);
	EXPECT_EQ(sector("/dev/hda", 100).size(), 0u);
}

TEST_F(ReplayDevice, WithoutASizeEndsAfterItsLastSector)
{
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE fails EIO\nsector 4 41\n"), 0);
	EXPECT_EQ(sector("/dev/hda", 4).size(), 512u);
	EXPECT_EQ(sector("/dev/hda", 5).size(), 0u);
}

TEST_F(ReplayDevice, TableSectorHasTheDisksOwnLayout)
{
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 10\n"
	               "table 0\nentry 80 83 63 262017\nentry -\nentry 00 5 0x12345678 1\n"),
	          0);
	std::string want(512, '\0');
	want.replace(446, 16, std::string("\x80\0\0\0\x83\0\0\0\x3f\0\0\0\x81\xff\x03\0", 16));
	want.replace(478, 16, std::string("\0\0\0\0\x05\0\0\0\x78\x56\x34\x12\x01\0\0\0", 16));
	want.replace(510, 2, "\x55\xaa");
	EXPECT_EQ(sector("/dev/hda", 0), want);
}

TEST_F(ReplayDevice, SignatureIsWhatTheTableSays)
{
	ASSERT_EQ(show("device /dev/hda\ntable 0 aa55\ntable 1 none\ntable 2 1234\ntable 3 55aa\n"), 0);
	EXPECT_EQ(sector("/dev/hda", 0).substr(510), "\xaa\x55");
	EXPECT_EQ(sector("/dev/hda", 1).substr(510), std::string(2, '\0'));
	EXPECT_EQ(sector("/dev/hda", 2).substr(510), "\x12\x34");
	EXPECT_EQ(sector("/dev/hda", 3).substr(510), "\x55\xaa");
}

TEST_F(ReplayDevice, RawSectorGoesOnOverLines)
{
	const std::string half(512, '4');
	ASSERT_EQ(show("device /dev/hda\nsector 0 " + half + "\n\t+ " + half + " # full\n"), 0);
	EXPECT_EQ(sector("/dev/hda", 0), std::string(512, 'D'));
}

TEST_F(ReplayDevice, NamedSectorsLieOverTheImage)
{
	put("disk.img", std::string(512, 'a') + std::string(512, 'b') + std::string(512, 'c'));
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 4\nimage disk.img\nsector 1 58\n"), 0);
	EXPECT_EQ(sector("/dev/hda", 0), std::string(512, 'a'));
	EXPECT_EQ(sector("/dev/hda", 1), "X" + std::string(511, '\0'));
	EXPECT_EQ(sector("/dev/hda", 2), std::string(512, 'c'));
	EXPECT_EQ(sector("/dev/hda", 3), std::string(512, '\0'));
	EXPECT_EQ(file_text(host() / "disk.img").substr(512, 512), std::string(512, 'b'));
}

TEST_F(ReplayDevice, ImageWithHolesKeepsItsData)
{
	put("disk.img", "");
	std::filesystem::resize_file(host() / "disk.img", 1 << 24);
	{
		std::fstream image(host() / "disk.img", std::ios::in | std::ios::out | std::ios::binary);
		image.seekp(9000 * 512);
		image << "far";
	}
	ASSERT_EQ(show("device /dev/hda\nimage disk.img\n"), 0);
	EXPECT_EQ(sector("/dev/hda", 0), std::string(512, '\0'));
	EXPECT_EQ(sector("/dev/hda", 9000).substr(0, 4), std::string("far\0", 4));
	EXPECT_EQ(sector("/dev/hda", 32767).size(), 512u);
	EXPECT_EQ(sector("/dev/hda", 32768).size(), 0u);
}

TEST_F(ReplayDevice, LongImageIsCutAtTheSize)
{
	put("disk.img", std::string(2048, 'a'));
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 2\nimage disk.img\n"), 0);
	EXPECT_EQ(sector("/dev/hda", 1).size(), 512u);
	EXPECT_EQ(sector("/dev/hda", 2).size(), 0u);
}

TEST_F(ReplayDevice, HoldsTwoToThe32Sectors)
{
	ASSERT_EQ(show("device /dev/sda\nBLKGETSIZE 4294967296\nsector 4294967295 5a\n"), 0);
	EXPECT_EQ(sector("/dev/sda", 4294967295)[0], 'Z');
	EXPECT_EQ(sector("/dev/sda", 4294967296).size(), 0u);
}

TEST_F(ReplayDevice, LargestSizeStillOpens)
{
	ASSERT_EQ(show("device /dev/sda\nBLKGETSIZE 18446744073709551615\nsector 1 5a\n"), 0);
	EXPECT_EQ(sector("/dev/sda", 1)[0], 'Z');
}

TEST_F(ReplayDevice, EndsWithItsBytes)
{
	ASSERT_EQ(show("device /dev/sda\nBLKGETSIZE64 4096\nBLKSSZGET 4096\n"), 0);
	const int fd = open("/dev/sda", O_RDONLY);
	EXPECT_EQ(lseek(fd, 0, SEEK_END), 4096);
	close(fd);
}

// A status tells a block device by every call, open or not.
TEST_F(ReplayDevice, StatusHasItsNumber)
{
	put("sys/class/block/sda/size", "1\n");
	ASSERT_EQ(show("device /dev/sda\nnumber 259:1048575\nBLKGETSIZE 8\ndevice /dev/sdb\n"), 0);
	const std::pair<const char *, dev_t> rows[] = {{"/dev/sda", makedev(259, 1048575)},
	                                               {"/dev/sdb", makedev(0, 0)}};
	for (const auto &[path, number] : rows) {
		for (const int flags : {O_RDONLY, O_RDWR, O_PATH, O_RDONLY | O_NONBLOCK | O_CLOEXEC}) {
			const int fd = open(path, flags);
			ASSERT_GE(fd, 0);
			struct stat st = {};
			struct stat64 wide = {};
			EXPECT_EQ(fstat(fd, &st), 0);
			EXPECT_EQ(fstat64(fd, &wide), 0);
			EXPECT_TRUE(S_ISBLK(st.st_mode) && S_ISBLK(wide.st_mode));
			EXPECT_EQ(st.st_rdev, number);
			EXPECT_EQ(wide.st_rdev, number);
			EXPECT_EQ(st.st_size, 0);
			const int again = dup(fd);
			EXPECT_EQ(fstat(again, &st), 0);
			EXPECT_EQ(st.st_rdev, number);
			close(again);
			close(fd);
		}
		struct stat st = {};
		EXPECT_EQ(stat(path, &st), 0);
		EXPECT_EQ(st.st_rdev, number);
		EXPECT_EQ(fstatat(AT_FDCWD, path, &st, AT_SYMLINK_NOFOLLOW), 0);
		EXPECT_EQ(st.st_rdev, number);
		struct statx extended = {};
		EXPECT_EQ(statx(-1, path, 0, STATX_TYPE, &extended), 0);
		EXPECT_EQ(makedev(extended.stx_rdev_major, extended.stx_rdev_minor), number);
	}
	// Other files stay what they are, and so does a file that was opened for writing.
	for (const int flags : {O_RDONLY, O_RDWR}) {
		const int fd = open("/sys/class/block/sda/size", flags);
		struct stat st = {};
		EXPECT_EQ(fstat(fd, &st), 0);
		EXPECT_TRUE(S_ISREG(st.st_mode));
		EXPECT_EQ(st.st_size, 2);
		close(fd);
	}
	struct stat st = {};
	EXPECT_EQ(fstat(-1, &st), -1);
	EXPECT_EQ(errno, EBADF);
}

TEST_F(ReplayDevice, BarePathDoesNotReachTheDriver)
{
	char byte = 0;
	unsigned long sectors = 0;
	ASSERT_EQ(show("device /dev/sda\nopens 1\ndevice /dev/sdb\nopen fails EIO\nBLKGETSIZE 8\n"), 0);
	replay_count_calls();
	const int held = open("/dev/sdb", O_PATH);
	EXPECT_GE(held, 0);
	EXPECT_EQ(read(held, &byte, 1), -1);
	EXPECT_EQ(errno, EBADF);
	errno = 0;
	EXPECT_EQ(ioctl(held, BLKGETSIZE, &sectors), -1);
	EXPECT_EQ(errno, EBADF);
	close(held);
	close(open("/dev/sda", O_PATH));
	EXPECT_EQ(open("/dev/sda", O_RDONLY | O_DIRECTORY), -1);
	EXPECT_EQ(errno, ENOTDIR);
	EXPECT_EQ(replay_device_opens(), 0);
	const int fd = open("/dev/sda", O_RDONLY);
	EXPECT_GE(fd, 0);
	close(fd);
	EXPECT_EQ(replay_device_opens(), 1);
	EXPECT_EQ(open("/dev/sda", O_RDONLY), -1);
	EXPECT_EQ(open("/dev/sdb", O_RDONLY), -1);
	EXPECT_EQ(open("/dev/sdc", O_RDONLY), -1);
	EXPECT_EQ(fopen("/dev/sdb", "r"), nullptr);
	EXPECT_EQ(replay_device_opens(), 4);
	replay_count_calls();
	EXPECT_EQ(replay_device_opens(), 0);
}

TEST_F(ReplayDevice, UnlistedDeviceDoesNotExist)
{
	ASSERT_EQ(show("device /dev/hda\n"), 0);
	errno = 0;
	EXPECT_EQ(open("/dev/hdb", O_RDONLY), -1);
	EXPECT_EQ(errno, ENOENT);
	EXPECT_EQ(open("/dev/hda1", O_RDONLY), -1);
	EXPECT_EQ(errno, ENOENT);
}

TEST_F(ReplayDevice, OpenFailsAsTold)
{
	ASSERT_EQ(show("device /dev/hdc\nopen fails ENOMEDIUM\n"), 0);
	errno = 0;
	EXPECT_EQ(open("/dev/hdc", O_RDONLY), -1);
	EXPECT_EQ(errno, ENOMEDIUM);
}

TEST_F(ReplayDevice, VanishesAfterItsOpens)
{
	ASSERT_EQ(show("device /dev/hda\nopens 2\ndevice /dev/hdb\nopens 0\n"), 0);
	for (int i = 0; i < 2; ++i) {
		const int fd = open("/dev/hda", O_RDONLY);
		ASSERT_GE(fd, 0);
		close(fd);
	}
	errno = 0;
	EXPECT_EQ(open("/dev/hda", O_RDONLY), -1);
	EXPECT_EQ(errno, ENXIO);
	EXPECT_EQ(open("/dev/hdb", O_RDONLY), -1);
	// Showing the host anew brings the device back.
	ASSERT_EQ(replay_use(host().c_str()), 0);
	const int fd = open("/dev/hda", O_RDONLY);
	EXPECT_GE(fd, 0);
	close(fd);
}

TEST_F(ReplayDevice, CloseOnExecIsAsAsked)
{
	ASSERT_EQ(show("device /dev/hda\n"), 0);
	const int plain = open("/dev/hda", O_RDONLY);
	const int closing = open("/dev/hda", O_RDONLY | O_CLOEXEC);
	EXPECT_EQ(fcntl(plain, F_GETFD), 0);
	EXPECT_EQ(fcntl(closing, F_GETFD), FD_CLOEXEC);
	close(plain);
	close(closing);
}

TEST_F(ReplayDevice, AccessModeIsAsAsked)
{
	char byte = 'x';
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 1\n"), 0);
	const int reader = open("/dev/hda", O_RDONLY);
	errno = 0;
	EXPECT_EQ(write(reader, &byte, 1), -1);
	EXPECT_EQ(errno, EBADF);
	const int writer = open("/dev/hda", O_WRONLY);
	errno = 0;
	EXPECT_EQ(read(writer, &byte, 1), -1);
	EXPECT_EQ(errno, EBADF);
	close(reader);
	close(writer);
}

TEST_F(ReplayDevice, EveryOpenHasItsOwnPosition)
{
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 8\nsector 0 41\n"), 0);
	const int first = open("/dev/hda", O_RDONLY);
	const int second = open("/dev/hda", O_RDONLY);
	EXPECT_EQ(lseek(first, 1024, SEEK_SET), 1024);
	EXPECT_EQ(lseek(second, 0, SEEK_CUR), 0);
	close(first);
	close(second);
}

TEST_F(ReplayDevice, IsReadThroughAStreamToo)
{
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 1\nsector 0 68690a\n"), 0);
	FILE *stream = fopen("/dev/hda", "r");
	ASSERT_NE(stream, nullptr);
	char line[16] = "";
	EXPECT_NE(fgets(line, sizeof(line), stream), nullptr);
	EXPECT_STREQ(line, "hi\n");
	EXPECT_EQ(fclose(stream), 0);
}

// Every name a compiler may give to the same calls.
extern "C" {
int __open_2(const char *path, int flags);
int __open64_2(const char *path, int flags);
int __openat_2(int at, const char *path, int flags);
ssize_t __read_chk(int fd, void *buffer, size_t count, size_t room);
ssize_t __pread_chk(int fd, void *buffer, size_t count, off_t offset, size_t room);
ssize_t __pread64_chk(int fd, void *buffer, size_t count, off64_t offset, size_t room);
int __openat64_2(int at, const char *path, int flags);
char *__fgets_chk(char *text, size_t room, int size, FILE *stream);
}

TEST_F(ReplayDevice, AllNamesOfOpenSeeIt)
{
	ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 1\nsector 0 5a\n"), 0);
	const std::vector<int> opened = {open("/dev/hda", O_RDONLY),
	                                 open64("/dev/hda", O_RDONLY),
	                                 openat(AT_FDCWD, "/dev/hda", O_RDONLY),
	                                 openat(-1, "/dev/hda", O_RDONLY),
	                                 openat64(AT_FDCWD, "/dev/hda", O_RDONLY),
	                                 __open_2("/dev/hda", O_RDONLY),
	                                 __open64_2("/dev/hda", O_RDONLY),
	                                 __openat_2(AT_FDCWD, "/dev/hda", O_RDONLY),
	                                 __openat64_2(AT_FDCWD, "/dev/hda", O_RDONLY)};
	for (const int fd : opened) {
		char byte = 0;
		EXPECT_EQ(__pread_chk(fd, &byte, 1, 0, 1), 1);
		EXPECT_EQ(byte, 'Z');
		EXPECT_EQ(__pread64_chk(fd, &byte, 1, 512, 1), 0);
		byte = 0;
		EXPECT_EQ(pread64(fd, &byte, 1, 0), 1);
		EXPECT_EQ(byte, 'Z');
		byte = 0;
		EXPECT_EQ(lseek64(fd, 0, SEEK_SET), 0);
		EXPECT_EQ(__read_chk(fd, &byte, 1, 1), 1);
		EXPECT_EQ(byte, 'Z');
		close(fd);
	}
	for (FILE *stream : {fopen("/dev/hda", "r"), fopen64("/dev/hda", "r")}) {
		ASSERT_NE(stream, nullptr);
		char text[2] = "";
		EXPECT_EQ(__fgets_chk(text, sizeof(text), sizeof(text), stream), text);
		EXPECT_STREQ(text, "Z");
		fclose(stream);
	}
}
