/* SPDX-License-Identifier: Apache-2.0 */
/* Calls the exported stcli as no launcher would:
 *
 *     call_stcli PLUGIN ARGC ZERO WORD...
 *
 * The words are argv, the word NULL is a null among them; without a word argv itself is null. In one process
 * so many times as the variable CALLS says, once without it. Exit status, of the last call: 0 when it
 * returned 0, 1 for -1, 3 for anything else, 2 when it was not called.
 */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "diskscout.h"

typedef int (*stcli_type)(int argc, char **argv, int start);

static stcli_type find_stcli(const char *plugin)
{
	stcli_type found = NULL;
	void *library = dlopen(plugin, RTLD_NOW | RTLD_LOCAL);
	if (library == NULL)
		fprintf(stderr, "%s\n", dlerror());
	else
		*(void **)&found = dlsym(library, "stcli");
	return found;
}

int main(int argc, char **argv)
{
	stcli_type call = argc >= 4 ? find_stcli(argv[1]) : NULL;
	const char *calls = getenv("CALLS");
	long left = calls != NULL ? strtol(calls, NULL, 10) : 1;
	int result = 0;
	int at;

	if (call == NULL)
		return 2;
	for (at = 4; at < argc; ++at) {
		if (strcmp(argv[at], "NULL") == 0)
			argv[at] = NULL;
	}
	for (; left > 0; --left) {
		result = call((int)strtol(argv[2], NULL, 10), argc > 4 ? argv + 4 : NULL,
		              (int)strtol(argv[3], NULL, 10));
	}
	if (result == 0 || result == -1)
		return -result;
	return 3;
}
