// SPDX-License-Identifier: Apache-2.0
#include "hdd/exe/cli.h"

#include "hdd/exe/linux.h"
#include "hdd/sal/src/linux/cli.h"

static void show_disk(const exe_disk_t &disk)
{
	const hdgeo_t &geo = disk.hdgeo;
	const idlun_t &idlun = disk.idlun;
	const devid_t &id = disk.devid;
	fprintf(stderr,
	        "%s CHS(%d,%d,%d,%d) IDLUN(%d,%d,%d,%d) bus=%c partnum=%d(ex.%d) sys=%d vendor=%s model=%s "
	        "sn=%s "
	        "rev=%s\n",
	        disk.devpath, low_32(geo.cylinders), low_32(geo.heads), low_32(geo.sectors),
	        low_32(geo.bytes), idlun.host, idlun.channel, idlun.id, idlun.lun, id.bus, disk.partnum,
	        disk.partnum_extended, disk.sys, id.vendor, id.model, id.sn, id.rev);
}

static void show_cdrom(const exe_cdrom_t &cdrom)
{
	const idlun_t &idlun = cdrom.idlun;
	const devid_t &id = cdrom.devid;
	fprintf(stderr,
	        "%s IDLUN(%d,%d,%d,%d) bus=%c\n\t vendor=%s model=%s sn=%s rev=%s\n\t fsname=%s volname=%s "
	        "mntpath=%s size=%d\n",
	        cdrom.devpath, idlun.host, idlun.channel, idlun.id, idlun.lun, id.bus, id.vendor, id.model,
	        id.sn, id.rev, cdrom.volid.fsname, cdrom.volid.volname, cdrom.mntpath,
	        low_32(cdrom.volspace.total));
}

static void show_part(const exe_part_t &part)
{
	fprintf(stderr,
	        "%s part%d type=%02x boot=%d (start/size)=(%d/%d) sys=%d %s fsname=%s volname=%s mntpath=%s "
	        "volspace=(%d/%d)\n",
	        part.disk, part.part_index, part.type, part.boot, low_32(part.start), low_32(part.size),
	        part.sys, part.devpath, part.volid.fsname, part.volid.volname, part.mntpath,
	        low_32(part.volspace.free), low_32(part.volspace.total));
}

static void show_vol(const exe_vol_t &vol)
{
	fprintf(stderr, "%s %s fsname=%s volname=%s space=(%d/%d) sys=%d\n", vol.devpath, vol.mntpath,
	        vol.volid.fsname, vol.volid.volname, low_32(vol.volspace.free), low_32(vol.volspace.total),
	        vol.sys);
}

// Dumps a list, also an incomplete one: the result of building it is the command's.
// compat: ends at the first free slot; no builder leaves one before its last item.
template <class List>
static int show_built(const List &list, int result, void (*show)(const list_item_t<List> &item))
{
	dump_list_head(&list);
	for (const list_item_t<List> &item : list.item) {
		if (item.tag == 0)
			break;
		dump_item_head(item);
		show(item);
	}
	return result == 0 ? 0 : -1;
}

static int cmd_exe_cdrom(char *const *)
{
	CLEARED_BY_CALLEE exe_cdromlist_t list;
	const int result = get_exe_cdromlist(&list, nullptr, nullptr);
	return show_built(list, result, show_cdrom);
}

static int cmd_exe_disk(char *const *)
{
	CLEARED_BY_CALLEE exe_disklist_t list;
	const int result = get_exe_disklist(&list, nullptr, nullptr);
	return show_built(list, result, show_disk);
}

static int cmd_exe_part(char *const *words)
{
	CLEARED_BY_CALLEE exe_partlist_t list;
	const int result = get_exe_partlist_on_disk(words[1], &list, nullptr, nullptr, nullptr);
	return show_built(list, result, show_part);
}

static int cmd_exe_vol(char *const *)
{
	CLEARED_BY_CALLEE exe_vollist_t list;
	const int result = get_exe_vollist(&list, nullptr, nullptr);
	return show_built(list, result, show_vol);
}

static const command_t COMMANDS[] = {
	{"exe_cdrom", "", 1, cmd_exe_cdrom},
	{"exe_disk", "", 1, cmd_exe_disk},
	{"exe_part", "", 2, cmd_exe_part},
	{"exe_vol", "", 1, cmd_exe_vol},
};

int clifunc_exe(int argc, char **argv, int start, int *matched)
{
	return run_leaf("clifunc_exe", COMMANDS, argc, argv, start, matched);
}

int cli_exe(int argc, char **argv, int start, int *matched)
{
	static const cli_func_t CHILDREN[] = {cli_sal, clifunc_exe};
	return run_node(CHILDREN, argc, argv, start, matched);
}
