// SPDX-License-Identifier: Apache-2.0
// The disks behind a controller. The rows of "disk list" are wide; one reads
//
//   0:00:0   Disk   N   ACME   EX103073FL3800   SA1B   143374805 512   Initialized   NO   320
//
// for address, device type, removable medium, vendor, product, revision, blocks, bytes of one, usage, shared,
// rate.
#include "hwraid/aacraid/aac_disk.h"

#include "base/record_list.h"
#include "hwraid/aacraid/aac_disk_run.h"
#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_output.h"
#include "hwraid/aacraid/aac_records.h"
#include "hwraid/aacraid/aac_scan.h"
#include "hwraid/aacraid/aac_text.h"
#include "hwraid/aacraid/aac_tool.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <string.h>

static void TraceCommandFailed(int nStatus, const char *lpszCommand)
{
	OutputDebugString("system call return :%d %s.\n", nStatus, lpszCommand);
}

static void TraceAnswerMissing(const char *lpszFile)
{
	OutputDebugString("stat file error:%s\n", lpszFile);
}

const ToolTraces DISK_TRACES = {TraceCommandFailed, TraceAnswerMissing};

int TraceParsed(const char *lpszParser, int nParsed)
{
	OutputDebugString("%s Return value is %d\n", lpszParser, nParsed);
	return nParsed;
}

// ---- disk list ----

static aac_disk *MakeDisk(char *lpszRow)
{
	static constexpr struct {
		const char *lpszWords;
		const char *lpszJoined;
	} TWO_WORDS[] = {{"Not Initialized", "Not_Initialized"},
	                 {"Write once", "Write_once"},
	                 {"Media changer", "Media_changer"}};
	for (const auto &row : TWO_WORDS)
		ReplaceSubString(lpszRow, row.lpszWords, row.lpszJoined);

	int nChannel = 0;
	int nID = 0;
	int nLun = 0;
	int nBlocks = 0; // compat: no wider: a larger disk shows as 2,147,483,647
	char szType[32] = "";
	char szVendor[32] = "";
	char szProduct[32] = "";
	char szUsage[32] = "";
	char szShared[32] = "";
	auto *pDisk = new aac_disk();
	FieldScan(lpszRow)
		.Int(&nChannel)
		.Literal(':')
		.Int(&nID)
		.Literal(':')
		.Int(&nLun)
		.Word(szType)
		.SkipWord() // removable medium
		.Word(szVendor)
		.Word(szProduct)
		.SkipWord() // revision
		.Int(&nBlocks)
		.Int(&pDisk->BytesPerBlock)
		.Word(szUsage)
		.Word(szShared)
		.Int(&pDisk->Rate);
	Disk_SetC_ID_L(pDisk, GetC_ID_L(nChannel, nID, nLun));
	Disk_SetDeviceType(pDisk, szType);
	Disk_SetVendorID(pDisk, szVendor);
	Disk_SetProductID(pDisk, szProduct);
	Disk_SetBlocks(pDisk, nBlocks);
	Disk_SetUsage(pDisk, szUsage);
	Disk_SetShared(pDisk, szShared);
	return pDisk;
}

int AnalyzeDiskFile(const char *lpszFile, aac_disk **pHead)
{
	*pHead = nullptr;
	RecordList<aac_disk> list(pHead);
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	int nError;
	if (!FindEcho(&output, "Executing: disk list", &nError))
		return nError;
	for (ToolTable table(&output); table.Next();)
		list.append(MakeDisk(output.Line()));
	return 0;
}

int Aac_Get_Disk_List(const char *lpszControllerName, aac_disk **pHead)
{
	*pHead = nullptr;
	ToolScript script(lpszControllerName);
	script.Add("disk list /full=true\n                                          \n    \nexit\n");
	const ToolRun run(script, DISK_TRACES);
	if (!run.Answer())
		return AAC_RUN_FAILED;
	return CountOrCode(TraceParsed("AnalyzeDiskFile", AnalyzeDiskFile(run.Answer(), pHead)), pHead);
}

int Aac_Clear_Disk_List(aac_disk *pHead)
{
	release_records(pHead);
	return 0;
}

// ---- disk initialize ----

static bool IsNoSuchDevice(const char *lpszLine)
{
	return strstr(lpszLine, DEVICE_ERRORS[0].lpszText) || strstr(lpszLine, DEVICE_ERRORS[1].lpszText);
}

int AnalyzeDiskInitializeFile(const char *lpszFile)
{
	// Counts the lines that are not blank: below 0 until the controller is opened, from AFTER_ECHO on
	// behind the command's echo, which may also come unopened.
	constexpr int AFTER_ECHO = 10000;
	int nLine = -10000;
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	while (output.Next()) {
		const char *lpszLine = output.Line();
		if (lpszLine[0] == '\n')
			continue;
		nLine++;
		const bool bError = strstr(lpszLine, "Command Error") != nullptr;
		if (nLine < 0 && Including(lpszLine, "Executing: open"))
			nLine = 0;
		// compat: a controller that cannot be opened is no failure: only the disk list tells whether
		// the disk has been initialised.
		if ((nLine == 1 && bError) || nLine > AFTER_ECHO + 1)
			return 0;
		if (nLine == AFTER_ECHO + 1 && bError)
			return IsNoSuchDevice(lpszLine) ? AAC_NO_SUCH_DEVICE : AAC_TOOL_ERROR;
		if (nLine < AFTER_ECHO && Including(lpszLine, "Executing: disk init"))
			nLine = AFTER_ECHO;
	}
	return 0;
}

static const char *TrueOrFalse(int nFlag)
{
	return nFlag ? "true" : "false";
}

int Aac_Disk_Initialize(const char *lpszControllerName, int nAlways, int nUnconditional, int nC_ID_L)
{
	ToolScript script(lpszControllerName);
	script.Add("disk initialize /always=%s /unconditional=%s ", TrueOrFalse(nAlways),
	           TrueOrFalse(nUnconditional));
	script.AddAddress(nC_ID_L);
	script.Add("\n                                          \n    \n  \n  \n  \n  \n  exit\n        \n");
	const ToolRun run(script, DISK_TRACES);
	if (!run.Answer())
		return AAC_RUN_FAILED;
	return TraceParsed("AnalyzeDiskInitializeFile", AnalyzeDiskInitializeFile(run.Answer()));
}

// ---- disk show defect ----

// The number behind the colon, or at the line's start when there is none.
static int CountIn(const char *lpszLine)
{
	const char *lpszColon = strchr(lpszLine, ':');
	int nCount = 0;
	FieldScan(lpszColon ? lpszColon + 1 : lpszLine).Int(&nCount);
	return nCount;
}

int AnalyzeDiskShowDefectFile(const char *lpszFile, int *pnPrimary, int *pnGrown)
{
	static constexpr ToolError DEFECT_ERRORS[] = {
		DEVICE_ERRORS[0],
		DEVICE_ERRORS[1],
		{"detected a bad status", AAC_BAD_DISK_STATUS},
		{"parameter error", AAC_BAD_PARAMETER},
	};
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	while (output.Next()) {
		const char *lpszLine = output.Line();
		if (Including(lpszLine, "Number of PRIMARY")) {
			*pnPrimary = CountIn(lpszLine);
		} else if (Including(lpszLine, "Number of GROWN")) {
			*pnGrown = CountIn(lpszLine);
			return 0;
		} else if (strstr(lpszLine, "Error:")) {
			return CodeOfErrorLine(lpszLine, DEFECT_ERRORS);
		}
	}
	return 0;
}

int Aac_Disk_Show_Defect(const char *lpszControllerName, int nC_ID_L, int *pnPrimary, int *pnGrown)
{
	*pnPrimary = -1;
	*pnGrown = -1;
	ToolScript script(lpszControllerName);
	script.Add("disk show defect ");
	script.AddAddress(nC_ID_L);
	script.Add("\n                                            \n    \nexit\n        \n");
	const ToolRun run(script, DISK_TRACES);
	if (!run.Answer())
		return AAC_RUN_FAILED;
	return TraceParsed("AnalyzeDiskShowDefectFile",
	                   AnalyzeDiskShowDefectFile(run.Answer(), pnPrimary, pnGrown));
}
