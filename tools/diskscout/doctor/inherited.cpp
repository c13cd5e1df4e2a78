// SPDX-License-Identifier: Apache-2.0
// What this process got from whoever started it.
#include "inherited.h"

#include "sysroot.h"

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

static inherited_t look()
{
	inherited_t found;
	struct sigaction action = {};
	if (sigaction(SIGCHLD, nullptr, &action) == 0)
		found.ignores_children = action.sa_handler == SIG_IGN;
	rlimit stack = {};
	if (getrlimit(RLIMIT_STACK, &stack) == 0 && stack.rlim_cur != RLIM_INFINITY)
		found.stack = stack.rlim_cur;
	found.is_root = geteuid() == 0 && !shows_captured_host();
	return found;
}

const inherited_t &inherited()
{
	static const inherited_t FOUND = look();
	return FOUND;
}
