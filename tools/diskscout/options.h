// The command line.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_OPTIONS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_OPTIONS_H

#include "common_options.h"
#include "kinds.h"

#include <string>
#include <vector>

struct options_t : common_options_t {
	std::string answer;                // text that --help or --version asks for; else empty
	std::vector<const kind_t *> kinds; // to be listed; each once, in the order of all_kinds()
	bool json = false;
	std::string controller; // empty: the first one
};

// Throws usage_error when the command line is none of ours.
options_t parse_options(int argc, char **argv);

// The command line that does the same on a captured host once the replay library is loaded.
std::vector<std::string> replayed_command_line(const options_t &opts, const std::string &program,
                                               const std::string &plugin);

#endif
