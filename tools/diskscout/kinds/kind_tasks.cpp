// SPDX-License-Identifier: Apache-2.0
// What RAID controllers are working on by themselves.
#include "raid.h"
#include "raid_state.h"

static constexpr coded_word_t FUNCTIONS[] = {
	{0, "create"}, {1, "FAT format"}, {2, "NTFS format"}, {3, "rebuild"}, {4, "reconfigure"},
	{5, "scrub"},  {6, "unknown"},    {7, "verify"},      {8, "zero"},    {9, "build and verify"},
};

static constexpr coded_word_t STATES[] = {
	{0, "bad"}, {1, "done"}, {2, "running"}, {3, "suspended"}, {4, "unknown"},
};

static void put_done(const row_t &row, sink_t &to)
{
	const int permille = permille_of(record_of<aac_task>(row).Done);
	if (permille < 0)
		to.absent();
	else
		to.number(permille);
}

static std::string done_cell(const row_t &row)
{
	const int permille = permille_of(record_of<aac_task>(row).Done);
	return permille < 0 ? "-" : in_percent(permille);
}

static constexpr field_t FIELDS[] = {
	controller_field<raid_task_t>(),
	counted<&aac_task::TaskId>("task_id", "ID", "the task's number"),
	number<&aac_task::Function>("function", "FUNCTION CODE", "code of function_word", NEW),
	word<&aac_task::Function, FUNCTIONS>("function_word", "FUNCTION", "null for a word that is not known",
                                             NEW),
	{"done_permille", "DONE", shape_t::NUMBER, NEW | MAY_LACK, "0 to 1000", put_done, {}, done_cell},
	counted<&aac_task::ContainerID>("container", "CONTAINER", "number of the container that it works on"),
	number<&aac_task::State>("state", "STATE CODE", "code of state_word", NEW),
	word<&aac_task::State, STATES>("state_word", "STATE", "null for a word that is not known", NEW),
};

const kind_t TASKS_KIND = {
	"tasks",
	"",
	"RAID TASKS",
	"RAID task",
	"what RAID controllers are working on",
	"No RAID controller has a task.",
	side_t::CONTROLLER,
	0,
	FIELDS,
	"controller,task_id,function_word,done_permille,container,state_word",
	nullptr,
	ask_controllers<raid_task_t, &raid_site_t::tasks>,
};
