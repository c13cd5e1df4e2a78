// SPDX-License-Identifier: Apache-2.0
#include "udev.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

// Records of real devices have 2 to 4 KiB.
static constexpr size_t RECORD_MAX = size_t{256} << 10;

UdevRecord::UdevRecord(Arena *arena, const UdevDatabase &database, int major_number, int minor_number)
{
	char name[32];
	size_t length = 0;

	if (!database.folder().is_open() || major_number < 0)
		return;
	snprintf(name, sizeof name, "b%d:%d", major_number, minor_number);
	const char *text = read_file(arena, database.folder(), name, RECORD_MAX, &length);
	if (text)
		text_ = {text, length};
}

text_t UdevRecord::value(text_t key) const
{
	text_t rest = text_;
	while (!rest.empty()) {
		text_t line = take_until(&rest, '\n');
		if (!begins_with(line, "E:"))
			continue;
		line.remove_prefix(2);
		if (begins_with(line, key) && line.substr(key.size(), 1) == "=")
			return line.substr(key.size() + 1);
	}
	return {};
}

text_t UdevRecord::first_value(const text_t *keys, size_t count) const
{
	for (size_t i = 0; i < count; i++) {
		const text_t found = value(keys[i]);
		if (!found.empty())
			return found;
	}
	return {};
}

text_t UdevRecord::bytes(Arena *arena, text_t key) const
{
	const text_t text = value(key);
	char *bytes = text.empty() ? nullptr : arena->copy(text);
	if (!bytes)
		return {};
	size_t length = 0;
	for (size_t at = 0; at < text.size(); at++) {
		uint64_t byte;
		if (text.substr(at, 2) == "\\x" && text.size() - at >= 4 &&
		    read_hex_number(text.substr(at + 2, 2), &byte)) {
			bytes[length++] = static_cast<char>(byte);
			at += 3;
		} else {
			bytes[length++] = text[at];
		}
	}
	return {bytes, length};
}

const char *UdevRecord::decoded(Arena *arena, text_t key) const
{
	return shown_text(arena, trimmed(bytes(arena, key)));
}

text_t UdevRecord::next_link(text_t *rest)
{
	while (!rest->empty()) {
		text_t line = take_until(rest, '\n');
		if (begins_with(line, "S:") && line.size() > 2)
			return line.substr(2);
	}
	return {};
}
