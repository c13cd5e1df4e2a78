// SPDX-License-Identifier: Apache-2.0
// A library as a program would load it at run time; it asks the host a few
// things through plain calls whose sizes the compiler does not know, so that
// the checked names are called.

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

extern "C" unsigned long probe_size(const char *path, int flags);
extern "C" size_t probe_file(const char *path, int flags, char *to, size_t count);
extern "C" size_t probe_line(const char *path, char *to, int size);
extern "C" size_t probe_link(const char *path, char *to, size_t count);

extern "C" unsigned long probe_size(const char *path, int flags)
{
	unsigned long sectors = 0;
	const int fd = open(path, flags);
	if (fd < 0 || ioctl(fd, BLKGETSIZE, &sectors) != 0)
		sectors = 0;
	if (fd >= 0)
		close(fd);
	return sectors;
}

extern "C" size_t probe_file(const char *path, int flags, char *to, size_t count)
{
	char local[64];
	const int fd = open(path, flags);
	if (fd < 0)
		return 0;
	const ssize_t got = read(fd, local, count);
	close(fd);
	if (got > 0)
		memcpy(to, local, static_cast<size_t>(got));
	return got > 0 ? static_cast<size_t>(got) : 0;
}

extern "C" size_t probe_line(const char *path, char *to, int size)
{
	char local[64];
	FILE *stream = fopen(path, "r");
	if (stream == nullptr)
		return 0;
	const bool got = fgets(local, size, stream) != nullptr;
	fclose(stream);
	if (!got)
		return 0;
	const size_t length = strlen(local);
	memcpy(to, local, length + 1);
	return length;
}

extern "C" size_t probe_link(const char *path, char *to, size_t count)
{
	char local[64];
	const ssize_t got = readlink(path, local, count);
	if (got > 0)
		memcpy(to, local, static_cast<size_t>(got));
	return got > 0 ? static_cast<size_t>(got) : 0;
}
