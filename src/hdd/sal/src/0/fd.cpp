#include "hdd/sal/src/0/fd.h"

#include "hdd/sal/src/0/str.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

int fdopen_ro(const char *path)
{
	return open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

int fdopen_rw(const char *path)
{
	return open(path, O_RDWR | O_CLOEXEC | O_NONBLOCK);
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
