// SPDX-License-Identifier: Apache-2.0
// The mount table, one line a mount:
//
//   /dev/sda1 /boot ext3 rw,relatime 0 0
#include "hdd/sal/src/linux/mtab.h"

#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"

#include <errno.h>
#include <mntent.h>

// Room for an entry whose source and mount point are both as long as a path may be.
// compat: such entries come whole; the C library's own buffer would cut them.
constexpr int ENTRY_SIZE = 4 * FNAME_SIZE;

MtabTable::MtabTable(mtab_source_t source)
    : file_(source == MTAB_FILE ? fsopen_ro(PMTAB_PATH) : nullptr),
      pipe_(source == MTAB_PIPE ? "cat /etc/mtab" : nullptr), result_(file_ || pipe_ ? 0 : -1)
{
}

// Reads on where a signal that the host handles has interrupted the wait for the command. In the middle of a
// line it cannot: what was read of it is lost, and the table with it.
static bool read_entry(FILE *table, mntent *entry, char *buffer)
{
	for (;;) {
		buffer[0] = '\0';
		if (getmntent_r(table, entry, buffer, ENTRY_SIZE))
			return true;
		if (!ferror(table) || errno != EINTR || buffer[0] != '\0')
			return false;
		clearerr(table);
	}
}

bool MtabTable::next(mtab_mnt_t *mnt)
{
	// The reader's own buffer: the one behind getmntent is shared with whatever the host is reading.
	CLEARED_BY_CALLEE char buffer[ENTRY_SIZE];
	mntent entry;
	FILE *table = file_ ? file_.get() : pipe_.get();
	if (!table)
		return false;
	if (!read_entry(table, &entry, buffer)) {
		// Only here: a command that is not heard out ends badly for that alone.
		if (ferror(table) || (pipe_ && pipe_.has_failed()))
			result_ = -1;
		return false;
	}
	str_refill(mnt->devpath, entry.mnt_fsname);
	str_refill(mnt->mntpath, entry.mnt_dir);
	str_refill(mnt->fsname, entry.mnt_type);
	return true;
}

int parse_mtab_mntlist(mtab_mntlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	MtabTable table(MTAB_PIPE);
	mtab_mnt_t mnt = {};
	while (table.next(&mnt))
		if (list_add(list, LIST_FIRST_FREE, mnt, filter, arg) != 0)
			return -2;
	return table.result();
}

int filter_mtab_mnt_in_dev(const void *item, const void *)
{
	return str_begins(static_cast<const mtab_mnt_t *>(item)->devpath, "/dev/");
}

int filter_mtab_mnt_in_mnt(const void *item, const void *)
{
	return str_begins(static_cast<const mtab_mnt_t *>(item)->mntpath, "/mnt/");
}

void display_mtab_mntlist(const mtab_mntlist_t *list)
{
	dump_list_head(list);
	for (const mtab_mnt_t &mnt : live_items(*list)) {
		dump_item_head(mnt);
		fprintf(stderr, "dev=%s mnt=%s fs=%s\n", mnt.devpath, mnt.mntpath, mnt.fsname);
	}
}
