// SPDX-License-Identifier: Apache-2.0
// Records as they are handed out: one allocation each, nothing left of a query, and no half of one without
// memory.
#include "host.h"
#include "outside.h"
#include "told.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

// A disk with a partition, two ways to one unit with a mapping over them: all kinds of texts and lists.
class Records : public BlockHost
{
protected:
	Records()
	{
		const std::string pci = "devices/pci0000:00/0000:00:08.0/";
		for (const char *number : {"0", "1"}) {
			const std::string host = number;
			const std::string unit = pci + "host" + host + "/rport-" + host + ":0-2/target" +
			                         host + ":0:2/" + host + ":0:2:5";
			const std::string disk = unit + "/block/sd" + (host == "0" ? "a" : "b");
			device(disk, host == "0" ? "8:0" : "8:16", 2048);
			link("sys/" + disk + "/device", "../../../" + host + ":0:2:5");
			put("sys/" + unit + "/vendor", "ACME\n");
			put("sys/" + unit + "/model", "LUN\n");
			put("sys/" + unit + "/state", "running\n");
		}
		device(pci + "host0/rport-0:0-2/target0:0:2/0:0:2:5/block/sda/sda1", "8:1", 1024, "partition",
		       "PARTN=1\n");
		device("devices/virtual/block/dm-0", "253:0", 2048);
		put("sys/devices/virtual/block/dm-0/dm/name", "mpatha\n");
		put("sys/devices/virtual/block/dm-0/dm/uuid", "mpath-1\n");
		link("sys/devices/virtual/block/dm-0/slaves/sda", "x");
		link("sys/devices/virtual/block/dm-0/slaves/sdb", "x");
		udev("8:0", "S:disk/by-id/one\nS:disk/by-id/two\nE:ID_SERIAL_SHORT=1234\n");
		link("dev/disk/by-id/one", "../../sda");
		link("dev/disk/by-id/two", "../../sda");
		put("proc/self/mountinfo", "20 1 8:1 / / rw - ext4 /dev/sda1 rw\n");
		put("proc/swaps", "Filename\n");
		show();
	}

	static int ask(UINT code, void **list, int *count)
	{
		IPMICOMMAND command = {};
		command.nCommand = code;
		return GetItemInfo(&command, list, count);
	}
	static int release(UINT code, void **list)
	{
		IPMICOMMAND command = {};
		command.nCommand = code + 1;
		return SetItemInfo(&command, list);
	}
};

constexpr UINT QUERIES[] = {CMD_GET_BLOCK_DEVICES, CMD_GET_BLOCK_LINKS, CMD_GET_BLOCK_CONTENTS,
                            CMD_GET_BLOCK_MOUNTS, CMD_GET_BLOCK_ARRAYS};

TEST_F(Records, AreOneBlockEachAndNothingElseIsLeft)
{
	for (const UINT query : QUERIES) {
		const long blocks = blocks_held();
		const int counted = memory_counter_block;
		void *list = nullptr;
		int count = 0;
		if (ask(query, &list, &count) != 0)
			continue;
		EXPECT_EQ(blocks_held() - blocks, count) << query;
		EXPECT_EQ(memory_counter_block - counted, count) << query;
		EXPECT_EQ(release(query, &list), 0);
		EXPECT_EQ(list, nullptr);
		EXPECT_EQ(blocks_held(), blocks) << query;
		EXPECT_EQ(memory_counter_block, counted) << query;
	}
	EXPECT_EQ(devices_told().records.size(), 4U);
	EXPECT_EQ(links_told().records.size(), 3U);
}

TEST_F(Records, BeginWithTheirSize)
{
	const Answer<block_device> devices(list_devices);
	for (const block_device *at = devices.first(); at; at = at->next)
		EXPECT_EQ(at->record_size, sizeof *at);
	const block_text *links = devices.named("sda").links;
	ASSERT_NE(links, nullptr);
	EXPECT_EQ(links->record_size, sizeof *links);
	const Answer<block_link> all(list_links);
	for (const block_link *at = all.first(); at; at = at->next)
		EXPECT_EQ(at->record_size, sizeof *at);
}

// Without memory a query fails and leaves nothing; it never hands out a part.
TEST_F(Records, OfAQueryWithoutMemoryThereAreNone)
{
	for (const UINT query : QUERIES) {
		void *list = nullptr;
		int whole = 0;
		if (ask(query, &list, &whole) != 0)
			continue;
		release(query, &list);
		for (const bool from_there_on : {false, true}) {
			for (long nth = 1;; nth++) {
				const long blocks = blocks_held();
				const int counted = memory_counter_block;
				int count = 77;
				refuse_block(nth, from_there_on);
				errno = 0;
				const int result = ask(query, &list, &count);
				const int error = errno;
				refuse_block(0, false);
				if (result != 0) {
					EXPECT_EQ(error, ENOMEM) << query << " " << nth;
					EXPECT_EQ(list, nullptr);
					EXPECT_EQ(count, 0);
				} else {
					EXPECT_EQ(count, whole) << query << " " << nth;
					release(query, &list);
				}
				EXPECT_EQ(blocks_held(), blocks) << query << " " << nth;
				EXPECT_EQ(memory_counter_block, counted) << query << " " << nth;
				if (!was_refused())
					break;
				ASSERT_LT(nth, 1000);
			}
		}
	}
}

TEST_F(Records, ACodeThatIsNoneTouchesNothing)
{
	int nothing = 0;
	void *list = &nothing;
	int count = 77;
	for (const UINT code : {0U, 222101U, 222102U, 222099U, 0xffffffffU}) {
		errno = 0;
		EXPECT_EQ(ask(code, &list, &count), -1) << code;
		EXPECT_EQ(errno, EINVAL);
		EXPECT_EQ(list, &nothing);
		EXPECT_EQ(count, 77);
	}
	EXPECT_EQ(release(CMD_GET_BLOCK_DEVICES - 1, &list), -1);
	EXPECT_EQ(release(CMD_GET_BLOCK_DEVICES + 1, &list), -1);
	EXPECT_EQ(list, &nothing);
	IPMICOMMAND command = {};
	command.nCommand = CMD_GET_BLOCK_DEVICES;
	EXPECT_EQ(GetItemInfo(nullptr, &list, &count), -1);
	EXPECT_EQ(GetItemInfo(&command, nullptr, &count), -1);
	EXPECT_EQ(GetItemInfo(&command, &list, nullptr), -1);
	EXPECT_EQ(SetItemInfo(nullptr, &list), -1);
	EXPECT_EQ(SetItemInfo(&command, nullptr), -1);
	EXPECT_EQ(list, &nothing);
}

TEST_F(Records, AnEmptyListIsReleasedToo)
{
	void *list = nullptr;
	for (const UINT query : QUERIES)
		EXPECT_EQ(release(query, &list), 0);
}

} // namespace
