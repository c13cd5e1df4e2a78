// SPDX-License-Identifier: Apache-2.0
// Block devices: their canonical names, their nodes, and what they answer when asked directly.
#include "host.h"

#include "hdd/sal/src/0/fd.h"
#include "hdd/sal/src/linux/devio.h"
#include "replay/replay.h"

#include <fcntl.h>
#include <unistd.h>

namespace
{

struct ok_row_t {
	const char *name;
	const char *canonical; // null: no rule takes the name
};

class OkDevname : public ::testing::TestWithParam<ok_row_t>
{
};

void expect_name(const std::string &name, const char *canonical)
{
	fname_t out;
	memset(out, 'x', sizeof out);
	EXPECT_EQ(ok_devname(name.c_str(), out), canonical ? 0 : -1) << name;
	EXPECT_EQ(text_of(out), canonical ? canonical : "") << name;
}

TEST_P(OkDevname, Names)
{
	expect_name(GetParam().name, GetParam().canonical);
}

INSTANTIATE_TEST_SUITE_P(
	Ide, OkDevname,
	::testing::Values(ok_row_t{"hda", "hda"}, ok_row_t{"hda1", "hda1"}, ok_row_t{"hda16", "hda16"},
                          ok_row_t{"hda17", nullptr}, ok_row_t{"hda0", nullptr}, ok_row_t{"hda016", "hda16"},
                          ok_row_t{"/dev/hdb3", "hdb3"}, ok_row_t{"hdt", "hdt"}, ok_row_t{"hdt5", "hdt5"},
                          ok_row_t{"hdt16", "hdt16"}, ok_row_t{"hdu", nullptr}, ok_row_t{"hdu1", nullptr},
                          ok_row_t{"hd", nullptr}, ok_row_t{"hdA", nullptr}, ok_row_t{"HDA", nullptr},
                          ok_row_t{"hda4294967297", nullptr}, ok_row_t{"hda18446744073709551617", nullptr}));

INSTANTIATE_TEST_SUITE_P(
	Scsi, OkDevname,
	::testing::Values(ok_row_t{"sda", "sda"}, ok_row_t{"sda15", "sda15"}, ok_row_t{"sda16", nullptr},
                          ok_row_t{"sda0", nullptr}, ok_row_t{"sdp15", "sdp15"}, ok_row_t{"sdq", "sdq"},
                          ok_row_t{"sdz", "sdz"}, ok_row_t{"sdz15", "sdz15"}, ok_row_t{"sdaa", "sdaa"},
                          ok_row_t{"sdaa1", "sdaa1"}, ok_row_t{"sdaz", "sdaz"}, ok_row_t{"sdba", "sdba"},
                          ok_row_t{"sddx", "sddx"}, ok_row_t{"sddx15", "sddx15"}, ok_row_t{"sddx16", nullptr},
                          ok_row_t{"sddy", nullptr}, ok_row_t{"sddz", nullptr}, ok_row_t{"sdea", nullptr},
                          ok_row_t{"sd", nullptr}, ok_row_t{"sd{", nullptr},
                          ok_row_t{"sda4294967297", nullptr},
                          // The first two of four letters do not count.
                          ok_row_t{"hdaa", "sdaa"}, ok_row_t{"xxdx3", "sddx3"}, ok_row_t{"1:ab", "sdab"},
                          ok_row_t{"/dev/disk/scab", "sdab"}));

INSTANTIATE_TEST_SUITE_P(Raid, OkDevname,
                         ::testing::Values(ok_row_t{"md0", "md0"}, ok_row_t{"/dev/md/md3", "md3"},
                                           ok_row_t{"md255", "md255"}, ok_row_t{"md256", nullptr},
                                           ok_row_t{"md", nullptr}, ok_row_t{"md007", "md7"},
                                           ok_row_t{"md4294967296", nullptr},
                                           ok_row_t{"md18446744073709551616", nullptr},
                                           ok_row_t{"/dev/md/3", nullptr}, ok_row_t{"mdx1", nullptr}));

INSTANTIATE_TEST_SUITE_P(
	Numbers, OkDevname,
	::testing::Values(ok_row_t{"08:11", "sdb1"}, ok_row_t{"03:41", "hdb1"}, ok_row_t{"0B:00", "0B:00"},
                          ok_row_t{"0b:0a", "0B:0A"}, ok_row_t{"80:00", "80:00"}, ok_row_t{"87:ff", "87:FF"},
                          ok_row_t{"/dev/xx/08:11", "sdb1"}, ok_row_t{"5b:45", "hdt5"},
                          ok_row_t{"5B:40", "hdt"}, ok_row_t{"16:00", "hdc"}, ok_row_t{"16:50", "hdd16"},
                          ok_row_t{"03:10", "hda16"}, ok_row_t{"03:11", "03:11"}, ok_row_t{"03:3f", "03:3F"},
                          ok_row_t{"03:7f", "03:7F"}, ok_row_t{"03:80", "03:80"}, ok_row_t{"03:c0", "03:C0"},
                          ok_row_t{"08:0f", "sda15"}, ok_row_t{"08:f0", "sdp"}, ok_row_t{"41:00", "sdq"},
                          ok_row_t{"41:90", "sdz"}, ok_row_t{"41:a0", "sdaa"}, ok_row_t{"41:a1", "sdaa1"},
                          ok_row_t{"47:f0", "sddx"}, ok_row_t{"47:ff", "sddx15"}, ok_row_t{"48:00", "48:00"},
                          ok_row_t{"09:00", "md0"}, ok_row_t{"09:ff", "md255"}, ok_row_t{"00:00", "00:00"},
                          ok_row_t{"ff:ff", "FF:FF"}));

INSTANTIATE_TEST_SUITE_P(Others, OkDevname,
                         ::testing::Values(ok_row_t{"", nullptr}, ok_row_t{"/dev/", nullptr},
                                           ok_row_t{"8:11", nullptr}, ok_row_t{"08-11", nullptr},
                                           ok_row_t{"0g:11", nullptr}, ok_row_t{"08:111", nullptr},
                                           ok_row_t{"c0d0p1", nullptr}, ok_row_t{"loop0", nullptr},
                                           ok_row_t{"ram1", nullptr}, ok_row_t{"sr0", nullptr},
                                           ok_row_t{"hda1/", nullptr}));

// Each name comes back from itself and from its number, so that the way to the number is seen as well.
void expect_round_trip(const std::string &name, int major, int minor)
{
	expect_name(name, name.c_str());
	expect_name(printed("%02x:%02x", static_cast<unsigned>(major), static_cast<unsigned>(minor)),
	            name.c_str());
}

TEST(OkDevnameRoundTrip, EveryIdeDrive)
{
	for (int drive = 0; drive < 20; drive++) {
		const std::string name = std::string("hd") + static_cast<char>('a' + drive);
		const int base = drive % 2 * 64;
		expect_round_trip(name, IDEDEV_MAJOR[drive / 2], base);
		for (int part = 1; part <= 16; part++)
			expect_round_trip(name + number(part), IDEDEV_MAJOR[drive / 2], base + part);
	}
}

TEST(OkDevnameRoundTrip, EveryScsiDisk)
{
	const std::string letters = "abcdefghijklmnopqrstuvwxyz";
	for (int disk = 0; disk < 128; disk++) {
		std::string name = "sd";
		if (disk >= 26)
			name += letters[static_cast<size_t>(disk / 26 - 1)];
		name += letters[static_cast<size_t>(disk % 26)];
		const int base = disk % 16 * 16;
		expect_round_trip(name, SCSIDEV_MAJOR[disk / 16], base);
		for (int part = 1; part <= 15; part++)
			expect_round_trip(name + number(part), SCSIDEV_MAJOR[disk / 16], base + part);
	}
}

class DevioTest : public HostTest
{
protected:
	void device(const std::string &answers)
	{
		host.table("device /dev/disk\n" + answers);
		host.show();
	}
};

TEST_F(DevioTest, NodeReplacesWhatIsThere)
{
	EXPECT_EQ(create_dev("/dev/node", 0x811), 0);
	EXPECT_THAT(host.log(), ::testing::ElementsAre("unlink /dev/node", "mknod /dev/node 060777 8:17"));
}

TEST_F(DevioTest, NodeNumberIsTheLow16Bits)
{
	EXPECT_EQ(create_dev("/dev/node", 0xabcdffffU), 0);
	EXPECT_EQ(create_dev("/dev/node", 0x70000U), 0);
	EXPECT_THAT(host.log(), ::testing::ElementsAre("unlink /dev/node", "mknod /dev/node 060777 255:255",
	                                               "unlink /dev/node", "mknod /dev/node 060777 0:0"));
}

TEST_F(DevioTest, NodeIsMadeWhenNothingWasThere)
{
	replay_fail_call(1, 0);
	EXPECT_EQ(create_dev("/dev/node", 0x811), 0);
	EXPECT_THAT(host.log(), ::testing::ElementsAre("mknod /dev/node 060777 8:17"));
}

TEST_F(DevioTest, NodeThatCannotBeMade)
{
	replay_fail_call(2, 0);
	EXPECT_EQ(create_dev("/dev/node", 0x811), -1);
	EXPECT_THAT(host.log(), ::testing::ElementsAre("unlink /dev/node"));
}

TEST_F(DevioTest, SizeInSectors)
{
	device("\tBLKGETSIZE 524288\n");
	const Descriptor disk("/dev/disk");
	unsigned long size = 1;
	EXPECT_EQ(get_device_size(disk.fd(), &size), 0);
	EXPECT_EQ(size, 524288U);
}

TEST_F(DevioTest, SizeBeyond32Bits)
{
	device("\tBLKGETSIZE 8589934593\n");
	const Descriptor disk("/dev/disk");
	unsigned long size = 1;
	EXPECT_EQ(get_device_size(disk.fd(), &size), 0);
	EXPECT_EQ(size, 8589934593U);
}

TEST_F(DevioTest, SizeThatFailsIs0)
{
	device("\tBLKGETSIZE fails ENXIO\n");
	const Descriptor disk("/dev/disk");
	unsigned long size = 1;
	EXPECT_EQ(get_device_size(disk.fd(), &size), -1);
	EXPECT_EQ(size, 0U);
	size = 1;
	EXPECT_EQ(get_device_size(-1, &size), -1);
	EXPECT_EQ(size, 0U);
}

struct geometry_row_t {
	const char *answers;
	int result;
	hdgeo_t geo;
};

class Geometry : public DevioTest, public ::testing::WithParamInterface<geometry_row_t>
{
};

TEST_P(Geometry, FromSizeAndReply)
{
	device(GetParam().answers);
	const Descriptor disk("/dev/disk");
	const auto geo = soiled<hdgeo_t>();
	EXPECT_EQ(get_device_geometry(disk.fd(), geo.get()), GetParam().result);
	EXPECT_EQ(geo->cylinders, GetParam().geo.cylinders);
	EXPECT_EQ(geo->heads, GetParam().geo.heads);
	EXPECT_EQ(geo->sectors, GetParam().geo.sectors);
	EXPECT_EQ(geo->bytes, GetParam().geo.bytes);
}

INSTANTIATE_TEST_SUITE_P(
	Answers, Geometry,
	::testing::Values(
		// 255 * 63 = 16065; 524288 / 16065 = 32.6; the reply's cylinders are not used.
		geometry_row_t{"\tBLKGETSIZE 524288\n\tHDIO_GETGEO 255 63 520\n", 0, {32, 255, 63, 512}},
		geometry_row_t{"\tBLKGETSIZE 16065\n\tHDIO_GETGEO 255 63 0\n", 0, {1, 255, 63, 512}},
		geometry_row_t{"\tBLKGETSIZE 16064\n\tHDIO_GETGEO 255 63 9\n", 0, {0, 255, 63, 512}},
		geometry_row_t{"\tBLKGETSIZE 8589934592\n\tHDIO_GETGEO 1 1 1\n", 0, {8589934592, 1, 1, 512}},
		geometry_row_t{"\tBLKGETSIZE 0\n\tHDIO_GETGEO 255 63 520\n", -1, {}},
		geometry_row_t{"\tBLKGETSIZE 100\n\tHDIO_GETGEO 0 63 520\n", -1, {}},
		geometry_row_t{"\tBLKGETSIZE 100\n\tHDIO_GETGEO 255 0 520\n", -1, {}},
		geometry_row_t{"\tBLKGETSIZE 100\n\tHDIO_GETGEO fails ENOTTY\n", -1, {}},
		geometry_row_t{"\tBLKGETSIZE fails EIO\n\tHDIO_GETGEO 255 63 520\n", -1, {}}));

TEST_F(DevioTest, ScsiAddressIsSplit)
{
	// Host 1, channel 2, LUN 3, ID 4: the LUN stands above the ID.
	device("\tSCSI_IOCTL_GET_IDLUN 0x01020304 0xffffffff\n");
	const Descriptor disk("/dev/disk");
	const auto idlun = soiled<idlun_t>();
	EXPECT_EQ(get_device_idlun(disk.fd(), idlun.get()), 0);
	EXPECT_EQ(idlun->host, 1);
	EXPECT_EQ(idlun->channel, 2);
	EXPECT_EQ(idlun->lun, 3);
	EXPECT_EQ(idlun->id, 4);
}

TEST_F(DevioTest, ScsiAddressWithTheHighestHost)
{
	device("\tSCSI_IOCTL_GET_IDLUN 0xff000000\n");
	const Descriptor disk("/dev/disk");
	const auto idlun = soiled<idlun_t>();
	EXPECT_EQ(get_device_idlun(disk.fd(), idlun.get()), 0);
	EXPECT_EQ(idlun->host, 255);
}

TEST_F(DevioTest, ScsiAddressThatFailsIsZero)
{
	device("\tSCSI_IOCTL_GET_IDLUN fails EINVAL\n");
	const Descriptor disk("/dev/disk");
	const auto idlun = soiled<idlun_t>();
	EXPECT_EQ(get_device_idlun(disk.fd(), idlun.get()), -1);
	EXPECT_TRUE(is_zero(*idlun));
}

TEST_F(DevioTest, SpaceInSectors)
{
	volspace_t space;
	memset(&space, 'x', sizeof space);
	host.table("mount /data 1024 1000 300 200\nmount /odd 100 51 6\nmount /vast 4096 4503599627370495 0\n"
	           "mount /stale fails ESTALE\n");
	host.show();
	EXPECT_EQ(get_volspace("/data", &space), 0);
	EXPECT_EQ(space.total, 2000U);
	EXPECT_EQ(space.free, 600U); // also what only root may fill
	EXPECT_EQ(get_volspace("/odd", &space), 0);
	EXPECT_EQ(space.total, 9U);
	EXPECT_EQ(space.free, 1U);
	// 2^64 - 4096 bytes: as a signed number -4096, eight units.
	EXPECT_EQ(get_volspace("/vast", &space), 0);
	EXPECT_EQ(space.total, static_cast<size32_t>(-8));
	EXPECT_EQ(get_volspace("/stale", &space), -1);
	EXPECT_TRUE(is_zero(space));
	EXPECT_EQ(get_volspace("/none", &space), -1);
}

struct uptime_row_t {
	const char *text;
	int seconds;
};

class Uptime : public DevioTest, public ::testing::WithParamInterface<uptime_row_t>
{
};

TEST_P(Uptime, InWholeSeconds)
{
	host.file("/proc/uptime", GetParam().text);
	EXPECT_EQ(get_uptime(), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(Texts, Uptime,
                         ::testing::Values(uptime_row_t{"350.99 1200.00\n", 350},
                                           uptime_row_t{"0.00 0.00\n", 0}, uptime_row_t{"12", 12},
                                           uptime_row_t{"123456789 5\n", 123456789},
                                           uptime_row_t{"7.1 0\n8.1 0\n", 7}, uptime_row_t{"", -1}));

TEST_F(DevioTest, NoUptimeFile)
{
	EXPECT_EQ(get_uptime(), -1);
}

} // namespace
