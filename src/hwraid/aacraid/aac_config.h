// SPDX-License-Identifier: Apache-2.0
// What the site says of its controller tool, in the file g_szConfigFileName. Process-wide and read once, by
// the first operation that finds the file; one thread at a time.
#ifndef DISKSCOUT_HWRAID_AAC_CONFIG_H
#define DISKSCOUT_HWRAID_AAC_CONFIG_H

extern int g_nHaveInit;             // 1 once the file has been opened, whatever it said
extern char g_szCliPath[1024];      // directory of the tool
extern char g_szCliName[256];       // file name of the tool
extern char g_szCliFullName[2056];  // both joined; empty while one of them is
extern char g_szFilterScript[1024]; // command of the filter script

// The tool as a command, empty when the file named none; null when the file cannot be opened.
char *GetCliConfig();
// The filter script as a command; empty without one.
char *GetFilterScript();

#endif
