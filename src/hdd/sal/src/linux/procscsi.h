// SPDX-License-Identifier: Apache-2.0
// The kernel's SCSI registry: host adapters under /proc/scsi, devices in /proc/scsi/scsi.
#ifndef DISKSCOUT_HDD_SAL_LINUX_PROCSCSI_H
#define DISKSCOUT_HDD_SAL_LINUX_PROCSCSI_H

#include "hdd/sal/src/linux/def-devio.h"

struct procscsi_host_t {
	int tag;
	int index;
	void *parent;
	fname_t hostname; // the driver's directory under /proc/scsi
	int hostindex;    // host number, and the slot that holds the host
};

struct procscsi_hostlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	procscsi_host_t item[4];
};
typedef procscsi_hostlist_t procscsihost_t;

struct procscsi_dev_t {
	int tag;
	int index;
	void *parent;
	idlun_t idlun;
	str_t vendor;
	str_t model;
	str_t rev;
	str_t media; // the kernel's device type, such as Direct-Access
};

struct procscsi_devlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	procscsi_dev_t item[32];
};
typedef procscsi_devlist_t procscsi_t;

// 0, or -1 when /proc/scsi or a driver's directory cannot be listed or a host found no slot: the list then
// holds all the others.
int parse_procscsi_hostlist(procscsi_hostlist_t *list, filter_func_t filter, void *arg);

// Parses the three lines of one device. 0 with dev->tag 1, or with dev all zero when the first line has
// fewer than eight words or the filter dropped the device; -1 when the block is malformed.
int parse_procscsi_dev(procscsi_dev_t *dev, filter_func_t filter, void *arg, char lines[3][LINE_SIZE]);

// 0, or -1 when the table cannot be opened, or when a block was malformed or found no room: the list then
// holds all the others.
int parse_procscsi_devlist(procscsi_devlist_t *list, filter_func_t filter, void *arg);

// Asks the kernel to attach or detach one device. Needs root and changes the running system. 0, or -1.
int procscsi_dev_add(const idlun_t *idlun);
int procscsi_dev_remove(const idlun_t *idlun);

// Detaches all devices and attaches them again in a random order, so that the kernel hands out their names
// anew. A null list stands for all that are attached. Reseeds the process's random generator.
void scsi_shuffle(const procscsi_devlist_t *list);

void display_procscsi_hostlist(const procscsi_hostlist_t *list);
void display_procscsi_devlist(const procscsi_devlist_t *list);

#endif
