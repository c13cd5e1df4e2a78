// Paths that count from an open folder, and ways through links as the kernel goes them.

#include "host_dir.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cerrno>
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
