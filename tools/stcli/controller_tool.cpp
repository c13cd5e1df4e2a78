// The controller tool that a configuration file names. The plug-in reads the file at its first operation,
// which is too late for whoever is about to delete something; so it is read here, too, by the plug-in's
// rules:
//
//   Cli Path:/usr/local/bin         all that follows, without blanks at the end
//   Cli Name:toolcli                the first word
//
// A later line replaces an earlier one. What does not fit the plug-in's line of 255 bytes is a line of its
// own.
#include "controller_tool.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fmt/format.h>
#include <memory>
#include <string_view>

static const char WHITE_SPACE[] = " \t\n\v\f\r";

// As the plug-in opens it, so that a captured host shows its own.
struct closer_t {
	void operator()(FILE *file) const { fclose(file); }
};
using file_t = std::unique_ptr<FILE, closer_t>;

struct controller_tool_t {
	std::string directory;
	std::string name;
};

static void set_directory(controller_tool_t &tool, std::string_view value)
{
	if (!value.empty())
		tool.directory = value.substr(0, value.find_last_not_of(" \t\r\n") + 1);
}

static void set_name(controller_tool_t &tool, std::string_view value)
{
	const std::size_t from = value.find_first_not_of(WHITE_SPACE);
	if (from == std::string_view::npos)
		return;
	value.remove_prefix(from);
	tool.name = value.substr(0, value.find_first_of(WHITE_SPACE));
}

static const struct {
	std::string_view key;
	void (*set)(controller_tool_t &tool, std::string_view value);
} ROWS[] = {{"Cli Path:", set_directory}, {"Cli Name:", set_name}};

static void take_line(controller_tool_t &tool, std::string_view line)
{
	for (const auto &row : ROWS) {
		if (line.substr(0, row.key.size()) == row.key)
			row.set(tool, line.substr(row.key.size()));
	}
}

static std::string path_of(const controller_tool_t &tool)
{
	if (tool.directory.empty() || tool.name.empty())
		return "";
	const std::string joint = tool.directory.back() == '/' ? "" : "/";
	return tool.directory + joint +
	       tool.name.substr(std::min(tool.name.find_first_not_of('/'), tool.name.size()));
}

static std::string tool_named_in(FILE *file)
{
	controller_tool_t tool;
	char line[256];
	while (fgets(line, sizeof(line), file) && line[0])
		take_line(tool, line);
	return path_of(tool);
}

std::string driven_by_console(const std::string &configuration)
{
	if (configuration.empty())
		return "the plug-in does not tell which controller tool the console drives";
	const file_t file(fopen(configuration.c_str(), "re"));
	if (!file)
		return fmt::format(
			"the console has no controller tool: the configuration {} cannot be read: {}",
			configuration, strerror(errno));
	const std::string tool = tool_named_in(file.get());
	if (tool.empty())
		return fmt::format("the console has no controller tool: the configuration {} names none",
		                   configuration);
	return fmt::format("the console drives {}, named by the configuration {}", tool, configuration);
}
