// SPDX-License-Identifier: Apache-2.0
// Paths in their plain spelling; see paths.h.
#include "replay/paths.h"

#include <initializer_list>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

namespace replay
{

bool join(char (&out)[PATH_MAX], const char *first, const char *second)
{
	const size_t head = strlen(first);
	const size_t tail = strlen(second);
	if (head + tail >= PATH_MAX)
		return false;
	memcpy(out, first, head);
	memcpy(out + head, second, tail + 1);
	return true;
}

static size_t drop_last_step(const char *path, size_t length)
{
	while (length > 0 && path[length - 1] != '/')
		--length;
	return length > 0 ? length - 1 : 0;
}

bool plain_path(const char *path, char (&out)[PATH_MAX])
{
	size_t length = 0;

	// What the kernel would refuse is left to it.
	if (!path || path[0] != '/' || strlen(path) >= PATH_MAX)
		return false;
	while (*path != '\0') {
		path += strspn(path, "/");
		const size_t step = strcspn(path, "/");
		if (step == 2 && memcmp(path, "..", 2) == 0) {
			length = drop_last_step(out, length);
		} else if (step > 0 && !(step == 1 && *path == '.')) {
			if (length + step + 2 > PATH_MAX)
				return false;
			out[length++] = '/';
			memcpy(out + length, path, step);
			length += step;
		}
		path += step;
	}
	if (length == 0)
		out[length++] = '/';
	out[length] = '\0';
	return true;
}

bool plain_path_below(const char *folder, const char *path, char (&out)[PATH_MAX])
{
	char whole[PATH_MAX];
	if (folder[0] == '\0' && path[0] == '/')
		return plain_path(path, out);
	const int length = snprintf(whole, sizeof whole, "%s/%s", folder, path);
	return length > 0 && length < PATH_MAX && plain_path(whole, out);
}

enum match_t { WHOLE, TREE, PREFIX };

// A tree is the path itself and all below it; a prefix also takes what goes on without a slash, as /dev/tty
// does with /dev/ttyS0.
static bool matches(const char *path, const char *text, match_t kind)
{
	const size_t length = strlen(text);
	if (strncmp(path, text, length) != 0)
		return false;
	if (kind == PREFIX || path[length] == '\0')
		return true;
	return kind == TREE && path[length] == '/';
}

struct path_row_t {
	const char *text;
	match_t kind;
};

// A program cannot live without these: they are about itself or hold no state of the machine's devices.
static const path_row_t RUNNING_PATHS[] = {
	{"/proc/self", TREE},
	{"/proc/thread-self", TREE},
	{"/dev/null", WHOLE},
	{"/dev/zero", WHOLE},
	{"/dev/full", WHOLE},
	{"/dev/tty", PREFIX},
	{"/dev/pts", PREFIX},
	{"/dev/ptmx", WHOLE},
	{"/dev/fd", TREE},
	{"/dev/urandom", WHOLE},
	{"/dev/random", WHOLE},
	{"/dev/std", PREFIX},
	{"/dev/shm", TREE},
	// How many threads a program may start, and on which memory.
	{"/sys/devices/system/cpu", TREE},
	{"/sys/devices/system/node", TREE},
	// How an allocator is to ask for its pages.
	{"/sys/kernel/mm", TREE},
	// How much of the machine is the program's.
	{"/sys/fs/cgroup", TREE},
};

static const char *own_process(char (&out)[32])
{
	snprintf(out, sizeof out, "/proc/%d", static_cast<int>(getpid()));
	return out;
}

static bool is_own_process(const char *path)
{
	char own[32];
	return strncmp(path, "/proc/", 6) == 0 && path[6] >= '0' && path[6] <= '9' &&
	       matches(path, own_process(own), TREE);
}

bool is_own_mounts(const char *plain)
{
	constexpr char NAME[] = "/mountinfo";
	char own[32];
	const size_t length = strlen(plain);
	if (length < sizeof NAME || strcmp(plain + length - (sizeof NAME - 1), NAME) != 0)
		return false;
	const size_t head = length - (sizeof NAME - 1);
	for (const char *process : {"/proc/self", "/proc/thread-self", own_process(own)}) {
		if (strlen(process) == head && memcmp(plain, process, head) == 0)
			return true;
	}
	return false;
}

bool lies_in(const char *plain, const char *top)
{
	return matches(plain, top, TREE);
}

bool is_never_shown(const char *plain)
{
	if (is_own_mounts(plain))
		return false;
	if (is_own_process(plain))
		return true;
	for (const path_row_t &row : RUNNING_PATHS) {
		if (matches(plain, row.text, row.kind))
			return true;
	}
	return false;
}

} // namespace replay
