// SPDX-License-Identifier: Apache-2.0
// The CD-ROM drives and the volumes of the inventory: what is mounted, and where.
#include "hdd/exe/linux.h"

#include "hdd/exe/names.h"
#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/devio.h"

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

static void find_drive_mounts(drive_mounts_t *mounts, const procide_devlist_t &drives)
{
	mounts->linked.tag = 0;
	for (mtab_mnt_t &mnt : mounts->of)
		mnt.tag = 0;

	MtabTable table(MTAB_PIPE);
	mtab_mnt_t mnt = {};
	// A list of mounts reaches no further.
	for (int taken = 0; taken < list_capacity<mtab_mntlist_t>() && table.next(&mnt); taken++) {
		if (!filter_mtab_mnt_in_dev(&mnt, nullptr))
			continue;
		note_mount(&mounts->linked, mnt, "cdrom");
		for (const procide_dev_t &drive : live_items(drives))
			note_mount(&mounts->of[drive.index], mnt, drive.name);
	}
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
		// compat: only IDE drives are listed; SCSI and USB ones are left out.
		if (strcmp(drive.media, "cdrom") != 0)
			continue;
		assemble_cdrom(&cdrom, drive, mounts, linked);
		list_add(list, LIST_FIRST_FREE, cdrom, filter, arg);
	}
	return 0;
}

bool ExeVols::next(exe_vol_t *vol)
{
	// The rest is left out, and that is no error.
	if (taken_ == list_capacity<mtab_mntlist_t>() || !mounts_.next(&mnt_))
		return false;
	taken_++;
	str_refill(vol->devpath, mnt_.devpath);
	str_refill(vol->mntpath, mnt_.mntpath);
	str_refill(vol->volid.fsname, mnt_.fsname);
	get_volspace(mnt_.mntpath, &vol->volspace);
	vol->sys = strcmp(mnt_.mntpath, "/") == 0 || strcmp(mnt_.mntpath, "/boot") == 0;
	return true;
}

int get_exe_vollist(exe_vollist_t *list, filter_func_t filter, const void *arg)
{
	list_clear(list);
	ExeVols vols;
	return list_fill(list, &vols, filter, arg);
}
