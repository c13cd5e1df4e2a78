// SPDX-License-Identifier: Apache-2.0
// The configuration file:
//
//   Cli Path:/usr/local/tool
//   Cli Name:toolcli
//   Filter Script:/usr/local/tool/filter.sh
//
// A key stands at the very start of its line; of two lines with the same key the later one counts.
#include "hwraid/aacraid/aac_config.h"

#include "diskscout.h"
#include "hwraid/aacraid/aac_text.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <stdio.h>
#include <string.h>

char g_szConfigFileName[256] = "/root/hardraid.cfg";
int g_nHaveInit;
char g_szCliPath[1024];
char g_szCliName[256];
char g_szCliFullName[2056];
char g_szFilterScript[1024];

static void StripLineEnd(char *lpszString)
{
	size_t nLength = strlen(lpszString);
	while (nLength != 0 && IS_IN(lpszString[nLength - 1], " \t\r\n"))
		nLength--;
	lpszString[nLength] = '\0';
}

// compat: literal, a blank behind the colon is part of the path: the shell then takes what follows it for the
// tool.
static void TakePath(char *lpszValue)
{
	if (lpszValue[0] != '\0') {
		StripLineEnd(lpszValue);
		snprintf(g_szCliPath, sizeof g_szCliPath, "%s", lpszValue);
	}
	OutputDebugString("______________path = %s_________\n", g_szCliPath);
}

// The first word of the value; a value without one changes nothing.
static void TakeWord(char *lpszTo, size_t nSize, const char *lpszValue)
{
	const char *lpszWord = lpszValue + strspn(lpszValue, " \t\n\v\f\r");
	const size_t nLength = strcspn(lpszWord, " \t\n\v\f\r");
	if (nLength != 0)
		snprintf(lpszTo, nSize, "%.*s", static_cast<int>(nLength), lpszWord);
}

static void TakeName(char *lpszValue)
{
	TakeWord(g_szCliName, sizeof g_szCliName, lpszValue);
	OutputDebugString("______________name = %s_________\n", g_szCliName);
}

static void TakeFilter(char *lpszValue)
{
	TakeWord(g_szFilterScript, sizeof g_szFilterScript, lpszValue);
	OutputDebugString("______________filter = %s_________\n", g_szFilterScript);
}

static constexpr struct {
	const char *lpszKey;
	void (*pfnTake)(char *lpszValue);
} CONFIG_KEYS[] = {{"Cli Path:", TakePath}, {"Cli Name:", TakeName}, {"Filter Script:", TakeFilter}};

static void TakeConfigLine(char *lpszLine)
{
	for (const auto &row : CONFIG_KEYS) {
		if (Including(lpszLine, row.lpszKey)) {
			row.pfnTake(lpszLine + strlen(row.lpszKey));
			return;
		}
	}
}

static void JoinToolName()
{
	const size_t nPath = strlen(g_szCliPath);
	const char *lpszName = g_szCliName + strspn(g_szCliName, "/");
	if (nPath == 0 || g_szCliName[0] == '\0') {
		OutputDebugString("---oh, there is a equal zero.------------------\n");
		return;
	}
	snprintf(g_szCliFullName, sizeof g_szCliFullName, "%s%s%s", g_szCliPath,
	         g_szCliPath[nPath - 1] == '/' ? "" : "/", lpszName);
	OutputDebugString("--oh, Got string:%s\n", g_szCliFullName);
}

char *GetCliConfig()
{
	if (g_nHaveInit)
		return g_szCliFullName;
	FILE *pFile = fopen(g_szConfigFileName, "re");
	if (!pFile) {
		OutputDebugString("can not open the file:%s\n", g_szCliFullName);
		return nullptr;
	}
	// Before the parsing: a file that names no tool has been read as well.
	g_nHaveInit = 1;
	char szLine[256];
	while (fgets(szLine, sizeof szLine, pFile) && szLine[0] != '\0')
		TakeConfigLine(szLine);
	JoinToolName();
	fclose(pFile);
	return g_szCliFullName;
}

char *GetFilterScript()
{
	GetCliConfig();
	return g_szFilterScript;
}
