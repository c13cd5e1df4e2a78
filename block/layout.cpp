// SPDX-License-Identifier: Apache-2.0
// The binary layout of the public records, checked when this is compiled, and where their pointers lie.
#include "record.h"

#define AT(record, field, offset)                                                                            \
	static_assert(offsetof(record, field) == (offset), #record "::" #field " has moved")
#define SIZE(record, size)                                                                                   \
	static_assert(sizeof(record) == (size), #record " has changed its size");                            \
	static_assert(offsetof(record, record_size) == offsetof(record_head_t, record_size));                \
	static_assert(offsetof(record, next) == offsetof(record_head_t, next), "walked by its head")

#include "layout.h"

static constexpr record_layout_t::inner_t NO_LISTS[] = {{0, nullptr}};

static constexpr size_t TEXT_TEXTS[] = {offsetof(block_text, text), 0};
static constexpr record_layout_t TEXT_LAYOUT = {sizeof(block_text), TEXT_TEXTS, NO_LISTS};

static constexpr size_t DEVICE_TEXTS[] = {
	offsetof(block_device, name),
	offsetof(block_device, node),
	offsetof(block_device, kind),
	offsetof(block_device, disk),
	offsetof(block_device, transport),
	offsetof(block_device, vendor),
	offsetof(block_device, model),
	offsetof(block_device, model_source),
	offsetof(block_device, serial),
	offsetof(block_device, serial_source),
	offsetof(block_device, firmware),
	offsetof(block_device, firmware_source),
	offsetof(block_device, wwn),
	offsetof(block_device, eui64),
	offsetof(block_device, nguid),
	offsetof(block_device, uuid),
	offsetof(block_device, controller_pci),
	offsetof(block_device, state),
	offsetof(block_device, dm_name),
	offsetof(block_device, dm_uuid),
	offsetof(block_device, dm_kind),
	offsetof(block_device, dm_target),
	offsetof(block_device, backing_file),
	0,
};
static constexpr record_layout_t::inner_t DEVICE_LISTS[] = {
	{offsetof(block_device, links), &TEXT_LAYOUT},
	{0, nullptr},
};
const record_layout_t DEVICE_LAYOUT = {sizeof(block_device), DEVICE_TEXTS, DEVICE_LISTS};

static constexpr size_t LINK_TEXTS[] = {
	offsetof(block_link, upper),
	offsetof(block_link, lower),
	offsetof(block_link, relation),
	offsetof(block_link, address),
	offsetof(block_link, state),
	offsetof(block_link, access),
	0,
};
const record_layout_t LINK_LAYOUT = {sizeof(block_link), LINK_TEXTS, NO_LISTS};

static constexpr size_t PARTITION_TEXTS[] = {
	offsetof(block_partition, name),
	offsetof(block_partition, type),
	offsetof(block_partition, uuid),
	offsetof(block_partition, label),
	0,
};
static constexpr record_layout_t PARTITION_LAYOUT = {sizeof(block_partition), PARTITION_TEXTS, NO_LISTS};

static constexpr size_t CONTENT_TEXTS[] = {
	offsetof(block_content, name),
	offsetof(block_content, source),
	offsetof(block_content, table),
	offsetof(block_content, table_id),
	offsetof(block_content, usage),
	offsetof(block_content, type),
	offsetof(block_content, label),
	offsetof(block_content, uuid),
	offsetof(block_content, uuid_sub),
	offsetof(block_content, version),
	0,
};
static constexpr record_layout_t::inner_t CONTENT_LISTS[] = {
	{offsetof(block_content, partitions), &PARTITION_LAYOUT},
	{0, nullptr},
};
const record_layout_t CONTENT_LAYOUT = {sizeof(block_content), CONTENT_TEXTS, CONTENT_LISTS};

static constexpr size_t MOUNT_TEXTS[] = {
	offsetof(block_mount, kind),          offsetof(block_mount, source),
	offsetof(block_mount, type),          offsetof(block_mount, root),
	offsetof(block_mount, mount_point),   offsetof(block_mount, options),
	offsetof(block_mount, super_options), 0,
};
static constexpr record_layout_t::inner_t MOUNT_LISTS[] = {
	{offsetof(block_mount, devices), &TEXT_LAYOUT},
	{0, nullptr},
};
const record_layout_t MOUNT_LAYOUT = {sizeof(block_mount), MOUNT_TEXTS, MOUNT_LISTS};

static constexpr size_t MEMBER_TEXTS[] = {
	offsetof(block_member, name),
	offsetof(block_member, role),
	offsetof(block_member, state),
	0,
};
static constexpr record_layout_t MEMBER_LAYOUT = {sizeof(block_member), MEMBER_TEXTS, NO_LISTS};

static constexpr size_t ARRAY_TEXTS[] = {
	offsetof(block_array, name),   offsetof(block_array, uuid),        offsetof(block_array, metadata),
	offsetof(block_array, level),  offsetof(block_array, state),       offsetof(block_array, sync_action),
	offsetof(block_array, bitmap), offsetof(block_array, consistency), 0,
};
static constexpr record_layout_t::inner_t ARRAY_LISTS[] = {
	{offsetof(block_array, members), &MEMBER_LAYOUT},
	{0, nullptr},
};
const record_layout_t ARRAY_LAYOUT = {sizeof(block_array), ARRAY_TEXTS, ARRAY_LISTS};
