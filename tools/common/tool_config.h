// SPDX-License-Identifier: Apache-2.0
// The controller tool's configuration. The plug-in reads it at its first operation, and tells nobody what it
// has found; so it is read here, too, by the plug-in's rules:
//
//   Cli Path:/usr/local/bin         all that follows, without blanks at the end
//   Cli Name:toolcli                the first word
//   Filter Script:/usr/local/bin/f  the first word
//
// A key stands at the very start of its line; a later line replaces an earlier one. What does not fit the
// plug-in's line of 255 bytes is a line of its own.
#ifndef DISKSCOUT_TOOLS_COMMON_TOOL_CONFIG_H
#define DISKSCOUT_TOOLS_COMMON_TOOL_CONFIG_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Where the plug-in looks when nobody names another file.
extern const char DEFAULT_TOOL_CONFIG[];

struct tool_config_t;
struct tool_config_key_t {
	std::string_view text; // as it has to be written: "Cli Path:"
	std::string tool_config_t::*value;
};
// In the order in which they usually stand.
extern const tool_config_key_t TOOL_CONFIG_KEYS[3];

struct tool_config_t {
	std::string directory; // blanks in front included
	std::string name;
	std::string filter;
	// As the plug-in takes them, without their line ends. Of a file that never ends, the first ones.
	std::vector<std::string> lines;

	// What the plug-in makes the shell run; empty without a directory or a name.
	std::string tool() const;
};

// None when the file cannot be read: errno tells why.
std::optional<tool_config_t> read_tool_config(const std::string &file);

#endif
