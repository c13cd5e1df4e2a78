// The listing of the kinds that were asked for.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_LISTING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_LISTING_H

#include "kinds.h"

// The text of a listing, and whether no query failed; of those that did, standard error has been told.
struct listing_t {
	std::string text;
	bool complete;
};

listing_t list_as_tables(enquiry_t &from, const std::vector<const kind_t *> &kinds);
listing_t list_as_json(enquiry_t &from, const std::vector<const kind_t *> &kinds);

#endif
