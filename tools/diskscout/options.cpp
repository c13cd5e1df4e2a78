// SPDX-License-Identifier: Apache-2.0
// The command line: diskscout list [KIND|DEVICE]... [OPTION]..., diskscout doctor [OPTION]..., diskscout
// schema.
#include "options.h"

#include "closest_word.h"
#include "completing.h"
#include "conflicts.h"
#include "kind_sets.h"
#include "known_options.h"
#include "usage_error.h"
#include "words.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstring>
#include <fmt/format.h>
#include <sstream>

bool options_t::asks_classic() const
{
	return command != command_t::LIST || has(kinds, is_classic);
}

// The classic lists of the host are told beside today's, unless they are wanted alone.
bool options_t::asks_block() const
{
	return command != command_t::LIST || has(kinds, is_block) || (!classic && has(kinds, is_of_host));
}

static std::string refuse_empty(const std::string &value)
{
	return value.empty() ? "it must not be empty" : "";
}

static std::string refuse_unknown_format(const std::string &value)
{
	return value == "1" || value == "2" ? "" : fmt::format("{} is no format, known are 1 and 2", value);
}

static std::string refuse_pid(const std::string &value)
{
	pid_t pid = 0;
	const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), pid);
	if (error == std::errc() && end == value.data() + value.size() && pid > 0)
		return "";
	return fmt::format("{} is no number of a process", value);
}

std::optional<pid_t> options_t::agent() const
{
	if (pid.empty())
		return std::nullopt;
	pid_t number = 0;
	std::from_chars(pid.data(), pid.data() + pid.size(), number);
	return number;
}

// The commands that an option means something to. Those that are not named here mean something to all.
enum : unsigned {
	OF_LIST = 1,
	OF_DOCTOR = 2,
	OF_TREE = 4,
	OF_ALL = OF_LIST | OF_DOCTOR | OF_TREE,
	OF_SCHEMA = 8
};

// Commands that show the machine in one way, without kinds.
struct whole_row_t {
	command_t command;
	unsigned is_of;
	const char *name;
	const char *what;
	const char *exit_status; // in its help; null: that of the program
};

static constexpr whole_row_t WHOLES[] = {
	{command_t::TREE, OF_TREE, "tree", "show the whole machine as one picture", nullptr},
	{command_t::DOCTOR, OF_DOCTOR, "doctor", "tell why a list is empty, short, old or slow",
         "Exit status: 0 all is fine, 1 a problem, 3 warnings only, 2 for bad usage."},
};

// "list, tree"
static std::string names_of(unsigned commands)
{
	std::string names = commands & OF_LIST ? "list" : "";
	for (const whole_row_t &row : WHOLES) {
		if (commands & row.is_of)
			names += fmt::format("{}{}", names.empty() ? "" : ", ", row.name);
	}
	return names;
}

struct flag_row_t {
	const char *name;
	const char *what;
	bool options_t::*field;
	unsigned commands = OF_LIST;
};

static const flag_row_t FLAGS[] = {
	{"--json", "print one JSON document instead of text", &options_t::json, OF_ALL},
	{"--classic", "show what the classic command codes answer, and nothing else", &options_t::classic},
	{"--bytes", "print sizes in bytes", &options_t::bytes, OF_LIST | OF_TREE},
	{"--no-headings", "print rows alone", &options_t::no_headings},
	{"--pairs", "print a line of KEY=\"value\" for each row", &options_t::pairs},
	{"--inverse", "show what devices stand on, not what stands on them", &options_t::inverse},
	{"--raid", "let doctor run the controller tool", &options_t::raid, OF_DOCTOR},
};

struct value_row_t {
	const char *name;
	const char *value;
	const char *what;
	std::string options_t::*field;
	unsigned commands = OF_LIST;
};

static const value_row_t VALUES[] = {
	{"--block-plugin", "PATH", "load this plug-in for today's devices", &options_t::block_plugin, OF_ALL},
	{"--controller", "NAME", "show this RAID controller alone", &options_t::controller,
         OF_LIST | OF_TREE},
	{"--format", "1|2", "format of the document; 1: everything as before there were formats",
         &options_t::format, OF_ALL},
	{"-o,--columns", "COLUMNS", "show these columns; behind a +: these too", &options_t::columns},
	{"--sort", "COLUMN", "sort by this column", &options_t::sort},
	{"--pid", "PID", "let doctor look at the limits of this process, an agent", &options_t::pid,
         OF_DOCTOR},
};

// Of "-o,--columns" the last.
static std::string long_name(std::string_view names)
{
	return std::string(names.substr(names.find("--")));
}

static std::vector<std::string> names_of_commands(const CLI::App &app)
{
	std::vector<std::string> names;
	const auto commands = app.get_subcommands({});
	names.reserve(commands.size());
	for (const CLI::App *command : commands)
		names.push_back(command->get_name());
	return names;
}

static const char DASHES[] = "--";

// Of the long options, without their dashes.
static std::vector<std::string> names_of_options(const CLI::App &app)
{
	std::vector<std::string> names;
	for (const CLI::Option *option : app.get_options({})) {
		// One that no help shows has no name.
		if (!option->get_name().empty())
			names.push_back(option->get_name().substr(strlen(DASHES)));
	}
	return names;
}

static bool contains(const std::vector<std::string> &words, std::string_view word)
{
	return std::find(words.begin(), words.end(), word) != words.end();
}

// For the first long option that is none of ours.
static std::string hint_for_option(const CLI::App &app, int argc, char **argv)
{
	const std::vector<std::string> known = names_of_options(app);
	for (int i = 1; i < argc; i++) {
		const std::string_view word = argv[i];
		if (word.size() <= strlen(DASHES) || word.substr(0, strlen(DASHES)) != DASHES)
			continue;
		const std::string_view name = word.substr(strlen(DASHES), word.find('=') - strlen(DASHES));
		if (!contains(known, name))
			return suggestion(name, {known.begin(), known.end()}, DASHES);
	}
	return "";
}

// What is wrong with the command line, in better words than those of whoever read it.
static std::string refusal(const CLI::App &app, const CLI::ParseError &error, int argc, char **argv)
{
	const std::vector<std::string> commands = names_of_commands(app);
	const std::string_view first = argc > 1 ? argv[1] : "-";
	if (first.substr(0, 1) != "-" && !contains(commands, first))
		return fmt::format("{}, \"{}\" is none{}", error.what(), first,
		                   suggestion(first, {commands.begin(), commands.end()}));
	return error.what() + hint_for_option(app, argc, argv);
}

// --help and --version reach us as exceptions as well, the only ones with status 0.
static std::string answer_to(const CLI::App &app, const CLI::ParseError &error, int argc, char **argv)
{
	if (error.get_exit_code() != 0)
		throw usage_error_t(
			fmt::format("{} (see diskscout --help)", refusal(app, error, argc, argv)));
	std::ostringstream answer;
	app.exit(error, answer, answer);
	return answer.str();
}

static void add_options(CLI::App &app, options_t &opts)
{
	for (const flag_row_t &row : FLAGS)
		app.add_flag(row.name, opts.*row.field, row.what);
	for (const common_option_t &row : COMMON_OPTIONS)
		app.add_option(row.name, opts.*row.field, row.what)
			->type_name(row.value)
			->check(refuse_empty);
	for (const value_row_t &row : VALUES)
		app.add_option(row.name, opts.*row.field, row.what)
			->type_name(row.value)
			->check(refuse_empty);
	app.get_option("--format")->check(refuse_unknown_format);
	app.get_option("--pid")->check(refuse_pid);
	// An empty group keeps an option out of the help: this one is between us and our second start.
	app.add_flag(REPLAYED_OPTION, opts.replayed)->group("");
}

static void refuse_options_of_list(const CLI::App &app)
{
	for (const CLI::Option *option : app.get_options({})) {
		if (option->count() > 0)
			throw usage_error_t(
				fmt::format("schema takes no options, such as {}", option->get_name()));
	}
}

// One that would change nothing is a misunderstanding.
static void refuse_options_of_others(const CLI::App &app, unsigned command)
{
	const auto refuse = [&](const auto &rows) {
		for (const auto &row : rows) {
			const std::string name = long_name(row.name);
			if ((row.commands & command) == 0 && app.get_option(name)->count() > 0)
				throw usage_error_t(
					fmt::format("{} is for {}", name, names_of(row.commands)));
		}
	};
	refuse(FLAGS);
	refuse(VALUES);
}

static options_t options_of_whole(const whole_row_t &row, const CLI::App &app, options_t opts)
{
	refuse_options_of_others(app, row.is_of);
	if (opts.is_old())
		throw usage_error_t(fmt::format("{} is for format 2", row.name));
	if (opts.bytes && opts.json)
		throw usage_error_t("--bytes is for tables, the document is always whole");
	opts.command = row.command;
	opts.limit();
	return opts;
}

// What is read goes into `opts`, the words behind `list` into `words`.
static void describe(CLI::App &app, options_t &opts, std::vector<std::string> &words)
{
	app.set_version_flag("--version", "diskscout " DISKSCOUT_VERSION);
	add_options(app, opts);
	app.require_subcommand(1);
	app.footer("Exit status: 0, 1 when a query or the output failed or a list is cut, 2 for bad usage.");

	const std::string OPTIONS_ARE_ABOVE = "The options of diskscout --help belong here, too.\n";
	CLI::App *const list = app.add_subcommand("list", "show what there is");
	list->add_option("KIND", words,
	                 "what to show, of " + words_of(is_any) +
	                         "; or a device, such as /dev/sda; without any: devices and what is classic")
		->type_name("");
	// Options of the program are taken behind the subcommand too.
	list->fallthrough();
	list->footer(OPTIONS_ARE_ABOVE + app.get_footer());
	for (const whole_row_t &row : WHOLES) {
		CLI::App *const whole = app.add_subcommand(row.name, row.what);
		whole->fallthrough();
		whole->footer(OPTIONS_ARE_ABOVE + (row.exit_status ? row.exit_status : app.get_footer()));
	}
	// So that they are refused by their names.
	app.add_subcommand("schema", "print the JSON Schema of the document")->fallthrough();
}

// ---- for those who complete it ----

static unsigned is_of(const CLI::App &command)
{
	for (const whole_row_t &row : WHOLES) {
		if (command.get_name() == row.name)
			return row.is_of;
	}
	return command.get_name() == "list" ? OF_LIST : OF_SCHEMA;
}

static unsigned commands_of(const known_option_t &option)
{
	const std::string &name = option.names.back();
	for (const flag_row_t &row : FLAGS) {
		if (name == row.name)
			return row.commands;
	}
	for (const value_row_t &row : VALUES) {
		if (name == long_name(row.name))
			return row.commands;
	}
	// --help and --version.
	return option.value.empty() ? OF_ALL | OF_SCHEMA : OF_ALL;
}

static known_line_t known_line(const CLI::App &app)
{
	known_line_t known = {known_options(app), {}};
	for (const CLI::App *command : app.get_subcommands({})) {
		known_command_t one = {
			command->get_name(), command->get_description(), {}, is_of(*command) == OF_LIST};
		std::copy_if(
			known.options.begin(), known.options.end(), std::back_inserter(one.options),
			[&](const known_option_t &option) { return commands_of(option) & is_of(*command); });
		known.commands.push_back(std::move(one));
	}
	return known;
}

// A word for the shells and not for people: no help shows it, and the words behind it are another command
// line's.
static bool asks_to_complete(int argc, char **argv)
{
	return argc > 1 && argv[1] == std::string_view("complete");
}

// ---- the line ----

options_t parse_options(int argc, char **argv)
{
	options_t opts;
	std::vector<std::string> words;
	CLI::App app("Shows the storage that the plug-ins find on this host, hardware RAID included.",
	             "diskscout");
	describe(app, opts, words);
	if (asks_to_complete(argc, argv)) {
		opts.answer = completions(known_line(app), typed_words({argv + 2, argv + argc}));
		opts.command = command_t::ANSWER;
		return opts;
	}
	try {
		app.parse(argc, argv);
	} catch (const CLI::ParseError &error) {
		opts.answer = answer_to(app, error, argc, argv);
		opts.answer_code =
			dynamic_cast<const CLI::CallForVersion *>(&error) ? code_t::VERSION : code_t::HELP;
		opts.command = command_t::ANSWER;
		return opts;
	}
	if (app.got_subcommand("schema")) {
		refuse_options_of_list(app);
		opts.command = command_t::SCHEMA;
		return opts;
	}
	for (const whole_row_t &row : WHOLES) {
		if (app.got_subcommand(row.name))
			return options_of_whole(row, app, std::move(opts));
	}
	refuse_options_of_others(app, OF_LIST);
	opts.classic |= opts.is_old();
	take_words(words, opts);
	opts.limit();
	refuse_conflicts(opts);
	return opts;
}

// A flag may be given a value; all but one that says no ask for it, also those that will be refused.
static bool asks_for_json(std::string_view word)
{
	static constexpr std::string_view NAME = "--json";
	if (word.substr(0, NAME.size()) != NAME)
		return false;
	const std::string value(word.substr(NAME.size()));
	bool on = false;
	return value.empty() || (value[0] == '=' && (!CLI::detail::lexical_cast(value.substr(1), on) || on));
}

bool wants_document(int argc, char **argv)
{
	if (asks_to_complete(argc, argv))
		return false;
	bool wants = false, is_old = false;
	for (int i = 1; i < argc; i++) {
		const std::string_view word = argv[i];
		if (word == "--")
			break;
		wants |= asks_for_json(word);
		is_old |= word == "--format=1" ||
		          (word == "--format" && i + 1 < argc && argv[i + 1] == std::string_view("1"));
	}
	return wants && !is_old;
}

bool means_captured_host(int argc, char **argv)
{
	static constexpr std::string_view NAME = "--sysroot";
	bool means = false;
	for (int i = 1; i < argc; i++) {
		const std::string_view word = argv[i];
		means |= word.substr(0, NAME.size()) == NAME || word == REPLAYED_OPTION;
	}
	return means;
}

std::vector<std::string> replayed_command_line(const options_t &opts, const std::string &program)
{
	std::vector<std::string> arguments = {program, REPLAYED_OPTION};
	for (const flag_row_t &row : FLAGS) {
		if (opts.*row.field)
			arguments.emplace_back(row.name);
	}
	const auto add = [&](std::string_view name, const std::string &value) {
		if (!value.empty())
			arguments.push_back(fmt::format("{}={}", long_name(name), value));
	};
	add("--plugin", opts.plugin);
	add("--config", opts.config);
	add("--timeout", opts.timeout);
	for (const value_row_t &row : VALUES)
		add(row.name, opts.*row.field);
	for (const whole_row_t &row : WHOLES) {
		if (opts.command == row.command) {
			arguments.emplace_back(row.name);
			return arguments;
		}
	}
	arguments.emplace_back("list");
	if (!opts.is_alone) {
		for (const kind_t *k : opts.kinds)
			arguments.emplace_back(opts.is_old() ? k->old_word : k->word);
	}
	arguments.insert(arguments.end(), opts.devices.begin(), opts.devices.end());
	return arguments;
}
