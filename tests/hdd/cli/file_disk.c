/* SPDX-License-Identifier: Apache-2.0 */
/* Loaded before a program: every regular file answers BLKGETSIZE with its size in sectors of 512 bytes, as a
 * disk does. What a command writes to a disk can be seen to the byte this way. With the variable LOSES_WRITES
 * they are disks that take everything and keep nothing: what was written cannot be brought to them. With the
 * variable PIECE they are slow ones: every other transfer is interrupted, and none moves more bytes than it
 * says.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <stdarg.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

static const unsigned long get_size = 0x1260;

typedef int (*ioctl_type)(int fd, unsigned long request, ...);
typedef int (*fsync_type)(int fd);
typedef ssize_t (*read_type)(int fd, void *bytes, size_t count);
typedef ssize_t (*write_type)(int fd, const void *bytes, size_t count);

/* How much of a transfer takes place: 0 when it is interrupted. */
static size_t piece_of(int fd, size_t count)
{
	static int interrupted;
	const char *piece = getenv("PIECE");
	struct stat status;
	size_t most;

	if (piece == NULL || fstat(fd, &status) != 0 || !S_ISREG(status.st_mode))
		return count;
	interrupted = !interrupted;
	most = (size_t)strtoul(piece, NULL, 10);
	if (interrupted)
		return 0;
	return count < most ? count : most;
}

ssize_t read(int fd, void *bytes, size_t count)
{
	size_t piece = piece_of(fd, count);
	read_type next;

	if (piece < count && piece == 0) {
		errno = EINTR;
		return -1;
	}
	*(void **)&next = dlsym(RTLD_NEXT, "read");
	return next(fd, bytes, piece);
}

ssize_t write(int fd, const void *bytes, size_t count)
{
	size_t piece = piece_of(fd, count);
	write_type next;

	if (piece < count && piece == 0) {
		errno = EINTR;
		return -1;
	}
	*(void **)&next = dlsym(RTLD_NEXT, "write");
	return next(fd, bytes, piece);
}

int ioctl(int fd, unsigned long request, ...)
{
	ioctl_type next;
	struct stat status;
	va_list arguments;
	void *argument;

	va_start(arguments, request);
	argument = va_arg(arguments, void *);
	va_end(arguments);
	if (request == get_size && fstat(fd, &status) == 0 && S_ISREG(status.st_mode)) {
		*(unsigned long *)argument = (unsigned long)status.st_size / 512;
		return 0;
	}
	*(void **)&next = dlsym(RTLD_NEXT, "ioctl");
	return next(fd, request, argument);
}

int fsync(int fd)
{
	fsync_type next;

	if (getenv("LOSES_WRITES") != NULL) {
		errno = EIO;
		return -1;
	}
	*(void **)&next = dlsym(RTLD_NEXT, "fsync");
	return next(fd);
}
