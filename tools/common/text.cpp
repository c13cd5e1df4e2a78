// Texts and numbers of a record, made fit for a reader.
#include "text.h"

#include <algorithm>
#include <fmt/format.h>

static unsigned char byte_at(std::string_view text, std::size_t at)
{
	return static_cast<unsigned char>(text[at]);
}

static bool is_continuation(unsigned char byte)
{
	return (byte & 0xc0) == 0x80;
}

// Bytes of the UTF-8 character that this byte opens, 0 when it opens none. C0, C1 and F5 upwards open only
// over-long or impossible ones.
static std::size_t length_opened_by(unsigned char byte)
{
	if (byte < 0x80)
		return 1;
	if (byte >= 0xc2 && byte <= 0xdf)
		return 2;
	if (byte >= 0xe0 && byte <= 0xef)
		return 3;
	if (byte >= 0xf0 && byte <= 0xf4)
		return 4;
	return 0;
}

// Length of the UTF-8 character at the front, 0 when there is none.
static std::size_t character_length(std::string_view text)
{
	const std::size_t length = length_opened_by(byte_at(text, 0));
	if (length > text.size())
		return 0;
	for (std::size_t i = 1; i < length; i++) {
		if (!is_continuation(byte_at(text, i)))
			return 0;
	}
	return length;
}

// U+0080 to U+009F are the second set of control characters, which terminals obey as well.
static bool is_control(std::string_view character)
{
	const unsigned char first = byte_at(character, 0);
	return first < 0x20 || first == 0x7f || (first == 0xc2 && byte_at(character, 1) < 0xa0);
}

std::string printable(std::string_view text)
{
	std::string result;
	while (!text.empty()) {
		const std::size_t length = character_length(text);
		if (length && !is_control(text.substr(0, length)))
			result += text.substr(0, length);
		else
			result += '?';
		text.remove_prefix(std::max<std::size_t>(length, 1));
	}
	return result;
}

std::size_t width_of(std::string_view printable_text)
{
	const auto opens = [](char byte) { return !is_continuation(static_cast<unsigned char>(byte)); };
	return static_cast<std::size_t>(std::count_if(printable_text.begin(), printable_text.end(), opens));
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
