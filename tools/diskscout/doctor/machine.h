// SPDX-License-Identifier: Apache-2.0
// This machine as the checks see it: its lists, its tables, and what keeps things out of the lists.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_MACHINE_H
#define DISKSCOUT_TOOLS_DISKSCOUT_MACHINE_H

#include "check.h"
#include "messages.h"
#include "reasons_lists.h"

#include <string>
#include <vector>

struct machine_t {
	facts_t facts;
	kernel_tables_t tables;
	std::vector<unlisted_t> unlisted;
	messages_t reasons; // of the three classic lists
	bool is_judged;
};

machine_t machine_of(enquiry_t &from);

/*
 * Whether somebody relies on the classic lists here: they hold something, or nobody else tells the devices.
 * On other hosts, as on most of today, they are empty by their nature, and that is fine.
 */
bool is_judged(enquiry_t &from);

// What is a warning or a problem where the classic lists are judged, and else a note.
verdict_t judged(const machine_t &machine, verdict_t verdict);

// The reasons with this code, each once.
findings_t told(const machine_t &machine, code_t code, verdict_t verdict, detail_t detail = detail_t::NONE);

bool has_text(const findings_t &findings, const std::string &text);

// "sda, sdb: text"; nothing without names.
findings_t about(const std::vector<std::string> &names, const std::string &text, verdict_t verdict);

#endif
