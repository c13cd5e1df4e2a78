/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Reads the list of devices while loop devices come and go:
 *
 *   hotplug PLUGIN TIMES
 *
 * Needs root and /dev/loop-control; takes numbers that are free. Each record that names one of them has to be
 * whole. Prints how often devices came, how often the list was read and how often it had one of them. Exit
 * status: 0; 1 for a record that was told by halves, a failed query or a leaked descriptor; 2 when devices
 * cannot be made.
 */
#include "diskscout_block.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/loop.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

enum { FIRST = 5000, DEVICES = 4 };

typedef int (*get_function)(const IPMICOMMAND *, void **, int *);
typedef int (*set_function)(const IPMICOMMAND *, void **);

static int come_and_go(int control, long times)
{
	for (long i = 0; i < times; i++) {
		const int number = FIRST + (int)(i % DEVICES);
		if (ioctl(control, LOOP_CTL_ADD, number) < 0)
			return 2;
		while (ioctl(control, LOOP_CTL_REMOVE, number) < 0)
			continue; /* somebody holds it for a moment */
	}
	return 0;
}

static int is_ours(const block_device *device)
{
	return strncmp(device->name, "loop", 4) == 0 && atoi(device->name + 4) >= FIRST;
}

static int is_whole(const block_device *device)
{
	return device->major == 7 && device->minor == atoi(device->name + 4) && device->node &&
	       strcmp(device->node + 5, device->name) == 0 && strcmp(device->kind, "loop") == 0 &&
	       device->size == 0 && device->logical_sector == 512 && device->physical_sector == 512 &&
	       device->rotational != BLOCK_ABSENT && device->removable == 0 && device->hidden == 0 &&
	       device->read_only != BLOCK_ABSENT;
}

static int descriptors(void)
{
	int count = 0;
	DIR *folder = opendir("/proc/self/fd");
	while (folder && readdir(folder))
		count++;
	if (folder)
		closedir(folder);
	return count;
}

/* How often one of them was in the list; -1 when the query failed or one was not whole. */
static long read_list(get_function get, set_function set)
{
	IPMICOMMAND command = {0};
	void *list = NULL;
	int count = 0;
	long seen = 0;

	command.nCommand = CMD_GET_BLOCK_DEVICES;
	if (get(&command, &list, &count) != 0)
		return -1;
	for (const block_device *device = list; device; device = device->next) {
		if (!is_ours(device))
			continue;
		seen++;
		if (!is_whole(device)) {
			fprintf(stderr,
			        "hotplug: %s is told by halves: %d:%d %s %s, size %lld, sectors %d %d, flags "
			        "%d %d %d %d\n",
			        device->name, device->major, device->minor, device->node, device->kind,
			        device->size, device->logical_sector, device->physical_sector,
			        device->rotational, device->removable, device->hidden, device->read_only);
			seen = -1;
			break;
		}
	}
	command.nCommand = CMD_FREE_BLOCK_DEVICES;
	set(&command, &list);
	return seen;
}

int main(int argc, char **argv)
{
	long reads = 0;
	long seen = 0;
	int status = 0;
	const long times = argc == 3 ? atol(argv[2]) : 0;
	void *library = times > 0 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
	const int control = open("/dev/loop-control", O_RDWR | O_CLOEXEC);
	if (!library || control < 0) {
		fputs("usage: hotplug PLUGIN TIMES, as root\n", stderr);
		return 2;
	}
	get_function get = NULL;
	set_function set = NULL;
	*(void **)&get = dlsym(library, "GetItemInfo");
	*(void **)&set = dlsym(library, "SetItemInfo");
	const int before = descriptors();
	const pid_t child = fork();
	if (child == 0)
		_exit(come_and_go(control, times));
	int failed = 0;
	while (waitpid(child, &status, WNOHANG) == 0) {
		const long found = failed ? 0 : read_list(get, set);
		failed = failed || found < 0;
		seen += found > 0 ? found : 0;
		reads++;
	}
	printf("%ld came and went, %ld lists, %ld records of them\n", times, reads, seen);
	if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
		return 2;
	return failed || descriptors() != before ? 1 : 0;
}
