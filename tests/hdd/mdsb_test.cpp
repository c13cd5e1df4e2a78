// SPDX-License-Identifier: Apache-2.0
// The superblock of a software-RAID member: where it lies, what it says, and how it goes.
#include "host.h"

#include "hdd/sal/src/linux/mdsb.h"
#include "replay/replay.h"

#include <stddef.h>
#include <sys/stat.h>

namespace
{

constexpr size_t BLOCK_SIZE = 4096;

// The magic, as it lies on a disk.
const std::string MAGIC = "\xfc\x4e\x2b\xa9";

// A block that is the same nowhere.
std::string pattern()
{
	std::string block(BLOCK_SIZE, '\0');
	unsigned state = 1;
	for (char &byte : block) {
		state = state * 1103515245U + 12345U;
		byte = static_cast<char>(state >> 16 & 0xffU);
	}
	return block;
}

std::string with_magic(std::string block)
{
	return block.replace(0, MAGIC.size(), MAGIC);
}

class Mdsb : public HostTest
{
protected:
	// A device of this size, its content at the sector.
	void device(unsigned long size, unsigned long sector, const std::string &content)
	{
		host.table("device /dev/disk\n\tBLKGETSIZE " + number(static_cast<long>(size)) + "\n");
		put(sector, content);
		host.show();
	}
	void put(unsigned long sector, const std::string &content)
	{
		for (size_t at = 0; at < content.size(); at += 512) {
			host.table(printed("\tsector %lu ", sector++));
			for (const char byte : content.substr(at, 512))
				host.table(printed("%02x", static_cast<unsigned char>(byte)));
			host.table("\n");
		}
	}
	int read(const char *path = "/dev/disk")
	{
		sb = soiled<mdp_superblock_s>();
		return read_mdsb(path, sb.get());
	}
	std::string bytes() const { return {reinterpret_cast<const char *>(sb.get()), sizeof *sb}; }
	std::unique_ptr<mdp_superblock_s> sb;
};

TEST_F(Mdsb, IsABlockOf4096Bytes)
{
	EXPECT_EQ(sizeof(mdp_superblock_s), BLOCK_SIZE);
	EXPECT_EQ(offsetof(mdp_superblock_s, disks), 512U);
	EXPECT_EQ(offsetof(mdp_superblock_s, this_disk), 3968U);
	EXPECT_EQ(sizeof(mdp_device_descriptor_s), 128U);
}

TEST_F(Mdsb, Clears)
{
	sb = soiled<mdp_superblock_s>();
	b0_mdsb(sb.get());
	EXPECT_TRUE(is_zero(*sb));
}

struct place_row_t {
	unsigned long size;
	unsigned long sector;
};

// 128 sectors before the size rounded down to a multiple of 128.
const place_row_t PLACES[] = {
	{128, 0},   {129, 0},       {255, 0},       {256, 128},     {383, 128},
	{384, 256}, {24576, 24448}, {24577, 24448}, {65535, 65280}, {(1UL << 33) + 200, 1UL << 33},
};

class MdsbPlace : public Mdsb, public ::testing::WithParamInterface<size_t>
{
};

TEST_P(MdsbPlace, IsRead)
{
	const place_row_t &row = PLACES[GetParam()];
	const std::string block = with_magic(pattern());
	device(row.size, row.sector, block);
	EXPECT_EQ(read(), 0) << row.size;
	EXPECT_TRUE(bytes() == block) << row.size;
	EXPECT_TRUE(is_mdsb(sb.get()));
	EXPECT_TRUE(host.log().empty());
}

TEST_P(MdsbPlace, IsCleared)
{
	const place_row_t &row = PLACES[GetParam()];
	device(row.size, row.sector, with_magic(pattern()));
	EXPECT_EQ(clear_mdsb("/dev/disk"), 0) << row.size;
	EXPECT_THAT(host.log(),
	            ::testing::ElementsAre(printed("write /dev/disk @%lu 4096 bytes", row.sector * 512)));
}

INSTANTIATE_TEST_SUITE_P(Sizes, MdsbPlace, ::testing::Range<size_t>(0, std::size(PLACES)));

// What such a size leaves no room for.
TEST_F(Mdsb, SmallDevicesHaveNone)
{
	host.table("device /dev/empty\n\tBLKGETSIZE 0\n"
	           "device /dev/one\n\tBLKGETSIZE 1\n"
	           "device /dev/127\n\tBLKGETSIZE 127\n");
	host.show();
	for (const char *path : {"/dev/empty", "/dev/one", "/dev/127"}) {
		EXPECT_EQ(read(path), -1) << path;
		EXPECT_TRUE(is_zero(*sb)) << path;
		EXPECT_EQ(clear_mdsb(path), -1) << path;
	}
	EXPECT_TRUE(host.log().empty());
}

TEST_F(Mdsb, BlockOfSomethingElse)
{
	device(1000, 768, pattern());
	EXPECT_EQ(read(), 0);
	EXPECT_TRUE(bytes() == pattern());
	EXPECT_FALSE(is_mdsb(sb.get()));
}

TEST_F(Mdsb, BlankDevice)
{
	device(1000, 768, "");
	EXPECT_EQ(read(), 0);
	EXPECT_TRUE(is_zero(*sb));
	EXPECT_FALSE(is_mdsb(sb.get()));
	EXPECT_EQ(clear_mdsb("/dev/disk"), 0);
	EXPECT_THAT(host.log(), ::testing::ElementsAre("write /dev/disk @393216 4096 bytes"));
}

TEST_F(Mdsb, MagicIsOneNumber)
{
	const auto block = std::make_unique<mdp_superblock_s>();
	EXPECT_FALSE(is_mdsb(block.get()));
	block->md_magic = 0xa92b4efcU;
	EXPECT_TRUE(is_mdsb(block.get()));
	for (const unsigned other : {0xa92b4efdU, 0x292b4efcU, 0xfc4e2ba9U, 0xffffffffU}) {
		block->md_magic = other;
		EXPECT_FALSE(is_mdsb(block.get())) << other;
	}
}

TEST_F(Mdsb, DevicesThatAnswerNothing)
{
	host.directory("/dev/directory").file("/dev/file", std::string(1UL << 20, 'x'));
	host.table("device /dev/locked\n\tBLKGETSIZE 1000\n\topen fails EACCES\n"
	           "device /dev/sizeless\n\tBLKGETSIZE fails EIO\n\timage zeros\n"
	           "device /dev/short\n\tBLKGETSIZE 1000\n\tends 775\n");
	host.file("/zeros", std::string(1000 * 512, '\0'));
	host.show();
	for (const char *path :
	     {"/dev/none", "/dev/directory", "/dev/file", "/dev/locked", "/dev/sizeless", "/dev/short"}) {
		EXPECT_EQ(read(path), -1) << path;
		EXPECT_TRUE(is_zero(*sb)) << path;
	}
	for (const char *path : {"/dev/none", "/dev/directory", "/dev/file", "/dev/locked", "/dev/sizeless"})
		EXPECT_EQ(clear_mdsb(path), -1) << path;
	EXPECT_TRUE(host.log().empty());
}

// A pipe that nobody opens at its other end.
TEST_F(Mdsb, PipeIsNotWaitedFor)
{
	const std::string pipe = host.path("/pipe");
	ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
	EXPECT_EQ(read(pipe.c_str()), -1);
	EXPECT_TRUE(is_zero(*sb));
	EXPECT_EQ(clear_mdsb(pipe.c_str()), -1);
}

TEST_F(Mdsb, EveryFailureOfReadingIsTold)
{
	const std::string block = with_magic(pattern());
	device(1000, 768, block);
	for (const int from_there_on : {0, 1}) {
		for (long nth = 1;; nth++) {
			sb = soiled<mdp_superblock_s>();
			const int before = open_descriptors();
			replay_fail_call(nth, from_there_on);
			const int result = read_mdsb("/dev/disk", sb.get());
			replay_fail_call(0, 0);
			const long calls = replay_calls();
			EXPECT_EQ(open_descriptors(), before) << nth;
			if (result == 0) {
				EXPECT_TRUE(bytes() == block) << nth;
			} else {
				EXPECT_EQ(result, -1) << nth;
				EXPECT_TRUE(is_zero(*sb)) << nth;
			}
			if (calls < nth)
				break;
		}
	}
}

TEST_F(Mdsb, EveryFailureOfClearingIsTold)
{
	device(1000, 768, with_magic(pattern()));
	for (const int from_there_on : {0, 1}) {
		for (long nth = 1;; nth++) {
			host.show();
			const int before = open_descriptors();
			replay_fail_call(nth, from_there_on);
			const int result = clear_mdsb("/dev/disk");
			replay_fail_call(0, 0);
			const long calls = replay_calls();
			EXPECT_EQ(open_descriptors(), before) << nth;
			const std::vector<std::string> log = host.log();
			if (result == 0) {
				EXPECT_EQ(log.size(), 1U) << nth;
			} else {
				EXPECT_EQ(result, -1) << nth;
			}
			for (const std::string &line : log)
				EXPECT_EQ(line, "write /dev/disk @393216 4096 bytes") << nth;
			if (calls < nth)
				break;
		}
	}
}

TEST_F(Mdsb, IdentityIsFourWordsInTheMachinesOrder)
{
	const auto block = std::make_unique<mdp_superblock_s>();
	block->set_uuid0 = 0x03020100U;
	block->set_uuid1 = 0x07060504U;
	block->set_uuid2 = 0x0b0a0908U;
	block->set_uuid3 = 0xff0e0d0cU;
	unsigned char uuid[17];
	memset(uuid, 0xa5, sizeof uuid);
	EXPECT_EQ(get_mdsb_xxid(block.get(), uuid), 0);
	EXPECT_THAT(uuid,
	            ::testing::ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 255, 0xa5));
}

TEST_F(Mdsb, DumpOfADescriptor)
{
	mdp_device_descriptor_s disk = {};
	disk.number = 2;
	disk.major = 8;
	disk.minor = 33;
	disk.raid_disk = 1;
	disk.state = 6;
	EXPECT_EQ(stderr_of([&] { display_mdsb_subdev(&disk); }),
	          "number=2 raid_disk=1 08:21 (8,33) state=6\n");
	disk.number = 0xffffffffU;
	disk.major = 259;
	disk.minor = 0xabcdeU;
	disk.raid_disk = 0x80000000U;
	disk.state = 0x7fffffffU;
	EXPECT_EQ(stderr_of([&] { display_mdsb_subdev(&disk); }),
	          "number=-1 raid_disk=-2147483648 103:ABCDE (259,703710) state=2147483647\n");
	disk = {};
	EXPECT_EQ(stderr_of([&] { display_mdsb_subdev(&disk); }),
	          "number=0 raid_disk=0 00:00 (0,0) state=0\n");
}

// A superblock with a value of its own in every field that is shown, at the field's place in the format.
std::string distinct_block()
{
	std::string block(BLOCK_SIZE, '\0');
	const auto set = [&](size_t word, unsigned value) { memcpy(&block[4 * word], &value, 4); };
	const unsigned head[] = {0xa92b4efcU, 101, 102, 103, 104, 0x0a0b0c0dU, 106,         107,
	                         108,         109, 110, 111, 112, 0x11223344U, 0x55667788U, 0x99aabbccU};
	for (size_t i = 0; i < std::size(head); i++)
		set(i, head[i]);
	for (unsigned i = 0; i < 6; i++)
		set(32 + i, 200 + i);
	set(38, 0xbeef01U);
	set(39, 301);
	set(40, 302);
	set(65, 65536);
	for (unsigned disk = 0; disk < 27; disk++)
		for (unsigned field = 0; field < 5; field++)
			set(128 + 32 * disk + field, 100 * field + disk);
	for (unsigned field = 0; field < 5; field++)
		set(992 + field, 100 * field + 99);
	return block;
}

std::string distinct_dump(const char *magic, int valid)
{
	std::string text =
		printed("md111: md_magic=%s csum=00BEEF01 version=101.102.103 valid=%d\n", magic, valid) +
		"  level=107 size=108 chunk_size=65536 events=(hi-302,lo-301)\n"
		"  disks: nr=109 raid=110 active=202 working=203 failed=204 spare=205\n"
		"  uuid: 0d0c0b0a-4433-2211-8877-6655ccbbaa99\n";
	for (int disk = 0; disk < 27; disk++)
		text += printed("disk%2d: number=%d raid_disk=%d %02X:%02X (%d,%d) state=%d\n", disk, disk,
		                300 + disk, static_cast<unsigned>(100 + disk),
		                static_cast<unsigned>(200 + disk), 100 + disk, 200 + disk, 400 + disk);
	return text + "this: number=99 raid_disk=399 C7:12B (199,299) state=499\n";
}

TEST_F(Mdsb, Dump)
{
	device(1000, 768, distinct_block());
	ASSERT_EQ(read(), 0);
	EXPECT_EQ(stderr_of([&] { display_mdsb(sb.get()); }), distinct_dump("A92B4EFC", 1));
	sb->md_magic = 0xbcU;
	EXPECT_EQ(stderr_of([&] { display_mdsb(sb.get()); }), distinct_dump("000000BC", 0));
}

TEST_F(Mdsb, DumpShowsSignedNumbers)
{
	const auto block = std::make_unique<mdp_superblock_s>();
	memset(static_cast<void *>(block.get()), 0xff, sizeof *block);
	const std::string descriptor = "number=-1 raid_disk=-1 FFFFFFFF:FFFFFFFF (-1,-1) state=-1\n";
	std::string text = "md-1: md_magic=FFFFFFFF csum=FFFFFFFF version=-1.-1.-1 valid=0\n"
			   "  level=-1 size=-1 chunk_size=-1 events=(hi--1,lo--1)\n"
			   "  disks: nr=-1 raid=-1 active=-1 working=-1 failed=-1 spare=-1\n"
			   "  uuid: ffffffff-ffff-ffff-ffff-ffffffffffff\n";
	for (int disk = 0; disk < 27; disk++)
		text += printed("disk%2d: ", disk) + descriptor;
	EXPECT_EQ(stderr_of([&] { display_mdsb(block.get()); }), text + "this: " + descriptor);
}

} // namespace
