// SPDX-License-Identifier: Apache-2.0
// The plug-in's diagnostic command line, called as its agent's service staff would.
#ifndef DISKSCOUT_TOOLS_STCLI_TREE_H
#define DISKSCOUT_TOOLS_STCLI_TREE_H

#include "diskscout.h"
#include "loaded_plugin.h"

#include <string>
#include <vector>

class command_tree_t : public loaded_plugin_t
{
public:
	// Throws usage_error when the file is no plug-in.
	explicit command_tree_t(const std::filesystem::path &file);

	// Runs the command of these words. False: it failed, or there is none; standard error says so.
	bool run(std::vector<std::string> words) const;

	// What the plug-in prints of its own commands: a line for each part of it that knows some, its name
	// before them, "cli_0: fnode froot ...". Throws usage_error when it has no help.
	std::string help() const;

private:
	decltype(&stcli) stcli_;
};

#endif
