// SPDX-License-Identifier: Apache-2.0
// What stands over and in place of a table, in all formats.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_HEADING_H
#define DISKSCOUT_TOOLS_DISKSCOUT_HEADING_H

#include "asking.h"

// "DISKS", "CONTAINERS ON aac0"; a line.
std::string heading_of(const kind_t &kind, enquiry_t &from);

// For a kind without a row; a line.
std::string nothing_of(const section_t &section, enquiry_t &from);

#endif
