// SPDX-License-Identifier: Apache-2.0
// Calls that start a shell: it, and what it runs, see the captured host too.
#include "replay/call.h"
#include "replay/child.h"
#include "replay/faults.h"
#include "replay/log.h"
#include "replay/real.h"

#include <stdio.h>
#include <stdlib.h>

using namespace replay;

REPLAY_CALL FILE *popen(const char *command, const char *mode)
{
	ChildEnvironment child;
	if (must_fail(CALL_POPEN) || !child.install())
		return nullptr;
	FILE *stream = REPLAY_REAL(popen)(command, mode);
	if (stream) {
		count_shell();
		log_shell(command);
	}
	return stream;
}

// The child is waited for even when the call is to fail: it would stay behind as a zombie.
REPLAY_CALL int pclose(FILE *stream)
{
	const int result = REPLAY_REAL(pclose)(stream);
	return must_fail(CALL_PCLOSE) ? -1 : result;
}

REPLAY_CALL int system(const char *command)
{
	ChildEnvironment child;
	if (must_fail(CALL_SYSTEM) || !child.install())
		return -1;
	// Without a command it only asks whether there is a shell.
	if (command) {
		count_shell();
		log_shell(command);
	}
	return REPLAY_REAL(system)(command);
}
