#include "operation.h"

#include "hwraid/aacraid/aac_public.h"
#include "hwraid/aacraid/aac_task.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

static int shells;

// In place of the C library's: counts, then does the same.
extern "C" int system(const char *command)
{
	using System = int (*)(const char *);
	static const auto real = reinterpret_cast<System>(dlsym(RTLD_NEXT, "system"));
	shells++;
	return real(command);
}

int shells_of(void (*run)())
{
	shells = 0;
	run();
	return shells;
}

void use_no_tool()
{
	g_nHaveInit = 1;
	g_szCliFullName[0] = g_szFilterScript[0] = '\0';
}

void use_plain_tool()
{
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
