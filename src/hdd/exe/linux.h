// SPDX-License-Identifier: Apache-2.0
// The local storage inventory: disks, CD-ROM drives, volumes and partitions, put together afresh on every
// call from what the readers find. The lists are large; they belong on the stack of one call.
#ifndef DISKSCOUT_HDD_EXE_LINUX_H
#define DISKSCOUT_HDD_EXE_LINUX_H

#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/linux/mtab.h"
#include "hdd/sal/src/linux/procblk.h"
#include "hdd/sal/src/linux/procide.h"
#include "hdd/sal/src/linux/procscsi.h"

#include <string_view>

struct exe_disk_t {
	int tag;
	int index;
	void *parent;
	fname_t devpath;      // /dev/ and the kernel's name
	hdgeo_t hdgeo;        // all zero when unknown
	idlun_t idlun;        // all zero for IDE disks
	devid_t devid;        // bus 'i' or 's'
	int partnum;          // partitions in the kernel's table
	int partnum_extended; // those of 2 sectors: so the kernel lists an extended partition
	int sys;              // 1: holds the file system of / or /boot
};

struct exe_disklist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	exe_disk_t item[16];
};

struct exe_cdrom_t {
	int tag;
	int index;
	void *parent;
	fname_t devpath; // /dev/ and the kernel's name
	idlun_t idlun;   // all zero: only IDE drives are listed
	devid_t devid;   // bus 'i'
	fname_t mntpath; // of the medium; empty when it is not mounted
	volid_t volid;   // volname stays empty
	volspace_t volspace;
};

struct exe_cdromlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	exe_cdrom_t item[16];
};

struct exe_vol_t {
	int tag;
	int index;
	void *parent;
	fname_t devpath; // the mount entry's source
	fname_t mntpath;
	volid_t volid; // volname stays empty
	volspace_t volspace;
	int sys; // 1: mounted at exactly / or /boot
};

struct exe_vollist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	exe_vol_t item[32];
};

struct exe_part_t {
	int tag;
	int index;
	void *parent;
	int part_index; // 0 to 3: slot of the master boot record; from 4: logical drives
	uint8_t type;
	int boot;        // the raw boot byte
	size32_t start;  // absolute, in 512-byte sectors
	size32_t size;   // in 512-byte sectors
	fname_t devpath; // the disk's path and part_index + 1
	fname_t disk;    // the disk's path
	fname_t mntpath; // all mount points, joined by ";"
	volid_t volid;   // of the volume whose space is shown
	volspace_t volspace;
	int sys; // 1: mounted at / or /boot
};

struct exe_partlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	exe_part_t item[32];
};

// What is mounted at / and at /boot; empty when nothing is.
struct system_mounts_t {
	fname_t root;
	fname_t boot;
};

// The tables that every disk of one query is looked up in.
struct disk_sources_t {
	procide_devlist_t ide;
	procscsi_devlist_t scsi;
	system_mounts_t mounts;
};

// The block devices of one query that may be disks, and how many partitions the kernel lists of each. Only
// the names are kept, close together: every line of the table is compared with all of them.
struct disk_names_t {
	int num;
	struct {
		str_t name; // a disk's name is a stem of four letters at most
		int partitions;
		int extended;
	} item[list_capacity<procblk_devlist_t>()];
};

// The disks, in the order of the kernel's table: while (disks.next(&disk)). All tables are read at the
// beginning.
class ExeDisks
{
public:
	ExeDisks();
	// Fills disk with the next one, whatever it held. False at the end.
	bool next(exe_disk_t *disk);
	// Always 0: what cannot be read leaves out the disks that depend on it.
	int result() const { return 0; }

private:
	disk_names_t names_;
	disk_sources_t sources_;
	int at_ = 0;
};

// 0, or -1 when more disks qualified than the list holds: it has the first 16.
int get_exe_disklist(exe_disklist_t *list, filter_func_t filter, void *arg);

// IDE CD-ROM drives. Always 0.
int get_exe_cdromlist(exe_cdromlist_t *list, filter_func_t filter, void *arg);

// The first 32 mounted file systems, pseudo ones included: while (vols.next(&vol)).
class ExeVols
{
public:
	ExeVols() : mounts_(MTAB_PIPE) {}
	// Refills vol, which is all zero at first, with the next one. False at the end.
	bool next(exe_vol_t *vol);
	// 0, or -1 when the mount table cannot be read.
	int result() const { return mounts_.result(); }

private:
	MtabTable mounts_;
	mtab_mnt_t mnt_ = {};
	int taken_ = 0;
};

// The first 32 mounted file systems, pseudo ones included. 0, or -1 when the mount table cannot be read.
int get_exe_vollist(exe_vollist_t *list, filter_func_t filter, const void *arg);

// What a partition is joined to: one slot of a volume list.
struct joined_vol_t {
	bool live; // false: a free slot
	std::string_view devpath;
	std::string_view mntpath;
	volid_t volid;
	volspace_t volspace;
	int sys;
};

// What the partitions of all disks of one query are joined to. A list of volumes would be thirty times as
// large; every partition is compared with all of them.
struct part_join_t {
	joined_vol_t vols[32];           // by slot
	const joined_vol_t *on_disk[32]; // those of the present disk's partitions, in slot order
	int on_disk_num;
	size_t texts_used;
	char texts[2 * 32 * FNAME_SIZE]; // the paths of volumes that stand in no list
};

// Joins to the volumes of a list, which must outlive it.
void begin_part_join(part_join_t *join, const exe_vollist_t &vols);
// Joins to the host's volumes. 0, or -1 when the mount table cannot be read.
int begin_part_join(part_join_t *join);

// The partitions of the disk at this path, joined to the volumes: while (parts.next(&part)). The path and the
// join must outlive it; all tables are read at the beginning.
class ExeParts
{
public:
	ExeParts(const char *disk, part_join_t *join);
	// Refills part, which is all zero at first, with the next one; it may hold one of another disk. False
	// at the end.
	bool next(exe_part_t *part);
	// 0, or -1 when the disk cannot be opened, sized or read: then it has no partitions.
	int result() const { return result_; }

private:
	const char *disk_;
	part_join_t *join_;
	partlist_t entries_;
	int slot_ = 0;
	int result_;
};

// The partitions of the disk at this path, joined to their volumes; a null vols builds a volume list of its
// own. 0, or -1: the disk cannot be opened, sized or read, or the volumes cannot be listed (the list is
// empty), or there are more partitions than the list holds.
int get_exe_partlist_on_disk(const char *disk, exe_partlist_t *list, filter_func_t filter, void *arg,
                             const exe_vollist_t *vols);

#endif
