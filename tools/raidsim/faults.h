// SPDX-License-Identifier: Apache-2.0
// What goes wrong on request, and how the terminal is painted: the words of RAIDSIM_FAULT.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_FAULTS_H
#define DISKSCOUT_TOOLS_RAIDSIM_FAULTS_H

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>

struct fault_error_t : std::runtime_error {
	using std::runtime_error::runtime_error;
};

struct faults_t {
	bool busy = false;    // every controller is held by another application
	bool missing = false; // no controller exists
	bool kill = false;    // dies by a signal with half of its output written
	bool flood = false;   // more than 1 MiB of output
	bool terminal = false;
	bool status = false;
	bool noblank = false;            // container rows begin in column 1
	std::int64_t pager = 0;          // lines of a screen, 0: no pager
	std::int64_t slow = 0;           // milliseconds before the output
	std::int64_t exit = 0;           // exit status
	std::optional<std::int64_t> cut; // bytes of output that get out
};

// Words between commas, "exit=3,terminal".
faults_t faults_of(std::string_view words);

#endif
