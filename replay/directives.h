// The lines of a host table; directives.cpp knows what each of them says.
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

// A new record at the end of a list; null after telling that the room is used up.
template <class Record> Record *add(reading_t &in, Record **head)
{
	Record *made = static_cast<Record *>(in.memory->take(sizeof(Record)));
	if (!made) {
		fault(in, "the table is too large");
		return nullptr;
	}
	while (*head)
		head = &(*head)->next;
	*head = made;
	return made;
}

// The lines of directives_sector.cpp.
bool read_table(reading_t &in, char *cursor);
bool read_entry(reading_t &in, char *cursor);
bool read_sector(reading_t &in, char *cursor);
bool add_raw_bytes(reading_t &in, char *cursor);

} // namespace replay

#endif
