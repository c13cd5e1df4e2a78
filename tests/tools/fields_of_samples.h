// SPDX-License-Identifier: Apache-2.0
// A record of the tests' own, with a field of each shape.
#ifndef DISKSCOUT_TESTS_TOOLS_FIELDS_OF_SAMPLES_H
#define DISKSCOUT_TESTS_TOOLS_FIELDS_OF_SAMPLES_H

#include "field.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct member_t {
	std::optional<std::string> name;
	int slot;
};

struct sample_t {
	std::optional<bool> flag = {};
	std::optional<std::int64_t> number = {};
	std::optional<std::uint64_t> large = {};
	std::optional<std::string> text = {};
	std::optional<std::vector<std::string>> texts = {};
	std::optional<std::vector<member_t>> members = {};
};

inline const sample_t &sample_of(const row_t &row)
{
	return *static_cast<const sample_t *>(row.record);
}

inline void put_flag(const row_t &row, sink_t &to)
{
	const auto &value = sample_of(row).flag;
	value ? to.flag(*value) : to.absent();
}

inline void put_number(const row_t &row, sink_t &to)
{
	const sample_t &sample = sample_of(row);
	if (sample.large)
		to.large(*sample.large);
	else
		sample.number ? to.number(*sample.number) : to.absent();
}

inline void put_text(const row_t &row, sink_t &to)
{
	const auto &value = sample_of(row).text;
	value ? to.text(*value) : to.absent();
}

inline void put_texts(const row_t &row, sink_t &to)
{
	const auto &values = sample_of(row).texts;
	if (!values) {
		to.absent();
		return;
	}
	to.begin_list();
	for (const std::string &value : *values)
		to.text(value);
	to.end_list();
}

inline void put_member(const member_t &member, sink_t &to)
{
	to.begin_object();
	to.key("name");
	member.name ? to.text(*member.name) : to.absent();
	to.key("slot");
	to.number(member.slot);
	to.end_object();
}

inline void put_members(const row_t &row, sink_t &to)
{
	const auto &values = sample_of(row).members;
	if (!values) {
		to.absent();
		return;
	}
	to.begin_list();
	for (const member_t &value : *values)
		put_member(value, to);
	to.end_list();
}

inline void put_first_member(const row_t &row, sink_t &to)
{
	const auto &values = sample_of(row).members;
	values ? put_member(values->front(), to) : to.absent();
}

inline const field_t FLAG = {"flag", "FLAG", shape_t::FLAG, MAY_LACK | NEW, "", put_flag};
inline const field_t NUMBER = {"number", "NUMBER", shape_t::NUMBER, MAY_LACK | NEW, "", put_number};
inline const field_t BYTES = {"total_size", "SIZE", shape_t::BYTES, MAY_LACK | NEW, "", put_number};
inline const field_t TEXT = {"text", "TEXT", shape_t::TEXT, MAY_LACK | NEW, "", put_text};
inline const field_t TEXTS = {"texts", "TEXTS", shape_t::TEXTS, MAY_LACK | NEW, "", put_texts};
inline const field_t MEMBERS = {"members", "MEMBERS", shape_t::OBJECTS, MAY_LACK | NEW, "", put_members};
inline const field_t MEMBER = {"member", "MEMBER", shape_t::OBJECT, MAY_LACK | NEW, "", put_first_member};

inline std::string slot_of_member(const row_t &row)
{
	return "slot " + std::to_string(sample_of(row).members->front().slot);
}

#endif
