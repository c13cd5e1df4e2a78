// SPDX-License-Identifier: Apache-2.0
// How the disks behind a controller are used: their free areas, and the pieces that containers use.
//
//   Executing: disk show space
//   Scsi C:ID:L Usage      Size
//   ----------- ---------- -------------
//     0:00:0     Container 64.0KB:33.8GB
//     0:00:0     Free      33.8GB:59.0KB
//
// Rows of "disk show partition" hold address, offset and size, container, its type, the container above, its
// type, and access.
#include "base/record_list.h"
#include "hwraid/aacraid/aac_disk.h"
#include "hwraid/aacraid/aac_disk_run.h"
#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_output.h"
#include "hwraid/aacraid/aac_records.h"
#include "hwraid/aacraid/aac_scan.h"
#include "hwraid/aacraid/aac_text.h"
#include "hwraid/aacraid/aac_tool.h"

#include <string.h>

// A size or place on a disk, as the tables write it: a number and its unit, such as 33.8GB.
struct DiskSpan {
	float fValue;
	char szUnit[8];

	// Anything but "GB" and "MB" is taken as kilobytes.
	double Kilobytes() const
	{
		if (Including(szUnit, "GB"))
			return static_cast<double>(fValue) * 1024 * 1024;
		if (Including(szUnit, "MB"))
			return static_cast<double>(fValue) * 1024;
		return static_cast<double>(fValue);
	}
};

// ---- free areas ----

// Such as "0:00:0 ".
static bool IsSpaceRow(const char *lpszLine)
{
	return strlen(lpszLine) > 6 && lpszLine[1] == ':' && lpszLine[4] == ':' && IS_IN(lpszLine[6], " \t");
}

struct DiskAddress {
	int nChannel;
	int nID;
	int nLun;
};

// Appends the row, if it is a free area of the disk.
static void TakeSpaceRow(const char *lpszRow, const DiskAddress &asked, RecordList<aac_space> *pList)
{
	DiskAddress address = {-1, -1, -1};
	char szUsage[32] = "";
	DiskSpan start = {-1, ""};
	DiskSpan size = {-1, ""};
	FieldScan(lpszRow)
		.Int(&address.nChannel, 1)
		.Literal(':')
		.Int(&address.nID, 2)
		.Literal(':')
		.Int(&address.nLun, 1)
		.Word(szUsage)
		.Float(&start.fValue)
		.Word(start.szUnit, 2)
		.Literal(':')
		.Float(&size.fValue)
		.Word(size.szUnit);
	if (address.nChannel != asked.nChannel || address.nID != asked.nID || address.nLun != asked.nLun ||
	    !Including(szUsage, "Free"))
		return;
	aac_space *pSpace = pList->append(new aac_space());
	Disk_Space_SetOffset(pSpace, NearestInt(start.Kilobytes()));
	Disk_Space_SetFreeSpace(pSpace, NearestInt(size.Kilobytes()));
}

int AnalyzeDiskShowSpaceFile(const char *lpszFile, int nChannel, int nID, int nLun, aac_space **pHead)
{
	*pHead = nullptr;
	RecordList<aac_space> list(pHead);
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	while (output.Next()) {
		if (Including(output.Line(), "Command Error"))
			return CodeOfErrorLine(output.Line(), DEVICE_ERRORS);
		if (IsSpaceRow(output.Line()))
			TakeSpaceRow(output.Line(), {nChannel, nID, nLun}, &list);
	}
	return 0;
}

int Aac_Disk_Show_Space(const char *lpszControllerName, int nC_ID_L, aac_space **pHead)
{
	*pHead = nullptr;
	ToolScript script(lpszControllerName);
	script.Add("disk show space ");
	script.AddAddress(nC_ID_L);
	script.Add("\n                                            \n    \nexit\n        \n");
	const ToolRun run(script, DISK_TRACES);
	if (!run.Answer())
		return AAC_RUN_FAILED;
	const int nParsed =
		AnalyzeDiskShowSpaceFile(run.Answer(), GetChannelFromC_ID_L(nC_ID_L),
	                                 GetIDFromC_ID_L(nC_ID_L), GetLunFromC_ID_L(nC_ID_L), pHead);
	// compat: traced in the words of the defect operation, which who reads traces looks for; which of the
	// two it was only the script's command tells.
	return CountOrCode(TraceParsed("AnalyzeDiskShowDefectFile", nParsed), pHead);
}

int Aac_Clear_Disk_Space_List(aac_space *pHead)
{
	release_records(pHead);
	return 0;
}

// ---- pieces ----

// Such as "0:00:0".
static bool IsPartitionRow(const char *lpszLine)
{
	return strlen(lpszLine) > 4 && Is_0_9(lpszLine[0]) && lpszLine[1] == ':' && lpszLine[4] == ':';
}

static aac_partition *MakePartition(const char *lpszRow)
{
	int nChannel = 0;
	int nID = 0;
	int nLun = 0;
	DiskSpan start = {0, ""};
	DiskSpan size = {0, ""};
	char szType[8] = "";
	char szMultilevelType[8] = "";
	char szAccess[8] = "";
	auto *pPartition = new aac_partition();
	FieldScan(lpszRow)
		.Int(&nChannel)
		.Literal(':')
		.Int(&nID)
		.Literal(':')
		.Int(&nLun)
		.Float(&start.fValue)
		.Word(start.szUnit, 2)
		.Literal(':')
		.Float(&size.fValue)
		.Word(size.szUnit, 2)
		.Int(&pPartition->bContainerID)
		.Word(szType, 7)
		.Int(&pPartition->nMultilevelContainerID)
		.Word(szMultilevelType, 7)
		.Word(szAccess);
	Disk_Partition_Set_C_ID_L(pPartition, GetC_ID_L(nChannel, nID, nLun));
	Disk_Partition_Set_OffSet(pPartition, NearestLong(start.Kilobytes()));
	pPartition->nSize = NearestLong(size.Kilobytes());
	Disk_Partition_SetContainerType(pPartition, szType);
	Disk_Partition_SetMultilevelContainerType(pPartition, szMultilevelType);
	Disk_Partition_SetReadWriteAttr(pPartition, szAccess);
	return pPartition;
}

int AnalyzePartitionFile(const char *lpszFile, aac_partition **pHead)
{
	*pHead = nullptr;
	RecordList<aac_partition> list(pHead);
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	bool bEcho = false;
	bool bRule = false;
	while (output.Read()) {
		const char *lpszLine = output.Line();
		// What stands above the table may hold such lines.
		if (bEcho && bRule && lpszLine[0] == '\0')
			return 0;
		if (Including(lpszLine, "Command Error"))
			return CodeOfErrorLine(lpszLine, DEVICE_ERRORS);
		if (bEcho && bRule && IsPartitionRow(lpszLine))
			list.append(MakePartition(lpszLine));
		bEcho = bEcho || Including(lpszLine, "Executing: disk show partition");
		bRule = bRule || Including(lpszLine, "------");
	}
	return 0;
}

int Aac_Disk_Show_Partition(const char *lpszControllerName, aac_partition **pHead)
{
	*pHead = nullptr;
	ToolScript script(lpszControllerName);
	script.Add("disk show partition\n                \n    \n     \n    \n       \n      \n    \nexit\n");
	const ToolRun run(script, DISK_TRACES);
	if (!run.Answer())
		return AAC_RUN_FAILED;
	return CountOrCode(TraceParsed("AnalyzePartitionFile", AnalyzePartitionFile(run.Answer(), pHead)),
	                   pHead);
}

int Aac_Clear_Disk_Partition_List(aac_partition *pHead)
{
	release_records(pHead);
	return 0;
}
