/* The command line of the launcher. */
#ifndef DISKSCOUT_TOOLS_STCLI_COMMAND_LINE_H
#define DISKSCOUT_TOOLS_STCLI_COMMAND_LINE_H

#include <string>
#include <vector>

struct command_line {
	bool help = false;
	bool version = false;
	bool replayed = false;          /* restarted: a captured host is to be seen */
	std::string plugin;             /* empty: the one that comes with the program */
	std::string sysroot;            /* empty: this host */
	std::string config;             /* of the controller tool; empty: the file that the plug-in knows */
	std::vector<std::string> words; /* the plug-in's command */
};

/* Throws usage_error when an option is none of ours. */
command_line parse_command_line(int argc, char **argv);

/* What --help says before the plug-in's own commands. */
extern const char usage_text[];

/*
 * The command line that does the same on a captured host once the replay library is loaded. The plug-in is
 * named by its full path: it must not be searched on the captured host.
 */
std::vector<std::string> replayed_command_line(const command_line &line, const std::string &program,
                                               const std::string &plugin);

#endif
