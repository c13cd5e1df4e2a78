// What a command works on.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_CONTEXT_H
#define DISKSCOUT_TOOLS_RAIDSIM_CONTEXT_H

#include "command.h"
#include "faults.h"
#include "state.h"

#include <string>
#include <vector>

// Only an accepted command's changes are kept.
struct context {
	state all;
	int opened; // index of the open controller, -1: none
	const faults &wanted;
	std::vector<std::string> answer;

	controller &open_controller() { return all.controllers.at(static_cast<std::size_t>(opened)); }
};

// The disk at an address; refused when there is none, or no such channel.
disk &require_disk(controller &where, const address &at);
// The same for a disk that can hold data, which an enclosure's processor cannot.
disk &require_storage(controller &where, const address &at);
container &require_container(controller &where, int number);

#endif
