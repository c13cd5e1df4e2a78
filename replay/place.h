// SPDX-License-Identifier: Apache-2.0
// Where a path leads in the host shown.
#ifndef DISKSCOUT_REPLAY_PLACE_H
#define DISKSCOUT_REPLAY_PLACE_H

#include "replay/host.h"

namespace replay
{

enum place_kind_t {
	RUNNING, // not part of the captured host
	FILE_IN_HOST,
	DEVICE_IN_HOST,
	NOWHERE, // the way to it cannot be gone
};

// Not to be copied: `shown` points into the record itself.
struct place_t {
	place_kind_t kind;
	int error;             // NOWHERE: why
	device_t *dev;         // DEVICE_IN_HOST
	const char *shown;     // in the host: the path as the program knows it, plain and without links
	char stored[PATH_MAX]; // FILE_IN_HOST: where it lies; RUNNING: what to use, "" for what was asked
};

enum links_t { KEEP_LINK, FOLLOW_LINK };

// Finds where `path` leads. A relative one counts from the folder that the descriptor `directory` was opened
// on; it is in the host when the folder is, and never when it is AT_FDCWD. Links are followed within the
// host, so that /dev/cdrom reaches the device it names; one as the last step only with FOLLOW_LINK.
void find_place(int directory, const char *path, links_t last, place_t *to);

// The path to hand to the C library for a place that is a file, or the running machine's.
inline const char *library_path(const place_t &at, const char *asked)
{
	return at.stored[0] == '\0' ? asked : at.stored;
}

// What the kernel calls the thing that a descriptor is open on: for most a path. False for no descriptor.
// Leaves errno alone.
bool descriptor_target(int fd, char (&to)[PATH_MAX]);

// Turns the path of something that lies in the host's directory into the host's own, "" for the directory
// itself; false, and nothing changed, for any other.
bool to_host_path(const host_table_t *table, char (&path)[PATH_MAX]);

} // namespace replay

#endif
