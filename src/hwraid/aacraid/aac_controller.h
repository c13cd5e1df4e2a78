// SPDX-License-Identifier: Apache-2.0
// The RAID controllers that the controller tool can see: all of it is exported.
#ifndef DISKSCOUT_HWRAID_AAC_CONTROLLER_H
#define DISKSCOUT_HWRAID_AAC_CONTROLLER_H

#include "diskscout_raid.h"

#endif
