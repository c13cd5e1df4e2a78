// SPDX-License-Identifier: Apache-2.0
// What the machine says of itself: the space on its file systems, and the kernel's name.
#include "replay/call.h"
#include "replay/device.h"
#include "replay/faults.h"
#include "replay/real.h"
#include "replay/replay.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

using namespace replay;

static_assert(sizeof(struct statfs) == sizeof(struct statfs64), "one form of the records serves both names");
static_assert(sizeof(struct statvfs) == sizeof(struct statvfs64),
              "one form of the records serves both names");

// The answer of a mount of the table; a host has no others.
static const mount_t *answer_of(const mount_t *found)
{
	if (found && found->error == 0)
		return found;
	errno = !found ? ENOENT : found->error;
	return nullptr;
}

// The mount that something open lies on: it stands at its path or nearest above.
static const mount_t *mount_above(const host_table_t *host, char *path)
{
	const mount_t *found = find_mount(host, path);
	while (!found && path[0] == '/' && path[1] != '\0') {
		char *step = strrchr(path, '/');
		step[step == path ? 1 : 0] = '\0';
		found = find_mount(host, path);
	}
	return found;
}

template <class Record> static int give_space(const mount_t *from, Record *to)
{
	if (!from)
		return -1;
	*to = {};
	to->f_bsize = static_cast<decltype(to->f_bsize)>(from->bsize);
	to->f_frsize = static_cast<decltype(to->f_frsize)>(from->frsize);
	to->f_blocks = from->blocks;
	to->f_bfree = from->bfree;
	to->f_bavail = from->bavail;
	to->f_files = from->files;
	to->f_ffree = from->ffree;
	return 0;
}

static int give(const mount_t *from, struct statfs *to)
{
	if (give_space(from, to) != 0)
		return -1;
	to->f_type = static_cast<decltype(to->f_type)>(from->type);
	to->f_namelen = static_cast<decltype(to->f_namelen)>(from->namelen);
	to->f_flags = static_cast<decltype(to->f_flags)>(from->flags);
	memcpy(&to->f_fsid, &from->fsid, sizeof to->f_fsid);
	return 0;
}

static int give(const mount_t *from, struct statvfs *to)
{
	constexpr uint64_t FLAGS_TOLD = 0x20; // in statfs alone: that its flags are set
	if (give_space(from, to) != 0)
		return -1;
	to->f_favail = from->ffree;
	to->f_fsid = from->fsid;
	to->f_flag = from->flags & ~FLAGS_TOLD;
	to->f_namemax = from->namelen;
	return 0;
}

template <auto call, class Record> static int replayed_space(const char *name, const char *path, Record *to)
{
	if (must_fail(CALL_STATFS))
		return -1;
	const host_table_t *host = shown_host();
	if (!host)
		return real<call>(name)(path, to);
	return give(answer_of(path ? find_mount(host, path) : nullptr), to);
}

template <auto call, class Record> static int replayed_space_of(const char *name, int fd, Record *to)
{
	char path[PATH_MAX];
	if (must_fail(CALL_STATFS))
		return -1;
	const host_table_t *host = shown_host();
	if (!host || !descriptor_target(fd, path))
		return real<call>(name)(fd, to);
	(void)to_host_path(host, path);
	return give(answer_of(mount_above(host, path)), to);
}

REPLAY_CALL int statfs(const char *path, struct statfs *to) __THROW
{
	return replayed_space<&::statfs>("statfs", path, to);
}

REPLAY_CALL int statfs64(const char *path, struct statfs64 *to) __THROW
{
	return statfs(path, reinterpret_cast<struct statfs *>(to));
}

REPLAY_CALL int fstatfs(int fd, struct statfs *to) __THROW
{
	return replayed_space_of<&::fstatfs>("fstatfs", fd, to);
}

REPLAY_CALL int fstatfs64(int fd, struct statfs64 *to) __THROW
{
	return fstatfs(fd, reinterpret_cast<struct statfs *>(to));
}

REPLAY_CALL int statvfs(const char *path, struct statvfs *to) __THROW
{
	return replayed_space<&::statvfs>("statvfs", path, to);
}

REPLAY_CALL int statvfs64(const char *path, struct statvfs64 *to) __THROW
{
	return statvfs(path, reinterpret_cast<struct statvfs *>(to));
}

REPLAY_CALL int fstatvfs(int fd, struct statvfs *to) __THROW
{
	return replayed_space_of<&::fstatvfs>("fstatvfs", fd, to);
}

REPLAY_CALL int fstatvfs64(int fd, struct statvfs64 *to) __THROW
{
	return fstatvfs(fd, reinterpret_cast<struct statvfs *>(to));
}

// What the table does not say is the running kernel's.
REPLAY_CALL int uname(struct utsname *to) __THROW
{
	if (must_fail(CALL_UNAME))
		return -1;
	const int result = REPLAY_REAL(uname)(to);
	const host_table_t *host = shown_host();
	if (result != 0 || !host)
		return result;
	char *const fields[UNAME_FIELDS] = {to->sysname, to->nodename, to->release, to->version, to->machine};
	for (unsigned i = 0; i < UNAME_FIELDS; i++) {
		if (host->uname[i])
			snprintf(fields[i], sizeof to->release, "%s", host->uname[i]);
	}
	return 0;
}

extern "C" const char *replay_uname_told(const char *field)
{
	const host_table_t *host = shown_host();
	const unsigned i = uname_field(field);
	return host && i < UNAME_FIELDS ? host->uname[i] : nullptr;
}

// The C library asks the kernel for it inside itself.
REPLAY_CALL int gethostname(char *to, size_t room) __THROW
{
	struct utsname name = {};
	if (uname(&name) != 0)
		return -1;
	const size_t length = strlen(name.nodename) + 1;
	memcpy(to, name.nodename, length < room ? length : room);
	if (length <= room)
		return 0;
	errno = ENAMETOOLONG;
	return -1;
}

// More than there is room for ends the program, as it does in the C library.
REPLAY_CALL int __gethostname_chk(char *to, size_t count, size_t room)
{
	if (count > room)
		abort();
	return gethostname(to, count);
}
