// SPDX-License-Identifier: Apache-2.0
// One command of a site, run as the plug-in runs it, and watched.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_TOOL_RUN_H
#define DISKSCOUT_TOOLS_DISKSCOUT_TOOL_RUN_H

#include "enquiry.h"

#include <cstdint>
#include <string>

// What came of a command.
struct tool_run_t {
	enum class end_t { NOT_RUN, NOT_STARTED, TIMED_OUT, ENDED, KILLED, ENDLESS };
	end_t end = end_t::NOT_RUN;
	int number = 0;          // the status it ended with, or the signal
	std::string why;         // not started, or timed out: "timed out after 5 s at controller list"
	std::string said;        // the first line on its standard error
	bool has_output = false; // there is such a file
	std::string output;      // its beginning, where it is endless
	std::uint64_t left = 0;  // processes that went on when it ended

	bool is_fine() const { return end == end_t::ENDED && number == 0; }
};

// What one is that prints more: nobody's answer.
constexpr std::uint64_t ENDLESS_OUTPUT = 16 << 20;

// A shell command that writes this file, in the private directory, by a worker under the limit. Files stay
// there for the next one.
struct tool_command_t {
	const char *stage;
	std::string text;
	const char *output;
	std::string script; // what its standard input is to be, in the file "script"; empty: none
};
tool_run_t run_command(enquiry_t &from, const tool_command_t &command);

#endif
