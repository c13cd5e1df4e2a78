// SPDX-License-Identifier: Apache-2.0
// Both libraries in one process, and one of them coming and going. Every case runs in a child of its own, so
// that it begins with none loaded.
#include "plugin.h"

#include "block/host.h"
#include "replay/replay.h"

#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <stdio.h>
#include <string>
#if defined(__SANITIZE_ADDRESS__)
// Of the sanitizer's allocator; not every compiler brings the header that declares it.
extern "C" size_t __sanitizer_get_current_allocated_bytes(void);
#endif

namespace
{

class Together : public BlockHost
{
protected:
	void SetUp() override
	{
		device("devices/virtual/block/loop0", "7:0", 2048);
		device("devices/virtual/block/zram0", "252:0", 2048);
	}

	// Each has disks that the other does not see: captured hosts of then and of today.
	bool both_answer(const Plugin &classic, const BlockPlugin &block)
	{
		show_host("sixteen-disks");
		const bool then = has(classic, 122100, 16) && has(block, 222100, -1);
		show();
		const bool today = has(classic, 122100, 0) && has(block, 222100, 2);
		return then && today && *classic.live_local == 0 && *block.live == 0;
	}

	// How many records an answer has; -1 when the query fails.
	static bool has(const Exchange &exchange, UINT code, int records)
	{
		void *head = nullptr;
		int count = 0;
		const int result = exchange.query(code, &head, &count);
		exchange.free_list(code + 1, &head);
		if ((result == 0 ? count : -1) == records)
			return true;
		fprintf(stderr, "%u: result %d, %d records\n", code, result, count);
		return false;
	}
};

struct Way {
	const char *name;
	bool block_first;
	int classic, block; // how each is loaded
};

class TogetherLoaded : public Together, public testing::WithParamInterface<Way>
{
};

TEST_P(TogetherLoaded, EachAnswersItsOwnCodes)
{
	const Way way = GetParam();
	const auto load_and_ask = [&] {
		if (way.block_first) {
			const BlockPlugin block(way.block);
			const Plugin classic(way.classic);
			_exit(both_answer(classic, block) ? 0 : 1);
		}
		const Plugin classic(way.classic);
		const BlockPlugin block(way.block);
		_exit(both_answer(classic, block) ? 0 : 1);
	};
	EXPECT_EXIT(load_and_ask(), testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(Ways, TogetherLoaded,
                         testing::Values(Way{"Local", false, RTLD_LOCAL, RTLD_LOCAL},
                                         Way{"LocalBlockFirst", true, RTLD_LOCAL, RTLD_LOCAL},
                                         Way{"Global", false, RTLD_GLOBAL, RTLD_GLOBAL},
                                         Way{"GlobalBlockFirst", true, RTLD_GLOBAL, RTLD_GLOBAL},
                                         Way{"OneGlobal", false, RTLD_GLOBAL, RTLD_LOCAL},
                                         Way{"OneGlobalBlockFirst", true, RTLD_LOCAL, RTLD_GLOBAL}),
                         [](const auto &row) { return std::string(row.param.name); });

// ---- coming and going ----

size_t heap_in_use()
{
#if defined(__SANITIZE_ADDRESS__)
	return __sanitizer_get_current_allocated_bytes();
#else
	return mallinfo2().uordblks;
#endif
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

struct Lent {
	size_t heap;
	int descriptors;
};

constexpr int ROUNDS = 1000;

TEST_F(Together, LoadingAskingAndUnloadingAThousandTimesLeaksNothing)
{
	const auto come_and_go = [&](int times) {
		for (int i = 0; i < times; i++) {
			const BlockPlugin block(RTLD_LOCAL);
			if (!has(block, 222100, 2) || *block.live != 0 || dlclose(block.handle) != 0)
				_exit(1);
		}
		return Lent{heap_in_use(), count_descriptors()};
	};
	const auto measure = [&] {
		show();
		const Lent before = come_and_go(100);
		const Lent after = come_and_go(ROUNDS);
		const bool is_gone = !dlopen(BLOCK_PLUGIN_LIBRARY, RTLD_LAZY | RTLD_NOLOAD);
		fprintf(stderr, "%zu, then %zu bytes\n", before.heap, after.heap);
		// What is lost in every round adds up; the loader's own tables grow a few times at first.
		const bool is_kept =
			after.heap < before.heap + ROUNDS && after.descriptors == before.descriptors;
		_exit(is_kept && is_gone ? 0 : 1);
	};
	EXPECT_EXIT(measure(), testing::ExitedWithCode(0), "");
}

} // namespace
