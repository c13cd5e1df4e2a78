// SPDX-License-Identifier: Apache-2.0
// What is on the devices of captured hosts: read where it can be, else known by udev's database or the
// kernel.
#include "diskscout_block.h"
#include "host.h"
#include "queries.h"
#include "stored_image.h"

#include <blkid.h>
#include <dlfcn.h>
#include <fcntl.h>

#include <cerrno>
#include <functional>
#include <thread>
#include <vector>

// What happens when a device is about to be probed; its descriptor is given.
static std::function<void(int)> when_probed;

// In this library's place: it is called once for each device that is opened.
extern "C" int blkid_probe_set_device(blkid_probe pr, int fd, blkid_loff_t off, blkid_loff_t size)
{
	static const auto real = reinterpret_cast<decltype(&blkid_probe_set_device)>(
		dlsym(RTLD_NEXT, "blkid_probe_set_device"));
	if (when_probed)
		when_probed(fd);
	return real(pr, fd, off, size);
}

namespace
{

constexpr char ATA[] = "devices/pci0000:00/0000:00:05.0/ata1/host0/target0:0:0/0:0:0:0/block/";
constexpr char VIRTUAL[] = "devices/virtual/block/";

class Contents : public BlockHost
{
protected:
	~Contents() override { when_probed = nullptr; }

	// A device in sysfs and /dev; the lines tell what asking it gives.
	void node(const std::string &path, const std::string &number, const std::string &lines,
	          long long sectors = 8192)
	{
		device(path, number, sectors);
		entry(path.substr(path.rfind('/') + 1), number, lines);
	}
	void entry(const std::string &name, const std::string &number, const std::string &lines)
	{
		table_ += "device /dev/" + name + "\nnumber " + number + "\n" + lines + "\n";
	}

	// The same with something on it.
	void disk(const std::string &path, const std::string &number, const StoredImage &image)
	{
		node(path, number, content_of(image), image.size / 512);
	}
	void partition(const std::string &disk_path, int part, const std::string &number, long long start,
	               long long sectors, const std::string &more_uevent = "")
	{
		const std::string path =
			disk_path + "/" + disk_path.substr(disk_path.rfind('/') + 1) + std::to_string(part);
		device(path, number, sectors, "partition",
		       "PARTN=" + std::to_string(part) + "\n" + more_uevent);
		put("sys/" + path + "/start", std::to_string(start) + "\n");
	}

	// The lines of a device that holds the image.
	std::string content_of(const StoredImage &image)
	{
		constexpr off_t BLOCK = 4096;
		const std::string name = "image-" + std::to_string(images_++);
		std::ofstream out(host() / name, std::ios::binary);
		for (off_t at = 0; at < image.size; at += BLOCK) {
			const off_t length = std::min(BLOCK, image.size - at);
			const std::string block = image.get(at, static_cast<size_t>(length));
			if (block.find_first_not_of('\0') != std::string::npos)
				out.seekp(at).write(block.data(), length);
		}
		out.close();
		std::filesystem::resize_file(host() / name, static_cast<uintmax_t>(image.size));
		return "image " + name + "\nBLKGETSIZE64 " + std::to_string(image.size);
	}

	void show()
	{
		put("host.txt", table_);
		ASSERT_EQ(replay_use(host().c_str()), 0);
	}

private:
	std::string table_;
	int images_ = 0;
};

using List = Answer<block_content>;

std::vector<std::string> names(const List &list)
{
	std::vector<std::string> found;
	for (const block_content *at = list.first(); at; at = at->next)
		found.emplace_back(at->name);
	return found;
}

std::string expected_of(const std::string &image)
{
	std::ifstream in(StoredImage::folder() / image / "expected");
	std::ostringstream text;
	text << in.rdbuf();
	return text.str();
}

std::string sda(const std::string &name = "sda")
{
	return ATA + name;
}

// ---- which devices ----

TEST_F(Contents, IsToldOfEveryDeviceThatIsNotHiddenInTheOrderOfTheirNames)
{
	node(sda("sdb"), "8:16", "open fails EACCES");
	node(sda("sda"), "8:0", "open fails EACCES");
	partition(sda("sda"), 10, "8:10", 2048, 8);
	partition(sda("sda"), 2, "8:2", 64, 8);
	node("devices/virtual/nvme-subsystem/nvme-subsys0/nvme0n1", "259:0", "open fails EACCES");
	device("devices/virtual/nvme-subsystem/nvme-subsys0/nvme0c0n1", "", 8192);
	show();
	const List list(list_contents);
	EXPECT_EQ(list.result, 0);
	EXPECT_EQ(names(list), (std::vector<std::string>{"nvme0n1", "sda", "sda2", "sda10", "sdb"}));
	EXPECT_EQ(list.count, 5);
}

TEST_F(Contents, OfAHostWithoutDevicesIsEmpty)
{
	std::filesystem::create_directories(host() / "sys/class/block");
	show();
	const List list(list_contents);
	EXPECT_EQ(list.result, 0);
	EXPECT_EQ(list.count, 0);
	EXPECT_EQ(list.first(), nullptr);
}

TEST_F(Contents, OfAHostWithoutSysfsFails)
{
	show();
	const List list(list_contents);
	EXPECT_EQ(list.result, -1);
	EXPECT_EQ(errno, ENOENT);
}

// ---- what is read ----

TEST_F(Contents, IsReadFromTheDevice)
{
	disk(sda(), "8:0", StoredImage("gpt"));
	partition(sda(), 1, "8:1", 2048, 4096);
	entry("sda1", "8:1", content_of(StoredImage("vfat")));
	show();
	const List list(list_contents);
	ASSERT_EQ(list.count, 2);
	const block_content &whole = list.named("sda");
	EXPECT_STREQ(whole.source, "device");
	EXPECT_EQ(whole.error, BLOCK_ABSENT);
	EXPECT_EQ(whole.ambiguous, 0);
	EXPECT_EQ(whole.record_size, sizeof(block_content));
	EXPECT_EQ(whole.partitions->record_size, sizeof(block_partition));
	const block_content &part = list.named("sda1");
	EXPECT_STREQ(part.source, "device");
	EXPECT_EQ(shown_content(part), expected_of("vfat"));
}

TEST_F(Contents, NamesTheKernelsDevicesThatLieWhereTheTableSays)
{
	disk(sda(), "8:0", StoredImage("gpt"));
	partition(sda(), 1, "8:1", 2048, 4096);
	partition(sda(), 2, "8:2", 4096, 8192); // of an older table
	partition(sda(), 3, "8:3", 16384, 2048);
	partition(sda(), 4, "8:4", 0, 2048);
	std::filesystem::remove(host() / ("sys/" + sda() + "/sda4/start"));
	show();
	const List list(list_contents);
	const block_partition *first = list.named("sda").partitions;
	ASSERT_NE(first, nullptr);
	EXPECT_STREQ(first->name, "sda1");
	EXPECT_EQ(first->next->number, 2);
	EXPECT_EQ(first->next->name, nullptr);
	EXPECT_EQ(first->next->next->number, 4);
	EXPECT_STREQ(first->next->next->name, "sda4");
	EXPECT_EQ(first->next->next->next, nullptr);
}

TEST_F(Contents, CountsInTheSectorsOfTheDisk)
{
	const StoredImage image("gpt-4kn");
	node(sda(), "8:0", content_of(image) + "\nBLKSSZGET 4096", image.size / 512);
	show();
	const List list(list_contents);
	EXPECT_EQ(shown_content(list.named("sda")), expected_of("gpt-4kn"));
}

TEST_F(Contents, OfASmallDiskIsItsTable)
{
	StoredImage image("ext4-on-table");
	image.size = 1440 * 1024;
	disk(sda(), "8:0", image);
	device(std::string(sda("sdb")), "8:16", 8);
	partition(sda("sdb"), 1, "8:17", 2, image.size / 512);
	entry("sdb1", "8:17", content_of(image));
	show();
	const List list(list_contents);
	EXPECT_EQ(list.named("sda").type, nullptr);
	EXPECT_STREQ(list.named("sda").table, "dos");
	EXPECT_STREQ(list.named("sdb1").type, "ext4");
}

TEST_F(Contents, OfSeveralKindsIsAmbiguous)
{
	disk(sda(), "8:0", StoredImage("both-on-table"));
	show();
	const List list(list_contents);
	EXPECT_EQ(list.named("sda").ambiguous, 1);
	EXPECT_STREQ(list.named("sda").source, "device");
	EXPECT_EQ(list.named("sda").usage, nullptr);
	EXPECT_STREQ(list.named("sda").table, "dos");
}

TEST_F(Contents, IsReadWithoutWritingWaitingOrHeirs)
{
	node(sda(), "8:0", content_of(StoredImage("ext4")));
	show();
	int status = 0;
	int descriptor = 0;
	when_probed = [&](int fd) {
		status = fcntl(fd, F_GETFL);
		descriptor = fcntl(fd, F_GETFD);
	};
	EXPECT_EQ(List(list_contents).result, 0);
	EXPECT_EQ(status & O_ACCMODE, O_RDONLY);
	EXPECT_NE(status & O_NONBLOCK, 0);
	EXPECT_NE(descriptor & FD_CLOEXEC, 0);
}

TEST_F(Contents, MayBeAskedForByManyAtOnce)
{
	for (const char *name : {"gpt", "dos", "ext4", "btrfs", "luks2", "both"}) {
		static int minor = 0;
		disk(VIRTUAL + ("ram" + std::to_string(minor)), "1:" + std::to_string(minor),
		     StoredImage(name));
		minor++;
	}
	show();
	const auto all = [] {
		const List list(list_contents);
		std::string text;
		for (const block_content *at = list.first(); at; at = at->next)
			text += shown_content(*at);
		return text;
	};
	const std::string expected = all();
	std::vector<std::thread> threads;
	std::vector<std::string> found(4);
	for (std::string &text : found) {
		threads.emplace_back([&text, &all] {
			for (int i = 0; i < 5; i++)
				text = all();
		});
	}
	for (std::thread &thread : threads)
		thread.join();
	for (const std::string &text : found)
		EXPECT_EQ(text, expected);
	EXPECT_NE(expected, "");
}

// ---- what is not opened ----

TEST_F(Contents, OfADriveWithoutAMediumIsNothing)
{
	node("devices/pci0000:00/0000:00:05.0/ata2/block/sr0", "11:0", "open fails EIO", 0);
	udev("11:0", "E:ID_FS_TYPE=iso9660\nE:ID_FS_USAGE=filesystem\n"); // of the disc that was in it
	show();
	const List list(list_contents);
	const block_content &drive = list.named("sr0");
	EXPECT_EQ(drive.error, ENOMEDIUM);
	EXPECT_EQ(drive.source, nullptr);
	EXPECT_EQ(drive.ambiguous, BLOCK_ABSENT);
	EXPECT_EQ(shown_content(drive), "");
}

TEST_F(Contents, OfWhatIsSuspendedIsNotRead)
{
	const std::string dm = std::string(VIRTUAL) + "dm-";
	node(dm + "0", "254:0", "open fails EIO");
	put("sys/" + dm + "0/dm/suspended", "1\n");
	udev("254:0", "E:ID_FS_TYPE=LVM2_member\nE:ID_FS_USAGE=raid\n");
	// What stands on it waits, too, through whatever lies between.
	node(std::string(VIRTUAL) + "md0", "9:0", "open fails EIO");
	link("sys/" + std::string(VIRTUAL) + "md0/slaves/dm-0", "../../dm-0");
	partition(std::string(VIRTUAL) + "md0", 1, "259:1", 64, 64);
	entry("md01", "259:1", "open fails EIO");
	node(dm + "1", "254:1", "open fails EIO");
	put("sys/" + dm + "1/dm/suspended", "0\n");
	link("sys/" + dm + "1/slaves/md01", "../../md0/md01");
	show();
	const List list(list_contents);
	for (const char *name : {"dm-0", "dm-1", "md0", "md01"})
		EXPECT_EQ(list.named(name).error, EBUSY) << name;
	EXPECT_STREQ(list.named("dm-0").source, "udev");
	EXPECT_STREQ(list.named("dm-0").type, "LVM2_member");
}

TEST_F(Contents, OfDevicesThatStandOnEachOtherIsRead)
{
	const std::string dm = std::string(VIRTUAL) + "dm-";
	for (const int i : {0, 1}) {
		disk(dm + std::to_string(i), "254:" + std::to_string(i), StoredImage("swap"));
		put("sys/" + dm + std::to_string(i) + "/dm/suspended", "0\n");
		for (const char *other : {"dm-0", "dm-1", "gone"})
			link("sys/" + dm + std::to_string(i) + "/slaves/" + other,
			     std::string("../../") + other);
	}
	show();
	const List list(list_contents);
	EXPECT_STREQ(list.named("dm-0").type, "swap");
	EXPECT_STREQ(list.named("dm-1").type, "swap");
}

// ---- what could not be read ----

class Refused : public Contents, public ::testing::WithParamInterface<std::pair<const char *, int>>
{
};

TEST_P(Refused, IsToldAsFarAsUdevKnowsIt)
{
	node(sda(), "8:0", std::string("open fails ") + GetParam().first);
	udev("8:0", "E:ID_FS_TYPE=ext4\nE:ID_FS_USAGE=filesystem\nE:ID_FS_VERSION=1.0\n"
	            "E:ID_FS_UUID=x\nE:ID_FS_UUID_ENC=0b-5\nE:ID_FS_LABEL=two_words\n"
	            "E:ID_FS_LABEL_ENC=\\x20two\\x20words\\x0a\n");
	show();
	const List list(list_contents);
	const block_content &found = list.named("sda");
	EXPECT_EQ(found.error, GetParam().second);
	EXPECT_STREQ(found.source, "udev");
	EXPECT_EQ(found.ambiguous, BLOCK_ABSENT);
	EXPECT_EQ(shown_content(found),
	          "usage filesystem\ntype ext4\nlabel  two words\\x0a\nuuid 0b-5\nversion 1.0\n");
}

INSTANTIATE_TEST_SUITE_P(Errors, Refused,
                         ::testing::Values(std::pair("EACCES", EACCES), std::pair("EPERM", EPERM),
                                           std::pair("EIO", EIO), std::pair("ENOMEDIUM", ENOMEDIUM),
                                           std::pair("ENXIO", ENXIO)),
                         [](const auto &row) { return std::string(row.param.first); });

TEST_F(Contents, OfADeviceWithoutANodeIsKnownByUdev)
{
	device(sda(), "8:0", 8192);
	udev("8:0", "E:ID_FS_TYPE=btrfs\nE:ID_FS_UUID_ENC=5\nE:ID_FS_UUID_SUB_ENC=6\n");
	show();
	const List list(list_contents);
	EXPECT_EQ(list.named("sda").error, ENOENT);
	EXPECT_EQ(shown_content(list.named("sda")), "type btrfs\nuuid 5\nuuid_sub 6\n");
}

TEST_F(Contents, OfWhatIsNoBlockDeviceIsNotRead)
{
	device(sda(), "8:0", 8192);
	put("dev/sda", "a file");
	show();
	const List list(list_contents);
	EXPECT_EQ(list.named("sda").error, ENOTBLK);
	EXPECT_EQ(list.named("sda").source, nullptr);
}

TEST_F(Contents, OfATableWithoutAnEndIsWhatTheKernelTookOfIt)
{
	StoredImage image(off_t{4} << 20);
	const auto table = [&image](off_t sector, const std::string &entries) {
		image.put(sector * 512 + 446, entries);
		image.put(sector * 512 + 510, "\x55\xaa");
	};
	const auto link = [](int start) {
		const char bytes[16] = {
			0, 0, 0, 0, 5, 0, 0, 0, static_cast<char>(start & 255), static_cast<char>(start >> 8),
			0, 0, 1};
		return std::string(bytes, sizeof bytes);
	};
	table(0, link(8));
	for (int i = 0; i < 1100; i++)
		table(8 + i, link(i + 1));
	disk(sda(), "8:0", image);
	partition(sda(), 1, "8:1", 8, 2);
	show();
	const List list(list_contents);
	EXPECT_EQ(list.named("sda").error, EFBIG);
	EXPECT_STREQ(list.named("sda").source, "kernel");
	EXPECT_EQ(shown_content(list.named("sda")), "partition 1 at 4096, 1024 bytes\n\tname sda1\n");
}

TEST_F(Contents, OfWhatFailsWhileItIsReadIsToldByUdevAlone)
{
	disk(sda(), "8:0", StoredImage("ext4"));
	udev("8:0", "E:ID_FS_TYPE=ext4\n");
	show();
	// From here on nothing can be read from the descriptor.
	when_probed = [](int fd) {
		const StoredImage other(off_t{4} << 20);
		const int unreadable = open(other.path().c_str(), O_WRONLY | O_CLOEXEC);
		dup2(unreadable, fd);
		close(unreadable);
	};
	const List list(list_contents);
	EXPECT_EQ(list.named("sda").error, EBADF);
	EXPECT_STREQ(list.named("sda").source, "udev");
	EXPECT_EQ(shown_content(list.named("sda")), "type ext4\n");
}

// ---- what is known of partitions ----

TEST_F(Contents, OfADiskIsKnownByItsPartitions)
{
	node(sda(), "8:0", "open fails EACCES");
	udev("8:0", "E:ID_PART_TABLE_TYPE=gpt\nE:ID_PART_TABLE_UUID=1-1\n");
	partition(sda(), 10, "8:10", 64, 64);
	udev("8:10", "E:ID_PART_ENTRY_SCHEME=gpt\nE:ID_PART_ENTRY_NUMBER=10\nE:ID_PART_ENTRY_OFFSET=2048\n"
	             "E:ID_PART_ENTRY_SIZE=4096\nE:ID_PART_ENTRY_TYPE=0fc6\nE:ID_PART_ENTRY_UUID=0b-0a\n"
	             "E:ID_PART_ENTRY_NAME=EFI\\x20system\nE:ID_PART_ENTRY_FLAGS=0x8000000000000001\n");
	partition(sda(), 2, "8:2", 128, 2);
	udev("8:2", "E:ID_PART_ENTRY_NUMBER=2\nE:ID_PART_ENTRY_TYPE=0xf\nE:ID_PART_ENTRY_SIZE=4096\n");
	partition(sda(), 1, "8:1", 32, 64); // unknown to udev
	show();
	const List list(list_contents);
	EXPECT_STREQ(list.named("sda").source, "udev");
	EXPECT_EQ(shown_content(list.named("sda")), "table gpt 1-1\n"
	                                            "partition 1 at 16384, 32768 bytes\n\tname sda1\n"
	                                            "partition 2 at 65536, 2097152 bytes\n\tname sda2\n"
	                                            "\ttype 0xf\n\tflags 0x0\n"
	                                            "partition 10 at 1048576, 2097152 bytes\n\tname sda10\n"
	                                            "\ttype 0fc6\n\tuuid 0b-0a\n\tlabel EFI system\n"
	                                            "\tflags 0x8000000000000001\n");
}

TEST_F(Contents, OfADiskThatUdevHasNotSeenIsKnownByThePartitionsThatItHas)
{
	node(sda(), "8:0", "open fails EACCES");
	partition(sda(), 1, "8:1", 64, 8);
	udev("8:1", "E:ID_PART_ENTRY_NUMBER=1\nE:ID_PART_ENTRY_TYPE=0x83\n");
	show();
	const List list(list_contents);
	EXPECT_STREQ(list.named("sda").source, "udev");
	EXPECT_STREQ(list.named("sda").partitions->type, "0x83");
}

TEST_F(Contents, HasTheIdentifierOfADosTableInHexadecimal)
{
	node(sda(), "8:0", "open fails EACCES");
	udev("8:0", "E:ID_PART_TABLE_TYPE=dos\nE:ID_PART_TABLE_UUID=0badcafe\n");
	show();
	const List list(list_contents);
	EXPECT_STREQ(list.named("sda").table_id, "0x0badcafe");
}

TEST_F(Contents, IsKnownToTheKernelAlone)
{
	node(sda(), "8:0", "open fails EACCES");
	partition(sda(), 2, "8:2", 4096, 8, "PARTNAME=EFI \\ system\nPARTUUID=0b-0a\n");
	partition(sda(), 1, "8:1", 2048, 8);
	show();
	const List list(list_contents);
	EXPECT_STREQ(list.named("sda").source, "kernel");
	EXPECT_EQ(
		shown_content(list.named("sda")),
		"partition 1 at 1048576, 4096 bytes\n\tname sda1\n"
		"partition 2 at 2097152, 4096 bytes\n\tname sda2\n\tuuid 0b-0a\n\tlabel EFI \\x5c system\n");
	EXPECT_EQ(list.named("sda").partitions->flags, BLOCK_ABSENT);
	EXPECT_EQ(list.named("sda1").source, nullptr);
}

TEST_F(Contents, IsKnownToNobody)
{
	node(sda(), "8:0", "open fails EACCES");
	udev("8:0", "E:ID_BUS=ata\n");
	show();
	const List list(list_contents);
	EXPECT_EQ(list.named("sda").error, EACCES);
	EXPECT_EQ(list.named("sda").source, nullptr);
	EXPECT_EQ(shown_content(list.named("sda")), "");
}

// ---- what udev lends a partition of its disk's values ----

constexpr char DISK_VALUES[] =
	"E:ID_PART_TABLE_TYPE=dos\nE:ID_PART_TABLE_UUID=1de0\nE:ID_FS_USAGE=filesystem\n"
	"E:ID_FS_TYPE=iso9660\nE:ID_FS_LABEL_ENC=LIVE\nE:ID_FS_UUID_ENC=2024\n"
	"E:ID_FS_VERSION=1\n";

class Lent : public Contents
{
protected:
	// What is told of the partition when udev has these lines, in which later ones do not count.
	std::string partition_of(const std::string &lines)
	{
		node(sda(), "8:0", "open fails EACCES");
		udev("8:0", DISK_VALUES);
		partition(sda(), 1, "8:1", 64, 8);
		entry("sda1", "8:1", "open fails EACCES");
		udev("8:1", lines);
		show();
		return shown_content(List(list_contents).named("sda1"));
	}
};

TEST_F(Lent, IsNotToldOfAnEmptyPartition)
{
	EXPECT_EQ(partition_of(std::string("E:ID_PART_ENTRY_OFFSET=64\n") + DISK_VALUES), "");
}

TEST_F(Lent, IsNotToldBesideThePartitionsOwn)
{
	EXPECT_EQ(partition_of(
			  "E:ID_PART_ENTRY_OFFSET=64\nE:ID_PART_TABLE_TYPE=dos\nE:ID_PART_TABLE_UUID=1de0\n"
			  "E:ID_FS_USAGE=filesystem\nE:ID_FS_TYPE=vfat\nE:ID_FS_LABEL_ENC=LIVE\n"
			  "E:ID_FS_UUID_ENC=ABCD-1234\nE:ID_FS_VERSION=FAT16\n"),
	          "usage filesystem\ntype vfat\nuuid ABCD-1234\nversion FAT16\n");
}

TEST_F(Lent, IsThePartitionsOwnWhereItBeginsWithTheDisk)
{
	EXPECT_EQ(partition_of(std::string("E:ID_PART_ENTRY_OFFSET=0\n") + DISK_VALUES),
	          "table dos 0x1de0\nusage filesystem\ntype iso9660\nlabel LIVE\nuuid 2024\nversion 1\n");
}

TEST_F(Lent, IsNotATableOfThePartitionsOwn)
{
	EXPECT_EQ(partition_of(
			  "E:ID_PART_ENTRY_OFFSET=64\nE:ID_PART_TABLE_TYPE=dos\nE:ID_PART_TABLE_UUID=beef\n"),
	          "table dos 0xbeef\n");
}

// ---- noise ----

TEST_F(Contents, SurvivesNoiseInTheDatabase)
{
	node(sda(), "8:0", "open fails EACCES");
	udev("8:0", "E:ID_PART_TABLE_TYPE=dos\nE:ID_PART_TABLE_UUID=" + std::string(5000, 'x') + "\n");
	partition(sda(), 1, "8:1", 64, 8);
	udev("8:1", "E:ID_PART_ENTRY_NUMBER=1\nE:ID_PART_ENTRY_OFFSET=99999999999999999999\n"
	            "E:ID_PART_ENTRY_SIZE=9223372036854775807\nE:ID_PART_ENTRY_FLAGS=many\n"
	            "E:ID_PART_ENTRY_NAME=\\x\\xg0\\x0\\xff\nE:ID_PART_ENTRY_UUID=\n");
	partition(sda(), 2, "8:2", 72, 8);
	udev("8:2", "E:ID_PART_ENTRY_NUMBER=99999999999\nE:ID_PART_ENTRY_TYPE=0x83\n");
	show();
	const List list(list_contents);
	EXPECT_EQ(shown_partitions(list.named("sda").partitions),
	          "partition 1 at 32768, 4096 bytes\n\tname sda1\n\tlabel \\x5cx\\x5cxg0\\x5cx0\\xff\n"
	          "partition 2 at 36864, 4096 bytes\n\tname sda2\n");
	EXPECT_EQ(shown(list.named("sda").table_id), "0x" + std::string(5000, 'x'));
}

// ---- what goes away ----

TEST_F(Contents, OfWhatGoesAwayMeanwhileIsLeftOut)
{
	disk(sda("sda"), "8:0", StoredImage("ext4"));
	disk(sda("sdb"), "8:16", StoredImage("swap"));
	show();
	int probed = 0;
	when_probed = [&](int) {
		if (++probed == 1)
			std::filesystem::remove_all(host() / ("sys/" + sda("sda")));
	};
	const List list(list_contents);
	EXPECT_EQ(list.result, 0);
	EXPECT_EQ(names(list), std::vector<std::string>{"sdb"});
	EXPECT_EQ(probed, 2);
}

TEST_F(Contents, OfAnotherDeviceWithTheSameNameIsLeftOut)
{
	device(sda(), "8:0", 8192);
	entry("sda", "8:16", content_of(StoredImage("ext4")));
	show();
	const List list(list_contents);
	EXPECT_EQ(list.result, 0);
	EXPECT_EQ(list.count, 0);
}

// ---- each outside call failing ----

// One that was leaked need not be the lowest.
long open_descriptors()
{
	const std::filesystem::directory_iterator all("/proc/self/fd");
	return std::distance(begin(all), end(all));
}

class Failing : public Contents, public ::testing::WithParamInterface<int>
{
protected:
	// Nothing is told that is not so. What a disk says can be less: libblkid takes a place that cannot be
	// sought for one beyond the end.
	static void check(const List &list, const List &truth)
	{
		if (list.result != 0) {
			EXPECT_EQ(list.first(), nullptr);
			EXPECT_EQ(list.count, 0);
			return;
		}
		for (const block_content *at = list.first(); at; at = at->next) {
			const std::string right = shown_content(truth.named(at->name));
			std::istringstream told(shown_content(*at));
			EXPECT_EQ(at->error == BLOCK_ABSENT, shown(at->source) == "device");
			for (std::string line; std::getline(told, line);)
				EXPECT_NE(right.find(line + "\n"), std::string::npos)
					<< at->name << ": " << line;
		}
	}
};

TEST_P(Failing, CallLeavesATrueListOrNone)
{
	disk(sda(), "8:0", StoredImage("dos"));
	partition(sda(), 1, "8:1", 2048, 4096);
	entry("sda1", "8:1", content_of(StoredImage("ext4")));
	udev("8:0", "E:ID_PART_TABLE_TYPE=dos\nE:ID_PART_TABLE_UUID=0badcafe\n");
	udev("8:1", "E:ID_FS_TYPE=ext4\nE:ID_PART_ENTRY_NUMBER=1\n");
	const std::string dm = std::string(VIRTUAL) + "dm-0";
	disk(dm, "254:0", StoredImage("luks2"));
	link("sys/" + dm + "/slaves/sda1", "../../../../" + sda() + "/sda1");
	put("sys/" + dm + "/dm/suspended", "0\n");
	show();
	const List truth(list_contents);
	const long descriptors = open_descriptors();
	const int records = memory_counter_block;
	for (long nth = 1;; nth++) {
		replay_fail_call(nth, GetParam());
		{
			const List list(list_contents);
			replay_fail_call(0, 0);
			check(list, truth);
		}
		ASSERT_EQ(open_descriptors(), descriptors) << nth;
		ASSERT_EQ(memory_counter_block, records) << nth;
		if (replay_calls() < nth)
			break;
	}
}

INSTANTIATE_TEST_SUITE_P(Once, Failing, ::testing::Values(0));
INSTANTIATE_TEST_SUITE_P(FromThereOn, Failing, ::testing::Values(1));

} // namespace
