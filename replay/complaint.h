// SPDX-License-Identifier: Apache-2.0
// What is wrong with a host or with the preload's environment: told on standard error, or kept for a program
// that asks for it.
#ifndef DISKSCOUT_REPLAY_COMPLAINT_H
#define DISKSCOUT_REPLAY_COMPLAINT_H

namespace replay
{

// One line, its newline included.
void complain(const char *format, ...) __attribute__((format(printf, 1, 2)));

// From now on the first complaint is kept for replay_fault() and the others are dropped; or each is told
// again, and what was kept stays.
void keep_complaints(bool keep);

} // namespace replay

#endif
