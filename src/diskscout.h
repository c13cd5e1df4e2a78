/* SPDX-License-Identifier: Apache-2.0 */
/*
 * diskscout.so, as an agent sees it: three functions and the records that they hand out. The RAID operations
 * beside them are in diskscout_raid.h.
 *
 * A query builds a singly linked list, one allocation a record. The list belongs to the caller until it is
 * handed back with the release code of its query; the caller never frees a record itself. One thread at a
 * time may be inside the library.
 *
 * The layouts are a binary interface (64-bit pointers and longs, natural alignment, little-endian). Texts are
 * NUL-terminated and zero-filled. All sizes are bytes in 64-bit fields; 32-bit counts keep the low 32 bits of
 * their value. This header compiles alone as C99 and as C++.
 */
#ifndef DISKSCOUT_H
#define DISKSCOUT_H

#include "define_command.h"

typedef char BOOLEAN; /* 0 or 1, where a field does not say otherwise */
typedef char STORAGE_STRING[64];

/* One local disk: 584 bytes, query CMD_GET_DISKS. */
typedef struct tagStorageDiskList {
	UINT nDiskID;                     /* position in the local disk list, from 0 */
	STORAGE_STRING szDeviceName;      /* device node, such as /dev/sda */
	STORAGE_STRING szDescription;     /* "Disk Device" */
	STORAGE_STRING szInterface;       /* "IDE", "SCSI", "USB", "FIBRE", "RAID" or "UNKNOWN" */
	UINT nPosition;                   /* host << 24 | channel << 16 | ID << 8 | LUN */
	STORAGE_STRING szMedia;           /* "Disk" */
	STORAGE_STRING szVendor;          /* empty for IDE disks, and where a device says "(" */
	STORAGE_STRING szModel;           /* as the device tells it */
	STORAGE_STRING szSerialNumber;    /* empty for SCSI disks */
	STORAGE_STRING szFirmwareVersion; /* firmware revision */
	ULONGLONG nSize;                  /* bytes: cylinders * heads * sectors * 512; 0 when unknown */
	UINT nTotalCylinders;             /* size / (heads * sectors), rounded down */
	UINT nTracksPerCylinder;          /* heads */
	UINT nSectorsPerTrack;            /* 0, like all of the geometry, when unknown */
	UINT nTotalHeads;                 /* heads again */
	UINT nTotalTracks;                /* cylinders * heads */
	UINT nTotalBlocks;                /* nSize in KiB */
	UINT nTotalSectors;               /* nSize in 512-byte sectors */
	UINT nBytesPerBlock;              /* 1024 */
	UINT nBytesPerSector;             /* 512 */
	UINT nPartNumber;                 /* partitions in the kernel's table, extended ones included */
	BOOLEAN bUsedBySystem;            /* 1: holds the file system of / or /boot */
	UINT nExPartNumber;               /* extended partitions among them */
	struct tagStorageDiskList *next;  /* null at the end */
} STORAGE_DISK_LIST;

/* One CD-ROM drive: 664 bytes, query CMD_GET_CDROMS. */
typedef struct tagStorageCdromList {
	UINT nCdromID;                    /* position in the CD-ROM list, from 0 */
	STORAGE_STRING szDeviceName;      /* device node, such as /dev/hdc */
	STORAGE_STRING szDiscription;     /* "DVD/CD-ROM Device"; agents know the field by this spelling */
	STORAGE_STRING szInterface;       /* "IDE", "SCSI", "USB" or "UNKNOWN" */
	UINT nPosition;                   /* host << 24 | channel << 16 | ID << 8 | LUN */
	STORAGE_STRING szMedia;           /* "CDROM" */
	STORAGE_STRING szVendor;          /* empty: IDE drives tell none */
	STORAGE_STRING szModel;           /* as the device tells it */
	STORAGE_STRING szSerialNumber;    /* from the IDENTIFY data */
	STORAGE_STRING szFirmwareVersion; /* firmware revision */
	STORAGE_STRING szMountPoint;      /* of the medium; empty when it is not mounted */
	STORAGE_STRING szLabel;           /* no label is read: always empty */
	ULONGLONG nTotalSpace;            /* bytes of the mounted file system; 0 when it is not mounted */
	struct tagStorageCdromList *next; /* null at the end */
} STORAGE_CDROM_LIST;

/* One partition: 384 bytes, query CMD_GET_PARTITIONS. */
typedef struct tagStoragePartList {
	STORAGE_STRING szDiskDeviceName; /* device node of the disk that holds it */
	UINT nPartIndex;                 /* 0 to 3: slot of the master boot record; from 4: logical drive */
	ULONGLONG nStart;                /* first byte on the disk */
	ULONGLONG nSize;                 /* bytes */
	UINT nTotalSectors;              /* nSize in 512-byte sectors */
	/* "Extended Partition", "Dynamic Volume", "Primary Partition" or "Logical Drive" */
	STORAGE_STRING szType;
	STORAGE_STRING szFileSystem; /* type of the mounted volume, such as ext3; empty when not mounted */
	STORAGE_STRING szMountPoint; /* all mount points, joined by ";"; over 63 characters: 60 and "..." */
	STORAGE_STRING szLabel;      /* no label is read: always empty */
	ULONGLONG nTotalSpace;       /* bytes of the mounted file system; 0 when not mounted */
	ULONGLONG nUsedSpace;        /* bytes of it that are not free */
	BOOLEAN bUsedBySystem;       /* 1: mounted at / or /boot */
	BOOLEAN bActive;             /* the raw boot byte of the table entry: 0x80 when bootable, not 1 */
	struct tagStoragePartList *next; /* null at the end */
} STORAGE_PART_LIST;

/* One RAID controller: 88 bytes, query CMD_GET_CONTROLLERS. */
typedef struct __tag_aac_control {
	int ControllerID;      /* position in the controller list, from 0 */
	char Adapter_Name[32]; /* as the controller tool knows it, such as aac0 */
	char Adapter_Type[32]; /* model */
	int Availability;      /* 0 "Unavailability", 1 "Unknown", 2 "read only", 3 "read/write"; -1 other */
	int Clustering;        /* 0 "No", 1 "Yes"; -1 other */
	struct __tag_aac_control *next; /* null at the end */
} aac_controller;

/*
 * Coded values of the hardware RAID records. Types of their own, but plain ints: a record may hold a value
 * that has no name here.
 */

typedef int KESTREL_HWRAID_TYPE;
enum {
	KESTREL_HWRAID_TYPE_UNKNOWN = -1,
	KESTREL_HWRAID_TYPE_RAID0 = 0,
	KESTREL_HWRAID_TYPE_RAID1 = 1,
	KESTREL_HWRAID_TYPE_RAID5 = 2,
	KESTREL_HWRAID_TYPE_RAID10 = 3, /* a stripe of mirrors */
	KESTREL_HWRAID_TYPE_VOLUME = 4,
	KESTREL_HWRAID_TYPE_RECONF = 5 /* being reconfigured */
};

/* What a container is used for. The spellings, and the two kinds of unknown, are those of the first release.
 */
typedef int KESTREL_HWRAID_USAGE_TYPE;
enum {
	KESTREL_HWRAID_USAGE_TYPE_UNKNOW = -1, /* the controller tool says nothing that is known */
	KESTREL_HWRAID_USAGE_TYPE_FAT = 0,
	KESTREL_HWRAID_USAGE_TYPE_NULTPART = 1, /* several partitions */
	KESTREL_HWRAID_USAGE_TYPE_NETWARE = 2,
	KESTREL_HWRAID_USAGE_TYPE_NONE = 3,
	KESTREL_HWRAID_USAGE_TYPE_NTFS = 4,
	KESTREL_HWRAID_USAGE_TYPE_OPEN = 5,
	KESTREL_HWRAID_USAGE_TYPE_UNCFGED = 6, /* not configured */
	KESTREL_HWRAID_USAGE_TYPE_UNKNOWN = 7, /* the controller tool says "Unknown" */
	KESTREL_HWRAID_USAGE_TYPE_UNMAPED = 8,
	KESTREL_HWRAID_USAGE_TYPE_VALID = 9
};

typedef int KESTREL_HWRAID_DSK_TYPE;
enum {
	KESTREL_HWRAID_DSK_TYPE_UNKNOWN = 0,
	KESTREL_HWRAID_DSK_TYPE_DISK = 1,
	KESTREL_HWRAID_DSK_TYPE_SEQ = 2, /* tape */
	KESTREL_HWRAID_DSK_TYPE_PRT = 3,
	KESTREL_HWRAID_DSK_TYPE_PROCESSOR = 4,
	KESTREL_HWRAID_DSK_TYPE_WRITEONCE = 5,
	KESTREL_HWRAID_DSK_TYPE_CDROM = 6,
	KESTREL_HWRAID_DSK_TYPE_SCANNER = 7,
	KESTREL_HWRAID_DSK_TYPE_OPTICAL = 8,
	KESTREL_HWRAID_DSK_TYPE_MCHANGER = 9,
	KESTREL_HWRAID_DSK_TYPE_NETWORK = 10
};

typedef int KESTREL_HWRAID_DSK_USAGE;
enum {
	KESTREL_HWRAID_DSK_USAGE_UNKNOWN = -1,
	KESTREL_HWRAID_DSK_USAGE_INITED = 0,
	KESTREL_HWRAID_DSK_USAGE_UNINIT = 1,
	KESTREL_HWRAID_DSK_USAGE_DETACHED = 2,
	KESTREL_HWRAID_DSK_USAGE_DOS = 3,
	KESTREL_HWRAID_DSK_USAGE_OFFLINE = 4,
	KESTREL_HWRAID_DSK_USAGE_UNOWNED = 5
};

typedef int KESTREL_HWRAID_DSK_SHARED_TYPE;
enum {
	KESTREL_HWRAID_DSK_SHARED_TYPE_UNKNOWN = -1,
	KESTREL_HWRAID_DSK_SHARED_TYPE_NO_SHARED = 0,
	KESTREL_HWRAID_DSK_SHARED_TYPE_YES_SHARED = 1
};

typedef int KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_TYPE;
enum {
	KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_UNKNOWN = -1,
	KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_NOT_READ_OR_WRITE = 0,
	KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_READ = 1,
	KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_WRITE = 2,
	KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_READ_AND_WRITE = 3
};

typedef int KESTREL_HWRAID_PART_MULTILEVEL_TYPE;
enum {
	KESTREL_HWRAID_PART_MULTILEVEL_TYPE_UNKNOWN = -1,
	KESTREL_HWRAID_PART_MULTILEVEL_TYPE_NONE = 0,
	KESTREL_HWRAID_PART_MULTILEVEL_TYPE_STRIPE = 1
};

typedef char KESTREL_STRING[64];

/* One RAID container, a controller's logical drive: 368 bytes, query CMD_GET_CONTAINERS. */
typedef struct tagHwRaid {
	int nRaidID;     /* container number, 0 to 63; from 24: a member of another container */
	int nDiskNumber; /* number of members; may exceed the 64 that nPosition holds */
	/*
	 * Members: disk addresses, channel << 16 | SCSI ID << 8 | LUN; of a container made of containers
	 * their numbers. Unused: -1.
	 */
	int nPosition[64];
	KESTREL_HWRAID_TYPE RaidType;
	/* Bytes, of which only the low 32 bits are right, as a signed number: 2 GiB and more wrap. */
	long long nTotalSize;
	long long nStripeSize; /* bytes; 0 when there is none */
	KESTREL_HWRAID_USAGE_TYPE Usage;
	int nHotSpare; /* disk address of the hot spare; -1 without one, or when it cannot be asked for */
	KESTREL_STRING szLabel; /* its first 8 characters */
	struct tagHwRaid *next; /* null at the end */
} HWRAID_LIST, *PHWRAID_LIST;

/* One disk behind a RAID controller: 168 bytes, query CMD_GET_RAID_DISKS. */
typedef struct __tag_Hard_Raid_Disk {
	int nPosition; /* disk address: channel << 16 | SCSI ID << 8 | LUN */
	KESTREL_STRING szVendor;
	KESTREL_STRING szModel;
	/*
	 * One less than KESTREL_HWRAID_DSK_TYPE says: a disk is 0, something unknown -1. Agents in the field
	 * rely on it.
	 */
	KESTREL_HWRAID_DSK_TYPE DeviceType;
	long long nBlocks; /* at most 2,147,483,647 */
	int nBytesPerBlock;
	KESTREL_HWRAID_DSK_USAGE Usage;
	KESTREL_HWRAID_DSK_SHARED_TYPE Shared; /* with another controller */
	int nRate;                             /* transfer rate as the controller tool prints it */
	struct __tag_Hard_Raid_Disk *next;     /* null at the end */
} HWRAID_DISK_LIST, *PHWRAID_DISK_LIST;

/* One free area of a disk: 24 bytes, query CMD_GET_RAID_SPACE. */
typedef struct __tag_Hard_Raid_Space {
	/* Bytes, of which only the low 32 bits are right, as signed numbers: 2 GiB and more wrap. */
	long long nOffset;
	long long nFreeSpace;
	struct __tag_Hard_Raid_Space *next; /* null at the end */
} HWRAID_SPACE_LIST, *PHWRAID_SPACE_LIST;

/* One piece of a disk that a container uses: 56 bytes, query CMD_GET_RAID_PARTITIONS. */
typedef struct tag_HwRaid_Partition {
	int nPosition;     /* disk address: channel << 16 | SCSI ID << 8 | LUN */
	long long nOffset; /* bytes from the disk's start */
	long long nSize;   /* bytes */
	int bRaidID;       /* the container that it belongs to */
	KESTREL_HWRAID_TYPE RaidType;
	int nMultilevelRaidID; /* the container made of containers above that one */
	KESTREL_HWRAID_PART_MULTILEVEL_TYPE MultilevelType;
	KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_TYPE ReadWriteAttribute;
	struct tag_HwRaid_Partition *next; /* null at the end */
} HWRAID_PARTITION_LIST, *PHWRAID_PARTITION_LIST;

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/*
 * Answers the query cmd->nCommand: stores the head of a list in *result and its number of records in
 * *length. Returns 0, or -1: unknown code (nothing is touched), null argument, or failed query.
 *
 * *result is read: null asks for a new list. The head of an earlier list of the same kind has its records
 * refilled in place; the first *length hold the answer, older ones stay linked behind them. A failed
 * partition query leaves the records made so far in *result and *length; release them as usual. The hardware
 * RAID queries instead release the list that is passed in and make a new one; when they fail, *result is null
 * and *length 0.
 */
int GetItemInfo(const IPMICOMMAND *cmd, void **result, int *length);

/*
 * Releases the list *result of the query cmd->nCommand - 1 and sets *result to null; null is an empty list.
 * Returns 0, or -1: unknown code or null argument (nothing is freed). A list must go back with its own
 * code: the records of the kinds differ in size.
 */
int SetItemInfo(const IPMICOMMAND *cmd, void **result);

/*
 * Runs the diagnostic command whose words are argv[ZERO] to argv[argc - 1]; all output goes to standard
 * error. Returns 0, or -1 when no command knows the words or the command failed.
 */
int stcli(int argc, char **argv, int ZERO);

/*
 * Data, to be reached with dlsym: a program that links the library would see copies of its own.
 *
 * The file that says where the RAID controller's command-line tool is: "/root/hardraid.cfg", unless the agent
 * writes another name here before the first hardware operation.
 */
extern char g_szConfigFileName[256];

/* Live records handed out and not yet released; leak diagnostics only, not locked. */
extern int memory_counter_hdd;
/* Reserved for the hardware RAID side, which does not count its records: stays 0. */
extern int memory_counter_hwraid;

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
