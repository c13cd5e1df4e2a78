// SPDX-License-Identifier: Apache-2.0
#include "links.h"

#include "devpath.h"
#include "mapper.h"
#include "queries.h"
#include "record.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

// Kinds that stand on no other device, and need not be asked. What else is virtual may.
static bool can_have_slaves(const device_t &device)
{
	static constexpr text_t ALONE[] = {"partition", "loop", "zram", "ram", "path"};
	for (const text_t kind : ALONE)
		if (is_kind(device, kind))
			return false;
	return begins_with(device.path, "devices/virtual/block/");
}

void read_slaves(Arena *arena, const Folder &folder, device_t *device)
{
	if (!can_have_slaves(*device))
		return;
	Entries entries(folder, "slaves");
	while (const char *name = entries.next()) {
		auto *slave = arena->make<slave_t>();
		if (!slave)
			return;
		slave->sysname = arena->copy(name);
		slave->next = device->slaves;
		device->slaves = slave;
	}
	if (entries.failed() && !is_absence(errno))
		device->error = errno;
}

// The device that a hidden path leads to: nvme0c1n2 is controller 1's way to nvme0n2.
static device_t *head_of(const Inventory &devices, const device_t &path)
{
	char name[64];
	text_t rest = path.sysname;
	const text_t subsystem = take_until(&rest, 'c');
	const size_t end = rest.find('n');
	if (end == text_t::npos || !begins_with(subsystem, "nvme"))
		return nullptr;
	rest = rest.substr(end);
	if (subsystem.size() + rest.size() >= sizeof name)
		return nullptr;
	memcpy(name, subsystem.data(), subsystem.size());
	memcpy(name + subsystem.size(), rest.data(), rest.size());
	return devices.by_sysname({name, subsystem.size() + rest.size()});
}

// What a device is to those that it is made of: mappings say it by how their uuids begin.
static const char *relation_of(const device_t &device)
{
	struct row_t {
		text_t prefix;
		const char *relation;
	};
	static constexpr row_t MAPPINGS[] = {{"mpath-", "path"}, {"part", "partition"}};
	const text_t uuid = device.record.dm_uuid ? device.record.dm_uuid : "";
	for (const row_t &row : MAPPINGS)
		if (begins_with(uuid, row.prefix))
			return row.relation;
	return "slave";
}

static void add_stand(Growing<stand_t> *stands, device_t *upper, device_t *lower, const char *relation)
{
	stand_t *stand = upper && lower ? stands->add() : nullptr;
	if (stand)
		*stand = {upper, lower, relation};
}

static int by_names(const void *one, const void *other)
{
	const auto *left = static_cast<const stand_t *>(one);
	const auto *right = static_cast<const stand_t *>(other);
	const int uppers = compare_names(left->upper->sysname, right->upper->sysname);
	return uppers != 0 ? uppers : compare_names(left->lower->sysname, right->lower->sysname);
}

bool find_stands(const Inventory &devices, Growing<stand_t> *stands)
{
	for (device_t *device : devices) {
		if (device->whole)
			add_stand(stands, device, device->whole, "partition");
		if (is_kind(*device, "path"))
			add_stand(stands, head_of(devices, *device), device, "path");
		for (const slave_t *slave = device->slaves; slave; slave = slave->next)
			add_stand(stands, device,
			          slave->sysname ? devices.by_sysname(slave->sysname) : nullptr,
			          relation_of(*device));
	}
	if (devices.arena()->is_exhausted())
		return false;
	if (stands->size() > 0)
		qsort(stands->begin(), stands->size(), sizeof(stand_t), by_names);
	return true;
}

static const char *scsi_address_text(Arena *arena, const device_t &device)
{
	char text[80];
	scsi_address_t address;
	if (!scsi_address_of(device.path, &address))
		return nullptr;
	snprintf(text, sizeof text, "%d:%d:%d:%lld", address.host, address.channel, address.target,
	         static_cast<long long>(address.lun));
	return arena->copy(text);
}

// Where a path leads through. False with errno set, mostly because its device has gone away meanwhile.
static bool describe_path(Arena *arena, const Inventory &devices, const device_t &path, block_link *link)
{
	const Folder folder(devices.class_folder(), path.sysname);
	link->address = scsi_address_text(arena, path);
	if (!link->address)
		link->address = read_text(arena, folder, "device/address");
	link->state = read_text(arena, folder, "device/state");
	if (is_kind(path, "path"))
		link->access = read_text(arena, folder, "ana_state");
	errno = folder.error();
	return folder.is_open() && (!folder.missed() || folder.has("uevent"));
}

static void fill(void *context, const Folder &folder, device_t *device)
{
	auto *arena = static_cast<Arena *>(context);
	read_slaves(arena, folder, device);
	if (is_kind(*device, "dm"))
		read_mapping_uuid(arena, folder, device);
}

int list_links(void **result, int *length)
{
	Arena arena;
	Inventory devices(&arena);
	Growing<stand_t> stands(&arena);
	Chain<block_link> links(&arena);

	if (!devices.scan(fill, &arena))
		return -1;
	find_stands(devices, &stands);
	for (const stand_t &stand : stands) {
		block_link link = {};
		link.record_size = sizeof link;
		link.upper = stand.upper->record.name;
		link.lower = stand.lower->record.name;
		link.relation = stand.relation;
		if (strcmp(stand.relation, "path") == 0 &&
		    !describe_path(&arena, devices, *stand.lower, &link)) {
			if (is_absence(errno))
				continue;
			return -1;
		}
		block_link *added = links.add();
		if (added)
			*added = link;
	}
	if (arena.is_exhausted()) {
		errno = ENOMEM;
		return -1;
	}
	return hand_out(LINK_LAYOUT, links.first(), result, length);
}
