// SPDX-License-Identifier: Apache-2.0
// Calls that would change the machine by a path: they are logged, and nothing is done.
#include "replay/call.h"
#include "replay/faults.h"
#include "replay/log.h"
#include "replay/place.h"
#include "replay/real.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace replay;

// The place that is to change; false, with errno set, when the call fails.
static bool find_change(counted_call_t call, int directory, const char *path, place_t *at)
{
	if (must_fail(call))
		return false;
	find_place(directory, path, KEEP_LINK, at);
	if (at->kind == NOWHERE)
		errno = at->error;
	return at->kind != NOWHERE;
}

REPLAY_CALL int mknodat(int directory, const char *path, mode_t mode, dev_t number) __THROW
{
	place_t at;
	if (!find_change(CALL_MKNOD, directory, path, &at))
		return -1;
	if (at.kind == RUNNING)
		return REPLAY_REAL(mknodat)(directory, library_path(at, path), mode, number);
	log_mknod(at.shown, mode, number);
	return 0;
}

REPLAY_CALL int mknod(const char *path, mode_t mode, dev_t number) __THROW
{
	return mknodat(AT_FDCWD, path, mode, number);
}

REPLAY_CALL int mkdirat(int directory, const char *path, mode_t mode) __THROW
{
	struct stat st = {};
	place_t at;
	if (!find_change(CALL_MKDIR, directory, path, &at))
		return -1;
	if (at.kind == RUNNING)
		return REPLAY_REAL(mkdirat)(directory, library_path(at, path), mode);
	if (at.kind == DEVICE_IN_HOST || REPLAY_REAL(lstat)(at.stored, &st) == 0) {
		errno = EEXIST;
		return -1;
	}
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
	if (!find_change(CALL_UNLINK, AT_FDCWD, path, &at))
		return -1;
	if (at.kind == RUNNING)
		return REPLAY_REAL(unlink)(path);
	log_unlink(at.shown);
	return 0;
}
