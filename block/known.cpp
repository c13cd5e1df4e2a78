// SPDX-License-Identifier: Apache-2.0
#include "known.h"

#include "probe.h"
#include "record.h"

#include <limits.h>
#include <stdio.h>

static constexpr int64_t SECTOR = 512; // of sysfs and of udev's database, whatever the disk's own are

long long KnownContents::start_of(const device_t &partition) const
{
	char path[NAME_MAX + sizeof "/start"];
	snprintf(path, sizeof path, "%s/start", partition.sysname);
	const int64_t sectors = read_count(inventory_->class_folder(), path, INT64_MAX / SECTOR);
	if (sectors == BLOCK_ABSENT)
		return BLOCK_ABSENT;
	return sectors * SECTOR;
}

// ---- one partition ----

// The lines that the kernel's own event of the partition has.
void KnownContents::tell_kernels(const device_t &partition, block_partition *to) const
{
	char path[NAME_MAX + sizeof "/uevent"];
	attribute_t uevent;
	snprintf(path, sizeof path, "%s/uevent", partition.sysname);
	if (!read_attribute(inventory_->class_folder(), path, &uevent))
		return;
	text_t text = uevent.whole();
	while (!text.empty()) {
		text_t line = take_until(&text, '\n');
		const text_t key = take_until(&line, '=');
		if (key == "PARTNAME")
			to->label = shown_text(arena_, line);
		else if (key == "PARTUUID")
			to->uuid = shown_text(arena_, line);
	}
}

static void read_sectors(const UdevRecord &udev, text_t key, long long *bytes)
{
	int64_t sectors;
	if (read_number(udev.value(key), &sectors) && sectors <= INT64_MAX / SECTOR)
		*bytes = sectors * SECTOR;
}

// Flags that are zero are left out there.
static long long flags_of(const UdevRecord &udev)
{
	uint64_t flags;
	const text_t value = udev.value("ID_PART_ENTRY_FLAGS");
	if (value.empty())
		return 0;
	if (!begins_with(value, "0x") || !read_hex_number(value.substr(2), &flags))
		return BLOCK_ABSENT;
	return static_cast<long long>(flags);
}

// Whether udev knows the entry.
bool KnownContents::tell_partition(const device_t &partition, block_partition *to) const
{
	int64_t number;
	to->name = partition.record.name;
	to->number = partition.record.partition_number;
	to->start = start_of(partition);
	to->size = partition.record.size;
	to->flags = BLOCK_ABSENT;

	const UdevRecord udev = record_of(partition);
	if (!read_number(udev.value("ID_PART_ENTRY_NUMBER"), &number) || number > INT_MAX) {
		tell_kernels(partition, to);
		return false;
	}
	to->number = static_cast<int>(number);
	// An extended partition is larger than the kernel's device for it.
	read_sectors(udev, "ID_PART_ENTRY_OFFSET", &to->start);
	read_sectors(udev, "ID_PART_ENTRY_SIZE", &to->size);
	to->type = shown_text(arena_, udev.bytes(arena_, "ID_PART_ENTRY_TYPE"));
	to->uuid = shown_text(arena_, udev.bytes(arena_, "ID_PART_ENTRY_UUID"));
	to->label = shown_text(arena_, udev.bytes(arena_, "ID_PART_ENTRY_NAME"));
	to->flags = flags_of(udev);
	return true;
}

// Whether udev knows any of them. In the order of their names, which is that of their numbers.
bool KnownContents::tell_partitions(const device_t &device, block_content *content) const
{
	Chain<block_partition> entries(arena_);
	bool by_udev = false;

	for (const device_t *part = device.partition; part; part = part->next) {
		block_partition *entry = entries.add();
		if (!entry)
			return false;
		by_udev = tell_partition(*part, entry) || by_udev;
	}
	content->partitions = entries.first();
	return by_udev;
}

// ---- file system or member ----

// udev lends a partition all values of its disk before it looks at the partition itself, and takes none of
// them back: a label of the disk's stands in the record of a partition without one.
class OwnValues
{
public:
	OwnValues(const UdevRecord &udev, const UdevRecord *disk) : udev_(udev), disk_(disk)
	{
		// The first partition of a hybrid image begins where its disk does: both hold the same.
		if (udev.value("ID_PART_ENTRY_OFFSET") == "0")
			disk_ = nullptr;
	}
	bool is_lent(text_t key) const
	{
		const text_t value = udev_.value(key);
		return disk_ && !value.empty() && value == disk_->value(key);
	}

private:
	const UdevRecord &udev_;
	const UdevRecord *disk_;
};

static void tell_known_table(Arena *arena, const UdevRecord &udev, const OwnValues &own,
                             block_content *content)
{
	const text_t kind = udev.value("ID_PART_TABLE_TYPE");
	const text_t id = udev.value("ID_PART_TABLE_UUID");
	if (own.is_lent("ID_PART_TABLE_TYPE") && (id.empty() || own.is_lent("ID_PART_TABLE_UUID")))
		return;
	content->table = shown_text(arena, kind);
	content->table_id = table_id_text(arena, kind, id);
}

void KnownContents::tell_file_system(const device_t &device, const UdevRecord &udev,
                                     block_content *content) const
{
	static constexpr struct {
		text_t key;
		const char *block_content::*field;
		bool common; // many have the same: equal values say nothing
	} ROWS[] = {
		{"ID_FS_USAGE", &block_content::usage, true},
		{"ID_FS_TYPE", &block_content::type, true},
		{"ID_FS_VERSION", &block_content::version, true},
		{"ID_FS_LABEL_ENC", &block_content::label, false},
		{"ID_FS_UUID_ENC", &block_content::uuid, false},
		{"ID_FS_UUID_SUB_ENC", &block_content::uuid_sub, false},
	};
	const UdevRecord disk = record_of(device.whole ? *device.whole : device);
	const OwnValues own(udev, device.whole ? &disk : nullptr);

	tell_known_table(arena_, udev, own, content);
	if (own.is_lent("ID_FS_TYPE") &&
	    (udev.value("ID_FS_UUID_ENC").empty() || own.is_lent("ID_FS_UUID_ENC")))
		return;
	for (const auto &row : ROWS)
		if (row.common || !own.is_lent(row.key))
			content->*row.field = shown_text(arena_, udev.bytes(arena_, row.key));
}

void KnownContents::tell(const device_t &device, block_content *content) const
{
	tell_file_system(device, record_of(device), content);
	const bool by_udev = tell_partitions(device, content);
	if (by_udev || content->table || content->type)
		content->source = "udev";
	else if (content->partitions)
		content->source = "kernel";
}
