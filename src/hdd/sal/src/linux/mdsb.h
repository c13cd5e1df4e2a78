// SPDX-License-Identifier: Apache-2.0
// The superblock that software RAID keeps on each member of an array: format 0.90, one block near the
// device's end.
#ifndef DISKSCOUT_HDD_SAL_LINUX_MDSB_H
#define DISKSCOUT_HDD_SAL_LINUX_MDSB_H

#include "hdd/sal/src/linux/def-devio.h"

// The kernel's own words for the format: mdp_superblock_s and mdp_device_descriptor_s.
#include <asm/byteorder.h>
#include <asm/types.h>
#include <linux/raid/md_p.h>

void b0_mdsb(mdp_superblock_s *sb);

// Reads the superblock of the device at this path. 0, also for a block that is none; -1 with sb all zero when
// the device cannot be opened, sized or read, or is too small for one.
int read_mdsb(const char *path, mdp_superblock_s *sb);
// Overwrites the superblock with zeros: the device is no member any more. Needs root. 0, or -1.
int clear_mdsb(const char *path);

// Whether the block has the format's magic number.
bool is_mdsb(const mdp_superblock_s *sb);
// The array's identity, its four words one after the other. Returns 0.
int get_mdsb_xxid(const mdp_superblock_s *sb, unsigned char uuid[16]);

void display_mdsb(const mdp_superblock_s *sb);
void display_mdsb_subdev(const mdp_device_descriptor_s *d);

#endif
