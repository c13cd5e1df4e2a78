// SPDX-License-Identifier: Apache-2.0
// How fast the kernel may resynchronise its software-RAID arrays: two limits below /proc/sys/dev/raid.
#ifndef DISKSCOUT_HDD_SAL_LINUX_MDSPEED_H
#define DISKSCOUT_HDD_SAL_LINUX_MDSPEED_H

#include "hdd/sal/src/linux/def-devio.h"

// In KiB per second. When set, 0 leaves a limit as it is.
struct mdspeed_t {
	size32_t max;
	size32_t min;
};

// 0, or -1 with both limits 0 when one cannot be read.
int get_mdspeed(mdspeed_t *speed);
// Needs root. 0; -1 when the minimum exceeds the maximum (nothing is written then) or a limit could not be
// written (the other one is written nevertheless).
int set_mdspeed(const mdspeed_t *speed);
// 100 to 10000.
int set_mdspeed_default();

#endif
