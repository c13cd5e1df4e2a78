// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/output_debug_string.h"

#include <stdarg.h>
#include <stdio.h>

int g_nIfNeedDebug = -1;

static int IsDebugWanted()
{
	FILE *pMarker = fopen("./I_NEED_DEBUG_NOW.txt", "re");
	if (!pMarker)
		return 0;
	fclose(pMarker);
	return 1;
}

int OutputDebugString(const char *format, ...)
{
	if (g_nIfNeedDebug == -1)
		g_nIfNeedDebug = IsDebugWanted();
	if (g_nIfNeedDebug == 0)
		return 0;
	// compat: the clock is not read; lines carry no time, and whoever needs one has to add it.
	va_list arguments;
	va_start(arguments, format);
	const int nPrinted = vfprintf(stderr, format, arguments);
	va_end(arguments);
	return nPrinted;
}
