// SPDX-License-Identifier: Apache-2.0
// The tool's answer to "task list":
//
//   Executing: task list
//   TaskId Function  Done%  Container State Specific1 Specific2
//   ------ -------- ------- --------- ----- --------- ---------
//     106   Bld/Vfy   0.0%      1      RUN   00000000  00000000
#include "hwraid/aacraid/aac_task.h"

#include "base/record_list.h"
#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_output.h"
#include "hwraid/aacraid/aac_records.h"
#include "hwraid/aacraid/aac_scan.h"
#include "hwraid/aacraid/aac_text.h"
#include "hwraid/aacraid/aac_tool.h"
#include "hwraid/aacraid/output_debug_string.h"

static void TraceCommandFailed(int nStatus, const char *lpszCommand)
{
	OutputDebugString("system call return :%d, %s\n", nStatus, lpszCommand);
}

static void TraceAnswerMissing(const char *lpszFile)
{
	OutputDebugString("state the file return < 0. %s\n", lpszFile);
}

static constexpr ToolTraces TRACES = {TraceCommandFailed, TraceAnswerMissing};

static aac_task *MakeTask(char *lpszRow)
{
	int nTask = -1;
	float fPercent = 100;
	int nContainer = 0;
	char szFunction[32] = "";
	char szState[32] = "";
	ReplaceSubString(lpszRow, "%", "");
	FieldScan(lpszRow).Int(&nTask).Word(szFunction).Float(&fPercent).Int(&nContainer).Word(szState);

	auto *pTask = new aac_task();
	Task_SetTaskID(pTask, nTask);
	Task_SetFunction(pTask, szFunction);
	Task_SetDone(pTask, fPercent / 100);
	Task_SetContainerID(pTask, nContainer);
	Task_SetState(pTask, szState);
	return pTask;
}

int AnalyzeTaskFile(const char *lpszFile, aac_task **pHead)
{
	*pHead = nullptr;
	RecordList<aac_task> list(pHead);
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return AAC_RUN_FAILED;
	int nError;
	FindEcho(&output, "Executing: task list", &nError);
	if (nError != 0)
		return nError;
	for (ToolTable table(&output); table.Next();)
		list.append(MakeTask(output.Line()));
	return 0;
}

static int ListTasks(const char *lpszControllerName, aac_task **pHead)
{
	ToolScript script(lpszControllerName);
	script.Add("task list \n                 \n    \nexit         \n\n\n\n");
	const ToolRun run(script, TRACES);
	if (!run.Answer())
		return AAC_RUN_FAILED;
	const int nParsed = AnalyzeTaskFile(run.Answer(), pHead);
	OutputDebugString("AnalyzeTaskFile return %d.\n", nParsed);
	return CountOrCode(nParsed, pHead);
}

int Aac_Get_Task_List(const char *lpszControllerName, aac_task **pHead)
{
	*pHead = nullptr;
	const int nResult = ListTasks(lpszControllerName, pHead);
	OutputDebugString("return :%d.\n", nResult);
	return nResult;
}

aac_task *Aac_Get_Container_Task(const char *lpszControllerName, int nContainerID)
{
	aac_task *pTask = nullptr;
	if (Aac_Get_Task_List(lpszControllerName, &pTask) <= 0) {
		Aac_Clear_Task_List(pTask);
		return nullptr;
	}
	while (pTask && Task_GetContainerID(pTask) != nContainerID) {
		aac_task *pNext = pTask->next;
		delete pTask;
		pTask = pNext;
	}
	// compat: with all tasks behind it, as callers release them: one that frees the first alone leaks the
	// others.
	return pTask;
}

int Aac_Clear_Task_List(aac_task *pHead)
{
	release_records(pHead);
	return 0;
}
