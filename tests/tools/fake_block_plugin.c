/* SPDX-License-Identifier: Apache-2.0 */
/*
 * A block plug-in whose answers are made by hand. FAKE_BLOCK_CASE names the answers; queries whose codes
 * stand in FAKE_BLOCK_FAILS fail with the number in FAKE_BLOCK_ERRNO. When it is unloaded it writes to
 * FAKE_BLOCK_REPORT what its caller did, one "word value" a line: "wrong" counts lists that came back with
 * the code of another one, or never went out, "live" the records that are still out.
 */
#define _DEFAULT_SOURCE
#include "diskscout_block.h"

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>

enum { MAX_LISTS = 32, MANY = 10000, DEEP = 200 };
static const long long MIB = 1048576, GIB = 1073741824;

int memory_counter_block;

/* Seen by all processes that ask: each list is asked for in one of its own. */
struct seen {
	struct {
		void *head;
		UINT query;
	} out[MAX_LISTS];
	int queries, releases, live, wrong;
};
static struct seen *seen;

__attribute__((constructor)) static void share(void)
{
	seen = mmap(NULL, sizeof *seen, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
	if (seen == MAP_FAILED)
		abort();
}

/* Bytes that a record is shorter, or longer, than this header says. */
static long shorter, longer;

typedef struct {
	size_t record_size;
	void *next;
} record_head;

/* A record behind the last one: no longer than it says itself, so that whoever reads on reads beyond its
 * memory. */
static void *append(void **head, size_t size)
{
	record_head *record;
	while (*head)
		head = &((record_head *)*head)->next;
	record = malloc(size + (size_t)longer);
	if (!record)
		abort();
	memset(record, 0xff, size + (size_t)longer);
	record->record_size = size + (size_t)longer;
	record->next = NULL;
	memory_counter_block++;
	seen->live++;
	*head = record;
	return record;
}

/* As long as the plug-in is there. */
static const char *node_of(const char *name)
{
	static char nodes[MANY * 32];
	static size_t used;
	char *const node = nodes + used;
	used += strlen(name) + sizeof "/dev/";
	if (used > sizeof nodes)
		abort();
	return strcat(strcpy(node, "/dev/"), name);
}

/* Of which nothing else is known. */
static block_device *add_device(void **head, const char *name, const char *kind, int major, int minor)
{
	const size_t size = shorter ? offsetof(block_device, controller_pci) : sizeof(block_device);
	block_device all = {0}, *const device = append(head, size);

	all.record_size = device->record_size;
	all.name = name;
	all.node = node_of(name);
	all.kind = kind;
	all.major = major;
	all.minor = minor;
	all.partition_number = all.numa_node = BLOCK_ABSENT;
	all.logical_sector = all.physical_sector = 512;
	all.scsi_host = all.scsi_channel = all.scsi_target = BLOCK_ABSENT;
	all.scsi_lun = BLOCK_ABSENT;
	memcpy(device, &all, size);
	return device;
}

static block_device *add_partition(void **head, const char *name, const char *disk, int number, int minor)
{
	block_device *const device = add_device(head, name, "partition", 8, minor);
	device->disk = disk;
	device->partition_number = number;
	return device;
}

static block_text by_path = {sizeof by_path, NULL, "/dev/disk/by-path/pci-0000:00:1f.2-ata-1"};
static block_text by_id = {sizeof by_id, &by_path, "/dev/disk/by-id/ata-EXAMPLE_DISK_EX-1"};

static void plain_disk(block_device *disk)
{
	disk->size = 64 * GIB;
	disk->physical_sector = 4096;
	disk->rotational = 1;
	disk->transport = "sata";
	disk->model = "EXAMPLE DISK";
	disk->model_source = "vpd";
	disk->serial = "EX-1";
	disk->serial_source = "udev";
	disk->firmware = "1.0";
	disk->firmware_source = "kernel";
	disk->wwn = "0x5000c500a1b2c3d4";
	disk->scsi_host = 2;
	disk->scsi_channel = disk->scsi_target = 0;
	disk->scsi_lun = 1;
	disk->links = &by_id;
	if (shorter)
		return;
	disk->controller_pci = "0000:00:1f.2";
	disk->numa_node = 1;
	disk->state = "running";
	disk->under_root = disk->under_boot = disk->under_swap = 1;
}

static void plain_mapping(block_device *device, const char *name, long long size)
{
	device->size = size;
	if (shorter)
		return;
	device->state = "running";
	device->dm_name = name;
	device->dm_uuid = "LVM-0123456789";
	device->dm_kind = "lvm";
	device->dm_target = "linear";
}

static void plain_devices(void **head)
{
	block_device *device;
	plain_mapping(add_device(head, "dm-0", "dm", 253, 0), "vg-root", 20 * GIB);
	plain_mapping(add_device(head, "dm-1", "dm", 253, 1), "vg-swap", 2 * GIB);
	add_device(head, "md0", "md", 9, 0)->size = 32 * GIB;
	device = add_device(head, "nvme0n1", "disk", 259, 0);
	device->size = 512110190592;
	device->rotational = BLOCK_ABSENT;
	device->transport = "nvme";
	device->serial_source = "not asked";
	device = add_partition(head, "nvme0n1p1", "nvme0n1", 1, 1);
	device->major = 259;
	device->size = 512000000000;
	plain_disk(add_device(head, "sda", "disk", 8, 0));
	add_partition(head, "sda1", "sda", 1, 1)->size = 512 * MIB;
	add_partition(head, "sda2", "sda", 2, 2)->size = 32 * GIB;
	add_partition(head, "sda10", "sda", 10, 10)->size = MIB;
	add_device(head, "sdb", "disk", 8, 16)->size = 33 * GIB;
	add_partition(head, "sdb1", "sdb", 1, 17)->size = 32 * GIB;
	device = add_device(head, "sr0", "rom", 11, 0);
	device->removable = 1;
	device->read_only = BLOCK_ABSENT;
}

static block_link *add_link(void **head, const char *upper, const char *lower, const char *relation)
{
	block_link *const link = append(head, sizeof *link);
	link->upper = upper;
	link->lower = lower;
	link->relation = relation;
	link->address = link->state = link->access = NULL;
	return link;
}

static void plain_links(void **head)
{
	add_link(head, "dm-0", "md0", "slave");
	add_link(head, "dm-1", "md0", "slave");
	add_link(head, "md0", "sda2", "slave");
	add_link(head, "md0", "sdb1", "slave");
	add_link(head, "nvme0n1p1", "nvme0n1", "partition");
	add_link(head, "sda1", "sda", "partition");
	add_link(head, "sda2", "sda", "partition");
	add_link(head, "sda10", "sda", "partition");
	add_link(head, "sdb1", "sdb", "partition");
}

static block_content *add_content(void **head, const char *name, const char *source)
{
	block_content none = {0}, *const content = append(head, sizeof *content);
	none.record_size = content->record_size;
	none.name = name;
	none.source = source;
	none.error = BLOCK_ABSENT;
	none.ambiguous = source ? 0 : BLOCK_ABSENT;
	*content = none;
	return content;
}

static void plain_file_system(block_content *content, const char *usage, const char *type, const char *label)
{
	content->usage = usage;
	content->type = type;
	content->label = label;
	content->uuid = "6b1f3c8e-1f2a-4c55-9a51-0d5d4fb0c2aa";
}

static block_partition sda_second = {
	sizeof sda_second, NULL, NULL, 2, 537919488, 0, "0x5", NULL, NULL, 0,
};
static block_partition sda_first = {
	sizeof sda_first, &sda_second, "sda1", 1, 1048576, 536870912, "0x83", "0a1b2c3d-01", NULL, 128,
};
static block_partition nvme_first = {
	sizeof nvme_first,
	NULL,
	"nvme0n1p1",
	1,
	1048576,
	512000000000,
	"0fc63daf-8483-4772-8e79-3d69d8477de4",
	"11111111-2222-3333-4444-555555555555",
	"data",
	-9223372036854775807LL - 1,
};

static void plain_contents(void **head)
{
	block_content *content;
	plain_file_system(add_content(head, "dm-0", "device"), "filesystem", "ext4", "root");
	plain_file_system(add_content(head, "dm-1", "device"), "other", "swap", NULL);
	content = add_content(head, "md0", "device");
	plain_file_system(content, "raid", "LVM2_member", NULL);
	content->version = "LVM2 001";
	content = add_content(head, "nvme0n1", "device");
	content->table = "gpt";
	content->table_id = "99999999-2222-3333-4444-555555555555";
	content->partitions = &nvme_first;
	content = add_content(head, "nvme0n1p1", "udev");
	plain_file_system(content, "filesystem", "xfs", "data");
	content->error = EACCES;
	content->ambiguous = BLOCK_ABSENT;
	content = add_content(head, "sda", "device");
	content->table = "dos";
	content->table_id = "0x0a1b2c3d";
	content->partitions = &sda_first;
	plain_file_system(add_content(head, "sda1", "device"), "filesystem", "ext2", NULL);
	content = add_content(head, "sda2", "device");
	plain_file_system(content, "raid", "linux_raid_member", "host:0");
	content->uuid_sub = "7c1f3c8e-1f2a-4c55-9a51-0d5d4fb0c2bb";
	add_content(head, "sr0", NULL)->error = ENOMEDIUM;
}

static block_mount *add_mount(void **head, int id, const char *mount_point, block_text *devices,
                              const char *source)
{
	block_mount none = {0}, *const mount = append(head, sizeof *mount);
	none.record_size = mount->record_size;
	none.kind = "mount";
	none.id = id;
	none.parent_id = 1;
	none.major = 0;
	none.minor = 22;
	none.devices = devices;
	none.source = source;
	none.root = "/";
	none.mount_point = mount_point;
	none.options = "rw,relatime";
	none.super_options = "rw";
	none.total = none.used = none.available = BLOCK_ABSENT;
	none.priority = BLOCK_ABSENT;
	*mount = none;
	return mount;
}

static block_text on_root = {sizeof on_root, NULL, "dm-0"};
static block_text on_swap = {sizeof on_swap, NULL, "dm-1"};
static block_text on_boot = {sizeof on_boot, NULL, "sda1"};
static block_text on_data = {sizeof on_data, NULL, "nvme0n1p1"};

static void plain_space(block_mount *mount, int major, int minor, const char *type)
{
	mount->major = major;
	mount->minor = minor;
	mount->type = type;
	mount->total = 10 * GIB;
	mount->used = 4 * GIB;
	mount->available = 5 * GIB;
}

static void plain_mounts(void **head)
{
	block_mount *mount = add_mount(head, 25, "/", &on_root, "/dev/mapper/vg-root");
	plain_space(mount, 253, 0, "ext4");
	add_mount(head, 26, "/proc", NULL, "proc")->type = "proc";
	plain_space(add_mount(head, 27, "/boot", &on_boot, "/dev/sda1"), 8, 1, "ext2");
	mount = add_mount(head, 28, "/home", &on_root, "/dev/mapper/vg-root");
	plain_space(mount, 253, 0, "ext4");
	mount->root = "/@home";
	mount = add_mount(head, 29, "/data", &on_data, "/dev/nvme0n1p1");
	plain_space(mount, 259, 1, "xfs");
	mount->shadowed = 1;
	mount = add_mount(head, BLOCK_ABSENT, NULL, &on_swap, "/dev/dm-1");
	mount->kind = "swap";
	mount->parent_id = mount->major = mount->minor = mount->shadowed = BLOCK_ABSENT;
	mount->type = "partition";
	mount->root = mount->options = mount->super_options = NULL;
	mount->total = 2 * GIB;
	mount->used = 0;
	mount->priority = -1; /* a priority as any other */
}

static block_member md_second = {sizeof md_second, NULL,    "sdb1",      "spare",
                                 BLOCK_ABSENT,     "spare", BLOCK_ABSENT};
static block_member md_first = {sizeof md_first, &md_second, "sda2", "active", 0, "in_sync", 3};

static void plain_arrays(void **head)
{
	block_array none = {0}, *const array = append(head, sizeof *array);
	none.record_size = array->record_size;
	none.name = "md0";
	none.uuid = "01234567:89abcdef:01234567:89abcdef";
	none.metadata = "1.2";
	none.level = "raid1";
	none.state = "active";
	none.wanted = 2;
	none.active = none.spare = none.degraded = 1;
	none.size = 32 * GIB;
	none.chunk_size = none.layout = BLOCK_ABSENT;
	none.sync_action = "recover";
	none.sync_done = 1000;
	none.sync_total = 67108864;
	none.sync_speed = 150000;
	none.bitmap = "+8";
	none.consistency = "bitmap";
	none.members = &md_first;
	*array = none;
}

static void nothing(void **head)
{
	(void)head;
}

/* What a plug-in promises never to tell. */
#define STEERING                                                                                             \
	"\x1b[31m\x07\x7f\xc2\x9b"                                                                           \
	"5n\nDISKS\r\t"

static void hostile_devices(void **head)
{
	static char name[1001];
	block_device *device = add_device(head,
	                                  "sd\x1b]0;x\x07"
	                                  "a\nsdb",
	                                  "disk", 8, 0);
	device->size = 9223372036854775807;
	device->model = STEERING "end";
	device->serial = "\"$(id)\\`id`'";
	device->vendor = "\xff\xc3(caf\xc3\xa9";
	memset(name, 'n', sizeof name - 1);
	device = add_device(head, name, "disk", 8, 16);
	device->size = -2;
	add_device(head, "", "", BLOCK_ABSENT, BLOCK_ABSENT)->node = NULL;
}

static void hostile_links(void **head)
{
	add_link(head, "gone", "nowhere", STEERING);
	add_link(head, "", "", "slave");
}

static block_text on_hostile = {sizeof on_hostile, NULL,
                                "sd\x1b]0;x\x07"
                                "a\nsdb"};

static void hostile_mounts(void **head)
{
	add_mount(head, 30, "/mnt/" STEERING, &on_hostile, STEERING)->type = STEERING;
	add_mount(head, 31, "/mnt/second", &on_hostile, "none")->type = "none";
}

static void many_devices(void **head)
{
	static char names[MANY][16];
	void **end = head;
	for (int i = 0; i < MANY; i++) {
		snprintf(names[i], sizeof names[i], "nbd%d", i);
		add_device(end, names[i], "nbd", 43, i)->size = (MANY - i) * MIB;
		end = &((record_head *)*end)->next;
	}
}

/* Each stands on the one before. */
static char deep_names[DEEP][16];

static void deep_devices(void **head)
{
	for (int i = 0; i < DEEP; i++) {
		snprintf(deep_names[i], sizeof deep_names[i], "dm-%d", i);
		add_device(head, deep_names[i], "dm", 253, i);
	}
}

static void deep_links(void **head)
{
	for (int i = 1; i < DEEP; i++)
		add_link(head, deep_names[i], deep_names[i - 1], "slave");
}

static void ring_devices(void **head)
{
	add_device(head, "dm-0", "dm", 253, 0);
	add_device(head, "dm-1", "dm", 253, 1);
	add_device(head, "dm-2", "dm", 253, 2);
}

static void ring_links(void **head)
{
	add_link(head, "dm-0", "dm-1", "slave");
	add_link(head, "dm-1", "dm-0", "slave");
	add_link(head, "dm-2", "dm-2", "slave");
}

static void path_devices(void **head)
{
	block_device *const path = add_device(head, "nvme0c0n1", "path", BLOCK_ABSENT, BLOCK_ABSENT);
	path->node = NULL;
	path->hidden = 1;
	add_device(head, "nvme0n1", "disk", 259, 0)->size = GIB;
}

static void path_links(void **head)
{
	block_link *const link = add_link(head, "nvme0n1", "nvme0c0n1", "path");
	link->address = "0000:01:00.0";
	link->state = "live";
	link->access = "optimized";
}

typedef void answer(void **head);

static const struct made_case {
	const char *name;
	answer *devices, *links, *contents, *mounts, *arrays;
	long shorter, longer;
} cases[] = {
	{"plain", plain_devices, plain_links, plain_contents, plain_mounts, plain_arrays, 0, 0},
	{"empty", nothing, nothing, nothing, nothing, nothing, 0, 0},
	{"hostile", hostile_devices, hostile_links, nothing, hostile_mounts, nothing, 0, 0},
	{"many", many_devices, nothing, nothing, nothing, nothing, 0, 0},
	{"deep", deep_devices, deep_links, nothing, nothing, nothing, 0, 0},
	{"ring", ring_devices, ring_links, nothing, nothing, nothing, 0, 0},
	{"paths", path_devices, path_links, nothing, nothing, nothing, 0, 0},
	{"shorter", plain_devices, plain_links, plain_contents, plain_mounts, plain_arrays, 1, 0},
	{"longer", plain_devices, plain_links, plain_contents, plain_mounts, plain_arrays, 0, 64},
};

static const struct made_case *wanted_case(void)
{
	const char *const name = getenv("FAKE_BLOCK_CASE");
	size_t i = 0;
	while (i < sizeof cases / sizeof *cases && strcmp(cases[i].name, name ? name : "plain") != 0)
		i++;
	if (i == sizeof cases / sizeof *cases)
		abort();
	return &cases[i];
}

static answer *answer_to(const struct made_case *from, UINT query)
{
	switch (query) {
	case CMD_GET_BLOCK_DEVICES:
		return from->devices;
	case CMD_GET_BLOCK_LINKS:
		return from->links;
	case CMD_GET_BLOCK_CONTENTS:
		return from->contents;
	case CMD_GET_BLOCK_MOUNTS:
		return from->mounts;
	case CMD_GET_BLOCK_ARRAYS:
		return from->arrays;
	default:
		return NULL;
	}
}

static int is_failing(UINT query)
{
	const char *const failing = getenv("FAKE_BLOCK_FAILS");
	char code[16];
	snprintf(code, sizeof code, "%u", query);
	return failing && strstr(failing, code);
}

static int failure(int error)
{
	errno = error;
	return -1;
}

int GetItemInfo(const IPMICOMMAND *cmd, void **result, int *length)
{
	const struct made_case *const from = wanted_case();
	answer *const make_answer = answer_to(from, cmd->nCommand);
	const char *const error = getenv("FAKE_BLOCK_ERRNO");

	if (!make_answer || seen->queries == MAX_LISTS || *result || *length)
		abort();
	seen->out[seen->queries++].query = cmd->nCommand;
	if (is_failing(cmd->nCommand))
		return failure(error ? atoi(error) : EACCES);
	shorter = from->shorter;
	longer = from->longer;
	make_answer(result);
	for (const record_head *record = *result; record; record = record->next)
		++*length;
	seen->out[seen->queries - 1].head = *result;
	return 0;
}

int SetItemInfo(const IPMICOMMAND *cmd, void **result)
{
	int i = 0;

	seen->releases++;
	while (i < seen->queries &&
	       !(seen->out[i].query + 1 == cmd->nCommand && seen->out[i].head == *result))
		i++;
	if (i == seen->queries) {
		seen->wrong++;
		return failure(EINVAL);
	}
	while (*result) {
		record_head *const record = *result;
		*result = record->next;
		free(record);
		memory_counter_block--;
		seen->live--;
	}
	seen->out[i].head = NULL;
	return 0;
}

__attribute__((destructor)) static void report(void)
{
	const char *const name = getenv("FAKE_BLOCK_REPORT");
	FILE *const file = name ? fopen(name, "w") : NULL;
	if (!file)
		return;
	fprintf(file, "queries %d\nreleases %d\nlive %d\nwrong %d\n", seen->queries, seen->releases,
	        seen->live, seen->wrong);
	for (int i = 0; i < seen->queries; i++)
		fprintf(file, "query%d %u\n", i, seen->out[i].query);
	fclose(file);
}
