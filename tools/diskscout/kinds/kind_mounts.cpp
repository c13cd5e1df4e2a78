// SPDX-License-Identifier: Apache-2.0
// Mount points and swap areas in use.
#include "block_fields.h"
#include "kinds.h"

#include <cstring>

using mount_t = block_mount;

// Every number is a priority; which rows have one is told by their kind.
static void put_priority(const row_t &row, sink_t &to)
{
	const auto *const priority = member_within<&mount_t::priority>(row);
	if (priority && strcmp(record_of<mount_t>(row).kind, "swap") == 0)
		to.number(*priority);
	else
		to.absent();
}

static std::string place_cell(const row_t &row)
{
	const char *const place = text_within<&mount_t::mount_point>(row);
	return place ? place : "[SWAP]";
}

static constexpr field_t FIELDS[] = {
	always<&mount_t::kind>("kind", "KIND", "mount or swap"),
	number<&mount_t::id>("id", "ID", "of the mount; null for swap"),
	number<&mount_t::parent_id>("parent_id", "PARENT", "of the mount; null for swap"),
	number<&mount_t::major>("major", "MAJOR", "of the file system; null for swap"),
	number<&mount_t::minor>("minor", "MINOR", "of the file system; null for swap"),
	texts<&mount_t::devices>("devices", "DEVICES", "names of the block devices that it lies on"),
	text<&mount_t::source>("source", "SOURCE", "a node, a remote name or a word, as the kernel tells it"),
	text<&mount_t::type>("type", "TYPE", "file system type; of swap: partition or file"),
	text<&mount_t::root>("root", "ROOT", "what of the file system is mounted"),
	{"mount_point",
         "MOUNT POINT",
         shape_t::TEXT,
         NEW | MAY_LACK,
         "null for swap",
         told_text<&mount_t::mount_point>,
         {},
         place_cell},
	text<&mount_t::options>("options", "OPTIONS", "of the mount"),
	text<&mount_t::super_options>("super_options", "FS OPTIONS", "of the file system"),
	flag<&mount_t::shadowed>("shadowed", "SHADOWED", "another mount hides it; null for swap"),
	bytes<&mount_t::total>("total", "SIZE", "bytes"),
	bytes<&mount_t::used>("used", "USED", "bytes"),
	bytes<&mount_t::available>("available", "AVAILABLE", "bytes, for an ordinary user; null for swap"),
	{"priority", "PRIORITY", shape_t::NUMBER, NEW | MAY_LACK, "of a swap area, -32768 to 32767",
         put_priority},
};

static bool concerns(const row_t &row, const names_t &devices)
{
	for (const block_text *device = record_of<mount_t>(row).devices; device; device = device->next) {
		if (devices.count(device->text) > 0)
			return true;
	}
	return false;
}

const kind_t MOUNTS_KIND = {
	"mounts",
	"",
	"MOUNTS",
	"mount",
	"mount points and swap areas",
	"Nothing is mounted.",
	side_t::BLOCK,
	IN_DOCUMENT,
	FIELDS,
	"mount_point,source,type,total,used,available,devices,shadowed",
	nullptr,
	ask_for_block<mount_t, CMD_GET_BLOCK_MOUNTS>,
	{},
	concerns,
};
