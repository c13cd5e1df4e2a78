// SPDX-License-Identifier: Apache-2.0
// What the kernel sees of the machine: devices, and what stands on what.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_LOCAL_PART_H
#define DISKSCOUT_TOOLS_DISKSCOUT_LOCAL_PART_H

#include "asking.h"
#include "machine_tree.h"

// A container, and the device node that the controller's tool tells of it.
struct claim_t {
	std::size_t container;
	std::string node;
};
using claims_t = std::vector<claim_t>;

struct local_options_t {
	bool leaves_out_unused; // devices that a driver made in advance
};

// Puts "local" with all devices behind what the machine has already. A device that a container claims stands
// on it. What is left out is told by a line, empty when nothing is; what failed by messages.
std::string add_local_part(machine_tree_t &machine, const claims_t &claims, local_options_t how,
                           enquiry_t &from, messages_t &messages);

#endif
