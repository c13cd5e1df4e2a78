// SPDX-License-Identifier: Apache-2.0
// The binary layout, checked when this is compiled.
#include "diskscout.h"
#include "diskscout_raid.h"

#include <stddef.h>

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "agents read the records as little-endian");

#define AT(record, field, offset)                                                                            \
	static_assert(offsetof(record, field) == (offset), #record "::" #field " has moved")
#define SIZE(record, size) static_assert(sizeof(record) == (size), #record " has changed its size")

#include "layout.h"
