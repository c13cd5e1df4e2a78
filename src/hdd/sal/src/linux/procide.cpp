// SPDX-License-Identifier: Apache-2.0
// A drive's directory under /proc/ide, such as /proc/ide/hda, holds among others:
//
//   media      disk
//   model      EXAMPLE DISK 256
//   identify   32 lines of 8 hexadecimal words, the 256 words of the drive's IDENTIFY data:
//              0040 0208 0000 0010 7e00 0200 003f 0000
#include "hdd/sal/src/linux/procide.h"

#include "base/text.h"
#include "hdd/sal/src/0/dir.h"
#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"

#include <string.h>

constexpr int IDENTIFY_LINES = 32;
constexpr int WORDS_A_LINE = 8;

// The data with the high byte of every word first: so texts stand in reading order.
struct identify_t {
	char bytes[IDENTIFY_LINES][WORDS_A_LINE * 2];

	std::string_view text(size_t from, size_t length) const
	{
		return std::string_view(&bytes[0][0] + from, length);
	}
};

static bool parse_identify_line(std::string_view line, char *row)
{
	line = str_cut(line);
	for (int i = 0; i < WORDS_A_LINE; i++) {
		unsigned word;
		if (!str_next_hex4(&line, &word))
			return false;
		*row++ = static_cast<char>(word >> 8);
		*row++ = static_cast<char>(word);
	}
	return true;
}

// The layout that the kernel gives all lines: four digits a word, one character between. False for any other.
static bool parse_identify_columns(const line_t line, char *row)
{
	int seen = 0; // turns negative at the first character that is no digit
	for (int i = 0; i < WORDS_A_LINE; i++, line += 5) {
		const int high = hex_digit_value(line[0]) * 16 | hex_digit_value(line[1]);
		const int low = hex_digit_value(line[2]) * 16 | hex_digit_value(line[3]);
		seen |= high | low | (line[4] == ' ' || i + 1 == WORDS_A_LINE ? 0 : -1);
		*row++ = static_cast<char>(high);
		*row++ = static_cast<char>(low);
	}
	return seen >= 0;
}

static int read_identify(const char *path, identify_t *identify)
{
	b0(identify, sizeof *identify);
	const Stream file(fsopen_ro(path));
	if (!file)
		return -1;

	int result = 0;
	int rows = 0;
	line_t line;
	while (fsread_line(file.get(), line) == 0) {
		char row[WORDS_A_LINE * 2];
		if (str_is_blank(line))
			continue;
		if (!parse_identify_columns(line, row) && !parse_identify_line(line, row)) {
			result = -1;
			continue;
		}
		if (rows == IDENTIFY_LINES)
			return -1;
		memcpy(identify->bytes[rows++], row, sizeof row);
	}
	return file.failed() ? -1 : result;
}

// The first line of a file of the drive, trimmed. 0, or -1.
static int read_field(const char *dir, const char *name, str_t field)
{
	CLEARED_BY_CALLEE fname_t path;
	CLEARED_BY_CALLEE line_t line;
	if (fn_join(path, dir, name) != 0 || fsread_line_by_path(path, line) != 0)
		return -1;
	str_copy(field, STR_SIZE, str_trim(line));
	return 0;
}

static int read_drive(const char *name, procide_dev_t *dev)
{
	CLEARED_BY_CALLEE fname_t dir;
	CLEARED_BY_CALLEE fname_t path;
	CLEARED_BY_CALLEE identify_t identify;
	if (!is_ide_name(split_devname(name)) || fn_join(dir, PPROCIDE_PATH, name) != 0 ||
	    fn_join(path, dir, "identify") != 0 || read_identify(path, &identify) != 0)
		return -1;
	str_copy(dev->sn, str_trim(identify.text(20, 20)));
	str_copy(dev->rev, str_trim(identify.text(46, 8)));
	if (read_field(dir, "media", dev->media) != 0 || read_field(dir, "model", dev->model) != 0)
		return -1;
	str_copy(dev->name, name);
	return 0;
}

int parse_procide_dev(procide_dev_t *dev, filter_func_t filter, void *arg, const char *name)
{
	procide_dev_t candidate = {};
	const int result = read_drive(name, &candidate);
	if (result != 0 || !keeps(filter, &candidate, arg)) {
		b0(dev, sizeof *dev);
		return result;
	}
	candidate.tag = 1;
	*dev = candidate;
	return 0;
}

static int is_drive(const dirent *entry)
{
	return is_ide_name(split_devname(entry->d_name));
}

int parse_procide_devlist(procide_devlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	const Listing drives(PPROCIDE_PATH, is_drive);
	if (!drives.is_read())
		return -1;

	int result = 0;
	CLEARED_BY_CALLEE procide_dev_t dev;
	for (int i = 0; i < drives.count(); i++) {
		if (parse_procide_dev(&dev, filter, arg, drives.name(i)) != 0 ||
		    (dev.tag != 0 && list_add(list, list->num, dev) != 0))
			result = -1;
	}
	return result;
}

void display_procide_devlist(const procide_devlist_t *list)
{
	dump_list_head(list);
	for (const procide_dev_t &dev : live_items(*list)) {
		dump_item_head(dev);
		fprintf(stderr, "%s %s %s\n\t\t%s %s\n", dev.name, dev.media, dev.model, dev.sn, dev.rev);
	}
}
