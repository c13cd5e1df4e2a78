// SPDX-License-Identifier: Apache-2.0
// The options of every program that loads the plug-in.
#ifndef DISKSCOUT_TOOLS_COMMON_COMMON_OPTIONS_H
#define DISKSCOUT_TOOLS_COMMON_COMMON_OPTIONS_H

#include <chrono>
#include <string>
#include <vector>

struct common_options_t {
	bool replayed = false; // restarted: a captured host is to be seen
	std::string plugin;    // empty: the one that comes with the program
	std::string sysroot;   // empty: this host
	std::string config;    // of the controller tool; empty: the file that the plug-in knows
	std::string timeout;   // whole seconds for each list or command, 0: no limit; empty: 60

	// Throws usage_error when it is none.
	std::chrono::milliseconds limit() const;
};

// An option with a value, which must not be empty.
struct common_option_t {
	const char *name;
	const char *value; // its name in the help
	const char *what;
	std::string common_options_t::*field;
};

extern const std::vector<common_option_t> COMMON_OPTIONS;

// Stands between a program and its second start: no help shows it.
extern const char REPLAYED_OPTION[];

// The command line, up to what the program itself is asked, that does the same on a captured host once the
// replay library is loaded. The plug-in is named by its full path: it must not be searched on the captured
// host.
std::vector<std::string> replayed_options(const common_options_t &options, const std::string &program,
                                          const std::string &plugin);

#endif
