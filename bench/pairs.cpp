// SPDX-License-Identifier: Apache-2.0
#include "pairs.h"

#include <algorithm>
#include <time.h>
#include <vector>

double cpu_microseconds(void (*run)())
{
	timespec from;
	timespec to;
	clock_gettime(CLOCK_THREAD_CPUTIME_ID, &from);
	run();
	clock_gettime(CLOCK_THREAD_CPUTIME_ID, &to);
	return static_cast<double>(to.tv_sec - from.tv_sec) * 1e6 +
	       static_cast<double>(to.tv_nsec - from.tv_nsec) / 1e3;
}

void compare(benchmark::State &state, void (*work)(), void (*floor)())
{
	std::vector<double> own;
	while (state.KeepRunning()) {
		const double with_work = cpu_microseconds(work);
		own.push_back(with_work - cpu_microseconds(floor));
	}
	const auto middle = own.begin() + static_cast<ptrdiff_t>(own.size() / 2);
	std::nth_element(own.begin(), middle, own.end());
	state.counters["own_cpu_us"] = *middle;
}
