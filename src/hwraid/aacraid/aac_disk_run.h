// SPDX-License-Identifier: Apache-2.0
// What the operations on disks share beyond the run itself.
#ifndef DISKSCOUT_HWRAID_AAC_DISK_RUN_H
#define DISKSCOUT_HWRAID_AAC_DISK_RUN_H

#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_tool.h"

extern const ToolTraces DISK_TRACES;

constexpr ToolError DEVICE_ERRORS[] = {
	{"<The specified channel was not found on the controller", AAC_NO_SUCH_DEVICE},
	{"<The specified device was not found", AAC_NO_SUCH_DEVICE},
};

// Traces what the parser, known by this name, made of the answer, and returns it.
int TraceParsed(const char *lpszParser, int nParsed);

#endif
