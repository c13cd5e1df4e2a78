// SPDX-License-Identifier: Apache-2.0
// The record that a pointer to a member belongs to, so that a row of a field table names the member alone.
#ifndef DISKSCOUT_TOOLS_DISKSCOUT_MEMBER_H
#define DISKSCOUT_TOOLS_DISKSCOUT_MEMBER_H

#include "field.h"

template <typename Record, typename Value> Record record_with(Value Record::*);
template <auto Member> using record_with_t = decltype(record_with(Member));

template <typename Record> const Record &record_of(const row_t &row)
{
	return *static_cast<const Record *>(row.record);
}

template <auto Member> const auto &value_of(const row_t &row)
{
	return record_of<record_with_t<Member>>(row).*Member;
}

#endif
