// Commands about disks.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_DISK_COMMANDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_DISK_COMMANDS_H

#include "context.h"

void disk_list(context &at, const command &what);
void disk_initialize(context &at, const command &what);
void disk_show_defect(context &at, const command &what);
void disk_show_space(context &at, const command &what);
void disk_show_partition(context &at, const command &what);

#endif
