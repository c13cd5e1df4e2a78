// Commands about containers and their hot spares.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_CONTAINER_COMMANDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_CONTAINER_COMMANDS_H

#include "context.h"

void container_list(context &at, const command &what);
void container_show_failover(context &at, const command &what);
void container_set_failover(context &at, const command &what);
void container_remove_failover(context &at, const command &what);
void container_delete(context &at, const command &what);

#endif
