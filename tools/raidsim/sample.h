// SPDX-License-Identifier: Apache-2.0
// What the simulated controllers hold before anything was done with them.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_SAMPLE_H
#define DISKSCOUT_TOOLS_RAIDSIM_SAMPLE_H

// The text that a new state file begins with.
extern const char SAMPLE_STATE[];

#endif
