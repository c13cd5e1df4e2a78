// SPDX-License-Identifier: Apache-2.0
// Creation of containers: all of it is exported.
#ifndef DISKSCOUT_HWRAID_AAC_RAID_H
#define DISKSCOUT_HWRAID_AAC_RAID_H

#include "diskscout_raid.h"

#endif
