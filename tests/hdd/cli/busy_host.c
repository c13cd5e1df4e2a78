/* SPDX-License-Identifier: Apache-2.0 */
/* Loaded before a program: what the launcher calls is called by a host that is busy with other things. Fifty
 * times a second a signal comes that the host handles, and every wait that is under way ends early.
 */
#define _GNU_SOURCE
#include <errno.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/time.h>

static const long period = 20000;

static void look_up(int signal)
{
	(void)signal;
}

__attribute__((constructor)) static void become_busy(void)
{
	struct sigaction action;
	struct itimerval timer;

	/* The programs that the host starts are not busy. The launcher itself starts a second time when it
	 * shows a captured host: a signal in between would end it.
	 */
	if (strcmp(program_invocation_short_name, "stcli") != 0 || getenv("REPLAY_SYSROOT") == NULL)
		return;
	memset(&action, 0, sizeof action);
	action.sa_handler = look_up;
	sigemptyset(&action.sa_mask);
	sigaction(SIGALRM, &action, NULL);
	timer.it_interval.tv_sec = 0;
	timer.it_interval.tv_usec = period;
	timer.it_value = timer.it_interval;
	setitimer(ITIMER_REAL, &timer, NULL);
}
