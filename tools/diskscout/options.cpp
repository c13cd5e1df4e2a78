// The command line: diskscout list [KIND]... [--json] [--controller NAME] [--config FILE] [--plugin PATH]
// [--sysroot DIR].
#include "options.h"

#include "usage_error.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <fmt/format.h>
#include <sstream>

static bool is_any(const kind_t *)
{
	return true;
}

static bool is_of_host(const kind_t *k)
{
	return k->of == scope_t::HOST;
}

static bool is_of_raid(const kind_t *k)
{
	return !is_of_host(k);
}

static bool is_of_controller(const kind_t *k)
{
	return k->of == scope_t::CONTROLLER;
}

using kind_test_t = bool (*)(const kind_t *k);

static std::string words_of(kind_test_t test)
{
	std::string words;
	for (const kind_t *k : all_kinds()) {
		if (test(k))
			words.append(words.empty() ? "" : ", ").append(k->word);
	}
	return words;
}

static bool contains(const std::vector<std::string> &words, std::string_view word)
{
	return std::find(words.begin(), words.end(), word) != words.end();
}

static std::vector<const kind_t *> kinds_named(const std::vector<std::string> &words)
{
	for (const std::string &word : words) {
		const auto is_named = [&](const kind_t *k) { return k->word == word; };
		if (std::none_of(all_kinds().begin(), all_kinds().end(), is_named))
			throw usage_error_t(
				fmt::format("unknown kind \"{}\", known are {}", word, words_of(is_any)));
	}
	std::vector<const kind_t *> kinds;
	for (const kind_t *k : all_kinds()) {
		if (words.empty() ? is_of_host(k) : contains(words, k->word))
			kinds.push_back(k);
	}
	return kinds;
}

static std::string refuse_empty(const std::string &value)
{
	return value.empty() ? "it must not be empty" : "";
}

// An option that changes nothing is a misunderstanding.
static void refuse_idle(const char *option, const std::string &value,
                        const std::vector<const kind_t *> &kinds, kind_test_t test)
{
	if (!value.empty() && std::none_of(kinds.begin(), kinds.end(), test))
		throw usage_error_t(fmt::format("{} is for {}", option, words_of(test)));
}

// --help and --version reach us as exceptions as well, the only ones with status 0.
static std::string answer_to(const CLI::App &app, const CLI::ParseError &error)
{
	if (error.get_exit_code() != 0)
		throw usage_error_t(fmt::format("{} (see diskscout --help)", error.what()));
	std::ostringstream answer;
	app.exit(error, answer, answer);
	return answer.str();
}

options_t parse_options(int argc, char **argv)
{
	options_t opts;
	std::vector<std::string> words;
	CLI::App app("Shows the storage that the plug-in finds on this host, hardware RAID included.",
	             "diskscout");
	app.set_version_flag("--version", "diskscout " DISKSCOUT_VERSION);
	app.add_flag("--json", opts.json, "print one JSON document instead of tables");
	for (const common_option_t &row : COMMON_OPTIONS)
		app.add_option(row.name, opts.*row.field, row.what)
			->type_name(row.value)
			->check(refuse_empty);
	app.add_option("--controller", opts.controller, "show this RAID controller, not the first one")
		->type_name("NAME")
		->check(refuse_empty);
	// An empty group keeps an option out of the help: this one is between us and our second start.
	app.add_flag(REPLAYED_OPTION, opts.replayed)->group("");
	app.require_subcommand(1);
	app.footer("Exit status: 0, 1 when a query or the output failed, 2 for bad usage.");

	CLI::App *const list = app.add_subcommand("list", "show what there is");
	list->add_option("KIND", words,
	                 "what to show, of " + words_of(is_any) + "; without any: " + words_of(is_of_host))
		->type_name("");
	// Options of the program are taken behind the subcommand too.
	list->fallthrough();
	try {
		app.parse(argc, argv);
	} catch (const CLI::ParseError &error) {
		opts.answer = answer_to(app, error);
		return opts;
	}
	opts.kinds = kinds_named(words);
	refuse_idle("--controller", opts.controller, opts.kinds, is_of_controller);
	refuse_idle("--config", opts.config, opts.kinds, is_of_raid);
	return opts;
}

std::vector<std::string> replayed_command_line(const options_t &opts, const std::string &program,
                                               const std::string &plugin)
{
	std::vector<std::string> arguments = replayed_options(opts, program, plugin);
	if (opts.json)
		arguments.emplace_back("--json");
	if (!opts.controller.empty())
		arguments.push_back("--controller=" + opts.controller);
	arguments.emplace_back("list");
	for (const kind_t *k : opts.kinds)
		arguments.emplace_back(k->word);
	return arguments;
}
