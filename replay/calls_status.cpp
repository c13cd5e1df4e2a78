// SPDX-License-Identifier: Apache-2.0
// What stands at a path or behind a descriptor: stat, access and their like.
#include "replay/call.h"
#include "replay/device.h"
#include "replay/faults.h"
#include "replay/real.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace replay;

static_assert(sizeof(struct stat) == sizeof(struct stat64), "one form of the records serves both names");

static int refuse(int error)
{
	errno = error;
	return -1;
}

// A device has no file whose status could be shown: it is a block device with its number, and that is all.
template <class Record> static int device_status(const device_t &dev, Record *to)
{
	*to = {};
	to->st_mode = S_IFBLK | 0660;
	to->st_nlink = 1;
	to->st_blksize = 4096;
	to->st_rdev = makedev(dev.major, dev.minor);
	return 0;
}

// The answer that needs no file; false when `at` is one.
template <class Record> static bool is_settled(const place_t &at, Record *to, int *result)
{
	if (at.kind == NOWHERE)
		*result = refuse(at.error);
	else if (at.kind == DEVICE_IN_HOST)
		*result = device_status(*at.dev, to);
	return at.kind == NOWHERE || at.kind == DEVICE_IN_HOST;
}

template <auto call, class Record>
static int replayed_stat(const char *name, links_t last, const char *path, Record *to)
{
	place_t at;
	int result = 0;
	if (must_fail(CALL_STAT))
		return -1;
	find_place(AT_FDCWD, path, last, &at);
	return is_settled(at, to, &result) ? result : real<call>(name)(library_path(at, path), to);
}

REPLAY_CALL int stat(const char *path, struct stat *to) __THROW
{
	return replayed_stat<&::stat>("stat", FOLLOW_LINK, path, to);
}

REPLAY_CALL int stat64(const char *path, struct stat64 *to) __THROW
{
	return replayed_stat<&::stat64>("stat64", FOLLOW_LINK, path, to);
}

REPLAY_CALL int lstat(const char *path, struct stat *to) __THROW
{
	return replayed_stat<&::lstat>("lstat", KEEP_LINK, path, to);
}

REPLAY_CALL int lstat64(const char *path, struct stat64 *to) __THROW
{
	return replayed_stat<&::lstat64>("lstat64", KEEP_LINK, path, to);
}

// A call with an empty path and this flag asks for the descriptor itself.
static const device_t *device_itself(int fd, const char *path, int flags)
{
	const bool asks = (flags & AT_EMPTY_PATH) != 0 && (!path || path[0] == '\0');
	return asks ? open_device_of(fd) : nullptr;
}

static links_t links_of(int flags)
{
	return (flags & AT_SYMLINK_NOFOLLOW) != 0 ? KEEP_LINK : FOLLOW_LINK;
}

template <auto call, class Record>
static int replayed_stat_at(const char *name, int directory, const char *path, Record *to, int flags)
{
	place_t at;
	int result = 0;
	if (must_fail(CALL_STAT))
		return -1;
	const device_t *itself = device_itself(directory, path, flags);
	if (itself)
		return device_status(*itself, to);
	find_place(directory, path, links_of(flags), &at);
	return is_settled(at, to, &result) ? result
	                                   : real<call>(name)(directory, library_path(at, path), to, flags);
}

REPLAY_CALL int fstatat(int directory, const char *path, struct stat *to, int flags) __THROW
{
	return replayed_stat_at<&::fstatat>("fstatat", directory, path, to, flags);
}

REPLAY_CALL int fstatat64(int directory, const char *path, struct stat64 *to, int flags) __THROW
{
	return replayed_stat_at<&::fstatat64>("fstatat64", directory, path, to, flags);
}

// A copy is a file without a name; what has one needs no second look.
template <auto call, class Record> static int replayed_fstat(const char *name, int fd, Record *to)
{
	if (must_fail(CALL_STAT))
		return -1;
	const int result = real<call>(name)(fd, to);
	if (result != 0 || to->st_nlink != 0)
		return result;
	const device_t *itself = open_device_of(fd);
	return itself ? device_status(*itself, to) : result;
}

REPLAY_CALL int fstat(int fd, struct stat *to) __THROW
{
	return replayed_fstat<&::fstat>("fstat", fd, to);
}

REPLAY_CALL int fstat64(int fd, struct stat64 *to) __THROW
{
	return replayed_fstat<&::fstat64>("fstat64", fd, to);
}

// Newer tools, such as a child's ls, ask with this one alone.
REPLAY_CALL int statx(int directory, const char *path, int flags, unsigned mask, struct statx *to) __THROW
{
	place_t at;
	if (must_fail(CALL_STAT))
		return -1;
	const device_t *dev = device_itself(directory, path, flags);
	if (!dev) {
		find_place(directory, path, links_of(flags), &at);
		if (at.kind == NOWHERE)
			return refuse(at.error);
		dev = at.dev;
	}
	if (!dev)
		return REPLAY_REAL(statx)(directory, library_path(at, path), flags, mask, to);
	*to = {};
	to->stx_mask = STATX_TYPE | STATX_MODE | STATX_NLINK;
	to->stx_mode = S_IFBLK | 0660;
	to->stx_nlink = 1;
	to->stx_blksize = 4096;
	to->stx_rdev_major = dev->major;
	to->stx_rdev_minor = dev->minor;
	return 0;
}

REPLAY_CALL int faccessat(int directory, const char *path, int rights, int flags) __THROW
{
	place_t at;
	if (must_fail(CALL_STAT))
		return -1;
	find_place(directory, path, links_of(flags), &at);
	if (at.kind == NOWHERE)
		return refuse(at.error);
	if (at.kind == DEVICE_IN_HOST)
		return (rights & X_OK) != 0 ? refuse(EACCES) : 0;
	return REPLAY_REAL(faccessat)(directory, library_path(at, path), rights, flags);
}

REPLAY_CALL int access(const char *path, int rights) __THROW
{
	return faccessat(AT_FDCWD, path, rights, 0);
}

// Asked by tools beside the status: an access list, a label. No device has any.
template <auto call, class... Rest>
static ssize_t replayed_attribute(const char *name, links_t last, const char *path, Rest... rest)
{
	place_t at;
	if (must_fail(CALL_STAT))
		return -1;
	find_place(AT_FDCWD, path, last, &at);
	if (at.kind == NOWHERE || at.kind == DEVICE_IN_HOST)
		return refuse(at.kind == NOWHERE ? at.error : ENOTSUP);
	return real<call>(name)(library_path(at, path), rest...);
}

REPLAY_CALL ssize_t getxattr(const char *path, const char *name, void *value, size_t room) __THROW
{
	return replayed_attribute<&::getxattr>("getxattr", FOLLOW_LINK, path, name, value, room);
}

REPLAY_CALL ssize_t lgetxattr(const char *path, const char *name, void *value, size_t room) __THROW
{
	return replayed_attribute<&::lgetxattr>("lgetxattr", KEEP_LINK, path, name, value, room);
}

REPLAY_CALL ssize_t listxattr(const char *path, char *names, size_t room) __THROW
{
	return replayed_attribute<&::listxattr>("listxattr", FOLLOW_LINK, path, names, room);
}

REPLAY_CALL ssize_t llistxattr(const char *path, char *names, size_t room) __THROW
{
	return replayed_attribute<&::llistxattr>("llistxattr", KEEP_LINK, path, names, room);
}
