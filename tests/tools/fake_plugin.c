/* SPDX-License-Identifier: Apache-2.0 */
/*
 * A plug-in whose answers are made by hand. FAKE_PLUGIN_CASE names the answers; when it is unloaded it writes
 * to FAKE_PLUGIN_REPORT what its caller did: one "word value" a line. What it counts as "wrong" is a list
 * that came back with the code of another one, or that never went out; "live" counts the records that are
 * still out.
 */
#define _DEFAULT_SOURCE
#include "fake_plugin.h"

#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

enum { MAX_LISTS = 32 };

/* Seen by all processes that ask: each list is asked for in one of its own. */
struct seen {
	struct {
		void *head;
		UINT query;
		char argument[64]; /* as it is reported */
	} out[MAX_LISTS];
	int queries, releases, live, wrong, lowest_descriptor;
};
static struct seen *seen;

__attribute__((constructor)) static void share(void)
{
	seen = mmap(NULL, sizeof *seen, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
	if (seen == MAP_FAILED)
		abort();
	seen->lowest_descriptor = 1000;
}

void put_text(char *field, size_t size, const char *text)
{
	const size_t length = strlen(text);
	memcpy(field, text, length < size ? length : size);
}

static void repeat(STORAGE_STRING field, char letter, size_t times)
{
	memset(field, letter, times);
}

void *make_record(size_t size)
{
	void *const record = calloc(1, size);
	if (!record)
		abort();
	seen->live++;
	return record;
}

static STORAGE_DISK_LIST *add_disk(void **head, const char *device)
{
	STORAGE_DISK_LIST **end = (STORAGE_DISK_LIST **)head;
	UINT id = 0;
	for (; *end; end = &(*end)->next)
		id++;
	*end = make_record(sizeof **end);
	(*end)->nDiskID = id;
	PUT((*end)->szDeviceName, device);
	return *end;
}

static STORAGE_PART_LIST *add_partition(void **head, const char *disk, UINT index)
{
	STORAGE_PART_LIST **end = (STORAGE_PART_LIST **)head;
	while (*end)
		end = &(*end)->next;
	*end = make_record(sizeof **end);
	PUT((*end)->szDiskDeviceName, disk);
	(*end)->nPartIndex = index;
	return *end;
}

static int plain_disks(void **head, int *length)
{
	STORAGE_DISK_LIST *disk = add_disk(head, "/dev/hda");
	PUT(disk->szDescription, "Disk Device");
	PUT(disk->szInterface, "IDE");
	PUT(disk->szMedia, "Disk");
	PUT(disk->szModel, "FAST DISK");
	PUT(disk->szSerialNumber, "S-1");
	PUT(disk->szFirmwareVersion, "1.0");
	disk->nSize = 268435456;
	disk->nTotalCylinders = 11;
	disk->nTracksPerCylinder = 12;
	disk->nSectorsPerTrack = 13;
	disk->nTotalHeads = 14;
	disk->nTotalTracks = 15;
	disk->nTotalBlocks = 16;
	disk->nTotalSectors = 17;
	disk->nBytesPerBlock = 1024;
	disk->nBytesPerSector = 512;
	disk->nPartNumber = 2;
	disk->bUsedBySystem = 1;
	disk->nExPartNumber = 1;

	disk = add_disk(head, "/dev/sdb");
	PUT(disk->szInterface, "SCSI");
	disk->nPosition = 0xff020304;
	PUT(disk->szVendor, "ACME");
	PUT(disk->szFirmwareVersion, "B2");
	*length = 2;
	return 0;
}

static int plain_partitions(void **head, int *length)
{
	STORAGE_PART_LIST *part = add_partition(head, "/dev/hda", 0);
	part->nStart = 32256;
	part->nSize = 134217728;
	part->nTotalSectors = 4294967295u;
	PUT(part->szType, "Primary Partition");
	PUT(part->szFileSystem, "ext3");
	PUT(part->szMountPoint, "/;/boot");
	part->nTotalSpace = 104857600;
	part->bUsedBySystem = 1;
	part->bActive = (BOOLEAN)0x80;

	part = add_partition(head, "/dev/hda", 4);
	part->nStart = 64512;
	part->nSize = 1023;
	PUT(part->szType, "Logical Drive");
	*length = 2;
	return 0;
}

static int plain_cdroms(void **head, int *length)
{
	STORAGE_CDROM_LIST *const cdrom = make_record(sizeof *cdrom);
	*head = cdrom;
	cdrom->nCdromID = 7;
	PUT(cdrom->szDeviceName, "/dev/hdc");
	PUT(cdrom->szDiscription, "DVD/CD-ROM Device");
	PUT(cdrom->szInterface, "IDE");
	cdrom->nPosition = 0x01020304;
	PUT(cdrom->szMedia, "CDROM");
	PUT(cdrom->szModel, "DVD");
	PUT(cdrom->szFirmwareVersion, "0.9");
	PUT(cdrom->szMountPoint, "/media/disc");
	cdrom->nTotalSpace = 734003200;
	*length = 1;
	return 0;
}

int no_items(void **head, int *length)
{
	(void)head;
	*length = 0;
	return 0;
}

int failure(void **head, int *length)
{
	(void)head, (void)length;
	return -1;
}

static int partitions_then_failure(void **head, int *length)
{
	plain_partitions(head, length);
	return -1;
}

static int hostile_disks(void **head, int *length)
{
	STORAGE_DISK_LIST *disk = add_disk(head, "/dev/sda");
	PUT(disk->szInterface, "SCSI");
	disk->nSize = 18446744073709551615u;
	repeat(disk->szVendor, 'V', 63);
	PUT(disk->szModel, "A\tB\x1b[31m\n\x7f");
	repeat(disk->szSerialNumber, 'S', 64);
	PUT(disk->szFirmwareVersion, "caf\xe9");
	disk->nPartNumber = 4294967295u;

	disk = add_disk(head, "/dev/sdb");
	PUT(disk->szInterface, "SCSI");
	PUT(disk->szVendor, "gr\xc3\xb6\xc3\x9f"
	                    "e");
	PUT(disk->szModel, "\xc2\x9b"
	                   "31m");
	PUT(disk->szSerialNumber, "\xe2\x82");
	PUT(disk->szFirmwareVersion, "\xe2\x82\xac 1");
	*length = 2;
	return 0;
}

static int hostile_partitions(void **head, int *length)
{
	STORAGE_PART_LIST *const part = add_partition(head, "", 0);
	PUT(part->szType, "\xc3(\xc0\x80\xf5");
	PUT(part->szMountPoint, "/\xe2\x82/\xf0\x90\x8d\x88");
	part->nTotalSpace = 1;
	part->nUsedSpace = 18446744073709551615u;
	part->bActive = 1;
	add_partition(head, "/dev/sda", 4294967295u);
	*length = 2;
	return 0;
}

static int links_beyond_length(void **head, int *length)
{
	add_disk(head, "/dev/sda");
	add_disk(head, "/dev/sdb");
	add_disk(head, "/dev/sdc");
	*length = 1;
	return 0;
}

static int length_beyond_links(void **head, int *length)
{
	add_disk(head, "/dev/sda");
	add_disk(head, "/dev/sdb");
	*length = 5;
	return 0;
}

static int negative_length(void **head, int *length)
{
	add_disk(head, "/dev/sda");
	*length = -1;
	return 0;
}

int no_end(void **head, int *length)
{
	(void)head;
	while (*length == 0)
		pause();
	return 0;
}

static int bad_end(void **head, int *length)
{
	(void)head;
	(void)length;
	/* A sanitizer would end it in its own way. */
	signal(SIGSEGV, SIG_DFL);
	raise(SIGSEGV);
	return 0;
}

/* A disk for every number in FAKE_PLUGIN_SIZES. */
static int sized_disks(void **head, int *length)
{
	const char *text = getenv("FAKE_PLUGIN_SIZES");
	char *end;
	for (; text && *text; text = end) {
		add_disk(head, "/dev/sda")->nSize = strtoull(text, &end, 10);
		++*length;
	}
	return 0;
}

/* With somebody who goes on, in a session of his own and with all that we have. */
static int disks_with_companion(void **head, int *length)
{
	if (fork() == 0) {
		setsid();
		signal(SIGTERM, SIG_IGN);
		for (;;)
			pause();
	}
	return plain_disks(head, length);
}

static const struct {
	const char *name;
	answer *disks, *partitions, *cdroms;
	const struct raid_case *raid;
} cases[] = {
	{"plain", plain_disks, plain_partitions, plain_cdroms, &plain_raid},
	{"empty", no_items, no_items, no_items, &empty_raid},
	{"bare", no_items, no_items, no_items, &bare_raid},
	{"failing", failure, failure, failure, &failing_raid},
	{"partial", plain_disks, partitions_then_failure, plain_cdroms, &partial_raid},
	{"hostile", hostile_disks, hostile_partitions, no_items, &hostile_raid},
	{"links-beyond-length", links_beyond_length, no_items, no_items, &empty_raid},
	{"length-beyond-links", length_beyond_links, no_items, no_items, &empty_raid},
	{"negative-length", negative_length, no_items, no_items, &empty_raid},
	{"sizes", sized_disks, no_items, no_items, &empty_raid},
	{"hang", no_end, no_end, no_end, &empty_raid},
	{"crash", bad_end, bad_end, bad_end, &empty_raid},
	{"hanging", plain_disks, no_end, plain_cdroms, &hanging_raid},
	{"crashing", plain_disks, bad_end, plain_cdroms, &plain_raid},
	{"companion", disks_with_companion, plain_partitions, plain_cdroms, &plain_raid},
};

void look_at_descriptors(void)
{
	const int descriptor = open("/dev/null", O_RDONLY);
	if (descriptor < seen->lowest_descriptor)
		seen->lowest_descriptor = descriptor;
	close(descriptor);
}

/* The argument as a text; an address before a name is put in brackets. */
static void note_argument(const IPMICOMMAND *cmd, char *text, size_t size)
{
	int address;
	if (!cmd->szData) {
		snprintf(text, size, "none");
	} else if (cmd->nCommand == CMD_GET_RAID_SPACE) {
		memcpy(&address, cmd->szData, sizeof address);
		snprintf(text, size, "[%x]%s", (unsigned)address, cmd->szData + sizeof address);
	} else {
		snprintf(text, size, "%s", cmd->szData);
	}
}

int GetItemInfo(const IPMICOMMAND *cmd, void **result, int *length)
{
	const char *const name = getenv("FAKE_PLUGIN_CASE");
	size_t i = 0;
	int status;

	look_at_descriptors();
	while (i < sizeof cases / sizeof *cases && strcmp(cases[i].name, name ? name : "plain") != 0)
		i++;
	if (i == sizeof cases / sizeof *cases || seen->queries == MAX_LISTS || *result || *length)
		abort();
	if (cmd->nCommand == CMD_GET_DISKS)
		status = cases[i].disks(result, length);
	else if (cmd->nCommand == CMD_GET_PARTITIONS)
		status = cases[i].partitions(result, length);
	else if (cmd->nCommand == CMD_GET_CDROMS)
		status = cases[i].cdroms(result, length);
	else
		status = answer_raid(cases[i].raid, cmd, result, length);
	seen->out[seen->queries].head = *result;
	note_argument(cmd, seen->out[seen->queries].argument, sizeof seen->out[seen->queries].argument);
	seen->out[seen->queries++].query = cmd->nCommand;
	return status;
}

static void *next_of(void *record, UINT query)
{
	switch (query) {
	case CMD_GET_DISKS:
		return ((STORAGE_DISK_LIST *)record)->next;
	case CMD_GET_PARTITIONS:
		return ((STORAGE_PART_LIST *)record)->next;
	case CMD_GET_CDROMS:
		return ((STORAGE_CDROM_LIST *)record)->next;
	default:
		return next_raid(record, query);
	}
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
		return -1;
	}
	while (*result) {
		void *const record = *result;
		*result = next_of(record, seen->out[i].query);
		free(record);
		seen->live--;
	}
	seen->out[i].head = NULL;
	return 0;
}

static const char *variable(const char *name)
{
	const char *const value = getenv(name);
	return value ? value : "";
}

__attribute__((destructor)) static void report(void)
{
	const char *const name = getenv("FAKE_PLUGIN_REPORT");
	FILE *const file = name ? fopen(name, "w") : NULL;
	if (!file)
		return;
	fprintf(file, "queries %d\nreleases %d\nlive %d\nwrong %d\n", seen->queries, seen->releases,
	        seen->live, seen->wrong);
	fprintf(file, "lowest_descriptor %d\n", seen->lowest_descriptor);
	fprintf(file, "LD_PRELOAD %s\nREPLAY_SYSROOT %s\n", variable("LD_PRELOAD"),
	        variable("REPLAY_SYSROOT"));
	fprintf(file, "configuration %s\n", g_szConfigFileName);
	for (int i = 0; i < seen->queries; i++)
		fprintf(file, "query%d %u %s\n", i, seen->out[i].query, seen->out[i].argument);
	fclose(file);
}
