// The disks of the inventory: the whole disks of the block-device table, each with what its own table and its
// device tell of it.
#include "hdd/exe/linux.h"

#include "hdd/exe/names.h"
#include "hdd/sal/src/0/fd.h"
#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/devio.h"
#include "hdd/sal/src/linux/mtab.h"
#include "hdd/sal/src/linux/procblk.h"
#include "hdd/sal/src/linux/procide.h"
#include "hdd/sal/src/linux/procscsi.h"

#include <string.h>

// In 512-byte sectors: so the kernel lists an extended partition, whose own space is only its table.
constexpr size32_t EXTENDED_LISTED_SIZE = 2;

// What is mounted at / and at /boot; empty when nothing is.
struct system_mounts_t {
	fname_t root;
	fname_t boot;
	int taken; // entries that the filter has kept so far
};

static void note_first(fname_t devpath, const mtab_mnt_t &mnt, std::string_view mntpath)
{
	if (devpath[0] == '\0' && mnt.mntpath == mntpath)
		str_copy(devpath, FNAME_SIZE, mnt.devpath);
}

static int take_system_mount(const mtab_mnt_t *mnt, void *context)
{
	auto *mounts = static_cast<system_mounts_t *>(context);
	if (!filter_mtab_mnt_in_dev(mnt, nullptr))
		return 0;
	if (mounts->taken++ == list_capacity<mtab_mntlist_t>())
		return STOP_WALK; // no list of mounts reaches further
	note_first(mounts->root, *mnt, "/");
	note_first(mounts->boot, *mnt, "/boot");
	return 0;
}

// The tables that every disk of one query is looked up in.
struct disk_sources_t {
	procide_devlist_t ide;
	procscsi_devlist_t scsi;
	system_mounts_t mounts;
};

// A source that cannot be read, or not wholly, leaves out the disks that depend on it and no others.
static void read_disk_sources(disk_sources_t *sources)
{
	parse_procide_devlist(&sources->ide, nullptr, nullptr);
	parse_procscsi_devlist(&sources->scsi, nullptr, nullptr);
	b0(&sources->mounts, sizeof sources->mounts);
	walk_mtab(MTAB_FILE, take_system_mount, &sources->mounts);
}

void identify_ide(devid_t *devid, const procide_dev_t &drive)
{
	devid->bus = 'i';
	str_copy(devid->model, drive.model);
	str_copy(devid->sn, drive.sn);
	str_copy(devid->rev, drive.rev);
}

static bool take_ide_disk(exe_disk_t *disk, const devname_t &name, const disk_sources_t &sources)
{
	for (const procide_dev_t &drive : live_items(sources.ide)) {
		if (drive.name != name.stem)
			continue;
		if (strcmp(drive.media, "disk") != 0)
			return false;
		identify_ide(&disk->devid, drive);
		return true;
	}
	return false;
}

static bool same_address(const idlun_t &a, const idlun_t &b)
{
	return a.host == b.host && a.channel == b.channel && a.id == b.id && a.lun == b.lun;
}

// Serial numbers stay empty: SCSI disks tell theirs only to an INQUIRY of their own.
static bool take_scsi_disk(exe_disk_t *disk, const disk_sources_t &sources)
{
	const Descriptor device(disk->devpath);
	if (!device.is_open() || get_device_idlun(device.fd(), &disk->idlun) != 0)
		return false;
	for (const procscsi_dev_t &dev : live_items(sources.scsi)) {
		if (!same_address(dev.idlun, disk->idlun))
			continue;
		if (strcmp(dev.media, "Direct-Access") != 0)
			return false;
		disk->devid.bus = 's';
		str_copy(disk->devid.vendor, dev.vendor);
		str_copy(disk->devid.model, dev.model);
		str_copy(disk->devid.rev, dev.rev);
		return true;
	}
	return false;
}

static void measure_disk(exe_disk_t *disk)
{
	const Descriptor device(disk->devpath);
	if (device.is_open())
		get_device_geometry(device.fd(), &disk->hdgeo);
}

// Whether the mounted device is the disk or a partition of it.
static bool is_mounted(const exe_disk_t &disk, const fname_t device)
{
	return device[0] != '\0' && split_devname(disk.devpath).stem == split_devname(device).stem;
}

static bool take_identity(exe_disk_t *disk, const devname_t &name, const disk_sources_t &sources)
{
	if (is_ide_name(name))
		return take_ide_disk(disk, name, sources);
	return is_scsi_name(name) && take_scsi_disk(disk, sources);
}

// Builds one disk. False when the block device is none that can be named.
static bool assemble_disk(exe_disk_t *disk, const char *name, const disk_sources_t &sources)
{
	b0(disk, sizeof *disk);
	if (fn_join(disk->devpath, DEV_DIR, name) != 0 || !take_identity(disk, split_devname(name), sources))
		return false;
	measure_disk(disk);
	disk->sys = is_mounted(*disk, sources.mounts.root) || is_mounted(*disk, sources.mounts.boot);
	return true;
}

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

static int take_disk_name(const procblk_dev_t *dev, void *context)
{
	auto *disks = static_cast<disk_names_t *>(context);
	// A list of block devices would hold no more.
	if (filter_procblk_is_disk(dev, nullptr) && disks->num < list_capacity<procblk_devlist_t>())
		str_copy(disks->item[disks->num++].name, dev->name);
	return 0;
}

static int count_partition(const procblk_dev_t *dev, void *context)
{
	auto *disks = static_cast<disk_names_t *>(context);
	for (int i = 0; dev->part != 0 && i < disks->num; i++) {
		auto &disk = disks->item[i];
		// Nor would a list of one disk's partitions.
		if (strcmp(dev->name, disk.name) != 0 ||
		    disk.partitions == list_capacity<procblk_devlist_t>())
			continue;
		disk.partitions++;
		disk.extended += dev->size == EXTENDED_LISTED_SIZE;
	}
	return 0;
}

int walk_exe_disks(int (*take)(const exe_disk_t *disk, void *context), void *context)
{
	disk_names_t names = {};
	CLEARED_BY_CALLEE disk_sources_t sources;
	walk_procblk(take_disk_name, &names);
	read_disk_sources(&sources);
	// One more look at the table counts for all disks: a look for each would cost more than all else.
	walk_procblk(count_partition, &names);

	int result = 0;
	CLEARED_BY_CALLEE exe_disk_t disk;
	for (int i = 0; i < names.num; i++) {
		if (!assemble_disk(&disk, names.item[i].name, sources))
			continue;
		disk.partnum = names.item[i].partitions;
		disk.partnum_extended = names.item[i].extended;
		if (take(&disk, context) != 0)
			result = -1;
	}
	return result;
}

int get_exe_disklist(exe_disklist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	collector_t<exe_disklist_t> to = {list, filter, arg};
	return walk_exe_disks(collect<exe_disklist_t>, &to);
}
