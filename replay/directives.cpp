// SPDX-License-Identifier: Apache-2.0
// The lines of a host table, one row of DIRECTIVES per word, and which paths it covers.
//
//   covers /root/hardraid.cfg
//
// Numbers and words are checked to the last character, and nothing may be said twice.
#include "replay/directives.h"

#include "replay/complaint.h"
#include "replay/paths.h"
#include "replay/real.h"
#include "replay/words.h"

#include <stdio.h>
#include <string.h>
#include <unistd.h>

namespace replay
{

bool fault_at(const reading_t &in, int line, const char *what)
{
	if (line > 0)
		complain("%s:%d: %s\n", in.file, line, what);
	else
		complain("%s: %s\n", in.file, what);
	return false;
}

bool fault(const reading_t &in, const char *what)
{
	return fault_at(in, in.line, what);
}

unsigned read_numbers(const reading_t &in, char *cursor, unsigned least, unsigned most, const uint64_t *max,
                      uint64_t *values)
{
	unsigned count = 0;
	for (const char *word = next_word(&cursor); word; word = next_word(&cursor)) {
		if (count == most) {
			fault(in, "too many numbers");
			return 0;
		}
		if (!read_number(word, max[count], &values[count])) {
			fault(in, "not a number, or one too large");
			return 0;
		}
		++count;
	}
	if (count < least) {
		fault(in, "a number is missing");
		return 0;
	}
	return count;
}

bool read_fails(const reading_t &in, char **cursor, bool *fails, int *error)
{
	char *at = *cursor;
	at += strspn(at, " \t");
	*fails = strncmp(at, "fails", 5) == 0 && (at[5] == ' ' || at[5] == '\t' || at[5] == '\0');
	if (!*fails)
		return true;
	*cursor = at + 5;
	const char *name = next_word(cursor);
	*error = !name ? 0 : errno_by_name(name);
	if (*error == 0)
		return fault(in, "no such error name");
	if (next_word(cursor) != nullptr)
		return fault(in, "words after the error name");
	return true;
}

// A folder may be named with the slash that tells it from a file.
static bool read_covers(reading_t &in, char *cursor)
{
	char plain[PATH_MAX];
	char *path = next_word(&cursor);

	if (!leave_device(in))
		return false;
	if (!path || next_word(&cursor) != nullptr)
		return fault(in, "covers takes one path");
	if (!unescape(path))
		return fault(in, "no path to cover");
	const size_t length = strlen(path);
	if (length > 1 && path[length - 1] == '/')
		path[length - 1] = '\0';
	if (!plain_path(path, plain) || strcmp(plain, path) != 0)
		return fault(in, "covers takes an absolute path without \"//\", \".\" and \"..\"");
	if (strcmp(path, "/") == 0)
		return fault(in, "a host that covers everything leaves no program to look at it");
	if (is_never_shown(path))
		return fault(in, "this path is never shown from a host");
	for (const cover_t *at = in.table->covers; at; at = at->next) {
		if (lies_in(path, at->path) || lies_in(at->path, path))
			return fault(in, "this path, or one above or below it, is covered already");
	}
	cover_t *made = add(in, &in.table->covers);
	if (!made)
		return false;
	made->path = path;
	return true;
}

// What the plug-ins ask the machine for. A host of before their time has none of the younger folders, and so
// no such devices: never the running machine's.
static bool cover_the_usual(reading_t &in)
{
	static const char *const USUAL[] = {"/proc",     "/dev",      "/sys",
	                                    "/run/udev", "/etc/mtab", "/root/hardraid.cfg"};
	for (const char *path : USUAL) {
		cover_t *made = add(in, &in.table->covers);
		if (!made)
			return false;
		made->path = path;
	}
	return true;
}

// A device may stand above the line that covers it.
bool end_table(reading_t &in)
{
	if (!in.table->covers && !cover_the_usual(in))
		return false;
	for (const device_t *at = in.table->devices.first; at; at = at->next) {
		if (!is_covered(in.table, at->path))
			return fault_at(in, at->line, "no line covers this device");
	}
	return true;
}

enum position_t { ANYWHERE, IN_DEVICE, IN_TABLE };

struct directive_row_t {
	const char *word;
	position_t where;
	bool (*read)(reading_t &in, char *cursor);
};

static const directive_row_t DIRECTIVES[] = {
	{"covers", ANYWHERE, read_covers}, {"device", ANYWHERE, read_device},
	{"mount", ANYWHERE, read_mount},   {"uname", ANYWHERE, read_uname},
	{"opens", IN_DEVICE, read_opens},  {"ends", IN_DEVICE, read_ends},
	{"image", IN_DEVICE, read_image},  {"number", IN_DEVICE, read_number_line},
	{"table", IN_DEVICE, read_table},  {"sector", IN_DEVICE, read_sector},
	{"entry", IN_TABLE, read_entry},
};

static bool read_directive(reading_t &in, const directive_row_t &row, char *cursor)
{
	if (row.where != ANYWHERE && !in.dev)
		return fault(in, "the line belongs to a device, and none is named before it");
	if (row.where == IN_TABLE && !in.open_table)
		return fault(in, "an entry stands right below its table");
	if (row.where != IN_TABLE)
		in.open_table = nullptr;
	in.open_raw = nullptr;
	return row.read(in, cursor);
}

bool read_line(reading_t &in, char *line)
{
	cut_comment(line);
	line += strspn(line, " \t");
	if (*line == '+' && in.open_raw)
		return add_raw_bytes(in, line + 1);
	if (*line == '+')
		return fault(in, "a \"+\" line goes on with a sector, and none stands before it");
	char *cursor = line;
	const char *word = next_word(&cursor);
	if (!word)
		return true;
	for (const directive_row_t &row : DIRECTIVES) {
		if (strcmp(row.word, word) == 0)
			return read_directive(in, row, cursor);
	}
	in.open_table = in.open_raw = nullptr;
	bool known = false;
	const bool good = read_answer_line(in, word, cursor, &known);
	return known ? good : fault(in, "no such directive");
}

} // namespace replay
