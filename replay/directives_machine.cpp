// SPDX-License-Identifier: Apache-2.0
// The lines of a host table that tell of the machine: the space on its file systems, and its kernel's name.
//
//   mount /boot 1024 15225 15188 14000 type 0xef53 files 3840
//   mount /stale fails ESTALE
//   uname release 6.1.0-18-amd64
#include "replay/directives.h"

#include "replay/words.h"

#include <string.h>

namespace replay
{

struct space_row_t {
	const char *word;
	uint64_t mount_t::*field;
};

// The first ones stand without their word.
static const space_row_t SPACE[] = {
	{nullptr, &mount_t::bsize},     {nullptr, &mount_t::blocks}, {nullptr, &mount_t::bfree},
	{nullptr, &mount_t::bavail},    {"type", &mount_t::type},    {"frsize", &mount_t::frsize},
	{"files", &mount_t::files},     {"ffree", &mount_t::ffree},  {"flags", &mount_t::flags},
	{"namelen", &mount_t::namelen}, {"fsid", &mount_t::fsid},
};
constexpr unsigned SPACE_ROWS = sizeof SPACE / sizeof SPACE[0];
constexpr unsigned NUMBERS_LEAST = 3;
constexpr unsigned NUMBERS_MOST = 4;

static bool is_number(const char *word)
{
	return word[0] >= '0' && word[0] <= '9';
}

// The row that the word names; SPACE_ROWS for none.
static unsigned find_row(const char *word)
{
	unsigned i = NUMBERS_MOST;
	while (i < SPACE_ROWS && strcmp(SPACE[i].word, word) != 0)
		++i;
	return i;
}

// The words after the path. `given` has a bit for each row that was said.
static bool read_space(const reading_t &in, char *cursor, mount_t *to, unsigned *given)
{
	unsigned numbers = 0;
	for (const char *word = next_word(&cursor); word; word = next_word(&cursor)) {
		const bool bare = is_number(word);
		const unsigned row = bare ? numbers++ : find_row(word);
		if (bare && (row == NUMBERS_MOST || *given >> NUMBERS_MOST != 0))
			return fault(in, "too many numbers");
		if (!bare && numbers < NUMBERS_LEAST)
			return fault(in, "a number is missing");
		if (row == SPACE_ROWS)
			return fault(in, "no such word of a mount");
		if ((*given & 1U << row) != 0)
			return fault(in, "the mount has this word already");
		*given |= 1U << row;
		const char *number = bare ? word : next_word(&cursor);
		if (!number)
			return fault(in, "a number is missing");
		if (!read_number(number, INT64_MAX, &(to->*SPACE[row].field)))
			return fault(in, "not a number, or one too large");
	}
	return numbers >= NUMBERS_LEAST || fault(in, "a number is missing");
}

static bool is_given(unsigned given, uint64_t mount_t::*field)
{
	for (unsigned i = 0; i < SPACE_ROWS; ++i) {
		if (SPACE[i].field == field)
			return (given & 1U << i) != 0;
	}
	return false;
}

bool read_mount(reading_t &in, char *cursor)
{
	constexpr uint64_t NAME_MAX_USUAL = 255;
	unsigned given = 0;
	bool fails = false;
	char *path = next_word(&cursor);

	if (!leave_device(in))
		return false;
	if (!path || !unescape(path) || path[0] != '/')
		return fault(in, "mount takes an absolute path");
	if (find_mount(in.table, path) != nullptr)
		return fault(in, "the mount is in the table already");
	mount_t *made = take<mount_t>(in);
	if (!made || !read_fails(in, &cursor, &fails, &made->error))
		return false;
	if (!fails && !read_space(in, cursor, made, &given))
		return false;
	if (!is_given(given, &mount_t::bavail))
		made->bavail = made->bfree;
	if (!is_given(given, &mount_t::frsize))
		made->frsize = made->bsize;
	if (!is_given(given, &mount_t::namelen))
		made->namelen = NAME_MAX_USUAL;
	made->path = path;
	in.table->mounts.add(made);
	return true;
}

unsigned uname_field(const char *name)
{
	static const char *const FIELDS[UNAME_FIELDS] = {"sysname", "nodename", "release", "version",
	                                                 "machine"};
	unsigned i = 0;

	while (i < UNAME_FIELDS && strcmp(FIELDS[i], name) != 0)
		++i;
	return i;
}

bool read_uname(reading_t &in, char *cursor)
{
	constexpr size_t TEXT_MAX = 64;
	const char *field = next_word(&cursor);
	char *text = next_word(&cursor);

	if (!leave_device(in))
		return false;
	if (!field || !text || next_word(&cursor) != nullptr)
		return fault(in, "uname takes a field and its text");
	const unsigned i = uname_field(field);
	if (i == UNAME_FIELDS)
		return fault(in, "uname has sysname, nodename, release, version and machine");
	if (in.table->uname[i])
		return fault(in, "the table has this line already");
	if (!unescape(text) || strlen(text) > TEXT_MAX)
		return fault(in, "no text for a field of uname, or one of more than 64 bytes");
	in.table->uname[i] = text;
	return true;
}

} // namespace replay
