// SPDX-License-Identifier: Apache-2.0
// The records that the operations on a controller build, one allocation each: all of them are exported. Words
// of the tool are stored as codes: the accessors of aac_public translate both ways.
#ifndef DISKSCOUT_HWRAID_AAC_HARDRAID_H
#define DISKSCOUT_HWRAID_AAC_HARDRAID_H

#include "diskscout_raid.h"

#endif
