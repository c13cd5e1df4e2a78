/* SPDX-License-Identifier: Apache-2.0 */
/* Prints what a RAID controller is busy with, which no query tells: an operation of diskscout.so. */
#include "diskscout_raid.h"

#include <dlfcn.h>
#include <stdio.h>
#include <sys/stat.h>

int main(int argc, char **argv)
{
	void *library = argc == 4 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
	char *configuration = NULL;
	__typeof__(Aac_Get_Task_List) *list = NULL; /* in C++: decltype */
	__typeof__(Aac_Clear_Task_List) *clear = NULL;
	aac_task *tasks = NULL;
	const aac_task *task;
	int result;

	if (argc != 4) {
		fprintf(stderr, "LIBRARY CONFIGURATION CONTROLLER are needed\n");
		return 2;
	}
	if (library != NULL) {
		configuration = dlsym(library, "g_szConfigFileName");
		*(void **)&list = dlsym(library, "Aac_Get_Task_List");
		*(void **)&clear = dlsym(library, "Aac_Clear_Task_List");
	}
	if (configuration == NULL || list == NULL || clear == NULL) {
		fprintf(stderr, "%s\n", dlerror());
		return 1;
	}

	/* The files of a run lie in the working directory. */
	umask(077);
	/* Read once a process, by the first operation. */
	snprintf(configuration, sizeof g_szConfigFileName, "%s", argv[2]);
	result = list(argv[3], &tasks);
	if (result == AAC_CONTROLLER_UNUSABLE)
		fprintf(stderr, "%s is missing or cannot be opened\n", argv[3]);
	else if (result < 0)
		fprintf(stderr, "the tasks cannot be listed: %d\n", result);
	for (task = tasks; task != NULL; task = task->next)
		printf("container %d: %.0f %% done\n", task->ContainerID, 100 * task->Done);
	clear(tasks); /* after a failure, too */
	return result < 0;
}
