// SPDX-License-Identifier: Apache-2.0
// What an open descriptor of the captured host is: a memfd that bears the path's name. Seeking, reading,
// duplicating and closing are the kernel's own, and nothing has to be remembered per descriptor.
#ifndef DISKSCOUT_REPLAY_DEVICE_H
#define DISKSCOUT_REPLAY_DEVICE_H

#include "replay/place.h"

#include <sys/types.h>

namespace replay
{

// Opens a place of the captured host as open(2) would. A file that is only read is opened where it lies; a
// device, and a file opened for writing, get a private copy, so that the captured host never changes.
int open_place(const place_t &at, int flags, mode_t mode);

// Whether the descriptor is such a copy; `path` is then what it was opened as.
bool is_copy(int fd, char (&path)[PATH_MAX]);

// The device that a descriptor is open on, or null.
const device_t *open_device_of(int fd);

// A write to a copy: logged and dropped, the offset moves on.
ssize_t swallow_write(int fd, const char *path, const void *data, size_t length);

// The answer to an ioctl on an open device.
int answer_ioctl(const device_t &dev, unsigned long request, void *argument);

} // namespace replay

#endif
