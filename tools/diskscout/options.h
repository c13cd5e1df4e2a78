// SPDX-License-Identifier: Apache-2.0
// The command line.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_OPTIONS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_OPTIONS_H

#include "common_options.h"
#include "kinds.h"
#include "messages.h"

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

enum class command_t { LIST, TREE, DOCTOR, SCHEMA, ANSWER };

struct options_t : common_options_t {
	command_t command = command_t::LIST;
	std::string answer;                // ANSWER: text that --help or --version asks for ...
	code_t answer_code = code_t::HELP; // ... which it was
	kinds_t kinds;                     // to be listed; each once, in the order of all_kinds()
	bool is_alone = false;             // no kind was named
	std::vector<std::string> devices;  // paths: only these, and what stands on them
	std::string block_plugin;          // empty: the one that comes with the program
	std::string format = "2";
	bool json = false;
	bool classic = false;   // what the classic codes answer, and nothing else
	std::string controller; // empty: the first one

	// Tables.
	std::string columns; // empty: those of the kind; with "+" before: those as well
	std::string sort;    // column; empty: in the order of the plug-in, devices as a tree
	bool bytes = false;
	bool no_headings = false;
	bool pairs = false;
	bool inverse = false; // what the devices stand on, in place of what stands on them

	// doctor.
	bool raid = false; // the controller tool may be run
	std::string pid;   // of an agent, whose limits are looked at; empty: our own

	std::optional<pid_t> agent() const;
	bool is_old() const { return format == "1"; }
	bool draws_tree() const { return sort.empty() && !pairs; }
	bool asks_classic() const;
	bool asks_block() const;
};

// Throws usage_error when the command line is none of ours.
options_t parse_options(int argc, char **argv);

// Whether a document is to be printed also when the command line cannot be understood: it asks for one, and
// not for the old one, which is never printed then.
bool wants_document(int argc, char **argv);

// Whether the command line means a captured host, also when it cannot be understood: then nothing may be said
// of the running one.
bool means_captured_host(int argc, char **argv);

// The command line that does the same on a captured host once the replay library is loaded. The plug-ins'
// paths, empty where nothing is asked of one, are full ones: they must not be searched on the captured host.
std::vector<std::string> replayed_command_line(const options_t &opts, const std::string &program);

#endif
