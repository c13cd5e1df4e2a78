// SPDX-License-Identifier: Apache-2.0
#include "uevent.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>

static bool is_digit(char c)
{
	return c >= '0' && c <= '9';
}

// The driver's own word for its devices: the name up to its number.
static text_t driver_word(text_t name)
{
	size_t end = 0;
	while (end < name.size() && !is_digit(name[end]) && name[end] != '!')
		end++;
	return name.substr(0, end);
}

// Kinds of whole devices by how the kernel names them; "md" has names of the administrator's, too: md_home.
static constexpr struct {
	text_t word;
	const char *kind;
} KINDS[] = {
	{"sr", "rom"},    {"dm-", "dm"},      {"md", "md"},     {"md_d", "md"},  {"loop", "loop"},
	{"zram", "zram"}, {"ram", "ram"},     {"fd", "floppy"}, {"sd", "disk"},  {"vd", "disk"},
	{"nvme", "disk"}, {"mmcblk", "disk"}, {"hd", "disk"},   {"xvd", "disk"},
};

static const char *kind_of(Arena *arena, text_t sysname, text_t path)
{
	const text_t word = driver_word(sysname);
	if (begins_with(word, "md_"))
		return "md";
	for (const auto &row : KINDS) {
		// Letters are numbers to some: sda, vdb.
		if (begins_with(word, row.word) && (word == row.word || strcmp(row.kind, "disk") == 0))
			return row.kind;
	}
	const bool hardware = !begins_with(path, "devices/virtual/") && !begins_with(path, "devices/rbd/");
	return hardware || word.empty() ? "disk" : shown_text(arena, word);
}

// The keys that hold a number.
enum { MAJOR_KEY, MINOR_KEY, PARTITION_KEY, NUMBER_KEYS };

struct uevent_t {
	int64_t numbers[NUMBER_KEYS]; // BLOCK_ABSENT
	text_t node;
	text_t type;
};

static uevent_t parse_uevent(text_t text)
{
	static constexpr text_t KEYS[NUMBER_KEYS] = {"MAJOR", "MINOR", "PARTN"};
	uevent_t uevent = {{BLOCK_ABSENT, BLOCK_ABSENT, BLOCK_ABSENT}, {}, {}};

	while (!text.empty()) {
		text_t line = take_until(&text, '\n');
		const text_t key = take_until(&line, '=');
		int64_t value;
		for (size_t i = 0; i < NUMBER_KEYS; i++)
			if (key == KEYS[i] && read_number(line, &value) && value <= INT32_MAX)
				uevent.numbers[i] = value;
		if (key == "DEVNAME")
			uevent.node = line;
		else if (key == "DEVTYPE")
			uevent.type = line;
	}
	return uevent;
}

// Nothing has no number but what is hidden.
static bool is_hidden(const Folder &folder, device_t *device)
{
	attribute_t hidden;
	if (read_attribute(folder, "hidden", &hidden))
		return hidden.text() == "1";
	device->error = is_absence(errno) ? 0 : errno;
	return false;
}

static const char *node_of(Arena *arena, text_t name)
{
	const char *shown = shown_text(arena, name);
	const size_t room = (shown ? strlen(shown) : 0) + sizeof "/dev/";
	auto *path = static_cast<char *>(arena->take(room));
	if (!path || !shown)
		return nullptr;
	snprintf(path, room, "/dev/%s", shown);
	return path;
}

bool read_uevent(Arena *arena, text_t text, const Folder &folder, device_t *device)
{
	block_device *record = &device->record;
	const uevent_t uevent = parse_uevent(text);
	const bool numbered = uevent.numbers[MAJOR_KEY] > 0 && uevent.numbers[MINOR_KEY] >= 0;

	if (!numbered && !is_hidden(folder, device))
		return false;
	record->hidden = !numbered;
	if (numbered) {
		record->major = static_cast<int>(uevent.numbers[MAJOR_KEY]);
		record->minor = static_cast<int>(uevent.numbers[MINOR_KEY]);
		record->node = node_of(arena, uevent.node);
	}
	if (uevent.type == "partition") {
		record->kind = "partition";
		record->partition_number = static_cast<int>(uevent.numbers[PARTITION_KEY]);
	} else {
		// Only a path of another device has no number.
		record->kind = numbered ? kind_of(arena, device->sysname, device->path) : "path";
	}
	return true;
}
