/* SPDX-License-Identifier: Apache-2.0 */
/*
 * A plug-in of both kinds whose answers no host can be made to give: texts without an end, codes without a
 * name, records of other releases, failures with half a list. It watches what is given back, and who is
 * inside.
 */
#include "diskscout_block.h"
#include "diskscout_raid.h"

#include <errno.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

enum { MOST = 64, CLEARED = 1 };

char g_szConfigFileName[256] = "/root/hardraid.cfg";
int memory_counter_hdd;
int memory_counter_hwraid;
int memory_counter_block;

/* For the tests to look at. */
char made_argument[64];   /* of the last query of free areas: the address and the name */
char made_words[64];      /* of the last command, or of the last disk's initialising */
atomic_int made_faults;   /* lists that came back twice, with another kind's code, or that nobody made */
atomic_int made_overlaps; /* calls of one thread while another one was inside */
atomic_int made_waiting;  /* a slow query is inside */
atomic_int made_go;       /* it may come out */

static atomic_int inside;

static void enter(void)
{
	if (atomic_fetch_add(&inside, 1) > 0)
		atomic_fetch_add(&made_overlaps, 1);
}

static int leave(int result)
{
	atomic_fetch_sub(&inside, 1);
	return result;
}

/* Lists that are out, by their heads. */
static struct {
	void *head;
	size_t size;
	int code, records;
} out[MOST];

static void *made(int code, size_t size, int records)
{
	for (int slot = 0; slot < MOST; ++slot) {
		if (out[slot].head != NULL)
			continue;
		out[slot].head = calloc((size_t)records, size);
		out[slot].size = size;
		out[slot].code = code;
		out[slot].records = records;
		*(code < CMD_GET_BLOCK_DEVICES ? &memory_counter_hdd : &memory_counter_block) += records;
		return out[slot].head;
	}
	abort();
}

static int given_back(int code, void *head)
{
	for (int slot = 0; slot < MOST; ++slot) {
		if (head == NULL || out[slot].head != head)
			continue;
		if (out[slot].code + 1 != code)
			break;
		*(code < CMD_GET_BLOCK_DEVICES ? &memory_counter_hdd : &memory_counter_block) -=
			out[slot].records;
		/* Not freed: who looks at it after this sees that it is gone. */
		memset(head, 0xdd, out[slot].size * (size_t)out[slot].records);
		out[slot].head = NULL;
		return 0;
	}
	atomic_fetch_add(&made_faults, 1);
	return -1;
}

static int disks(void **result, int *length)
{
	STORAGE_DISK_LIST *disk = made(CMD_GET_DISKS, sizeof *disk, 2);

	memset(disk[0].szDeviceName, 'x', sizeof disk[0].szDeviceName);
	memcpy(disk[0].szModel, "A\xff\xfe\xc3\xa4", 6);
	disk[0].nSize = 0xFFFFFFFFFFFFFFFFull;
	disk[0].nTotalBlocks = 0xFFFFFFFFu;
	disk[0].bUsedBySystem = -1;
	disk[0].next = &disk[1];
	disk[1].nDiskID = 1;
	*result = disk;
	*length = 2;
	return 0;
}

static int half_of_the_partitions(void **result, int *length)
{
	STORAGE_PART_LIST *part = made(CMD_GET_PARTITIONS, sizeof *part, 2);

	part[0].bActive = (char)0x80;
	part[0].next = &part[1];
	part[1].nPartIndex = 1;
	*result = part;
	*length = 2;
	return -1;
}

static int slow_drives(void **result, int *length)
{
	*result = made(CMD_GET_CDROMS, sizeof(STORAGE_CDROM_LIST), 1);
	*length = 1;
	atomic_store(&made_waiting, 1);
	while (!atomic_load(&made_go))
		usleep(1000);
	atomic_store(&made_waiting, 0);
	return 0;
}

static int containers(void **result, int *length)
{
	HWRAID_LIST *container = made(CMD_GET_CONTAINERS, sizeof *container, 1);

	memset(container->nPosition, 0xff, sizeof container->nPosition);
	container->nDiskNumber = 70;
	container->nPosition[0] = 0;
	container->nPosition[1] = 0x010a02;
	container->RaidType = 42;
	container->nTotalSize = (int)0x80000000; /* 2 GiB in 32 bits */
	container->Usage = KESTREL_HWRAID_USAGE_TYPE_NTFS;
	container->nHotSpare = -1;
	*result = container;
	*length = 1;
	return 0;
}

/* One of a release to come, and one of a past release that knew nothing behind the state. */
static int devices(void **result, int *length)
{
	static block_text text[2] = {{sizeof text[0], &text[1], "/dev/a"}, {sizeof text[1], NULL, "/dev/b"}};
	struct {
		block_device record;
		long long more;
	} *device = made(CMD_GET_BLOCK_DEVICES, sizeof *device, 2);

	for (int nth = 0; nth < 2; ++nth) {
		device[nth].record.name = nth == 0 ? "later" : "earlier";
		device[nth].record.kind = "disk";
		device[nth].record.partition_number = BLOCK_ABSENT;
		device[nth].record.size = BLOCK_ABSENT;
		device[nth].record.rotational = BLOCK_ABSENT;
		device[nth].record.removable = 1;
		device[nth].record.links = text;
		device[nth].record.state = "running";
		device[nth].record.dm_target = "linear";
		device[nth].record.under_swap = 1;
	}
	device[0].record.record_size = sizeof *device;
	device[0].record.next = &device[1].record;
	device[1].record.record_size = offsetof(block_device, dm_name);
	*result = device;
	*length = 2;
	return 0;
}

static int mounts(void **result, int *length)
{
	block_mount *mount = made(CMD_GET_BLOCK_MOUNTS, sizeof *mount, 2);

	for (int nth = 0; nth < 2; ++nth) {
		mount[nth].record_size = sizeof *mount;
		mount[nth].kind = nth == 0 ? "mount" : "swap";
		mount[nth].priority = -1;
	}
	mount[0].next = &mount[1];
	*result = mount;
	*length = 2;
	return 0;
}

static int contents(void **result, int *length)
{
	static block_partition entry = {.record_size = sizeof entry, .number = 1, .start = 512, .size = 1024};
	block_content *content = made(CMD_GET_BLOCK_CONTENTS, sizeof *content, 1);

	/* All attributes but the second one. */
	entry.flags = (long long)0xFFFFFFFFFFFFFFFDull;
	content->record_size = sizeof *content;
	content->name = "read";
	content->error = BLOCK_ABSENT;
	content->ambiguous = 1;
	content->partitions = &entry;
	*result = content;
	*length = 1;
	return 0;
}

static int arrays(void **result, int *length)
{
	block_array *array = made(CMD_GET_BLOCK_ARRAYS, sizeof *array, 1);

	array->record_size = sizeof *array;
	array->sync_done = 5000000000;
	array->sync_speed = 1200;
	array->mismatches = BLOCK_ABSENT;
	*result = array;
	*length = 1;
	return 0;
}

static int asked(const IPMICOMMAND *cmd, void **result, int *length)
{
	switch (cmd->nCommand) {
	case CMD_GET_DISKS:
		return disks(result, length);
	case CMD_GET_PARTITIONS:
		return half_of_the_partitions(result, length);
	case CMD_GET_CDROMS:
		return slow_drives(result, length);
	case CMD_GET_CONTAINERS:
		return containers(result, length);
	case CMD_GET_RAID_SPACE:
		memcpy(made_argument, cmd->szData, 4);
		strncpy(made_argument + 4, cmd->szData + 4, sizeof made_argument - 5);
		return 0;
	case CMD_GET_BLOCK_DEVICES:
		return devices(result, length);
	case CMD_GET_BLOCK_MOUNTS:
		return mounts(result, length);
	case CMD_GET_BLOCK_CONTENTS:
		return contents(result, length);
	case CMD_GET_BLOCK_ARRAYS:
		return arrays(result, length);
	case CMD_GET_BLOCK_LINKS:
		errno = EIO;
		return -1;
	}
	return -1;
}

int GetItemInfo(const IPMICOMMAND *cmd, void **result, int *length)
{
	enter();
	return leave(asked(cmd, result, length));
}

int SetItemInfo(const IPMICOMMAND *cmd, void **result)
{
	int done;

	enter();
	done = given_back((int)cmd->nCommand, *result);
	*result = NULL;
	return leave(done);
}

int stcli(int argc, char **argv, int ZERO)
{
	size_t used = 0;

	for (int word = ZERO; word < argc; ++word)
		for (const char *at = argv[word]; used + 2 < sizeof made_words; ++at) {
			made_words[used++] = *at ? *at : ' ';
			if (*at == '\0')
				break;
		}
	made_words[used] = '\0';
	return argv[argc] == NULL ? 0 : -1;
}

/* Two tasks; of the controller "broken" with a failure that has no name. */
int Aac_Get_Task_List(const char *lpszControllerName, aac_task **pHead)
{
	aac_task *task;

	enter();
	task = made(CLEARED - 1, sizeof *task, 2);
	task[0].TaskId = -1;
	task[0].Function = 99;
	task[0].Done = 0.25f;
	task[0].State = -1;
	task[0].next = &task[1];
	*pHead = task;
	return leave(strcmp(lpszControllerName, "broken") == 0 ? -77 : 2);
}

int Aac_Clear_Task_List(aac_task *pHead)
{
	enter();
	return leave(given_back(CLEARED, pHead));
}

int Aac_Disk_Initialize(const char *lpszControllerName, int nAlways, int nUnconditional, int nC_ID_L)
{
	snprintf(made_words, sizeof made_words, "%s %d %d %d", lpszControllerName, nAlways, nUnconditional,
	         nC_ID_L);
	return 0;
}

#define STUB(name)                                                                                           \
	extern int name##_(void) __asm__(#name);                                                             \
	int name##_(void)                                                                                    \
	{                                                                                                    \
		return 0;                                                                                    \
	}
#include "stubs.h"
