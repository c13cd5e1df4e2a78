// SPDX-License-Identifier: Apache-2.0
// The local disks, put together from the block-device table, /proc/ide, /proc/scsi/scsi and the mount table.
#include "host.h"

#include "hdd/exe/linux.h"

namespace
{

class DisklistTest : public HostTest
{
protected:
	int get(filter_func_t filter = nullptr, void *arg = nullptr)
	{
		host.file("/proc/scsi/scsi", scsi_);
		host.show();
		list = soiled<exe_disklist_t>();
		return get_exe_disklist(list.get(), filter, arg);
	}
	// A SCSI disk as the kernel enters it, with a node that tells its address.
	void scsi_disk(const std::string &name, int id, const std::string &type = "Direct-Access")
	{
		scsi_ += scsi_block(id, "ACME", "DISK " + number(id), "1.0", type);
		node(name, id);
	}
	void node(const std::string &name, int id)
	{
		host.table(printed("device /dev/%s\n\tSCSI_IOCTL_GET_IDLUN 0x%08x\n", name.c_str(),
		                   static_cast<unsigned>(id)));
	}
	std::vector<std::string> paths() const
	{
		std::vector<std::string> paths;
		for (const exe_disk_t &disk : list->item)
			if (disk.tag)
				paths.push_back(text_of(disk.devpath));
		return paths;
	}
	std::unique_ptr<exe_disklist_t> list;
	std::string scsi_ = SCSI_HEADING;
};

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(DisklistTest, IdeDisk)
{
	host.partitions("3 0 262144 hda\n3 1 131008 hda1\n3 2 1 hda2\n3 5 32768 hda5\n");
	host.ide_drive("hda", "disk", "EXAMPLE DRIVE", "SN00001", "2.5+");
	host.table("device /dev/hda\n\tBLKGETSIZE 524288\n\tHDIO_GETGEO 255 63 520\n"
	           "\tSCSI_IOCTL_GET_IDLUN 0x01020304\n");
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 1, 1, 16);
	const exe_disk_t &disk = list->item[0];
	EXPECT_EQ(text_of(disk.devpath), "/dev/hda");
	EXPECT_EQ(disk.hdgeo.cylinders, 32U); // 524288 / (255 * 63)
	EXPECT_EQ(disk.hdgeo.heads, 255U);
	EXPECT_EQ(disk.hdgeo.sectors, 63U);
	EXPECT_EQ(disk.hdgeo.bytes, 512U);
	EXPECT_TRUE(is_zero(disk.idlun));
	EXPECT_EQ(disk.devid.bus, 'i');
	EXPECT_EQ(text_of(disk.devid.vendor), "");
	EXPECT_EQ(text_of(disk.devid.model), "EXAMPLE DRIVE");
	EXPECT_EQ(text_of(disk.devid.sn), "SN00001");
	EXPECT_EQ(text_of(disk.devid.rev), "2.5+");
	EXPECT_EQ(disk.partnum, 3);
	EXPECT_EQ(disk.partnum_extended, 1);
	EXPECT_EQ(disk.sys, 0);
}

TEST_F(DisklistTest, ScsiDisk)
{
	host.partitions("8 16 65536 sdb\n8 17 1 sdb1\n8 18 2 sdb2\n");
	scsi_ = "Host: scsi1 Channel: 02 Id: 04 Lun: 03\n"
		"  Vendor: EXAMPLE  Model: DISK2155         Rev: 0528\n"
		"  Type:   Direct-Access                    ANSI  SCSI revision: 02\n";
	host.table("device /dev/sdb\n\tBLKGETSIZE 131072\n\tHDIO_GETGEO 64 32 5\n"
	           "\tSCSI_IOCTL_GET_IDLUN 0x01020304 0x99\n\tSCSI_IOCTL_SEND_COMMAND 00800004 41423132\n");
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 1, 1, 16);
	const exe_disk_t &disk = list->item[0];
	EXPECT_EQ(text_of(disk.devpath), "/dev/sdb");
	EXPECT_EQ(disk.idlun.host, 1);
	EXPECT_EQ(disk.idlun.channel, 2);
	EXPECT_EQ(disk.idlun.lun, 3);
	EXPECT_EQ(disk.idlun.id, 4);
	EXPECT_EQ(disk.devid.bus, 's');
	EXPECT_EQ(text_of(disk.devid.vendor), "EXAMPLE");
	EXPECT_EQ(text_of(disk.devid.model), "DISK2155");
	EXPECT_EQ(text_of(disk.devid.rev), "0528");
	EXPECT_EQ(text_of(disk.devid.sn), "");
	EXPECT_EQ(disk.hdgeo.cylinders, 64U);
	EXPECT_EQ(disk.partnum, 2);
	EXPECT_EQ(disk.partnum_extended, 1);
}

TEST_F(DisklistTest, EmptyHost)
{
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 0, 0, 16);
}

TEST_F(DisklistTest, OrderIsTheBlockDevices)
{
	host.partitions("8 0 9 sda\n22 64 9 hdd\n8 16 9 sdb\n3 0 9 hda\n");
	host.ide_drive("hda", "disk").ide_drive("hdd", "disk");
	scsi_disk("sdb", 1);
	scsi_disk("sda", 2);
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 4, 4, 16);
	EXPECT_THAT(paths(), ElementsAre("/dev/sda", "/dev/hdd", "/dev/sdb", "/dev/hda"));
	EXPECT_EQ(text_of(list->item[0].devid.model), "DISK 2");
	EXPECT_EQ(text_of(list->item[2].devid.model), "DISK 1");
}

TEST_F(DisklistTest, NamesAtTheBorders)
{
	host.partitions("91 64 9 hdt\n3 0 9 hdu\n65 144 9 sdz\n65 160 9 sdaa\n71 240 9 sddx\n72 0 9 sddy\n"
	                "9 0 9 md0\n7 0 9 loop0\n65 176 9 xxab\n");
	host.ide_drive("hdt", "disk").ide_drive("hdu", "disk");
	int id = 0;
	for (const char *name : {"hdu", "sdz", "sdaa", "sddx", "sddy", "md0", "loop0", "xxab"})
		scsi_disk(name, ++id);
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/hdt", "/dev/sdz", "/dev/sdaa", "/dev/sddx", "/dev/xxab"));
}

TEST_F(DisklistTest, PartitionsAreNoDisks)
{
	host.partitions("3 16 9 hda16\n8 15 9 sda15\n8 16 9 sda16\n");
	host.ide_drive("hda", "disk");
	scsi_disk("sda", 1);
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), IsEmpty());
}

TEST_F(DisklistTest, IdeDriveMustBeAReadableDisk)
{
	host.partitions("3 0 9 hda\n3 64 9 hdb\n22 0 9 hdc\n22 64 9 hdd\n33 0 9 hde\n");
	host.ide_drive("hda", "cdrom")
		.ide_drive("hdb", "disks")
		.ide_drive("hdc", "Disk")
		.ide_drive("hdd", "disk");
	host.ide_drive("hde", "disk").remove("/proc/ide/ide0/hde/media");
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/hdd"));
}

TEST_F(DisklistTest, IdeTableHolds8Drives)
{
	std::string lines;
	for (char letter = 'a'; letter <= 'j'; letter++) {
		lines += printed("3 0 9 hd%c\n", letter);
		host.ide_drive(std::string("hd") + letter, "disk");
	}
	host.partitions(lines);
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 8, 8, 16);
	EXPECT_STREQ(list->item[7].devpath, "/dev/hdh");
}

TEST_F(DisklistTest, ScsiDiskMustBeDirectAccess)
{
	host.partitions("8 0 9 sda\n8 16 9 sdb\n8 32 9 sdc\n");
	scsi_disk("sda", 1, "CD-ROM");
	scsi_disk("sdb", 2, "Direct-Access-X");
	scsi_disk("sdc", 3);
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/sdc"));
}

TEST_F(DisklistTest, ScsiDiskMustAnswerWithAKnownAddress)
{
	host.partitions("8 0 9 sda\n8 16 9 sdb\n8 32 9 sdc\n8 48 9 sdd\n8 64 9 sde\n");
	scsi_ += scsi_block(1) + scsi_block(5);
	host.table("device /dev/sda\n\topen fails ENXIO\n\tSCSI_IOCTL_GET_IDLUN 1\n"
	           "device /dev/sdb\n\tSCSI_IOCTL_GET_IDLUN fails EINVAL\n"
	           "device /dev/sdc\n\tSCSI_IOCTL_GET_IDLUN 2\n"
	           "device /dev/sde\n\tSCSI_IOCTL_GET_IDLUN 5\n");
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/sde"));
}

TEST_F(DisklistTest, FreeScsiSlotsAreNoDirectAccessDevices)
{
	// Address 0 equals that of every free slot, whose type is empty.
	host.partitions("8 0 9 sda\n8 16 9 sdb\n");
	scsi_disk("sdb", 3);
	node("sda", 0);
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/sdb"));
}

TEST_F(DisklistTest, FirstScsiSlotOfTheAddressCounts)
{
	host.partitions("8 0 9 sda\n");
	scsi_ += scsi_block(1, "ONE", "ONE") + scsi_block(1, "TWO", "TWO");
	node("sda", 1);
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(list->item[0].devid.vendor), "ONE");
}

TEST_F(DisklistTest, MalformedScsiBlockHidesOnlyItsDisk)
{
	host.partitions("8 0 9 sda\n8 16 9 sdb\n");
	scsi_ += "Host: scsi0 Channel: 00 Id: 01 Lun: 00\nbad\nworse\n";
	node("sda", 1);
	scsi_disk("sdb", 2);
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/sdb"));
}

struct geo_row_t {
	const char *answers;
	hdgeo_t geo;
};

class DiskGeometry : public DisklistTest, public ::testing::WithParamInterface<geo_row_t>
{
};

TEST_P(DiskGeometry, FromTheDevice)
{
	host.partitions("3 0 9 hda\n").ide_drive("hda", "disk");
	host.table(GetParam().answers);
	EXPECT_EQ(get(), 0);
	ASSERT_THAT(paths(), ElementsAre("/dev/hda"));
	const hdgeo_t &geo = list->item[0].hdgeo;
	EXPECT_EQ(geo.cylinders, GetParam().geo.cylinders);
	EXPECT_EQ(geo.heads, GetParam().geo.heads);
	EXPECT_EQ(geo.sectors, GetParam().geo.sectors);
	EXPECT_EQ(geo.bytes, GetParam().geo.bytes);
}

INSTANTIATE_TEST_SUITE_P(
	Answers, DiskGeometry,
	::testing::Values(geo_row_t{"device /dev/hda\nBLKGETSIZE 8589934592\nHDIO_GETGEO 16 63 65535\n",
                                    {8521760, 16, 63, 512}},
                          geo_row_t{"device /dev/hda\nBLKGETSIZE 524288\nHDIO_GETGEO fails ENOTTY\n", {}},
                          geo_row_t{"device /dev/hda\nBLKGETSIZE fails EIO\nHDIO_GETGEO 16 63 1\n", {}},
                          geo_row_t{"device /dev/hda\nBLKGETSIZE 0\nHDIO_GETGEO 16 63 1\n", {}},
                          geo_row_t{"device /dev/hda\nBLKGETSIZE 524288\nHDIO_GETGEO 0 63 1\n", {}},
                          geo_row_t{"device /dev/hda\nBLKGETSIZE 524288\nHDIO_GETGEO 16 0 1\n", {}},
                          geo_row_t{"device /dev/hda\nopen fails ENOMEDIUM\n", {}}, geo_row_t{"", {}}));

struct system_row_t {
	const char *mtab;
	int hda;
	int sda;
};

class SystemDisk : public DisklistTest, public ::testing::WithParamInterface<system_row_t>
{
};

TEST_P(SystemDisk, HoldsRootOrBoot)
{
	host.partitions("3 0 9 hda\n8 0 9 sda\n").ide_drive("hda", "disk");
	scsi_disk("sda", 1);
	host.file("/etc/mtab", GetParam().mtab);
	EXPECT_EQ(get(), 0);
	ASSERT_THAT(paths(), ElementsAre("/dev/hda", "/dev/sda"));
	EXPECT_EQ(list->item[0].sys, GetParam().hda) << GetParam().mtab;
	EXPECT_EQ(list->item[1].sys, GetParam().sda) << GetParam().mtab;
}

INSTANTIATE_TEST_SUITE_P(
	Mounts, SystemDisk,
	::testing::Values(system_row_t{"", 0, 0}, system_row_t{"/dev/sda3 / ext3 rw 0 0\n", 0, 1},
                          system_row_t{"/dev/hda1 / ext3 rw 0 0\n/dev/sda1 /boot ext2 rw 0 0\n", 1, 1},
                          system_row_t{"/dev/sda1 /boot ext2 rw 0 0\n", 0, 1},
                          system_row_t{"/dev/sda1 /boot/efi vfat rw 0 0\n/dev/hda1 /home ext3 rw 0 0\n", 0,
                                       0},
                          system_row_t{"/dev/hda / ext3 rw 0 0\n", 1, 0},
                          system_row_t{"/dev/disk/hda9 / ext3 rw 0 0\n", 1, 0},
                          system_row_t{"/dev/md0 / ext3 rw 0 0\n", 0, 0},
                          system_row_t{"/dev/mapper/vg-root / ext3 rw 0 0\n", 0, 0},
                          system_row_t{"/dev/sdaa1 / ext3 rw 0 0\n", 0, 0},
                          // Only sources below /dev count, and of those the first.
                          system_row_t{"sda1 / ext3 rw 0 0\n", 0, 0},
                          system_row_t{"rootfs / rootfs rw 0 0\n/dev/hda1 / ext3 rw 0 0\n", 1, 0},
                          system_row_t{"/dev/root / ext3 rw 0 0\n/dev/hda1 / ext3 rw 0 0\n", 0, 0},
                          system_row_t{"/dev/hda1 / ext3 rw 0 0\n/dev/sda1 / ext3 rw 0 0\n", 1, 0}));

TEST_F(DisklistTest, MountsBehindThe32ndAreNotSeen)
{
	std::string fill;
	for (int i = 0; i < 31; i++)
		fill += printed("/dev/x%d /mnt/%d ext3 rw 0 0\nnone%d /n%d proc rw 0 0\n", i, i, i, i);
	host.partitions("3 0 9 hda\n").ide_drive("hda", "disk");
	host.file("/etc/mtab", fill + "/dev/hda1 / ext3 rw 0 0\n");
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(list->item[0].sys, 1);
	host.file("/etc/mtab", fill + "/dev/x31 /mnt/31 ext3 rw 0 0\n/dev/hda1 / ext3 rw 0 0\n");
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(list->item[0].sys, 0);
}

TEST_F(DisklistTest, PartitionCounts)
{
	std::string lines = "3 0 9 hda\n3 64 9 hdb\n";
	for (int part = 1; part <= 40; part++)
		lines += printed("3 %d %d hda%d\n", part, part <= 3 ? 1 : 2, part);
	host.partitions(lines).ide_drive("hda", "disk").ide_drive("hdb", "disk");
	EXPECT_EQ(get(), 0);
	// The list of a disk's partitions holds 32.
	EXPECT_EQ(list->item[0].partnum, 32);
	EXPECT_EQ(list->item[0].partnum_extended, 3);
	EXPECT_EQ(list->item[1].partnum, 0);
	EXPECT_EQ(list->item[1].partnum_extended, 0);
}

std::string scsi_lines(int count)
{
	std::string all;
	for (int i = 0; i < count; i++)
		all += printed("8 %d 9 sd%c\n", 16 * i, 'a' + i);
	return all;
}

TEST_F(DisklistTest, SixteenDisksAreTheMost)
{
	for (int i = 0; i < 18; i++)
		scsi_disk(std::string("sd") + static_cast<char>('a' + i), i);
	host.partitions(scsi_lines(16));
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 16, 16, 16);
	host.partitions(scsi_lines(18));
	filter_calls_t calls = {1, 0};
	EXPECT_EQ(get(counting_filter, &calls), -1);
	EXPECT_EQ(calls.calls, 18);
	expect_shape(*list, 16, 16, 16);
	EXPECT_STREQ(list->item[15].devpath, "/dev/sdp");
}

TEST_F(DisklistTest, BlockDeviceListHolds32Disks)
{
	// 31 names without a disk behind them, then two that have one: the second is not met any more.
	std::string lines;
	for (int i = 0; i < 31; i++)
		lines += printed("65 0 9 sd%c%c\n", 'b' + i / 26, 'a' + i % 26);
	host.partitions(lines + "3 0 9 hda\n3 64 9 hdb\n").ide_drive("hda", "disk").ide_drive("hdb", "disk");
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/hda"));
}

TEST_F(DisklistTest, FilterSeesTheFinishedDisk)
{
	host.partitions("3 0 9 hda\n3 1 1 hda1\n3 64 9 hdb\n")
		.ide_drive("hda", "disk")
		.ide_drive("hdb", "disk");
	host.table("device /dev/hda\nBLKGETSIZE 100\nHDIO_GETGEO 2 5 1\n")
		.file("/etc/mtab", "/dev/hda1 / x rw 0 0\n");
	char wanted[] = "/dev/hda";
	const filter_func_t other = [](const void *item, const void *arg) {
		const auto *disk = static_cast<const exe_disk_t *>(item);
		if (strcmp(disk->devpath, static_cast<const char *>(arg)) != 0)
			return 1;
		EXPECT_EQ(disk->hdgeo.cylinders, 10U);
		EXPECT_EQ(disk->devid.bus, 'i');
		EXPECT_EQ(disk->partnum, 1);
		EXPECT_EQ(disk->partnum_extended, 1);
		EXPECT_EQ(disk->sys, 1);
		return 0;
	};
	EXPECT_EQ(get(other, wanted), 0);
	expect_shape(*list, 1, 1, 16);
	EXPECT_THAT(paths(), ElementsAre("/dev/hdb"));
}

TEST_F(DisklistTest, MissingSourcesHideOnlyTheirDisks)
{
	host.partitions("3 0 9 hda\n8 0 9 sda\n").ide_drive("hda", "disk");
	scsi_disk("sda", 1);
	host.file("/proc/scsi/scsi", scsi_).show();
	list = soiled<exe_disklist_t>();
	host.remove("/proc/scsi");
	EXPECT_EQ(get_exe_disklist(list.get(), nullptr, nullptr), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/hda"));
	host.file("/proc/scsi/scsi", scsi_).remove("/proc/ide");
	EXPECT_EQ(get_exe_disklist(list.get(), nullptr, nullptr), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/sda"));
}

TEST_F(DisklistTest, ChangesNothing)
{
	host.partitions("3 0 9 hda\n8 0 9 sda\n").ide_drive("hda", "disk");
	scsi_disk("sda", 1);
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(host.log(), IsEmpty());
}

} // namespace
