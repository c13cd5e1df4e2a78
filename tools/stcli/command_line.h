// SPDX-License-Identifier: Apache-2.0
// The command line of the launcher.
#ifndef DISKSCOUT_TOOLS_STCLI_COMMAND_LINE_H
#define DISKSCOUT_TOOLS_STCLI_COMMAND_LINE_H

#include "common_options.h"
#include "completion.h"

#include <string>
#include <vector>

struct command_line_t : common_options_t {
	bool help = false;
	bool version = false;
	std::vector<std::string> words; // the plug-in's command
	std::string misplaced_option;   // one of the words that would have been ours
};

// Throws usage_error when an option is none of ours.
command_line_t parse_command_line(int argc, char **argv);

// For whoever completes it.
known_options_t options_of_line();

// What --help says before the plug-in's own commands.
std::string usage_text();

// The command line that does the same on a captured host once the replay library is loaded.
std::vector<std::string> replayed_command_line(const command_line_t &line, const std::string &program,
                                               const std::string &plugin);

#endif
