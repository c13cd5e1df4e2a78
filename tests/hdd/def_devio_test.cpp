// SPDX-License-Identifier: Apache-2.0
// Where Linux keeps its tables, how it numbers block devices, and the layout of a partition table.
#include "host.h"

#include "hdd/sal/src/linux/def-devio.h"

#include <stddef.h>

namespace
{

TEST(DefDevio, Paths)
{
	static const struct {
		const char (&buffer)[FNAME_SIZE];
		const char *pointer;
		const char *path;
	} rows[] = {
		{PROCSCSISCSI_PATH, PPROCSCSISCSI_PATH, "/proc/scsi/scsi"},
		{PROCSCSI_PATH, PPROCSCSI_PATH, "/proc/scsi"},
		{PROCIDE_PATH, PPROCIDE_PATH, "/proc/ide"},
		{PROCBLK_PATH, PPROCBLK_PATH, "/proc/partitions"},
		{MTAB_PATH, PMTAB_PATH, "/etc/mtab"},
		{MDSTAT_PATH, PMDSTAT_PATH, "/proc/mdstat"},
		{MDSPEED_MAX_PATH, PMDSPEED_MAX_PATH, "/proc/sys/dev/raid/speed_limit_max"},
		{MDSPEED_MIN_PATH, PMDSPEED_MIN_PATH, "/proc/sys/dev/raid/speed_limit_min"},
	};
	for (const auto &row : rows) {
		EXPECT_EQ(text_of(row.buffer), row.path);
		EXPECT_EQ(row.pointer, row.buffer);
	}
}

TEST(DefDevio, MajorsOfIdeAndScsi)
{
	EXPECT_THAT(IDEDEV_MAJOR, ::testing::ElementsAre(3, 22, 33, 34, 56, 57, 88, 89, 90, 91));
	EXPECT_THAT(SCSIDEV_MAJOR, ::testing::ElementsAre(8, 65, 66, 67, 68, 69, 70, 71));
	EXPECT_EQ(MD_MAJOR_NUMBER, 9);
}

TEST(DefDevio, DeviceNumbersHoldEightBitsOfEach)
{
	EXPECT_EQ(make_mami(8, 17), 0x811U);
	EXPECT_EQ(make_mami(255, 255), 0xffffU);
	EXPECT_EQ(make_mami(256, 256), 0U);
	EXPECT_EQ(make_mami(8, 0x1ff), 0x8ffU);
	EXPECT_EQ(mami_major(0xffff0811U), 8U);
	EXPECT_EQ(mami_minor(0xffff0811U), 17U);
}

struct name_row_t {
	const char *name;
	int result;
	unsigned mami;
};

class Maminame : public ::testing::TestWithParam<name_row_t>
{
};

TEST_P(Maminame, Converts)
{
	unsigned mami = 0xdeadU;
	EXPECT_EQ(maminame2mami(GetParam().name, &mami), GetParam().result) << GetParam().name;
	EXPECT_EQ(mami, GetParam().mami) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(Names, Maminame,
                         ::testing::Values(name_row_t{"08:11", 0, 0x811}, name_row_t{"00:00", 0, 0},
                                           name_row_t{"ff:ff", 0, 0xffff}, name_row_t{"FF:fF", 0, 0xffff},
                                           name_row_t{"9a:Bc", 0, 0x9abc},
                                           name_row_t{"/dev/xx/0A:fF", 0, 0xaff},
                                           name_row_t{"/08:11", 0, 0x811}));

INSTANTIATE_TEST_SUITE_P(NoNames, Maminame,
                         ::testing::Values(name_row_t{"8:11", -1, 0}, name_row_t{"08-11", -1, 0},
                                           name_row_t{"0g:11", -1, 0}, name_row_t{"g0:11", -1, 0},
                                           name_row_t{"08:1g", -1, 0}, name_row_t{"08:g1", -1, 0},
                                           name_row_t{"08:111", -1, 0}, name_row_t{"008:11", -1, 0},
                                           name_row_t{" 8:11", -1, 0}, name_row_t{"08:1", -1, 0},
                                           name_row_t{"08:1 ", -1, 0}, name_row_t{"08:11/", -1, 0},
                                           name_row_t{"08:11\n", -1, 0}, name_row_t{"0::11", -1, 0},
                                           name_row_t{"@8:11", -1, 0}, name_row_t{"G8:11", -1, 0},
                                           name_row_t{"", -1, 0}, name_row_t{"/", -1, 0}));

TEST(DefDevio, PartitionTableEntryIsAsOnDisk)
{
	EXPECT_EQ(sizeof(parttab_item_t), 16U);
	EXPECT_EQ(offsetof(parttab_item_t, active), 0U);
	EXPECT_EQ(offsetof(parttab_item_t, start_h), 1U);
	EXPECT_EQ(offsetof(parttab_item_t, start_s), 2U);
	EXPECT_EQ(offsetof(parttab_item_t, start_c), 3U);
	EXPECT_EQ(offsetof(parttab_item_t, type), 4U);
	EXPECT_EQ(offsetof(parttab_item_t, end_h), 5U);
	EXPECT_EQ(offsetof(parttab_item_t, end_s), 6U);
	EXPECT_EQ(offsetof(parttab_item_t, end_c), 7U);
	EXPECT_EQ(offsetof(parttab_item_t, start_sector), 8U);
	EXPECT_EQ(offsetof(parttab_item_t, size_sector), 12U);
	EXPECT_EQ(sizeof(parttab_t), 512U);
	EXPECT_EQ(offsetof(parttab_t, item), 446U);
	EXPECT_EQ(offsetof(parttab_t, magic), 510U);
	EXPECT_TRUE((std::is_same_v<mbr_t, parttab_t>));
}

} // namespace
