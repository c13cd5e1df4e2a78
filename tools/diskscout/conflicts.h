// SPDX-License-Identifier: Apache-2.0
// Options that do not go together.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_CONFLICTS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_CONFLICTS_H

#include "options.h"

// Throws usage_error for options that contradict each other, and for one that would change nothing: that is a
// misunderstanding.
void refuse_conflicts(const options_t &opts);

#endif
