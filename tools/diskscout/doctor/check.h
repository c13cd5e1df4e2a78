// SPDX-License-Identifier: Apache-2.0
// What doctor looks at. A row of a table each: what is asked, how it is found out, and what to do when it is
// not well. The order of the rows is the order in which causes hide each other: the first one that is a
// problem is what a person should be told first.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_CHECK_H
#define DISKSCOUT_TOOLS_DISKSCOUT_CHECK_H

#include "enquiry.h"

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/*
 * A problem: a list fails, is cut or holds what is not so, something that has to be read cannot be, or
 * somebody else can choose what root runs. A warning: what the lists tell is right, and yet not all. What is
 * fine may have a text as well, which is a note: it explains to whoever asks why a list is empty, on a host
 * that is well.
 */
enum class verdict_t { FINE, WARNING, PROBLEM, NOT_ASKED };

// One thing that is the case, in one sentence that begins small and has no full stop.
struct finding_t {
	verdict_t verdict;
	std::string text;
	std::string advice = {}; // where it is another one than the check's
};
using findings_t = std::vector<finding_t>; // none: all is well

// What this process got from whoever started it, before it changed anything.
struct inherited_t {
	bool ignores_children = false;    // SIGCHLD is ignored
	std::optional<std::size_t> stack; // soft limit in bytes; none: unlimited
	bool is_root = false;             // and looks at a host of its own: of a captured one others asked
};

struct tool_look_t;

struct patient_t {
	enquiry_t &from;
	inherited_t inherited;
	std::optional<pid_t> agent; // whose limits are looked at in place of ours
	bool asks_tool = false;     // the controller tool may be run
	// What it did when it was run, by look_at_tool, before the checks; null: it was not.
	const tool_look_t *tool = nullptr;
};

// Whom a check concerns: a list that fails or comes back short is told the first of its own.
enum : unsigned {
	DISKS_SHORT = 1,
	PARTITIONS_SHORT = 2,
	CDROMS_SHORT = 4,
	RAID_FAILED = 8,
	DEVICES_FAILED = 16, // any of today's lists
	ANY_LIST = 31
};

struct check_t {
	const char *word;     // of the document: "scsi_table"
	const char *question; // "Can the controller tool be run?"
	const char *how;      // how it is found out, for the page
	const char *advice;   // what to do where it is not well, in a sentence of that kind
	unsigned concerns;
	bool runs_tool; // look_at_tool has to be asked first
	// Runs in a worker, which may hang and crash: it sees the lists that were asked before.
	findings_t (*look)(const patient_t &at);
};

struct checks_t {
	const check_t *first;
	std::size_t count;
};
extern const checks_t MACHINE_CHECKS; // this machine: permission, tables, limits of the classic lists
extern const checks_t SITE_CHECKS;    // the controller tool's configuration
extern const checks_t TOOL_CHECKS;    // what the tool and the filter did

#endif
