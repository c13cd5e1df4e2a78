// SPDX-License-Identifier: Apache-2.0
// The controller tool's configuration, by the plug-in's rules.
#include "tool_config.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

const char DEFAULT_TOOL_CONFIG[] = "/root/hardraid.cfg";

const tool_config_key_t TOOL_CONFIG_KEYS[3] = {{"Cli Path:", &tool_config_t::directory},
                                               {"Cli Name:", &tool_config_t::name},
                                               {"Filter Script:", &tool_config_t::filter}};

static const char WHITE_SPACE[] = " \t\n\v\f\r";

// As the plug-in opens it, so that a captured host shows its own.
namespace
{
struct closer_t {
	void operator()(FILE *file) const { fclose(file); }
};
} // namespace
using file_t = std::unique_ptr<FILE, closer_t>;

static void set_directory(std::string &directory, std::string_view value)
{
	if (!value.empty())
		directory = value.substr(0, value.find_last_not_of(" \t\r\n") + 1);
}

static void set_word(std::string &word, std::string_view value)
{
	const std::size_t from = value.find_first_not_of(WHITE_SPACE);
	if (from == std::string_view::npos)
		return;
	value.remove_prefix(from);
	word = value.substr(0, value.find_first_of(WHITE_SPACE));
}

static void take_line(tool_config_t &config, std::string_view line)
{
	for (const tool_config_key_t &key : TOOL_CONFIG_KEYS) {
		if (line.substr(0, key.text.size()) != key.text)
			continue;
		const auto set = key.value == &tool_config_t::directory ? set_directory : set_word;
		set(config.*key.value, line.substr(key.text.size()));
	}
}

std::string tool_config_t::tool() const
{
	if (directory.empty() || name.empty())
		return "";
	const std::string joint = directory.back() == '/' ? "" : "/";
	return directory + joint + name.substr(std::min(name.find_first_not_of('/'), name.size()));
}

static void remember_line(tool_config_t &config, std::string_view line)
{
	constexpr std::size_t MOST = 1000;
	if (config.lines.size() < MOST)
		config.lines.emplace_back(line.substr(0, line.find('\n')));
}

std::optional<tool_config_t> read_tool_config(const std::string &file)
{
	const file_t opened(fopen(file.c_str(), "re"));
	if (!opened)
		return std::nullopt;
	tool_config_t config;
	char line[256];
	errno = 0;
	while (fgets(line, sizeof(line), opened.get()) && line[0]) {
		take_line(config, line);
		remember_line(config, line);
	}
	// A directory can be opened, but not read.
	if (ferror(opened.get()))
		return std::nullopt;
	return config;
}
