// SPDX-License-Identifier: Apache-2.0
// What the lists of a run tell, as far as the reasons are made from it.
#include "reasons_facts.h"

#include "block_fields.h"
#include "enquiry.h"
#include "text.h"

#include "diskscout_block.h"

#include <string_view>

static std::string text_or_empty(const char *text)
{
	return text ? text : "";
}

static std::size_t length_of(const block_partition *first)
{
	std::size_t length = 0;
	for (; first; first = first->next)
		length++;
	return length;
}

// A content that could not be read holds what others know of it, which is never the number of entries.
static std::optional<known_table_t> table_of(enquiry_t &from, const std::string &name)
{
	const item_list_t &contents = from.block_list(CMD_GET_BLOCK_CONTENTS);
	if (contents.failed())
		return std::nullopt;
	for (const block_content *content : contents.records<block_content>()) {
		if (content->name != name)
			continue;
		const bool is_read = content->source == std::string_view("device");
		if (!is_read && !content->table)
			return std::nullopt;
		return known_table_t{text_or_empty(content->table),
		                     is_read ? std::optional(length_of(content->partitions)) : std::nullopt};
	}
	return known_table_t{};
}

static bool lies_on(const block_mount &mount, const std::string &name)
{
	for (const block_text *device = mount.devices; device; device = device->next) {
		if (device->text == name)
			return true;
	}
	return false;
}

static std::vector<std::string> mount_points_of(enquiry_t &from, const std::string &name)
{
	std::vector<std::string> points;
	for (const block_mount *mount : from.block_list(CMD_GET_BLOCK_MOUNTS).records<block_mount>()) {
		if (mount->mount_point && lies_on(*mount, name))
			points.emplace_back(mount->mount_point);
	}
	return points;
}

void take_devices(facts_t *facts, enquiry_t &from)
{
	const item_list_t &list = from.block_list(CMD_GET_BLOCK_DEVICES);
	facts->knows_devices = !list.failed();
	facts->devices_error = list.error();
	for (const block_device *device : list.records<block_device>()) {
		const int *const under_root = member_within<&block_device::under_root>({device, &from});
		facts->devices.push_back({device->name, text_or_empty(device->kind),
		                          text_or_empty(device->disk), device->size, device->hidden == 1,
		                          text_or_empty(device->node), device->logical_sector,
		                          under_root && *under_root == 1});
	}
	facts->table_of = [&from](const std::string &name) { return table_of(from, name); };
	facts->mount_points_of = [&from](const std::string &name) { return mount_points_of(from, name); };
}

void take_disks(facts_t *facts, enquiry_t &from)
{
	for (const STORAGE_DISK_LIST *disk : from.list(CMD_GET_DISKS).records<STORAGE_DISK_LIST>())
		facts->disks.push_back({text_of(disk->szDeviceName), disk->nSize, disk->bUsedBySystem != 0});
}

void take_partitions(facts_t *facts, enquiry_t &from)
{
	for (const STORAGE_PART_LIST *p : from.list(CMD_GET_PARTITIONS).records<STORAGE_PART_LIST>())
		facts->partitions.push_back({text_of(p->szDiskDeviceName), p->nPartIndex, p->nStart, p->nSize,
		                             text_of(p->szMountPoint)});
}

void take_cdroms(facts_t *facts, enquiry_t &from)
{
	for (const STORAGE_CDROM_LIST *drive : from.list(CMD_GET_CDROMS).records<STORAGE_CDROM_LIST>())
		facts->cdroms.push_back(text_of(drive->szDeviceName));
}
