// The CD-ROM drives and the volumes of the inventory: what is mounted, and where.
#include "hdd/exe/linux.h"

#include "hdd/exe/names.h"
#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/devio.h"
#include "hdd/sal/src/linux/mtab.h"
#include "hdd/sal/src/linux/procide.h"

#include <string.h>
#include <unistd.h>

// The name that the link /dev/cdrom gives to a drive; empty without such a link.
static std::string_view read_cdrom_link(fname_t target)
{
	b0_fname(target);
	if (readlink("/dev/cdrom", target, FNAME_SIZE - 1) < 0)
		b0_fname(target);
	return split_devname(target).base;
}

// The first mount of every drive, and of the link /dev/cdrom: all of the mount table that matters here.
struct drive_mounts_t {
	const procide_devlist_t *drives;
	int taken; // entries so far
	mtab_mnt_t linked;
	mtab_mnt_t of[list_capacity<procide_devlist_t>()];
};

static void note_mount(mtab_mnt_t *first, const mtab_mnt_t &mnt, const char *name)
{
	constexpr size_t DIR_LENGTH = sizeof DEV_DIR; // with the separator
	if (first->tag != 0 || strcmp(mnt.devpath + DIR_LENGTH, name) != 0)
		return;
	*first = mnt;
	first->tag = 1;
}

static int take_drive_mount(const mtab_mnt_t *mnt, void *context)
{
	auto *mounts = static_cast<drive_mounts_t *>(context);
	if (mounts->taken++ == list_capacity<mtab_mntlist_t>())
		return STOP_WALK; // no list of mounts reaches further
	if (!filter_mtab_mnt_in_dev(mnt, nullptr))
		return 0;
	note_mount(&mounts->linked, *mnt, "cdrom");
	for (const procide_dev_t &drive : live_items(*mounts->drives))
		note_mount(&mounts->of[drive.index], *mnt, drive.name);
	return 0;
}

static void find_drive_mounts(drive_mounts_t *mounts, const procide_devlist_t &drives)
{
	mounts->drives = &drives;
	mounts->taken = 0;
	mounts->linked.tag = 0;
	for (mtab_mnt_t &mnt : mounts->of)
		mnt.tag = 0;
	walk_mtab(MTAB_PIPE, take_drive_mount, mounts);
}

static void assemble_cdrom(exe_cdrom_t *cdrom, const procide_dev_t &drive, const drive_mounts_t &mounts,
                           std::string_view linked)
{
	b0(cdrom, sizeof *cdrom);
	fn_join(cdrom->devpath, DEV_DIR, drive.name);
	identify_ide(&cdrom->devid, drive);

	const mtab_mnt_t *mnt = &mounts.of[drive.index];
	if (mnt->tag == 0 && linked == drive.name)
		mnt = &mounts.linked;
	if (mnt->tag == 0)
		return;
	str_copy(cdrom->mntpath, mnt->mntpath);
	str_copy(cdrom->volid.fsname, mnt->fsname);
	get_volspace(mnt->mntpath, &cdrom->volspace);
}

int get_exe_cdromlist(exe_cdromlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	CLEARED_BY_CALLEE procide_devlist_t drives;
	CLEARED_BY_CALLEE drive_mounts_t mounts;
	fname_t target;
	parse_procide_devlist(&drives, nullptr, nullptr);
	find_drive_mounts(&mounts, drives);
	const std::string_view linked = read_cdrom_link(target);

	CLEARED_BY_CALLEE exe_cdrom_t cdrom;
	for (const procide_dev_t &drive : live_items(drives)) {
		// Only IDE drives are listed: SCSI and USB ones are left out deliberately.
		if (strcmp(drive.media, "cdrom") != 0)
			continue;
		assemble_cdrom(&cdrom, drive, mounts, linked);
		if (keeps(filter, &cdrom, arg))
			list_add(list, LIST_FIRST_FREE, cdrom);
	}
	return 0;
}

// A visitor of mount entries that makes volumes of them.
struct vol_walk_t {
	int (*take)(const exe_vol_t *vol, void *context);
	void *context;
	int taken; // entries so far
	exe_vol_t vol;
};

static int take_volume(const mtab_mnt_t *mnt, void *context)
{
	auto *walk = static_cast<vol_walk_t *>(context);
	if (walk->taken++ == list_capacity<mtab_mntlist_t>())
		return STOP_WALK; // the rest is left out, and that is no error
	exe_vol_t *vol = &walk->vol;
	str_refill(vol->devpath, mnt->devpath);
	str_refill(vol->mntpath, mnt->mntpath);
	str_refill(vol->volid.fsname, mnt->fsname);
	get_volspace(mnt->mntpath, &vol->volspace);
	vol->sys = strcmp(mnt->mntpath, "/") == 0 || strcmp(mnt->mntpath, "/boot") == 0;
	walk->take(vol, walk->context);
	return 0;
}

int walk_exe_vols(int (*take)(const exe_vol_t *vol, void *context), void *context)
{
	vol_walk_t walk = {take, context, 0, {}};
	return walk_mtab(MTAB_PIPE, take_volume, &walk) == -1 ? -1 : 0;
}

int get_exe_vollist(exe_vollist_t *list, filter_func_t filter, const void *arg)
{
	list_clear(list);
	collector_t<exe_vollist_t> to = {list, filter, arg};
	return walk_exe_vols(collect<exe_vollist_t>, &to);
}
