// SPDX-License-Identifier: Apache-2.0
// Work whose outside calls, or blocks of memory, fail one after the other: each once alone and once with all
// that follow.
#ifndef DISKSCOUT_TESTS_BLOCK_FAILING_CALLS_H
#define DISKSCOUT_TESTS_BLOCK_FAILING_CALLS_H

#include "diskscout_block.h"
#include "outside.h"
#include "replay/replay.h"

#include <gtest/gtest.h>

#include <cerrno>

// `work` queries, and looks at an answer that it releases.
template <class Work> void walk_failing_calls(Work work)
{
	const int descriptors = descriptors_open();
	const long blocks = blocks_held();
	for (const int from_there_on : {0, 1}) {
		bool reached = true;
		for (long nth = 1; reached; nth++) {
			SCOPED_TRACE(testing::Message() << "call " << nth << (from_there_on ? "+" : ""));
			replay_fail_call(nth, from_there_on);
			work();
			reached = replay_calls() >= nth;
			replay_fail_call(0, 0);
			ASSERT_EQ(memory_counter_block, 0);
			ASSERT_EQ(blocks_held(), blocks);
			ASSERT_EQ(descriptors_open(), descriptors);
			ASSERT_FALSE(testing::Test::HasFailure());
		}
	}
}

// A query that is refused memory fails for that, and leaves nothing.
inline void walk_refused_memory(int (*list)(void **, int *), void (*release)(void **))
{
	const int descriptors = descriptors_open();
	const long blocks = blocks_held();
	for (const bool from_there_on : {false, true}) {
		bool refused = true;
		for (long nth = 1; refused; nth++) {
			SCOPED_TRACE(testing::Message() << "block " << nth << (from_there_on ? "+" : ""));
			void *head = nullptr;
			int count = 0;
			errno = 0;
			refuse_block(nth, from_there_on);
			const int result = list(&head, &count);
			const int error = errno;
			refused = was_refused();
			refuse_block(0, false);
			ASSERT_EQ(result, refused ? -1 : 0);
			if (refused) {
				ASSERT_EQ(error, ENOMEM);
				ASSERT_EQ(head, nullptr);
			}
			release(&head);
			ASSERT_EQ(blocks_held(), blocks);
			ASSERT_EQ(descriptors_open(), descriptors);
		}
	}
}

#endif
