// SPDX-License-Identifier: Apache-2.0
// The host adapters under /proc/scsi, and what is asked of the registry: attach, detach, shuffle.
#include "host.h"

#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/linux/procscsi.h"
#include "replay/replay.h"

#include <algorithm>

namespace
{

class ScsiHostTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		list = soiled<procscsi_hostlist_t>();
	}
	int parse(filter_func_t filter = nullptr, void *arg = nullptr)
	{
		return parse_procscsi_hostlist(list.get(), filter, arg);
	}
	void adapters(const std::vector<const char *> &paths)
	{
		for (const char *path : paths)
			host.file(std::string("/proc/scsi/") + path, "");
	}
	std::unique_ptr<procscsi_hostlist_t> list;
};

TEST_F(ScsiHostTest, SitsInTheSlotOfItsNumber)
{
	adapters({"sym53c8xx/2", "driver/0"});
	host.file("/proc/scsi/scsi", SCSI_HEADING).file("/proc/scsi/3", "");
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 3, 2, 4);
	EXPECT_EQ(text_of(list->item[0].hostname), "driver");
	EXPECT_EQ(list->item[0].hostindex, 0);
	EXPECT_EQ(text_of(list->item[2].hostname), "sym53c8xx");
	EXPECT_EQ(list->item[2].hostindex, 2);
}

TEST_F(ScsiHostTest, OneDriverMayHaveSeveral)
{
	adapters({"driver/0", "driver/1", "driver/3", "driver/02"});
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 4, 4, 4);
	EXPECT_EQ(list->item[2].hostindex, 2);
}

TEST_F(ScsiHostTest, OnlyNumbersAreHosts)
{
	adapters({"driver/0x", "driver/x1", "driver/-1", "driver/1a", "driver/ 1", "driver/proc"});
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 0, 0, 4);
}

TEST_F(ScsiHostTest, NumberEndsWhereATextDoes)
{
	adapters({"driver/1#x", "driver/2\nx", "driver/3\rx"});
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 4, 3, 4);
}

TEST_F(ScsiHostTest, NumbersBeyondTheListFail)
{
	for (const char *name : {"driver/4", "driver/5", "driver/100"}) {
		host.remove("/proc/scsi");
		adapters({"driver/1", name});
		list = soiled<procscsi_hostlist_t>();
		EXPECT_EQ(parse(), -1) << name;
		expect_shape(*list, 2, 1, 4);
	}
}

TEST_F(ScsiHostTest, NumberTooLongForAnIntIsStoredNowhere)
{
	adapters({"driver/4294967296", "driver/18446744073709551617"});
	parse();
	expect_shape(*list, 0, 0, 4);
}

TEST_F(ScsiHostTest, TakenSlotKeepsTheFirst)
{
	adapters({"bbb/1", "aaa/1", "ccc/2"});
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 3, 2, 4);
	EXPECT_EQ(text_of(list->item[1].hostname), "aaa");
	EXPECT_EQ(text_of(list->item[2].hostname), "ccc");
}

TEST_F(ScsiHostTest, NoDirectoryAndNoDrivers)
{
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 0, 0, 4);
	host.directory("/proc/scsi/driver");
	list = soiled<procscsi_hostlist_t>();
	EXPECT_EQ(parse(), 0);
	expect_shape(*list, 0, 0, 4);
}

TEST_F(ScsiHostTest, DriverThatCannotBeListedIsTold)
{
	adapters({"driver/1"});
	replay_count_calls();
	ASSERT_EQ(parse(), 0);
	// The last outside call is the listing of the only driver.
	replay_fail_call(replay_calls(), 0);
	list = soiled<procscsi_hostlist_t>();
	EXPECT_EQ(parse(), -1);
	expect_shape(*list, 0, 0, 4);
}

TEST_F(ScsiHostTest, FilterDropsBeforeASlotIsSought)
{
	adapters({"driver/1", "driver/5"});
	int highest = 3;
	const filter_func_t low = [](const void *item, const void *arg) -> int {
		const auto *candidate = static_cast<const procscsi_host_t *>(item);
		EXPECT_STREQ(candidate->hostname, "driver");
		return candidate->hostindex <= *static_cast<const int *>(arg);
	};
	EXPECT_EQ(parse(low, &highest), 0);
	expect_shape(*list, 2, 1, 4);
}

TEST_F(ScsiHostTest, DisplayStopsAtTheFirstFreeSlot)
{
	adapters({"driver/0", "driver/1", "other/3"});
	ASSERT_EQ(parse(), 0);
	const unsigned self = low32(list.get());
	EXPECT_EQ(stderr_of([&] { display_procscsi_hostlist(list.get()); }),
	          dump_head(*list) + printed("[*0 1  %08x*] 0 driver\n[*1 1  %08x*] 1 driver\n", self, self));
	list->item[1].tag = 0;
	EXPECT_EQ(stderr_of([&] { display_procscsi_hostlist(list.get()); }),
	          dump_head(*list) + printed("[*0 1  %08x*] 0 driver\n", self));
}

TEST_F(ScsiHostTest, DisplayOfAFullList)
{
	adapters({"d/0", "d/1", "d/2", "d/3"});
	ASSERT_EQ(parse(), 0);
	EXPECT_EQ(lines_of(stderr_of([&] { display_procscsi_hostlist(list.get()); })).size(), 6U);
}

class RegistryTest : public HostTest
{
protected:
	void SetUp() override
	{
		HostTest::SetUp();
		host.file("/proc/scsi/scsi", SCSI_HEADING);
		list_clear(&list);
	}
	void attach(int slot, uint8_t id)
	{
		procscsi_dev_t dev = {};
		dev.idlun = {0, 1, id, 2};
		ASSERT_EQ(list_add(&list, slot, dev), 0);
	}
	procscsi_devlist_t list;
};

std::string logged(const char *verb, const std::string &address)
{
	return std::string("write /proc/scsi/scsi \"scsi ") + verb + "-single-device " + address + "\"";
}

TEST_F(RegistryTest, AttachAndDetachOneDevice)
{
	const idlun_t idlun = {1, 2, 3, 255};
	EXPECT_EQ(procscsi_dev_add(&idlun), 0);
	EXPECT_EQ(procscsi_dev_remove(&idlun), 0);
	EXPECT_THAT(host.log(),
	            ::testing::ElementsAre(logged("add", "1 2 3 255"), logged("remove", "1 2 3 255")));
}

TEST_F(RegistryTest, OpenOrWriteFails)
{
	const idlun_t idlun = {0, 0, 1, 0};
	for (const long nth : {1L, 2L}) {
		replay_fail_call(nth, 0);
		EXPECT_EQ(procscsi_dev_add(&idlun), -1) << nth;
		replay_fail_call(nth, 0);
		EXPECT_EQ(procscsi_dev_remove(&idlun), -1) << nth;
	}
	replay_fail_call(0, 0);
	EXPECT_THAT(host.log(), ::testing::IsEmpty());
}

// The log's first half must be the detaching of these ids in this order; returns the ids of the second half.
std::vector<int> expect_shuffled(const std::vector<std::string> &log, const std::vector<int> &ids)
{
	EXPECT_EQ(log.size(), 2 * ids.size());
	if (log.size() != 2 * ids.size())
		return {};
	std::vector<int> attached;
	for (size_t i = 0; i < ids.size(); i++) {
		EXPECT_EQ(log[i], logged("remove", "0 1 " + number(ids[i]) + " 2"));
		for (const int id : ids)
			if (log[ids.size() + i] == logged("add", "0 1 " + number(id) + " 2"))
				attached.push_back(id);
	}
	EXPECT_THAT(attached, ::testing::UnorderedElementsAreArray(ids));
	return attached;
}

TEST_F(RegistryTest, ShuffleDetachesInSlotOrderAndAttachesEachOnce)
{
	std::vector<int> ids;
	for (int slot = 0; slot < 32; slot++) {
		attach(slot, static_cast<uint8_t>(100 - slot));
		ids.push_back(100 - slot);
	}
	const procscsi_devlist_t before = list;
	scsi_shuffle(&list);
	// That 32 devices keep their order has a chance of 1 in 32!.
	EXPECT_NE(expect_shuffled(host.log(), ids), ids);
	EXPECT_EQ(memcmp(&list, &before, sizeof list), 0);
}

TEST_F(RegistryTest, ShufflePassesOverHoles)
{
	attach(31, 9);
	attach(5, 3);
	attach(0, 7);
	scsi_shuffle(&list);
	expect_shuffled(host.log(), {7, 3, 9});
}

TEST_F(RegistryTest, ShuffleOfNothingWritesNothing)
{
	scsi_shuffle(&list);
	scsi_shuffle(nullptr);
	host.remove("/proc/scsi/scsi");
	scsi_shuffle(nullptr);
	EXPECT_THAT(host.log(), ::testing::IsEmpty());
}

TEST_F(RegistryTest, ShuffleWithoutAListTakesAllThatAreAttached)
{
	std::string table = SCSI_HEADING;
	for (int id = 1; id <= 3; id++) {
		std::string block = scsi_block(id);
		block.replace(block.find("Channel: 00"), 11, "Channel: 01");
		block.replace(block.find("Lun: 00"), 7, "Lun: 02");
		table += block;
	}
	host.file("/proc/scsi/scsi", table);
	scsi_shuffle(nullptr);
	expect_shuffled(host.log(), {1, 2, 3});
}

TEST_F(RegistryTest, ShuffleGoesOnAfterAFailure)
{
	for (int slot = 0; slot < 3; slot++)
		attach(slot, static_cast<uint8_t>(slot));
	replay_fail_call(1, 0);
	scsi_shuffle(&list);
	const std::vector<std::string> log = host.log();
	// The first detaching is lost, no other command is.
	ASSERT_EQ(log.size(), 5U);
	EXPECT_EQ(log[0], logged("remove", "0 1 1 2"));
	EXPECT_EQ(log[1], logged("remove", "0 1 2 2"));
	EXPECT_EQ(std::count_if(log.begin(), log.end(),
	                        [](const std::string &line) { return line.find("add") != line.npos; }),
	          3);
}

} // namespace
