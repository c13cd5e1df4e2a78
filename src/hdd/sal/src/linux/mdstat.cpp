// SPDX-License-Identifier: Apache-2.0
// /proc/mdstat, up to three lines an array and a blank one between them:
//
//   md0 : active raid1 sdb1[1] sda1[0](F)
//         130944 blocks [2/1] [_U]
//         [==>..................]  recovery = 12.6% (16512/130944) finish=0.3min speed=5504K/sec
//
// A member is a device, its role in brackets, and marks: (F) failed, (S) spare. A device that the kernel has
// no name for stands as [dev 08:11]. Blocks are of 1024 bytes.
#include "hdd/sal/src/linux/mdstat.h"

#include "base/text.h"
#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/devio.h"

#include <limits.h>

// ---- pieces of a line ----

static bool begins_with_digit(std::string_view text)
{
	return !text.empty() && is_digit(text[0]);
}

// The number at the text's start. False when there is none.
static bool take_number(std::string_view *text, int64_t *value)
{
	return begins_with_digit(*text) && take_decimal(text, value);
}

static bool take_int(std::string_view *text, int *value)
{
	return begins_with_digit(*text) && take_decimal(text, value);
}

static void skip_blanks(std::string_view *text)
{
	while (!text->empty() && is_blank(text->front()))
		text->remove_prefix(1);
}

// What follows the first such character; empty, without data, when there is none.
static std::string_view behind(std::string_view text, char c)
{
	const size_t position = text.find(c);
	return position == std::string_view::npos ? std::string_view() : str_columns(text, position + 1);
}

// ---- the array line ----

struct level_t {
	std::string_view word;
	char level;
};

static constexpr level_t LEVELS[] = {{"linear", 'l'}, {"raid0", '0'}, {"raid1", '1'}, {"raid5", '5'}};

// Takes "active" or "inactive" and the level. 0, or -1.
static int take_state(std::string_view *text, mdstat_dev_t *dev)
{
	std::string_view word;
	str_next_word(text, &word);
	dev->active = str_begins(word, "active");
	if (!dev->active && !str_begins(word, "inactive"))
		return -1;

	std::string_view rest = *text;
	str_next_word(&rest, &word);
	for (const level_t &row : LEVELS) {
		if (!str_begins(word, row.word))
			continue;
		dev->mdlevel = row.level;
		*text = rest;
		return 0;
	}
	// An array that is not running may tell no level: its members follow at once.
	return dev->active ? -1 : 0;
}

// Splits the member at the text's start into its device and what follows the bracket before its role. False
// when a bracket is missing.
static bool split_member(std::string_view text, std::string_view *device, std::string_view *role)
{
	constexpr std::string_view NAMELESS = "[dev ";
	if (str_begins(text, "[")) {
		const std::string_view inside = str_columns(text, NAMELESS.size());
		const size_t end = inside.find(']');
		if (end == std::string_view::npos)
			return false;
		*device = str_columns(inside, 0, end);
		*role = behind(str_columns(inside, end), '[');
		return role->data() != nullptr;
	}
	// A word without a bracket is part of the name, which no device has then.
	*device = str_columns(text, 0, text.find('['));
	*role = behind(text, '[');
	return role->data() != nullptr;
}

// What follows a member's role: whether the member is marked as failed. Takes the rest of the word.
static bool take_marks(std::string_view *text)
{
	constexpr std::string_view FAULTY = "(F)";
	const size_t blank = text->find_first_of(" \t");
	const std::string_view marks = str_columns(*text, 0, blank);
	*text = str_columns(*text, marks.size());
	return marks.size() >= FAULTY.size() && str_columns(marks, marks.size() - FAULTY.size()) == FAULTY;
}

// Parses the members up to the end of the text, or up to something that is no member. 0, or -1 when one of
// them cannot be named or stored.
static int parse_members(mdstat_subdevlist_t *list, std::string_view text)
{
	int result = 0;
	std::string_view device;
	std::string_view rest;
	CLEARED_BY_CALLEE mdstat_subdev_t subdev;
	for (skip_blanks(&text); split_member(text, &device, &rest); skip_blanks(&text)) {
		fname_t path;
		int role;
		b0(&subdev, sizeof subdev);
		str_copy(path, device);
		if (ok_devname(path, subdev.name) != 0)
			result = -1;
		if (!take_int(&rest, &role))
			break;
		subdev.faulty = take_marks(&rest);
		list->nr_faulty += subdev.faulty;
		if (list_add(list, role, subdev) != 0)
			result = -1;
		text = rest;
	}
	return result;
}

static int parse_array_line(mdstat_dev_t *dev, std::string_view line)
{
	std::string_view number = str_columns(line, 2);
	take_int(&number, &dev->mdminor);
	std::string_view text = behind(line, ':');
	if (!text.data() || take_state(&text, dev) != 0)
		return -1;

	list_clear(&dev->subdevlist);
	const int result = parse_members(&dev->subdevlist, str_cut(text));
	dev->nr_faulty = dev->subdevlist.nr_faulty;
	if (dev->mdlevel == 'l' || dev->mdlevel == '0') {
		dev->nr_original = dev->subdevlist.num_real;
		dev->nr_normal = dev->subdevlist.num_real;
	}
	return result;
}

// ---- the lines below ----

// A bracket or a slash without a number counts as 0; without them the count stays.
static void take_count(std::string_view *text, int *count)
{
	if (text->data())
		*count = 0;
	take_int(text, count);
}

static int parse_size_line(mdstat_dev_t *dev, std::string_view line)
{
	int64_t blocks;
	skip_blanks(&line);
	if (!take_number(&line, &blocks))
		return -1;
	dev->size = static_cast<size32_t>(blocks) * 2;

	std::string_view counts = behind(line, '[');
	take_count(&counts, &dev->nr_original);
	counts = behind(counts, '/');
	take_count(&counts, &dev->nr_normal);
	const std::string_view status = behind(counts, '[');
	const size_t end = status.find(']');
	if (end != std::string_view::npos)
		str_copy(dev->status, str_columns(status, 0, end));
	return 0;
}

// "12.6%" as 126.
// compat: one digit behind the point counts, 12.34% is 123: more of them would not be tenths any more.
static int take_tenths(std::string_view text)
{
	int whole = 0;
	int tenths = 0;
	take_int(&text, &whole);
	if (str_begins(text, "."))
		text.remove_prefix(1);
	else
		text = {};
	text = str_columns(text, 0, 1);
	take_int(&text, &tenths);
	return whole > (INT_MAX - tenths) / 10 ? INT_MAX : whole * 10 + tenths;
}

static int parse_progress_line(mdstat_dev_t *dev, std::string_view line)
{
	static constexpr std::string_view WORDS[] = {"resync", "recovery"};
	const size_t at[] = {line.find(WORDS[0]), line.find(WORDS[1])};
	const bool is_recovery = at[0] == std::string_view::npos;
	if (is_recovery == (at[1] == std::string_view::npos))
		return 0;

	const int found = is_recovery ? 1 : 0;
	std::string_view text = str_columns(line, at[found] + WORDS[found].size());
	skip_blanks(&text);
	if (!str_begins(text, "="))
		return -1;
	text.remove_prefix(1);
	skip_blanks(&text);
	dev->resync_type = found + 1;
	dev->resync_progress = take_tenths(text);
	return 0;
}

// ---- arrays ----

static std::string_view line_text(const char *line)
{
	const std::string_view text(line, strnlen(line, LINE_SIZE));
	return str_columns(text, 0, text.find('\n'));
}

int parse_mdstat_dev(mdstat_dev_t *dev, filter_func_t filter, void *arg, char lines[][LINE_SIZE])
{
	b0(dev, sizeof *dev);
	const bool parsed = parse_array_line(dev, line_text(lines[0])) == 0 &&
	                    parse_size_line(dev, line_text(lines[1])) == 0 &&
	                    parse_progress_line(dev, line_text(lines[2])) == 0;
	if (parsed && keeps(filter, dev, arg))
		dev->tag = 1;
	else
		b0(dev, sizeof *dev);
	return parsed ? 0 : -1;
}

// 0, or -1 when the array is malformed or finds no room.
static int add_array(mdstat_devlist_t *list, filter_func_t filter, void *arg, char lines[][LINE_SIZE])
{
	CLEARED_BY_CALLEE mdstat_dev_t dev;
	if (parse_mdstat_dev(&dev, filter, arg, lines) != 0)
		return -1;
	if (dev.tag == 0)
		return 0;
	if (list_add(list, LIST_FIRST_FREE, dev) != 0)
		return -1;
	list_renumber(&list->item[list->num - 1].subdevlist);
	return 0;
}

int parse_mdstat_devlist(mdstat_devlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	const Stream table(fsopen_ro(PMDSTAT_PATH));
	if (!table)
		return -1;

	int result = 0;
	line_t lines[3];
	while (fsread_line(table.get(), lines[0]) == 0) {
		if (!str_begins(lines[0], "md"))
			continue;
		// Without progress the third one is the blank line.
		fsread_line(table.get(), lines[1]);
		fsread_line(table.get(), lines[2]);
		// Half an array is none.
		if (table.failed())
			break;
		if (add_array(list, filter, arg, lines) != 0)
			result = -1;
	}
	return table.failed() ? -1 : result;
}

static void dump_members(const mdstat_subdevlist_t &members)
{
	fprintf(stderr, "    subdev(num=%d,num_real=%d):", members.num, members.num_real);
	for (const mdstat_subdev_t &member : live_items(members))
		fprintf(stderr, " %s[%d]%s", member.name, member.index, member.faulty ? "(F)" : "");
	fputs("\n", stderr);
}

void display_mdstat_devlist(const mdstat_devlist_t *list)
{
	dump_list_head(list);
	for (const mdstat_dev_t &dev : live_items(*list)) {
		dump_item_head(dev);
		fprintf(stderr, "md%d: %s %c %10d [%d/%d](F%d) %s %d.%d%%%d\n", dev.mdminor,
		        dev.active ? "active  " : "inactive", dev.mdlevel, low_32(dev.size), dev.nr_original,
		        dev.nr_normal, dev.nr_faulty, dev.status, dev.resync_progress / 10,
		        dev.resync_progress % 10, dev.resync_type);
		dump_members(dev.subdevlist);
	}
}
