// SPDX-License-Identifier: Apache-2.0
// Operations on containers, which are exported, and the parsers of their answers, which are not.
#ifndef DISKSCOUT_HWRAID_AAC_CONTAINER_H
#define DISKSCOUT_HWRAID_AAC_CONTAINER_H

#include "diskscout_raid.h"

// Each takes the filtered output file; AAC_RUN_FAILED when it cannot be opened.
int AnalyzeContainerDeleteFile(const char *lpszFile);
int AnalyzeContainerSetFailoverFile(const char *lpszFile); // of removing, too
int AnalyzeContainerShowFailoverFile(const char *lpszFile);
int AnalyzeContainerDiskNameFile(const char *lpszFile, char *lpszFilled);

#endif
