// SPDX-License-Identifier: Apache-2.0
#include "base/text.h"

#include <limits.h>

struct hex_digits_t {
	int8_t value[256];
};

static constexpr hex_digits_t make_hex_digits()
{
	hex_digits_t digits = {};
	for (int8_t &value : digits.value)
		value = -1;
	for (int8_t i = 0; i < 10; i++)
		digits.value['0' + i] = i;
	for (int8_t i = 0; i < 6; i++) {
		digits.value['a' + i] = static_cast<int8_t>(10 + i);
		digits.value['A' + i] = static_cast<int8_t>(10 + i);
	}
	return digits;
}

int hex_digit_value(char c)
{
	static constexpr hex_digits_t DIGITS = make_hex_digits();
	return DIGITS.value[static_cast<unsigned char>(c)];
}

// The digits at the text's start as a number of at most the limit.
static uint64_t take_magnitude(std::string_view *text, uint64_t limit)
{
	uint64_t magnitude = 0;
	for (; !text->empty() && is_digit(text->front()); text->remove_prefix(1)) {
		const auto digit = static_cast<uint64_t>(text->front() - '0');
		magnitude = magnitude > (limit - digit) / 10 ? limit : magnitude * 10 + digit;
	}
	return magnitude;
}

bool take_decimal(std::string_view *text, int64_t *value)
{
	std::string_view digits = *text;
	const bool negative = !digits.empty() && digits.front() == '-';
	if (negative || (!digits.empty() && digits.front() == '+'))
		digits.remove_prefix(1);
	if (digits.empty() || !is_digit(digits.front()))
		return false;
	const uint64_t limit = static_cast<uint64_t>(INT64_MAX) + (negative ? 1 : 0);
	const uint64_t magnitude = take_magnitude(&digits, limit);
	*value = static_cast<int64_t>(negative ? 0 - magnitude : magnitude);
	*text = digits;
	return true;
}

bool take_decimal(std::string_view *text, int *value)
{
	int64_t number;
	if (!take_decimal(text, &number))
		return false;
	if (number > INT_MAX)
		number = INT_MAX;
	else if (number < INT_MIN)
		number = INT_MIN;
	*value = static_cast<int>(number);
	return true;
}
