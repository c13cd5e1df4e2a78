// SPDX-License-Identifier: Apache-2.0
// Which word somebody meant who mistyped one.
#ifndef DISKSCOUT_TOOLS_COMMON_CLOSEST_WORD_H
#define DISKSCOUT_TOOLS_COMMON_CLOSEST_WORD_H

#include <string>
#include <string_view>
#include <vector>

// Letters left out, put in, exchanged for another or with the next one, that make one word of the other.
std::size_t edit_distance(std::string_view one, std::string_view other);

// "; did you mean \"list\"?" for the closest word, the first of equals; empty when none is close: one edit
// away for a word of two to four letters, two for a longer one. The words are in small letters; the mistyped
// one need not be.
// `before` is written in front of it.
std::string suggestion(std::string_view mistyped, const std::vector<std::string_view> &words,
                       std::string_view before = "");

#endif
