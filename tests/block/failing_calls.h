// Work whose outside calls fail one after the other, each once alone and once with all that follow.
#ifndef DISKSCOUT_TESTS_BLOCK_FAILING_CALLS_H
#define DISKSCOUT_TESTS_BLOCK_FAILING_CALLS_H

#include "diskscout_block.h"
#include "replay/replay.h"

#include <gtest/gtest.h>

#include <filesystem>

inline long open_descriptors()
{
	const std::filesystem::directory_iterator all("/proc/self/fd");
	return std::distance(begin(all), end(all));
}

// `work` queries, and looks at an answer that it releases.
template <class Work> void walk_failing_calls(Work work)
{
	const long descriptors = open_descriptors();
	for (const int from_there_on : {0, 1}) {
		bool reached = true;
		for (long nth = 1; reached; nth++) {
			SCOPED_TRACE(testing::Message() << "call " << nth << (from_there_on ? "+" : ""));
			replay_fail_call(nth, from_there_on);
			work();
			reached = replay_calls() >= nth;
			replay_fail_call(0, 0);
			ASSERT_EQ(memory_counter_block, 0);
			ASSERT_EQ(open_descriptors(), descriptors);
			ASSERT_FALSE(testing::Test::HasFailure());
		}
	}
}

#endif
