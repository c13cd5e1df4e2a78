// SPDX-License-Identifier: Apache-2.0
// Rows of field tables over the records of today's hosts, in which what is absent is told apart from all
// values.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_BLOCK_FIELDS_H
#define DISKSCOUT_TOOLS_DISKSCOUT_BLOCK_FIELDS_H

#include "member.h"
#include "selection.h"

#include "diskscout_block.h"

// A library that is older than this program has shorter records: what lies behind their end is absent.
template <auto Member> const auto *member_within(const row_t &row)
{
	const auto *const member = &value_of<Member>(row);
	const char *const end = reinterpret_cast<const char *>(member + 1);
	const auto needed = static_cast<std::size_t>(end - static_cast<const char *>(row.record));
	return needed <= record_of<record_with_t<Member>>(row).record_size ? member : nullptr;
}

// Null when it is absent.
template <auto Member> const char *text_within(const row_t &row)
{
	const auto *const member = member_within<Member>(row);
	return member ? *member : nullptr;
}

template <auto Member> void told_text(const row_t &row, sink_t &to)
{
	if (const char *const text = text_within<Member>(row))
		to.text(text);
	else
		to.absent();
}

template <auto Member> void told_number(const row_t &row, sink_t &to)
{
	const auto *const member = member_within<Member>(row);
	if (member && *member != BLOCK_ABSENT)
		to.number(*member);
	else
		to.absent();
}

template <auto Member> void told_flag(const row_t &row, sink_t &to)
{
	const auto *const member = member_within<Member>(row);
	if (member && *member != BLOCK_ABSENT)
		to.flag(*member != 0);
	else
		to.absent();
}

template <auto Member> void told_texts(const row_t &row, sink_t &to)
{
	const auto *const member = member_within<Member>(row);
	to.begin_list();
	for (const block_text *t = member ? *member : nullptr; t; t = t->next)
		to.text(t->text);
	to.end_list();
}

template <auto Member, const auto &Fields> void told_objects(const row_t &row, sink_t &to)
{
	const auto *const member = member_within<Member>(row);
	to.begin_list();
	for (auto inner = member ? *member : nullptr; inner; inner = inner->next)
		put_object(Fields, NEW, {inner, row.from}, to);
	to.end_list();
}

// A text that no record lacks, such as a name.
template <auto Member> constexpr field_t always(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::TEXT, NEW, what, told_text<Member>};
}

template <auto Member> constexpr field_t text(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::TEXT, NEW | MAY_LACK, what, told_text<Member>};
}

template <auto Member> constexpr field_t number(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::NUMBER, NEW | MAY_LACK, what, told_number<Member>};
}

template <auto Member> constexpr field_t bytes(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::BYTES, NEW | MAY_LACK, what, told_number<Member>};
}

template <auto Member> constexpr field_t flag(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::FLAG, NEW | MAY_LACK, what, told_flag<Member>};
}

template <auto Member> constexpr field_t texts(const char *key, const char *heading, const char *what)
{
	return {key, heading, shape_t::TEXTS, NEW, what, told_texts<Member>};
}

template <auto Member, const auto &Fields>
constexpr field_t objects(const char *key, const char *heading, const char *what,
                          std::string (*cell)(const row_t &row))
{
	return {key, heading, shape_t::OBJECTS, NEW, what, told_objects<Member, Fields>, Fields, cell};
}

// For a kind of devices, or of what is on one each.
template <typename Record> bool is_named(const row_t &row, const names_t &devices)
{
	return devices.count(record_of<Record>(row).name) > 0;
}

#endif
