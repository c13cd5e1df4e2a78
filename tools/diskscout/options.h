/* The command line. */
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_OPTIONS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_OPTIONS_H

#include "kinds.h"

#include <string>
#include <vector>

struct options {
	std::string answer;              /* text that --help or --version asks for; else empty */
	std::vector<const kind *> kinds; /* to be listed; each once, in the order of all_kinds() */
	bool json = false;
	bool replayed = false;  /* restarted: a captured host is to be seen */
	std::string plugin;     /* empty: the one that comes with the program */
	std::string sysroot;    /* empty: this host */
	std::string controller; /* empty: the first one */
	std::string config;     /* of the controller tool; empty: the file that the plug-in knows */
};

/* Throws usage_error when the command line is none of ours. */
options parse_options(int argc, char **argv);

/*
 * The command line that does the same on a captured host once the replay library is loaded. The plug-in is
 * named by its full path: it must not be searched on the captured host.
 */
std::vector<std::string> replayed_command_line(const options &opts, const std::string &program,
                                               const std::string &plugin);

#endif
