/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The RAID operations of diskscout.so: what the controller vendor's command-line tool can be made to do, and
 * the records in which it answers. Queries alone need none of this: they are in diskscout.h.
 *
 * Each operation is a run of the tool, and Aac_Get_Container_List one more for every container; the call
 * returns when the tool and the site's filter script have ended. One thread at a time may be inside the
 * library. Which tool that is, the file g_szConfigFileName says.
 *
 * A disk's address is channel << 16 | SCSI ID << 8 | LUN. Texts become words of the tool's script as they
 * are: a line end inside one would be a command of its own. Numbers are not looked at either, the tool is the
 * judge of every value.
 *
 * A list is linked by `next`, one allocation a record. Its place must hold null; it may hold records after a
 * failure too, and goes back to the Aac_Clear_ function of its kind in any case.
 *
 * The layouts are a binary interface (64-bit pointers and longs, natural alignment, little-endian). This
 * header compiles alone as C99 and as C++.
 */
#ifndef DISKSCOUT_RAID_H
#define DISKSCOUT_RAID_H

#include "diskscout.h"

/*
 * What operations and parsers return when it is not a number of records or an address. Each can return
 * AAC_RUN_FAILED and the three of the end, if nothing else is said; those between stand with the operation.
 */
enum aac_result {
	AAC_OK = 0,
	/* No configuration, a tool or filter that cannot be run or fails, an answer that is none. */
	AAC_RUN_FAILED = -1,
	AAC_NO_SUCH_DEVICE = -2,        /* or no such channel */
	AAC_BAD_STRIPE_SIZE = -3,       /* one that the controller does not know */
	AAC_NO_SUCH_CONTAINER = -5,     /* or no answer about it */
	AAC_BAD_PARAMETER = -6,         /* the disk does not take the question */
	AAC_NO_HOT_SPARE = -10,         /* the container has none */
	AAC_SIZES_DIFFER = -20,         /* of the containers to be striped */
	AAC_NO_SPACE = -30,             /* a disk, its channel, or the space on it was not found */
	AAC_BAD_DISK_STATUS = -50,      /* the disk fails or does not answer */
	AAC_DISK_CROWDED = -70,         /* it would carry more pieces than the controller allows */
	AAC_NOT_A_HOT_SPARE = -90,      /* the disk is none */
	AAC_CONTROLLER_UNUSABLE = -100, /* of the wrong type, missing, or not opened */
	AAC_CONTROLLER_BUSY = -200,     /* held by another application */
	AAC_TOOL_ERROR = -300           /* any other, or an answer that cannot be read */
};

/* Arguments and fields that hold no number of their own. */
enum {
	AAC_NO_MEMBER = -1, /* an unused slot of a container's members; no hot spare */
	AAC_NOT_GIVEN = -1, /* a size that the tool is to choose; 0 is as good */
	AAC_NO_MORE = -1    /* ends further disks or containers */
};

/* One container, a controller's logical drive: 328 bytes. */
typedef struct __tag_aac_container {
	int nCntnerID;   /* 0 to 63, from 24: a member of another one; -1 when the tool printed none */
	int nDiskNumber; /* members counted; may exceed the 64 that C_ID_L holds */
	/* Members: disk addresses; of a container made of containers their numbers. Unused: AAC_NO_MEMBER. */
	int C_ID_L[64];
	int Container_Type; /* KESTREL_HWRAID_TYPE */
	int TotalSize;      /* megabytes, rounded down; 0 when the tool printed none */
	int StripeSize;     /* kilobytes: 64, 32 or 16; 0 when the tool printed none */
	int Usage;          /* KESTREL_HWRAID_USAGE_TYPE */
	int HotSpare;       /* disk address; AAC_NO_MEMBER without one, or when it cannot be asked for */
	char Label[32];     /* at most 31 characters */
	struct __tag_aac_container *next; /* null at the end */
} aac_container;

/* One disk behind a controller: 104 bytes. */
typedef struct __tag_aac_disk {
	int C_ID_L;         /* disk address */
	char VendorID[32];  /* at most 31 characters, as the filter joined the words */
	char ProductID[32]; /* likewise */
	int Device_Type;    /* 0 "Disk" to 9 "Network", -1 other: one less than KESTREL_HWRAID_DSK_TYPE */
	long long Blocks;   /* at most 2,147,483,647 */
	int BytesPerBlock;
	int Usage;                   /* KESTREL_HWRAID_DSK_USAGE */
	int Shared;                  /* KESTREL_HWRAID_DSK_SHARED_TYPE */
	int Rate;                    /* transfer rate as the tool prints it */
	struct __tag_aac_disk *next; /* null at the end */
} aac_disk;

/* One free area of a disk: 16 bytes. */
typedef struct __tag_aac_space {
	int nOffset;                  /* kilobytes from the disk's start */
	int nFreeSpace;               /* kilobytes */
	struct __tag_aac_space *next; /* null at the end */
} aac_space;

/* One piece of a disk that a container uses: 56 bytes. */
typedef struct __tag_aac_partition {
	int C_ID_L;                       /* disk address */
	long long nOffset;                /* kilobytes from the disk's start */
	long long nSize;                  /* kilobytes */
	int bContainerID;                 /* the container that it belongs to */
	int ContainerType;                /* KESTREL_HWRAID_TYPE */
	int nMultilevelContainerID;       /* the container made of containers above that one */
	int nMultilevelContainerType;     /* KESTREL_HWRAID_PART_MULTILEVEL_TYPE */
	int nReadWriteAttribute;          /* KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_TYPE */
	struct __tag_aac_partition *next; /* null at the end */
} aac_partition;

/* One background task of a controller: 32 bytes. */
typedef struct __tag_aac_task {
	int TaskId; /* -1 when the tool printed none */
	/*
	 * 0 "Create", 1 "FATfmt", 2 "NTFSfmt", 3 "Rebuild", 4 "Reconfig", 5 "Scrub", 6 "Unknown", 7 "Verify",
	 * 8 "Zero", 9 "Bld/Vfy"; -1 another word
	 */
	int Function;
	float Done;                  /* 0 to 1; 1 when the tool printed none */
	int ContainerID;             /* that it works on */
	int State;                   /* 0 "BAD", 1 "DNE", 2 "RUN", 3 "SUS", 4 "UNK"; -1 another word */
	struct __tag_aac_task *next; /* null at the end */
} aac_task;

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* ---- controllers: "controller list" ---- */

/* The number of controllers; after a failure there is no list. */
int Aac_Get_Controller_List(aac_controller **pHead);
/*
 * Copies the name at that position of the list (from 0; less is the first) into a buffer of at least 32
 * bytes. AAC_OK, or AAC_RUN_FAILED whatever the cause, with an empty buffer.
 */
int Aac_Get_Controller_Name(char *lpszControllerName, int nPosition);
/* AAC_OK. So do all that clear: null is an empty list. */
int Aac_Clear_Controller_List(aac_controller *pHead);

/* ---- containers: "container list", "container delete", "container ... failover" ---- */

/* The number of containers; members that are containers stand behind the one that is made of them. */
int Aac_Get_Container_List(const char *lpszControllerName, aac_container **pHead);
int Aac_Clear_Container_List(aac_container *pHead);
/* The flag deletes a container with data on it, too. Also AAC_NO_SUCH_CONTAINER. */
int Aac_Container_Delete(const char *lpszControllerName, int nAlwaysInitEvenIfHasData, int nContainerID);
/* Also AAC_NO_SUCH_DEVICE, AAC_NO_SUCH_CONTAINER, AAC_NOT_A_HOT_SPARE. */
int Aac_Container_Set_Failover(const char *lpszControllerName, int nContainerID, int nC_ID_L);
int Aac_Container_Remove_Failover(const char *lpszControllerName, int nContainerID, int nC_ID_L);
/*
 * The hot spare's address; also AAC_NO_SUCH_DEVICE, AAC_NO_SUCH_CONTAINER, AAC_NO_HOT_SPARE.
 * An answer without its table reads as the disk 0:0:0.
 */
int Aac_Container_Show_Failover(const char *lpszControllerName, int nContainerID);
/*
 * Copies the operating system's name of the container, at most 255 characters, into a buffer of 256 bytes,
 * which is empty after a failure. AAC_RUN_FAILED for a null buffer, too; also AAC_NO_SUCH_CONTAINER.
 */
int Aac_Get_Container_Corresponding_Disk_Name(const char *lpszControllerName, int nContainerID,
                                              char *lpszFilled);

/* ---- new containers: "container create" ---- */

/*
 * nSpace in megabytes on each disk and nStripsize in kilobytes may be AAC_NOT_GIVEN. Of a label the first 16
 * characters count; null or empty is none. What follows the last named argument are disks or containers as
 * before it, and at the end AAC_NO_MORE. AAC_OK, the new container's number is not told; also
 * AAC_BAD_STRIPE_SIZE, AAC_NO_SUCH_CONTAINER, AAC_SIZES_DIFFER, AAC_NO_SPACE, AAC_DISK_CROWDED.
 */
/* The second disk is sought on the channel of the first, whatever its address says; further ones are not. */
int Aac_Create_Raid0(const char *lpszControllerName, const char *lpszLabel, int nStripsize, int nC_ID_L1,
                     int nSpace, int nC_ID_L2, ...);
int Aac_Create_Raid1(const char *lpszControllerName, const char *lpszLabel, int nQuick_init, int nC_ID_L1,
                     int nSpace, int nC_ID_L2);
int Aac_Create_Raid5(const char *lpszControllerName, const char *lpszLabel, int nQuick_init, int nStripsize,
                     int nC_ID_L1, int nSpace, int nC_ID_L2, int nC_ID_L3, ...);
/* Of mirrors, named by their numbers. */
int Aac_Create_Raid10(const char *lpszControllerName, const char *lpszLabel, int nStripsize, int nRaid1ID_1,
                      int nRaid1ID_2, ...);

/* ---- disks: "disk list /full=true", "disk initialize", "disk show ..." ---- */

/* The number of disks. */
int Aac_Get_Disk_List(const char *lpszControllerName, aac_disk **pHead);
int Aac_Clear_Disk_List(aac_disk *pHead);
/* The number of free areas on that disk; also AAC_NO_SUCH_DEVICE. */
int Aac_Disk_Show_Space(const char *lpszControllerName, int nC_ID_L, aac_space **pHead);
int Aac_Clear_Disk_Space_List(aac_space *pHead);
/* The number of pieces on all disks; also AAC_NO_SUCH_DEVICE. */
int Aac_Disk_Show_Partition(const char *lpszControllerName, aac_partition **pHead);
int Aac_Clear_Disk_Partition_List(aac_partition *pHead);
/*
 * The flags: although a container on it holds data; although one is in use. Also AAC_NO_SUCH_DEVICE.
 * A controller that cannot be opened is AAC_OK: look at the disk list afterwards.
 */
int Aac_Disk_Initialize(const char *lpszControllerName, int nAlways, int nUnconditional, int nC_ID_L);
/*
 * Counts of factory and of later defects, -1 for one that the tool does not tell. AAC_OK; also
 * AAC_NO_SUCH_DEVICE, AAC_BAD_PARAMETER, AAC_BAD_DISK_STATUS.
 */
int Aac_Disk_Show_Defect(const char *lpszControllerName, int nC_ID_L, int *pnPrimary, int *pnGrown);

/* ---- tasks: "task list" ---- */

/* The number of tasks; after a failure there is no list. */
int Aac_Get_Task_List(const char *lpszControllerName, aac_task **pHead);
/*
 * The first task of that container; null without one, and when the tasks cannot be listed.
 * All tasks behind it in the list are still linked, and are cleared with it.
 */
aac_task *Aac_Get_Container_Task(const char *lpszControllerName, int nContainerID);
int Aac_Clear_Task_List(aac_task *pHead);

/* ---- parsers of the tool's answers ---- */

/*
 * What an operation calls for the answer to its command: a file, as the filter has written it. AAC_OK for
 * lists too, else the operation's codes; AAC_RUN_FAILED when the file cannot be opened.
 */
int AnalyzeControllerFile(const char *lpszFile, aac_controller **pHead);
/* To a creation. nRaid is not looked at: all levels answer alike. */
int Analyze_Create_Raid_Created_File(const char *lpszFile, int nRaid);
int AnalyzeDiskFile(const char *lpszFile, aac_disk **pHead);
int AnalyzeDiskInitializeFile(const char *lpszFile);
int AnalyzeDiskShowDefectFile(const char *lpszFile, int *pnPrimary, int *pnGrown);
/* The free areas of one disk: the tool tells those of all. */
int AnalyzeDiskShowSpaceFile(const char *lpszFile, int nChannel, int nID, int nLun, aac_space **pHead);
int AnalyzePartitionFile(const char *lpszFile, aac_partition **pHead);
int AnalyzeTaskFile(const char *lpszFile, aac_task **pHead);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
