// SPDX-License-Identifier: Apache-2.0
// What can be wrong with the programs that the configuration names.
#include "site_programs.h"

#include "finding.h"
#include "site_file.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

using judge_t = findings_t (*)(const program_t &program, const site_t &site);

// ---- what the shell makes of it ----

static bool is_assignment(const std::string &word)
{
	return word.find('=') < word.find('/');
}

static findings_t judge_for_the_shell(const program_t &program, const site_t &)
{
	const std::size_t at = program.command.find_first_of(";&|<>()$`\\\"'*?[");
	if (at == std::string::npos && program.word.front() != '~' && !is_assignment(program.word))
		return {};
	return warning(fmt::format("the {} \"{}\" is no plain path: it holds characters that mean something "
	                           "to the shell",
	                           program.what, program.command));
}

// ---- blanks ----

// Of name and filter only the first word is read. This is the whole text that somebody has written.
static std::string written_in(const tool_config_t &config, const tool_config_key_t &key)
{
	static const char WHITE_SPACE[] = " \t\r\n\v\f";
	std::string text;
	for (const std::string &line : config.lines) {
		if (line.compare(0, key.text.size(), key.text) != 0)
			continue;
		const std::size_t from = line.find_first_not_of(WHITE_SPACE, key.text.size());
		if (from != std::string::npos)
			text = line.substr(from, line.find_last_not_of(WHITE_SPACE) + 1 - from);
	}
	return text;
}

static findings_t judge_blanks(const program_t &program, const site_t &site)
{
	const bool runs = can_be_run(program.path);
	const std::string written = written_in(*site.config, *program.key);
	if (!program.rest.empty()) {
		const std::string text = fmt::format("the path of the {}, \"{}\", holds a blank: the shell "
		                                     "runs \"{}\"",
		                                     program.what, program.command, program.word);
		return runs ? warning(text) : problem(text);
	}
	if (!runs && written.find_first_of(" \t") != std::string::npos)
		return problem(fmt::format("of \"{}\" behind \"{}\" only the first word is read", written,
		                           program.key->text));
	if (program.command.front() == ' ' || program.command.front() == '\t')
		return warning(fmt::format("a blank stands before the path of the {} and belongs to it",
		                           program.what));
	return {};
}

// ---- paths ----

static findings_t judge_name(const program_t &program, const site_t &site)
{
	const std::string &name = site.config->name;
	const bool is_of_tool = program.key->value == &tool_config_t::name;
	if (!is_of_tool || name.find('/') == std::string::npos || can_be_run(program.path))
		return {};
	return problem(fmt::format("the name of the {}, \"{}\", is a path: with \"Cli Path:\" before it, it "
	                           "becomes {}",
	                           program.what, name, program.command));
}

static findings_t judge_start(const program_t &program, const site_t &)
{
	if (program.word.front() == '/' || program.word.find('/') == std::string::npos)
		return {};
	return problem(fmt::format("the {} {} is named by a relative path, and is run in a directory of its "
	                           "own",
	                           program.what, program.word));
}

static findings_t judge_presence(const program_t &program, const site_t &)
{
	struct stat status;
	if (program.path.empty())
		return problem(fmt::format("the {} \"{}\" stands in no directory of PATH", program.what,
		                           program.word));
	if (stat(program.path.c_str(), &status) == 0)
		return {};
	return problem(
		fmt::format("the {} {} cannot be run: {}", program.what, program.path, strerror(errno)));
}

static findings_t judge_permission(const program_t &program, const site_t &)
{
	struct stat status;
	if (stat(program.path.c_str(), &status) != 0)
		return {};
	if (!S_ISREG(status.st_mode))
		return advised(problem(fmt::format("the {} {} is {}", program.what, program.path,
		                                   S_ISDIR(status.st_mode) ? "a directory" : "no file")),
		               "name the program itself");
	if (access(program.path.c_str(), X_OK) != 0)
		return problem(fmt::format("the {} {} is not executable: {}", program.what, program.path,
		                           strerror(errno)));
	return {};
}

// "#!/bin/sh -eu"
static std::string interpreter_of(const std::string &path)
{
	char line[256] = "";
	std::ifstream(path, std::ios::binary).getline(line, sizeof line);
	const std::string text = line;
	if (text.compare(0, 2, "#!") != 0)
		return "";
	const std::size_t from = std::min(text.find_first_not_of(" \t", 2), text.size());
	return text.substr(from, std::min(text.find_first_of(" \t", from), text.size()) - from);
}

static findings_t judge_interpreter(const program_t &program, const site_t &)
{
	const std::string interpreter = interpreter_of(program.path);
	if (interpreter.empty() || can_be_run(interpreter))
		return {};
	if (interpreter.back() == '\r')
		return problem(fmt::format("the lines of the {} {} end as those of Windows do", program.what,
		                           program.path));
	return problem(fmt::format("the {} {} wants {}, which cannot be run", program.what, program.path,
	                           interpreter));
}

// ---- one after the other ----

static const judge_t JUDGES[] = {judge_for_the_shell, judge_blanks,     judge_name,       judge_start,
                                 judge_presence,      judge_permission, judge_interpreter};

// What this one finds, unless one before it has found something.
static findings_t findings_of(judge_t judge, const program_t &program, const site_t &site)
{
	for (const judge_t earlier : JUDGES) {
		findings_t found = earlier(program, site);
		if (earlier == judge)
			return found;
		if (!found.empty())
			break;
	}
	return {};
}

static findings_t of_programs(const patient_t &at, judge_t judge)
{
	return where_configured(at, [judge](const site_t &site) {
		if (has_long_line(*site.config))
			return not_asked("the configuration names no program as a whole");
		findings_t found;
		for (const program_t &program : programs_of(*site.config))
			append(found, findings_of(judge, program, site));
		return found;
	});
}

findings_t names_for_the_shell(const patient_t &at)
{
	return of_programs(at, judge_for_the_shell);
}

findings_t names_with_blanks(const patient_t &at)
{
	return of_programs(at, judge_blanks);
}

findings_t names_that_are_paths(const patient_t &at)
{
	return of_programs(at, judge_name);
}

findings_t relative_programs(const patient_t &at)
{
	return of_programs(at, judge_start);
}

findings_t missing_programs(const patient_t &at)
{
	return of_programs(at, judge_presence);
}

findings_t programs_not_executable(const patient_t &at)
{
	return of_programs(at, judge_permission);
}

findings_t missing_interpreters(const patient_t &at)
{
	return of_programs(at, judge_interpreter);
}
