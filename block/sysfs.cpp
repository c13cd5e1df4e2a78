// SPDX-License-Identifier: Apache-2.0
#include "sysfs.h"

#include "diskscout_block.h"

#include <errno.h>
#include <fcntl.h>
#include <initializer_list>
#include <limits.h>
#include <string.h>
#include <unistd.h>

// Not waiting for a writer: what stands in a file's place may be a pipe.
static constexpr int READING = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

Folder::Folder(const char *path) : fd_(open(path, O_PATH | O_DIRECTORY | O_CLOEXEC)), error_(errno) {}

Folder::Folder(const Folder &from, const char *path)
    : fd_(from.is_open() ? openat(from.fd(), path, O_PATH | O_DIRECTORY | O_CLOEXEC) : -1),
      error_(from.is_open() ? errno : from.error())
{
}

Folder::~Folder()
{
	if (is_open())
		close(fd_);
}

bool Folder::has(const char *path) const
{
	return faccessat(fd_, path, F_OK, 0) == 0;
}

void Folder::note_missing(int error) const
{
	missed_ = missed_ || is_missing(error);
}

bool is_missing(int error)
{
	return error == ENOENT || error == ENODEV;
}

bool is_absence(int error)
{
	for (const int absence : {ENOENT, ENODEV, ENOTDIR, EISDIR, ELOOP, EFBIG})
		if (error == absence)
			return true;
	return false;
}

static ssize_t read_some(int fd, void *to, size_t room)
{
	ssize_t got;
	do
		got = read(fd, to, room);
	while (got < 0 && errno == EINTR);
	return got;
}

bool read_attribute(const Folder &from, const char *path, attribute_t *to)
{
	const int fd = openat(from.fd(), path, READING);
	const ssize_t got = fd < 0 ? -1 : read_some(fd, to->bytes, sizeof to->bytes);
	const int error = got < 0 ? errno : EFBIG;
	if (got < 0)
		from.note_missing(error);
	if (fd >= 0)
		close(fd);
	if (got < 0 || static_cast<size_t>(got) > attribute_t::ROOM) {
		errno = error;
		return false;
	}
	to->length = static_cast<size_t>(got);
	return true;
}

const char *read_text(Arena *arena, const Folder &from, const char *path)
{
	attribute_t attribute;
	return read_attribute(from, path, &attribute) ? shown_text(arena, attribute.text()) : nullptr;
}

int64_t read_count(const Folder &from, const char *path, int64_t most)
{
	attribute_t attribute;
	int64_t value;
	if (!read_attribute(from, path, &attribute) || !read_number(attribute.text(), &value) || value > most)
		return BLOCK_ABSENT;
	return value;
}

int read_int(const Folder &from, const char *path)
{
	return static_cast<int>(read_count(from, path, INT_MAX));
}

int read_flag(const Folder &from, const char *path)
{
	const int value = read_int(from, path);
	return value > 1 ? 1 : value;
}

const char *read_link(Arena *arena, const Folder &from, const char *path)
{
	char target[PATH_MAX];
	const ssize_t length = readlinkat(from.fd(), path, target, sizeof target);
	if (length <= 0 || static_cast<size_t>(length) == sizeof target)
		return nullptr;
	return arena->copy({target, static_cast<size_t>(length)});
}

// Reads to the end, the room doubled as it fills up.
static char *read_all(Arena *arena, int fd, size_t most, size_t *length)
{
	size_t room = 4096;
	auto *text = static_cast<char *>(arena->take(room));
	size_t used = 0;

	while (text) {
		const ssize_t got = read_some(fd, text + used, room - used - 1);
		if (got < 0)
			return nullptr;
		used += static_cast<size_t>(got);
		if (used > most) {
			errno = EFBIG;
			return nullptr;
		}
		if (got == 0) {
			text[used] = '\0';
			*length = used;
			return text;
		}
		if (used == room - 1) {
			room *= 2;
			auto *larger = static_cast<char *>(arena->take(room));
			if (larger)
				memcpy(larger, text, used);
			text = larger;
		}
	}
	errno = ENOMEM;
	return nullptr;
}

static char *read_and_close(Arena *arena, int fd, size_t most, size_t *length)
{
	if (fd < 0)
		return nullptr;
	char *text = read_all(arena, fd, most, length);
	const int saved = errno;
	close(fd);
	errno = saved;
	return text;
}

char *read_file(Arena *arena, const char *path, size_t most, size_t *length)
{
	return read_and_close(arena, open(path, READING), most, length);
}

char *read_file(Arena *arena, const Folder &from, const char *path, size_t most, size_t *length)
{
	return read_and_close(arena, openat(from.fd(), path, READING), most, length);
}

static DIR *open_entries(const Folder &from, const char *path)
{
	if (!from.is_open()) {
		errno = from.error();
		return nullptr;
	}
	const int fd = openat(from.fd(), path, O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC);
	if (fd < 0)
		return nullptr;
	DIR *stream = fdopendir(fd);
	if (!stream) {
		const int saved = errno;
		close(fd);
		errno = saved;
	}
	return stream;
}

Entries::Entries(const Folder &from, const char *path)
    : stream_(open_entries(from, path)), failed_(stream_ == nullptr)
{
}

Entries::~Entries()
{
	if (stream_)
		closedir(stream_);
}

const char *Entries::next()
{
	while (stream_) {
		errno = 0;
		const dirent *entry = readdir(stream_);
		if (!entry) {
			failed_ = errno != 0;
			return nullptr;
		}
		if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0)
			return entry->d_name;
	}
	return nullptr;
}
