// stcli: the plug-in's diagnostic command line at a console, for service staff.
//
//   stcli stdisk
//   stcli --sysroot captured/host exe_part /dev/hda
//   stcli hwraid
//
// Exit status: 0; 1 when the command or the output failed; 2 when the caller asked for what cannot be done.
#include "command_line.h"
#include "output.h"
#include "program.h"
#include "sysroot.h"
#include "tree.h"

#include <cstdio>

const char program_name[] = "stcli";

static std::string commands_of(const std::string &plugin)
{
	return "\nCommands, behind the name of the part that knows them:\n" +
	       command_tree(plugin_file(plugin)).help() + "and hwraid: the RAID console\n";
}

// The usage first: without a plug-in that can be loaded it is what is needed.
static int help(const command_line &line)
{
	fputs(usage_text, stdout);
	return write_output(commands_of(line.plugin)) ? STATUS_FINE : STATUS_FAILED;
}

// The same, where it was not asked for and must not be taken for an answer.
static int no_words(const command_line &line)
{
	fputs(usage_text, stderr);
	fputs(commands_of(line.plugin).c_str(), stderr);
	return STATUS_USAGE;
}

static int run_command(const command_line &line)
{
	const command_tree tree(plugin_file(line.plugin));
	if (!line.config.empty())
		tree.set_configuration(line.config);
	return tree.run(line.words) ? STATUS_FINE : STATUS_FAILED;
}

static int run(int argc, char **argv)
{
	const command_line line = parse_command_line(argc, argv);
	if (line.version)
		return write_output("stcli " DISKSCOUT_VERSION "\n") ? STATUS_FINE : STATUS_FAILED;
	if (line.help)
		return help(line);
	if (line.words.empty())
		return no_words(line);
	if (line.replayed)
		expect_captured_host();
	if (!line.sysroot.empty())
		restart_on_captured_host(
			line.sysroot,
			replayed_command_line(line, argv[0], plugin_file(line.plugin).string()));
	return run_command(line);
}

int main(int argc, char **argv)
{
	return run_program(run, argc, argv);
}
