// SPDX-License-Identifier: Apache-2.0
// Each counted call, made to fail and left alone; and the loop over a run.

#include "host_dir.h"

#include <dirent.h>
#include <fcntl.h>
#include <mntent.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <sys/xattr.h>

#include <cerrno>
#include <climits>
#include <vector>

extern "C" {
int __open_2(const char *path, int flags);
ssize_t __read_chk(int fd, void *buffer, size_t count, size_t room);
ssize_t __readlink_chk(const char *path, char *buffer, size_t count, size_t room);
char *__realpath_chk(const char *path, char *to, size_t room);
char *__fgets_chk(char *text, size_t room, int size, FILE *stream);
}

// One call between its preparation, which is not counted, and what undoes it.
// `arm` starts the count; the case returns what the call said of its success.
struct call_case {
	const char *name;
	int error;
	bool (*succeeds)(const std::function<void()> &arm, int *seen);
};

// Runs the armed call; keeps its errno before anything else can change it.
template <typename call> static bool run(const std::function<void()> &arm, int *seen, call made)
{
	arm();
	errno = 0;
	const bool good = made();
	*seen = errno;
	return good;
}

#define ARMED const std::function<void()> &arm, int *seen

static bool opened(int fd)
{
	const long before = replay_calls();
	if (fd >= 0)
		close(fd);
	// The clean-up's own call is no part of the case.
	return fd >= 0 && replay_calls() == before + 1;
}

struct open_descriptor {
	int fd = open("/dev/hda", O_RDWR);
	~open_descriptor() { close(fd); }
};

struct open_folder {
	int fd = open("/dev", O_RDONLY | O_DIRECTORY);
	~open_folder() { close(fd); }
};

struct open_listing {
	DIR *listing = opendir("/dev");
	~open_listing() { closedir(listing); }
};

struct open_stream {
	explicit open_stream(const char *mode = "r") : stream(fopen("/etc/mtab", mode)) {}
	~open_stream() { fclose(stream); }
	FILE *stream;
};

static const call_case call_cases[] = {
	{"read", EIO,
         [](ARMED) {
		 open_descriptor d;
		 char b;
		 return run(arm, seen, [&] { return read(d.fd, &b, 1) == 1; });
	 }},
	{"read_chk", EIO,
         [](ARMED) {
		 open_descriptor d;
		 char b;
		 return run(arm, seen, [&] { return __read_chk(d.fd, &b, 1, 1) == 1; });
	 }},
	{"pread", EIO,
         [](ARMED) {
		 open_descriptor d;
		 char b;
		 return run(arm, seen, [&] { return pread(d.fd, &b, 1, 0) == 1; });
	 }},
	{"write", EIO,
         [](ARMED) {
		 open_descriptor d;
		 return run(arm, seen, [&] { return write(d.fd, "x", 1) == 1; });
	 }},
	{"lseek", EINVAL,
         [](ARMED) {
		 open_descriptor d;
		 return run(arm, seen, [&] { return lseek(d.fd, 5, SEEK_SET) == 5; });
	 }},
	{"lseek64", EINVAL,
         [](ARMED) {
		 open_descriptor d;
		 return run(arm, seen, [&] { return lseek64(d.fd, 5, SEEK_SET) == 5; });
	 }},
	{"ioctl", EIO,
         [](ARMED) {
		 open_descriptor d;
		 unsigned long n;
		 return run(arm, seen, [&] { return ioctl(d.fd, BLKGETSIZE, &n) == 0; });
	 }},
	{"statfs", EIO,
         [](ARMED) {
		 struct statfs s;
		 return run(arm, seen, [&] { return statfs("/", &s) == 0; });
	 }},
	{"statfs64", EIO,
         [](ARMED) {
		 struct statfs64 s;
		 return run(arm, seen, [&] { return statfs64("/", &s) == 0; });
	 }},
	{"stat", EIO,
         [](ARMED) {
		 struct stat s;
		 return run(arm, seen, [&] { return stat("/etc/mtab", &s) == 0; });
	 }},
	{"lstat", EIO,
         [](ARMED) {
		 struct stat s;
		 return run(arm, seen, [&] { return lstat("/etc/mtab", &s) == 0; });
	 }},
	{"fstatat", EIO,
         [](ARMED) {
		 struct stat s;
		 return run(arm, seen, [&] { return fstatat(AT_FDCWD, "/etc/mtab", &s, 0) == 0; });
	 }},
	{"fstatat_of_folder", EIO,
         [](ARMED) {
		 open_folder f;
		 struct stat s;
		 return run(arm, seen, [&] { return fstatat(f.fd, "sda", &s, 0) == 0; });
	 }},
	{"fstat", EIO,
         [](ARMED) {
		 open_descriptor d;
		 struct stat s;
		 return run(arm, seen, [&] { return fstat(d.fd, &s) == 0; });
	 }},
	{"fstat64", EIO,
         [](ARMED) {
		 open_descriptor d;
		 struct stat64 s;
		 return run(arm, seen, [&] { return fstat64(d.fd, &s) == 0; });
	 }},
	{"statx", EIO,
         [](ARMED) {
		 struct statx s;
		 return run(arm, seen, [&] { return statx(AT_FDCWD, "/etc/mtab", 0, 0, &s) == 0; });
	 }},
	{"faccessat", EIO,
         [](ARMED) {
		 open_folder f;
		 return run(arm, seen, [&] { return faccessat(f.fd, "sda", R_OK, 0) == 0; });
	 }},
	{"listxattr", EIO,
         [](ARMED) { return run(arm, seen, [&] { return listxattr("/etc/mtab", nullptr, 0) >= 0; }); }},
	{"llistxattr", EIO,
         [](ARMED) { return run(arm, seen, [&] { return llistxattr("/etc/mtab", nullptr, 0) >= 0; }); }},
	{"getxattr", EIO,
         [](ARMED) {
		 return run(arm, seen,
	                    [&] { return getxattr("/etc/mtab", "user.x", nullptr, 0) < 0 && errno != EIO; });
	 }},
	{"lgetxattr", EIO,
         [](ARMED) {
		 return run(arm, seen,
	                    [&] { return lgetxattr("/etc/mtab", "user.x", nullptr, 0) < 0 && errno != EIO; });
	 }},
	{"fstatfs", EIO,
         [](ARMED) {
		 const int fd = open("/", O_PATH);
		 struct statfs s;
		 const bool good = run(arm, seen, [&] { return fstatfs(fd, &s) == 0; });
		 close(fd);
		 return good;
	 }},
	{"statvfs", EIO,
         [](ARMED) {
		 struct statvfs s;
		 return run(arm, seen, [&] { return statvfs("/", &s) == 0; });
	 }},
	{"fstatvfs64", EIO,
         [](ARMED) {
		 const int fd = open("/", O_PATH);
		 struct statvfs64 s;
		 const bool good = run(arm, seen, [&] { return fstatvfs64(fd, &s) == 0; });
		 close(fd);
		 return good;
	 }},
	{"uname", EFAULT,
         [](ARMED) {
		 struct utsname s;
		 return run(arm, seen, [&] { return uname(&s) == 0; });
	 }},
	{"gethostname", EFAULT,
         [](ARMED) {
		 char b[65];
		 return run(arm, seen, [&] { return gethostname(b, sizeof b) == 0; });
	 }},
	{"realpath", EIO,
         [](ARMED) {
		 char b[PATH_MAX];
		 return run(arm, seen, [&] { return realpath("/etc/mtab", b) == b; });
	 }},
	{"realpath_chk", EIO,
         [](ARMED) {
		 char b[PATH_MAX];
		 return run(arm, seen, [&] { return __realpath_chk("/etc/mtab", b, sizeof b) == b; });
	 }},
	{"canonicalize_file_name", EIO,
         [](ARMED) {
		 char *made = nullptr;
		 const bool good = run(
			 arm, seen, [&] { return (made = canonicalize_file_name("/etc/mtab")) != nullptr; });
		 free(made);
		 return good;
	 }},
	{"fdopendir", EMFILE,
         [](ARMED) {
		 const int fd = open("/dev", O_RDONLY | O_DIRECTORY);
		 DIR *listing = nullptr;
		 const bool good = run(arm, seen, [&] { return (listing = fdopendir(fd)) != nullptr; });
		 if (listing)
			 closedir(listing);
		 else
			 close(fd);
		 return good;
	 }},
	{"readdir", EIO,
         [](ARMED) {
		 open_listing l;
		 return run(arm, seen, [&] { return readdir(l.listing) != nullptr; });
	 }},
	{"readdir64", EIO,
         [](ARMED) {
		 open_listing l;
		 return run(arm, seen, [&] { return readdir64(l.listing) != nullptr; });
	 }},
	{"readlinkat_of_folder", EIO,
         [](ARMED) {
		 open_folder f;
		 char b[8];
		 return run(arm, seen, [&] { return readlinkat(f.fd, "cdrom", b, 8) == 3; });
	 }},
	{"access", EIO, [](ARMED) { return run(arm, seen, [&] { return access("/etc/mtab", R_OK) == 0; }); }},
	{"readlink", EIO,
         [](ARMED) {
		 char b[8];
		 return run(arm, seen, [&] { return readlink("/dev/cdrom", b, 8) == 3; });
	 }},
	{"readlinkat", EIO,
         [](ARMED) {
		 char b[8];
		 return run(arm, seen, [&] { return readlinkat(AT_FDCWD, "/dev/cdrom", b, 8) == 3; });
	 }},
	{"readlink_chk", EIO,
         [](ARMED) {
		 char b[8];
		 return run(arm, seen, [&] { return __readlink_chk("/dev/cdrom", b, 8, 8) == 3; });
	 }},
	{"fdopen", ENOMEM,
         [](ARMED) {
		 const int fd = open("/etc/mtab", O_RDONLY);
		 FILE *stream = nullptr;
		 const bool good = run(arm, seen, [&] { return (stream = fdopen(fd, "r")) != nullptr; });
		 if (stream)
			 fclose(stream);
		 else
			 close(fd);
		 return good;
	 }},
	{"mknod", EPERM,
         [](ARMED) { return run(arm, seen, [&] { return mknod("/dev/x", S_IFBLK, 0) == 0; }); }},
	{"mknodat", EPERM,
         [](ARMED) { return run(arm, seen, [&] { return mknodat(AT_FDCWD, "/dev/x", S_IFBLK, 0) == 0; }); }},
	{"mkdir", EROFS, [](ARMED) { return run(arm, seen, [&] { return mkdir("/dev/x", 0777) == 0; }); }},
	{"mkdirat", EROFS,
         [](ARMED) { return run(arm, seen, [&] { return mkdirat(AT_FDCWD, "/dev/x", 0777) == 0; }); }},
	{"unlink", EPERM, [](ARMED) { return run(arm, seen, [&] { return unlink("/dev/x") == 0; }); }},
	{"system", EAGAIN, [](ARMED) { return run(arm, seen, [&] { return system("true") == 0; }); }},
	{"fgets", EIO,
         [](ARMED) {
		 open_stream s;
		 char b[8];
		 return run(arm, seen, [&] { return fgets(b, 8, s.stream) == b || ferror(s.stream) == 0; });
	 }},
	{"fgets_chk", EIO,
         [](ARMED) {
		 open_stream s;
		 char b[8];
		 return run(arm, seen,
	                    [&] { return __fgets_chk(b, 8, 8, s.stream) == b || ferror(s.stream) == 0; });
	 }},
	{"getmntent", EIO,
         [](ARMED) {
		 open_stream s;
		 return run(arm, seen, [&] { return getmntent(s.stream) != nullptr; });
	 }},
	{"getmntent_r", EIO,
         [](ARMED) {
		 open_stream s;
		 struct mntent e;
		 char b[99];
		 return run(arm, seen, [&] { return getmntent_r(s.stream, &e, b, 99) == &e; });
	 }},
	{"flushed_write", EIO,
         [](ARMED) {
		 open_stream s("r+");
		 fputs("x", s.stream);
		 return run(arm, seen, [&] { return fflush(s.stream) == 0; });
	 }},
};

class ReplayFault : public HostDir
{
protected:
	void SetUp() override
	{
		put("etc/mtab", "/dev/hda1 / ext3 rw 0 0\n");
		link("dev/cdrom", "hdc");
		ASSERT_EQ(show("device /dev/hda\nBLKGETSIZE 8\ndevice /dev/sda\nmount / 1 2 3\n"), 0);
	}
};

class ReplayFaultOf : public ReplayFault, public ::testing::WithParamInterface<call_case>
{
};

TEST_P(ReplayFaultOf, IsCountedAndCanFail)
{
	long calls = 0;
	int seen = 0;
	const auto count = [] { replay_count_calls(); };
	const auto fail = [] { replay_fail_call(1, 0); };
	EXPECT_TRUE(GetParam().succeeds(count, &seen));
	EXPECT_FALSE(GetParam().succeeds(fail, &seen));
	EXPECT_EQ(seen, GetParam().error);
	// A call armed as the second is the one after: this one works.
	EXPECT_TRUE(GetParam().succeeds([] { replay_fail_call(2, 0); }, &seen));
	replay_fail_call(0, 0);
	GetParam().succeeds(count, &seen);
	calls = replay_calls();
	EXPECT_GE(calls, 1);
	EXPECT_LE(calls, 2) << "the call itself, and at most one to clean up";
}

INSTANTIATE_TEST_SUITE_P(Each, ReplayFaultOf, ::testing::ValuesIn(call_cases),
                         [](const auto &each) { return std::string(each.param.name); });

TEST_F(ReplayFault, EveryNameOfOpen)
{
	int (*const opens[])() = {
		[] { return open("/dev/hda", O_RDONLY); },
		[] { return open64("/dev/hda", O_RDONLY); },
		[] { return openat(AT_FDCWD, "/dev/hda", O_RDONLY); },
		[] { return __open_2("/dev/hda", O_RDONLY); },
	};
	for (const auto &each : opens) {
		replay_fail_call(1, 0);
		errno = 0;
		EXPECT_EQ(each(), -1);
		EXPECT_EQ(errno, ENXIO);
		EXPECT_TRUE(opened(each()));
		EXPECT_EQ(replay_calls(), 3);
	}
}

TEST_F(ReplayFault, OpenOfAFolderIsAnOpen)
{
	open_folder dev;
	replay_fail_call(1, 0);
	errno = 0;
	EXPECT_EQ(openat(dev.fd, "hda", O_RDONLY), -1);
	EXPECT_EQ(errno, ENXIO);
	EXPECT_TRUE(opened(openat(dev.fd, "hda", O_RDONLY)));
}

TEST_F(ReplayFault, EveryNameOfFopen)
{
	FILE *(*const opens[])() = {
		[] { return fopen("/etc/mtab", "r"); },
		[] { return fopen64("/etc/mtab", "r"); },
		[] { return setmntent("/etc/mtab", "r"); },
	};
	for (const auto &each : opens) {
		replay_fail_call(1, 0);
		errno = 0;
		EXPECT_EQ(each(), nullptr);
		EXPECT_EQ(errno, EMFILE);
		FILE *stream = each();
		ASSERT_NE(stream, nullptr);
		fclose(stream);
		EXPECT_EQ(replay_calls(), 3);
	}
}

TEST_F(ReplayFault, DirectoryCalls)
{
	struct dirent **names = nullptr;
	struct dirent64 **wide = nullptr;
	replay_fail_call(1, 1);
	EXPECT_EQ(scandir("/dev", &names, nullptr, alphasort), -1);
	EXPECT_EQ(errno, ENOMEM);
	EXPECT_EQ(scandir64("/dev", &wide, nullptr, alphasort64), -1);
	EXPECT_EQ(opendir("/dev"), nullptr);
	EXPECT_EQ(errno, EMFILE);
	EXPECT_EQ(scandirat(AT_FDCWD, "/dev", &names, nullptr, alphasort), -1);
	EXPECT_EQ(errno, ENOMEM);
	EXPECT_EQ(scandirat64(AT_FDCWD, "/dev", &wide, nullptr, alphasort64), -1);
	EXPECT_EQ(replay_calls(), 5);
}

TEST_F(ReplayFault, FailedCloseHasClosed)
{
	const int fd = open("/dev/hda", O_RDONLY);
	replay_fail_call(1, 0);
	EXPECT_EQ(close(fd), -1);
	EXPECT_EQ(errno, EIO);
	EXPECT_EQ(fcntl(fd, F_GETFD), -1);
	EXPECT_EQ(errno, EBADF);
}

TEST_F(ReplayFault, FailedClosedirHasClosed)
{
	DIR *listing = opendir("/dev");
	const int fd = dirfd(listing);
	replay_fail_call(1, 0);
	EXPECT_EQ(closedir(listing), -1);
	EXPECT_EQ(errno, EIO);
	EXPECT_EQ(fcntl(fd, F_GETFD), -1);
}

// The end of a listing and a failure both return null; errno tells them apart.
TEST_F(ReplayFault, EndOfAListingIsNoFailure)
{
	DIR *listing = opendir("/dev");
	int entries = 0;
	errno = 0;
	replay_count_calls();
	while (readdir(listing))
		++entries;
	EXPECT_EQ(errno, 0);
	EXPECT_EQ(entries, 3);
	EXPECT_EQ(replay_calls(), 4);
	closedir(listing);
}

TEST_F(ReplayFault, FailedFcloseHasClosed)
{
	FILE *stream = fopen("/etc/mtab", "r");
	ASSERT_NE(stream, nullptr);
	const int fd = fileno(stream);
	replay_fail_call(1, 0);
	EXPECT_EQ(fclose(stream), EOF);
	EXPECT_EQ(errno, EIO);
	EXPECT_EQ(fcntl(fd, F_GETFD), -1);
}

TEST_F(ReplayFault, FailedPcloseHasWaited)
{
	FILE *stream = popen("true", "r");
	ASSERT_NE(stream, nullptr);
	replay_fail_call(1, 0);
	EXPECT_EQ(pclose(stream), -1);
	EXPECT_EQ(errno, ECHILD);
	// No child is left, not even as a zombie.
	EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
	EXPECT_EQ(errno, ECHILD);
}

TEST_F(ReplayFault, FailedPopenStartsNothing)
{
	replay_fail_call(1, 0);
	EXPECT_EQ(popen("true", "r"), nullptr);
	EXPECT_EQ(errno, ENOMEM);
	EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
	EXPECT_EQ(replay_shells(), 0);
}

TEST_F(ReplayFault, FailedWriteIsNotLogged)
{
	replay_log_to(log().c_str());
	const int fd = open("/dev/hda", O_WRONLY);
	replay_fail_call(1, 0);
	EXPECT_EQ(write(fd, "x", 1), -1);
	close(fd);
	EXPECT_EQ(log_text(), "");
}

TEST_F(ReplayFault, OnceOrFromThereOn)
{
	const auto pattern = [] {
		std::string results;
		for (int i = 0; i < 5; ++i)
			results += access("/dev/hda", F_OK) == 0 ? '.' : 'x';
		return results;
	};
	replay_fail_call(2, 0);
	EXPECT_EQ(pattern(), ".x...");
	replay_fail_call(2, 1);
	EXPECT_EQ(pattern(), ".xxxx");
	replay_fail_call(0, 0);
	EXPECT_EQ(replay_calls(), 5);
	EXPECT_EQ(pattern(), ".....");
}

TEST_F(ReplayFault, LoopEndsWhenARunNoLongerReachesTheCall)
{
	const auto work = [] {
		const int fd = open("/dev/hda", O_RDONLY);
		if (fd < 0)
			return false;
		char byte = 0;
		const bool good = read(fd, &byte, 1) == 1;
		return close(fd) == 0 && good;
	};
	std::vector<bool> results;
	long nth = 1;
	for (;; ++nth) {
		replay_fail_call(nth, 0);
		results.push_back(work());
		replay_fail_call(0, 0);
		if (replay_calls() < nth)
			break;
		ASSERT_LT(nth, 10);
	}
	EXPECT_EQ(results, (std::vector<bool>{false, false, false, true}));
}

TEST_F(ReplayFault, RunningHostCanFailToo)
{
	replay_use(nullptr);
	replay_fail_call(1, 0);
	EXPECT_EQ(access("/", F_OK), -1);
	EXPECT_EQ(access("/", F_OK), 0);
}

TEST_F(ReplayFault, OwnCallsAreNotCounted)
{
	replay_log_to(log().c_str());
	replay_count_calls();
	EXPECT_EQ(unlink("/dev/x"), 0);
	EXPECT_EQ(replay_use(host().c_str()), 0);
	EXPECT_EQ(replay_calls(), 1);
}

TEST_F(ReplayFault, ShellsAreCountedApart)
{
	replay_count_calls();
	FILE *stream = popen("true", "r");
	pclose(stream);
	EXPECT_EQ(system("true"), 0);
	EXPECT_NE(system(nullptr), 0);
	EXPECT_EQ(replay_shells(), 2);
	EXPECT_EQ(replay_calls(), 4);
	replay_count_calls();
	EXPECT_EQ(replay_shells(), 0);
}
