// SPDX-License-Identifier: Apache-2.0
// Inventory records become exported ones: one converter a kind, one way to link them, one to release them.
#include "hdd/hdd.h"

#include "base/record_list.h"
#include "hdd/sal/src/0/str.h"
#include "hdd/sal/src/linux/parttab.h"

#include <string.h>

// ---- records ----

// The record behind *link, zeroed but for its link, or a new one.
// compat: a list that comes back is refilled in place, and older records stay linked behind the new answer;
// agents poll with one list.
template <class Record> static Record *open_record(Record **link)
{
	Record *next = nullptr;
	if (*link) {
		next = (*link)->next;
	} else {
		*link = new Record;
		memory_counter_hdd++;
	}
	b0(*link, sizeof **link);
	(*link)->next = next;
	return *link;
}

struct bus_name_t {
	char bus;
	const char *name;
};

static const bus_name_t DISK_BUSES[] = {
	{'i', "IDE"}, {'c', "IDE"}, {'s', "SCSI"}, {'u', "USB"}, {'f', "FIBRE"}, {'r', "RAID"},
};
// compat: without fibre channel and RAID: drives there are reported as "UNKNOWN".
static const bus_name_t CDROM_BUSES[] = {{'i', "IDE"}, {'c', "IDE"}, {'s', "SCSI"}, {'u', "USB"}};

template <size_t rows> static const char *bus_name(const bus_name_t (&buses)[rows], char bus)
{
	for (const bus_name_t &row : buses)
		if (row.bus == bus)
			return row.name;
	return "UNKNOWN";
}

static UINT pack_address(const idlun_t &idlun)
{
	return static_cast<UINT>(idlun.host) << 24 | static_cast<UINT>(idlun.channel) << 16 |
	       static_cast<UINT>(idlun.id) << 8 | idlun.lun;
}

static ULONGLONG units_to_bytes(size32_t units)
{
	return units * 512;
}

static void fill_geometry(tagStorageDiskList *record, const hdgeo_t &geo)
{
	record->nSize = geo.cylinders * geo.heads * geo.sectors * geo.bytes;
	record->nTotalCylinders = static_cast<UINT>(geo.cylinders);
	record->nTracksPerCylinder = static_cast<UINT>(geo.heads);
	record->nSectorsPerTrack = static_cast<UINT>(geo.sectors);
	record->nTotalHeads = static_cast<UINT>(geo.heads);
	record->nTotalTracks = static_cast<UINT>(geo.cylinders * geo.heads);
	record->nTotalBlocks = static_cast<UINT>(record->nSize >> 10);
	record->nTotalSectors = static_cast<UINT>(record->nSize >> 9);
	record->nBytesPerBlock = 1024;
	record->nBytesPerSector = 512;
}

int exe2stdisk(const exe_disk_t *disk, tagStorageDiskList **link)
{
	tagStorageDiskList *record = open_record(link);
	record->nDiskID = static_cast<UINT>(disk->index);
	str_copy(record->szDeviceName, disk->devpath);
	str_copy(record->szDescription, "Disk Device");
	str_copy(record->szInterface, bus_name(DISK_BUSES, disk->devid.bus));
	record->nPosition = pack_address(disk->idlun);
	str_copy(record->szMedia, "Disk");
	// compat: some devices answer with a lone "(" where their vendor should stand; it is left out of
	// disks alone.
	if (strcmp(disk->devid.vendor, "(") != 0)
		str_copy(record->szVendor, disk->devid.vendor);
	str_copy(record->szModel, disk->devid.model);
	str_copy(record->szSerialNumber, disk->devid.sn);
	str_copy(record->szFirmwareVersion, disk->devid.rev);
	fill_geometry(record, disk->hdgeo);
	record->nPartNumber = static_cast<UINT>(disk->partnum);
	record->bUsedBySystem = static_cast<BOOLEAN>(disk->sys);
	record->nExPartNumber = static_cast<UINT>(disk->partnum_extended);
	return 0;
}

int exe2stcdrom(const exe_cdrom_t *cdrom, tagStorageCdromList **link)
{
	tagStorageCdromList *record = open_record(link);
	record->nCdromID = static_cast<UINT>(cdrom->index);
	str_copy(record->szDeviceName, cdrom->devpath);
	str_copy(record->szDiscription, "DVD/CD-ROM Device");
	str_copy(record->szInterface, bus_name(CDROM_BUSES, cdrom->devid.bus));
	record->nPosition = pack_address(cdrom->idlun);
	str_copy(record->szMedia, "CDROM");
	str_copy(record->szVendor, cdrom->devid.vendor);
	str_copy(record->szModel, cdrom->devid.model);
	str_copy(record->szSerialNumber, cdrom->devid.sn);
	str_copy(record->szFirmwareVersion, cdrom->devid.rev);
	str_copy(record->szMountPoint, cdrom->mntpath);
	str_copy(record->szLabel, cdrom->volid.volname);
	record->nTotalSpace = units_to_bytes(cdrom->volspace.total);
	return 0;
}

static const char *partition_type(const exe_part_t &part)
{
	constexpr uint8_t DYNAMIC_VOLUME = 0x42;
	if (is_extended_type(part.type))
		return "Extended Partition";
	if (part.type == DYNAMIC_VOLUME)
		return "Dynamic Volume";
	return part.part_index <= 3 ? "Primary Partition" : "Logical Drive";
}

static void copy_mount_points(STORAGE_STRING to, std::string_view mntpath)
{
	constexpr size_t KEPT = 60;
	str_copy(to, sizeof(STORAGE_STRING), mntpath);
	if (mntpath.size() >= sizeof(STORAGE_STRING))
		str_copy(to + KEPT, sizeof(STORAGE_STRING) - KEPT, "...");
}

int exe2stpart(const exe_part_t *part, tagStoragePartList **link)
{
	tagStoragePartList *record = open_record(link);
	str_copy(record->szDiskDeviceName, part->disk);
	record->nPartIndex = static_cast<UINT>(part->part_index);
	record->nStart = units_to_bytes(part->start);
	record->nSize = units_to_bytes(part->size);
	record->nTotalSectors = static_cast<UINT>(part->size);
	str_copy(record->szType, partition_type(*part));
	str_copy(record->szFileSystem, part->volid.fsname);
	copy_mount_points(record->szMountPoint, part->mntpath);
	str_copy(record->szLabel, part->volid.volname);
	record->nTotalSpace = units_to_bytes(part->volspace.total);
	record->nUsedSpace = units_to_bytes(part->volspace.total - part->volspace.free);
	record->bUsedBySystem = static_cast<BOOLEAN>(part->sys);
	record->bActive = static_cast<BOOLEAN>(part->boot);
	return 0;
}

// ---- lists ----

// The list that an agent gets, as far as it has been written.
template <class Record> class Answer
{
public:
	Answer(void **head, int *length) : records_(head), length_(length) { *length_ = 0; }

	template <class Item> void append(const Item &item, int (*convert)(const Item *, Record **))
	{
		Record *record = records_.following();
		convert(&item, &record);
		records_.append(record);
		*length_ = records_.count();
	}

private:
	RecordList<Record, void *> records_;
	int *length_;
};

int stdisk_all(void **result, int *length)
{
	Answer<tagStorageDiskList> answer(result, length);
	CLEARED_BY_CALLEE exe_disklist_t disks;
	// compat: the result is not examined: of more disks than the list holds the first are the answer.
	get_exe_disklist(&disks, nullptr, nullptr);
	for (const exe_disk_t &disk : live_items(disks))
		answer.append(disk, exe2stdisk);
	return 0;
}

int stcdrom_all(void **result, int *length)
{
	Answer<tagStorageCdromList> answer(result, length);
	CLEARED_BY_CALLEE exe_cdromlist_t cdroms;
	get_exe_cdromlist(&cdroms, nullptr, nullptr);
	for (const exe_cdrom_t &cdrom : live_items(cdroms))
		answer.append(cdrom, exe2stcdrom);
	return 0;
}

// The device paths of the disks, as many as a list of them holds.
struct disk_paths_t {
	int num;
	str_t path[list_capacity<exe_disklist_t>()];
};

// 0, or -1 when there are more.
static int list_disk_paths(disk_paths_t *paths)
{
	CLEARED_BY_CALLEE ExeDisks disks;
	CLEARED_BY_CALLEE exe_disk_t disk;
	for (paths->num = 0; disks.next(&disk); paths->num++) {
		if (paths->num == list_capacity<exe_disklist_t>())
			return -1;
		str_copy(paths->path[paths->num], disk.devpath);
	}
	return 0;
}

int stpart_all(void **result, int *length)
{
	Answer<tagStoragePartList> answer(result, length);
	CLEARED_BY_CALLEE disk_paths_t disks;
	CLEARED_BY_CALLEE part_join_t join;
	if (list_disk_paths(&disks) != 0 || begin_part_join(&join) != 0)
		return -1;

	exe_part_t part = {};
	for (int i = 0; i < disks.num; i++) {
		CLEARED_BY_CALLEE ExeParts parts(disks.path[i], &join);
		while (parts.next(&part))
			answer.append(part, exe2stpart);
		if (parts.result() != 0)
			return -1;
	}
	return 0;
}

template <class Record> static int clear_list(void **result)
{
	memory_counter_hdd -= release_records(static_cast<Record *>(*result));
	*result = nullptr;
	return 0;
}

int stdisk_clear(void **result)
{
	return clear_list<tagStorageDiskList>(result);
}

int stcdrom_clear(void **result)
{
	return clear_list<tagStorageCdromList>(result);
}

int stpart_clear(void **result)
{
	return clear_list<tagStoragePartList>(result);
}

// ---- codes ----

int GetItemInfo_hdd(const IPMICOMMAND *cmd, void **result, int *length)
{
	switch (cmd->nCommand) {
	case CMD_GET_DISKS:
		return stdisk_all(result, length);
	case CMD_GET_PARTITIONS:
		return stpart_all(result, length);
	case CMD_GET_CDROMS:
		return stcdrom_all(result, length);
	default:
		return -1;
	}
}

int SetItemInfo_hdd(const IPMICOMMAND *cmd, void **result)
{
	switch (cmd->nCommand) {
	case CMD_FREE_DISKS:
		return stdisk_clear(result);
	case CMD_FREE_PARTITIONS:
		return stpart_clear(result);
	case CMD_FREE_CDROMS:
		return stcdrom_clear(result);
	default:
		return -1;
	}
}
