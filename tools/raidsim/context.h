// SPDX-License-Identifier: Apache-2.0
// What a command works on.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_CONTEXT_H
#define DISKSCOUT_TOOLS_RAIDSIM_CONTEXT_H

#include "command.h"
#include "faults.h"
#include "state.h"

#include <string>
#include <vector>

// Only an accepted command's changes are kept.
struct context_t {
	state_t all;
	int opened; // index of the open controller, -1: none
	const faults_t &wanted;
	std::vector<std::string> answer;

	controller_t &open_controller() { return all.controllers.at(static_cast<std::size_t>(opened)); }
};

// The disk at an address; refused when there is none, or no such channel.
disk_t &require_disk(controller_t &where, const address_t &at);
// The same for a disk that can hold data, which an enclosure's processor cannot.
disk_t &require_storage(controller_t &where, const address_t &at);
container_t &require_container(controller_t &where, int number);

#endif
