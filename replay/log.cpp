// SPDX-License-Identifier: Apache-2.0
// The log of what the program would have changed; see log.h.
#include "replay/log.h"

#include "replay/paths.h"
#include "replay/real.h"
#include "replay/replay.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace replay
{

static char file[PATH_MAX];

const char *log_file()
{
	return file;
}

// A line under construction, on the stack: a log must not touch the heap. The room holds a path and a text of
// which every character needs an escape.
struct line_t {
	char text[(PATH_MAX + LOG_TEXT_MAX) * 4 + 256];
	size_t used = 0;
};

static void put(line_t *to, const char *text, size_t length)
{
	const size_t room = sizeof to->text - 1 - to->used;
	if (length > room)
		length = room;
	memcpy(to->text + to->used, text, length);
	to->used += length;
}

static void put(line_t *to, const char *text)
{
	put(to, text, strlen(text));
}

// Nothing in a path, a text or a command may end the line or the quotes.
static void put_escaped(line_t *to, const char *text, size_t length)
{
	for (size_t i = 0; i < length; ++i) {
		const unsigned char c = static_cast<unsigned char>(text[i]);
		char escape[5] = {static_cast<char>(c), '\0'};
		if (c == '\n')
			memcpy(escape, "\\n", 3);
		else if (c == '\\' || c == '"')
			snprintf(escape, sizeof escape, "\\%c", c);
		else if (c < 0x20 || c >= 0x7f)
			snprintf(escape, sizeof escape, "\\x%02x", c);
		put(to, escape);
	}
}

static void start(line_t *to, const char *event, const char *subject)
{
	put(to, event);
	put(to, " ");
	put_escaped(to, subject, strlen(subject));
}

// One write per line, appending: children log into the same file.
static void finish(line_t *to)
{
	const int saved = errno;
	to->text[to->used++] = '\n';
	const int fd = REPLAY_REAL(open)(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
	if (fd >= 0) {
		if (REPLAY_REAL(write)(fd, to->text, to->used) != static_cast<ssize_t>(to->used))
			dprintf(STDERR_FILENO, "%s: a log line was cut\n", file);
		REPLAY_REAL(close)(fd);
	} else {
		dprintf(STDERR_FILENO, "%s: %s\n", file, strerror(errno));
	}
	errno = saved;
}

void log_text(const char *path, const char *text, size_t length)
{
	if (file[0] == '\0')
		return;
	line_t to;
	start(&to, "write", path);
	put(&to, " \"");
	put_escaped(&to, text, length);
	put(&to, "\"");
	finish(&to);
}

void log_bytes(const char *path, off_t offset, size_t length)
{
	char tail[64];
	if (file[0] == '\0')
		return;
	line_t to;
	start(&to, "write", path);
	snprintf(tail, sizeof tail, " @%lld %zu bytes", static_cast<long long>(offset), length);
	put(&to, tail);
	finish(&to);
}

void log_mknod(const char *path, mode_t mode, dev_t number)
{
	char tail[64];
	if (file[0] == '\0')
		return;
	line_t to;
	start(&to, "mknod", path);
	snprintf(tail, sizeof tail, " 0%o %u:%u", mode, major(number), minor(number));
	put(&to, tail);
	finish(&to);
}

void log_mkdir(const char *path, mode_t mode)
{
	char tail[64];
	if (file[0] == '\0')
		return;
	line_t to;
	start(&to, "mkdir", path);
	snprintf(tail, sizeof tail, " 0%o", mode);
	put(&to, tail);
	finish(&to);
}

void log_unlink(const char *path)
{
	if (file[0] == '\0')
		return;
	line_t to;
	start(&to, "unlink", path);
	finish(&to);
}

void log_shell(const char *command)
{
	if (file[0] == '\0')
		return;
	line_t to;
	start(&to, "shell", command);
	finish(&to);
}

} // namespace replay

// A relative name is made absolute, because the program may change directory and its children read the name
// from their environment.
extern "C" void replay_log_to(const char *name)
{
	char directory[PATH_MAX];
	size_t head = 0;

	replay::file[0] = '\0';
	if (!name || strlen(name) >= PATH_MAX)
		return;
	if (name[0] != '/' && getcwd(directory, sizeof directory - 1) != nullptr) {
		head = strlen(directory);
		directory[head++] = '/';
	}
	if (head + strlen(name) >= PATH_MAX)
		return;
	memcpy(replay::file, directory, head);
	memcpy(replay::file + head, name, strlen(name) + 1);
}
