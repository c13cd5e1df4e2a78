// SPDX-License-Identifier: Apache-2.0
// The kernel's software-RAID arrays, /proc/mdstat.
#ifndef DISKSCOUT_HDD_SAL_LINUX_MDSTAT_H
#define DISKSCOUT_HDD_SAL_LINUX_MDSTAT_H

#include "hdd/sal/src/linux/def-devio.h"

struct mdstat_subdev_t {
	int tag;
	int index; // the member's role in the array
	void *parent;
	fname_t name; // canonical device name
	int faulty;   // 1: marked as failed
};

struct mdstat_subdevlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	int nr_faulty; // failed members
	mdstat_subdev_t item[8];
};

struct mdstat_dev_t {
	int tag;
	int index;
	void *parent;
	int mdminor;         // number of the array
	int active;          // 0: assembled but not running
	char mdlevel;        // '0', '1', '5', 'l' for linear, 0 when not told
	int nr_original;     // members that the array is built for
	int nr_normal;       // members in service
	int nr_faulty;       // failed members
	str_t status;        // a letter a member: U in service, _ missing
	int resync_type;     // 0 none, 1 resync, 2 recovery
	int resync_progress; // tenths of a per cent
	mdstat_subdevlist_t subdevlist;
	unsigned char uuid[16]; // not set by the parser
	size32_t size;          // in 512-byte sectors
};

struct mdstat_devlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	mdstat_dev_t item[16];
};
typedef mdstat_devlist_t mdstat_t;

// Parses one array: its line, the size line and the progress line, which may be empty. 0 with dev->tag 1, or
// with dev all zero when the filter dropped it; -1 with dev all zero when a line is malformed or a member
// cannot be named or stored. Members point back to their list: who moves dev renumbers that.
int parse_mdstat_dev(mdstat_dev_t *dev, filter_func_t filter, void *arg, char lines[][LINE_SIZE]);

// 0, or -1 when the table cannot be opened or read, or when an array was malformed or found no room: the list
// then holds all the others.
int parse_mdstat_devlist(mdstat_devlist_t *list, filter_func_t filter, void *arg);

void display_mdstat_devlist(const mdstat_devlist_t *list);

#endif
