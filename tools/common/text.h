// SPDX-License-Identifier: Apache-2.0
// Texts and numbers of a record, made fit for a reader.
#ifndef DISKSCOUT_TOOLS_COMMON_TEXT_H
#define DISKSCOUT_TOOLS_COMMON_TEXT_H

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

// The text of a record's field. A plug-in that forgets the NUL must not make us read on.
template <std::size_t Size> std::string text_of(const char (&field)[Size])
{
	return {field, strnlen(field, Size)};
}

// The text with a "?" for every control character and for every byte that is no UTF-8: a disk may report
// anything, and nothing that it reports may steer a terminal or break a line.
std::string printable(std::string_view text);

// Letters of ASCII alone, whatever the locale.
std::string in_small_letters(std::string_view word);

// The words of a list that has this character between them; of an empty one a word, which is empty.
std::vector<std::string_view> split(std::string_view list, char between);

// Columns that a printable text takes: one a character; only a locale would know the wide ones.
std::size_t width_of(std::string_view printable_text);

// Whether a text stands before another: by their bytes, but numbers in them by their value, sda2 before
// sda10. Texts that differ only in zeros before a number are equal.
bool is_before_by_value(std::string_view one, std::string_view other);

// Bytes for people: "256.0 MiB". Below 1024 the plain number, "1023 B". From there on the largest binary unit
// that the number reaches, with one decimal, rounded half up. What rounds to 1024.0 of a unit is 1.0 of the
// next: one byte less than a MiB is "1.0 MiB". The largest unit is EiB.
std::string human_size(std::uint64_t bytes);

// The same for a size where 0 stands for "unknown": "-".
std::string human_size_if_known(std::uint64_t bytes);

// A field for a table cell: printable, "-" when it is empty.
template <std::size_t Size> std::string shown(const char (&field)[Size])
{
	const std::string text = text_of(field);
	return text.empty() ? "-" : printable(text);
}

// A mark for a table cell: "yes", or nothing, so that the marked rows stand out.
inline std::string mark(bool set)
{
	return set ? "yes" : "";
}

#endif
