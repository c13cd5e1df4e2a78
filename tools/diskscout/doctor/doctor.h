// Why a list is empty, short, old or slow: all checks, one after the other.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_DOCTOR_H
#define DISKSCOUT_TOOLS_DISKSCOUT_DOCTOR_H

#include "check.h"
#include "host_names.h"
#include "kinds.h"
#include "listing.h"

#include <chrono>
#include <string>
#include <vector>

// What a check found; a row without a text for one that found nothing.
struct told_finding_t {
	const check_t *check;
	finding_t finding;
	std::string advice; // empty where nothing has to be done
};
using told_findings_t = std::vector<told_finding_t>;

// All checks in their order, within this time altogether; 0: without a limit.
told_findings_t examine(const patient_t &at, std::chrono::milliseconds limit);

std::string_view word_of(verdict_t verdict);
std::vector<const check_t *> all_checks();

listing_t doctor_as_text(const told_findings_t &found);
listing_t doctor_as_document(const told_findings_t &found, enquiry_t &from, const host_names_t &host);

// What doctor would lead with of lists that failed or came back short, with its advice; empty when it finds
// nothing. It may take as long as the enquiry allows a list.
finding_t leading_finding(const kinds_t &kinds, enquiry_t &from);
std::string leading_line(const kinds_t &kinds, enquiry_t &from);

#endif
