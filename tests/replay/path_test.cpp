// SPDX-License-Identifier: Apache-2.0
// Which paths come from the host, and by which calls.

#include "host_dir.h"

#include "replay/paths.h"
#include "replay/place.h"

#include <dirent.h>
#include <fcntl.h>
#include <mntent.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>

#include <cerrno>
#include <cstring>
#include <vector>

TEST(ReplayPaths, PlainSpelling)
{
	const char *const rows[][2] = {{"/proc//ide/./hda", "/proc/ide/hda"},
	                               {"/proc/ide/../partitions", "/proc/partitions"},
	                               {"//dev/hda/", "/dev/hda"},
	                               {"/..", "/"},
	                               {"/", "/"}};
	char out[PATH_MAX];
	for (const auto &row : rows) {
		EXPECT_TRUE(replay::plain_path(row[0], out));
		EXPECT_STREQ(out, row[1]);
	}
	EXPECT_FALSE(replay::plain_path(nullptr, out));
	EXPECT_FALSE(replay::plain_path("proc/partitions", out));
	EXPECT_FALSE(replay::plain_path("", out));
	EXPECT_TRUE(replay::plain_path(("/" + std::string(PATH_MAX - 3, 'x')).c_str(), out));
	EXPECT_FALSE(replay::plain_path(("/" + std::string(PATH_MAX, 'x')).c_str(), out));
}

class ReplayPath : public HostDir
{
protected:
	static std::string stream_text(FILE *stream)
	{
		char line[256];
		std::string text;
		while (stream != nullptr && fgets(line, sizeof(line), stream) != nullptr)
			text += line;
		if (stream != nullptr)
			fclose(stream);
		return text;
	}

	static std::string descriptor_text(int fd)
	{
		char text[256];
		const ssize_t got = read(fd, text, sizeof(text));
		close(fd);
		return got > 0 ? std::string(text, static_cast<size_t>(got)) : std::string();
	}
};

class ReplayCovers : public ReplayPath
{
protected:
	static bool covered(const std::string &path)
	{
		replay::place_t to;
		replay::find_place(AT_FDCWD, path.c_str(), replay::KEEP_LINK, &to);
		return to.kind != replay::RUNNING;
	}

	// A file of the running machine, beside the host.
	std::string beside(const std::string &name) const
	{
		std::ofstream(root / name) << "running\n";
		return (root / name).string();
	}
};

TEST_F(ReplayCovers, TheUsualPathsAndTheirExceptions)
{
	ASSERT_EQ(show(""), 0);
	for (const char *path :
	     {"/proc", "/proc/partitions", "/proc/ide/hda", "/proc/selfish", "/proc/1", "/dev", "/dev/hda",
	      "/dev/cdrom", "/dev/fdisk", "/dev/nullx", "/etc/mtab", "/root/hardraid.cfg",
	      "//root/x/../hardraid.cfg", "/sys", "/sys/class/block", "/run/udev/data/b8:0",
	      "/proc/self/mountinfo", "/proc/thread-self/mountinfo"})
		EXPECT_TRUE(covered(path)) << path;
	for (const char *path : {"/",
	                         "/etc",
	                         "/etc/mtab.old",
	                         "/etc/passwd",
	                         "/procfs",
	                         "/device",
	                         "/rootfs",
	                         "/proc/self",
	                         "/proc/self/maps",
	                         "/proc/thread-self/fd",
	                         "/dev/null",
	                         "/dev/zero",
	                         "/dev/full",
	                         "/dev/tty",
	                         "/dev/ttyS0",
	                         "/dev/pts/3",
	                         "/dev/ptmx",
	                         "/dev/urandom",
	                         "/dev/random",
	                         "/dev/fd/1",
	                         "/dev/stdin",
	                         "/dev/shm",
	                         "/dev/shm/x",
	                         "/sysfs",
	                         "/sys/devices/system/cpu/online",
	                         "/sys/devices/system/node",
	                         "/sys/kernel/mm/transparent_hugepage/enabled",
	                         "/sys/fs/cgroup/memory.max",
	                         "/run",
	                         "/run/udevd",
	                         "/root",
	                         "/root/x",
	                         "/root/hardraid.cfg.old"})
		EXPECT_FALSE(covered(path)) << path;
	const std::string own = "/proc/" + std::to_string(getpid());
	EXPECT_FALSE(covered(own));
	EXPECT_FALSE(covered(own + "/maps"));
	EXPECT_TRUE(covered(own + "/mountinfo"));
	EXPECT_TRUE(covered(own + "0"));
}

TEST_F(ReplayCovers, ATableThatSaysWhatSaysAllOfIt)
{
	ASSERT_EQ(show("device /dev/hda\ncovers /dev/hda\ncovers /srv/a\\040b/\ncovers /root/raidtab\n"), 0);
	for (const char *path : {"/dev/hda", "/srv/a b", "/srv/a b/c/d", "/root/raidtab"})
		EXPECT_TRUE(covered(path)) << path;
	for (const char *path : {"/dev", "/dev/hda1", "/dev/hdb", "/srv", "/srv/a bc", "/root/hardraid.cfg",
	                         "/proc/partitions", "/etc/mtab"})
		EXPECT_FALSE(covered(path)) << path;
}

// The exceptions hold against the folder that the table names.
TEST_F(ReplayCovers, WhatAProgramCannotDoWithoutIsNeverShown)
{
	ASSERT_EQ(show("covers /dev/\ncovers /proc\n"), 0);
	EXPECT_FALSE(covered("/dev/null"));
	EXPECT_FALSE(covered("/dev/shm/x"));
	EXPECT_FALSE(covered("/proc/self/fd/1"));
	EXPECT_TRUE(covered("/dev/hda"));
}

TEST_F(ReplayCovers, AFileThatIsMissingNeverFallsThrough)
{
	const std::string alone = beside("raid.cfg");
	const std::string other = beside("other.cfg");
	ASSERT_EQ(show("covers " + alone + "\n"), 0);
	EXPECT_EQ(fopen(alone.c_str(), "r"), nullptr);
	EXPECT_EQ(errno, ENOENT);
	EXPECT_EQ(stream_text(fopen(other.c_str(), "r")), "running\n");
	put(alone.substr(1), "captured\n");
	EXPECT_EQ(stream_text(fopen(alone.c_str(), "r")), "captured\n");
}

TEST_F(ReplayCovers, AFolderTakesAllBelowIt)
{
	const std::string below = beside("raid.cfg");
	ASSERT_EQ(show("covers " + root.string() + "/\n"), 0);
	EXPECT_EQ(access(below.c_str(), F_OK), -1);
	EXPECT_EQ(errno, ENOENT);
}

// The link's target is there on the running machine; the captured one is meant.
TEST_F(ReplayCovers, AnAbsoluteLinkNeverFallsThrough)
{
	const std::string target = beside("mounts");
	link("etc/mtab", target);
	link("proc/partitions", "/proc/self/maps");
	ASSERT_EQ(show(""), 0);
	for (const char *path : {"/etc/mtab", "/proc/partitions"}) {
		errno = 0;
		EXPECT_EQ(fopen(path, "r"), nullptr) << path;
		EXPECT_EQ(errno, ENOENT) << path;
	}
	put(target.substr(1), "captured\n");
	EXPECT_EQ(stream_text(fopen("/etc/mtab", "r")), "captured\n");
}

TEST_F(ReplayCovers, NorDoesALinkInTheMiddleOfAPath)
{
	const std::string running = beside("media");
	link("proc/ide/hda", root.string());
	link("proc/ide/hdb", "../../..");
	link("proc/scsi", "/proc/ide/../usb");
	put("proc/usb/scsi", "captured\n");
	ASSERT_EQ(show(""), 0);
	EXPECT_EQ(fopen("/proc/ide/hda/media", "r"), nullptr);
	EXPECT_EQ(fopen("/proc/ide/hdb/media", "r"), nullptr);
	EXPECT_EQ(stream_text(fopen("/proc/scsi/scsi", "r")), "captured\n");
	put(running.substr(1), "captured\n");
	EXPECT_EQ(stream_text(fopen("/proc/ide/hda/media", "r")), "captured\n");
}

// Several hosts have a drive in common: it lies in the folder "shared" beside them, and in no other.
TEST_F(ReplayCovers, ARelativeLinkReachesWhatHostsShare)
{
	namespace fs = std::filesystem;
	for (const char *folder : {"host/proc/ide", "shared/drive", "shared-not/drive", "other/drive"}) {
		fs::create_directories(root / folder);
		std::ofstream(root / folder / "media") << folder << "\n";
	}
	std::ofstream(root / "host/host.txt").flush();
	const std::pair<const char *, const char *> links[] = {
		{"hda", "../../../shared/drive"},           {"hdb", "../../../sharedx/drive"},
		{"hdc", "../../../shared-not/drive"},       {"hdd", "../../../other/drive"},
		{"hde", "../../../shared/../other/drive"},  {"hdf", "../../../../shared/drive"},
		{"hdg", "../../../shared/drive/../../../"}, {"hdh", "../../.."},
	};
	for (const auto &[name, target] : links)
		fs::create_symlink(target, root / "host/proc/ide" / name);
	ASSERT_EQ(replay_use((root / "host").c_str()), 0);
	EXPECT_EQ(stream_text(fopen("/proc/ide/hda/media", "r")), "shared/drive\n");
	for (const char *name : {"hdb", "hdc", "hdd", "hde", "hdf", "hdg", "hdh"})
		EXPECT_EQ(fopen(("/proc/ide/" + std::string(name) + "/media").c_str(), "r"), nullptr) << name;
}

TEST_F(ReplayPath, FilesComeFromTheHost)
{
	put("proc/partitions", "captured\n");
	put("etc/mtab", "/dev/hda1 / ext3 rw 0 0\n");
	put("root/hardraid.cfg", "Cli Path: x\n");
	ASSERT_EQ(show(""), 0);
	EXPECT_EQ(stream_text(fopen("/proc/partitions", "r")), "captured\n");
	EXPECT_EQ(stream_text(fopen64("/etc/mtab", "re")), "/dev/hda1 / ext3 rw 0 0\n");
	EXPECT_EQ(descriptor_text(open("/root/hardraid.cfg", O_RDONLY)), "Cli Path: x\n");
	EXPECT_EQ(fopen("/proc/mdstat", "r"), nullptr);
	EXPECT_EQ(errno, ENOENT);
}

TEST_F(ReplayPath, RunningHostIsBackAfterwards)
{
	put("proc/uptime", "captured\n");
	ASSERT_EQ(show(""), 0);
	EXPECT_EQ(stream_text(fopen("/proc/uptime", "r")), "captured\n");
	ASSERT_EQ(replay_use(nullptr), 0);
	const std::string running = stream_text(fopen("/proc/uptime", "r"));
	EXPECT_NE(running, "captured\n");
	EXPECT_NE(running, "");
}

TEST_F(ReplayPath, FailedSwitchKeepsTheHostShown)
{
	put("proc/uptime", "captured\n");
	ASSERT_EQ(show(""), 0);
	stderr_of([&] { EXPECT_EQ(replay_use((root / "nowhere").c_str()), -1); });
	EXPECT_EQ(stream_text(fopen("/proc/uptime", "r")), "captured\n");
}

TEST_F(ReplayPath, ProgramsOwnFilesStayRunning)
{
	ASSERT_EQ(show(""), 0);
	EXPECT_NE(descriptor_text(open("/proc/self/comm", O_RDONLY)), "");
	EXPECT_EQ(access("/dev/null", W_OK), 0);
	std::ofstream(root / "own") << "mine";
	EXPECT_EQ(file_text(root / "own"), "mine");
}

TEST_F(ReplayPath, RelativeLinksWork)
{
	put("proc/ide/ide0/hda/media", "disk\n");
	link("proc/ide/hda", "ide0/hda");
	link("etc/mtab", "../proc/mounts");
	put("proc/mounts", "mounts\n");
	ASSERT_EQ(show(""), 0);
	EXPECT_EQ(stream_text(fopen("/proc/ide/hda/media", "r")), "disk\n");
	EXPECT_EQ(stream_text(fopen("/etc/mtab", "r")), "mounts\n");
}

TEST_F(ReplayPath, LinkToADeviceReachesIt)
{
	link("dev/cdrom", "hdc");
	link("dev/dvd", "/dev/cdrom");
	link("dev/loop", "loop");
	ASSERT_EQ(show("device /dev/hdc\nBLKGETSIZE 1\nsector 0 5a\n"), 0);
	EXPECT_EQ(descriptor_text(open("/dev/cdrom", O_RDONLY))[0], 'Z');
	EXPECT_EQ(descriptor_text(open("/dev/dvd", O_RDONLY))[0], 'Z');
	errno = 0;
	EXPECT_EQ(open("/dev/loop", O_RDONLY), -1);
	EXPECT_EQ(errno, ELOOP);
}

extern "C" ssize_t __readlink_chk(const char *path, char *buffer, size_t count, size_t room);
extern "C" ssize_t __readlinkat_chk(int at, const char *path, char *buffer, size_t count, size_t room);

TEST_F(ReplayPath, LinkIsReadAsItStands)
{
	link("dev/cdrom", "hdc");
	ASSERT_EQ(show("device /dev/hdc\n"), 0);
	char target[16] = "";
	EXPECT_EQ(readlink("/dev/cdrom", target, sizeof(target)), 3);
	EXPECT_STREQ(target, "hdc");
	EXPECT_EQ(readlinkat(AT_FDCWD, "/dev/cdrom", target, 2), 2);
	EXPECT_EQ(__readlink_chk("/dev/cdrom", target, sizeof(target), sizeof(target)), 3);
	EXPECT_EQ(__readlinkat_chk(AT_FDCWD, "/dev/cdrom", target, sizeof(target), sizeof(target)), 3);
	errno = 0;
	EXPECT_EQ(readlink("/dev/hdc", target, sizeof(target)), -1);
	EXPECT_EQ(errno, EINVAL);
	EXPECT_EQ(readlink("/dev/dvd", target, sizeof(target)), -1);
	EXPECT_EQ(errno, ENOENT);
}

TEST_F(ReplayPath, DirectoryIsListedInOrder)
{
	for (const char *name : {"proc/ide/hdb", "proc/ide/hda", "proc/ide/drivers"})
		put(name, "");
	ASSERT_EQ(show("device /dev/hda\n"), 0);
	struct dirent **names = nullptr;
	const int count = scandir("/proc/ide", &names, nullptr, alphasort);
	std::vector<std::string> got;
	for (int i = 0; i < count; ++i) {
		got.emplace_back(names[i]->d_name);
		free(names[i]);
	}
	free(names);
	EXPECT_EQ(got, (std::vector<std::string>{".", "..", "drivers", "hda", "hdb"}));
	EXPECT_EQ(scandir("/proc/scsi", &names, nullptr, alphasort), -1);
	EXPECT_EQ(errno, ENOENT);
	struct dirent64 **wide = nullptr;
	ASSERT_EQ(scandir64("/proc/ide", &wide, nullptr, alphasort64), 5);
	EXPECT_STREQ(wide[2]->d_name, "drivers");
	for (int i = 0; i < 5; ++i)
		free(wide[i]);
	free(wide);
	EXPECT_EQ(scandir64("/dev/hda", &wide, nullptr, alphasort64), -1);
	EXPECT_EQ(errno, ENOTDIR);
	DIR *directory = opendir("/proc/ide");
	EXPECT_NE(directory, nullptr);
	closedir(directory);
	EXPECT_EQ(opendir("/proc/scsi"), nullptr);
	EXPECT_EQ(opendir("/dev/hda"), nullptr);
	EXPECT_EQ(errno, ENOTDIR);
}

TEST_F(ReplayPath, StatusOfFilesLinksAndDevices)
{
	put("proc/scsi/scsi", "12345");
	link("dev/cdrom", "hdc");
	ASSERT_EQ(show("device /dev/hdc\n"), 0);
	struct stat st = {};
	struct stat64 wide = {};
	EXPECT_EQ(stat("/proc/scsi", &st), 0);
	EXPECT_TRUE(S_ISDIR(st.st_mode));
	EXPECT_EQ(stat64("/proc/scsi/scsi", &wide), 0);
	EXPECT_EQ(wide.st_size, 5);
	EXPECT_EQ(stat("/dev/cdrom", &st), 0);
	EXPECT_TRUE(S_ISBLK(st.st_mode));
	EXPECT_EQ(lstat("/dev/cdrom", &st), 0);
	EXPECT_TRUE(S_ISLNK(st.st_mode));
	EXPECT_EQ(lstat64("/dev/hdc", &wide), 0);
	EXPECT_TRUE(S_ISBLK(wide.st_mode));
	EXPECT_EQ(fstatat(AT_FDCWD, "/dev/cdrom", &st, AT_SYMLINK_NOFOLLOW), 0);
	EXPECT_TRUE(S_ISLNK(st.st_mode));
	EXPECT_EQ(fstatat64(-1, "/dev/cdrom", &wide, 0), 0);
	EXPECT_TRUE(S_ISBLK(wide.st_mode));
	EXPECT_EQ(stat("/dev/hdd", &st), -1);
	EXPECT_EQ(errno, ENOENT);
	struct statx extended = {};
	EXPECT_EQ(statx(AT_FDCWD, "/dev/cdrom", 0, STATX_TYPE, &extended), 0);
	EXPECT_TRUE(S_ISBLK(extended.stx_mode));
	EXPECT_EQ(statx(AT_FDCWD, "/proc/scsi/scsi", 0, STATX_SIZE, &extended), 0);
	EXPECT_EQ(extended.stx_size, 5u);
}

TEST_F(ReplayPath, AccessOfADevice)
{
	ASSERT_EQ(show("device /dev/hda\n"), 0);
	EXPECT_EQ(access("/dev/hda", R_OK | W_OK), 0);
	EXPECT_EQ(access("/dev/hda", X_OK), -1);
	EXPECT_EQ(errno, EACCES);
	EXPECT_EQ(access("/dev/hdb", F_OK), -1);
	EXPECT_EQ(errno, ENOENT);
}

TEST_F(ReplayPath, SpaceOfMounts)
{
	ASSERT_EQ(
		show("mount /boot 1024 15225 15188\nmount /a\\040b 2048 9 8 7\nmount /stale fails ESTALE\n"),
		0);
	struct statfs space = {};
	EXPECT_EQ(statfs("/boot", &space), 0);
	EXPECT_EQ(space.f_bsize, 1024);
	EXPECT_EQ(space.f_blocks, 15225u);
	EXPECT_EQ(space.f_bfree, 15188u);
	EXPECT_EQ(space.f_bavail, 15188u);
	struct statfs64 wide = {};
	EXPECT_EQ(statfs64("/a b", &wide), 0);
	EXPECT_EQ(wide.f_bsize, 2048);
	EXPECT_EQ(wide.f_bavail, 7u);
	EXPECT_EQ(statfs("/stale", &space), -1);
	EXPECT_EQ(errno, ESTALE);
	// The running host has a root, but this one lists none.
	EXPECT_EQ(statfs("/", &space), -1);
	EXPECT_EQ(errno, ENOENT);
	ASSERT_EQ(replay_use(nullptr), 0);
	EXPECT_EQ(statfs("/", &space), 0);
}

TEST_F(ReplayPath, MountTableIsReadWithItsOwnCalls)
{
	put("etc/mtab", "/dev/hda1 / ext3 rw 0 0\n");
	ASSERT_EQ(show(""), 0);
	FILE *stream = setmntent("/etc/mtab", "r");
	ASSERT_NE(stream, nullptr);
	const struct mntent *entry = getmntent(stream);
	ASSERT_NE(entry, nullptr);
	EXPECT_STREQ(entry->mnt_fsname, "/dev/hda1");
	EXPECT_EQ(getmntent(stream), nullptr);
	endmntent(stream);
}
