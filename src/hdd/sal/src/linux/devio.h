// SPDX-License-Identifier: Apache-2.0
// Block devices: their canonical names, their nodes, and what they and the file systems on them answer when
// asked directly.
#ifndef DISKSCOUT_HDD_SAL_LINUX_DEVIO_H
#define DISKSCOUT_HDD_SAL_LINUX_DEVIO_H

#include "hdd/sal/src/linux/def-devio.h"

// Writes the canonical name of a device into out (an fname_t, cleared first): "sdb1" for /dev/sdb1 and for
// 08:11, "0B:00" for a number that has no name here. 0, or -1 when no naming rule takes the name.
int ok_devname(const char *name, char *out);

// Replaces whatever is at path by a block-device node. Needs root. 0, or -1.
int create_dev(const char *path, unsigned int mami);

// *size in 512-byte sectors (BLKGETSIZE). 0, or -1 with *size 0.
int get_device_size(int fd, unsigned long *size);
// Geometry from the device's size and HDIO_GETGEO. 0, or -1 with *geo all zero.
int get_device_geometry(int fd, hdgeo_t *geo);
// SCSI address (SCSI_IOCTL_GET_IDLUN). 0, or -1 with *idlun all zero.
int get_device_idlun(int fd, idlun_t *idlun);

// Space of the mounted file system that the path lies in (statfs). 0, or -1 with *space all zero.
int get_volspace(const char *path, volspace_t *space);

// Whole seconds since boot (/proc/uptime), or -1.
int get_uptime();

#endif
