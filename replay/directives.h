// The lines of a host table; directives.cpp knows what each of them says.

#ifndef DISKSCOUT_REPLAY_DIRECTIVES_H
#define DISKSCOUT_REPLAY_DIRECTIVES_H

#include "replay/table.h"

namespace replay
{

// Where the reading stands.  A sector is open while lines may still add to it:
// entries to a partition table, "+" lines to a raw one.
struct reading {
	const char *file;
	int line;
	arena *memory;
	host_table *table;
	device *dev;
	sector *open_table;
	sector *open_raw;
};

// Tells a fault as "file:line: what" on standard error; always false.
bool fault_at(const reading &in, int line, const char *what);
bool fault(const reading &in, const char *what);

// Takes one line, without its newline, into the table; cuts it up in place.
bool read_line(reading &in, char *line);

// Checks what only the whole block of a device can tell.
bool end_device(reading &in);

// The same for the whole table, which covers the usual paths unless it says which.
bool end_table(reading &in);

// Reads `least` to `most` numbers up to the line's end; returns how many there
// were, or 0 after telling the fault.
unsigned read_numbers(const reading &in, char *cursor, unsigned least, unsigned most, const uint64_t *max,
                      uint64_t *values);

// A new record at the end of a list; null after telling that the room is used up.
template <typename record> record *add(reading &in, record **head)
{
	record *made = static_cast<record *>(in.memory->take(sizeof(record)));
	if (made == nullptr) {
		fault(in, "the table is too large");
		return nullptr;
	}
	while (*head != nullptr)
		head = &(*head)->next;
	*head = made;
	return made;
}

// The lines of directives_sector.cpp.
bool read_table(reading &in, char *cursor);
bool read_entry(reading &in, char *cursor);
bool read_sector(reading &in, char *cursor);
bool add_raw_bytes(reading &in, char *cursor);

} // namespace replay

#endif
