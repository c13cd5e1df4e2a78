// SPDX-License-Identifier: Apache-2.0
#include "base/record_list.h"

#include <gmock/gmock.h>
#include <vector>

struct counted_t {
	explicit counted_t(int value) : number(value) { alive++; }
	~counted_t() { alive--; }
	counted_t(const counted_t &) = delete;
	counted_t &operator=(const counted_t &) = delete;

	int number;
	counted_t *next = nullptr;
	static int alive;
};
int counted_t::alive;

static std::vector<int> numbers(const counted_t *head)
{
	std::vector<int> found;
	for (; head; head = head->next)
		found.push_back(head->number);
	return found;
}

TEST(RecordList, LinksNewRecordsInOrder)
{
	counted_t *head = nullptr;
	RecordList<counted_t> list(&head);
	EXPECT_EQ(list.count(), 0);
	for (int i = 1; i <= 3; i++) {
		EXPECT_EQ(list.following(), nullptr);
		list.append(new counted_t(i));
	}
	EXPECT_EQ(list.count(), 3);
	EXPECT_THAT(numbers(head), testing::ElementsAre(1, 2, 3));
	release_records(head);
}

TEST(RecordList, GoesOverAnOlderList)
{
	counted_t *old = nullptr;
	RecordList<counted_t> first(&old);
	for (int i = 1; i <= 3; i++)
		first.append(new counted_t(i));

	void *head = old;
	RecordList<counted_t, void *> list(&head);
	for (int i = 11; i <= 12; i++) {
		counted_t *record = list.following();
		ASSERT_NE(record, nullptr);
		record->number = i;
		list.append(record);
	}
	EXPECT_EQ(list.count(), 2);
	EXPECT_EQ(head, old);
	EXPECT_THAT(numbers(old), testing::ElementsAre(11, 12, 3));
	release_records(old);
}

TEST(RecordList, AnUntypedHeadTakesTheFirstRecord)
{
	void *head = nullptr;
	RecordList<counted_t, void *> list(&head);
	auto *record = new counted_t(7);
	EXPECT_EQ(list.append(record), record);
	EXPECT_EQ(head, record);
	release_records(record);
}

TEST(RecordList, CountsAndReleasesAllRecords)
{
	EXPECT_EQ(count_records<counted_t>(nullptr), 0);
	EXPECT_EQ(release_records<counted_t>(nullptr), 0);
	counted_t *head = nullptr;
	RecordList<counted_t> list(&head);
	for (int i = 0; i < 5; i++)
		list.append(new counted_t(i));
	EXPECT_EQ(count_records(head), 5);
	EXPECT_EQ(counted_t::alive, 5);
	EXPECT_EQ(release_records(head), 5);
	EXPECT_EQ(counted_t::alive, 0);
}
