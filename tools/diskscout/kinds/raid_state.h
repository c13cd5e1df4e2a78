// SPDX-License-Identifier: Apache-2.0
// How a container is: one word out of its type, its members, their disks and the tasks that run.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_RAID_STATE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_RAID_STATE_H

#include "raid_site.h"

#include <string>
#include <string_view>
#include <vector>

enum class container_state_t { OPTIMAL, DEGRADED, REBUILDING, FAILED, UNKNOWN };

// "optimal" ...
std::string_view word_of(container_state_t state);

// How far a task is: 0 to 1000 of the 0 to 1 that a record tells; -1 for what is none.
int permille_of(float done);
// "45.0 %"
std::string in_percent(int permille);

struct raid_state_t {
	container_state_t state = container_state_t::UNKNOWN;
	int rebuilt_permille = -1; // 0 to 1000; -1: nothing is being rebuilt, or nobody tells how far it is
};

// What the rows of the containers' kind are about. Begins as its record.
struct shown_container_t {
	raid_container_t container;
	raid_state_t state;
};

// What the states follow from. A list that failed holds what it found before.
struct raid_facts_t {
	const raid_list_t<raid_container_t> &containers;
	const raid_list_t<raid_disk_t> &disks;
	const raid_list_t<raid_task_t> &tasks;
	const raid_list_t<raid_piece_t> *pieces = nullptr; // null: they are left out of it
};

// One for each row of the containers, in their order.
std::vector<raid_state_t> states_of(const raid_facts_t &facts);

// The same of a controller, whose lists are asked for as far as they have not been.
std::vector<raid_state_t> states_of(raid_site_t &site, const std::string &controller);

// "rebuilding 45.0 %", "optimal".
std::string words_of(const raid_state_t &state);

#endif
