// How the inventory is put together: disks first, then CD-ROM drives and volumes, then partitions.
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

#include <charconv>
#include <string.h>
#include <sys/vfs.h>
#include <unistd.h>

constexpr char DEV_DIR[] = "/dev";

// In 512-byte sectors: so the kernel lists an extended partition, whose own space is only its table.
constexpr size32_t EXTENDED_LISTED_SIZE = 2;

// ---- disks ----

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
static bool assemble_disk(exe_disk_t *disk, const procblk_dev_t &dev, const disk_sources_t &sources)
{
	b0(disk, sizeof *disk);
	if (fn_join(disk->devpath, DEV_DIR, dev.name) != 0 ||
	    !take_identity(disk, split_devname(dev.name), sources))
		return false;
	measure_disk(disk);
	disk->sys = is_mounted(*disk, sources.mounts.root) || is_mounted(*disk, sources.mounts.boot);
	return true;
}

// How many partitions the kernel lists of every disk of one query, by the disk's slot. The names stand close
// together here, because every line of the table is compared with all of them.
struct partition_counts_t {
	int disks;
	struct {
		str_t name;
		int all;
		int extended;
	} of[list_capacity<procblk_devlist_t>()];
};

static int count_partition(const procblk_dev_t *dev, void *context)
{
	auto *counts = static_cast<partition_counts_t *>(context);
	for (int i = 0; dev->part != 0 && i < counts->disks; i++) {
		auto &of = counts->of[i];
		// A list of one disk's partitions would hold no more.
		if (strcmp(dev->name, of.name) != 0 || of.all == list_capacity<procblk_devlist_t>())
			continue;
		of.all++;
		of.extended += dev->size == EXTENDED_LISTED_SIZE;
	}
	return 0;
}

// One more look at the table counts for all disks: a look for each would cost more than all else.
static void count_partitions(partition_counts_t *counts, const procblk_devlist_t &disks)
{
	b0(counts, sizeof *counts);
	counts->disks = disks.num;
	for (const procblk_dev_t &disk : live_items(disks))
		str_copy(counts->of[disk.index].name, disk.name);
	walk_procblk(count_partition, counts);
}

int get_exe_disklist(exe_disklist_t *list, filter_func_t filter, void *arg)
{
	list_clear(list);
	CLEARED_BY_CALLEE procblk_devlist_t devices;
	CLEARED_BY_CALLEE disk_sources_t sources;
	parse_procblk_devlist(&devices, filter_procblk_is_disk, nullptr);
	read_disk_sources(&sources);
	CLEARED_BY_CALLEE partition_counts_t counts;
	count_partitions(&counts, devices);

	int result = 0;
	CLEARED_BY_CALLEE exe_disk_t disk;
	for (const procblk_dev_t &dev : live_items(devices)) {
		if (!assemble_disk(&disk, dev, sources))
			continue;
		disk.partnum = counts.of[dev.index].all;
		disk.partnum_extended = counts.of[dev.index].extended;
		if (keeps(filter, &disk, arg) && list_add(list, LIST_FIRST_FREE, disk) != 0)
			result = -1;
	}
	return result;
}

// ---- CD-ROM drives and volumes ----

// Divided as a signed number: a count of bytes beyond 63 bits is negative and shows as a huge size.
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
	cdrom->volspace = measure_volume(mnt->mntpath);
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

struct vol_collector_t {
	exe_vollist_t *list;
	filter_func_t filter;
	const void *arg;
	int taken; // entries so far
};

static int take_volume(const mtab_mnt_t *mnt, void *context)
{
	auto *to = static_cast<vol_collector_t *>(context);
	if (to->taken++ == list_capacity<mtab_mntlist_t>())
		return STOP_WALK; // the rest is left out, and that is no error
	// Built in its slot: copying all volumes there would take longer than reading their entries.
	exe_vol_t *vol = list_open(to->list, LIST_FIRST_FREE);
	str_refill(vol->devpath, mnt->devpath);
	str_refill(vol->mntpath, mnt->mntpath);
	str_refill(vol->volid.fsname, mnt->fsname);
	vol->volspace = measure_volume(mnt->mntpath);
	vol->sys = strcmp(mnt->mntpath, "/") == 0 || strcmp(mnt->mntpath, "/boot") == 0;
	if (keeps(to->filter, vol, to->arg))
		list_keep(to->list, vol);
	else
		b0(vol, sizeof *vol);
	return 0;
}

int get_exe_vollist(exe_vollist_t *list, filter_func_t filter, const void *arg)
{
	static_assert(list_capacity<exe_vollist_t>() >= list_capacity<mtab_mntlist_t>(),
	              "every mount that is taken finds a free slot");
	list_clear(list);
	vol_collector_t to = {list, filter, arg, 0};
	return walk_mtab(MTAB_PIPE, take_volume, &to) == -1 ? -1 : 0;
}

// ---- partitions ----

// Whether a later mount hides the volume in this slot: one on the same point, and deliberately one beneath it
// as well, so that a partition at /usr shows no space once /usr/local is mounted. All later slots are looked
// at, the free ones (whose mount point is empty) too.
static bool is_hidden(const exe_vollist_t &vols, int slot)
{
	const char *mntpath = vols.item[slot].mntpath;
	const size_t length = strlen(mntpath);
	for (int later = slot + 1; later < list_capacity<exe_vollist_t>(); later++) {
		const char *other = vols.item[later].mntpath;
		if (strncmp(other, mntpath, length) == 0 &&
		    (other[length] == '\0' || other[length] == *PDCHAR))
			return true;
	}
	return false;
}

// The volumes that can belong to partitions of one disk, in list order.
struct disk_volumes_t {
	const exe_vollist_t *all;
	const exe_vol_t *on_disk[list_capacity<exe_vollist_t>()];
	int num;
};

static disk_volumes_t select_volumes(const exe_vollist_t &vols, std::string_view disk)
{
	disk_volumes_t selected = {&vols, {}, 0};
	for (const exe_vol_t &vol : live_items(vols))
		if (strncmp(vol.devpath, disk.data(), disk.size()) == 0)
			selected.on_disk[selected.num++] = &vol;
	return selected;
}

static void join_volumes(exe_part_t *part, const disk_volumes_t &vols)
{
	for (int i = 0; i < vols.num; i++) {
		const exe_vol_t &vol = *vols.on_disk[i];
		if (strcmp(vol.devpath, part->devpath) != 0)
			continue;
		if (vol.sys)
			part->sys = 1;
		if (part->mntpath[0] != '\0')
			str_append(part->mntpath, ";");
		str_append(part->mntpath, vol.mntpath);
		if (is_hidden(*vols.all, static_cast<int>(&vol - vols.all->item)))
			continue;
		part->volid = vol.volid;
		part->volspace = vol.volspace;
	}
}

// Fills what the entry tells; the record holds the disk's path and what the partition before has left.
static void assemble_part(exe_part_t *part, const part_t &entry, const disk_volumes_t &vols)
{
	part->part_index = entry.part_index;
	part->type = entry.type;
	part->boot = entry.active;
	part->start = entry.start;
	part->size = entry.size;
	part->volid = {};
	part->volspace = {};
	part->sys = 0;
	str_refill(part->mntpath, "");
	str_refill(part->devpath, part->disk);
	char digits[12];
	const char *end = std::to_chars(digits, digits + sizeof digits, entry.part_index + 1).ptr;
	str_append(part->devpath, std::string_view(digits, static_cast<size_t>(end - digits)));
	join_volumes(part, vols);
}

int walk_exe_parts(const char *disk, const exe_vollist_t &vols,
                   int (*take)(const exe_part_t *part, void *context), void *context)
{
	CLEARED_BY_CALLEE partlist_t entries;
	if (read_disk_partlist(disk, &entries) != 0)
		return -1;

	const disk_volumes_t on_disk = select_volumes(vols, disk);
	exe_part_t part = {};
	str_copy(part.disk, disk);
	for (const part_t &entry : live_items(entries)) {
		assemble_part(&part, entry, on_disk);
		if (take(&part, context) != 0)
			return -1;
	}
	return 0;
}

int get_exe_partlist_on_disk(const char *disk, exe_partlist_t *list, filter_func_t filter, void *arg,
                             const exe_vollist_t *vols)
{
	list_clear(list);
	CLEARED_BY_CALLEE exe_vollist_t own;
	if (!vols && get_exe_vollist(&own, nullptr, nullptr) != 0)
		return -1;
	collector_t<exe_partlist_t> to = {list, filter, arg};
	return walk_exe_parts(disk, vols ? *vols : own, collect<exe_partlist_t>, &to);
}
