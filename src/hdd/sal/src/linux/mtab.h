// The mount table, /etc/mtab: what is mounted, where, and as what.
#ifndef DISKSCOUT_HDD_SAL_LINUX_MTAB_H
#define DISKSCOUT_HDD_SAL_LINUX_MTAB_H

#include "hdd/sal/src/linux/def-devio.h"

struct mtab_mnt_t {
	int tag;
	int index;
	void *parent;
	fname_t devpath; // mounted device or other source
	fname_t mntpath; // mount point
	str_t fsname;    // file-system type
};

struct mtab_mntlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	mtab_mnt_t item[32];
};
typedef mtab_mntlist_t mtab_t;

// Where the table is read from: through a shell, for the volumes, the CD-ROM drives and the list of mounts,
// or straight from the file, which makes the disk query some thirty times cheaper.
enum mtab_source_t { MTAB_PIPE, MTAB_FILE };

// Calls take for every entry in the table's order, until it returns other than 0. Returns what take did, 0
// at the end of the table, or -1 when the source cannot be opened or, at its end, the pipe's command has
// failed.
int walk_mtab(mtab_source_t source, int (*take)(const mtab_mnt_t *mnt, void *context), void *context);

// Reads the table through the pipe. 0, -1 when the table cannot be read (the list holds what was), -2 when
// there are more entries than the list holds: it has the first 32 that the filter kept.
int parse_mtab_mntlist(mtab_mntlist_t *list, filter_func_t filter, void *arg);

// Keep entries whose source begins with /dev/, or whose mount point begins with /mnt/; arg is ignored.
int filter_mtab_mnt_in_dev(const void *item, const void *arg);
int filter_mtab_mnt_in_mnt(const void *item, const void *arg);

void display_mtab_mntlist(const mtab_mntlist_t *list);

#endif
