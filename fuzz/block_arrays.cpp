// SPDX-License-Identifier: Apache-2.0
// The attributes of an array and of its members.
#include "block.h"
#include "outside.h"
#include "promises.h"
#include "targets.h"

#include "diskscout_block.h"
#include "queries.h"
#include "record.h"

#include <ctype.h>
#include <sstream>
#include <string_view>

namespace
{

// In the order of the input's lines; members last.
constexpr const char *ATTRIBUTES[] = {
	"md/level",
	"md/array_state",
	"md/metadata_version",
	"md/raid_disks",
	"md/degraded",
	"md/chunk_size",
	"md/layout",
	"md/sync_action",
	"md/sync_completed",
	"md/sync_speed",
	"md/mismatch_cnt",
	"md/bitmap/location",
	"md/consistency_policy",
	"md/uuid",
	"md/dev-sda/state",
	"md/dev-sda/slot",
	"md/dev-sda/errors",
	"md/dev-sdb/state",
	"md/dev-sdb/slot",
	"md/dev-sdb/errors",
	"md/dev-sdc/state",
	"md/dev-sdc/slot",
};
constexpr int MEMBERS = 3;

bool is_count(long long value)
{
	return value == BLOCK_ABSENT || value >= 0;
}

bool is_uuid(const char *text)
{
	const std::string_view uuid = text ? text : "";
	bool is_one = uuid.empty() || uuid.size() == 35;
	for (size_t i = 0; i < uuid.size(); i++)
		is_one = is_one && (i % 9 == 8 ? uuid[i] == ':' : isxdigit(uuid[i]) != 0);
	return is_one;
}

std::string wrong_members(const block_array &array)
{
	static constexpr std::string_view ROLES[] = {"active", "spare", "faulty", "journal", "replacement"};
	int counts[std::size(ROLES)] = {};
	int all = 0;
	unsigned slot = 0;
	for (const block_member *at = array.members; at; at = at->next, all++) {
		const auto *role = std::find(std::begin(ROLES), std::end(ROLES), at->role ? at->role : "");
		if (role == std::end(ROLES))
			return "role";
		counts[role - ROLES]++;
		if (!at->name || !is_shown(at->name) || !is_shown(at->state) || !is_count(at->errors))
			return "a member";
		// Without a slot: behind all others.
		if (!is_count(at->slot) || static_cast<unsigned>(at->slot) < slot)
			return "order of the members";
		slot = static_cast<unsigned>(at->slot);
	}
	return broken({
		{all == MEMBERS, "number of members"},
		{array.active == counts[0], "active members"},
		{array.spare == counts[1] + counts[4], "spare members"},
		{array.failed == counts[2], "failed members"},
	});
}

std::string wrong_array(const block_array &array)
{
	std::string wrong = broken({
		{array.name && std::string_view(array.name) == "md0", "name"},
		{is_shown(array.metadata) && is_shown(array.level) && is_shown(array.state) &&
	                 is_shown(array.sync_action) && is_shown(array.bitmap) && is_shown(array.consistency),
	         "a text of an array"},
		{is_uuid(array.uuid), "uuid"},
		{!array.state || std::string_view(array.state) != "clear", "an array that is none"},
		{array.wanted != 0 && is_count(array.wanted), "members wanted"},
		{array.chunk_size != 0 && is_count(array.chunk_size), "chunk"},
		{is_count(array.degraded) && is_count(array.layout) && is_count(array.sync_speed) &&
	                 is_count(array.mismatches),
	         "a number"},
		{is_count(array.sync_done) && is_count(array.sync_total) &&
	                 (array.sync_done == BLOCK_ABSENT) == (array.sync_total == BLOCK_ABSENT),
	         "progress"},
		{array.size == 4096, "size"},
	});
	return wrong.empty() ? wrong_members(array) : wrong;
}

} // namespace

std::string check_arrays(const char *path)
{
	static const Host host("arrays");
	const std::string folder = "sys/class/block/md0/";
	std::istringstream lines(content_of(path));
	host.file(folder + "uevent", "MAJOR=9\nMINOR=0\nDEVNAME=md0\nDEVTYPE=disk\n");
	host.file(folder + "size", "8\n");
	for (const char *attribute : ATTRIBUTES) {
		std::string line;
		std::getline(lines, line);
		host.file(folder + attribute, line + "\n");
	}

	const Visit visit(host);
	void *list = nullptr;
	int count = 0;
	if (list_arrays(&list, &count) != 0)
		return "the query failed";
	const auto *array = static_cast<const block_array *>(list);
	std::string wrong = count > 1 || (count == 1) != (array != nullptr) ? "number of records"
	                    : array                                         ? wrong_array(*array)
	                                                                    : "";
	release_list(&list);
	return wrong;
}
