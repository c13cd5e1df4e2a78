// SPDX-License-Identifier: Apache-2.0
// Folders and files of sysfs, and of what is laid out like it: one attribute a file, one read an attribute.
#ifndef DISKSCOUT_BLOCK_SYSFS_H
#define DISKSCOUT_BLOCK_SYSFS_H

#include "arena.h"
#include "text.h"

#include <dirent.h>

// A folder that paths start from. What it stands for may go away meanwhile: then nothing below it is found
// any more, also not a device that got the same name since.
class Folder
{
public:
	explicit Folder(const char *path);
	Folder(const Folder &from, const char *path);
	Folder(const Folder &) = delete;
	Folder &operator=(const Folder &) = delete;
	~Folder();

	bool is_open() const { return fd_ >= 0; }
	// Why it is not.
	int error() const { return error_; }
	int fd() const { return fd_; }
	// False with errno set.
	bool has(const char *path) const;

	// Whether something that was read from here was not there: what the folder stands for may be gone.
	bool missed() const { return missed_; }
	void note_missing(int error) const;

private:
	int fd_;
	int error_;
	mutable bool missed_ = false;
};

// Whether the error says that what was to be read is not there, or is something else than is looked for: not,
// that nobody could look.
bool is_absence(int error);
// Whether it says that there is nothing at all.
bool is_missing(int error);

// The content of one small file. A longer one than fits is absent: nothing is cut.
struct attribute_t {
	static constexpr size_t ROOM = 4096; // what sysfs gives at most for a text
	char bytes[ROOM + 1];
	size_t length;

	text_t whole() const { return {bytes, length}; }
	text_t text() const { return trimmed(whole()); }
	const unsigned char *data() const { return reinterpret_cast<const unsigned char *>(bytes); }
};

// Each gives false, or what stands for absent, for what is not there, is no file or holds something else;
// read_attribute() with errno set.
bool read_attribute(const Folder &from, const char *path, attribute_t *to);
const char *read_text(Arena *arena, const Folder &from, const char *path);
// A number from 0 on, at most `most`; BLOCK_ABSENT.
int64_t read_count(const Folder &from, const char *path, int64_t most = INT64_MAX);
int read_int(const Folder &from, const char *path);
// 0 or 1 for a number; BLOCK_ABSENT.
int read_flag(const Folder &from, const char *path);
// Where a link leads, as it stands there; null.
const char *read_link(Arena *arena, const Folder &from, const char *path);

// A whole file of any length up to `most` bytes in the arena. Null, with errno set, when it cannot be read;
// one that is longer is EFBIG.
char *read_file(Arena *arena, const char *path, size_t most, size_t *length);
char *read_file(Arena *arena, const Folder &from, const char *path, size_t most, size_t *length);

// The names in a folder, "." and ".." left out, in no order.
class Entries
{
public:
	Entries(const Folder &from, const char *path);
	Entries(const Entries &) = delete;
	Entries &operator=(const Entries &) = delete;
	~Entries();

	bool is_open() const { return stream_ != nullptr; }
	// The next name, which lives until the one after it; null at the end.
	const char *next();
	// After the end: whether the folder could not be opened or its reading broke off; errno tells why.
	bool failed() const { return failed_; }

private:
	DIR *stream_;
	bool failed_;
};

#endif
