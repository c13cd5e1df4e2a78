// The tool's answer to "controller list":
//
//   Executing: controller list
//   Adapter Name  Adapter Type           Availability  Clustering
//   ------------  ---------------------  ------------  ----------
//   aac0          EXAMPLE 2200S          read/write    No
//
// Two blanks or more separate the fields of a row; one belongs inside a field.
#include "hwraid/aacraid/aac_controller.h"

#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_tool.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <string.h>

static constexpr char SCRIPT[] = "controller list\n                                          \n    \nexit\n";

static constexpr ToolTraces TRACES = {
	[](int, const char *lpszCommand) { OutputDebugString("system call return != 0: %s\n", lpszCommand); },
	[](const char *lpszFile) { OutputDebugString("stat file return < 0: %s\n", lpszFile); },
};

// The lines before the echo of the command. 0 when the echo or the end has been reached, or an error's code.
static int FindEcho(ToolOutput *pOutput)
{
	while (pOutput->Next()) {
		if (Including(pOutput->Line(), "Executing: controller list"))
			return 0;
		if (Including(pOutput->Line(), "Command Error"))
			return CodeOfErrorLine(pOutput->Line());
	}
	return 0;
}

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

static void ReadTable(ToolOutput *pOutput, aac_controller **ppNext)
{
	bool bInTable = false;
	int nRows = 0;
	while (pOutput->Next()) {
		const char *lpszLine = pOutput->Line();
		if (Including(lpszLine, "----")) {
			bInTable = true;
			continue;
		}
		if (!bInTable)
			continue;
		// The tool's prompt, or the blank line above it.
		if (Including(lpszLine, "CLI") || lpszLine[0] == '\n')
			return;
		*ppNext = MakeController(lpszLine, nRows++);
		ppNext = &(*ppNext)->next;
	}
}

int AnalyzeControllerFile(const char *lpszFile, aac_controller **pHead)
{
	*pHead = nullptr;
	ToolOutput output(lpszFile);
	if (!output.IsOpen())
		return -1;
	const int nError = FindEcho(&output);
	if (nError == 0)
		ReadTable(&output, pHead);
	return nError;
}

static int CountControllers(const aac_controller *pHead)
{
	int nCount = 0;
	for (; pHead; pHead = pHead->next)
		nCount++;
	return nCount;
}

int Aac_Get_Controller_List(aac_controller **pHead)
{
	const auto Parse = [](const char *lpszFile, void *pContext) {
		return AnalyzeControllerFile(lpszFile, static_cast<aac_controller **>(pContext));
	};
	*pHead = nullptr;
	const int nResult = RunTool(SCRIPT, TRACES, Parse, pHead);
	if (nResult == 0)
		return CountControllers(*pHead);
	OutputDebugString("AnalyzeControllerFile return != 0 == %d.\n", nResult);
	return nResult;
}

static const aac_controller *FindController(const aac_controller *pHead, int nPosition)
{
	while (pHead && nPosition-- > 0)
		pHead = pHead->next;
	if (!pHead)
		OutputDebugString("find pointer is NULL, so return -1...\n");
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
	const int nResult = pFound ? 0 : -1;
	Aac_Clear_Controller_List(pHead);
	OutputDebugString("Aac_Get_Controller_Name reutrn %d\n", nResult);
	return nResult;
}

int Aac_Clear_Controller_List(aac_controller *pHead)
{
	while (pHead) {
		aac_controller *pNext = pHead->next;
		delete pHead;
		pHead = pNext;
	}
	return 0;
}
