// What all operations of the controller tool share: the site's configuration, the disk address, the text
// helpers of the parsers, and, in headers of their own, the container list and the accessors of the records.
#ifndef DISKSCOUT_HWRAID_AAC_PUBLIC_H
#define DISKSCOUT_HWRAID_AAC_PUBLIC_H

#include "hwraid/aacraid/aac_container_list.h"
#include "hwraid/aacraid/aac_records.h"

#include <stddef.h>

// ---- configuration ----
//
// Process-wide and read once, by the first operation that finds the file g_szConfigFileName; one thread at a
// time.

extern int g_nHaveInit;             // 1 once the file has been opened, whatever it said
extern char g_szCliPath[1024];      // directory of the tool
extern char g_szCliName[256];       // file name of the tool
extern char g_szCliFullName[2056];  // both joined; empty while one of them is
extern char g_szFilterScript[1024]; // command of the filter script

// The tool as a command, empty when the file named none; null when the file cannot be opened.
char *GetCliConfig();
// The filter script as a command; empty without one.
char *GetFilterScript();

// Removes a file through the shell. 0, or -1 when the command fails.
int DeleteFileWindowsAndLinux(const char *lpszPath);

// ---- disk addresses ----
//
// Channel << 16, SCSI ID << 8 and LUN, added up: a number above 255 deliberately carries into the next field.

int GetC_ID_L(int nChannel, int nID, int nLun);
int GetChannelFromC_ID_L(int nC_ID_L);
int GetIDFromC_ID_L(int nC_ID_L);
int GetLunFromC_ID_L(int nC_ID_L);

// ---- text ----

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

// ---- the tool's output ----

// A file's text, ended by a NUL; the caller frees it with delete[]. Null when the file is missing, empty or
// larger than 1,048,576 bytes.
char *Get_Content_Of_The_File(const char *lpszPath);
// The first "Command Error" of a whole output: -100 wrong, missing or unopened controller, -200 held by
// another application, -300 another error that stands at the start of a line but not of the output; else 0.
int CheckIfExistErrors(const char *lpszText);

#endif
