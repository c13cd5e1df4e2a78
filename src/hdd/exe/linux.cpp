#include "hdd/exe/linux.h"

#include "hdd/sal/src/0/fd.h"
#include "hdd/sal/src/0/fn.h"
#include "hdd/sal/src/0/list.h"
#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/devio.h"
#include "hdd/sal/src/linux/mtab.h"
#include "hdd/sal/src/linux/parttab.h"
#include "hdd/sal/src/linux/procblk.h"
#include "hdd/sal/src/linux/procide.h"
#include "hdd/sal/src/linux/procscsi.h"

#include <stdio.h>
#include <sys/vfs.h>
#include <unistd.h>

constexpr char DEV_DIR[] = "/dev";

// In 512-byte sectors: so the kernel lists an extended partition, whose own space is only its table.
constexpr size32_t EXTENDED_LISTED_SIZE = 2;

static const mtab_mnt_t *find_mount_at(const mtab_mntlist_t &mounts, std::string_view mntpath)
{
	for (const mtab_mnt_t &mnt : live_items(mounts))
		if (mnt.mntpath == mntpath)
			return &mnt;
	return nullptr;
}

static const mtab_mnt_t *find_mount_of(const mtab_mntlist_t &mounts, std::string_view devpath)
{
	for (const mtab_mnt_t &mnt : live_items(mounts))
		if (mnt.devpath == devpath)
			return &mnt;
	return nullptr;
}

// ---- disks ----

// The tables that every disk of one query is looked up in.
struct disk_sources_t {
	procide_devlist_t ide;
	procscsi_devlist_t scsi;
	mtab_mntlist_t mounts;
	const mtab_mnt_t *root; // what is mounted at /, or null
	const mtab_mnt_t *boot; // what is mounted at /boot, or null
};

// A source that cannot be read, or not wholly, leaves out the disks that depend on it and no others.
static void read_disk_sources(disk_sources_t *sources)
{
	parse_procide_devlist(&sources->ide, nullptr, nullptr);
	parse_procscsi_devlist(&sources->scsi, nullptr, nullptr);
	// Straight from the file: a shell would make this query some thirty times dearer.
	read_mtab_mntlist(&sources->mounts, filter_mtab_mnt_in_dev, nullptr);
	sources->root = find_mount_at(sources->mounts, "/");
	sources->boot = find_mount_at(sources->mounts, "/boot");
}

static void identify_ide(devid_t *devid, const procide_dev_t &drive)
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

static bool is_mounted_from(const exe_disk_t &disk, const mtab_mnt_t *mnt)
{
	return mnt && split_devname(disk.devpath).stem == split_devname(mnt->devpath).stem;
}

static void count_partitions(exe_disk_t *disk)
{
	procblk_devlist_t parts;
	parse_procblk_devlist(&parts, filter_procblk_is_part, disk->devpath);
	disk->partnum = parts.num_real;
	for (const procblk_dev_t &part : live_items(parts))
		if (part.size == EXTENDED_LISTED_SIZE)
			disk->partnum_extended++;
}

static bool take_identity(exe_disk_t *disk, const devname_t &name, const disk_sources_t &sources)
{
	if (is_ide_name(name))
		return take_ide_disk(disk, name, sources);
	return is_scsi_name(name) && take_scsi_disk(disk, sources);
}

// Builds one disk. False when the block device is none that can be named.
static bool assemble_disk(exe_disk_t *disk, const procblk_dev_t &dev, const disk_sources_t &sources)
{
	b0(disk, sizeof *disk);
	if (fn_join(disk->devpath, DEV_DIR, dev.name) != 0 ||
	    !take_identity(disk, split_devname(dev.name), sources))
		return false;
	measure_disk(disk);
	disk->sys = is_mounted_from(*disk, sources.root) || is_mounted_from(*disk, sources.boot);
	count_partitions(disk);
	return true;
}

int get_exe_disklist(exe_disklist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	procblk_devlist_t devices;
	disk_sources_t sources;
	parse_procblk_devlist(&devices, filter_procblk_is_disk, nullptr);
	read_disk_sources(&sources);

	int result = 0;
	exe_disk_t disk;
	for (const procblk_dev_t &dev : live_items(devices))
		if (assemble_disk(&disk, dev, sources) && keeps(filter, &disk, arg) &&
		    list_add(list, LIST_FIRST_FREE, disk) != 0)
			result = -1;
	return result;
}

// ---- CD-ROM drives and volumes ----

// Divided as a signed number: what does not fit 63 bits comes out as it always has.
static size32_t bytes_to_units(uint64_t bytes)
{
	return static_cast<size32_t>(static_cast<size64_t>(bytes) / 512);
}

static volspace_t measure_volume(const char *mntpath)
{
	struct statfs status;
	if (statfs(mntpath, &status) != 0)
		return {0, 0};
	const auto block_size = static_cast<uint64_t>(status.f_bsize);
	return {bytes_to_units(block_size * status.f_blocks), bytes_to_units(block_size * status.f_bfree)};
}

// The name that the link /dev/cdrom gives to a drive; empty without such a link.
static std::string_view read_cdrom_link(fname_t target)
{
	b0_fname(target);
	if (readlink("/dev/cdrom", target, FNAME_SIZE - 1) < 0)
		b0_fname(target);
	return split_devname(target).base;
}

static void assemble_cdrom(exe_cdrom_t *cdrom, const procide_dev_t &drive, const mtab_mntlist_t &mounts,
                           std::string_view linked)
{
	b0(cdrom, sizeof *cdrom);
	fn_join(cdrom->devpath, DEV_DIR, drive.name);
	identify_ide(&cdrom->devid, drive);

	const mtab_mnt_t *mnt = find_mount_of(mounts, cdrom->devpath);
	if (!mnt && linked == drive.name)
		mnt = find_mount_of(mounts, "/dev/cdrom");
	if (!mnt)
		return;
	str_copy(cdrom->mntpath, mnt->mntpath);
	str_copy(cdrom->volid.fsname, mnt->fsname);
	cdrom->volspace = measure_volume(mnt->mntpath);
}

int get_exe_cdromlist(exe_cdromlist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	procide_devlist_t drives;
	mtab_mntlist_t mounts;
	fname_t target;
	parse_procide_devlist(&drives, nullptr, nullptr);
	parse_mtab_mntlist(&mounts, nullptr, nullptr);
	const std::string_view linked = read_cdrom_link(target);

	exe_cdrom_t cdrom;
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

int get_exe_vollist(exe_vollist_t *list, filter_func_t filter, const void *arg)
{
	list_clear(list);
	mtab_mntlist_t mounts;
	if (parse_mtab_mntlist(&mounts, nullptr, nullptr) == -1)
		return -1;

	exe_vol_t vol = {};
	for (const mtab_mnt_t &mnt : live_items(mounts)) {
		str_copy(vol.devpath, mnt.devpath);
		str_copy(vol.mntpath, mnt.mntpath);
		str_copy(vol.volid.fsname, mnt.fsname);
		vol.volspace = measure_volume(mnt.mntpath);
		vol.sys = strcmp(mnt.mntpath, "/") == 0 || strcmp(mnt.mntpath, "/boot") == 0;
		if (keeps(filter, &vol, arg))
			list_add(list, LIST_FIRST_FREE, vol);
	}
	return 0;
}

// ---- partitions ----

static bool lies_beneath(std::string_view mntpath, std::string_view above)
{
	return mntpath.size() > above.size() && str_begins(mntpath, above) &&
	       mntpath[above.size()] == *PDCHAR;
}

// Whether a later mount hides the volume in this slot. A mount beneath it counts too, deliberately: a
// partition at /usr shows no space once /usr/local is mounted. All later slots are looked at, the free ones
// (whose mount point is empty) as well.
static bool is_hidden(const exe_vollist_t &vols, int slot)
{
	const std::string_view mntpath = vols.item[slot].mntpath;
	for (int later = slot + 1; later < vols.lmt; later++) {
		const std::string_view other = vols.item[later].mntpath;
		if (other == mntpath || lies_beneath(other, mntpath))
			return true;
	}
	return false;
}

static void join_volumes(exe_part_t *part, const exe_vollist_t &vols)
{
	for (const exe_vol_t &vol : live_items(vols)) {
		if (strcmp(vol.devpath, part->devpath) != 0)
			continue;
		if (vol.sys)
			part->sys = 1;
		if (part->mntpath[0] != '\0')
			str_append(part->mntpath, ";");
		str_append(part->mntpath, vol.mntpath);
		if (is_hidden(vols, vol.index))
			continue;
		part->volid = vol.volid;
		part->volspace = vol.volspace;
	}
}

static void assemble_part(exe_part_t *part, const part_t &entry, const char *disk, const exe_vollist_t &vols)
{
	b0(part, sizeof *part);
	part->part_index = entry.part_index;
	part->type = entry.type;
	part->boot = entry.active;
	part->start = entry.start;
	part->size = entry.size;
	str_copy(part->disk, disk);
	snprintf(part->devpath, sizeof part->devpath, "%s%d", disk, entry.part_index + 1);
	join_volumes(part, vols);
}

static int list_partitions(const char *disk, exe_partlist_t *list, filter_func_t filter, void *arg,
                           const exe_vollist_t &vols)
{
	partlist_t entries;
	if (read_disk_partlist(disk, &entries) != 0)
		return -1;

	exe_part_t part;
	for (const part_t &entry : live_items(entries)) {
		assemble_part(&part, entry, disk, vols);
		if (keeps(filter, &part, arg) && list_add(list, LIST_FIRST_FREE, part) != 0)
			return -1;
	}
	return 0;
}

int get_exe_partlist_on_disk(const char *disk, exe_partlist_t *list, filter_func_t filter, void *arg,
                             const exe_vollist_t *vols)
{
	list_clear(list);
	if (vols)
		return list_partitions(disk, list, filter, arg, *vols);
	exe_vollist_t own;
	if (get_exe_vollist(&own, nullptr, nullptr) != 0)
		return -1;
	return list_partitions(disk, list, filter, arg, own);
}
