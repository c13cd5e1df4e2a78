// Pieces of the disks behind a RAID controller that its containers use.
#include "raid.h"

#include <fmt/format.h>

using raid_partition = HWRAID_PARTITION_LIST;

static constexpr coded_word multilevel_types[] = {
	{KESTREL_HWRAID_PART_MULTILEVEL_TYPE_UNKNOWN, "unknown"},
	{KESTREL_HWRAID_PART_MULTILEVEL_TYPE_NONE, "none"},
	{KESTREL_HWRAID_PART_MULTILEVEL_TYPE_STRIPE, "stripe"},
};

static constexpr coded_word accesses[] = {
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_UNKNOWN, "unknown"},
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_NOT_READ_OR_WRITE, "none"},
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_READ, "read"},
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_WRITE, "write"},
	{KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_READ_AND_WRITE, "read/write"},
};

// Without a container above, its number is 0, which is a container's number as well.
static std::string part_of(const raid_partition &p)
{
	if (p.MultilevelType == KESTREL_HWRAID_PART_MULTILEVEL_TYPE_NONE)
		return "-";
	return fmt::format("{} {}", word_of(p.MultilevelType, multilevel_types), p.nMultilevelRaidID);
}

static const column<raid_partition> columns[] = {
	{"DISK", align::left, [](const raid_partition &p) { return address(p.nPosition); }},
	{"OFFSET", align::right, [](const raid_partition &p) { return signed_size(p.nOffset); }},
	{"SIZE", align::right, [](const raid_partition &p) { return signed_size(p.nSize); }},
	{"CONTAINER", align::right, [](const raid_partition &p) { return std::to_string(p.bRaidID); }},
	{"TYPE", align::left, [](const raid_partition &p) { return word_of(p.RaidType, container_types); }},
	{"PART OF", align::left, part_of},
	{"ACCESS", align::left,
         [](const raid_partition &p) { return word_of(p.ReadWriteAttribute, accesses); }},
};

static ordered_json object(const raid_partition &p)
{
	return {
		{"address", json_address(p.nPosition)},
		{"offset", p.nOffset},
		{"size", p.nSize},
		{"raid_id", p.bRaidID},
		{"type", p.RaidType},
		{"type_word", json_word(p.RaidType, container_types)},
		{"multilevel_raid_id", p.nMultilevelRaidID},
		{"multilevel_type", p.MultilevelType},
		{"multilevel_type_word", json_word(p.MultilevelType, multilevel_types)},
		{"read_write_attribute", p.ReadWriteAttribute},
		{"read_write_attribute_word", json_word(p.ReadWriteAttribute, accesses)},
	};
}

static answer ask(enquiry &from)
{
	return answer_of(from.ask(CMD_GET_RAID_PARTITIONS, from.controller().value_or("")), columns, object);
}

const kind raid_partitions_kind = {
	"raid-partitions", "RAID PARTITIONS",
	"RAID partition",  "No container uses the disks of the controller.",
	scope::controller, ask,
};
