// SPDX-License-Identifier: Apache-2.0
// Memory for one host table: handed out in order, given back all at once.
//
// It comes from mmap and not from malloc, so that a test which compares the heap before and after a call into
// the plug-in finds no byte of ours there. Processes that are forked off share it: a device that has gone
// away is gone for all of them.
#ifndef DISKSCOUT_REPLAY_ARENA_H
#define DISKSCOUT_REPLAY_ARENA_H

#include <stddef.h>
#include <sys/mman.h>

namespace replay
{

struct arena_t {
	char *base = nullptr;
	size_t used = 0;

	// Address space only: the kernel gives pages as they are touched, zeroed.
	static constexpr size_t ROOM = size_t{64} << 20;

	bool open()
	{
		void *got = mmap(nullptr, ROOM, PROT_READ | PROT_WRITE,
		                 MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
		base = got == MAP_FAILED ? nullptr : static_cast<char *>(got);
		used = 0;
		return base;
	}

	// Zeroed and aligned for any record; null when the room is used up.
	void *take(size_t bytes)
	{
		const size_t rounded = (bytes + 15) & ~size_t{15};
		if (bytes > ROOM || rounded > ROOM - used)
			return nullptr;
		void *at = base + used;
		used += rounded;
		return at;
	}

	void close()
	{
		if (base)
			munmap(base, ROOM);
		base = nullptr;
		used = 0;
	}
};

} // namespace replay

#endif
