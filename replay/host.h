// SPDX-License-Identifier: Apache-2.0
// The host shown at present.
#ifndef DISKSCOUT_REPLAY_HOST_H
#define DISKSCOUT_REPLAY_HOST_H

#include "replay/table.h"

namespace replay
{

// The table of the host shown, or null while the running host is. The first call of a process also reads the
// environment when the library is preloaded.
host_table_t *shown_host();

// The preload's start (preload.cpp); absent where the objects are linked in.
void begin_preload() __attribute__((weak));

} // namespace replay

#endif
