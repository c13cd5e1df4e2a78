/* The listing of the kinds that were asked for. */
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_LISTING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_LISTING_H

#include "kinds.h"

/* The text of a listing, and whether no query failed; of those that did, standard error has been told. */
struct listing {
	std::string text;
	bool complete;
};

listing list_as_tables(enquiry &from, const std::vector<const kind *> &kinds);
listing list_as_json(enquiry &from, const std::vector<const kind *> &kinds);

#endif
