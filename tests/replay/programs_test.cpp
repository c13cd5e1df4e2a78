// SPDX-License-Identifier: Apache-2.0
// Programs of today, in front of a host of today: they walk sysfs by open folders, and look into devices.

#include "preload.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>

using ::testing::HasSubstr;
using ::testing::Not;

class ReplayPrograms : public PreloadDir
{
protected:
	void SetUp() override
	{
		const std::string disk = "devices/pci0000:00/0000:00:05.0/ata1/block/sda";
		put("sys/" + disk + "/dev", "8:0\n");
		put("sys/" + disk + "/size", "16384\n");
		put("sys/" + disk + "/uevent", "MAJOR=8\nMINOR=0\nDEVNAME=sda\nDEVTYPE=disk\n");
		put("sys/" + disk + "/queue/rotational", "1\n");
		put("sys/" + disk + "/sda1/dev", "8:1\n");
		put("sys/" + disk + "/sda1/size", "8192\n");
		put("sys/" + disk + "/sda1/start", "2048\n");
		put("sys/" + disk + "/sda1/partition", "1\n");
		put("sys/" + disk + "/sda1/uevent", "MAJOR=8\nMINOR=1\nDEVNAME=sda1\nDEVTYPE=partition\n");
		link("sys/" + disk + "/subsystem", "../../../../../../class/block");
		link("sys/" + disk + "/sda1/subsystem", "../../../../../../../class/block");
		link("sys/class/block/sda", "../../" + disk);
		link("sys/class/block/sda1", "../../" + disk + "/sda1");
		link("sys/block/sda", "../" + disk);
		link("sys/dev/block/8:0", "../../" + disk);
		link("sys/dev/block/8:1", "../../" + disk + "/sda1");
		link("dev/disk/by-label/root", "../../sda1");
		put("run/udev/data/b8:1", "E:ID_FS_TYPE=ext4\n");
		put("proc/swaps", "Filename Type Size Used Priority\n");
		put("proc/self/mountinfo", "22 1 8:1 / / rw,relatime - ext4 /dev/sda1 rw\n");
		put("host.txt", "device /dev/sda\nnumber 8:0\nBLKGETSIZE 16384\n"
		                "device /dev/sda1\nnumber 8:1\nBLKGETSIZE 8192\n"
		                "mount / 1024 4000 3000 2000 type 0xef53\nuname release 6.1.0-18-amd64\n");
	}

	std::string said(const std::string &command) const
	{
		const ended got = run(sysroot(), command);
		EXPECT_EQ(got.status, 0) << got.said;
		return got.said;
	}

	void put_at(const std::string &name, size_t offset, const std::string &bytes)
	{
		std::fstream image(host() / name, std::ios::in | std::ios::out | std::ios::binary);
		image.seekp(static_cast<std::streamoff>(offset));
		image << bytes;
	}
};

TEST_F(ReplayPrograms, FilesAndLinks)
{
	EXPECT_EQ(said("cat /sys/class/block/sda1/../queue/rotational"), "1\n");
	EXPECT_EQ(said("readlink /sys/block/sda"), "../devices/pci0000:00/0000:00:05.0/ata1/block/sda\n");
	EXPECT_EQ(said("readlink -f /sys/class/block/sda1"),
	          "/sys/devices/pci0000:00/0000:00:05.0/ata1/block/sda/sda1\n");
	EXPECT_EQ(said("readlink -f /dev/disk/by-label/root"), "/dev/sda1\n");
	EXPECT_EQ(said("realpath /sys/class/block/sda/.."),
	          "/sys/devices/pci0000:00/0000:00:05.0/ata1/block\n");
	EXPECT_EQ(said("stat -L -c '%F %t:%T' /dev/disk/by-label/root"), "block special file 8:1\n");
	EXPECT_EQ(said("uname -r"), "6.1.0-18-amd64\n");
	EXPECT_EQ(said("cat /proc/self/mountinfo"), "22 1 8:1 / / rw,relatime - ext4 /dev/sda1 rw\n");
}

TEST_F(ReplayPrograms, WalksThroughTheTree)
{
	EXPECT_EQ(said("find /sys -name partition"),
	          "/sys/devices/pci0000:00/0000:00:05.0/ata1/block/sda/sda1/partition\n");
	EXPECT_EQ(said("find -L /sys/class/block/sda1 -maxdepth 1 -name 'd*'"),
	          "/sys/class/block/sda1/dev\n");
	const std::string listed = said("ls -lR /sys");
	EXPECT_THAT(listed, HasSubstr("sda1 -> ../../devices/pci0000:00/0000:00:05.0/ata1/block/sda/sda1\n"));
	EXPECT_THAT(listed, Not(HasSubstr("No such file")));
	EXPECT_EQ(said("ls /sys/class"), "block\n");
	EXPECT_EQ(said("grep -rl 8:1 /sys"),
	          "/sys/devices/pci0000:00/0000:00:05.0/ata1/block/sda/sda1/dev\n");
}

TEST_F(ReplayPrograms, DisksAndSpace)
{
	EXPECT_EQ(said("lsblk -rno NAME,MAJ:MIN,SIZE,TYPE,ROTA"), "sda 8:0 8M disk 1\nsda1 8:1 4M part 1\n");
	EXPECT_EQ(said("df -k --output=source,size,used,avail,target"),
	          "Filesystem     1K-blocks  Used Avail Mounted on\n"
	          "/dev/sda1           4000  1000  2000 /\n");
}

TEST_F(ReplayPrograms, AHostWithoutThemShowsNoDisk)
{
	std::filesystem::remove_all(host() / "sys");
	EXPECT_NE(run(sysroot(), "ls /sys").status, 0);
	EXPECT_THAT(run(sysroot(), "lsblk -rno NAME").said, Not(HasSubstr("sd")));
}

// Programs that ask for the number of processors, or how to take memory, as they start.
TEST_F(ReplayPrograms, StartsAreNotDisturbed)
{
	const std::string processors = run_plain("nproc").said;
	EXPECT_EQ(said("nproc"), processors);
	EXPECT_EQ(said("getconf _NPROCESSORS_ONLN"), processors);
	EXPECT_EQ(said("cat /sys/devices/system/cpu/online"),
	          run_plain("cat /sys/devices/system/cpu/online").said);
	EXPECT_EQ(said("sh -c 'ls /dev/null; echo x >/dev/null; cat </dev/null'"), "/dev/null\n");
}

// The header of a swap area: what a device answers comes from the image, not from its name.
TEST_F(ReplayPrograms, SignatureOnADeviceIsThatOfItsImage)
{
	put("swap.img", "");
	std::filesystem::resize_file(host() / "swap.img", 1 << 20);
	put_at("swap.img", 1024,
	       std::string("\1\0\0\0\xff\0\0\0\0\0\0\0", 12) + "0123456789abcdef" + "label");
	put_at("swap.img", 4086, "SWAPSPACE2");
	put("host.txt",
	    "device /dev/sda1\nnumber 8:1\nBLKGETSIZE64 1048576\nBLKSSZGET 512\nimage swap.img\n");
	const std::string image = (host() / "swap.img").string();
	const ended plain = run_plain("blkid -p " + image);
	ASSERT_THAT(plain.said, HasSubstr("TYPE=\"swap\""));
	ASSERT_THAT(plain.said, HasSubstr("LABEL=\"label\""));
	for (const std::string name : {"/dev/sda1", "/dev/disk/by-label/root"})
		EXPECT_EQ(said("blkid -p " + name), name + plain.said.substr(image.size()));
}

static uint32_t crc32_of(const std::string &bytes)
{
	uint32_t sum = ~0U;
	for (const char c : bytes) {
		sum ^= static_cast<unsigned char>(c);
		for (int bit = 0; bit < 8; ++bit)
			sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xedb88320U : 0);
	}
	return ~sum;
}

template <class Number> static std::string le(Number number)
{
	std::string bytes(sizeof number, '\0');
	memcpy(bytes.data(), &number, sizeof number);
	return bytes;
}

// A table of a 3 TiB disk whose sectors have 4096 bytes stands where only such a disk has it.
TEST_F(ReplayPrograms, LargeDiskOfLargeSectors)
{
	constexpr uint64_t sector = 4096;
	constexpr uint64_t sectors = (uint64_t{3} << 40) / sector;
	const std::string slots(size_t{128} * 128, '\0');
	const auto header = [&](uint32_t sum) {
		return "EFI PART" + le(uint32_t{0x10000}) + le(uint32_t{92}) + le(sum) + le(uint32_t{0}) +
		       le(uint64_t{1}) + le(sectors - 1) + le(uint64_t{6}) + le(sectors - 6) +
		       "0123456789abcdef" + le(uint64_t{2}) + le(uint32_t{128}) + le(uint32_t{128}) +
		       le(crc32_of(slots));
	};
	put("disk.img", "");
	std::filesystem::resize_file(host() / "disk.img", sector * sectors);
	put_at("disk.img", 446 + 4,
	       "\xee" + std::string(3, '\0') + le(uint32_t{1}) + le(uint32_t{0xffffffff}));
	put_at("disk.img", 510, "\x55\xaa");
	put_at("disk.img", sector, header(crc32_of(header(0))));
	const std::string disk = "device /dev/sda\nnumber 8:0\nBLKGETSIZE64 3298534883328\nimage disk.img\n";
	put("host.txt", disk + "BLKSSZGET 4096\n");
	EXPECT_EQ(said("blockdev --getsize64 --getss /dev/sda"), "3298534883328\n4096\n");
	EXPECT_THAT(said("blkid -p /dev/sda"), HasSubstr("PTTYPE=\"gpt\""));
	put("host.txt", disk + "BLKSSZGET 512\n");
	EXPECT_THAT(run(sysroot(), "blkid -p /dev/sda").said, Not(HasSubstr("gpt")));
}

// The document's script, on a host that is shown: what it captures shows the same.
TEST_F(ReplayPrograms, TheDocumentsScriptCapturesAHost)
{
	const std::string document = file_text(REPLAY_DOCUMENT);
	const size_t begin = document.find("```sh\n");
	ASSERT_NE(begin, std::string::npos);
	std::ofstream(root / "capture.sh")
		<< document.substr(begin + 6, document.find("```\n", begin) - begin - 6);
	const std::filesystem::path again = root / "again";
	EXPECT_EQ(said("sh " + (root / "capture.sh").string() + " " + again.string()), "");
	EXPECT_EQ(run_plain("diff -r --no-dereference " + (host() / "sys").string() + " " +
	                    (again / "sys").string())
	                  .said,
	          "");
	EXPECT_EQ(file_text(again / "proc/self/mountinfo"), file_text(host() / "proc/self/mountinfo"));
	EXPECT_EQ(file_text(again / "run/udev/data/b8:1"), "E:ID_FS_TYPE=ext4\n");
	EXPECT_EQ(std::filesystem::read_symlink(again / "dev/disk/by-label/root"), "../../sda1");
	for (const char *program : {"lsblk -J -b -O", "df", "uname -a"})
		EXPECT_EQ(run("REPLAY_SYSROOT=" + again.string(), program).said, said(program));
}
