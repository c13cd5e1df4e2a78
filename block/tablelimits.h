// SPDX-License-Identifier: Apache-2.0
// What keeps the reading of partition tables short. libblkid follows these as far as the disk says they go,
// looks through all that it has found at each step, and does so to find other things, too: a stick made for
// that would keep an agent busy for hours, or fill its memory. Other formats have limits of their own.
#ifndef DISKSCOUT_BLOCK_TABLELIMITS_H
#define DISKSCOUT_BLOCK_TABLELIMITS_H

#include <stdint.h>

struct disk_t {
	int fd;
	int64_t size;    // bytes
	unsigned sector; // logical sector in bytes
};

// Whether a table can be read to its end: a chain of at most 1,024 DOS tables, a GUID partition table of at
// most 4 MiB, which is more than a kernel takes of each. Also true for a disk without a table, and where none
// can be read.
bool is_table_short(const disk_t &disk);

#endif
