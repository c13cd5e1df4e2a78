// SPDX-License-Identifier: Apache-2.0
// What doctor has found, for people and for programs.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_FINDINGS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_FINDINGS_H

#include "examination.h"
#include "host_names.h"
#include "listing.h"

listing_t findings_as_text(const told_findings_t &found);
listing_t findings_as_document(const told_findings_t &found, enquiry_t &from, const host_names_t &host);

#endif
