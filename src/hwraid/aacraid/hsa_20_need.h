// SPDX-License-Identifier: Apache-2.0
// The hardware RAID item provider: answers the hardware codes of the boundary and releases their lists.
#ifndef DISKSCOUT_HWRAID_HSA_20_NEED_H
#define DISKSCOUT_HWRAID_HSA_20_NEED_H

#include "diskscout.h"

// Query codes release the list passed in, run one operation and hand out its records; release codes (query
// code plus one) only release. 0, also for a code that is none of these (nothing is touched but *pnLength);
// -1 when the operation fails, whatever its own code was: *ppList is null then and *pnLength 0.
int HWRAID__GetItemInfo(const IPMICOMMAND *pCmd, void **ppList, int *pnLength);

#endif
