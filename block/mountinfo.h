// SPDX-License-Identifier: Apache-2.0
// /proc/self/mountinfo and /proc/swaps: what is mounted where, and what is swapped to.
//
//   36 35 98:0 /mnt1 /mnt2 rw,noatime master:1 - ext3 /dev/root rw,errors=continue
//
//   Filename                                Type            Size            Used            Priority
//   /dev/dm-1                               partition       999420          0               -2
//
// A blank, tab, newline or backslash in a name stands as "\040", "\011", "\012", "\134".
#ifndef DISKSCOUT_BLOCK_MOUNTINFO_H
#define DISKSCOUT_BLOCK_MOUNTINFO_H

#include "arena.h"
#include "text.h"

// Names are decoded: the bytes that the kernel has.
struct mount_entry_t {
	int id, parent_id;
	int major_number, minor_number;
	text_t root;
	text_t mount_point; // NUL-terminated
	text_t options;
	text_t type;
	text_t source;
	text_t super_options;
};

struct swap_entry_t {
	text_t path;
	text_t type;
	int64_t total, used; // bytes
	int priority;
};

// Each reads the whole table, in its order. False, with errno set, when it cannot be read; a line that makes
// no sense is left out.
bool read_mounts(Arena *arena, Growing<mount_entry_t> *mounts);
bool read_swaps(Arena *arena, Growing<swap_entry_t> *swaps);

#endif
