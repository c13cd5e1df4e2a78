// SPDX-License-Identifier: Apache-2.0
// What is behind the RAID controllers of the machine: containers, their disks, free areas.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_RAID_PART_H
#define DISKSCOUT_TOOLS_DISKSCOUT_RAID_PART_H

#include "local_part.h"

// Puts the controllers behind what the machine has already, and tells which devices their containers are. A
// machine whose plug-in has no configuration is asked nothing; what failed is told by messages.
claims_t add_raid_part(machine_tree_t &machine, enquiry_t &from, const options_t &opts, messages_t &messages);

#endif
