// SPDX-License-Identifier: Apache-2.0
// UTF-8, byte by byte.
#ifndef DISKSCOUT_TOOLS_COMMON_UTF8_H
#define DISKSCOUT_TOOLS_COMMON_UTF8_H

#include <cstddef>
#include <string_view>

// What stands at the front of a text.
struct utf8_front_t {
	std::size_t length; // bytes of the character, or of the longest beginning of one; at least 1
	bool is_character;  // it is whole
};

// The text is not empty. Over-long forms, surrogates and what is beyond U+10FFFF are no characters.
utf8_front_t utf8_front(std::string_view text);

// Of a whole character: U+0000 to U+001F, U+007F to U+009F, which terminals obey as well, and what ends a
// line or turns its direction round: U+061C, U+200E, U+200F, U+2028 to U+202E, U+2066 to U+2069.
bool is_control(std::string_view character);

#endif
