/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The header of today's records, compiled alone as C99 in the strictest way: what it declares, the codes, and
 * the layout of all records as a C program sees it.
 */
#include "diskscout_block.h"

#include "define_command.h"

/* A type that cannot be, where the condition does not hold. */
#define CHECK(name, condition) typedef char name[(condition) ? 1 : -1]

#define SIZE(record, size)        CHECK(size_of_##record, sizeof(record) == (size))
#define AT(record, field, offset) CHECK(offset_of_##record##_##field, offsetof(record, field) == (offset))
#include "block/layout.h"

#define CODE(name, value) CHECK(value_of_##name, (name) == (value))
CODE(CMD_GET_BLOCK_DEVICES, 222100);
CODE(CMD_FREE_BLOCK_DEVICES, 222101);
CODE(CMD_GET_BLOCK_LINKS, 223100);
CODE(CMD_FREE_BLOCK_LINKS, 223101);
CODE(CMD_GET_BLOCK_CONTENTS, 224100);
CODE(CMD_FREE_BLOCK_CONTENTS, 224101);
CODE(CMD_GET_BLOCK_MOUNTS, 225100);
CODE(CMD_FREE_BLOCK_MOUNTS, 225101);
CODE(CMD_GET_BLOCK_ARRAYS, 226100);
CODE(CMD_FREE_BLOCK_ARRAYS, 226101);
CODE(BLOCK_ABSENT, -1);

/* The types that agents are built with. */
struct block_operations {
	int (*get)(const IPMICOMMAND *, void **, int *);
	int (*release)(const IPMICOMMAND *, void **);
	int *counter;
};

const struct block_operations block_operations = {GetItemInfo, SetItemInfo, &memory_counter_block};
