// What the operations on disks share beyond the run itself.
#ifndef DISKSCOUT_HWRAID_AAC_DISK_RUN_H
#define DISKSCOUT_HWRAID_AAC_DISK_RUN_H

#include "hwraid/aacraid/aac_tool.h"
#include "hwraid/aacraid/output_debug_string.h"

extern const ToolTraces DISK_TRACES;

constexpr ToolError DEVICE_ERRORS[] = {
	{"<The specified channel was not found on the controller", NO_SUCH_DEVICE},
	{"<The specified device was not found", NO_SUCH_DEVICE},
};

// Runs the script and traces what the parser, known by this name, made of the answer.
template <class Parser> int RunOnDisks(const ToolScript &script, const char *lpszParser, Parser parse)
{
	return RunTool(script, DISK_TRACES, [=](const char *lpszFile) {
		const int nParsed = parse(lpszFile);
		OutputDebugString("%s Return value is %d\n", lpszParser, nParsed);
		return nParsed;
	});
}

#endif
