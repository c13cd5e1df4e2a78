// SPDX-License-Identifier: Apache-2.0
// The disks of the inventory: the whole disks of the block-device table, each with what its own table and its
// device tell of it.
#include "hdd/exe/linux.h"

#include "hdd/exe/names.h"
#include "hdd/sal/src/0/fd.h"
#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/devio.h"

#include <string.h>

// In 512-byte sectors: so the kernel lists an extended partition, whose own space is only its table.
constexpr size32_t EXTENDED_LISTED_SIZE = 2;

static void note_first(fname_t devpath, const mtab_mnt_t &mnt, std::string_view mntpath)
{
	if (devpath[0] == '\0' && mnt.mntpath == mntpath)
		str_copy(devpath, FNAME_SIZE, mnt.devpath);
}

static void find_system_mounts(system_mounts_t *mounts)
{
	b0(mounts, sizeof *mounts);
	MtabTable table(MTAB_FILE);
	mtab_mnt_t mnt = {};
	// A list of mounts reaches no further.
	for (int taken = 0; taken < list_capacity<mtab_mntlist_t>() && table.next(&mnt);) {
		if (!filter_mtab_mnt_in_dev(&mnt, nullptr))
			continue;
		taken++;
		note_first(mounts->root, mnt, "/");
		note_first(mounts->boot, mnt, "/boot");
	}
}

// A source that cannot be read, or not wholly, leaves out the disks that depend on it and no others.
static void read_disk_sources(disk_sources_t *sources)
{
	parse_procide_devlist(&sources->ide, nullptr, nullptr);
	parse_procscsi_devlist(&sources->scsi, nullptr, nullptr);
	find_system_mounts(&sources->mounts);
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

// compat: serial numbers stay empty: SCSI disks tell theirs only to an INQUIRY of their own.
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

static void list_disk_names(disk_names_t *disks)
{
	ProcblkTable table;
	procblk_dev_t dev = {};
	while (table.next(&dev))
		// A list of block devices would hold no more.
		if (filter_procblk_is_disk(&dev, nullptr) && disks->num < list_capacity<procblk_devlist_t>())
			str_copy(disks->item[disks->num++].name, dev.name);
}

static void count_partition(disk_names_t *disks, const procblk_dev_t &dev)
{
	for (int i = 0; dev.part != 0 && i < disks->num; i++) {
		auto &disk = disks->item[i];
		// Nor would a list of one disk's partitions.
		if (strcmp(dev.name, disk.name) != 0 || disk.partitions == list_capacity<procblk_devlist_t>())
			continue;
		disk.partitions++;
		disk.extended += dev.size == EXTENDED_LISTED_SIZE;
	}
}

static void count_partitions(disk_names_t *disks)
{
	ProcblkTable table;
	procblk_dev_t dev = {};
	while (table.next(&dev))
		count_partition(disks, dev);
}

ExeDisks::ExeDisks()
{
	b0(&names_, sizeof names_);
	list_disk_names(&names_);
	read_disk_sources(&sources_);
	// compat: one more look at the table counts for all disks, instead of one for each, which would cost
	// more than all else: all disks are counted in the table of one moment.
	count_partitions(&names_);
}

bool ExeDisks::next(exe_disk_t *disk)
{
	while (at_ < names_.num) {
		const auto &name = names_.item[at_++];
		if (!assemble_disk(disk, name.name, sources_))
			continue;
		disk->partnum = name.partitions;
		disk->partnum_extended = name.extended;
		return true;
	}
	return false;
}

int get_exe_disklist(exe_disklist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	CLEARED_BY_CALLEE ExeDisks disks;
	return list_fill(list, &disks, filter, arg);
}
