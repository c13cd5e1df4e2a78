// SPDX-License-Identifier: Apache-2.0
#include "probe.h"

#include "record.h"
#include "tablelimits.h"

#include <blkid.h>
#include <errno.h>
#include <stdio.h>
#include <string.h>

namespace
{

class Probing
{
public:
	Probing() : handle_(blkid_new_probe()) {}
	Probing(const Probing &) = delete;
	Probing &operator=(const Probing &) = delete;
	~Probing()
	{
		if (handle_)
			blkid_free_probe(handle_);
	}
	blkid_probe get() const { return handle_; }

private:
	blkid_probe handle_;
};

struct value_t {
	const char *name; // libblkid's
	const char *block_content::*field;
};

constexpr value_t SUPERBLOCK_VALUES[] = {
	{"USAGE", &block_content::usage},       {"TYPE", &block_content::type},
	{"LABEL", &block_content::label},       {"UUID", &block_content::uuid},
	{"UUID_SUB", &block_content::uuid_sub}, {"VERSION", &block_content::version},
};

// What libblkid answers beside an errno and what follows from it.
enum { FOUND = 0, NOTHING = 1, AMBIGUOUS = -2 };

// Up to here a disk is a floppy, and a table on it leaves no place for a file system beside.
constexpr blkid_loff_t SMALL_DISK = 1440L * 1024;

} // namespace

static text_t value_of(blkid_probe probe, const char *name)
{
	const char *data = nullptr;
	size_t length = 0;
	if (blkid_probe_lookup_value(probe, name, &data, &length) != 0 || !data)
		return {};
	return {data, strnlen(data, length)};
}

static int current_error()
{
	return errno != 0 ? errno : EIO;
}

const char *table_id_text(Arena *arena, text_t kind, text_t id)
{
	constexpr text_t PREFIX = "0x";
	if (kind != "dos" || id.empty())
		return shown_text(arena, id);
	auto *text = static_cast<char *>(arena->take(PREFIX.size() + id.size()));
	if (!text)
		return nullptr;
	memcpy(text, PREFIX.data(), PREFIX.size());
	memcpy(text + PREFIX.size(), id.data(), id.size());
	return shown_text(arena, {text, PREFIX.size() + id.size()});
}

// ---- the table's entries ----

static long long bytes_of(blkid_loff_t sectors)
{
	constexpr blkid_loff_t SECTOR = 512; // libblkid's, also where the disk has others
	if (sectors < 0 || sectors > INT64_MAX / SECTOR)
		return BLOCK_ABSENT;
	return sectors * SECTOR;
}

static const char *text_of(Arena *arena, const char *text)
{
	return text ? shown_text(arena, text) : nullptr;
}

static const char *type_of(Arena *arena, blkid_partition entry)
{
	char number[16];
	const char *text = blkid_partition_get_type_string(entry);
	if (text)
		return shown_text(arena, text);
	snprintf(number, sizeof number, "0x%x", static_cast<unsigned>(blkid_partition_get_type(entry)));
	return arena->copy(number);
}

static void tell_entry(Arena *arena, blkid_partition entry, block_partition *to)
{
	to->number = blkid_partition_get_partno(entry);
	to->start = bytes_of(blkid_partition_get_start(entry));
	to->size = bytes_of(blkid_partition_get_size(entry));
	to->type = type_of(arena, entry);
	to->uuid = text_of(arena, blkid_partition_get_uuid(entry));
	to->label = text_of(arena, blkid_partition_get_name(entry));
	to->flags = static_cast<long long>(blkid_partition_get_flags(entry));
}

static int tell_entries(Arena *arena, blkid_probe handle, block_content *content)
{
	Chain<block_partition> entries(arena);
	errno = 0;
	blkid_partlist list = blkid_probe_get_partitions(handle);
	// Without an error: the table's kind can be told, and what follows makes no sense.
	if (!list)
		return errno;
	const int count = blkid_partlist_numof_partitions(list);
	for (int i = 0; i < count; i++) {
		blkid_partition entry = blkid_partlist_get_partition(list, i);
		block_partition *told = entry ? entries.add() : nullptr;
		if (told)
			tell_entry(arena, entry, told);
	}
	content->partitions = entries.first();
	return 0;
}

static int tell_table(Arena *arena, blkid_probe handle, block_content *content)
{
	const text_t kind = value_of(handle, "PTTYPE");
	if (kind.empty())
		return 0;
	content->table = shown_text(arena, kind);
	content->table_id = table_id_text(arena, kind, value_of(handle, "PTUUID"));
	return tell_entries(arena, handle, content);
}

// ---- the device ----

static void tell_superblock(Arena *arena, blkid_probe handle, block_content *content)
{
	for (const value_t &row : SUPERBLOCK_VALUES)
		content->*row.field = shown_text(arena, value_of(handle, row.name));
}

static int probe_table(blkid_probe handle)
{
	errno = 0;
	blkid_probe_enable_superblocks(handle, 0);
	return blkid_do_fullprobe(handle);
}

static int probe_all(blkid_probe handle)
{
	errno = 0;
	blkid_probe_enable_superblocks(handle, 1);
	return blkid_do_safeprobe(handle);
}

static int tell_contents(Arena *arena, blkid_probe handle, bool small, block_content *content)
{
	int result = small ? probe_table(handle) : NOTHING;
	content->ambiguous = 0;
	if (result == NOTHING) {
		result = probe_all(handle);
		if (result == FOUND)
			tell_superblock(arena, handle, content);
	}
	if (result == AMBIGUOUS) {
		content->ambiguous = 1;
		result = probe_table(handle);
	}
	if (result < 0)
		return current_error();
	return result == FOUND ? tell_table(arena, handle, content) : 0;
}

static int probe_with(Arena *arena, blkid_probe handle, const probe_t &probe, block_content *content)
{
	errno = 0;
	if (blkid_probe_set_device(handle, probe.fd, 0, 0) != 0)
		return current_error();
	if (probe.sector != 0)
		blkid_probe_set_sectorsize(handle, probe.sector);
	const disk_t disk = {probe.fd, blkid_probe_get_size(handle), blkid_probe_get_sectorsize(handle)};
	if (!is_table_short(disk))
		return EFBIG;
	blkid_probe_set_superblocks_flags(handle, BLKID_SUBLKS_LABEL | BLKID_SUBLKS_UUID | BLKID_SUBLKS_TYPE |
	                                                  BLKID_SUBLKS_USAGE | BLKID_SUBLKS_VERSION);
	blkid_probe_enable_partitions(handle, 1);
	return tell_contents(arena, handle, probe.whole && disk.size <= SMALL_DISK, content);
}

int probe_contents(Arena *arena, const probe_t &probe, block_content *content)
{
	const Probing probing;
	block_content found = *content;
	if (!probing.get())
		return ENOMEM;
	const int error = probe_with(arena, probing.get(), probe, &found);
	if (error == 0)
		*content = found;
	return error;
}
