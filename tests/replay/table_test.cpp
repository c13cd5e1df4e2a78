// SPDX-License-Identifier: Apache-2.0
// A host table with a fault in it is refused, and the fault is told with its
// line.

#include "host_dir.h"

#include "replay/arena.h"
#include "replay/table.h"

#include <gmock/gmock.h>

using ::testing::HasSubstr;

struct fault_case {
	const char *name;
	const char *table;
	int line;
	const char *message;
};

class ReplayTableFault : public HostDir, public ::testing::WithParamInterface<fault_case>
{
};

TEST_P(ReplayTableFault, IsToldWithItsLine)
{
	int result = 0;
	const std::string said = stderr_of([&] { result = show(GetParam().table); });
	EXPECT_EQ(result, -1);
	const std::string where =
		(host() / "host.txt").string() + ":" + std::to_string(GetParam().line) + ": ";
	EXPECT_EQ(said, where + GetParam().message + "\n");
}

static const char not_a_number[] = "not a number, or one too large";
static const char not_hex[] = "no pairs of hexadecimal digits, or more than 512 bytes";
static const char twice[] = "the device has this line already";
static const char homeless[] = "the line belongs to a device, and none is named before it";
static const char bad_entry[] = "entry takes \"-\", or two hexadecimal bytes and two numbers";
static const char bad_signature[] = "the signature is 55aa, aa55, none or 4 hexadecimal digits";

static const char bad_uname[] = "no text for a field of uname, or one of more than 64 bytes";
static const char bad_device_number[] = "number takes MAJOR:MINOR";
static const char not_plain[] = "covers takes an absolute path without \"//\", \".\" and \"..\"";
static const char covered_already[] = "this path, or one above or below it, is covered already";

static const fault_case faults[] = {
	{"unknown_word", "\n# c\nfoo 1\n", 3, "no such directive"},
	{"word_in_device", "device /dev/hda\nBLKSIZE 1\n", 2, "no such directive"},
	{"no_final_newline", "device /dev/hda\nfoo", 2, "no such directive"},
	{"device_without_path", "device\n", 1, "device takes one path"},
	{"device_two_paths", "device /dev/hda /dev/hdb\n", 1, "device takes one path"},
	{"device_elsewhere", "device /srv/hda\n", 1, "no path below /dev, or one too long"},
	{"device_not_plain", "device /dev//hda\n", 1, "this path is never shown from a host"},
	{"device_passed_through", "device /dev/null\n", 1, "this path is never shown from a host"},
	{"device_not_covered", "device /dev/hda\ncovers /dev/hdb\n", 1, "no line covers this device"},
	{"covers_without_path", "covers\n", 1, "covers takes one path"},
	{"covers_two_paths", "covers /proc /dev\n", 1, "covers takes one path"},
	{"covers_broken_escape", "covers /a\\04\n", 1, "no path to cover"},
	{"covers_relative", "covers proc\n", 1, not_plain},
	{"covers_doubled_slash", "covers /proc//ide\n", 1, not_plain},
	{"covers_two_slashes", "covers /proc//\n", 1, not_plain},
	{"covers_parent", "covers /proc/../dev\n", 1, not_plain},
	{"covers_everything", "covers /\n", 1,
         "a host that covers everything leaves no program to look at it"},
	{"covers_null", "covers /dev/null\n", 1, "this path is never shown from a host"},
	{"covers_own_process", "covers /proc/self/\n", 1, "this path is never shown from a host"},
	{"covers_twice", "covers /proc\ncovers /proc/\n", 2, covered_already},
	{"covers_below", "covers /proc\ncovers /proc/ide\n", 2, covered_already},
	{"covers_above", "covers /dev/hda\ncovers /dev\n", 2, covered_already},
	{"answer_after_covers", "device /dev/hda\ncovers /dev\nopens 1\n", 3, homeless},
	{"device_twice", "device /dev/hda\ndevice /dev/hda\n", 2, "the device is in the table already"},
	{"answer_outside", "BLKGETSIZE 1\n", 1, homeless},
	{"sector_outside", "sector 1 00\n", 1, homeless},
	{"answer_after_mount", "device /dev/hda\nmount / 1 2 3\nopens 1\n", 3, homeless},
	{"size_missing", "device /dev/hda\nBLKGETSIZE\n", 2, "a number is missing"},
	{"size_stray", "device /dev/hda\nBLKGETSIZE 12x\n", 2, not_a_number},
	{"size_negative", "device /dev/hda\nBLKGETSIZE -1\n", 2, not_a_number},
	{"size_too_many", "device /dev/hda\nBLKGETSIZE 1 2\n", 2, "too many numbers"},
	{"size_twice", "device /dev/hda\nBLKGETSIZE 1\nBLKGETSIZE 1\n", 3, twice},
	{"size_again_as_failure", "device /dev/hda\nBLKGETSIZE 1\nBLKGETSIZE fails EIO\n", 3, twice},
	{"heads_too_large", "device /dev/hda\nHDIO_GETGEO 256 63 1\n", 2, not_a_number},
	{"sectors_too_large", "device /dev/hda\nHDIO_GETGEO 255 256 1\n", 2, not_a_number},
	{"cylinders_too_large", "device /dev/hda\nHDIO_GETGEO 255 63 65536\n", 2, not_a_number},
	{"geometry_short", "device /dev/hda\nHDIO_GETGEO 255 63\n", 2, "a number is missing"},
	{"address_too_large", "device /dev/sda\nSCSI_IOCTL_GET_IDLUN 0x100000000\n", 2, not_a_number},
	{"reply_missing", "device /dev/sda\nSCSI_IOCTL_SEND_COMMAND\n", 2, "the reply is missing"},
	{"reply_odd", "device /dev/sda\nSCSI_IOCTL_SEND_COMMAND 012\n", 2,
         "no pairs of hexadecimal digits, or more than 4096 bytes"},
	{"result_missing", "device /dev/sda\nSCSI_IOCTL_SEND_COMMAND =\n", 2, "no result after \"=\""},
	{"result_stray", "device /dev/sda\nSCSI_IOCTL_SEND_COMMAND = x\n", 2, "no result after \"=\""},
	{"error_unknown", "device /dev/hda\nBLKGETSIZE fails EFOO\n", 2, "no such error name"},
	{"error_missing", "device /dev/hda\nBLKGETSIZE fails\n", 2, "no such error name"},
	{"error_and_more", "device /dev/hda\nBLKGETSIZE fails EIO 5\n", 2, "words after the error name"},
	{"open_number", "device /dev/hda\nopen 2\n", 2, "open can only be said to fail"},
	{"opens_missing", "device /dev/hda\nopens\n", 2, "a number is missing"},
	{"opens_twice", "device /dev/hda\nopens 1\nopens 1\n", 3, twice},
	{"ends_twice", "device /dev/hda\nends 1\nends 1\n", 3, twice},
	{"table_without_number", "device /dev/hda\ntable\n", 2, "no sector number"},
	{"table_too_far", "device /dev/hda\ntable 4503599627370496\n", 2, "no sector number"},
	{"signature_short", "device /dev/hda\ntable 0 55a\n", 2, bad_signature},
	{"signature_stray", "device /dev/hda\ntable 0 55ag\n", 2, bad_signature},
	{"signature_and_more", "device /dev/hda\ntable 0 55aa 1\n", 2, "words after the signature"},
	{"sector_twice", "device /dev/hda\ntable 0\nsector 0 00\n", 3, "the sector is in the table already"},
	{"entry_outside", "device /dev/hda\nentry -\n", 2, "an entry stands right below its table"},
	{"entry_after_other_line", "device /dev/hda\ntable 0\nopens 1\nentry -\n", 4,
         "an entry stands right below its table"},
	{"entry_after_answer", "device /dev/hda\ntable 0\nBLKGETSIZE 9\nentry -\n", 4,
         "an entry stands right below its table"},
	{"fifth_entry", "device /dev/hda\ntable 0\nentry -\nentry -\nentry -\nentry -\nentry -\n", 7,
         "a table has four entries"},
	{"entry_without_type", "device /dev/hda\ntable 0\nentry 80\n", 3, bad_entry},
	{"entry_type_stray", "device /dev/hda\ntable 0\nentry 80 8z 1 2\n", 3, bad_entry},
	{"entry_dash_and_more", "device /dev/hda\ntable 0\nentry - 83 1 2\n", 3, bad_entry},
	{"entry_short", "device /dev/hda\ntable 0\nentry 80 83 1\n", 3, "a number is missing"},
	{"entry_start_too_large", "device /dev/hda\ntable 0\nentry 80 83 4294967296 1\n", 3, not_a_number},
	{"entry_too_many", "device /dev/hda\ntable 0\nentry 80 83 1 2 3\n", 3, "too many numbers"},
	{"sector_empty", "device /dev/hda\nsector 1\n", 2, "the bytes are missing"},
	{"sector_stray", "device /dev/hda\nsector 1 0x\n", 2, not_hex},
	{"continuation_outside", "device /dev/hda\n+ 00\n", 2,
         "a \"+\" line goes on with a sector, and none stands before it"},
	{"continuation_of_table", "device /dev/hda\ntable 0\n+ 00\n", 3,
         "a \"+\" line goes on with a sector, and none stands before it"},
	{"sector_beyond_size", "device /dev/hda\ntable 10\nBLKGETSIZE 10\n", 2,
         "the sector lies beyond the device's end"},
	{"sector_beyond_end", "device /dev/hda\nBLKGETSIZE 10\nends 5\nsector 5 00\nmount / 1 2 3\n", 4,
         "the sector lies beyond the device's end"},
	{"geometry_missing", "device /dev/hda\nHDIO_GETGEO\n", 2, "a number is missing"},
	{"image_missing", "device /dev/hda\nimage none.img\n", 2, "the image cannot be read"},
	{"image_absolute", "device /dev/hda\nimage /etc/passwd\n", 2,
         "the image must lie in the host's directory"},
	{"image_above", "device /dev/hda\nimage ../x\n", 2, "the image must lie in the host's directory"},
	{"image_without_name", "device /dev/hda\nimage\n", 2, "image takes one file name"},
	{"mount_relative", "mount boot 1 2 3\n", 1, "mount takes an absolute path"},
	{"mount_short", "mount / 1 2\n", 1, "a number is missing"},
	{"mount_too_many", "mount / 1 2 3 4 5\n", 1, "too many numbers"},
	{"mount_twice", "mount / 1 2 3\nmount / 1 2 3\n", 2, "the mount is in the table already"},
	{"mount_error_unknown", "mount / fails EFOO\n", 1, "no such error name"},
	{"mount_stray", "mount / 1 2 3x\n", 1, not_a_number},
	{"mount_too_large", "mount / 1 2 9223372036854775808\n", 1, not_a_number},
	{"mount_word_unknown", "mount / 1 2 3 blocks 4\n", 1, "no such word of a mount"},
	{"mount_word_too_early", "mount / 1 2 type 4\n", 1, "a number is missing"},
	{"mount_word_alone", "mount / 1 2 3 type\n", 1, "a number is missing"},
	{"mount_word_stray", "mount / 1 2 3 type ext4\n", 1, not_a_number},
	{"mount_word_twice", "mount / 1 2 3 type 4 type 4\n", 1, "the mount has this word already"},
	{"mount_number_after_word", "mount / 1 2 3 type 4 5\n", 1, "too many numbers"},
	{"mount_word_after_failure", "mount / fails EIO type 1\n", 1, "words after the error name"},
	{"uname_without_text", "uname release\n", 1, "uname takes a field and its text"},
	{"uname_two_texts", "uname release 6.1 6.2\n", 1, "uname takes a field and its text"},
	{"uname_field_unknown", "uname domainname x\n", 1,
         "uname has sysname, nodename, release, version and machine"},
	{"uname_twice", "uname release x\nuname release x\n", 2, "the table has this line already"},
	{"uname_broken_escape", "uname release \\04\n", 1, bad_uname},
	{"uname_too_long",
         "uname release 12345678901234567890123456789012345678901234567890123456789012345\n", 1, bad_uname},
	{"answer_after_uname", "device /dev/hda\nuname release x\nopens 1\n", 3, homeless},
	{"number_outside", "number 8:0\n", 1, homeless},
	{"number_missing", "device /dev/sda\nnumber\n", 2, bad_device_number},
	{"number_without_minor", "device /dev/sda\nnumber 8\n", 2, bad_device_number},
	{"number_stray", "device /dev/sda\nnumber 8:0x\n", 2, bad_device_number},
	{"number_in_two_words", "device /dev/sda\nnumber 8: 0\n", 2, bad_device_number},
	{"number_major_too_large", "device /dev/sda\nnumber 4096:0\n", 2, bad_device_number},
	{"number_minor_too_large", "device /dev/sda\nnumber 8:1048576\n", 2, bad_device_number},
	{"number_twice", "device /dev/sda\nnumber 8:0\nnumber 8:0\n", 3, twice},
	{"bytes_missing", "device /dev/sda\nBLKGETSIZE64\n", 2, "a number is missing"},
	{"bytes_twice", "device /dev/sda\nBLKGETSIZE64 1\nBLKGETSIZE64 fails EIO\n", 3, twice},
	{"read_only_flag", "device /dev/sda\nBLKROGET 2\n", 2, not_a_number},
	{"sector_size_too_large", "device /dev/sda\nBLKSSZGET 0x80000000\n", 2, not_a_number},
	{"capability_outside", "CDROM_GET_CAPABILITY 1\n", 1, homeless},
	{"sector_beyond_bytes", "device /dev/hda\nBLKGETSIZE64 1024\nsector 2 00\n", 3,
         "the sector lies beyond the device's end"},
};

INSTANTIATE_TEST_SUITE_P(Each, ReplayTableFault, ::testing::ValuesIn(faults),
                         [](const auto &each) { return std::string(each.param.name); });

class ReplayTable : public HostDir
{
};

TEST_F(ReplayTable, NulByteIsAFault)
{
	int result = 0;
	const std::string said = stderr_of([&] { result = show(std::string("device /dev/hda\n\0", 17)); });
	EXPECT_EQ(result, -1);
	EXPECT_EQ(said, (host() / "host.txt").string() + ": the file holds a NUL byte\n");
}

TEST_F(ReplayTable, SectorOf513BytesIsAFault)
{
	int result = 0;
	const std::string said = stderr_of(
		[&] { result = show("device /dev/hda\nsector 0 " + std::string(1024, '0') + "\n+ 00\n"); });
	EXPECT_EQ(result, -1);
	EXPECT_THAT(said, HasSubstr("host.txt:3: no pairs"));
}

TEST_F(ReplayTable, DevicePathHasALimit)
{
	const std::string longest = "/dev/" + std::string(195, 'x');
	EXPECT_EQ(show("device " + longest + "\n"), 0);
	int result = 0;
	stderr_of([&] { result = show("device " + longest + "x\n"); });
	EXPECT_EQ(result, -1);
}

TEST_F(ReplayTable, DirectoryWithoutTableIsNoHost)
{
	int result = 0;
	std::filesystem::create_directories(host());
	const std::string said = stderr_of([&] { result = replay_use(host().c_str()); });
	EXPECT_EQ(result, -1);
	EXPECT_EQ(said, (host() / "host.txt").string() +
	                        ": a captured host has this file, and it cannot be read\n");
	stderr_of([&] { result = replay_use((root / "nowhere").c_str()); });
	EXPECT_EQ(result, -1);
}

TEST_F(ReplayTable, EmptyTableIsAHost)
{
	EXPECT_EQ(show(""), 0);
	EXPECT_EQ(show("# nothing but a remark"), 0);
}

// Everything a table can say, taken apart by the loader itself.
TEST_F(ReplayTable, RecordsHoldWhatTheLinesSay)
{
	put("disk.img", "x");
	put("host.txt", "  device /dev/hda  # first\n"
	                "\tBLKGETSIZE 0x80\n"
	                "HDIO_GETGEO 255 63 520 7\n"
	                "SCSI_IOCTL_GET_IDLUN 0x01020304 5\n"
	                "SCSI_IOCTL_SEND_COMMAND = 2 f000 05\n"
	                "opens 2\nends 100\nimage disk.img\n"
	                "table 9 aa55\nentry 80 83 63 4294967295\nentry -\n"
	                "sector 5 0102\n + 03\n"
	                "device /dev/hdb\nopen fails ENOMEDIUM\nnumber 0xfff:1048575\n"
	                "mount /a\\040b 1024 10 9\nmount /c 512 8 7 6\nmount /d fails ESTALE\n");
	replay::arena_t memory;
	ASSERT_TRUE(memory.open());
	replay::host_table_t *table = replay::load_table(host().c_str(), &memory);
	ASSERT_NE(table, nullptr);
	const replay::device_t *hda = replay::find_device(table, "/dev/hda");
	ASSERT_NE(hda, nullptr);
	EXPECT_EQ(hda->answers[replay::BLKGETSIZE_ANSWER].value[0], 128u);
	EXPECT_EQ(hda->answers[replay::HDIO_GETGEO_ANSWER].value[3], 7u);
	EXPECT_EQ(hda->answers[replay::GET_IDLUN_ANSWER].value[0], 0x01020304u);
	EXPECT_EQ(hda->answers[replay::GET_IDLUN_ANSWER].value[1], 5u);
	EXPECT_EQ(hda->answers[replay::SEND_COMMAND_ANSWER].result, 2);
	EXPECT_EQ(hda->answers[replay::SEND_COMMAND_ANSWER].reply_bytes, 3u);
	EXPECT_EQ(hda->opens_left, 2u);
	EXPECT_EQ(hda->end, 100u);
	EXPECT_STREQ(hda->image, "disk.img");
	const replay::sector_t *first = hda->sectors;
	ASSERT_NE(first, nullptr);
	EXPECT_EQ(first->number, 9u);
	EXPECT_EQ(first->data[446], 0x80);
	EXPECT_EQ(first->data[450], 0x83);
	EXPECT_EQ(first->data[454], 63);
	EXPECT_EQ(first->data[461], 0xff);
	EXPECT_EQ(first->data[462], 0);
	EXPECT_EQ(first->data[510], 0xaa);
	EXPECT_EQ(first->data[511], 0x55);
	ASSERT_NE(first->next, nullptr);
	EXPECT_EQ(first->next->data[2], 3);
	const replay::device_t *hdb = replay::find_device(table, "/dev/hdb");
	ASSERT_NE(hdb, nullptr);
	EXPECT_EQ(hdb->answers[replay::OPEN_ANSWER].error, ENOMEDIUM);
	EXPECT_EQ(hda->major, 0u);
	EXPECT_EQ(hdb->major, 4095u);
	EXPECT_EQ(hdb->minor, 1048575u);
	const replay::mount_t *blank = replay::find_mount(table, "/a b");
	ASSERT_NE(blank, nullptr);
	EXPECT_EQ(blank->bavail, 9u);
	EXPECT_EQ(replay::find_mount(table, "/c")->bavail, 6u);
	EXPECT_EQ(replay::find_mount(table, "/d")->error, ESTALE);
	memory.close();
}

// A table of today's largest machines is read, and asked, in no time that anybody would notice.
TEST_F(ReplayTable, TenThousandDevicesAndMounts)
{
	constexpr int count = 10000;
	std::string text;
	for (int i = 0; i < count; ++i) {
		const std::string name = std::to_string(i);
		text += "device /dev/d" + name + "\nnumber 8:" + name + "\nmount /m" + name + " 1 " + name +
		        " 0\n";
	}
	put("host.txt", text);
	replay::arena_t memory;
	ASSERT_TRUE(memory.open());
	replay::host_table_t *table = replay::load_table(host().c_str(), &memory);
	ASSERT_NE(table, nullptr);
	unsigned found = 0;
	for (unsigned i = 0; i < count; ++i) {
		const std::string name = std::to_string(i);
		const replay::device_t *dev = replay::find_device(table, ("/dev/d" + name).c_str());
		const replay::mount_t *mount = replay::find_mount(table, ("/m" + name).c_str());
		found += dev && dev->minor == i && mount && mount->blocks == i;
	}
	EXPECT_EQ(found, unsigned{count});
	EXPECT_EQ(replay::find_device(table, "/dev/d10000"), nullptr);
	EXPECT_EQ(replay::find_mount(table, "/m"), nullptr);
	// Their order is the table's.
	EXPECT_STREQ(table->devices.first->path, "/dev/d0");
	EXPECT_STREQ(table->devices.first->next->path, "/dev/d1");
	EXPECT_STREQ(table->devices.last->path, "/dev/d9999");
	memory.close();
}
