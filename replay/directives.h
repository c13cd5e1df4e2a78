// The lines of a host table; directives.cc knows what each of them says.

#ifndef DISKSCOUT_REPLAY_DIRECTIVES_H
#define DISKSCOUT_REPLAY_DIRECTIVES_H

#include "replay/table.h"

namespace replay {

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

} // namespace replay

#endif
