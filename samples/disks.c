/* SPDX-License-Identifier: Apache-2.0 */
/* Prints every disk of this host, as an agent asks diskscout-block.so; docs/block.md tells the rest. */
#include "diskscout_block.h"

#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

int main(int argc, char **argv)
{
	void *library = dlopen(argc > 1 ? argv[1] : "./diskscout-block.so", RTLD_NOW | RTLD_LOCAL);
	__typeof__(GetItemInfo) *get = NULL; /* in C++: decltype */
	__typeof__(SetItemInfo) *release = NULL;
	IPMICOMMAND cmd = {0};
	void *head = NULL;
	int count = 0;

	if (library != NULL) {
		*(void **)&get = dlsym(library, "GetItemInfo");
		*(void **)&release = dlsym(library, "SetItemInfo");
	}
	if (get == NULL || release == NULL) {
		fprintf(stderr, "%s\n", dlerror());
		return 1;
	}

	cmd.nCommand = CMD_GET_BLOCK_DEVICES;
	if (get(&cmd, &head, &count) != 0) {
		perror("the devices cannot be listed");
		return 1;
	}
	for (const block_device *device = head; device != NULL; device = device->next)
		if (strcmp(device->kind, "disk") == 0)
			printf("%s: %lld bytes, model %s, serial number %s, %s\n", device->node, device->size,
			       device->model ? device->model : "-", device->serial ? device->serial : "-",
			       device->transport ? device->transport : "-");

	cmd.nCommand = CMD_FREE_BLOCK_DEVICES;
	return release(&cmd, &head);
}
