// What each line of a host table says; one row of DIRECTIVES or ANSWERS per word.
//
//   device /dev/hda
//     BLKGETSIZE 524288
//     HDIO_GETGEO 255 63 520
//   mount /boot 1024 15225 15188
//   covers /root/hardraid.cfg
//
// Numbers and words are checked to the last character, and nothing may be said twice.
#include "replay/directives.h"

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
		dprintf(STDERR_FILENO, "%s:%d: %s\n", in.file, line, what);
	else
		dprintf(STDERR_FILENO, "%s: %s\n", in.file, what);
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

static bool read_one_number(const reading_t &in, char *cursor, uint64_t max, uint64_t *value)
{
	return read_numbers(in, cursor, 1, 1, &max, value) == 1;
}

// "fails ENXIO": takes the words and stores the errno when the line says so.
static bool read_fails(const reading_t &in, char **cursor, bool *fails, int *error)
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

static bool read_reply(reading_t &in, char *cursor, answer_t *to)
{
	constexpr unsigned REPLY_MAX = 4096;
	cursor += strspn(cursor, " \t");
	const bool has_result = *cursor == '=';

	if (has_result) {
		uint64_t result = 0;
		++cursor;
		const char *number = next_word(&cursor);
		if (!number || !read_number(number, INT_MAX, &result))
			return fault(in, "no result after \"=\"");
		to->result = static_cast<int>(result);
	}
	to->reply = static_cast<unsigned char *>(in.memory->take(REPLY_MAX));
	if (!to->reply)
		return fault(in, "the table is too large");
	if (!read_hex(cursor, to->reply, REPLY_MAX, &to->reply_bytes))
		return fault(in, "no pairs of hexadecimal digits, or more than 4096 bytes");
	if (to->reply_bytes == 0 && !has_result)
		return fault(in, "the reply is missing");
	return true;
}

struct answer_row_t {
	const char *word;
	answer_kind_t kind;
	unsigned least, most;
	uint64_t max[4];
};

static const answer_row_t ANSWERS[] = {
	{"BLKGETSIZE", BLKGETSIZE_ANSWER, 1, 1, {UINT64_MAX}},
	{"HDIO_GETGEO", HDIO_GETGEO_ANSWER, 3, 4, {UINT8_MAX, UINT8_MAX, UINT16_MAX, UINT64_MAX}},
	{"SCSI_IOCTL_GET_IDLUN", GET_IDLUN_ANSWER, 1, 2, {UINT32_MAX, UINT32_MAX}},
	{"SCSI_IOCTL_SEND_COMMAND", SEND_COMMAND_ANSWER, 0, 0, {}},
	{"open", OPEN_ANSWER, 0, 0, {}},
};

static bool read_answer(reading_t &in, const answer_row_t &row, char *cursor)
{
	answer_t *to = &in.dev->answers[row.kind];
	bool fails = false;

	if (to->given)
		return fault(in, "the device has this line already");
	to->given = true;
	if (!read_fails(in, &cursor, &fails, &to->error))
		return false;
	if (fails)
		return true;
	if (row.kind == SEND_COMMAND_ANSWER)
		return read_reply(in, cursor, to);
	if (row.kind == OPEN_ANSWER)
		return fault(in, "open can only be said to fail");
	return read_numbers(in, cursor, row.least, row.most, row.max, to->value) > 0;
}

// The size may stand after the sectors, so that this waits for the block's end.
bool end_device(reading_t &in)
{
	uint64_t end = 0;
	if (!in.dev || !content_end(*in.dev, &end))
		return true;
	for (const sector_t *at = in.dev->sectors; at; at = at->next) {
		if (at->number >= end)
			return fault_at(in, at->line, "the sector lies beyond the device's end");
	}
	return true;
}

// A name that begins a block: the only word of its kind, and once in the table.
static bool read_device(reading_t &in, char *cursor)
{
	char plain[PATH_MAX];
	char *path = next_word(&cursor);

	if (!end_device(in))
		return false;
	if (!path || next_word(&cursor) != nullptr)
		return fault(in, "device takes one path");
	if (!unescape(path) || strlen(path) > DEVICE_PATH_MAX || strncmp(path, "/dev/", 5) != 0)
		return fault(in, "no path below /dev, or one too long");
	if (!plain_path(path, plain) || strcmp(plain, path) != 0 || is_never_shown(plain))
		return fault(in, "this path is never shown from a host");
	if (find_device(in.table, path) != nullptr)
		return fault(in, "the device is in the table already");
	in.dev = add(in, &in.table->devices);
	if (!in.dev)
		return false;
	in.dev->path = path;
	in.dev->line = in.line;
	return true;
}

static bool read_mount(reading_t &in, char *cursor)
{
	static constexpr uint64_t MOST[4] = {INT64_MAX, INT64_MAX, INT64_MAX, INT64_MAX};
	uint64_t values[4] = {};
	char *path = next_word(&cursor);
	bool fails = false;
	int error = 0;

	if (!end_device(in))
		return false;
	in.dev = nullptr;
	if (!path || !unescape(path) || path[0] != '/')
		return fault(in, "mount takes an absolute path");
	if (find_mount(in.table, path) != nullptr)
		return fault(in, "the mount is in the table already");
	if (!read_fails(in, &cursor, &fails, &error))
		return false;
	const unsigned count = fails ? 0 : read_numbers(in, cursor, 3, 4, MOST, values);
	if (!fails && count == 0)
		return false;
	mount_t *made = add(in, &in.table->mounts);
	if (!made)
		return false;
	made->path = path;
	made->error = error;
	made->bsize = values[0];
	made->blocks = values[1];
	made->bfree = values[2];
	made->bavail = count == 4 ? values[3] : values[2];
	return true;
}

// A folder may be named with the slash that tells it from a file.
static bool read_covers(reading_t &in, char *cursor)
{
	char plain[PATH_MAX];
	char *path = next_word(&cursor);

	if (!end_device(in))
		return false;
	in.dev = nullptr;
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

// What the plug-in asks the machine for.
static bool cover_the_usual(reading_t &in)
{
	static const char *const USUAL[] = {"/proc", "/dev", "/etc/mtab", "/root/hardraid.cfg"};
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
	for (const device_t *at = in.table->devices; at; at = at->next) {
		if (!is_covered(in.table, at->path))
			return fault_at(in, at->line, "no line covers this device");
	}
	return true;
}

static bool read_opens(reading_t &in, char *cursor)
{
	if (in.dev->has_opens)
		return fault(in, "the device has this line already");
	in.dev->has_opens = true;
	return read_one_number(in, cursor, UINT32_MAX, &in.dev->opens_left);
}

static bool read_ends(reading_t &in, char *cursor)
{
	if (in.dev->has_end)
		return fault(in, "the device has this line already");
	in.dev->has_end = true;
	return read_one_number(in, cursor, CONTENT_SECTORS_MAX, &in.dev->end);
}

static bool read_image(reading_t &in, char *cursor)
{
	char path[PATH_MAX];
	char *name = next_word(&cursor);

	if (in.dev->image)
		return fault(in, "the device has this line already");
	if (!name || next_word(&cursor) != nullptr)
		return fault(in, "image takes one file name");
	if (!unescape(name) || name[0] == '/' || strstr(name, "..") != nullptr)
		return fault(in, "the image must lie in the host's directory");
	if (!image_path(*in.table, name, path) || REPLAY_REAL(access)(path, R_OK) != 0)
		return fault(in, "the image cannot be read");
	in.dev->image = name;
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
	{"mount", ANYWHERE, read_mount},   {"opens", IN_DEVICE, read_opens},
	{"ends", IN_DEVICE, read_ends},    {"image", IN_DEVICE, read_image},
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
	for (const answer_row_t &row : ANSWERS) {
		if (strcmp(row.word, word) != 0)
			continue;
		if (!in.dev)
			return fault(in, "the line belongs to a device, and none is named before it");
		return read_answer(in, row, cursor);
	}
	return fault(in, "no such directive");
}

} // namespace replay
