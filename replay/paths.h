// Which paths belong to the captured host, in their plain spelling.

#ifndef DISKSCOUT_REPLAY_PATHS_H
#define DISKSCOUT_REPLAY_PATHS_H

#include <limits.h>

#include <cstddef>

namespace replay
{

// Writes `path` without doubled slashes, "." and ".." steps.  False for a path
// that is null, relative or too long: such a one is never replayed.
bool plain_path(const char *path, char (&out)[PATH_MAX]);

// Whether a plain path is shown from the host directory.
bool is_replayed(const char *plain);

// Joins the two with nothing between; false when they do not fit.
bool join(char (&out)[PATH_MAX], const char *first, const char *second);

} // namespace replay

#endif
