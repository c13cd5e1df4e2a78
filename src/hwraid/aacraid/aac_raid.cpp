// SPDX-License-Identifier: Apache-2.0
// A creation is one command, such as
//
//   container create new_mirror /label="data" /quick_init=true ((0,0,0),1024M) (0,1,0)
#include "hwraid/aacraid/aac_raid.h"

#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_output.h"
#include "hwraid/aacraid/aac_records.h"
#include "hwraid/aacraid/aac_tool.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <stdarg.h>
#include <string.h>

// ---- the command ----

static bool IsGiven(int nValue)
{
	return nValue != 0 && nValue != AAC_NOT_GIVEN;
}

static void AddStripeSize(ToolScript *pScript, int nStripsize)
{
	if (IsGiven(nStripsize))
		pScript->Add("/stripe_size=%dK ", nStripsize);
}

static void AddLabel(ToolScript *pScript, const char *lpszLabel)
{
	if (lpszLabel && lpszLabel[0] != '\0')
		pScript->Add("/label=\"%.16s\" ", lpszLabel);
}

static void AddQuickInit(ToolScript *pScript, int nQuick_init)
{
	if (nQuick_init)
		pScript->Add("/quick_init=true ");
}

static void AddDisk(ToolScript *pScript, int nC_ID_L)
{
	pScript->AddAddress(nC_ID_L);
	pScript->Add(" ");
}

// The space on the first disk is that on all.
static void AddFirstDisk(ToolScript *pScript, int nC_ID_L, int nSpace)
{
	pScript->Add("(");
	pScript->AddAddress(nC_ID_L);
	if (IsGiven(nSpace))
		pScript->Add(",%dM", nSpace);
	pScript->Add(") ");
}

static void AddContainer(ToolScript *pScript, int nContainerID)
{
	pScript->Add("%d ", nContainerID);
}

// A list that nobody has ended stops where the script is full.
static void AddFurther(ToolScript *pScript, va_list arguments, void (*pfnAdd)(ToolScript *, int))
{
	while (pScript->Fits()) {
		const int nArgument = va_arg(arguments, int);
		if (nArgument == AAC_NO_MORE)
			return;
		pfnAdd(pScript, nArgument);
	}
}

// ---- the answer ----

static constexpr ToolError CREATE_ERRORS[] = {
	{"<The specified chunk or stripe size is invalid", AAC_BAD_STRIPE_SIZE},
	{"bytes cannot be found on device", AAC_NO_SPACE},
	{"<The specified channel was not found on the controller", AAC_NO_SPACE},
	{"<The specified device was not found", AAC_NO_SPACE},
	{"<The specified container was not found", AAC_NO_SUCH_CONTAINER},
	{"<The specified container sizes must be the same for stripe sets", AAC_SIZES_DIFFER},
};

static bool IsDiskCrowded(const char *lpszLine)
{
	return strstr(lpszLine, "<The operation specified could not be done because it would ") &&
	       strstr(lpszLine, "a disk drive having more than the maximum allowed") &&
	       strstr(lpszLine, "container partition");
}

static int CodeOfCreateError(const char *lpszLine)
{
	const int nCode = CodeOfErrorLine(lpszLine, CREATE_ERRORS);
	return nCode == AAC_TOOL_ERROR && IsDiskCrowded(lpszLine) ? AAC_DISK_CROWDED : nCode;
}

int Analyze_Create_Raid_Created_File(const char *lpszFile, int)
{
	ToolOutput output(lpszFile);
	if (!output.IsOpen()) {
		OutputDebugString("can not open the file %s\n", lpszFile);
		return AAC_RUN_FAILED;
	}
	while (output.Read()) {
		if (strstr(output.Line(), "Parsing Error:")) {
			OutputDebugString("finding parsing error in line:%s\n", output.Line());
			return AAC_TOOL_ERROR;
		}
		if (strstr(output.Line(), "Command Error"))
			return CodeOfCreateError(output.Line());
	}
	return 0;
}

static int Create(const ToolScript &script)
{
	const ToolRun run(script, COMMAND_TRACES);
	return run.Answer() ? Analyze_Create_Raid_Created_File(run.Answer(), 0) : AAC_RUN_FAILED;
}

// ---- levels ----

int Aac_Create_Raid0(const char *lpszControllerName, const char *lpszLabel, int nStripsize, int nC_ID_L1,
                     int nSpace, int nC_ID_L2, ...)
{
	ToolScript script(lpszControllerName);
	script.Add("container create strip ");
	AddStripeSize(&script, nStripsize);
	AddLabel(&script, lpszLabel);
	AddFirstDisk(&script, nC_ID_L1, nSpace);
	// compat: on the channel of the first disk, whatever its address says: a set over two channels takes
	// its second disk from the wrong one. Further disks have their own.
	AddDisk(&script, GetC_ID_L(GetChannelFromC_ID_L(nC_ID_L1), GetIDFromC_ID_L(nC_ID_L2),
	                           GetLunFromC_ID_L(nC_ID_L2)));
	va_list further;
	va_start(further, nC_ID_L2);
	AddFurther(&script, further, AddDisk);
	va_end(further);
	script.Add("\n                                          \n     \nexit\n         \n");
	return Create(script);
}

int Aac_Create_Raid1(const char *lpszControllerName, const char *lpszLabel, int nQuick_init, int nC_ID_L1,
                     int nSpace, int nC_ID_L2)
{
	ToolScript script(lpszControllerName);
	script.Add("container create new_mirror ");
	AddLabel(&script, lpszLabel);
	AddQuickInit(&script, nQuick_init);
	AddFirstDisk(&script, nC_ID_L1, nSpace);
	AddDisk(&script, nC_ID_L2);
	script.Add("\n                        \n    \nexit\n        \n");
	return Create(script);
}

int Aac_Create_Raid5(const char *lpszControllerName, const char *lpszLabel, int nQuick_init, int nStripsize,
                     int nC_ID_L1, int nSpace, int nC_ID_L2, int nC_ID_L3, ...)
{
	ToolScript script(lpszControllerName);
	script.Add("container create raid5 ");
	AddStripeSize(&script, nStripsize);
	AddLabel(&script, lpszLabel);
	AddQuickInit(&script, nQuick_init);
	AddFirstDisk(&script, nC_ID_L1, nSpace);
	AddDisk(&script, nC_ID_L2);
	// compat: no blank behind it, a fourth disk follows directly: whoever stands in for the tool has to
	// read both.
	script.AddAddress(nC_ID_L3);
	va_list further;
	va_start(further, nC_ID_L3);
	AddFurther(&script, further, AddDisk);
	va_end(further);
	script.Add("\n                                \n    \nexit\n        \n");
	return Create(script);
}

int Aac_Create_Raid10(const char *lpszControllerName, const char *lpszLabel, int nStripsize, int nRaid1ID_1,
                      int nRaid1ID_2, ...)
{
	ToolScript script(lpszControllerName);
	script.Add("container create mstrip ");
	AddStripeSize(&script, nStripsize);
	AddLabel(&script, lpszLabel);
	AddContainer(&script, nRaid1ID_1);
	AddContainer(&script, nRaid1ID_2);
	va_list further;
	va_start(further, nRaid1ID_2);
	AddFurther(&script, further, AddContainer);
	va_end(further);
	script.Add("\n                                         \n    \nexit\n        \n");
	return Create(script);
}
