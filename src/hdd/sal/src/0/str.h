// SPDX-License-Identifier: Apache-2.0
// Text helpers: clearing, trimming, splitting, numbers, and the one bounded copy.
//
// A view never owns its text. Nothing here allocates and nothing depends on the locale.
#ifndef DISKSCOUT_HDD_SAL_0_STR_H
#define DISKSCOUT_HDD_SAL_0_STR_H

#include "hdd/sal/src/0/def.h"

#include <string_view>

void b0(void *p, unsigned long n); // zeroes n bytes
void b0_fname(char *fname);        // zeroes FNAME_SIZE bytes
void b0_line(char *line);          // zeroes LINE_SIZE bytes
void b0_str(char *str);            // zeroes STR_SIZE bytes
void b0_idlun(idlun_t *idlun);

// What stands before the first newline, NUL, carriage return or '#': there every field of a table ends.
std::string_view str_cut(std::string_view text);
// str_cut, then without the blanks and tabs at its end.
std::string_view str_cut_strip(std::string_view text);
// str_cut_strip, then without the blanks and tabs at its start.
std::string_view str_trim(std::string_view text);

// Whether trimming would leave nothing.
bool str_is_blank(const char *text);

// Takes the next word off the text; blanks, tabs and line ends separate. False when none is left.
bool str_next_word(std::string_view *text, std::string_view *word);
// Takes a decimal number with an optional sign off the text, blanks before it included. Returns false when
// there is none. A number beyond 64 bits comes out as the nearest one.
bool str_next_int(std::string_view *text, int64_t *value);
// Takes a word of one to four hexadecimal digits off the text, blanks before it included; no sign, no "0x".
bool str_next_hex4(std::string_view *text, unsigned *value);

// The value of a text of decimal digits; -1 when it is empty or holds anything else, INT_MAX when it is too
// long for an int.
int str_digits(std::string_view digits);

// The text from a column on, counted from 0, of at most that length; empty behind the text's end.
std::string_view str_columns(std::string_view text, size_t column, size_t length = SIZE_MAX);

// A text beginning with the prefix.
bool str_begins(std::string_view text, std::string_view prefix);

// Copies as much of `from` as fits into size bytes with its NUL and zeroes the rest.
void str_copy(char *to, size_t size, std::string_view from);
template <size_t size> void str_copy(char (&to)[size], std::string_view from)
{
	str_copy(to, size, from);
}
// The same for a field that is all zero behind the text it holds: only what the old text leaves is zeroed.
// Path fields are long and their texts short; records that are filled in a loop are refilled so.
void str_refill(char *to, size_t size, std::string_view from);
template <size_t size> void str_refill(char (&to)[size], std::string_view from)
{
	str_refill(to, size, from);
}
// Appends as much of `from` as fits.
void str_append(char *to, size_t size, std::string_view from);
template <size_t size> void str_append(char (&to)[size], std::string_view from)
{
	str_append(to, size, from);
}

#endif
