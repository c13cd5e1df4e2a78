// SPDX-License-Identifier: Apache-2.0
// stcli: the plug-in's diagnostic command line at a console, for service staff.
//
//   stcli stdisk
//   stcli --sysroot captured/host exe_part /dev/hda
//   stcli hwraid
//
// Exit status: 0; 1 when the command or the output failed; 2 when the caller asked for what cannot be done.
#include "command_line.h"
#include "completing.h"
#include "controller_tool.h"
#include "keeper.h"
#include "output.h"
#include "program.h"
#include "sysroot.h"
#include "tree.h"
#include "usage_error.h"
#include "worker.h"

#include <cstdio>
#include <fmt/format.h>

const char PROGRAM_NAME[] = "stcli";

static std::string commands_of(const std::string &plugin)
{
	return "\nCommands, behind the name of the part that knows them:\n" +
	       command_tree_t(plugin_file(plugin)).help() + "and hwraid: the RAID console\n";
}

// The usage first: without a plug-in that can be loaded it is what is needed.
static int help(const command_line_t &line)
{
	fputs(usage_text().c_str(), stdout);
	return write_output(commands_of(line.plugin)) ? STATUS_FINE : STATUS_FAILED;
}

// The same, where it was not asked for and must not be taken for an answer.
static int no_words(const command_line_t &line)
{
	fputs(usage_text().c_str(), stderr);
	fputs(commands_of(line.plugin).c_str(), stderr);
	return STATUS_USAGE;
}

static bool is_console(const command_line_t &line)
{
	return line.words.front() == "hwraid";
}

// The plug-in drops them. An option among them may have named another controller, and what is deleted on the
// wrong one is gone.
static void refuse_words_of_console(const command_line_t &line)
{
	if (is_console(line) && line.words.size() > 1)
		throw usage_error_t(fmt::format(
			"hwraid takes no words, \"{}\" stands behind it (options stand before it)",
			line.words[1]));
}

// The command would run with what was not meant for it, on a host that was not meant.
static void refuse_options_behind_command(const command_line_t &line)
{
	if (!line.misplaced_option.empty())
		throw usage_error_t(
			fmt::format("{}: options stand before the command (behind -- it would be a word)",
		                    line.misplaced_option));
}

// Somebody sits in front of it: it has no limit, and the terminal is its own.
static int run_console(const command_tree_t &tree, const command_line_t &line)
{
	complain(driven_by_console(tree.configuration()));
	return tree.run(line.words) ? STATUS_FINE : STATUS_FAILED;
}

static int run_command(const command_line_t &line)
{
	if (!is_console(line))
		start_keeper();
	const command_tree_t tree(plugin_file(line.plugin));
	if (!line.config.empty())
		tree.set_configuration(line.config);
	if (is_console(line))
		return run_console(tree, line);
	const worked_t worked =
		run_in_worker({line.words.front(), line.limit(), "", true}, [&](const worker_link_t &to) {
			const bool is_fine = tree.run(line.words);
			to.result(&is_fine, sizeof is_fine);
		});
	// A command may end its process, and has said what it had to say.
	if (worked.exit_status)
		return *worked.exit_status;
	if (!worked.is_done)
		complain(worked.failure);
	for (const pid_t pid : worked.left_behind)
		complain(fmt::format("process {} cannot be ended: it waits in the kernel", pid));
	return worked.is_done && *worked.result() ? STATUS_FINE : STATUS_FAILED;
}

static int run(int argc, char **argv)
{
	if (asks_to_complete(argc, argv))
		return write_output(completions(argc, argv)) ? STATUS_FINE : STATUS_FAILED;
	const command_line_t line = parse_command_line(argc, argv);
	if (line.version)
		return write_output("stcli " DISKSCOUT_VERSION "\n") ? STATUS_FINE : STATUS_FAILED;
	if (line.help)
		return help(line);
	if (line.words.empty())
		return no_words(line);
	refuse_words_of_console(line);
	refuse_options_behind_command(line);
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
