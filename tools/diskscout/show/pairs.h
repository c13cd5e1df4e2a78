// SPDX-License-Identifier: Apache-2.0
// A row for programs: KEY="value" KEY="value", on one line whatever the values hold.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_PAIRS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_PAIRS_H

#include "field.h"

#include <string>
#include <vector>

// The line, ended with a newline. Keys stand in capitals, values raw. What a shell would take for more than a
// character of a quoted text, control characters and bytes that are no UTF-8 are \x and two hexadecimal
// digits a byte.
std::string pairs_line(const std::vector<const field_t *> &columns, const row_t &row);

#endif
