/* SPDX-License-Identifier: Apache-2.0 */
/* The hardware RAID half of the plug-in whose answers are made by hand. */
#include "fake_plugin.h"

#include <string.h>

/* Where the plug-in is to read the controller tool's configuration; the tool writes to it. */
char g_szConfigFileName[256] = "/nowhere/hardraid.cfg";

#define ADDRESS(channel, id, lun) ((channel) << 16 | (id) << 8 | (lun))

/* Appends a record of the type to the list. */
#define ADD(type, head) ((type *)append(head, sizeof(type), offsetof(type, next)))

static void *append(void **head, size_t size, size_t next_at)
{
	while (*head)
		head = (void **)(void *)((char *)*head + next_at);
	return *head = make_record(size);
}

static aac_controller *add_controller(void **head, int id, const char *name)
{
	aac_controller *const c = ADD(aac_controller, head);
	c->ControllerID = id;
	PUT(c->Adapter_Name, name);
	return c;
}

static int plain_controllers(void **head, int *length)
{
	aac_controller *c = add_controller(head, 0, "aac0");
	PUT(c->Adapter_Type, "EXAMPLE 2200S");
	c->Availability = 3;
	c->Clustering = 1;
	c = add_controller(head, 1, "aac1");
	c->Availability = -1;
	*length = 2;
	return 0;
}

static HWRAID_LIST *add_container(void **head, int id, KESTREL_HWRAID_TYPE type)
{
	HWRAID_LIST *const c = ADD(HWRAID_LIST, head);
	c->nRaidID = id;
	c->RaidType = type;
	c->nHotSpare = -1;
	memset(c->nPosition, 0xff, sizeof c->nPosition);
	return c;
}

static int plain_containers(void **head, int *length)
{
	HWRAID_LIST *c = add_container(head, 0, KESTREL_HWRAID_TYPE_RAID1);
	c->nDiskNumber = 2;
	c->nPosition[0] = ADDRESS(0, 0, 0);
	c->nPosition[1] = ADDRESS(1, 10, 2);
	c->nTotalSize = 1073741824;
	c->Usage = KESTREL_HWRAID_USAGE_TYPE_OPEN;
	c->nHotSpare = ADDRESS(0, 4, 0);
	PUT(c->szLabel, "system");
	c = add_container(head, 2, KESTREL_HWRAID_TYPE_RAID10);
	c->nDiskNumber = 2;
	c->nPosition[0] = 24;
	c->nPosition[1] = 63;
	c->nTotalSize = -1073741824;
	c->nStripeSize = 65536;
	c->Usage = KESTREL_HWRAID_USAGE_TYPE_UNKNOWN;
	c = add_container(head, 24, KESTREL_HWRAID_TYPE_UNKNOWN);
	c->Usage = KESTREL_HWRAID_USAGE_TYPE_UNKNOW;
	*length = 3;
	return 0;
}

static int plain_disks(void **head, int *length)
{
	HWRAID_DISK_LIST *d = ADD(HWRAID_DISK_LIST, head);
	d->nPosition = ADDRESS(0, 0, 0);
	PUT(d->szVendor, "ACME");
	PUT(d->szModel, "EX1");
	d->nBlocks = 2097152;
	d->nBytesPerBlock = 512;
	d->Shared = 1;
	d->nRate = 320;
	d = ADD(HWRAID_DISK_LIST, head);
	d->nPosition = ADDRESS(1, 10, 2);
	d->DeviceType = 3 - 1;
	d->nBlocks = 2147483647;
	d->nBytesPerBlock = 512;
	d->Usage = KESTREL_HWRAID_DSK_USAGE_UNINIT;
	d->Shared = -1;
	*length = 2;
	return 0;
}

static void add_area(void **head, long long offset, long long size)
{
	HWRAID_SPACE_LIST *const s = ADD(HWRAID_SPACE_LIST, head);
	s->nOffset = offset;
	s->nFreeSpace = size;
}

/* Nothing on the first disk, two areas on the second, of which one begins at 3 GiB. */
static int plain_space(int disk, void **head, int *length)
{
	if (disk != ADDRESS(1, 10, 2))
		return no_items(head, length);
	add_area(head, 65536, 1073741824);
	add_area(head, -1073741824, 0);
	*length = 2;
	return 0;
}

static int plain_partitions(void **head, int *length)
{
	HWRAID_PARTITION_LIST *p = ADD(HWRAID_PARTITION_LIST, head);
	p->nPosition = ADDRESS(1, 10, 2);
	p->nOffset = 65536;
	p->nSize = 3221225472;
	p->RaidType = KESTREL_HWRAID_TYPE_VOLUME;
	p->ReadWriteAttribute = 3;
	p = ADD(HWRAID_PARTITION_LIST, head);
	p->bRaidID = 24;
	p->RaidType = KESTREL_HWRAID_TYPE_RAID1;
	p->nMultilevelRaidID = 2;
	p->MultilevelType = 1;
	p->ReadWriteAttribute = 1;
	*length = 2;
	return 0;
}

const struct raid_case plain_raid = {plain_controllers, plain_containers, plain_disks, plain_partitions,
                                     plain_space};

static int no_space(int disk, void **head, int *length)
{
	(void)disk;
	return no_items(head, length);
}

static int failing_space(int disk, void **head, int *length)
{
	(void)disk;
	return failure(head, length);
}

const struct raid_case empty_raid = {no_items, no_items, no_items, no_items, no_space};
const struct raid_case bare_raid = {plain_controllers, no_items, no_items, no_items, no_space};
const struct raid_case failing_raid = {failure, failure, failure, failure, failing_space};

/* The name fills its field, no code has a name, no number is one. */
static int hostile_controllers(void **head, int *length)
{
	aac_controller *const c = add_controller(head, -5, "aac0");
	memset(c->Adapter_Type, 'T', sizeof c->Adapter_Type);
	c->Availability = 4;
	c->Clustering = 63;
	*length = 1;
	return 0;
}

static int hostile_containers(void **head, int *length)
{
	HWRAID_LIST *const c = add_container(head, -1, 9);
	c->nDiskNumber = 70;
	for (int i = 0; i < 64; i++)
		c->nPosition[i] = ADDRESS(0, 15, i == 63 ? 15 : 0);
	c->nTotalSize = -9223372036854775807LL - 1;
	c->nStripeSize = -65536;
	c->Usage = 10;
	c->nHotSpare = -2;
	PUT(c->szLabel, "a\x1b[2J\nb");
	*length = 1;
	return 0;
}

static int hostile_disks(void **head, int *length)
{
	HWRAID_DISK_LIST *const d = ADD(HWRAID_DISK_LIST, head);
	d->nPosition = ADDRESS(0x7fff, 255, 255);
	memset(d->szVendor, 'V', sizeof d->szVendor);
	PUT(d->szModel, "caf\xe9");
	d->DeviceType = 10;
	d->nBlocks = -1;
	d->nBytesPerBlock = -512;
	d->Usage = 6;
	d->Shared = 2;
	d->nRate = -1;
	*length = 1;
	return 0;
}

static int hostile_partitions(void **head, int *length)
{
	HWRAID_PARTITION_LIST *const p = ADD(HWRAID_PARTITION_LIST, head);
	p->nPosition = -1;
	p->nOffset = -1024;
	p->nSize = -9223372036854775807LL - 1;
	p->bRaidID = -1;
	p->RaidType = -2;
	p->MultilevelType = 7;
	p->nMultilevelRaidID = -3;
	p->ReadWriteAttribute = 4;
	*length = 1;
	return 0;
}

const struct raid_case hostile_raid = {hostile_controllers, hostile_containers, hostile_disks,
                                       hostile_partitions, no_space};

/* The list of disks breaks off, and the first of them cannot be asked. */
static int partial_disks(void **head, int *length)
{
	plain_disks(head, length);
	return -1;
}

static int partial_space(int disk, void **head, int *length)
{
	return disk ? plain_space(disk, head, length) : failure(head, length);
}

const struct raid_case partial_raid = {plain_controllers, plain_containers, partial_disks, plain_partitions,
                                       partial_space};

const struct raid_case hanging_raid = {plain_controllers, no_end, plain_disks, plain_partitions, plain_space};

static int answer_space(const struct raid_case *from, const char *argument, void **head, int *length)
{
	int disk;
	memcpy(&disk, argument, sizeof disk);
	return strcmp(argument + sizeof disk, "aac0") == 0 ? from->space(disk, head, length) : -1;
}

int answer_raid(const struct raid_case *from, const IPMICOMMAND *cmd, void **head, int *length)
{
	answer *const make_answer = cmd->nCommand == CMD_GET_CONTAINERS   ? from->containers
	                            : cmd->nCommand == CMD_GET_RAID_DISKS ? from->disks
	                                                                  : from->partitions;
	if (cmd->nCommand == CMD_GET_CONTROLLERS)
		return from->controllers(head, length);
	if (!cmd->szData)
		return -1;
	if (cmd->nCommand == CMD_GET_RAID_SPACE)
		return answer_space(from, cmd->szData, head, length);
	return strcmp(cmd->szData, "aac0") == 0 ? make_answer(head, length) : -1;
}

void *next_raid(void *record, UINT query)
{
	switch (query) {
	case CMD_GET_CONTAINERS:
		return ((HWRAID_LIST *)record)->next;
	case CMD_GET_RAID_DISKS:
		return ((HWRAID_DISK_LIST *)record)->next;
	case CMD_GET_RAID_SPACE:
		return ((HWRAID_SPACE_LIST *)record)->next;
	case CMD_GET_RAID_PARTITIONS:
		return ((HWRAID_PARTITION_LIST *)record)->next;
	default:
		return ((aac_controller *)record)->next;
	}
}
