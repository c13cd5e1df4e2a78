// SPDX-License-Identifier: Apache-2.0
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
static bool is_in_another(const raid_partition_t &p)
{
	return p.MultilevelType != KESTREL_HWRAID_PART_MULTILEVEL_TYPE_NONE;
}

static void put_part_of(const row_t &row, sink_t &to)
{
	const auto &p = record_of<raid_partition_t>(row);
	if (is_in_another(p))
		to.text(fmt::format("{} {}", word_or_number(p.MultilevelType, MULTILEVEL_TYPES),
		                    p.nMultilevelRaidID));
	else
		to.absent();
}

template <auto Member> static constexpr field_t size(const char *key, const char *heading, const char *what)
{
	return {key,
	        heading,
	        shape_t::BYTES,
	        OLD | NEW,
	        what,
	        number_member<Member>,
	        {},
	        signed_size_cell<Member>};
}

static constexpr field_t FIELDS[] = {
	controller_field<raid_piece_t>(),
	address_field<&raid_partition_t::nPosition>("address", "DISK",
                                                    "the disk: channel, SCSI ID and LUN at the controller"),
	size<&raid_partition_t::nOffset>("offset", "OFFSET", "bytes from the disk's beginning"),
	size<&raid_partition_t::nSize>("size", "SIZE", "bytes"),
	number<&raid_partition_t::bRaidID>("raid_id", "CONTAINER", "number of the container that uses it"),
	number<&raid_partition_t::RaidType>("type", "TYPE CODE", "code of type_word"),
	word<&raid_partition_t::RaidType, CONTAINER_TYPES>("type_word", "TYPE",
                                                           "null for a code without a word"),
	number<&raid_partition_t::nMultilevelRaidID>("multilevel_raid_id", "OUTER CONTAINER",
                                                     "number of the container that raid_id is part of"),
	number<&raid_partition_t::MultilevelType>("multilevel_type", "OUTER CODE",
                                                  "code of multilevel_type_word"),
	word<&raid_partition_t::MultilevelType, MULTILEVEL_TYPES>("multilevel_type_word", "OUTER TYPE",
                                                                  "null for a code without a word"),
	{"part_of", "PART OF", shape_t::TEXT, MAY_LACK, "container that raid_id is part of", put_part_of},
	number<&raid_partition_t::ReadWriteAttribute>("read_write_attribute", "ACCESS CODE",
                                                      "code of read_write_attribute_word"),
	word<&raid_partition_t::ReadWriteAttribute, ACCESSES>("read_write_attribute_word", "ACCESS",
                                                              "null for a code without a word"),
};

const kind_t RAID_PARTITIONS_KIND = {
	"raid_partitions",
	"raid-partitions",
	"RAID PARTITIONS",
	"RAID partition",
	"pieces of disks behind RAID controllers that containers use",
	"No container uses a disk of a RAID controller.",
	side_t::CONTROLLER,
	0,
	FIELDS,
	"controller,address,offset,size,raid_id,type_word,part_of,read_write_attribute_word",
	"address,offset,size,raid_id,type_word,part_of,read_write_attribute_word",
	ask_controllers<raid_piece_t, &raid_site_t::pieces>,
	"",
	nullptr,
	"read_write_attribute_word",
	"No container uses the disks of the controller.",
};
