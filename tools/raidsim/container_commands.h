// SPDX-License-Identifier: Apache-2.0
// Commands about containers and their hot spares.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_CONTAINER_COMMANDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_CONTAINER_COMMANDS_H

#include "context.h"

void container_list(context_t &at, const command_t &what);
void container_show_failover(context_t &at, const command_t &what);
void container_set_failover(context_t &at, const command_t &what);
void container_remove_failover(context_t &at, const command_t &what);
void container_delete(context_t &at, const command_t &what);

#endif
