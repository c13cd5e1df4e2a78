// SPDX-License-Identifier: Apache-2.0
// Limits of time, as callers write them.
#ifndef DISKSCOUT_TOOLS_COMMON_SECONDS_H
#define DISKSCOUT_TOOLS_COMMON_SECONDS_H

#include <chrono>
#include <string_view>

// A limit that is not said.
constexpr std::chrono::seconds USUAL_LIMIT(60);

// Whole seconds, up to a day; 0 stands for no limit. Throws usage_error_t, which begins with the name of what
// was to be read.
std::chrono::milliseconds whole_seconds(std::string_view name, std::string_view text);

#endif
