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

static int walk_entries(FILE *table, int (*take)(const mtab_mnt_t *mnt, void *context), void *context)
{
	// The reader's own buffer: the one behind getmntent is shared with whatever the host is reading.
	CLEARED_BY_CALLEE char buffer[ENTRY_SIZE];
	mntent entry;
	mtab_mnt_t mnt = {};
	int result = 0;
	while (result == 0 && getmntent_r(table, &entry, buffer, sizeof buffer)) {
		str_refill(mnt.devpath, entry.mnt_fsname);
		str_refill(mnt.mntpath, entry.mnt_dir);
		str_refill(mnt.fsname, entry.mnt_type);
		result = take(&mnt, context);
	}
	return result;
}

int walk_mtab(mtab_source_t source, int (*take)(const mtab_mnt_t *mnt, void *context), void *context)
{
	if (source == MTAB_FILE) {
		const Stream table(fsopen_ro(PMTAB_PATH));
		return table ? walk_entries(table.get(), take, context) : -1;
	}
	Pipe table("cat /etc/mtab");
	if (!table)
		return -1;
	const int result = walk_entries(table.get(), take, context);
	// Only at the table's end: a command that is not heard out ends badly for that alone.
	return result == 0 && table.has_failed() ? -1 : result;
}

int parse_mtab_mntlist(mtab_mntlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	collector_t<mtab_mntlist_t> to = {list, filter, arg};
	return walk_mtab(MTAB_PIPE, collect<mtab_mntlist_t>, &to);
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
