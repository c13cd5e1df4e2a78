// SPDX-License-Identifier: Apache-2.0
// What CLI11 knows of a command line, for whoever completes it. A source that reads the command line includes
// this, for it includes nearly nothing but CLI11.
#ifndef DISKSCOUT_TOOLS_COMMON_KNOWN_OPTIONS_H
#define DISKSCOUT_TOOLS_COMMON_KNOWN_OPTIONS_H

#include "completion.h"

#include <CLI/CLI.hpp>

inline known_option_t known_option(const CLI::Option &option)
{
	known_option_t known = {{}, 0, "", option.get_description()};
	for (const std::string &letter : option.get_snames())
		known.names.push_back("-" + letter);
	// Of the long names the first one is the whole name.
	known.shown = known.names.size() + 1;
	for (const std::string &name : option.get_lnames())
		known.names.push_back("--" + name);
	if (option.get_items_expected_max() > 0)
		known.value = option.get_type_name();
	return known;
}

// Those that help shows, in its order.
inline known_options_t known_options(const CLI::App &app)
{
	known_options_t known;
	for (const CLI::Option *option : app.get_options({})) {
		if (!option->get_group().empty() && !option->get_positional())
			known.push_back(known_option(*option));
	}
	return known;
}

#endif
