// SPDX-License-Identifier: Apache-2.0
// The command line: stcli [--plugin PATH] [--sysroot DIR] [--config FILE] WORD...
//
// The options end at the first word. What follows belongs to the plug-in's command, whatever it looks like.
// Complaints quote the caller's own words, so it matters which of them CLI11 is at.
#include "command_line.h"

#include "known_options.h"
#include "usage_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>

// What the caller has written. CLI11 takes it from the back of `left`.
struct arguments_t {
	explicit arguments_t(std::vector<std::string> written)
	    : all(std::move(written)), left(all.rbegin(), all.rend())
	{
	}

	const std::string &taken(std::size_t before_last = 0) const
	{
		return all.at(all.size() - left.size() - 1 - before_last);
	}

	std::vector<std::string> all;
	std::vector<std::string> left;
};

class formatter_t : public CLI::Formatter
{
public:
	formatter_t() { column_width(18); }
	// The description begins with it: CLI11 knows nothing of words.
	std::string make_usage(const CLI::App *, std::string) const override { return ""; }
	// The abbreviations are for those who know the whole name.
	std::string make_option_name(const CLI::Option *option, bool) const override
	{
		const std::vector<std::string> &letters = option->get_snames();
		return (letters.empty() ? "" : "-" + letters.front() + ", ") + "--" +
		       option->get_lnames().front();
	}
};

static usage_error_t no_such_option(const std::string &option)
{
	return usage_error_t(fmt::format("{}: there is no such option (see stcli --help)", option));
}

static usage_error_t empty_value(const std::string &option)
{
	return usage_error_t(fmt::format("{}: the value must not be empty", option));
}

// An option whose value is missing, or a flag that got one.
static usage_error_t misused(const std::string &option)
{
	if (option.back() == '=')
		return empty_value(option);
	if (option.find('=') != std::string::npos)
		return no_such_option(option);
	return usage_error_t(fmt::format("{}: a value is missing (see stcli --help)", option));
}

static void set_value(std::string &field, const std::string &value, const arguments_t &arguments)
{
	const bool stands_apart = arguments.taken() == value;
	const std::string &option = arguments.taken(stands_apart ? 1 : 0);
	// CLI11 takes the next argument for what is missing behind an equals sign.
	if (value.empty() || (stands_apart && option.back() == '='))
		throw empty_value(option);
	if (!field.empty())
		throw usage_error_t(fmt::format("{}: the option is given twice", option));
	field = value;
}

static void set_flag(bool &flag, const arguments_t &arguments)
{
	if (arguments.taken().find('=') != std::string::npos)
		throw no_such_option(arguments.taken());
	flag = true;
}

// A long name and all that it can be cut to: each begins with a letter of its own.
static std::string with_abbreviations(const std::string &name)
{
	std::string names = name;
	for (std::size_t length = name.size() - 1; length > 2; length--)
		names += "," + name.substr(0, length);
	return names;
}

static void add_options(CLI::App &app, command_line_t &line, const arguments_t &arguments)
{
	const auto add_flag = [&](const std::string &names, bool &flag, const char *what) {
		const auto set = [&flag, &arguments](std::int64_t) { set_flag(flag, arguments); };
		return app.add_flag_function(names, set, what)->trigger_on_parse()->disable_flag_override();
	};
	// First, for CLI11 leaves a line free behind the options of a group when another group follows.
	add_flag(REPLAYED_OPTION, line.replayed, "")->group("");
	for (const common_option_t &row : COMMON_OPTIONS) {
		const auto set = [&line, &row, &arguments](const CLI::results_t &values) {
			set_value(line.*row.field, values.front(), arguments);
			return true;
		};
		app.add_option(with_abbreviations(row.name), set, row.what)
			->type_name(row.value)
			->trigger_on_parse();
	}
	add_flag("-h," + with_abbreviations("--help"), line.help,
	         "print this, and the commands that the plug-in has");
	add_flag(with_abbreviations("--version"), line.version, "print the version");
}

static void describe(CLI::App &app)
{
	app.description(
		"Usage: stcli [OPTION]... WORD...\n"
		"\n"
		"Runs a diagnostic command of the storage plug-in. The first WORD is the command, the others "
		"are its own;\n"
		"options stand before it. Commands print on standard error.");
	app.footer("Exit status: 0, 1 when the command or the output failed, 2 for bad usage.");
	app.formatter(std::make_shared<formatter_t>());
	app.set_help_flag();
}

static bool is_option(const std::string &argument)
{
	return argument.size() > 1 && argument.front() == '-';
}

// CLI11 takes "-hx" apart, and leaves "-x" over.
static std::string as_written(const std::string &option, const arguments_t &arguments)
{
	const std::string tail = option.substr(1);
	const auto holds = [&](const std::string &argument) {
		return argument.rfind("-h", 0) == 0 && argument.size() > tail.size() &&
		       argument.compare(argument.size() - tail.size(), tail.size(), tail) == 0;
	};
	if (std::find(arguments.all.begin(), arguments.all.end(), option) != arguments.all.end())
		return option;
	return *std::find_if(arguments.all.begin(), arguments.all.end(), holds);
}

static std::vector<std::string> words_of(std::vector<std::string> rest, const arguments_t &arguments)
{
	if (rest.empty())
		return rest;
	if (rest.front() == "--")
		rest.erase(rest.begin());
	else if (is_option(rest.front()))
		throw no_such_option(as_written(rest.front(), arguments));
	return rest;
}

// The first of the command's own words that would be an option of ours before it: no command has options, so
// it was meant for us. Behind another mark even such a word is the command's.
static std::string misplaced_option(const std::vector<std::string> &words, const CLI::App &app)
{
	for (const std::string &word : words) {
		if (word == "--")
			break;
		if (is_option(word) && app.get_option_no_throw(word.substr(0, word.find('='))))
			return word;
	}
	return "";
}

command_line_t parse_command_line(int argc, char **argv)
{
	command_line_t line;
	arguments_t arguments({argv + 1, argv + argc});
	CLI::App app;
	describe(app);
	add_options(app, line, arguments);
	app.prefix_command();
	try {
		app.parse(arguments.left);
	} catch (const CLI::ParseError &) {
		throw misused(arguments.taken());
	}
	const std::vector<std::string> rest = app.remaining();
	line.words = words_of(rest, arguments);
	line.misplaced_option = misplaced_option(rest, app);
	line.limit();
	return line;
}

known_options_t options_of_line()
{
	command_line_t line;
	const arguments_t arguments({});
	CLI::App app;
	describe(app);
	add_options(app, line, arguments);
	return known_options(app);
}

std::string usage_text()
{
	command_line_t line;
	const arguments_t arguments({});
	CLI::App app;
	describe(app);
	add_options(app, line, arguments);
	return app.help();
}

std::vector<std::string> replayed_command_line(const command_line_t &line, const std::string &program,
                                               const std::string &plugin)
{
	std::vector<std::string> arguments = replayed_options(line, program, plugin);
	// A first word that looks like an option has come behind this mark, too.
	arguments.emplace_back("--");
	arguments.insert(arguments.end(), line.words.begin(), line.words.end());
	return arguments;
}
