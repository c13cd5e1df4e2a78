// SPDX-License-Identifier: Apache-2.0
// What a site has provided for its RAID controllers: a configuration, and the programs that it names.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_SITE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_SITE_H

#include "check.h"
#include "tool_config.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct site_t {
	std::string file;
	std::optional<tool_config_t> config;
	int error = 0; // errno where it cannot be read
	// Nobody has named a configuration, and there is none where it is looked for: most hosts have no such
	// controller.
	bool is_without = false;
};

site_t site_of(const patient_t &at);

// A command of the configuration, as the shell takes it.
struct program_t {
	const tool_config_key_t *key; // whose value ends it
	std::string what;             // "controller tool"
	std::string command;          // all of it
	std::string word;             // the program
	std::string rest;             // what the shell makes arguments of, a blank in front
	std::string path;             // of the program; empty when there is none by that name
};

// Those that the configuration names.
std::vector<program_t> programs_of(const tool_config_t &config);

// Whether it is a file that this process may run.
bool can_be_run(const std::string &path);

// The program of this name as the shell finds it; empty when there is none.
std::string found_in_path(const std::string &name);
findings_t not_in_path(const std::string &name); // a problem, where it is not found

// What is found where there is a configuration that can be read.
findings_t where_configured(const patient_t &at, const std::function<findings_t(const site_t &)> &look);

#endif
