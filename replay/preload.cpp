// SPDX-License-Identifier: Apache-2.0
// The start of the library when it was loaded through LD_PRELOAD: what to show and where to log come from the
// environment.
//
//   REPLAY_SYSROOT=DIR  REPLAY_LOG=FILE  REPLAY_FAIL=N or N+  REPLAY_FAULT=keep
//
// A fault in them ends the program: what it would do on a host that is not the one asked for is worth
// nothing. Only a program that announces with REPLAY_FAULT that it asks for the fault goes on, and tells it
// in its own way.
#include "replay/complaint.h"
#include "replay/host.h"
#include "replay/replay.h"
#include "replay/words.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

namespace replay
{

static bool read_fail(const char *text)
{
	char number[32] = "";
	uint64_t nth = 0;
	const size_t length = strlen(text);
	const bool goes_on = length > 0 && text[length - 1] == '+';
	const size_t digits = goes_on ? length - 1 : length;

	if (digits < sizeof number)
		memcpy(number, text, digits);
	if (!read_number(number, LONG_MAX, &nth)) {
		complain("REPLAY_FAIL=%s: not N or N+\n", text);
		return false;
	}
	replay_fail_call(static_cast<long>(nth), goes_on);
	return true;
}

static bool read_keep(const char *text, bool *keeps)
{
	*keeps = strcmp(text, "keep") == 0;
	if (!*keeps)
		complain("REPLAY_FAULT=%s: not keep\n", text);
	return *keeps;
}

static bool read_environment(bool *keeps)
{
	const char *fault = getenv("REPLAY_FAULT");
	if (fault && !read_keep(fault, keeps))
		return false;
	keep_complaints(*keeps);
	const char *log = getenv("REPLAY_LOG");
	if (log)
		replay_log_to(log);
	const char *directory = getenv("REPLAY_SYSROOT");
	if (directory && replay_use(directory) != 0)
		return false;
	const char *fail = getenv("REPLAY_FAIL");
	return !fail || read_fail(fail);
}

void begin_preload()
{
	Dl_info self = {};
	if (dladdr(reinterpret_cast<void *>(&begin_preload), &self) != 0)
		replay_set_child_library(self.dli_fname);
	bool keeps = false;
	if (!read_environment(&keeps)) {
		if (!keeps)
			_exit(2);
		// Where the room for a table is not given at all, nothing was said.
		complain("the captured host cannot be loaded\n");
	}
	keep_complaints(false);
}

// A program that makes no call at all still hears that its host is wrong.
__attribute__((constructor)) static void begin()
{
	(void)shown_host();
}

} // namespace replay
