// SPDX-License-Identifier: Apache-2.0
// What is told of a record, a row of a table each: a key of the document, a column of the tables, a property
// of the schema. All three are made from the same rows, so that none can promise what another does not hold.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_FIELD_H
#define DISKSCOUT_TOOLS_DISKSCOUT_FIELD_H

#include "sink.h"

#include <cstddef>
#include <string>

class enquiry_t;

// One thing of a kind. What its record does not hold itself, such as where a device is mounted, is asked for.
struct row_t {
	const void *record;
	enquiry_t *from = nullptr;
};

// What a value is. BYTES is a number of them, which tables show in units.
enum class shape_t { FLAG, NUMBER, BYTES, TEXT, TEXTS, OBJECT, OBJECTS };

// What the format 1 of the document holds, and the columns of its tables, never changes. A field that has
// none of OLD and NEW is a column only.
enum : unsigned {
	MAY_LACK = 1, // null in the document, "-" in a table
	OLD = 2,      // stands in the document of format 1 ...
	NEW = 4       // ... and in that of format 2
};

struct field_t;

// A table of fields; the fields themselves are constants.
struct fields_t {
	const field_t *first = nullptr;
	std::size_t count = 0;

	constexpr fields_t() = default;
	template <std::size_t Count>
	constexpr fields_t(const field_t (&fields)[Count]) : first(fields), count(Count)
	{
	}
	inline const field_t *begin() const;
	inline const field_t *end() const;
};

struct field_t {
	const char *key;     // snake_case: of the document, and the column's name on the command line
	const char *heading; // over its column
	shape_t shape;
	unsigned traits;
	const char *what; // a line for the schema: unit, range, where it comes from
	void (*put)(const row_t &row, sink_t &to);
	fields_t inner = {}; // of an OBJECT, or of each of the OBJECTS
	std::string (*cell)(const row_t &row) =
		nullptr; // in a table, where the value itself does not read well
};

inline const field_t *fields_t::begin() const
{
	return first;
}

inline const field_t *fields_t::end() const
{
	return first + count;
}

// Every field of the table that stands in this format, OLD or NEW, as an object.
void put_object(fields_t fields, unsigned format, const row_t &row, sink_t &to);

#endif
