// The command line: diskscout list [KIND|DEVICE]... [OPTION]..., diskscout schema.
#include "options.h"

#include "closest_word.h"
#include "columns.h"
#include "usage_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <sstream>

// ---- kinds ----

using kind_test_t = bool (*)(const kind_t *k);

static bool is_any(const kind_t *)
{
	return true;
}

static bool is_old(const kind_t *k)
{
	return !k->old_word.empty();
}

static bool is_block(const kind_t *k)
{
	return k->side == side_t::BLOCK;
}

static bool is_classic(const kind_t *k)
{
	return !is_block(k);
}

static bool is_of_host(const kind_t *k)
{
	return k->side == side_t::HOST;
}

static bool is_of_raid(const kind_t *k)
{
	return k->side == side_t::RAID || k->side == side_t::CONTROLLER;
}

static bool is_of_controller(const kind_t *k)
{
	return k->side == side_t::CONTROLLER;
}

static bool is_tree(const kind_t *k)
{
	return k == &DEVICES_KIND;
}

static std::string words_of(kind_test_t test, bool old = false)
{
	std::string words;
	for (const kind_t *k : all_kinds()) {
		if (test(k))
			words.append(words.empty() ? "" : ", ").append(old ? k->old_word : k->word);
	}
	return words;
}

static bool has(const kinds_t &kinds, kind_test_t test)
{
	return std::any_of(kinds.begin(), kinds.end(), test);
}

static const kind_t *kind_named(std::string_view word, bool old)
{
	for (const kind_t *k : all_kinds()) {
		if ((is_old(k) && word == k->old_word) || (!old && word == k->word))
			return k;
	}
	return nullptr;
}

// What a mistyped word may have meant. A name below /dev is a device's, which only its path can tell.
static std::string hint_for(const std::string &word)
{
	std::vector<std::string_view> known;
	for (const kind_t *k : all_kinds())
		known.push_back(k->word);
	const std::string hint = suggestion(word, known);
	if (!hint.empty())
		return hint;
	const std::string known_words = ", known are " + words_of(is_any);
	return known_words + fmt::format("; a device is named by its path, such as /dev/{}", word);
}

[[noreturn]] static void refuse_kind(const std::string &word, bool old)
{
	throw usage_error_t(fmt::format("unknown kind \"{}\"{}", word,
	                                old ? ", known are " + words_of(is_old, true) : hint_for(word)));
}

static kinds_t kinds_unasked(const options_t &opts)
{
	const unsigned wanted = opts.json ? IN_DOCUMENT : IN_TABLES;
	kinds_t kinds;
	for (const kind_t *k : all_kinds()) {
		if (opts.classic ? is_of_host(k) : (k->unasked & wanted) != 0)
			kinds.push_back(k);
	}
	return kinds;
}

// Words with a "/" are devices, all others kinds.
static void take_words(const std::vector<std::string> &words, options_t &opts)
{
	kinds_t named;
	for (const std::string &word : words) {
		const kind_t *const k = kind_named(word, opts.is_old());
		if (k)
			named.push_back(k);
		else if (!opts.is_old() && word.find('/') != std::string::npos)
			opts.devices.push_back(word);
		else
			refuse_kind(word, opts.is_old());
	}
	opts.is_alone = words.empty();
	if (named.empty() && !opts.devices.empty())
		named.push_back(&DEVICES_KIND);
	if (named.empty()) {
		opts.kinds = kinds_unasked(opts);
		return;
	}
	for (const kind_t *k : all_kinds()) {
		if (std::find(named.begin(), named.end(), k) != named.end())
			opts.kinds.push_back(k);
	}
}

// ---- what goes together ----

// An option that changes nothing is a misunderstanding.
static void refuse_idle(const char *option, bool is_given, const options_t &opts, kind_test_t test)
{
	if (is_given && !has(opts.kinds, test))
		throw usage_error_t(fmt::format("{} is for {}", option, words_of(test, opts.is_old())));
}

struct table_option_t {
	const char *name;
	bool is_given;
	bool is_of_one_kind;
};

static void check_table_options(const options_t &opts)
{
	const table_option_t options[] = {
		{"--columns (-o)", !opts.columns.empty(), true},
		{"--sort", !opts.sort.empty(), true},
		{"--pairs", opts.pairs, true},
		{"--bytes", opts.bytes, false},
		{"--no-headings", opts.no_headings, true},
	};
	for (const table_option_t &option : options) {
		if (!option.is_given)
			continue;
		if (opts.is_old())
			throw usage_error_t(fmt::format("{} is for format 2", option.name));
		if (opts.json)
			throw usage_error_t(
				fmt::format("{} is for tables, the document is always whole", option.name));
		if (option.is_of_one_kind && opts.kinds.size() != 1)
			throw usage_error_t(fmt::format("{} is for the table of one kind", option.name));
	}
	if (opts.pairs && (opts.bytes || opts.no_headings))
		throw usage_error_t("--pairs are in bytes and without headings by themselves");
	if (opts.kinds.size() == 1) {
		columns_of(*opts.kinds.front(), opts.columns);
		if (!opts.sort.empty())
			column_of(*opts.kinds.front(), opts.sort);
	}
}

static void check_classic(const options_t &opts)
{
	const auto today = std::find_if(opts.kinds.begin(), opts.kinds.end(), is_block);
	if (opts.classic && today != opts.kinds.end())
		throw usage_error_t(
			fmt::format("--classic is for {}, not for {}", words_of(is_classic),
		                    opts.devices.empty() ? (*today)->word : opts.devices.front()));
	if (opts.is_old() && !opts.block_plugin.empty())
		throw usage_error_t("--block-plugin is for format 2");
}

static void check_devices(const options_t &opts)
{
	if (!opts.devices.empty() && has(opts.kinds, is_classic))
		throw usage_error_t(fmt::format("a device, such as {}, is for {}", opts.devices.front(),
		                                words_of(is_block)));
	if (opts.inverse && opts.devices.empty() && (opts.is_alone || !has(opts.kinds, is_tree)))
		throw usage_error_t(fmt::format("--inverse is for {}, or for a device", words_of(is_tree)));
	if (opts.inverse && opts.devices.empty() && (opts.json || opts.pairs || !opts.sort.empty()))
		throw usage_error_t("--inverse is for the tree, or for a device");
}

bool options_t::asks_classic() const
{
	return has(kinds, is_classic);
}

// The classic lists of the host are told beside today's, unless they are wanted alone.
bool options_t::asks_block() const
{
	return has(kinds, is_block) || (!classic && has(kinds, is_of_host));
}

static void check(const options_t &opts)
{
	refuse_idle("--controller", !opts.controller.empty(), opts, is_of_controller);
	refuse_idle("--config", !opts.config.empty(), opts, is_of_raid);
	check_classic(opts);
	check_devices(opts);
	check_table_options(opts);
	refuse_idle("--plugin", !opts.plugin.empty(), opts, is_classic);
	if (!opts.block_plugin.empty() && !opts.asks_block())
		throw usage_error_t(fmt::format("--block-plugin is for {}", words_of(is_block)));
}

// ---- reading ----

static std::string refuse_empty(const std::string &value)
{
	return value.empty() ? "it must not be empty" : "";
}

static std::string refuse_unknown_format(const std::string &value)
{
	return value == "1" || value == "2" ? "" : fmt::format("{} is no format, known are 1 and 2", value);
}

struct flag_row_t {
	const char *name;
	const char *what;
	bool options_t::*field;
};

static const flag_row_t FLAGS[] = {
	{"--json", "print one JSON document instead of tables", &options_t::json},
	{"--classic", "show what the classic command codes answer, and nothing else", &options_t::classic},
	{"--bytes", "print sizes in bytes", &options_t::bytes},
	{"--no-headings", "print rows alone", &options_t::no_headings},
	{"--pairs", "print a line of KEY=\"value\" for each row", &options_t::pairs},
	{"--inverse", "show what devices stand on, not what stands on them", &options_t::inverse},
};

struct value_row_t {
	const char *name;
	const char *value;
	const char *what;
	std::string options_t::*field;
};

static const value_row_t VALUES[] = {
	{"--block-plugin", "PATH", "load this plug-in for today's devices", &options_t::block_plugin},
	{"--controller", "NAME", "show this RAID controller, not the first one", &options_t::controller},
	{"--format", "1|2", "format of the document; 1: everything as before there were formats",
         &options_t::format},
	{"-o,--columns", "COLUMNS", "show these columns; behind a +: these too", &options_t::columns},
	{"--sort", "COLUMN", "sort by this column", &options_t::sort},
};

static std::vector<std::string> names_of_commands(const CLI::App &app)
{
	std::vector<std::string> names;
	for (const CLI::App *command : app.get_subcommands({}))
		names.push_back(command->get_name());
	return names;
}

static std::vector<std::string> names_of_options(const CLI::App &app)
{
	std::vector<std::string> names;
	for (const CLI::Option *option : app.get_options({})) {
		// One that no help shows has no name.
		if (!option->get_name().empty())
			names.push_back(option->get_name());
	}
	return names;
}

static bool contains(const std::vector<std::string> &words, std::string_view word)
{
	return std::find(words.begin(), words.end(), word) != words.end();
}

// "; did you mean \"--json\"?" for the first long option that is none of ours. Dashes are not counted as
// letters.
static std::string hint_for_option(const CLI::App &app, int argc, char **argv)
{
	const std::vector<std::string> known = names_of_options(app);
	std::vector<std::string_view> letters;
	for (const std::string &name : known)
		letters.push_back(std::string_view(name).substr(2));
	for (int i = 1; i < argc; i++) {
		const std::string_view word = argv[i];
		const std::string_view name = word.substr(0, word.find('='));
		if (name.size() <= 2 || name.substr(0, 2) != "--" || contains(known, name))
			continue;
		const std::string hint = suggestion(name.substr(2), letters);
		const std::size_t quote = hint.find('"');
		return quote == std::string::npos ? hint
		                                  : hint.substr(0, quote + 1) + "--" + hint.substr(quote + 1);
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

options_t parse_options(int argc, char **argv)
{
	options_t opts;
	std::vector<std::string> words;
	CLI::App app("Shows the storage that the plug-ins find on this host, hardware RAID included.",
	             "diskscout");
	app.set_version_flag("--version", "diskscout " DISKSCOUT_VERSION);
	add_options(app, opts);
	app.require_subcommand(1);
	app.footer("Exit status: 0, 1 when a query or the output failed or a list is cut, 2 for bad usage.");

	CLI::App *const list = app.add_subcommand("list", "show what there is");
	list->add_option("KIND", words,
	                 "what to show, of " + words_of(is_any) +
	                         "; or a device, such as /dev/sda; without any: devices and what is classic")
		->type_name("");
	// Options of the program are taken behind the subcommand too.
	list->fallthrough();
	const CLI::App *const schema = app.add_subcommand("schema", "print the JSON Schema of the document");
	try {
		app.parse(argc, argv);
	} catch (const CLI::ParseError &error) {
		opts.answer = answer_to(app, error, argc, argv);
		opts.answer_code =
			dynamic_cast<const CLI::CallForVersion *>(&error) ? code_t::VERSION : code_t::HELP;
		opts.command = command_t::ANSWER;
		return opts;
	}
	if (schema->parsed()) {
		refuse_options_of_list(app);
		opts.command = command_t::SCHEMA;
		return opts;
	}
	opts.classic |= opts.is_old();
	take_words(words, opts);
	check(opts);
	return opts;
}

bool wants_document(int argc, char **argv)
{
	bool wants = false, is_old = false;
	for (int i = 1; i < argc; i++) {
		const std::string_view word = argv[i];
		if (word == "--")
			break;
		wants |= word == "--json";
		is_old |= word == "--format=1" ||
		          (word == "--format" && i + 1 < argc && argv[i + 1] == std::string_view("1"));
	}
	return wants && !is_old;
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
			arguments.push_back(fmt::format("{}={}", name.substr(name.find("--")), value));
	};
	add("--plugin", opts.plugin);
	add("--config", opts.config);
	for (const value_row_t &row : VALUES)
		add(row.name, opts.*row.field);
	arguments.emplace_back("list");
	if (!opts.is_alone) {
		for (const kind_t *k : opts.kinds)
			arguments.emplace_back(opts.is_old() ? k->old_word : k->word);
	}
	arguments.insert(arguments.end(), opts.devices.begin(), opts.devices.end());
	return arguments;
}
