// SPDX-License-Identifier: Apache-2.0
// A line of a script, taken apart.
#include "command.h"

#include "text.h"

#include <algorithm>
#include <fmt/format.h>
#include <limits>

refusal_t command_error(const std::string &text)
{
	return refusal_t("Command Error: <" + text + ">");
}

refusal_t parsing_error(const std::string &text)
{
	return refusal_t("Parsing Error: <" + text + ">");
}

// Where the word that `text` begins with ends: at a blank, or where a list of disks goes on without one.
static std::size_t length_of_token(std::string_view text)
{
	const bool list = text.front() == '(';
	int depth = 0;
	bool quoted = false;
	for (std::size_t i = 0; i < text.size(); i++) {
		const char c = text[i];
		if (c == '"')
			quoted = !quoted;
		if (quoted)
			continue;
		depth += c == '(' ? 1 : c == ')' ? -1 : 0;
		if (list && depth <= 0)
			return i + 1;
		if (!list && (c == ' ' || c == '\t' || c == '('))
			return i;
	}
	return text.size();
}

std::vector<token_t> tokens_of(std::string_view line)
{
	std::vector<token_t> tokens;
	for (line = trimmed(line); !line.empty(); line = trimmed(line)) {
		const std::size_t length = length_of_token(line);
		tokens.push_back({std::string(line.substr(0, length))});
		line.remove_prefix(length);
	}
	return tokens;
}

// A quotation mark inside would not survive the state file.
static std::string unquoted(const std::string &text)
{
	const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
	std::string inner = quoted ? text.substr(1, text.size() - 2) : text;
	if (inner.find('"') != std::string::npos)
		throw parsing_error(fmt::format("Unexpected quotation mark in {}", text));
	return inner;
}

command_t::command_t(std::string_view name, std::string_view known, const std::vector<token_t> &rest)
    : echo_(name)
{
	for (const token_t &part : rest) {
		if (part.is_switch())
			add_switch(part.text, known);
		else
			operands_.push_back(part.text);
	}
	for (const setting_t &s : settings_)
		echo_ += fmt::format(" /{}={}", s.name, s.value);
	for (const std::string &operand : operands_)
		echo_ += " " + operand;
}

void command_t::add_switch(const std::string &part, std::string_view known)
{
	const std::size_t equals = part.find('=');
	const std::string name =
		lower_case(part.substr(1, equals == std::string::npos ? equals : equals - 1));
	if (name.empty() || fmt::format(" {} ", known).find(fmt::format(" {} ", name)) == std::string::npos)
		throw parsing_error(fmt::format("Unknown switch /{}", name));
	// A switch alone is a truth value.
	std::string value = equals == std::string::npos ? "true" : part.substr(equals + 1);
	if (const std::string word = upper_case(value); word == "TRUE" || word == "FALSE")
		value = word;
	settings_.push_back({name, value});
}

std::optional<std::string> command_t::text(const std::string &name) const
{
	for (const setting_t &s : settings_) {
		if (s.name == name)
			return unquoted(s.value);
	}
	return std::nullopt;
}

bool command_t::truth(const std::string &name) const
{
	const std::string value = text(name).value_or("FALSE");
	if (value != "TRUE" && value != "FALSE")
		throw parsing_error(fmt::format("Switch /{} is neither true nor false", name));
	return value == "TRUE";
}

void command_t::expect_operands(std::size_t least, std::size_t most) const
{
	if (operands_.size() < least)
		throw parsing_error("A parameter is missing");
	if (operands_.size() > most)
		throw parsing_error(fmt::format("Unexpected parameter {}", operands_[most]));
}

std::string command_t::name_at(std::size_t index) const
{
	return unquoted(operands_.at(index));
}

int command_t::number_at(std::size_t index) const
{
	const std::string &text = operands_.at(index);
	const std::optional<std::int64_t> value = number_of(text, std::numeric_limits<int>::max());
	if (!value)
		throw parsing_error(fmt::format("Invalid number {}", text));
	return static_cast<int>(*value);
}

// "(0,1,0)"
static std::optional<address_t> address_of(std::string_view text)
{
	if (text.size() < 2 || text.front() != '(' || text.back() != ')')
		return std::nullopt;
	text = text.substr(1, text.size() - 2);
	int parts[3] = {};
	for (int i = 0; i < 3; i++) {
		const std::size_t comma = i < 2 ? text.find(',') : text.size();
		if (comma == std::string_view::npos)
			return std::nullopt;
		const auto value = number_of(trimmed(text.substr(0, comma)), std::numeric_limits<int>::max());
		if (!value)
			return std::nullopt;
		parts[i] = static_cast<int>(*value);
		text.remove_prefix(std::min(comma + 1, text.size()));
	}
	return address_t{parts[0], parts[1], parts[2]};
}

std::optional<std::int64_t> kilobytes_of(std::string_view text)
{
	if (text.empty())
		return std::nullopt;
	const std::string unit = upper_case(text.substr(text.size() - 1));
	const std::int64_t factor = unit == "K" ? 1 : unit == "M" ? 1024 : unit == "G" ? 1048576 : 0;
	const auto value = number_of(text.substr(0, text.size() - 1), std::numeric_limits<int>::max());
	if (factor == 0 || !value || *value == 0)
		return std::nullopt;
	return *value * factor;
}

// "((0,0,0),1024M)", "((0,0,0))" or "(0,0,0)"
static std::optional<disk_operand_t> disk_of(std::string_view text)
{
	disk_operand_t result;
	std::string_view inner = text;
	if (text.substr(0, 2) == "((" && text.back() == ')') {
		const std::size_t end = text.find(')') + 1;
		inner = text.substr(1, end - 1);
		const std::string_view size = trimmed(text.substr(end, text.size() - end - 1));
		if (!size.empty() && size.front() == ',')
			result.size_kb = kilobytes_of(trimmed(size.substr(1)));
		if (!size.empty() && !result.size_kb)
			return std::nullopt;
	}
	const std::optional<address_t> at = address_of(inner);
	if (!at)
		return std::nullopt;
	result.at = *at;
	return result;
}

disk_operand_t command_t::disk_at(std::size_t index) const
{
	const std::string &text = operands_.at(index);
	const std::optional<disk_operand_t> result = disk_of(text);
	if (!result)
		throw parsing_error(fmt::format("Invalid device {}", text));
	return *result;
}

address_t command_t::address_at(std::size_t index) const
{
	const disk_operand_t result = disk_at(index);
	if (result.size_kb)
		throw parsing_error(fmt::format("Unexpected size in {}", operands_.at(index)));
	return result.at;
}
