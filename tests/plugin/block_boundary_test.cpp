// SPDX-License-Identifier: Apache-2.0
// The boundary of today's library: codes, arguments, ownership, and what the host process must lend.
#include "plugin.h"

#include "block/host.h"

#include <algorithm>
#include <errno.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

char untouched;

const std::vector<UINT> QUERIES = {222100, 223100, 224100, 225100, 226100};

bool is_query(UINT code)
{
	return std::find(QUERIES.begin(), QUERIES.end(), code) != QUERIES.end();
}

// A disk with a partition, a mapping on that, and what is mounted.
class BlockBoundary : public BlockHost
{
protected:
	void SetUp() override
	{
		const std::string disk =
			"devices/pci0000:00/0000:00:1f.2/ata1/host0/target0:0:0/0:0:0:0/block/sda";
		device(disk, "8:0", 4096);
		device(disk + "/sda1", "8:1", 2048, "partition", "PARTN=1\n");
		device("devices/virtual/block/dm-0", "253:0", 2048);
		put("sys/devices/virtual/block/dm-0/dm/name", "root\n");
		put("sys/devices/virtual/block/dm-0/dm/uuid", "LVM-root\n");
		put("sys/devices/virtual/block/dm-0/dm/suspended", "0\n");
		link("sys/devices/virtual/block/dm-0/slaves/sda1", "../../../../" + disk + "/sda1");
		udev("8:0", "S:disk/by-id/ata-ACME_DISK\nS:disk/by-path/pci-0000:00:1f.2-ata-1\n");
		link("dev/disk/by-id/ata-ACME_DISK", "../../sda");
		link("dev/disk/by-path/pci-0000:00:1f.2-ata-1", "../../sda");
		put("proc/self/mountinfo", "22 1 253:0 / / rw - ext4 /dev/mapper/root rw\n");
		put("proc/swaps", "Filename Type Size Used Priority\n");
		show();
	}
	void TearDown() override { EXPECT_EQ(*block_plugin().live, 0); }
};

void expect_both_refused(UINT code)
{
	void *head = &untouched;
	int count = 4711;
	errno = 0;
	if (!is_query(code)) {
		ASSERT_EQ(block_plugin().query(code, &head, &count), -1) << code;
	}
	if (!is_query(code - 1)) {
		ASSERT_EQ(block_plugin().free_list(code, &head), -1) << code;
	}
	ASSERT_EQ(errno, EINVAL) << code;
	ASSERT_EQ(head, &untouched) << code;
	ASSERT_EQ(count, 4711) << code;
}

TEST_F(BlockBoundary, EveryOtherCodeIsRefusedAndTouchesNothing)
{
	replay_count_calls();
	for (UINT code = 0; code <= 300000 && !HasFatalFailure(); code++)
		expect_both_refused(code);
	for (const UINT code : {322100U, 0x7fffffffU, 0x80000000U, 0xffffffffU, 0x80000000U + 222100U})
		expect_both_refused(code);
	EXPECT_EQ(replay_calls(), 0);
}

TEST_F(BlockBoundary, NullArgumentsAreRefusedAndTouchNothing)
{
	IPMICOMMAND cmd = {};
	void *head = &untouched;
	int count = 4711;
	replay_count_calls();
	for (const UINT code : {222100U, 223100U, 224100U, 225100U, 226100U, 1U}) {
		cmd.nCommand = code;
		for (const int result :
		     {block_plugin().get(nullptr, &head, &count), block_plugin().get(&cmd, nullptr, &count),
		      block_plugin().get(&cmd, &head, nullptr)})
			EXPECT_EQ(result, -1);
		cmd.nCommand = code + 1;
		EXPECT_EQ(block_plugin().release(nullptr, &head), -1);
		EXPECT_EQ(block_plugin().release(&cmd, nullptr), -1);
		EXPECT_EQ(errno, EINVAL);
	}
	EXPECT_EQ(head, &untouched);
	EXPECT_EQ(count, 4711);
	EXPECT_EQ(replay_calls(), 0);
}

TEST_F(BlockBoundary, OnlyTheCodeOfTheRequestIsRead)
{
	IPMICOMMAND cmd;
	memset(&cmd, 0xa5, sizeof cmd);
	cmd.nCommand = 222100;
	const IPMICOMMAND before = cmd;
	void *head = nullptr;
	int count = 0;
	EXPECT_EQ(block_plugin().get(&cmd, &head, &count), 0);
	EXPECT_EQ(count, 3);
	EXPECT_EQ(memcmp(&cmd, &before, sizeof cmd), 0);
	EXPECT_EQ(block_plugin().free_list(222101, &head), 0);
}

// What is in the caller's place before is no list to it.
TEST_F(BlockBoundary, AListThatIsPassedInIsNeitherReadNorReleased)
{
	void *head = &untouched;
	int count = 4711;
	ASSERT_EQ(block_plugin().query(222100, &head, &count), 0);
	EXPECT_NE(head, &untouched);
	EXPECT_EQ(block_plugin().free_list(222101, &head), 0);
}

TEST_F(BlockBoundary, WithoutTheDevicesOfTheKernelAQueryFailsAndHandsOutNothing)
{
	show_host("nothing");
	for (const UINT code : {222100U, 223100U}) {
		void *head = &untouched;
		int count = 4711;
		errno = 0;
		EXPECT_EQ(block_plugin().query(code, &head, &count), -1);
		EXPECT_EQ(errno, ENOENT);
		EXPECT_EQ(head, nullptr);
		EXPECT_EQ(count, 0);
	}
}

TEST_F(BlockBoundary, RecordsCountButNotThoseInside)
{
	void *devices = nullptr;
	void *links = nullptr;
	int count = 0;
	ASSERT_EQ(block_plugin().query(222100, &devices, &count), 0);
	EXPECT_EQ(count, 3);
	EXPECT_EQ(*block_plugin().live, 3);
	const auto *last = static_cast<const block_device *>(devices)->next->next;
	const auto *disk = static_cast<const block_device *>(devices)->next;
	EXPECT_STREQ(last->name, "sda1");
	ASSERT_STREQ(disk->name, "sda");
	ASSERT_NE(disk->links, nullptr);
	EXPECT_NE(disk->links->next, nullptr);
	ASSERT_EQ(block_plugin().query(223100, &links, &count), 0);
	EXPECT_EQ(count, 2);
	EXPECT_EQ(*block_plugin().live, 5);
	EXPECT_EQ(block_plugin().free_list(222101, &devices), 0);
	EXPECT_EQ(*block_plugin().live, 2);
	EXPECT_EQ(block_plugin().free_list(223101, &links), 0);
}

class EveryBlockQuery : public BlockBoundary, public testing::WithParamInterface<UINT>
{
};

TEST_P(EveryBlockQuery, CountsLinksAndReleasesItsRecords)
{
	void *head = nullptr;
	int count = -5;
	ASSERT_EQ(block_plugin().query(GetParam(), &head, &count), 0);
	int linked = 0;
	for (auto *record = static_cast<const block_text *>(head); record; record = record->next) {
		EXPECT_GT(record->record_size, sizeof(block_text));
		linked++;
	}
	EXPECT_EQ(linked, count);
	EXPECT_EQ(*block_plugin().live, count);
	EXPECT_EQ(block_plugin().free_list(GetParam() + 1, &head), 0);
	EXPECT_EQ(head, nullptr);
	EXPECT_EQ(*block_plugin().live, 0);
	EXPECT_EQ(block_plugin().free_list(GetParam() + 1, &head), 0) << "an empty list";
	EXPECT_EQ(block_plugin().free_list(GetParam() + 1, &head), 0) << "and again";
	EXPECT_EQ(head, nullptr);
	EXPECT_EQ(*block_plugin().live, 0);
}

int ask(UINT code)
{
	void *head = nullptr;
	int count = -1;
	const int result = block_plugin().query(code, &head, &count);
	block_plugin().free_list(code + 1, &head);
	return result == 0 ? count : -1;
}

struct Question {
	UINT code;
	int answer;
};

void *ask_on_thread(void *argument)
{
	auto *question = static_cast<Question *>(argument);
	question->answer = ask(question->code);
	return nullptr;
}

#ifdef __SANITIZE_ADDRESS__
constexpr size_t TIMES = 4; // what a sanitizer puts around every local
#else
constexpr size_t TIMES = 1;
#endif

TEST_P(EveryBlockQuery, RunsOnAThreadWithALittleStack)
{
	for (const size_t kib : {size_t{2048}, size_t{256}}) {
		pthread_attr_t attributes;
		pthread_t thread;
		Question question = {GetParam(), -1};
		ASSERT_EQ(pthread_attr_init(&attributes), 0);
		ASSERT_EQ(pthread_attr_setstacksize(&attributes, TIMES * (kib << 10)), 0);
		ASSERT_EQ(pthread_create(&thread, &attributes, ask_on_thread, &question), 0);
		ASSERT_EQ(pthread_join(thread, nullptr), 0);
		pthread_attr_destroy(&attributes);
		EXPECT_EQ(question.answer, ask(GetParam())) << kib;
	}
}

TEST_P(EveryBlockQuery, AnswersManyThreadsAtOnce)
{
	const int expected = ask(GetParam());
	std::vector<int> wrong(4);
	std::vector<std::thread> threads;
	for (int &one : wrong) {
		threads.emplace_back([&one, expected] {
			for (int i = 0; i < 100; i++)
				one += ask(GetParam()) != expected;
		});
	}
	for (std::thread &thread : threads)
		thread.join();
	EXPECT_EQ(wrong, std::vector<int>(4, 0));
}

INSTANTIATE_TEST_SUITE_P(Queries, EveryBlockQuery, testing::ValuesIn(QUERIES));

} // namespace
