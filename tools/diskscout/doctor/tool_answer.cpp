// SPDX-License-Identifier: Apache-2.0
// What stands in an output of the controller tool.
#include "tool_answer.h"

#include "text.h"

#include <cstring>

static bool begins_with(std::string_view text, std::string_view start)
{
	return text.substr(0, start.size()) == start;
}

// How long the sequence is that begins with an escape here.
static std::size_t length_of_sequence(std::string_view text)
{
	if (text.size() < 2)
		return text.size();
	if (text[1] == '(' || text[1] == ')')
		return std::min<std::size_t>(3, text.size());
	if (text[1] != '[')
		return 2;
	std::size_t at = 2;
	while (at < text.size() && text[at] != '\0' && strchr("0123456789;?", text[at]))
		at++;
	return std::min(at + 1, text.size());
}

std::string without_paint(std::string_view output)
{
	static const char PAINT[] = "\033\r";
	std::string text;
	text.reserve(output.size());
	while (!output.empty()) {
		const std::size_t plain = std::min(output.find_first_of(PAINT), output.size());
		text += output.substr(0, plain);
		output.remove_prefix(plain);
		if (!output.empty())
			output.remove_prefix(output.front() == '\r' ? 1 : length_of_sequence(output));
	}
	return text;
}

// The pager's prompt stands in front of what it waited with.
static std::string_view next_line(std::string_view &text)
{
	static const char PROMPT[] =
		"( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";
	const std::size_t end = text.find('\n');
	std::string_view line = text.substr(0, end);
	text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
	while (begins_with(line, PROMPT)) {
		line.remove_prefix(sizeof PROMPT - 1);
		line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
	}
	return line;
}

bool has_echo(const std::string &output, std::string_view command)
{
	static const std::string_view BEFORE = "Executing: ";
	const std::string wanted = in_small_letters(command);
	for (std::string_view rest = output; !rest.empty();) {
		std::string_view line = next_line(rest);
		if (!begins_with(line, BEFORE))
			continue;
		line.remove_prefix(BEFORE.size());
		const bool is_whole = line.size() <= wanted.size() || line[wanted.size()] == ' ';
		if (is_whole && in_small_letters(line.substr(0, wanted.size())) == wanted)
			return true;
	}
	return false;
}

std::string error_in(const std::string &output)
{
	for (const char *text : {"Command Error:", "Parsing Error:"}) {
		const std::size_t at = output.find(text);
		if (at != std::string::npos)
			return output.substr(at, output.find('\n', at) - at);
	}
	return "";
}

// Two blanks end a name; one may belong to it.
static std::string name_in(std::string_view row)
{
	const std::size_t end = std::min(row.find("  "), row.find_last_not_of(" \t") + 1);
	return std::string(row.substr(0, end));
}

std::vector<std::string> controllers_in(const std::string &output)
{
	std::vector<std::string> names;
	std::string_view rest = output;
	bool is_listed = false, is_table = false;
	while (!rest.empty()) {
		const std::string_view line = next_line(rest);
		const bool is_end = line.empty() || begins_with(line, "CLI");
		if (begins_with(line, "Executing: controller list"))
			is_listed = true;
		else if (is_listed && begins_with(line, "----"))
			is_table = true;
		else if (is_table && is_end)
			break;
		else if (is_table)
			names.push_back(name_in(line));
	}
	return names;
}
