/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Makes a mirror of two disks behind a RAID controller:
 *
 *   mirror PLUGIN CONFIG CONTROLLER LABEL MEGABYTES DISK DISK
 *   mirror ./diskscout.so raid.cfg aac0 data 1024 0:02:0 0:03:0
 *
 * An example of the operations that the plug-in exports beside its queries. It waits until the controller has
 * taken the job, not until the mirror is in step: that is a task of the controller.
 *
 * Exit status: 0; 1 when the operation failed; 2 for bad usage.
 */
#include "diskscout_raid.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

enum { STATUS_FINE = 0, STATUS_FAILED = 1, STATUS_USAGE = 2 };

/* Of a variable: the plug-in is loaded at run time, the header says what its name stands for. */
typedef __typeof__(Aac_Create_Raid1) create_mirror;

static const struct {
	enum aac_result code;
	const char *meaning;
} failures[] = {
	{AAC_RUN_FAILED, "the controller tool cannot be run; see the configuration"},
	{AAC_NO_SPACE, "a disk or the space on it was not found"},
	{AAC_DISK_CROWDED, "a disk is divided into too many pieces already"},
	{AAC_CONTROLLER_UNUSABLE, "the controller is missing or cannot be opened"},
	{AAC_CONTROLLER_BUSY, "another program holds the controller"},
};

static const char *meaning_of(int code)
{
	size_t i;
	for (i = 0; i < sizeof failures / sizeof *failures; i++) {
		if (failures[i].code == code)
			return failures[i].meaning;
	}
	return "the controller tool refuses";
}

static int complain(int status, const char *what)
{
	fprintf(stderr, "mirror: %s\n", what);
	return status;
}

/* The number of a disk's address, "0:0a:0" with hexadecimal parts; -1 when the text is none. */
static int address_of(const char *text)
{
	unsigned channel, id, lun;
	char rest;
	if (sscanf(text, "%1x:%2x:%1x%c", &channel, &id, &lun, &rest) != 3)
		return -1;
	return (int)(channel << 16 | id << 8 | lun);
}

/* At least 1: nothing would mean as much as there is. */
static int megabytes_of(const char *text)
{
	char *end;
	const long number = strtol(text, &end, 10);
	return *text && !*end && number > 0 && number <= 0x7fffffff ? (int)number : -1;
}

/* The file is read by the first operation of the process: this comes before it. */
static int name_configuration(void *plugin, const char *file)
{
	char *const name = dlsym(plugin, "g_szConfigFileName");
	if (!name || strlen(file) >= sizeof g_szConfigFileName)
		return -1;
	strcpy(name, file);
	return 0;
}

int main(int argc, char **argv)
{
	void *plugin;
	create_mirror *create;
	int first, megabytes, second, result;

	if (argc != 8)
		return complain(STATUS_USAGE,
		                "PLUGIN CONFIG CONTROLLER LABEL MEGABYTES DISK DISK are needed");
	megabytes = megabytes_of(argv[5]);
	first = address_of(argv[6]);
	second = address_of(argv[7]);
	if (megabytes < 0 || first < 0 || second < 0)
		return complain(STATUS_USAGE, "a size or a disk's address cannot be read");

	plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
	if (!plugin)
		return complain(STATUS_USAGE, dlerror());
	*(void **)&create = dlsym(plugin, "Aac_Create_Raid1");
	if (!create || name_configuration(plugin, argv[2]) != 0)
		return complain(STATUS_USAGE, "the plug-in or the configuration's name is unfit");

	/* The files of a run lie in the working directory. */
	umask(077);
	result = create(argv[3], argv[4], 0, first, megabytes, second);
	dlclose(plugin);
	if (result != AAC_OK)
		return complain(STATUS_FAILED, meaning_of(result));
	printf("%s makes a mirror of %s and %s\n", argv[3], argv[6], argv[7]);
	return STATUS_FINE;
}
