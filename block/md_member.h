// SPDX-License-Identifier: Apache-2.0
// The members of an md array: md/dev-NAME is one's folder in that of the array.
#ifndef DISKSCOUT_BLOCK_MD_MEMBER_H
#define DISKSCOUT_BLOCK_MD_MEMBER_H

#include "arena.h"
#include "diskscout_block.h"
#include "sysfs.h"

// Fills the members and how many of them are active, failed and spare. False, with errno set, when they could
// not be listed. One that goes away meanwhile is left out.
bool read_members(Arena *arena, const Folder &md, block_array *array);

#endif
