// SPDX-License-Identifier: Apache-2.0
// What ends the program with status 2: the caller asked for something that cannot be done.
#ifndef DISKSCOUT_TOOLS_COMMON_USAGE_ERROR_H
#define DISKSCOUT_TOOLS_COMMON_USAGE_ERROR_H

#include <stdexcept>

// what() is one line without the program's name.
struct usage_error_t : std::runtime_error {
	using std::runtime_error::runtime_error;
};

// A plug-in cannot be found, loaded or used.
struct plugin_error_t : usage_error_t {
	using usage_error_t::usage_error_t;
};

// The captured host cannot be shown.
struct captured_host_error_t : usage_error_t {
	using usage_error_t::usage_error_t;
};

// What the work returns. What it refuses is an error of this kind, in the same words.
template <class Error, class Work> auto refused_as(Work work)
{
	try {
		return work();
	} catch (const usage_error_t &error) {
		throw Error(error.what());
	}
}

#endif
