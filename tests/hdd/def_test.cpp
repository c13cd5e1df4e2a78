// SPDX-License-Identifier: Apache-2.0
// The shared small types: their sizes, the order of their fields, and the constant texts.
#include "host.h"

#include "hdd/exe/linux.h"
#include "hdd/sal/src/linux/mtab.h"
#include "hdd/sal/src/linux/procblk.h"
#include "hdd/sal/src/linux/procide.h"
#include "hdd/sal/src/linux/procscsi.h"
#include "hdd/sal/src/linux/raidtab.h"

#include <stddef.h>
#include <type_traits>

namespace
{

TEST(Def, TextTypesHaveTheirSizes)
{
	EXPECT_EQ(sizeof(str_t), 64U);
	EXPECT_EQ(sizeof(line_t), 1024U);
	EXPECT_EQ(sizeof(cmd_t), 128U);
	EXPECT_EQ(sizeof(fname_t), 4096U);
}

TEST(Def, NumberTypesHaveTheirWidthAndSign)
{
	EXPECT_TRUE((std::is_same_v<mami_t, uint32_t>));
	EXPECT_TRUE((std::is_same_v<size32_t, uint64_t>));
	EXPECT_TRUE((std::is_same_v<off32_t, uint64_t>));
	EXPECT_TRUE((std::is_same_v<size64_t, int64_t>));
	EXPECT_TRUE((std::is_same_v<fs_t, FILE *>));
	EXPECT_TRUE((std::is_same_v<fd_t, int>));
	EXPECT_TRUE((std::is_same_v<hdgeo_t, chs_t>));
	EXPECT_TRUE((std::is_same_v<volspace_t, space_t>));
}

TEST(Def, FieldsStandInTheirOrder)
{
	EXPECT_EQ(sizeof(idlun_t), 4U);
	EXPECT_EQ(offsetof(idlun_t, host), 0U);
	EXPECT_EQ(offsetof(idlun_t, channel), 1U);
	EXPECT_EQ(offsetof(idlun_t, id), 2U);
	EXPECT_EQ(offsetof(idlun_t, lun), 3U);
	EXPECT_EQ(sizeof(chs_t), 32U);
	EXPECT_EQ(offsetof(chs_t, cylinders), 0U);
	EXPECT_EQ(offsetof(chs_t, heads), 8U);
	EXPECT_EQ(offsetof(chs_t, sectors), 16U);
	EXPECT_EQ(offsetof(chs_t, bytes), 24U);
	EXPECT_EQ(offsetof(space_t, total), 0U);
	EXPECT_EQ(offsetof(space_t, free), 8U);
	EXPECT_EQ(offsetof(devid_t, bus), 0U);
	EXPECT_EQ(offsetof(devid_t, vendor), 1U);
	EXPECT_EQ(offsetof(devid_t, model), 65U);
	EXPECT_EQ(offsetof(devid_t, rev), 129U);
	EXPECT_EQ(offsetof(devid_t, sn), 193U);
	EXPECT_EQ(offsetof(volid_t, volname), 0U);
	EXPECT_EQ(offsetof(volid_t, fsname), 64U);
}

template <class List> static void expect_capacity(size_t capacity)
{
	EXPECT_EQ(sizeof(List::item) / sizeof(List::item[0]), capacity);
	EXPECT_EQ(offsetof(List, num), 0U);
	EXPECT_EQ(offsetof(List, num_real), sizeof(int));
	EXPECT_EQ(offsetof(List, lmt), 2 * sizeof(int));
	EXPECT_EQ(offsetof(List, parent), 2 * sizeof(void *));
	using item_t = std::remove_extent_t<decltype(List::item)>;
	EXPECT_EQ(offsetof(item_t, tag), 0U);
	EXPECT_EQ(offsetof(item_t, index), sizeof(int));
	EXPECT_EQ(offsetof(item_t, parent), sizeof(void *));
}

TEST(Def, ListsHaveTheirCapacityAndHeads)
{
	expect_capacity<partlist_t>(32);
	expect_capacity<procblk_devlist_t>(32);
	expect_capacity<procide_devlist_t>(8);
	expect_capacity<procscsi_hostlist_t>(4);
	expect_capacity<procscsi_devlist_t>(32);
	expect_capacity<mtab_mntlist_t>(32);
	expect_capacity<raidtab_devlist_t>(16);
	expect_capacity<raidtab_subdevlist_t>(8);
	expect_capacity<exe_disklist_t>(16);
	expect_capacity<exe_cdromlist_t>(16);
	expect_capacity<exe_vollist_t>(32);
	expect_capacity<exe_partlist_t>(32);
	EXPECT_EQ(offsetof(raidtab_devlist_t, with_faulty), 3 * sizeof(void *));
}

TEST(Def, ConstantTexts)
{
	EXPECT_STREQ(DCHAR_BUF, "/");
	EXPECT_EQ(PDCHAR, DCHAR_BUF);
	EXPECT_EQ(text_of(REDIR_PATH), " >/dev/null 2>&1");
	EXPECT_EQ(PREDIR_PATH, REDIR_PATH);
}

} // namespace
