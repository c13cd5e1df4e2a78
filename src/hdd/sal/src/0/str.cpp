// SPDX-License-Identifier: Apache-2.0
#include "hdd/sal/src/0/str.h"

#include "base/text.h"

#include <string.h>

void b0(void *p, unsigned long n)
{
	memset(p, 0, n);
}

void b0_fname(char *fname)
{
	b0(fname, FNAME_SIZE);
}

void b0_line(char *line)
{
	b0(line, LINE_SIZE);
}

void b0_str(char *str)
{
	b0(str, STR_SIZE);
}

void b0_idlun(idlun_t *idlun)
{
	b0(idlun, sizeof *idlun);
}

static bool ends_field(char c)
{
	return c == '\n' || c == '\0' || c == '\r' || c == '#';
}

std::string_view str_cut(std::string_view text)
{
	size_t length = 0;
	while (length < text.size() && !ends_field(text[length]))
		length++;
	return std::string_view(text.data(), length);
}

std::string_view str_cut_strip(std::string_view text)
{
	text = str_cut(text);
	while (!text.empty() && is_blank(text.back()))
		text.remove_suffix(1);
	return text;
}

std::string_view str_trim(std::string_view text)
{
	text = str_cut_strip(text);
	while (!text.empty() && is_blank(text.front()))
		text.remove_prefix(1);
	return text;
}

bool str_is_blank(const char *text)
{
	while (is_blank(*text))
		text++;
	return ends_field(*text);
}

static void skip_space(std::string_view *text)
{
	while (!text->empty() && is_white_space(text->front()))
		text->remove_prefix(1);
}

bool str_next_word(std::string_view *text, std::string_view *word)
{
	skip_space(text);
	size_t length = 0;
	while (length < text->size() && !is_white_space((*text)[length]))
		length++;
	*word = std::string_view(text->data(), length);
	text->remove_prefix(length);
	return length != 0;
}

bool str_next_int(std::string_view *text, int64_t *value)
{
	skip_space(text);
	return take_decimal(text, value);
}

bool str_next_hex4(std::string_view *text, unsigned *value)
{
	skip_space(text);
	const size_t limit = text->size() < 4 ? text->size() : 4;
	size_t length = 0;
	unsigned sum = 0;
	for (int digit; length < limit && (digit = hex_digit_value((*text)[length])) >= 0; length++)
		sum = sum * 16 + static_cast<unsigned>(digit);
	text->remove_prefix(length);
	*value = sum;
	return length != 0;
}

int str_digits(std::string_view digits)
{
	int value;
	if (digits.empty() || !is_digit(digits.front()) || !take_decimal(&digits, &value))
		return -1;
	return digits.empty() ? value : -1;
}

std::string_view str_columns(std::string_view text, size_t column, size_t length)
{
	text.remove_prefix(column < text.size() ? column : text.size());
	return text.size() <= length ? text : std::string_view(text.data(), length);
}

bool str_begins(std::string_view text, std::string_view prefix)
{
	return text.size() >= prefix.size() && memcmp(text.data(), prefix.data(), prefix.size()) == 0;
}

// Copies what fits beside a NUL; returns its length.
static size_t copy_bounded(char *to, size_t size, std::string_view from)
{
	const size_t length = from.size() < size ? from.size() : size - 1;
	memcpy(to, from.data(), length);
	return length;
}

void str_copy(char *to, size_t size, std::string_view from)
{
	const size_t length = copy_bounded(to, size, from);
	memset(to + length, 0, size - length);
}

void str_refill(char *to, size_t size, std::string_view from)
{
	const size_t old_length = strnlen(to, size);
	const size_t length = copy_bounded(to, size, from);
	if (length < old_length)
		memset(to + length, 0, old_length - length);
}

void str_append(char *to, size_t size, std::string_view from)
{
	const size_t used = strnlen(to, size - 1);
	const size_t length = copy_bounded(to + used, size - used, from);
	to[used + length] = '\0';
}
