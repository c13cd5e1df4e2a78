// The host shown at present, and where a path leads in it.
#ifndef DISKSCOUT_REPLAY_HOST_H
#define DISKSCOUT_REPLAY_HOST_H

#include "replay/table.h"

namespace replay
{

// The table of the host shown, or null while the running host is. The first call of a process also reads the
// environment when the library is preloaded.
host_table_t *shown_host();

enum place_kind_t {
	RUNNING, // not part of the captured host: the path is used as it is
	FILE_IN_HOST,
	DEVICE_IN_HOST,
};

struct place_t {
	place_kind_t kind;
	device_t *dev;         // DEVICE_IN_HOST
	char shown[PATH_MAX];  // the path as the program knows it, plain
	char stored[PATH_MAX]; // FILE_IN_HOST: where it lies; RUNNING: not set
};

enum links_t { KEEP_LINK, FOLLOW_LINK };

// Finds where `path` leads. Links are followed within the host, so that /dev/cdrom reaches the device it
// names; one as the last step only with FOLLOW_LINK.
void find_place(const char *path, links_t last, place_t *to);

// The path to hand to the C library for a place that is no device.
inline const char *library_path(const place_t &at, const char *asked)
{
	return at.kind == RUNNING ? asked : at.stored;
}

// The preload's start (preload.cpp); absent where the objects are linked in.
void begin_preload() __attribute__((weak));

} // namespace replay

#endif
