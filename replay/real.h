// SPDX-License-Identifier: Apache-2.0
// The next definition of a call after ours: the C library's, or a sanitizer's check in front of it.
// Everything this library does for itself goes through here, so that its own calls are neither replayed nor
// counted.
#ifndef DISKSCOUT_REPLAY_REAL_H
#define DISKSCOUT_REPLAY_REAL_H

#include <atomic>
#include <dlfcn.h>
#include <stdlib.h>

namespace replay
{

// One slot per call. It is filled at the first use, by whichever thread, and not in a constructor, because
// other libraries' constructors call before ours would have run.
template <auto call> auto real(const char *name)
{
	static std::atomic<void *> found;
	void *next = found.load(std::memory_order_relaxed);
	if (!next) {
		next = dlsym(RTLD_NEXT, name);
		if (!next)
			abort();
		found.store(next, std::memory_order_relaxed);
	}
	return reinterpret_cast<decltype(call)>(next);
}

} // namespace replay

#define REPLAY_REAL(call) (replay::real<&::call>(#call))

#endif
