// SPDX-License-Identifier: Apache-2.0
#include "mapper.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/dm-ioctl.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/sysmacros.h>
#include <unistd.h>

// What stands before the first "-" of a uuid says who made the mapping.
static constexpr struct {
	text_t prefix;
	const char *kind;
} KINDS[] = {
	{"LVM", "lvm"},
	{"CRYPT", "crypt"},
	{"mpath", "multipath"},
};

static const char *small_letters(Arena *arena, text_t text)
{
	char *copy = arena->copy(text);
	for (size_t i = 0; copy && i < text.size(); i++)
		if (copy[i] >= 'A' && copy[i] <= 'Z')
			copy[i] = static_cast<char>(copy[i] - 'A' + 'a');
	return copy;
}

static const char *kind_of(Arena *arena, const char *uuid)
{
	text_t rest = uuid ? uuid : "";
	const text_t prefix = take_until(&rest, '-');
	if (prefix.empty() || rest.empty())
		return "unknown";
	for (const auto &row : KINDS)
		if (prefix == row.prefix)
			return row.kind;
	// "part1-mpath-...": the first partition of another mapping.
	int64_t number;
	if (begins_with(prefix, "part") && read_number(prefix.substr(4), &number))
		return "partition";
	return small_letters(arena, prefix);
}

MapperControl::~MapperControl()
{
	if (fd_ >= 0)
		close(fd_);
}

// A whole answer of the control node.
struct table_t {
	dm_ioctl head;
	char data[16 << 10];
};

// Appends the word unless it is there.
static void add_word(char *words, size_t room, const char *word)
{
	const size_t length = strlen(word);
	const size_t used = strlen(words);
	text_t rest = std::string_view(words, used);
	while (!rest.empty())
		if (take_until(&rest, ',') == word)
			return;
	if (length == 0 || used + 1 + length >= room)
		return;
	char *to = words + used;
	if (used > 0)
		*to++ = ',';
	memcpy(to, word, length + 1);
}

static const char *target_words(Arena *arena, const table_t &table)
{
	char words[512] = "";
	size_t at = table.head.data_start;

	for (unsigned i = 0; i < table.head.target_count; i++) {
		dm_target_spec target;
		if (at > sizeof table - sizeof target)
			return nullptr;
		memcpy(&target, reinterpret_cast<const char *>(&table) + at, sizeof target);
		target.target_type[sizeof target.target_type - 1] = '\0';
		add_word(words, sizeof words, target.target_type);
		// From the data's start, whatever stands before it.
		if (target.next > sizeof table - table.head.data_start)
			return nullptr;
		at = table.head.data_start + target.next;
	}
	return shown_text(arena, std::string_view(words));
}

const char *MapperControl::targets(Arena *arena, int major_number, int minor_number)
{
	if (fd_ == UNTRIED)
		fd_ = open("/dev/mapper/control", O_RDONLY | O_NONBLOCK | O_CLOEXEC);
	auto *table = fd_ >= 0 ? arena->make<table_t>() : nullptr;
	if (!table)
		return nullptr;
	table->head.version[0] = DM_VERSION_MAJOR;
	table->head.data_size = sizeof *table;
	table->head.data_start = offsetof(table_t, data);
	table->head.dev = makedev(static_cast<unsigned>(major_number), static_cast<unsigned>(minor_number));
	// The table itself, not the targets' status: that would be asked of what they stand on. No keys.
	table->head.flags = DM_STATUS_TABLE_FLAG | DM_NOFLUSH_FLAG | DM_SECURE_DATA_FLAG;
	if (ioctl(fd_, DM_TABLE_STATUS, table) != 0 || (table->head.flags & DM_BUFFER_FULL_FLAG) != 0 ||
	    table->head.data_start > sizeof *table)
		return nullptr;
	return target_words(arena, *table);
}

void read_mapping_uuid(Arena *arena, const Folder &folder, device_t *device)
{
	attribute_t uuid;
	if (read_attribute(folder, "dm/uuid", &uuid))
		device->record.dm_uuid = shown_text(arena, uuid.text());
	else if (!is_absence(errno))
		device->error = errno;
}

void read_mapping(Arena *arena, const Folder &folder, MapperControl *control, device_t *device)
{
	block_device *record = &device->record;
	errno = 0;
	record->dm_name = read_text(arena, folder, "dm/name");
	device->partial = device->partial || (!record->dm_name && is_missing(errno));
	read_mapping_uuid(arena, folder, device);
	record->dm_kind = kind_of(arena, record->dm_uuid);
	const int suspended = read_flag(folder, "dm/suspended");
	if (suspended >= 0)
		record->state = suspended ? "suspended" : "running";
	record->dm_target = control->targets(arena, record->major, record->minor);
}
