// SPDX-License-Identifier: Apache-2.0
// What is told of a record.
#include "field.h"

void put_object(fields_t fields, unsigned format, const row_t &row, sink_t &to)
{
	to.begin_object();
	for (const field_t &field : fields) {
		if (!(field.traits & format))
			continue;
		to.key(field.key);
		field.put(row, to);
	}
	to.end_object();
}
