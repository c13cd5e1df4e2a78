// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/aac_records.h"

#include "hwraid/aacraid/aac_text.h"

#include <stdio.h>

// ---- disk addresses ----

// Unsigned, so that no sum overflows.
int GetC_ID_L(int nChannel, int nID, int nLun)
{
	return static_cast<int>((static_cast<unsigned>(nChannel) << 16) + (static_cast<unsigned>(nID) << 8) +
	                        static_cast<unsigned>(nLun));
}

int GetChannelFromC_ID_L(int nC_ID_L)
{
	return (nC_ID_L >> 16) & 255;
}

int GetIDFromC_ID_L(int nC_ID_L)
{
	return (nC_ID_L >> 8) & 255;
}

int GetLunFromC_ID_L(int nC_ID_L)
{
	return nC_ID_L & 255;
}

// ---- words ----

// The row's number is the code.
typedef char Word[16];

const Word g_szControllerAvailability[4] = {"Unavailability", "Unknown", "read only", "read/write"};
const Word g_szControllerClustering[2] = {"No", "Yes"};
const Word g_szTaskFunction[10] = {"Create", "FATfmt",  "NTFSfmt", "Rebuild", "Reconfig",
                                   "Scrub",  "Unknown", "Verify",  "Zero",    "Bld/Vfy"};
const Word g_szTaskState[5] = {"BAD", "DNE", "RUN", "SUS", "UNK"};
static const Word DEVICE_TYPES[] = {"Disk",  "Sequential", "Printer", "Processor",     "Write_once",
                                    "CDROM", "Scanner",    "Optical", "Media_changer", "Network"};
// The parser joins the words of a row's field; people read them apart.
static const Word DISK_USAGE_KEYS[] = {"Initialized", "Not_Initialized", "Detached",
                                       "DOS",         "Offline",         "Unowned"};
static const Word DISK_USAGES[] = {"Initialized", "Not Initialized", "Detached", "DOS", "Offline", "Unowned"};
static const Word SHARED[] = {"NO", "YES"};

template <size_t rows> static int CodeOfWord(const Word (&table)[rows], const char *lpszWord)
{
	for (size_t i = 0; i < rows; i++)
		if (Including(lpszWord, table[i]))
			return static_cast<int>(i);
	return -1;
}

template <size_t rows> static const char *WordOfCode(const Word (&table)[rows], int nCode)
{
	if (nCode < 0)
		return "I dont know";
	return nCode < static_cast<int>(rows) ? table[nCode] : "overflow";
}

// Of the disks' codes only -1 is known to be unknown.
template <size_t rows> static const char *WordOfDiskCode(const Word (&table)[rows], int nCode)
{
	return nCode < -1 ? "overflow" : WordOfCode(table, nCode);
}

struct KeyedCode {
	const char *lpszKey;
	int nCode;
};

template <size_t rows>
static int CodeOfKey(const KeyedCode (&table)[rows], const char *lpszWord, int nUnknown)
{
	for (const KeyedCode &row : table)
		if (Including(lpszWord, row.lpszKey))
			return row.nCode;
	return nUnknown;
}

// No word stands for RAID 10: the tool calls a stripe of containers a stripe as well.
static constexpr KeyedCode CONTAINER_TYPES[] = {{"Stripe", KESTREL_HWRAID_TYPE_RAID0},
                                                {"Mirror", KESTREL_HWRAID_TYPE_RAID1},
                                                {"RAID-5", KESTREL_HWRAID_TYPE_RAID5},
                                                {"Volume", KESTREL_HWRAID_TYPE_VOLUME},
                                                {"Reconf", KESTREL_HWRAID_TYPE_RECONF}};
static constexpr KeyedCode MULTILEVEL_TYPES[] = {{"None", KESTREL_HWRAID_PART_MULTILEVEL_TYPE_NONE},
                                                 {"Stripe", KESTREL_HWRAID_PART_MULTILEVEL_TYPE_STRIPE}};
static constexpr KeyedCode ATTRIBUTES[] = {
	{"RW", KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_READ_AND_WRITE},
	{"R", KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_READ},
	{"W", KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_WRITE},
};

static char *SetText(char (&szField)[32], const char *lpszText)
{
	snprintf(szField, sizeof szField, "%s", lpszText);
	return szField;
}

// ---- controllers ----

int Controller_SetControllerID(aac_controller *p, int nID)
{
	return p->ControllerID = nID;
}

int Controller_GetControllerID(const aac_controller *p)
{
	return p->ControllerID;
}

char *Controller_SetControllerName(aac_controller *p, const char *lpszName)
{
	return SetText(p->Adapter_Name, lpszName);
}

char *Controller_GetControllerName(aac_controller *p)
{
	return p->Adapter_Name;
}

char *Controller_SetControllerType(aac_controller *p, const char *lpszType)
{
	return SetText(p->Adapter_Type, lpszType);
}

char *Controller_GetControllerType(aac_controller *p)
{
	return p->Adapter_Type;
}

int Controller_SetControllerAvailability(aac_controller *p, const char *lpszWord)
{
	return p->Availability = CodeOfWord(g_szControllerAvailability, lpszWord);
}

const char *Controller_GetControllerAavailability(const aac_controller *p)
{
	return WordOfCode(g_szControllerAvailability, p->Availability);
}

int Controller_SetControllerClustering(aac_controller *p, const char *lpszWord)
{
	return p->Clustering = CodeOfWord(g_szControllerClustering, lpszWord);
}

const char *Controller_GetControllerClustering(const aac_controller *p)
{
	return WordOfCode(g_szControllerClustering, p->Clustering);
}

// ---- disks ----

int Disk_SetC_ID_L(aac_disk *p, int nC_ID_L)
{
	return p->C_ID_L = nC_ID_L;
}

int Disk_GetC_ID_L(const aac_disk *p)
{
	return p->C_ID_L;
}

char *Disk_SetVendorID(aac_disk *p, const char *lpszVendor)
{
	return SetText(p->VendorID, lpszVendor);
}

char *Disk_GetVendorID(aac_disk *p)
{
	return p->VendorID;
}

char *Disk_SetProductID(aac_disk *p, const char *lpszProduct)
{
	return SetText(p->ProductID, lpszProduct);
}

char *Disk_GetProductID(aac_disk *p)
{
	return p->ProductID;
}

int Disk_SetDeviceType(aac_disk *p, const char *lpszWord)
{
	return p->Device_Type = CodeOfWord(DEVICE_TYPES, lpszWord);
}

const char *Disk_GetDeviceType(const aac_disk *p)
{
	return WordOfDiskCode(DEVICE_TYPES, p->Device_Type);
}

long long Disk_SetBlocks(aac_disk *p, long long nBlocks)
{
	return p->Blocks = nBlocks;
}

long long Disk_GetBlocks(const aac_disk *p)
{
	return p->Blocks;
}

int Disk_SetBytesPerBlock(aac_disk *p, int nBytes)
{
	return p->BytesPerBlock = nBytes;
}

int Disk_GetBytesPerBlock(const aac_disk *p, int)
{
	return p->BytesPerBlock;
}

int Disk_SetUsage(aac_disk *p, const char *lpszWord)
{
	return p->Usage = CodeOfWord(DISK_USAGE_KEYS, lpszWord);
}

const char *Disk_GetUsage(const aac_disk *p)
{
	return WordOfDiskCode(DISK_USAGES, p->Usage);
}

int Disk_SetShared(aac_disk *p, const char *lpszWord)
{
	return p->Shared = CodeOfWord(SHARED, lpszWord);
}

const char *Disk_GetShared(const aac_disk *p)
{
	return WordOfDiskCode(SHARED, p->Shared);
}

int Disk_SetRate(aac_disk *p, int nRate)
{
	return p->Rate = nRate;
}

int Disk_getRate(const aac_disk *p)
{
	return p->Rate;
}

// ---- free areas and pieces of disks ----

int Disk_Space_SetOffset(aac_space *p, int nOffset)
{
	return p->nOffset = nOffset;
}

int Disk_Space_GetOffset(const aac_space *p)
{
	return p->nOffset;
}

int Disk_Space_SetFreeSpace(aac_space *p, int nFreeSpace)
{
	return p->nFreeSpace = nFreeSpace;
}

int Disk_Space_GetFreeSpace(const aac_space *p)
{
	return p->nFreeSpace;
}

int Disk_Partition_Set_C_ID_L(aac_partition *p, int nC_ID_L)
{
	return p->C_ID_L = nC_ID_L;
}

long long Disk_Partition_Set_OffSet(aac_partition *p, long long nOffset)
{
	return p->nOffset = nOffset;
}

long long Disk_Partition_SetSize(aac_partition *p, long long nSize)
{
	return p->nOffset = nSize;
}

int Disk_Partition_SetContainerID(aac_partition *p, int nID)
{
	p->nOffset = nID;
	return nID;
}

int Disk_Partition_SetMultilevelContainerID(aac_partition *p, int nID)
{
	p->nOffset = nID;
	return nID;
}

int Disk_Partition_SetContainerType(aac_partition *p, const char *lpszWord)
{
	return p->ContainerType = CodeOfKey(CONTAINER_TYPES, lpszWord, KESTREL_HWRAID_TYPE_UNKNOWN);
}

int Disk_Partition_SetMultilevelContainerType(aac_partition *p, const char *lpszWord)
{
	return p->nMultilevelContainerType =
	               CodeOfKey(MULTILEVEL_TYPES, lpszWord, KESTREL_HWRAID_PART_MULTILEVEL_TYPE_UNKNOWN);
}

int Disk_Partition_SetReadWriteAttr(aac_partition *p, const char *lpszWord)
{
	return p->nReadWriteAttribute = CodeOfKey(
		       ATTRIBUTES, lpszWord, KESTREL_HWRAID_PARTITION_READ_WRITE_ATTR_CAN_NOT_READ_OR_WRITE);
}

// ---- tasks ----

int Task_SetTaskID(aac_task *p, int nID)
{
	return p->TaskId = nID;
}

int Task_GetTaskID(const aac_task *p)
{
	return p->TaskId;
}

int Task_SetFunction(aac_task *p, const char *lpszWord)
{
	return p->Function = CodeOfWord(g_szTaskFunction, lpszWord);
}

const char *Task_GetFunction(const aac_task *p)
{
	return WordOfCode(g_szTaskFunction, p->Function);
}

float Task_SetDone(aac_task *p, float fDone)
{
	return p->Done = fDone;
}

float Task_GetDone(const aac_task *p)
{
	return p->Done;
}

int Task_SetContainerID(aac_task *p, int nID)
{
	return p->ContainerID = nID;
}

int Task_GetContainerID(const aac_task *p)
{
	return p->ContainerID;
}

int Task_SetState(aac_task *p, const char *lpszWord)
{
	return p->State = CodeOfWord(g_szTaskState, lpszWord);
}

const char *Task_GetState(const aac_task *p)
{
	return WordOfCode(g_szTaskState, p->State);
}
