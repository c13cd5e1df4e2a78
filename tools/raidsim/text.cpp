// SPDX-License-Identifier: Apache-2.0
// How the tool writes sizes and addresses, and how numbers are read.
#include "text.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>

static const char BLANKS[] = " \t\r";

// The C library's own would follow the locale.
static std::string shifted(std::string_view text, char first, char last, int by)
{
	std::string result(text);
	for (char &c : result) {
		if (c >= first && c <= last)
			c = static_cast<char>(c + by);
	}
	return result;
}

std::string lower_case(std::string_view text)
{
	return shifted(text, 'A', 'Z', 'a' - 'A');
}

std::string upper_case(std::string_view text)
{
	return shifted(text, 'a', 'z', 'A' - 'a');
}

std::string_view trimmed(std::string_view text)
{
	const std::size_t first = text.find_first_not_of(BLANKS);
	if (first == std::string_view::npos)
		return {};
	return text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

std::vector<std::string> words_of(std::string_view text)
{
	std::vector<std::string> words;
	for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
		const std::size_t length = std::min(text.find_first_of(BLANKS), text.size());
		words.emplace_back(text.substr(0, length));
		text.remove_prefix(length);
	}
	return words;
}

std::optional<std::int64_t> number_of(std::string_view text, std::int64_t limit)
{
	std::int64_t value = 0;
	const char *const end = text.data() + text.size();
	const auto [stop, error] = std::from_chars(text.data(), end, value);
	if (text.empty() || text.front() == '-' || error != std::errc() || stop != end || value > limit)
		return std::nullopt;
	return value;
}

std::string size_text(std::int64_t kilobytes)
{
	struct unit_t {
		std::int64_t kilobytes;
		const char *name;
	};
	static const unit_t UNITS[] = {{1048576, "GB"}, {1024, "MB"}, {1, "KB"}};
	for (const unit_t &u : UNITS) {
		if (kilobytes < u.kilobytes && u.kilobytes > 1)
			continue;
		const std::int64_t whole = kilobytes / u.kilobytes;
		const std::int64_t tenth = kilobytes % u.kilobytes * 10 / u.kilobytes;
		if (whole >= 100)
			return fmt::format("{:>4}{}", whole, u.name);
		return fmt::format("{:>2}.{}{}", whole, tenth, u.name);
	}
	return {};
}

std::string address_text(const address_t &at)
{
	return fmt::format("{}:{:02}:{}", at.channel, at.id, at.lun);
}

std::string hex_address_text(const address_t &at)
{
	return fmt::format("{:x}:{:02x}:{:x}", at.channel, at.id, at.lun);
}
