/*
 * diskscout.so, as an agent sees it: three functions and the records that they hand out.
 *
 * A query builds a singly linked list, one allocation a record. The list belongs to the caller until it is
 * handed back with the release code of its query; the caller never frees a record itself. One thread at a
 * time may be inside the library.
 *
 * The layouts are a binary interface (x86-64, natural alignment, little-endian). Texts are NUL-terminated
 * and zero-filled. All sizes are bytes in 64-bit fields; 32-bit counts keep the low 32 bits of their value.
 * This header compiles alone as C99 and as C++.
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
 * partition query leaves the records made so far in *result and *length; release them as usual.
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

/* Live records handed out and not yet released; leak diagnostics only, not locked. */
extern int memory_counter_hdd;
/* Reserved for the hardware RAID side, which does not count its records: stays 0. */
extern int memory_counter_hwraid;

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
