// The table of the commands: their words, switches and what they do.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_COMMANDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_COMMANDS_H

#include "context.h"

#include <vector>

struct action {
	const char *words;
	const char *switches; // that it knows, between blanks
	bool needs_open;
	bool changes;
	void (*run)(context &at, const command &what); // null: the end of the script
};

// The row whose words the line begins with, and the rest of the line.
const action &action_of(const std::vector<token> &tokens);
command command_of(const action &row, const std::vector<token> &tokens);

// Refuses when the action needs an open controller, or one that may be written.
void require_controller(const action &row, context &at);

#endif
