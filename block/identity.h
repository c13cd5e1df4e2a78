// SPDX-License-Identifier: Apache-2.0
// Who a device is: maker, model, serial number, firmware, names that are unique in the world.
#ifndef DISKSCOUT_BLOCK_IDENTITY_H
#define DISKSCOUT_BLOCK_IDENTITY_H

#include "inventory.h"
#include "udev.h"

// Fills the identity of a whole device with hardware behind it, and its state, from its open folder and
// udev's record. Asks the device nothing.
void read_identity(Arena *arena, const Folder &folder, const UdevRecord &udev, device_t *device);

#endif
