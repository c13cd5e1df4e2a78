// SPDX-License-Identifier: Apache-2.0
// Limits of time, as callers write them.
#include "seconds.h"

#include "usage_error.h"

#include <charconv>
#include <fmt/format.h>

std::chrono::milliseconds whole_seconds(std::string_view name, std::string_view text)
{
	constexpr unsigned LONGEST = 86400;
	unsigned seconds = 0;
	const char *const behind = text.data() + text.size();
	const auto [end, error] = std::from_chars(text.data(), behind, seconds);
	if (error != std::errc() || end != behind || seconds > LONGEST)
		throw usage_error_t(
			fmt::format("{}: {} is none of 0 to {} whole seconds", name, text, LONGEST));
	return std::chrono::seconds(seconds);
}
