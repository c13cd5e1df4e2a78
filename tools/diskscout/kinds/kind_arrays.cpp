// SPDX-License-Identifier: Apache-2.0
// Software RAID.
#include "block_fields.h"
#include "kinds.h"

#include <fmt/format.h>

using array_t = block_array;
using member_t = block_member;

static constexpr field_t MEMBER_FIELDS[] = {
	always<&member_t::name>("name", "NAME", "name of the device"),
	text<&member_t::role>("role", "ROLE", "active, spare, faulty, journal or replacement"),
	number<&member_t::slot>("slot", "SLOT", "place in the array from 0 on"),
	text<&member_t::state>("state", "STATE", "the kernel's words"),
	number<&member_t::errors>("errors", "ERRORS", "read errors that were put right"),
};

// What is at work by its name alone, all else with its role.
static std::string members_cell(const row_t &row)
{
	std::string text;
	const auto *const members = member_within<&array_t::members>(row);
	for (const member_t *m = members ? *members : nullptr; m; m = m->next) {
		const std::string_view role = m->role ? m->role : "?";
		text += fmt::format("{}{}", text.empty() ? "" : ", ", m->name);
		if (role != "active")
			text += fmt::format(" ({})", role);
	}
	return text.empty() ? "-" : text;
}

static constexpr field_t FIELDS[] = {
	always<&array_t::name>("name", "NAME", "name of the device"),
	text<&array_t::uuid>("uuid", "UUID", "8:8:8:8 hexadecimal digits"),
	text<&array_t::metadata>("metadata", "METADATA", "0.90, 1.2, external:..., none"),
	text<&array_t::level>("level", "LEVEL", "raid1, linear ..."),
	text<&array_t::state>("state", "STATE", "the kernel's word: clean, active, readonly, inactive ..."),
	number<&array_t::wanted>("wanted", "WANTED", "members that it is made for"),
	number<&array_t::active>("active", "ACTIVE", "members that are in step and at work"),
	number<&array_t::failed>("failed", "FAILED", "faulty members that are still in it"),
	number<&array_t::spare>("spare", "SPARE", "members that wait, or are being rebuilt"),
	number<&array_t::degraded>("degraded", "LACKS", "members that it lacks; null without redundancy"),
	bytes<&array_t::size>("size", "SIZE", "bytes"),
	bytes<&array_t::chunk_size>("chunk_size", "CHUNK", "bytes; null for levels that have none"),
	number<&array_t::layout>("layout", "LAYOUT", "the level's own number"),
	text<&array_t::sync_action>("sync_action", "SYNC",
                                    "idle, resync, recover, check, repair, reshape, frozen"),
	number<&array_t::sync_done>("sync_done", "DONE", "sectors of 512 bytes; null when nothing runs"),
	number<&array_t::sync_total>("sync_total", "OF", "sectors of 512 bytes; null when nothing runs"),
	number<&array_t::sync_speed>("sync_speed", "SPEED", "KiB a second; null when nothing runs"),
	number<&array_t::mismatches>("mismatches", "MISMATCHES",
                                     "sectors that the last check found different"),
	text<&array_t::bitmap>("bitmap", "BITMAP", "none, file, or where the internal one lies"),
	text<&array_t::consistency>("consistency", "CONSISTENCY", "bitmap, journal, ppl, resync, none"),
	objects<&array_t::members, MEMBER_FIELDS>("members", "MEMBERS", "slots first, in their order",
                                                  members_cell),
};

const kind_t ARRAYS_KIND = {
	"arrays",
	"",
	"ARRAYS",
	"array",
	"software RAID arrays",
	"This host has no software RAID array.",
	side_t::BLOCK,
	0,
	FIELDS,
	"name,level,state,size,wanted,active,failed,spare,sync_action,members",
	nullptr,
	ask_for_block<array_t, CMD_GET_BLOCK_ARRAYS>,
	{},
	is_named<array_t>,
};
