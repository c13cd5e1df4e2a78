// SPDX-License-Identifier: Apache-2.0
// One run of a program, which ends.
#ifndef DISKSCOUT_TOOLS_FILTER_LIMITED_RUN_H
#define DISKSCOUT_TOOLS_FILTER_LIMITED_RUN_H

#include <chrono>
#include <string>
#include <vector>

// Those of shells and of timeout(1).
enum {
	STATUS_TIMED_OUT = 124,
	STATUS_NOT_ASKED = 125, // our own failure
	STATUS_NOT_STARTED = 126,
	STATUS_NOT_FOUND = 127,
	STATUS_SIGNAL = 128, // and the signal's number
};

// Starts the program with our standard streams and waits for it, up to the limit (0: none); then it is ended,
// and so is, limit or not, whatever it has started and left behind. Returns its exit status, or one of the
// above with a complaint. Throws std::system_error when no process can be started.
int run_limited(const std::vector<std::string> &tool, std::chrono::milliseconds limit);

#endif
