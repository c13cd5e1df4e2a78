// SPDX-License-Identifier: Apache-2.0
// What a list lacks because of who asks for it.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_WITHHELD_H
#define DISKSCOUT_TOOLS_DISKSCOUT_WITHHELD_H

#include "asking.h"
#include "messages.h"

// Only for what is shown: a column that nobody sees lacks nothing.
messages_t withheld(const sections_t &sections, enquiry_t &from, const options_t &opts);

#endif
