// SPDX-License-Identifier: Apache-2.0
// The simulated controller as an agent sees it: through the boundary's codes.
#include "simulated.h"

#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_public.h"

#include <string.h>

namespace
{

class Boundary : public Simulator
{
protected:
	int get(UINT code, std::string argument = AAC0)
	{
		IPMICOMMAND cmd = {};
		cmd.nCommand = code;
		cmd.szData = argument.data();
		return GetItemInfo(&cmd, &head_, &count_);
	}
	void release(UINT code)
	{
		IPMICOMMAND cmd = {};
		cmd.nCommand = code;
		EXPECT_EQ(SetItemInfo(&cmd, &head_), 0);
		EXPECT_EQ(head_, nullptr);
	}
	std::string space_of(int at, UINT code = CMD_GET_RAID_SPACE)
	{
		std::string request(sizeof at, '\0');
		memcpy(request.data(), &at, sizeof at);
		const int result = get(code, request + AAC0);
		std::string text = joined({result, count_});
		for (auto *s = static_cast<HWRAID_SPACE_LIST *>(head_); s; s = s->next)
			text += " " + joined({s->nOffset, s->nFreeSpace});
		return text;
	}
	void *head_ = nullptr;
	int count_ = 4711;
};

INSTANTIATE_TEST_SUITE_P(Ways, Boundary, testing::Values(WAYS[0], WAYS[3]),
                         [](const testing::TestParamInfo<way_t> &row) { return row.param.name; });

// Sizes keep the low 32 bits of their bytes: 10 GB, 4 GB and 2 GB come out negative, as 0 and negative.
TEST_P(Boundary, Containers)
{
	ASSERT_EQ(get(CMD_GET_CONTAINERS), 0);
	EXPECT_EQ(count_, 7);
	std::string text;
	for (auto *c = static_cast<HWRAID_LIST *>(head_); c; c = c->next) {
		text += joined({c->nRaidID, c->nDiskNumber, c->nPosition[0], c->nPosition[1], c->nPosition[2],
		                c->nPosition[63], c->RaidType, c->nTotalSize, c->nStripeSize, c->Usage,
		                c->nHotSpare}) +
		        "|" + c->szLabel + "\n";
	}
	EXPECT_EQ(text, "0|2|0|256|-1|-1|1|-2147483648|0|5|1024|system\n"
	                "1|1|68096|-1|-1|-1|4|1610612736|0|9|-1|\n"
	                "2|2|24|25|-1|-1|3|0|65536|5|-1|big data\n"
	                "24|2|512|768|-1|-1|1|-2147483648|0|5|-1|\n"
	                "25|2|65536|65792|-1|-1|1|-2147483648|0|5|-1|\n"
	                "3|3|65536|65792|66048|-1|2|1048576000|32768|4|-1|five\n"
	                "10|4|1792|1792|1792|-1|4|4194304|0|8|-1|quarter\n");
	// The list passed in is gone whatever comes of the query.
	EXPECT_EQ(get(CMD_GET_CONTAINERS, "aac2"), -1);
	EXPECT_EQ(count_, 0);
	EXPECT_EQ(head_, nullptr);
	release(CMD_FREE_CONTAINERS);
}

TEST_P(Boundary, Disks)
{
	ASSERT_EQ(get(CMD_GET_RAID_DISKS), 0);
	EXPECT_EQ(count_, 13);
	int seen = 0;
	for (auto *d = static_cast<HWRAID_DISK_LIST *>(head_); d; d = d->next, seen++) {
		if (d->nPosition != disk_at(0, 5) && d->nPosition != disk_at(0, 6))
			continue;
		const bool shelf = d->nPosition == disk_at(0, 6);
		EXPECT_STREQ(d->szVendor, shelf ? "MAKER" : "ACME");
		EXPECT_STREQ(d->szModel, shelf ? "SHELF" : "EX1016");
		EXPECT_EQ(
			joined({d->DeviceType, d->nBlocks, d->nBytesPerBlock, d->Usage, d->Shared, d->nRate}),
			shelf ? "3|0|0|5|1|0" : "0|33554560|512|1|0|320");
	}
	EXPECT_EQ(seen, 13);
	release(CMD_FREE_RAID_DISKS);
	EXPECT_EQ(get(CMD_GET_RAID_DISKS, "aac9"), -1);
	EXPECT_EQ(count_, 0);
}

TEST_P(Boundary, FreeSpace)
{
	EXPECT_EQ(space_of(disk_at(0, 0)), "0|1 -2147483648|-2147483648");
	// The first list goes before the second is made.
	EXPECT_EQ(space_of(disk_at(1, 2)), "0|2 65536|1073741824 1503238144|-1610612736");
	EXPECT_EQ(space_of(disk_at(0, 5)), "0|0");
	EXPECT_EQ(space_of(disk_at(0, 9)), "-1|0");
	release(CMD_FREE_RAID_SPACE);
}

TEST_P(Boundary, Partitions)
{
	ASSERT_EQ(get(CMD_GET_RAID_PARTITIONS), 0);
	EXPECT_EQ(count_, 14);
	std::string text;
	for (auto *p = static_cast<HWRAID_PARTITION_LIST *>(head_); p; p = p->next) {
		if (p->nPosition == disk_at(1, 1) || p->nPosition == disk_at(0, 0))
			text += joined({p->nPosition, p->nOffset, p->nSize, p->bRaidID, p->RaidType,
			                p->nMultilevelRaidID, p->MultilevelType, p->ReadWriteAttribute}) +
			        "\n";
	}
	// Here nothing wraps.
	EXPECT_EQ(text, "0|65536|10737418240|0|1|0|0|3\n"
	                "65792|65536|2147483648|25|1|2|1|3\n"
	                "65792|2147483648|524288000|3|2|0|0|3\n");
	release(CMD_FREE_RAID_PARTITIONS);
	EXPECT_EQ(get(CMD_GET_RAID_PARTITIONS, "aac3"), -1);
	EXPECT_EQ(count_, 0);
}

TEST_P(Boundary, Controllers)
{
	ASSERT_EQ(get(CMD_GET_CONTROLLERS), 0);
	EXPECT_EQ(count_, 4);
	EXPECT_STREQ(static_cast<aac_controller *>(head_)->Adapter_Name, "aac0");
	fault("exit=1");
	EXPECT_EQ(get(CMD_GET_CONTROLLERS), -1);
	EXPECT_EQ(count_, 0);
	EXPECT_EQ(head_, nullptr);
	release(CMD_FREE_CONTROLLERS);
}

} // namespace
