// SPDX-License-Identifier: Apache-2.0
// Rows of field tables over the classic records, whose texts are empty and whose numbers are 0 or -1 when
// there is nothing to tell.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_CLASSIC_FIELDS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_CLASSIC_FIELDS_H

#include "member.h"
#include "text.h"

#include <type_traits>

inline void put_text(std::string_view text, sink_t &to)
{
	if (text.empty())
		to.absent();
	else
		to.text(text);
}

template <typename Number> void put_number(Number number, sink_t &to)
{
	if constexpr (std::is_unsigned_v<Number>)
		to.large(number);
	else
		to.number(number);
}

// 0 stands for "unknown".
template <typename Number> void put_known(Number number, sink_t &to)
{
	if (number)
		put_number(number, to);
	else
		to.absent();
}

template <auto Member> void text_member(const row_t &row, sink_t &to)
{
	const auto &text = value_of<Member>(row);
	put_text({text, strnlen(text, sizeof text)}, to);
}

template <auto Member> void number_member(const row_t &row, sink_t &to)
{
	put_number(value_of<Member>(row), to);
}

template <auto Member> void known_member(const row_t &row, sink_t &to)
{
	put_known(value_of<Member>(row), to);
}

template <auto Member> void flag_member(const row_t &row, sink_t &to)
{
	to.flag(value_of<Member>(row) != 0);
}

template <auto Member>
constexpr field_t text(const char *key, const char *heading, const char *what, unsigned formats = OLD | NEW)
{
	return {key, heading, shape_t::TEXT, formats | MAY_LACK, what, text_member<Member>};
}

template <auto Member>
constexpr field_t number(const char *key, const char *heading, const char *what, unsigned formats = OLD | NEW)
{
	return {key, heading, shape_t::NUMBER, formats, what, number_member<Member>};
}

template <auto Member>
constexpr field_t bytes(const char *key, const char *heading, const char *what, unsigned formats = OLD | NEW)
{
	return {key, heading, shape_t::BYTES, formats, what, number_member<Member>};
}

template <auto Member>
constexpr field_t flag(const char *key, const char *heading, const char *what, unsigned formats = OLD | NEW)
{
	return {key, heading, shape_t::FLAG, formats, what, flag_member<Member>};
}

#endif
