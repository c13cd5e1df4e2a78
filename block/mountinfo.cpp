// SPDX-License-Identifier: Apache-2.0
#include "mountinfo.h"

#include "sysfs.h"

#include <errno.h>

// Each mount point of a host takes some hundred bytes.
static constexpr size_t TABLE_MAX = size_t{64} << 20;

// A text as the kernel has it, with a NUL behind it. False for one that holds a NUL: no kernel has such a
// name.
static bool decode(Arena *arena, text_t field, text_t *to)
{
	size_t length = 0;
	const char *decoded = octal_decoded(arena, field, &length);
	if (!decoded)
		return false;
	*to = {decoded, length};
	return to->find('\0') == text_t::npos;
}

static bool read_id(text_t field, int *id)
{
	int64_t value;
	if (!read_number(field, &value) || value > INT32_MAX)
		return false;
	*id = static_cast<int>(value);
	return true;
}

// What stands behind the "-": the source may be empty, blanks may stand in the options.
static bool read_filesystem(Arena *arena, text_t line, mount_entry_t *mount)
{
	const text_t type = take_until(&line, ' ');
	const text_t source = take_until(&line, ' ');
	return !type.empty() && !line.empty() && decode(arena, type, &mount->type) &&
	       decode(arena, source, &mount->source) && decode(arena, line, &mount->super_options);
}

static bool read_mount(Arena *arena, text_t line, mount_entry_t *mount)
{
	if (!read_id(take_until(&line, ' '), &mount->id) ||
	    !read_id(take_until(&line, ' '), &mount->parent_id) ||
	    !read_device_number(take_until(&line, ' '), &mount->major_number, &mount->minor_number))
		return false;
	const text_t root = take_until(&line, ' ');
	const text_t mount_point = take_until(&line, ' ');
	const text_t options = take_until(&line, ' ');
	if (root.empty() || options.empty() || !begins_with(mount_point, "/"))
		return false;
	// Any number of fields that later kernels may add to.
	while (!line.empty()) {
		if (take_until(&line, ' ') == "-")
			return decode(arena, root, &mount->root) &&
			       decode(arena, mount_point, &mount->mount_point) &&
			       decode(arena, options, &mount->options) && read_filesystem(arena, line, mount);
	}
	return false;
}

// The columns are parted by blanks and tabs, as many as it takes.
static text_t take_column(text_t *line)
{
	constexpr text_t BLANKS = " \t";
	const size_t start = line->find_first_not_of(BLANKS);
	*line = start == text_t::npos ? text_t() : line->substr(start);
	const text_t column = line->substr(0, line->find_first_of(BLANKS));
	line->remove_prefix(column.size());
	return column;
}

static bool read_kibibytes(text_t column, int64_t *bytes)
{
	int64_t value;
	if (!read_number(column, &value) || value > INT64_MAX / 1024)
		return false;
	*bytes = 1024 * value;
	return true;
}

static bool read_priority(text_t column, int *priority)
{
	const bool negative = begins_with(column, "-");
	int64_t value;
	if (!read_number(column.substr(negative ? 1 : 0), &value) || value > INT16_MAX + int{negative})
		return false;
	*priority = static_cast<int>(negative ? -value : value);
	return true;
}

// The heading is no such line: "Size" is no number.
static bool read_swap(Arena *arena, text_t line, swap_entry_t *swap)
{
	const text_t path = take_column(&line);
	const text_t type = take_column(&line);
	return read_kibibytes(take_column(&line), &swap->total) &&
	       read_kibibytes(take_column(&line), &swap->used) &&
	       read_priority(take_column(&line), &swap->priority) && decode(arena, path, &swap->path) &&
	       decode(arena, type, &swap->type);
}

template <class Entry>
static bool read_table(Arena *arena, const char *path, bool (*read)(Arena *, text_t, Entry *),
                       Growing<Entry> *entries)
{
	size_t length = 0;
	const char *text = read_file(arena, path, TABLE_MAX, &length);
	if (!text)
		return false;
	text_t rest = {text, length};
	while (!rest.empty()) {
		Entry entry = {};
		Entry *place = read(arena, take_until(&rest, '\n'), &entry) ? entries->add() : nullptr;
		if (place)
			*place = entry;
	}
	if (arena->is_exhausted())
		errno = ENOMEM;
	return !arena->is_exhausted();
}

bool read_mounts(Arena *arena, Growing<mount_entry_t> *mounts)
{
	return read_table(arena, "/proc/self/mountinfo", read_mount, mounts);
}

bool read_swaps(Arena *arena, Growing<swap_entry_t> *swaps)
{
	return read_table(arena, "/proc/swaps", read_swap, swaps);
}
