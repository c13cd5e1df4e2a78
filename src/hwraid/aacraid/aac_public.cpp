#include "hwraid/aacraid/aac_public.h"

#include "base/text.h"
#include "hwraid/aacraid/aac_pieces.h"
#include "hwraid/aacraid/aac_tool.h"
#include "hwraid/aacraid/output_debug_string.h"

#include <new>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

// ---- configuration ----
//
//   Cli Path:/usr/local/tool
//   Cli Name:toolcli
//   Filter Script:/usr/local/tool/filter.sh
//
// A key stands at the very start of its line; of two lines with the same key the later one counts.

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

// Deliberately literal: a blank behind the colon is part of the path.
static void TakePath(char *lpszValue)
{
	if (lpszValue[0] == '\0')
		return;
	StripLineEnd(lpszValue);
	snprintf(g_szCliPath, sizeof g_szCliPath, "%s", lpszValue);
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

int DeleteFileWindowsAndLinux(const char *lpszPath)
{
	char szCommand[1024];
	const int nLength = snprintf(szCommand, sizeof szCommand, "rm -rf %s", lpszPath);
	if (nLength < 0 || nLength >= static_cast<int>(sizeof szCommand))
		return -1; // a cut command would remove something else
	return system(szCommand) == 0 ? 0 : -1;
}

// ---- disk addresses ----

// Unsigned, so that no sum overflows.
int GetC_ID_L(int nChannel, int nID, int nLun)
{
	return static_cast<int>((static_cast<unsigned>(nChannel) << 16) + (static_cast<unsigned>(nID) << 8) +
	                        static_cast<unsigned>(nLun));
}

int GetChannelFromC_ID_L(int nC_ID_L)
{
	return (nC_ID_L >> 16) & 255;
}

int GetIDFromC_ID_L(int nC_ID_L)
{
	return (nC_ID_L >> 8) & 255;
}

int GetLunFromC_ID_L(int nC_ID_L)
{
	return nC_ID_L & 255;
}

// ---- text ----

int Including(const char *lpszString, const char *lpszSubString)
{
	if (!lpszString)
		return 0;
	return !lpszSubString || strncmp(lpszString, lpszSubString, strlen(lpszSubString)) == 0;
}

int IS_IN(char c, const char *lpszSet)
{
	return c != '\0' && strchr(lpszSet, c) != nullptr;
}

int Is_0_9(char c)
{
	return is_digit(c);
}

int Is_a_f(char c)
{
	return c >= 'a' && hex_digit_value(c) >= 0;
}

int Is_A_F(char c)
{
	return c <= 'F' && hex_digit_value(c) >= 10;
}

int DeleteTailSpaceAndReturn(char *lpszString)
{
	if (!lpszString)
		return -1;
	size_t nLength = strlen(lpszString);
	// Deliberately one pass of each kind: what stands between two line ends stays.
	while (nLength != 0 && IS_IN(lpszString[nLength - 1], "\r\n"))
		nLength--;
	while (nLength != 0 && IS_IN(lpszString[nLength - 1], " \t"))
		nLength--;
	lpszString[nLength] = '\0';
	return 0;
}

char *ReplaceSubString(char *lpszString, const char *lpszSubString, const char *lpszReplacedInto)
{
	if (!lpszSubString || lpszSubString[0] == '\0')
		return lpszString;
	const size_t nFrom = strlen(lpszSubString);
	const size_t nTo = lpszReplacedInto ? strlen(lpszReplacedInto) : 0;
	for (char *p = strstr(lpszString, lpszSubString); p; p = strstr(p + nTo, lpszSubString)) {
		memmove(p + nTo, p + nFrom, strlen(p + nFrom) + 1);
		// NOLINTNEXTLINE(bugprone-not-null-terminated-result): in the middle of a text
		memcpy(p, nTo != 0 ? lpszReplacedInto : "", nTo);
	}
	return lpszString;
}

int CutOffHeaderString(char *lpszString, const char *lpszNeedCutoffString, const char *lpszCharArray,
                       int nLoop)
{
	const bool bHeader = lpszNeedCutoffString && Including(lpszString, lpszNeedCutoffString);
	size_t nCut = bHeader ? strlen(lpszNeedCutoffString) : 0;
	if (nLoop)
		nCut += strspn(lpszString + nCut, lpszCharArray);
	else
		nCut += static_cast<size_t>(IS_IN(lpszString[nCut], lpszCharArray));
	memmove(lpszString, lpszString + nCut, strlen(lpszString + nCut) + 1);
	return 0;
}

int CurrentLineHasOnlyIncludeSymbols(const char *lpszLine, const char *lpszSymbols)
{
	return lpszSymbols && lpszLine[strspn(lpszLine, lpszSymbols)] == '\0';
}

int DeleteHeaderSymbols(char *lpszLine, const char *lpszSymbols)
{
	const size_t nCut = strspn(lpszLine, lpszSymbols);
	if (nCut == 0)
		return -1;
	memmove(lpszLine, lpszLine + nCut, strlen(lpszLine + nCut) + 1);
	return 0;
}

char *TheNthSubString(const char *lpszString, int nth, char c, int nTimes)
{
	static char szReturn[1024];
	szReturn[0] = '\0';
	if (!lpszString || lpszString[0] == '\0')
		return szReturn;
	if (c == '\0' || nTimes < 1 || nth < 1)
		return nullptr;
	PieceWalk pieces(lpszString, c, nTimes);
	bool bFound = pieces.Next();
	for (int i = 1; bFound && i < nth; i++)
		bFound = pieces.Next();
	if (bFound)
		pieces.Copy(szReturn, sizeof szReturn);
	return szReturn;
}

int GetTheNthSubStringInString(char *)
{
	return 0;
}

// ---- the tool's output ----

static constexpr off_t MAX_CONTENT = 0x100000;

char *Get_Content_Of_The_File(const char *lpszPath)
{
	struct stat status;
	if (stat(lpszPath, &status) != 0 || status.st_size == 0 || status.st_size > MAX_CONTENT)
		return nullptr;
	FILE *pFile = fopen(lpszPath, "re");
	if (!pFile)
		return nullptr;
	const auto nSize = static_cast<size_t>(status.st_size);
	char *lpszText = new (std::nothrow) char[nSize + 1];
	if (lpszText)
		lpszText[fread(lpszText, 1, nSize, pFile)] = '\0';
	fclose(pFile);
	return lpszText;
}

int CheckIfExistErrors(const char *lpszText)
{
	const char *lpszError = strstr(lpszText, "Command Error");
	if (!lpszError)
		return 0;
	// An error at the very start of the output is deliberately no error of the other kind.
	const int nResult = lpszError != lpszText && lpszError[-1] == '\n' ? OTHER_TOOL_ERROR : 0;
	if (!Including(lpszError, "Command Error: "))
		return nResult;
	for (const ToolError &row : CONTROLLER_ERRORS)
		if (Including(lpszError + strlen("Command Error: "), row.lpszText))
			return row.nCode;
	return nResult;
}
