// SPDX-License-Identifier: Apache-2.0
// The bounded list: slots, holes, counts, filters, and the heads of its dump.
#include "host.h"

#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/linux/procblk.h"

namespace
{

struct thing_t {
	int tag;
	int index;
	void *parent;
	int value;
};

struct thinglist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	thing_t item[4];
};

thing_t thing(int value)
{
	return thing_t{0, 0, nullptr, value};
}

class ListTest : public ::testing::Test
{
protected:
	void SetUp() override { list_clear(&list); }
	int add(int slot, int value) { return list_add(&list, slot, thing(value)); }
	thinglist_t list;
};

TEST(ListClear, ZeroesAllAndSetsTheCapacity)
{
	const auto list = soiled<thinglist_t>();
	list_clear(list.get());
	expect_shape(*list, 0, 0, 4);
}

TEST_F(ListTest, AddsBehindTheHighestSlot)
{
	EXPECT_EQ(add(list.num, 10), 0);
	EXPECT_EQ(add(list.num, 11), 0);
	expect_shape(list, 2, 2, 4);
	EXPECT_EQ(list.item[0].value, 10);
	EXPECT_EQ(list.item[1].value, 11);
}

TEST_F(ListTest, HolesShowInTheCounts)
{
	EXPECT_EQ(add(2, 12), 0);
	expect_shape(list, 3, 1, 4);
	EXPECT_EQ(add(0, 10), 0);
	expect_shape(list, 3, 2, 4);
	EXPECT_EQ(add(list.num, 13), 0);
	expect_shape(list, 4, 3, 4);
	EXPECT_EQ(list.item[3].value, 13);
	EXPECT_EQ(list.item[1].tag, 0);
}

TEST_F(ListTest, FirstFreeSlotFillsTheHole)
{
	EXPECT_EQ(add(0, 10), 0);
	EXPECT_EQ(add(2, 12), 0);
	EXPECT_EQ(list_first_free(&list), 1);
	EXPECT_EQ(add(LIST_FIRST_FREE, 11), 0);
	EXPECT_EQ(list.item[1].value, 11);
	expect_shape(list, 3, 3, 4);
}

TEST_F(ListTest, TakenSlotRefuses)
{
	EXPECT_EQ(add(1, 11), 0);
	EXPECT_EQ(add(1, 99), -1);
	EXPECT_EQ(list.item[1].value, 11);
	expect_shape(list, 2, 1, 4);
}

TEST_F(ListTest, SlotOutsideTheListRefuses)
{
	for (const int slot : {4, 5, 1000, -2, -1000})
		EXPECT_EQ(add(slot, 99), -1) << slot;
	expect_shape(list, 0, 0, 4);
}

TEST_F(ListTest, FullListRefusesAndKeepsWhatItHas)
{
	for (int i = 0; i < 4; i++)
		EXPECT_EQ(add(list.num, 10 + i), 0);
	EXPECT_EQ(add(list.num, 99), -1);
	EXPECT_EQ(add(LIST_FIRST_FREE, 99), -1);
	expect_shape(list, 4, 4, 4);
	for (int i = 0; i < 4; i++)
		EXPECT_EQ(list.item[i].value, 10 + i);
}

TEST_F(ListTest, LimitBelowTheArrayHolds)
{
	list.lmt = 1;
	EXPECT_EQ(add(LIST_FIRST_FREE, 10), 0);
	EXPECT_EQ(add(LIST_FIRST_FREE, 11), -1);
	EXPECT_EQ(add(1, 11), -1);
}

TEST_F(ListTest, CandidateHeadIsReplaced)
{
	const thing_t candidate = {7, 9, &list, 5};
	EXPECT_EQ(list_add(&list, 1, candidate), 0);
	expect_shape(list, 2, 1, 4);
}

TEST_F(ListTest, RenumberSetsCountsAndHeads)
{
	list.num = 99;
	list.num_real = 99;
	list.item[1].tag = -3;
	list.item[3].tag = 5;
	list_renumber(&list);
	expect_shape(list, 4, 2, 4);
}

TEST_F(ListTest, FailedAddRenumbersAsWell)
{
	list.item[1].tag = 5;
	EXPECT_EQ(add(1, 99), -1);
	expect_shape(list, 2, 1, 4);
}

TEST_F(ListTest, LiveItemsSkipTheHoles)
{
	std::vector<int> values;
	for (const thing_t &item : live_items(list))
		values.push_back(item.value);
	EXPECT_THAT(values, ::testing::IsEmpty());
	add(1, 11);
	add(3, 13);
	for (const thing_t &item : live_items(list))
		values.push_back(item.value);
	EXPECT_THAT(values, ::testing::ElementsAre(11, 13));
}

TEST(Keeps, WithoutAFilterEverything)
{
	const thing_t candidate = thing(1);
	EXPECT_TRUE(keeps(nullptr, &candidate, nullptr));
}

TEST(Keeps, WhatTheFilterAnswersAnythingBut0To)
{
	const thing_t candidate = thing(1);
	for (const int answer : {1, 2, -1, 0}) {
		filter_calls_t calls = {answer, 0};
		EXPECT_EQ(keeps(counting_filter, &candidate, &calls), answer != 0) << answer;
		EXPECT_EQ(calls.calls, 1);
	}
}

TEST(Keeps, FilterSeesTheCandidateItself)
{
	const thing_t candidate = thing(1);
	const filter_func_t same = [](const void *item, const void *arg) { return item == arg ? 1 : 0; };
	EXPECT_TRUE(keeps(same, &candidate, &candidate));
	EXPECT_FALSE(keeps(same, &candidate, nullptr));
}

TEST_F(ListTest, DumpHeads)
{
	list.parent = &list.item[2];
	add(1, 11);
	EXPECT_EQ(stderr_of([&] { dump_list_head(&list); }), dump_head(list));
	EXPECT_EQ(stderr_of([&] { dump_item_head(list.item[1]); }), printed("[*1 1  %08x*] ", low32(&list)));
	EXPECT_EQ(stderr_of([&] { dump_item_head(12, 345, nullptr); }), "[*12 345 00000000*] ");
}

TEST(ListDump, ShowsTheLow32BitsOfAddresses)
{
	const auto *parent = reinterpret_cast<const void *>(0x7fff00000abcUL);
	const auto *self = reinterpret_cast<const void *>(0x1280000001UL);
	EXPECT_EQ(stderr_of([&] { dump_list_head(3, 2, 32, parent, self); }),
	          std::string(58, '*') + "\nnum=3, num_real=2, lmt=32, parent=00000abc, this=80000001\n");
}

// A list that somebody has filled by hand, heads and all left out.
TEST(LiveItems, AreThoseOfTheArray)
{
	auto list = std::make_unique<procblk_devlist_t>();
	list->item[1].tag = 1;
	list->item[31].tag = 1;
	for (const int lmt : {0, 32, 4000}) {
		list->lmt = lmt;
		std::vector<const procblk_dev_t *> seen;
		for (const procblk_dev_t &dev : live_items(*list))
			seen.push_back(&dev);
		EXPECT_THAT(seen, ::testing::ElementsAre(&list->item[1], &list->item[31])) << lmt;
	}
}

} // namespace
