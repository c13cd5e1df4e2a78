// SPDX-License-Identifier: Apache-2.0
// The kinds that were asked for, and what the plug-ins answered.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_ASKING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_ASKING_H

#include "messages.h"
#include "options.h"

#include <vector>

struct section_t {
	const kind_t *kind;
	answer_t answer;
};
using sections_t = std::vector<section_t>;

bool lacks_controller(const kind_t &kind, enquiry_t &from);
answer_t ask(const kind_t &kind, enquiry_t &from);

// "the disk query failed; it found nothing before"
std::string failure_of(const section_t &section);

// The error that it is, with its cause as far as it can be told.
message_t message_of_failure(section_t &section, enquiry_t &from);

// A host without what the devices are told from is none of today's. That is a failure only for somebody who
// asked for just that.
bool is_of_another_time(const section_t &section, enquiry_t &from, const options_t &opts);

// Asks for every kind, and for what the tables are drawn with. Messages are put behind those that are there
// already. Throws usage_error for a device that is named and not there.
sections_t ask_all(enquiry_t &from, const options_t &opts, messages_t &messages);

// Processes that a limit of time could not end.
messages_t left_behind(const enquiry_t &from);

bool has_error(const messages_t &messages);

#endif
