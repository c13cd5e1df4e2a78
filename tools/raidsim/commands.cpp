// SPDX-License-Identifier: Apache-2.0
// The table of the commands, and those about controllers and tasks.
#include "commands.h"

#include "container_commands.h"
#include "create_commands.h"
#include "disk_commands.h"
#include "text.h"

#include <fmt/format.h>

static void open_controller(context_t &at, const command_t &what)
{
	what.expect_operands(1, 1);
	const std::string name = what.name_at(0);
	const auto &all = at.all.controllers;
	int index = static_cast<int>(all.size()) - 1;
	while (index >= 0 && all[static_cast<std::size_t>(index)].name != name)
		index--;
	if (index < 0 || at.wanted.missing)
		throw command_error("The requested controller does not exist.");
	const std::string &opens = all[static_cast<std::size_t>(index)].opens;
	if (opens == "wrong-type")
		throw command_error("The requested controller is of the wrong type.");
	if (opens == "busy" || at.wanted.busy)
		throw command_error("Another application has opened the requested controller.");
	at.opened = index;
}

static void controller_list(context_t &at, const command_t &what)
{
	what.expect_operands(0, 0);
	at.answer = {"Adapter Name  Adapter Type           Availability  Clustering",
	             "------------  ---------------------  ------------  ----------"};
	if (at.wanted.missing)
		return;
	for (const controller_t &c : at.all.controllers) {
		// Two blanks part the columns, however long a value is.
		at.answer.push_back(fmt::format("{:<12}  {:<21}  {:<12}  {}", c.name, c.type, c.availability,
		                                c.clustering));
	}
}

static void task_list(context_t &at, const command_t &what)
{
	what.expect_operands(0, 0);
	at.answer = {"TaskId Function  Done%  Container State Specific1 Specific2",
	             "------ -------- ------- --------- ----- --------- ---------"};
	for (const task_t &t : at.open_controller().tasks) {
		at.answer.push_back(fmt::format("{:>5}   {:<7} {:>3}.{}% {:>6}      {:<5} {:08x}  {:08x}",
		                                t.id, t.function, t.done / 10, t.done % 10, t.container,
		                                t.state, 0, 0));
	}
}

static const action_t ACTIONS[] = {
	{"exit", "", false, false, nullptr},
	{"open", "", false, false, open_controller},
	{"controller list", "", false, false, controller_list},
	{"container list", "", true, false, container_list},
	{"container show failover", "", true, false, container_show_failover},
	{"container set failover", "", true, true, container_set_failover},
	{"container remove failover", "", true, true, container_remove_failover},
	{"container delete", "always", true, true, container_delete},
	{"container create strip", "stripe_size label", true, true, create_strip},
	{"container create new_mirror", "label quick_init", true, true, create_mirror},
	{"container create raid5", "stripe_size label quick_init", true, true, create_raid5},
	{"container create mstrip", "stripe_size label", true, true, create_mstrip},
	{"disk list", "full", true, false, disk_list},
	{"disk initialize", "always unconditional", true, true, disk_initialize},
	{"disk show defect", "", true, false, disk_show_defect},
	{"disk show space", "", true, false, disk_show_space},
	{"disk show partition", "", true, false, disk_show_partition},
	{"task list", "", true, false, task_list},
};

static bool begins_with(const std::vector<token_t> &tokens, const std::vector<std::string> &words)
{
	if (tokens.size() < words.size())
		return false;
	for (std::size_t i = 0; i < words.size(); i++) {
		if (lower_case(tokens[i].text) != words[i])
			return false;
	}
	return true;
}

const action_t &action_of(const std::vector<token_t> &tokens)
{
	for (const action_t &row : ACTIONS) {
		if (begins_with(tokens, words_of(row.words)))
			return row;
	}
	throw parsing_error(fmt::format("Unknown command {}", tokens.front().text));
}

command_t command_of(const action_t &row, const std::vector<token_t> &tokens)
{
	const auto count = static_cast<std::ptrdiff_t>(words_of(row.words).size());
	std::vector<token_t> rest(tokens.begin() + count, tokens.end());
	// A controller's name is repeated in quotation marks, however it was written.
	for (token_t &part : rest) {
		if (row.run == open_controller && part.text.front() != '"')
			part.text = '"' + part.text + '"';
	}
	return command_t(row.words, row.switches, rest);
}

void require_controller(const action_t &row, context_t &at)
{
	if (!row.needs_open)
		return;
	if (at.opened < 0)
		throw command_error("Adapter must be opened before this command is used.");
	if (row.changes && at.open_controller().availability != "read/write")
		throw command_error("The controller is open for reading only.");
}
