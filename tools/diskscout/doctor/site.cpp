// SPDX-License-Identifier: Apache-2.0
// What a site has provided for its RAID controllers.
#include "site.h"

#include "finding.h"

#include <cerrno>
#include <cstdlib>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

site_t site_of(const patient_t &at)
{
	site_t site;
	site.file = at.from.configuration();
	site.config = read_tool_config(site.file);
	if (site.config)
		return site;
	site.error = errno;
	// Who may not look into the directory cannot tell that it has none.
	site.is_without = !at.asks_tool && site.file == DEFAULT_TOOL_CONFIG && site.error == ENOENT;
	return site;
}

bool can_be_run(const std::string &path)
{
	struct stat status;
	return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

std::string found_in_path(const std::string &name)
{
	// What shells take for it where nobody has set one.
	static const char USUAL[] = "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";
	const char *const set = getenv("PATH");
	const std::string path = set ? set : USUAL;
	for (std::size_t from = 0; from <= path.size();) {
		const std::size_t end = std::min(path.find(':', from), path.size());
		std::string candidate = path.substr(from, end - from) + "/" + name;
		// The working directory is another one when the shell looks.
		if (candidate.front() == '/' && end > from && can_be_run(candidate))
			return candidate;
		from = end + 1;
	}
	return "";
}

findings_t not_in_path(const std::string &name)
{
	if (!found_in_path(name).empty())
		return {};
	const char *const path = getenv("PATH");
	return problem(fmt::format("there is no {} in the directories of PATH, which is \"{}\"", name,
	                           path ? path : ""));
}

static program_t program_of(const tool_config_key_t &key, const char *what, const std::string &command)
{
	static const char BLANKS[] = " \t";
	program_t program = {&key, what, command, "", "", ""};
	const std::size_t from = std::min(command.find_first_not_of(BLANKS), command.size());
	const std::size_t end = std::min(command.find_first_of(BLANKS, from), command.size());
	program.word = command.substr(from, end - from);
	program.rest = command.substr(end);
	const bool is_path = program.word.find('/') != std::string::npos;
	program.path = is_path ? program.word : found_in_path(program.word);
	return program;
}

std::vector<program_t> programs_of(const tool_config_t &config)
{
	std::vector<program_t> programs;
	if (!config.tool().empty())
		programs.push_back(program_of(TOOL_CONFIG_KEYS[1], "controller tool", config.tool()));
	if (!config.filter.empty())
		programs.push_back(program_of(TOOL_CONFIG_KEYS[2], "filter script", config.filter));
	return programs;
}

findings_t where_configured(const patient_t &at, const std::function<findings_t(const site_t &)> &look)
{
	const site_t site = site_of(at);
	if (site.is_without)
		return {}; // where there is nothing, nothing of it is wrong
	if (!site.config)
		return not_asked("the configuration cannot be read");
	return look(site);
}
