// SPDX-License-Identifier: Apache-2.0
// A table whose reading fails half-way is not a table that ends there.
#include "host.h"

#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/linux/procblk.h"
#include "hdd/sal/src/linux/procide.h"
#include "hdd/sal/src/linux/procscsi.h"
#include "replay/replay.h"

#include <errno.h>

namespace
{

using ReadErrorTest = HostTest;

struct partial_t {
	int reads;
};

// Gives half a line, and then the error.
ssize_t read_half_a_line(void *cookie, char *buffer, size_t)
{
	if (static_cast<partial_t *>(cookie)->reads++ == 0) {
		memcpy(buffer, "half", 4);
		return 4;
	}
	errno = EIO;
	return -1;
}

TEST_F(ReadErrorTest, HalfALineIsNoLine)
{
	partial_t partial = {0};
	const Stream fs(fopencookie(&partial, "r", {read_half_a_line, nullptr, nullptr, nullptr}));
	line_t line;
	EXPECT_EQ(fsread_line(fs.get(), line), -1);
	EXPECT_EQ(text_of(line), "");
	EXPECT_TRUE(fs.failed());
}

// A directory can be opened as a file, but not read.
TEST_F(ReadErrorTest, IdentifyData)
{
	host.ide_drive("hda", "disk").ide_drive("hdb", "disk");
	host.remove("/proc/ide/hda/identify").directory("/proc/ide/hda/identify");
	host.show();
	auto dev = soiled<procide_dev_t>();
	EXPECT_EQ(parse_procide_dev(dev.get(), nullptr, nullptr, "hda"), -1);
	EXPECT_TRUE(is_zero(*dev));
	auto list = soiled<procide_devlist_t>();
	EXPECT_EQ(parse_procide_devlist(list.get(), nullptr, nullptr), -1);
	expect_shape(*list, 1, 1, 8);
	EXPECT_EQ(text_of(list->item[0].name), "hdb");
}

TEST_F(ReadErrorTest, BlockDeviceTable)
{
	host.directory("/proc/partitions");
	host.show();
	auto list = soiled<procblk_devlist_t>();
	EXPECT_EQ(parse_procblk_devlist(list.get(), nullptr, nullptr), -1);
	expect_shape(*list, 0, 0, 32);
}

// The descriptor, the stream, the heading, the blank line, the first device: then the sixth call fails.
TEST_F(ReadErrorTest, WhatWasReadBeforeIsKept)
{
	host.partitions("   8  0  100 sda\n   8  16  100 sdb\n");
	host.show();
	auto list = soiled<procblk_devlist_t>();
	replay_fail_call(6, 0);
	EXPECT_EQ(parse_procblk_devlist(list.get(), nullptr, nullptr), -1);
	replay_fail_call(0, 0);
	expect_shape(*list, 1, 1, 32);
	EXPECT_EQ(text_of(list->item[0].name), "sda");
}

TEST_F(ReadErrorTest, ScsiTable)
{
	host.directory("/proc/scsi/scsi");
	host.show();
	auto list = soiled<procscsi_devlist_t>();
	EXPECT_EQ(parse_procscsi_devlist(list.get(), nullptr, nullptr), -1);
	expect_shape(*list, 0, 0, 32);
}

} // namespace
