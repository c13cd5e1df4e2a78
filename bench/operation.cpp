// SPDX-License-Identifier: Apache-2.0
#include "operation.h"

#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_task.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <uuid/uuid.h>

static int shells;
static bool scripts_have_names = true;

// In place of the C library's: counts, then does the same.
extern "C" int system(const char *command)
{
	using System = int (*)(const char *);
	static const auto real = reinterpret_cast<System>(dlsym(RTLD_NEXT, "system"));
	shells++;
	return real(command);
}

// In place of the library's: a script without a name cannot be made, and a run that would ask for a hot spare
// costs nothing.
extern "C" void uuid_unparse(const uuid_t uu, char *out)
{
	using Unparse = void (*)(const uuid_t, char *);
	static const auto real = reinterpret_cast<Unparse>(dlsym(RTLD_NEXT, "uuid_unparse"));
	out[0] = '\0';
	if (scripts_have_names)
		real(uu, out);
}

int shells_of(void (*run)())
{
	shells = 0;
	run();
	return shells;
}

void use_no_tool()
{
	scripts_have_names = false;
}

void use_plain_tool()
{
	scripts_have_names = true;
	g_nHaveInit = 1;
	snprintf(g_szCliFullName, sizeof g_szCliFullName, "/bin/cat");
	snprintf(g_szFilterScript, sizeof g_szFilterScript, "/bin/cp");
}

void operation()
{
	aac_task *head = nullptr;
	// The script comes back as the answer, and holds no tasks.
	if (Aac_Get_Task_List("aac0", &head) != 0 || head)
		abort();
}

void operation_floor()
{
	static const char *const COMMANDS[] = {
		"/bin/cat <00000000-0000-4000-8000-000000000001 >00000000-0000-4000-8000-000000000002",
		"/bin/cp 00000000-0000-4000-8000-000000000002 00000000-0000-4000-8000-000000000003",
		"rm -rf 00000000-0000-4000-8000-000000000001",
		"rm -rf 00000000-0000-4000-8000-000000000002",
		"rm -rf 00000000-0000-4000-8000-000000000003",
	};
	FILE *script = fopen("00000000-0000-4000-8000-000000000001", "wte");
	fputs("open aac0\ntask list \n                 \n    \nexit         \n\n\n\n", script);
	fclose(script);
	for (const char *command : COMMANDS)
		if (system(command) != 0)
			abort();
}
