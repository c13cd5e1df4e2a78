// The commands: their words, switches and what they do.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_COMMANDS_H
#define DISKSCOUT_TOOLS_RAIDSIM_COMMANDS_H

#include "command.h"
#include "faults.h"
#include "state.h"

#include <vector>

// What a command works on. Only an accepted command's changes are kept.
struct context {
	state all;
	int opened; // index of the open controller, -1: none
	const faults &wanted;
	std::vector<std::string> answer;

	controller &open_controller() { return all.controllers.at(static_cast<std::size_t>(opened)); }
};

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

// The disk at an address; refused when there is none, or no such channel.
disk &require_disk(controller &where, const address &at);
// The same for a disk that can hold data, which an enclosure's processor cannot.
disk &require_storage(controller &where, const address &at);
container &require_container(controller &where, int number);

void container_list(context &at, const command &what);
void container_show_failover(context &at, const command &what);
void container_set_failover(context &at, const command &what);
void container_remove_failover(context &at, const command &what);
void container_delete(context &at, const command &what);

void create_strip(context &at, const command &what);
void create_mirror(context &at, const command &what);
void create_raid5(context &at, const command &what);
void create_mstrip(context &at, const command &what);

void disk_list(context &at, const command &what);
void disk_initialize(context &at, const command &what);
void disk_show_defect(context &at, const command &what);
void disk_show_space(context &at, const command &what);
void disk_show_partition(context &at, const command &what);

#endif
