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
#include <iterator>
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
	vol->volspace = measure_volume(mnt->mntpath);
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

// ---- partitions ----

static void join_slot(joined_vol_t *joined, const exe_vol_t &vol)
{
	joined->live = vol.tag != 0;
	joined->devpath = vol.devpath;
	joined->mntpath = vol.mntpath;
	joined->volid = vol.volid;
	joined->volspace = vol.volspace;
	joined->sys = vol.sys;
}

void begin_part_join(part_join_t *join, const exe_vollist_t &vols)
{
	b0(&join->part, sizeof join->part);
	// Free slots too: their mount points count.
	for (int slot = 0; slot < list_capacity<exe_vollist_t>(); slot++)
		join_slot(&join->vols[slot], vols.item[slot]);
}

// Takes room for a text off the join's store.
static std::string_view store_text(part_join_t *join, std::string_view text)
{
	char *stored = join->texts + join->texts_used;
	str_copy(stored, text.size() + 1, text);
	join->texts_used += text.size() + 1;
	return std::string_view(stored, text.size());
}

struct vol_joiner_t {
	part_join_t *join;
	int num;
};

static int join_volume(const exe_vol_t *vol, void *context)
{
	auto *to = static_cast<vol_joiner_t *>(context);
	joined_vol_t *joined = &to->join->vols[to->num++];
	join_slot(joined, *vol);
	joined->live = true;
	joined->devpath = store_text(to->join, joined->devpath);
	joined->mntpath = store_text(to->join, joined->mntpath);
	return 0;
}

int begin_part_join(part_join_t *join)
{
	b0(&join->part, sizeof join->part);
	b0(join->vols, sizeof join->vols);
	join->texts_used = 0;
	vol_joiner_t to = {join, 0};
	return walk_exe_vols(join_volume, &to);
}

// Whether a mount at the other place hides one at this: on the same point, and deliberately beneath it as
// well, so that a partition at /usr shows no space once /usr/local is mounted.
static bool hides(std::string_view other, std::string_view mntpath)
{
	return str_begins(other, mntpath) &&
	       (other.size() == mntpath.size() || other[mntpath.size()] == *PDCHAR);
}

static bool is_hidden(const part_join_t &join, const joined_vol_t *vol)
{
	for (const joined_vol_t *later = vol + 1; later != std::end(join.vols); later++)
		if (hides(later->mntpath, vol->mntpath))
			return true;
	return false;
}

static void select_volumes(part_join_t *join, std::string_view disk)
{
	join->on_disk_num = 0;
	for (const joined_vol_t &vol : join->vols)
		if (vol.live && str_begins(vol.devpath, disk))
			join->on_disk[join->on_disk_num++] = &vol;
}

static void join_volumes(part_join_t *join, std::string_view devpath)
{
	exe_part_t *part = &join->part;
	for (int i = 0; i < join->on_disk_num; i++) {
		const joined_vol_t &vol = *join->on_disk[i];
		if (vol.devpath != devpath)
			continue;
		if (vol.sys)
			part->sys = 1;
		if (part->mntpath[0] != '\0')
			str_append(part->mntpath, ";");
		str_append(part->mntpath, vol.mntpath);
		if (is_hidden(*join, &vol))
			continue;
		part->volid = vol.volid;
		part->volspace = vol.volspace;
	}
}

// Fills what the entry tells; the record holds the disk's path and what the partition before has left.
static void assemble_part(part_join_t *join, const part_t &entry)
{
	exe_part_t *part = &join->part;
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
	join_volumes(join, part->devpath);
}

int walk_exe_parts(const char *disk, part_join_t *join, int (*take)(const exe_part_t *part, void *context),
                   void *context)
{
	CLEARED_BY_CALLEE partlist_t entries;
	if (read_disk_partlist(disk, &entries) != 0)
		return -1;

	str_refill(join->part.disk, disk);
	select_volumes(join, disk);
	for (const part_t &entry : live_items(entries)) {
		assemble_part(join, entry);
		if (take(&join->part, context) != 0)
			return -1;
	}
	return 0;
}

int get_exe_partlist_on_disk(const char *disk, exe_partlist_t *list, filter_func_t filter, void *arg,
                             const exe_vollist_t *vols)
{
	list_clear(list);
	CLEARED_BY_CALLEE part_join_t join;
	if (vols)
		begin_part_join(&join, *vols);
	else if (begin_part_join(&join) != 0)
		return -1;
	collector_t<exe_partlist_t> to = {list, filter, arg};
	return walk_exe_parts(disk, &join, collect<exe_partlist_t>, &to);
}
