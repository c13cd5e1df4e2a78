// SPDX-License-Identifier: Apache-2.0
// How the tool writes sizes and addresses, and how numbers are read.
#ifndef DISKSCOUT_TOOLS_RAIDSIM_TEXT_H
#define DISKSCOUT_TOOLS_RAIDSIM_TEXT_H

#include "state.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

std::string lower_case(std::string_view text);
std::string upper_case(std::string_view text);

// Without the blanks and tabs at both ends.
std::string_view trimmed(std::string_view text);

// The words between runs of blanks.
std::vector<std::string> words_of(std::string_view text);

// The whole text as a decimal number of at most `limit`; no sign, no blanks.
std::optional<std::int64_t> number_of(std::string_view text, std::int64_t limit = INT64_MAX);

// Six characters: "64.0KB", " 465GB". Cut, never rounded up, so that what is shown can be asked for.
std::string size_text(std::int64_t kilobytes);

// "0:02:0", as in every table but the container list.
std::string address_text(const address_t &at);

// The container list counts SCSI IDs in hexadecimal: "1:0a:0".
std::string hex_address_text(const address_t &at);

#endif
