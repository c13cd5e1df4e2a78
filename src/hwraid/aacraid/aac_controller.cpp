// SPDX-License-Identifier: Apache-2.0
// The tool's answer to "controller list":
//
//   Executing: controller list
//   Adapter Name  Adapter Type           Availability  Clustering
//   ------------  ---------------------  ------------  ----------
//   aac0          EXAMPLE 2200S          read/write    No
//
// Two blanks or more separate the fields of a row; one belongs inside a field.
#include "hwraid/aacraid/aac_controller.h"

#include "base/record_list.h"
#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_output.h"
#include "hwraid/aacraid/aac_records.h"
#include "hwraid/aacraid/aac_text.h"
#include "hwraid/aacraid/aac_tool.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <string.h>

static void TraceCommandFailed(int, const char *lpszCommand)
{
	OutputDebugString("system call return != 0: %s\n", lpszCommand);
}

static void TraceAnswerMissing(const char *lpszFile)
{
	OutputDebugString("stat file return < 0: %s\n", lpszFile);
}

static constexpr ToolTraces TRACES = {TraceCommandFailed, TraceAnswerMissing};

static aac_controller *MakeController(const char *lpszRow, int nOrdinal)
{
	auto *pController = new aac_controller();
	Controller_SetControllerID(pController, nOrdinal);
	Controller_SetControllerName(pController, TheNthSubString(lpszRow, 1, ' ', 2));
	Controller_SetControllerType(pController, TheNthSubString(lpszRow, 2, ' ', 2));
	Controller_SetControllerAvailability(pController, TheNthSubString(lpszRow, 3, ' ', 2));
	Controller_SetControllerClustering(pController, TheNthSubString(lpszRow, 4, ' ', 2));
	return pController;
}

int AnalyzeControllerFile(const char *lpszFile, aac_controller **pHead)
{
	*pHead = nullptr;
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	int nError;
	FindEcho(&output, "Executing: controller list", &nError);
	if (nError != 0)
		return nError;
	*pHead = nullptr;
	RecordList<aac_controller> list(pHead);
	for (ToolTable table(&output); table.Next();)
		list.append(MakeController(output.Line(), list.count()));
	return 0;
}

int Aac_Get_Controller_List(aac_controller **pHead)
{
	*pHead = nullptr;
	ToolScript script;
	script.Add("controller list\n                                          \n    \nexit\n");
	const ToolRun run(script, TRACES);
	if (!run.Answer())
		return AAC_RUN_FAILED;
	const int nParsed = AnalyzeControllerFile(run.Answer(), pHead);
	if (nParsed != 0)
		OutputDebugString("AnalyzeControllerFile return != 0 == %d.\n", nParsed);
	return CountOrCode(nParsed, pHead);
}

static const aac_controller *FindController(const aac_controller *pHead, int nPosition)
{
	for (; nPosition > 0; nPosition--) {
		if (!pHead) {
			OutputDebugString("find pointer is NULL, so return -1...\n");
			return nullptr;
		}
		pHead = pHead->next;
	}
	if (!pHead)
		OutputDebugString("After while loop, find pointer is NULL\n");
	return pHead;
}

int Aac_Get_Controller_Name(char *lpszControllerName, int nPosition)
{
	lpszControllerName[0] = '\0';
	aac_controller *pHead = nullptr;
	const aac_controller *pFound = nullptr;
	if (Aac_Get_Controller_List(&pHead) > 0)
		pFound = FindController(pHead, nPosition);
	if (pFound)
		memcpy(lpszControllerName, pFound->Adapter_Name, sizeof pFound->Adapter_Name);
	const int nResult = pFound ? AAC_OK : AAC_RUN_FAILED;
	Aac_Clear_Controller_List(pHead);
	OutputDebugString("Aac_Get_Controller_Name reutrn %d\n", nResult);
	return nResult;
}

int Aac_Clear_Controller_List(aac_controller *pHead)
{
	release_records(pHead);
	return 0;
}
