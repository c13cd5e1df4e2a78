// SPDX-License-Identifier: Apache-2.0
// The tool's words for what went wrong, and the codes that stand for them.
#ifndef DISKSCOUT_HWRAID_AAC_ERROR_H
#define DISKSCOUT_HWRAID_AAC_ERROR_H

#include "diskscout_raid.h"

#include <stddef.h>

// A text in an error line of the tool, and what it stands for.
struct ToolError {
	const char *lpszText;
	int nCode;
};

// The errors that every operation knows, tried first and in this order.
constexpr ToolError CONTROLLER_ERRORS[] = {
	{"<The requested controller is of the wrong type", AAC_CONTROLLER_UNUSABLE},
	{"<Adapter must be opened before this command is used", AAC_CONTROLLER_UNUSABLE},
	{"<The requested controller does not exist", AAC_CONTROLLER_UNUSABLE},
	{"<Another application has opened th", AAC_CONTROLLER_BUSY},
};

// The code of the first row whose text stands anywhere in the line: CONTROLLER_ERRORS, then an operation's
// own rows. AAC_TOOL_ERROR when there is none.
int CodeOfErrorLine(const char *lpszLine, const ToolError *pOwn, size_t nOwn);
template <size_t rows> int CodeOfErrorLine(const char *lpszLine, const ToolError (&own)[rows])
{
	return CodeOfErrorLine(lpszLine, own, rows);
}
inline int CodeOfErrorLine(const char *lpszLine)
{
	return CodeOfErrorLine(lpszLine, nullptr, 0);
}

// The code of the first "Command Error" of a whole output; AAC_TOOL_ERROR only when it stands at the start of
// a line but not of the output. AAC_OK without one.
int CheckIfExistErrors(const char *lpszText);

#endif
