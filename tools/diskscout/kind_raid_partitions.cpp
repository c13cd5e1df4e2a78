// Pieces of the disks behind a RAID controller that its containers use.
#include "raid.h"

#include <fmt/format.h>

using raid_partition_t = HWRAID_PARTITION_LIST;

static constexpr coded_word_t MULTILEVEL_TYPES[] = {
	{KESTREL_HWRAID_PART_MULTILEVEL_TYPE_UNKNOWN, "unknown"},
	{KESTREL_HWRAID_PART_MULTILEVEL_TYPE_NONE, "none"},
	{KESTREL_HWRAID_PART_MULTILEVEL_TYPE_STRIPE, "stripe"},
};

static constexpr coded_word_t ACCESSES[] = {
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_UNKNOWN, "unknown"},
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_NOT_READ_OR_WRITE, "none"},
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_READ, "read"},
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_WRITE, "write"},
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_READ_AND_WRITE, "read/write"},
};

// Without a container above, its number is 0, which is a container's number as well.
static std::string part_of(const raid_partition_t &p)
{
	if (p.MultilevelType == KESTREL_HWRAID_PART_MULTILEVEL_TYPE_NONE)
		return "-";
	return fmt::format("{} {}", word_of(p.MultilevelType, MULTILEVEL_TYPES), p.nMultilevelRaidID);
}

static const column_t<raid_partition_t> COLUMNS[] = {
	{"DISK", align_t::LEFT, [](const raid_partition_t &p) { return address(p.nPosition); }},
	{"OFFSET", align_t::RIGHT, [](const raid_partition_t &p) { return signed_size(p.nOffset); }},
	{"SIZE", align_t::RIGHT, [](const raid_partition_t &p) { return signed_size(p.nSize); }},
	{"CONTAINER", align_t::RIGHT, [](const raid_partition_t &p) { return std::to_string(p.bRaidID); }},
	{"TYPE", align_t::LEFT,
         [](const raid_partition_t &p) { return word_of(p.RaidType, CONTAINER_TYPES); }},
	{"PART OF", align_t::LEFT, part_of},
	{"ACCESS", align_t::LEFT,
         [](const raid_partition_t &p) { return word_of(p.ReadWriteAttribute, ACCESSES); }},
};

static ordered_json_t object(const raid_partition_t &p)
{
	return {
		{"address", json_address(p.nPosition)},
		{"offset", p.nOffset},
		{"size", p.nSize},
		{"raid_id", p.bRaidID},
		{"type", p.RaidType},
		{"type_word", json_word(p.RaidType, CONTAINER_TYPES)},
		{"multilevel_raid_id", p.nMultilevelRaidID},
		{"multilevel_type", p.MultilevelType},
		{"multilevel_type_word", json_word(p.MultilevelType, MULTILEVEL_TYPES)},
		{"read_write_attribute", p.ReadWriteAttribute},
		{"read_write_attribute_word", json_word(p.ReadWriteAttribute, ACCESSES)},
	};
}

static answer_t ask(enquiry_t &from)
{
	return answer_of(from.ask(CMD_GET_RAID_PARTITIONS, from.controller().value_or("")), COLUMNS, object);
}

const kind_t RAID_PARTITIONS_KIND = {
	"raid-partitions",   "RAID PARTITIONS",
	"RAID partition",    "No container uses the disks of the controller.",
	scope_t::CONTROLLER, ask,
};
