// SPDX-License-Identifier: Apache-2.0
// UTF-8, byte by byte.
#include "utf8.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

// First bytes of characters, how many bytes follow them, and the bounds of the second byte, by which
// over-long forms, surrogates and what is beyond U+10FFFF are told.
struct opening_t {
	unsigned char first, last;
	unsigned char following;
	unsigned char least, most;
};

static constexpr opening_t OPENINGS[] = {
	{0x00, 0x7f, 0, 0x00, 0x00}, {0xc2, 0xdf, 1, 0x80, 0xbf}, {0xe0, 0xe0, 2, 0xa0, 0xbf},
	{0xe1, 0xec, 2, 0x80, 0xbf}, {0xed, 0xed, 2, 0x80, 0x9f}, {0xee, 0xef, 2, 0x80, 0xbf},
	{0xf0, 0xf0, 3, 0x90, 0xbf}, {0xf1, 0xf3, 3, 0x80, 0xbf}, {0xf4, 0xf4, 3, 0x80, 0x8f},
};

static unsigned char byte_at(std::string_view text, std::size_t at)
{
	return static_cast<unsigned char>(text[at]);
}

static bool is_between(unsigned char byte, unsigned char least, unsigned char most)
{
	return byte >= least && byte <= most;
}

static bool follows(const opening_t &o, std::size_t at, unsigned char byte)
{
	return at == 1 ? is_between(byte, o.least, o.most) : is_between(byte, 0x80, 0xbf);
}

utf8_front_t utf8_front(std::string_view text)
{
	for (const opening_t &o : OPENINGS) {
		if (!is_between(byte_at(text, 0), o.first, o.last))
			continue;
		std::size_t length = 1;
		while (length <= o.following && length < text.size() &&
		       follows(o, length, byte_at(text, length)))
			length++;
		return {length, length > o.following};
	}
	return {1, false};
}

// U+20AC for its three bytes.
static std::uint32_t number_of(std::string_view character)
{
	// The first byte gives the bits that its length leaves it, each further one six.
	static constexpr unsigned char OF_FIRST[] = {0x7f, 0x1f, 0x0f, 0x07};
	std::uint32_t number = byte_at(character, 0) & OF_FIRST[character.size() - 1];
	for (std::size_t i = 1; i < character.size(); i++)
		number = number << 6 | (byte_at(character, i) & 0x3fu);
	return number;
}

bool is_control(std::string_view character)
{
	struct range_t {
		std::uint32_t first, last;
	};
	static constexpr range_t RANGES[] = {
		{0x00, 0x1f},     {0x7f, 0x9f},     {0x61c, 0x61c},
		{0x200e, 0x200f}, {0x2028, 0x202e}, {0x2066, 0x2069},
	};
	const std::uint32_t number = number_of(character);
	return std::any_of(std::begin(RANGES), std::end(RANGES),
	                   [&](const range_t &r) { return r.first <= number && number <= r.last; });
}
