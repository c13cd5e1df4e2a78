// SPDX-License-Identifier: Apache-2.0
// What is wrong with a host; see complaint.h.
#include "replay/complaint.h"

#include "replay/replay.h"

#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

namespace replay
{

static bool keeping;
// The path of a table, and what is wrong with it.
static char kept[PATH_MAX + 256];

__attribute__((format(printf, 1, 0))) static void keep(const char *format, va_list values)
{
	if (kept[0] != '\0')
		return;
	vsnprintf(kept, sizeof kept, format, values);
	const size_t length = strlen(kept);
	if (length > 0 && kept[length - 1] == '\n')
		kept[length - 1] = '\0';
}

void complain(const char *format, ...)
{
	va_list values;
	va_start(values, format);
	if (keeping)
		keep(format, values);
	else
		vdprintf(STDERR_FILENO, format, values);
	va_end(values);
}

void keep_complaints(bool keep)
{
	keeping = keep;
}

} // namespace replay

extern "C" const char *replay_fault(void)
{
	return replay::kept[0] == '\0' ? nullptr : replay::kept;
}
