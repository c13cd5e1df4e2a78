// SPDX-License-Identifier: Apache-2.0
// The kernel's block-device table, /proc/partitions.
#ifndef DISKSCOUT_HDD_SAL_LINUX_PROCBLK_H
#define DISKSCOUT_HDD_SAL_LINUX_PROCBLK_H

#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/linux/def-devio.h"

struct procblk_dev_t {
	int tag;
	int index;
	void *parent;
	fname_t name;        // without its trailing digits: sda for sda1, c0d0p for c0d0p1
	int part;            // the trailing digits' value; 0: none, a whole disk
	mami_t mami;         // device number
	size32_t size;       // in 512-byte sectors, twice the table's 32-bit block count
	unsigned int io[11]; // room for the counters that some kernels append; left 0
};

struct procblk_devlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	procblk_dev_t item[32];
};
typedef procblk_devlist_t procblk_t;

// The block devices of the table, in its order: while (table.next(&dev)).
class ProcblkTable
{
public:
	ProcblkTable();
	// Refills dev, which is all zero at first, with the next device; lines that hold none are passed
	// over. False at the end.
	bool next(procblk_dev_t *dev);
	// 0, or -1 when the table cannot be opened or read, or when a line held no device.
	int result() const;

private:
	Stream table_;
	bool has_bad_line_ = false;
};

// 0, or -1 when the table cannot be opened, or when a line was skipped or found no room: the list then
// holds all the others.
int parse_procblk_devlist(procblk_devlist_t *list, filter_func_t filter, void *arg);

// Keeps whole IDE and SCSI disks, by name alone; arg is ignored.
int filter_procblk_is_disk(const void *item, const void *arg);
// Keeps the partitions of the disk whose name or path is arg (a text).
int filter_procblk_is_part(const void *item, const void *arg);

void display_procblk_devlist(const procblk_devlist_t *list);

#endif
