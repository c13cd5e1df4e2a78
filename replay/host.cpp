// The host shown at present, and where a path leads in it; see host.h.

#include "replay/host.h"

#include "replay/paths.h"
#include "replay/real.h"
#include "replay/replay.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>

namespace replay
{

static host_table *shown;
static arena shown_memory;
static std::atomic<bool> begun;

host_table *shown_host()
{
	// Set before the work, because the work itself must find the running host.
	if (!begun.exchange(true, std::memory_order_acq_rel) && begin_preload != nullptr)
		begin_preload();
	return shown;
}

// What the link at `stored` names, as an absolute path of the captured host.
static bool link_target(const char *shown_path, const char *stored, char (&to)[PATH_MAX])
{
	char target[PATH_MAX];
	char joined[PATH_MAX];
	const ssize_t length = REPLAY_REAL(readlink)(stored, target, sizeof(target) - 1);

	if (length <= 0)
		return false;
	target[length] = '\0';
	if (target[0] == '/')
		return plain_path(target, to);
	const size_t head = static_cast<size_t>(strrchr(shown_path, '/') - shown_path) + 1;
	memcpy(joined, shown_path, head);
	joined[head] = '\0';
	char whole[PATH_MAX];
	return join(whole, joined, target) && plain_path(whole, to);
}

void find_place(const char *path, links last, place *to)
{
	constexpr int links_max = 16; // then the C library may say ELOOP
	char next[PATH_MAX];
	host_table *table = shown_host();

	to->kind = RUNNING;
	to->dev = nullptr;
	if (table == nullptr || !plain_path(path, to->shown) || !is_replayed(to->shown))
		return;
	for (int step = 0; step <= links_max; ++step) {
		to->dev = find_device(table, to->shown);
		if (to->dev != nullptr) {
			to->kind = DEVICE_IN_HOST;
			return;
		}
		if (!join(to->stored, table->directory, to->shown))
			return;
		to->kind = FILE_IN_HOST;
		if (last == KEEP_LINK || !link_target(to->shown, to->stored, next) || !is_replayed(next))
			return;
		memcpy(to->shown, next, strlen(next) + 1);
	}
}

} // namespace replay

extern "C" int replay_use(const char *dir)
{
	replay::arena memory;
	replay::host_table *table = nullptr;

	// A preload's environment is read first, or it would overrule this later.
	(void)replay::shown_host();
	if (dir != nullptr) {
		if (memory.open())
			table = replay::load_table(dir, &memory);
		if (table == nullptr) {
			memory.close();
			return -1;
		}
	}
	replay::shown = table;
	replay::shown_memory.close();
	replay::shown_memory = memory;
	return 0;
}
