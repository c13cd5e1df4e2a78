// SPDX-License-Identifier: Apache-2.0
// Texts and numbers of a record, made fit for a reader.
#include "text.h"

#include "utf8.h"

#include <algorithm>
#include <fmt/format.h>

std::string printable(std::string_view text)
{
	std::string result;
	while (!text.empty()) {
		const utf8_front_t front = utf8_front(text);
		const std::string_view character = text.substr(0, front.length);
		if (!front.is_character)
			result.append(front.length, '?');
		else if (is_control(character))
			result += '?';
		else
			result += character;
		text.remove_prefix(front.length);
	}
	return result;
}

std::string in_small_letters(std::string_view word)
{
	std::string small(word);
	for (char &letter : small)
		letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
	return small;
}

std::vector<std::string_view> split(std::string_view list, char between)
{
	std::vector<std::string_view> words;
	for (;;) {
		const std::size_t length = std::min(list.find(between), list.size());
		words.push_back(list.substr(0, length));
		if (length == list.size())
			return words;
		list.remove_prefix(length + 1);
	}
}

std::size_t width_of(std::string_view printable_text)
{
	const auto opens = [](char byte) { return (static_cast<unsigned char>(byte) & 0xc0) != 0x80; };
	return static_cast<std::size_t>(std::count_if(printable_text.begin(), printable_text.end(), opens));
}

static bool is_digit(char byte)
{
	return byte >= '0' && byte <= '9';
}

// The number at the front, which may have any length, without zeros before it.
static std::string_view take_number(std::string_view &text)
{
	text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
	const auto end = std::find_if_not(text.begin(), text.end(), is_digit);
	const std::string_view number = text.substr(0, static_cast<std::size_t>(end - text.begin()));
	text.remove_prefix(number.size());
	return number;
}

bool is_before_by_value(std::string_view one, std::string_view other)
{
	while (!one.empty() && !other.empty()) {
		if (is_digit(one.front()) && is_digit(other.front())) {
			const std::string_view a = take_number(one);
			const std::string_view b = take_number(other);
			if (a.size() != b.size())
				return a.size() < b.size();
			if (a != b)
				return a < b;
			continue;
		}
		if (one.front() != other.front())
			return static_cast<unsigned char>(one.front()) <
			       static_cast<unsigned char>(other.front());
		one.remove_prefix(1);
		other.remove_prefix(1);
	}
	return one.empty() && !other.empty();
}

std::string human_size(std::uint64_t bytes)
{
	static const char *const UNITS[] = {"KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
	const unsigned last = std::size(UNITS) - 1;

	if (bytes < 1024)
		return fmt::format("{} B", bytes);
	unsigned unit = 0;
	while (unit < last && bytes >> (10 * (unit + 2)))
		unit++;
	// Integers all the way: a double cannot hold 2^64 - 1. Ten times the rest still fits, it is below
	// 2^60.
	const unsigned shift = 10 * (unit + 1);
	const std::uint64_t one = std::uint64_t{1} << shift;
	std::uint64_t tenths = (bytes >> shift) * 10 + ((bytes & (one - 1)) * 10 + one / 2) / one;
	if (tenths == 10240 && unit < last) {
		tenths = 10;
		unit++;
	}
	return fmt::format("{}.{} {}", tenths / 10, tenths % 10, UNITS[unit]);
}

std::string human_size_if_known(std::uint64_t bytes)
{
	return bytes ? human_size(bytes) : "-";
}
