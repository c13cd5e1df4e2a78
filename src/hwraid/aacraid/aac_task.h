// SPDX-License-Identifier: Apache-2.0
// The controller's background tasks, creating, rebuilding, verifying: all of it is exported.
#ifndef DISKSCOUT_HWRAID_AAC_TASK_H
#define DISKSCOUT_HWRAID_AAC_TASK_H

#include "diskscout_raid.h"

#endif
