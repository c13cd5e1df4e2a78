// SPDX-License-Identifier: Apache-2.0
/* What the parts of the made plug-in share. */
#ifndef DISKSCOUT_TESTS_TOOLS_FAKE_PLUGIN_H
#define DISKSCOUT_TESTS_TOOLS_FAKE_PLUGIN_H

#include "diskscout.h"

#include <stddef.h>

typedef int answer(void **head, int *length);

/* As the plug-in exports it. */
extern char g_szConfigFileName[256];

/* A descriptor opened now gets the number that a device would get. The lowest one is reported. */
void look_at_descriptors(void);

/* A record of zeros, counted as live. */
void *make_record(size_t size);
/* No NUL is put behind a text that fills the field. */
void put_text(char *field, size_t size, const char *text);
#define PUT(field, text) put_text(field, sizeof(field), text)

answer no_items, failure, no_end;

/* Answers of the hardware RAID side; those behind the controllers go out for aac0 alone. */
struct raid_case {
	answer *controllers, *containers, *disks, *partitions;
	/* Free areas of the disk at this address. */
	int (*space)(int disk, void **head, int *length);
};
extern const struct raid_case plain_raid, empty_raid, bare_raid, failing_raid, hostile_raid, partial_raid,
	hanging_raid;

int answer_raid(const struct raid_case *from, const IPMICOMMAND *cmd, void **head, int *length);
/* The record behind this one, of the query that handed it out. */
void *next_raid(void *record, UINT query);

#endif
