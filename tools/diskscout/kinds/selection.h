// SPDX-License-Identifier: Apache-2.0
// Devices that are named on the command line, and what belongs to them.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_SELECTION_H
#define DISKSCOUT_TOOLS_DISKSCOUT_SELECTION_H

#include "enquiry.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

// The kernel's names of devices.
using names_t = std::set<std::string_view>;

// The devices behind the paths, which may be any links to their nodes, with all that stands on them; inverse:
// all that they stand on. Throws usage_error for a path behind which there is no device.
names_t devices_behind(const std::vector<std::string> &paths, bool inverse, enquiry_t &from);

#endif
