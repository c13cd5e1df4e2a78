// SPDX-License-Identifier: Apache-2.0
// What a program would have changed: the captured host stays, a line is logged.

#include "host_dir.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>

class ReplayLog : public HostDir
{
protected:
	void show_logged(const std::string &table)
	{
		put("proc/scsi/scsi", "Attached devices:\n");
		ASSERT_EQ(show(table), 0);
		replay_log_to(log().c_str());
	}
};

TEST_F(ReplayLog, FlushedTextIsOneLine)
{
	show_logged("");
	FILE *stream = fopen("/proc/scsi/scsi", "w");
	ASSERT_NE(stream, nullptr);
	EXPECT_GT(fprintf(stream, "scsi add-single-device %d %d %d %d", 0, 0, 1, 0), 0);
	EXPECT_EQ(log_text(), "");
	EXPECT_EQ(fflush(stream), 0);
	EXPECT_EQ(log_text(), "write /proc/scsi/scsi \"scsi add-single-device 0 0 1 0\"\n");
	EXPECT_EQ(fclose(stream), 0);
	EXPECT_EQ(log_text(), "write /proc/scsi/scsi \"scsi add-single-device 0 0 1 0\"\n");
	EXPECT_EQ(file_text(host() / "proc/scsi/scsi"), "Attached devices:\n");
}

TEST_F(ReplayLog, TextIsEscaped)
{
	show_logged("");
	const int fd = open("/proc/scsi/scsi", O_WRONLY);
	ASSERT_GE(fd, 0);
	EXPECT_EQ(write(fd, "a\"b\\c\nd\t\xff", 9), 9);
	close(fd);
	EXPECT_EQ(log_text(), "write /proc/scsi/scsi \"a\\\"b\\\\c\\nd\\x09\\xff\"\n");
}

TEST_F(ReplayLog, LongTextIsCountedInstead)
{
	show_logged("");
	const int fd = open("/proc/scsi/scsi", O_WRONLY);
	const std::string fits(4096, 'x');
	const std::string more(4097, 'x');
	EXPECT_EQ(write(fd, fits.data(), fits.size()), 4096);
	EXPECT_EQ(write(fd, more.data(), more.size()), 4097);
	close(fd);
	EXPECT_EQ(log_text(),
	          "write /proc/scsi/scsi \"" + fits + "\"\nwrite /proc/scsi/scsi @4096 4097 bytes\n");
}

TEST_F(ReplayLog, DeviceWritesAreCountedAndDropped)
{
	show_logged("device /dev/hda\nBLKGETSIZE 8\nsector 1 41\n");
	const int fd = open("/dev/hda", O_RDWR);
	ASSERT_GE(fd, 0);
	EXPECT_EQ(lseek(fd, 512, SEEK_SET), 512);
	EXPECT_EQ(write(fd, "xyz", 3), 3);
	EXPECT_EQ(lseek(fd, 0, SEEK_CUR), 515);
	char byte = 0;
	EXPECT_EQ(pread(fd, &byte, 1, 512), 1);
	EXPECT_EQ(byte, 'A');
	close(fd);
	EXPECT_EQ(log_text(), "write /dev/hda @512 3 bytes\n");
}

TEST_F(ReplayLog, StreamOnADeviceIsLoggedToo)
{
	show_logged("device /dev/hda\nBLKGETSIZE 8\n");
	FILE *stream = fopen("/dev/hda", "r+");
	ASSERT_NE(stream, nullptr);
	EXPECT_EQ(fputs("abc", stream), 1);
	EXPECT_EQ(fclose(stream), 0);
	EXPECT_EQ(log_text(), "write /dev/hda @0 3 bytes\n");
}

TEST_F(ReplayLog, AppendingAndUpdatingStreams)
{
	show_logged("");
	FILE *appending = fopen("/proc/scsi/scsi", "a");
	ASSERT_NE(appending, nullptr);
	EXPECT_GE(fputs("one", appending), 0);
	EXPECT_EQ(fclose(appending), 0);
	FILE *updating = fopen("/proc/scsi/scsi", "r+");
	ASSERT_NE(updating, nullptr);
	char line[32] = "";
	EXPECT_NE(fgets(line, sizeof(line), updating), nullptr);
	EXPECT_STREQ(line, "Attached devices:\n");
	EXPECT_EQ(fseek(updating, 0, SEEK_CUR), 0);
	EXPECT_GE(fputs("two", updating), 0);
	EXPECT_EQ(fclose(updating), 0);
	EXPECT_EQ(log_text(), "write /proc/scsi/scsi \"one\"\nwrite /proc/scsi/scsi \"two\"\n");
	EXPECT_EQ(file_text(host() / "proc/scsi/scsi"), "Attached devices:\n");
}

TEST_F(ReplayLog, KernelTreesTakeNoNewFiles)
{
	show_logged("");
	errno = 0;
	EXPECT_EQ(fopen("/proc/sys/dev/raid/speed_limit_min", "w"), nullptr);
	EXPECT_EQ(errno, ENOENT);
	EXPECT_EQ(open("/dev/new", O_WRONLY | O_CREAT, 0600), -1);
	EXPECT_EQ(errno, ENOENT);
	errno = 0;
	EXPECT_EQ(fopen("/sys/new", "w"), nullptr);
	EXPECT_EQ(errno, ENOENT);
	EXPECT_EQ(open("/proc/scsi", O_WRONLY), -1);
	EXPECT_EQ(errno, EISDIR);
	EXPECT_EQ(open("/proc/scsi/scsi", O_WRONLY | O_CREAT | O_EXCL, 0600), -1);
	EXPECT_EQ(errno, EEXIST);
	EXPECT_EQ(log_text(), "");
}

TEST_F(ReplayLog, StreamModeMustBeOne)
{
	show_logged("");
	errno = 0;
	EXPECT_EQ(fopen("/proc/scsi/scsi", "q"), nullptr);
	EXPECT_EQ(errno, EINVAL);
}

TEST_F(ReplayLog, PathTooLongForItsCopyIsRefused)
{
	const std::string name = "/root/" + std::string(195, 'x');
	show_logged("covers /root\n");
	errno = 0;
	EXPECT_EQ(open(name.c_str(), O_WRONLY | O_CREAT, 0600), -1);
	EXPECT_EQ(errno, ENAMETOOLONG);
	const int fd = open(name.substr(0, 200).c_str(), O_WRONLY | O_CREAT, 0600);
	EXPECT_GE(fd, 0);
	close(fd);
}

TEST_F(ReplayLog, NewFileOfRootIsLoggedAndNotMade)
{
	show_logged("covers /root\n");
	FILE *stream = fopen("/root/new.cfg", "w");
	ASSERT_NE(stream, nullptr);
	EXPECT_GE(fputs("k", stream), 0);
	EXPECT_EQ(fclose(stream), 0);
	EXPECT_EQ(log_text(), "write /root/new.cfg \"k\"\n");
	EXPECT_FALSE(std::filesystem::exists(host() / "root"));
	EXPECT_EQ(open("/root/other.cfg", O_RDWR), -1);
	EXPECT_EQ(errno, ENOENT);
}

TEST_F(ReplayLog, NodesAndRemovals)
{
	show_logged("");
	EXPECT_EQ(unlink("/dev/.node"), 0);
	EXPECT_EQ(mknod("/dev/.node", S_IFBLK | 0777, makedev(8, 17)), 0);
	EXPECT_EQ(mknodat(AT_FDCWD, "/dev/other", S_IFCHR | 0600, makedev(22, 0)), 0);
	EXPECT_EQ(unlink("/proc/scsi/scsi"), 0);
	EXPECT_EQ(mkdir("/dev/raid", 0750), 0);
	EXPECT_EQ(mkdirat(AT_FDCWD, "/dev/raid/deep", 0777), 0);
	EXPECT_EQ(mkdir("/proc/scsi", 0777), -1);
	EXPECT_EQ(errno, EEXIST);
	EXPECT_EQ(log_text(), "unlink /dev/.node\n"
	                      "mknod /dev/.node 060777 8:17\n"
	                      "mknod /dev/other 020600 22:0\n"
	                      "unlink /proc/scsi/scsi\n"
	                      "mkdir /dev/raid 0750\n"
	                      "mkdir /dev/raid/deep 0777\n");
	EXPECT_FALSE(std::filesystem::exists(host() / "dev"));
	EXPECT_TRUE(std::filesystem::exists(host() / "proc/scsi/scsi"));
}

TEST_F(ReplayLog, OwnFilesAreReallyRemovedAndNotLogged)
{
	show_logged("");
	const std::string own = root / "own";
	std::ofstream(own) << "x";
	EXPECT_EQ(unlink(own.c_str()), 0);
	EXPECT_FALSE(std::filesystem::exists(own));
	EXPECT_EQ(mknod(own.c_str(), S_IFREG | 0600, 0), 0);
	EXPECT_TRUE(std::filesystem::exists(own));
	EXPECT_EQ(mkdir((root / "own-too").c_str(), 0700), 0);
	EXPECT_TRUE(std::filesystem::exists(root / "own-too"));
	EXPECT_EQ(log_text(), "");
}

TEST_F(ReplayLog, ShellCommandIsOneLine)
{
	show_logged("");
	FILE *stream = popen("true\ntrue \"x\"", "r");
	ASSERT_NE(stream, nullptr);
	EXPECT_EQ(pclose(stream), 0);
	EXPECT_EQ(system("exit 3") >> 8, 3);
	EXPECT_EQ(log_text(), "shell true\\ntrue \\\"x\\\"\nshell exit 3\n");
}

TEST_F(ReplayLog, LinesAreAppendedUntilTheLogIsOff)
{
	std::ofstream(log()) << "before\n";
	show_logged("");
	EXPECT_EQ(unlink("/dev/a"), 0);
	replay_log_to(nullptr);
	EXPECT_EQ(unlink("/dev/b"), 0);
	EXPECT_EQ(log_text(), "before\nunlink /dev/a\n");
}

TEST_F(ReplayLog, RelativeNameSurvivesAChangeOfDirectory)
{
	const std::filesystem::path before = std::filesystem::current_path();
	ASSERT_EQ(show(""), 0);
	std::filesystem::current_path(root);
	replay_log_to("log");
	std::filesystem::current_path(before);
	EXPECT_EQ(unlink("/dev/a"), 0);
	EXPECT_EQ(log_text(), "unlink /dev/a\n");
}

TEST_F(ReplayLog, LeavesErrnoAlone)
{
	show_logged("");
	errno = 0;
	EXPECT_EQ(unlink("/dev/a"), 0);
	EXPECT_EQ(errno, 0);
}
