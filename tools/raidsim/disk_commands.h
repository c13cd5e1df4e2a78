// SPDX-License-Identifier: Apache-2.0
// Commands about disks.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_DISK_COMMANDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_DISK_COMMANDS_H

#include "context.h"

void disk_list(context_t &at, const command_t &what);
void disk_initialize(context_t &at, const command_t &what);
void disk_show_defect(context_t &at, const command_t &what);
void disk_show_space(context_t &at, const command_t &what);
void disk_show_partition(context_t &at, const command_t &what);

#endif
