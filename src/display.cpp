// SPDX-License-Identifier: Apache-2.0
#include "display.h"

#include "diskscout.h"
#include "hdd/sal/src/0/def.h"

#include <stddef.h>
#include <stdio.h>
#include <string.h>

// ---- fields ----

template <class Value> static Value value_at(const void *place)
{
	Value value;
	memcpy(&value, place, sizeof value);
	return value;
}

static void print_text(const void *place)
{
	fprintf(stderr, "%s", static_cast<const char *>(place));
}

static void print_count(const void *place)
{
	fprintf(stderr, "%d", value_at<int>(place));
}

static void print_address(const void *place)
{
	fprintf(stderr, "%08x", value_at<UINT>(place));
}

static void print_megabytes(const void *place)
{
	fprintf(stderr, "%dMB", low_32(value_at<ULONGLONG>(place) >> 20));
}

// compat: as the char that it is: a boot byte of 0x80 shows as -128.
static void print_boolean(const void *place)
{
	fprintf(stderr, "%d", static_cast<signed char>(value_at<BOOLEAN>(place)));
}

static void print_link(const void *place)
{
	fprintf(stderr, "0x%08x", low_32(value_at<const void *>(place)));
}

struct field_t {
	const char *name;
	size_t offset;
	void (*print)(const void *place);
};

#define FIELD(record, field, print)                                                                          \
	{                                                                                                    \
#field, offsetof(record, field), print                                                       \
	}

static constexpr field_t DISK_FIELDS[] = {
	FIELD(tagStorageDiskList, nDiskID, print_count),
	FIELD(tagStorageDiskList, szDeviceName, print_text),
	FIELD(tagStorageDiskList, szDescription, print_text),
	FIELD(tagStorageDiskList, szInterface, print_text),
	FIELD(tagStorageDiskList, nPosition, print_address),
	FIELD(tagStorageDiskList, szMedia, print_text),
	FIELD(tagStorageDiskList, szVendor, print_text),
	FIELD(tagStorageDiskList, szModel, print_text),
	FIELD(tagStorageDiskList, szSerialNumber, print_text),
	FIELD(tagStorageDiskList, szFirmwareVersion, print_text),
	FIELD(tagStorageDiskList, nSize, print_megabytes),
	FIELD(tagStorageDiskList, nTotalCylinders, print_count),
	FIELD(tagStorageDiskList, nTracksPerCylinder, print_count),
	FIELD(tagStorageDiskList, nSectorsPerTrack, print_count),
	FIELD(tagStorageDiskList, nTotalHeads, print_count),
	FIELD(tagStorageDiskList, nTotalTracks, print_count),
	FIELD(tagStorageDiskList, nTotalBlocks, print_count),
	FIELD(tagStorageDiskList, nTotalSectors, print_count),
	FIELD(tagStorageDiskList, nBytesPerBlock, print_count),
	FIELD(tagStorageDiskList, nBytesPerSector, print_count),
	FIELD(tagStorageDiskList, nPartNumber, print_count),
	FIELD(tagStorageDiskList, bUsedBySystem, print_boolean),
	FIELD(tagStorageDiskList, nExPartNumber, print_count),
	FIELD(tagStorageDiskList, next, print_link),
};

static constexpr field_t CDROM_FIELDS[] = {
	FIELD(tagStorageCdromList, nCdromID, print_count),
	FIELD(tagStorageCdromList, szDeviceName, print_text),
	FIELD(tagStorageCdromList, szDiscription, print_text),
	FIELD(tagStorageCdromList, szInterface, print_text),
	FIELD(tagStorageCdromList, nPosition, print_address),
	FIELD(tagStorageCdromList, szMedia, print_text),
	FIELD(tagStorageCdromList, szVendor, print_text),
	FIELD(tagStorageCdromList, szModel, print_text),
	FIELD(tagStorageCdromList, szSerialNumber, print_text),
	FIELD(tagStorageCdromList, szFirmwareVersion, print_text),
	FIELD(tagStorageCdromList, szMountPoint, print_text),
	FIELD(tagStorageCdromList, szLabel, print_text),
	FIELD(tagStorageCdromList, nTotalSpace, print_megabytes),
	FIELD(tagStorageCdromList, next, print_link),
};

static constexpr field_t PART_FIELDS[] = {
	FIELD(tagStoragePartList, szDiskDeviceName, print_text),
	FIELD(tagStoragePartList, nPartIndex, print_count),
	FIELD(tagStoragePartList, nStart, print_megabytes),
	FIELD(tagStoragePartList, nSize, print_megabytes),
	FIELD(tagStoragePartList, nTotalSectors, print_count),
	FIELD(tagStoragePartList, szType, print_text),
	FIELD(tagStoragePartList, szFileSystem, print_text),
	FIELD(tagStoragePartList, szMountPoint, print_text),
	FIELD(tagStoragePartList, szLabel, print_text),
	FIELD(tagStoragePartList, nTotalSpace, print_megabytes),
	FIELD(tagStoragePartList, nUsedSpace, print_megabytes),
	FIELD(tagStoragePartList, bUsedBySystem, print_boolean),
	FIELD(tagStoragePartList, bActive, print_boolean),
	FIELD(tagStoragePartList, next, print_link),
};

// ---- records ----

static void print_name(const char *name)
{
	fprintf(stderr, "%-19s= ", name);
}

template <size_t count> static void print_record(const void *record, const field_t (&fields)[count])
{
	print_name("this");
	print_link(&record);
	fputs("\n", stderr);
	for (const field_t &field : fields) {
		print_name(field.name);
		field.print(static_cast<const char *>(record) + field.offset);
		fputs("\n", stderr);
	}
}

static const char STARS[] = "************************************************************";

template <class Record, size_t count>
static void display_list(const char *kind, const void *head, int limit, const field_t (&fields)[count])
{
	int linked = 0;
	for (auto *record = static_cast<const Record *>(head); record; record = record->next)
		linked++;

	int shown = 0;
	for (auto *record = static_cast<const Record *>(head); record && shown != limit;
	     record = record->next) {
		fprintf(stderr, "%s %s (%d/%d)\n", STARS, kind, shown++, linked);
		print_record(record, fields);
	}
	fprintf(stderr, "%s %s (end/%d)\n", STARS, kind, linked);
}

void display_stdisk(const void *head, int count)
{
	display_list<tagStorageDiskList>("DISK", head, count, DISK_FIELDS);
}

void display_stcdrom(const void *head, int count)
{
	display_list<tagStorageCdromList>("CDROM", head, count, CDROM_FIELDS);
}

void display_stpart(const void *head, int count)
{
	display_list<tagStoragePartList>("PART", head, count, PART_FIELDS);
}
