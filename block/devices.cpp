// SPDX-License-Identifier: Apache-2.0
// Every block device, what it is and who made it; see diskscout_block.h.
#include "devpath.h"
#include "identity.h"
#include "inventory.h"
#include "links.h"
#include "mapper.h"
#include "queries.h"
#include "record.h"
#include "udev.h"
#include "uses.h"

#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

// The controllers that have been asked for their node: many disks, few of them.
struct controller_t {
	controller_t *next;
	text_t folder;
	const char *address;
	int numa_node;
};

struct query_t {
	Arena *arena;
	UdevDatabase udev;
	MapperControl mapper;
	controller_t *controllers;
};

static const controller_t *controller_of(query_t *query, text_t path)
{
	const text_t folder = pci_folder_of(path);
	if (folder.empty())
		return nullptr;
	for (const controller_t *at = query->controllers; at; at = at->next)
		if (at->folder == folder)
			return at;
	auto *controller = query->arena->make<controller_t>();
	const char *name = query->arena->copy(folder);
	if (!controller || !name)
		return nullptr;
	const Folder sys("/sys");
	const Folder function(sys, name);
	*controller = {query->controllers, folder, shown_text(query->arena, last_name(folder)),
	               read_int(function, "numa_node")};
	query->controllers = controller;
	return controller;
}

// Whether a link of udev's still leads to this device: another one may have taken it over.
static bool leads_to(const char *link, const char *sysname)
{
	char target[PATH_MAX];
	const ssize_t length = readlink(link, target, sizeof target);
	if (length <= 0 || static_cast<size_t>(length) == sizeof target)
		return false;
	text_t rest = {target, static_cast<size_t>(length)};
	while (begins_with(rest, "../"))
		rest.remove_prefix(3);
	if (begins_with(rest, "/dev/"))
		rest.remove_prefix(5);
	// A slash of a name is "!" in sysfs.
	const text_t name = sysname;
	if (rest.size() != name.size())
		return false;
	for (size_t i = 0; i < rest.size(); i++)
		if (rest[i] != name[i] && !(rest[i] == '/' && name[i] == '!'))
			return false;
	return true;
}

static int by_text(const void *one, const void *other)
{
	return strcmp(*static_cast<const char *const *>(one), *static_cast<const char *const *>(other));
}

// In an order of their own: udev's is one of chance.
static void read_links(Arena *arena, const UdevRecord &udev, device_t *device)
{
	Growing<const char *> links(arena);
	text_t rest = udev.links();
	for (text_t name = UdevRecord::next_link(&rest); !name.empty(); name = UdevRecord::next_link(&rest)) {
		char path[PATH_MAX] = "/dev/";
		if (name.size() >= sizeof path - 5)
			continue;
		memcpy(path + 5, name.data(), name.size());
		path[5 + name.size()] = '\0';
		const char **link = leads_to(path, device->sysname) ? links.add() : nullptr;
		if (link)
			*link = shown_text(arena, std::string_view(path));
	}
	if (links.size() == 0 || arena->is_exhausted())
		return;
	qsort(links.begin(), links.size(), sizeof(const char *), by_text);
	Chain<block_text> list(arena);
	for (const char *link : links) {
		block_text *text = list.add();
		if (text)
			text->text = link;
	}
	device->record.links = list.first();
}

static void read_hardware(query_t *query, const Folder &folder, const UdevRecord &udev, device_t *device)
{
	if (begins_with(device->path, "devices/virtual/block/"))
		return;
	read_identity(query->arena, folder, udev, device);
	const controller_t *controller = controller_of(query, device->path);
	if (controller) {
		device->record.controller_pci = controller->address;
		device->record.numa_node = controller->numa_node;
	}
}

// An attribute that every device of its kind has.
static int read_usual(const Folder &folder, const char *path, device_t *device)
{
	errno = 0;
	const int value = read_int(folder, path);
	device->partial = device->partial || (value < 0 && is_missing(errno));
	return value;
}

static int read_usual_flag(const Folder &folder, const char *path, device_t *device)
{
	const int value = read_usual(folder, path, device);
	return value > 1 ? 1 : value;
}

static void read_whole(query_t *query, const Folder &folder, const UdevRecord &udev, device_t *device)
{
	block_device *record = &device->record;
	record->removable = read_usual_flag(folder, "removable", device);
	record->logical_sector = read_usual(folder, "queue/logical_block_size", device);
	record->physical_sector = read_usual(folder, "queue/physical_block_size", device);
	record->rotational = read_usual_flag(folder, "queue/rotational", device);
	read_hardware(query, folder, udev, device);
	read_slaves(query->arena, folder, device);
	if (is_kind(*device, "dm"))
		read_mapping(query->arena, folder, &query->mapper, device);
	else if (is_kind(*device, "loop") && record->size != 0)
		record->backing_file = read_text(query->arena, folder, "loop/backing_file");
}

static void fill(void *context, const Folder &folder, device_t *device)
{
	auto *query = static_cast<query_t *>(context);
	block_device *record = &device->record;
	const UdevRecord udev(query->arena, query->udev, record->major, record->minor);

	record->read_only = read_usual_flag(folder, "ro", device);
	read_links(query->arena, udev, device);
	if (!is_kind(*device, "partition"))
		read_whole(query, folder, udev, device);
}

// What a partition has from the device that it is part of.
static void inherit(device_t *partition)
{
	if (!partition->whole)
		return;
	const block_device &whole = partition->whole->record;
	block_device *record = &partition->record;
	record->logical_sector = whole.logical_sector;
	record->physical_sector = whole.physical_sector;
	record->rotational = whole.rotational;
	record->removable = whole.removable;
	record->transport = whole.transport;
	record->controller_pci = whole.controller_pci;
	record->numa_node = whole.numa_node;
}

int list_devices(void **result, int *length)
{
	Arena arena;
	Inventory devices(&arena);
	query_t query = {&arena, {}, {}, nullptr};
	Chain<block_device> list(&arena);

	if (!devices.scan(fill, &query))
		return -1;
	find_uses(&arena, devices);
	for (device_t *device : devices) {
		inherit(device);
		list.append(&device->record);
	}
	if (arena.is_exhausted()) {
		errno = ENOMEM;
		return -1;
	}
	return hand_out(DEVICE_LAYOUT, list.first(), result, length);
}
