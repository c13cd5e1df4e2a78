// SPDX-License-Identifier: Apache-2.0
// The listing of the kinds that were asked for.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_LISTING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_LISTING_H

#include "host_names.h"
#include "options.h"

#include <string>

// The text of a listing, and the exit status that goes with it; of what failed, standard error has been told.
struct listing_t {
	std::string text;
	int status;
};

listing_t list_as_tables(enquiry_t &from, const options_t &opts);
listing_t list_as_document(enquiry_t &from, const options_t &opts, const host_names_t &host);

// Tables or document as they were before there were formats.
listing_t list_in_old_format(enquiry_t &from, const options_t &opts);

#endif
