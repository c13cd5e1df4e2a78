// SPDX-License-Identifier: Apache-2.0
// The boundary of the library: codes, arguments, ownership, and what the host process must lend.
#include "plugin.h"

#include "replay/replay.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <string.h>
#include <string>

static char untouched;

class Boundary : public testing::Test
{
protected:
	void SetUp() override { show_host("sixteen-disks"); }
	void TearDown() override
	{
		EXPECT_EQ(*plugin().live_local, 0);
		EXPECT_EQ(*plugin().live_hardware, 0);
	}
};

class UnknownCode : public testing::TestWithParam<UINT>
{
};

TEST_P(UnknownCode, IsRefusedAndTouchesNothing)
{
	void *head = &untouched;
	int count = 4711;
	EXPECT_EQ(plugin().query(GetParam(), &head, &count), -1);
	EXPECT_EQ(head, &untouched);
	EXPECT_EQ(count, 4711);
}

INSTANTIATE_TEST_SUITE_P(Queries, UnknownCode,
                         testing::Values(0U, 1U, 122099U, 122101U, 122102U, 123101U, 124101U, 125101U,
                                         126101U, 127101U, 128101U, 129101U, 130100U, 0xffffffffU));

class UnknownRelease : public testing::TestWithParam<UINT>
{
};

TEST_P(UnknownRelease, IsRefusedAndFreesNothing)
{
	void *head = &untouched;
	EXPECT_EQ(plugin().free_list(GetParam(), &head), -1);
	EXPECT_EQ(head, &untouched);
}

INSTANTIATE_TEST_SUITE_P(Releases, UnknownRelease,
                         testing::Values(0U, 122100U, 122102U, 123100U, 124100U, 125100U, 126100U, 127100U,
                                         128100U, 129100U, 0xffffffffU));

// Today's hosts have a library of their own.
TEST_F(Boundary, TheCodesOfTheOtherLibraryAreUnknown)
{
	void *head = &untouched;
	int count = 4711;
	replay_count_calls();
	for (UINT code = 222100; code <= 226101; code++) {
		ASSERT_EQ(plugin().query(code, &head, &count), -1) << code;
		ASSERT_EQ(plugin().free_list(code, &head), -1) << code;
	}
	EXPECT_EQ(head, &untouched);
	EXPECT_EQ(count, 4711);
	EXPECT_EQ(replay_calls(), 0);
}

TEST_F(Boundary, NullArgumentsAreRefused)
{
	IPMICOMMAND cmd = {};
	void *head = nullptr;
	int count = 4711;
	for (const UINT code : {122100U, 123100U, 124100U, 1U}) {
		cmd.nCommand = code;
		EXPECT_EQ(plugin().get(nullptr, &head, &count), -1);
		EXPECT_EQ(plugin().get(&cmd, nullptr, &count), -1);
		EXPECT_EQ(plugin().get(&cmd, &head, nullptr), -1);
	}
	EXPECT_EQ(head, nullptr);
	EXPECT_EQ(count, 4711);
	cmd.nCommand = 122101;
	EXPECT_EQ(plugin().release(nullptr, &head), -1);
	EXPECT_EQ(plugin().release(&cmd, nullptr), -1);
}

TEST_F(Boundary, OnlyTheCodeOfTheRequestIsRead)
{
	IPMICOMMAND cmd;
	memset(&cmd, 0xa5, sizeof cmd);
	cmd.nCommand = 124100;
	const IPMICOMMAND before = cmd;
	void *head = nullptr;
	int count = 0;
	EXPECT_EQ(plugin().get(&cmd, &head, &count), 0);
	EXPECT_EQ(count, 1);
	EXPECT_EQ(memcmp(&cmd, &before, sizeof cmd), 0);
	EXPECT_EQ(plugin().free_list(124101, &head), 0);
}

struct Kind {
	UINT code;
	int records; // of the host with sixteen disks
	size_t next; // offset of the link
};

static std::ostream &operator<<(std::ostream &out, const Kind &kind)
{
	return out << kind.code;
}

class EveryKind : public testing::TestWithParam<Kind>
{
protected:
	void SetUp() override { show_host("sixteen-disks"); }

	static int linked(const void *head, size_t next)
	{
		int records = 0;
		for (; head; records++)
			memcpy(&head, static_cast<const char *>(head) + next, sizeof head);
		return records;
	}
};

TEST_P(EveryKind, IsCountedLinkedAndReleased)
{
	const Kind kind = GetParam();
	void *head = nullptr;
	int count = -5;
	ASSERT_EQ(plugin().query(kind.code, &head, &count), 0);
	EXPECT_EQ(count, kind.records);
	EXPECT_EQ(linked(head, kind.next), kind.records);
	EXPECT_EQ(*plugin().live_local, kind.records);
	EXPECT_EQ(plugin().free_list(kind.code + 1, &head), 0);
	EXPECT_EQ(head, nullptr);
	EXPECT_EQ(*plugin().live_local, 0);
	EXPECT_EQ(plugin().free_list(kind.code + 1, &head), 0) << "an empty list";
	EXPECT_EQ(*plugin().live_hardware, 0);
}

TEST_P(EveryKind, RefillsTheRecordsOfAnEarlierAnswer)
{
	const Kind kind = GetParam();
	void *head = nullptr;
	int count = 0;
	ASSERT_EQ(plugin().query(kind.code, &head, &count), 0);
	void *const first = head;
	show_host("nothing");
	ASSERT_EQ(plugin().query(kind.code, &head, &count), 0);
	EXPECT_EQ(count, 0);
	EXPECT_EQ(head, first) << "nothing was written: the old list stays";
	EXPECT_EQ(linked(head, kind.next), kind.records);

	show_host("sixteen-disks");
	ASSERT_EQ(plugin().query(kind.code, &head, &count), 0);
	EXPECT_EQ(count, kind.records);
	EXPECT_EQ(head, first);
	EXPECT_EQ(*plugin().live_local, kind.records) << "no record was made anew";
	EXPECT_EQ(plugin().free_list(kind.code + 1, &head), 0);
	EXPECT_EQ(*plugin().live_local, 0);
}

static void *query_on_thread(void *argument)
{
	const Kind &kind = *static_cast<const Kind *>(argument);
	void *head = nullptr;
	int count = 0;
	const int result = plugin().query(kind.code, &head, &count);
	plugin().free_list(kind.code + 1, &head);
	return result == 0 && count == kind.records ? argument : nullptr;
}

TEST_P(EveryKind, RunsOnAThreadWithTwoMegabytesOfStack)
{
	pthread_attr_t attributes;
	pthread_t thread;
	Kind kind = GetParam();
	void *good = nullptr;
	ASSERT_EQ(pthread_attr_init(&attributes), 0);
	ASSERT_EQ(pthread_attr_setstacksize(&attributes, 2 << 20), 0);
	ASSERT_EQ(pthread_create(&thread, &attributes, query_on_thread, &kind), 0);
	ASSERT_EQ(pthread_join(thread, &good), 0);
	pthread_attr_destroy(&attributes);
	EXPECT_EQ(good, &kind);
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind,
                         testing::Values(Kind{122100, 16, offsetof(STORAGE_DISK_LIST, next)},
                                         Kind{123100, 38, offsetof(STORAGE_PART_LIST, next)},
                                         Kind{124100, 1, offsetof(STORAGE_CDROM_LIST, next)}));

TEST_F(Boundary, ShellsAreStartedOnlyForThePipe)
{
	const struct {
		UINT code;
		long shells;
	} rows[] = {{122100, 0}, {123100, 1}, {124100, 1}};
	for (const auto &row : rows) {
		void *head = nullptr;
		int count = 0;
		replay_count_calls();
		EXPECT_EQ(plugin().query(row.code, &head, &count), 0);
		EXPECT_EQ(replay_shells(), row.shells) << row.code;
		plugin().free_list(row.code + 1, &head);
	}
}

TEST_F(Boundary, AHostThatIgnoresItsChildrenGetsTheSameAnswers)
{
	const auto before = signal(SIGCHLD, SIG_IGN);
	void *head = nullptr;
	int count = 0;
	EXPECT_EQ(plugin().query(123100, &head, &count), 0);
	EXPECT_EQ(count, 38);
	plugin().free_list(123101, &head);
	EXPECT_EQ(plugin().query(124100, &head, &count), 0);
	EXPECT_EQ(count, 1);
	plugin().free_list(124101, &head);
	signal(SIGCHLD, before);
}

TEST_F(Boundary, AnUnknownDiagnosticCommandIsSaidToBeInvalid)
{
	std::string program = "agent";
	std::string word = "no-such-command";
	char *argv[] = {program.data(), word.data(), nullptr};
	testing::internal::CaptureStderr();
	EXPECT_EQ(plugin().cli(2, argv, 1), -1);
	EXPECT_EQ(testing::internal::GetCapturedStderr(),
	          "stcli: Hello world!\nstcli error: invalid cli command.\n");

	testing::internal::CaptureStderr();
	EXPECT_EQ(plugin().cli(1, argv, 1), -1);
	EXPECT_EQ(testing::internal::GetCapturedStderr(),
	          "stcli: Hello world!\nstcli error: invalid cli command.\n");
}
