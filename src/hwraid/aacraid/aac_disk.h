// SPDX-License-Identifier: Apache-2.0
// Operations on the disks behind a controller: all of it is exported.
#ifndef DISKSCOUT_HWRAID_AAC_DISK_H
#define DISKSCOUT_HWRAID_AAC_DISK_H

#include "diskscout_raid.h"

#endif
