// SPDX-License-Identifier: Apache-2.0
// The words behind the command.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_WORDS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_WORDS_H

#include "options.h"

#include <string>
#include <vector>

// Fills in the kinds and the devices that are named; without any the kinds that the other options ask for.
// Throws usage_error for a word that is neither.
void take_words(const std::vector<std::string> &words, options_t &opts);

#endif
