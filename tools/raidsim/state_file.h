// SPDX-License-Identifier: Apache-2.0
// The state's one text file.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_STATE_FILE_H
#define DISKSCOUT_TOOLS_RAIDSIM_STATE_FILE_H

#include "state.h"

#include <string>

// Both throw a state_error when the file cannot be read, understood or written. A file that does not exist is
// made from the sample first.
state_t load_state(const std::string &path);

// Replaces the file at once or not at all; nothing is written when the text stays the same.
void save_state(const std::string &path, const state_t &all);

#endif
