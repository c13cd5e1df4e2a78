// The mount table, one line a mount:
//
//   /dev/sda1 /boot ext3 rw,relatime 0 0
#include "hdd/sal/src/linux/mtab.h"

#include "hdd/sal/src/0/fs.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"

#include <mntent.h>

// Room for an entry whose source and mount point are both as long as a path may be.
constexpr int ENTRY_SIZE = 4 * FNAME_SIZE;

static int read_entries(FILE *table, mtab_mntlist_t *list, filter_func_t filter, void *arg)
{
	// The reader's own buffer: the one behind getmntent is shared with whatever the host is reading.
	char buffer[ENTRY_SIZE];
	mntent entry;
	mtab_mnt_t mnt = {};
	while (getmntent_r(table, &entry, buffer, sizeof buffer)) {
		str_copy(mnt.devpath, entry.mnt_fsname);
		str_copy(mnt.mntpath, entry.mnt_dir);
		str_copy(mnt.fsname, entry.mnt_type);
		if (keeps(filter, &mnt, arg) && list_add(list, LIST_FIRST_FREE, mnt) != 0)
			return -2;
	}
	return 0;
}

int parse_mtab_mntlist(mtab_mntlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	const Pipe table("cat /etc/mtab");
	return table ? read_entries(table.get(), list, filter, arg) : -1;
}

int read_mtab_mntlist(mtab_mntlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	const Stream table(fsopen_ro(PMTAB_PATH));
	return table ? read_entries(table.get(), list, filter, arg) : -1;
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
