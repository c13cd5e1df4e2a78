// SPDX-License-Identifier: Apache-2.0
// What this process got from whoever started it.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_INHERITED_H
#define DISKSCOUT_TOOLS_DISKSCOUT_INHERITED_H

#include "check.h"

// As it was at the first call, which has to come before anything is changed.
const inherited_t &inherited();

#endif
