// SPDX-License-Identifier: Apache-2.0
// Children of popen and system see the captured host, and log into its log.

#include "host_dir.h"

#include <dlfcn.h>
#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <vector>

static std::string output_of(const std::string &command)
{
	char block[512];
	std::string text;
	FILE *stream = popen(command.c_str(), "r");
	if (stream == nullptr)
		return "no shell";
	for (size_t got = 1; got > 0;) {
		got = fread(block, 1, sizeof(block), stream);
		text.append(block, got);
	}
	pclose(stream);
	return text;
}

class ReplayChild : public HostDir
{
protected:
	void SetUp() override
	{
		put("etc/mtab", "/dev/hda1 / ext3 rw 0 0\n");
		put("proc/scsi/scsi", "Attached devices:\n");
		link("dev/cdrom", "hdc");
		ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 1\nsector 0 5a\nmount /boot 1024 5 4\n"), 0);
		replay_set_child_library(REPLAY_LIBRARY);
	}
};

TEST_F(ReplayChild, CatSeesTheMountTable)
{
	EXPECT_EQ(output_of("cat /etc/mtab"), "/dev/hda1 / ext3 rw 0 0\n");
}

TEST_F(ReplayChild, ToolsSeeDevicesLinksAndSpace)
{
	EXPECT_EQ(output_of("readlink /dev/cdrom"), "hdc\n");
	EXPECT_EQ(output_of("head -c 1 /dev/hda"), "Z");
	EXPECT_EQ(output_of("stat -f -c '%S %b %f' /boot"), "1024 5 4\n");
	EXPECT_EQ(output_of("test -b /dev/hda && echo block"), "block\n");
}

TEST_F(ReplayChild, SystemServesTheShellItself)
{
	const std::string out = root / "out";
	EXPECT_EQ(system(("read line < /etc/mtab && echo \"$line\" > " + out).c_str()), 0);
	EXPECT_EQ(file_text(out), "/dev/hda1 / ext3 rw 0 0\n");
}

TEST_F(ReplayChild, WritesIntoTheSameLog)
{
	replay_log_to(log().c_str());
	EXPECT_EQ(system("echo hello > /proc/scsi/scsi"), 0);
	EXPECT_EQ(log_text(), "shell echo hello > /proc/scsi/scsi\nwrite /proc/scsi/scsi \"hello\\n\"\n");
	EXPECT_EQ(file_text(host() / "proc/scsi/scsi"), "Attached devices:\n");
}

TEST_F(ReplayChild, IsServedThroughItsOwnChildren)
{
	EXPECT_EQ(output_of("sh -c 'sh -c \"cat /etc/mtab\"'"), "/dev/hda1 / ext3 rw 0 0\n");
}

// The loader would read two names.  awk starts a shell itself.
TEST_F(ReplayChild, IsServedByALibraryWhoseNameTheLoaderCannotRead)
{
	const char *const command =
		"awk 'BEGIN { system(\"cat /etc/mtab; readlink -f $LD_PRELOAD; echo $LD_PRELOAD\") }' 2>&1";
	for (const char *name : {"a b.so", "a:b.so"}) {
		const auto library = std::filesystem::canonical(root) / name;
		std::filesystem::copy_file(REPLAY_LIBRARY, library);
		replay_set_child_library(library.c_str());
		EXPECT_EQ(output_of(command),
		          "/dev/hda1 / ext3 rw 0 0\n" + library.string() + "\n/proc/self/fd/100\n");
	}
	EXPECT_EQ(fcntl(100, F_GETFD), 0);
	replay_set_child_library(nullptr);
	EXPECT_EQ(fcntl(100, F_GETFD), -1);
}

TEST_F(ReplayChild, CallsOfAChildAreNotCounted)
{
	replay_fail_call(5, 1);
	char line[64] = "";
	FILE *stream = popen("cat /etc/mtab", "r");
	ASSERT_NE(stream, nullptr);
	EXPECT_NE(fgets(line, sizeof(line), stream), nullptr);
	EXPECT_EQ(pclose(stream), 0);
	EXPECT_EQ(replay_calls(), 3);
}

TEST_F(ReplayChild, EnvironmentOfTheProgramStays)
{
	const char *const before = getenv("LD_PRELOAD");
	char **const list = environ;
	EXPECT_EQ(output_of("echo $REPLAY_SYSROOT"), host().string() + "\n");
	EXPECT_EQ(environ, list);
	EXPECT_EQ(getenv("LD_PRELOAD"), before);
	EXPECT_EQ(getenv("REPLAY_SYSROOT"), nullptr);
}

TEST_F(ReplayChild, OtherVariablesAreHandedOn)
{
	ASSERT_EQ(setenv("REPLAY_TEST_WORD", "kept", 1), 0);
	ASSERT_EQ(setenv("REPLAY_FAIL", "1+", 1), 0);
	EXPECT_EQ(output_of("echo $REPLAY_TEST_WORD"), "kept\n");
	unsetenv("REPLAY_TEST_WORD");
	unsetenv("REPLAY_FAIL");
}

TEST_F(ReplayChild, EnvironmentTooLargeToRebuildStartsNothing)
{
	std::vector<std::string> texts;
	for (int i = 0; i < 5000; ++i)
		texts.push_back("V" + std::to_string(i) + "=");
	std::vector<char *> list;
	for (std::string &text : texts)
		list.push_back(text.data());
	list.push_back(nullptr);
	char **const kept = environ;
	environ = list.data();
	errno = 0;
	FILE *stream = popen("true", "r");
	const int error = errno;
	const int status = system("true");
	environ = kept;
	EXPECT_EQ(stream, nullptr);
	EXPECT_EQ(error, E2BIG);
	EXPECT_EQ(status, -1);
}

TEST_F(ReplayChild, SanitizedChildIsAllowedToStart)
{
	const char *const before = getenv("ASAN_OPTIONS");
	const std::string kept = before == nullptr ? "" : std::string(before) + ":";
	EXPECT_EQ(output_of("echo $ASAN_OPTIONS"), kept + "verify_asan_link_order=0\n");
}

TEST_F(ReplayChild, WithoutALibrarySeesTheRunningHost)
{
	replay_set_child_library(nullptr);
	EXPECT_EQ(output_of("echo \"$REPLAY_SYSROOT\""), "\n");
	EXPECT_NE(output_of("cat /proc/1/comm"), "");
}

TEST_F(ReplayChild, WithoutAHostSeesTheRunningOne)
{
	replay_use(nullptr);
	EXPECT_EQ(output_of("echo \"$REPLAY_SYSROOT\""), "\n");
}

TEST_F(ReplayChild, MissingLibraryIsToldAndNotUsed)
{
	const std::string said = stderr_of([] { replay_set_child_library("/nowhere/x.so"); });
	EXPECT_EQ(said, "/nowhere/x.so: no such library for the children\n");
	EXPECT_EQ(output_of("echo \"$REPLAY_SYSROOT\""), "\n");
}

TEST_F(ReplayChild, LoadedLibraryIsServedInThisProcess)
{
	void *probe = dlopen(REPLAY_PROBE, RTLD_NOW | RTLD_LOCAL);
	ASSERT_NE(probe, nullptr) << dlerror();
	const auto size = reinterpret_cast<unsigned long (*)(const char *, int)>(dlsym(probe, "probe_size"));
	const auto file =
		reinterpret_cast<size_t (*)(const char *, int, char *, size_t)>(dlsym(probe, "probe_file"));
	const auto line = reinterpret_cast<size_t (*)(const char *, char *, int)>(dlsym(probe, "probe_line"));
	const auto link_of =
		reinterpret_cast<size_t (*)(const char *, char *, size_t)>(dlsym(probe, "probe_link"));
	char text[64] = "";
	EXPECT_EQ(size("/dev/hda", O_RDONLY), 1ul);
	EXPECT_EQ(file("/etc/mtab", O_RDONLY, text, 9), 9u);
	EXPECT_STREQ(text, "/dev/hda1");
	EXPECT_EQ(line("/proc/scsi/scsi", text, 64), 18u);
	EXPECT_STREQ(text, "Attached devices:\n");
	EXPECT_EQ(link_of("/dev/cdrom", text, 3), 3u);
	EXPECT_EQ(memcmp(text, "hdc", 3), 0);
	replay_fail_call(1, 0);
	EXPECT_EQ(size("/dev/hda", O_RDONLY), 0ul);
	dlclose(probe);
}
