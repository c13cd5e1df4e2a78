// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/0/fd.h"

#include "hdd/sal/src/0/str.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// What stands at the path is asked before it is opened: asked afterwards, a drive would have been opened
// without its medium, and a pipe would have kept the host waiting. Both calls go by the name, so that
// whatever stands between the host and the C library sees which device is meant. Between them only somebody
// who may write to the directory can put another thing in the device's place; below /dev that is root.
static int open_device(const char *path, int access)
{
	struct stat status;
	if (stat(path, &status) != 0)
		return -1;
	return open(path, access | O_CLOEXEC | (S_ISBLK(status.st_mode) ? 0 : O_NONBLOCK));
}

int fdopen_ro(const char *path)
{
	return open_device(path, O_RDONLY);
}

int fdopen_rw(const char *path)
{
	return open_device(path, O_RDWR);
}

int fdseeks(int fd, unsigned long sector)
{
	// A sector whose byte position does not fit cannot be reached.
	if (sector > static_cast<unsigned long>(INT64_MAX) / SECTOR_SIZE)
		return -1;
	const off_t position = static_cast<off_t>(sector * SECTOR_SIZE);
	return lseek(fd, position, SEEK_SET) == position ? 0 : -1;
}

int fdread_buf(int fd, void *buf, unsigned long len)
{
	b0(buf, len);
	unsigned long done = 0;
	while (done < len) {
		const ssize_t got = read(fd, static_cast<char *>(buf) + done, len - done);
		if (got > 0)
			done += static_cast<unsigned long>(got);
		else if (got == 0 || errno != EINTR)
			return -1;
	}
	return 0;
}

int fdwrite_buf(int fd, const void *buf, unsigned long len)
{
	unsigned long done = 0;
	while (done < len) {
		const ssize_t put = write(fd, static_cast<const char *>(buf) + done, len - done);
		if (put > 0)
			done += static_cast<unsigned long>(put);
		else if (put == 0 || errno != EINTR)
			return -1;
	}
	return 0;
}

Descriptor::~Descriptor()
{
	if (is_open())
		close(fd_);
}
