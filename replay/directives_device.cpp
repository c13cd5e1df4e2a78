// SPDX-License-Identifier: Apache-2.0
// The lines of a host table that tell of a device, but for its content; one row of ANSWERS per request.
//
//   device /dev/hda
//     number 3:0
//     BLKGETSIZE 524288
//     HDIO_GETGEO 255 63 520
//     SCSI_IOCTL_GET_IDLUN fails EINVAL
//     opens 2
//     image disk.img
#include "replay/directives.h"

#include "replay/paths.h"
#include "replay/real.h"
#include "replay/words.h"

#include <string.h>
#include <unistd.h>

namespace replay
{

static constexpr char TWICE[] = "the device has this line already";

static bool read_one_number(const reading_t &in, char *cursor, uint64_t max, uint64_t *value)
{
	return read_numbers(in, cursor, 1, 1, &max, value) == 1;
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
	{"BLKGETSIZE64", BLKGETSIZE64_ANSWER, 1, 1, {UINT64_MAX}},
	{"BLKSSZGET", BLKSSZGET_ANSWER, 1, 1, {INT32_MAX}},
	{"BLKPBSZGET", BLKPBSZGET_ANSWER, 1, 1, {UINT32_MAX}},
	{"BLKROGET", BLKROGET_ANSWER, 1, 1, {1}},
	{"BLKIOMIN", BLKIOMIN_ANSWER, 1, 1, {UINT32_MAX}},
	{"BLKIOOPT", BLKIOOPT_ANSWER, 1, 1, {UINT32_MAX}},
	{"BLKALIGNOFF", BLKALIGNOFF_ANSWER, 1, 1, {INT32_MAX}},
	{"BLKGETZONESZ", BLKGETZONESZ_ANSWER, 1, 1, {UINT32_MAX}},
	{"HDIO_GETGEO", HDIO_GETGEO_ANSWER, 3, 4, {UINT8_MAX, UINT8_MAX, UINT16_MAX, UINT64_MAX}},
	{"SCSI_IOCTL_GET_IDLUN", GET_IDLUN_ANSWER, 1, 2, {UINT32_MAX, UINT32_MAX}},
	{"SCSI_IOCTL_SEND_COMMAND", SEND_COMMAND_ANSWER, 0, 0, {}},
	{"CDROM_GET_CAPABILITY", CDROM_GET_CAPABILITY_ANSWER, 1, 1, {INT32_MAX}},
	{"CDROM_DRIVE_STATUS", CDROM_DRIVE_STATUS_ANSWER, 1, 1, {INT32_MAX}},
	{"CDROM_LAST_WRITTEN", CDROM_LAST_WRITTEN_ANSWER, 1, 1, {INT64_MAX}},
	{"open", OPEN_ANSWER, 0, 0, {}},
};

static bool read_answer(reading_t &in, const answer_row_t &row, char *cursor)
{
	answer_t *to = &in.dev->answers[row.kind];
	bool fails = false;

	if (to->given)
		return fault(in, TWICE);
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

bool read_answer_line(reading_t &in, const char *word, char *cursor, bool *known)
{
	for (const answer_row_t &row : ANSWERS) {
		*known = strcmp(row.word, word) == 0;
		if (*known && !in.dev)
			return fault(in, "the line belongs to a device, and none is named before it");
		if (*known)
			return read_answer(in, row, cursor);
	}
	return false;
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

bool leave_device(reading_t &in)
{
	const bool good = end_device(in);
	in.dev = nullptr;
	return good;
}

// A name that begins a block: the only word of its kind, and once in the table.
bool read_device(reading_t &in, char *cursor)
{
	char plain[PATH_MAX];
	char *path = next_word(&cursor);

	if (!leave_device(in))
		return false;
	if (!path || next_word(&cursor) != nullptr)
		return fault(in, "device takes one path");
	if (!unescape(path) || strlen(path) > DEVICE_PATH_MAX || strncmp(path, "/dev/", 5) != 0)
		return fault(in, "no path below /dev, or one too long");
	if (!plain_path(path, plain) || strcmp(plain, path) != 0 || is_never_shown(plain))
		return fault(in, "this path is never shown from a host");
	if (find_device(in.table, path) != nullptr)
		return fault(in, "the device is in the table already");
	in.dev = take<device_t>(in);
	if (!in.dev)
		return false;
	in.dev->path = path;
	in.dev->line = in.line;
	in.table->devices.add(in.dev);
	return true;
}

// "8:16", as the kernel writes it.
bool read_number_line(reading_t &in, char *cursor)
{
	constexpr uint64_t MAJOR_MAX = 0xfff;
	constexpr uint64_t MINOR_MAX = 0xfffff;
	uint64_t numbers[2] = {};
	char *word = next_word(&cursor);
	char *colon = !word ? nullptr : strchr(word, ':');

	if (in.dev->has_number)
		return fault(in, TWICE);
	if (!colon || next_word(&cursor) != nullptr)
		return fault(in, "number takes MAJOR:MINOR");
	*colon = '\0';
	if (!read_number(word, MAJOR_MAX, &numbers[0]) || !read_number(colon + 1, MINOR_MAX, &numbers[1]))
		return fault(in, "number takes MAJOR:MINOR");
	in.dev->has_number = true;
	in.dev->major = static_cast<unsigned>(numbers[0]);
	in.dev->minor = static_cast<unsigned>(numbers[1]);
	return true;
}

bool read_opens(reading_t &in, char *cursor)
{
	if (in.dev->has_opens)
		return fault(in, TWICE);
	in.dev->has_opens = true;
	return read_one_number(in, cursor, UINT32_MAX, &in.dev->opens_left);
}

bool read_ends(reading_t &in, char *cursor)
{
	if (in.dev->has_end)
		return fault(in, TWICE);
	in.dev->has_end = true;
	return read_one_number(in, cursor, CONTENT_SECTORS_MAX, &in.dev->end);
}

bool read_image(reading_t &in, char *cursor)
{
	char path[PATH_MAX];
	char *name = next_word(&cursor);

	if (in.dev->image)
		return fault(in, TWICE);
	if (!name || next_word(&cursor) != nullptr)
		return fault(in, "image takes one file name");
	if (!unescape(name) || name[0] == '/' || strstr(name, "..") != nullptr)
		return fault(in, "the image must lie in the host's directory");
	if (!image_path(*in.table, name, path) || REPLAY_REAL(access)(path, R_OK) != 0)
		return fault(in, "the image cannot be read");
	in.dev->image = name;
	return true;
}

} // namespace replay
