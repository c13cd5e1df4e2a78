// SPDX-License-Identifier: Apache-2.0
// Folders: to open, to list, to read the links in them, and where a path ends.
//
// A listing is that of the folder in the host's directory.
#include "replay/call.h"
#include "replay/faults.h"
#include "replay/place.h"
#include "replay/real.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

using namespace replay;

static_assert(sizeof(struct dirent) == sizeof(struct dirent64), "one form of the records serves both names");

// Where a folder lies; false, with errno set, for a place that is none.
static bool find_folder(int directory, const char *path, place_t *at)
{
	find_place(directory, path, FOLLOW_LINK, at);
	if (at->kind != NOWHERE && at->kind != DEVICE_IN_HOST)
		return true;
	errno = at->kind == NOWHERE ? at->error : ENOTDIR;
	return false;
}

REPLAY_CALL int scandirat(int directory, const char *path, struct dirent ***names,
                          int (*filter)(const struct dirent *),
                          int (*compare)(const struct dirent **, const struct dirent **))
{
	place_t at;
	if (must_fail(CALL_SCANDIR) || !find_folder(directory, path, &at))
		return -1;
	return REPLAY_REAL(scandirat)(directory, library_path(at, path), names, filter, compare);
}

REPLAY_CALL int scandirat64(int directory, const char *path, struct dirent64 ***names,
                            int (*filter)(const struct dirent64 *),
                            int (*compare)(const struct dirent64 **, const struct dirent64 **))
{
	place_t at;
	if (must_fail(CALL_SCANDIR) || !find_folder(directory, path, &at))
		return -1;
	return REPLAY_REAL(scandirat64)(directory, library_path(at, path), names, filter, compare);
}

REPLAY_CALL int scandir(const char *path, struct dirent ***names, int (*filter)(const struct dirent *),
                        int (*compare)(const struct dirent **, const struct dirent **))
{
	return scandirat(AT_FDCWD, path, names, filter, compare);
}

REPLAY_CALL int scandir64(const char *path, struct dirent64 ***names, int (*filter)(const struct dirent64 *),
                          int (*compare)(const struct dirent64 **, const struct dirent64 **))
{
	return scandirat64(AT_FDCWD, path, names, filter, compare);
}

REPLAY_CALL DIR *opendir(const char *path)
{
	place_t at;
	if (must_fail(CALL_OPENDIR) || !find_folder(AT_FDCWD, path, &at))
		return nullptr;
	return REPLAY_REAL(opendir)(library_path(at, path));
}

REPLAY_CALL DIR *fdopendir(int fd)
{
	return must_fail(CALL_OPENDIR) ? nullptr : REPLAY_REAL(fdopendir)(fd);
}

REPLAY_CALL struct dirent *readdir(DIR *directory)
{
	return must_fail(CALL_READDIR) ? nullptr : REPLAY_REAL(readdir)(directory);
}

REPLAY_CALL struct dirent64 *readdir64(DIR *directory)
{
	return must_fail(CALL_READDIR) ? nullptr : REPLAY_REAL(readdir64)(directory);
}

REPLAY_CALL int closedir(DIR *directory)
{
	const int result = REPLAY_REAL(closedir)(directory);
	return must_fail(CALL_CLOSEDIR) ? -1 : result;
}

// The place of a link; false when the answer is settled and errno set.
static bool find_link(int directory, const char *path, place_t *at)
{
	if (must_fail(CALL_READLINK))
		return false;
	find_place(directory, path, KEEP_LINK, at);
	if (at->kind != NOWHERE && at->kind != DEVICE_IN_HOST)
		return true;
	errno = at->kind == NOWHERE ? at->error : EINVAL;
	return false;
}

REPLAY_CALL ssize_t readlinkat(int directory, const char *path, char *buffer, size_t count) __THROW
{
	place_t at;
	if (!find_link(directory, path, &at))
		return -1;
	return REPLAY_REAL(readlinkat)(directory, library_path(at, path), buffer, count);
}

REPLAY_CALL ssize_t readlink(const char *path, char *buffer, size_t count) __THROW
{
	return readlinkat(AT_FDCWD, path, buffer, count);
}

REPLAY_CALL ssize_t __readlinkat_chk(int directory, const char *path, char *buffer, size_t count, size_t room)
{
	place_t at;
	if (!find_link(directory, path, &at))
		return -1;
	return REPLAY_REAL(__readlinkat_chk)(directory, library_path(at, path), buffer, count, room);
}

REPLAY_CALL ssize_t __readlink_chk(const char *path, char *buffer, size_t count, size_t room)
{
	return __readlinkat_chk(AT_FDCWD, path, buffer, count, room);
}

// Where the host's own path ends once all its links are followed; null, with errno set, when nothing is
// there.
static const char *end_of_path(const place_t &at)
{
	if (at.kind == NOWHERE)
		errno = at.error;
	const bool is_there = at.kind == DEVICE_IN_HOST ||
	                      (at.kind == FILE_IN_HOST && REPLAY_REAL(access)(at.stored, F_OK) == 0);
	return is_there ? at.shown : nullptr;
}

REPLAY_CALL char *realpath(const char *path, char *to) __THROW
{
	place_t at;
	if (must_fail(CALL_REALPATH))
		return nullptr;
	find_place(AT_FDCWD, path, FOLLOW_LINK, &at);
	if (at.kind == RUNNING)
		return REPLAY_REAL(realpath)(path, to);
	const char *end = end_of_path(at);
	if (!end || !to)
		return end ? strdup(end) : nullptr;
	return static_cast<char *>(memcpy(to, end, strlen(end) + 1));
}

// A buffer that is too small ends the program, as it does in the C library.
REPLAY_CALL char *__realpath_chk(const char *path, char *to, size_t room)
{
	if (room < PATH_MAX)
		abort();
	return realpath(path, to);
}

REPLAY_CALL char *canonicalize_file_name(const char *path) __THROW
{
	return realpath(path, nullptr);
}
