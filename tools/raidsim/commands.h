// SPDX-License-Identifier: Apache-2.0
// The table of the commands: their words, switches and what they do.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_COMMANDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_COMMANDS_H

#include "context.h"

#include <vector>

struct action_t {
	const char *words;
	const char *switches; // that it knows, between blanks
	bool needs_open;
	bool changes;
	void (*run)(context_t &at, const command_t &what); // null: the end of the script
};

// The row whose words the line begins with, and the rest of the line.
const action_t &action_of(const std::vector<token_t> &tokens);
command_t command_of(const action_t &row, const std::vector<token_t> &tokens);

// Refuses when the action needs an open controller, or one that may be written.
void require_controller(const action_t &row, context_t &at);

#endif
