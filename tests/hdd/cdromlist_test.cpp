// SPDX-License-Identifier: Apache-2.0
// The CD-ROM drives: IDE drives of that media, with what is mounted from them.
#include "host.h"

#include "hdd/exe/linux.h"

namespace
{

class CdromlistTest : public HostTest
{
protected:
	int get(filter_func_t filter = nullptr, void *arg = nullptr)
	{
		host.show();
		list = soiled<exe_cdromlist_t>();
		return get_exe_cdromlist(list.get(), filter, arg);
	}
	std::vector<std::string> paths() const
	{
		std::vector<std::string> paths;
		for (const exe_cdrom_t &cdrom : list->item)
			if (cdrom.tag)
				paths.push_back(text_of(cdrom.devpath));
		return paths;
	}
	std::unique_ptr<exe_cdromlist_t> list;
};

using ::testing::ElementsAre;

TEST_F(CdromlistTest, MountedDrive)
{
	host.ide_drive("hdc", "cdrom", "EXAMPLE DVD", "SN00003", "2.5+");
	host.file("/etc/mtab",
	          "/dev/hda1 / ext3 rw 0 0\n/dev/hdc /cdrom iso9660 ro 0 0\n/dev/hdc /other udf ro 0 0\n");
	host.table("mount /cdrom 2048 194 100 50\n");
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 1, 1, 16);
	const exe_cdrom_t &cdrom = list->item[0];
	EXPECT_EQ(text_of(cdrom.devpath), "/dev/hdc");
	EXPECT_TRUE(is_zero(cdrom.idlun));
	EXPECT_EQ(cdrom.devid.bus, 'i');
	EXPECT_EQ(text_of(cdrom.devid.vendor), "");
	EXPECT_EQ(text_of(cdrom.devid.model), "EXAMPLE DVD");
	EXPECT_EQ(text_of(cdrom.devid.sn), "SN00003");
	EXPECT_EQ(text_of(cdrom.devid.rev), "2.5+");
	EXPECT_EQ(text_of(cdrom.mntpath), "/cdrom");
	EXPECT_EQ(text_of(cdrom.volid.fsname), "iso9660");
	EXPECT_EQ(text_of(cdrom.volid.volname), "");
	EXPECT_EQ(cdrom.volspace.total, 776U); // 194 blocks of 2048
	EXPECT_EQ(cdrom.volspace.free, 400U);  // all free blocks, not those of plain users
}

TEST_F(CdromlistTest, UnmountedDrive)
{
	host.ide_drive("hdc", "cdrom").file("/etc/mtab", "/dev/hda1 / ext3 rw 0 0\n");
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 1, 1, 16);
	EXPECT_EQ(text_of(list->item[0].mntpath), "");
	EXPECT_TRUE(is_zero(list->item[0].volid));
	EXPECT_TRUE(is_zero(list->item[0].volspace));
}

TEST_F(CdromlistTest, WithoutAMountTableDrivesAreUnmounted)
{
	host.ide_drive("hdc", "cdrom").ide_drive("hdd", "cdrom");
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/hdc", "/dev/hdd"));
	EXPECT_EQ(text_of(list->item[1].mntpath), "");
}

TEST_F(CdromlistTest, SpaceThatCannotBeAskedIsZero)
{
	host.ide_drive("hdc", "cdrom").file("/etc/mtab", "/dev/hdc /cdrom iso9660 ro 0 0\n");
	host.table("mount /cdrom fails EIO\n");
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(list->item[0].mntpath), "/cdrom");
	EXPECT_EQ(text_of(list->item[0].volid.fsname), "iso9660");
	EXPECT_TRUE(is_zero(list->item[0].volspace));
}

TEST_F(CdromlistTest, NoDirectoryOfDrives)
{
	EXPECT_EQ(get(), 0);
	expect_shape(*list, 0, 0, 16);
}

TEST_F(CdromlistTest, OnlyIdeDrivesOfThatMedia)
{
	host.ide_drive("hda", "disk")
		.ide_drive("hdb", "cdrom")
		.ide_drive("hdc", "cdroms")
		.ide_drive("hdd", "CDROM");
	host.ide_drive("hdt16", "cdrom").ide_drive("hdu", "cdrom").ide_drive("hda17", "cdrom");
	host.ide_drive("hde", "cdrom").remove("/proc/ide/ide0/hde/model");
	host.file("/proc/scsi/scsi", SCSI_HEADING + scsi_block(1, "A", "B", "1", "CD-ROM"));
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(), ElementsAre("/dev/hdb", "/dev/hdt16"));
}

TEST_F(CdromlistTest, IdeTableHolds8Drives)
{
	for (char letter = 'a'; letter <= 'j'; letter++)
		host.ide_drive(std::string("hd") + letter, letter < 'c' ? "disk" : "cdrom");
	EXPECT_EQ(get(), 0);
	EXPECT_THAT(paths(),
	            ElementsAre("/dev/hdc", "/dev/hdd", "/dev/hde", "/dev/hdf", "/dev/hdg", "/dev/hdh"));
}

struct link_row_t {
	const char *target; // of /dev/cdrom; null: no link
	const char *mtab;
	const char *hdc;
	const char *hdd;
};

class CdromLink : public CdromlistTest, public ::testing::WithParamInterface<link_row_t>
{
};

TEST_P(CdromLink, LeadsToTheMount)
{
	const link_row_t &row = GetParam();
	host.ide_drive("hdc", "cdrom")
		.ide_drive("hdd", "cdrom")
		.file("/etc/mtab", row.mtab)
		.directory("/dev");
	if (row.target)
		host.link("/dev/cdrom", row.target);
	EXPECT_EQ(get(), 0);
	ASSERT_THAT(paths(), ElementsAre("/dev/hdc", "/dev/hdd"));
	EXPECT_EQ(text_of(list->item[0].mntpath), row.hdc);
	EXPECT_EQ(text_of(list->item[1].mntpath), row.hdd);
}

const char *const LINK_MOUNTED = "/dev/cdrom /cdrom iso9660 ro 0 0\n/dev/cdrom /second iso9660 ro 0 0\n";

INSTANTIATE_TEST_SUITE_P(
	Links, CdromLink,
	::testing::Values(link_row_t{"hdc", LINK_MOUNTED, "/cdrom", ""},
                          link_row_t{"hdd", LINK_MOUNTED, "", "/cdrom"},
                          link_row_t{"/dev/hdc", LINK_MOUNTED, "/cdrom", ""},
                          link_row_t{"../x/hdd", LINK_MOUNTED, "", "/cdrom"},
                          link_row_t{"hde", LINK_MOUNTED, "", ""}, link_row_t{"hdc1", LINK_MOUNTED, "", ""},
                          link_row_t{"hdc/", LINK_MOUNTED, "", ""}, link_row_t{nullptr, LINK_MOUNTED, "", ""},
                          // The drive's own name goes before the link.
                          link_row_t{"hdc",
                                     "/dev/cdrom /cdrom iso9660 ro 0 0\n/dev/hdc /own iso9660 ro 0 0\n",
                                     "/own", ""},
                          link_row_t{"hdc", "/dev/dvd /cdrom iso9660 ro 0 0\n", "", ""}));

TEST_F(CdromlistTest, MountsBehindThe32ndAreNotSeen)
{
	std::string fill;
	for (int i = 0; i < 31; i++)
		fill += printed("none%d /n%d proc rw 0 0\n", i, i);
	host.ide_drive("hdc", "cdrom");
	host.file("/etc/mtab", fill + "/dev/hdc /cdrom iso9660 ro 0 0\n");
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(list->item[0].mntpath), "/cdrom");
	host.file("/etc/mtab", fill + "none /n proc rw 0 0\n/dev/hdc /cdrom iso9660 ro 0 0\n");
	EXPECT_EQ(get(), 0);
	EXPECT_EQ(text_of(list->item[0].mntpath), "");
}

TEST_F(CdromlistTest, FilterSeesTheFinishedDrive)
{
	host.ide_drive("hdc", "cdrom").ide_drive("hdd", "cdrom", "D");
	host.file("/etc/mtab", "/dev/hdd /cdrom udf ro 0 0\n").table("mount /cdrom 512 7 5\n");
	char dropped[] = "/dev/hdc";
	const filter_func_t other = [](const void *item, const void *arg) {
		const auto *cdrom = static_cast<const exe_cdrom_t *>(item);
		if (strcmp(cdrom->devpath, static_cast<const char *>(arg)) == 0)
			return 0;
		EXPECT_STREQ(cdrom->devid.model, "D");
		EXPECT_STREQ(cdrom->mntpath, "/cdrom");
		EXPECT_STREQ(cdrom->volid.fsname, "udf");
		EXPECT_EQ(cdrom->volspace.total, 7U);
		EXPECT_EQ(cdrom->volspace.free, 5U);
		return 1;
	};
	EXPECT_EQ(get(other, dropped), 0);
	expect_shape(*list, 1, 1, 16);
	EXPECT_THAT(paths(), ElementsAre("/dev/hdd"));
}

} // namespace
