// SPDX-License-Identifier: Apache-2.0
// The serial number that a SCSI device tells about itself.
#ifndef DISKSCOUT_HDD_SAL_LINUX_SCSISN_H
#define DISKSCOUT_HDD_SAL_LINUX_SCSISN_H

#include "hdd/sal/src/0/def.h"

// The unit serial number (INQUIRY page 0x80), trimmed, into sn (a str_t, cleared first). Needs the right to
// send commands to the device. 0, or -1 with sn empty.
int get_scsi_device_sn_by_path(const char *path, char *sn);

#endif
