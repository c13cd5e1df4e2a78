// SPDX-License-Identifier: Apache-2.0
// The whole machine as one picture, or as one document.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_TREE_LISTING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_TREE_LISTING_H

#include "listing.h"

listing_t tree_as_picture(enquiry_t &from, const options_t &opts);
listing_t tree_as_document(enquiry_t &from, const options_t &opts, const host_names_t &host);

#endif
