// The start of the library when it was loaded through LD_PRELOAD: what to show and where to log come from the
// environment.
//
//   REPLAY_SYSROOT=DIR  REPLAY_LOG=FILE  REPLAY_FAIL=N or N+
//
// A fault in them ends the program: what it would do on a host that is not the one asked for is worth
// nothing.
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

static void read_fail(const char *text)
{
	char number[32] = "";
	uint64_t nth = 0;
	const size_t length = strlen(text);
	const bool goes_on = length > 0 && text[length - 1] == '+';
	const size_t digits = goes_on ? length - 1 : length;

	if (digits < sizeof number)
		memcpy(number, text, digits);
	if (!read_number(number, LONG_MAX, &nth)) {
		dprintf(STDERR_FILENO, "REPLAY_FAIL=%s: not N or N+\n", text);
		_exit(2);
	}
	replay_fail_call(static_cast<long>(nth), goes_on);
}

void begin_preload()
{
	Dl_info self = {};
	if (dladdr(reinterpret_cast<void *>(&begin_preload), &self) != 0)
		replay_set_child_library(self.dli_fname);
	const char *log = getenv("REPLAY_LOG");
	if (log)
		replay_log_to(log);
	const char *directory = getenv("REPLAY_SYSROOT");
	if (directory && replay_use(directory) != 0)
		_exit(2);
	const char *fail = getenv("REPLAY_FAIL");
	if (fail)
		read_fail(fail);
}

// A program that makes no call at all still hears that its host is wrong.
__attribute__((constructor)) static void begin()
{
	(void)shown_host();
}

} // namespace replay
