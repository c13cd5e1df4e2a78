// Commands that create containers.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_CREATE_COMMANDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_CREATE_COMMANDS_H

#include "context.h"

void create_strip(context &at, const command &what);
void create_mirror(context &at, const command &what);
void create_raid5(context &at, const command &what);
void create_mstrip(context &at, const command &what);

#endif
