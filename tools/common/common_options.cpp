// SPDX-License-Identifier: Apache-2.0
// The options of every program that loads the plug-in.
#include "common_options.h"

#include "seconds.h"

const std::vector<common_option_t> COMMON_OPTIONS = {
	{"--plugin", "PATH", "load this plug-in", &common_options_t::plugin},
	{"--sysroot", "DIR", "look at the host that is captured in this directory",
         &common_options_t::sysroot},
	{"--config", "FILE", "the controller tool's configuration", &common_options_t::config},
	{"--timeout", "SECONDS", "give up after this time, 60 if not said; 0: never",
         &common_options_t::timeout},
};

std::chrono::milliseconds common_options_t::limit() const
{
	return timeout.empty() ? USUAL_LIMIT : whole_seconds("--timeout", timeout);
}

const char REPLAYED_OPTION[] = "--replayed";

std::vector<std::string> replayed_options(const common_options_t &options, const std::string &program,
                                          const std::string &plugin)
{
	std::vector<std::string> arguments = {program, REPLAYED_OPTION, "--plugin", plugin};
	if (!options.config.empty())
		arguments.push_back("--config=" + options.config);
	if (!options.timeout.empty())
		arguments.push_back("--timeout=" + options.timeout);
	return arguments;
}
