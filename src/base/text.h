// SPDX-License-Identifier: Apache-2.0
// Characters and decimal numbers, told apart the same way under every locale of the host. Both sides of the
// library stand on this room; it knows neither.
#ifndef DISKSCOUT_BASE_TEXT_H
#define DISKSCOUT_BASE_TEXT_H

#include <stdint.h>
#include <string_view>

constexpr bool is_blank(char c)
{
	return c == ' ' || c == '\t';
}

// A blank, or one of the characters that end lines and pages.
constexpr bool is_white_space(char c)
{
	return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr bool is_digit(char c)
{
	return c >= '0' && c <= '9';
}

// The value of one hexadecimal digit of either case, or -1.
int hex_digit_value(char c);

// Takes a decimal number with an optional sign off the text; nothing before it is skipped. False when the
// text begins with none: it is left as it was.
// compat: a number beyond the type's range comes out as the nearest one, and never as a small one.
bool take_decimal(std::string_view *text, int64_t *value);
bool take_decimal(std::string_view *text, int *value);

#endif
