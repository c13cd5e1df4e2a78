// SPDX-License-Identifier: Apache-2.0
// The sub-menu of the management interface: asks and releases as an agent does, code by code.
//
// A query's list is kept until its release code is chosen or the query asked again, for that is what there is
// to try. What is still kept when the user leaves goes back with its release code: nothing leaks, and the
// next visit begins without lists.
#include "hwraid/aac_mycli/aac_mycli.h"

#include "hwraid/aac_mycli/aac_menu.h"
#include "hwraid/aac_mycli/aac_print.h"
#include "hwraid/aacraid/hsa_20_need.h"

#include <iterator>
#include <string.h>

// ---- records ----

static void PrintController(const aac_controller &controller)
{
	fprintf(stderr, "Position:%d\n", controller.ControllerID);
	fprintf(stderr, "Adapter_Name:%s\n", controller.Adapter_Name);
	fprintf(stderr, "Adapter_Type:%s\n", controller.Adapter_Type);
	fprintf(stderr, "Availability:%d, ", controller.Availability);
	fprintf(stderr, "Clustering:%d, \n", controller.Clustering);
}

static void PrintPosition(int nPosition)
{
	fprintf(stderr, "nPosition:%08x\n", static_cast<unsigned>(nPosition));
}

static void PrintDisk(const HWRAID_DISK_LIST &disk)
{
	PrintPosition(disk.nPosition);
	fprintf(stderr, "szVendor:%s\n", disk.szVendor);
	fprintf(stderr, "szModel:%s\n", disk.szModel);
	fprintf(stderr, "DeviceType:%d\n", disk.DeviceType);
	fprintf(stderr, "nBlocks:%lld\n", disk.nBlocks);
	fprintf(stderr, "nBytesPerBlock:%d\n", disk.nBytesPerBlock);
	fprintf(stderr, "Usage:%d\n", disk.Usage);
	fprintf(stderr, "Shared:%d\n", disk.Shared);
	fprintf(stderr, "nRate:%d\n", disk.nRate);
}

// compat: the records hold no more than 32 bits with a sign, so that 2 GiB and more may show as less than
// nothing.
static void PrintSpace(const HWRAID_SPACE_LIST &space)
{
	fprintf(stderr, "nOffset:%d K\n", static_cast<int>(space.nOffset / 1024));
	fprintf(stderr, "nFreeSpace:%d K\n", static_cast<int>(space.nFreeSpace / 1024));
}

static void PrintPartition(const HWRAID_PARTITION_LIST &partition)
{
	PrintPosition(partition.nPosition);
	fprintf(stderr, "nOffset:%lld bytes\n", partition.nOffset);
	fprintf(stderr, "nSize:%lld bytes\n", partition.nSize);
	fprintf(stderr, "bRaidID:%d\n", partition.bRaidID);
	fprintf(stderr, "RaidType:%d\n", partition.RaidType);
	fprintf(stderr, "nMultilevelRaidID:%d\n", partition.nMultilevelRaidID);
	fprintf(stderr, "MultilevelType:%d\n", partition.MultilevelType);
	fprintf(stderr, "ReadWriteAttribute:%d\n", partition.ReadWriteAttribute);
}

static void PrintRaid(const HWRAID_LIST &raid)
{
	fprintf(stderr, "nRaidID:%d\n", raid.nRaidID);
	fprintf(stderr, "nDiskNumber:%d\n", raid.nDiskNumber);
	for (const int nMember : raid.nPosition)
		if (nMember != AAC_NO_MEMBER)
			PrintPosition(nMember);
	fprintf(stderr, "RaidType:%d\n", raid.RaidType);
	fprintf(stderr, "nTotalSize:%lld bytes\n", raid.nTotalSize);
	fprintf(stderr, "nStripeSize:%lld bytes\n", raid.nStripeSize);
	fprintf(stderr, "Usage:%d\n", raid.Usage);
	fprintf(stderr, "nHotSpare:%08x\n", static_cast<unsigned>(raid.nHotSpare));
	fprintf(stderr, "szLabel:%s\n", raid.szLabel);
}

template <class Record, void (*print)(const Record &)>
static void PrintList(const void *pHead, const char *lpszRule)
{
	PrintRecords(static_cast<const Record *>(pHead), print, lpszRule);
}

// ---- arguments ----

// A disk's address, and the controller's name behind it.
typedef char Argument[sizeof(int) + sizeof CONTROLLER];

// Each fills an argument, all zero on entry. False when the input has ended.
static bool FillNothing(Argument &)
{
	return true;
}

static bool FillName(Argument &szData)
{
	memcpy(szData, CONTROLLER, sizeof CONTROLLER);
	return true;
}

static bool FillDiskAndName(Argument &szData)
{
	int nC_ID_L;
	if (!AskDisk("Disk", &nC_ID_L))
		return false;
	memcpy(szData, &nC_ID_L, sizeof nC_ID_L);
	memcpy(szData + sizeof nC_ID_L, CONTROLLER, sizeof CONTROLLER);
	return true;
}

// ---- codes ----

static constexpr struct {
	const char *lpszName;
	UINT nQuery; // its release code is one more
	bool (*pfnFill)(Argument &szData);
	void (*pfnPrint)(const void *pHead, const char *lpszRule);
	const char *lpszRule;
} KINDS[] = {
	{"controller", CMD_GET_CONTROLLERS, FillNothing, PrintList<aac_controller, PrintController>, RULE},
	{"disk", CMD_GET_RAID_DISKS, FillName, PrintList<HWRAID_DISK_LIST, PrintDisk>, RULE},
	{"space", CMD_GET_RAID_SPACE, FillDiskAndName, PrintList<HWRAID_SPACE_LIST, PrintSpace>, NO_RULE},
	{"partition", CMD_GET_RAID_PARTITIONS, FillName, PrintList<HWRAID_PARTITION_LIST, PrintPartition>,
         RULE},
	{"raid", CMD_GET_CONTAINERS, FillName, PrintList<HWRAID_LIST, PrintRaid>, RULE},
};

// One list of each kind; all null outside the sub-menu.
static void *g_pKept[std::size(KINDS)];

static int Send(UINT nCommand, char *lpszData, void **ppList, int *pnLength)
{
	IPMICOMMAND command;
	memset(&command, 0, sizeof command);
	command.nCommand = nCommand;
	command.szData = lpszData;
	return HWRAID__GetItemInfo(&command, ppList, pnLength);
}

static int Release(size_t nKind)
{
	int nLength;
	return Send(KINDS[nKind].nQuery + 1, nullptr, &g_pKept[nKind], &nLength);
}

// The choices, by row of KINDS. An argument that nobody finished leaves the kept list alone.
template <size_t kind> static void Get()
{
	Argument szData = {};
	if (!KINDS[kind].pfnFill(szData))
		return;
	int nLength;
	const int nResult = Send(KINDS[kind].nQuery, szData, &g_pKept[kind], &nLength);
	if (nResult < 0) {
		ReportFailure(nResult);
		return;
	}
	KINDS[kind].pfnPrint(g_pKept[kind], KINDS[kind].lpszRule);
	fprintf(stderr, "get %s return:%d, number = %d\n", KINDS[kind].lpszName, nResult, nLength);
}

template <size_t kind> static void Clear()
{
	fprintf(stderr, "clear %s return:%d\n", KINDS[kind].lpszName, Release(kind));
}

int do_with_hsa_intreface()
{
	static constexpr MenuRow ROWS[] = {
		{'1', Get<0>},   {'2', Get<1>},   {'3', Get<2>},   {'4', Get<3>},   {'5', Get<4>},
		{'6', Clear<0>}, {'7', Clear<1>}, {'8', Clear<2>}, {'9', Clear<3>}, {'a', Clear<4>},
	};
	static constexpr Menu MENU = {
		"\nPlease select:-1- controller  -2- disk  -3- space -4- partition  -5- raid  \n"
		"\t-6- clear controller -7- clear disk -8- clear space -9- clear partition -a- clear raid "
		"-0- quit\n",
		"Command>HSA>",
		"Unknown hsa command!\n",
		ROWS,
		std::size(ROWS),
	};
	const int nResult = RunMenu(MENU);
	for (size_t i = 0; i < std::size(KINDS); i++)
		Release(i);
	return nResult;
}
