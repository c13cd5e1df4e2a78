// SPDX-License-Identifier: Apache-2.0
// One question at a time: who asks holds a lock, however it ends.
#ifndef DISKSCOUT_TOOLS_FILTER_LIMIT_LOCK_H
#define DISKSCOUT_TOOLS_FILTER_LIMIT_LOCK_H

#include <chrono>
#include <string>

// Waits until nobody else holds the file, which is made where there is none. Held by this process and those
// that it parts into, as long as one of them is there; not by programs that they start. Those are marked: who
// bears the mark when nobody holds the file was left by a run of which all was killed at once, and is ended.
// Throws std::runtime_error with the cause: also when the limit is over (0: none).
void hold_lock(const std::string &file, std::chrono::milliseconds limit);

#endif
