// SPDX-License-Identifier: Apache-2.0
// Calls on what is open already: descriptors and streams.
#include "replay/call.h"
#include "replay/device.h"
#include "replay/faults.h"
#include "replay/real.h"

#include <fcntl.h>
#include <mntent.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace replay;

REPLAY_CALL ssize_t read(int fd, void *buffer, size_t count)
{
	return must_fail(CALL_READ) ? -1 : REPLAY_REAL(read)(fd, buffer, count);
}

REPLAY_CALL ssize_t __read_chk(int fd, void *buffer, size_t count, size_t room)
{
	return must_fail(CALL_READ) ? -1 : REPLAY_REAL(__read_chk)(fd, buffer, count, room);
}

REPLAY_CALL ssize_t pread(int fd, void *buffer, size_t count, off_t offset)
{
	return must_fail(CALL_READ) ? -1 : REPLAY_REAL(pread)(fd, buffer, count, offset);
}

REPLAY_CALL ssize_t pread64(int fd, void *buffer, size_t count, off64_t offset)
{
	return must_fail(CALL_READ) ? -1 : REPLAY_REAL(pread64)(fd, buffer, count, offset);
}

REPLAY_CALL ssize_t __pread_chk(int fd, void *buffer, size_t count, off_t offset, size_t room)
{
	return must_fail(CALL_READ) ? -1 : REPLAY_REAL(__pread_chk)(fd, buffer, count, offset, room);
}

REPLAY_CALL ssize_t __pread64_chk(int fd, void *buffer, size_t count, off64_t offset, size_t room)
{
	return must_fail(CALL_READ) ? -1 : REPLAY_REAL(__pread64_chk)(fd, buffer, count, offset, room);
}

REPLAY_CALL ssize_t write(int fd, const void *data, size_t count)
{
	char path[PATH_MAX];
	if (must_fail(CALL_WRITE))
		return -1;
	if (is_copy(fd, path))
		return swallow_write(fd, path, data, count);
	return REPLAY_REAL(write)(fd, data, count);
}

REPLAY_CALL off_t lseek(int fd, off_t offset, int whence) __THROW
{
	return must_fail(CALL_LSEEK) ? -1 : REPLAY_REAL(lseek)(fd, offset, whence);
}

REPLAY_CALL off64_t lseek64(int fd, off64_t offset, int whence) __THROW
{
	return must_fail(CALL_LSEEK) ? -1 : REPLAY_REAL(lseek64)(fd, offset, whence);
}

REPLAY_CALL int ioctl(int fd, unsigned long request, ...) __THROW
{
	va_list arguments;

	va_start(arguments, request);
	void *argument = va_arg(arguments, void *);
	va_end(arguments);
	if (must_fail(CALL_IOCTL))
		return -1;
	const device_t *dev = open_device_of(fd);
	// A bare path knows no requests: the kernel says so itself.
	if (dev && (fcntl(fd, F_GETFL) & O_PATH) == 0)
		return answer_ioctl(*dev, request, argument);
	return REPLAY_REAL(ioctl)(fd, request, argument);
}

// A close that fails has closed all the same: a program that tries it again would close somebody else's
// descriptor.
REPLAY_CALL int close(int fd)
{
	const int result = REPLAY_REAL(close)(fd);
	return must_fail(CALL_CLOSE) ? -1 : result;
}

REPLAY_CALL int fclose(FILE *stream)
{
	const int result = REPLAY_REAL(fclose)(stream);
	return must_fail(CALL_FCLOSE) ? EOF : result;
}

// The end of a file also returns null: only the stream's error mark tells a failed read from it, and the C
// library offers no other way to set one.
static void mark_error(FILE *stream)
{
	stream->_flags |= _IO_ERR_SEEN;
}

REPLAY_CALL char *fgets(char *text, int size, FILE *stream)
{
	if (!must_fail(CALL_FGETS))
		return REPLAY_REAL(fgets)(text, size, stream);
	mark_error(stream);
	return nullptr;
}

extern "C" char *__fgets_chk(char *text, size_t room, int size, FILE *stream);
REPLAY_CALL char *__fgets_chk(char *text, size_t room, int size, FILE *stream)
{
	if (!must_fail(CALL_FGETS))
		return REPLAY_REAL(__fgets_chk)(text, room, size, stream);
	mark_error(stream);
	return nullptr;
}

REPLAY_CALL struct mntent *getmntent(FILE *stream) __THROW
{
	if (!must_fail(CALL_GETMNTENT))
		// cppcheck-suppress CastIntegerToAddressAtReturn
		return REPLAY_REAL(getmntent)(stream);
	mark_error(stream);
	return nullptr;
}

REPLAY_CALL struct mntent *getmntent_r(FILE *stream, struct mntent *entry, char *buffer, int room) __THROW
{
	if (!must_fail(CALL_GETMNTENT))
		return REPLAY_REAL(getmntent_r)(stream, entry, buffer, room);
	mark_error(stream);
	return nullptr;
}
