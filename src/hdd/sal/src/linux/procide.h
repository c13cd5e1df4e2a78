// SPDX-License-Identifier: Apache-2.0
// The IDE drives that the kernel lists under /proc/ide.
#ifndef DISKSCOUT_HDD_SAL_LINUX_PROCIDE_H
#define DISKSCOUT_HDD_SAL_LINUX_PROCIDE_H

#include "hdd/sal/src/linux/def-devio.h"

struct procide_dev_t {
	int tag;
	int index;
	void *parent;
	fname_t name; // as the caller gave it, such as hda
	str_t media;  // the kernel's word: disk, cdrom, ...
	str_t model;
	str_t sn;  // IDENTIFY words 10 to 19
	str_t rev; // IDENTIFY words 23 to 26
};

struct procide_devlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	procide_dev_t item[8];
};
typedef procide_devlist_t procide_t;

// Reads one drive. 0 with dev->tag 1, or with dev all zero when the filter dropped it; -1 with dev all zero
// when the name is no IDE name or one of the drive's files cannot be read.
int parse_procide_dev(procide_dev_t *dev, filter_func_t filter, void *arg, const char *name);

// Reads every drive, in alphabetical order. 0, or -1 when the directory cannot be listed, or when a drive
// could not be read or found no room: the list then holds all the others.
int parse_procide_devlist(procide_devlist_t *list, filter_func_t filter, void *arg);

void display_procide_devlist(const procide_devlist_t *list);

#endif
