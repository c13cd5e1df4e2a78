// SPDX-License-Identifier: Apache-2.0
// What the machine says of itself: space, and the kernel's name.

#include "host_dir.h"

#include <fcntl.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

extern "C" int __gethostname_chk(char *to, size_t count, size_t room);

class ReplayMachine : public HostDir
{
};

static constexpr char full_mount[] = "mount / 4096 1000 600 500 type 0xef53 frsize 1024 files 64 ffree 32 "
				     "flags 0x1021 fsid 0x1122334455667788 namelen 143\n";

TEST_F(ReplayMachine, SpaceInBothForms)
{
	ASSERT_EQ(show(full_mount), 0);
	struct statfs space = {};
	ASSERT_EQ(statfs("/", &space), 0);
	EXPECT_EQ(space.f_type, 0xef53);
	EXPECT_EQ(space.f_bsize, 4096);
	EXPECT_EQ(space.f_frsize, 1024);
	EXPECT_EQ(space.f_blocks, 1000u);
	EXPECT_EQ(space.f_bfree, 600u);
	EXPECT_EQ(space.f_bavail, 500u);
	EXPECT_EQ(space.f_files, 64u);
	EXPECT_EQ(space.f_ffree, 32u);
	EXPECT_EQ(space.f_flags, 0x1021);
	EXPECT_EQ(space.f_namelen, 143);
	EXPECT_EQ(memcmp(&space.f_fsid, "\x88\x77\x66\x55\x44\x33\x22\x11", 8), 0);
	struct statvfs same = {};
	ASSERT_EQ(statvfs("/", &same), 0);
	EXPECT_EQ(same.f_bsize, 4096u);
	EXPECT_EQ(same.f_frsize, 1024u);
	EXPECT_EQ(same.f_blocks, 1000u);
	EXPECT_EQ(same.f_bfree, 600u);
	EXPECT_EQ(same.f_bavail, 500u);
	EXPECT_EQ(same.f_files, 64u);
	EXPECT_EQ(same.f_ffree, 32u);
	EXPECT_EQ(same.f_favail, 32u);
	EXPECT_EQ(same.f_flag, 0x1001u);
	EXPECT_EQ(same.f_namemax, 143u);
	EXPECT_EQ(same.f_fsid, 0x1122334455667788u);
	struct statfs64 wide = {};
	EXPECT_EQ(statfs64("/", &wide), 0);
	EXPECT_EQ(wide.f_frsize, 1024);
	struct statvfs64 wide_same = {};
	EXPECT_EQ(statvfs64("/", &wide_same), 0);
	EXPECT_EQ(wide_same.f_frsize, 1024u);
}

TEST_F(ReplayMachine, WhatALineLeavesOut)
{
	ASSERT_EQ(show("mount / 2048 10 9\nmount /b 512 10 9 8 files 7\n"), 0);
	struct statvfs space = {};
	ASSERT_EQ(statvfs("/", &space), 0);
	EXPECT_EQ(space.f_frsize, 2048u);
	EXPECT_EQ(space.f_bavail, 9u);
	EXPECT_EQ(space.f_files, 0u);
	EXPECT_EQ(space.f_namemax, 255u);
	ASSERT_EQ(statvfs("/b", &space), 0);
	EXPECT_EQ(space.f_bavail, 8u);
	EXPECT_EQ(space.f_files, 7u);
}

// What is open lies on a mount, at its point or below; the points are the running machine's folders, or the
// host's.
TEST_F(ReplayMachine, SpaceOfADescriptor)
{
	put("sys/class/x", "");
	put("dev/x", "");
	ASSERT_EQ(show(std::string(full_mount) + "mount /sys 4096 0 0 type 0x62656572\n"
	                                         "mount /dev fails ESTALE\n"),
	          0);
	const struct {
		const char *path;
		unsigned long frsize; // 0: ESTALE
	} rows[] = {
		{"/", 1024},    {"/usr", 1024},        {"/usr/bin/env", 1024},
		{"/sys", 4096}, {"/sys/class/", 4096}, {"/sys/class/x", 4096},
		{"/dev", 0},    {"/dev/x", 0},
	};
	for (const auto &row : rows) {
		const int fd = open(row.path, O_PATH);
		ASSERT_GE(fd, 0) << row.path;
		struct statfs space = {};
		struct statfs64 wide = {};
		struct statvfs same = {};
		struct statvfs64 wide_same = {};
		errno = 0;
		const int want = row.frsize == 0 ? -1 : 0;
		EXPECT_EQ(fstatfs(fd, &space), want) << row.path;
		EXPECT_EQ(fstatfs64(fd, &wide), want) << row.path;
		EXPECT_EQ(fstatvfs(fd, &same), want) << row.path;
		EXPECT_EQ(fstatvfs64(fd, &wide_same), want) << row.path;
		EXPECT_EQ(errno, row.frsize == 0 ? ESTALE : 0);
		EXPECT_EQ(static_cast<unsigned long>(space.f_frsize), row.frsize) << row.path;
		EXPECT_EQ(static_cast<unsigned long>(wide.f_frsize), row.frsize) << row.path;
		EXPECT_EQ(same.f_frsize, row.frsize) << row.path;
		EXPECT_EQ(wide_same.f_frsize, row.frsize) << row.path;
		close(fd);
	}
	struct statvfs space = {};
	EXPECT_EQ(fstatvfs(-1, &space), -1);
	EXPECT_EQ(errno, EBADF);
}

TEST_F(ReplayMachine, DescriptorOnNoMountOfTheTable)
{
	ASSERT_EQ(show("mount /boot 1024 2 1\n"), 0);
	const int top = open("/", O_PATH | O_DIRECTORY);
	const int nameless = memfd_create("none", MFD_CLOEXEC);
	struct statvfs space = {};
	for (const int fd : {top, nameless}) {
		errno = 0;
		EXPECT_EQ(fstatvfs(fd, &space), -1);
		EXPECT_EQ(errno, ENOENT);
	}
	ASSERT_EQ(replay_use(nullptr), 0);
	EXPECT_EQ(fstatvfs(top, &space), 0);
	close(nameless);
	close(top);
}

TEST_F(ReplayMachine, MountThatFailsInEveryForm)
{
	ASSERT_EQ(show("mount / fails ESTALE\n"), 0);
	struct statvfs space = {};
	EXPECT_EQ(statvfs("/", &space), -1);
	EXPECT_EQ(errno, ESTALE);
	const int top = open("/", O_PATH | O_DIRECTORY);
	errno = 0;
	EXPECT_EQ(fstatvfs(top, &space), -1);
	EXPECT_EQ(errno, ESTALE);
	close(top);
	EXPECT_EQ(statvfs("/home", &space), -1);
	EXPECT_EQ(errno, ENOENT);
}

TEST_F(ReplayMachine, KernelsName)
{
	struct utsname running = {};
	struct utsname shown = {};
	ASSERT_EQ(uname(&running), 0);
	ASSERT_EQ(show("uname release 6.1.0-18-amd64\nuname version \\0431\\040SMP\nuname nodename web1\n"),
	          0);
	ASSERT_EQ(uname(&shown), 0);
	EXPECT_STREQ(shown.release, "6.1.0-18-amd64");
	EXPECT_STREQ(shown.version, "#1 SMP");
	EXPECT_STREQ(shown.nodename, "web1");
	EXPECT_STREQ(shown.sysname, running.sysname);
	EXPECT_STREQ(shown.machine, running.machine);
	char name[8] = "-------";
	EXPECT_EQ(gethostname(name, 5), 0);
	EXPECT_STREQ(name, "web1");
	EXPECT_EQ(__gethostname_chk(name, sizeof name, sizeof name), 0);
	EXPECT_STREQ(name, "web1");
	EXPECT_DEATH(__gethostname_chk(name, sizeof name + 1, sizeof name), "");
	EXPECT_EQ(gethostname(name, 3), -1);
	EXPECT_EQ(errno, ENAMETOOLONG);
	ASSERT_EQ(show("uname sysname Other\nuname machine " + std::string(64, 'm') + "\n"), 0);
	ASSERT_EQ(uname(&shown), 0);
	EXPECT_STREQ(shown.sysname, "Other");
	EXPECT_EQ(shown.machine, std::string(64, 'm'));
	EXPECT_STREQ(shown.release, running.release);
	ASSERT_EQ(replay_use(nullptr), 0);
	ASSERT_EQ(uname(&shown), 0);
	EXPECT_STREQ(shown.sysname, running.sysname);
}
