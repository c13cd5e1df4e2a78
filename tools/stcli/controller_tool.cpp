// SPDX-License-Identifier: Apache-2.0
// What the console drives is decided when it starts its first operation, which is too late for whoever is
// about to delete something.
#include "controller_tool.h"

#include "tool_config.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>

std::string driven_by_console(const std::string &configuration)
{
	if (configuration.empty())
		return "the plug-in does not tell which controller tool the console drives";
	const auto config = read_tool_config(configuration);
	if (!config)
		return fmt::format(
			"the console has no controller tool: the configuration {} cannot be read: {}",
			configuration, strerror(errno));
	const std::string tool = config->tool();
	if (tool.empty())
		return fmt::format("the console has no controller tool: the configuration {} names none",
		                   configuration);
	return fmt::format("the console drives {}, named by the configuration {}", tool, configuration);
}
