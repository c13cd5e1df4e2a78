// The host shown at present, and where a path leads in it; see host.h.
#include "replay/host.h"

#include "replay/paths.h"
#include "replay/real.h"
#include "replay/replay.h"

#include <atomic>
#include <errno.h>
#include <initializer_list>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

namespace replay
{

static host_table_t *shown;
static arena_t shown_memory;
static std::atomic<bool> begun;

host_table_t *shown_host()
{
	// Set before the work, because the work itself must find the running host.
	if (!begun.exchange(true, std::memory_order_acq_rel) && begin_preload)
		begin_preload();
	return shown;
}

// Whether a relative link in this directory of the host leads to the folder "shared" beside the host, or
// below it: what several captured hosts have in common lies there, and nothing else outside of the host is
// reached.
static bool leads_to_shared(const char *parent, const char *target)
{
	constexpr char FOLDER[] = "shared";
	bool inside = false;
	int depth = 0;

	for (const char *text : {parent, target}) {
		while (*(text += strspn(text, "/")) != '\0') {
			const size_t step = strcspn(text, "/");
			if (depth < 0 && (step != strlen(FOLDER) || memcmp(text, FOLDER, step) != 0))
				return false;
			inside = inside || depth < 0;
			if (step == 2 && memcmp(text, "..", 2) == 0)
				--depth;
			else if (step != 1 || *text != '.')
				++depth;
			text += step;
		}
	}
	return inside && depth >= 0;
}

// The path with the link that ends at `end` in `stored` replaced by what it names. An absolute link means the
// host's own path, covered or not: nothing that is captured leads back to the running machine.
static bool replace_link(const char *shown_path, size_t end, const char *target, char (&to)[PATH_MAX])
{
	char parent[PATH_MAX];
	char changed[PATH_MAX];
	char whole[PATH_MAX];
	const char *rest = shown_path + end;

	while (end > 0 && shown_path[end - 1] != '/')
		--end;
	if (target[0] == '/')
		end = 0;
	memcpy(parent, shown_path, end);
	parent[end] = '\0';
	if (target[0] != '/' && leads_to_shared(parent, target))
		return false;
	return join(changed, parent, target) && join(whole, changed, rest) && plain_path(whole, to);
}

// Follows the first link on the way; false when there is none.
static bool follow_link(const place_t &at, size_t head, links_t last, char (&to)[PATH_MAX])
{
	char target[PATH_MAX];
	char way[PATH_MAX];
	size_t end = 0;

	memcpy(way, at.stored, head);
	while (at.shown[end] != '\0') {
		const size_t step = 1 + strcspn(at.shown + end + 1, "/");
		memcpy(way + head + end, at.shown + end, step);
		end += step;
		way[head + end] = '\0';
		if (at.shown[end] == '\0' && last == KEEP_LINK)
			return false;
		const ssize_t length = REPLAY_REAL(readlink)(way, target, sizeof target - 1);
		if (length > 0) {
			target[length] = '\0';
			return replace_link(at.shown, end, target, to);
		}
	}
	return false;
}

void find_place(const char *path, links_t last, place_t *to)
{
	constexpr int LINKS_MAX = 40; // then the C library may say ELOOP
	char next[PATH_MAX];
	host_table_t *table = shown_host();

	to->kind = RUNNING;
	to->dev = nullptr;
	if (!table || !plain_path(path, to->shown) || !is_covered(table, to->shown))
		return;
	const size_t head = strlen(table->directory);
	const int saved = errno;
	for (int step = 0; step <= LINKS_MAX; ++step) {
		to->dev = find_device(table, to->shown);
		if (to->dev) {
			to->kind = DEVICE_IN_HOST;
			return;
		}
		if (!join(to->stored, table->directory, to->shown))
			return;
		to->kind = FILE_IN_HOST;
		const bool led_on = follow_link(*to, head, last, next);
		errno = saved;
		if (!led_on)
			return;
		memcpy(to->shown, next, strlen(next) + 1);
	}
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
