// SPDX-License-Identifier: Apache-2.0
// What the controller tool and the filter of this site do: one look, which all checks of them are about.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_TOOL_LOOK_H
#define DISKSCOUT_TOOLS_DISKSCOUT_TOOL_LOOK_H

#include "check.h"
#include "tool_run.h"

#include <string>
#include <vector>

// A controller, opened and left again.
struct controller_opening_t {
	std::string name;
	tool_run_t run;
	std::string error; // that the tool told
	bool has_end = false;
};

struct tool_look_t {
	std::string obstacle; // why nothing was run: what is wrong with the configuration
	std::string tool, filter;
	tool_run_t tool_run, filter_run; // the filter runs where the tool has answered
	bool has_echo = false;           // of the command that it was given
	bool has_end = false;            // the echo of the last one
	std::string error;               // that the tool told
	std::string named;               // the controller that the lists are about; empty: the first one
	std::vector<std::string> controllers;
	std::vector<controller_opening_t> openings;
	bool is_out_of_time = false; // for those that were not opened

	bool has_answer() const { return tool_run.is_fine() && has_echo && has_end; }
};

// Runs tool and filter as the plug-in does, to list the controllers and to open each: nothing else, and
// nothing where the configuration has a problem. All of it together has the enquiry's limit.
tool_look_t look_at_tool(const patient_t &at);

#endif
