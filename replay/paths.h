// SPDX-License-Identifier: Apache-2.0
// Paths in their plain spelling, and those that no captured host stands in for.
#ifndef DISKSCOUT_REPLAY_PATHS_H
#define DISKSCOUT_REPLAY_PATHS_H

#include <limits.h>
#include <stddef.h>

namespace replay
{

// Writes `path` without doubled slashes, "." and ".." steps. False for a path that is null, relative or too
// long: such a one is never replayed.
bool plain_path(const char *path, char (&out)[PATH_MAX]);

// The same for a path that counts from a plain folder, "" for the root.
bool plain_path_below(const char *folder, const char *path, char (&out)[PATH_MAX]);

// Whether a plain path is `top` or lies below it.
bool lies_in(const char *plain, const char *top);

// Whether a plain path is the running machine's whatever a table covers.
bool is_never_shown(const char *plain);

// The mount table of a process, which a host shows under the name below. It tells what the machine has
// mounted, while all else about a process is the running one's.
constexpr char OWN_MOUNTS[] = "/proc/self/mountinfo";

// Whether a plain path is one of its names.
bool is_own_mounts(const char *plain);

// Joins the two with nothing between; false when they do not fit.
bool join(char (&out)[PATH_MAX], const char *first, const char *second);

} // namespace replay

#endif
