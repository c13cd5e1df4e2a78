// SPDX-License-Identifier: Apache-2.0
// What is limited, and how: by the command line, or by a file where there can be none.
#ifndef DISKSCOUT_TOOLS_FILTER_LIMIT_SETTINGS_H
#define DISKSCOUT_TOOLS_FILTER_LIMIT_SETTINGS_H

#include "seconds.h"

#include <chrono>
#include <string>
#include <vector>

struct limit_settings_t {
	std::vector<std::string> tool; // and its arguments
	std::chrono::milliseconds limit = USUAL_LIMIT;
	std::string lock; // empty: none
	std::chrono::milliseconds lock_limit = USUAL_LIMIT;
	bool asks_for_help = false;
	bool asks_for_version = false;
};

// Without any argument they are read from diskscout-limit.cfg in the directory of `started_as`, the path by
// which the program was started, links and all. Throws std::runtime_error with the cause.
limit_settings_t read_limit_settings(int argc, char **argv, const std::string &started_as);

std::string limit_usage();

#endif
