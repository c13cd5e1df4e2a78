// SPDX-License-Identifier: Apache-2.0
// Why a list is empty, short, old or slow: all checks, one after the other.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_EXAMINATION_H
#define DISKSCOUT_TOOLS_DISKSCOUT_EXAMINATION_H

#include "check.h"
#include "kinds.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

// What a check found; a row without a text for one that found nothing.
struct told_finding_t {
	const check_t *check;
	finding_t finding; // its advice is empty only where nothing has to be done
};
using told_findings_t = std::vector<told_finding_t>;

// All checks in their order, within this time altogether; 0: without a limit.
told_findings_t examine(const patient_t &at, std::chrono::milliseconds limit);

std::string_view word_of(verdict_t verdict);
std::vector<const check_t *> all_checks();

// The sentence and what to do, as one line.
std::string line_of(const told_finding_t &found);

// What doctor would lead with of lists that failed or came back short, as a line; empty when it finds
// nothing. It may take as long as the enquiry allows a list.
finding_t leading_finding(const kinds_t &kinds, enquiry_t &from);

#endif
