// SPDX-License-Identifier: Apache-2.0
// The library in front of programs that know nothing of it.

#include "preload.h"

#include <gmock/gmock.h>

using ::testing::HasSubstr;

using ReplayPreload = PreloadDir;

TEST_F(ReplayPreload, PlainToolsSeeTheHost)
{
	put("host.txt", "device /dev/hda\nBLKGETSIZE 2\n");
	put("etc/mtab", "/dev/hda1 / ext3 rw 0 0\n");
	link("dev/cdrom", "hdc");
	EXPECT_EQ(run(sysroot(), "cat /etc/mtab").said, "/dev/hda1 / ext3 rw 0 0\n");
	EXPECT_EQ(run(sysroot(), "readlink /dev/cdrom").said, "hdc\n");
	EXPECT_EQ(run(sysroot(), "wc -c /dev/hda").said, "1024 /dev/hda\n");
	const ended missing = run(sysroot(), "cat /proc/partitions");
	EXPECT_EQ(missing.status, 1);
	EXPECT_THAT(missing.said, HasSubstr("No such file"));
}

TEST_F(ReplayPreload, WithoutASysrootAllPassesThrough)
{
	const ended got = run("", "cat /proc/version");
	EXPECT_EQ(got.status, 0);
	EXPECT_THAT(got.said, HasSubstr("Linux"));
}

TEST_F(ReplayPreload, WritesAreLogged)
{
	put("host.txt", "device /dev/hda\nBLKGETSIZE 2\n");
	const ended got = run(sysroot() + " REPLAY_LOG=" + log().string(), "sh -c 'echo x > /dev/hda'");
	EXPECT_EQ(got.status, 0);
	EXPECT_EQ(log_text(), "write /dev/hda @0 2 bytes\n");
}

TEST_F(ReplayPreload, MalformedHostEndsTheProgram)
{
	put("host.txt", "device /dev/hda\nBLKGETSIZE twelve\n");
	const ended got = run(sysroot(), "/bin/true");
	EXPECT_EQ(got.status, 2);
	EXPECT_EQ(got.said, (host() / "host.txt").string() + ":2: not a number, or one too large\n");
}

TEST_F(ReplayPreload, MissingHostEndsTheProgram)
{
	EXPECT_EQ(run("REPLAY_SYSROOT=/nowhere", "/bin/true").status, 2);
}

TEST_F(ReplayPreload, OneCallFails)
{
	put("host.txt", "");
	put("etc/mtab", "x\n");
	// cat opens its file, reads it, and may do no more before it writes.
	const ended first = run(sysroot() + " REPLAY_FAIL=1+", "cat /etc/mtab");
	EXPECT_EQ(first.status, 1);
	EXPECT_THAT(first.said, ::testing::Not(HasSubstr("x\n")));
	EXPECT_EQ(run(sysroot() + " REPLAY_FAIL=1000", "cat /etc/mtab").said, "x\n");
	EXPECT_EQ(run(sysroot() + " REPLAY_FAIL=0", "cat /etc/mtab").said, "x\n");
}

TEST_F(ReplayPreload, MalformedFailEndsTheProgram)
{
	for (const char *text : {"x", "'1 '", "-1", "+", "1++", "''", "99999999999999999999"}) {
		const ended got = run(std::string("REPLAY_FAIL=") + text, "/bin/true");
		EXPECT_EQ(got.status, 2) << text;
		EXPECT_THAT(got.said, HasSubstr("not N or N+")) << text;
	}
}
