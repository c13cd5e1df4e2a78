// SPDX-License-Identifier: Apache-2.0
// Where Linux keeps its tables, how it numbers block devices, and what a partition table looks like.
#ifndef DISKSCOUT_HDD_SAL_LINUX_DEF_DEVIO_H
#define DISKSCOUT_HDD_SAL_LINUX_DEF_DEVIO_H

#include "hdd/sal/src/0/def.h"

extern const char PROCSCSISCSI_PATH[FNAME_SIZE]; // /proc/scsi/scsi
extern const char *const PPROCSCSISCSI_PATH;
extern const char PROCSCSI_PATH[FNAME_SIZE]; // /proc/scsi
extern const char *const PPROCSCSI_PATH;
extern const char PROCIDE_PATH[FNAME_SIZE]; // /proc/ide
extern const char *const PPROCIDE_PATH;
extern const char PROCBLK_PATH[FNAME_SIZE]; // /proc/partitions
extern const char *const PPROCBLK_PATH;
extern const char MTAB_PATH[FNAME_SIZE]; // /etc/mtab
extern const char *const PMTAB_PATH;
extern const char MDSTAT_PATH[FNAME_SIZE]; // /proc/mdstat
extern const char *const PMDSTAT_PATH;
extern const char MDSPEED_MAX_PATH[FNAME_SIZE]; // /proc/sys/dev/raid/speed_limit_max
extern const char *const PMDSPEED_MAX_PATH;
extern const char MDSPEED_MIN_PATH[FNAME_SIZE]; // /proc/sys/dev/raid/speed_limit_min
extern const char *const PMDSPEED_MIN_PATH;

constexpr int IDEDEV_MAJORS = 10;
constexpr int SCSIDEV_MAJORS = 8;
extern const int IDEDEV_MAJOR[IDEDEV_MAJORS];   // by interface: two drives of 64 minors each
extern const int SCSIDEV_MAJOR[SCSIDEV_MAJORS]; // by group of sixteen disks of 16 minors each
constexpr int MD_MAJOR_NUMBER = 9;

constexpr mami_t make_mami(unsigned major, unsigned minor)
{
	return ((major << 8) & 0xff00U) | (minor & 0xffU);
}
constexpr unsigned mami_major(mami_t mami)
{
	return (mami >> 8) & 0xffU;
}
constexpr unsigned mami_minor(mami_t mami)
{
	return mami & 0xffU;
}

// "08:11", two hexadecimal digits of major and two of minor, after the last path separator. 0, or -1 with
// *mami 0.
int maminame2mami(const char *name, unsigned int *mami);

// One entry of a partition table, as on disk.
struct parttab_item_t {
	uint8_t active; // 0x80: bootable
	uint8_t start_h;
	uint8_t start_s;
	uint8_t start_c;
	uint8_t type; // 0: empty entry
	uint8_t end_h;
	uint8_t end_s;
	uint8_t end_c;
	uint32_t start_sector; // little-endian, relative to a base that its table decides
	uint32_t size_sector;  // little-endian; 0: empty entry
} __attribute__((packed));

// A sector that holds a partition table.
struct parttab_t {
	uint8_t buf[446]; // boot code
	parttab_item_t item[4];
	uint8_t magic[2];
} __attribute__((packed));
typedef parttab_t mbr_t;

// One partition, as its table tells it.
struct part_t {
	int tag;
	int index;
	void *parent;
	int part_index; // 0 to 3: slot of the master boot record; from 4: logical drives
	uint8_t type;
	int active;     // the raw boot byte
	size32_t start; // absolute, in 512-byte sectors
	size32_t size;  // in 512-byte sectors
};

struct partlist_t {
	int num;
	int num_real;
	int lmt;
	void *parent;
	part_t item[32];
};

#endif
