// SPDX-License-Identifier: Apache-2.0
// What the controller tool, the filter and the controllers did when they were asked. A check that finds a
// problem hides those behind it: they are not asked.
#include "check.h"
#include "finding.h"
#include "tool_rows.h"

#include <algorithm>
#include <iterator>

using judge_t = findings_t (*)(const tool_look_t &look);

// Those of the controllers hide nothing: each may have another one.
static const judge_t HIDING[] = {not_started,   tool_hangs,          tool_killed,       tool_status,
                                 tool_endless,  tool_silent,         tool_foreign,      tool_cut,
                                 tool_refuses,  filter_hangs,        filter_killed,     filter_status,
                                 filter_silent, answer_without_echo, answer_with_paint, answer_too_long,
                                 no_controller};

static bool has_problem(const findings_t &found)
{
	return std::any_of(found.begin(), found.end(),
	                   [](const finding_t &f) { return f.verdict == verdict_t::PROBLEM; });
}

// What is asked of a run that has been begun is known also where a later one has a problem.
static findings_t in_order(const patient_t &at, judge_t judge)
{
	if (!at.tool)
		return not_asked("the controller tool was not run");
	if (!at.tool->obstacle.empty())
		return not_asked(
			"the controller tool was not run: the configuration has to be put right first");
	for (const judge_t earlier : HIDING) {
		if (earlier == judge)
			break;
		if (has_problem(earlier(*at.tool)))
			return not_asked("another problem stands before it");
	}
	return judge(*at.tool);
}

template <judge_t Judge> static findings_t look(const patient_t &at)
{
	return in_order(at, Judge);
}

static const char BY_RUNNING[] = "The tool is run with a script that lists the controllers.";
static const char BY_FILTERING[] = "The filter is run with what the tool has printed.";
static const char BY_OPENING[] = "Each controller is opened and left again.";
static const char RUN_BY_HAND[] = "run the tool by hand with the commands \"controller list\" and \"exit\"";
static const char NAME_THE_TOOL[] =
	"name the command-line tool of the controller's maker in the configuration";
static const char USE_OUR_FILTER[] =
	"name the filter script that comes with the program in the configuration";

static const check_t CHECKS[] = {
	{"tool_started", "Can tool and filter be started?", BY_RUNNING,
         "look for what this process may not have: directories to write in, processes, open files",
         RAID_FAILED, true, look<not_started>},
	{"tool_hangs", "Does the tool come to an end?", BY_RUNNING,
         "look with ps what the tool waits for; end who else uses the controller, or allow it more time with "
         "--timeout",
         RAID_FAILED, true, look<tool_hangs>},
	{"tool_killed", "Does the tool end by itself?", BY_RUNNING,
         "look in the kernel's log for the process, and for memory that ran out", RAID_FAILED, true,
         look<tool_killed>},
	{"tool_status", "Does the tool end well?", BY_RUNNING, RUN_BY_HAND, RAID_FAILED, true,
         look<tool_status>},
	{"tool_endless", "Does the tool stop printing?", BY_RUNNING, NAME_THE_TOOL, RAID_FAILED, true,
         look<tool_endless>},
	{"tool_silent", "Does the tool print anything?", BY_RUNNING, RUN_BY_HAND, RAID_FAILED, true,
         look<tool_silent>},
	{"tool_foreign", "Is it a tool of this kind?",
         "The echo of the command is looked for in what the tool has printed.", NAME_THE_TOOL, RAID_FAILED,
         true, look<tool_foreign>},
	{"tool_cut", "Is the tool's answer whole?",
         "The echo of the last command, \"exit\", is looked for in what the tool has printed.",
         "look whether the filesystem is full and what ends the tool early", RAID_FAILED, true,
         look<tool_cut>},
	{"tool_refuses", "Does the tool list the controllers?",
         "Errors are looked for in what the tool has printed.",
         "look whether the controller's driver is loaded and this process is root's", RAID_FAILED, true,
         look<tool_refuses>},
	// Nothing fails for it.
	{"tool_leaves", "Is nothing left when the tool has ended?",
         "Processes below this one are looked for when the tool has ended.",
         "look with ps what the tool has started: an agent does not end it", 0, true,
         look<tool_leaves_processes>},
	{"filter_hangs", "Does the filter come to an end?", BY_FILTERING, USE_OUR_FILTER, RAID_FAILED, true,
         look<filter_hangs>},
	{"filter_killed", "Does the filter end by itself?", BY_FILTERING,
         "look in the kernel's log for the process, and for memory that ran out", RAID_FAILED, true,
         look<filter_killed>},
	{"filter_status", "Does the filter end well?", BY_FILTERING,
         "look whether awk, mktemp and mv are in PATH; name the filter script that comes with the program",
         RAID_FAILED, true, look<filter_status>},
	{"filter_silent", "Does the filter write an answer?", BY_FILTERING, USE_OUR_FILTER, RAID_FAILED, true,
         look<filter_silent>},
	{"filter_loses", "Does the filter keep the echoes?", BY_FILTERING, USE_OUR_FILTER, RAID_FAILED, true,
         look<answer_without_echo>},
	{"filter_paint", "Does the filter take out what paints a terminal?", BY_FILTERING, USE_OUR_FILTER,
         RAID_FAILED, true, look<answer_with_paint>},
	{"answer_too_long", "Is the answer of a size that is read?",
         "What the filter has written is measured: lists of containers are read up to 1 MiB.",
         "look with the tool what it prints beside its tables, and let the filter take it out", RAID_FAILED,
         true, look<answer_too_long>},
	{"no_controller", "Does the tool find a controller?", "The rows of its list are counted.",
         "look with lspci whether the controller is there, and whether its driver is loaded", RAID_FAILED,
         true, look<no_controller>},
	{"controller_missing", "Is the controller there?", BY_OPENING,
         "take the name from the list of controllers", RAID_FAILED, true, look<controller_missing>},
	{"controller_held", "Is the controller free?", BY_OPENING,
         "end the other program that uses the controller, or wait for it", RAID_FAILED, true,
         look<controller_held>},
	{"controller_type", "Does the tool drive this type of controller?", BY_OPENING,
         "install the tool that belongs to this controller", RAID_FAILED, true,
         look<controller_of_wrong_type>},
	{"controller_refused", "Can every controller be opened?", BY_OPENING,
         "run the tool by hand with the command \"open\" and the controller's name", RAID_FAILED, true,
         look<controller_refused>},
};

const checks_t TOOL_CHECKS = {CHECKS, std::size(CHECKS)};
