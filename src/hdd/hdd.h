// SPDX-License-Identifier: Apache-2.0
// The local item provider: turns the inventory into the records that an agent gets, and releases them.
#ifndef DISKSCOUT_HDD_HDD_H
#define DISKSCOUT_HDD_HDD_H

#include "diskscout.h"
#include "hdd/exe/linux.h"

// The local codes of the boundary. 0, or -1 for any other code and for a failed query.
int GetItemInfo_hdd(const IPMICOMMAND *cmd, void **result, int *length);
int SetItemInfo_hdd(const IPMICOMMAND *cmd, void **result);

// Build a list behind *result, whose records are refilled in place as far as they reach, and count what was
// written in *length. Disks and CD-ROM drives: always 0. Partitions: -1 when the disk list overflows or the
// volume list or one disk's tables cannot be read; the records made so far stay with the caller.
int stdisk_all(void **result, int *length);
int stcdrom_all(void **result, int *length);
int stpart_all(void **result, int *length);

// Write one record into *link, made new when that is null. Always 0.
int exe2stdisk(const exe_disk_t *disk, tagStorageDiskList **link);
int exe2stcdrom(const exe_cdrom_t *cdrom, tagStorageCdromList **link);
int exe2stpart(const exe_part_t *part, tagStoragePartList **link);

// Release a list and set *result to null. Always 0.
int stdisk_clear(void **result);
int stcdrom_clear(void **result);
int stpart_clear(void **result);

#endif
