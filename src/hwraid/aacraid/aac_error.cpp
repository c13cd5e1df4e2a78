// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/aac_error.h"

#include "hwraid/aacraid/aac_text.h"

#include <iterator>
#include <string.h>

static const ToolError *FindError(const char *lpszLine, const ToolError *pRows, size_t nRows)
{
	for (const ToolError *pRow = pRows; pRow != pRows + nRows; pRow++)
		if (strstr(lpszLine, pRow->lpszText))
			return pRow;
	return nullptr;
}

int CodeOfErrorLine(const char *lpszLine, const ToolError *pOwn, size_t nOwn)
{
	const ToolError *pRow = FindError(lpszLine, CONTROLLER_ERRORS, std::size(CONTROLLER_ERRORS));
	if (!pRow)
		pRow = FindError(lpszLine, pOwn, nOwn);
	return pRow ? pRow->nCode : AAC_TOOL_ERROR;
}

int CheckIfExistErrors(const char *lpszText)
{
	const char *lpszError = strstr(lpszText, "Command Error");
	if (!lpszError)
		return 0;
	// compat: an error at the very start of the output is none of the other kind: it comes out as a
	// listing that cannot be read, -1.
	const int nResult = lpszError != lpszText && lpszError[-1] == '\n' ? AAC_TOOL_ERROR : 0;
	if (!Including(lpszError, "Command Error: "))
		return nResult;
	for (const ToolError &row : CONTROLLER_ERRORS)
		if (Including(lpszError + strlen("Command Error: "), row.lpszText))
			return row.nCode;
	return nResult;
}
