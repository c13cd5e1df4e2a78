// SPDX-License-Identifier: Apache-2.0
// Texts of hosts: taken apart, and made fit to be handed out.
#ifndef DISKSCOUT_BLOCK_TEXT_H
#define DISKSCOUT_BLOCK_TEXT_H

#include "arena.h"

#include <stdint.h>
#include <string_view>

// A view whose parts never throw: what begins beyond the end is empty.
class text_t : public std::string_view
{
public:
	using std::string_view::string_view;
	constexpr text_t() = default;
	constexpr text_t(std::string_view text) : std::string_view(text) {}

	constexpr text_t substr(size_t from, size_t most = npos) const
	{
		const size_t start = from < size() ? from : size();
		const size_t rest = size() - start;
		return {data() + start, most < rest ? most : rest};
	}
};

// The text as records hold it: valid UTF-8, everything else and what steers a terminal as "\xHH". Null for an
// empty one and without memory.
const char *shown_text(Arena *arena, text_t raw);

// Without the blanks, newlines and NULs at both ends: what fields of fixed width are filled up with.
text_t trimmed(text_t text);

bool begins_with(text_t text, text_t start);
bool ends_with(text_t text, text_t end);

// Cuts the text up to the separator, or to its end, off its start; the separator goes, too.
text_t take_until(text_t *text, char separator);

// A whole text as a number: digits only. False for anything else and for what does not fit.
bool read_number(text_t text, int64_t *value);
// The digits at its start are taken off; false when there is none, or too many.
bool take_number(text_t *text, int64_t *value);
// Hexadecimal digits only, without a prefix.
bool read_hex_number(text_t text, uint64_t *value);

// "MAJOR:MINOR".
bool read_device_number(text_t text, int *major_number, int *minor_number);

// Undoes "\040" (three octal digits) in a copy; what is no such escape stays. Null without memory.
char *octal_decoded(Arena *arena, text_t text, size_t *length);

// Lower-case hexadecimal digits of bytes; null without memory.
const char *hex_text(Arena *arena, text_t prefix, const unsigned char *bytes, size_t count);

// Names in the order in which people count: sda2 before sda10.
int compare_names(text_t one, text_t other);

#endif
