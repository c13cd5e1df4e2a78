// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/aac_text.h"

#include "base/text.h"
#include "hwraid/aacraid/aac_pieces.h"

#include <string.h>

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
	// compat: one pass of each kind: a line end before blanks stays in the text.
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
