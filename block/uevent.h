// SPDX-License-Identifier: Apache-2.0
// A device's attribute `uevent`: several things in one reading.
//
//   MAJOR=259
//   MINOR=2
//   DEVNAME=nvme0n1p2
//   DEVTYPE=partition
//   PARTN=2
#ifndef DISKSCOUT_BLOCK_UEVENT_H
#define DISKSCOUT_BLOCK_UEVENT_H

#include "device.h"
#include "sysfs.h"

// Fills number, node, kind and partition number; the device's name and path must be there. False when the
// lines are not the kernel's.
bool read_uevent(Arena *arena, text_t text, const Folder &folder, device_t *device);

#endif
