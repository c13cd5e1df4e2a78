// Operations on the disks behind a controller, each one run of the controller tool.
//
// Result codes of all: -1 the run failed, -2 no such channel or device (not the disk list), -100 wrong,
// missing or unopened controller, -200 controller held by another application, -300 another error of the
// tool; those of one operation stand with it. After a failure the records read so far are in the list:
// release them.
#ifndef DISKSCOUT_HWRAID_AAC_DISK_H
#define DISKSCOUT_HWRAID_AAC_DISK_H

#include "hwraid/aacraid/aac_hardraid.h"

extern "C" {
#pragma GCC visibility push(default)

// Lists behind *pHead, null on entry; the number of records is returned.
int Aac_Get_Disk_List(const char *lpszControllerName, aac_disk **pHead);
int Aac_Disk_Show_Space(const char *lpszControllerName, int nC_ID_L, aac_space **pHead);
int Aac_Disk_Show_Partition(const char *lpszControllerName, aac_partition **pHead);
// Release a list. Always 0.
int Aac_Clear_Disk_List(aac_disk *pHead);
int Aac_Clear_Disk_Space_List(aac_space *pHead);
int Aac_Clear_Disk_Partition_List(aac_partition *pHead);
// 0 when the disk has been initialised, and deliberately also when the controller could not be opened.
int Aac_Disk_Initialize(const char *lpszControllerName, int nAlways, int nUnconditional, int nC_ID_L);
// Counts of factory and of later defects; -1 for one that the tool does not tell. Returns 0, or in addition:
// -6 parameter error, -50 bad status of the disk.
int Aac_Disk_Show_Defect(const char *lpszControllerName, int nC_ID_L, int *pnPrimary, int *pnGrown);

// Parsers of the filtered output: 0, or a code as above.
int AnalyzeDiskFile(const char *lpszFile, aac_disk **pHead);
int AnalyzeDiskInitializeFile(const char *lpszFile);
int AnalyzeDiskShowDefectFile(const char *lpszFile, int *pnPrimary, int *pnGrown);
int AnalyzeDiskShowSpaceFile(const char *lpszFile, int nChannel, int nID, int nLun, aac_space **pHead);
int AnalyzePartitionFile(const char *lpszFile, aac_partition **pHead);

#pragma GCC visibility pop
}

#endif
