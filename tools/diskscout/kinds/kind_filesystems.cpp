// SPDX-License-Identifier: Apache-2.0
// What is on the devices: file systems, members of arrays and pools, partition tables.
#include "block_fields.h"
#include "kinds.h"

#include <fmt/format.h>

using content_t = block_content;
using entry_t = block_partition;

static constexpr field_t ENTRY_FIELDS[] = {
	text<&entry_t::name>("name", "NAME", "name of the kernel's device for it"),
	number<&entry_t::number>("number", "NUMBER", "from 1 on"),
	bytes<&entry_t::start>("start", "START", "bytes from the disk's beginning"),
	bytes<&entry_t::size>("size", "SIZE", "bytes"),
	text<&entry_t::type>("type", "TYPE", "0x83, a GUID, or a word of the table's own"),
	text<&entry_t::uuid>("uuid", "UUID", "of the entry"),
	text<&entry_t::label>("label", "LABEL", "name in a GUID partition table"),
	number<&entry_t::flags>("flags", "FLAGS", "boot byte, or a GUID entry's attributes"),
};

static std::string entries_cell(const row_t &row)
{
	std::size_t count = 0;
	const auto *const member = member_within<&content_t::partitions>(row);
	for (const entry_t *e = member ? *member : nullptr; e; e = e->next)
		count++;
	return count ? fmt::to_string(count) : "-";
}

static void put_reason(const row_t &row, sink_t &to)
{
	const auto *const error = member_within<&content_t::error>(row);
	if (error && *error != BLOCK_ABSENT)
		to.text(strerror(*error));
	else
		to.absent();
}

static constexpr field_t FIELDS[] = {
	always<&content_t::name>("name", "NAME", "name of the device"),
	text<&content_t::source>("source", "SOURCE",
                                 "device (it was read), udev, kernel; null: nobody knows anything"),
	number<&content_t::error>("error", "ERRNO", "errno of what kept the device from being read"),
	{"reason", "NOT READ", shape_t::TEXT, MAY_LACK, "what kept the device from being read", put_reason},
	flag<&content_t::ambiguous>("ambiguous", "AMBIGUOUS",
                                    "signatures of several kinds, none of which is taken"),
	text<&content_t::table>("table", "TABLE",
                                "kind of partition table: gpt, dos ..., PMBR (protective alone)"),
	text<&content_t::table_id>("table_id", "TABLE ID", "identifier of the partition table"),
	objects<&content_t::partitions, ENTRY_FIELDS>("partitions", "ENTRIES",
                                                      "entries of the partition table", entries_cell),
	text<&content_t::usage>("usage", "USAGE", "filesystem, raid, crypto or other"),
	text<&content_t::type>("type", "TYPE", "ext4, linux_raid_member, LVM2_member, crypto_LUKS, swap ..."),
	text<&content_t::label>("label", "LABEL", "of the file system, the array or the pool"),
	text<&content_t::uuid>("uuid", "UUID", "of file system, array or pool"),
	text<&content_t::uuid_sub>("uuid_sub", "MEMBER UUID",
                                   "of this member, where uuid is that of the whole"),
	text<&content_t::version>("version", "VERSION", "of the format"),
};

const kind_t FILESYSTEMS_KIND = {
	"filesystems",
	"",
	"FILE SYSTEMS",
	"content",
	"what is on each device",
	"This host has no block device.",
	side_t::BLOCK,
	0,
	FIELDS,
	"name,type,version,label,uuid,table,partitions,source,reason",
	nullptr,
	ask_for_block<content_t, CMD_GET_BLOCK_CONTENTS>,
	{},
	is_named<content_t>,
};
