// SPDX-License-Identifier: Apache-2.0
// Disk addresses, and the accessors of the records: between the tool's words and the codes that are stored.
//
// Setters store and return what they stored, getters return the field or its word. A word is known by its
// beginning; an unknown or missing one stores -1 and reads back as "I dont know", a code that no setter
// stores as "overflow", or as unknown below 0 where the row of a table is the code.
#ifndef DISKSCOUT_HWRAID_AAC_RECORDS_H
#define DISKSCOUT_HWRAID_AAC_RECORDS_H

#include "base/record_list.h"
#include "hwraid/aacraid/aac_hardraid.h"

// Channel << 16, SCSI ID << 8 and LUN, added up. compat: a number above 255 carries into the next field, as
// agents in the field rely on: 0:256:0 is the disk 1:0:0.

int GetC_ID_L(int nChannel, int nID, int nLun);
int GetChannelFromC_ID_L(int nC_ID_L);
int GetIDFromC_ID_L(int nC_ID_L);
int GetLunFromC_ID_L(int nC_ID_L);

// What an operation that lists returns: the number of records, or the parser's code.
template <class Record> int CountOrCode(int nParsed, Record *const *pHead)
{
	return nParsed == 0 ? count_records(*pHead) : nParsed;
}

extern const char g_szControllerAvailability[4][16];
extern const char g_szControllerClustering[2][16];
extern const char g_szTaskFunction[10][16];
extern const char g_szTaskState[5][16];

int Controller_SetControllerID(aac_controller *p, int nID);
int Controller_GetControllerID(const aac_controller *p);
char *Controller_SetControllerName(aac_controller *p, const char *lpszName); // at most 31 characters
char *Controller_GetControllerName(aac_controller *p);
char *Controller_SetControllerType(aac_controller *p, const char *lpszType); // at most 31 characters
char *Controller_GetControllerType(aac_controller *p);
int Controller_SetControllerAvailability(aac_controller *p, const char *lpszWord);
const char *Controller_GetControllerAavailability(const aac_controller *p);
int Controller_SetControllerClustering(aac_controller *p, const char *lpszWord);
const char *Controller_GetControllerClustering(const aac_controller *p);

int Disk_SetC_ID_L(aac_disk *p, int nC_ID_L);
int Disk_GetC_ID_L(const aac_disk *p);
char *Disk_SetVendorID(aac_disk *p, const char *lpszVendor); // at most 31 characters
char *Disk_GetVendorID(aac_disk *p);
char *Disk_SetProductID(aac_disk *p, const char *lpszProduct); // at most 31 characters
char *Disk_GetProductID(aac_disk *p);
int Disk_SetDeviceType(aac_disk *p, const char *lpszWord);
const char *Disk_GetDeviceType(const aac_disk *p);
long long Disk_SetBlocks(aac_disk *p, long long nBlocks);
long long Disk_GetBlocks(const aac_disk *p);
int Disk_SetBytesPerBlock(aac_disk *p, int nBytes);
int Disk_GetBytesPerBlock(const aac_disk *p, int nIgnored);
int Disk_SetUsage(aac_disk *p, const char *lpszWord);
const char *Disk_GetUsage(const aac_disk *p);
int Disk_SetShared(aac_disk *p, const char *lpszWord);
const char *Disk_GetShared(const aac_disk *p);
int Disk_SetRate(aac_disk *p, int nRate);
int Disk_getRate(const aac_disk *p);

int Disk_Space_SetOffset(aac_space *p, int nOffset); // kilobytes
int Disk_Space_GetOffset(const aac_space *p);
int Disk_Space_SetFreeSpace(aac_space *p, int nFreeSpace); // kilobytes
int Disk_Space_GetFreeSpace(const aac_space *p);

int Disk_Partition_Set_C_ID_L(aac_partition *p, int nC_ID_L);
long long Disk_Partition_Set_OffSet(aac_partition *p, long long nOffset); // kilobytes
// compat: these three write the offset, not the field of their name: whoever sets a size moves the piece. The
// parser sets the fields itself.
long long Disk_Partition_SetSize(aac_partition *p, long long nSize);
int Disk_Partition_SetContainerID(aac_partition *p, int nID);
int Disk_Partition_SetMultilevelContainerID(aac_partition *p, int nID);
int Disk_Partition_SetContainerType(aac_partition *p, const char *lpszWord);
int Disk_Partition_SetMultilevelContainerType(aac_partition *p, const char *lpszWord);
int Disk_Partition_SetReadWriteAttr(aac_partition *p, const char *lpszWord); // 0 when the word is unknown

int Task_SetTaskID(aac_task *p, int nID);
int Task_GetTaskID(const aac_task *p);
int Task_SetFunction(aac_task *p, const char *lpszWord);
const char *Task_GetFunction(const aac_task *p);
float Task_SetDone(aac_task *p, float fDone); // 0 to 1
float Task_GetDone(const aac_task *p);
int Task_SetContainerID(aac_task *p, int nID);
int Task_GetContainerID(const aac_task *p);
int Task_SetState(aac_task *p, const char *lpszWord);
const char *Task_GetState(const aac_task *p);

#endif
