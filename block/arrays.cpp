// SPDX-License-Identifier: Apache-2.0
// Software RAID arrays from their folders in sysfs, /sys/class/block/md0/md; see diskscout_block.h.
//
// Read are only attributes that the kernel tells from memory: since release 4.0 it takes no lock of the array
// for them, so that one whose members hang is told like all others.
#include "inventory.h"
#include "md_member.h"
#include "queries.h"
#include "record.h"
#include "udev.h"

#include <errno.h>
#include <limits.h>
#include <string.h>

struct text_row_t {
	const char *path;
	const char *block_array::*field;
};
struct count_row_t {
	const char *path;
	int block_array::*field;
};

static constexpr text_row_t TEXTS[] = {
	{"level", &block_array::level},
	{"metadata_version", &block_array::metadata},
	{"sync_action", &block_array::sync_action},
	{"bitmap/location", &block_array::bitmap},
	{"consistency_policy", &block_array::consistency},
};
static constexpr count_row_t COUNTS[] = {
	{"raid_disks", &block_array::wanted},     {"degraded", &block_array::degraded},
	{"chunk_size", &block_array::chunk_size}, {"layout", &block_array::layout},
	{"sync_speed", &block_array::sync_speed},
};

// While the array is made into another shape: "4 (3)", what it will have and what it had.
static int read_shape(const Folder &md, const char *path)
{
	attribute_t attribute;
	int64_t value;
	if (!read_attribute(md, path, &attribute))
		return BLOCK_ABSENT;
	text_t text = attribute.text();
	if (!take_number(&text, &value) || value > INT_MAX || !(text.empty() || begins_with(text, " (")))
		return BLOCK_ABSENT;
	return static_cast<int>(value);
}

// "123 / 456"; "none", or "delayed" for one that waits for another array.
static void read_progress(const Folder &md, block_array *array)
{
	attribute_t attribute;
	int64_t done;
	int64_t total;
	if (!read_attribute(md, "sync_completed", &attribute))
		return;
	text_t text = attribute.text();
	if (!take_number(&text, &done) || !begins_with(text, " / ") || !read_number(text.substr(3), &total))
		return;
	array->sync_done = done;
	array->sync_total = total;
}

static constexpr size_t UUID_DIGITS = 32;

// Four times eight digits, with colons between.
static const char *uuid_text(Arena *arena, const char (&digits)[UUID_DIGITS])
{
	char text[UUID_DIGITS + 3];
	size_t length = 0;
	for (size_t i = 0; i < UUID_DIGITS; i++) {
		if (i > 0 && i % 8 == 0)
			text[length++] = ':';
		text[length++] = digits[i];
	}
	return arena->copy({text, length});
}

// The digits of one, whatever stands between them. False for another number of them, or zeros alone: an array
// without metadata has none.
static bool take_uuid(text_t text, char separator, char (&digits)[UUID_DIGITS])
{
	uint64_t any = 0;
	size_t length = 0;
	for (const char c : text) {
		uint64_t digit;
		if (c == separator)
			continue;
		if (length == UUID_DIGITS || !read_hex_number({&c, 1}, &digit))
			return false;
		any |= digit;
		digits[length++] = c;
	}
	return length == UUID_DIGITS && any != 0;
}

// Metadata 0.90 has four numbers, where later ones have bytes: on this machine the other way round.
static void swap_words(char (&digits)[UUID_DIGITS])
{
	char swapped[UUID_DIGITS];
	for (size_t i = 0; i < UUID_DIGITS; i += 2) {
		const size_t from = i / 8 * 8 + 6 - i % 8;
		swapped[i] = digits[from];
		swapped[i + 1] = digits[from + 1];
	}
	memcpy(digits, swapped, sizeof digits);
}

// Kernels of late tell it.
static const char *read_uuid(Arena *arena, const UdevDatabase &database, const Folder &md,
                             const block_device &device, const block_array &array)
{
	char digits[UUID_DIGITS];
	attribute_t attribute;
	if (read_attribute(md, "uuid", &attribute) && take_uuid(attribute.text(), '-', digits)) {
		if (array.metadata && strcmp(array.metadata, "0.90") == 0)
			swap_words(digits);
		return uuid_text(arena, digits);
	}
	const UdevRecord udev(arena, database, device.major, device.minor);
	return take_uuid(udev.value("MD_UUID"), ':', digits) ? uuid_text(arena, digits) : nullptr;
}

static void clear_array(const block_device &device, block_array *array)
{
	*array = {};
	array->record_size = sizeof *array;
	array->name = device.name;
	array->size = device.size;
	array->active = array->failed = array->spare = BLOCK_ABSENT;
	array->sync_done = array->sync_total = BLOCK_ABSENT;
}

static void read_state(Arena *arena, const Folder &md, block_array *array)
{
	for (const text_row_t &row : TEXTS)
		array->*row.field = read_text(arena, md, row.path);
	for (const count_row_t &row : COUNTS)
		array->*row.field = read_shape(md, row.path);
	read_progress(md, array);
	array->mismatches = read_count(md, "mismatch_cnt");
	// Last: what is stopped meanwhile is "clear" then, and no array any more.
	array->state = read_text(arena, md, "array_state");

	// The kernel's own words for "none yet".
	if (array->wanted == 0)
		array->wanted = BLOCK_ABSENT;
	if (array->chunk_size == 0)
		array->chunk_size = BLOCK_ABSENT;
	if (array->consistency && strcmp(array->consistency, "unknown") == 0)
		array->consistency = nullptr;
}

enum found_t { ARRAY, NO_ARRAY, FAILED };

static found_t read_array(Arena *arena, const UdevDatabase &database, const Folder &folder,
                          const block_device &device, block_array *array)
{
	const Folder md(folder, "md");
	if (!md.is_open()) {
		errno = md.error();
		return is_absence(errno) ? NO_ARRAY : FAILED;
	}
	clear_array(device, array);
	const bool listed = read_members(arena, md, array);
	const int error = errno;
	if (listed)
		read_state(arena, md, array);
	array->uuid = read_uuid(arena, database, md, device, *array);
	if (!folder.has("md") && is_absence(errno))
		return NO_ARRAY;
	errno = error;
	if (!listed)
		return FAILED;
	return array->state && strcmp(array->state, "clear") == 0 ? NO_ARRAY : ARRAY;
}

int list_arrays(void **result, int *length)
{
	Arena arena;
	Inventory devices(&arena);
	const UdevDatabase database;
	Chain<block_array> list(&arena);

	if (!devices.scan())
		return -1;
	for (const device_t *device : devices) {
		if (!is_kind(*device, "md"))
			continue;
		block_array array;
		const Folder folder(devices.class_folder(), device->sysname);
		const found_t found = read_array(&arena, database, folder, device->record, &array);
		if (found == FAILED)
			return -1;
		block_array *record = found == ARRAY ? list.add() : nullptr;
		if (record)
			*record = array;
	}
	if (arena.is_exhausted()) {
		errno = ENOMEM;
		return -1;
	}
	return hand_out(ARRAY_LAYOUT, list.first(), result, length);
}
