// SPDX-License-Identifier: Apache-2.0
// Open descriptors of the captured host; see device.h.
#include "replay/device.h"

#include "replay/faults.h"
#include "replay/log.h"
#include "replay/paths.h"
#include "replay/real.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace replay
{

// The kernel shows a memfd as "/memfd:NAME (deleted)".
static const char COPY_MARK[] = "replay:";
static const char LINK_HEAD[] = "/memfd:replay:";
static const char LINK_TAIL[] = " (deleted)";

static int close_failed(int fd, int error)
{
	REPLAY_REAL(close)(fd);
	errno = error;
	return -1;
}

static int new_copy(const char *shown)
{
	char name[DEVICE_PATH_MAX + sizeof COPY_MARK];
	if (strlen(shown) > DEVICE_PATH_MAX) {
		errno = ENAMETOOLONG;
		return -1;
	}
	snprintf(name, sizeof name, "%s%s", COPY_MARK, shown);
	return memfd_create(name, MFD_CLOEXEC);
}

static bool copy_range(int from, int to, off_t start, off_t end)
{
	char block[16384];
	while (start < end) {
		const off_t left = end - start;
		const size_t want =
			left < static_cast<off_t>(sizeof block) ? static_cast<size_t>(left) : sizeof block;
		const ssize_t got = REPLAY_REAL(pread)(from, block, want, start);
		if (got <= 0 || pwrite(to, block, static_cast<size_t>(got), start) != got)
			return false;
		start += got;
	}
	return true;
}

// Only what holds data is copied: an image of a large disk is mostly holes.
static bool copy_file(const char *path, int to)
{
	struct stat st = {};
	const int from = REPLAY_REAL(open)(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
	if (from < 0)
		return false;
	bool good = REPLAY_REAL(fstat)(from, &st) == 0 && ftruncate(to, st.st_size) == 0;
	off_t at = good ? REPLAY_REAL(lseek)(from, 0, SEEK_DATA) : -1;
	while (good && at >= 0) {
		const off_t hole = REPLAY_REAL(lseek)(from, at, SEEK_HOLE);
		good = hole >= 0 && copy_range(from, to, at, hole);
		at = REPLAY_REAL(lseek)(from, hole, SEEK_DATA);
	}
	REPLAY_REAL(close)(from);
	return good;
}

static bool fill_device(const device_t &dev, int fd)
{
	char image[PATH_MAX];
	uint64_t end = 0;

	if (dev.image && (!image_path(*shown_host(), dev.image, image) || !copy_file(image, fd)))
		return false;
	for (const sector_t *at = dev.sectors; at; at = at->next) {
		const off_t offset = static_cast<off_t>(at->number * SECTOR_BYTES);
		if (pwrite(fd, at->data, SECTOR_BYTES, offset) != SECTOR_BYTES)
			return false;
	}
	return !content_end(dev, &end) || ftruncate(fd, static_cast<off_t>(end * SECTOR_BYTES)) == 0;
}

// A fresh description of the memfd, with the access mode that was asked for.
static int reopen(int fd, int flags)
{
	constexpr int KEPT = O_ACCMODE | O_APPEND | O_NONBLOCK | O_CLOEXEC | O_DIRECTORY | O_PATH;
	char path[64];
	snprintf(path, sizeof path, "/proc/self/fd/%d", fd);
	const int again = REPLAY_REAL(open)(path, flags & KEPT);
	const int saved = errno;
	REPLAY_REAL(close)(fd);
	errno = saved;
	return again;
}

// Takes one of the opens that are left; two threads may do so at once.
static bool take_open(device_t *dev)
{
	uint64_t left = __atomic_load_n(&dev->opens_left, __ATOMIC_RELAXED);
	while (left > 0 && !__atomic_compare_exchange_n(&dev->opens_left, &left, left - 1, false,
	                                                __ATOMIC_RELAXED, __ATOMIC_RELAXED))
		;
	return left > 0;
}

// The errno that opening the device ends with, or 0. A bare path does not reach the driver.
static int open_error(device_t *dev, int flags)
{
	const answer_t &opened = dev->answers[OPEN_ANSWER];
	if ((flags & O_DIRECTORY) != 0)
		return ENOTDIR;
	if ((flags & O_PATH) != 0)
		return 0;
	count_device_open();
	if (opened.error != 0)
		return opened.error;
	return dev->has_opens && !take_open(dev) ? ENXIO : 0;
}

static int open_device(device_t *dev, int flags)
{
	const int error = open_error(dev, flags);
	if (error != 0) {
		errno = error;
		return -1;
	}
	const int fd = new_copy(dev->path);
	if (fd < 0)
		return -1;
	if ((flags & O_PATH) == 0 && !fill_device(*dev, fd))
		return close_failed(fd, EIO);
	return reopen(fd, flags);
}

// The kernel's own trees take no new files, wherever they were captured from.
static bool may_create(const char *shown)
{
	return !lies_in(shown, "/proc") && !lies_in(shown, "/dev") && !lies_in(shown, "/sys");
}

static int open_file_copy(const place_t &at, int flags)
{
	struct stat st = {};
	const bool is_kept_link =
		(flags & O_NOFOLLOW) != 0 && REPLAY_REAL(lstat)(at.stored, &st) == 0 && S_ISLNK(st.st_mode);
	const bool exists = REPLAY_REAL(stat)(at.stored, &st) == 0;
	int error = 0;

	if (is_kept_link)
		error = ELOOP;
	else if (!exists && ((flags & O_CREAT) == 0 || !may_create(at.shown)))
		error = ENOENT;
	else if (exists && (flags & O_CREAT) != 0 && (flags & O_EXCL) != 0)
		error = EEXIST;
	else if (exists && S_ISDIR(st.st_mode))
		error = EISDIR;
	if (error != 0) {
		errno = error;
		return -1;
	}
	const int fd = new_copy(at.shown);
	if (fd < 0)
		return -1;
	if (exists && (flags & O_TRUNC) == 0 && !copy_file(at.stored, fd))
		return close_failed(fd, EIO);
	return reopen(fd, flags);
}

int open_place(const place_t &at, int flags, mode_t mode)
{
	const bool writes = (flags & O_PATH) == 0 &&
	                    ((flags & O_ACCMODE) != O_RDONLY || (flags & (O_CREAT | O_TRUNC)) != 0);
	if (at.kind == NOWHERE) {
		errno = at.error;
		return -1;
	}
	if (at.kind == DEVICE_IN_HOST)
		return open_device(at.dev, flags);
	if (writes)
		return open_file_copy(at, flags);
	return REPLAY_REAL(open)(at.stored, flags, mode);
}

bool is_copy(int fd, char (&path)[PATH_MAX])
{
	constexpr size_t HEAD = sizeof LINK_HEAD - 1;
	constexpr size_t TAIL = sizeof LINK_TAIL - 1;
	char target[PATH_MAX];

	if (shown_host() == nullptr || !descriptor_target(fd, target))
		return false;
	const size_t got = strlen(target);
	if (got < HEAD + TAIL || memcmp(target, LINK_HEAD, HEAD) != 0 ||
	    memcmp(target + got - TAIL, LINK_TAIL, TAIL) != 0)
		return false;
	const size_t length = got - HEAD - TAIL;
	memcpy(path, target + HEAD, length);
	path[length] = '\0';
	return true;
}

const device_t *open_device_of(int fd)
{
	char path[PATH_MAX];
	return is_copy(fd, path) ? find_device(shown_host(), path) : nullptr;
}

ssize_t swallow_write(int fd, const char *path, const void *data, size_t length)
{
	const int flags = fcntl(fd, F_GETFL);
	if (flags < 0 || (flags & O_ACCMODE) == O_RDONLY) {
		errno = EBADF;
		return -1;
	}
	const off_t offset = REPLAY_REAL(lseek)(fd, 0, SEEK_CUR);
	if (find_device(shown_host(), path) != nullptr || length > LOG_TEXT_MAX)
		log_bytes(path, offset, length);
	else
		log_text(path, static_cast<const char *>(data), length);
	REPLAY_REAL(lseek)(fd, static_cast<off_t>(length), SEEK_CUR);
	return static_cast<ssize_t>(length);
}

} // namespace replay
