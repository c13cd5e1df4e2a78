// SPDX-License-Identifier: Apache-2.0
// Every outside call of every query fails once, and then from there on. Each run must end with a documented
// result and leave the process as it was: descriptors, children, heap and counters.
#include "plugin.h"

#include "replay/replay.h"

#include <dirent.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#if defined(__SANITIZE_ADDRESS__)
// Of the sanitizer's allocator; not every compiler brings the header that declares it.
extern "C" size_t __sanitizer_get_current_allocated_bytes(void);
#endif

namespace
{

struct State {
	int descriptors;
	bool children;
	size_t heap;
	int live;

	bool operator==(const State &other) const
	{
		return descriptors == other.descriptors && children == other.children && heap == other.heap &&
		       live == other.live;
	}
};

std::ostream &operator<<(std::ostream &out, const State &state)
{
	return out << state.descriptors << " descriptors, "
	           << (state.children ? "children, " : "no children, ") << state.heap << " bytes of heap, "
	           << state.live << " records";
}

int count_descriptors()
{
	DIR *open_ones = opendir("/proc/self/fd");
	int count = 0;
	while (readdir(open_ones))
		count++;
	closedir(open_ones);
	return count;
}

size_t heap_in_use()
{
#if defined(__SANITIZE_ADDRESS__)
	return __sanitizer_get_current_allocated_bytes();
#else
	return mallinfo2().uordblks;
#endif
}

bool has_children()
{
	return waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD;
}

State state_now()
{
	return {count_descriptors(), has_children(), heap_in_use(), *plugin().live_local};
}

struct Query {
	UINT code;
	bool may_fail; // the others give fewer records, and 0
};

std::ostream &operator<<(std::ostream &out, const Query &query)
{
	return out << query.code;
}

class Torture : public testing::TestWithParam<std::tuple<Query, bool>>
{
protected:
	void SetUp() override { show_host("sixteen-disks"); }
	void TearDown() override { replay_fail_call(0, 0); }

	// One query with its nth outside call failing; the number of calls that it made.
	static long run(const Query &query, long nth, bool from_there_on)
	{
		void *head = nullptr;
		int count = -1;
		replay_count_calls();
		replay_fail_call(nth, from_there_on);
		const int result = plugin().query(query.code, &head, &count);
		replay_fail_call(0, 0);
		const long calls = replay_calls();

		EXPECT_TRUE(result == 0 || (query.may_fail && result == -1)) << result;
		EXPECT_EQ(*plugin().live_local, count);
		EXPECT_EQ(plugin().free_list(query.code + 1, &head), 0);
		return calls;
	}
};

TEST_P(Torture, EveryOutsideCallMayFail)
{
	const auto [query, from_there_on] = GetParam();
	const long calls = run(query, 0, false);
	ASSERT_GT(calls, 50);
	run(query, 0, false);
	const State before = state_now();
	for (long nth = 1; nth <= calls && !HasFailure(); nth++) {
		run(query, nth, from_there_on);
		EXPECT_EQ(state_now(), before) << "call " << nth << " of " << calls;
	}
}

INSTANTIATE_TEST_SUITE_P(Queries, Torture,
                         testing::Combine(testing::Values(Query{122100, false}, Query{123100, true},
                                                          Query{124100, false}),
                                          testing::Bool()));

} // namespace
