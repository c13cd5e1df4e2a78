// SPDX-License-Identifier: Apache-2.0
// The answer to a query as bytes.
#include "packed_list.h"

#include "diskscout_block.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

// ---- what points where ----

// A text, or a list of records of another layout.
struct pointer_layout_t {
	std::size_t at;
	const record_layout_t *list; // null: a text
};

struct record_layout_t {
	std::size_t size;
	std::size_t next; // where the link to the next one is
	bool tells_size;  // its own, which may be a smaller or a larger one, is its first member
	const pointer_layout_t *pointers = nullptr;
	std::size_t pointer_count = 0;

	template <std::size_t Count>
	constexpr record_layout_t(std::size_t bytes, std::size_t link, const pointer_layout_t (&rows)[Count])
	    : size(bytes), next(link), tells_size(true), pointers(rows), pointer_count(Count)
	{
	}
	constexpr record_layout_t(std::size_t bytes, std::size_t link)
	    : size(bytes), next(link), tells_size(false)
	{
	}
};

#define TEXT(record, member)                                                                                 \
	{                                                                                                    \
		offsetof(record, member), nullptr                                                            \
	}
#define LIST(record, member, layout)                                                                         \
	{                                                                                                    \
		offsetof(record, member), &(layout)                                                          \
	}
#define RECORD(record) sizeof(record), offsetof(record, next)

static constexpr pointer_layout_t TEXT_POINTERS[] = {TEXT(block_text, text)};
static constexpr record_layout_t TEXTS = {RECORD(block_text), TEXT_POINTERS};

static constexpr pointer_layout_t DEVICE_POINTERS[] = {
	TEXT(block_device, name),         TEXT(block_device, node),
	TEXT(block_device, kind),         TEXT(block_device, disk),
	TEXT(block_device, transport),    TEXT(block_device, vendor),
	TEXT(block_device, model),        TEXT(block_device, model_source),
	TEXT(block_device, serial),       TEXT(block_device, serial_source),
	TEXT(block_device, firmware),     TEXT(block_device, firmware_source),
	TEXT(block_device, wwn),          TEXT(block_device, eui64),
	TEXT(block_device, nguid),        TEXT(block_device, uuid),
	LIST(block_device, links, TEXTS), TEXT(block_device, controller_pci),
	TEXT(block_device, state),        TEXT(block_device, dm_name),
	TEXT(block_device, dm_uuid),      TEXT(block_device, dm_kind),
	TEXT(block_device, dm_target),    TEXT(block_device, backing_file),
};
static constexpr record_layout_t DEVICES = {RECORD(block_device), DEVICE_POINTERS};

static constexpr pointer_layout_t LINK_POINTERS[] = {
	TEXT(block_link, upper),   TEXT(block_link, lower), TEXT(block_link, relation),
	TEXT(block_link, address), TEXT(block_link, state), TEXT(block_link, access),
};
static constexpr record_layout_t LINKS = {RECORD(block_link), LINK_POINTERS};

static constexpr pointer_layout_t PARTITION_POINTERS[] = {
	TEXT(block_partition, name),
	TEXT(block_partition, type),
	TEXT(block_partition, uuid),
	TEXT(block_partition, label),
};
static constexpr record_layout_t PARTITIONS = {RECORD(block_partition), PARTITION_POINTERS};

static constexpr pointer_layout_t CONTENT_POINTERS[] = {
	TEXT(block_content, name),
	TEXT(block_content, source),
	TEXT(block_content, table),
	TEXT(block_content, table_id),
	LIST(block_content, partitions, PARTITIONS),
	TEXT(block_content, usage),
	TEXT(block_content, type),
	TEXT(block_content, label),
	TEXT(block_content, uuid),
	TEXT(block_content, uuid_sub),
	TEXT(block_content, version),
};
static constexpr record_layout_t CONTENTS = {RECORD(block_content), CONTENT_POINTERS};

static constexpr pointer_layout_t MOUNT_POINTERS[] = {
	TEXT(block_mount, kind),    LIST(block_mount, devices, TEXTS), TEXT(block_mount, source),
	TEXT(block_mount, type),    TEXT(block_mount, root),           TEXT(block_mount, mount_point),
	TEXT(block_mount, options), TEXT(block_mount, super_options),
};
static constexpr record_layout_t MOUNTS = {RECORD(block_mount), MOUNT_POINTERS};

static constexpr pointer_layout_t MEMBER_POINTERS[] = {
	TEXT(block_member, name),
	TEXT(block_member, role),
	TEXT(block_member, state),
};
static constexpr record_layout_t MEMBERS = {RECORD(block_member), MEMBER_POINTERS};

static constexpr pointer_layout_t ARRAY_POINTERS[] = {
	TEXT(block_array, name),   TEXT(block_array, uuid),        TEXT(block_array, metadata),
	TEXT(block_array, level),  TEXT(block_array, state),       TEXT(block_array, sync_action),
	TEXT(block_array, bitmap), TEXT(block_array, consistency), LIST(block_array, members, MEMBERS),
};
static constexpr record_layout_t ARRAYS = {RECORD(block_array), ARRAY_POINTERS};

static constexpr record_layout_t DISKS = {RECORD(STORAGE_DISK_LIST)};
static constexpr record_layout_t CDROMS = {RECORD(STORAGE_CDROM_LIST)};
static constexpr record_layout_t PARTS = {RECORD(STORAGE_PART_LIST)};
static constexpr record_layout_t CONTROLLERS = {RECORD(aac_controller)};
static constexpr record_layout_t CONTAINERS = {RECORD(HWRAID_LIST)};
static constexpr record_layout_t RAID_DISKS = {RECORD(HWRAID_DISK_LIST)};
static constexpr record_layout_t RAID_SPACE = {RECORD(HWRAID_SPACE_LIST)};
static constexpr record_layout_t RAID_PARTITIONS = {RECORD(HWRAID_PARTITION_LIST)};

// Of the controller tool the stages are its own words for what it is asked.
static constexpr query_t QUERIES[] = {
	{CMD_GET_BLOCK_DEVICES, "device list", &DEVICES, false},
	{CMD_GET_BLOCK_LINKS, "link list", &LINKS, false},
	{CMD_GET_BLOCK_CONTENTS, "contents of the devices", &CONTENTS, false},
	{CMD_GET_BLOCK_MOUNTS, "mount list", &MOUNTS, false},
	{CMD_GET_BLOCK_ARRAYS, "array list", &ARRAYS, false},
	{CMD_GET_DISKS, "disk list", &DISKS, false},
	{CMD_GET_PARTITIONS, "partition list", &PARTS, false},
	{CMD_GET_CDROMS, "CD-ROM list", &CDROMS, false},
	{CMD_GET_CONTROLLERS, "controller list", &CONTROLLERS, true},
	{CMD_GET_CONTAINERS, "container list", &CONTAINERS, true},
	{CMD_GET_RAID_DISKS, "disk list", &RAID_DISKS, true},
	{CMD_GET_RAID_SPACE, "disk show space", &RAID_SPACE, true},
	{CMD_GET_RAID_PARTITIONS, "disk show partition", &RAID_PARTITIONS, true},
};

const query_t &query_of(UINT code)
{
	static constexpr record_layout_t NOTHING = {sizeof(void *), 0};
	static constexpr query_t UNKNOWN = {0, "query", &NOTHING, false};
	for (const query_t &query : QUERIES) {
		if (query.code == code)
			return query;
	}
	return UNKNOWN;
}

// ---- packing ----

// A pointer in bytes, whose type does not matter there.
static const char *pointer_at(const char *bytes)
{
	const char *value;
	memcpy(&value, bytes, sizeof value);
	return value;
}

static std::size_t distance_at(const char *bytes)
{
	std::size_t value;
	memcpy(&value, bytes, sizeof value);
	return value;
}

static void set_pointer(char *bytes, std::uintptr_t value)
{
	memcpy(bytes, &value, sizeof value);
}

// What lies behind the end of a shorter record is not there; of a longer one nobody asks for more.
static std::size_t size_of(const record_layout_t &layout, const char *record)
{
	if (!layout.tells_size)
		return layout.size;
	std::size_t told;
	memcpy(&told, record, sizeof told);
	// Without the link there would be no list.
	return std::clamp(told, layout.next + sizeof(void *), layout.size);
}

static bool lies_within(const pointer_layout_t &pointer, std::size_t size)
{
	return pointer.at + sizeof(void *) <= size;
}

namespace
{
class packer_t
{
public:
	// The distance of the first record; 0: there is none.
	std::size_t list(const record_layout_t &layout, const char *first, int length);
	std::vector<char> bytes;

private:
	std::size_t text(const char *text);
	std::size_t place(const char *from, std::size_t count);
	void set(std::size_t at, std::size_t distance) { set_pointer(bytes.data() + at, distance); }
};
} // namespace

std::size_t packer_t::place(const char *from, std::size_t count)
{
	const std::size_t at = bytes.size();
	bytes.insert(bytes.end(), from, from + count);
	return at;
}

std::size_t packer_t::text(const char *text)
{
	return text ? place(text, strlen(text) + 1) : 0;
}

std::size_t packer_t::list(const record_layout_t &layout, const char *first, int length)
{
	constexpr std::size_t ALIGNMENT = alignof(std::max_align_t);
	std::size_t head = 0, before = 0;
	const char *record = first;
	for (int i = 0; record && (length < 0 || i < length); i++) {
		const std::size_t size = size_of(layout, record);
		bytes.resize((bytes.size() + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT);
		const std::size_t at = place(record, size);
		(before ? set(before + layout.next, at) : void(head = at));
		set(at + layout.next, 0);
		for (const pointer_layout_t *p = layout.pointers; p != layout.pointers + layout.pointer_count;
		     p++) {
			if (!lies_within(*p, size))
				continue;
			const char *const target = pointer_at(record + p->at);
			set(at + p->at, p->list ? list(*p->list, target, -1) : text(target));
		}
		before = at;
		record = pointer_at(record + layout.next);
	}
	return head;
}

// In front of the records.
struct alignas(std::max_align_t) packed_head_t {
	std::uint64_t first;
	int length;
	int error;
	bool has_failed;
};

std::vector<char> pack(const query_t &query, const list_head_t &list)
{
	// Room for what most records point to, lest the bytes move again and again.
	constexpr std::size_t TEXTS_OF_RECORD = 600;
	packer_t packer;
	const std::size_t count = list.length > 0 ? static_cast<std::size_t>(list.length) : 0;
	packer.bytes.reserve(sizeof(packed_head_t) +
	                     std::min<std::size_t>(count, 4096) * (query.layout->size + TEXTS_OF_RECORD));
	packer.bytes.resize(sizeof(packed_head_t));
	packed_head_t head = {0, list.length, list.error, list.has_failed};
	head.first =
		packer.list(*query.layout, static_cast<const char *>(list.first), std::max(list.length, 0));
	memcpy(packer.bytes.data(), &head, sizeof head);
	return std::move(packer.bytes);
}

// ---- unpacking ----

static void relocate(const record_layout_t &layout, char *base, std::size_t first)
{
	for (std::size_t at = first; at != 0;) {
		char *const record = base + at;
		const std::size_t size = size_of(layout, record);
		for (const pointer_layout_t *p = layout.pointers; p != layout.pointers + layout.pointer_count;
		     p++) {
			const std::size_t target = lies_within(*p, size) ? distance_at(record + p->at) : 0;
			if (target == 0)
				continue;
			set_pointer(record + p->at, reinterpret_cast<std::uintptr_t>(base + target));
			if (p->list)
				relocate(*p->list, base, target);
		}
		at = distance_at(record + layout.next);
		if (at != 0)
			set_pointer(record + layout.next, reinterpret_cast<std::uintptr_t>(base + at));
	}
}

list_head_t unpack(const query_t &query, char *bytes)
{
	packed_head_t head;
	memcpy(&head, bytes, sizeof head);
	relocate(*query.layout, bytes, head.first);
	return {head.first ? bytes + head.first : nullptr, head.length, head.error, head.has_failed};
}
