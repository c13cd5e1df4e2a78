// SPDX-License-Identifier: Apache-2.0
// What can stand in the place of a word of the program's command line.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_COMPLETING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_COMPLETING_H

#include "completion.h"

#include <string>
#include <vector>

struct known_command_t {
	std::string name;
	std::string what;
	known_options_t options; // that it takes
	bool takes_kinds;        // and devices
};

struct known_line_t {
	known_options_t options; // of all commands
	std::vector<known_command_t> commands;
};

// The answer to `diskscout complete`. Of the machine nothing is asked.
std::string completions(const known_line_t &known, const typed_words_t &typed);

#endif
