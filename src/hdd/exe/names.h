// SPDX-License-Identifier: Apache-2.0
// What disks and CD-ROM drives of the inventory share.
#ifndef DISKSCOUT_HDD_EXE_NAMES_H
#define DISKSCOUT_HDD_EXE_NAMES_H

#include "hdd/sal/src/linux/procide.h"

constexpr char DEV_DIR[] = "/dev";

// Bus, model, serial number and firmware revision of an IDE drive; it tells no vendor.
void identify_ide(devid_t *devid, const procide_dev_t &drive);

#endif
