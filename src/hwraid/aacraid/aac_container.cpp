// SPDX-License-Identifier: Apache-2.0
// Answers of the tool to the commands about one container: most are a line that begins with "Command Error",
// or none; two are tables.
//
//   Executing: container show failover 0
//   Container    Scsi C:ID:L
//   --------- ----------------------------------
//       0      0:02:0
#include "hwraid/aacraid/aac_container.h"

#include "base/record_list.h"
#include "hwraid/aacraid/aac_container_list.h"
#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_output.h"
#include "hwraid/aacraid/aac_records.h"
#include "hwraid/aacraid/aac_scan.h"
#include "hwraid/aacraid/aac_text.h"
#include "hwraid/aacraid/aac_tool.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <stdio.h>
#include <string.h>

// ---- scripts ----

// The lines of blanks answer the tool's pager, however long the answer is.
static void AddClosing(ToolScript *pScript)
{
	pScript->Add("                                           \n    \nexit\n");
}

static void AddFailoverCommand(ToolScript *pScript, const char *lpszVerb, int nContainerID, int nC_ID_L)
{
	pScript->Add("container %s failover %d ", lpszVerb, nContainerID);
	pScript->AddAddress(nC_ID_L);
	pScript->Add("\n");
}

// ---- answers that are an error or nothing ----

template <size_t rows> static int CodeOfFirstError(const char *lpszFile, const ToolError (&own)[rows])
{
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	while (output.Read())
		if (Including(output.Line(), "Command Error"))
			return CodeOfErrorLine(output.Line(), own);
	return 0;
}

int AnalyzeContainerDeleteFile(const char *lpszFile)
{
	static constexpr ToolError DELETE_ERRORS[] = {
		{"<The specified container was not found", AAC_NO_SUCH_CONTAINER},
	};
	return CodeOfFirstError(lpszFile, DELETE_ERRORS);
}

int AnalyzeContainerSetFailoverFile(const char *lpszFile)
{
	static constexpr ToolError FAILOVER_ERRORS[] = {
		{"<The specified container was not found", AAC_NO_SUCH_CONTAINER},
		{"<The specified channel was not found", AAC_NO_SUCH_DEVICE},
		{"<The specified device was not found", AAC_NO_SUCH_DEVICE},
		{"<At least one of devices you specified is not a fialover disk", AAC_NOT_A_HOT_SPARE},
	};
	return CodeOfFirstError(lpszFile, FAILOVER_ERRORS);
}

// ---- the hot spare ----

static int HotSpareOf(const char *lpszLine)
{
	const char *lpszAddress = strchr(lpszLine, ':');
	if (!lpszAddress)
		return strstr(lpszLine, "--- No Devices Assigned ---") ? AAC_NO_HOT_SPARE
		                                                       : AAC_NO_SUCH_CONTAINER;
	// Back over the channel's digits to the character before them. compat: not over a 9, so that of
	// channel 19 only the 9 is read.
	while (lpszAddress != lpszLine && lpszAddress[-1] >= '0' && lpszAddress[-1] <= '8')
		lpszAddress--;
	if (lpszAddress != lpszLine)
		lpszAddress--;

	int nChannel = 0;
	int nID = 0;
	int nLun = 0;
	FieldScan scan(lpszAddress);
	scan.Int(&nChannel).Literal(':').Int(&nID).Literal(':').Int(&nLun);
	const int nC_ID_L = GetC_ID_L(nChannel, nID, nLun);
	// compat: a sum below 0 is an error of the tool, as it would pass for a code.
	return scan.IsGood() && nC_ID_L >= 0 ? nC_ID_L : AAC_TOOL_ERROR;
}

int AnalyzeContainerShowFailoverFile(const char *lpszFile)
{
	static constexpr ToolError SHOW_ERRORS[] = {
		{"<The specified container was not found", AAC_NO_SUCH_CONTAINER},
		{"<The specified channel was not found", AAC_NO_SUCH_DEVICE},
		{"<The specified device was not found", AAC_NO_SUCH_DEVICE},
	};
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	while (output.Read()) {
		if (Including(output.Line(), "Command Error"))
			return CodeOfErrorLine(output.Line(), SHOW_ERRORS);
		if (strstr(output.Line(), "--------- ----------------------------------"))
			return output.Read() ? HotSpareOf(output.Line()) : 0;
	}
	// compat: an answer without a table is the disk 0:0:0: a container without a hot spare seems to have
	// one.
	return 0;
}

// ---- the device name ----

static int CodeOfNameError(const char *lpszLine)
{
	const int nCode = CodeOfErrorLine(lpszLine);
	if (nCode != AAC_TOOL_ERROR)
		return nCode;
	if (strstr(lpszLine, "Container not found"))
		return AAC_NO_SUCH_CONTAINER;
	return strstr(lpszLine, "Command Error") ? AAC_TOOL_ERROR : 0;
}

static void CopyDeviceName(const char *lpszLine, char *lpszFilled)
{
	constexpr size_t NAME_SIZE = 256;
	// compat: the line end of a name that stands alone in its line stays: callers cut it off.
	const int nLength = static_cast<int>(strcspn(lpszLine, " \t"));
	snprintf(lpszFilled, NAME_SIZE, "%.*s", nLength, lpszLine);
}

int AnalyzeContainerDiskNameFile(const char *lpszFile, char *lpszFilled)
{
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	bool bInTable = false;
	while (output.Read()) {
		const char *lpszLine = output.Line();
		if (bInTable && lpszLine[0] == '/') {
			CopyDeviceName(lpszLine, lpszFilled);
			return 0;
		}
		bInTable = bInTable || Including(lpszLine, "Label Type");
		const int nError = bInTable ? 0 : CodeOfNameError(lpszLine);
		if (nError != 0) {
			OutputDebugString("return %d, REASON:%s\n", nError, lpszLine);
			return nError;
		}
	}
	return AAC_TOOL_ERROR;
}

// ---- operations ----

int Aac_Get_Container_List(const char *lpszControllerName, aac_container **pHead)
{
	*pHead = nullptr;
	ToolScript script(lpszControllerName);
	script.Add("container list\n");
	AddClosing(&script);
	// Stands while the parser asks for the hot spares, each in a run of its own.
	const ToolRun run(script, COMMAND_TRACES);
	if (!run.Answer())
		return AAC_RUN_FAILED;
	return CountOrCode(Get_Container_List_From_File(lpszControllerName, run.Answer(), pHead), pHead);
}

int Aac_Clear_Container_List(aac_container *pHead)
{
	release_records(pHead);
	return 0;
}

int Aac_Container_Delete(const char *lpszControllerName, int nAlwaysInitEvenIfHasData, int nContainerID)
{
	ToolScript script(lpszControllerName);
	script.Add("container delete /always=%s %d\n", nAlwaysInitEvenIfHasData ? "true" : "false",
	           nContainerID);
	AddClosing(&script);
	const ToolRun run(script, COMMAND_TRACES);
	return run.Answer() ? AnalyzeContainerDeleteFile(run.Answer()) : AAC_RUN_FAILED;
}

int Aac_Container_Set_Failover(const char *lpszControllerName, int nContainerID, int nC_ID_L)
{
	ToolScript script(lpszControllerName);
	AddFailoverCommand(&script, "set", nContainerID, nC_ID_L);
	AddClosing(&script);
	const ToolRun run(script, COMMAND_TRACES);
	return run.Answer() ? AnalyzeContainerSetFailoverFile(run.Answer()) : AAC_RUN_FAILED;
}

int Aac_Container_Show_Failover(const char *lpszControllerName, int nContainerID)
{
	ToolScript script(lpszControllerName);
	script.Add("container show failover %d\n", nContainerID);
	AddClosing(&script);
	const ToolRun run(script, COMMAND_TRACES);
	return run.Answer() ? AnalyzeContainerShowFailoverFile(run.Answer()) : AAC_RUN_FAILED;
}

int Aac_Container_Remove_Failover(const char *lpszControllerName, int nContainerID, int nC_ID_L)
{
	ToolScript script(lpszControllerName);
	AddFailoverCommand(&script, "remove", nContainerID, nC_ID_L);
	AddClosing(&script);
	const ToolRun run(script, COMMAND_TRACES);
	return run.Answer() ? AnalyzeContainerSetFailoverFile(run.Answer()) : AAC_RUN_FAILED;
}

int Aac_Get_Container_Corresponding_Disk_Name(const char *lpszControllerName, int nContainerID,
                                              char *lpszFilled)
{
	if (!lpszFilled)
		return AAC_RUN_FAILED;
	lpszFilled[0] = '\0';
	ToolScript script(lpszControllerName);
	script.Add("container list %d\n", nContainerID);
	AddClosing(&script);
	const ToolRun run(script, COMMAND_TRACES);
	return run.Answer() ? AnalyzeContainerDiskNameFile(run.Answer(), lpszFilled) : AAC_RUN_FAILED;
}
