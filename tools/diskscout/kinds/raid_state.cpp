// SPDX-License-Identifier: Apache-2.0
// How a container is: what is counted of it, and the rows of a table of which the first one that fits is the
// answer.
#include "raid_state.h"

#include "raid.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

std::string_view word_of(container_state_t state)
{
	static constexpr std::string_view WORDS[] = {"optimal", "degraded", "rebuilding", "failed",
	                                             "unknown"};
	return WORDS[static_cast<std::size_t>(state)];
}

std::string words_of(const raid_state_t &state)
{
	const std::string_view word = word_of(state.state);
	if (state.rebuilt_permille < 0)
		return std::string(word);
	return fmt::format("{} {}", word, in_percent(state.rebuilt_permille));
}

int permille_of(float done)
{
	constexpr float WHOLE = 1000;
	if (!(done >= 0))
		return -1;
	return static_cast<int>(std::lround(std::min(done, 1.0F) * WHOLE));
}

std::string in_percent(int permille)
{
	return fmt::format("{}.{} %", permille / 10, permille % 10);
}

// ---- what a type can bear ----

// A mirror goes on as long as one member is left.
static constexpr int ALL_BUT_ONE = -1;

struct type_t {
	KESTREL_HWRAID_TYPE type;
	int least_members; // fewer are listed where the controller has given one up
	int bears;         // so many members lost
};

// Any other type is not known, or is about to become another one.
static constexpr type_t TYPES[] = {
	{KESTREL_HWRAID_TYPE_RAID0, 1, 0},  {KESTREL_HWRAID_TYPE_RAID1, 2, ALL_BUT_ONE},
	{KESTREL_HWRAID_TYPE_RAID5, 3, 1},  {KESTREL_HWRAID_TYPE_RAID10, 1, 0},
	{KESTREL_HWRAID_TYPE_VOLUME, 1, 0},
};

// ---- what is counted ----

struct count_t {
	int members = 0;
	int lost = 0;          // members that are gone or out of use
	int doubtful = 0;      // what nobody could tell of members, disks or tasks
	int weak = 0;          // member containers that are degraded
	int being_rebuilt = 0; // member containers
	bool is_rebuilt = false;
	bool is_rebuild_halted = false;
	int permille = -1; // of the rebuild that is least far
	const type_t *type = nullptr;

	int borne() const { return type->bears == ALL_BUT_ONE ? members - 1 : type->bears; }
};

struct rule_t {
	bool (*fits)(const count_t &c);
	container_state_t state;
};

static constexpr rule_t RULES[] = {
	{[](const count_t &c) { return c.members == 0; }, container_state_t::UNKNOWN},
	{[](const count_t &c) { return c.lost == c.members; }, container_state_t::FAILED},
	{[](const count_t &c) { return !c.type; }, container_state_t::UNKNOWN},
	{[](const count_t &c) { return c.lost > c.borne(); }, container_state_t::FAILED},
	{[](const count_t &c) { return c.is_rebuilt; }, container_state_t::REBUILDING},
	{[](const count_t &c) { return c.lost > 0 || c.weak > 0 || c.is_rebuild_halted; },
         container_state_t::DEGRADED},
	{[](const count_t &c) { return c.being_rebuilt > 0; }, container_state_t::REBUILDING},
	{[](const count_t &c) { return c.doubtful > 0; }, container_state_t::UNKNOWN},
	{[](const count_t &) { return true; }, container_state_t::OPTIMAL},
};

// ---- members ----

enum class condition_t { GOOD, LOST, DOUBTFUL };

static condition_t condition_of(const HWRAID_DISK_LIST &disk)
{
	// As the record has them, one less than they are named.
	enum { OTHER = KESTREL_HWRAID_DSK_TYPE_UNKNOWN - 1, DISK = KESTREL_HWRAID_DSK_TYPE_DISK - 1 };
	if (disk.DeviceType != DISK)
		return disk.DeviceType == OTHER ? condition_t::DOUBTFUL : condition_t::LOST;
	switch (disk.Usage) {
	case KESTREL_HWRAID_DSK_USAGE_INITED:
		return condition_t::GOOD;
	case KESTREL_HWRAID_DSK_USAGE_UNINIT:
	case KESTREL_HWRAID_DSK_USAGE_DETACHED:
	case KESTREL_HWRAID_DSK_USAGE_DOS:
	case KESTREL_HWRAID_DSK_USAGE_OFFLINE:
		return condition_t::LOST;
	default:
		return condition_t::DOUBTFUL;
	}
}

static condition_t condition_at(int address, const raid_list_t<raid_disk_t> &disks)
{
	for (const raid_disk_t &disk : disks.rows) {
		if (disk.record.nPosition == address)
			return condition_of(disk.record);
	}
	return disks.failed ? condition_t::DOUBTFUL : condition_t::LOST;
}

static void count_disk(int address, const raid_facts_t &facts, count_t &count)
{
	const condition_t condition = condition_at(address, facts.disks);
	count.lost += condition == condition_t::LOST;
	count.doubtful += condition == condition_t::DOUBTFUL;
}

static void count_permille(int permille, count_t &count)
{
	if (permille >= 0)
		count.permille = count.permille < 0 ? permille : std::min(count.permille, permille);
}

static raid_state_t state_of(const raid_container_t &row, const raid_facts_t &facts, int depth);

static const raid_container_t *container_of(int number, const raid_facts_t &facts)
{
	const auto &rows = facts.containers.rows;
	const auto found = std::find_if(rows.begin(), rows.end(), [&](const raid_container_t &row) {
		return row.record.nRaidID == number;
	});
	return found == rows.end() ? nullptr : &*found;
}

static void count_container(int number, const raid_facts_t &facts, int depth, count_t &count)
{
	const raid_container_t *const member = container_of(number, facts);
	const raid_state_t state = member ? state_of(*member, facts, depth + 1) : raid_state_t();
	count.lost += state.state == container_state_t::FAILED;
	count.weak += state.state == container_state_t::DEGRADED;
	count.being_rebuilt += state.state == container_state_t::REBUILDING;
	count.doubtful += state.state == container_state_t::UNKNOWN;
	count_permille(state.rebuilt_permille, count);
}

// The tool prints gigabytes and less, with one digit behind the point, and none from 100 on.
static long long most_rounded_off(long long size)
{
	constexpr long long MEGABYTE = 1 << 20, GIGABYTE = 1 << 30;
	if (size >= 100 * GIGABYTE)
		return GIGABYTE / 2 + MEGABYTE;
	return size >= GIGABYTE ? GIGABYTE / 20 + MEGABYTE : 2 * MEGABYTE;
}

// A member container that is not listed any more leaves no place behind: the others are too small together.
static bool lacks_container(const raid_container_t &whole, const raid_facts_t &facts)
{
	long long most = most_rounded_off(whole.total_size);
	bool has_containers = false;
	for (const int number : whole.record.nPosition) {
		if (!is_container(number))
			continue;
		const raid_container_t *const member = container_of(number, facts);
		// In doubt by itself, or of any size.
		if (!member || member->total_size == NOT_TOLD)
			return false;
		most += member->total_size + most_rounded_off(member->total_size);
		has_containers = true;
	}
	return has_containers && most < whole.total_size;
}

// A disk that is not listed as a member any more leaves no place behind either: how many of the pieces that
// are there would make as much as the container holds. 0: they do not tell.
static int least_members(const raid_container_t &whole, const raid_facts_t &facts)
{
	constexpr int MOST = 64;
	const bool has_parity = whole.record.RaidType == KESTREL_HWRAID_TYPE_RAID5;
	if (whole.total_size <= 0 || (!has_parity && whole.record.RaidType != KESTREL_HWRAID_TYPE_RAID0))
		return 0;
	long long largest = 0;
	for (const raid_piece_t &piece : facts.pieces->rows) {
		if (piece.record.bRaidID == whole.record.nRaidID)
			largest =
				std::max(largest, piece.record.nSize + most_rounded_off(piece.record.nSize));
	}
	const long long least = whole.total_size - most_rounded_off(whole.total_size);
	if (largest <= 0 || least / largest >= MOST)
		return 0;
	return static_cast<int>((least + largest - 1) / largest) + has_parity;
}

static void count_pieces(const raid_container_t &container, const raid_facts_t &facts, count_t &count)
{
	if (!facts.pieces)
		return;
	count.doubtful += facts.pieces->failed;
	const int least = least_members(container, facts);
	if (count.members > 0 && count.members < least) {
		count.lost += least - count.members;
		count.members = least;
	}
}

static void count_members(const HWRAID_LIST &container, const raid_facts_t &facts, int depth, count_t &count)
{
	for (const int member : container.nPosition) {
		if (member == NO_ADDRESS)
			continue;
		count.members++;
		if (is_container(member))
			count_container(member, facts, depth, count);
		else
			count_disk(member, facts, count);
	}
	count.doubtful += container.nDiskNumber > count.members;
	if (count.type && count.members > 0 && count.members < count.type->least_members) {
		count.lost += count.type->least_members - count.members;
		count.members = count.type->least_members;
	}
}

// ---- tasks ----

// As the record has the tool's words.
enum { REBUILD = 3, UNKNOWN_TASK = 6, OTHER_TASK = -1 };
enum { BAD = 0, DONE = 1, RUNNING = 2, SUSPENDED = 3 };

static void count_rebuild(const aac_task &task, count_t &count)
{
	if (task.State == RUNNING) {
		count.is_rebuilt = true;
		count_permille(permille_of(task.Done), count);
	} else if (task.State == SUSPENDED || task.State == BAD) {
		count.is_rebuild_halted = true;
	} else if (task.State != DONE) {
		count.doubtful++;
	}
}

static void count_tasks(int container, const raid_list_t<raid_task_t> &tasks, count_t &count)
{
	count.doubtful += tasks.failed;
	for (const raid_task_t &task : tasks.rows) {
		if (task.record.ContainerID != container)
			continue;
		if (task.record.Function == REBUILD)
			count_rebuild(task.record, count);
		else if (task.record.Function == UNKNOWN_TASK || task.record.Function == OTHER_TASK)
			count.doubtful++;
	}
}

// ---- states ----

static raid_state_t state_of(const raid_container_t &row, const raid_facts_t &facts, int depth)
{
	// The controller makes no containers of containers of containers.
	constexpr int DEEPEST = 1;
	if (depth > DEEPEST)
		return {};
	const HWRAID_LIST &container = row.record;
	count_t count;
	const auto *const type = std::find_if(std::begin(TYPES), std::end(TYPES),
	                                      [&](const type_t &t) { return t.type == container.RaidType; });
	count.type = type == std::end(TYPES) ? nullptr : type;
	count_members(container, facts, depth, count);
	count_pieces(row, facts, count);
	count.doubtful += lacks_container(row, facts);
	count_tasks(container.nRaidID, facts.tasks, count);
	for (const rule_t &rule : RULES) {
		if (!rule.fits(count))
			continue;
		const bool is_rebuilding = rule.state == container_state_t::REBUILDING;
		return {rule.state, is_rebuilding ? count.permille : -1};
	}
	return {};
}

std::vector<raid_state_t> states_of(const raid_facts_t &facts)
{
	std::vector<raid_state_t> states;
	states.reserve(facts.containers.rows.size());
	for (const raid_container_t &row : facts.containers.rows)
		states.push_back(state_of(row, facts, 0));
	return states;
}

std::vector<raid_state_t> states_of(raid_site_t &site, const std::string &controller)
{
	const raid_list_t<raid_container_t> &containers = site.containers(controller);
	// The queries of before tell no tasks, and are not asked for more than is listed.
	if (site.is_as_before() || containers.rows.empty())
		return std::vector<raid_state_t>(containers.rows.size());
	return states_of(
		{containers, site.disks(controller), site.tasks(controller), &site.pieces(controller)});
}
