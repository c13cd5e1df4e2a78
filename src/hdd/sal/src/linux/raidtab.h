// SPDX-License-Identifier: Apache-2.0
// Software-RAID description files in the classic raidtab syntax.
#ifndef DISKSCOUT_HDD_SAL_LINUX_RAIDTAB_H
#define DISKSCOUT_HDD_SAL_LINUX_RAIDTAB_H

#include "hdd/sal/src/linux/def-devio.h"

struct raidtab_subdev_t {
	int tag;
	int index;
	void *parent;
	fname_t name; // member device path
	int faulty;   // 1: declared as failed
};

// num is here the count that the file declares, num_real the number of disks that it lists.
struct raidtab_subdevlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	raidtab_subdev_t item[8];
};

struct raidtab_dev_t {
	int tag;
	int index;
	void *parent;
	int mdminor;                            // number of the array, or -1
	char mdlevel;                           // '0', '1', '5', 'l' for linear, 0 when unknown
	int nr_original;                        // not set by the reader
	int with_faulty;                        // not set by the reader
	raidtab_subdevlist_t subdevlist_member; // raid and failed disks, by slot number
	raidtab_subdevlist_t subdevlist_spare;  // spare disks, by slot number
};

struct raidtab_devlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	int with_faulty; // not set by the reader
	raidtab_dev_t item[16];
};
typedef raidtab_devlist_t raidtab_t;

// 0, or -1 when the file cannot be opened or read or declares more than 16 arrays (the first 16 are kept).
// The filter and its argument are accepted and not used. A disk slot outside 0 to 7, or taken twice, ends the
// process with status -1 after a message on standard error.
int read_raidtab_devlist(const char *path, raidtab_devlist_t *list, filter_func_t filter, void *arg);

void display_raidtab_devlist(const raidtab_devlist_t *list);

#endif
