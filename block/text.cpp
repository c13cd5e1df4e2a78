// SPDX-License-Identifier: Apache-2.0
#include "text.h"

#include <string.h>

// The length of the valid UTF-8 sequence at the text's start, or 0: no overlong forms, no surrogates, nothing
// above U+10FFFF.
static size_t utf8_length(text_t text)
{
	struct row_t {
		unsigned char first, last; // of the first byte
		unsigned char low, high;   // of the second one
		size_t length;
	};
	static constexpr row_t ROWS[] = {
		{0xc2, 0xdf, 0x80, 0xbf, 2}, {0xe0, 0xe0, 0xa0, 0xbf, 3}, {0xe1, 0xec, 0x80, 0xbf, 3},
		{0xed, 0xed, 0x80, 0x9f, 3}, {0xee, 0xef, 0x80, 0xbf, 3}, {0xf0, 0xf0, 0x90, 0xbf, 4},
		{0xf1, 0xf3, 0x80, 0xbf, 4}, {0xf4, 0xf4, 0x80, 0x8f, 4},
	};
	const auto byte = [&](size_t at) { return static_cast<unsigned char>(text[at]); };

	if (byte(0) < 0x80)
		return 1;
	for (const row_t &row : ROWS) {
		if (byte(0) < row.first || byte(0) > row.last || text.size() < row.length)
			continue;
		bool valid = byte(1) >= row.low && byte(1) <= row.high;
		for (size_t i = 2; i < row.length; i++)
			valid = valid && (byte(i) & 0xc0) == 0x80;
		return valid ? row.length : 0;
	}
	return 0;
}

// How many bytes at the text's start can stand as they are; 0: one has to be escaped.
static size_t plain_length(text_t text)
{
	const auto first = static_cast<unsigned char>(text[0]);
	const size_t length = utf8_length(text);
	if (length == 1)
		return first < 0x20 || first == 0x7f || first == '\\' ? 0 : 1;
	// U+0080 to U+009F steer terminals, too.
	if (length == 2 && first == 0xc2 && static_cast<unsigned char>(text[1]) < 0xa0)
		return 0;
	return length;
}

static constexpr char HEX_DIGITS[] = "0123456789abcdef";

static char *put_hex(char *to, unsigned char byte)
{
	*to++ = HEX_DIGITS[byte >> 4];
	*to++ = HEX_DIGITS[byte & 15];
	return to;
}

const char *shown_text(Arena *arena, text_t raw)
{
	size_t plain = 0;
	while (plain < raw.size() && plain_length(raw.substr(plain)) == 1)
		plain++;
	if (raw.empty())
		return nullptr;
	if (plain == raw.size())
		return arena->copy(raw);

	auto *text = static_cast<char *>(arena->take(4 * raw.size() + 1));
	char *to = text;
	while (to && !raw.empty()) {
		size_t length = plain_length(raw);
		if (length == 0) {
			*to++ = '\\';
			*to++ = 'x';
			to = put_hex(to, static_cast<unsigned char>(raw[0]));
			length = 1;
		} else {
			memcpy(to, raw.data(), length);
			to += length;
		}
		raw.remove_prefix(length);
	}
	return text;
}

text_t trimmed(text_t text)
{
	const auto is_filling = [](char c) { return c == ' ' || c == '\0' || (c >= '\t' && c <= '\r'); };
	while (!text.empty() && is_filling(text.front()))
		text.remove_prefix(1);
	while (!text.empty() && is_filling(text.back()))
		text.remove_suffix(1);
	return text;
}

bool begins_with(text_t text, text_t start)
{
	return text.substr(0, start.size()) == start;
}

bool ends_with(text_t text, text_t end)
{
	return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

text_t take_until(text_t *text, char separator)
{
	const size_t end = text->find(separator);
	const text_t taken = text->substr(0, end);
	text->remove_prefix(end == text_t::npos ? text->size() : end + 1);
	return taken;
}

bool take_number(text_t *text, int64_t *value)
{
	const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
	text_t rest = *text;
	int64_t number = 0;

	if (rest.empty() || !is_digit(rest.front()))
		return false;
	for (; !rest.empty() && is_digit(rest.front()); rest.remove_prefix(1)) {
		const int digit = rest.front() - '0';
		if (number > (INT64_MAX - digit) / 10)
			return false;
		number = 10 * number + digit;
	}
	*value = number;
	*text = rest;
	return true;
}

bool read_number(text_t text, int64_t *value)
{
	int64_t number;
	if (!take_number(&text, &number) || !text.empty())
		return false;
	*value = number;
	return true;
}

bool read_hex_number(text_t text, uint64_t *value)
{
	uint64_t number = 0;
	if (text.empty() || text.size() > 16)
		return false;
	for (const char c : text) {
		const size_t digit = text_t(HEX_DIGITS).find(static_cast<char>(c | (c >= 'A' ? 0x20 : 0)));
		if (digit == text_t::npos)
			return false;
		number = number << 4 | digit;
	}
	*value = number;
	return true;
}

bool read_device_number(text_t text, int *major_number, int *minor_number)
{
	int64_t numbers[2];
	if (!read_number(take_until(&text, ':'), &numbers[0]) || !read_number(text, &numbers[1]) ||
	    numbers[0] > INT32_MAX || numbers[1] > INT32_MAX)
		return false;
	*major_number = static_cast<int>(numbers[0]);
	*minor_number = static_cast<int>(numbers[1]);
	return true;
}

static bool is_octal_escape(text_t text)
{
	const auto is_octal = [](char c) { return c >= '0' && c <= '7'; };
	return text.size() >= 4 && text[0] == '\\' && text[1] >= '0' && text[1] <= '3' && is_octal(text[2]) &&
	       is_octal(text[3]);
}

char *octal_decoded(Arena *arena, text_t text, size_t *length)
{
	char *decoded = arena->copy(text);
	char *to = decoded;

	*length = 0;
	while (to && !text.empty()) {
		const bool escape = is_octal_escape(text);
		*to++ = escape ? static_cast<char>((text[1] - '0') << 6 | (text[2] - '0') << 3 |
		                                   (text[3] - '0'))
		               : text[0];
		text.remove_prefix(escape ? 4 : 1);
	}
	if (!decoded)
		return nullptr;
	*to = '\0';
	*length = static_cast<size_t>(to - decoded);
	return decoded;
}

const char *hex_text(Arena *arena, text_t prefix, const unsigned char *bytes, size_t count)
{
	auto *text = static_cast<char *>(arena->take(prefix.size() + 2 * count + 1));
	if (!text)
		return nullptr;
	memcpy(text, prefix.data(), prefix.size());
	char *to = text + prefix.size();
	for (size_t i = 0; i < count; i++)
		to = put_hex(to, bytes[i]);
	return text;
}

// The digits at the text's start, taken off it: without zeros in front.
static text_t take_digits(text_t *text)
{
	size_t end = 0;
	while (end < text->size() && (*text)[end] >= '0' && (*text)[end] <= '9')
		end++;
	text_t digits = text->substr(0, end);
	text->remove_prefix(end);
	while (digits.size() > 1 && digits.front() == '0')
		digits.remove_prefix(1);
	return digits;
}

int compare_names(text_t one, text_t other)
{
	text_t left = one;
	text_t right = other;
	while (!left.empty() && !right.empty()) {
		const text_t numbers[] = {take_digits(&left), take_digits(&right)};
		if (!numbers[0].empty() && !numbers[1].empty()) {
			if (numbers[0].size() != numbers[1].size())
				return numbers[0].size() < numbers[1].size() ? -1 : 1;
			if (numbers[0] != numbers[1])
				return numbers[0].compare(numbers[1]);
			continue;
		}
		// A number stands before a letter.
		if (numbers[0].empty() != numbers[1].empty())
			return numbers[0].empty() ? 1 : -1;
		if (left.front() != right.front()) {
			return static_cast<unsigned char>(left.front()) <
			                       static_cast<unsigned char>(right.front())
			               ? -1
			               : 1;
		}
		left.remove_prefix(1);
		right.remove_prefix(1);
	}
	if (left.empty() != right.empty())
		return left.empty() ? -1 : 1;
	// sda1 and sda01 count the same: then by their letters.
	return one.compare(other);
}
