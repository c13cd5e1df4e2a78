// SPDX-License-Identifier: Apache-2.0
// The mount table, /etc/mtab: what is mounted, where, and as what.
#ifndef DISKSCOUT_HDD_SAL_LINUX_MTAB_H
#define DISKSCOUT_HDD_SAL_LINUX_MTAB_H

#include "hdd/sal/src/0/fs.h"
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

// Where the table is read from.
// compat: through the shell command "cat /etc/mtab" for the volumes, the CD-ROM drives and the list of
// mounts; "cat" is found by PATH, and its complaints appear on standard error. Straight from the file for the
// disks: the shell would cost several times as much as all else of their query.
enum mtab_source_t { MTAB_PIPE, MTAB_FILE };

// The entries of the table, in its order: while (table.next(&mnt)).
class MtabTable
{
public:
	explicit MtabTable(mtab_source_t source);
	// Refills mnt, which is all zero at first, with the next entry. False at the end.
	bool next(mtab_mnt_t *mnt);
	// 0, or -1 when the source cannot be opened or read or, at its end, the pipe's command has failed.
	int result() const { return result_; }

private:
	Stream file_;
	Pipe pipe_;
	int result_;
};

// Reads the table through the pipe. 0, -1 when the table cannot be read (the list holds what was), -2 when
// there are more entries than the list holds: it has the first 32 that the filter kept.
int parse_mtab_mntlist(mtab_mntlist_t *list, filter_func_t filter, void *arg);

// Keep entries whose source begins with /dev/, or whose mount point begins with /mnt/; arg is ignored.
int filter_mtab_mnt_in_dev(const void *item, const void *arg);
int filter_mtab_mnt_in_mnt(const void *item, const void *arg);

void display_mtab_mntlist(const mtab_mntlist_t *list);

#endif
