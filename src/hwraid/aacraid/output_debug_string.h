// SPDX-License-Identifier: Apache-2.0
// The one trace channel of the hardware side: standard error, when it is switched on.
#ifndef DISKSCOUT_HWRAID_OUTPUT_DEBUG_STRING_H
#define DISKSCOUT_HWRAID_OUTPUT_DEBUG_STRING_H

// -1 until the first trace decides it for the whole process: 1 when the file ./I_NEED_DEBUG_NOW.txt can be
// opened for reading then, else 0.
extern int g_nIfNeedDebug;

// Prints like printf, adding nothing. Returns the count printed, or 0 when tracing is off.
int OutputDebugString(const char *format, ...) __attribute__((format(printf, 1, 2)));

#endif
