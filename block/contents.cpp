// SPDX-License-Identifier: Apache-2.0
// What is on the devices: read from each that can be opened, else what is known of it already.
#include "inventory.h"
#include "known.h"
#include "links.h"
#include "probe.h"
#include "queries.h"
#include "record.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace
{

struct reader_t {
	Arena *arena;
	const Inventory *inventory;
	const KnownContents *known;
};

// What a device is found to be when it is read.
enum outcome_t { TOLD, GONE, FAILED };

constexpr int ANOTHER_DEVICE = -1;

} // namespace

// ---- what is not opened ----

static void fill(void *context, const Folder &folder, device_t *device)
{
	read_slaves(static_cast<Arena *>(context), folder, device);
}

// Whether reading would wait for somebody who resumes it, or one of those that it stands on. What looks like
// a circle or a stack without an end is looked at up to a limit.
static bool is_suspended(const Inventory &inventory, const device_t &device, int depth, int *left)
{
	const device_t &whole = device.whole ? *device.whole : device;
	if (depth == 0 || --*left < 0)
		return false;
	if (is_kind(whole, "dm") &&
	    read_int(Folder(inventory.class_folder(), whole.sysname), "dm/suspended") == 1)
		return true;
	for (const slave_t *slave = whole.slaves; slave; slave = slave->next) {
		const device_t *lower = slave->sysname ? inventory.by_sysname(slave->sysname) : nullptr;
		if (lower && is_suspended(inventory, *lower, depth - 1, left))
			return true;
	}
	return false;
}

// The errno that stands for why it is not opened; 0: it is.
static int closed_for(const Inventory &inventory, const device_t &device)
{
	int left = 4096;
	if (device.record.size == 0)
		return ENOMEDIUM;
	return is_suspended(inventory, device, 16, &left) ? EBUSY : 0;
}

// ---- reading ----

static int probe_open(const reader_t &reader, int fd, const device_t &device, block_content *content)
{
	struct stat status;
	if (fstat(fd, &status) != 0)
		return errno;
	if (!S_ISBLK(status.st_mode))
		return ENOTBLK;
	if (major(status.st_rdev) != static_cast<unsigned>(device.record.major) ||
	    minor(status.st_rdev) != static_cast<unsigned>(device.record.minor))
		return ANOTHER_DEVICE;
	return probe_contents(reader.arena, {fd, !device.whole, 0}, content);
}

// 0; an errno; or ANOTHER_DEVICE.
static int probe_device(const reader_t &reader, const device_t &device, block_content *content)
{
	if (!device.record.node)
		return ENOENT;
	// No drive closes its tray for this, and nobody waits for a medium.
	const int fd = open(device.record.node, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
	if (fd < 0)
		return errno;
	const int error = probe_open(reader, fd, device, content);
	close(fd);
	return error;
}

// ---- telling ----

// The kernel may have devices of an older table: only those that lie where the entry says are its.
static void name_partitions(const reader_t &reader, const device_t &device, const block_content &content)
{
	for (const device_t *part = device.partition; part && content.partitions; part = part->next) {
		const long long start = reader.known->start_of(*part);
		for (block_partition *entry = content.partitions; entry; entry = entry->next) {
			if (entry->number == part->record.partition_number &&
			    (start == BLOCK_ABSENT || start == entry->start))
				entry->name = part->record.name;
		}
	}
}

static outcome_t read_device(const reader_t &reader, const device_t &device, block_content *content)
{
	const Folder folder(reader.inventory->class_folder(), device.sysname);
	if (!folder.is_open()) {
		errno = folder.error();
		return is_absence(errno) ? GONE : FAILED;
	}
	int error = closed_for(*reader.inventory, device);
	if (error == 0)
		error = probe_device(reader, device, content);
	if (error == ENOMEM) {
		errno = ENOMEM;
		return FAILED;
	}
	// Also one that could be read: what has gone away meanwhile reads as if it ended early.
	if (error == ANOTHER_DEVICE || (!folder.has("uevent") && is_absence(errno)))
		return GONE;
	if (error == 0) {
		content->source = "device";
		name_partitions(reader, device, *content);
		return TOLD;
	}
	content->error = error;
	if (device.record.size != 0)
		reader.known->tell(device, content);
	return TOLD;
}

static block_content *new_content(Arena *arena, const device_t &device)
{
	block_content *content = arena->make<block_content>();
	if (!content)
		return nullptr;
	content->record_size = sizeof *content;
	content->name = device.record.name;
	content->error = BLOCK_ABSENT;
	content->ambiguous = BLOCK_ABSENT;
	return content;
}

int list_contents(void **result, int *length)
{
	Arena arena;
	Inventory inventory(&arena);
	if (!inventory.scan(fill, &arena))
		return -1;
	const KnownContents known(&arena, &inventory);
	const reader_t reader = {&arena, &inventory, &known};
	Chain<block_content> contents(&arena);

	for (const device_t *device : inventory) {
		if (device->record.hidden == 1)
			continue;
		block_content *content = new_content(&arena, *device);
		const outcome_t outcome = content ? read_device(reader, *device, content) : FAILED;
		if (arena.is_exhausted())
			errno = ENOMEM;
		if (outcome == FAILED || arena.is_exhausted())
			return -1;
		if (outcome == TOLD)
			contents.append(content);
	}
	return hand_out(CONTENT_LAYOUT, contents.first(), result, length);
}
