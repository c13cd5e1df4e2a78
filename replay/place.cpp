// SPDX-License-Identifier: Apache-2.0
// Where a path leads in the host shown; see place.h.
//
// The way is gone step by step as the kernel goes it: /sys/class/block/sda1/.. is the folder above the one
// that the link sda1 leads to. What is above the host's root is its root.
#include "replay/place.h"

#include "replay/paths.h"
#include "replay/real.h"

#include <errno.h>
#include <initializer_list>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace replay
{

struct walk_t {
	host_table_t *table;
	place_t *to;   // `stored` is where the walk stands
	size_t head;   // how much of that is the host's directory
	size_t length; // how much there is of it
	links_t last;
	int links;      // followed so far
	bool is_folder; // it is known that a folder stands there
	int gone;       // errno: there is nothing, and what lies below is not looked for
	int error;      // errno: the walk has ended
};

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

static void stand_at(walk_t &at, size_t length)
{
	at.length = length;
	at.to->stored[length] = '\0';
}

// ".", ".." and a slash at the end take a folder.
static void need_folder(walk_t &at)
{
	struct stat st = {};
	if (at.is_folder)
		return;
	if (REPLAY_REAL(stat)(at.to->stored, &st) != 0)
		at.error = errno;
	else if (!S_ISDIR(st.st_mode))
		at.error = ENOTDIR;
	at.is_folder = true;
}

static void go_up(walk_t &at)
{
	size_t length = at.length;
	while (length > at.head && at.to->stored[--length] != '/')
		;
	stand_at(at, length);
}

static void go_down(walk_t &at, const char *step, size_t length)
{
	if (at.length + 1 + length >= PATH_MAX) {
		at.error = ENAMETOOLONG;
		return;
	}
	at.to->stored[at.length] = '/';
	memcpy(at.to->stored + at.length + 1, step, length);
	stand_at(at, at.length + 1 + length);
	at.is_folder = false;
}

// The text of the link that the walk stands at; false when it is none, or one to be kept.
static bool read_link(walk_t &at, const char *rest, char (&target)[PATH_MAX])
{
	if (at.gone != 0 || (*rest == '\0' && at.last == KEEP_LINK))
		return false;
	const ssize_t length = REPLAY_REAL(readlink)(at.to->stored, target, sizeof target - 1);
	if (length < 0 && errno != EINVAL)
		at.gone = errno;
	target[length > 0 ? length : 0] = '\0';
	return length > 0;
}

// Goes back to where the link counts from, and puts its text before what is left of the way; false for one
// that the kernel is to follow. An absolute link means the host's own path, covered or not: nothing that is
// captured leads back to the running machine.
static bool follow_link(walk_t &at, const char *target, const char *rest, char (&way)[PATH_MAX])
{
	constexpr int LINKS_MAX = 40; // the kernel's own limit
	const size_t text = strlen(target);
	const size_t left = strlen(rest);
	const size_t end = at.length;

	go_up(at);
	if (target[0] != '/' && leads_to_shared(at.to->stored + at.head, target)) {
		at.to->stored[at.length] = '/';
		at.length = end;
		return false;
	}
	if (target[0] == '/')
		stand_at(at, at.head);
	at.is_folder = true;
	if (++at.links > LINKS_MAX)
		at.error = ELOOP;
	else if (text + left >= PATH_MAX)
		at.error = ENAMETOOLONG;
	if (at.error == 0) {
		memmove(way + text, rest, left + 1);
		memcpy(way, target, text);
	}
	return true;
}

// One step of the way, which goes on at `rest`: to a device, through a link, or down. True when `way` holds
// another one now.
static bool take_step(walk_t &at, const char *step, const char *rest, char (&way)[PATH_MAX])
{
	char target[PATH_MAX];

	go_down(at, step, static_cast<size_t>(rest - step));
	if (at.error != 0)
		return false;
	at.to->dev = find_device(at.table, at.to->stored + at.head);
	if (at.to->dev) {
		at.error = *rest == '\0' ? 0 : ENOTDIR;
		return false;
	}
	return read_link(at, rest, target) && follow_link(at, target, rest, way);
}

static void walk(walk_t &at, char (&way)[PATH_MAX])
{
	const char *cursor = way;
	while (at.error == 0) {
		const size_t slashes = strspn(cursor, "/");
		const char *step = cursor + slashes;
		const char *rest = step + strcspn(step, "/");
		const size_t length = static_cast<size_t>(rest - step);

		cursor = rest;
		if (length == 0) {
			// What is not there yet can be made by such a name.
			if (slashes > 0 && at.gone == 0)
				need_folder(at);
			return;
		}
		if (strncmp(step, "..", length) == 0) {
			need_folder(at);
			if (length == 2)
				go_up(at);
		} else if (take_step(at, step, rest, way)) {
			cursor = way;
		}
	}
}

bool descriptor_target(int fd, char (&to)[PATH_MAX])
{
	char link[64];
	const int saved = errno;

	if (fd < 0)
		return false;
	snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
	const ssize_t length = REPLAY_REAL(readlink)(link, to, sizeof to - 1);
	errno = saved;
	to[length > 0 ? length : 0] = '\0';
	return length > 0;
}

bool to_host_path(const host_table_t *table, char (&path)[PATH_MAX])
{
	const char *own = path + strlen(table->directory);
	if (!lies_in(path, table->directory))
		return false;
	memmove(path, own, strlen(own) + 1);
	return true;
}

// The folder of the host that a descriptor was opened on, "" for its root; AT_FDCWD is none.
static bool find_folder(const host_table_t *table, int fd, char (&folder)[PATH_MAX])
{
	return descriptor_target(fd, folder) && to_host_path(table, folder);
}

// Whether the path is the host's: then the walk begins at its folder `start` and goes `way`.
static bool find_way(const host_table_t *table, int directory, const char *path, place_t *to,
                     char (&start)[PATH_MAX], char (&way)[PATH_MAX])
{
	const bool is_absolute = path[0] == '/';
	char plain[PATH_MAX];

	start[0] = '\0';
	if (!is_absolute && !find_folder(table, directory, start))
		return false;
	memcpy(way, path, strlen(path) + 1);
	if (!plain_path_below(start, path, plain))
		return !is_absolute;
	if (is_own_mounts(plain)) {
		start[0] = '\0';
		memcpy(plain, OWN_MOUNTS, sizeof OWN_MOUNTS);
		memcpy(way, OWN_MOUNTS, sizeof OWN_MOUNTS);
	}
	if (is_absolute)
		return is_covered(table, plain);
	// A captured folder has no node of its own for what is never shown.
	const bool is_shown = !is_never_shown(plain);
	if (!is_shown)
		memcpy(to->stored, plain, strlen(plain) + 1);
	return is_shown;
}

void find_place(int directory, const char *path, links_t last, place_t *to)
{
	char start[PATH_MAX];
	char way[PATH_MAX];
	const int saved = errno;
	host_table_t *table = shown_host();

	to->kind = RUNNING;
	to->dev = nullptr;
	to->shown = "";
	to->stored[0] = '\0';
	if (!table || !path || path[0] == '\0' || strlen(path) >= PATH_MAX ||
	    !find_way(table, directory, path, to, start, way))
		return;
	walk_t at = {table, to, strlen(table->directory), 0, last, 0, start[0] == '\0', 0, 0};
	if (!join(to->stored, table->directory, start))
		at.error = ENAMETOOLONG;
	at.length = strlen(to->stored);
	walk(at, way);
	errno = saved;
	to->error = at.error;
	to->shown = at.length == at.head ? "/" : to->stored + at.head;
	to->kind = at.error != 0 ? NOWHERE : to->dev ? DEVICE_IN_HOST : FILE_IN_HOST;
}

} // namespace replay
