// SPDX-License-Identifier: Apache-2.0
// The lines of a host table: directives.cpp knows each of them, and its neighbours what some of them say.
#ifndef DISKSCOUT_REPLAY_DIRECTIVES_H
#define DISKSCOUT_REPLAY_DIRECTIVES_H

#include "replay/table.h"

namespace replay
{

// Where the reading stands. A sector is open while lines may still add to it: entries to a partition table,
// "+" lines to a raw one.
struct reading_t {
	const char *file;
	int line;
	arena_t *memory;
	host_table_t *table;
	device_t *dev;
	sector_t *open_table;
	sector_t *open_raw;
};

// Tells a fault as "file:line: what" on standard error, or as "file: what" for line 0, which stands for the
// whole file; always false.
bool fault_at(const reading_t &in, int line, const char *what);
bool fault(const reading_t &in, const char *what);

// Takes one line, without its newline, into the table; cuts it up in place.
bool read_line(reading_t &in, char *line);

// Checks what only the whole block of a device can tell.
bool end_device(reading_t &in);

// The same for the whole table, which covers the usual paths unless it says which.
bool end_table(reading_t &in);

// Reads `least` to `most` numbers up to the line's end; returns how many there were, or 0 after telling the
// fault.
unsigned read_numbers(const reading_t &in, char *cursor, unsigned least, unsigned most, const uint64_t *max,
                      uint64_t *values);

// A new record; null after telling that the room is used up.
template <class Record> Record *take(reading_t &in)
{
	Record *made = static_cast<Record *>(in.memory->take(sizeof(Record)));
	if (!made)
		fault(in, "the table is too large");
	return made;
}

// The same at the end of a short list.
template <class Record> Record *add(reading_t &in, Record **head)
{
	Record *made = take<Record>(in);
	if (!made)
		return nullptr;
	while (*head)
		head = &(*head)->next;
	*head = made;
	return made;
}

// "fails ENXIO": takes the words and stores the errno when the line says so.
bool read_fails(const reading_t &in, char **cursor, bool *fails, int *error);

// Ends the device above, if there is one: a line that begins a block, or belongs to none.
bool leave_device(reading_t &in);

// The lines of directives_device.cpp.
bool read_device(reading_t &in, char *cursor);
bool read_number_line(reading_t &in, char *cursor);
bool read_opens(reading_t &in, char *cursor);
bool read_ends(reading_t &in, char *cursor);
bool read_image(reading_t &in, char *cursor);

// One of a device's answers; `known` tells whether the word is one.
bool read_answer_line(reading_t &in, const char *word, char *cursor, bool *known);

// The lines of directives_machine.cpp.
bool read_mount(reading_t &in, char *cursor);
bool read_uname(reading_t &in, char *cursor);

// The lines of directives_sector.cpp.
bool read_table(reading_t &in, char *cursor);
bool read_entry(reading_t &in, char *cursor);
bool read_sector(reading_t &in, char *cursor);
bool add_raw_bytes(reading_t &in, char *cursor);

} // namespace replay

#endif
