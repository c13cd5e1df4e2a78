// SPDX-License-Identifier: Apache-2.0
// open, fopen and their like.
//
// A stream that writes goes through fopencookie: what the C library flushes then reaches us, one write a
// flush, as it would reach the kernel.
#include "replay/call.h"
#include "replay/device.h"
#include "replay/faults.h"
#include "replay/log.h"
#include "replay/real.h"

#include <errno.h>
#include <fcntl.h>
#include <mntent.h>
#include <stdarg.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

using namespace replay;

static int replayed_open(int at, const char *path, int flags, mode_t mode)
{
	place_t to;
	if (must_fail(CALL_OPEN))
		return -1;
	find_place(at, path, (flags & O_NOFOLLOW) != 0 ? KEEP_LINK : FOLLOW_LINK, &to);
	if (to.kind == RUNNING)
		return REPLAY_REAL(openat)(at, library_path(to, path), flags, mode);
	return open_place(to, flags, mode);
}

// The third argument is there only when a file may be made.
static mode_t mode_argument(int flags, va_list *arguments)
{
	const bool has_mode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
	return has_mode ? va_arg(*arguments, mode_t) : 0;
}

REPLAY_CALL int open(const char *path, int flags, ...)
{
	va_list arguments;
	va_start(arguments, flags);
	const mode_t mode = mode_argument(flags, &arguments);
	va_end(arguments);
	return replayed_open(AT_FDCWD, path, flags, mode);
}

REPLAY_CALL int open64(const char *path, int flags, ...)
{
	va_list arguments;
	va_start(arguments, flags);
	const mode_t mode = mode_argument(flags, &arguments);
	va_end(arguments);
	return replayed_open(AT_FDCWD, path, flags, mode);
}

REPLAY_CALL int openat(int at, const char *path, int flags, ...)
{
	va_list arguments;
	va_start(arguments, flags);
	const mode_t mode = mode_argument(flags, &arguments);
	va_end(arguments);
	return replayed_open(at, path, flags, mode);
}

REPLAY_CALL int openat64(int at, const char *path, int flags, ...)
{
	va_list arguments;
	va_start(arguments, flags);
	const mode_t mode = mode_argument(flags, &arguments);
	va_end(arguments);
	return replayed_open(at, path, flags, mode);
}

REPLAY_CALL int __open_2(const char *path, int flags)
{
	return replayed_open(AT_FDCWD, path, flags, 0);
}

REPLAY_CALL int __open64_2(const char *path, int flags)
{
	return replayed_open(AT_FDCWD, path, flags, 0);
}

REPLAY_CALL int __openat_2(int at, const char *path, int flags)
{
	return replayed_open(at, path, flags, 0);
}

REPLAY_CALL int __openat64_2(int at, const char *path, int flags)
{
	return replayed_open(at, path, flags, 0);
}

// The cookie of a writing stream is its descriptor: there is nothing to keep.
static int cookie_fd(void *cookie)
{
	return static_cast<int>(reinterpret_cast<intptr_t>(cookie));
}

static ssize_t cookie_read(void *cookie, char *buffer, size_t count)
{
	return REPLAY_REAL(read)(cookie_fd(cookie), buffer, count);
}

static ssize_t cookie_write(void *cookie, const char *data, size_t count)
{
	char path[PATH_MAX];
	// A cookie tells a failed write with 0, never with -1.
	if (must_fail(CALL_WRITE))
		return 0;
	if (!is_copy(cookie_fd(cookie), path))
		return static_cast<ssize_t>(count);
	const ssize_t done = swallow_write(cookie_fd(cookie), path, data, count);
	return done < 0 ? 0 : done;
}

static int cookie_seek(void *cookie, off64_t *offset, int whence)
{
	const off_t at = REPLAY_REAL(lseek)(cookie_fd(cookie), *offset, whence);
	*offset = at;
	return at < 0 ? -1 : 0;
}

static int cookie_close(void *cookie)
{
	return REPLAY_REAL(close)(cookie_fd(cookie));
}

struct stream_mode_t {
	const char *plain; // as fopencookie takes it
	int flags;
};

static bool read_mode(const char *mode, stream_mode_t *to)
{
	static const struct {
		char letter;
		const char *alone, *plus;
		int flags;
	} MODES[] = {
		{'r', "r", "r+", 0},
		{'w', "w", "w+", O_CREAT | O_TRUNC},
		{'a', "a", "a+", O_CREAT | O_APPEND},
	};
	const bool plus = strchr(mode, '+') != nullptr;

	for (const auto &row : MODES) {
		if (row.letter != mode[0])
			continue;
		to->plain = plus ? row.plus : row.alone;
		to->flags = row.flags |
		            (plus             ? O_RDWR
		             : mode[0] == 'r' ? O_RDONLY
		                              : O_WRONLY) |
		            (strchr(mode, 'e') != nullptr ? O_CLOEXEC : 0) |
		            (strchr(mode, 'x') != nullptr ? O_EXCL : 0);
		return true;
	}
	errno = EINVAL;
	return false;
}

static FILE *open_stream(const place_t &at, const char *mode)
{
	static const cookie_io_functions_t FUNCTIONS = {cookie_read, cookie_write, cookie_seek, cookie_close};
	stream_mode_t how = {};
	if (!read_mode(mode, &how))
		return nullptr;
	const int fd = open_place(at, how.flags, 0666);
	if (fd < 0)
		return nullptr;
	const bool writes = (how.flags & O_ACCMODE) != O_RDONLY;
	void *cookie = reinterpret_cast<void *>(static_cast<intptr_t>(fd));
	FILE *stream =
		writes ? fopencookie(cookie, how.plain, FUNCTIONS) : REPLAY_REAL(fdopen)(fd, how.plain);
	if (!stream)
		REPLAY_REAL(close)(fd);
	return stream;
}

static FILE *replayed_fopen(const char *path, const char *mode)
{
	place_t to;
	if (must_fail(CALL_FOPEN))
		return nullptr;
	find_place(AT_FDCWD, path, FOLLOW_LINK, &to);
	if (to.kind == RUNNING)
		return REPLAY_REAL(fopen)(path, mode);
	return open_stream(to, mode);
}

// What the descriptor stands for was settled when it was opened.
REPLAY_CALL FILE *fdopen(int fd, const char *mode) __THROW
{
	return must_fail(CALL_FDOPEN) ? nullptr : REPLAY_REAL(fdopen)(fd, mode);
}

REPLAY_CALL FILE *fopen(const char *path, const char *mode)
{
	return replayed_fopen(path, mode);
}

REPLAY_CALL FILE *fopen64(const char *path, const char *mode)
{
	return replayed_fopen(path, mode);
}

// The C library opens this stream inside itself, where nobody could step in.
REPLAY_CALL FILE *setmntent(const char *path, const char *mode) __THROW
{
	return replayed_fopen(path, mode);
}
