// SPDX-License-Identifier: Apache-2.0
// What can stand in the place of a word of the program's command line. What the program would refuse is not
// offered, and nothing at all is where it would refuse the other words.
#include "completing.h"

#include "columns.h"
#include "kind_sets.h"
#include "text.h"
#include "usage_error.h"
#include "words.h"

#include <algorithm>
#include <cstring>

// ---- kinds ----

// What the other words ask of `list`. Throws usage_error where they cannot.
static options_t asked(const typed_line_t &line)
{
	options_t opts;
	if (line.value_of("--format") == "1")
		opts.format = "1";
	opts.classic = line.is_given("--classic") || opts.is_old();
	opts.json = line.is_given("--json");
	take_words({line.operands.begin() + 1, line.operands.end()}, opts);
	return opts;
}

static bool is_named(const kind_t *k, const std::vector<std::string> &words)
{
	return std::any_of(words.begin(), words.end(), [k](const std::string &word) {
		return word == k->word || (is_old(k) && word == k->old_word);
	});
}

static completion_t kinds_left(const typed_line_t &line, const options_t &opts)
{
	completion_t kinds;
	for (const kind_t *k : all_kinds()) {
		const bool is_in_place =
			(!opts.classic || is_old(k)) && (opts.devices.empty() || is_block(k));
		if (is_in_place && !is_named(k, line.operands))
			kinds.words.push_back(
				{std::string(opts.is_old() ? k->old_word : k->word), std::string(k->what)});
	}
	return kinds;
}

// Words with a "/" are devices, which the old format does not know.
static completion_t kinds_or_devices(const typed_line_t &line, const options_t &opts)
{
	if (line.word.find('/') == std::string::npos)
		return kinds_left(line, opts);
	return opts.classic ? completion_t{} : completion_t{completion_t::FILES};
}

// ---- columns ----

static completion_t column(const kind_t &kind)
{
	completion_t columns;
	for (const field_t *field : known_columns_of(kind))
		columns.words.push_back({field->key, field->what});
	return columns;
}

// Each once; behind a "+" none that is shown by itself.
static completion_t column_list(const kind_t &kind, const std::string &typed)
{
	// Each shell would have its own way to quote a blank.
	if (typed.substr(0, 1) == "," || typed.find(' ') != std::string::npos)
		return {};
	const bool is_more = typed.substr(0, 1) == "+";
	const std::size_t comma = typed.rfind(',');
	const std::size_t length = comma == std::string::npos ? (is_more ? 1 : 0) : comma + 1;
	columns_t taken;
	if (comma != std::string::npos || is_more)
		taken = columns_of(kind, comma == std::string::npos ? "" : typed.substr(0, comma));
	completion_t columns = {completion_t::LIST};
	for (const field_t *field : known_columns_of(kind)) {
		if (std::find(taken.begin(), taken.end(), field) == taken.end())
			columns.words.push_back({typed.substr(0, length) + field->key, field->what});
	}
	return columns;
}

// Of one kind, whose table is shown.
static completion_t columns(const known_option_t &option, const typed_line_t &line, const options_t &opts)
{
	if (opts.kinds.size() != 1 || opts.is_old())
		return {};
	const kind_t &kind = *opts.kinds.front();
	return option.value == "COLUMNS" ? column_list(kind, line.word) : column(kind);
}

// ---- the line ----

static completion_t commands(const known_line_t &known)
{
	completion_t names;
	for (const known_command_t &command : known.commands)
		names.words.push_back({command.name, command.what});
	return names;
}

static bool takes(const known_command_t &command, const known_option_t &option)
{
	return std::any_of(command.options.begin(), command.options.end(),
	                   [&](const known_option_t &one) { return one.names == option.names; });
}

static bool is_understood(const typed_line_t &line, const known_command_t &command)
{
	const auto is_of_command = [&](const auto &row) { return takes(command, *row.first); };
	return (command.takes_kinds || line.operands.size() == 1) &&
	       std::all_of(line.given.begin(), line.given.end(), is_of_command);
}

static completion_t behind_command(const known_command_t &command, const typed_line_t &line)
{
	if (!is_understood(line, command))
		return {};
	// Throws where the kinds are none.
	const options_t opts = command.takes_kinds ? asked(line) : options_t();
	if (line.option && !takes(command, *line.option))
		return {};
	if (line.option && line.option->value.substr(0, strlen("COLUMN")) == "COLUMN")
		return columns(*line.option, line, opts);
	if (line.option)
		return value_of(*line.option);
	if (line.word.substr(0, 1) == "-")
		return options_left(command.options, line);
	return command.takes_kinds && line.operands_before > 0 ? kinds_or_devices(line, opts)
	                                                       : completion_t{};
}

static completion_t completed(const known_line_t &known, const typed_line_t &line)
{
	if (!line.is_understood || !line.may_be_option)
		return {};
	if (!line.operands.empty()) {
		for (const known_command_t &command : known.commands) {
			if (command.name == line.operands.front())
				return behind_command(command, line);
		}
		return {};
	}
	if (line.option)
		return value_of(*line.option);
	return line.word.substr(0, 1) == "-" ? options_left(known.options, line) : commands(known);
}

std::string completions(const known_line_t &known, const typed_words_t &typed)
{
	const typed_line_t line = read_line(typed, known.options, options_end_t::AT_MARK);
	try {
		return told(completed(known, line), line);
	} catch (const usage_error_t &) {
		return told({}, line);
	}
}
