// SPDX-License-Identifier: Apache-2.0
// What can be wrong with the configuration file itself.
#include "site_file.h"

#include "finding.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>

// ---- the file ----

static bool is_missing(int error)
{
	return error == ENOENT || error == ENOTDIR;
}

findings_t missing_configuration(const patient_t &at)
{
	const site_t site = site_of(at);
	if (site.is_without) {
		const std::string text = fmt::format(
			"there is no configuration {}: this host is told to have no RAID controller",
			site.file);
		return one_finding(verdict_t::FINE, text);
	}
	if (site.file.empty())
		return not_asked("the plug-in does not tell which configuration it reads");
	if (site.config || !is_missing(site.error))
		return {};
	return problem(fmt::format("the configuration {} cannot be read: {} (--config names another one)",
	                           site.file, strerror(site.error)));
}

findings_t directory_for_configuration(const patient_t &at)
{
	const site_t site = site_of(at);
	if (site.config || site.error != EISDIR)
		return {};
	return problem(fmt::format("the configuration {} is a directory", site.file));
}

findings_t unreadable_configuration(const patient_t &at)
{
	const site_t site = site_of(at);
	if (site.config || is_missing(site.error) || site.error == EISDIR)
		return {};
	const std::string text =
		fmt::format("the configuration {} cannot be read: {}", site.file, strerror(site.error));
	// Most hosts have none, and only root may know.
	const bool is_needed = at.asks_tool || site.file != DEFAULT_TOOL_CONFIG;
	return is_needed ? advised(problem(text), advice_for(site.error, at.inherited)) : not_asked(text);
}

// ---- its lines ----

// The plug-in's line holds no more; what follows stands in a line of its own.
static const std::size_t LONGEST = 255;

static bool is_cut(const tool_config_t &config, std::size_t line)
{
	return config.lines[line].size() == LONGEST && line + 1 < config.lines.size() &&
	       !config.lines[line + 1].empty();
}

static bool begins_with(std::string_view text, std::string_view start)
{
	return text.substr(0, start.size()) == start;
}

static const tool_config_key_t *key_of(std::string_view line)
{
	for (const tool_config_key_t &key : TOOL_CONFIG_KEYS) {
		if (begins_with(line, key.text))
			return &key;
	}
	return nullptr;
}

static findings_t long_lines_in(const site_t &site)
{
	findings_t found;
	for (std::size_t i = 0; i < site.config->lines.size(); i++) {
		const tool_config_key_t *const key = key_of(site.config->lines[i]);
		if (!key || !is_cut(*site.config, i))
			continue;
		append(found,
		       problem(fmt::format("the line \"{}\" of {} is longer than {} characters: the rest is "
		                           "not read",
		                           key->text, site.file, LONGEST)));
	}
	return found;
}

bool has_long_line(const tool_config_t &config)
{
	return !long_lines_in({"", config}).empty();
}

findings_t long_lines(const patient_t &at)
{
	return where_configured(at, long_lines_in);
}

// "CLI  path =/x" and "cli path:" look like keys to a person.
static std::string loosely(std::string_view text)
{
	static const std::string_view BYTE_ORDER_MARK = "\xef\xbb\xbf";
	if (begins_with(text, BYTE_ORDER_MARK))
		text.remove_prefix(BYTE_ORDER_MARK.size());
	std::string loose = in_small_letters(text);
	std::replace(loose.begin(), loose.end(), '=', ':');
	loose.erase(std::remove_if(loose.begin(), loose.end(),
	                           [](char c) { return strchr(" \t_-", c) != nullptr; }),
	            loose.end());
	return loose;
}

// The line that a person would take for the one with this key; 0: there is none.
static std::size_t misspelt_line(const tool_config_t &config, const tool_config_key_t &key)
{
	for (std::size_t i = 0; i < config.lines.size(); i++) {
		const std::string &line = config.lines[i];
		if (!begins_with(line, key.text) && begins_with(loosely(line), loosely(key.text)))
			return i + 1;
	}
	return 0;
}

static findings_t misspelt_keys_in(const site_t &site)
{
	findings_t found;
	for (const tool_config_key_t &key : TOOL_CONFIG_KEYS) {
		const std::size_t line = misspelt_line(*site.config, key);
		if (line == 0 || !(*site.config.*key.value).empty())
			continue;
		const std::string &text = site.config->lines[line - 1];
		append(found, problem(fmt::format("line {} of {}, \"{}\", is not read: it does not begin "
		                                  "with \"{}\"",
		                                  line, site.file, text, key.text)));
	}
	return found;
}

findings_t misspelt_keys(const patient_t &at)
{
	return where_configured(at, misspelt_keys_in);
}

static findings_t missing_keys_in(const site_t &site)
{
	findings_t found;
	for (const tool_config_key_t &key : TOOL_CONFIG_KEYS) {
		if (!(*site.config.*key.value).empty() || misspelt_line(*site.config, key) != 0)
			continue;
		const auto &lines = site.config->lines;
		const bool has_line = std::any_of(lines.begin(), lines.end(), [&](const std::string &line) {
			return begins_with(line, key.text);
		});
		append(found,
		       problem(fmt::format(has_line ? "the line \"{}\" of the configuration {} names nothing"
		                                    : "there is no line \"{}\" in the configuration {}",
		                           key.text, site.file)));
	}
	return found;
}

findings_t missing_keys(const patient_t &at)
{
	return where_configured(at, missing_keys_in);
}
