// The tool's words for what went wrong, and the codes that stand for them.
#ifndef DISKSCOUT_HWRAID_AAC_ERROR_H
#define DISKSCOUT_HWRAID_AAC_ERROR_H

#include <stddef.h>

// A text in an error line of the tool, and what it stands for.
struct ToolError {
	const char *lpszText;
	int nCode;
};

constexpr int RUN_FAILED = -1;            // the tool could not be asked, or there is no answer
constexpr int CONTROLLER_UNUSABLE = -100; // wrong, missing or not opened
constexpr int CONTROLLER_BUSY = -200;     // held by another application
constexpr int OTHER_TOOL_ERROR = -300;
// Of several operations.
constexpr int NO_SUCH_DEVICE = -2; // channel or device

// The errors that every operation knows, tried first and in this order.
constexpr ToolError CONTROLLER_ERRORS[] = {
	{"<The requested controller is of the wrong type", CONTROLLER_UNUSABLE},
	{"<Adapter must be opened before this command is used", CONTROLLER_UNUSABLE},
	{"<The requested controller does not exist", CONTROLLER_UNUSABLE},
	{"<Another application has opened th", CONTROLLER_BUSY},
};

// The code of the first row whose text stands anywhere in the line: CONTROLLER_ERRORS, then an operation's
// own rows. OTHER_TOOL_ERROR when there is none.
int CodeOfErrorLine(const char *lpszLine, const ToolError *pOwn, size_t nOwn);
template <size_t rows> int CodeOfErrorLine(const char *lpszLine, const ToolError (&own)[rows])
{
	return CodeOfErrorLine(lpszLine, own, rows);
}
inline int CodeOfErrorLine(const char *lpszLine)
{
	return CodeOfErrorLine(lpszLine, nullptr, 0);
}

// The first "Command Error" of a whole output: -100 wrong, missing or unopened controller, -200 held by
// another application, -300 another error that stands at the start of a line but not of the output; else 0.
int CheckIfExistErrors(const char *lpszText);

#endif
