// SPDX-License-Identifier: Apache-2.0
// Devices that wait for somebody to use them.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_UNUSED_H
#define DISKSCOUT_TOOLS_DISKSCOUT_UNUSED_H

#include "field.h"

#include <string>
#include <string_view>
#include <vector>

// Whether nobody has used it yet. Of devices that no driver makes in advance a size of 0 says something: no
// medium, an array that did not start.
bool is_unused(std::string_view kind, long long size);

// Takes those out that a driver made in advance and nobody has used yet, such as eight loop devices without a
// file. A line that tells how many; empty when there was none.
std::string take_out_unused(std::vector<row_t> &devices);

#endif
