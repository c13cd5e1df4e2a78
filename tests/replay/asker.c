/* SPDX-License-Identifier: Apache-2.0 */
/*
 * A program that asks the library before it: what is wrong, and what the host tells of its kernel. A word
 * with a slash at its beginning is a host to be shown from then on.
 */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

typedef const char *fault_of(void);
typedef const char *told_of(const char *field);
typedef int use_of(const char *dir);

static const char *or_none(const char *text)
{
	return text ? text : "none";
}

int main(int argc, char **argv)
{
	fault_of *fault;
	told_of *told;
	use_of *use;
	/* The form of dlsym's manual page: C has no cast from an object to a function. */
	*(void **)&fault = dlsym(RTLD_DEFAULT, "replay_fault");
	*(void **)&told = dlsym(RTLD_DEFAULT, "replay_uname_told");
	*(void **)&use = dlsym(RTLD_DEFAULT, "replay_use");
	if (!fault || !told || !use)
		return 3;
	printf("fault: %s\n", or_none(fault()));
	fflush(stdout);
	for (int i = 1; i < argc; i++) {
		if (argv[i][0] == '/')
			printf("used: %d\n", use(argv[i]));
		else
			printf("%s: %s\n", argv[i], or_none(told(argv[i])));
		fflush(stdout);
	}
	return system("echo child: ${REPLAY_FAULT-none}") == 0 ? 0 : 3;
}
