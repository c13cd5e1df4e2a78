/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The request that an agent hands to every query and release, and the codes it may carry.
 *
 * The layout is a binary interface (64-bit pointers and longs, natural alignment, little-endian). This header
 * compiles alone as C99 and as C++.
 */
#ifndef DISKSCOUT_DEFINE_COMMAND_H
#define DISKSCOUT_DEFINE_COMMAND_H

typedef char CHAR;
typedef unsigned int UINT;            /* 32 bits */
typedef unsigned long long ULONGLONG; /* 64 bits */

/*
 * Owned by the agent; read during the call only, no pointer to it is kept. Of the fields only nCommand is
 * read, and szData by the queries whose row below names an argument.
 */
typedef struct IPMICOMMAND {
	UINT nMode;         /* mode word of the agent; not read */
	ULONGLONG lIp;      /* address of the managed host; not read */
	CHAR sUserName[16]; /* login name of the agent; not read */
	CHAR sPassword[16]; /* password of the agent; not read */
	UINT nCommand;      /* one of the codes below */
	UINT nIndex;        /* not read */
	UINT nPara1;        /* not read */
	UINT nPara2;        /* not read */
	UINT nPara3;        /* not read */
	UINT nDataLen;      /* length of szData in bytes; not read */
	CHAR *szData;       /* argument of the command, owned by the agent */
} IPMICOMMAND;

/* Query codes; the release code of a query is the query code plus one. */
enum {
	CMD_GET_DISKS = 122100, /* no argument; tagStorageDiskList */
	CMD_FREE_DISKS = 122101,
	CMD_GET_PARTITIONS = 123100, /* no argument; tagStoragePartList, the partitions of all disks */
	CMD_FREE_PARTITIONS = 123101,
	CMD_GET_CDROMS = 124100, /* no argument; tagStorageCdromList */
	CMD_FREE_CDROMS = 124101,
	CMD_GET_CONTAINERS = 125100, /* controller name: RAID containers */
	CMD_FREE_CONTAINERS = 125101,
	CMD_GET_RAID_DISKS = 126100, /* controller name: physical disks */
	CMD_FREE_RAID_DISKS = 126101,
	CMD_GET_RAID_SPACE = 127100, /* 32-bit disk address, then controller name: its free areas */
	CMD_FREE_RAID_SPACE = 127101,
	CMD_GET_RAID_PARTITIONS = 128100, /* controller name: partitions on its disks */
	CMD_FREE_RAID_PARTITIONS = 128101,
	CMD_GET_CONTROLLERS = 129100, /* no argument: RAID controllers */
	CMD_FREE_CONTROLLERS = 129101
};

#endif
