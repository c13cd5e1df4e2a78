// SPDX-License-Identifier: Apache-2.0
// The host shown at present; see host.h.
#include "replay/host.h"

#include "replay/replay.h"

#include <atomic>

namespace replay
{

static host_table_t *shown;
static arena_t shown_memory;
static std::atomic<bool> begun;

host_table_t *shown_host()
{
	// Set before the work, because the work itself must find the running host.
	if (!begun.load(std::memory_order_acquire) && !begun.exchange(true) && begin_preload)
		begin_preload();
	return shown;
}

} // namespace replay

extern "C" int replay_use(const char *dir)
{
	replay::arena_t memory;
	replay::host_table_t *table = nullptr;

	// A preload's environment is read first, or it would overrule this later.
	(void)replay::shown_host();
	if (dir) {
		if (memory.open())
			table = replay::load_table(dir, &memory);
		if (!table) {
			memory.close();
			return -1;
		}
	}
	replay::shown = table;
	replay::shown_memory.close();
	replay::shown_memory = memory;
	return 0;
}
