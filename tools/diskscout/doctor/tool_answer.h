// SPDX-License-Identifier: Apache-2.0
// What stands in an output of the controller tool:
//
//   CLI>
//   Executing: controller list
//   Adapter Name  Adapter Type           Availability  Clustering
//   ------------  ---------------------  ------------  ----------
//   aac0          EXAMPLE 2200S          read/write    No
//
//   CLI>
//   Executing: exit
//
// The tool echoes each command in a line that begins with "Executing:"; an error is one line behind the echo.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_TOOL_ANSWER_H
#define DISKSCOUT_TOOLS_DISKSCOUT_TOOL_ANSWER_H

#include <string>
#include <string_view>
#include <vector>

// Without what steers a terminal: sequences of characters, carriage returns.
std::string without_paint(std::string_view output);

// Whether the tool has echoed this command, in whatever case.
bool has_echo(const std::string &output, std::string_view command);

// The first line that tells an error, from there on: "Command Error: <...>". Empty: there is none.
std::string error_in(const std::string &output);

// The names of the controllers that are listed, in their order.
std::vector<std::string> controllers_in(const std::string &output);

#endif
