// SPDX-License-Identifier: Apache-2.0
// Paths that count from an open folder, and ways through links as the kernel goes them.

#include "host_dir.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <thread>
#include <vector>

extern "C" {
int __openat_2(int at, const char *path, int flags);
ssize_t __readlinkat_chk(int at, const char *path, char *buffer, size_t count, size_t room);
char *__realpath_chk(const char *path, char *to, size_t room);
}

static constexpr char device_folder[] = "sys/devices/pci0000:00/0000:00:05.0/ata1/block/sda/";

class ReplayFolder : public HostDir
{
protected:
	void SetUp() override
	{
		const std::string disk = device_folder;
		put(disk + "size", "2048\n");
		put(disk + "dev", "8:0\n");
		put(disk + "queue/rotational", "1\n");
		put(disk + "sda1/partition", "1\n");
		put(disk + "sda1/dev", "8:1\n");
		put("sys/devices/pci0000:00/0000:00:05.0/numa_node", "-1\n");
		const std::string target = "../../devices/pci0000:00/0000:00:05.0/ata1/block/sda";
		link("sys/class/block/sda", target);
		link("sys/class/block/sda1", target + "/sda1");
		link("sys/block/sda", "../devices/pci0000:00/0000:00:05.0/ata1/block/sda");
		link(disk + "device", "../..");
		put("run/udev/data/b8:0", "E:ID_BUS=ata\n");
		link("dev/disk/by-id/ata-X", "../../sda");
		link("dev/disk/by-id/null", "/dev/null");
		// What no link of the host may lead to.
		std::ofstream(root / "outside") << "running\n";
		ASSERT_EQ(show("device /dev/sda\nnumber 8:0\nBLKGETSIZE 2048\nsector 0 5a\n"
		               "device /dev/mapper/vg-root\nnumber 254:0\n"),
		          0);
	}

	// The first line of what `fd` is open on, or the name of the errno it was not opened for.
	static std::string line_of(int fd)
	{
		char text[64] = "";
		if (fd < 0)
			return strerrorname_np(errno);
		const ssize_t got = read(fd, text, sizeof text - 1);
		const std::string error = got < 0 ? strerrorname_np(errno) : "";
		close(fd);
		return got < 0 ? error : std::string(text, strcspn(text, "\n"));
	}

	struct folder {
		explicit folder(const char *path, int flags = O_RDONLY | O_DIRECTORY) : fd(open(path, flags))
		{
		}
		folder(const folder &) = delete;
		folder &operator=(const folder &) = delete;
		~folder() { close(fd); }
		int fd;
	};
};

struct way_case {
	const char *name;
	const char *folder; // null: AT_FDCWD
	const char *path;
	const char *line; // what is read there, or the errno
};

class ReplayWay : public ReplayFolder, public ::testing::WithParamInterface<way_case>
{
protected:
	void SetUp() override
	{
		ReplayFolder::SetUp();
		link("sys/loop", "loop");
		link("sys/ring-a", "ring-b");
		link("sys/ring-b", "ring-a");
		link("sys/out-absolute", (root / "outside").string());
		link("sys/out-relative", "../../outside");
		link("sys/out-far", "../../../../../../../../../../../../etc/passwd");
		link("sys/in-absolute", "/run/udev/data");
		link("sys/to-file", "class/../block/sda/size");
		link("sys/to-file-slash", "block/sda/size/");
		link("sys/nowhere", "no/such");
		link("sys/root", "/");
		// A chain of as many links as the kernel follows, and one more.
		put("sys/chain/0", "end\n");
		for (int i = 1; i <= 41; ++i)
			link("sys/chain/" + std::to_string(i), std::to_string(i - 1));
	}
};

static const std::string long_step(256, 'x');
static const std::string long_path = [] {
	std::string path;
	while (path.size() < 4200)
		path += "block/../";
	return path + "block/sda/size";
}();

static const way_case ways[] = {
	{"plain", nullptr, "/sys/class/block/sda/size", "2048"},
	{"below_folder", "/sys/class/block", "sda/size", "2048"},
	{"below_link", "/sys/class/block/sda", "queue/rotational", "1"},
	{"same_folder", "/sys/class/block/sda", "./size", "2048"},
	{"doubled_slashes", "/sys/class/block/sda", "queue//rotational", "1"},
	{"root_of_sys", "/sys", "class/block/sda/size", "2048"},
	{"whole_disk_of_partition", nullptr, "/sys/class/block/sda1/../dev", "8:0"},
	{"whole_disk_below_folder", "/sys/class/block", "sda1/../dev", "8:0"},
	{"above_the_folder", "/sys/class/block/sda1", "../dev", "8:0"},
	{"link_that_goes_up", "/sys/block/sda", "device/../numa_node", "-1"},
	{"link_in_the_way", nullptr, "/sys/class/block/sda/device/../numa_node", "-1"},
	{"up_from_a_file", "/sys/class/block", "sda/size/../dev", "ENOTDIR"},
	{"up_from_nothing", "/sys/class/block", "sdb/../sda/dev", "ENOENT"},
	{"up_from_nothing_absolute", nullptr, "/sys/class/block/sdb/../sda/dev", "ENOENT"},
	{"below_a_file", "/sys/class/block/sda", "size/x", "ENOTDIR"},
	{"file_as_folder", "/sys/class/block/sda", "size/", "ENOTDIR"},
	{"file_and_dot", "/sys/class/block/sda", "size/.", "ENOTDIR"},
	{"missing", "/sys/class/block", "sdb", "ENOENT"},
	{"empty", "/sys/class/block", "", "ENOENT"},
	{"absolute_leaves_the_folder", "/sys/class/block", "/run/udev/data/b8:0", "E:ID_BUS=ata"},
	{"other_tree_below_root", "/sys", "../run/udev/data/b8:0", "E:ID_BUS=ata"},
	{"above_the_root", "/sys", "../../../../../run/udev/data/b8:0", "E:ID_BUS=ata"},
	{"not_out_above_the_root", "/sys", "../../outside", "ENOENT"},
	{"not_the_running_root", "/sys", "../etc/passwd", "ENOENT"},
	{"device", "/dev", "sda", "Z"},
	{"device_through_link", "/dev/disk/by-id", "ata-X", "Z"},
	{"device_above_folder", "/dev/disk/by-id", "../../sda", "Z"},
	{"device_without_a_folder", nullptr, "/dev/mapper/vg-root", ""},
	{"device_as_folder", "/dev", "sda/", "ENOTDIR"},
	{"below_a_device", nullptr, "/dev/sda/x", "ENOTDIR"},
	{"up_from_a_device", nullptr, "/dev/sda/../sda", "ENOTDIR"},
	{"missing_device", "/dev", "sdb", "ENOENT"},
	{"never_shown", "/dev", "null", ""},
	{"never_shown_above", "/sys", "../dev/./null", ""},
	{"link_to_never_shown", "/dev/disk/by-id", "null", "ENOENT"},
	{"loop", "/sys", "loop", "ELOOP"},
	{"loop_absolute", nullptr, "/sys/loop", "ELOOP"},
	{"ring", "/sys", "ring-a/x", "ELOOP"},
	{"forty_links", "/sys/chain", "40", "end"},
	{"forty_one_links", "/sys/chain", "41", "ELOOP"},
	{"out_absolute", "/sys", "out-absolute", "ENOENT"},
	{"out_relative", "/sys", "out-relative", "ENOENT"},
	{"out_far", "/sys", "out-far", "ENOENT"},
	{"out_far_absolute", nullptr, "/sys/out-far", "ENOENT"},
	{"in_absolute", "/sys", "in-absolute/b8:0", "E:ID_BUS=ata"},
	{"link_to_file", "/sys", "to-file", "2048"},
	{"link_to_file_and_slash", "/sys", "to-file/", "ENOTDIR"},
	{"link_with_a_slash", "/sys", "to-file-slash", "ENOTDIR"},
	{"link_to_nowhere", "/sys", "nowhere", "ENOENT"},
	{"below_nowhere", "/sys", "nowhere/x", "ENOENT"},
	{"link_to_root", "/sys", "root/sys/block/sda/dev", "8:0"},
	{"step_too_long", "/sys", long_step.c_str(), "ENAMETOOLONG"},
	{"path_too_long", "/sys", long_path.c_str(), "ENAMETOOLONG"},
};

TEST_P(ReplayWay, IsTheKernels)
{
	const way_case &way = GetParam();
	const int at = way.folder ? open(way.folder, O_RDONLY | O_DIRECTORY) : AT_FDCWD;
	ASSERT_NE(at, -1) << strerror(errno);
	EXPECT_EQ(line_of(openat(at, way.path, O_RDONLY)), way.line);
	EXPECT_EQ(line_of(openat64(at, way.path, O_RDONLY)), way.line);
	EXPECT_EQ(line_of(__openat_2(at, way.path, O_RDONLY)), way.line);
	struct stat st = {};
	const bool is_error = way.line[0] == 'E' && strchr(way.line, ':') == nullptr;
	errno = 0;
	EXPECT_EQ(fstatat(at, way.path, &st, 0), is_error ? -1 : 0);
	EXPECT_STREQ(strerrorname_np(errno), is_error ? way.line : "0");
	errno = 0;
	EXPECT_EQ(faccessat(at, way.path, F_OK, 0), is_error ? -1 : 0);
	EXPECT_STREQ(strerrorname_np(errno), is_error ? way.line : "0");
	if (way.folder)
		close(at);
}

INSTANTIATE_TEST_SUITE_P(Each, ReplayWay, ::testing::ValuesIn(ways),
                         [](const auto &each) { return std::string(each.param.name); });

TEST_F(ReplayFolder, DescriptorsThatAreNoFolder)
{
	const folder running("/");
	EXPECT_EQ(line_of(openat(-1, "size", O_RDONLY)), "EBADF");
	EXPECT_EQ(line_of(openat(9999, "size", O_RDONLY)), "EBADF");
	EXPECT_EQ(line_of(openat(-1, "/sys/class/block/sda/size", O_RDONLY)), "2048");
	for (const char *path : {"/sys/class/block/sda/size", "/dev/sda"}) {
		const int file = open(path, O_RDONLY);
		for (const char *step : {"x", "..", "../dev", "."})
			EXPECT_EQ(line_of(openat(file, step, O_RDONLY)), "ENOTDIR") << path << " " << step;
		close(file);
	}
	// The running machine's folder stays its own, but for an absolute path.
	EXPECT_EQ(line_of(openat(running.fd, "sys/class/block/sda/size", O_RDONLY)), "ENOENT");
	EXPECT_EQ(line_of(openat(running.fd, "/sys/class/block/sda/size", O_RDONLY)), "2048");
	// The working directory is the running machine's, too.
	EXPECT_EQ(line_of(openat(AT_FDCWD, "sys/class/block/sda/size", O_RDONLY)), "ENOENT");
}

TEST_F(ReplayFolder, WithoutAHostAllIsTheRunningMachines)
{
	ASSERT_EQ(replay_use(nullptr), 0);
	const folder own(root.c_str());
	EXPECT_EQ(line_of(openat(own.fd, "outside", O_RDONLY)), "running");
	EXPECT_EQ(line_of(openat(own.fd, "host/sys/../../outside", O_RDONLY)), "running");
}

TEST_F(ReplayFolder, FlagsAreTheKernels)
{
	const folder blocks("/sys/class/block", O_PATH | O_DIRECTORY);
	ASSERT_GE(blocks.fd, 0);
	EXPECT_EQ(line_of(openat(blocks.fd, "sda/size", O_RDONLY)), "2048");
	EXPECT_EQ(line_of(openat(blocks.fd, "sda", O_RDONLY)), "EISDIR");
	EXPECT_EQ(line_of(openat(blocks.fd, "sda/size", O_RDONLY | O_DIRECTORY)), "ENOTDIR");
	EXPECT_EQ(line_of(openat(blocks.fd, "sda/size", O_PATH)), "EBADF");
	EXPECT_EQ(line_of(openat(blocks.fd, "sda", O_RDONLY | O_NOFOLLOW)), "ELOOP");
	EXPECT_EQ(line_of(openat(blocks.fd, "sda", O_RDWR | O_NOFOLLOW)), "ELOOP");
	EXPECT_EQ(line_of(openat(blocks.fd, "sda/size", O_RDONLY | O_NOFOLLOW)), "2048");
	EXPECT_EQ(line_of(openat(blocks.fd, "sda/", O_RDONLY | O_NOFOLLOW)), "EISDIR");
	// The link itself can be held, and be read through its descriptor.
	const int held = openat(blocks.fd, "sda", O_PATH | O_NOFOLLOW);
	char target[128] = "";
	EXPECT_GT(readlinkat(held, "", target, sizeof target), 0);
	EXPECT_STREQ(target, "../../devices/pci0000:00/0000:00:05.0/ata1/block/sda");
	close(held);
	// What is written goes into a copy.
	const int written = openat(blocks.fd, "sda/size", O_RDWR);
	EXPECT_EQ(write(written, "9", 1), 1);
	close(written);
	EXPECT_EQ(file_text(host() / device_folder / "size"), "2048\n");
}

TEST_F(ReplayFolder, WhatWouldChangeIsLogged)
{
	const folder dev("/dev/disk/by-id");
	replay_log_to(log().c_str());
	EXPECT_EQ(mkdirat(dev.fd, "new", 0755), 0);
	EXPECT_EQ(mkdirat(dev.fd, "../by-id/ata-X", 0755), -1);
	EXPECT_EQ(errno, EEXIST);
	EXPECT_EQ(mkdirat(dev.fd, "none/../new", 0755), -1);
	EXPECT_EQ(errno, ENOENT);
	EXPECT_EQ(mknodat(dev.fd, "../../sdb", S_IFBLK | 0600, makedev(8, 16)), 0);
	EXPECT_EQ(log_text(), "mkdir /dev/disk/by-id/new 0755\nmknod /dev/sdb 060600 8:16\n");
	EXPECT_FALSE(std::filesystem::exists(host() / "dev/disk/by-id/new"));
}

TEST_F(ReplayFolder, EmptyPathIsTheDescriptorItself)
{
	const folder blocks("/sys/class/block", O_PATH | O_DIRECTORY);
	struct stat st = {};
	EXPECT_EQ(fstatat(blocks.fd, "", &st, AT_EMPTY_PATH), 0);
	EXPECT_TRUE(S_ISDIR(st.st_mode));
	const int device = open("/dev/sda", O_RDONLY);
	EXPECT_EQ(fstatat(device, "", &st, AT_EMPTY_PATH), 0);
	EXPECT_TRUE(S_ISBLK(st.st_mode));
	struct statx extended = {};
	EXPECT_EQ(statx(device, "", AT_EMPTY_PATH, STATX_TYPE, &extended), 0);
	EXPECT_TRUE(S_ISBLK(extended.stx_mode));
	close(device);
	EXPECT_EQ(fstatat(AT_FDCWD, "", &st, AT_EMPTY_PATH), 0);
	EXPECT_TRUE(S_ISDIR(st.st_mode));
}

TEST_F(ReplayFolder, LinksAreReadAndKept)
{
	const folder blocks("/sys/class/block");
	char target[128] = "";
	struct stat st = {};
	EXPECT_EQ(readlinkat(blocks.fd, "sda", target, sizeof target), 52);
	EXPECT_STREQ(target, "../../devices/pci0000:00/0000:00:05.0/ata1/block/sda");
	EXPECT_EQ(__readlinkat_chk(blocks.fd, "sda1", target, 6, sizeof target), 6);
	EXPECT_EQ(readlinkat(blocks.fd, "sda/device", target, sizeof target), 5);
	errno = 0;
	EXPECT_EQ(readlinkat(blocks.fd, "sda/", target, sizeof target), -1);
	EXPECT_EQ(errno, EINVAL);
	EXPECT_EQ(fstatat(blocks.fd, "sda", &st, AT_SYMLINK_NOFOLLOW), 0);
	EXPECT_TRUE(S_ISLNK(st.st_mode));
	EXPECT_EQ(fstatat(blocks.fd, "sda/", &st, AT_SYMLINK_NOFOLLOW), 0);
	EXPECT_TRUE(S_ISDIR(st.st_mode));
	EXPECT_EQ(lstat("/sys/class/block/sda1", &st), 0);
	EXPECT_TRUE(S_ISLNK(st.st_mode));
}

TEST_F(ReplayFolder, ListingIsThatOfTheHost)
{
	const folder blocks("/sys/class");
	const int fd = openat(blocks.fd, "block", O_RDONLY | O_DIRECTORY);
	DIR *listing = fdopendir(fd);
	ASSERT_NE(listing, nullptr);
	const auto names = [listing] {
		std::vector<std::string> found;
		while (const struct dirent *entry = readdir(listing)) {
			if (entry->d_name[0] != '.')
				found.emplace_back(entry->d_name);
		}
		std::sort(found.begin(), found.end());
		return found;
	};
	const std::vector<std::string> want = {"sda", "sda1"};
	EXPECT_EQ(names(), want);
	rewinddir(listing);
	EXPECT_EQ(names(), want);
	rewinddir(listing);
	EXPECT_NE(readdir64(listing), nullptr);
	EXPECT_EQ(line_of(openat(dirfd(listing), "sda/size", O_RDONLY)), "2048");
	EXPECT_EQ(closedir(listing), 0);
	EXPECT_EQ(fcntl(fd, F_GETFD), -1);
	struct dirent **found = nullptr;
	const int count = scandirat(blocks.fd, "block/sda", &found, nullptr, alphasort);
	EXPECT_EQ(count, 7); // ., .., dev, device, queue, sda1, size
	for (int i = 0; i < count; ++i)
		free(found[i]);
	free(found);
	struct dirent64 **wide = nullptr;
	EXPECT_EQ(scandirat64(blocks.fd, "block/sda/size", &wide, nullptr, alphasort64), -1);
	EXPECT_EQ(errno, ENOTDIR);
	EXPECT_EQ(opendir("/sys/class/net"), nullptr);
	EXPECT_EQ(errno, ENOENT);
}

// A descriptor stays with its folder, whatever gets the name.
TEST_F(ReplayFolder, SwappedFolder)
{
	namespace fs = std::filesystem;
	const folder blocks("/sys/class/block");
	const folder doomed("/sys/devices/pci0000:00/0000:00:05.0/ata1/block/sda/queue");
	fs::rename(host() / "sys/class/block", host() / "sys/class/old");
	put("sys/class/block/sda/size", "1\n");
	EXPECT_EQ(line_of(openat(blocks.fd, "sda/size", O_RDONLY)), "2048");
	EXPECT_EQ(line_of(open("/sys/class/block/sda/size", O_RDONLY)), "1");
	fs::remove(host() / "sys/class/old/sda");
	fs::create_symlink(root / "outside", host() / "sys/class/old/sda");
	EXPECT_EQ(line_of(openat(blocks.fd, "sda", O_RDONLY)), "ENOENT");
	fs::remove_all(host() / device_folder / "queue");
	EXPECT_EQ(line_of(openat(doomed.fd, "rotational", O_RDONLY)), "ENOENT");
}

TEST_F(ReplayFolder, EndOfAPath)
{
	const std::string disk = "/sys/devices/pci0000:00/0000:00:05.0/ata1/block/sda";
	const std::pair<const char *, std::string> rows[] = {
		{"/sys/class/block/sda", disk},
		{"/sys/class/block/sda1/..", disk},
		{"/sys/class/block/sda1/../", disk},
		{"/dev/disk/by-id/ata-X", "/dev/sda"},
		{"/dev/disk/../sda", "/dev/sda"},
		{"/sys", "/sys"},
		{"/dev/null", "/dev/null"},
		{"/dev/disk/by-id/null", "ENOENT"},
		{"/sys/class/block/sdb", "ENOENT"},
		{"/sys/block/sda/size/", "ENOTDIR"},
		{"/sys/class/block/sda/../..", "/sys/devices/pci0000:00/0000:00:05.0/ata1"},
	};
	for (const auto &[path, want] : rows) {
		char buffer[PATH_MAX] = "";
		const char *end = realpath(path, buffer);
		EXPECT_EQ(end ? end : strerrorname_np(errno), want) << path;
		end = __realpath_chk(path, buffer, sizeof buffer);
		EXPECT_EQ(end ? end : strerrorname_np(errno), want) << path;
		for (char *made : {realpath(path, nullptr), canonicalize_file_name(path)}) {
			EXPECT_EQ(made ? made : strerrorname_np(errno), want) << path;
			free(made);
		}
	}
	char place[16];
	EXPECT_DEATH(__realpath_chk("/sys", place, sizeof place), "");
}

TEST_F(ReplayFolder, AttributesBesideTheStatus)
{
	char value[16];
	ssize_t (*const gets[])(const char *, const char *, void *, size_t) = {getxattr, lgetxattr};
	ssize_t (*const lists[])(const char *, char *, size_t) = {listxattr, llistxattr};
	for (const auto get : gets) {
		errno = 0;
		EXPECT_EQ(get("/sys/class/block/sda", "user.x", value, sizeof value), -1);
		EXPECT_NE(errno, ENOENT);
		EXPECT_EQ(get("/dev/sda", "user.x", value, sizeof value), -1);
		EXPECT_EQ(errno, ENOTSUP);
		EXPECT_EQ(get("/sys/class/block/sdb", "user.x", value, sizeof value), -1);
		EXPECT_EQ(errno, ENOENT);
	}
	for (const auto list : lists) {
		EXPECT_GE(list("/sys/class/block", value, 0), 0);
		EXPECT_EQ(list("/dev/sda", value, 0), -1);
		EXPECT_EQ(errno, ENOTSUP);
	}
}

TEST_F(ReplayFolder, NothingButTheMountTableIsShownOfAProcess)
{
	put("proc/self/mountinfo", "22 1 8:1 / / rw - ext4 /dev/sda1 rw\n");
	put("proc/self/comm", "captured\n");
	put("proc/self/task/x", "captured\n");
	const std::string own = "/proc/" + std::to_string(getpid());
	const std::string mounts = "22 1 8:1 / / rw - ext4 /dev/sda1 rw";
	for (const std::string &path : {std::string("/proc/self"), std::string("/proc/thread-self"), own}) {
		EXPECT_EQ(line_of(open((path + "/mountinfo").c_str(), O_RDONLY)), mounts) << path;
		EXPECT_NE(line_of(open((path + "/comm").c_str(), O_RDONLY)), "captured") << path;
		EXPECT_NE(line_of(open((path + "/mountinfo.old").c_str(), O_RDONLY)), mounts) << path;
	}
	const folder proc("/proc");
	EXPECT_EQ(line_of(openat(proc.fd, "self/mountinfo", O_RDONLY)), mounts);
	EXPECT_EQ(line_of(openat(proc.fd, (own.substr(6) + "/mountinfo").c_str(), O_RDONLY)), mounts);
	EXPECT_NE(line_of(openat(proc.fd, "self/comm", O_RDONLY)), "captured");
	std::filesystem::remove(host() / "proc/self/mountinfo");
	EXPECT_EQ(line_of(open("/proc/self/mountinfo", O_RDONLY)), "ENOENT");
	// It can be covered alone.
	put("proc/self/mountinfo", "alone\n");
	ASSERT_EQ(show("covers /proc/self/mountinfo\n"), 0);
	EXPECT_EQ(line_of(open((own + "/mountinfo").c_str(), O_RDONLY)), "alone");
}

// A host of before their time, and one that says what it covers.
TEST_F(ReplayFolder, AHostWithoutThemHasNoDevices)
{
	std::filesystem::remove_all(host() / "sys");
	std::filesystem::remove_all(host() / "run");
	for (const char *path : {"/sys", "/sys/class/block", "/sys/block", "/run/udev", "/run/udev/data"}) {
		EXPECT_EQ(access(path, F_OK), -1) << path;
		EXPECT_EQ(errno, ENOENT) << path;
		EXPECT_EQ(opendir(path), nullptr) << path;
	}
}

TEST_F(ReplayFolder, WhatIsTheRunningMachinesBelowSys)
{
	for (const char *path : {"devices/system/cpu", "devices/system/node/x", "kernel/mm", "fs/cgroup/x"})
		put("sys/" + std::string(path) + "/online", "captured\n");
	put("sys/devices/system/clocksource/x", "captured\n");
	put("sys/fs/btrfs/x", "captured\n");
	EXPECT_NE(line_of(open("/sys/devices/system/cpu/online", O_RDONLY)), "captured");
	EXPECT_NE(line_of(open("/sys/kernel/mm/online", O_RDONLY)), "captured");
	EXPECT_NE(line_of(open("/sys/fs/cgroup/x/online", O_RDONLY)), "captured");
	EXPECT_NE(line_of(open("/sys/devices/system/node/x/online", O_RDONLY)), "captured");
	const folder devices("/sys/devices");
	EXPECT_NE(line_of(openat(devices.fd, "system/cpu/online", O_RDONLY)), "captured");
	EXPECT_EQ(line_of(open("/sys/devices/system/clocksource/x", O_RDONLY)), "captured");
	EXPECT_EQ(line_of(open("/sys/fs/btrfs/x", O_RDONLY)), "captured");
}

TEST_F(ReplayFolder, TwoThreadsAtOnce)
{
	constexpr int rounds = 2000;
	int wrong[2] = {};
	const auto work = [&wrong](int which) {
		const char *path = which == 0 ? "sda/size" : "sda1/dev";
		const char *line = which == 0 ? "2048" : "8:1";
		for (int i = 0; i < rounds; ++i) {
			const folder blocks("/sys/class/block", O_PATH | O_DIRECTORY);
			wrong[which] += line_of(openat(blocks.fd, path, O_RDONLY)) != line;
			wrong[which] += line_of(open("/dev/disk/by-id/ata-X", O_RDONLY)) != "Z";
		}
	};
	replay_count_calls();
	std::thread first(work, 0);
	std::thread second(work, 1);
	first.join();
	second.join();
	EXPECT_EQ(wrong[0] + wrong[1], 0);
	// Each round: three opens, two reads, three closes.
	EXPECT_EQ(replay_calls(), 2L * rounds * 8);
}
