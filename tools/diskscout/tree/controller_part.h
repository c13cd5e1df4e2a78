// SPDX-License-Identifier: Apache-2.0
// One RAID controller with all that is behind it.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_CONTROLLER_PART_H
#define DISKSCOUT_TOOLS_DISKSCOUT_CONTROLLER_PART_H

#include "local_part.h"

// Puts the controller of this name with its containers and disks behind what the machine has already; null:
// it is not listed. What could not be asked is told as its cause.
void add_controller(machine_tree_t &machine, const std::string &name, const aac_controller *listed,
                    enquiry_t &from, claims_t &claims);

#endif
