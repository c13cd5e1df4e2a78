// SPDX-License-Identifier: Apache-2.0
// What libblkid's low-level probing finds on one open device: no cache file, no other device is opened.
#ifndef DISKSCOUT_BLOCK_PROBE_H
#define DISKSCOUT_BLOCK_PROBE_H

#include "arena.h"
#include "diskscout_block.h"
#include "text.h"

// The device, and what is to be known of it.
struct probe_t {
	int fd;
	bool whole;      // it is no partition
	unsigned sector; // logical sector in bytes; 0: as the device itself says
};

// Tells table, entries (without the names of their devices) and file system or member. 0; or the errno that
// kept it from being read, and then nothing is told: EFBIG for a table without an end.
int probe_contents(Arena *arena, const probe_t &probe, block_content *content);

// A table's identifier as records hold it; null for none.
const char *table_id_text(Arena *arena, text_t kind, text_t id);

#endif
