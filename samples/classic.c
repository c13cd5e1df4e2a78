/* SPDX-License-Identifier: Apache-2.0 */
/* Prints the disks of the classic lists, as an agent asks diskscout.so. */
#include "diskscout.h"

#include <dlfcn.h>
#include <stdio.h>

int main(int argc, char **argv)
{
	void *library = dlopen(argc > 1 ? argv[1] : "./diskscout.so", RTLD_NOW | RTLD_LOCAL);
	__typeof__(GetItemInfo) *get = NULL; /* in C++: decltype */
	__typeof__(SetItemInfo) *release = NULL;
	IPMICOMMAND cmd = {0};
	void *head = NULL; /* null: a new list */
	int count = 0, failed;
	const STORAGE_DISK_LIST *disk;

	if (library != NULL) {
		*(void **)&get = dlsym(library, "GetItemInfo");
		*(void **)&release = dlsym(library, "SetItemInfo");
	}
	if (get == NULL || release == NULL) {
		fprintf(stderr, "%s\n", dlerror());
		return 1;
	}

	cmd.nCommand = CMD_GET_DISKS;
	failed = get(&cmd, &head, &count) != 0;
	if (failed)
		fprintf(stderr, "the query failed\n");
	for (disk = head; disk != NULL; disk = disk->next)
		printf("%s: %s, %llu bytes%s\n", disk->szDeviceName, disk->szModel, disk->nSize,
		       disk->bUsedBySystem ? ", system disk" : "");
	printf("%d disks\n", count);

	cmd.nCommand = CMD_FREE_DISKS;
	return release(&cmd, &head) != 0 || failed;
}
