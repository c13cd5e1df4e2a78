// Calls that take a path and open nothing for long.
#include "replay/call.h"
#include "replay/faults.h"
#include "replay/host.h"
#include "replay/log.h"
#include "replay/real.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <unistd.h>

using namespace replay;

static_assert(sizeof(struct stat) == sizeof(struct stat64), "one form of the records serves both names");
static_assert(sizeof(struct statfs) == sizeof(struct statfs64), "one form of the records serves both names");

static int refuse(int error)
{
	errno = error;
	return -1;
}

// A device has no file whose status could be shown, and its number is nowhere in the table: it is a block
// device, and that is all.
template <class Record> static int device_status(Record *to)
{
	*to = {};
	to->st_mode = S_IFBLK | 0660;
	to->st_nlink = 1;
	to->st_blksize = 4096;
	return 0;
}

template <auto call, class Record>
static int replayed_stat(const char *name, links_t last, const char *path, Record *to)
{
	place_t at;
	if (must_fail(CALL_STAT))
		return -1;
	find_place(path, last, &at);
	if (at.kind == DEVICE_IN_HOST)
		return device_status(to);
	return real<call>(name)(library_path(at, path), to);
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

template <auto call, class Record>
static int replayed_stat_at(const char *name, int directory, const char *path, Record *to, int flags)
{
	place_t at;
	if (must_fail(CALL_STAT))
		return -1;
	find_place(path, (flags & AT_SYMLINK_NOFOLLOW) != 0 ? KEEP_LINK : FOLLOW_LINK, &at);
	if (at.kind == DEVICE_IN_HOST)
		return device_status(to);
	return real<call>(name)(directory, library_path(at, path), to, flags);
}

REPLAY_CALL int fstatat(int directory, const char *path, struct stat *to, int flags) __THROW
{
	return replayed_stat_at<&::fstatat>("fstatat", directory, path, to, flags);
}

REPLAY_CALL int fstatat64(int directory, const char *path, struct stat64 *to, int flags) __THROW
{
	return replayed_stat_at<&::fstatat64>("fstatat64", directory, path, to, flags);
}

// Newer tools, such as a child's ls, ask with this one alone.
REPLAY_CALL int statx(int directory, const char *path, int flags, unsigned mask, struct statx *to) __THROW
{
	place_t at;
	if (must_fail(CALL_STAT))
		return -1;
	find_place(path, (flags & AT_SYMLINK_NOFOLLOW) != 0 ? KEEP_LINK : FOLLOW_LINK, &at);
	if (at.kind != DEVICE_IN_HOST)
		return REPLAY_REAL(statx)(directory, library_path(at, path), flags, mask, to);
	*to = {};
	to->stx_mask = STATX_TYPE | STATX_MODE | STATX_NLINK;
	to->stx_mode = S_IFBLK | 0660;
	to->stx_nlink = 1;
	to->stx_blksize = 4096;
	return 0;
}

REPLAY_CALL int access(const char *path, int rights) __THROW
{
	place_t at;
	if (must_fail(CALL_STAT))
		return -1;
	find_place(path, FOLLOW_LINK, &at);
	if (at.kind == DEVICE_IN_HOST)
		return (rights & X_OK) != 0 ? refuse(EACCES) : 0;
	return REPLAY_REAL(access)(library_path(at, path), rights);
}

template <class Record, auto call> static int replayed_statfs(const char *name, const char *path, Record *to)
{
	if (must_fail(CALL_STATFS))
		return -1;
	host_table_t *host = shown_host();
	if (!host)
		return real<call>(name)(path, to);
	const mount_t *found = !path ? nullptr : find_mount(host, path);
	if (!found || found->error != 0)
		return refuse(!found ? ENOENT : found->error);
	*to = {};
	to->f_bsize = static_cast<decltype(to->f_bsize)>(found->bsize);
	to->f_frsize = to->f_bsize;
	to->f_blocks = found->blocks;
	to->f_bfree = found->bfree;
	to->f_bavail = found->bavail;
	to->f_namelen = 255;
	return 0;
}

REPLAY_CALL int statfs(const char *path, struct statfs *to) __THROW
{
	return replayed_statfs<struct statfs, &::statfs>("statfs", path, to);
}

REPLAY_CALL int statfs64(const char *path, struct statfs64 *to) __THROW
{
	return replayed_statfs<struct statfs64, &::statfs64>("statfs64", path, to);
}

REPLAY_CALL int scandir(const char *path, struct dirent ***names, int (*filter)(const struct dirent *),
                        int (*compare)(const struct dirent **, const struct dirent **))
{
	place_t at;
	if (must_fail(CALL_SCANDIR))
		return -1;
	find_place(path, FOLLOW_LINK, &at);
	if (at.kind == DEVICE_IN_HOST)
		return refuse(ENOTDIR);
	return REPLAY_REAL(scandir)(library_path(at, path), names, filter, compare);
}

REPLAY_CALL int scandir64(const char *path, struct dirent64 ***names, int (*filter)(const struct dirent64 *),
                          int (*compare)(const struct dirent64 **, const struct dirent64 **))
{
	place_t at;
	if (must_fail(CALL_SCANDIR))
		return -1;
	find_place(path, FOLLOW_LINK, &at);
	if (at.kind == DEVICE_IN_HOST)
		return refuse(ENOTDIR);
	return REPLAY_REAL(scandir64)(library_path(at, path), names, filter, compare);
}

REPLAY_CALL DIR *opendir(const char *path)
{
	place_t at;
	if (must_fail(CALL_OPENDIR))
		return nullptr;
	find_place(path, FOLLOW_LINK, &at);
	if (at.kind == DEVICE_IN_HOST) {
		errno = ENOTDIR;
		return nullptr;
	}
	return REPLAY_REAL(opendir)(library_path(at, path));
}

// The place of a link; false when the answer is settled and errno set.
static bool find_link(const char *path, place_t *at)
{
	if (must_fail(CALL_READLINK))
		return false;
	find_place(path, KEEP_LINK, at);
	if (at->kind == DEVICE_IN_HOST)
		errno = EINVAL;
	return at->kind != DEVICE_IN_HOST;
}

REPLAY_CALL ssize_t readlink(const char *path, char *buffer, size_t count) __THROW
{
	place_t at;
	return find_link(path, &at) ? REPLAY_REAL(readlink)(library_path(at, path), buffer, count) : -1;
}

REPLAY_CALL ssize_t readlinkat(int directory, const char *path, char *buffer, size_t count) __THROW
{
	place_t at;
	return find_link(path, &at)
	               ? REPLAY_REAL(readlinkat)(directory, library_path(at, path), buffer, count)
	               : -1;
}

REPLAY_CALL ssize_t __readlink_chk(const char *path, char *buffer, size_t count, size_t room)
{
	place_t at;
	return find_link(path, &at) ? REPLAY_REAL(__readlink_chk)(library_path(at, path), buffer, count, room)
	                            : -1;
}

REPLAY_CALL ssize_t __readlinkat_chk(int directory, const char *path, char *buffer, size_t count, size_t room)
{
	place_t at;
	return find_link(path, &at)
	               ? REPLAY_REAL(__readlinkat_chk)(directory, library_path(at, path), buffer, count, room)
	               : -1;
}

REPLAY_CALL int mknodat(int directory, const char *path, mode_t mode, dev_t number) __THROW
{
	place_t at;
	if (must_fail(CALL_MKNOD))
		return -1;
	find_place(path, KEEP_LINK, &at);
	if (at.kind == RUNNING)
		return REPLAY_REAL(mknodat)(directory, path, mode, number);
	log_mknod(at.shown, mode, number);
	return 0;
}

REPLAY_CALL int mknod(const char *path, mode_t mode, dev_t number) __THROW
{
	return mknodat(AT_FDCWD, path, mode, number);
}

REPLAY_CALL int mkdirat(int directory, const char *path, mode_t mode) __THROW
{
	place_t at;
	if (must_fail(CALL_MKDIR))
		return -1;
	find_place(path, KEEP_LINK, &at);
	if (at.kind == RUNNING)
		return REPLAY_REAL(mkdirat)(directory, path, mode);
	if (at.kind == DEVICE_IN_HOST || REPLAY_REAL(access)(at.stored, F_OK) == 0)
		return refuse(EEXIST);
	log_mkdir(at.shown, mode);
	return 0;
}

REPLAY_CALL int mkdir(const char *path, mode_t mode) __THROW
{
	return mkdirat(AT_FDCWD, path, mode);
}

REPLAY_CALL int unlink(const char *path) __THROW
{
	place_t at;
	if (must_fail(CALL_UNLINK))
		return -1;
	find_place(path, KEEP_LINK, &at);
	if (at.kind == RUNNING)
		return REPLAY_REAL(unlink)(path);
	log_unlink(at.shown);
	return 0;
}
