// SPDX-License-Identifier: Apache-2.0
// What can stand in the place of a word of the launcher's command line: an option, a command, an operand.
// Commands are in the plug-in's own help, a line for each part, with what may follow them:
//
//   cli_linux: exec mdsb mdspeed(default/max) mdstat
#include "completing.h"

#include "command_line.h"
#include "completion.h"
#include "text.h"
#include "tree.h"
#include "usage_error.h"

#include <algorithm>
#include <sstream>
#include <string_view>

static constexpr std::string_view ASKED = "--complete";

bool asks_to_complete(int argc, char **argv)
{
	return argc > 1 && argv[1] == ASKED;
}

struct plugin_command_t {
	candidate_t name;
	std::vector<std::string> next; // words that may follow it; none: the help tells none
	bool is_alone = false;         // nothing may follow it
};
using plugin_commands_t = std::vector<plugin_command_t>;

// Of "mdspeed(default/max)".
static plugin_command_t command_in(const std::string &word, const std::string &part)
{
	const std::size_t opening = word.find('(');
	plugin_command_t command = {{word.substr(0, opening), part}, {}};
	if (opening == std::string::npos)
		return command;
	std::string_view hint = std::string_view(word).substr(opening + 1);
	hint = hint.substr(0, hint.find(')'));
	for (const std::string_view next : split(hint, '/'))
		command.next.emplace_back(next);
	return command;
}

static plugin_commands_t commands_of_plugin()
{
	// What the help lacks: two that are of every part, and one of none.
	plugin_commands_t commands = {{{"help", "the commands of every part of the plug-in"}, {}, true},
	                              {{"cliid", "the parts of the plug-in"}, {}, true},
	                              {{"hwraid", "the RAID console"}, {}, true}};
	std::istringstream lines(command_tree_t(plugin_file("")).help());
	for (std::string line; std::getline(lines, line);) {
		const std::size_t colon = std::min(line.find(':'), line.size());
		std::istringstream words(line.substr(std::min(colon + 1, line.size())));
		for (std::string word; words >> word;)
			commands.push_back(command_in(word, line.substr(0, colon)));
	}
	return commands;
}

// Most operands are devices and files; what they are else only the command's page tells.
static completion_t operand_of(const plugin_command_t &command, const typed_line_t &line)
{
	if (command.is_alone)
		return {};
	if (command.next.empty() || line.operands_before > 1)
		return {completion_t::FILES};
	completion_t words;
	for (const std::string &next : command.next)
		words.words.push_back({next, ""});
	return words;
}

static completion_t operand(const typed_line_t &line)
{
	for (const plugin_command_t &command : commands_of_plugin()) {
		if (command.name.word == line.operands.front())
			return operand_of(command, line);
	}
	return {};
}

static completion_t completed(const known_options_t &known, const typed_line_t &line)
{
	if (!line.is_understood)
		return {};
	if (line.option)
		return value_of(*line.option);
	if (line.may_be_option && line.word.substr(0, 1) == "-")
		return options_left(known, line);
	if (line.operands_before > 0)
		return operand(line);
	completion_t names;
	for (const plugin_command_t &command : commands_of_plugin())
		names.words.push_back(command.name);
	return names;
}

std::string completions(int argc, char **argv)
{
	const known_options_t known = options_of_line();
	const typed_line_t line =
		read_line(typed_words({argv + 2, argv + argc}), known, options_end_t::AT_OPERAND);
	try {
		return told(completed(known, line), line);
	} catch (const usage_error_t &) {
		// Without a plug-in there are no commands.
		return told({}, line);
	}
}
