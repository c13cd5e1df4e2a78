// SPDX-License-Identifier: Apache-2.0
// The environment of a child; see child.h.
#include "replay/child.h"

#include "replay/host.h"
#include "replay/log.h"
#include "replay/paths.h"
#include "replay/real.h"
#include "replay/replay.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

namespace replay
{

static char library[PATH_MAX];
static int held_library = -1;

static const char DESCRIPTOR_FOLDER[] = "/proc/self/fd/";

constexpr size_t VARIABLES_MAX = 4096;
static char *variables[VARIABLES_MAX + 1];

static bool names(const char *variable, const char *name)
{
	const size_t length = strlen(name);
	return strncmp(variable, name, length) == 0 && variable[length] == '=';
}

// A child counts no calls and asks for no fault, so REPLAY_FAIL and REPLAY_FAULT go as well. What
// else was preloaded goes too: a sanitizer's run-time does not belong in a plain shell.
static bool is_replaced(const char *variable, bool shows)
{
	static const char *const OURS[] = {"REPLAY_SYSROOT", "REPLAY_LOG", "REPLAY_FAIL", "REPLAY_FAULT"};
	for (const char *name : OURS) {
		if (names(variable, name))
			return true;
	}
	return shows && (names(variable, "LD_PRELOAD") || names(variable, "ASAN_OPTIONS"));
}

static bool set(char (&to)[PATH_MAX + 64], size_t *count, const char *name, const char *value)
{
	const int length = snprintf(to, sizeof to, "%s=%s", name, value);
	if (length < 0 || static_cast<size_t>(length) >= sizeof to || *count >= VARIABLES_MAX)
		return false;
	variables[(*count)++] = to;
	return true;
}

// A sanitized child would refuse to start because our library comes before its run-time; it may, since all
// that ours does is to hand its calls on.
static bool set_sanitizer(size_t *count)
{
	static char text[PATH_MAX + 64];
	char value[PATH_MAX];
	const char *old = getenv("ASAN_OPTIONS");
	const int length = snprintf(value, sizeof value, "%s%sverify_asan_link_order=0", !old ? "" : old,
	                            !old ? "" : ":");
	return length > 0 && length < PATH_MAX && set(text, count, "ASAN_OPTIONS", value);
}

static bool set_ours(size_t *count)
{
	static char texts[3][PATH_MAX + 64];
	const host_table_t *host = shown_host();
	if (!set(texts[0], count, "LD_PRELOAD", library) || !set_sanitizer(count))
		return false;
	if (host && !set(texts[1], count, "REPLAY_SYSROOT", host->directory))
		return false;
	return log_file()[0] == '\0' || set(texts[2], count, "REPLAY_LOG", log_file());
}

static bool build()
{
	const bool shows = library[0] != '\0' && (shown_host() != nullptr || log_file()[0] != '\0');
	size_t count = 0;

	for (char **at = environ; at && *at; ++at) {
		if (is_replaced(*at, shows))
			continue;
		if (count == VARIABLES_MAX)
			return false;
		variables[count++] = *at;
	}
	if (shows && !set_ours(&count))
		return false;
	variables[count] = nullptr;
	return true;
}

bool ChildEnvironment::install()
{
	if (!build()) {
		errno = E2BIG;
		return false;
	}
	saved_ = environ;
	environ = variables;
	return true;
}

ChildEnvironment::~ChildEnvironment()
{
	if (saved_)
		environ = saved_;
}

static void release_library()
{
	library[0] = '\0';
	if (held_library >= 0)
		REPLAY_REAL(close)(held_library);
	held_library = -1;
}

// The loader takes blanks and colons for the end of a name: such a library is named by a descriptor. Children
// inherit it, out of the way of the low ones that a shell hands out.
static bool hold_library()
{
	constexpr int LEAST = 100;
	const int fd = REPLAY_REAL(open)(library, O_RDONLY | O_CLOEXEC);
	if (fd < 0)
		return false;
	held_library = fcntl(fd, F_DUPFD, LEAST);
	if (held_library < 0)
		held_library = fcntl(fd, F_DUPFD, STDERR_FILENO + 1);
	REPLAY_REAL(close)(fd);
	snprintf(library, sizeof library, "%s%d", DESCRIPTOR_FOLDER, held_library);
	return held_library >= 0;
}

static bool set_library(const char *path)
{
	// A preload's own name may be one that its parent holds.
	if (strncmp(path, DESCRIPTOR_FOLDER, sizeof DESCRIPTOR_FOLDER - 1) == 0)
		return join(library, path, "");
	return REPLAY_REAL(realpath)(path, library) != nullptr &&
	       (strpbrk(library, " :") == nullptr || hold_library());
}

} // namespace replay

extern "C" void replay_set_child_library(const char *path)
{
	replay::release_library();
	if (!path || replay::set_library(path))
		return;
	replay::release_library();
	dprintf(STDERR_FILENO, "%s: no such library for the children\n", path);
}
