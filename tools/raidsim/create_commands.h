// SPDX-License-Identifier: Apache-2.0
// Commands that create containers.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_CREATE_COMMANDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_CREATE_COMMANDS_H

#include "context.h"

void create_strip(context_t &at, const command_t &what);
void create_mirror(context_t &at, const command_t &what);
void create_raid5(context_t &at, const command_t &what);
void create_mstrip(context_t &at, const command_t &what);

#endif
