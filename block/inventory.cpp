// SPDX-License-Identifier: Apache-2.0
#include "inventory.h"

#include "uevent.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

static const char *name_of(Arena *arena, text_t sysname)
{
	char *name = arena->copy(sysname);
	for (size_t i = 0; name && i < sysname.size(); i++)
		if (name[i] == '!')
			name[i] = '/';
	return name ? shown_text(arena, name) : nullptr;
}

// What the link of the class leads to: "../../devices/...". A folder in its place has no more than its name.
static text_t path_of(Arena *arena, const Folder &class_folder, const char *sysname)
{
	const char *target = read_link(arena, class_folder, sysname);
	if (!target && errno != EINVAL)
		return {};
	text_t path = target ? target : sysname;
	while (begins_with(path, "../"))
		path.remove_prefix(3);
	return path;
}

static void read_size(const Folder &folder, device_t *device)
{
	constexpr int64_t SECTOR = 512; // of the attribute, whatever the device's own are
	// What the driver of optical drives shows as long as it has seen no disc. One of 2048-byte sectors
	// cannot have this size.
	constexpr int64_t NO_DISC = 0x1fffff;
	errno = 0;
	int64_t sectors = read_count(folder, "size", INT64_MAX / SECTOR);
	device->partial = sectors < 0 && is_missing(errno);
	if (sectors == NO_DISC && is_kind(*device, "rom"))
		sectors = 0;
	if (sectors >= 0)
		device->record.size = sectors * SECTOR;
}

// Null for a device that has gone away, or about which its kernel says nothing; *error is set when it is only
// that it could not be asked.
device_t *Inventory::read_device(const char *sysname, fill_t fill, void *context, int *error)
{
	const Folder folder(class_, sysname);
	attribute_t uevent;
	if (!folder.is_open() || !read_attribute(folder, "uevent", &uevent)) {
		*error = is_absence(errno) ? 0 : errno;
		return nullptr;
	}
	device_t *device = arena_->make<device_t>();
	if (!device)
		return nullptr;
	clear_device(&device->record);
	device->sysname = arena_->copy(sysname);
	if (!device->sysname)
		return nullptr;
	device->path = path_of(arena_, class_, device->sysname);
	if (device->path.empty()) {
		*error = is_absence(errno) ? 0 : errno;
		return nullptr;
	}
	device->record.name = name_of(arena_, sysname);
	const bool told = read_uevent(arena_, uevent.text(), folder, device);
	if (told)
		read_size(folder, device);
	if (told && fill)
		fill(context, folder, device);
	*error = device->error;
	if (!told)
		return nullptr;
	if (!folder.missed() || folder.has("uevent"))
		return device;
	if (!is_absence(errno))
		*error = errno;
	return nullptr;
}

// A device is in the class before it has all of its attributes, and loses some while it is still there. What
// others have and it has not says so; what none has their kernel does not know.
void Inventory::drop_partial()
{
	size_t whole = 0;
	for (device_t *device : devices_)
		whole += device->partial ? 0 : 1;
	if (whole == 0)
		return;
	size_t kept = 0;
	for (device_t *device : devices_)
		if (!device->partial)
			devices_[kept++] = device;
	while (devices_.size() > kept)
		devices_.drop_last();
}

static int by_name(const void *one, const void *other)
{
	const auto *left = *static_cast<device_t *const *>(one);
	const auto *right = *static_cast<device_t *const *>(other);
	return compare_names(left->sysname, right->sysname);
}

static int compare_numbers(const block_device &one, int major_number, int minor_number)
{
	if (one.major != major_number)
		return one.major < major_number ? -1 : 1;
	return one.minor == minor_number ? 0 : one.minor < minor_number ? -1 : 1;
}

static int by_device_number(const void *one, const void *other)
{
	const auto *left = *static_cast<device_t *const *>(one);
	const auto *right = *static_cast<device_t *const *>(other);
	return compare_numbers(left->record, right->record.major, right->record.minor);
}

bool Inventory::put_in_order()
{
	const size_t count = devices_.size();
	if (count == 0)
		return true;
	by_number_ = arena_->make_array<device_t *>(count);
	if (!by_number_)
		return false;
	qsort(devices_.begin(), count, sizeof(device_t *), by_name);
	memcpy(by_number_, devices_.begin(), count * sizeof(device_t *));
	qsort(by_number_, count, sizeof(device_t *), by_device_number);
	return true;
}

// A partition's folder lies in that of its whole.
void Inventory::find_wholes()
{
	for (size_t i = devices_.size(); i > 0; i--) {
		device_t *device = devices_[i - 1];
		const size_t end = device->path.rfind('/');
		if (!is_kind(*device, "partition") || end == text_t::npos)
			continue;
		const text_t above = device->path.substr(0, end);
		device_t *whole = by_sysname(above.substr(above.rfind('/') + 1));
		if (whole && whole->path == above) {
			device->whole = whole;
			device->record.disk = whole->record.name;
			device->next = whole->partition;
			whole->partition = device;
		}
	}
}

static bool is_orphan(const device_t &device)
{
	return is_kind(device, "partition") && !device.whole;
}

// A partition was there when it was read; without the device that it is part of it has gone since.
void Inventory::drop_orphans()
{
	const size_t count = devices_.size();
	size_t named = 0;
	size_t numbered = 0;
	for (size_t i = 0; i < count; i++) {
		if (!is_orphan(*devices_[i]))
			devices_[named++] = devices_[i];
		if (!is_orphan(*by_number_[i]))
			by_number_[numbered++] = by_number_[i];
	}
	while (devices_.size() > named)
		devices_.drop_last();
}

bool Inventory::scan(fill_t fill, void *context)
{
	Entries entries(class_, ".");
	if (!entries.is_open())
		return false;
	while (const char *sysname = entries.next()) {
		int error = 0;
		device_t *device = read_device(sysname, fill, context, &error);
		if (error != 0) {
			errno = error;
			return false;
		}
		device_t **slot = device ? devices_.add() : nullptr;
		if (slot)
			*slot = device;
	}
	drop_partial();
	if (arena_->is_exhausted() || !put_in_order()) {
		errno = ENOMEM;
		return false;
	}
	if (entries.failed())
		return false;
	find_wholes();
	drop_orphans();
	return true;
}

device_t *Inventory::by_number(int major_number, int minor_number) const
{
	size_t low = 0;
	size_t high = devices_.size();
	while (low < high) {
		const size_t middle = low + (high - low) / 2;
		const int order = compare_numbers(by_number_[middle]->record, major_number, minor_number);
		if (order == 0)
			return major_number < 0 ? nullptr : by_number_[middle];
		(order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
	}
	return nullptr;
}

device_t *Inventory::by_sysname(text_t sysname) const
{
	size_t low = 0;
	size_t high = devices_.size();
	while (low < high) {
		const size_t middle = low + (high - low) / 2;
		const int order = compare_names(devices_[middle]->sysname, sysname);
		if (order == 0)
			return devices_[middle];
		(order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
	}
	return nullptr;
}

device_t *Inventory::by_node(text_t path) const
{
	constexpr text_t DEV = "/dev/";
	if (!begins_with(path, DEV))
		return nullptr;
	for (device_t *device : devices_)
		if (device->record.node && path == device->record.node)
			return device;
	// A link, or a node of another name: asked by name, never opened.
	const char *name = arena_->copy(path);
	struct stat status;
	if (!name || stat(name, &status) != 0 || !S_ISBLK(status.st_mode))
		return nullptr;
	return by_number(static_cast<int>(major(status.st_rdev)), static_cast<int>(minor(status.st_rdev)));
}
