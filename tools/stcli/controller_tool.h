// SPDX-License-Identifier: Apache-2.0
// What the console of the plug-in drives.
#ifndef DISKSCOUT_TOOLS_STCLI_CONTROLLER_TOOL_H
#define DISKSCOUT_TOOLS_STCLI_CONTROLLER_TOOL_H

#include <string>

// A line that names the controller tool and the configuration file that names it, or tells why there is none.
// An empty name: the plug-in does not tell which file it reads.
std::string driven_by_console(const std::string &configuration);

#endif
