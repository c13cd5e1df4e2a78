// SPDX-License-Identifier: Apache-2.0
// Whether the running system stands on a device.
#ifndef DISKSCOUT_BLOCK_USES_H
#define DISKSCOUT_BLOCK_USES_H

#include "inventory.h"

// Sets under_root, under_boot and under_swap of all devices; their slaves must have been read. Without memory
// that shows in the arena.
void find_uses(Arena *arena, const Inventory &devices);

#endif
