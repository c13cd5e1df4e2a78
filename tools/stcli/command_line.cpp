// The command line: stcli [--plugin PATH] [--sysroot DIR] [--config FILE] WORD...
//
// The options end at the first word. What follows belongs to the plug-in's command, whatever it looks like:
// a library of options that looks for them among the words would be in the way here.
#include "command_line.h"

#include "usage_error.h"

#include <fmt/format.h>
#include <getopt.h>

const char usage_text[] = "Usage: stcli [OPTION]... WORD...\n"
			  "\n"
			  "Runs a diagnostic command of the storage plug-in. The first WORD is the command, "
			  "the others are its own;\n"
			  "options stand before it. Commands print on standard error.\n"
			  "\n"
			  "  --plugin PATH   load this plug-in\n"
			  "  --sysroot DIR   look at the host that is captured in this directory\n"
			  "  --config FILE   the controller tool's configuration, for hwraid\n"
			  "  -h, --help      print this, and the commands that the plug-in has\n"
			  "  --version       print the version\n"
			  "\n"
			  "Exit status: 0, 1 when the command or the output failed, 2 for bad usage.\n";

// Codes for getopt; 'h' is an option of its own.
enum { PLUGIN = 256, SYSROOT, CONFIG, VERSION, REPLAYED };

static const struct option option_rows[] = {
	{"plugin", required_argument, nullptr, PLUGIN},
	{"sysroot", required_argument, nullptr, SYSROOT},
	{"config", required_argument, nullptr, CONFIG},
	{"help", no_argument, nullptr, 'h'},
	{"version", no_argument, nullptr, VERSION},
	// Between us and our second start: not in the usage text.
	{"replayed", no_argument, nullptr, REPLAYED},
	{nullptr, 0, nullptr, 0},
};

static void set_value(std::string &value, const char *option)
{
	if (!*optarg)
		throw usage_error(fmt::format("{}: the value must not be empty", option));
	if (!value.empty())
		throw usage_error(fmt::format("{}: the option is given twice", option));
	value = optarg;
}

static void apply(command_line &line, int code, const char *option)
{
	switch (code) {
	case PLUGIN:
		return set_value(line.plugin, option);
	case SYSROOT:
		return set_value(line.sysroot, option);
	case CONFIG:
		return set_value(line.config, option);
	case 'h':
		line.help = true;
		return;
	case VERSION:
		line.version = true;
		return;
	case REPLAYED:
		line.replayed = true;
		return;
	case ':':
		throw usage_error(fmt::format("{}: a value is missing (see stcli --help)", option));
	default:
		throw usage_error(fmt::format("{}: there is no such option (see stcli --help)", option));
	}
}

command_line parse_command_line(int argc, char **argv)
{
	command_line line;
	for (;;) {
		// Where the option stands that is read next: getopt moves on while it reads.
		const int place = optind;
		// '+': the first word ends the options; ':': the complaints are ours.
		const int code = getopt_long(argc, argv, "+:h", option_rows, nullptr);
		if (code == -1)
			break;
		apply(line, code, argv[place]);
	}
	line.words.assign(argv + optind, argv + argc);
	return line;
}

std::vector<std::string> replayed_command_line(const command_line &line, const std::string &program,
                                               const std::string &plugin)
{
	std::vector<std::string> arguments = {program, "--replayed", "--plugin", plugin};
	if (!line.config.empty())
		arguments.insert(arguments.end(), {"--config", line.config});
	// A first word that looks like an option has come behind this mark, too.
	arguments.emplace_back("--");
	arguments.insert(arguments.end(), line.words.begin(), line.words.end());
	return arguments;
}
