// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/hsa_20_need.h"

#include "base/record_list.h"
#include "hwraid/aacraid/aac_container.h"
#include "hwraid/aacraid/aac_controller.h"
#include "hwraid/aacraid/aac_disk.h"

#include <stdio.h>
#include <string.h>

// ---- records ----

// compat: formed in 32 bits and only then widened, as agents in the field expect: from 2 GiB on only the low
// 32 bits are right.
static long long NarrowProduct(int nValue, int nFactor)
{
	return static_cast<int>(static_cast<unsigned>(nValue) * static_cast<unsigned>(nFactor));
}

static void CopyContainer(const aac_container &from, tagHwRaid *pTo)
{
	pTo->nRaidID = from.nCntnerID;
	pTo->nDiskNumber = from.nDiskNumber;
	static_assert(sizeof pTo->nPosition == sizeof from.C_ID_L, "slot for slot");
	memcpy(pTo->nPosition, from.C_ID_L, sizeof pTo->nPosition);
	pTo->RaidType = from.Container_Type;
	pTo->nTotalSize = NarrowProduct(from.TotalSize, 1048576);
	pTo->nStripeSize = NarrowProduct(from.StripeSize, 1024);
	pTo->Usage = from.Usage;
	pTo->nHotSpare = from.HotSpare;
	// compat: eight characters, as agents expect: labels that differ later look alike.
	snprintf(pTo->szLabel, sizeof pTo->szLabel, "%.8s", from.Label);
}

static void CopyDisk(const aac_disk &from, __tag_Hard_Raid_Disk *pTo)
{
	pTo->nPosition = from.C_ID_L;
	snprintf(pTo->szVendor, sizeof pTo->szVendor, "%.32s", from.VendorID);
	snprintf(pTo->szModel, sizeof pTo->szModel, "%.32s", from.ProductID);
	// compat: unchanged, though the exported enumeration counts from one more: a disk arrives as its
	// unknown, 0.
	pTo->DeviceType = from.Device_Type;
	pTo->nBlocks = from.Blocks;
	pTo->nBytesPerBlock = from.BytesPerBlock;
	pTo->Usage = from.Usage;
	pTo->Shared = from.Shared;
	pTo->nRate = from.Rate;
}

static void CopySpace(const aac_space &from, __tag_Hard_Raid_Space *pTo)
{
	pTo->nOffset = NarrowProduct(from.nOffset, 1024);
	pTo->nFreeSpace = NarrowProduct(from.nFreeSpace, 1024);
}

static long long KilobytesToBytes(long long nKilobytes)
{
	return static_cast<long long>(static_cast<unsigned long long>(nKilobytes) * 1024);
}

static void CopyPartition(const aac_partition &from, tag_HwRaid_Partition *pTo)
{
	pTo->nPosition = from.C_ID_L;
	pTo->nOffset = KilobytesToBytes(from.nOffset);
	pTo->nSize = KilobytesToBytes(from.nSize);
	pTo->bRaidID = from.bContainerID;
	pTo->RaidType = from.ContainerType;
	pTo->nMultilevelRaidID = from.nMultilevelContainerID;
	pTo->MultilevelType = from.nMultilevelContainerType;
	pTo->ReadWriteAttribute = from.nReadWriteAttribute;
}

// ---- queries ----

// A query's argument.
struct Request {
	int nC_ID_L;          // 0 where the query names no disk
	const char *lpszName; // of the controller; null where the query names none
};

// compat: an empty name, or one with a control character, is refused: in the tool's script a line end would
// begin a command of its own.
static bool IsControllerName(const char *lpszName)
{
	if (!lpszName || lpszName[0] == '\0')
		return false;
	for (const char *p = lpszName; *p != '\0'; p++)
		if (static_cast<unsigned char>(*p) < ' ' || *p == '\x7f')
			return false;
	return true;
}

// One operation's records become exported ones, in the same order.
template <class Internal, class Exported>
static int Answer(const Request &request, int (*pfnOperation)(const Request &, Internal **),
                  void (*pfnCopy)(const Internal &, Exported *), void **ppList, int *pnLength)
{
	Internal *pRecord = nullptr;
	if (!IsControllerName(request.lpszName) || pfnOperation(request, &pRecord) < 0) {
		release_records(pRecord);
		return -1;
	}
	Exported *pHead = nullptr;
	RecordList<Exported> list(&pHead);
	while (pRecord) {
		pfnCopy(*pRecord, list.append(new Exported()));
		Internal *pNext = pRecord->next;
		delete pRecord;
		pRecord = pNext;
	}
	*ppList = pHead;
	*pnLength = list.count();
	return 0;
}

static int ListContainers(const Request &request, aac_container **pHead)
{
	return Aac_Get_Container_List(request.lpszName, pHead);
}

static int QueryContainers(const Request &request, void **ppList, int *pnLength)
{
	return Answer<aac_container, tagHwRaid>(request, ListContainers, CopyContainer, ppList, pnLength);
}

static int ListDisks(const Request &request, aac_disk **pHead)
{
	return Aac_Get_Disk_List(request.lpszName, pHead);
}

static int QueryDisks(const Request &request, void **ppList, int *pnLength)
{
	return Answer<aac_disk, __tag_Hard_Raid_Disk>(request, ListDisks, CopyDisk, ppList, pnLength);
}

static int ListSpace(const Request &request, aac_space **pHead)
{
	return Aac_Disk_Show_Space(request.lpszName, request.nC_ID_L, pHead);
}

static int QuerySpace(const Request &request, void **ppList, int *pnLength)
{
	return Answer<aac_space, __tag_Hard_Raid_Space>(request, ListSpace, CopySpace, ppList, pnLength);
}

static int ListPartitions(const Request &request, aac_partition **pHead)
{
	return Aac_Disk_Show_Partition(request.lpszName, pHead);
}

static int QueryPartitions(const Request &request, void **ppList, int *pnLength)
{
	return Answer<aac_partition, tag_HwRaid_Partition>(request, ListPartitions, CopyPartition, ppList,
	                                                   pnLength);
}

// The records of the operation are handed out as they are.
static int QueryControllers(const Request &, void **ppList, int *pnLength)
{
	aac_controller *pHead = nullptr;
	const int nResult = Aac_Get_Controller_List(&pHead);
	if (nResult < 0) {
		Aac_Clear_Controller_List(pHead);
		return -1;
	}
	*ppList = pHead;
	*pnLength = nResult;
	return 0;
}

// ---- codes ----

static Request NameOnly(const char *lpszData)
{
	return {0, lpszData};
}

static Request DiskAndName(const char *lpszData)
{
	Request request = {0, nullptr};
	if (lpszData) {
		memcpy(&request.nC_ID_L, lpszData, sizeof request.nC_ID_L);
		request.lpszName = lpszData + sizeof request.nC_ID_L;
	}
	return request;
}

template <class Record> static void Release(void **ppList)
{
	release_records(static_cast<Record *>(*ppList));
	*ppList = nullptr;
}

static constexpr struct {
	UINT nQuery; // its release code is one more
	Request (*pfnRead)(const char *lpszData);
	int (*pfnQuery)(const Request &request, void **ppList, int *pnLength);
	void (*pfnRelease)(void **ppList);
} KINDS[] = {
	{CMD_GET_CONTAINERS, NameOnly, QueryContainers, Release<tagHwRaid>},
	{CMD_GET_RAID_DISKS, NameOnly, QueryDisks, Release<__tag_Hard_Raid_Disk>},
	{CMD_GET_RAID_SPACE, DiskAndName, QuerySpace, Release<__tag_Hard_Raid_Space>},
	{CMD_GET_RAID_PARTITIONS, NameOnly, QueryPartitions, Release<tag_HwRaid_Partition>},
	{CMD_GET_CONTROLLERS, NameOnly, QueryControllers, Release<aac_controller>},
};

int HWRAID__GetItemInfo(const IPMICOMMAND *pCmd, void **ppList, int *pnLength)
{
	*pnLength = 0;
	for (const auto &kind : KINDS) {
		if (pCmd->nCommand != kind.nQuery && pCmd->nCommand != kind.nQuery + 1)
			continue;
		kind.pfnRelease(ppList);
		if (pCmd->nCommand != kind.nQuery)
			return 0;
		return kind.pfnQuery(kind.pfnRead(pCmd->szData), ppList, pnLength);
	}
	return 0;
}
