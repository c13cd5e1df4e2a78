// SPDX-License-Identifier: Apache-2.0
// The partition tables of a disk, read straight from its sectors.
#ifndef DISKSCOUT_HDD_SAL_LINUX_PARTTAB_H
#define DISKSCOUT_HDD_SAL_LINUX_PARTTAB_H

#include "hdd/sal/src/linux/def-devio.h"

// The entries of the master boot record and of the chain of extended boot records behind it, numbered as
// the kernel numbers them. 0, also for a disk without a table and when more than 32 partitions are cut to
// 32; -1 with an empty list when the disk cannot be opened, sized or read.
int read_disk_partlist(const char *disk, partlist_t *list);

// 0x05, 0x0f or 0x85: an entry that holds further tables.
bool is_extended_type(uint8_t type);

#endif
