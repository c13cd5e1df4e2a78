// UTF-8, byte by byte.
#include "utf8.h"

#include <algorithm>
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

bool is_control(std::string_view character)
{
	struct range_t {
		std::string_view first, last;
	};
	// The bytes of characters are in the order of their numbers.
	static constexpr range_t RANGES[] = {
		{{"\x00", 1}, "\x1f"},
		{"\x7f", "\x7f"},
		{"\xc2\x80", "\xc2\x9f"},
		{"\xd8\x9c", "\xd8\x9c"},
		{"\xe2\x80\x8e", "\xe2\x80\x8f"},
		{"\xe2\x80\xa8", "\xe2\x80\xae"},
		{"\xe2\x81\xa6", "\xe2\x81\xa9"},
	};
	const auto holds = [&](const range_t &r) { return r.first <= character && character <= r.last; };
	return std::any_of(std::begin(RANGES), std::end(RANGES), holds);
}
