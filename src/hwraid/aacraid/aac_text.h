// SPDX-License-Identifier: Apache-2.0
// Text helpers of the parsers; all work in place on NUL-terminated strings.
#ifndef DISKSCOUT_HWRAID_AAC_TEXT_H
#define DISKSCOUT_HWRAID_AAC_TEXT_H

// Whether the string begins with the prefix: 0 for a null string, else 1 for a null prefix.
int Including(const char *lpszString, const char *lpszSubString);
// Whether the set holds the character; the NUL is in no set.
int IS_IN(char c, const char *lpszSet);
int Is_0_9(char c);
int Is_a_f(char c);
int Is_A_F(char c);

// Removes the line ends at the end, then the blanks and tabs before them, one pass of each. 0, or -1 for
// null.
int DeleteTailSpaceAndReturn(char *lpszString);
// Replaces every occurrence, left to right; the caller has room for growth. Returns lpszString.
char *ReplaceSubString(char *lpszString, const char *lpszSubString, const char *lpszReplacedInto);
// Cuts a header off, if it is there, and then the leading characters of the set: all with nLoop, else at most
// one. Returns 0.
int CutOffHeaderString(char *lpszString, const char *lpszNeedCutoffString, const char *lpszCharArray,
                       int nLoop);
// Whether the string holds nothing but characters of the set; 0 for a null set.
int CurrentLineHasOnlyIncludeSymbols(const char *lpszLine, const char *lpszSymbols);
// Removes leading characters of the set. 0, or -1 when there are none.
int DeleteHeaderSymbols(char *lpszLine, const char *lpszSymbols);
// The nth piece (from 1) of a string whose pieces nTimes or more c separate, in a static buffer of 1,024
// bytes that a longer piece is cut to; empty when there are fewer pieces, null for nonsense.
char *TheNthSubString(const char *lpszString, int nth, char c, int nTimes);
// Always 0; kept for what links it.
int GetTheNthSubStringInString(char *lpszString);

#endif
