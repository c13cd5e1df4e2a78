/* SPDX-License-Identifier: Apache-2.0 */
/*
 * Prints what diskscout-block.so tells as one JSON document:
 *
 *   block-json PLUGIN [devices|links|contents|mounts|arrays]...
 *
 * An object of arrays, one for each kind, all of them unless some are named; null for a kind that failed,
 * with the reason on standard error. Absent fields are null. Exit status: 0; 1 when a query failed; 2 for bad
 * usage.
 */
#include "diskscout_block.h"

#include <dlfcn.h>
#include <errno.h>
#include <stdio.h>
#include <string.h>

enum field_type { NO_FIELD, TEXT, INT, LONG, FLAG, LIST };

struct field {
	const char *name;
	enum field_type type;
	size_t offset;
	const struct field *inner; /* LIST */
};

#define AT(record, type, field)                                                                              \
	{                                                                                                    \
#field, type, offsetof(record, field), NULL                                                  \
	}
#define LIST_AT(record, field, inner)                                                                        \
	{                                                                                                    \
#field, LIST, offsetof(record, field), inner                                                 \
	}
#define END                                                                                                  \
	{                                                                                                    \
		NULL, NO_FIELD, 0, NULL                                                                      \
	}

static const struct field TEXTS[] = {AT(block_text, TEXT, text), END};

static const struct field DEVICE[] = {AT(block_device, TEXT, name),
                                      AT(block_device, TEXT, node),
                                      AT(block_device, INT, major),
                                      AT(block_device, INT, minor),
                                      AT(block_device, TEXT, kind),
                                      AT(block_device, TEXT, disk),
                                      AT(block_device, INT, partition_number),
                                      AT(block_device, LONG, size),
                                      AT(block_device, INT, logical_sector),
                                      AT(block_device, INT, physical_sector),
                                      AT(block_device, FLAG, rotational),
                                      AT(block_device, FLAG, removable),
                                      AT(block_device, FLAG, hidden),
                                      AT(block_device, FLAG, read_only),
                                      AT(block_device, TEXT, transport),
                                      AT(block_device, TEXT, vendor),
                                      AT(block_device, TEXT, model),
                                      AT(block_device, TEXT, model_source),
                                      AT(block_device, TEXT, serial),
                                      AT(block_device, TEXT, serial_source),
                                      AT(block_device, TEXT, firmware),
                                      AT(block_device, TEXT, firmware_source),
                                      AT(block_device, TEXT, wwn),
                                      AT(block_device, TEXT, eui64),
                                      AT(block_device, TEXT, nguid),
                                      AT(block_device, TEXT, uuid),
                                      AT(block_device, INT, scsi_host),
                                      AT(block_device, INT, scsi_channel),
                                      AT(block_device, INT, scsi_target),
                                      AT(block_device, LONG, scsi_lun),
                                      LIST_AT(block_device, links, TEXTS),
                                      AT(block_device, TEXT, controller_pci),
                                      AT(block_device, INT, numa_node),
                                      AT(block_device, TEXT, state),
                                      AT(block_device, TEXT, dm_name),
                                      AT(block_device, TEXT, dm_uuid),
                                      AT(block_device, TEXT, dm_kind),
                                      AT(block_device, TEXT, dm_target),
                                      AT(block_device, TEXT, backing_file),
                                      AT(block_device, FLAG, under_root),
                                      AT(block_device, FLAG, under_boot),
                                      AT(block_device, FLAG, under_swap),
                                      END};

static const struct field LINK[] = {AT(block_link, TEXT, upper),
                                    AT(block_link, TEXT, lower),
                                    AT(block_link, TEXT, relation),
                                    AT(block_link, TEXT, address),
                                    AT(block_link, TEXT, state),
                                    AT(block_link, TEXT, access),
                                    END};

static const struct field PARTITION[] = {
	AT(block_partition, TEXT, name),  AT(block_partition, INT, number), AT(block_partition, LONG, start),
	AT(block_partition, LONG, size),  AT(block_partition, TEXT, type),  AT(block_partition, TEXT, uuid),
	AT(block_partition, TEXT, label), AT(block_partition, LONG, flags), END};

static const struct field CONTENT[] = {AT(block_content, TEXT, name),
                                       AT(block_content, TEXT, source),
                                       AT(block_content, INT, error),
                                       AT(block_content, FLAG, ambiguous),
                                       AT(block_content, TEXT, table),
                                       AT(block_content, TEXT, table_id),
                                       LIST_AT(block_content, partitions, PARTITION),
                                       AT(block_content, TEXT, usage),
                                       AT(block_content, TEXT, type),
                                       AT(block_content, TEXT, label),
                                       AT(block_content, TEXT, uuid),
                                       AT(block_content, TEXT, uuid_sub),
                                       AT(block_content, TEXT, version),
                                       END};

static const struct field MOUNT[] = {AT(block_mount, TEXT, kind),     AT(block_mount, INT, id),
                                     AT(block_mount, INT, parent_id), AT(block_mount, INT, major),
                                     AT(block_mount, INT, minor),     LIST_AT(block_mount, devices, TEXTS),
                                     AT(block_mount, TEXT, source),   AT(block_mount, TEXT, type),
                                     AT(block_mount, TEXT, root),     AT(block_mount, TEXT, mount_point),
                                     AT(block_mount, TEXT, options),  AT(block_mount, TEXT, super_options),
                                     AT(block_mount, FLAG, shadowed), AT(block_mount, LONG, total),
                                     AT(block_mount, LONG, used),     AT(block_mount, LONG, available),
                                     AT(block_mount, INT, priority),  END};

static const struct field MEMBER[] = {AT(block_member, TEXT, name),   AT(block_member, TEXT, role),
                                      AT(block_member, INT, slot),    AT(block_member, TEXT, state),
                                      AT(block_member, LONG, errors), END};

static const struct field ARRAY[] = {
	AT(block_array, TEXT, name),           AT(block_array, TEXT, uuid),
	AT(block_array, TEXT, metadata),       AT(block_array, TEXT, level),
	AT(block_array, TEXT, state),          AT(block_array, INT, wanted),
	AT(block_array, INT, active),          AT(block_array, INT, failed),
	AT(block_array, INT, spare),           AT(block_array, INT, degraded),
	AT(block_array, LONG, size),           AT(block_array, INT, chunk_size),
	AT(block_array, INT, layout),          AT(block_array, TEXT, sync_action),
	AT(block_array, LONG, sync_done),      AT(block_array, LONG, sync_total),
	AT(block_array, INT, sync_speed),      AT(block_array, LONG, mismatches),
	AT(block_array, TEXT, bitmap),         AT(block_array, TEXT, consistency),
	LIST_AT(block_array, members, MEMBER), END};

static const struct kind {
	const char *name;
	UINT query;
	const struct field *fields;
} KINDS[] = {
	{"devices", CMD_GET_BLOCK_DEVICES, DEVICE},    {"links", CMD_GET_BLOCK_LINKS, LINK},
	{"contents", CMD_GET_BLOCK_CONTENTS, CONTENT}, {"mounts", CMD_GET_BLOCK_MOUNTS, MOUNT},
	{"arrays", CMD_GET_BLOCK_ARRAYS, ARRAY},
};
enum { KIND_COUNT = sizeof KINDS / sizeof KINDS[0] };

static void print_text(const char *text)
{
	putchar('"');
	for (; *text != '\0'; text++) {
		if (*text == '"' || *text == '\\')
			putchar('\\');
		putchar(*text);
	}
	putchar('"');
}

static void print_number(long long value)
{
	if (value == BLOCK_ABSENT)
		fputs("null", stdout);
	else
		printf("%lld", value);
}

static void print_list(const void *record, const struct field *fields);

static void print_field(const char *at, const struct field *field)
{
	switch (field->type) {
	case TEXT: {
		const char *const text = *(const char *const *)at;
		if (text)
			print_text(text);
		else
			fputs("null", stdout);
		break;
	}
	case INT:
		print_number(*(const int *)at);
		break;
	case LONG:
		print_number(*(const long long *)at);
		break;
	case FLAG: {
		const int flag = *(const int *)at;
		fputs(flag == BLOCK_ABSENT ? "null" : flag ? "true" : "false", stdout);
		break;
	}
	case LIST:
		print_list(*(const void *const *)at, field->inner);
		break;
	case NO_FIELD:
		break;
	}
}

/* A record as an object; one of a single text as that text. */
static void print_record(const char *record, const struct field *fields)
{
	if (fields == TEXTS) {
		print_field(record + fields->offset, fields);
		return;
	}
	for (const struct field *field = fields; field->name; field++) {
		printf("%s\"%s\":", field == fields ? "{" : ",", field->name);
		print_field(record + field->offset, field);
	}
	putchar('}');
}

static void print_list(const void *record, const struct field *fields)
{
	const char *separator = "[";
	if (!record) {
		fputs("[]", stdout);
		return;
	}
	for (; record; record = ((const block_text *)record)->next) {
		fputs(separator, stdout);
		print_record(record, fields);
		separator = ",";
	}
	putchar(']');
}

typedef int (*get_function)(const IPMICOMMAND *, void **, int *);
typedef int (*set_function)(const IPMICOMMAND *, void **);

static int print_kind(const struct kind *kind, get_function get, set_function set)
{
	IPMICOMMAND command = {0};
	void *list = NULL;
	int count = 0;

	command.nCommand = kind->query;
	printf("\"%s\":", kind->name);
	if (get(&command, &list, &count) != 0) {
		fprintf(stderr, "block-json: %s: %s\n", kind->name, strerror(errno));
		fputs("null", stdout);
		return 1;
	}
	print_list(list, kind->fields);
	command.nCommand = kind->query + 1;
	return set(&command, &list) == 0 ? 0 : 1;
}

static const struct kind *kind_named(const char *name)
{
	for (int i = 0; i < KIND_COUNT; i++)
		if (strcmp(KINDS[i].name, name) == 0)
			return &KINDS[i];
	return NULL;
}

static int usage(void)
{
	fputs("usage: block-json PLUGIN [devices|links|contents|mounts|arrays]...\n", stderr);
	return 2;
}

int main(int argc, char **argv)
{
	int failed = 0;
	for (int i = 2; i < argc; i++)
		if (!kind_named(argv[i]))
			return usage();
	void *library = argc > 1 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
	if (!library) {
		fprintf(stderr, "block-json: %s\n", argc > 1 ? dlerror() : "no plug-in is named");
		return usage();
	}
	get_function get = NULL;
	set_function set = NULL;
	*(void **)&get = dlsym(library, "GetItemInfo");
	*(void **)&set = dlsym(library, "SetItemInfo");
	if (!get || !set)
		return usage();
	const int kinds = argc > 2 ? argc - 2 : KIND_COUNT;
	for (int i = 0; i < kinds; i++) {
		putchar(i == 0 ? '{' : ',');
		failed |= print_kind(argc > 2 ? kind_named(argv[2 + i]) : &KINDS[i], get, set);
	}
	fputs("}\n", stdout);
	return failed;
}
