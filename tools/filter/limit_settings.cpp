// SPDX-License-Identifier: Apache-2.0
// The settings of a limited tool. The file, in the style of the configuration that names this program:
//
//   Tool:/usr/local/tool/toolcli
//   Limit:60
//   Lock:/run/lock/toolcli
//   Lock Limit:60
//
// A key stands at the very start of its line; blanks around a value are no part of it; a relative path begins
// at the file's directory. Of two lines with the same key the later one counts. Any other line but an empty
// one or a comment is refused: what nobody obeys was meant to be obeyed.
#include "limit_settings.h"

#include "usage_error.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <string_view>
#include <sys/stat.h>

namespace fs = std::filesystem;

static const char FILE_NAME[] = "diskscout-limit.cfg";

// What the rows below fill.
namespace
{
struct words_t {
	std::string tool, limit, lock, lock_limit;
};
struct row_t {
	std::string_view key;
	const char *option; // none: the tool stands alone
	const char *value;
	const char *what;
	std::string words_t::*word;
};
} // namespace

static const row_t ROWS[] = {
	{"Tool:", nullptr, "", "", &words_t::tool},
	{"Limit:", "--limit", "SECONDS", "end the tool after this time, 60 if not said; 0: never",
         &words_t::limit},
	{"Lock:", "--lock", "FILE", "start the tool when nobody else holds this file", &words_t::lock},
	{"Lock Limit:", "--lock-limit", "SECONDS", "wait for it this long, 60 if not said; 0: for ever",
         &words_t::lock_limit},
};

static limit_settings_t settings_of(const words_t &words, const std::string &limit_name,
                                    const std::string &lock_limit_name)
{
	limit_settings_t settings;
	settings.lock = words.lock;
	if (!words.limit.empty())
		settings.limit = whole_seconds(limit_name, words.limit);
	if (!words.lock_limit.empty())
		settings.lock_limit = whole_seconds(lock_limit_name, words.lock_limit);
	return settings;
}

// ---- the file ----

static std::string_view without_blanks(std::string_view text)
{
	constexpr std::string_view BLANKS = " \t\r\n\v\f";
	const std::size_t from = text.find_first_not_of(BLANKS);
	if (from == std::string_view::npos)
		return {};
	return text.substr(from, text.find_last_not_of(BLANKS) + 1 - from);
}

static void take_line(words_t &words, std::string_view line, const std::string &file, int number)
{
	if (without_blanks(line).empty() || line.front() == '#')
		return;
	for (const row_t &row : ROWS) {
		if (line.substr(0, row.key.size()) != row.key)
			continue;
		const std::string_view value = without_blanks(line.substr(row.key.size()));
		if (value.empty())
			throw usage_error_t(fmt::format("{}, line {}: the value is missing", file, number));
		words.*row.word = value;
		return;
	}
	throw usage_error_t(
		fmt::format("{}, line {}: {}: there is no such key", file, number, without_blanks(line)));
}

// A pipe there would make us wait, and a directory can be opened.
static void check_file(const std::string &file)
{
	struct stat status;
	if (stat(file.c_str(), &status) != 0)
		throw usage_error_t(
			fmt::format("no tool is named, and {} cannot be read: {}", file, strerror(errno)));
	if (!S_ISREG(status.st_mode))
		throw usage_error_t(fmt::format("no tool is named, and {} is no file", file));
}

static words_t words_in(const std::string &file)
{
	check_file(file);
	std::ifstream lines(file);
	if (!lines)
		throw usage_error_t(
			fmt::format("no tool is named, and {} cannot be read: {}", file, strerror(errno)));
	words_t words;
	int number = 1;
	for (std::string line; std::getline(lines, line); number++)
		take_line(words, line, file, number);
	if (words.tool.empty())
		throw usage_error_t(fmt::format("{} names no tool", file));
	return words;
}

static limit_settings_t read_file(const fs::path &directory)
{
	const std::string file = directory / FILE_NAME;
	words_t words = words_in(file);
	const auto from_directory = [&](const std::string &path) { return (directory / path).string(); };
	if (!words.lock.empty())
		words.lock = from_directory(words.lock);
	limit_settings_t settings = settings_of(words, file + ", Limit", file + ", Lock Limit");
	settings.tool = {from_directory(words.tool)};
	return settings;
}

// ---- the command line ----

class formatter_t : public CLI::Formatter
{
public:
	formatter_t() { column_width(24); }
	// The description begins with it: CLI11 knows nothing of the tool.
	std::string make_usage(const CLI::App *, std::string) const override { return ""; }
};

// A variable of the caller's that is not set must not unlock.
static std::string check_value(const std::string &value)
{
	return value.empty() ? "the value must not be empty" : "";
}

static void describe(CLI::App &app, words_t &words, limit_settings_t &settings)
{
	app.description(
		"Usage: diskscout-limit [OPTION]... TOOL [ARGUMENT]...\n"
		"\n"
		"Runs a controller tool, and ends it with all that it has started when it takes too long.\n"
		"Without any word all is read from diskscout-limit.cfg in the directory of this program, or\n"
		"of the link by which it was started.");
	app.footer("Exit status: the tool's, 124 at the limit, 125 when the tool could not be asked,\n"
	           "126 or 127 when it cannot be started.");
	app.set_help_flag();
	app.formatter(std::make_shared<formatter_t>());
	for (const row_t &row : ROWS) {
		if (row.option)
			app.add_option(row.option, words.*row.word, row.what)
				->type_name(row.value)
				->check(check_value, "");
	}
	app.add_flag("-h,--help", settings.asks_for_help, "print this");
	app.add_flag("--version", settings.asks_for_version, "print the version");
	app.prefix_command();
}

static limit_settings_t read_command_line(int argc, char **argv)
{
	words_t words;
	limit_settings_t asked;
	CLI::App app;
	describe(app, words, asked);
	try {
		app.parse(argc, argv);
	} catch (const CLI::ParseError &error) {
		throw usage_error_t(fmt::format("{} (see --help)", error.what()));
	}
	limit_settings_t settings = settings_of(words, "--limit", "--lock-limit");
	settings.asks_for_help = asked.asks_for_help;
	settings.asks_for_version = asked.asks_for_version;
	settings.tool = app.remaining();
	if (!settings.tool.empty() && settings.tool.front() == "--")
		settings.tool.erase(settings.tool.begin());
	else if (!settings.tool.empty() && settings.tool.front().rfind('-', 0) == 0)
		throw usage_error_t(
			fmt::format("{}: there is no such option (see --help)", settings.tool.front()));
	if (settings.tool.empty() && !settings.asks_for_help && !settings.asks_for_version)
		throw usage_error_t("no tool is named (see --help)");
	return settings;
}

std::string limit_usage()
{
	words_t words;
	limit_settings_t settings;
	CLI::App app;
	describe(app, words, settings);
	return app.help();
}

limit_settings_t read_limit_settings(int argc, char **argv, const std::string &started_as)
{
	if (argc > 1)
		return read_command_line(argc, argv);
	return read_file(fs::path(started_as).parent_path());
}
